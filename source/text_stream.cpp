// The text is in one contiguous buffer. A look-ahead grows the buffer and loads more text after the
// loaded one. An advance reuses the buffer: once less than a thirty-second of the loaded text is
// left, that rest moves to the front and the buffer is filled up after it.
//
// A refill that throws must not lose text. With the buffer of a file, the stream has a second one
// and fills that: the buffers take turns, and a failure leaves the first one untouched. With the
// buffer of any other source, whose memory only the source knows, the stream fills in place and
// keeps a copy of the text until the fill has succeeded.
#include <vltextstream/source/text_stream.hpp>

#include <algorithm>
#include <limits>
#include <string_view>
#include <typeinfo>

#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/unit_block.hpp>

namespace textio {
namespace {

constexpr std::size_t kCompactionRatio = 32;
constexpr auto kNoPosition = std::numeric_limits<unsigned long>::max();

std::size_t distance(const char16_t* begin, const char16_t* end) {
  return static_cast<std::size_t>(end - begin);
}

// The buffer of a file as such, null for any other: a derived class may keep its text elsewhere.
FileStreamBufferManager* as_file_buffer(BufferManager& buffer) {
  if (typeid(buffer) != typeid(FileStreamBufferManager)) return nullptr;
  return static_cast<FileStreamBufferManager*>(&buffer);
}

// Passes over loaded text, which ends at `end`, before a search tests code units one by one. This
// one passes over nothing.
struct UnitByUnit {
  template <typename Stop>
  static unsigned long past(const char16_t*, unsigned long pos, std::size_t, Stop) {
    return pos;
  }
};

// Passes over whole blocks without a code unit to stop at. The test must be cheap.
struct BlockByBlock {
  template <typename Stop>
  static unsigned long past(const char16_t* text, unsigned long pos, std::size_t end, Stop stop) {
    const auto stops = [stop](char16_t unit) {
      const bool is_end = unit == TextStream::kEnd;
      const bool is_stop = stop(unit);
      return is_end | is_stop;
    };
    while (end - std::min(pos, end) >= kBlockUnits && !any_in_block(text + pos, stops)) {
      pos += kBlockUnits;
    }
    return pos;
  }
};

char16_t same(char16_t unit) { return unit; }

char16_t fold_ascii(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

}  // namespace

// Restores the stream and its source if an advance throws. If even that fails, the stream reads as
// ended rather than as zeros or as text with a gap. While there is text to load, the constructor
// allocates the spare buffer or the room for a copy, before the advance changes anything.
class TextStream::Rollback {
 public:
  // `kept` code units of the loaded text will still be needed.
  Rollback(TextStream& stream, std::size_t kept)
      : stream_(stream), source_pos_(stream.source->getPos()), eos_(stream.eos) {
    if (stream.eos) return;
    if (as_file_buffer(*stream.buffer_manager) != nullptr) {
      stream.prepare_spare(kept);
    } else {
      saved_.reserve(distance(stream.window_start, stream.data_end));
    }
  }
  Rollback(const Rollback&) = delete;
  Rollback& operator=(const Rollback&) = delete;

  ~Rollback() {
    if (!armed_) return;
    try {
      restore();
    } catch (...) {
      stream_.window_start = stream_.data_end = stream_.buffer_begin;
      stream_.eos = true;
    }
  }

  // Copies the text from the window on, which is about to be overwritten.
  void save_text() {
    saved_.assign(stream_.window_start, stream_.data_end);
    is_saved_ = true;
  }

  void dismiss() { armed_ = false; }

 private:
  void restore() {
    const bool source_is_back = stream_.take_source_back(source_pos_);
    if (is_saved_) restore_text();
    stream_.eos = eos_ || !source_is_back;
  }

  void restore_text() {
    stream_.window_start = stream_.buffer_begin;
    BufferManager& storage = *stream_.buffer_manager;
    if (distance(storage.begin(), storage.end()) < saved_.size()) {
      stream_.resizeInternalBuffer(saved_.size());
    }
    stream_.data_end = std::copy(saved_.begin(), saved_.end(), stream_.buffer_begin);
  }

  TextStream& stream_;
  std::u16string saved_;
  source_pos source_pos_;
  bool eos_;
  bool is_saved_ = false;
  bool armed_ = true;
};

TextStream::TextStream(TextSource* from) : source(from), buffer_manager(from->getBufferManager()) {
  resizeInternalBuffer(kBufferUnits);
  data_end = buffer_begin + source->fillBuffer(buffer_begin, data_end);
  eos = source->isEoS();
}

void TextStream::resizeInternalBuffer(unsigned long n) const {
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  buffer_manager->resize(n, begin, end);
  window_start = std::min(begin + (window_start - buffer_begin), end);
  buffer_begin = begin;
  data_end = end;
}

// ---------------------------------------------------------------------------------------------
// Looking ahead

// Whether the text has `units` code units from the start of the window. Loads text at most once.
bool TextStream::look_ahead(unsigned long units) const {
  if (distance(window_start, data_end) >= units) return true;
  if (eos) return false;
  const std::size_t valid = distance(buffer_begin, data_end);
  const std::size_t steps = units - units % kBufferUnits;
  if (steps > kNoPosition - valid - kBufferUnits) return false;
  const source_pos before = source->getPos();
  resizeInternalBuffer(steps + valid + kBufferUnits);
  char16_t* const text_end = buffer_begin + valid;
  const std::size_t room = distance(text_end, data_end);
  char16_t* const storage_end = data_end;
  data_end = text_end;  // stays if the fill throws: the new part of the storage has no text
  try {
    const std::size_t loaded = source->fillBuffer(text_end, storage_end);
    eos = loaded < room;
    data_end = text_end + loaded;
  } catch (...) {
    if (!take_source_back(before)) eos = true;
    throw;
  }
  return distance(window_start, data_end) >= units;
}

// Takes the source back to `pos` after a call that threw. Returns whether it is there.
bool TextStream::take_source_back(source_pos pos) const {
  try {
    if (source->getPos() != pos) source->skipFromPos(pos, 0);
    return source->getPos() == pos;
  } catch (...) {
    return false;
  }
}

char16_t TextStream::at(unsigned long pos) const {
  return pos != kNoPosition && look_ahead(pos + 1) ? window_start[pos] : kEnd;
}

// The first position from `pos` on where the text ends or has kEnd or a code unit that `stop`
// accepts.
template <typename Pace, typename Stop>
unsigned long TextStream::scan(unsigned long pos, Stop stop) const {
  for (;;) {
    const std::size_t loaded = distance(window_start, data_end);
    pos = Pace::past(window_start, pos, loaded, stop);
    for (; pos < loaded; ++pos) {
      if (window_start[pos] == kEnd || stop(window_start[pos])) return pos;
    }
    if (pos == kNoPosition || !look_ahead(pos + 1)) return pos;
  }
}

unsigned long TextStream::find_first_pos_of(char16_t c, unsigned long pos) const {
  return scan<BlockByBlock>(pos, [c](char16_t unit) { return unit == c; });
}

unsigned long TextStream::find_first_pos_of(const std::u16string& set, unsigned long pos) const {
  return scan<UnitByUnit>(pos, [&set](char16_t unit) { return set.find(unit) != set.npos; });
}

unsigned long TextStream::find_first_pos_not_of(const std::u16string& set,
                                                unsigned long pos) const {
  return scan<UnitByUnit>(pos, [&set](char16_t unit) { return set.find(unit) == set.npos; });
}

unsigned long TextStream::find_first_pos_not_of(char16_t c, unsigned long pos) const {
  return scan<BlockByBlock>(pos, [c](char16_t unit) { return unit != c; });
}

unsigned long TextStream::find_first_non_digit(unsigned long pos) const {
  return scan<BlockByBlock>(pos, [](char16_t unit) { return unit < u'0' || unit > u'9'; });
}

bool TextStream::matches(const std::u16string& s, unsigned long pos,
                         char16_t (*fold)(char16_t)) const {
  if (s.empty()) return true;
  if (s.size() > kNoPosition - pos || !look_ahead(pos + s.size())) return false;
  return std::equal(s.begin(), s.end(), window_start + pos,
                    [fold](char16_t a, char16_t b) { return fold(a) == fold(b); });
}

bool TextStream::matches_case_sensitive(const std::u16string& s, unsigned long pos) const {
  return matches(s, pos, same);
}

bool TextStream::matches_case_insensitive(const std::u16string& s, unsigned long pos) const {
  return matches(s, pos, fold_ascii);
}

// ---------------------------------------------------------------------------------------------
// Moving on

void TextStream::advance(unsigned long n) {
  const std::size_t available = distance(window_start, data_end);
  if (n < available) {
    adjust_buffer(n, available);
  } else {
    skip_loaded_text(n - available);
  }
}

void TextStream::adjust_buffer(unsigned long n, unsigned long /*available*/) {
  char16_t* const start = window_start + n;
  const std::size_t valid = distance(buffer_begin, data_end);
  const std::size_t remaining = distance(start, data_end);
  if (eos || remaining >= valid / kCompactionRatio) {
    window_start = start;
    return;
  }
  Rollback rollback(*this, remaining);
  refill(start, rollback);
  rollback.dismiss();
}

// The window moves past all loaded text, and `beyond` code units further.
void TextStream::skip_loaded_text(unsigned long beyond) {
  Rollback rollback(*this, 0);
  if (source->skipFromPos(source->getPos(), beyond) < beyond) {
    window_start = data_end = buffer_begin;
    eos = true;
  } else {
    refill(data_end, rollback);
  }
  rollback.dismiss();
}

// Makes `start` the start of the window and of the buffer, and fills the buffer up after the text
// from `start` on.
void TextStream::refill(const char16_t* start, Rollback& rollback) {
  if (FileStreamBufferManager* const storage = as_file_buffer(*buffer_manager)) {
    refill_spare(start, *storage);
  } else {
    rollback.save_text();
    refill_in_place(start);
  }
}

// Nothing changes until the fill has succeeded.
void TextStream::refill_spare(const char16_t* start, FileStreamBufferManager& storage) {
  const std::size_t valid = distance(buffer_begin, data_end);
  const std::size_t kept = distance(start, data_end);
  prepare_spare(kept);
  const std::size_t extent = valid > kTooBigUnits ? spare.size() : valid;
  std::copy(start, static_cast<const char16_t*>(data_end), spare.data());
  const std::size_t loaded = source->fillBuffer(spare.data() + kept, spare.data() + extent);
  storage.swap(spare);
  buffer_begin = window_start = storage.begin();
  data_end = buffer_begin + kept + loaded;
  if (loaded < extent - kept) eos = true;
  if (valid > kTooBigUnits) std::u16string().swap(spare);  // gives the big buffer back
}

void TextStream::refill_in_place(const char16_t* start) {
  const std::size_t valid = distance(buffer_begin, data_end);
  const std::size_t kept = distance(start, data_end);
  std::copy(start, static_cast<const char16_t*>(data_end), buffer_begin);
  window_start = buffer_begin;
  cut_back(valid, kept);
  const std::size_t room = distance(buffer_begin + kept, data_end);
  const std::size_t loaded = source->fillBuffer(buffer_begin + kept, data_end);
  if (loaded < room) eos = true;
  data_end = buffer_begin + kept + loaded;
}

// Gives the spare buffer the size for a refill that keeps `kept` code units. Frees a buffer of
// another size first.
void TextStream::prepare_spare(std::size_t kept) {
  const std::size_t valid = distance(buffer_begin, data_end);
  const std::size_t size = valid > kTooBigUnits
                               ? size_for(kept)
                               : distance(buffer_manager->begin(), buffer_manager->end());
  if (spare.size() == size) return;
  std::u16string().swap(spare);
  spare.resize(size);
}

void TextStream::resize_if_too_big(unsigned long valid) { cut_back(valid, 0); }

// Cuts a buffer that held more than kTooBigUnits back.
void TextStream::cut_back(std::size_t valid, std::size_t remaining) {
  if (valid > kTooBigUnits) resizeInternalBuffer(size_for(remaining));
}

// The size of a buffer that has been cut back: the normal size, or as many steps as `remaining`
// code units need. After a very long look-ahead that can be more than one.
std::size_t TextStream::size_for(std::size_t remaining) {
  const std::size_t steps = (remaining + kBufferUnits - 1) / kBufferUnits;
  return std::max<std::size_t>(steps, 1) * kBufferUnits;
}

}  // namespace textio
