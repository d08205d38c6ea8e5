// What the tool prints about layouts for programs to read; docs/json.md describes it.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <vltextstream/standalone/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// Number of the shape of the JSON; it grows when a member changes its meaning or goes away.
inline constexpr int kJsonSchema = 2;

// The members of Layout under their own names and in their order.
nlohmann::ordered_json json_of(const standalone::Layout& layout);

// The members of DetectSettings, those of the options record among them, likewise.
nlohmann::ordered_json json_of(const standalone::DetectSettings& settings);

// The options of the command line as they were typed.
nlohmann::ordered_json json_of(const std::vector<GivenOption>& given);

// The document as it is printed, also on a terminal: in UTF-8, with what could command it escaped.
// Bytes that are no UTF-8 become U+FFFD.
std::string json_text(const nlohmann::ordered_json& document);

}  // namespace textio::tool
