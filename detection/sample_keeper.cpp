#include <vltextstream/detection/sample_keeper.hpp>

#include <algorithm>
#include <limits>
#include <vector>

#include <vltextstream/strategy/sample_cut.hpp>

namespace textio::detection {

void SampleKeeper::draw(Strategy& strategy, unsigned long num_lines) {
  constexpr auto kNoLimit = std::numeric_limits<std::size_t>::max();
  strategy.counted_fields_.clear();
  const bool will_be_valued = !strategy.valuation_done_;
  strategy.lines_ = strategy.sampled_lines(text_, num_lines, kNoLimit, likely_lines_,
                                           will_be_valued ? &strategy.counted_fields_ : nullptr);
  strategy.text_ = text_;
  likely_lines_ = strategy.lines_.size();
}

const StrategyValuation& SampleKeeper::value(
    Strategy& strategy, const std::function<bool(const StrategyValuation&)>& is_wanted) const {
  if (!strategy.valuation_done_) strategy.value(is_wanted);
  return strategy.valuation_;
}

void SampleKeeper::put_away(Strategy& strategy) {
  const std::size_t lines = strategy.lines_.size();
  if (lines <= room_ || !can_be_drawn_again(strategy)) {
    room_ -= std::min(lines, room_);
    return;
  }
  given_up_.push_back({&strategy, lines});
  strategy.lines_ = std::vector<Field>();
  strategy.field_counts_ = std::vector<std::size_t>();
  strategy.counted_fields_ = std::vector<std::size_t>();
}

// Where the sample ended before, whether for want of text or of a budget, it ends again.
void SampleKeeper::bring_back(Strategy& strategy) const {
  const auto sample = std::find_if(given_up_.begin(), given_up_.end(),
                                   [&](const GivenUp& s) { return s.strategy == &strategy; });
  if (sample == given_up_.end()) return;
  constexpr auto kNoBudget = std::numeric_limits<unsigned long>::max();
  strategy.counted_fields_.clear();
  strategy.lines_ = strategy.sampled_lines(text_, kNoBudget, sample->lines, sample->lines,
                                           &strategy.counted_fields_);
  strategy.field_counts_ = SampleCut(strategy).take_counts();
}

// What a fixed-width strategy cuts depends on what it has cut before. A sample that was drawn after
// the valuation is not the one that its counts are of.
bool SampleKeeper::can_be_drawn_again(const Strategy& strategy) {
  return strategy.mode() != Strategy::kFixedWidth &&
         strategy.field_counts_.size() == strategy.lines_.size();
}

}  // namespace textio::detection
