// find_encoding: finds the encoding of a text whose encoding is not given.
//
//   FoundEncoding encoding = find_encoding(first_bytes, is_whole);
//   // encoding.name == "windows-1252", encoding.found == EncodingFound::fallback
//
// Cost  linear in the bytes.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>

namespace textio::standalone {

struct FoundEncoding {
  std::string name;
  EncodingFound found;
  double confidence;  // see Layout::encoding_confidence
};

// Looks at the first bytes of a text. `is_whole` says that they are all; otherwise a character may
// be cut off at their end, and does not count as ill-formed.
FoundEncoding find_encoding(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
