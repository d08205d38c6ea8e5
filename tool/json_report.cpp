#include "tool/json_report.hpp"

#include <cmath>
#include <string_view>

#include <fmt/format.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/strategy/strategy.hpp>

#include "tool/report.hpp"

namespace textio::tool {
namespace {

using Json = nlohmann::ordered_json;
using standalone::Layout;
using standalone::to_utf8;

Json texts(const std::vector<std::u16string>& list) {
  Json array = Json::array();
  for (const std::u16string& text : list) array.push_back(to_utf8(text));
  return array;
}

Json json_of(const std::u16string& text) { return to_utf8(text); }

template <typename T>
Json or_null(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json or_null(const std::string& text) { return text.empty() ? Json(nullptr) : Json(text); }

// JSON has no infinity: "not measured" becomes null.
Json measure(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json json_of(const detection::CandidateTrace& candidate) {
  const StrategyValuation& v = candidate.valuation;
  const Dialect& dialect = candidate.dialect;
  const bool is_delimited = dialect.mode == LayoutMode::delimited;
  return {{"mode", to_string(dialect.mode)},
          {"delimiter", is_delimited ? dialect.delimiters.front() : ""},
          {"widths", dialect.widths},
          {"header_lines", candidate.header_lines},
          {"fate", name_of(candidate.fate)},
          {"valuation",
           {{"total_variation", measure(v.total_variation)},
            {"data_variation", measure(v.data_variation)},
            {"num_lines", v.num_lines},
            {"modal_field_count", v.modal_field_count},
            {"num_variables", v.num_variables},
            {"typed_columns", v.typed_columns},
            {"date_columns", v.date_columns},
            {"numeric_columns", v.numeric_columns},
            {"datetime_columns", v.datetime_columns},
            {"priors_rank", measure(v.priors_rank)}}}};
}

Json json_of(const detection::SelectionTrace& trace) {
  Json report = {{"candidate_chars", to_utf8(trace.candidate_chars)},
                 {"candidates", Json::array()},
                 {"filters", Json::array()}};
  for (const auto& candidate : trace.candidates) {
    report["candidates"].push_back(json_of(candidate));
  }
  for (const auto& filter : trace.filters) {
    report["filters"].push_back({{"name", filter.name}, {"survivors", filter.survivors}});
  }
  return report;
}

Json json_of(const standalone::LineRun& run) {
  return {{"role", name_of(run.role)},
          {"first_line", run.first_line},
          {"last_line", run.last_line},
          {"count", run.count}};
}

Json json_of(const parser::options& record) {
  const bool unknown = record.header_lines == Strategy::kUnknownHeaderLines;
  return {{"delimiters", texts(record.delimiters)},
          {"line_endings", texts(record.line_endings)},
          {"reserved_strings", texts(record.reserved_strings)},
          {"comment_style", texts(record.comment_style)},
          {"whitespace", json_of(record.whitespace)},
          {"encoding", json_of(record.encoding)},
          {"date_locale", json_of(record.date_locale)},
          {"exp_chars", json_of(record.exp_chars)},
          {"variable_widths", record.variable_widths},
          {"header_lines", unknown ? Json(nullptr) : Json(record.header_lines)},
          {"num_variables", record.num_variables},
          {"variable_names_line", record.variable_names_line},
          {"variable_units_line", record.variable_units_line},
          {"variable_descriptions_line", record.variable_descriptions_line},
          {"row_names_field", record.row_names_field},
          {"parser_type", to_string(record.parser_type)},
          {"missing_rule", to_string(record.missing_rule)},
          {"import_error_rule", to_string(record.import_error_rule)},
          {"consecutive_delimiters_rule", to_string(record.consecutive_delimiters_rule)},
          {"empty_line_rule", to_string(record.empty_line_rule)},
          {"extra_columns_rule", to_string(record.extra_columns_rule)},
          {"leading_delimiters_rule", to_string(record.leading_delimiters_rule)},
          {"text_type", to_string(record.text_type)},
          {"datetime_type", to_string(record.datetime_type)},
          {"partial_field_rule", to_string(record.partial_field_rule)},
          {"detect_delimiters", record.detect_delimiters},
          {"detect_header_lines", record.detect_header_lines},
          {"detect_num_variables", record.detect_num_variables},
          {"is_file", record.is_file},
          {"collect_output", record.collect_output}};
}

}  // namespace

Json json_of(const Layout& layout) {
  Json classes = Json::array();
  for (const DatatypeCode code : layout.classes) classes.push_back(name_of(code));
  Json lines = Json::array();
  for (const standalone::LineRun& run : layout.lines) lines.push_back(json_of(run));
  return {{"mode", name_of(layout.mode)},
          {"delimiters", texts(layout.delimiters)},
          {"widths", layout.widths},
          {"header_lines", layout.header_lines},
          {"names_found", name_of(layout.names_source)},
          {"names_reason", layout.names_reason},
          {"names_line", or_null(layout.names_line)},
          {"names", texts(layout.names)},
          {"units_line", or_null(layout.units_line)},
          {"units", texts(layout.units)},
          {"num_variables", layout.num_variables},
          {"classes", classes},
          {"encoding", or_null(layout.encoding)},
          {"encoding_found", name_of(layout.encoding_found)},
          {"encoding_confidence", layout.encoding_confidence},
          {"ill_formed_parts", layout.ill_formed_parts},
          {"line_ending", layout.line_ending ? json_of(*layout.line_ending) : Json(nullptr)},
          {"lines", lines},
          {"ragged_lines", layout.ragged_lines},
          {"first_ragged_line", or_null(layout.first_ragged_line)},
          {"lines_sampled", layout.lines_sampled},
          {"characters_sampled", layout.characters_sampled},
          {"text_goes_on", layout.has_more_text},
          {"end", name_of(layout.selection_end)},
          {"decided_by", or_null(layout.decided_by)},
          {"trace", layout.trace ? json_of(*layout.trace) : Json(nullptr)}};
}

Json json_of(const standalone::DetectSettings& settings) {
  return {{"num_lines", settings.num_lines},
          {"encoding", or_null(settings.encoding)},
          {"options", json_of(settings.options)},
          {"trace", settings.trace}};
}

Json json_of(const std::vector<GivenOption>& given) {
  Json list = Json::array();
  for (const GivenOption& option : given) {
    list.push_back({{"name", option.name}, {"values", option.values}});
    if (option.is_json) list.back()["json"] = true;
  }
  return list;
}

// The units below U+0020 are escaped already, or break the lines between the members.
std::string json_text(const nlohmann::ordered_json& document) {
  const std::string text = document.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
  std::u16string safe;
  for (const char16_t unit : standalone::from_utf8(text)) {
    const bool may_be_half_of_pair = unit >= 0xD800 && unit <= 0xDFFF;
    if (unit >= 0x7F && !may_be_half_of_pair && is_unprintable(unit)) {
      safe += standalone::from_utf8(fmt::format("\\u{:04x}", static_cast<unsigned>(unit)));
    } else {
      safe.push_back(unit);
    }
  }
  return to_utf8(safe);
}

// Two lists around it give it the indentation that it has in the document.
std::string json_member(const Json& file) {
  constexpr std::string_view kOpening = "[\n  [\n";
  constexpr std::string_view kClosing = "\n  ]\n]\n";
  const std::string text = json_text(Json::array({Json::array({file})}));
  return text.substr(kOpening.size(), text.size() - kOpening.size() - kClosing.size());
}

std::string json_text(const standalone::DetectSettings& settings,
                      const std::vector<GivenOption>& given, const std::string& members) {
  constexpr std::string_view kEnd = "]\n}\n";
  std::string text = json_text(Json{{"schema", kJsonSchema},
                                    {"settings", json_of(settings)},
                                    {"given", json_of(given)},
                                    {"files", Json::array()}});
  text.resize(text.size() - kEnd.size());
  return text + '\n' + members + "\n  ]\n}\n";
}

}  // namespace textio::tool
