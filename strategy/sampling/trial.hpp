// Trial: a strategy tried on a sample.
//
//   Trial trial(strategy, sample);
//   if (is_promising(trial.score().valuation)) trial.settle();
//
// The lines are counted and scored once; the columns are classified only if the trial is settled.
// Until then the strategy stays as it is.
//
// Ownership  refers to the strategy and the sample.
// Errors     std::bad_alloc, and what the host or a strategy from outside throws; the strategy is
//            then what it was before.
#pragma once

#include <vltextstream/scoring/count_score.hpp>
#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/strategy/sampling/sample_cut.hpp>
#include <vltextstream/strategy/sampling/sampler.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

class Trial {
 public:
  // Takes the numbers of fields out of the sample.
  Trial(Strategy& strategy, DrawnSample& sample);

  const LineCounts& counts() const { return cut_.counts(); }
  LineCounts take_counts() { return cut_.take_counts(); }
  const CountScore& score() const { return score_; }

  // Classifies the columns and makes the scores those of the strategy.
  void settle();

 private:
  Strategy& strategy_;
  const DrawnSample& sample_;
  SampleCut cut_;
  CountScore score_;
};

}  // namespace textio
