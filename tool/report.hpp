// What the tool prints about a layout for people to read.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The word for the value of an enumeration; the same for people and in JSON.
template <typename Enum>
std::string_view name_of(Enum value) {
  return to_string(value);
}

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
