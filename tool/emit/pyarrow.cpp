#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::python,
                                  .skips_blank_lines = true,
                                  .takes_other_quotes = true,
                                  .takes_backslash = true,
                                  .takes_decimal_comma = true};

std::string type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "pa.int64()";
    case ColumnType::real:
      return "pa.float64()";
    case ColumnType::boolean:
      return "pa.bool_()";
    case ColumnType::date:
      return "pa.date32()";
    case ColumnType::time:
      return "pa.time64(\"us\")";
    case ColumnType::date_time:
      return column.is_utc ? "pa.timestamp(\"us\", \"UTC\")" : "pa.timestamp(\"us\")";
    default:
      return "pa.string()";
  }
}

std::string call(const Facts& facts, const std::string& source) {
  std::vector<std::string> types;
  for (const ColumnFact& column : facts.columns) {
    types.push_back(
        fmt::format("            {}: {},\n", python_text(column.name), type_of(column)));
  }
  std::string text = fmt::format("table = csv.read_csv(\n    {},\n", source);
  text += fmt::format(
      "    read_options=csv.ReadOptions(\n"
      "        encoding={},\n"
      "        skip_rows={},\n"
      "        column_names=[{}],\n"
      "    ),\n",
      python_text(encoding_for(facts, Codecs::python)), facts.lines_to_skip(),
      joined(name_literals(facts, python_text)));
  text += fmt::format(
      "    parse_options=csv.ParseOptions(\n"
      "        delimiter={},\n"
      "        quote_char={},\n"
      "        escape_char={},\n"
      "        newlines_in_values={},\n"
      "    ),\n",
      python_text(facts.delimiters[0]), facts.quote.empty() ? "False" : python_text(facts.quote),
      facts.has_backslash ? "\"\\\\\"" : "False", facts.has_breaks_in_cells ? "True" : "False");
  text += fmt::format(
      "    convert_options=csv.ConvertOptions(\n"
      "        column_types={{\n{}        }},\n"
      "        null_values=[\"\"],\n"
      "        true_values=[\"true\"],\n"
      "        false_values=[\"false\"],\n"
      "        strings_can_be_null=False,\n"
      "        decimal_point={},\n"
      "    ),\n)\n",
      joined(types, ""), python_text(common_decimal(facts)));
  for (const ColumnFact* column : columns_of(facts, {ColumnType::duration})) {
    text += fmt::format(
        "# {} holds durations as ISO 8601 writes them, which pyarrow does not read: text.\n",
        comment_text(column->name));
  }
  return text;
}

}  // namespace

std::string pyarrow_obstacle(const Facts& facts) { return find_obstacle(facts, kAbilities); }

std::string pyarrow_program(const Facts& facts) {
  const std::string obstacle = pyarrow_obstacle(facts);
  const std::string opening =
      opening_comment(facts, "#", "pyarrow", "the pyarrow table `table`", obstacle);
  if (obstacle.empty()) {
    return opening + "import pyarrow as pa\nfrom pyarrow import csv\n\n" +
           call(facts, python_text(plain_path(facts.path))) + "print(table)\n";
  }
  return opening +
         "import io\nimport subprocess\n\nimport pyarrow as pa\nfrom pyarrow import csv\n\n" +
         python_conversion(facts) + call(converted(facts), "io.BytesIO(converted)") +
         "print(table)\n";
}

}  // namespace textio::tool
