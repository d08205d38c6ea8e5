// Free text at the ends of lines, as in listings of processes and files and in logs.
//
//   cells_with_rest(lines);   // 3: "10:15 ERROR out of memory", "10:16 INFO started", ...
//
// Cost  linear in the first 200 lines, and no more than that if these have equally many pieces.
#pragma once

#include <cstddef>

#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// How many cells a line has if blanks separate them and the last takes the rest of the line; 0 if lines
// have equally many pieces, or if nothing tells. It is the number of words of a line of names, if the lines
// below have at least as many pieces and values among them; else one more than the longest series of
// pieces that are alike from line to line.
std::size_t cells_with_rest(const SampledLines& lines);

}  // namespace textio::assessment
