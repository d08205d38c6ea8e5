// PlainTable: columns of text, aligned for a terminal or a page with letters of one width.
//
//   PlainTable table({Side::left, Side::right});
//   table.add({"place", "level"});
//   table.add_line();
//   table.add({"Altenau", "12.8"});
//   table.print();
//   // place    level
//   // -------  -----
//   // Altenau   12.8
//
// Cells are made printable and cut to kMostWidth, with "..." at the end. Lines have no blanks at their ends.
//
// Units   widths are those of a terminal, as display_width counts them.
// Errors  std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace textio::tool {

enum class Side { left, right };

class PlainTable {
 public:
  static constexpr std::size_t kMostWidth = 40;

  explicit PlainTable(std::vector<Side> sides) : sides_(std::move(sides)), widths_(sides_.size()) {}

  // Missing cells at the end are empty.
  void add(const std::vector<std::string>& cells);

  // A line of hyphens below what was added.
  void add_line();

  std::string print() const;

 private:
  struct Cell {
    std::string text;
    std::size_t width = 0;
  };
  void append_row(std::string& out, const std::vector<Cell>& row) const;

  std::vector<Side> sides_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<Cell>> rows_;  // without a cell: a line
};

}  // namespace textio::tool
