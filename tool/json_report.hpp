// What the tool prints about layouts for programs to read; docs/json.md describes it.
//
// A document is its opening, one member for each file with kJsonSeparator between them, and
// kJsonClosing. In JSON lines each file has a line: its member, or its failure. Every part is text that
// may be printed on a terminal, too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/json_writer.hpp"
#include "tool/option_flags.hpp"

namespace textio::tool {

// The version of the JSON's shape; it grows when a member changes its meaning or is removed.
inline constexpr int kJsonSchema = 5;

inline constexpr std::string_view kJsonSeparator = ",\n";
inline constexpr std::string_view kJsonClosing = "\n  ]\n}\n";

// The start of a document: the members of DetectSettings with those of the options record, under
// their own names and in their order, and the options of the command line as they were typed. Of the
// settings, only those that differ from their defaults, unless all are wanted.
std::string json_opening(const standalone::DetectSettings& settings,
                         const std::vector<GivenOption>& given, bool wants_all = false);

// The name of a file, and the members of its layout under their own names and in their order; after
// `no_table` the kind of a file without a table.
std::string json_member(const std::string& file, const standalone::Layout& layout,
                        const std::string& file_kind = {},
                        JsonWriter::Shape shape = JsonWriter::Shape::indented);

// The same in parts: `empty` is called with a text whenever there are JsonWriter::kFullAt bytes, and
// with the last of them. Nothing is allocated after the first call.
void write_json_member(const std::string& file, const standalone::Layout& layout,
                       const JsonWriter::Empty& empty, const std::string& file_kind = {},
                       JsonWriter::Shape shape = JsonWriter::Shape::indented);

// One line about a file that cannot be read, without its end.
std::string json_failure(const std::string& file, std::string_view problem);

}  // namespace textio::tool
