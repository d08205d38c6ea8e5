// DelimitedWriter: a table as comma- or tab-separated values, quoted as RFC 4180 says, in UTF-8 without a mark.
//
//   level,"note"     a line of names, then one for each row, each ended by "\n"
//   12.8,            a missing value is nothing
//   13.3,""          an empty text is quoted
//
// Quoted are cells that are empty texts, and those with the separator, a quote or a line break, or with a blank or
// a byte-order mark at an end. A quote within is doubled. In a table of a single column a missing value is quoted,
// too: a line without anything would be skipped by most readers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/writing/byte_sink.hpp"
#include "tool/writing/table_writer.hpp"

namespace textio::tool {

class DelimitedWriter : public TableWriter {
 public:
  DelimitedWriter(ByteSink& sink, char separator) : sink_(sink), separator_(separator) {}

  void begin(const std::vector<ColumnHead>& heads) override;
  void write(const reading::Batch& batch) override;
  void finish() override { sink_.flush(); }

 private:
  void append_row(const reading::Batch& batch, std::size_t row);
  void append_cell(const reading::Column& column, std::size_t row);

  ByteSink& sink_;
  char separator_;
  std::size_t num_columns_ = 0;
};

// Appends `text` as a cell.
void append_quoted_if_needed(std::string& out, std::string_view text, char separator);

}  // namespace textio::tool
