// The score of a cut, derived from the numbers of fields on its lines.
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

// What is known about the header lines before a cut is scored.
struct HeaderLines {
  // The number of header lines if it is given.
  std::optional<std::size_t> given;

  // Whether scoring searches for the end of the header. If not, a given number is kept unless there
  // are too few data lines to measure.
  bool are_to_be_found = true;

  // Whether fields are separated by blanks. Text lines before such a table deviate strongly.
  bool are_space_separated = false;
};

struct CountScore {
  // The valuation, complete except for the classes of the columns.
  StrategyValuation valuation;

  // The resulting number of header lines; none if nothing determines it.
  std::optional<std::size_t> header_lines;

  // Whether there are columns to classify.
  bool has_columns = false;
};

// Scores `counts`. Values that cannot be measured are taken from `unmeasured`.
CountScore score_counts(const LineCounts& counts, const HeaderLines& headers,
                        const StrategyValuation& unmeasured);

}  // namespace textio
