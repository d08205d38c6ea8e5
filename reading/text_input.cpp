#include <vltextstream/reading/text_input.hpp>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>

namespace textio::reading {
namespace {

// What is read at once.
constexpr std::size_t kMostBytes = 65'536;
constexpr std::size_t kLeastBytes = 256;

// What an encoding makes of some bytes.
std::u16string decoded(const std::string& encoding, std::string_view bytes) {
  StreamCodeConverter converter(encoding, false);
  char16_t text[16];
  char16_t* out = text;
  const char* in = bytes.data();
  converter.convert(out, std::end(text), in, in + bytes.size(), true);
  return {text, static_cast<std::size_t>(out - text)};
}

std::size_t unit_bytes_of(const std::string& encoding) {
  using namespace std::string_view_literals;
  const auto is_line_ending = [&](std::string_view bytes) {
    return decoded(encoding, bytes) == u"\n";
  };
  if (is_line_ending("\n"sv)) return 0;
  if (is_line_ending("\n\0"sv) || is_line_ending("\0\n"sv)) return 2;
  if (is_line_ending("\n\0\0\0"sv) || is_line_ending("\0\0\0\n"sv)) return 4;
  return 1;
}

// The bytes of a mark at the start of a text whose code units have two or four bytes each.
std::size_t mark_bytes(std::string_view bytes, std::size_t unit_bytes) {
  using namespace std::string_view_literals;
  if (unit_bytes == 4 &&
      (bytes.starts_with("\xFF\xFE\0\0"sv) || bytes.starts_with("\0\0\xFE\xFF"sv))) {
    return 4;
  }
  if (unit_bytes == 2 && (bytes.starts_with("\xFF\xFE"sv) || bytes.starts_with("\xFE\xFF"sv))) {
    return 2;
  }
  return 0;
}

bool is_low_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// The next of one unit in a text, remembered.
template <typename Unit>
class NextUnit {
 public:
  NextUnit(std::basic_string_view<Unit> text, Unit unit, bool is_wanted)
      : text_(text), unit_(unit), next_(is_wanted ? text.find(unit) : text.npos) {}

  std::size_t from(std::size_t pos) {
    if (next_ < pos) next_ = text_.find(unit_, pos);
    return next_;
  }

 private:
  const std::basic_string_view<Unit> text_;
  const Unit unit_;
  std::size_t next_;
};

}  // namespace

char16_t* TextBuffer::room_for(std::size_t count) {
  if (size_ + count > capacity_) {
    const std::size_t capacity = std::max(size_ + count, capacity_ + capacity_ / 2);
    auto units = std::make_unique_for_overwrite<char16_t[]>(capacity);
    std::copy_n(units_.get(), size_, units.get());
    units_ = std::move(units);
    capacity_ = capacity;
  }
  return units_.get() + size_;
}

void TextBuffer::append(std::u16string_view text) {
  std::copy(text.begin(), text.end(), room_for(text.size()));
  add(text.size());
}

TextInput::TextInput(File file, std::string name, const std::string& encoding,
                     const assessment::LineEndings& endings)
    : file_(std::move(file)),
      name_(std::move(name)),
      converter_(std::make_unique<StreamCodeConverter>(encoding, false)),
      endings_(endings),
      unit_bytes_(unit_bytes_of(encoding)),
      chunk_(std::make_unique_for_overwrite<char[]>(kMostBytes)) {}

void TextInput::read(TextBuffer& text, std::size_t units) {
  while (!is_at_end_ && text.size() < units) {
    errno = 0;
    const std::size_t wanted = std::clamp(units - text.size(), kLeastBytes, kMostBytes);
    const std::size_t count = std::fread(chunk_.get(), 1, wanted, file_.get());
    if (count < wanted && std::ferror(file_.get()) != 0) {
      const int error = errno != 0 ? errno : EIO;
      if (error == ENOMEM) throw std::bad_alloc();
      throw standalone::FileError(
          fmt::format("cannot read {}: {}", name_, standalone::read_problem(error)));
    }
    const std::string_view bytes(chunk_.get(), count);
    if (num_bytes_ == 0) num_text_bytes_ = mark_bytes(bytes, unit_bytes_);
    const char* in = bytes.data();
    const bool is_last = count < wanted;
    const std::size_t before = text.size();
    do {
      char16_t* const begin = text.room_for(count + 16);
      char16_t* out = begin;
      converter_->convert(out, begin + count + 16, in, bytes.data() + count, is_last);
      text.add(static_cast<std::size_t>(out - begin));
    } while (is_last && converter_->has_more());
    if (unit_bytes_ == 0) {
      note_lines_of(bytes);
    } else {
      note_lines_of(text.view().substr(before));
    }
    num_bytes_ += count;
    is_at_end_ = is_last;
  }
}

// `end_at` gives the bytes up to a position.
template <typename Unit, typename EndAt>
void TextInput::note_lines(std::basic_string_view<Unit> units, EndAt end_at) {
  if (units.empty()) return;
  std::size_t pos = 0;
  if (is_after_cr_ && endings_.has_crlf && units[0] == Unit('\n')) {
    if (endings_.has_cr) line_ends_.pop_back();
    line_ends_.push_back(end_at(1));
    pos = 1;
  }
  is_after_cr_ = false;
  NextUnit<Unit> lf(units, Unit('\n'), endings_.has_lf);
  NextUnit<Unit> cr(units, Unit('\r'), endings_.has_cr || endings_.has_crlf);
  for (;;) {
    const std::size_t next_lf = lf.from(pos);
    const std::size_t next_cr = cr.from(pos);
    if (next_lf == units.npos && next_cr == units.npos) return;
    if (next_lf < next_cr) {
      pos = next_lf + 1;
    } else {
      pos = next_cr + 1;
      const bool is_crlf = endings_.has_crlf && pos < units.size() && units[pos] == Unit('\n');
      is_after_cr_ = pos == units.size();
      if (is_crlf) {
        ++pos;
      } else if (!endings_.has_cr) {
        continue;
      }
    }
    line_ends_.push_back(end_at(pos));
  }
}

void TextInput::note_lines_of(std::string_view bytes) {
  note_lines(bytes, [this](std::size_t pos) { return num_bytes_ + pos; });
}

void TextInput::note_lines_of(std::u16string_view text) {
  std::size_t counted = 0;
  const auto end_at = [&](std::size_t pos) {
    for (; counted < pos; ++counted) {
      const bool has_bytes = unit_bytes_ < 4 || !is_low_surrogate(text[counted]);
      if (has_bytes) num_text_bytes_ += unit_bytes_;
    }
    return num_text_bytes_;
  };
  note_lines(text, end_at);
  end_at(text.size());
}

std::uint64_t TextInput::end_of_line(std::uint64_t line) {
  const std::uint64_t index = line - first_line_;
  if (index >= line_ends_.size()) return num_bytes_;
  const std::uint64_t end = line_ends_[index];
  if (index > 4096 && index > line_ends_.size() / 2) {
    line_ends_.erase(line_ends_.begin(), line_ends_.begin() + static_cast<std::ptrdiff_t>(index));
    first_line_ = line;
  }
  return end;
}

}  // namespace textio::reading
