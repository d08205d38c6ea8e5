// How many places of a terminal a text takes, and where it can be cut.
//
//   display_width("abc")                        // 3
//   length_within("\xE6\xBC\xA2\xE5\xAD\x97", 3)   // 3: the bytes of the first of two letters, of two places each
//
// A letter of China, Japan or Korea and an emoji take two places, a mark on the letter before it none. Characters that
// are joined to one emoji take two places together, as do the two letters of a flag; but many terminals show what is
// joined side by side.
//
// Units   texts are well-formed UTF-8; lengths are bytes.
// Cost    linear in the text.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::tool {

// Where joined characters are shown as one.
std::size_t display_width(std::string_view text);

// On the terminal where it takes the most.
std::size_t most_width(std::string_view text);

// The bytes of the longest start that takes at most `most` places on any terminal and does not end within what a reader
// takes for one letter or emoji. Of marks on one letter at most eight belong to it, so that the length is bounded, too.
std::size_t length_within(std::string_view text, std::size_t most);

// The bytes of the longest start of at most `most` characters that does not end within such a letter or emoji.
std::size_t length_of_characters(std::string_view text, std::size_t most);

// Whether a letter of it is written from right to left.
bool has_right_to_left(std::string_view text);

}  // namespace textio::tool
