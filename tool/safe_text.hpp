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

// One character of a UTF-8 text.
struct Utf8Character {
  char32_t code = 0;       // U+FFFD when ill-formed
  std::size_t length = 0;  // bytes; when ill-formed, those that could have begun a character
  bool is_well_formed = true;
};

// The character that `bytes` begins with; it must not be empty.
Utf8Character first_character(std::string_view bytes);

// The character of `text` at `pos`, which is moved past it; for a lone surrogate, its own code.
char32_t next_character(std::u16string_view text, std::size_t& pos);

void append_utf8(std::string& out, char32_t code);

// A character that a terminal might obey, that would turn the text around it, or that is invisible:
// control characters, line separators, marks of writing direction, zero-width characters, soft
// hyphens, tags; and surrogates, which are no characters.
bool is_unprintable(char32_t code);

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
