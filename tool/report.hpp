// What the tool prints about a layout for people to read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The layout of one file, in lines; with the candidates and filters if the layout has a trace.
// What was given on the command line is repeated, and so is the kind of a file without a table.
std::string report(const std::string& file, const standalone::Layout& layout,
                   const std::vector<GivenOption>& given = {}, std::string_view file_kind = {});

}  // namespace textio::tool
