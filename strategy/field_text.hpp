// The few questions that every scan over a text asks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <vltextstream/strategy/field.hpp>

namespace textio {

// Marks the end of the valid text; also what a scan sees past the end.
inline constexpr char16_t kEndMark = 0xFFFF;

inline std::u16string_view view_of(const Field& text) { return {text.data, text.length}; }

// The code units from `begin` up to `end`; a position past the end of the text means its end.
inline Field slice(const Field& text, std::size_t begin, std::size_t end) {
  const std::size_t from = std::min(begin, text.length);
  return {text.data + from, std::max(from, std::min(end, text.length)) - from};
}

// Whether no text is left at `i`.
inline bool ends_at(const Field& text, std::size_t i) {
  return i >= text.length || text.data[i] == kEndMark;
}

// The code unit at `i`; the end mark past the end.
inline char16_t code_unit_at(const Field& text, std::size_t i) {
  return i < text.length ? text.data[i] : kEndMark;
}

// 'a' to 'z' in upper case; no other code unit changes.
inline char16_t fold_ascii(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

inline bool contains(std::u16string_view set, char16_t unit) { return set.find(unit) != set.npos; }

// The first position from `i` on whose code unit is not in `set`, the text's length if there is
// none.
inline std::size_t find_first_not_of(const Field& text, std::size_t i, std::u16string_view set) {
  while (i < text.length && contains(set, text.data[i])) ++i;
  return i;
}

}  // namespace textio
