// What can be said by options is said, so that little is left to be found. Words for missing values and comments are
// left: given words would count in columns of text too, and comments that are given begin at the start of a line.
#include <fmt/format.h>

#include "tool/emit/emit_words.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using standalone::LayoutMode;

std::vector<std::string> separators_of(const Facts& facts) {
  std::vector<std::string> options;
  if (facts.mode == LayoutMode::fixed_width) {
    std::vector<std::string> widths;
    for (const std::size_t width : facts.widths) widths.push_back(std::to_string(width));
    return {"--parser-type=fixedwidth", "--variable-widths=" + joined(widths, ",")};
  }
  if (facts.mode != LayoutMode::delimited || facts.is_framed) return options;
  for (const std::string& each : facts.delimiters) options.push_back("--delimiter=" + each);
  options.push_back("--quote=" + (facts.quote.empty() ? "none" : facts.quote));
  options.push_back(facts.has_backslash ? "--escape=backslash" : "--escape=doubled");
  return options;
}

// Whether the lines of the names and the data say all of what is above the data.
bool has_plain_heading(const Facts& facts) {
  const bool may_be_comment = !facts.comment.empty() && facts.mode == LayoutMode::delimited;
  return facts.num_names_lines < 2 && !may_be_comment && !facts.is_framed;
}

std::string marks_of(const Facts& facts) {
  if (facts.mode == LayoutMode::space_aligned) return "columns aligned with blanks are found again";
  if (facts.is_framed) return "the bars around the table are found again";
  if (!facts.comment.empty()) return "comments, and names that may be one, are found again";
  if (facts.num_names_lines > 1) return "names that are joined from several lines are found again";
  if (facts.mode == LayoutMode::line_reader) return "that its lines are not divided is found again";
  return "";
}

}  // namespace

std::string vltext_command(const Facts& facts) {
  std::vector<std::string> options = facts.given;
  if (options.empty()) {
    options.push_back("--encoding=" + facts.encoding);
    for (std::string& option : separators_of(facts)) options.push_back(std::move(option));
    if (has_plain_heading(facts)) {
      options.push_back(fmt::format("--names-line={}", facts.names_line.value_or(0)));
      if (facts.num_rows > 0)
        options.push_back(fmt::format("--data-line={}", facts.first_data_line));
    }
  }
  std::string text = fmt::format("# Writes {} as a clean table.\n", comment_text(facts.path));
  const std::string left = marks_of(facts);
  if (!left.empty()) text += fmt::format("# No option says all of this layout: {}.\n", left);
  text += "vltext convert";
  for (const std::string& option : options) text += " \\\n  " + shell_text(option);
  return text + " \\\n  --to csv " + shell_text(plain_path(facts.path)) + '\n';
}

}  // namespace textio::tool
