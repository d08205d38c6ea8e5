// The datatype class of a column.
#pragma once

#include <cstdint>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio {

// The values are part of the interface; the gaps between them are intended.
enum class DatatypeCode : std::uint16_t {
  number = 1,    // a real or complex literal
  text = 2,      // anything else that is not empty
  datetime = 3,  // a date with a time of day
  empty = 5,     // no field of the column has a value
  date = 7,      // a date without a time of day
  duration = 8,  // a clock value: groups of digits between colons
};

// The name of the enumerator, such as "number"; empty for any other number.
VLTEXTSTREAM_EXPORT std::string_view to_string(DatatypeCode code);

}  // namespace textio
