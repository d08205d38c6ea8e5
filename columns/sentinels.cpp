#include <vltextstream/columns/sentinels.hpp>

#include <algorithm>
#include <cmath>
#include <iterator>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

constexpr std::size_t kMostCandidates = 16;
constexpr std::size_t kLeastOthers = 3;
constexpr std::size_t kLeastOthersOfOne = 10;
constexpr double kFarther = 10;

// "-999", "9999.9", "-99.00": nines before the mark, nines or zeros after it. A number without a
// minus sign needs three nines, for 99 is a common value.
bool is_nines(View text) {
  std::size_t nines = 0;
  bool has_mark = false;
  for (const char16_t unit : text) {
    const int digit = digit_value(unit);
    if (digit == 9) ++nines;
    if (unit == u'.' || unit == u',') has_mark = true;
    const bool is_other_digit = digit != kNoDigit && digit != 9 && !(digit == 0 && has_mark);
    if (is_other_digit || is_letter(unit)) return false;
  }
  const bool is_negative = !text.empty() && is_minus(text.front());
  return nines >= (is_negative ? 2U : 3U);
}

}  // namespace

bool is_customary_sentinel(View text, double value) {
  constexpr double kKnown[] = {-999.25, -32768, 1e20, 1e30};
  constexpr double kFillValue = 9.96921e36;
  if (is_nines(text)) return true;
  const bool is_small = value > -999 && value < 1e19;
  if (is_small) return false;
  const bool is_known = std::find(std::begin(kKnown), std::end(kKnown), value) != std::end(kKnown);
  return is_known || std::abs(value / kFillValue - 1) < 1e-5;
}

void SentinelSearch::add(View text, double value) {
  if (!is_customary_sentinel(text, value)) {
    least_ = others_ == 0 ? value : std::min(least_, value);
    most_ = others_ == 0 ? value : std::max(most_, value);
    ++others_;
    return;
  }
  const auto found = std::find_if(candidates_.begin(), candidates_.end(),
                                  [text](const Candidate& each) { return each.text == text; });
  if (found != candidates_.end()) {
    ++found->count;
  } else if (candidates_.size() < kMostCandidates) {
    candidates_.push_back({std::u16string(text), value, 1});
  }
}

bool SentinelSearch::is_sentinel(View text) const {
  const auto found = std::find_if(candidates_.begin(), candidates_.end(),
                                  [text](const Candidate& each) { return each.text == text; });
  return found != candidates_.end() && stands_off(*found);
}

bool SentinelSearch::stands_off(const Candidate& candidate) const {
  if (others_ < kLeastOthers) return false;
  const double distance = std::max(least_ - candidate.value, candidate.value - most_);
  const double spread = std::max({most_ - least_, std::abs(least_), std::abs(most_)});
  if (distance <= 0 || distance < spread) return false;
  if (candidate.value < 0 || candidate.count >= 2) return true;
  return others_ >= kLeastOthersOfOne && distance >= kFarther * spread;
}

}  // namespace textio::columns
