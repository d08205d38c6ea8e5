// TextSource and BufferManager: where text comes from and who keeps it.
//
// A source delivers the text of one input as UTF-16 code units, one after the other, in chunks
// that its reader asks for, and can start again at a position that it told before. It also owns
// the storage into which its text is read, so that a source whose text lies in memory already can
// lend that memory instead of copying it.
//
// Units      ranges and counts are UTF-16 code units; a source_pos is the source's own unit (bytes
//            of the encoded file for a file).
// Ownership  the source owns its buffer manager, the buffer manager owns (or borrows) the storage.
// Threads    one thread at a time, the const operations included.
#pragma once

#include <cstddef>
#include <cstdint>

#include <vltextstream/host/export.hpp>

namespace textio {

// A position in a source; only the source that told it can make sense of it.
using source_pos = std::int64_t;

// The owner of one growable array of UTF-16 code units. The order of the virtual operations is
// part of the interface.
class VLTEXTSTREAM_EXPORT BufferManager {
 public:
  // Sets the size to `n` units, keeping the leading units and filling new ones with 0. Returns n,
  // and the bounds of the array through the references; bounds told before are no longer valid.
  virtual std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) = 0;

  virtual char16_t* begin() = 0;
  virtual char16_t* end() = 0;
  virtual ~BufferManager();
};

// Stands for a character outside the Basic Multilingual Plane, so that each character is one unit.
inline constexpr char16_t kFoldedCharacter = 0x001A;

// Makes a kFoldedCharacter of every surrogate pair in [begin, end), in place; returns the new end.
VLTEXTSTREAM_EXPORT char16_t* fold_surrogate_pairs(char16_t* begin, char16_t* end);

// The order of the virtual operations is part of the interface.
class VLTEXTSTREAM_EXPORT TextSource {
 public:
  // Writes the next units of the text to [begin, end) and returns how many: fewer than asked only
  // at the end of the text.
  virtual std::size_t fillBuffer(char16_t* begin, char16_t* end) = 0;

  // True when no unit is left.
  virtual bool isEoS() const = 0;

  // The source's own buffer manager, never null; lives as long as the source.
  virtual BufferManager* getBufferManager() = 0;

  // Where the next fill reads from.
  virtual source_pos getPos() const = 0;

  // Goes to `pos` and passes over up to `count` units from there. Returns how many were passed
  // over: fewer than asked only at the end of the text.
  virtual unsigned long skipFromPos(source_pos pos, unsigned long count) = 0;

  virtual ~TextSource();
};

}  // namespace textio
