// The encoding whose reading of the bytes above 127 makes most sense.
//
//   StatisticalGuess guess = guess_encoding("caf\xE9", true);
//   // guess.encoding == "windows-1252"
//
// Units   confidence: how likely the named encoding reads the text right, 0 to 1.
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes.
#pragma once

#include <string_view>

namespace textio::standalone {

struct StatisticalGuess {
  const char* encoding;
  double confidence;
  double gain;      // natural logarithm of how much likelier it is than bytes that follow no rule
  bool has_ground;  // the bytes spoke for the encoding; otherwise it is the usual one
};

StatisticalGuess guess_encoding(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
