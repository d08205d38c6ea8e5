// ScoredEncoding: one encoding that a text may have, and how likely it is. The voters of the
// statistical search return these.
//
// Units  a score is the natural logarithm of P(bytes above 127 | encoding) * P(encoding), so the
//        scores of different voters can be compared.
#pragma once

#include <string>

namespace textio::standalone {

struct ScoredEncoding {
  const char* encoding;
  double score;
  // The distinct bytes above 127, decoded; only for single-byte encodings, else empty. Encodings
  // with the same characters decode the text alike.
  std::u16string characters;
};

}  // namespace textio::standalone
