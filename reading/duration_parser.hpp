// Durations, in microseconds.
//
//   std::int64_t microseconds;
//   read_duration(u"1d 2h", microseconds);       // true, 93,600,000,000
//   read_duration(u"-36:15:00", microseconds);   // true, -130,500,000,000
//
// What columns/ takes for a duration is read: ISO 8601, quantities with units, clocks. "36:15" is hours and minutes,
// "3:05.12" minutes and seconds. A year is 365.2425 days, and a month a twelfth of that: the mean ones of the calendar.
//
// Units      a cell has no blanks at its ends.
// Errors     nothing throws.
// Cost       linear in the cell, no allocation.
#pragma once

#include <cstdint>
#include <string_view>

namespace textio::reading {

// Whether the cell is one that 64 bits hold, to the nearest microsecond; only then is the value written.
bool read_duration(std::u16string_view cell, std::int64_t& microseconds);

}  // namespace textio::reading
