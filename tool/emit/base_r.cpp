#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/r_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

constexpr Abilities kAbilities = {.codecs = Codecs::iconv,
                                  .skips_blank_lines = true,
                                  .takes_other_quotes = true,
                                  .takes_decimal_comma = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

std::string call(const Facts& facts, const std::string& source) {
  std::vector<std::string> types;
  for (const ColumnFact& column : facts.columns) {
    const bool is_number = is_r_number(column) && !reads_numbers_as_texts(facts);
    types.emplace_back(is_number ? "\"numeric\"" : "\"character\"");
  }
  const bool is_utf8 = facts.encoding == "UTF-8" || facts.encoding == "US-ASCII";
  const std::string encoding =
      facts.is_converted ? ""
      : facts.has_mark   ? "  fileEncoding = \"UTF-8-BOM\",\n"
      : is_utf8          ? "  encoding = \"UTF-8\",\n"
                : fmt::format("  fileEncoding = {},\n", r_text(encoding_for(facts, Codecs::iconv)));
  return fmt::format(
      "table <- read.table(\n"
      "  {},\n"
      "  sep = {},\n"
      "  quote = {},\n"
      "  dec = {},\n"
      "  skip = {},\n"
      "  header = FALSE,\n"
      "  col.names = {},\n"
      "  check.names = FALSE,\n"
      "  colClasses = c({}),\n"
      "  na.strings = \"\",\n"
      "  blank.lines.skip = {},\n"
      "{}"
      "  comment.char = \"\"\n"
      ")\n",
      source, r_text(facts.delimiters[0]), r_text(facts.quote), r_text(common_decimal(facts)),
      facts.lines_to_skip(), r_names(facts), joined(types),
      facts.blank_lines > 0 ? "TRUE" : "FALSE", encoding);
}

std::string numbers(const Facts& facts) {
  std::string text;
  for (const ColumnFact& column : facts.columns) {
    if (!is_r_number(column) || !reads_numbers_as_texts(facts)) continue;
    const std::string cells = fmt::format("table[[{}]]", r_text(column.name));
    const std::string point =
        column.type == reading::ColumnType::integer || column.decimal == "."
            ? cells
            : fmt::format("sub({}, \".\", {}, fixed = TRUE)", r_text(column.decimal), cells);
    text += fmt::format("{} <- as.numeric({})\n", cells, point);
  }
  return text;
}

// A mark is known of UTF-8 alone.
std::string own_obstacle(const Facts& facts) {
  std::string obstacle = r_obstacle(facts);
  if (!obstacle.empty()) return obstacle;
  const bool is_utf8 = facts.encoding == "UTF-8";
  return facts.has_mark && !is_utf8 ? "R does not leave out its byte-order mark" : "";
}

}  // namespace

std::string base_r_program(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty()) obstacle = own_obstacle(facts);
  const std::string text =
      opening_comment(facts, "#", "read.table", "the data frame `table`", obstacle) + '\n';
  if (obstacle.empty()) {
    return text + call(facts, r_text(plain_path(facts.path))) + numbers(facts) +
           r_conversions(facts) + "print(table)\n";
  }
  const Facts plain = converted(facts);
  return text + call(plain, r_pipe(facts)) + r_conversions(plain) + "print(table)\n";
}

}  // namespace textio::tool
