// Sample: what a strategy found out about a text while it sampled its lines.
//
//   strategy.populate_fields(text, 100);
//   for (const SampleRun& run : strategy.sample().runs) ...   // 3 comments, 97 lines, 1 blank ...
//
// Units      positions count code units of the text; lines count sampled lines from 0. A comment is
//            not a sampled line.
// Ownership  `text` is a view of the text that was sampled.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

// The kind of a line, found by sampling. Blank lines are kept as empty fields; comments are left
// out.
enum class SampleLineKind : std::uint32_t { text, blank, comment };

// Consecutive lines of one kind. A sample may have millions of runs.
struct VLTEXTSTREAM_EXPORT SampleRun {
  SampleLineKind kind = SampleLineKind::text;

  // The number of lines in the run. Lines beyond the largest number start another run.
  std::uint32_t num_lines = 0;

  // The number of sampled lines before the run, and of the text lines among them.
  std::size_t first_line = 0;
  std::size_t first_text = 0;

  // The start of the run's first line.
  std::size_t begin = 0;
};

struct VLTEXTSTREAM_EXPORT Sample {
  Field text;

  // All lines that were examined, in order.
  std::vector<SampleRun> runs;

  // Where sampling stopped: the start of the next line.
  std::size_t end = 0;

  // Whether more text after the end of `text` could have changed the sample.
  bool reached_end = false;
};

}  // namespace textio
