// Whether a text looks like bytes that are no text: a program, a picture, an archive.
//
//   looks_binary(u"a,b\n1,2\n");            // false
//   looks_binary(u"GIF89a\x10\x07\x06");    // true
//
// Files of text hold few control characters besides those for white space and for terminals, and
// those that are in use as separators. In bytes of any other kind these are as frequent as letters:
// 18 of 256 byte values are counted here, 7 % of compressed data, and far more where numbers are
// padded with zeros. More than 2 % is taken for a sign, so a stray one is none. In encodings with
// two bytes or more per code unit this sees little, since few of their units are controls.
//
// Cost    one pass over the first kBinaryLookUnits code units; no allocation.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::standalone {

inline constexpr std::size_t kBinaryLookUnits = 65'536;

// `text` has one code unit per character; only its start is looked at.
bool looks_binary(std::u16string_view text) noexcept;

}  // namespace textio::standalone
