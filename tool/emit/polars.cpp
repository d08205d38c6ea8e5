// Lines are skipped without a look at quotes. An empty cell is null at first, also where it is an empty text.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::python,
                                  .takes_other_quotes = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true,
                                  .expands_paths = true};

const char* type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "pl.Int64";
    case ColumnType::real:
      return "pl.Float64";
    default:
      return "pl.String";
  }
}

std::string dictionary(const std::vector<std::string>& entries) {
  if (entries.empty()) return "{}";
  return "{\n        " + joined(entries, ",\n        ") + ",\n    }";
}

std::string call(const Facts& facts, const std::string& source) {
  std::vector<std::string> types;
  std::vector<std::string> words;
  for (const ColumnFact& column : facts.columns) {
    const std::string name = python_text(column.name);
    types.push_back(fmt::format("{}: {}", name, type_of(column)));
    for (const std::string& word : column.is_text() ? std::vector<std::string>() : column.missing) {
      if (!word.empty()) words.push_back(fmt::format("{}: {}", name, python_text(word)));
    }
  }
  std::string text = fmt::format("table = pl.read_csv(\n    {},\n", source);
  const auto argument = [&](const char* name, const std::string& value) {
    text += fmt::format("    {}={},\n", name, value);
  };
  if (facts.encoding != "UTF-8") {
    argument("encoding", python_text(encoding_for(facts, Codecs::python)));
  }
  argument("separator", python_text(facts.delimiters[0]));
  argument("quote_char", facts.quote.empty() ? "None" : python_text(facts.quote));
  argument("has_header", "False");
  argument("skip_lines", std::to_string(facts.lines_to_skip()));
  argument("schema", dictionary(types));
  if (!words.empty()) argument("null_values", dictionary(words));
  if (facts.num_rows == 0) argument("raise_if_empty", "False");
  return text + ")\n";
}

std::string conversion_of(const Facts& facts, const ColumnFact& column) {
  const std::string cells = fmt::format("pl.col({}).replace(\"\", None)", python_text(column.name));
  switch (column.type) {
    case ColumnType::boolean:
      return fmt::format(
          "{}.replace_strict({{{}: True, {}: False, None: None}}, return_dtype=pl.Boolean)", cells,
          python_text(column.true_word), python_text(column.false_word));
    case ColumnType::date:
      return fmt::format("{}.str.to_date({})", cells, python_text(column.format));
    case ColumnType::date_time: {
      const char* const fraction = facts.is_converted ? "%.f" : "";
      const char* const zone = column.is_utc ? "Z" : "";
      return fmt::format("{}.str.to_datetime({}, time_unit=\"us\"){}", cells,
                         python_text(column.format + fraction + zone),
                         column.is_utc ? ".dt.replace_time_zone(\"UTC\")" : "");
    }
    case ColumnType::time:
      return fmt::format("{}.str.to_time({})", cells,
                         facts.is_converted ? "\"%H:%M:%S%.f\"" : "\"%H:%M:%S\"");
    case ColumnType::text:
    case ColumnType::category:
      return fmt::format("pl.col({}).fill_null(\"\")", python_text(column.name));
    default:
      return "";
  }
}

std::string conversions(const Facts& facts) {
  std::vector<std::string> all;
  std::string notes;
  for (const ColumnFact& column : facts.columns) {
    std::string conversion = conversion_of(facts, column);
    if (!conversion.empty()) all.push_back(std::move(conversion));
    if (column.type == ColumnType::duration) {
      notes += fmt::format(
          "# {} holds durations as ISO 8601 writes them, which polars does not read: text.\n",
          comment_text(column.name));
    }
  }
  if (all.empty()) return notes;
  return fmt::format("table = table.with_columns(\n    {},\n)\n", joined(all, ",\n    ")) + notes;
}

}  // namespace

std::string polars_obstacle(const Facts& facts) { return find_obstacle(facts, kAbilities); }

std::string polars_program(const Facts& facts) {
  const std::string obstacle = polars_obstacle(facts);
  const std::string opening = opening_comment(facts, "#", "polars", "the frame `table`", obstacle);
  if (obstacle.empty()) {
    return opening + "import polars as pl\n\n" + call(facts, python_text(plain_path(facts.path))) +
           conversions(facts) + "print(table)\n";
  }
  const Facts plain = converted(facts);
  return opening + "import subprocess\n\nimport polars as pl\n\n" + python_conversion(facts) +
         call(plain, "converted") + conversions(plain) + "print(table)\n";
}

}  // namespace textio::tool
