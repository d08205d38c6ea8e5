// The plain reference of the table reader: from a text and its layout to the cells of all rows and the fate of every
// line, character by character. It shares no code with the library but the layout record. It is made to be easy
// to check, not to be fast.
//
//   layout.delimiters = {u","};
//   ReadTable table = read_table(u"a,\"b\"\n# c\n", layout);
//   // table.rows[0].cells == {u"a", u"b"}, table.fates == {"data", "comment"}
//
// Layouts that are delimited, aligned by blanks, of fixed widths, or one column, as the assessment or a caller
// describes them. Frames and times beside dates are left to other tests.
//
// Units   positions count UTF-16 code units; lines are numbered from 1.
// Errors  std::invalid_argument for a layout with a frame; std::out_of_range would mean that the reference itself is
//         wrong.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>

namespace reference {

struct TableRow {
  std::vector<std::u16string> cells;  // without enclosing quotes
  std::size_t line = 0;               // the first one

  bool operator==(const TableRow&) const = default;
};

struct ReadTable {
  std::vector<TableRow> rows;
  std::vector<std::string> fates;  // of each line

  // As many as the layout says, or as the longest row has.
  std::size_t num_columns = 0;
};

ReadTable read_table(const std::u16string& text, const textio::standalone::Layout& layout);

}  // namespace reference
