// The score of a cut by the numbers of fields on its lines.
//
//   const CountScore score = score_counts(counts, {std::nullopt, true}, {});
//   score.valuation.modal_field_count;     // 5
//   score.header_lines;                    // 2
//
// Cost  linear in the runs of the counts and the lines that are not blank.
#pragma once

#include <cstddef>
#include <optional>

#include <vltextstream/scoring/line_counts.hpp>
#include <vltextstream/scoring/strategy_valuation.hpp>

namespace textio {

// What is known of the header lines before a cut is scored.
struct HeaderLines {
  // The number that is given; none if nobody has given one.
  std::optional<std::size_t> given;

  // Whether scoring looks for the end of the header. If not, a given number stands, unless there are
  // too few data lines to judge by.
  bool are_to_be_found = true;

  // Whether fields are separated by blanks. Text before such a table deviates wildly.
  bool are_space_separated = false;
};

struct CountScore {
  // The valuation, complete but for the classes of the columns.
  StrategyValuation valuation;

  // The number of header lines that follows; none if nothing decides it.
  std::optional<std::size_t> header_lines;

  // Whether there are columns to classify.
  bool has_columns = false;
};

// Scores `counts`. What cannot be measured keeps its value in `unmeasured`.
CountScore score_counts(const LineCounts& counts, const HeaderLines& headers,
                        const StrategyValuation& unmeasured);

}  // namespace textio
