#include "tool/json_report.hpp"

#include <cmath>
#include <vector>

#include <vltextstream/standalone/utf_text.hpp>

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

// JSON has no infinity: "not measured" becomes null.
Json measure(double value) { return std::isfinite(value) ? Json(value) : Json(nullptr); }

Json candidate_report(const detection::CandidateTrace& candidate) {
  const StrategyValuation& v = candidate.valuation;
  return {{"mode", name_of(static_cast<standalone::LayoutMode>(candidate.mode))},
          {"delimiter", to_utf8(candidate.delimiter)},
          {"widths", candidate.widths},
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

Json trace_report(const detection::SelectionTrace& trace) {
  Json report = {{"candidate_chars", to_utf8(trace.candidate_chars)},
                 {"candidates", Json::array()},
                 {"filters", Json::array()}};
  for (const auto& candidate : trace.candidates) {
    report["candidates"].push_back(candidate_report(candidate));
  }
  for (const auto& filter : trace.filters) {
    report["filters"].push_back({{"name", filter.name}, {"survivors", filter.survivors}});
  }
  return report;
}

}  // namespace

Json json_report(const std::string& file, const Layout& layout,
                 const std::vector<GivenOption>& given) {
  Json given_options = Json::array();
  for (const GivenOption& option : given) {
    given_options.push_back({{"name", option.name}, {"values", option.values}});
    if (option.is_json) given_options.back()["json"] = true;
  }
  Json classes = Json::array();
  for (const DatatypeCode code : layout.classes) classes.push_back(name_of(code));
  Json report = {
      {"file", file},
      {"mode", name_of(layout.mode)},
      {"delimiters", texts(layout.delimiters)},
      {"widths", layout.widths},
      {"header_lines", layout.header_lines},
      {"names_line", layout.names_line ? Json(*layout.names_line) : Json(nullptr)},
      {"names", texts(layout.names)},
      {"num_variables", layout.num_variables},
      {"classes", classes},
      {"encoding", layout.encoding},
      {"encoding_found", name_of(layout.encoding_found)},
      {"line_ending", layout.line_ending ? Json(to_utf8(*layout.line_ending)) : Json(nullptr)},
      {"lines_sampled", layout.lines_sampled},
      {"characters_sampled", layout.characters_sampled},
      {"ended", name_of_end(layout)},
      {"given", given_options}};
  if (layout.trace) report["trace"] = trace_report(*layout.trace);
  return report;
}

}  // namespace textio::tool
