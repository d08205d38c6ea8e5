// What the tool prints about layouts for programs to read.
#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include <vltextstream/standalone/detect_layout.hpp>

namespace textio::tool {

// Number of the shape of the JSON; it grows when a member changes its meaning or goes away.
inline constexpr int kJsonSchema = 1;

// The members of a layout under their own names, "file" in front.
nlohmann::ordered_json json_report(const std::string& file, const standalone::Layout& layout);

}  // namespace textio::tool
