// What became of a file, in a sentence.
//
//   account_text(converted)
//   // 3,002 lines: 2,991 rows, 1 of names, 6 preamble, 4 comments; 2 cells did not fit (first: line 77, column level,
//   // "n.v.")
//
// The numbers of the first part add up to the lines. Names of columns and texts of cells are made printable.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/reading/account.hpp>

#include "tool/conversion.hpp"

namespace textio::tool {

std::string account_text(const Converted& converted);

// "line 77, column level, "n.v.""
std::string place_text(const reading::OddPlace& place, const std::vector<std::string>& names);

}  // namespace textio::tool
