// What the tool prints about layouts for programs to read; docs/json.md describes it.
#pragma once

#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <vltextstream/layout/detect_layout.hpp>

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
// Bytes that are no UTF-8 become U+FFFD. One thread at a time: the JSON library asks the C library
// for the conventions of the locale, which keeps the answer in one place for all.
std::string json_text(const nlohmann::ordered_json& document);

// The same in pieces, so that no more than their text is kept: the members of a file as they stand
// in the list of the files, and the document with such members, separated by kJsonSeparator.
inline constexpr const char* kJsonSeparator = ",\n";
std::string json_member(const nlohmann::ordered_json& file);
std::string json_text(const standalone::DetectSettings& settings,
                      const std::vector<GivenOption>& given, const std::string& members);

}  // namespace textio::tool
