#include "tool/help.hpp"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <fmt/format.h>

#include "tool/option_flags.hpp"

namespace textio::tool {
namespace {

constexpr std::size_t kWidth = 79;
constexpr std::size_t kTextColumn = 30;

// Appends `text` word by word from the present column on; further lines begin at `indent`.
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

void append_options(std::string& out, bool for_import) {
  for (const OptionFlag& flag : option_flags()) {
    if (flag.for_import != for_import) continue;
    append_option(out, fmt::format("{} {}", flag_of(flag.name), flag.placeholder), flag.help);
  }
}

}  // namespace

std::string help_text() {
  std::string out =
      "Usage: vltext [OPTION]... FILE...\n"
      "Print how the table in each text FILE is laid out. FILE may be - for standard\n"
      "input, a pipe, and compressed with gzip or zstd whatever its name.\n\n";
  append_option(out, "-h, --help", "Print this help and exit");
  append_option(out, "--version", "Print the version and exit");
  append_option(out, "--json", "Print one JSON document instead of text");
  append_option(out, "--explain",
                "Also print the candidates, their scores and what each filter left");
  append_option(out, "--lines N",
                "Sample N data lines from the start of each file, 100 if not given");
  append_option(
      out, "--jobs N",
      "Look at N files at a time, 1 to 256, each of which takes memory; if not given, as many as "
      "there are processors");
  append_option(out, "--max-bytes N",
                "Read at most N bytes of each file, before and after decompression, 67108864 if "
                "not given; a sample that takes more is an error");
  append_option(out, "--no-progress",
                "Do not count the files on standard error, which is done only on a terminal");
  out += "\nWhat is known about the files:\n";
  append_options(out, false);
  append_option(out, "--option NAME=VALUE",
                "Any option of this list or the next by its name, such as NumHeaderLines=2; "
                "NAME:=JSON gives a value of another class");
  out += "\nFor the import that may follow; checked, and without effect on the answer:\n";
  append_options(out, true);
  out += '\n';
  append_wrapped(
      out,
      "In texts \\t stands for a tab, \\n, \\r and \\b for the other control characters, and "
      "\\\\ for a backslash. Words may be shortened.",
      0);
  out += '\n';
  append_wrapped(out, "Exits with 0, or with 2 when a file cannot be read or an argument is wrong.",
                 0);
  return out;
}

}  // namespace textio::tool
