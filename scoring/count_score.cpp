// The numbers of fields per line determine, in this order, the modal count, the deviations from it,
// the header lines and the number of variables.
#include <vltextstream/scoring/count_score.hpp>

#include <algorithm>
#include <cstdint>
#include <vector>

#include <vltextstream/scoring/deviations.hpp>
#include <vltextstream/scoring/header_lines.hpp>
#include <vltextstream/scoring/line_statistics.hpp>

namespace textio {
namespace {

// The data lines may deviate by at most one field per line on average.
constexpr double kMostVariation = 1.0;

// The first line that may hold data: a header line has one field, a data line has another number.
// The number of lines if there is none.
std::size_t first_unlike_header(const LineCounts& counts) {
  const std::span<const LineCounts::Run> runs = counts.runs();
  const auto found = std::find_if(runs.begin(), runs.end(),
                                  [](const LineCounts::Run& run) { return run.fields != 1; });
  return found == runs.end() ? counts.size() : found->first;
}

void find_header_lines(const Deviations& diffs, std::size_t first, const HeaderLines& headers,
                       CountScore& score) {
  if (score.header_lines) return;
  score.header_lines =
      score.valuation.total_variation == 0.0
          ? 0
          : detection::get_header_lines(diffs.to_vector(), first, headers.are_space_separated);
}

// If the data varies too much after the detected header, only the first lines count as the header.
void doubt_header_lines(const Deviations& diffs, std::size_t first, CountScore& score) {
  if (score.valuation.data_variation > kMostVariation && first < *score.header_lines) {
    score.header_lines = first;
    score.valuation.data_variation =
        diffs.data_variation(*score.header_lines, score.valuation.total_variation);
  }
}

void measure_deviations(const LineCounts& counts, const Deviations& diffs, std::size_t first,
                        const HeaderLines& headers, CountScore& score) {
  StrategyValuation& valuation = score.valuation;
  if (diffs.size() < 2) {
    // Too few lines to measure: given header lines are overridden as well.
    score.header_lines = std::max(skip_to_data(0, counts), first);
    return;
  }
  valuation.total_variation = diffs.total_variation();
  find_header_lines(diffs, first, headers, score);
  valuation.data_variation = diffs.data_variation(*score.header_lines, valuation.total_variation);
  if (headers.are_to_be_found) {
    doubt_header_lines(diffs, first, score);
    score.header_lines = skip_to_data(*score.header_lines, counts);
  }
  valuation.num_variables = get_number_of_variables(counts, *score.header_lines);
}

}  // namespace

CountScore score_counts(const LineCounts& counts, const HeaderLines& headers,
                        const StrategyValuation& unmeasured) {
  CountScore score{unmeasured, headers.given, false};
  score.valuation.num_lines = counts.size();

  const std::size_t first = headers.are_to_be_found ? first_unlike_header(counts) : 0;
  if (first == counts.size()) {
    if (headers.are_to_be_found) score.header_lines = 0;
    return score;
  }
  score.has_columns = true;
  score.valuation.modal_field_count = static_cast<std::int32_t>(get_modified_median(counts, first));
  if (score.valuation.modal_field_count >= 2) {
    const Deviations diffs(counts, score.valuation.modal_field_count);
    measure_deviations(counts, diffs, first, headers, score);
  } else if (headers.are_to_be_found) {
    score.header_lines = first;
  }
  return score;
}

}  // namespace textio
