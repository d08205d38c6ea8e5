// Scores the single-byte encodings by the letters and signs that the bytes above 127 decode to.
//
//   std::vector<ScoredEncoding> scored = score_single_byte_encodings("caf\xE9");
//   // one for each encoding; windows-1252 has the highest score
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes; about a millisecond for the tables of all encodings.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/scored_encoding.hpp>

namespace textio::standalone {

// Of encodings that decode the bytes alike, the first is the one to report.
std::vector<ScoredEncoding> score_single_byte_encodings(std::string_view bytes);

// The score of random bytes above 127.
double score_of_chance(std::string_view bytes);

}  // namespace textio::standalone
