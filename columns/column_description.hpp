// ColumnDescription: what the cells of a column are, and how they are written.
//
//   const std::u16string_view cells[] = {u"1.234,50", u"n/a", u"7,25", u"12"};
//   const ColumnDescription column = describe_column(cells);
//   column.kind;             // ColumnKind::decimal
//   column.number.decimal;   // u','
//   column.missing;          // {u"n/a", 1}
//
// All cells decide together. A column is of a kind if nine of ten cells with a value are, or all
// but one of four or more; the others are counted, and the first is named. What several kinds have
// in common joins them: integers among decimals are decimals, dates among date-times date-times,
// clocks among durations durations, and plain numbers fit a column that is money or percentages for
// the most part.
//
// Units      UTF-16 with one code unit for each character; U+001A stands for one outside the BMP.
//            Cells are numbered from 0. Blanks at their ends do not count.
// Ownership  a description is a plain value without views.
// Errors     nothing throws but std::bad_alloc.
// Cost       linear in the cells. Memory: some bytes for each cell, and a bounded amount besides.
// Threads    all functions may run at the same time.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/columns/boolean_words.hpp>
#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/date_format.hpp>
#include <vltextstream/columns/missing_words.hpp>
#include <vltextstream/columns/money_format.hpp>
#include <vltextstream/columns/number_format.hpp>

namespace textio::columns {

// What is known besides the cells. All of it may be left out.
struct ColumnHints {
  // Of the column. It decides whether integers are seconds since 1970, and "0930" a time of day.
  std::u16string name;

  MarkHints marks;
  OrderHints order;

  // Words for a missing value, compared as they are. They count in columns of text too.
  std::vector<std::u16string> missing;

  // The letters that may begin an exponent.
  std::u16string exponents = u"eEdD";

  // The kinds of the first cells, as far as they are known.
  std::span<const assessment::CellKind> kinds;
};

struct ColumnDescription {
  ColumnKind kind = ColumnKind::empty;

  // Each cell is empty, missing, fitting or none of these.
  std::size_t num_cells = 0;
  std::size_t num_empty = 0;
  std::size_t num_missing = 0;
  std::size_t num_fitting = 0;
  std::optional<std::size_t> first_misfit;

  // Words and numbers for missing values, at most 32. Text and categories have only those given.
  std::vector<MissingWord> missing;

  // In characters, of the cells that are not empty.
  std::size_t least_width = 0;
  std::size_t most_width = 0;

  NumberFormat number;   // of numbers, percentages and money
  MoneyFormat money;     // of money
  BooleanWords boolean;  // of booleans
  DateFormat date;       // of dates and times

  // The first five different cells that fit, each at most 60 characters.
  std::vector<std::u16string> examples;

  std::size_t num_misfits() const { return num_cells - num_empty - num_missing - num_fitting; }
};

ColumnDescription describe_column(std::span<const std::u16string_view> cells,
                                  const ColumnHints& hints = {});

}  // namespace textio::columns
