#include <vltextstream/strategy/search/code_unit_set.hpp>

#include <algorithm>

namespace textio {

CodeUnitSet::CodeUnitSet(std::u16string_view units) {
  for (const char16_t unit : units) {
    if (unit < 64) {
      low_ |= std::uint64_t{1} << unit;
    } else {
      has_high_ = true;
    }
  }
  if (units.size() > kMostListed) {
    const auto table = std::make_shared<Table>();
    for (const char16_t unit : units) table->set(unit);
    table_ = table;
    return;
  }
  num_listed_ = units.size();
  std::copy(units.begin(), units.end(), listed_);
  if (!units.empty()) std::fill(listed_ + num_listed_, listed_ + kMostListed, units.back());
}

}  // namespace textio
