// Recognises units of measure, and what people write in their place.
//
// Units  texts are trimmed and without quotes.
// Cost   linear in the text; a text of more than 32 code units is no unit.
#pragma once

#include <string_view>

namespace textio::assessment {

// A unit of measure: "cm", "km/h", "W m-2", "[kg/m^3]", "(degC)", "%", "EUR", "seconds".
bool is_unit(std::u16string_view text);

// A format of dates or times: "yyyy-mm-dd", "hh:mm:ss", "UTC".
bool is_time_pattern(std::u16string_view text);

// A sign that a column has no unit: "-", "n/a", "[-]", "none", or the empty text.
bool is_no_unit(std::u16string_view text);

// The unit in a name such as "level [cm]", "speed (km/h)", "Zeit / s", "current in mA" or "humidity %", a view
// of it without brackets; empty if there is none. Square brackets hold a unit whatever it is called.
std::u16string_view unit_in_name(std::u16string_view name);

}  // namespace textio::assessment
