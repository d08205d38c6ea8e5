// A data resource: the dialect and the schema of a table. Readers of it skip no lines but the one of the names, so that
// all else is read by way of `vltext convert`.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"
#include "tool/json_writer.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::web,
                                  .skips_lines = false,
                                  .takes_decimal_comma = true,
                                  .takes_own_marks = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

const char* type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "integer";
    case ColumnType::real:
      return "number";
    case ColumnType::boolean:
      return "boolean";
    case ColumnType::date:
      return "date";
    case ColumnType::time:
      return "time";
    case ColumnType::date_time:
      return "datetime";
    case ColumnType::duration:
      return "duration";
    default:
      return "string";
  }
}

void write_field(JsonWriter& json, const ColumnFact& column, bool is_converted) {
  json.begin_object();
  json.member("name", column.name);
  json.member("type", type_of(column));
  if (column.type == ColumnType::real && column.decimal != ".") {
    json.member("decimalChar", column.decimal);
  }
  if (column.type == ColumnType::boolean) {
    json.member("trueValues", std::vector<std::string>{column.true_word});
    json.member("falseValues", std::vector<std::string>{column.false_word});
  }
  const bool is_dated = column.type == ColumnType::date || column.type == ColumnType::date_time;
  if (is_dated && !is_converted) json.member("format", column.format);
  if (is_dated && is_converted)
    json.member("format", column.type == ColumnType::date ? "default" : "any");
  json.end_object();
}

void write_resource(JsonWriter& json, const Facts& facts, const std::string& path,
                    const std::string& note) {
  json.begin_object();
  if (!note.empty()) json.member("description", note);
  json.member("name", "table");
  json.member("path", path);
  json.member("profile", "tabular-data-resource");
  json.member("format", "csv");
  json.member("encoding", encoding_for(facts, Codecs::web));
  json.key("dialect");
  json.begin_object();
  json.member("header", facts.lines_to_skip() == 1);
  json.member("delimiter", facts.delimiters[0]);
  json.member("quoteChar", facts.quote.empty() ? "\"" : facts.quote);
  json.member("doubleQuote", true);
  json.member("skipInitialSpace", false);
  json.end_object();
  json.key("schema");
  json.begin_object();
  json.key("fields");
  json.array(facts.columns,
             [&](const ColumnFact& column) { write_field(json, column, facts.is_converted); });
  json.member("missingValues", std::vector<std::string>{""});
  json.end_object();
  json.end_object();
}

}  // namespace

std::string frictionless_document(const Facts& facts) {
  std::string obstacle = find_obstacle(facts, kAbilities);
  if (obstacle.empty() && plain_path(facts.path).starts_with('/')) {
    obstacle = "a path in a data resource is a relative one";
  }
  std::string text;
  JsonWriter json(text);
  if (obstacle.empty()) {
    write_resource(json, facts, facts.path, "");
  } else {
    const std::string note = fmt::format(
        "A reader of data resources cannot read this file rightly by itself: {}. First: {} > "
        "converted.csv",
        comment_text(obstacle), comment_text(convert_command(facts)));
    write_resource(json, converted(facts), "converted.csv", note);
  }
  return text += '\n';
}

}  // namespace textio::tool
