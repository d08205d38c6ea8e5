// vltext FILE... --html OUT: writes the report on the files as one page.
//
// OUT is replaced when the page is complete, and stays as it was if no FILE could be read.
//
// Errors  UsageError if there are too many files, or if one cannot be read repeatedly or would be replaced. Anything else
//         is a complaint on standard error.
#pragma once

#include <cstddef>

#include "tool/command_line.hpp"
#include "tool/messages.hpp"

namespace textio::tool {

// A page of more would be more than a browser shows at ease.
inline constexpr std::size_t kMostFilesOfPage = 1000;

// Returns the exit status: as answer_files. The arguments have a path for the page.
int write_page(const Arguments& arguments, const Streams& streams);

}  // namespace textio::tool
