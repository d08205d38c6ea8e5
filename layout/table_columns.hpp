// What the columns of a table hold.
//
// Cost  linear in the cells. Some hundred bytes for each column besides.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/columns/table_formats.hpp>
#include <vltextstream/layout/column_facts.hpp>
#include <vltextstream/layout/detect_layout.hpp>

namespace textio::standalone {

// With everything that is kept of them, this number of columns takes less than 100 MB.
inline constexpr std::size_t kMostColumnsDescribed = 65'536;

struct TableColumns {
  std::vector<ColumnFacts> facts;  // one for each column

  // The marks of most columns with numbers that leave no doubt, or else of the first one with doubt.
  std::optional<char16_t> decimal;
  std::optional<char16_t> grouping;

  // The missing words of all columns, the most frequent first.
  std::vector<MissingWord> missing() const;
};

// What is known of every column: the settings, and the delimiter if it is a single code unit, otherwise 0.
columns::ColumnHints hints_for(char16_t delimiter, const DetectSettings& settings);

// `line_of` gives the line of the text, from 1, that has a cell.
TableColumns describe_columns(
    std::span<const columns::TableColumn> columns,
    const std::function<std::size_t(std::size_t column, std::size_t cell)>& line_of);

// The first columns of the winner, at most kMostColumnsDescribed. `rows` are its records that hold data; `names`
// the names of the columns, if there are any.
TableColumns describe_columns(const assessment::Verdict& verdict,
                              const std::vector<std::size_t>& rows,
                              const std::vector<std::u16string>& names,
                              const DetectSettings& settings);

}  // namespace textio::standalone
