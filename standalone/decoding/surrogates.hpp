// Surrogates: the code units of characters outside the Basic Multilingual Plane.
#pragma once

namespace textio::standalone {

constexpr bool is_surrogate(char32_t c) { return c >= 0xD800 && c <= 0xDFFF; }
constexpr bool is_high_surrogate(char32_t c) { return c >= 0xD800 && c <= 0xDBFF; }
constexpr bool is_low_surrogate(char32_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// The surrogates of a character from U+10000 to U+10FFFF.
constexpr char16_t high_surrogate(char32_t c) {
  return static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
}
constexpr char16_t low_surrogate(char32_t c) { return static_cast<char16_t>(0xDC00 + (c & 0x3FF)); }

}  // namespace textio::standalone
