// Columns made from texts, and plans made from descriptions of columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/columns/column_description.hpp>
#include <vltextstream/reading/column_builder.hpp>

#include "support/column_cells.hpp"

namespace textio::reading {

// What became of some cells.
struct Built {
  Column column;
  std::vector<std::uint32_t> misfits;
};

inline CellText cell_of(std::u16string_view text, bool is_quoted = false) {
  return {text.data(), static_cast<std::uint32_t>(text.size()), is_quoted, false};
}

inline CellText absent_cell() { return {nullptr, 0, false, true}; }

inline Built built(const ColumnPlan& plan, const std::vector<std::u16string>& texts) {
  const testing_support::ExactCells exact(texts);
  std::vector<CellText> cells;
  for (const std::u16string_view view : exact.views()) cells.push_back(cell_of(view));
  ColumnBuilder builder(plan);
  Built result;
  builder.append(cells, result.misfits);
  result.column = builder.take();
  return result;
}

inline ColumnType type_of(columns::ColumnKind kind) {
  using columns::ColumnKind;
  switch (kind) {
    case ColumnKind::integer:
      return ColumnType::integer;
    case ColumnKind::decimal:
    case ColumnKind::scientific:
    case ColumnKind::percentage:
    case ColumnKind::money:
      return ColumnType::real;
    case ColumnKind::boolean:
      return ColumnType::boolean;
    case ColumnKind::date:
      return ColumnType::date;
    case ColumnKind::time:
      return ColumnType::time;
    case ColumnKind::date_time:
    case ColumnKind::epoch_seconds:
    case ColumnKind::epoch_milliseconds:
      return ColumnType::date_time;
    case ColumnKind::duration:
      return ColumnType::duration;
    case ColumnKind::category:
      return ColumnType::category;
    default:
      return ColumnType::text;
  }
}

inline ColumnPlan plan_of(const columns::ColumnDescription& column) {
  ColumnPlan plan;
  plan.type = type_of(column.kind);
  plan.kind = column.kind;
  plan.grouping = column.number.grouping;
  if (column.number.decimal != 0) {
    plan.decimal = column.number.decimal;
  } else {
    plan.decimal = plan.grouping == u'.' ? u',' : u'.';
  }
  plan.words = column.boolean;
  plan.strptime = column.date.strptime;
  plan.language = column.date.language;
  plan.order = column.date.order;
  for (const columns::MissingWord& each : column.missing) plan.missing.push_back(each.word);
  return plan;
}

}  // namespace textio::reading
