// What the tool prints about a layout for people to read.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

// The layout of one file, in lines. If it has a trace, how it came about is told; with the candidates and filters of
// the cascade if these chose it, or on request. What was given on the command line is repeated, and so is the kind of a
// file without a table. Of a table with many columns the first are listed.
std::string report(const std::string& file, const standalone::Layout& layout,
                   const std::vector<GivenOption>& given = {}, std::string_view file_kind = {},
                   bool explains_cascade = false, std::size_t most_columns = 60);

// What the report says, part by part, for those who arrange it otherwise. All texts are printable; those without
// anything to say are empty.
struct RivalWords {
  std::string what;
  std::string percent;
  std::string why_lost;
};

struct ColumnWords {
  std::string kind;
  std::string name;
  std::string unit;
  std::vector<std::string> details;
};

struct LayoutWords {
  std::string layout;      // "delimited by ','"
  std::string no_table;    // "this is probably running text"
  std::string confidence;  // "98 %"
  std::string names;
  std::string written;
  std::string encoding;
  std::string line_ending;
  std::string lines;
  std::string looked_at;
  std::vector<RivalWords> rivals;  // the likeliest first
  std::vector<std::string> evidence_for;
  std::vector<std::string> evidence_against;
  std::vector<ColumnWords> columns;  // the first of them
};

LayoutWords words_of(const standalone::Layout& layout, std::size_t most_columns,
                     std::string_view file_kind = {});

}  // namespace textio::tool
