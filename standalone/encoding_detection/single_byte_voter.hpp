// Scores the encodings of one byte per character by the letters and signs that the bytes above 127
// become.
//
//   std::vector<Reading> readings = single_byte_readings("caf\xE9");
//   // one for each encoding; that of windows-1252 has the highest score
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes; about a millisecond for the tables of all encodings.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/encoding_reading.hpp>

namespace textio::standalone {

// Of encodings that read the bytes alike the first is the one to name.
std::vector<Reading> single_byte_readings(std::string_view bytes);

// The score of bytes above 127 that follow no rule.
double score_of_chance(std::string_view bytes);

}  // namespace textio::standalone
