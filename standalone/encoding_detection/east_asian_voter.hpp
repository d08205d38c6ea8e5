// Scores the multi-byte encodings by the syllables and ideographs that the bytes above 127 decode
// to.
//
//   std::vector<ScoredEncoding> scored = score_east_asian_encodings("\x93\xFA\x96\x7B", true);
//   // one for each encoding; Shift_JIS has the highest score
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/scored_encoding.hpp>

namespace textio::standalone {

// If `is_whole`, a character that is cut off at the end of `bytes` is ill-formed.
std::vector<ScoredEncoding> score_east_asian_encodings(std::string_view bytes, bool is_whole);

// The natural logarithm of how likely `c`, an East Asian character, is in a text of the language
// that uses it most.
double log_likelihood_in_east_asia(char32_t c);

}  // namespace textio::standalone
