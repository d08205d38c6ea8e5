#include <vltextstream/scoring/line_statistics.hpp>

#include <algorithm>
#include <limits>
#include <numeric>

namespace textio {
namespace {

// From this number of lines on, a few lines with several fields do not make a table.
constexpr std::size_t kManyLines = 11;

std::size_t abs_diff(std::size_t a, std::size_t b) { return a > b ? a - b : b - a; }

double sum_from(const std::vector<std::size_t>& diffs, std::size_t begin) {
  double sum = 0.0;
  for (std::size_t i = begin; i < diffs.size(); ++i) sum += static_cast<double>(diffs[i]);
  return sum;
}

}  // namespace

std::size_t get_modified_median(const std::vector<std::size_t>& line_counts, std::size_t first) {
  std::vector<std::size_t> several;
  several.reserve(line_counts.size());
  std::size_t lines_with_fields = 0;
  for (std::size_t i = first; i < line_counts.size(); ++i) {
    if (line_counts[i] != 0) ++lines_with_fields;
    if (line_counts[i] > 1) several.push_back(line_counts[i]);
  }
  if (several.empty()) return 1;
  if (lines_with_fields >= kManyLines && lines_with_fields / 3 > several.size()) return 1;
  const auto middle = several.begin() + static_cast<std::ptrdiff_t>((several.size() - 1) / 2);
  std::nth_element(several.begin(), middle, several.end());
  return *middle;
}

std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts,
                                       std::int32_t modal_field_count) {
  const auto modal = static_cast<std::size_t>(modal_field_count);
  const auto last = std::find(line_counts.rbegin(), line_counts.rend(), modal);
  std::vector<std::size_t> diffs;
  diffs.reserve(static_cast<std::size_t>(last.base() - line_counts.begin()));
  for (auto count = line_counts.begin(); count != last.base(); ++count) {
    if (*count != 0) diffs.push_back(abs_diff(*count, modal));
  }
  return diffs;
}

double get_total_variation(const std::vector<std::size_t>& diffs) {
  if (diffs.empty()) return std::numeric_limits<double>::infinity();
  return sum_from(diffs, 0) / static_cast<double>(diffs.size());
}

double get_data_variation(const std::vector<std::size_t>& diffs, std::size_t header_lines,
                          double total_variation) {
  if (header_lines == 0) return total_variation;
  if (header_lines == diffs.size()) return std::numeric_limits<double>::infinity();
  if (header_lines > diffs.size()) return -0.0;
  return sum_from(diffs, header_lines) / static_cast<double>(diffs.size() - header_lines);
}

std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                    std::size_t header_lines) {
  std::int32_t most = 1;
  for (std::size_t i = header_lines; i < line_counts.size(); ++i) {
    most = std::max(most, static_cast<std::int32_t>(line_counts[i]));
  }
  return static_cast<std::size_t>(most);
}

std::size_t skip_to_data(std::size_t h, const std::vector<std::size_t>& empty_lines,
                         const std::vector<std::size_t>& line_counts) {
  for (const std::size_t empty_line : empty_lines) {
    if (h >= empty_line && h != std::numeric_limits<std::size_t>::max()) ++h;
  }
  while (h < line_counts.size() && line_counts[h] <= 1) ++h;
  return h;
}

}  // namespace textio
