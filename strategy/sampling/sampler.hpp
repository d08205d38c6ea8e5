// Sampling: the first lines of a text, as one strategy finds them.
//
//   const DrawnSample sample = draw_sample(text, *splitter, {format, comment_style}, {100});
//   sample.texts;                     // the lines that are neither blank nor comments
//   sample.line(7);                   // any sampled line
//
// A sample may have as many lines as its text has code units, most of them blank. Blank lines are
// counted in runs instead of listed.
//
// Ownership  a sample has views of its text.
// Errors     std::bad_alloc, and what a strategy from outside the library throws.
// Cost       linear in the text that is examined and the markers.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/strategy/sampling/sample.hpp>
#include <vltextstream/strategy/splitter.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

struct DrawnSample {
  Sample found;

  // The text lines, in order.
  std::vector<Field> texts;

  // The number of fields on each sampled line, if the splitter counts them.
  LineCounts counts;

  // The largest number of text lines that the sample was allowed to have.
  std::size_t most_texts = 0;

  // The number of sampled lines: text lines and blank lines.
  std::size_t size() const;

  bool has_counts() const { return counts.size() == size(); }

  // Sampled line `index`, which must exist. A blank line gives an empty field. Logarithmic in the
  // number of runs.
  const Field& line(std::size_t index) const;

  // All sampled lines. Moves the texts out of this object.
  std::vector<Field> take_lines();
};

// What decides the kind of a line. The format's buffer is written to.
struct LineTest {
  FieldFormat& format;
  const std::vector<std::u16string>& comment_style;
};

// Consecutive blank lines, and the start of the line after the last of them.
struct BlankRun {
  std::size_t begin;
  std::size_t end;
  std::size_t num_lines;
};

struct SampleLimits {
  // The largest number of text lines.
  std::size_t num_texts;

  // The number that is likely.
  std::size_t likely_lines = 16'384;

  // Runs of lines that are known to be blank for this strategy as well, provided that it starts a
  // line where such a run begins.
  std::span<const BlankRun> blank_runs = {};

  // Whether comments directly after the last text line belong to the sample.
  bool takes_last_comments = false;
};

// Adds `num_lines` lines, fewer than 2^32, to the last run if it is of the same kind and has room
// for the number; otherwise to a new run that begins as `first` does.
void add_run(std::vector<SampleRun>& runs, const SampleRun& first, std::size_t num_lines);

DrawnSample draw_sample(const Field& text, const Splitter& splitter, const LineTest& test,
                        const SampleLimits& limits);

}  // namespace textio
