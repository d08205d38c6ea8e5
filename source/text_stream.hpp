// TextStream: a window that moves forward over the UTF-16 text of one source.
//
//   TextStream text(&source);
//   unsigned long end = text.find_first_pos_of(u'\n', 0);
//   text.advance(end + 1);             // position 0 is now the first unit of the next line
//
// A unit past the end of the text reads as U+FFFF, and a U+FFFF in the text ends every search like
// the end of the text does; a search that fails returns that end position, so its caller looks at
// the unit there.
//
// Units      positions count UTF-16 code units from the start of the window.
// Ownership  does not own the source, which must outlive the stream. Pointers into the text are
//            valid until the next call that loads text or advances.
// Errors     none of its own; what the source or the allocation throws (a position that no memory
//            could hold included) passes through and leaves the stream as it was before the call,
//            or as ended behind what is loaded when the source cannot go back.
// Cost       loads in blocks of at least 131,072 units; a search or match copies nothing. When
//            advance loads a block, it first copies the loaded text from the old window on, to put
//            it back should the load fail.
// Threads    one thread at a time, the const operations included: they load text.
#pragma once

#include <cstddef>
#include <string>

#include <vltextstream/source/text_source.hpp>

namespace textio {

class VLTEXTSTREAM_EXPORT TextStream {
 public:
  static constexpr char16_t kEnd = 0xFFFF;

  // Size of a fresh buffer, least size of any, and the step in which it grows.
  static constexpr std::size_t kBufferUnits = 131'072;

  // A buffer that held more text than this is cut back when the window moves on.
  static constexpr std::size_t kTooBigUnits = 524'288;

  // Loads the first block of the text.
  explicit TextStream(TextSource* source);
  TextStream(const TextStream&) = delete;
  TextStream& operator=(const TextStream&) = delete;

  // The unit at `pos`, kEnd when the text has none there.
  char16_t at(unsigned long pos) const;

  // The unit at position 0; what follows it is there as far as it has been asked for.
  const char16_t* window_begin() const { return window_start; }

  // The first position from `pos` on whose unit is `c`, or that ends the text.
  unsigned long find_first_pos_of(char16_t c, unsigned long pos) const;

  // The first position from `pos` on whose unit is one of `set`, or that ends the text.
  unsigned long find_first_pos_of(const std::u16string& set, unsigned long pos) const;

  // The first position from `pos` on whose unit is none of `set`, or that ends the text.
  unsigned long find_first_pos_not_of(const std::u16string& set, unsigned long pos) const;

  // The first position from `pos` on whose unit is not `c`, or that ends the text.
  unsigned long find_first_pos_not_of(char16_t c, unsigned long pos) const;

  // The first position from `pos` on whose unit is not one of '0' to '9', or that ends the text.
  unsigned long find_first_non_digit(unsigned long pos) const;

  // Whether the text at `pos` starts with `s`. The empty text stands everywhere.
  bool matches_case_sensitive(const std::u16string& s, unsigned long pos) const;

  // The same with 'a' to 'z' equal to 'A' to 'Z' on both sides; no other letters are folded.
  bool matches_case_insensitive(const std::u16string& s, unsigned long pos) const;

  // Makes position n position 0. Beyond the end of the text the window is empty for good.
  void advance(unsigned long n);

  // The step of advance that stays within the loaded text: `n` is less than the units loaded.
  void adjust_buffer(unsigned long n, unsigned long available);

  // Cuts a buffer that held `valid` units back to its normal size when it has grown too big.
  void resize_if_too_big(unsigned long valid);

  // Sets the size of the storage; the window keeps its place in it. `data_end` is the end of the
  // storage afterwards, until a fill says how much of it is text.
  void resizeInternalBuffer(unsigned long n) const;

 private:
  class VLTEXTSTREAM_LOCAL Rollback;

  VLTEXTSTREAM_LOCAL bool look_ahead(unsigned long units) const;
  VLTEXTSTREAM_LOCAL bool take_source_back(source_pos pos) const;
  VLTEXTSTREAM_LOCAL bool matches(const std::u16string& s, unsigned long pos,
                                  char16_t (*fold)(char16_t)) const;
  VLTEXTSTREAM_LOCAL void skip_loaded_text(unsigned long beyond);
  VLTEXTSTREAM_LOCAL void refill_after(std::size_t kept);
  VLTEXTSTREAM_LOCAL void cut_back(std::size_t valid, std::size_t remaining);
  template <typename Pace, typename Stop>
  VLTEXTSTREAM_LOCAL unsigned long scan(unsigned long pos, Stop stop) const;

  TextSource* source;
  BufferManager* buffer_manager;
  mutable char16_t* buffer_begin = nullptr;
  mutable char16_t* data_end = nullptr;
  mutable char16_t* window_start = nullptr;
  mutable bool eos = false;
};

}  // namespace textio
