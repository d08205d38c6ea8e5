// What Python holds of a table: batches that are shared with those who were handed them, and one schema for all.
//
// Units      rows and columns are numbered from 0 here.
// Ownership  a batch lives until the last column that was handed out is released.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::python {

struct FieldType {
  std::string name;
  reading::ColumnType type = reading::ColumnType::text;
  bool is_utc = false;

  // What the layout knows of the column, by its name in Arrow: "vltext.unit" and the like.
  std::vector<std::pair<std::string, std::string>> metadata;

  bool operator==(const FieldType&) const = default;
};

struct TableSchema {
  std::vector<FieldType> fields;

  // For each field the column of a batch that it is, or none: then all its values are missing. Empty: the columns are
  // the fields.
  std::vector<std::optional<std::size_t>> order;

  std::optional<std::size_t> column_of(std::size_t field) const {
    return order.empty() ? std::optional(field) : order[field];
  }
};

using SharedBatch = std::shared_ptr<const reading::Batch>;
using SharedSchema = std::shared_ptr<const TableSchema>;

struct TableData {
  std::shared_ptr<const standalone::Layout> layout;
  SharedSchema schema;
  std::vector<SharedBatch> batches;
  reading::Account account;

  std::size_t num_rows() const;
};

// The schema of batches of these names; of a table without rows, that of the plan.
SharedSchema schema_of(const standalone::Layout& layout, const std::vector<std::string>& names,
                       const std::vector<SharedBatch>& batches,
                       const reading::ReadSettings& settings);

// Whether all batches have columns of the same types.
bool are_alike(const std::vector<SharedBatch>& batches);

}  // namespace textio::python
