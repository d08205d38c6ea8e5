#include "python/cpp/table_data.hpp"

#include <algorithm>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/reading/table_plan.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::python {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;
using standalone::Layout;

void describe(const Layout& layout, std::size_t column, FieldType& field) {
  if (column < layout.columns.size()) {
    const auto kind = to_string(layout.columns[column].kind);
    field.metadata.emplace_back("vltext.kind", kind);
    const std::string currency = to_utf8_lossy(layout.columns[column].currency);
    if (!currency.empty()) field.metadata.emplace_back("vltext.currency", currency);
  }
  if (column < layout.units.size() && !layout.units[column].empty()) {
    field.metadata.emplace_back("vltext.unit", to_utf8_lossy(layout.units[column]));
  }
  if (field.type == ColumnType::decimal) field.metadata.emplace_back("vltext.type", "decimal");
}

// The columns of the batches are those of the names that no rule leaves out.
std::vector<ColumnType> planned_types(const Layout& layout, std::size_t count,
                                      const reading::ReadSettings& settings) {
  std::vector<ColumnType> types(count, ColumnType::text);
  const reading::TablePlan plan = reading::plan_of(layout, settings);
  for (std::size_t c = 0; c < count && c < plan.columns.size(); ++c) {
    types[c] = plan.columns[c].cells.type;
  }
  return types;
}

}  // namespace

std::size_t TableData::num_rows() const {
  std::size_t rows = 0;
  for (const SharedBatch& batch : batches) rows += batch->num_rows;
  return rows;
}

SharedSchema schema_of(const Layout& layout, const std::vector<std::string>& names,
                       const std::vector<SharedBatch>& batches,
                       const reading::ReadSettings& settings) {
  std::vector<ColumnType> types;
  if (batches.empty()) {
    types = planned_types(layout, names.size(), settings);
  } else {
    for (const Column& column : batches.back()->columns) types.push_back(column.type);
  }
  auto schema = std::make_shared<TableSchema>();
  for (std::size_t c = 0; c < names.size() && c < types.size(); ++c) {
    FieldType field{names[c], types[c], false, {}};
    field.is_utc = std::any_of(batches.begin(), batches.end(), [c](const SharedBatch& batch) {
      return c < batch->columns.size() && batch->columns[c].is_utc;
    });
    describe(layout, c, field);
    schema->fields.push_back(std::move(field));
  }
  return schema;
}

bool are_alike(const std::vector<SharedBatch>& batches) {
  const auto differ = [](const SharedBatch& a, const SharedBatch& b) {
    return !std::equal(a->columns.begin(), a->columns.end(), b->columns.begin(), b->columns.end(),
                       [](const Column& x, const Column& y) { return x.type == y.type; });
  };
  return std::adjacent_find(batches.begin(), batches.end(), differ) == batches.end();
}

}  // namespace textio::python
