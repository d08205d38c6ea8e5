// ColumnBuilder: turns the cells of one column into typed values.
//
//   ColumnBuilder level(plan);
//   level.append(cells, misfits);
//   const Column column = level.take();
//
// A cell is a missing value if it is absent, if it is one of the missing words, or if it is empty and the column is not
// of text. Blanks at the ends of a cell do not count, quoted or not; in texts they are kept, but do not make a cell of
// blanks other than empty. A cell that is not of the type becomes a missing value, and is a misfit: the caller decides
// what comes of it.
//
// Numbers     are exact: the double nearest to the decimal number in the cell, the integer of 64 bits or none. A number
//             beyond all doubles is a misfit.
// Booleans    are the two words of the column. Where it has only "true" or only "yes", the other one of the pair counts.
// Dates       are read by the pattern of the column; a cell that it does not fit is read by itself, with the order
//             of day and month of the column. See date_parser.hpp, and has_year() there for dates without a year.
// Moments     of a column whose pattern has no zone are misfits if they have one. Without a pattern, the column is in
//             UTC from the batch on in which a cell has a zone.
//
// Units      UTF-16 text; a character outside the BMP is a surrogate pair, and an unpaired surrogate becomes U+FFFD.
// Ownership  the cells are views, which are not needed after the call.
// Errors     std::bad_alloc.
// Cost       linear in the cells. No allocation per cell.
// Threads    separate builders are independent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/columns/boolean_words.hpp>
#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/date_order.hpp>
#include <vltextstream/reading/column.hpp>

namespace textio::reading {

struct CellText {
  const char16_t* data = nullptr;
  std::uint32_t length = 0;
  bool is_quoted = false;
  bool is_absent = false;  // the record has no such cell

  std::u16string_view view() const { return {data, length}; }
};

// How the cells of a column are read.
struct ColumnPlan {
  ColumnType type = ColumnType::text;

  // What the cells are; percentages and money lose their signs, epochs are moments in UTC.
  columns::ColumnKind kind = columns::ColumnKind::text;

  // Of numbers, percentages and money. 0: no grouping. "5 %" is 5.
  char16_t decimal = u'.';
  char16_t grouping = 0;
  std::u16string exponents = u"eEdD";

  // Of booleans, as the column writes them; either may be empty. Case does not matter.
  columns::BooleanWords words;

  // Of dates, times and moments: a pattern of strptime (%f is a fraction of a second), or empty.
  std::string strptime;
  std::string language;
  columns::DateOrder order = columns::DateOrder::none;
  bool has_zone = false;  // so that moments are in UTC

  // Compared as they are, without the blanks at the ends of the cell.
  std::vector<std::u16string> missing;

  // Whether an empty cell of a text column that is not quoted is a missing value.
  bool is_empty_text_missing = false;
};

class ColumnBuilder {
 public:
  explicit ColumnBuilder(ColumnPlan plan);
  ColumnBuilder(ColumnBuilder&&) noexcept;
  ColumnBuilder& operator=(ColumnBuilder&&) noexcept;
  ~ColumnBuilder();

  const ColumnPlan& plan() const;

  // A hint that `count` more values will follow.
  void reserve(std::size_t count);

  // Appends a value for each cell. The positions in `cells` of those that are misfits are appended to `misfits`.
  void append(std::span<const CellText> cells, std::vector<std::uint32_t>& misfits);

  // The values appended since the last call. The words of a category stay known: their codes do not change.
  Column take();

 private:
  class Values;
  template <typename Reader>
  class Scalars;
  class Booleans;
  class Decimals;
  class Texts;
  class Categories;

  static std::unique_ptr<Values> values_for(ColumnPlan plan);

  std::unique_ptr<Values> values_;
};

// The type that holds the cells of `plan` and this one, which is a misfit, if that is a wider number: real for an
// integer column; otherwise text.
ColumnType widened(const ColumnPlan& plan, std::u16string_view cell);

}  // namespace textio::reading
