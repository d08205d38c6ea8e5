// Digits, letters and case, as the analysis of cells needs them.
//
// Units    one code unit for each character.
// Cost     a comparison or two for ASCII, a look-up of ICU's properties for the rest.
// Threads  all functions may run at the same time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <unicode/uchar.h>

namespace textio::columns {

inline constexpr int kNoDigit = -1;
inline constexpr char16_t kMinusSign = 0x2212;

// The value of a decimal digit of any script; kNoDigit for all else.
inline int digit_value(char16_t unit) {
  if (unit < 0x80) return unit >= u'0' && unit <= u'9' ? unit - u'0' : kNoDigit;
  return u_charDigitValue(unit);
}

inline bool is_digit(char16_t unit) { return digit_value(unit) != kNoDigit; }

inline bool is_letter(char16_t unit) {
  if (unit < 0x80) return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z');
  return u_isalpha(unit) != 0;
}

inline bool is_minus(char16_t unit) { return unit == u'-' || unit == kMinusSign; }

inline bool is_sign(char16_t unit) { return unit == u'+' || is_minus(unit); }

// The blank of the keyboard, and those that do not break a line or are narrow.
inline bool is_any_blank(char16_t unit) {
  return unit == u' ' || unit == 0x00A0 || unit == 0x202F || unit == 0x2009;
}

inline char16_t folded(char16_t unit) {
  if (unit < 0x80) {
    const bool is_capital = unit >= u'A' && unit <= u'Z';
    return is_capital ? static_cast<char16_t>(unit + 0x20) : unit;
  }
  return static_cast<char16_t>(u_foldCase(unit, U_FOLD_CASE_DEFAULT));
}

inline std::u16string folded(std::u16string_view text) {
  std::u16string out(text);
  for (char16_t& unit : out) unit = folded(unit);
  return out;
}

// Whether `text` is `word` in any case; `word` is folded.
inline bool is_word(std::u16string_view text, std::u16string_view word) {
  return std::equal(text.begin(), text.end(), word.begin(), word.end(),
                    [](char16_t a, char16_t b) { return folded(a) == b; });
}

}  // namespace textio::columns
