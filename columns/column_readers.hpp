// ColumnReader: looks at the cells of a column as values of one kind.
//
// The cells are shown to it, each time in the same order: all to look(), then settle() is called; all to
// weigh(), then conclude(); and all to fits().
//
// Errors  nothing throws but std::bad_alloc.
// Cost    linear in the cells. Memory: of numbers some bytes for each cell, otherwise bounded.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>

#include <vltextstream/columns/cell_class.hpp>
#include <vltextstream/columns/column_description.hpp>

namespace textio::columns {

class ColumnReader {
 public:
  virtual ~ColumnReader() = default;

  // How many cells follow.
  virtual void expect(std::size_t) {}

  virtual void look(std::u16string_view, CellClass) {}
  virtual void settle() {}
  virtual void weigh(std::u16string_view, CellClass) {}
  virtual void conclude() {}

  virtual bool fits(std::u16string_view, CellClass) { return true; }

  // Whether a cell that fits stands for a missing value.
  virtual bool is_missing(std::u16string_view) const { return false; }

  // Writes the kind and the format.
  virtual void describe(ColumnDescription& column) const = 0;
};

// A reader of the cells that are booleans, numbers, dates and so on; `kind` is the one that the
// classes of the cells suggest. The hints must outlive it.
std::unique_ptr<ColumnReader> reader_of(ColumnKind kind, const ColumnHints& hints);

// A reader of dates that are digits alone: of dates, or of date-times.
std::unique_ptr<ColumnReader> compact_date_reader(const ColumnHints& hints);

}  // namespace textio::columns
