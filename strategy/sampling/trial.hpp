// Trial: one strategy tried on a sample.
//
//   Trial trial(strategy, sample);
//   if (is_promising(trial.score().valuation)) trial.settle();
//
// The fields of the lines are counted and scored once. The columns are classified only when the
// trial is settled; until then the strategy does not change.
//
// Ownership  refers to the strategy and the sample.
// Errors     std::bad_alloc, and what the host or a strategy from outside throws. The strategy is
//            then unchanged.
#pragma once

#include <vltextstream/scoring/count_score.hpp>
#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/strategy/sampling/sample_cut.hpp>
#include <vltextstream/strategy/sampling/sampler.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class Trial {
 public:
  // Moves the numbers of fields out of the sample.
  Trial(Strategy& strategy, DrawnSample& sample);

  const LineCounts& counts() const { return cut_.counts(); }
  LineCounts take_counts() { return cut_.take_counts(); }
  const CountScore& score() const { return score_; }

  // Classifies the columns, and stores the scores in the strategy.
  void settle();

 private:
  Strategy& strategy_;
  const DrawnSample& sample_;
  SampleCut cut_;
  CountScore score_;
};

}  // namespace textio
