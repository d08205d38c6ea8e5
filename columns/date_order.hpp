// DateOrder: which of day, month and year comes first in the dates of a column.
//
//   to_string(DateOrder::day_first)   // "day-first"
//
// Errors   nothing throws.
// Threads  all functions may run at the same time.
#pragma once

#include <cstdint>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::columns {

enum class DateOrder : std::uint8_t {
  none,         // no date, or a name or a missing day leaves nothing to order: "31 Jan", "01/2024"
  year_first,   // "2024-01-31", "2024-31-01", "2024-Jan-31"
  day_first,    // "31/01/2024"; also any date in numbers with points, as nobody writes others so
  month_first,  // "01/31/2024"
  ambiguous,    // day or month first: in no cell is either above 12
};

// The name of the enumerator, with hyphens.
VLTEXTSTREAM_EXPORT std::string_view to_string(DateOrder order) noexcept;

}  // namespace textio::columns
