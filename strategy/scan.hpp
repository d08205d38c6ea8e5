// The few questions that every scan over a text asks.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/marker_matcher.hpp>

namespace textio {

// Marks the end of the valid text; also what a scan sees past the end.
inline constexpr char16_t kEndMark = 0xFFFF;

inline std::u16string_view view_of(const Field& text) { return {text.data, text.length}; }

// The units from `begin` up to `end`; both may lie past the end of the text and then mean its end.
inline Field slice(const Field& text, std::size_t begin, std::size_t end) {
  const std::size_t from = std::min(begin, text.length);
  return {text.data + from, std::max(from, std::min(end, text.length)) - from};
}

// Whether no text is left at `i`.
inline bool ends_at(const Field& text, std::size_t i) {
  return i >= text.length || text.data[i] == kEndMark;
}

// 'a' to 'z' in upper case; no other unit changes.
inline char16_t fold_ascii(char16_t unit) {
  return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 32) : unit;
}

// A line that begins with one of these need not end where a line ending stands behind it: a quote
// opens a field that may hold line endings. In front of aligned fields blanks are passed over.
inline constexpr std::u16string_view kLineOpeners = u"\"";
inline constexpr std::u16string_view kAlignedLineOpeners = u"\" \t";

inline bool contains(std::u16string_view set, char16_t unit) { return set.find(unit) != set.npos; }

// The first position from `i` on whose unit is in `set`, the text's length when there is none; `i`
// lies in the text or at its end.
inline std::size_t find_first_of(const Field& text, std::size_t i, std::u16string_view set) {
  while (i < text.length && !contains(set, text.data[i])) ++i;
  return i;
}

// The same for a set of which `bits` are made if it is a long one.
inline std::size_t find_first_of(const Field& text, std::size_t i, std::u16string_view set,
                                 const UnitBits* bits) {
  if (!bits) return find_first_of(text, i, set);
  while (i < text.length && !(*bits)[text.data[i]]) ++i;
  return i;
}

// The first position from `i` on whose unit is not in `set`, the text's length when there is none.
inline std::size_t find_first_not_of(const Field& text, std::size_t i, std::u16string_view set) {
  while (i < text.length && contains(set, text.data[i])) ++i;
  return i;
}

// Length of the first marker of `set` that stands at `i`, 0 when none does. An empty marker ends
// the search. One comparison after the other; see strategy/marker_matcher.hpp.
std::size_t match_length(const DelimiterSet& set, const Field& text, std::size_t i);

// Markers are short: a plain loop is faster than a comparison that prepares for long ones.
inline bool starts_with(std::u16string_view text, std::u16string_view marker) {
  if (marker.size() > text.size()) return false;
  std::size_t same = 0;
  while (same < marker.size() && text[same] == marker[same]) ++same;
  return same == marker.size();
}

// The same as match_length for a place at which one of the first characters stands.
inline std::size_t match_marker(const DelimiterSet& set, const Field& text, std::size_t i) {
  const std::size_t from = std::min(i, text.length);
  const std::u16string_view rest(text.data + from, text.length - from);
  for (const std::u16string& marker : set.strings) {
    if (starts_with(rest, marker)) return marker.size();
  }
  return 0;
}

// The distinct first characters of all markers of both lists, ascending.
std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b);

// Takes every `unit` out of `chars` by moving the later characters forward without shortening the
// text: the last places keep the characters that stood there. So a unit in the last place stays.
void remove_in_place(std::u16string& chars, char16_t unit);

}  // namespace textio
