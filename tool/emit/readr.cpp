#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/r_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

constexpr Abilities kAbilities = {.codecs = Codecs::icu,
                                  .takes_other_quotes = true,
                                  .takes_decimal_comma = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

std::string call(const Facts& facts, const std::string& source) {
  std::vector<std::string> types;
  for (const ColumnFact& column : facts.columns) {
    types.emplace_back(is_r_number(column) ? "col_double()" : "col_character()");
  }
  std::string locale = "encoding = " + r_text(encoding_for(facts, Codecs::icu));
  if (common_decimal(facts) != ".") {
    locale +=
        fmt::format(", decimal_mark = {}, grouping_mark = \".\"", r_text(common_decimal(facts)));
  }
  return fmt::format(
      "table <- read_delim(\n"
      "  {},\n"
      "  delim = {},\n"
      "  quote = {},\n"
      "  escape_double = TRUE,\n"
      "  escape_backslash = FALSE,\n"
      "  skip = {},\n"
      "  col_names = {},\n"
      "  col_types = list({}),\n"
      "  locale = locale({}),\n"
      "  na = \"\",\n"
      "  comment = \"\",\n"
      "  trim_ws = FALSE,\n"
      "  name_repair = \"minimal\",\n"
      "  progress = FALSE\n"
      ")\n",
      source, r_text(facts.delimiters[0]), r_text(facts.quote), facts.lines_to_skip(),
      r_names(facts), joined(types), locale);
}

}  // namespace

std::string readr_program(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty()) obstacle = r_obstacle(facts);
  const std::string text =
      opening_comment(facts, "#", "readr", "the tibble `table`", obstacle) + "library(readr)\n\n";
  if (obstacle.empty()) {
    return text + call(facts, r_text(plain_path(facts.path))) + r_conversions(facts) +
           "print(table)\n";
  }
  const Facts plain = converted(facts);
  return text + call(plain, r_pipe(facts)) + r_conversions(plain) + "print(table)\n";
}

}  // namespace textio::tool
