// The words that an option takes, and the word that was probably meant.
//
//   words_of("--color");                            // {"auto", "always", "never"}
//   place_among_words("--color", "never");          // 2
//   nearest("--delimeter", {"--decimal", "--delimiter"});   // "--delimiter"
//
// Errors  BadArgument, which says what was expected and which word is the nearest.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace textio::tool {

// Empty for an option that takes any value, and for a flag that takes none.
std::vector<std::string> words_of(const std::string& flag);

// The number of the word in words_of(flag).
std::size_t place_among_words(const std::string& flag, const std::string& typed);

// The nearest of `known` words if it is near: a letter more, less, other or exchanged with its neighbour, in longer words
// two or three; or so near to what it begins with. Empty: none is, or a single letter was typed. Upper and lower case are
// the same.
std::string nearest(std::string_view typed, const std::vector<std::string>& known);

// " Do you mean never?", to be added to a message; empty if no word is near.
std::string meant(std::string_view typed, const std::vector<std::string>& known);

// "keep, ignore or error"
std::string either_of(const std::vector<std::string>& words);

}  // namespace textio::tool
