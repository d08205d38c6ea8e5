// TextSource and BufferManager: where text comes from and where it is stored.
//
// A source delivers the text of one input as UTF-16 code units, in order, in chunks of the size
// that its reader asks for. It can restart at a position that it reported before. It also owns the
// storage for its text, so that a source whose text is already in memory can lend that memory
// instead of copying it.
//
// Units      ranges and counts are UTF-16 code units; what a source_pos counts is up to the source
//            (bytes of the encoded file for a file).
// Ownership  the source owns its buffer manager, the buffer manager owns (or borrows) the storage.
// Threads    one thread at a time, the const operations included.
#pragma once

#include <cstddef>
#include <cstdint>

#include <vltextstream/host/export.hpp>

namespace textio {

// A position in a source, meaningful only to the source that reported it.
using source_pos = std::int64_t;

// The owner of one growable array of UTF-16 code units. The order of the virtual operations is
// part of the interface.
class VLTEXTSTREAM_EXPORT BufferManager {
 public:
  // Sets the size to `n` code units; keeps the leading ones and sets new ones to 0. Returns n, and
  // the bounds of the array through the references. Bounds returned before are no longer valid.
  virtual std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) = 0;

  virtual char16_t* begin() = 0;
  virtual char16_t* end() = 0;
  virtual ~BufferManager();
};

// Replaces a character outside the Basic Multilingual Plane, so that each character is one code
// unit.
inline constexpr char16_t kFoldedCharacter = 0x001A;

// Replaces every surrogate pair in [begin, end) by one kFoldedCharacter, in place. Returns the new
// end.
VLTEXTSTREAM_EXPORT char16_t* fold_surrogate_pairs(char16_t* begin, char16_t* end);

// The order of the virtual operations is part of the interface.
class VLTEXTSTREAM_EXPORT TextSource {
 public:
  // Writes the next code units of the text to [begin, end). Returns how many; fewer than requested
  // only at the end of the text.
  virtual std::size_t fillBuffer(char16_t* begin, char16_t* end) = 0;

  // True if no code unit is left.
  virtual bool isEoS() const = 0;

  // The source's own buffer manager, never null. It lives as long as the source.
  virtual BufferManager* getBufferManager() = 0;

  // The position from which the next fill reads.
  virtual source_pos getPos() const = 0;

  // Goes to `pos` and skips up to `count` code units from there. Returns how many were skipped;
  // fewer than requested only at the end of the text.
  virtual unsigned long skipFromPos(source_pos pos, unsigned long count) = 0;

  virtual ~TextSource();
};

}  // namespace textio
