// UTF-8 without another library. Ill-formed input becomes U+FFFD.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace textio {

inline constexpr char32_t kReplacement = 0xFFFD;

// The first code point of a text, and its length in code units.
struct CodePoint {
  char32_t value;
  std::size_t length;
};

constexpr bool is_surrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }

// `text` must not be empty. An unpaired surrogate gives one U+FFFD.
inline CodePoint first_code_point(std::u16string_view text) {
  const char32_t lead = text[0];
  if (!is_surrogate(lead)) return {lead, 1};
  const bool is_pair = lead < 0xDC00 && text.size() > 1 && text[1] >= 0xDC00 && text[1] <= 0xDFFF;
  if (!is_pair) return {kReplacement, 1};
  return {0x10000 + ((lead - 0xD800) << 10) + (text[1] - char32_t{0xDC00}), 2};
}

// Appends a code point, which must not be a surrogate.
inline void append_utf8(std::string& out, char32_t code_point) {
  const auto put = [&out](char32_t byte) { out.push_back(static_cast<char>(byte)); };
  const auto put_trail = [&](unsigned shift) { put(0x80 | ((code_point >> shift) & 0x3F)); };
  if (code_point < 0x80) {
    put(code_point);
  } else if (code_point < 0x800) {
    put(0xC0 | (code_point >> 6));
    put_trail(0);
  } else if (code_point < 0x10000) {
    put(0xE0 | (code_point >> 12));
    put_trail(6);
    put_trail(0);
  } else {
    put(0xF0 | (code_point >> 18));
    put_trail(12);
    put_trail(6);
    put_trail(0);
  }
}

// Surrogate pairs are joined. An unpaired surrogate becomes U+FFFD.
inline std::string to_utf8_lossy(std::u16string_view text) {
  std::string utf8;
  while (!text.empty()) {
    const CodePoint next = first_code_point(text);
    append_utf8(utf8, next.value);
    text.remove_prefix(next.length);
  }
  return utf8;
}

// The code points of UTF-8 text. Each byte that is not part of a well-formed sequence gives one
// U+FFFD.
std::u32string code_points_of(std::string_view utf8);

// Whether a code point has no visible form, could control a terminal, or changes the direction of
// the text around it: control characters, line separators, direction marks and invisible format
// characters.
bool is_unprintable(char32_t code_point);

}  // namespace textio
