// Few short markers are compared where one of their first units stands: that is a constant. Of many
// or long ones the first units are a table of bits, and the comparisons are left to an index where
// a text stands still.
#include <vltextstream/strategy/marker_matcher.hpp>

#include <algorithm>

#include <vltextstream/strategy/marker_index.hpp>
#include <vltextstream/strategy/scan.hpp>

namespace textio {
namespace {

// So many units are compared, or searched for one of them, at each place of a text.
constexpr std::size_t kFewUnits = 32;

// Whether comparing all markers takes more than a few units.
bool are_many(const DelimiterSet& set) {
  std::size_t units = 0;
  for (const std::u16string& marker : set.strings) {
    units += marker.size() + 1;
    if (units > kFewUnits) return true;
  }
  return false;
}

std::shared_ptr<const UnitBits> bits_of(const char16_t* begin, const char16_t* end) {
  const auto bits = std::make_shared<UnitBits>();
  for (const char16_t* unit = begin; unit != end; ++unit) bits->set(*unit);
  return bits;
}

}  // namespace

std::shared_ptr<const UnitBits> make_unit_bits(std::u16string_view units) {
  if (units.size() <= kFewUnits) return nullptr;
  return bits_of(units.data(), units.data() + units.size());
}

MarkerMatcher::MarkerMatcher(std::shared_ptr<const DelimiterSet> set) : set_(std::move(set)) {
  if (!set_->is_single_char && are_many(*set_)) {
    first_units_ = bits_of(set_->first_chars_begin, set_->first_chars_end);
  }
}

// One of the first units stands at `i`. It may lie behind the end of the text, where none of many
// markers fits.
std::size_t MarkerMatcher::length_of_several_at(const Field& text, std::size_t i) const {
  if (index_ && i < text.length && index_->is_bound_to(text)) return index_->length_at(i);
  return match_marker(*set_, text, i);
}

}  // namespace textio
