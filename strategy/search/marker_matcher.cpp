#include <vltextstream/strategy/search/marker_matcher.hpp>

#include <algorithm>
#include <utility>

namespace textio {
namespace {

// At most this many code units are compared at each position of a text without an index.
constexpr std::size_t kFewUnits = 32;

bool is_large_set(const DelimiterSet& set) {
  std::size_t units = 0;
  for (const std::u16string& marker : set.strings) {
    units += marker.size() + 1;
    if (units > kFewUnits) return !set.is_single_char;
  }
  return false;
}

CodeUnitSet first_units_of(const DelimiterSet& set) {
  if (set.is_single_char) return CodeUnitSet({set.single_char, 1});
  if (set.first_chars_begin == nullptr) return {};
  const auto count = static_cast<std::size_t>(set.first_chars_end - set.first_chars_begin);
  return CodeUnitSet({set.first_chars_begin, count});
}

}  // namespace

MarkerMatcher::MarkerMatcher(std::shared_ptr<const DelimiterSet> set)
    : set_(std::move(set)), first_units_(first_units_of(*set_)), is_large_(is_large_set(*set_)) {}

std::size_t MarkerMatcher::longest() const {
  std::size_t longest = 0;
  for (const std::u16string& marker : set_->strings) longest = std::max(longest, marker.size());
  return longest;
}

// Markers are short: a plain loop is faster than a library comparison with its fixed overhead.
std::size_t MarkerMatcher::compare_at(const Field& text, std::size_t i) const {
  const std::size_t rest = text.length - std::min(i, text.length);
  const char16_t* const place = text.data + i;
  for (const std::u16string& marker : set_->strings) {
    const std::size_t size = marker.size();
    if (size > rest) continue;
    const char16_t* const units = marker.data();
    std::size_t same = 0;
    while (same < size && place[same] == units[same]) ++same;
    if (same == size) return size;
  }
  return 0;
}

}  // namespace textio
