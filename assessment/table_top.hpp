// Where a table begins among records that all have its number of cells.
//
// A preamble may be padded with delimiters, or a table of two columns may follow pairs of keys and
// values. What tells them from data are the columns: the lower half of the records shows which of
// them hold numbers, dates or other values, and the data begin where these begin.
//
// Cost  linear in the cells of the first and the last hundred records.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/assessment/records.hpp>

namespace textio::assessment {

struct TableTop {
  // The index in `data`, the numbers of records, of the record that holds the names, or of the first record
  // of data if nothing above it could.
  std::size_t first = 0;

  // The records with names: two if the upper one names groups of columns, three if one above it groups of these.
  std::size_t names_rows = 1;
};

// `kinds` are those of the first of these records.
TableTop find_top(const Records& records, const std::vector<std::size_t>& data,
                  const CellKinds& kinds);

}  // namespace textio::assessment
