// A way to read the bytes of a text, and how good it is: what the voters of the statistical search
// give.
//
// Units  scores are natural logarithms of P(bytes above 127 | encoding) times how common the
//        encoding is, so that they compare across voters.
#pragma once

#include <string>

namespace textio::standalone {

struct Reading {
  const char* encoding;
  double score;
  // The distinct bytes above 127 decoded, for encodings of one byte per character: two readings
  // with the same characters read the text alike. Empty for others.
  std::u16string characters;
};

}  // namespace textio::standalone
