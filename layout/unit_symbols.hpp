// Recognising what people write under the names of columns: units of measure and the like.
//
// Units  texts are trimmed and without quotes.
// Cost   linear in the text; texts longer than 32 units are no units.
#pragma once

#include <string_view>

namespace textio::standalone {

// A unit of measure: "cm", "km/h", "W m-2", "[kg/m^3]", "(degC)", "%", "EUR", "seconds".
bool is_unit(std::u16string_view text);

// How a date or a time is written: "yyyy-mm-dd", "hh:mm:ss", "UTC".
bool is_time_pattern(std::u16string_view text);

// What stands where a column has no unit: "-", "n/a", "[-]", "none", or nothing.
bool is_no_unit(std::u16string_view text);

}  // namespace textio::standalone
