// \copy is one line, and psql takes what is between single quotes as it is, doubled quotes apart.
#include <stdexcept>

#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {
    .codecs = Codecs::postgres, .skips_lines = false, .takes_other_quotes = true};

const char* type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "bigint";
    case ColumnType::real:
      return "double precision";
    case ColumnType::boolean:
      return "boolean";
    case ColumnType::date:
      return "date";
    case ColumnType::time:
      return "time";
    case ColumnType::date_time:
      return column.is_utc ? "timestamptz" : "timestamp";
    default:
      return "text";
  }
}

// A longer name would be cut by the server, perhaps to that of another column.
constexpr std::size_t kLongestName = 63;  // bytes

std::string shortened_name(const std::string& name, std::size_t number) {
  const std::string ending = fmt::format("_{}", number);
  std::size_t length = kLongestName - ending.size();
  while (length > 0 && (static_cast<unsigned char>(name[length]) & 0xC0) == 0x80) --length;
  return name.substr(0, length) + ending;
}

Facts with_short_names(Facts facts, std::string& notes) {
  for (std::size_t i = 0; i < facts.columns.size(); ++i) {
    std::string& name = facts.columns[i].name;
    if (name.size() <= kLongestName) continue;
    const std::string whole = name;
    name = shortened_name(whole, i + 1);
    notes += fmt::format("-- PostgreSQL has no names of more than 63 bytes: {} is called {}.\n",
                         comment_text(whole), comment_text(name));
  }
  return facts;
}

// An interval is read from the durations of ISO 8601, but not from those with a minus before them.
std::string conversions(const Facts& facts) {
  std::string text;
  for (const ColumnFact* column : columns_of(facts, {ColumnType::duration})) {
    text += fmt::format(
        "ALTER TABLE \"data\" ALTER COLUMN {0} TYPE interval USING CASE WHEN {0} LIKE '-%' THEN "
        "-CAST(substr({0}, 2) AS interval) ELSE CAST({0} AS interval) END;\n",
        sql_identifier(column->name));
  }
  return text;
}

// The name of the encoding in the server is that of the file.
std::string script(const Facts& all, const std::string& source) {
  std::string text;
  const Facts facts = with_short_names(all, text);
  std::vector<std::string> columns;
  for (const ColumnFact& column : facts.columns) {
    columns.push_back(fmt::format("  {} {}", sql_identifier(column.name), type_of(column)));
  }
  if (source.find_first_of("\r\n") != std::string::npos) {
    throw std::runtime_error("a path with a line break cannot be said to \\copy");
  }
  text += fmt::format("CREATE TABLE \"data\" (\n{}\n);\n", joined(columns, ",\n"));
  text += fmt::format(
      "\\copy \"data\" FROM {} WITH (FORMAT csv, HEADER {}, DELIMITER {}, QUOTE {}, ENCODING {})\n",
      source, facts.lines_to_skip() == 1 ? "true" : "false", sql_text(facts.delimiters[0]),
      sql_text(facts.quote.empty() ? "\"" : facts.quote),
      sql_text(encoding_for(facts, Codecs::postgres)));
  return text + conversions(facts) + "TABLE \"data\";\n";
}

std::string own_obstacle(const Facts& facts) {
  return facts.has_mark ? "COPY does not leave out a byte-order mark" : "";
}

}  // namespace

std::string postgres_program(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty()) obstacle = own_obstacle(facts);
  const std::string text = opening_comment(facts, "--", "COPY", "the table \"data\"", obstacle);
  if (obstacle.empty()) return text + script(facts, sql_text(plain_path(facts.path)));
  return text + script(converted(facts), "PROGRAM " + sql_text(convert_command(facts)));
}

}  // namespace textio::tool
