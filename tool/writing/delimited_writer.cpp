#include "tool/writing/delimited_writer.hpp"

#include <algorithm>

#include "tool/writing/value_text.hpp"

namespace textio::tool {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

bool is_blank(char c) { return c == ' ' || c == '\t'; }

bool needs_quotes(std::string_view text, char separator) {
  if (text.empty() || is_blank(text.front()) || is_blank(text.back())) return true;
  if (text.starts_with(kByteOrderMark)) return true;
  return std::any_of(text.begin(), text.end(), [separator](char c) {
    return c == separator || c == '"' || c == '\n' || c == '\r';
  });
}

bool is_text(const Column& column) {
  return column.type == ColumnType::text || column.type == ColumnType::category;
}

}  // namespace

void append_quoted_if_needed(std::string& out, std::string_view text, char separator) {
  if (!needs_quotes(text, separator)) {
    out += text;
    return;
  }
  out += '"';
  for (std::size_t quote = text.find('"'); quote != std::string_view::npos;
       quote = text.find('"')) {
    out += text.substr(0, quote + 1);
    out += '"';
    text.remove_prefix(quote + 1);
  }
  out += text;
  out += '"';
}

void DelimitedWriter::begin(const std::vector<ColumnHead>& heads) {
  num_columns_ = heads.size();
  std::string& out = sink_.text();
  for (const ColumnHead& head : heads) {
    if (&head != &heads.front()) out += separator_;
    append_quoted_if_needed(out, head.name, separator_);
  }
  out += '\n';
}

void DelimitedWriter::write(const Batch& batch) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) {
    append_row(batch, row);
    sink_.pass_on();
  }
}

void DelimitedWriter::append_row(const Batch& batch, std::size_t row) {
  std::string& out = sink_.text();
  const std::size_t begin = out.size();
  bool is_first = true;
  for (const Column& column : batch.columns) {
    if (!is_first) out += separator_;
    is_first = false;
    if (!column.is_missing(row)) append_cell(column, row);
  }
  const std::size_t num_absent = num_columns_ - batch.columns.size();
  out.append(num_absent - (batch.columns.empty() && num_absent > 0 ? 1 : 0), separator_);
  if (out.size() == begin) out += "\"\"";
  out += '\n';
}

void DelimitedWriter::append_cell(const Column& column, std::size_t row) {
  if (is_text(column)) {
    append_quoted_if_needed(sink_.text(), column.text_at(row), separator_);
  } else {
    append_value(sink_.text(), column, row);
  }
}

}  // namespace textio::tool
