// FieldRules: what ends a field, prepared for scanning.
//
// Ownership  shares the marker sets. Immutable, so all scans of a strategy share one object.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <vltextstream/host/delimiter_set.hpp>
#include <vltextstream/strategy/search/code_unit_set.hpp>
#include <vltextstream/strategy/search/marker_matcher.hpp>

namespace textio {

struct FieldRules {
  FieldRules(char16_t quote_char, std::u16string_view stop_chars,
             std::shared_ptr<const DelimiterSet> delimiter_set,
             std::shared_ptr<const DelimiterSet> line_ending_set)
      : quote(quote_char),
        quotes(std::u16string_view(&quote_char, 1)),
        stops(stop_chars),
        delimiters(std::move(delimiter_set)),
        line_endings(std::move(line_ending_set)) {}

  char16_t quote;
  CodeUnitSet quotes;
  CodeUnitSet stops;  // the code units that a delimiter or a line ending may begin with
  MarkerMatcher delimiters;
  MarkerMatcher line_endings;
};

// The distinct first code units of all markers of both lists, in ascending order. An empty marker
// counts as U+0000.
std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b);

}  // namespace textio
