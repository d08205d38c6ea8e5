// What the tool prints about a layout for people to read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The words for the values of a layout; the same for people and in JSON.
std::string_view name_of(standalone::LayoutMode mode);
std::string_view name_of(standalone::EncodingFound found);
std::string_view name_of(DatatypeCode code);
std::string_view name_of(detection::CandidateFate fate);
std::string_view name_of(detection::SelectionEnd end);
std::string_view name_of(standalone::NamesFound found);
std::string_view name_of(standalone::LineRole role);

// What a terminal might take for a command, or what would turn the text around it: control
// characters, separators of lines, marks of writing direction, and bytes that are no text.
bool is_unprintable(char16_t unit);

// UTF-8 text as it may safely be shown on a terminal: what could command it becomes U+FFFD.
std::string printable(std::string_view text);

// The layout of one file, in lines; with the candidates and filters if the layout has a trace.
// What was given on the command line is repeated.
std::string report(const std::string& file, const standalone::Layout& layout,
                   const std::vector<GivenOption>& given = {});

}  // namespace textio::tool
