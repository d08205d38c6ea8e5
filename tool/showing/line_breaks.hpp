// Text for people, broken where a terminal would break it within a word.
//
//   broken_to("  uneven    18 lines of data without a cell for each column\n", 40)
//
//     uneven    18 lines of data without
//               a cell for each column
//
// What follows a break is below the text that follows a heading, or else further in than its line.
//
// Units   widths are places of a terminal, the most that any terminal needs.
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace textio::tool {

// A word that is longer than a line stays whole: it may be a path to copy.
std::string broken_to(std::string_view text, std::size_t width);

}  // namespace textio::tool
