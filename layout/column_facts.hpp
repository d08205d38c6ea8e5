// ColumnFacts: what the cells of a column are and how they are written, as a reader must know it.
//
//   const Layout layout = detect_layout("prices.csv");
//   layout.columns[1].kind;      // ColumnKind::decimal
//   layout.columns[1].decimal;   // u','
//
// Units      UTF-16 with one code unit for each character. Counts are of sampled data lines, line numbers
//            those of the text from 1, widths are characters.
// Ownership  plain values without views.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/date_order.hpp>
#include <vltextstream/host/export.hpp>

namespace textio::standalone {

using columns::ColumnKind;
using columns::DateOrder;

// A word, or a number such as -999, that stands for a missing value, as the cells write it.
struct VLTEXTSTREAM_EXPORT MissingWord {
  std::u16string word;
  std::size_t count = 0;

  bool operator==(const MissingWord&) const = default;
};

// How dates and times are written.
struct VLTEXTSTREAM_EXPORT DateFacts {
  // The format as a pattern of strptime (%f is a fraction of a second, as in Python) and of ICU; empty if
  // no one pattern fits all cells but a few odd ones. Ambiguous dates have the patterns of the day first.
  std::string strptime;
  std::string icu;

  // The language of the names of months and days, "en" or another; empty without names.
  std::string language;

  // The zone as it is written, "Z", "+01:00" or "CET"; empty if there is none or the cells differ.
  std::string zone;

  DateOrder order = DateOrder::none;

  bool operator==(const DateFacts&) const = default;
};

struct VLTEXTSTREAM_EXPORT ColumnFacts {
  ColumnKind kind = ColumnKind::empty;

  // The sampled cells. Each is empty, missing, fits the kind, or does none of these; the line of the first
  // that does not fit.
  std::size_t num_cells = 0;
  std::size_t num_empty = 0;
  std::size_t num_missing = 0;
  std::size_t num_fitting = 0;
  std::optional<std::size_t> first_misfit_line;

  // At most 32. Columns of text have none but those that the caller gave.
  std::vector<MissingWord> missing;

  // Of the cells that are not empty.
  std::size_t least_width = 0;
  std::size_t most_width = 0;

  // Of numbers, percentages and money: the decimal and the grouping mark, if a cell has one; and whether
  // the cells, or the caller, leave no doubt which mark is which.
  std::optional<char16_t> decimal;
  std::optional<char16_t> grouping;
  bool are_marks_certain = true;

  // Of money: the sign, code or name of the currency, if all cells have the same, and whether it is before
  // the amount.
  std::u16string currency;
  bool is_currency_before = false;

  // Of booleans: the words for true and false, as the column first writes them; empty if one never occurs.
  std::u16string true_word;
  std::u16string false_word;

  DateFacts date;

  // The first five different cells that fit, each at most 60 characters.
  std::vector<std::u16string> examples;
};

}  // namespace textio::standalone
