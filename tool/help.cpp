#include "tool/help.hpp"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "tool/conventions/command_table.hpp"
#include "tool/option_words.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kWidth = 79;
constexpr std::size_t kTextColumn = 30;

// Appends `text` word by word from the current column on; further lines are indented.
void append_wrapped(std::string& out, std::string_view text, std::size_t indent) {
  const std::size_t line_break = out.rfind('\n');
  std::size_t column = out.size() - (line_break == std::string::npos ? 0 : line_break + 1);
  bool begins_line = true;
  while (!text.empty()) {
    const std::size_t length = std::min(text.find(' '), text.size());
    const std::string_view word = text.substr(0, length);
    text.remove_prefix(std::min(length + 1, text.size()));
    if (!begins_line && column + 1 + word.size() > kWidth) {
      out += '\n' + std::string(indent, ' ');
      column = indent;
      begins_line = true;
    }
    if (!begins_line) out += ' ';
    column += word.size() + (begins_line ? 0 : 1);
    out += word;
    begins_line = false;
  }
  out += '\n';
}

void append_option(std::string& out, const std::string& flag, std::string_view text) {
  out += "  " + flag;
  if (flag.size() + 2 >= kTextColumn - 1) {
    out += '\n' + std::string(kTextColumn, ' ');
  } else {
    out += std::string(kTextColumn - 2 - flag.size(), ' ');
  }
  append_wrapped(out, text, kTextColumn);
}

}  // namespace

const char* const kDescription =
    "Print how the table in each text FILE is laid out. FILE may be - for standard input, or a "
    "pipe. It may be compressed with gzip or zstd, whatever its name. A folder means the files in "
    "it. Of more than 20 files a summary is printed: the groups that are laid out alike, and the "
    "odd ones.";

const char* const kExitStatus =
    "Exits with 0, with 1 when no table was found in a file or not with confidence, or with 2 when "
    "a "
    "file cannot be read or an argument is wrong.";

std::span<const HelpExample> help_examples() {
  static constexpr HelpExample kExamples[] = {
      {"vltext data.csv", "The delimiter and columns, and how sure"},
      {"vltext --explain data.csv", "What speaks for the answer, and against it"},
      {"vltext --delimiter ';' data.csv", "The delimiter is known: what else?"},
      {"vltext data.csv --emit pandas", "A Python program that reads it with pandas"},
      {"vltext head data.csv -n 5", "The first rows of the table"},
      {"vltext convert data.csv -o t.db", "The whole table, in a SQLite database"},
  };
  return kExamples;
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
  const bool has_commands = name == "vltext";
  std::string out = "Usage: " + name + " [OPTION]... FILE...\n";
  if (has_commands) out += "       vltext COMMAND ...\n";
  append_wrapped(out, app->get_description(), 0);
  if (has_commands) {
    out += "\nCommands:\n";
    for (const CommandLineOfHelp& line : command_lines()) {
      if (line.name.empty()) continue;
      append_option(out, fmt::format("{} {}", line.name, line.arguments), line.summary);
    }
    out += "\nExamples:\n";
    for (const HelpExample& example : help_examples())
      out += fmt::format("  {:<32} {}\n", example.command, example.what);
  }
  out += make_groups(app, mode) + make_subcommands(app, mode);
  return out + '\n' + make_footer(app);
}

std::string HelpFormatter::make_group(std::string group, bool is_positional,
                                      std::vector<const CLI::Option*> options) const {
  std::string out = group == kGeneralGroup ? "\n" : group + ":\n";  // blank lines are between them
  for (const CLI::Option* option : options) out += make_option(option, is_positional);
  return out;
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool /*is_positional*/) const {
  const bool takes_value = option->get_items_expected() > 0;
  std::string flag = option->get_name(false, true);
  if (const std::size_t comma = flag.find(','); comma != std::string::npos) {
    flag.insert(comma + 1, 1, ' ');
  }
  if (takes_value) flag += ' ' + option->get_type_name();
  if (!takes_value && !option->get_lnames().empty()) {
    // A flag that may have one of a few words.
    const std::vector<std::string> words = words_of("--" + option->get_lnames().front());
    if (!words.empty()) flag += "[=" + either_of(words) + "]";
  }
  std::string out;
  append_option(out, flag, option->get_description());
  return out;
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
  std::string out;
  append_wrapped(
      out,
      "In texts, \\t is a tab, \\n, \\r and \\b are the other control characters, and \\\\ is a "
      "backslash. Words may be shortened.",
      0);
  const std::string footer = app->get_footer();
  std::string_view rest = footer;  // a line for each paragraph
  while (!rest.empty()) {
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    out += '\n';
    append_wrapped(out, rest.substr(0, end), 0);
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return out;
}

}  // namespace textio::tool
