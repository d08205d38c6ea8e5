#include <vltextstream/strategy/scan.hpp>

#include <algorithm>

namespace textio {
namespace {

char16_t first_unit(const std::u16string& marker) { return marker.empty() ? u'\0' : marker[0]; }

}  // namespace

std::size_t match_length(const DelimiterSet& set, const Field& text, std::size_t i) {
  const char16_t unit = i < text.length ? text.data[i] : kEndMark;
  if (set.is_single_char) return unit == *set.single_char ? 1 : 0;
  return begins_with(set, unit) ? match_marker(set, text, i) : 0;
}

std::u16string make_stop_chars(const std::vector<std::u16string>& a,
                               const std::vector<std::u16string>& b) {
  std::u16string units;
  units.reserve(a.size() + b.size());
  for (const std::u16string& marker : a) units.push_back(first_unit(marker));
  for (const std::u16string& marker : b) units.push_back(first_unit(marker));
  std::sort(units.begin(), units.end());
  units.erase(std::unique(units.begin(), units.end()), units.end());
  units.shrink_to_fit();  // of many markers few may begin differently
  return units;
}

void remove_in_place(std::u16string& chars, char16_t unit) {
  (void)std::remove(chars.begin(), chars.end(), unit);
}

}  // namespace textio
