// guess_encoding: the encoding in which the bytes above 127 make the best text.
//
//   StatisticalGuess guess = guess_encoding("caf\xE9", true);
//   // guess.encoding == "windows-1252"
//
// Units   confidence is the probability that the encoding decodes the text correctly, 0 to 1.
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes.
#pragma once

#include <string_view>

namespace textio::standalone {

struct StatisticalGuess {
  const char* encoding;
  double confidence;
  double gain;      // natural logarithm of how much likelier it is than random bytes
  bool has_ground;  // the bytes are evidence for the encoding; otherwise it is the usual one
};

StatisticalGuess guess_encoding(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
