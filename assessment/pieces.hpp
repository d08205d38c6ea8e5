// The pieces of a line between runs of blanks.
//
//   find_pieces(lines, 0, 2, pieces);   // "ann lee  12": {0, 7}, {9, 11}
//
// Units  positions count code units from the start of the line.
// Cost   linear in the line; no allocation once `pieces` has room.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

struct Span {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool operator==(const Span&) const = default;
};
using Spans = std::vector<Span>;

inline std::u16string_view part_of(std::u16string_view line, const Span& span) {
  return line.substr(span.begin, span.end - span.begin);
}

// Those of line `k`: runs of at least `least_blanks` blanks, or a tab, separate them.
void find_pieces(const SampledLines& lines, std::size_t k, std::size_t least_blanks, Spans& pieces);

// Joins each time with the date before it; whether there was one.
bool join_times(std::u16string_view line, Spans& pieces);

bool is_date_with_time(std::u16string_view date, std::u16string_view time);

}  // namespace textio::assessment
