// The command line of vltext.
//
//   const Arguments arguments = parse_command_line(argc, argv);
//   arguments.files;                    // {"gauge.csv"}
//   arguments.settings.num_lines;       // of --lines
//
// Errors  TextWanted for --help and --version; UsageError and BadArgument for what is wrong. Their
//         messages are one sentence, and repeat at most kLongestEcho characters of an argument.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/conventions/command_table.hpp"
#include "tool/option_flags.hpp"
#include "tool/showing/picture_choice.hpp"
#include "tool/usage_errors.hpp"

namespace textio::tool {

struct Arguments {
  std::vector<std::string> files;  // as they were typed, folders among them; at least one
  std::vector<GivenOption> given;
  standalone::DetectSettings settings;
  std::optional<std::size_t> num_jobs;

  // How sure an answer must be for the exit status 0.
  unsigned long least_percent = 50;
  bool json = false;
  bool jsonl = false;

  // Also the settings that are the default, and the reports of many files.
  bool is_verbose = false;

  // Also the files of the folders below a given one.
  bool is_recursive = false;

  // The target of --emit; then there is one file, a path.
  std::optional<std::string> emit;

  // Where the page of --html is written to.
  std::optional<std::string> html;
  bool explain = false;
  bool explains_cascade = false;
  bool no_progress = false;

  PictureOptions showing;
  std::optional<TerminalStyle>
      picture;  // what follows from them; without a value, no picture is shown
};

Arguments parse_command_line(int argc, const char* const* argv);

// The options of the command, as they are declared.
CommandEntry layout_command();

}  // namespace textio::tool
