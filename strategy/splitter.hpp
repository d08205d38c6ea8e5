// Splitter: how one strategy splits a text into lines, and lines into fields.
//
//   const std::shared_ptr<const Splitter> splitter = strategy.splitter();
//   const std::unique_ptr<LineCursor> lines = splitter->lines_of(text);
//   const SplitLine first = lines->line_at(0);
//   const std::unique_ptr<FieldCutter> cutter = splitter->field_cutter();
//   cutter->append_fields(first.extent.field, 0, fields);
//
// Each strategy of the library has its own splitter, in the source file of the strategy. The
// splitter of a strategy from outside the library calls its virtual operations.
//
// Ownership  cursors and cutters refer to the splitter and to their text, which must not change
//            meanwhile. The splitter of a strategy from outside refers to the strategy.
// Errors     std::bad_alloc, and what a strategy from outside throws.
// Cost       what a cursor or cutter remembers of a text is lost when it is destroyed. All lines of
//            one cursor together are linear in the text and the markers; so are all fields of one
//            cutter.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include <vltextstream/strategy/dialect.hpp>
#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/line_cursor.hpp>
#include <vltextstream/strategy/search/marker_search.hpp>

namespace textio {

class Strategy;

class FieldCutter {
 public:
  FieldCutter() = default;
  FieldCutter(const FieldCutter&) = delete;
  FieldCutter& operator=(const FieldCutter&) = delete;
  virtual ~FieldCutter() = default;

  // Appends the fields of `line`, the first of which is in column `column`. Returns the column in
  // which the next line starts. Columns matter only for fixed widths. If it throws, some fields may
  // have been appended.
  virtual std::size_t append_fields(const Field& line, std::size_t column,
                                    std::vector<Field>& fields) = 0;
};

class Splitter {
 public:
  Splitter() = default;
  Splitter(const Splitter&) = delete;
  Splitter& operator=(const Splitter&) = delete;
  virtual ~Splitter() = default;

  virtual Dialect dialect() const = 0;

  // Whether line cursors count the fields of the lines that they find.
  virtual bool counts_fields() const = 0;

  // Whether cutting a line a second time gives the same fields.
  virtual bool is_repeatable() const { return true; }

  // The number of columns after which the widths repeat; 1 if columns do not matter.
  virtual std::size_t num_columns() const { return 1; }

  // How many code units after a position may affect what is found at it.
  virtual std::size_t longest_marker() const = 0;

  virtual std::unique_ptr<LineCursor> lines_of(const Field& text) const = 0;
  virtual std::unique_ptr<FieldCutter> field_cutter() const = 0;
};

// Both call the virtual operations of `strategy`, which must outlive them.
std::shared_ptr<const Splitter> splitter_by_operations(Strategy& strategy);
std::unique_ptr<LineCursor> lines_by_operations(const Strategy& strategy, const Field& text);

// As LineCursor::empty_lines_at, for lines that end at the next line ending unless they start with
// one of `openers`.
EmptyLines empty_lines_from(std::size_t start, std::size_t most, const Field& text,
                            MarkerSearch& line_endings, std::u16string_view openers);

}  // namespace textio
