// How many places of a terminal a text takes.
//
//   display_width("abc")                        // 3
//   length_within("\xE6\xBC\xA2\xE5\xAD\x97", 3)   // 3: the bytes of the first of two letters, of two places each
//
// A letter of China, Japan or Korea and an emoji take two places, a mark on the letter before it none. Characters that
// are joined to one emoji take two places together, as do the two letters of a flag.
//
// Units   texts are well-formed UTF-8; lengths are bytes.
// Cost    linear in the text.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::tool {

std::size_t display_width(std::string_view text);

// The bytes of the longest start that takes at most `most` places. Of marks on one letter at most eight belong to it,
// so that the length is bounded, too.
std::size_t length_within(std::string_view text, std::size_t most);

// Whether a letter of it is written from right to left.
bool has_right_to_left(std::string_view text);

}  // namespace textio::tool
