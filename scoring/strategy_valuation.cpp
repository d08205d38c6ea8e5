// The valuation of a strategy: from the number of fields on each line follow the modal count, the
// deviations from it, the header lines, the number of variables and, finally, the column classes.
#include <vltextstream/scoring/strategy_valuation.hpp>

#include <algorithm>
#include <utility>

#include <vltextstream/scoring/header_lines.hpp>
#include <vltextstream/scoring/line_statistics.hpp>
#include <vltextstream/strategy/cut_rollback.hpp>
#include <vltextstream/strategy/sample_cut.hpp>

namespace textio {
namespace {

// Moves `h`, the number of a line, on by one for each empty line up to it, those that come so
// included: skip_to_data without a list of the empty lines, of which there may be millions.
std::size_t skip_empty_lines(std::size_t h, const std::vector<std::size_t>& line_counts) {
  for (std::size_t i = 0; i < line_counts.size() && i <= h; ++i) {
    if (line_counts[i] == 0) ++h;
  }
  return h;
}

}  // namespace

const StrategyValuation& Strategy::valuation() {
  if (!valuation_done_) value([](const StrategyValuation&) { return true; });
  return valuation_;
}

// Scores the cut. The classes of the columns come last, and only if the scores up to there say that
// they are wanted.
void Strategy::value(const std::function<bool(const StrategyValuation&)>& wants_classes) {
  CutRollback rollback(*this);
  SampleCut cut(*this);
  const StrategyValuation valuation_before = valuation_;
  const std::size_t header_lines_before = header_lines_;
  try {
    if (measure(cut.counts()) && wants_classes(valuation_)) take_classes(classes_of(cut));
  } catch (...) {
    valuation_ = valuation_before;
    header_lines_ = header_lines_before;
    throw;
  }
  rollback.dismiss();
  field_counts_ = cut.take_counts();
  valuation_done_ = true;
}

// Returns whether there are columns to classify.
bool Strategy::measure(const std::vector<std::size_t>& line_counts) {
  const std::size_t n = line_counts.size();
  valuation_.num_lines = n;

  // The first line that may hold data: a header line has one field, a data line more.
  std::size_t first = 0;
  if (header_lines_auto_) {
    const auto found = std::find_if(line_counts.begin(), line_counts.end(),
                                    [](std::size_t count) { return count != 1; });
    first = static_cast<std::size_t>(found - line_counts.begin());
    if (first == n) {
      header_lines_ = 0;
      return false;
    }
  } else if (n == 0) {
    return false;
  }

  valuation_.modal_field_count = static_cast<std::int32_t>(get_modified_median(line_counts, first));
  if (valuation_.modal_field_count >= 2) {
    settle_header_lines(line_counts, get_abs_diffs(line_counts), first);
  } else if (header_lines_auto_) {
    header_lines_ = first;
  }
  return true;
}

void Strategy::settle_header_lines(const std::vector<std::size_t>& line_counts,
                                   const std::vector<std::size_t>& diffs, std::size_t first) {
  const auto data_from = [&line_counts](std::size_t h) {
    return skip_to_data(skip_empty_lines(h, line_counts), {}, line_counts);
  };
  if (diffs.size() < 2) {
    // Too little to judge by: given header lines are overridden as well.
    header_lines_ = std::max(data_from(0), first);
    return;
  }
  valuation_.total_variation = get_total_variation(diffs);
  calculate_headerlines(diffs, first);
  valuation_.data_variation = get_data_variation(diffs);
  if (header_lines_auto_) {
    if (valuation_.data_variation > 1.0 && first < header_lines_) {
      header_lines_ = first;
      valuation_.data_variation = get_data_variation(diffs);
    }
    header_lines_ = data_from(header_lines_);
  }
  valuation_.num_variables = get_number_of_variables(line_counts);
}

void Strategy::calculate_headerlines(const std::vector<std::size_t>& diffs, std::size_t first) {
  if (header_lines_ != kUnknownHeaderLines) return;
  header_lines_ = valuation_.total_variation == 0.0
                      ? 0
                      : detection::get_header_lines(diffs, first, space_separated_);
}

double Strategy::get_total_variation(const std::vector<std::size_t>& diffs) const {
  return textio::get_total_variation(diffs);
}

double Strategy::get_data_variation(const std::vector<std::size_t>& diffs) const {
  return textio::get_data_variation(diffs, header_lines_, valuation_.total_variation);
}

std::size_t Strategy::get_number_of_variables(const std::vector<std::size_t>& line_counts) const {
  return textio::get_number_of_variables(line_counts, header_lines_);
}

std::vector<std::size_t> Strategy::get_abs_diffs(
    const std::vector<std::size_t>& line_counts) const {
  return textio::get_abs_diffs(line_counts, valuation_.modal_field_count);
}

std::size_t Strategy::get_modified_median(const std::vector<std::size_t>& line_counts,
                                          std::size_t first) const {
  return textio::get_modified_median(line_counts, first);
}

}  // namespace textio
