// The overview of a page of several files: which are laid out alike and have the same columns, and how the odd ones differ
// from most. The groups are those of `vltext groups`.
//
// Errors  std::bad_alloc.
#pragma once

#include <string>
#include <vector>

#include "tool/html/page.hpp"

namespace textio::tool {

std::string overview_html(const std::vector<PageFile>& files, double least_confidence);

}  // namespace textio::tool
