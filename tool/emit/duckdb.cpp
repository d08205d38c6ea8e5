// All cells are read as texts, and a query makes values of them: so each column has its own words for missing values.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::duckdb,
                                  .takes_other_quotes = true,
                                  .takes_backslash = true,
                                  .takes_decimal_comma = true,
                                  .takes_own_marks = true,
                                  .takes_grouping = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true,
                                  .expands_paths = true};

std::string digits_of(const ColumnFact& column, std::string cell) {
  if (!column.grouping.empty()) {
    cell = fmt::format("replace({}, {}, '')", cell, sql_text(column.grouping));
  }
  if (column.type == ColumnType::real && column.decimal != ".") {
    cell = fmt::format("replace({}, {}, '.')", cell, sql_text(column.decimal));
  }
  return cell;
}

std::string value_of(const Facts& facts, const ColumnFact& column) {
  const std::string name = sql_identifier(column.name);
  if (column.is_text()) return fmt::format("coalesce({}, '')", name);
  std::string cell = name;
  for (const std::string& word : column.missing) {
    if (!word.empty()) cell = fmt::format("nullif({}, {})", cell, sql_text(word));
  }
  const bool is_iso = facts.is_converted;
  switch (column.type) {
    case ColumnType::integer:
      return fmt::format("CAST({} AS BIGINT)", digits_of(column, cell));
    case ColumnType::real:
      return fmt::format("CAST({} AS DOUBLE)", digits_of(column, cell));
    case ColumnType::boolean:
      return fmt::format("CASE {} WHEN {} THEN true WHEN {} THEN false END", cell,
                         sql_text(column.true_word), sql_text(column.false_word));
    case ColumnType::date:
      return is_iso ? fmt::format("CAST({} AS DATE)", cell)
                    : fmt::format("CAST(strptime({}, {}) AS DATE)", cell, sql_text(column.format));
    case ColumnType::date_time:
      if (is_iso)
        return fmt::format("CAST({} AS {})", cell, column.is_utc ? "TIMESTAMPTZ" : "TIMESTAMP");
      return fmt::format("strptime({}, {})", cell, sql_text(column.format));
    case ColumnType::time:
      return fmt::format("CAST({} AS TIME)", cell);
    default:
      return cell;
  }
}

std::string select(const Facts& facts, const std::string& path) {
  std::vector<std::string> values;
  std::vector<std::string> cells;
  for (const ColumnFact& column : facts.columns) {
    const std::string name = sql_identifier(column.name);
    values.push_back(fmt::format("  {} AS {}", value_of(facts, column), name));
    cells.push_back(fmt::format("{}: 'VARCHAR'", sql_text(column.name)));
  }
  std::string text = fmt::format(
      "SELECT\n{}\n"
      "FROM read_csv(\n  {},\n"
      "  auto_detect = false,\n  header = false,\n  skip = {},\n"
      "  delim = {},\n  quote = {},\n  escape = {},\n",
      joined(values, ",\n"), sql_text(path), facts.lines_to_skip(), sql_text(facts.delimiters[0]),
      sql_text(facts.quote), facts.has_backslash ? sql_text("\\") : sql_text(facts.quote));
  if (facts.encoding != "UTF-8") {
    text += fmt::format("  encoding = {},\n", sql_text(encoding_for(facts, Codecs::duckdb)));
  }
  for (const ColumnFact* column : columns_of(facts, {ColumnType::duration})) {
    text += fmt::format(
        "  -- {} holds durations as ISO 8601 writes them, which DuckDB does not read: text.\n",
        comment_text(column->name));
  }
  return text + fmt::format("  columns = {{{}}}\n)", joined(cells));
}

std::string query(const Facts& facts, const std::string& path) {
  return "CREATE OR REPLACE TABLE \"data\" AS " + select(facts, path) + ";\nFROM \"data\";\n";
}

}  // namespace

std::string duckdb_obstacle(const Facts& facts) { return find_obstacle(facts, kAbilities); }

std::string duckdb_query(const Facts& facts) { return select(facts, plain_path(facts.path)); }

std::string duckdb_program(const Facts& facts) {
  const std::string obstacle = duckdb_obstacle(facts);
  std::string text = opening_comment(facts, "--", "DuckDB", "the table \"data\"", obstacle);
  if (obstacle.empty()) return text + query(facts, plain_path(facts.path));
  text += fmt::format("-- {} | duckdb -f THIS_FILE\n", comment_text(convert_command(facts)));
  return text + query(converted(facts), "/dev/stdin");
}

}  // namespace textio::tool
