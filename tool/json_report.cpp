#include "tool/json_report.hpp"

#include <limits>
#include <numeric>
#include <optional>
#include <string_view>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/version.hpp>

#include "tool/json_writer.hpp"
#include "tool/report.hpp"

namespace textio::tool {
namespace {

using standalone::Layout;

std::optional<std::string_view> or_null(const std::string& text) {
  return text.empty() ? std::nullopt : std::optional<std::string_view>(text);
}

std::optional<std::u16string_view> or_null(const std::u16string& text) {
  return text.empty() ? std::nullopt : std::optional<std::u16string_view>(text);
}

void write_valuation(JsonWriter& json, const StrategyValuation& valuation) {
  json.begin_object();
  json.member("total_variation", valuation.total_variation);
  json.member("data_variation", valuation.data_variation);
  json.member("num_lines", valuation.num_lines);
  json.member("modal_field_count", valuation.modal_field_count);
  json.member("num_variables", valuation.num_variables);
  json.member("typed_columns", valuation.typed_columns);
  json.member("date_columns", valuation.date_columns);
  json.member("numeric_columns", valuation.numeric_columns);
  json.member("datetime_columns", valuation.datetime_columns);
  json.member("priors_rank", valuation.priors_rank);
  json.end_object();
}

void write_candidate(JsonWriter& json, const detection::CandidateTrace& candidate) {
  json.begin_object();
  const Dialect& dialect = candidate.dialect;
  const bool is_delimited = dialect.mode == LayoutMode::delimited;
  json.member("mode", to_string(dialect.mode));
  json.member("delimiter", is_delimited ? std::string_view(dialect.delimiters.front()) : "");
  json.member("widths", dialect.widths);
  json.member("header_lines", candidate.header_lines);
  json.member("fate", to_string(candidate.fate));
  json.key("valuation");
  write_valuation(json, candidate.valuation);
  json.end_object();
}

void write_filter(JsonWriter& json, const detection::FilterTrace& filter) {
  json.begin_object();
  json.member("name", filter.name);
  json.member("survivors", filter.survivors);
  json.end_object();
}

void write_trace(JsonWriter& json, const std::optional<detection::SelectionTrace>& trace) {
  if (!trace) return json.value(nullptr);
  json.begin_object();
  json.member("candidate_chars", trace->candidate_chars);
  json.key("candidates");
  json.array(trace->candidates, [&](const auto& candidate) { write_candidate(json, candidate); });
  json.key("filters");
  json.array(trace->filters, [&](const auto& filter) { write_filter(json, filter); });
  json.end_object();
}

void write_run(JsonWriter& json, const standalone::LineRun& run) {
  json.begin_object();
  json.member("role", to_string(run.role));
  json.member("first_line", run.first_line);
  json.member("last_line", run.last_line);
  json.member("count", run.count);
  json.end_object();
}

// Writes the members that differ from the usual ones, or all of them.
class ChosenMembers {
 public:
  ChosenMembers(JsonWriter& json, bool wants_all) : json_(json), wants_all_(wants_all) {}

  template <typename Value>
  void member(std::string_view name, const Value& value, const Value& usual) {
    if (wants_all_ || value != usual) json_.member(name, value);
  }

 private:
  JsonWriter& json_;
  bool wants_all_;
};

std::optional<unsigned long> header_lines_of(const parser::options& record) {
  const bool is_unknown = record.header_lines == std::numeric_limits<unsigned long>::max();
  return is_unknown ? std::nullopt : std::optional(record.header_lines);
}

void write_options(JsonWriter& json, const parser::options& record, bool wants_all) {
  const parser::options usual;
  ChosenMembers members(json, wants_all);
  json.begin_object();
  members.member("delimiters", record.delimiters, usual.delimiters);
  members.member("line_endings", record.line_endings, usual.line_endings);
  members.member("reserved_strings", record.reserved_strings, usual.reserved_strings);
  members.member("comment_style", record.comment_style, usual.comment_style);
  members.member("whitespace", record.whitespace, usual.whitespace);
  members.member("encoding", record.encoding, usual.encoding);
  members.member("date_locale", record.date_locale, usual.date_locale);
  members.member("exp_chars", record.exp_chars, usual.exp_chars);
  members.member("variable_widths", record.variable_widths, usual.variable_widths);
  members.member("header_lines", header_lines_of(record), header_lines_of(usual));
  members.member("num_variables", record.num_variables, usual.num_variables);
  members.member("variable_names_line", record.variable_names_line, usual.variable_names_line);
  members.member("variable_units_line", record.variable_units_line, usual.variable_units_line);
  members.member("variable_descriptions_line", record.variable_descriptions_line,
                 usual.variable_descriptions_line);
  members.member("row_names_field", record.row_names_field, usual.row_names_field);
  members.member("parser_type", to_string(record.parser_type), to_string(usual.parser_type));
  members.member("missing_rule", to_string(record.missing_rule), to_string(usual.missing_rule));
  members.member("import_error_rule", to_string(record.import_error_rule),
                 to_string(usual.import_error_rule));
  members.member("consecutive_delimiters_rule", to_string(record.consecutive_delimiters_rule),
                 to_string(usual.consecutive_delimiters_rule));
  members.member("empty_line_rule", to_string(record.empty_line_rule),
                 to_string(usual.empty_line_rule));
  members.member("extra_columns_rule", to_string(record.extra_columns_rule),
                 to_string(usual.extra_columns_rule));
  members.member("leading_delimiters_rule", to_string(record.leading_delimiters_rule),
                 to_string(usual.leading_delimiters_rule));
  members.member("text_type", to_string(record.text_type), to_string(usual.text_type));
  members.member("datetime_type", to_string(record.datetime_type), to_string(usual.datetime_type));
  members.member("partial_field_rule", to_string(record.partial_field_rule),
                 to_string(usual.partial_field_rule));
  members.member("detect_delimiters", record.detect_delimiters, usual.detect_delimiters);
  members.member("detect_header_lines", record.detect_header_lines, usual.detect_header_lines);
  members.member("detect_num_variables", record.detect_num_variables, usual.detect_num_variables);
  members.member("is_file", record.is_file, usual.is_file);
  members.member("collect_output", record.collect_output, usual.collect_output);
  json.end_object();
}

// U+0000, "none", is the empty text.
std::optional<std::u16string> given_text(std::optional<char16_t> unit) {
  if (!unit) return std::nullopt;
  return *unit == 0 ? std::u16string() : std::u16string(1, *unit);
}

bool is_usual(const parser::options& record) {
  std::string text;
  JsonWriter json(text, 0, {}, JsonWriter::Shape::one_line);
  write_options(json, record, false);
  return text == "{}";
}

void write_settings(JsonWriter& json, const standalone::DetectSettings& settings, bool wants_all) {
  const standalone::DetectSettings usual;
  ChosenMembers members(json, wants_all);
  json.begin_object();
  members.member("num_lines", settings.num_lines, usual.num_lines);
  members.member("encoding", settings.encoding, usual.encoding);
  if (wants_all || !is_usual(settings.options)) {
    json.key("options");
    write_options(json, settings.options, wants_all);
  }
  members.member("trace", settings.trace, usual.trace);
  members.member("max_bytes", settings.max_bytes, usual.max_bytes);
  members.member("judge", to_string(settings.judge), to_string(usual.judge));
  members.member("name_separator", settings.name_separator, usual.name_separator);
  members.member("look_at_end", settings.look_at_end, usual.look_at_end);
  members.member("sample", to_string(settings.sample), to_string(usual.sample));
  members.member("names_line", settings.names_line, usual.names_line);
  members.member("units_line", settings.units_line, usual.units_line);
  members.member("quote", given_text(settings.quote), given_text(usual.quote));
  members.member("escape", given_text(settings.escape), given_text(usual.escape));
  members.member("decimal", given_text(settings.decimal), given_text(usual.decimal));
  members.member("grouping", given_text(settings.grouping), given_text(usual.grouping));
  members.member("missing", settings.missing, usual.missing);
  json.end_object();
}

void write_given(JsonWriter& json, const GivenOption& option) {
  json.begin_object();
  json.member("name", option.name);
  json.member("values", option.values);
  if (option.is_json) json.member("json", true);
  json.end_object();
}

std::optional<std::u16string> text_of(std::optional<char16_t> unit) {
  return unit ? std::optional<std::u16string>(std::u16string(1, *unit)) : std::nullopt;
}

// The members that a layout, a rival and the cascade's answer have in common.
template <typename Answer>
void write_separators(JsonWriter& json, const Answer& answer) {
  json.member("mode", to_string(answer.mode));
  json.member("delimiters", answer.delimiters);
  json.member("widths", answer.widths);
}

void write_rival(JsonWriter& json, const standalone::Rival& rival) {
  json.begin_object();
  write_separators(json, rival);
  json.member("quote", text_of(rival.quote));
  json.member("num_variables", rival.num_variables);
  json.member("probability", rival.probability);
  json.member("reason", rival.reason);
  json.member("no_table", or_null(rival.no_table));
  json.end_object();
}

void write_considered(JsonWriter& json, const standalone::ConsideredReading& reading) {
  json.begin_object();
  json.member("mode", to_string(reading.mode));
  const bool is_delimited = reading.mode == LayoutMode::delimited;
  json.member("delimiter", or_null(is_delimited ? reading.delimiter : std::u16string()));
  json.member("is_table", reading.is_table);
  json.member("probability", reading.probability);
  json.end_object();
}

void write_cascade(JsonWriter& json, const standalone::CascadeAnswer& cascade) {
  json.begin_object();
  write_separators(json, cascade);
  json.member("header_lines", cascade.header_lines);
  json.member("num_variables", cascade.num_variables);
  json.member("agrees", cascade.agrees);
  json.end_object();
}

void write_missing(JsonWriter& json, const std::vector<standalone::MissingWord>& words) {
  json.key("missing");
  json.array(words, [&](const standalone::MissingWord& each) {
    json.begin_object();
    json.member("word", each.word);
    json.member("count", each.count);
    json.end_object();
  });
}

void write_dialect(JsonWriter& json, const standalone::TableDialect& dialect) {
  json.begin_object();
  json.member("delimiters", dialect.delimiters);
  json.member("widths", dialect.widths);
  json.member("quote", text_of(dialect.quote));
  json.member("escape", to_string(dialect.escape));
  json.member("escape_seen", dialect.is_escape_seen);
  json.member("blanks_after_delimiters", dialect.blanks_after_delimiters);
  json.member("comment_prefix", or_null(dialect.comment_prefix));
  json.member("decimal", text_of(dialect.decimal));
  json.member("grouping", text_of(dialect.grouping));
  write_missing(json, dialect.missing);
  json.member("byte_order_mark", dialect.has_byte_order_mark);
  json.key("line_endings");
  json.array(dialect.line_endings, [&](const standalone::LineEndingCount& each) {
    json.begin_object();
    json.member("ending", each.ending);
    json.member("count", each.count);
    json.end_object();
  });
  json.end_object();
}

void write_date(JsonWriter& json, const standalone::DateFacts& date) {
  json.begin_object();
  json.member("strptime", or_null(date.strptime));
  json.member("icu", or_null(date.icu));
  json.member("language", or_null(date.language));
  json.member("order", to_string(date.order));
  json.member("zone", or_null(date.zone));
  json.end_object();
}

bool is_of_dates(standalone::ColumnKind kind) {
  using Kind = standalone::ColumnKind;
  return kind == Kind::date || kind == Kind::time || kind == Kind::date_time;
}

std::optional<std::u16string_view> text_at(const std::vector<std::u16string>& texts,
                                           std::size_t index) {
  if (index >= texts.size() || texts[index].empty()) return std::nullopt;
  return texts[index];
}

void write_column(JsonWriter& json, const Layout& layout, std::size_t index) {
  const standalone::ColumnFacts& column = layout.columns[index];
  json.begin_object();
  json.member("name", text_at(layout.names, index));
  json.member("unique_name", layout.names_unique[index]);
  json.member("unit", text_at(layout.units, index));
  json.member("class", to_string(layout.classes[index]));
  json.member("kind", to_string(column.kind));
  json.member("num_cells", column.num_cells);
  json.member("num_empty", column.num_empty);
  json.member("num_missing", column.num_missing);
  json.member("num_fitting", column.num_fitting);
  json.member("first_misfit_line", column.first_misfit_line);
  write_missing(json, column.missing);
  json.member("least_width", column.least_width);
  json.member("most_width", column.most_width);
  json.member("decimal", text_of(column.decimal));
  json.member("grouping", text_of(column.grouping));
  json.member("marks_certain", column.are_marks_certain);
  if (column.kind == standalone::ColumnKind::money) {
    json.member("currency", or_null(column.currency));
    json.member("currency_before", column.is_currency_before);
  }
  if (column.kind == standalone::ColumnKind::boolean) {
    json.member("true", or_null(column.true_word));
    json.member("false", or_null(column.false_word));
  }
  if (is_of_dates(column.kind)) {
    json.key("date");
    write_date(json, column.date);
  }
  json.member("examples", column.examples);
  json.end_object();
}

void write_columns(JsonWriter& json, const Layout& layout) {
  std::vector<std::size_t> indexes(layout.columns.size());
  std::iota(indexes.begin(), indexes.end(), std::size_t{0});
  json.array(indexes, [&](std::size_t index) { write_column(json, layout, index); });
}

void write_tail(JsonWriter& json, const std::optional<standalone::TailLook>& tail) {
  json.key("tail");
  if (!tail) return json.value(nullptr);
  json.begin_object();
  json.member("footer_lines", tail->footer_lines);
  json.member("footer", tail->footer);
  json.member("characters", tail->characters);
  json.member("bytes", tail->bytes);
  json.end_object();
}

void write_place(JsonWriter& json, const standalone::TextPlace& place) {
  json.member("byte", place.byte);
  json.member("line", place.line);
  json.member("line_exact", place.is_line_exact);
}

void write_contradiction(JsonWriter& json, const standalone::Contradiction& each) {
  json.begin_object();
  json.member("column", each.column + 1);
  json.member("expected", to_string(each.expected));
  json.member("count", each.count);
  json.member("example", each.example);
  write_place(json, each.place);
  json.end_object();
}

void write_first_ragged(JsonWriter& json, const standalone::SpreadLook& look) {
  json.key("first_ragged");
  if (look.ragged_records == 0) return json.value(nullptr);
  json.begin_object();
  json.member("cells", look.ragged_cells);
  json.member("example", look.ragged_example);
  write_place(json, look.ragged_place);
  json.end_object();
}

// Only where it was asked for.
void write_spread(JsonWriter& json, const std::optional<standalone::SpreadLook>& spread) {
  if (!spread) return;
  json.key("spread");
  json.begin_object();
  json.member("reason", or_null(spread->reason));
  json.member("places", spread->places);
  json.member("records", spread->records);
  json.member("characters", spread->characters);
  json.member("bytes", spread->bytes);
  json.key("contradictions");
  json.array(spread->contradictions,
             [&](const standalone::Contradiction& each) { write_contradiction(json, each); });
  json.member("ragged_records", spread->ragged_records);
  write_first_ragged(json, *spread);
  write_missing(json, spread->missing);
  json.end_object();
}

// The members of the assessment; only where it chose the layout.
void write_assessment(JsonWriter& json, const Layout& layout, const std::string& file_kind) {
  if (!layout.confidence) return;
  json.member("confidence", layout.confidence);
  json.member("quote", text_of(layout.quote));
  json.member("escape", text_of(layout.escape));
  json.member("least_blanks", layout.least_blanks);
  json.member("joins_times", layout.joins_times);
  json.member("rest_in_last", layout.rest_in_last);
  json.member("framed", layout.is_framed);
  json.member("no_table", or_null(layout.no_table));
  json.member("file_kind", or_null(file_kind));
  json.member("names_probability", layout.names_probability);
  json.member("names_candidate", layout.names_candidate);
  json.key("rivals");
  json.array(layout.rivals, [&](const auto& rival) { write_rival(json, rival); });
  json.key("evidence");
  json.array(layout.evidence, [&](const standalone::EvidenceItem& item) {
    json.begin_object();
    json.member("name", item.name);
    json.member("worth", item.worth);
    json.member("sentence", item.sentence);
    json.end_object();
  });
  json.member("lines_estimated", layout.lines_estimated);
  write_tail(json, layout.tail);
  json.key("cascade");
  if (!layout.cascade) return json.value(nullptr);
  write_cascade(json, *layout.cascade);
}

// Within the list of the files, or in a line of its own.
std::size_t depth_of(JsonWriter::Shape shape) {
  return shape == JsonWriter::Shape::indented ? 2 : 0;
}

void write_members(JsonWriter& json, const std::string& file, const Layout& layout,
                   const std::string& file_kind) {
  json.begin_object();
  json.member("file", file);
  write_separators(json, layout);
  json.member("header_lines", layout.header_lines);
  json.member("names_found", to_string(layout.names_source));
  json.member("names_reason", layout.names_reason);
  json.member("names_line", layout.names_line);
  json.member("names", layout.names);
  json.member("units_line", layout.units_line);
  json.member("units", layout.units);
  json.member("num_variables", layout.num_variables);
  json.key("classes");
  json.array(layout.classes, [&](DatatypeCode code) { json.value(to_string(code)); });
  json.member("encoding", or_null(layout.encoding));
  json.member("encoding_found", to_string(layout.encoding_found));
  json.member("encoding_confidence", layout.encoding_confidence);
  json.member("ill_formed_parts", layout.ill_formed_parts);
  json.member("line_ending", layout.line_ending);
  json.key("lines");
  json.array(layout.lines, [&](const auto& run) { write_run(json, run); });
  json.member("ragged_lines", layout.ragged_lines);
  json.member("first_ragged_line", layout.first_ragged_line);
  json.member("lines_sampled", layout.lines_sampled);
  json.member("characters_sampled", layout.characters_sampled);
  json.member("text_goes_on", layout.has_more_text);
  json.member("end", to_string(layout.selection_end));
  json.member("decided_by", or_null(layout.decided_by));
  json.key("trace");
  write_trace(json, layout.trace);
  if (!layout.considered.empty()) {
    json.key("considered");
    json.array(layout.considered, [&](const auto& each) { write_considered(json, each); });
  }
  if (layout.looks_binary) json.member("looks_binary", true);
  if (layout.descriptions_line) {
    json.member("descriptions_line", layout.descriptions_line);
    json.member("descriptions", layout.descriptions);
  }
  json.member("names_unique", layout.names_unique);
  json.key("dialect");
  write_dialect(json, layout.dialect);
  json.key("columns");
  write_columns(json, layout);
  write_spread(json, layout.spread);
  write_assessment(json, layout, file_kind);
  json.end_object();
}

}  // namespace

std::string json_opening(const standalone::DetectSettings& settings,
                         const std::vector<GivenOption>& given, bool wants_all) {
  std::string text;
  JsonWriter json(text);
  json.begin_object();
  json.member("schema", kJsonSchema);
  json.member("version", libvltextstream_version);
  json.key("settings");
  write_settings(json, settings, wants_all);
  json.key("given");
  json.array(given, [&](const GivenOption& option) { write_given(json, option); });
  json.key("files");
  json.begin_array();
  return text += '\n';
}

std::string json_member(const std::string& file, const Layout& layout, const std::string& file_kind,
                        JsonWriter::Shape shape) {
  std::string text;
  JsonWriter json(text, depth_of(shape), {}, shape);
  write_members(json, file, layout, file_kind);
  return text;
}

void write_json_member(const std::string& file, const Layout& layout,
                       const JsonWriter::Empty& empty, const std::string& file_kind,
                       JsonWriter::Shape shape) {
  std::string text;
  JsonWriter json(text, depth_of(shape), empty, shape);
  write_members(json, file, layout, file_kind);
  empty(text);
}

std::string json_failure(const std::string& file, std::string_view problem) {
  std::string text;
  JsonWriter json(text, 0, {}, JsonWriter::Shape::one_line);
  json.begin_object();
  json.member("file", file);
  json.member("error", problem);
  json.end_object();
  return text;
}

}  // namespace textio::tool
