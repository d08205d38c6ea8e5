// fread leaves doubled quotes in cells as they are. Where they are doubled in quoted cells alone, as here, each pair is
// one quote.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/r_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

constexpr Abilities kAbilities = {.codecs = Codecs::duckdb,
                                  .takes_decimal_comma = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

std::string call(const Facts& facts, const std::string& source) {
  std::vector<std::string> types;
  std::vector<std::string> texts;
  for (const ColumnFact& column : facts.columns) {
    types.emplace_back(is_r_number(column) ? "\"numeric\"" : "\"character\"");
    if (column.is_text()) texts.push_back(r_text(column.name));
  }
  const bool is_latin = facts.encoding == "ISO-8859-1";
  std::string text = fmt::format(
      "table <- fread(\n"
      "  {},\n"
      "  sep = {},\n"
      "  quote = {},\n"
      "  skip = {},\n"
      "  header = {},\n"
      "  col.names = {},\n"
      "  colClasses = c({}),\n"
      "  dec = {},\n"
      "  na.strings = \"\",\n"
      "  strip.white = FALSE,\n"
      "  encoding = \"{}\"\n"
      ")\n",
      source, r_text(facts.delimiters[0]), r_text(facts.quote),
      facts.is_converted ? 0 : facts.lines_to_skip(), facts.is_converted ? "TRUE" : "FALSE",
      r_names(facts), joined(types), r_text(common_decimal(facts)), is_latin ? "Latin-1" : "UTF-8");
  if (!texts.empty() && !facts.quote.empty()) {
    text += fmt::format(
        "for (name in c({})) set(table, j = name, value = gsub('\"\"', '\"', table[[name]], fixed "
        "= TRUE))\n",
        joined(texts));
  }
  return text;
}

}  // namespace

std::string fread_program(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty()) obstacle = r_obstacle(facts);
  const std::string text =
      opening_comment(facts, "#", "fread", "the data.table `table`", obstacle) +
      "library(data.table)\n\n";
  if (obstacle.empty()) {
    return text + call(facts, "file = " + r_text(plain_path(facts.path))) + r_conversions(facts) +
           "print(table)\n";
  }
  const Facts plain = converted(facts);
  return text + call(plain, "cmd = " + r_text(convert_command(facts))) + r_conversions(plain) +
         "print(table)\n";
}

}  // namespace textio::tool
