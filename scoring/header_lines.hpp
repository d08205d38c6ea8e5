// Header-line detection: where the deviations of the field counts no longer look like a header.
//
//   get_header_lines({2, 1, 0, 0, 0, 0, 0, 0}, 0, false)   // 2
//
// Units  `d` has the deviation of each line that is not empty; positions count such lines.
// Cost   linear in the list; two lists of its length are allocated.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::detection {

// The number of leading entries of `d` that belong to the header. `first` is the first line that
// may hold data. It is the result if nothing indicates another one, and for a list of fewer than
// two entries. With `cap_deviations`, every deviation except the first counts as at most 2.
VLTEXTSTREAM_EXPORT std::size_t get_header_lines(const std::vector<std::size_t>& d,
                                                 std::size_t first, bool cap_deviations);

// Applies the filter a, b, c to each entry and its neighbours, reflected at both ends. A list of
// fewer than two entries is returned unchanged.
VLTEXTSTREAM_EXPORT std::vector<double> three_point_filter(const std::vector<double>& x, double a,
                                                           double b, double c);

}  // namespace textio::detection

namespace textio {

using detection::three_point_filter;

}  // namespace textio
