// Each filter finds the best survivor, the earliest one on ties, and keeps those that are as good.
// All comparisons are exact. A comparison with NaN keeps no survivor, and then the filter keeps all
// of them.
#include <algorithm>
#include <iterator>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/strategy/delimiter_priority.hpp>

namespace textio::detection {
namespace {

using Survivors = StrategySelector::Survivors;
using Valuations = StrategySelector::Valuations;

// Ranks below this are those of the characters of the priority list.
constexpr auto kPriorityCount = static_cast<double>(kDelimiterPriority.size());

template <typename Criterion>
Survivors keep_if_any(const Survivors& survivors, Criterion meets) {
  if (std::none_of(survivors.begin(), survivors.end(), meets)) return survivors;
  Survivors kept;
  kept.reserve(survivors.size());
  std::copy_if(survivors.begin(), survivors.end(), std::back_inserter(kept), meets);
  return kept;
}

// The earliest survivor that no other one beats. `survivors` must not be empty.
template <typename Better>
unsigned long best_of(const Survivors& survivors, Better better) {
  unsigned long best = survivors.front();
  for (const unsigned long i : survivors) {
    if (better(i, best)) best = i;
  }
  return best;
}

std::int32_t as_signed(std::uint32_t count) { return static_cast<std::int32_t>(count); }

// A date with a time is the strongest sign of a correct cut, followed by dates and numbers. Text is
// the weakest.
double class_value(const StrategyValuation& v) {
  const auto text_columns =
      as_signed(v.typed_columns - v.numeric_columns - v.date_columns - v.datetime_columns);
  return 25.0 * as_signed(v.datetime_columns) + 10.0 * as_signed(v.date_columns) +
         3.0 * as_signed(v.numeric_columns) + text_columns;
}

double share_of_typed_columns(const StrategyValuation& v) {
  return static_cast<double>(as_signed(v.typed_columns)) / static_cast<double>(v.num_variables);
}

// The survivors whose `value` is the largest.
template <typename Value>
Survivors keep_largest(const Survivors& survivors, Value value) {
  if (survivors.empty()) return survivors;
  const unsigned long best =
      best_of(survivors, [&](unsigned long a, unsigned long b) { return value(a) > value(b); });
  const double most = value(best);
  return keep_if_any(survivors, [&](unsigned long i) { return value(i) == most; });
}

}  // namespace

Survivors StrategySelector::reduce_by_numvariables(const Survivors& survivors,
                                                   const Valuations& valuations) const {
  return keep_if_any(survivors, [&](unsigned long i) {
    return valuations[i].num_variables == options_->num_variables;
  });
}

Survivors StrategySelector::reduce_by_dates(const Survivors& survivors,
                                            const Valuations& valuations) const {
  return keep_if_any(survivors, [&](unsigned long i) {
    return as_signed(valuations[i].date_columns) >= 1 ||
           as_signed(valuations[i].datetime_columns) >= 1;
  });
}

Survivors StrategySelector::reduce_by_variation(const Survivors& survivors,
                                                const Valuations& valuations) const {
  if (survivors.empty()) return survivors;
  const unsigned long best = best_of(survivors, [&](unsigned long a, unsigned long b) {
    return valuations[a].data_variation < valuations[b].data_variation;
  });
  const double least = valuations[best].data_variation;
  const double by_lines = 0.001 * static_cast<double>(valuations[best].num_lines);
  const double tolerance = 0.1 * least > by_lines ? 0.1 * least : by_lines;
  return keep_if_any(
      survivors, [&](unsigned long i) { return valuations[i].data_variation - least < tolerance; });
}

Survivors StrategySelector::reduce_by_class_value(const Survivors& survivors,
                                                  const Valuations& valuations) const {
  return keep_largest(survivors, [&](unsigned long i) { return class_value(valuations[i]); });
}

Survivors StrategySelector::reduce_by_header_lines(
    const Survivors& survivors, const Valuations& valuations,
    const std::vector<std::shared_ptr<Strategy>>& candidates) const {
  // Only the first survivor decides whether the filter applies.
  if (survivors.empty() || !detect_header_lines_ ||
      valuations[survivors.front()].data_variation != 0.0) {
    return survivors;
  }
  const auto lines = [&](unsigned long i) { return candidates[i]->header_lines(); };
  const unsigned long fewest = lines(
      best_of(survivors, [&](unsigned long a, unsigned long b) { return lines(a) < lines(b); }));
  return keep_if_any(survivors, [&](unsigned long i) {
    return lines(i) == fewest && valuations[i].data_variation == 0.0;
  });
}

Survivors StrategySelector::reduce_by_non_empty(const Survivors& survivors,
                                                const Valuations& valuations) const {
  return keep_largest(survivors,
                      [&](unsigned long i) { return share_of_typed_columns(valuations[i]); });
}

Survivors StrategySelector::reduce_by_priors_rank(const Survivors& survivors,
                                                  const Valuations& valuations) const {
  if (survivors.empty()) return survivors;
  const unsigned long best = best_of(survivors, [&](unsigned long a, unsigned long b) {
    return valuations[a].priors_rank < valuations[b].priors_rank;
  });
  if (valuations[best].priors_rank < kPriorityCount) return {best};
  return survivors;
}

}  // namespace textio::detection
