// What the tool prints about a layout for people to read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The layout of one file, in lines. If it has a trace, how it came about is told; with the candidates and filters of
// the cascade if these chose it, or on request. What was given on the command line is repeated, and so is the kind of a
// file without a table.
std::string report(const std::string& file, const standalone::Layout& layout,
                   const std::vector<GivenOption>& given = {}, std::string_view file_kind = {},
                   bool explains_cascade = false);

}  // namespace textio::tool
