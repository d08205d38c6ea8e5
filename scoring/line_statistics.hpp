// Statistics over the numbers of fields that a strategy finds on the sampled lines.
//
// A good cut gives the same number on every data line. `line_counts` has one number of fields for
// each sampled line (0 for an empty line). `diffs` has the deviations from the modal count, as
// computed by get_abs_diffs. Lists that may have millions of blank lines are passed as LineCounts,
// and the library does not list their deviations (scoring/deviations.hpp).
//
// Cost  linear, except the median, which is a selection among the counts greater than 1. For
//       LineCounts, linear in the runs and the lines that are not blank.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio {

class LineCounts;

// The usual number of fields from line `first` on: the lower median of the counts greater than 1.
// It is 1 if there are none, or if eleven or more lines have fields and less than a third of them
// have two.
VLTEXTSTREAM_EXPORT std::size_t get_modified_median(const std::vector<std::size_t>& line_counts,
                                                    std::size_t first);
std::size_t get_modified_median(const LineCounts& line_counts, std::size_t first);

// |count - modal| for every line that is not empty, from the first line to the last one with the
// modal count. Empty if no line has it.
VLTEXTSTREAM_EXPORT std::vector<std::size_t> get_abs_diffs(
    const std::vector<std::size_t>& line_counts, std::int32_t modal_field_count);

// The mean deviation; infinity for an empty list.
VLTEXTSTREAM_EXPORT double get_total_variation(const std::vector<std::size_t>& diffs);

// The mean deviation from position `header_lines` on: `total_variation` if that position is 0,
// infinity directly after the list, negative zero beyond.
VLTEXTSTREAM_EXPORT double get_data_variation(const std::vector<std::size_t>& diffs,
                                              std::size_t header_lines, double total_variation);

// The largest number of fields from line `header_lines` on, at least 1.
VLTEXTSTREAM_EXPORT std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                                        std::size_t header_lines);
std::size_t get_number_of_variables(const LineCounts& line_counts, std::size_t header_lines);

// `h` counts lines that are not empty. The result is the index of the first line from there on that
// has more than one field. `empty_lines` has the indexes of the empty lines in ascending order.
VLTEXTSTREAM_EXPORT std::size_t skip_to_data(std::size_t h,
                                             const std::vector<std::size_t>& empty_lines,
                                             const std::vector<std::size_t>& line_counts);

// The same with the empty lines of `line_counts`, except that a number which wraps around is 0.
std::size_t skip_to_data(std::size_t h, const LineCounts& line_counts);

}  // namespace textio
