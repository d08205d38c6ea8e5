// A picture as text for a terminal: a margin with the number and the role of each line, and the line beside it, in
// colours if they are wanted.
//
//   std::string text = terminal_text(picture, {.width = 80, .has_color = true});
//
//    5  blank
//    6  names  date,level,flow
//    7  data   2024-01-01,143,12.8
//    8         2024-01-02,147,13.3
//
// No line takes more places than the width: a long cell is cut, and so is what does not fit at the end of a line. A bar
// is at a border between columns that nothing else separates; without colours, also where blanks do. A text from right to left is isolated from what is beside it, so that the margins stay where they are.
//
// Units   widths are places of a terminal.
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>

#include "tool/showing/picture.hpp"

namespace textio::tool {

struct TerminalStyle {
  std::size_t width = 80;
  bool has_color = false;
};

// The narrowest and the widest that make sense.
inline constexpr std::size_t kLeastWidth = 20;
inline constexpr std::size_t kMostWidth = 10'000;

// Lines with line endings, the last of them what was not shown.
std::string terminal_text(const Picture& picture, const TerminalStyle& style);

}  // namespace textio::tool
