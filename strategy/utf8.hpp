// UTF-8 for an engine that depends on no other library. What is ill-formed becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace textio {

inline constexpr char32_t kReplacement = 0xFFFD;

// Appends a code point, which must not be a surrogate.
void append_utf8(std::string& out, char32_t code_point);

// Surrogate pairs are joined; an unpaired surrogate becomes U+FFFD.
std::string to_utf8_lossy(std::u16string_view text);

// The code points of UTF-8; each byte that is not part of a well-formed sequence is one U+FFFD.
std::u32string code_points_of(std::string_view utf8);

// Whether a code point has no visible form of its own, could command a terminal, or changes the
// direction of the text around it: controls, line separators, direction marks and invisible format
// characters.
bool is_unprintable(char32_t code_point);

}  // namespace textio
