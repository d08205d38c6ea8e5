// Records: the lines of a sample cut into cells by one reading.
//
// Units      positions count code units of the sampled text; lines and records are numbered from 0.
// Ownership  plain values; the positions mean nothing without the text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/assessment/cell_kind.hpp>

namespace textio::assessment {

// The text between two separators, without enclosing quotes.
struct Cell {
  std::uint32_t begin = 0;
  std::uint32_t end = 0;
  bool is_quoted = false;
};

struct Record {
  std::uint32_t first_cell = 0;
  std::uint32_t num_cells = 0;
  std::uint32_t line = 0;  // the first of its lines
  std::uint32_t num_lines = 1;
};

class Records {
 public:
  explicit Records(std::u16string_view text) : text_(text) {}

  std::size_t size() const { return records_.size(); }
  bool empty() const { return records_.empty(); }
  const Record& operator[](std::size_t index) const { return records_[index]; }

  std::span<const Cell> cells(std::size_t index) const {
    return {cells_.data() + records_[index].first_cell, records_[index].num_cells};
  }
  std::u16string_view view(const Cell& cell) const {
    return text_.substr(cell.begin, cell.end - cell.begin);
  }
  std::u16string_view text() const { return text_; }

  // The memory of records that are not used any more goes to those of `text`.
  static Records in_place_of(Records&& used, std::u16string_view text) {
    Records records(text);
    records.cells_ = std::move(used.cells_);
    records.records_ = std::move(used.records_);
    records.cells_.clear();
    records.records_.clear();
    return records;
  }

  // A record that begins on line `line`; cells are added to the last record.
  void add_record(std::size_t line) {
    records_.push_back(
        {static_cast<std::uint32_t>(cells_.size()), 0, static_cast<std::uint32_t>(line), 1});
  }
  void add_cell(std::size_t begin, std::size_t end, bool is_quoted = false) {
    cells_.push_back(
        {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(end), is_quoted});
    ++records_.back().num_cells;
  }
  void add_lines(std::size_t count) {
    records_.back().num_lines += static_cast<std::uint32_t>(count);
  }
  void drop_last() {
    cells_.resize(records_.back().first_cell);
    records_.pop_back();
  }

  // Where each column begins and ends on its lines, if blank columns separate them; otherwise none.
  std::vector<std::size_t> column_starts;
  std::vector<std::size_t> column_ends;

  // Whether a time was joined with the date before it.
  bool joins_times = false;

  // Whether the last record goes on after the lines that were cut, within quotes. It is left out unless it is the
  // only one.
  bool is_open = false;

  // Quotes that do not open and close at borders of cells, as a weighted count.
  double ill_placed_quotes = 0;

 private:
  std::u16string_view text_;
  std::vector<Cell> cells_;
  std::vector<Record> records_;
};

// The kinds of all cells of records that have as many cells each.
class CellKinds {
 public:
  CellKinds() = default;

  // Of the first `most` of the records whose numbers are in `rows`.
  CellKinds(const Records& records, std::span<const std::size_t> rows, std::size_t columns,
            std::size_t most)
      : columns_(columns) {
    rows = rows.first(std::min(rows.size(), most));
    kinds_.reserve(rows.size() * columns);
    for (const std::size_t row : rows) {
      for (const Cell& cell : records.cells(row)) kinds_.push_back(kind_of(records.view(cell)));
    }
  }

  bool empty() const { return kinds_.empty(); }
  std::size_t size() const { return kinds_.size() / columns_; }
  std::size_t columns() const { return columns_; }
  CellKind at(std::size_t row, std::size_t column) const { return kinds_[row * columns_ + column]; }

  // Drops rows before `first`.
  void drop_before(std::size_t first) {
    kinds_.erase(kinds_.begin(), kinds_.begin() + static_cast<std::ptrdiff_t>(first * columns_));
  }

 private:
  std::size_t columns_ = 1;
  std::vector<CellKind> kinds_;
};

}  // namespace textio::assessment
