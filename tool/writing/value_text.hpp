// The values of a column as texts that any program reads: shortest numbers with a point, ISO 8601 dates.
//
//   append_value(out, level, 7);        // "2.71"
//   append_date_time(out, 0, true);     // "1970-01-01T00:00:00Z"
//
// Numbers    are read back as the same number. Those from 0.00001 to below 1e16 are written without an exponent.
// Fractions  of a second have no zeros at their end, and no point if there is none.
// Years      before 0 and after 9999 have a sign and at least four digits, "-0044-03-15".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include <vltextstream/reading/column.hpp>

namespace textio::tool {

void append_integer(std::string& out, std::int64_t number);

// "NaN", "Inf" and "-Inf" for what is not finite.
void append_real(std::string& out, double number);

void append_date(std::string& out, std::int64_t days);                            // "2024-02-29"
void append_time(std::string& out, std::int64_t microseconds);                    // "23:59:59.5"
void append_date_time(std::string& out, std::int64_t microseconds, bool is_utc);  // "...T...Z"
void append_duration(std::string& out, std::int64_t microseconds);                // "PT1H2M3.5S"

// The value in this row, which is not missing.
void append_value(std::string& out, const reading::Column& column, std::size_t row);

}  // namespace textio::tool
