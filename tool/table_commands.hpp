// The command lines of `vltext convert` and `vltext head`.
//
//   const ConvertArguments arguments = parse_convert_line(argc, argv);   // argv[1] is "convert"
//   arguments.format;                                                    // of --to, or of the extension of -o
//
// Errors  as parse_command_line.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/reading/table_reader.hpp>

#include "tool/conventions/command_table.hpp"
#include "tool/option_flags.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {

enum class Format { csv, tsv, jsonl, sqlite };

// The word after --to, and the extension of a file that is named after its input.
std::string_view to_string(Format format);

struct ConvertArguments {
  std::vector<std::string> files;  // at least one
  std::vector<GivenOption> given;
  reading::ReadSettings settings;

  Format format = Format::csv;
  std::optional<std::string> out;  // otherwise standard output
  std::optional<std::string> rejects;
  std::optional<std::string> table;
  std::optional<bool> widens;  // of --widen and --no-widen
  bool strict = false;
  bool force = false;
  bool no_progress = false;

  // Whether the user chose what becomes of such cells, or records.
  bool is_given(std::string_view option) const;
};

struct HeadArguments {
  std::vector<std::string> files;  // at least one
  reading::ReadSettings settings;
  std::size_t num_rows = 10;
};

ConvertArguments parse_convert_line(int argc, const char* const* argv);
HeadArguments parse_head_line(int argc, const char* const* argv);

// The options of the commands, as they are declared.
CommandEntry convert_command();
CommandEntry head_command();

}  // namespace textio::tool
