// TextStream: a window that moves forward over the UTF-16 text of a source.
//
//   TextStream text(&source);
//   unsigned long end = text.find_first_pos_of(u'\n', 0);
//   text.advance(end + 1);             // position 0 is now the start of the next line
//
// A code unit past the end of the text reads as U+FFFF. A U+FFFF in the text ends every search,
// like the end of the text. A failed search returns that end position, so callers check the code
// unit there.
//
// Units      positions count UTF-16 code units from the start of the window.
// Ownership  does not own the source, which must outlive the stream. Pointers into the text are
//            valid until the next call that loads text or advances.
// Errors     none of its own. Exceptions of the source or of an allocation (also for a position
//            that no memory could hold) pass through and leave the stream as it was before the
//            call, or as ended after the loaded text if the source cannot go back.
// Cost       loads in blocks of at least 131,072 code units; a search or match copies nothing. An
//            advance over a FileTextSource loads into a second buffer of the same size, which it
//            allocates once. Over any other source it loads in place and first copies the loaded
//            text from the window on, to restore it if the load fails.
// Threads    one thread at a time, also for const operations: they load text.
#pragma once

#include <cstddef>
#include <string>

#include <vltextstream/source/text_source.hpp>

namespace textio {

class FileStreamBufferManager;

class VLTEXTSTREAM_EXPORT TextStream {
 public:
  static constexpr char16_t kEnd = 0xFFFF;

  // The initial and minimum size of the buffer, and the step in which it grows.
  static constexpr std::size_t kBufferUnits = 131'072;

  // A buffer that held more text than this is cut back when an advance loads text.
  static constexpr std::size_t kTooBigUnits = 524'288;

  // Loads the first block of the text.
  explicit TextStream(TextSource* source);
  TextStream(const TextStream&) = delete;
  TextStream& operator=(const TextStream&) = delete;

  // The code unit at `pos`, kEnd if `pos` is past the end of the text.
  char16_t at(unsigned long pos) const;

  // The code unit at position 0, followed by all text that has been requested so far.
  const char16_t* window_begin() const { return window_start; }

  // The first position from `pos` on that has `c` or ends the text.
  unsigned long find_first_pos_of(char16_t c, unsigned long pos) const;

  // The first position from `pos` on that has a code unit of `set` or ends the text.
  unsigned long find_first_pos_of(const std::u16string& set, unsigned long pos) const;

  // The first position from `pos` on that has a code unit outside `set` or ends the text.
  unsigned long find_first_pos_not_of(const std::u16string& set, unsigned long pos) const;

  // The first position from `pos` on that has a code unit other than `c` or ends the text.
  unsigned long find_first_pos_not_of(char16_t c, unsigned long pos) const;

  // The first position from `pos` on that has no digit '0' to '9' or ends the text.
  unsigned long find_first_non_digit(unsigned long pos) const;

  // Whether the text from `pos` on starts with `s`. An empty `s` matches everywhere.
  bool matches_case_sensitive(const std::u16string& s, unsigned long pos) const;

  // The same, with 'a' to 'z' equal to 'A' to 'Z' on both sides. No other letters are folded.
  bool matches_case_insensitive(const std::u16string& s, unsigned long pos) const;

  // Makes position n position 0. Past the end of the text the window stays empty.
  void advance(unsigned long n);

  // The part of advance for an `n` within the loaded text. `available` is not used.
  void adjust_buffer(unsigned long n, unsigned long available);

  // Resizes the buffer to its normal size if the `valid` code units that it held are too many.
  void resize_if_too_big(unsigned long valid);

  // Sets the size of the buffer; the window keeps its place in it. The whole buffer counts as text
  // until the next fill.
  void resizeInternalBuffer(unsigned long n) const;

 private:
  class VLTEXTSTREAM_LOCAL Rollback;

  VLTEXTSTREAM_LOCAL bool look_ahead(unsigned long units) const;
  VLTEXTSTREAM_LOCAL bool take_source_back(source_pos pos) const;
  VLTEXTSTREAM_LOCAL bool matches(const std::u16string& s, unsigned long pos,
                                  char16_t (*fold)(char16_t)) const;
  VLTEXTSTREAM_LOCAL void skip_loaded_text(unsigned long beyond);
  VLTEXTSTREAM_LOCAL void refill(const char16_t* start, Rollback& rollback);
  VLTEXTSTREAM_LOCAL void refill_spare(const char16_t* start, FileStreamBufferManager& storage);
  VLTEXTSTREAM_LOCAL void refill_in_place(const char16_t* start);
  VLTEXTSTREAM_LOCAL void prepare_spare(std::size_t kept);
  VLTEXTSTREAM_LOCAL void cut_back(std::size_t valid, std::size_t remaining);
  VLTEXTSTREAM_LOCAL static std::size_t size_for(std::size_t remaining);
  template <typename Pace, typename Stop>
  VLTEXTSTREAM_LOCAL unsigned long scan(unsigned long pos, Stop stop) const;

  TextSource* source;
  BufferManager* buffer_manager;
  mutable char16_t* buffer_begin = nullptr;
  mutable char16_t* data_end = nullptr;
  mutable char16_t* window_start = nullptr;
  mutable bool eos = false;
  std::u16string spare;  // the buffer that the next refill loads into
};

}  // namespace textio
