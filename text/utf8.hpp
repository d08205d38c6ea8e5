// UTF-8, and characters that must not be shown as they are. Both libraries and the tool use this
// header, which has no source of its own.
//
//   first_character("\xC3\xA9t\xC3\xA9").code      // U'\u00E9'
//   to_utf8_lossy(u"\u00E9t\u00E9")                // "\xC3\xA9t\xC3\xA9"
//
// Errors  std::bad_alloc; no text is refused: what is ill-formed becomes U+FFFD.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <string_view>

namespace textio {

inline constexpr char32_t kReplacement = 0xFFFD;
inline constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";

// One character of a UTF-8 text.
struct Utf8Character {
  char32_t code = 0;       // U+FFFD if ill-formed
  std::size_t length = 0;  // bytes; if ill-formed, those that could have begun a character
  bool is_well_formed = true;
};

// What may follow the first byte of a character.
struct Utf8Continuation {
  std::size_t count = 0;  // bytes; 0 if no character of several bytes begins with this byte
  unsigned char low = 0x80;
  unsigned char high = 0xBF;  // of the first of them; the others are 0x80 to 0xBF
};

// The narrower ranges exclude overlong forms, surrogates and values above U+10FFFF.
constexpr Utf8Continuation continuation_of(unsigned char lead) {
  if (lead < 0xC2 || lead > 0xF4) return {};
  if (lead < 0xE0) return {1};
  if (lead == 0xE0) return {2, 0xA0, 0xBF};
  if (lead == 0xED) return {2, 0x80, 0x9F};
  if (lead < 0xF0) return {2};
  if (lead == 0xF0) return {3, 0x90, 0xBF};
  if (lead == 0xF4) return {3, 0x80, 0x8F};
  return {3};
}

// The character that `bytes` begins with; it must not be empty.
constexpr Utf8Character first_character(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  if (lead < 0x80) return {lead, 1, true};
  const Utf8Continuation rest = continuation_of(lead);
  if (rest.count == 0) return {kReplacement, 1, false};
  char32_t code = lead & (0x3FU >> rest.count);
  for (std::size_t i = 1; i <= rest.count; ++i) {
    const unsigned byte = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    const bool fits = i == 1 ? byte >= rest.low && byte <= rest.high : (byte & 0xC0) == 0x80;
    if (!fits) return {kReplacement, i, false};
    code = (code << 6) | (byte & 0x3FU);
  }
  return {code, rest.count + 1, true};
}

// The character of `text` at `pos`, which is moved past it; for an unpaired surrogate, its own code.
constexpr char32_t next_character(std::u16string_view text, std::size_t& pos) {
  const char32_t first = text[pos++];
  const bool may_begin_pair = first >= 0xD800 && first <= 0xDBFF && pos < text.size();
  if (!may_begin_pair || text[pos] < 0xDC00 || text[pos] > 0xDFFF) return first;
  return 0x10000 + ((first - 0xD800) << 10) + (text[pos++] - 0xDC00U);
}

constexpr bool is_surrogate(char32_t code) { return code >= 0xD800 && code <= 0xDFFF; }

// Appends a character; U+FFFD for a surrogate.
inline void append_utf8(std::string& out, char32_t code) {
  if (is_surrogate(code)) code = kReplacement;
  const auto append_bits = [&](char32_t lead, unsigned shift) {
    out += static_cast<char>(lead | (code >> shift));
    while (shift > 0) {
      shift -= 6;
      out += static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
    }
  };
  if (code < 0x80) {
    append_bits(0, 0);
  } else if (code < 0x800) {
    append_bits(0xC0, 6);
  } else if (code < 0x10000) {
    append_bits(0xE0, 12);
  } else {
    append_bits(0xF0, 18);
  }
}

// Surrogate pairs are joined. An unpaired surrogate becomes U+FFFD.
inline std::string to_utf8_lossy(std::u16string_view text) {
  std::string utf8;
  for (std::size_t pos = 0; pos < text.size();) append_utf8(utf8, next_character(text, pos));
  return utf8;
}

// Whether a character could control a terminal, changes the direction of the text around it, or has
// no visible form: control characters, line separators, direction marks, invisible format
// characters, tags; and surrogates, which are no characters.
constexpr bool is_unprintable(char32_t code) {
  struct Range {
    char32_t first;
    char32_t last;
  };
  constexpr Range kUnprintable[] = {
      {0x0000, 0x001F},    // C0 controls
      {0x007F, 0x009F},    // delete and C1 controls
      {0x00AD, 0x00AD},    // soft hyphen
      {0x061C, 0x061C},    // Arabic letter mark
      {0x180E, 0x180E},    // Mongolian vowel separator
      {0x200B, 0x200B},    // zero width space
      {0x200E, 0x200F},    // direction marks
      {0x2028, 0x202E},    // line and paragraph separators, direction embeddings
      {0x2060, 0x2060},    // word joiner
      {0x2066, 0x206F},    // direction isolates, deprecated format characters
      {0xD800, 0xDFFF},    // surrogates
      {0xFEFF, 0xFEFF},    // zero width no-break space
      {0xE0000, 0xE007F},  // tags
  };
  return std::any_of(std::begin(kUnprintable), std::end(kUnprintable),
                     [code](Range range) { return code >= range.first && code <= range.last; });
}

}  // namespace textio
