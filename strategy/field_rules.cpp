#include <vltextstream/strategy/field_rules.hpp>

#include <algorithm>

namespace textio {
namespace {

char16_t first_unit(const std::u16string& marker) { return marker.empty() ? u'\0' : marker[0]; }

}  // namespace

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
