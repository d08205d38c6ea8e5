#include "tool/writing/json_lines_writer.hpp"

#include <cmath>

#include "tool/writing/value_text.hpp"

namespace textio::tool {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;

void append_control(std::string& out, char c) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  const auto code = static_cast<unsigned char>(c);
  switch (c) {
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      out += "\\u00";
      out += kDigits[code >> 4];
      out += kDigits[code & 0xF];
  }
}

std::size_t count_digits(std::string_view text, std::size_t from) {
  std::size_t end = from;
  while (end < text.size() && text[end] >= '0' && text[end] <= '9') ++end;
  return end - from;
}

// -?(0|[1-9][0-9]*)(.[0-9]+)?
bool is_json_decimal(std::string_view text) {
  std::size_t pos = text.starts_with('-') ? 1 : 0;
  const std::size_t whole = count_digits(text, pos);
  if (whole == 0 || (whole > 1 && text[pos] == '0')) return false;
  pos += whole;
  if (pos == text.size()) return true;
  const std::size_t fraction = text[pos] == '.' ? count_digits(text, pos + 1) : 0;
  return fraction > 0 && pos + 1 + fraction == text.size();
}

bool is_bare(const Column& column, std::size_t row) {
  switch (column.type) {
    case ColumnType::integer:
    case ColumnType::boolean:
      return true;
    case ColumnType::real:
      return std::isfinite(column.reals[row]);
    case ColumnType::decimal:
      return is_json_decimal(column.text_at(row));
    default:
      return false;
  }
}

bool is_text(const Column& column) {
  return column.type == ColumnType::text || column.type == ColumnType::category ||
         column.type == ColumnType::decimal;
}

void append_json_value(std::string& out, const Column& column, std::size_t row) {
  if (column.is_missing(row)) {
    out += "null";
  } else if (is_bare(column, row)) {
    append_value(out, column, row);
  } else if (is_text(column)) {
    append_json_text(out, column.text_at(row));
  } else {
    out += '"';
    append_value(out, column, row);
    out += '"';
  }
}

}  // namespace

void append_json_text(std::string& out, std::string_view utf8) {
  out += '"';
  for (const char c : utf8) {
    if (c == '"' || c == '\\') {
      out += '\\';
      out += c;
    } else if (static_cast<unsigned char>(c) < 0x20) {
      append_control(out, c);
    } else {
      out += c;
    }
  }
  out += '"';
}

void JsonLinesWriter::begin(const std::vector<ColumnHead>& heads) {
  keys_.clear();
  for (const ColumnHead& head : heads) {
    std::string key = keys_.empty() ? "{" : ",";
    append_json_text(key, head.name);
    keys_.push_back(key + ':');
  }
}

void JsonLinesWriter::write(const Batch& batch) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) {
    append_row(batch, row);
    sink_.pass_on();
  }
}

void JsonLinesWriter::append_row(const Batch& batch, std::size_t row) {
  std::string& out = sink_.text();
  if (keys_.empty()) out += '{';
  for (std::size_t i = 0; i < keys_.size(); ++i) {
    out += keys_[i];
    if (i < batch.columns.size()) {
      append_json_value(out, batch.columns[i], row);
    } else {
      out += "null";
    }
  }
  out += "}\n";
}

}  // namespace textio::tool
