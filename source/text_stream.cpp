// The text lies in one contiguous buffer. Looking ahead grows the buffer and loads behind what is
// there; moving on reuses it: only when less than a thirty-second of the loaded text is left ahead
// of the window is that rest moved to the front and the buffer filled up behind it. A search for
// one unit passes over whole blocks at the speed of vectors.
#include <vltextstream/source/text_stream.hpp>

#include <algorithm>
#include <limits>
#include <string_view>

#include <vltextstream/source/unit_block.hpp>

namespace textio {
namespace {

constexpr std::size_t kCompactionRatio = 32;
constexpr auto kNoPosition = std::numeric_limits<unsigned long>::max();

std::size_t distance(const char16_t* begin, const char16_t* end) {
  return static_cast<std::size_t>(end - begin);
}

// How far a search may go in the loaded text, which reaches to `end`, before it looks at the units
// one by one. This one looks at all of them.
struct UnitByUnit {
  template <typename Stop>
  static unsigned long past(const char16_t*, unsigned long pos, std::size_t, Stop) {
    return pos;
  }
};

// Over the whole blocks that have no unit to stop at. To ask a block has to cost little.
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

// Keeps a copy of the text ahead of the window while a refill overwrites it, and puts it back, and
// the source with it, when the refill throws. When even that fails, the stream reads as ended
// rather than as zeros or as text with a gap.
class TextStream::Rollback {
 public:
  explicit Rollback(TextStream& stream)
      : stream_(stream),
        saved_(stream.window_start, stream.data_end),
        source_pos_(stream.source->getPos()),
        eos_(stream.eos) {}
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

  void dismiss() { armed_ = false; }

 private:
  void restore() {
    const bool source_is_back = stream_.take_source_back(source_pos_);
    stream_.window_start = stream_.buffer_begin;
    BufferManager& storage = *stream_.buffer_manager;
    if (distance(storage.begin(), storage.end()) < saved_.size()) {
      stream_.resizeInternalBuffer(saved_.size());
    }
    stream_.data_end = std::copy(saved_.begin(), saved_.end(), stream_.buffer_begin);
    stream_.eos = eos_ || !source_is_back;
  }

  TextStream& stream_;
  std::u16string saved_;
  source_pos source_pos_;
  bool eos_;
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

// Whether `units` units are there from the start of the window; loads text at most once.
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
  data_end = text_end;  // holds if the fill throws: the new units of the storage are no text
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

// After a call that threw: whether the source is where it was before.
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

// The first position from `pos` on whose unit is kEnd, missing, or one that `stop` accepts.
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
  Rollback rollback(*this);
  std::copy(start, data_end, buffer_begin);
  window_start = buffer_begin;
  cut_back(valid, remaining);
  refill_after(remaining);
  rollback.dismiss();
}

// The window moves past everything loaded, and `beyond` units further.
void TextStream::skip_loaded_text(unsigned long beyond) {
  Rollback rollback(*this);
  if (source->skipFromPos(source->getPos(), beyond) < beyond) {
    window_start = data_end = buffer_begin;
    eos = true;
  } else {
    const std::size_t valid = distance(buffer_begin, data_end);
    window_start = buffer_begin;
    cut_back(valid, 0);
    refill_after(0);
  }
  rollback.dismiss();
}

// Fills the buffer behind its first `kept` units, up to its present end.
void TextStream::refill_after(std::size_t kept) {
  const std::size_t room = distance(buffer_begin + kept, data_end);
  const std::size_t loaded = source->fillBuffer(buffer_begin + kept, data_end);
  if (loaded < room) eos = true;
  data_end = buffer_begin + kept + loaded;
}

void TextStream::resize_if_too_big(unsigned long valid) { cut_back(valid, 0); }

// A buffer that held more than kTooBigUnits gets its normal size back, or as many steps as the
// `remaining` units at its front need: a very long look-ahead leaves more than one.
void TextStream::cut_back(std::size_t valid, std::size_t remaining) {
  if (valid <= kTooBigUnits) return;
  const std::size_t steps = (remaining + kBufferUnits - 1) / kBufferUnits;
  resizeInternalBuffer(std::max<std::size_t>(steps, 1) * kBufferUnits);
}

}  // namespace textio
