// TablePlan: the columns that a table is read into, and what was learnt of them on the way.
//
//   TablePlan plan = plan_of(layout, settings);
//   plan.columns[2].cells.type;   // ColumnType::real
//
// Ownership  a plain value.
// Errors     ReadError for types that are chosen for columns that the table does not have; std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/column_builder.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::reading {

struct PlannedColumn {
  std::string name;  // unique, UTF-8
  ColumnPlan cells;

  // A rule leaves the column out.
  bool is_left_out = false;
};

struct TablePlan {
  std::vector<PlannedColumn> columns;

  // How many of them the layout has; longer records added the others.
  std::size_t num_of_layout = 0;

  // How often the plan was changed.
  std::size_t version = 0;

  // Columns of text, until there are `count` of them.
  void add_columns(std::size_t count);

 private:
  std::string unused_name() const;
};

TablePlan plan_of(const standalone::Layout& layout, const ReadSettings& settings);

}  // namespace textio::reading
