// JsonLinesWriter: a table as one JSON object for each row, in a line of its own.
//
//   {"date":"2024-01-01","level":143,"flow":12.8,"note":null}
//
// Numbers and booleans are those of JSON, dates and durations texts in ISO 8601, missing values null. JSON has no
// word for a number that is not finite: it becomes the text "NaN", "Inf" or "-Inf". Every object has all columns.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tool/writing/byte_sink.hpp"
#include "tool/writing/table_writer.hpp"

namespace textio::tool {

class JsonLinesWriter : public TableWriter {
 public:
  explicit JsonLinesWriter(ByteSink& sink) : sink_(sink) {}

  void begin(const std::vector<ColumnHead>& heads) override;
  void write(const reading::Batch& batch) override;
  void finish() override { sink_.flush(); }

 private:
  void append_row(const reading::Batch& batch, std::size_t row);

  ByteSink& sink_;
  std::vector<std::string> keys_;  // what is before each value: {"date": and ,"level":
};

// Appends a text of UTF-8 between quotes.
void append_json_text(std::string& out, std::string_view utf8);

}  // namespace textio::tool
