// The 7-bit encodings that switch character sets by escape sequences.
//
//   find_escaped_encoding("\x1B$B$3$l\x1B(B", true);   // "ISO-2022-JP"
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes; one pass if there is no escape sequence of these encodings.
#pragma once

#include <string_view>

namespace textio::standalone {

// The ISO 2022 encoding in which `bytes`, all below 128, are well-formed and designate a character
// set; null if there is none. Unless `is_whole`, a character may be cut off at their end.
const char* find_escaped_encoding(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
