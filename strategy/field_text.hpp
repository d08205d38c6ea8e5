// Basic operations on the text of a field.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <vltextstream/strategy/field.hpp>

namespace textio {

// Marks the end of the valid text. A read past the end also gives this value.
inline constexpr char16_t kEndMark = 0xFFFF;

inline std::u16string_view view_of(const Field& text) { return {text.data, text.length}; }

// The code units from `begin` up to `end`. A position past the end of the text means its end.
inline Field slice(const Field& text, std::size_t begin, std::size_t end) {
  const std::size_t from = std::min(begin, text.length);
  return {text.data + from, std::max(from, std::min(end, text.length)) - from};
}

// Whether the text ends at `i` or before.
inline bool ends_at(const Field& text, std::size_t i) {
  return i >= text.length || text.data[i] == kEndMark;
}

// 'a' to 'z' in upper case; any other code unit unchanged.
inline char16_t fold_ascii(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

inline bool contains(std::u16string_view set, char16_t unit) { return set.find(unit) != set.npos; }

// The first position at or after `i` whose code unit is not in `set`; the length of the text if
// there is none.
inline std::size_t find_first_not_of(const Field& text, std::size_t i, std::u16string_view set) {
  while (i < text.length && contains(set, text.data[i])) ++i;
  return i;
}

}  // namespace textio
