// TableWriter: writes a table in some format, batch after batch.
//
//   DelimitedWriter writer(sink, ',');
//   writer.begin({{"level", ColumnType::integer}});
//   writer.write(batch);
//   writer.finish();
//
// begin() comes once and first, finish() once and last. What was written is complete only after finish().
//
// Ownership  the sink, if there is one, is borrowed and must outlive the writer.
// Errors     WriteError when something cannot be written; std::bad_alloc. A writer is of no use after an error.
// Cost       memory for one block of output, whatever the size of the table.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include <vltextstream/reading/column.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::tool {

// The name, in UTF-8, and the type of a column.
struct ColumnHead {
  std::string name;
  reading::ColumnType type = reading::ColumnType::text;

  bool operator==(const ColumnHead&) const = default;
};

// what() begins with the name of what cannot be written.
class WriteError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

class TableWriter {
 public:
  TableWriter() = default;
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;
  virtual ~TableWriter() = default;

  virtual void begin(const std::vector<ColumnHead>& heads) = 0;

  // The columns of the batch are the first of those that were begun with, and of the same types. The others are
  // missing in its rows.
  virtual void write(const reading::Batch& batch) = 0;

  virtual void finish() = 0;
};

}  // namespace textio::tool
