// All commands of the tool and their options, as the command lines declare them: what the man page, the completions and
// `vltext help` are made from.
//
//   for (const CommandEntry& command : command_table()) {
//     command.options[0].names;     // {"-h", "--help"}
//   }
//
// Errors  std::bad_alloc.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <CLI/App.hpp>

namespace textio::tool {

struct OptionEntry {
  std::vector<std::string> names;  // with their hyphens, the short one first
  std::string value;               // as the help calls it; empty: a flag
  std::string help;
  std::string group;
  std::vector<std::string> words;   // the values that are understood; empty: any
  bool has_optional_value = false;  // which is one of the words, after "="

  // Whether the value is the name of a file.
  bool takes_file() const;
};

struct CommandEntry {
  std::string name;  // empty: the layouts of files, without a name
  std::string arguments;
  std::string summary;
  std::string description;
  std::string footer;
  std::vector<OptionEntry> options;
  std::string help;
};

// `name` as the user types it.
CommandEntry entry_of(const CLI::App& app, const std::string& name);

// That without a name first.
std::vector<CommandEntry> command_table();

// The names of the commands.
std::vector<std::string> command_names();

// What is said about a command in a line: its arguments and what it does. `name` must be one of them.
struct CommandLineOfHelp {
  std::string_view name;
  std::string_view arguments;
  std::string_view summary;
};
const std::vector<CommandLineOfHelp>& command_lines();

}  // namespace textio::tool
