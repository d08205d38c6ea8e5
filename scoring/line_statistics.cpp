#include <vltextstream/scoring/line_statistics.hpp>

#include <algorithm>
#include <limits>

#include <vltextstream/scoring/deviations.hpp>
#include <vltextstream/scoring/line_counts.hpp>

namespace textio {
namespace {

// With this many lines or more, a few lines with several fields do not make a table.
constexpr std::size_t kManyLines = 11;

// Calls `visit(fields, num_lines)` for each run of lines from line `first` on.
template <typename Visit>
void for_each_run(const LineCounts& counts, std::size_t first, Visit visit) {
  const std::span<const LineCounts::Run> runs = counts.runs();
  for (std::size_t k = counts.run_at(first); k < runs.size(); ++k) {
    visit(runs[k].fields, counts.end_of(k) - std::max(first, runs[k].first));
  }
}

double sum_from(const std::vector<std::size_t>& diffs, std::size_t begin) {
  double sum = 0.0;
  for (std::size_t i = begin; i < diffs.size(); ++i) sum += static_cast<double>(diffs[i]);
  return sum;
}

std::size_t first_line_with_several(const LineCounts& counts, std::size_t h) {
  const std::span<const LineCounts::Run> runs = counts.runs();
  std::size_t k = counts.run_at(h);
  while (k < runs.size() && runs[k].fields <= 1) h = counts.end_of(k++);
  return h;
}

}  // namespace

std::size_t get_modified_median(const LineCounts& line_counts, std::size_t first) {
  std::size_t lines_with_fields = 0;
  std::size_t lines_with_several = 0;
  std::size_t least = std::numeric_limits<std::size_t>::max();
  std::size_t most = 0;
  for_each_run(line_counts, first, [&](std::size_t fields, std::size_t num_lines) {
    if (fields != 0) lines_with_fields += num_lines;
    if (fields <= 1) return;
    lines_with_several += num_lines;
    least = std::min(least, fields);
    most = std::max(most, fields);
  });
  if (lines_with_several == 0) return 1;
  if (lines_with_fields >= kManyLines && lines_with_fields / 3 > lines_with_several) return 1;
  if (least == most) return most;  // as in most tables
  std::vector<std::size_t> several;
  several.reserve(lines_with_several);
  for_each_run(line_counts, first, [&](std::size_t fields, std::size_t num_lines) {
    if (fields > 1) append_times(several, num_lines, fields);
  });
  const auto middle = several.begin() + static_cast<std::ptrdiff_t>((several.size() - 1) / 2);
  std::nth_element(several.begin(), middle, several.end());
  return *middle;
}

std::size_t get_modified_median(const std::vector<std::size_t>& line_counts, std::size_t first) {
  return get_modified_median(LineCounts(line_counts), first);
}

std::vector<std::size_t> get_abs_diffs(const std::vector<std::size_t>& line_counts,
                                       std::int32_t modal_field_count) {
  return Deviations(LineCounts(line_counts), modal_field_count).to_vector();
}

double get_total_variation(const std::vector<std::size_t>& diffs) {
  if (diffs.empty()) return std::numeric_limits<double>::infinity();
  return sum_from(diffs, 0) / static_cast<double>(diffs.size());
}

double get_data_variation(const std::vector<std::size_t>& diffs, std::size_t header_lines,
                          double total_variation) {
  return mean_after_header(diffs.size(), header_lines, total_variation,
                           [&] { return sum_from(diffs, header_lines); });
}

std::size_t get_number_of_variables(const LineCounts& line_counts, std::size_t header_lines) {
  std::int32_t most = 1;
  for_each_run(line_counts, header_lines, [&](std::size_t fields, std::size_t) {
    most = std::max(most, static_cast<std::int32_t>(fields));
  });
  return static_cast<std::size_t>(most);
}

std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                    std::size_t header_lines) {
  return get_number_of_variables(LineCounts(line_counts), header_lines);
}

std::size_t skip_to_data(std::size_t h, const std::vector<std::size_t>& empty_lines,
                         const std::vector<std::size_t>& line_counts) {
  for (const std::size_t empty_line : empty_lines) {
    if (h >= empty_line && h != std::numeric_limits<std::size_t>::max()) ++h;
  }
  return first_line_with_several(LineCounts(line_counts), h);
}

// Every line of a blank run that starts at or before `h` advances `h` by one, which brings the next
// line of the run into range. A position that wraps around continues from 0, before the rest of the
// run.
std::size_t skip_to_data(std::size_t h, const LineCounts& line_counts) {
  const std::span<const LineCounts::Run> runs = line_counts.runs();
  for (std::size_t k = 0; k < runs.size() && runs[k].first <= h; ++k) {
    if (runs[k].fields != 0) continue;
    const std::size_t moved = h + (line_counts.end_of(k) - runs[k].first);
    h = moved > h ? moved : 0;
  }
  return first_line_with_several(line_counts, h);
}

}  // namespace textio
