// SampleKeeper: draws the samples of one selection and bounds the memory that they take.
//
//   SampleKeeper samples(text, 100);
//   samples.draw(*strategy);
//   samples.value(*strategy, judge);
//   samples.put_away(*strategy);         // strategy->lines() may be empty from here on ...
//   samples.bring_back(*strategy);       // ... to here
//
// A sample may have as many lines as its text has units, and there may be 57 candidates. The sample
// of a candidate that waits for the end of the selection is given up when the ones kept before hold
// too many lines; the winner's is drawn a second time.
//
// Ownership  refers to the text, not to the strategies.
// Errors     std::bad_alloc passes, and what the host throws.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio::detection {

class SampleKeeper {
 public:
  // The most lines that samples hold which have been put away, unless fewer are given.
  static constexpr std::size_t kMostLines = 2'097'152;

  SampleKeeper(const Field& text, unsigned long num_lines, std::size_t most_lines = kMostLines)
      : text_(text), num_lines_(num_lines), room_(most_lines) {}

  // Samples the text as populate_fields does, without making the copy that it returns.
  void draw(Strategy& strategy) { draw(strategy, num_lines_); }
  void draw(Strategy& strategy, unsigned long num_lines);

  // Values a strategy. One that turns out not to be wanted stays without classes.
  const StrategyValuation& value(
      Strategy& strategy, const std::function<bool(const StrategyValuation&)>& is_wanted) const;

  // Keeps the sample of a valued strategy where it is, or gives it up when there is no room. The
  // strategy must live as long as this object.
  void put_away(Strategy& strategy);

  // Draws the sample again if it was given up.
  void bring_back(Strategy& strategy) const;

 private:
  struct GivenUp {
    const Strategy* strategy;
    std::size_t lines;
  };

  static bool can_be_drawn_again(const Strategy& strategy);

  Field text_;
  unsigned long num_lines_;
  std::size_t room_;  // for so many lines more

  // As many as the last sample had. The lines of one text are about as many for all strategies, so
  // that a list of this length seldom grows or has room to give back.
  std::size_t likely_lines_ = 16'384;
  std::vector<GivenUp> given_up_;
};

}  // namespace textio::detection
