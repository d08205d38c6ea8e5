// What the tool prints about layouts for programs to read.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <vltextstream/standalone/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// Number of the shape of the JSON; it grows when a member changes its meaning or goes away.
inline constexpr int kJsonSchema = 1;

// The members of a layout under their own names, "file" in front, and in "given" the options of the
// command line as they were typed.
nlohmann::ordered_json json_report(const std::string& file, const standalone::Layout& layout,
                                   const std::vector<GivenOption>& given = {});

}  // namespace textio::tool
