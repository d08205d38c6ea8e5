// A comma and a line break are written before each value but the first, so that no value has to
// know whether another one follows.
#include "tool/json_writer.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/text/utf8.hpp>

namespace textio::tool {
namespace {

// A piece of JSON of a few characters.
class Piece {
 public:
  template <typename... Values>
  explicit Piece(fmt::format_string<Values...> format, Values&&... values) {
    char* const begin = chars_.data();
    size_ = fmt::format_to_n(begin, chars_.size(), format, std::forward<Values>(values)...).size;
  }

  std::string_view view() const { return {chars_.data(), size_}; }

 private:
  std::array<char, 32> chars_{};
  std::size_t size_ = 0;
};

std::string_view short_escape_of(char32_t code) {
  switch (code) {
    case U'\b':
      return "\\b";
    case U'\t':
      return "\\t";
    case U'\n':
      return "\\n";
    case U'\f':
      return "\\f";
    case U'\r':
      return "\\r";
    case U'"':
      return "\\\"";
    case U'\\':
      return "\\\\";
    default:
      return "";
  }
}

Piece long_escape_of(char32_t code) {
  const auto unit = static_cast<unsigned>(code);
  if (unit < 0x10000) return Piece("\\u{:04x}", unit);
  return Piece("\\u{:04x}\\u{:04x}", 0xD800U + ((unit - 0x10000) >> 10),
               0xDC00U + ((unit - 0x10000) & 0x3FFU));
}

// The digits of a positive number and the place of its point: 0.0125 is "125" and -1.
struct Decimal {
  std::array<char, 24> chars{};
  std::size_t count = 0;
  int point = 0;  // how many digits are before it

  std::string_view digits() const { return {chars.data(), count}; }
};

Decimal shortest_decimal(double number) {
  std::array<char, 32> text{};  // "d.ddde+xx"
  const char* const end =
      std::to_chars(text.begin(), text.end(), number, std::chars_format::scientific).ptr;
  const char* const e = std::find(text.data(), text.data() + text.size(), 'e');
  Decimal decimal;
  for (const char* c = text.data(); c != e; ++c) {
    if (*c != '.') decimal.chars[decimal.count++] = *c;
  }
  std::from_chars(e[1] == '+' ? e + 2 : e + 1, end, decimal.point);
  ++decimal.point;
  return decimal;
}

// Up to 15 digits before the point and up to three zeros after it; others with an exponent.
Piece text_of(const Decimal& decimal) {
  const std::string_view digits = decimal.digits();
  const int count = static_cast<int>(digits.size());
  const int point = decimal.point;
  if (point > 15 || point <= -4) {
    const char* const mark = count > 1 ? "." : "";
    return Piece("{}{}{}e{:+03}", digits[0], mark, digits.substr(1), point - 1);
  }
  if (point <= 0) return Piece("0.{:0>{}}", digits, count - point);
  if (point >= count) return Piece("{:0<{}}.0", digits, point);
  const auto whole = static_cast<std::size_t>(point);
  return Piece("{}.{}", digits.substr(0, whole), digits.substr(whole));
}

}  // namespace

JsonWriter::JsonWriter(std::string& out, std::size_t depth, Empty empty, Shape shape)
    : out_(out), depth_(depth), empty_(std::move(empty)), is_one_line_(shape == Shape::one_line) {
  if (empty_) out_.reserve(kFullAt);
}

void JsonWriter::key(std::string_view name) {
  value(name);
  append(": ");
  follows_key_ = true;
}

void JsonWriter::value(std::nullptr_t) {
  begin_value();
  append("null");
}

void JsonWriter::value(bool truth) {
  begin_value();
  append(truth ? "true" : "false");
}

void JsonWriter::value(std::string_view utf8) {
  begin_value();
  append("\"");
  append_utf8(utf8);
  append("\"");
}

// The few bytes of a character are in no need of memory.
void JsonWriter::value(std::u16string_view text) {
  begin_value();
  append("\"");
  std::string character;
  for (std::size_t pos = 0; pos < text.size();) {
    character.clear();
    textio::append_utf8(character, next_character(text, pos));
    append_utf8(character);
  }
  append("\"");
}

void JsonWriter::value(double number) {
  if (!std::isfinite(number)) return value(nullptr);
  begin_value();
  if (std::signbit(number)) append("-");
  append(number == 0 ? "0.0" : text_of(shortest_decimal(std::fabs(number))).view());
}

void JsonWriter::begin(char bracket) {
  begin_value();
  append({&bracket, 1});
  ++depth_;
  is_first_ = true;
  is_open_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!is_first_ && !is_one_line_) begin_line();
  append({&bracket, 1});
  is_first_ = false;
}

void JsonWriter::begin_value() {
  if (follows_key_) {
    follows_key_ = false;
    return;
  }
  if (!is_open_) return indent();
  if (!is_first_) append(is_one_line_ ? ", " : ",");
  if (!is_one_line_) begin_line();
  is_first_ = false;
}

void JsonWriter::begin_line() {
  append("\n");
  indent();
}

void JsonWriter::indent() {
  for (std::size_t i = 0; i < depth_; ++i) append("  ");
}

// Every character that is written comes by here.
void JsonWriter::append(std::string_view piece) {
  if (empty_ && out_.size() + piece.size() > kFullAt) empty_(out_);
  out_ += piece;
}

void JsonWriter::append_utf8(std::string_view utf8) {
  while (!utf8.empty()) {
    const Utf8Character c = first_character(utf8);
    append_character(c.code, c.is_well_formed ? utf8.substr(0, c.length) : kReplacementUtf8);
    utf8.remove_prefix(c.length);
  }
}

void JsonWriter::append_character(char32_t code, std::string_view utf8) {
  const std::string_view escape = short_escape_of(code);
  if (!escape.empty()) {
    append(escape);
  } else if (is_unprintable(code)) {
    append(long_escape_of(code).view());
  } else {
    append(utf8);
  }
}

}  // namespace textio::tool
