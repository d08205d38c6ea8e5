// Tables in several encodings: ASCII, letters of two bytes, Japanese.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace textio::bench {

struct EncodedText {
  const char* name;
  const char* encoding;

  // The bytes of a table of `characters` characters, or slightly fewer if only whole lines fit.
  std::string (*make)(std::size_t characters);
};

// ascii, utf8_two_byte (5 % of the characters take two bytes), utf8_japanese (most take three),
// utf16le (without a mark), windows1252 (the characters of utf8_two_byte), shift_jis.
const std::vector<EncodedText>& encoded_texts();

}  // namespace textio::bench
