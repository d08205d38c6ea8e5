// All cells are read as texts, and a query makes values of them: so each column has its own words for missing values.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::utf8,
                                  .takes_decimal_comma = true,
                                  .takes_own_marks = true,
                                  .takes_grouping = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .expands_paths = true};

std::string value_of(const ColumnFact& column, const std::string& name) {
  if (column.is_text()) return name;
  std::string cell = name;
  for (const std::string& word : missing_of(column)) {
    cell = fmt::format("nullIf({}, {})", cell, clickhouse_text(word));
  }
  const bool is_number = column.type == ColumnType::integer || column.type == ColumnType::real;
  if (is_number && !column.grouping.empty()) {
    cell = fmt::format("replaceAll({}, {}, '')", cell, clickhouse_text(column.grouping));
  }
  if (column.type == ColumnType::real && column.decimal != ".") {
    cell = fmt::format("replaceAll({}, {}, '.')", cell, clickhouse_text(column.decimal));
  }
  const auto as = [&](const char* type) {
    return fmt::format("CAST({} AS Nullable({}))", cell, type);
  };
  switch (column.type) {
    case ColumnType::integer:
      return as("Int64");
    case ColumnType::real:
      return as("Float64");
    case ColumnType::boolean:
      return fmt::format("multiIf({0} = {1}, true, {0} = {2}, false, NULL)", cell,
                         clickhouse_text(column.true_word), clickhouse_text(column.false_word));
    case ColumnType::date:
      return as("Date32");
    case ColumnType::date_time:  // the function parses the empty text of a null as well
      return fmt::format("parseDateTime64BestEffortOrNull({}, 6, 'UTC')", cell);
    default:
      return cell;
  }
}

std::string named_value(const ColumnFact& column, const std::string& cell) {
  return fmt::format("  {} AS {}", value_of(column, cell), clickhouse_name(column.name));
}

std::string query(const Facts& facts, const std::string& path) {
  const auto [cells, values] = text_cells(facts, "String", named_value);
  return fmt::format(
      "SELECT\n{}\n"
      "FROM file({}, 'CSV', {})\n"
      "SETTINGS\n"
      "  format_csv_delimiter = {},\n"
      "  input_format_csv_skip_first_lines = {},\n"
      "  input_format_csv_detect_header = 0,\n"
      "  input_format_csv_trim_whitespaces = 0,\n"
      "  format_csv_allow_single_quotes = 0,\n"
      "  format_csv_allow_double_quotes = {};\n",
      joined(values, ",\n"), clickhouse_text(path), clickhouse_text(joined(cells)),
      clickhouse_text(facts.delimiters[0]), facts.lines_to_skip(), facts.quote.empty() ? 0 : 1);
}

std::string own_obstacle(const Facts& facts) {
  const bool is_blank = facts.delimiters[0] == "\t" || facts.delimiters[0] == " ";
  return is_blank ? "its format CSV takes no blank or tab for a delimiter" : "";
}

}  // namespace

std::string clickhouse_program(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty()) obstacle = own_obstacle(facts);
  std::string text = opening_comment(facts, "--", "ClickHouse", "the result of a query", obstacle);
  if (obstacle.empty()) return text + query(facts, plain_path(facts.path));
  text += fmt::format("-- {} | clickhouse local --queries-file THIS_FILE\n",
                      comment_text(convert_command(facts)));
  return text + query(converted(facts), "/dev/stdin");
}

}  // namespace textio::tool
