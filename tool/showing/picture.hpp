// Picture: the first lines of a file as people look at them, and what each part of them is. Data alone: nothing in
// it depends on a terminal or a page.
//
//   const reading::FileTop top = reading::look_at_top(file, settings, kPictureRows);
//   if (const std::optional<Picture> picture = picture_of(top)) {
//     picture->rows[0].role;             // RowRole::names
//     picture->rows[0].spans[1].role;    // SpanRole::delimiter
//     picture->rows[0].spans[2].column;  // 1
//   }
//
// The texts of the spans of a row, one after the other, are the line as it is in the file, except that what could
// control a terminal or has no visible form is U+FFFD, and a tab is an arrow. They are UTF-8, may be of any length,
// and may be written from right to left.
//
// Units      lines are numbered from 1 as an editor shows them, columns from 0.
// Ownership  plain values without views.
// Errors     std::bad_alloc.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/reading/first_lines.hpp>

namespace textio::tool {

// What a line is for.
enum class RowRole {
  above,  // before the table: titles, notes
  names,
  units,
  descriptions,
  data,
  blank,
  comment,
  rule,  // drawn between the lines of a table
  footer,
  text,    // of a file without a table
  hidden,  // no line, but how many follow that were looked at and are left out here
  unseen,  // no line, but how many follow that were not looked at
};

// The word for it: "above", "names".
std::string_view to_string(RowRole role);

// What a part of a line is.
enum class SpanRole {
  text,  // the line has no cells
  cell,
  name,
  unit,
  quote,      // around a cell, which it belongs to
  delimiter,  // between two cells
  padding,    // blanks that belong to no cell
  border,     // between two cells that nothing separates, or blanks alone; without a text
};

inline constexpr std::size_t kNoColumn = std::numeric_limits<std::size_t>::max();

struct Span {
  SpanRole role = SpanRole::text;
  std::size_t column = kNoColumn;  // of a cell, name, unit or quote
  std::string text = {};

  bool operator==(const Span&) const = default;
};

struct Row {
  RowRole role = RowRole::data;

  // None: the line is at the end of a file that was not counted, or the row is no line.
  std::optional<std::uint64_t> line;

  // Whether it goes on with a row of the table that began in a line above.
  bool is_continued = false;

  std::vector<Span> spans;

  // Hidden and unseen: how many lines, if that is known, and whether it is an estimate.
  std::optional<std::uint64_t> num_lines = std::nullopt;
  bool is_estimate = false;

  bool operator==(const Row&) const = default;
};

struct Picture {
  std::vector<Row> rows;
  std::size_t num_columns = 1;

  // Whether the columns are aligned, or of fixed widths: with blanks or nothing between them. Borders are then one below
  // the other, where the rows allow it.
  bool is_by_place = false;

  bool operator==(const Picture&) const = default;
};

// As many rows of the table as a picture may need.
inline constexpr std::size_t kPictureRows = 12;

// At most 12 lines, and three of a footer. None for a file without text, or which looks binary.
std::optional<Picture> picture_of(const reading::FileTop& top);

}  // namespace textio::tool
