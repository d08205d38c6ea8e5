// The rows of a table as texts: values with commas between them, nothing for a missing value, "" for an empty text.
//
//   shown(read_table_of_bytes("a,b\n1,x\n,y\n"))   // {"1,x", ",y"}
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::reading {

inline std::string shown_day(std::int64_t day) {
  const std::chrono::year_month_day date{std::chrono::sys_days(std::chrono::days(day))};
  return fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                     static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
}

inline std::string shown_time(std::int64_t microseconds) {
  const std::int64_t seconds = microseconds / 1'000'000;
  return fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

inline std::string shown(const Column& column, std::size_t row) {
  constexpr std::int64_t kDay = 86'400'000'000;
  if (column.is_missing(row)) return "";
  switch (column.type) {
    case ColumnType::integer:
    case ColumnType::duration:
      return std::to_string(column.integers[row]);
    case ColumnType::real:
      return fmt::format("{}", column.reals[row]);
    case ColumnType::boolean:
      return column.boolean_at(row) ? "true" : "false";
    case ColumnType::date:
      return shown_day(column.days[row]);
    case ColumnType::time:
      return shown_time(column.integers[row]);
    case ColumnType::date_time: {
      const std::int64_t moment = column.integers[row];
      const std::int64_t day = moment >= 0 ? moment / kDay : -((kDay - 1 - moment) / kDay);
      return shown_day(day) + "T" + shown_time(moment - day * kDay) + (column.is_utc ? "Z" : "");
    }
    default: {
      const std::string text(column.text_at(row));
      return text.empty() ? "\"\"" : text;
    }
  }
}

inline void append_shown(const Batch& batch, std::vector<std::string>& rows) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) {
    std::string& text = rows.emplace_back();
    for (std::size_t c = 0; c < batch.columns.size(); ++c) {
      text += (c > 0 ? "," : "") + shown(batch.columns[c], row);
    }
  }
}

inline std::vector<std::string> shown(const Table& table) {
  std::vector<std::string> rows;
  for (const Batch& batch : table.batches) append_shown(batch, rows);
  return rows;
}

// "names 1, data 3-5, footer 6".
inline std::string shown(const Account& account) {
  std::string text;
  for (const FateRun& run : account.runs) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", to_string(run.fate), run.first_line);
    if (run.num_lines > 1) text += fmt::format("-{}", run.first_line + run.num_lines - 1);
  }
  return text;
}

}  // namespace textio::reading
