#include <vltextstream/strategy/sampling/trial.hpp>

#include <utility>

namespace textio {

Trial::Trial(Strategy& strategy, DrawnSample& sample)
    : strategy_(strategy),
      sample_(sample),
      cut_(strategy, sample),
      score_(strategy.score(cut_.counts())) {}

void Trial::settle() {
  std::vector<DatatypeCode> classes;
  if (score_.has_columns) {
    classes = classify_columns(cut_.counts(), cut_, strategy_.scope(score_, sample_.found.text));
  }
  strategy_.settle(score_, std::move(classes), cut_.end_column());
}

}  // namespace textio
