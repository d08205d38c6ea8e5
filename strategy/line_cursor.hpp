// LineCursor: finds the lines of one text, one after the other, with the rules of a strategy.
//
//   const std::unique_ptr<LineCursor> lines = strategy.lines_of(text);
//   const SplitLine first = lines->line_at(0);
//   const SplitLine second = lines->line_at(first.extent.next);
//
// The lines are those that Strategy::get_line_extent finds. The cursor remembers what it has
// searched.
//
// Units      positions count code units.
// Ownership  refers to the strategy and the text. The text must not change while the cursor exists.
// Errors     std::bad_alloc, and what a strategy from outside the library throws.
// Cost       all lines of the text together take time linear in the text and the markers. Moving
//            forward is cheap; a line elsewhere costs as much as get_line_extent.
#pragma once

#include <cstddef>

#include <vltextstream/host/export.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

struct SplitLine {
  FieldExtent extent;

  // The number of fields, if finding the line counts them. Fixed widths and strategies from outside
  // the library do not count. Not meaningful for an empty line.
  std::size_t num_fields = 0;
};

// Consecutive lines that consist of a line ending only.
struct EmptyLines {
  std::size_t count = 0;
  std::size_t next = 0;  // the start of the line after them
};

class VLTEXTSTREAM_EXPORT LineCursor {
 public:
  LineCursor() = default;
  LineCursor(const LineCursor&) = delete;
  LineCursor& operator=(const LineCursor&) = delete;
  virtual ~LineCursor();

  // The line that starts at `start`, without its line ending. At a U+FFFF or the end of the text
  // the line is empty, and the next line starts at the same position.
  virtual SplitLine line_at(std::size_t start) = 0;

  // At most `most` empty lines from `start` on. More may follow: this passes many empty lines
  // quickly, and is no test for one.
  virtual EmptyLines empty_lines_at(std::size_t start, std::size_t most);
};

}  // namespace textio
