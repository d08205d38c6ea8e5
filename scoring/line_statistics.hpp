// Statistics over the numbers of fields that a strategy finds on the sampled lines.
//
// A good cut gives the same number on every data line. `line_counts` holds one number of fields per
// sampled line (0 for an empty line), `diffs` the deviations from the modal count that
// get_abs_diffs makes of them. Lists of millions of blank lines come as LineCounts.
//
// Cost  linear, except the median, which selects among the counts greater than 1. Of LineCounts,
//       linear in the runs and the lines that are not blank.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio {

class LineCounts;

// The usual number of fields from line `first` on: the lower median of the counts greater than 1.
// It is 1 when there are none of these, or when eleven or more lines have any field and less than
// a third of them have two.
VLTEXTSTREAM_EXPORT std::size_t get_modified_median(const std::vector<std::size_t>& line_counts,
                                                    std::size_t first);
std::size_t get_modified_median(const LineCounts& line_counts, std::size_t first);

// |count - modal| for every line that is not empty, from the first to the last one with the modal
// count; nothing when no line has it.
VLTEXTSTREAM_EXPORT std::vector<std::size_t> get_abs_diffs(
    const std::vector<std::size_t>& line_counts, std::int32_t modal_field_count);
std::vector<std::size_t> get_abs_diffs(const LineCounts& line_counts,
                                       std::int32_t modal_field_count);

// The mean deviation; infinite for an empty list.
VLTEXTSTREAM_EXPORT double get_total_variation(const std::vector<std::size_t>& diffs);

// The mean deviation from position `header_lines` on: `total_variation` when that is 0, infinite
// directly after the list, negative zero beyond.
VLTEXTSTREAM_EXPORT double get_data_variation(const std::vector<std::size_t>& diffs,
                                              std::size_t header_lines, double total_variation);

// The largest number of fields from line `header_lines` on, at least 1.
VLTEXTSTREAM_EXPORT std::size_t get_number_of_variables(const std::vector<std::size_t>& line_counts,
                                                        std::size_t header_lines);
std::size_t get_number_of_variables(const LineCounts& line_counts, std::size_t header_lines);

// `h` counts lines that are not empty; the result is the index of the first line from there on
// that has more than one field. `empty_lines` holds the indexes of the empty lines, ascending.
VLTEXTSTREAM_EXPORT std::size_t skip_to_data(std::size_t h,
                                             const std::vector<std::size_t>& empty_lines,
                                             const std::vector<std::size_t>& line_counts);

// The same with the empty lines found in `line_counts`.
std::size_t skip_to_data(std::size_t h, const LineCounts& line_counts);

}  // namespace textio
