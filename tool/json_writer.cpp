// A comma and a line break are written before each value but the first, so that no value has to
// know whether another one follows.
#include "tool/json_writer.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <iterator>

#include <fmt/format.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>

#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

void append_code_unit(std::string& out, unsigned unit) {
  fmt::format_to(std::back_inserter(out), "\\u{:04x}", unit);
}

void append_escaped(std::string& out, char32_t code) {
  switch (code) {
    case U'\b':
      out += "\\b";
      return;
    case U'\t':
      out += "\\t";
      return;
    case U'\n':
      out += "\\n";
      return;
    case U'\f':
      out += "\\f";
      return;
    case U'\r':
      out += "\\r";
      return;
    case U'"':
      out += "\\\"";
      return;
    case U'\\':
      out += "\\\\";
      return;
    default:
      break;
  }
  if (code < 0x10000) return append_code_unit(out, code);
  append_code_unit(out, 0xD800U + ((code - 0x10000) >> 10));
  append_code_unit(out, 0xDC00U + ((code - 0x10000) & 0x3FFU));
}

bool is_escaped(char32_t code) { return code == U'"' || code == U'\\' || is_unprintable(code); }

// The digits of a positive number and the place of its point: 0.0125 is "125" and -1.
struct Decimal {
  std::string digits;
  int point = 0;  // how many digits are before it
};

Decimal shortest_decimal(double number) {
  std::array<char, 32> text{};  // "d.ddde+xx"
  const auto end =
      std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific)
          .ptr;
  const std::string_view all(text.data(), static_cast<std::size_t>(end - text.data()));
  const std::size_t e = all.find('e');
  Decimal decimal;
  for (const char c : all.substr(0, e)) {
    if (c != '.') decimal.digits += c;
  }
  const char* exponent = all.data() + e + 1;
  if (*exponent == '+') ++exponent;
  std::from_chars(exponent, end, decimal.point);
  ++decimal.point;
  return decimal;
}

// Up to 15 digits before the point and up to three zeros after it; others with an exponent.
std::string text_of(const Decimal& decimal) {
  const std::string_view digits = decimal.digits;
  const int count = static_cast<int>(digits.size());
  const int point = decimal.point;
  if (point > 15 || point <= -4) {
    const char* const mark = count > 1 ? "." : "";
    return fmt::format("{}{}{}e{:+03}", digits[0], mark, digits.substr(1), point - 1);
  }
  if (point <= 0) return fmt::format("0.{:0>{}}", digits, count - point);
  if (point >= count) return fmt::format("{:0<{}}.0", digits, point);
  const auto whole = static_cast<std::size_t>(point);
  return fmt::format("{}.{}", digits.substr(0, whole), digits.substr(whole));
}

}  // namespace

void JsonWriter::key(std::string_view name) {
  begin_value();
  append_text(name);
  out_ += ": ";
  follows_key_ = true;
}

void JsonWriter::value(std::nullptr_t) {
  begin_value();
  out_ += "null";
}

void JsonWriter::value(bool truth) {
  begin_value();
  out_ += truth ? "true" : "false";
}

void JsonWriter::value(std::string_view utf8) {
  begin_value();
  append_text(utf8);
}

void JsonWriter::value(std::u16string_view text) { value(standalone::to_utf8(text)); }

void JsonWriter::value(double number) {
  if (!std::isfinite(number)) return value(nullptr);
  begin_value();
  if (std::signbit(number)) out_ += '-';
  out_ += number == 0 ? "0.0" : text_of(shortest_decimal(std::fabs(number)));
}

void JsonWriter::begin(char bracket) {
  begin_value();
  out_ += bracket;
  ++depth_;
  is_first_ = true;
  is_open_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!is_first_) begin_line();
  out_ += bracket;
  is_first_ = false;
}

void JsonWriter::begin_value() {
  if (follows_key_) {
    follows_key_ = false;
    return;
  }
  if (!is_open_) {
    out_.append(2 * depth_, ' ');
    return;
  }
  if (!is_first_) out_ += ',';
  begin_line();
  is_first_ = false;
}

void JsonWriter::begin_line() {
  out_ += '\n';
  out_.append(2 * depth_, ' ');
}

void JsonWriter::append_text(std::string_view utf8) {
  out_ += '"';
  while (!utf8.empty()) {
    const Utf8Character c = first_character(utf8);
    if (!c.is_well_formed) {
      out_ += kReplacementUtf8;
    } else if (is_escaped(c.code)) {
      append_escaped(out_, c.code);
    } else {
      out_ += utf8.substr(0, c.length);
    }
    utf8.remove_prefix(c.length);
  }
  out_ += '"';
}

}  // namespace textio::tool
