// Header-line detection: where the deviations of the field counts stop being those of a header.
//
//   get_header_lines({2, 1, 0, 0, 0, 0, 0, 0}, 0, false)   // 2
//
// Units  `d` holds the deviation of each line that is not empty; positions count such lines.
// Cost   linear in the list; two lists of its length are allocated.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::detection {

// The number of leading entries of `d` that belong to the header. `first`, the first line that may
// hold data, is the answer when nothing speaks for another one; a list of fewer than two entries
// gives `first`, too. `cap_deviations` counts no deviation but the first as more than 2.
VLTEXTSTREAM_EXPORT std::size_t get_header_lines(const std::vector<std::size_t>& d,
                                                 std::size_t first, bool cap_deviations);

// The filter a, b, c over each entry and its neighbours, reflected at both ends. Fewer than two
// entries are returned as they are.
VLTEXTSTREAM_EXPORT std::vector<double> three_point_filter(const std::vector<double>& x, double a,
                                                           double b, double c);

}  // namespace textio::detection

namespace textio {

using detection::three_point_filter;

}  // namespace textio
