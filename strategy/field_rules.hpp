// FieldRules: what ends a field, prepared for scanning.
//
// Ownership  shares the marker sets. Immutable, so all scans of a strategy share one object.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/strategy/search/code_unit_set.hpp>
#include <vltextstream/strategy/search/marker_matcher.hpp>

namespace textio {

struct FieldRules {
  FieldRules(const std::vector<std::u16string>& delimiter_list,
             const std::vector<std::u16string>& line_ending_list);

  // The same rules with another quote.
  FieldRules with_quote(char16_t other) const;

  char16_t quote = u'"';
  CodeUnitSet quotes;
  MarkerMatcher delimiters;
  MarkerMatcher line_endings;

  // The code units that a delimiter or a line ending may begin with.
  std::u16string stop_chars;
  CodeUnitSet stops;
};

// The distinct first code units of all markers of both lists, in ascending order. An empty marker
// counts as U+0000.
std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b);

}  // namespace textio
