#include "tool/emit/program_parts.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tool/emit/emit_words.hpp"

namespace textio::tool {

using reading::ColumnType;

std::string plain_path(const std::string& path) {
  const bool is_special = path.starts_with('-') || path.starts_with('|') || path.starts_with('~');
  return is_special ? "./" + path : path;
}

std::vector<std::string> convert_arguments(const Facts& facts) {
  std::vector<std::string> arguments = {"vltext", "convert"};
  arguments.insert(arguments.end(), facts.given.begin(), facts.given.end());
  arguments.insert(arguments.end(), {"--to", "csv", plain_path(facts.path)});
  return arguments;
}

std::string convert_command(const Facts& facts) {
  std::vector<std::string> words;
  for (const std::string& argument : convert_arguments(facts)) {
    const bool is_plain =
        argument.find_first_not_of("abcdefghijklmnopqrstuvwxyz-") == argument.npos;
    words.push_back(is_plain ? argument : shell_text(argument));
  }
  return joined(words, " ");
}

std::string opening_comment(const Facts& facts, std::string_view sign, std::string_view reader,
                            std::string_view into, const std::string& obstacle) {
  std::string text = fmt::format("{} Reads {} into {}.\n", sign, comment_text(facts.path), into);
  if (!obstacle.empty()) {
    text += fmt::format(
        "{0} {1} cannot read this file rightly by itself: {2}.\n"
        "{0} So it reads what `vltext convert` makes of it: the program vltext must be in the "
        "PATH.\n",
        sign, reader, comment_text(obstacle));
  }
  return text;
}

std::vector<std::string> name_literals(const Facts& facts,
                                       std::string (*literal)(std::string_view)) {
  std::vector<std::string> names;
  for (const ColumnFact& column : facts.columns) names.push_back(literal(column.name));
  return names;
}

TextCells text_cells(const Facts& facts, std::string_view type,
                     std::string (*value)(const ColumnFact&, const std::string& cell)) {
  TextCells cells;
  for (const ColumnFact& column : facts.columns) {
    const std::string cell = fmt::format("c{}", cells.values.size() + 1);
    cells.declared.push_back(fmt::format("{} {}", cell, type));
    cells.values.push_back(value(column, cell));
  }
  return cells;
}

std::vector<const ColumnFact*> columns_of(const Facts& facts,
                                          std::initializer_list<ColumnType> types) {
  std::vector<const ColumnFact*> found;
  for (const ColumnFact& column : facts.columns) {
    if (std::find(types.begin(), types.end(), column.type) != types.end()) found.push_back(&column);
  }
  return found;
}

// convert exits with 1 when it is not sure, or had to drop something; it says so on standard error.
std::string python_conversion(const Facts& facts) {
  std::vector<std::string> words;
  for (const std::string& argument : convert_arguments(facts))
    words.push_back(python_text(argument));
  return fmt::format(
      "run = subprocess.run([{}], stdout=subprocess.PIPE, check=False)\n"
      "if run.returncode > 1:\n"
      "    raise SystemExit(\"vltext could not convert the file\")\n"
      "converted = run.stdout\n",
      joined(words));
}

std::vector<std::string> missing_of(const ColumnFact& column) {
  std::vector<std::string> words = {""};
  for (const std::string& word : column.missing) {
    if (!word.empty()) words.push_back(word);
  }
  return words;
}

bool has_words(const Facts& facts) {
  return std::any_of(facts.columns.begin(), facts.columns.end(),
                     [](const ColumnFact& column) { return missing_of(column).size() > 1; });
}

std::string common_decimal(const Facts& facts) {
  for (const ColumnFact* column : columns_of(facts, {ColumnType::real})) return column->decimal;
  return common_grouping(facts) == "." ? "," : ".";
}

std::string common_grouping(const Facts& facts) {
  for (const ColumnFact* column : columns_of(facts, {ColumnType::integer, ColumnType::real})) {
    if (!column->grouping.empty()) return column->grouping;
  }
  return "";
}

}  // namespace textio::tool
