// What the cells of a column hold, as a cell of a table on a page: a histogram, or the most frequent values.
//
//   values_html(values_of(batch.columns[1], batch.num_rows));   // "<svg ...>...</svg><p>131 to 152, ..."
//
// Errors  std::bad_alloc.
#pragma once

#include <string>

#include "tool/html/column_values.hpp"

namespace textio::tool {

// Characters of a value.
inline constexpr std::size_t kLongestShownValue = 40;

std::string values_html(const ColumnValues& values);

}  // namespace textio::tool
