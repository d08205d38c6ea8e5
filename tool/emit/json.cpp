#include "tool/emit/emit_words.hpp"
#include "tool/emit/targets.hpp"
#include "tool/json_writer.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;

std::optional<std::string_view> or_null(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

void write_column(JsonWriter& json, const ColumnFact& column) {
  const bool is_number = column.type == ColumnType::integer || column.type == ColumnType::real;
  json.begin_object();
  json.member("name", column.name);
  json.member("type", to_string(column.type));
  json.member("kind", column.kind);
  if (is_number) json.member("decimal", column.decimal);
  if (is_number) json.member("grouping", or_null(column.grouping));
  if (column.type == ColumnType::boolean) {
    json.member("true", or_null(column.true_word));
    json.member("false", or_null(column.false_word));
  }
  if (!column.format.empty()) json.member("format", column.format);
  json.member("missing", column.missing);
  json.end_object();
}

}  // namespace

std::string json_document(const Facts& facts) {
  std::string text;
  JsonWriter json(text);
  json.begin_object();
  json.member("file", facts.path);
  json.member("encoding", facts.encoding);
  json.member("byte_order_mark", facts.has_mark);
  json.member("compression", or_null(facts.compression));
  json.member("mode", to_string(facts.mode));
  json.member("delimiters", facts.delimiters);
  json.member("widths", facts.widths);
  json.member("framed", facts.is_framed);
  json.member("quote", or_null(facts.quote));
  json.member("escape", facts.has_backslash   ? std::optional<std::string_view>("backslash")
                        : facts.quote.empty() ? std::nullopt
                                              : std::optional<std::string_view>("doubled"));
  json.member("comment_prefix", or_null(facts.comment));
  json.member("line_ending", facts.line_ending);
  json.member("names_line", facts.names_line);
  json.member("lines_to_skip", facts.lines_to_skip());
  json.member("rows", facts.num_rows);
  json.member("blank_lines", facts.blank_lines);
  json.member("comment_lines", facts.comment_lines);
  json.member("footer_lines", facts.footer_lines);
  json.member("oddity", or_null(facts.oddity));
  json.key("columns");
  json.array(facts.columns, [&](const ColumnFact& column) { write_column(json, column); });
  json.end_object();
  return text += '\n';
}

}  // namespace textio::tool
