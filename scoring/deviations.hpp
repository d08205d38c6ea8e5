// Deviations: how far the numbers of fields on the lines of a sample are from the modal number.
//
//   const Deviations diffs(counts, 3);     // counts: 1, 3, 0, 4, 3, 2
//   diffs.to_vector();                     // 2, 0, 1, 0
//   diffs.total_variation();               // 0.75
//
// There is one for each line that is not empty, up to the last line with the modal number.
//
// Ownership  refers to the counts.
// Cost       all but to_vector are linear in the runs of the counts, without an allocation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include <vltextstream/scoring/line_counts.hpp>

namespace textio {

class Deviations {
 public:
  Deviations(const LineCounts& counts, std::int32_t modal_field_count);

  std::size_t size() const { return size_; }
  std::vector<std::size_t> to_vector() const;

  // As get_total_variation and get_data_variation of scoring/line_statistics.hpp.
  double total_variation() const;
  double data_variation(std::size_t header_lines, double total_variation) const;

 private:
  template <typename Visit>
  void for_each_run(Visit visit) const;
  std::size_t sum_of_first(std::size_t count) const;

  const LineCounts& counts_;
  const std::size_t modal_;
  const std::size_t num_runs_;
  std::size_t size_ = 0;
  std::size_t sum_ = 0;  // far less than 2^53 for a sample, so exact as a double
};

// The mean of `size` deviations from position `header_lines` on, which `sum` adds up.
template <typename Sum>
double mean_after_header(std::size_t size, std::size_t header_lines, double total_variation,
                         Sum sum) {
  if (header_lines == 0) return total_variation;
  if (header_lines == size) return std::numeric_limits<double>::infinity();
  if (header_lines > size) return -0.0;
  return sum() / static_cast<double>(size - header_lines);
}

}  // namespace textio
