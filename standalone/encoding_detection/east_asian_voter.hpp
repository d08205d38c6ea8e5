// Scores the encodings of several bytes per character by the syllables and ideographs that the
// bytes above 127 become.
//
//   std::vector<Reading> readings = east_asian_readings("\x93\xFA\x96\x7B", true);
//   // one for each encoding; that of Shift_JIS has the highest score
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/encoding_reading.hpp>

namespace textio::standalone {

// With `is_whole` a character that is cut off at the end of `bytes` is ill-formed.
std::vector<Reading> east_asian_readings(std::string_view bytes, bool is_whole);

// The natural logarithm of how likely `c`, an East Asian character, is in a text of the language
// that uses it most.
double log_likelihood_in_east_asia(char32_t c);

}  // namespace textio::standalone
