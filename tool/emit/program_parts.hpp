// What the programs of several targets have in common: their opening comments, and how they read the output of
// `vltext convert` through a pipe.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/emit/emit_facts.hpp"

namespace textio::tool {

// A path that no program takes for an option, nor for standard input.
std::string plain_path(const std::string& path);

// vltext convert FILE --to csv, as arguments.
std::vector<std::string> convert_arguments(const Facts& facts);

// The same for a shell.
std::string convert_command(const Facts& facts);

// "# Reads examples/prices.csv into `table`.", and if there is an obstacle, why and how it is passed by.
std::string opening_comment(const Facts& facts, std::string_view sign, std::string_view reader,
                            std::string_view into, const std::string& obstacle);

// The names of the columns as literals of a language.
std::vector<std::string> name_literals(const Facts& facts,
                                       std::string (*literal)(std::string_view));

// For readers that read every cell as a text first: what declares the cells "c1", "c2", ..., each with the name of that
// type, and what makes a value of each.
struct TextCells {
  std::vector<std::string> declared;
  std::vector<std::string> values;
};
TextCells text_cells(const Facts& facts, std::string_view type,
                     std::string (*value)(const ColumnFact&, const std::string& cell));

// The names of the columns of one of these types.
std::vector<const ColumnFact*> columns_of(const Facts& facts,
                                          std::initializer_list<reading::ColumnType> types);

// Of a Python program: runs `vltext convert` and leaves its output, bytes, in `converted`. Needs "import subprocess".
std::string python_conversion(const Facts& facts);

// The words for a missing value of a column, with the empty cell.
std::vector<std::string> missing_of(const ColumnFact& column);

// Whether all missing values of the table are empty cells.
bool has_words(const Facts& facts);

// The mark of all columns that have one; "." if none has.
std::string common_decimal(const Facts& facts);
std::string common_grouping(const Facts& facts);

}  // namespace textio::tool
