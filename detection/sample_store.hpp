// SampleStore: draws the samples of one selection and bounds the memory that they take.
//
//   SampleStore samples(text, 100);
//   Candidate candidate{strategy, samples.draw(*strategy)};
//   samples.put_away(candidate);       // candidate.sample may be empty from here on ...
//   samples.bring_back(candidate);     // ... to here
//
// A sample may have as many lines as its text has code units, and there may be 57 candidates. The
// sample of a candidate that waits for the end of the selection is dropped when the ones before hold
// too many lines; the winner's is then drawn again.
//
// Ownership  refers to the text.
// Errors     std::bad_alloc passes, and what the host throws.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/sampling/sampler.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio::detection {

// A strategy, its sample of the text, and the number of fields on each line as it was valued.
struct Candidate {
  std::shared_ptr<Strategy> strategy;
  DrawnSample sample;
  LineCounts counts;

  // How many text lines a sample that was dropped could have; none for one that is still here.
  std::optional<std::size_t> most_texts = std::nullopt;
};

// A strategy that is valued by `sample`.
Candidate valued(std::shared_ptr<Strategy> strategy, DrawnSample sample);

class SampleStore {
 public:
  // The most text lines in samples that have been put away, unless fewer are given.
  static constexpr std::size_t kMostLines = 2'097'152;

  SampleStore(const Field& text, unsigned long num_lines, std::size_t most_lines = kMostLines)
      : text_(text), num_lines_(num_lines), room_(most_lines) {}

  // A sample of the text: of as many data lines as the selection looks at, or of `num_lines`.
  DrawnSample draw(Strategy& strategy) { return draw(strategy, num_lines_); }
  DrawnSample draw(Strategy& strategy, unsigned long num_lines);

  // The same for a strategy to which the blank lines of the remembered sample are blank lines, too.
  DrawnSample draw_past_blanks(Strategy& strategy);
  void remember_blanks(const DrawnSample& sample);

  // The distinct code units of the remembered blank lines and their line endings.
  const std::u16string& blank_units() const { return blank_units_; }

  // Keeps the sample of a valued candidate where it is, or drops it if there is no room.
  void put_away(Candidate& candidate);

  // Draws the sample again if it was dropped.
  void bring_back(Candidate& candidate);

  // Whether a sample reached the end of the text.
  bool reached_end() const { return reached_end_; }

 private:
  DrawnSample draw(Strategy& strategy, std::size_t most_texts,
                   std::span<const BlankRun> blank_runs);

  const Field text_;
  const unsigned long num_lines_;
  std::size_t room_;  // for this many text lines more
  bool reached_end_ = false;

  // As many as the last sample had. All strategies find about as many lines in one text, so that a
  // list of this length seldom grows or has room to give back.
  std::size_t likely_lines_ = 16'384;
  std::vector<BlankRun> blank_runs_;
  std::u16string blank_units_;
};

}  // namespace textio::detection
