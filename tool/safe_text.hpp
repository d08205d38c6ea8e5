// Text from strangers as it may be shown: file names, texts of files, arguments.
//
//   printable("red\x1B[31m")       // "red", U+FFFD, "[31m"
//   shortened(hundred_x)           // 77 times "x" and "..."
//
// Units   sizes count characters, not bytes.
// Errors  std::bad_alloc; no text is refused, for what is not well-formed is replaced.
#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace textio::tool {

// The text in UTF-8, each unprintable character and each ill-formed byte as U+FFFD. A character
// that a detection has folded to U+001A is one of them.
std::string printable(std::string_view text);
std::string printable(std::u16string_view text);

// Writes printable(text) without asking for memory.
void write_printable(std::string_view text, std::FILE* file) noexcept;

inline constexpr std::size_t kLongestEcho = 80;

// A text of more than kLongestEcho characters cut to this length, with an ellipsis at its end.
std::string shortened(std::string_view text);

// `message` with each of the texts in `typed` that it repeats shortened.
std::string with_short_echoes(std::string message, const std::vector<std::string>& typed);

}  // namespace textio::tool
