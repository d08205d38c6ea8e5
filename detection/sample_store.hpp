// SampleStore: draws the samples of one selection and bounds the memory that they take.
//
//   SampleStore samples(text, 100);
//   Candidate candidate{strategy, samples.draw(*strategy)};
//   samples.keep_or_drop(candidate);   // candidate.sample may be empty from here on ...
//   samples.restore(candidate);        // ... to here
//
// A sample may have as many lines as its text has code units, and there may be 57 candidates. While
// a candidate waits for the end of the selection, its sample is dropped if the samples before it
// have too many lines. The winner's sample is then drawn again.
//
// Ownership  refers to the text.
// Errors     std::bad_alloc and what the host throws are passed on.
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

// A strategy, its sample of the text, and the number of fields on each line, as used for its score.
struct Candidate {
  std::shared_ptr<Strategy> strategy;
  DrawnSample sample;
  LineCounts counts;

  // The largest number of text lines that a dropped sample could have; none for a sample that is
  // kept.
  std::optional<std::size_t> most_texts = std::nullopt;
};

// A strategy that is scored with `sample`.
Candidate valued(std::shared_ptr<Strategy> strategy, DrawnSample sample);

class SampleStore {
 public:
  // The most entries in all samples that are kept, unless fewer are given. A text line is an entry,
  // and so is a run of lines of one kind or of lines with equal numbers of fields.
  static constexpr std::size_t kMostEntries = 2'097'152;

  SampleStore(const Field& text, unsigned long num_lines, std::size_t most_entries = kMostEntries)
      : text_(text), num_lines_(num_lines), room_(most_entries) {}

  // A sample of the text, with as many data lines as the selection examines or with `num_lines`.
  DrawnSample draw(Strategy& strategy) { return draw(strategy, num_lines_); }
  DrawnSample draw(Strategy& strategy, unsigned long num_lines);

  // The same, for a strategy that has the same blank lines as the remembered sample.
  DrawnSample draw_past_blanks(Strategy& strategy);
  void remember_blanks(const DrawnSample& sample);

  // A sample of the lines of `other`, which another strategy has drawn. If it reached the end of the
  // text, so does this one: comments after the last line belong to it.
  DrawnSample draw_like(const DrawnSample& other, Strategy& strategy);

  // The distinct code units of the remembered blank lines and their line endings.
  const std::u16string& blank_units() const { return blank_units_; }

  // Keeps the sample of a scored candidate, or drops it if there is no room.
  void keep_or_drop(Candidate& candidate);

  // Draws the sample again if it was dropped.
  void restore(Candidate& candidate);

  // Whether a sample reached the end of the text.
  bool reached_end() const { return reached_end_; }

 private:
  DrawnSample draw_within(SampleLimits limits, Strategy& strategy);

  const Field text_;
  const unsigned long num_lines_;
  std::size_t room_;  // for this many more entries
  bool reached_end_ = false;

  // The number of lines of the last sample. All strategies find about the same number of lines in
  // one text, so a list of this length rarely has to grow or shrink.
  std::size_t likely_lines_ = 16'384;
  std::vector<BlankRun> blank_runs_;
  std::u16string blank_units_;
};

}  // namespace textio::detection
