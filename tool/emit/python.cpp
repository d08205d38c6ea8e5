// The csv module gives texts; a function for each column makes values of them. Lines are skipped and left out before the
// module sees them.
#include <fmt/format.h>

#include "tool/emit/abilities.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

constexpr Abilities kAbilities = {.codecs = Codecs::python,
                                  .skips_blank_lines = true,
                                  .skips_comments = true,
                                  .takes_other_quotes = true,
                                  .takes_backslash = true,
                                  .takes_lone_cr = true,
                                  .takes_decimal_comma = true,
                                  .takes_own_marks = true,
                                  .takes_grouping = true,
                                  .takes_words = true,
                                  .takes_boolean_words = true,
                                  .takes_formats = true};

std::string number_text(const ColumnFact& column) {
  std::string text = "cell";
  if (!column.grouping.empty()) {
    text += fmt::format(".replace({}, \"\")", python_text(column.grouping));
  }
  if (column.type == ColumnType::real && column.decimal != ".") {
    text += fmt::format(".replace({}, \".\")", python_text(column.decimal));
  }
  return text;
}

// An expression of `cell`.
std::string value_of(const Facts& facts, const ColumnFact& column) {
  switch (column.type) {
    case ColumnType::integer:
      return fmt::format("int({})", number_text(column));
    case ColumnType::real:
      return fmt::format("float({})", number_text(column));
    case ColumnType::boolean:
      return fmt::format("{{{}: True, {}: False}}[cell]", python_text(column.true_word),
                         python_text(column.false_word));
    case ColumnType::date:
      return fmt::format("datetime.datetime.strptime(cell, {}).date()", python_text(column.format));
    case ColumnType::date_time:
      return facts.is_converted
                 ? std::string("datetime.datetime.fromisoformat(cell)")
                 : fmt::format("datetime.datetime.strptime(cell, {})", python_text(column.format));
    case ColumnType::time:
      return "datetime.time.fromisoformat(cell)";
    default:
      return "cell";
  }
}

std::string rows_of(const Facts& facts) {
  std::string text = "columns = {\n";
  for (const ColumnFact& column : facts.columns) {
    const std::string value = value_of(facts, column);
    std::string function = "lambda cell: " + value;
    if (!column.is_text()) {
      std::vector<std::string> words;
      for (const std::string& word : missing_of(column)) words.push_back(python_text(word));
      function = fmt::format("lambda cell: None if cell in [{}] else {}", joined(words), value);
    }
    text += fmt::format("    {}: {},\n", python_text(column.name), function);
  }
  text += "}\n";
  std::string reader = fmt::format("lines, delimiter={}", python_text(facts.delimiters[0]));
  if (facts.quote.empty()) {
    reader += ", quoting=csv.QUOTE_NONE";
  } else {
    reader += ", quotechar=" + python_text(facts.quote);
  }
  if (facts.has_backslash) reader += ", doublequote=False, escapechar=\"\\\\\"";
  return text + fmt::format(
                    "csv.field_size_limit(2**31 - 1)\n"
                    "table = [\n"
                    "    {{name: value(cell) for (name, value), cell in zip(columns.items(), row, "
                    "strict=True)}}\n"
                    "    for row in csv.reader({})\n"
                    "    if row\n"
                    "]\n"
                    "for row in table:\n"
                    "    print(row)\n",
                    reader);
}

std::string lines_of_file(const Facts& facts) {
  std::string text = fmt::format(
      "with open({}, encoding={}, newline=\"\") as file:\n"
      "    lines = list(file)[{}:]\n",
      python_text(plain_path(facts.path)), python_text(encoding_for(facts, Codecs::python)),
      facts.lines_to_skip());
  if (facts.comment_lines > 0) {
    text += fmt::format("lines = [line for line in lines if not line.startswith({})]\n",
                        python_text(facts.comment));
  }
  return text;
}

std::string lines_of_conversion(const Facts& facts) {
  return python_conversion(facts) +
         "lines = list(io.StringIO(converted.decode(\"utf-8\"), newline=\"\"))\n";
}

// Names may have line breaks in quotes nowhere, but they may be quoted.
std::string without_names() { return "lines = lines[1:]\n"; }

}  // namespace

std::string python_program(const Facts& facts) {
  const std::string obstacle = find_obstacle(facts, kAbilities);
  std::string text = opening_comment(facts, "#", "The csv module of Python",
                                     "the list `table`, a dictionary for each row", obstacle);
  if (obstacle.empty()) {
    return text + "import csv\nimport datetime\n\n" + lines_of_file(facts) + rows_of(facts);
  }
  return text + "import csv\nimport datetime\nimport io\nimport subprocess\n\n" +
         lines_of_conversion(facts) + without_names() + rows_of(converted(facts));
}

}  // namespace textio::tool
