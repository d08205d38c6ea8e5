// Names and types are given, so that pandas looks for neither; words for missing values count in their columns alone.
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
                                  .takes_decimal_comma = true,
                                  .takes_grouping = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

const char* type_of(const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return "Int64";
    case ColumnType::real:
      return "float64";
    default:
      return "string";
  }
}

std::string dictionary(const std::vector<std::string>& entries) {
  if (entries.empty()) return "{}";
  return "{\n        " + joined(entries, ",\n        ") + ",\n    }";
}

std::string types_of(const Facts& facts) {
  std::vector<std::string> types;
  for (const ColumnFact& column : facts.columns) {
    types.push_back(fmt::format("{}: \"{}\"", python_text(column.name), type_of(column)));
  }
  return dictionary(types);
}

std::string words_of(const Facts& facts) {
  std::vector<std::string> entries;
  for (const ColumnFact& column : facts.columns) {
    if (column.is_text()) continue;
    std::vector<std::string> words;
    for (const std::string& word : missing_of(column)) words.push_back(python_text(word));
    entries.push_back(fmt::format("{}: [{}]", python_text(column.name), joined(words)));
  }
  return dictionary(entries);
}

bool has_reals(const Facts& facts) { return !columns_of(facts, {ColumnType::real}).empty(); }

std::string call(const Facts& facts, const std::string& source) {
  std::string text;
  if (has_reals(facts)) {
    text =
        "# Before version 3.1, pandas reads decimal numbers exactly only where it is told to.\n"
        "is_exact = tuple(map(int, pd.__version__.split(\".\")[:2])) >= (3, 1)\n"
        "exact = {} if is_exact else {\"float_precision\": \"round_trip\"}\n";
  }
  text += fmt::format("table = pd.read_csv(\n    {},\n", source);
  const auto argument = [&](const char* name, const std::string& value) {
    text += fmt::format("    {}={},\n", name, value);
  };
  argument("encoding", python_text(encoding_for(facts, Codecs::python)));
  argument("sep", python_text(facts.delimiters[0]));
  if (facts.quote.empty()) {
    argument("quoting", "3");  // csv.QUOTE_NONE
  } else if (facts.quote != "\"") {
    argument("quotechar", python_text(facts.quote));
  }
  argument("header", "None");
  argument("skiprows", std::to_string(facts.lines_to_skip()));
  argument("names", fmt::format("[{}]", joined(name_literals(facts, python_text))));
  argument("index_col", "False");
  argument("dtype", types_of(facts));
  argument("na_values", words_of(facts));
  argument("keep_default_na", "False");
  if (common_decimal(facts) != ".") argument("decimal", python_text(common_decimal(facts)));
  if (!common_grouping(facts).empty()) argument("thousands", python_text(common_grouping(facts)));
  if (has_reals(facts)) text += "    **exact,\n";
  return text + ")\n";
}

std::string pattern_of(const Facts& facts, const ColumnFact& column) {
  if (facts.is_converted && column.type == ColumnType::date_time) return "\"ISO8601\"";
  return python_text(column.format);
}

// What read_csv has no type for. Of the durations of ISO 8601, pandas does not know all: "130h2m" instead of "PT130H2M".
std::string conversions(const Facts& facts) {
  std::string text;
  for (const ColumnFact* column : columns_of(facts, {ColumnType::boolean})) {
    const std::string name = python_text(column->name);
    text +=
        fmt::format("table[{0}] = table[{0}].map({{{1}: True, {2}: False}}).astype(\"boolean\")\n",
                    name, python_text(column->true_word), python_text(column->false_word));
  }
  for (const ColumnFact* column : columns_of(facts, {ColumnType::date, ColumnType::date_time})) {
    text += fmt::format("table[{0}] = pd.to_datetime(table[{0}], format={1}{2})\n",
                        python_text(column->name), pattern_of(facts, *column),
                        column->is_utc ? ", utc=True" : "");
  }
  for (const ColumnFact* column : columns_of(facts, {ColumnType::duration})) {
    text += fmt::format(
        "table[{0}] = pd.to_timedelta(table[{0}].str.replace(\"PT\", \"\").str.lower())\n",
        python_text(column->name));
  }
  for (const ColumnFact* column : columns_of(facts, {ColumnType::time})) {
    text += fmt::format("# {} holds times of day, for which pandas has no type: text.\n",
                        comment_text(column->name));
  }
  return text;
}

}  // namespace

std::string pandas_obstacle(const Facts& facts) { return find_obstacle(facts, kAbilities); }

std::string pandas_program(const Facts& facts) {
  const std::string obstacle = pandas_obstacle(facts);
  const std::string opening = opening_comment(facts, "#", "pandas", "the frame `table`", obstacle);
  if (obstacle.empty()) {
    return opening + "import pandas as pd\n\n" + call(facts, python_text(plain_path(facts.path))) +
           conversions(facts) + "print(table)\n";
  }
  const Facts plain = converted(facts);
  return opening + "import io\nimport subprocess\n\nimport pandas as pd\n\n" +
         python_conversion(facts) + call(plain, "io.BytesIO(converted)") + conversions(plain) +
         "print(table)\n";
}

}  // namespace textio::tool
