// Finding the encoding of a file that nobody named.
#pragma once

#include <string>

#include "standalone/detect_layout.hpp"

namespace textio::standalone {

struct FoundEncoding {
  std::string name;
  EncodingFound found;
};

// Looks at the first 64 KB of the file: a byte-order mark, well-formed UTF-8, or neither. A file
// that cannot be read twice, such as a pipe, is not looked at and taken for UTF-8. A file that
// cannot be opened is, too: the reader who opens it next reports why.
FoundEncoding find_encoding(const std::u16string& path);

}  // namespace textio::standalone
