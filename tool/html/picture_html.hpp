// A picture as a table of a page: the number of each line, what it is for, and the line itself.
//
//   std::string rows = picture_html(*picture_of(top));
//
// Each cell is isolated, so that one from right to left stays in its place. Long cells are cut, and so are lines of many
// cells; a sentence after the table says so.
//
// Errors  std::bad_alloc.
#pragma once

#include <string>

#include "tool/showing/picture.hpp"

namespace textio::tool {

// Characters of a cell, or of a line without cells; and cells of a line.
inline constexpr std::size_t kLongestShownCell = 60;
inline constexpr std::size_t kLongestShownLine = 400;
inline constexpr std::size_t kMostShownCells = 40;

std::string picture_html(const Picture& picture);

}  // namespace textio::tool
