#include "tool/conventions/command_table.hpp"

#include <algorithm>

#include "tool/catalog/catalog_command.hpp"
#include "tool/command_line.hpp"
#include "tool/option_words.hpp"
#include "tool/table_commands.hpp"

namespace textio::tool {

bool OptionEntry::takes_file() const { return value == "OUT" || value == "REJECTS"; }

const std::vector<CommandLineOfHelp>& command_lines() {
  static const std::vector<CommandLineOfHelp> lines = {
      {"", "FILE...", "Print how the table in each FILE is laid out"},
      {"head", "FILE...", "Print the first rows of the table, and the types of its columns"},
      {"convert", "FILE...", "Read the whole table and write it as csv, tsv, jsonl or SQLite"},
      {"catalog", "FILE...", "Print a line of JSON for each file, or each file of a folder"},
      {"groups", "FILE...", "Print which files are laid out alike, and name the odd ones"},
      {"help", "[COMMAND]", "Print the help of a command"},
      {"man", "", "Print the manual page, for 'man -l -'"},
      {"completions", "SHELL", "Print the completions for bash, zsh or fish"},
  };
  return lines;
}

CommandEntry entry_of(const CLI::App& app, const std::string& name) {
  CommandEntry entry;
  entry.name = name;
  entry.description = app.get_description();
  entry.footer = app.get_footer();
  entry.help = app.help();
  for (const CLI::Option* option : app.get_options()) {
    if (option->get_positional()) continue;
    OptionEntry& added = entry.options.emplace_back();
    for (const std::string& letter : option->get_snames()) added.names.push_back("-" + letter);
    for (const std::string& word : option->get_lnames()) added.names.push_back("--" + word);
    if (option->get_items_expected() > 0) added.value = option->get_type_name();
    added.help = option->get_description();
    added.group = option->get_group();
    added.words = words_of(added.names.back());
    added.has_optional_value = added.value.empty() && !added.words.empty();
  }
  return entry;
}

std::vector<CommandEntry> command_table() {
  std::vector<CommandEntry> table = {layout_command(), head_command(), convert_command(),
                                     catalog_command(), groups_command()};
  for (const CommandLineOfHelp& line : command_lines()) {
    auto entry = std::find_if(table.begin(), table.end(),
                              [&](const CommandEntry& each) { return each.name == line.name; });
    if (entry == table.end()) {
      table.emplace_back();
      entry = table.end() - 1;
      entry->name = line.name;
      entry->help = "Usage: vltext " + entry->name + (line.arguments.empty() ? "" : " ") +
                    std::string(line.arguments) + "\n" + std::string(line.summary) + ".\n";
    }
    entry->arguments = line.arguments;
    entry->summary = line.summary;
  }
  return table;
}

std::vector<std::string> command_names() {
  std::vector<std::string> names;
  for (const CommandLineOfHelp& line : command_lines()) {
    if (!line.name.empty()) names.emplace_back(line.name);
  }
  return names;
}

}  // namespace textio::tool
