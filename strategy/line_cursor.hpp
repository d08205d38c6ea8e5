// LineCursor: walks over the lines of one text as a strategy finds them.
//
//   const std::unique_ptr<LineCursor> lines = strategy.lines_of(text);
//   const SplitLine first = lines->line_at(0);
//   const SplitLine second = lines->line_at(first.extent.next);
//
// A line is what Strategy::get_line_extent finds. The cursor remembers what it saw of the text.
//
// Units      positions count code units.
// Ownership  refers to the strategy and the text; the text must not change while the cursor lives.
// Errors     std::bad_alloc, and what a strategy from outside the library throws.
// Cost       all lines of the text together: linear in the text and the markers. Moving forward is
//            cheap; a line elsewhere costs what get_line_extent costs.
#pragma once

#include <cstddef>

#include <vltextstream/host/export.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

struct SplitLine {
  FieldExtent extent;

  // The number of fields, where finding the line counts them: not for fixed widths and strategies
  // from outside the library. Not meaningful for an empty line.
  std::size_t num_fields = 0;
};

// Lines that are nothing but their line endings, one directly after the other.
struct EmptyLines {
  std::size_t count = 0;
  std::size_t next = 0;  // where the line after them starts
};

class VLTEXTSTREAM_EXPORT LineCursor {
 public:
  LineCursor() = default;
  LineCursor(const LineCursor&) = delete;
  LineCursor& operator=(const LineCursor&) = delete;
  virtual ~LineCursor();

  // The line that starts at `start`, without its line ending. At a U+FFFF or the end of the text it
  // is empty, and the next one starts where it does.
  virtual SplitLine line_at(std::size_t start) = 0;

  // Empty lines from `start` on, at most `most`. More may follow: this is a fast way past many
  // empty lines, not a test for one.
  virtual EmptyLines empty_lines_at(std::size_t start, std::size_t most);
};

}  // namespace textio
