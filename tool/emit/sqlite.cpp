// The shell fills a table of texts; a second table gets the values. Its reader takes an empty cell for an empty text, so
// that missing values become such by the query.
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
                                  .takes_boolean_words = true};

const char* type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
    case ColumnType::boolean:
      return "INTEGER";
    case ColumnType::real:
      return "REAL";
    default:
      return "TEXT";
  }
}

std::string value_of(const ColumnFact& column) {
  std::string cell = sql_identifier(column.name);
  if (column.is_text()) return cell;
  for (const std::string& word : missing_of(column)) {
    cell = fmt::format("nullif({}, {})", cell, sql_text(word));
  }
  if (column.type == ColumnType::boolean) {
    return fmt::format("CASE {} WHEN {} THEN 1 WHEN {} THEN 0 END", cell,
                       sql_text(column.true_word), sql_text(column.false_word));
  }
  const bool is_number = column.type == ColumnType::integer || column.type == ColumnType::real;
  if (is_number && !column.grouping.empty()) {
    cell = fmt::format("replace({}, {}, '')", cell, sql_text(column.grouping));
  }
  if (column.type == ColumnType::real && column.decimal != ".") {
    cell = fmt::format("replace({}, {}, '.')", cell, sql_text(column.decimal));
  }
  if (is_number) return fmt::format("CAST({} AS {})", cell, type_of(column));
  return cell;
}

std::string script(const Facts& facts, const std::string& source) {
  std::vector<std::string> cells;
  std::vector<std::string> columns;
  std::vector<std::string> values;
  for (const ColumnFact& column : facts.columns) {
    const std::string name = sql_identifier(column.name);
    cells.push_back(fmt::format("  {} TEXT", name));
    columns.push_back(fmt::format("  {} {}", name, type_of(column)));
    values.push_back(fmt::format("  {}", value_of(column)));
  }
  return fmt::format(
      "CREATE TEMP TABLE \"cells\"(\n{}\n);\n"
      ".mode csv\n.separator {} \"\\n\"\n"
      ".import --schema temp --skip {} {} cells\n"
      "CREATE TABLE \"data\"(\n{}\n);\n"
      "INSERT INTO \"data\" SELECT\n{}\nFROM temp.\"cells\";\n"
      "DROP TABLE temp.\"cells\";\n"
      ".headers on\n.mode csv\nSELECT * FROM \"data\";\n",
      joined(cells, ",\n"), sqlite_argument(facts.delimiters[0]), facts.lines_to_skip(),
      sqlite_argument(source), joined(columns, ",\n"), joined(values, ",\n"));
}

}  // namespace

std::string sqlite_program(const Facts& facts) {
  const std::string obstacle = find_obstacle(facts, kAbilities);
  const std::string text = opening_comment(facts, "--", "SQLite", "the table \"data\"", obstacle);
  if (obstacle.empty()) return text + script(facts, plain_path(facts.path));
  return text + script(converted(facts), fmt::format("|{}", convert_command(facts)));
}

}  // namespace textio::tool
