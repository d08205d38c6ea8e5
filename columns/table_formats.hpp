// TableFormats: how a whole table writes numbers and dates.
//
//   std::vector<ColumnDescription> columns = ...;   // "1,5" in one, "1.234" in another
//   find_formats(columns).decimal;                  // u',', so the other is grouped
//
// A table is written by one program, so columns that are certain decide for those that are not.
// Columns that differ keep their own marks.
//
// Errors  nothing throws but std::bad_alloc.
#pragma once

#include <span>
#include <vector>

#include <vltextstream/columns/column_description.hpp>

namespace textio::columns {

struct TableFormats {
  char16_t decimal = 0;               // of most columns that are certain; 0 if none has one
  char16_t grouping = 0;              // the same; never equal to the decimal mark
  DateOrder order = DateOrder::none;  // day_first or month_first, if columns say so and agree

  friend bool operator==(const TableFormats&, const TableFormats&) = default;
};

TableFormats find_formats(std::span<const ColumnDescription> columns);

// `hints` with what the table knows, unless the caller gave it.
ColumnHints with_formats(ColumnHints hints, const TableFormats& formats);

struct TableColumn {
  std::vector<std::u16string_view> cells;
  ColumnHints hints;
};

// Each column, the doubtful ones once more with the formats of the others.
std::vector<ColumnDescription> describe_columns(std::span<const TableColumn> columns);

}  // namespace textio::columns
