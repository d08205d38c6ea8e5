#include <vltextstream/strategy/field_rules.hpp>

#include <algorithm>

namespace textio {
namespace {

char16_t first_unit(const std::u16string& marker) { return marker.empty() ? u'\0' : marker[0]; }

}  // namespace

FieldRules::FieldRules(const std::vector<std::u16string>& delimiter_list,
                       const std::vector<std::u16string>& line_ending_list)
    : quotes({&quote, 1}),
      delimiters(get_or_create_delim(delimiter_list)),
      line_endings(get_or_create_delim(line_ending_list)),
      stop_chars(make_stop_chars(delimiter_list, line_ending_list)),
      stops(stop_chars) {}

FieldRules FieldRules::with_quote(char16_t other) const {
  FieldRules rules = *this;
  rules.quote = other;
  rules.quotes = CodeUnitSet({&other, 1});
  return rules;
}

std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b) {
  std::u16string units;
  units.reserve(a.size() + b.size());
  for (const std::u16string& marker : a) units.push_back(first_unit(marker));
  for (const std::u16string& marker : b) units.push_back(first_unit(marker));
  std::sort(units.begin(), units.end());
  units.erase(std::unique(units.begin(), units.end()), units.end());
  units.shrink_to_fit();  // many markers may share a few first code units
  return units;
}

}  // namespace textio
