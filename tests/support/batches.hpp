// Batches made by hand, for what writes tables.
//
//   const reading::Batch batch = batch_of({integers({1, std::nullopt}), texts({"a", ""})});
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/reading/column.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::testing_support {

template <typename Value>
using Rows = std::vector<std::optional<Value>>;

// A column of this type with the validity of the rows, but without values.
template <typename Value>
reading::Column column_of(reading::ColumnType type, const Rows<Value>& rows) {
  reading::Column column;
  column.type = type;
  column.size = rows.size();
  for (const auto& row : rows) column.num_missing += row ? 0U : 1U;
  if (column.num_missing == 0) return column;
  column.validity.resize((rows.size() + 7) / 8);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i]) {
      column.validity[i / 8] = static_cast<std::uint8_t>(column.validity[i / 8] | (1U << (i % 8)));
    }
  }
  return column;
}

// Of the type integer, or of times, moments and durations in microseconds.
inline reading::Column integers(const Rows<std::int64_t>& rows,
                                reading::ColumnType type = reading::ColumnType::integer) {
  reading::Column column = column_of(type, rows);
  for (const auto& row : rows) column.integers.push_back(row.value_or(0));
  return column;
}

inline reading::Column reals(const Rows<double>& rows) {
  reading::Column column = column_of(reading::ColumnType::real, rows);
  for (const auto& row : rows) column.reals.push_back(row.value_or(0));
  return column;
}

inline reading::Column booleans(const Rows<bool>& rows) {
  reading::Column column = column_of(reading::ColumnType::boolean, rows);
  column.booleans.resize((rows.size() + 7) / 8);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (rows[i].value_or(false)) {
      column.booleans[i / 8] = static_cast<std::uint8_t>(column.booleans[i / 8] | (1U << (i % 8)));
    }
  }
  return column;
}

inline reading::Column dates(const Rows<std::int32_t>& rows) {
  reading::Column column = column_of(reading::ColumnType::date, rows);
  for (const auto& row : rows) column.days.push_back(row.value_or(0));
  return column;
}

// Of the type text or decimal.
inline reading::Column texts(const Rows<std::string>& rows,
                             reading::ColumnType type = reading::ColumnType::text) {
  reading::Column column = column_of(type, rows);
  column.offsets.push_back(0);
  for (const auto& row : rows) {
    column.bytes += row.value_or("");
    column.offsets.push_back(static_cast<std::int64_t>(column.bytes.size()));
  }
  return column;
}

inline reading::Column categories(std::vector<std::string> words, const Rows<std::int32_t>& codes) {
  reading::Column column = column_of(reading::ColumnType::category, codes);
  column.words = std::move(words);
  for (const auto& code : codes) column.codes.push_back(code.value_or(0));
  return column;
}

inline reading::Batch batch_of(std::vector<reading::Column> columns) {
  reading::Batch batch;
  batch.num_rows = columns.empty() ? 0 : columns.front().size;
  batch.columns = std::move(columns);
  return batch;
}

}  // namespace textio::testing_support
