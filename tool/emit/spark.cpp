// All cells are read as texts, and a query makes values of them. Spark reads files in parts, so that it takes no pipe:
// the converted table is a file for as long as the program runs.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::spark,
                                  .skips_lines = false,
                                  .takes_other_quotes = true,
                                  .takes_decimal_comma = true,
                                  .takes_own_marks = true,
                                  .takes_grouping = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .expands_paths = true};

std::string value_of(const ColumnFact& column, const std::string& cell) {
  std::string value = fmt::format("F.col(\"{}\")", cell);
  if (column.is_text()) return fmt::format("F.coalesce({}, F.lit(\"\"))", value);
  std::vector<std::string> words;
  for (const std::string& word : missing_of(column)) words.push_back(python_text(word));
  value = fmt::format("F.when(~{0}.isin({1}), {0})", value, joined(words));
  if (column.type == ColumnType::boolean) {
    return fmt::format("F.when({0} == {1}, True).when({0} == {2}, False)", value,
                       python_text(column.true_word), python_text(column.false_word));
  }
  const bool is_number = column.type == ColumnType::integer || column.type == ColumnType::real;
  if (is_number && !column.grouping.empty()) {
    value =
        fmt::format("F.replace({}, F.lit({}), F.lit(\"\"))", value, python_text(column.grouping));
  }
  if (column.type == ColumnType::real && column.decimal != ".") {
    value =
        fmt::format("F.replace({}, F.lit({}), F.lit(\".\"))", value, python_text(column.decimal));
  }
  switch (column.type) {
    case ColumnType::integer:
      return value + ".cast(\"bigint\")";
    case ColumnType::real:
      return value + ".cast(\"double\")";
    case ColumnType::date:
      return value + ".cast(\"date\")";
    case ColumnType::date_time:
      return value + (column.is_utc ? ".cast(\"timestamp\")" : ".cast(\"timestamp_ntz\")");
    default:
      return value;
  }
}

std::string named_value(const ColumnFact& column, const std::string& cell) {
  return fmt::format("    {}.alias({}),\n", value_of(column, cell), python_text(column.name));
}

std::string call(const Facts& facts, const std::string& source) {
  const auto [schema, values] = text_cells(facts, "string", named_value);
  return fmt::format(
      "cells = spark.read.csv(\n"
      "    {},\n"
      "    schema=\"{}\",\n"
      "    header={},\n"
      "    enforceSchema=True,\n"
      "    encoding={},\n"
      "    sep={},\n"
      "    quote={},\n"
      "    escape={},\n"
      "    multiLine=True,\n"
      "    emptyValue=\"\",\n"
      "    mode=\"FAILFAST\",\n"
      ")\n"
      "table = cells.select(\n{})\n"
      "table.show()\n",
      source, joined(schema), facts.lines_to_skip() == 1 ? "True" : "False",
      python_text(encoding_for(facts, Codecs::spark)), python_text(facts.delimiters[0]),
      python_text(facts.quote), python_text(facts.quote), joined(values, ""));
}

}  // namespace

std::string spark_program(const Facts& facts) {
  const std::string obstacle = find_obstacle(facts, kAbilities);
  const std::string opening = opening_comment(facts, "#", "Spark", "the frame `table`", obstacle);
  const std::string session =
      "spark = SparkSession.builder.config(\"spark.sql.session.timeZone\", "
      "\"UTC\").getOrCreate()\n";
  const std::string imports =
      "from pyspark.sql import SparkSession\nfrom pyspark.sql import functions as F\n\n";
  if (obstacle.empty()) {
    return opening + imports + session + call(facts, python_text(plain_path(facts.path)));
  }
  return opening + "import pathlib\nimport subprocess\nimport tempfile\n\n" + imports + session +
         python_conversion(facts) +
         "folder = tempfile.TemporaryDirectory()\n"
         "file = pathlib.Path(folder.name, \"converted.csv\")\n"
         "file.write_bytes(converted)\n" +
         call(converted(facts), "str(file)");
}

}  // namespace textio::tool
