#include "tool/head_command.hpp"

#include <exception>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

#include <vltextstream/layout/file_error.hpp>

#include "tool/plain_table.hpp"
#include "tool/safe_text.hpp"
#include "tool/writing/value_text.hpp"

namespace textio::tool {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;

Side side_of(ColumnType type) {
  switch (type) {
    case ColumnType::integer:
    case ColumnType::real:
    case ColumnType::decimal:
      return Side::right;
    default:
      return Side::left;
  }
}

// More than can be shown of a text need not be copied.
std::string cell_text(const Column& column, std::size_t row) {
  constexpr std::size_t kMostBytes = std::size_t{16} * PlainTable::kMostWidth;
  std::string text;
  if (column.is_missing(row)) return text;
  const bool is_text = column.type == ColumnType::text || column.type == ColumnType::category;
  if (!is_text) {
    append_value(text, column, row);
    return text;
  }
  text = column.text_at(row).substr(0, kMostBytes);
  return text.empty() ? "\"\"" : text;
}

struct Head {
  std::vector<std::string> names;
  std::vector<ColumnType> types;
  std::vector<std::vector<std::string>> rows;
};

// The types are those of the last batch: the widest.
Head read_head(TableSource& table, std::size_t num_rows) {
  Head head;
  std::optional<Batch> batch = table.next();
  while (batch) {
    head.types.clear();
    for (const Column& column : batch->columns) head.types.push_back(column.type);
    for (std::size_t row = 0; row < batch->num_rows && head.rows.size() < num_rows; ++row) {
      std::vector<std::string>& cells = head.rows.emplace_back();
      for (const Column& column : batch->columns) cells.push_back(cell_text(column, row));
    }
    if (head.rows.size() >= num_rows) break;
    batch = table.next();
  }
  head.names = table.names();
  head.types.resize(head.names.size(), ColumnType::text);
  return head;
}

std::string head_of_file(const std::string& file, const HeadArguments& arguments) {
  const std::unique_ptr<TableSource> table = open_table(file, std::nullopt, arguments.settings);
  const std::string& what = table->layout().no_table;
  if (!what.empty()) throw std::runtime_error("no table was found in it: " + what);
  return head_of(*table, arguments.num_rows);
}

}  // namespace

std::string head_of(TableSource& table, std::size_t num_rows) {
  const Head head = read_head(table, num_rows);
  std::vector<Side> sides;
  std::vector<std::string> types;
  for (const ColumnType type : head.types) {
    sides.push_back(side_of(type));
    types.emplace_back(to_string(type));
  }
  PlainTable text(std::move(sides));
  text.add(head.names);
  text.add(types);
  text.add_line();
  for (const std::vector<std::string>& row : head.rows) text.add(row);
  return text.print();
}

int print_heads(const HeadArguments& arguments, const Streams& streams) {
  int status = kSucceeded;
  bool is_first = true;
  const bool has_several = arguments.files.size() > 1;
  for (const std::string& file : arguments.files) {
    try {
      std::string heading = has_several ? printable(file) + '\n' : "";
      if (!is_first) heading.insert(0, 1, '\n');
      const std::string text = head_of_file(file, arguments);
      is_first = false;
      if (!write_out(heading, text, streams)) return kFailed;
      continue;
    } catch (const standalone::FileError& error) {
      complain(error.what(), streams.err);
    } catch (const std::bad_alloc&) {
      complain_of_memory(file, streams.err);
    } catch (const std::exception& error) {
      complain(file + ": " + error.what(), streams.err);
    }
    status = kFailed;
  }
  return status;
}

}  // namespace textio::tool
