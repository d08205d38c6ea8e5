#include "tool/report.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>

#include <fmt/format.h>

#include <vltextstream/text/utf8.hpp>
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

using detection::CandidateFate;
using detection::CandidateTrace;
using detection::SelectionEnd;
using standalone::EncodingFound;
using standalone::Layout;
using standalone::LayoutMode;
using standalone::LineRole;
using standalone::LineRun;

using Out = std::back_insert_iterator<std::string>;

// A delimiter or line ending as people write it.
std::string shown(std::u16string_view marker) { return marker_name(to_utf8_lossy(marker)); }

std::string joined(const std::vector<std::size_t>& numbers) {
  return fmt::format("{}", fmt::join(numbers, ", "));
}

std::string ending(const std::optional<std::u16string>& line_ending) {
  return line_ending ? shown(*line_ending) : "none";
}

std::string number(double value) { return std::isinf(value) ? "-" : fmt::format("{:.4g}", value); }

std::string_view name_of_end(const Layout& layout) {
  return layout.selection_end == SelectionEnd::single_survivor ? layout.decided_by
                                                               : to_string(layout.selection_end);
}

std::string names(const Layout& layout) {
  const std::string place = layout.names_line ? fmt::format("in line {}", *layout.names_line)
                                              : std::string(to_string(layout.names_source));
  return fmt::format("{}: {}", place, layout.names_reason);
}

// "2  number    level [cm]"; brackets that the file has itself are enough.
std::string name_and_unit(const Layout& layout, std::size_t column) {
  std::string name = column < layout.names.size() ? printable(layout.names[column]) : "";
  if (column >= layout.units.size() || layout.units[column].empty()) return name;
  const std::string unit = printable(layout.units[column]);
  const bool has_brackets = unit.front() == '[' || unit.front() == '(';
  return fmt::format(fmt::runtime(has_brackets ? "{} {}" : "{} [{}]"), name, unit);
}

void add_columns(std::string& out, const Layout& layout) {
  for (std::size_t i = 0; i < layout.classes.size(); ++i) {
    fmt::format_to(Out(out), "  {:>14}  {:<10}{}", i + 1, to_string(layout.classes[i]),
                   name_and_unit(layout, i));
    out.erase(out.find_last_not_of(' ') + 1);
    out.push_back('\n');
  }
}

std::string encoding(const Layout& layout) {
  if (layout.encoding_found == EncodingFound::none) return "none, the text was in memory";
  std::string out =
      fmt::format("{} ({}", printable(layout.encoding), to_string(layout.encoding_found));
  if (layout.encoding_confidence < 1.0) {
    // Rounded down: 100 % would be a proof.
    fmt::format_to(Out(out), ", {} % sure", static_cast<int>(layout.encoding_confidence * 100));
  }
  out += ")";
  if (layout.ill_formed_parts > 0) {
    fmt::format_to(Out(out), ", {} ill-formed", layout.ill_formed_parts);
  }
  return out;
}

std::string sampled(const Layout& layout) {
  if (layout.characters_sampled == 0 && layout.has_more_text) {
    return "nothing: no line ends in the first 4,194,304 characters";
  }
  return fmt::format("{} lines of {} characters", layout.lines_sampled, layout.characters_sampled);
}

// "1-4 header, 5 blank, 6 names, 7-18 data", or of many runs how many lines each role has.
std::string lines(const Layout& layout) {
  constexpr std::size_t kMostRuns = 8;
  std::vector<std::string> parts;
  if (layout.lines.size() <= kMostRuns) {
    for (const LineRun& run : layout.lines) {
      const std::string numbers = run.first_line == run.last_line
                                      ? fmt::format("{}", run.first_line)
                                      : fmt::format("{}-{}", run.first_line, run.last_line);
      parts.push_back(fmt::format("{} {}", numbers, to_string(run.role)));
    }
    return parts.empty() ? "none" : fmt::format("{}", fmt::join(parts, ", "));
  }
  for (const LineRole role : {LineRole::header, LineRole::names, LineRole::units, LineRole::blank,
                              LineRole::comment, LineRole::data}) {
    std::size_t count = 0;
    for (const LineRun& run : layout.lines) count += run.role == role ? run.count : 0;
    if (count > 0) parts.push_back(fmt::format("{} {}", count, to_string(role)));
  }
  return fmt::format("{} in all", fmt::join(parts, ", "));
}

// Rounded down, so that only what is certain is 100 %.
std::string percent(double share) {
  return share < 0.01 ? "less than 1 %" : fmt::format("{} %", static_cast<int>(share * 100));
}

std::string dialect_and_columns(const Dialect& dialect, std::size_t columns) {
  Dialect short_form = dialect;
  short_form.widths.clear();
  return fmt::format("{}, {} column{}", to_string(short_form), columns, columns == 1 ? "" : "s");
}

Dialect dialect_with(LayoutMode mode, const std::vector<std::u16string>& delimiters) {
  Layout layout;
  layout.mode = mode;
  layout.delimiters = delimiters;
  return dialect_of(layout);
}

void add_confidence(std::string& out, const Layout& layout) {
  if (!layout.confidence || layout.no_table == "empty") return;
  const char* const doubt = *layout.confidence < 0.5 ? ": no answer is likely" : "";
  fmt::format_to(Out(out), "  confidence      {} sure{}\n", percent(*layout.confidence), doubt);
  for (const standalone::Rival& rival : layout.rivals) {
    const Dialect dialect = dialect_with(rival.mode, rival.delimiters);
    fmt::format_to(Out(out), "  next best       {}, {}: {}\n",
                   dialect_and_columns(dialect, rival.num_variables), percent(rival.probability),
                   printable(rival.reason));
    break;
  }
  if (layout.cascade && !layout.cascade->agrees) {
    const Dialect dialect = dialect_with(layout.cascade->mode, layout.cascade->delimiters);
    fmt::format_to(Out(out), "  cascade         {}\n",
                   dialect_and_columns(dialect, layout.cascade->num_variables));
  }
}

void add_evidence(std::string& out, const Layout& layout) {
  for (const standalone::EvidenceItem& item : layout.evidence) {
    fmt::format_to(Out(out), "  {:>+14.1f}  {}\n", item.worth, printable(item.sentence));
  }
  for (const standalone::Rival& rival : layout.rivals) {
    const Dialect dialect = dialect_with(rival.mode, rival.delimiters);
    fmt::format_to(Out(out), "  {:>14}  {}: {}\n", percent(rival.probability),
                   dialect_and_columns(dialect, rival.num_variables), printable(rival.reason));
  }
}

std::string candidate_name(const CandidateTrace& candidate) {
  return to_string(Dialect{candidate.dialect.mode, candidate.dialect.delimiters, {}});
}

void add_trace(std::string& out, const detection::SelectionTrace& trace) {
  fmt::format_to(Out(out), "  candidates      {} characters seen\n", trace.candidate_chars.size());
  std::size_t index = 0;
  for (const CandidateTrace& candidate : trace.candidates) {
    const bool kept = candidate.fate == CandidateFate::kept;
    const StrategyValuation& v = candidate.valuation;
    fmt::format_to(Out(out), "  {:>14}  {}\n", kept ? fmt::format("#{}", index++) : "refused",
                   candidate_name(candidate));
    if (!candidate.dialect.widths.empty()) {
      fmt::format_to(Out(out), "  {:14}    widths {}\n", "", joined(candidate.dialect.widths));
    }
    fmt::format_to(Out(out),
                   "  {:14}    {} lines, {} of them header; {} fields usual, {} variables\n", "",
                   v.num_lines, candidate.header_lines, v.modal_field_count, v.num_variables);
    fmt::format_to(Out(out), "  {:14}    variation {} in all, {} in the data; prior rank {}\n", "",
                   number(v.total_variation), number(v.data_variation), number(v.priors_rank));
    fmt::format_to(Out(out), "  {:14}    columns: {} typed, {} number, {} date, {} datetime\n", "",
                   v.typed_columns, v.numeric_columns, v.date_columns, v.datetime_columns);
    if (!kept) fmt::format_to(Out(out), "  {:14}    {}\n", "", to_string(candidate.fate));
  }
  for (const detection::FilterTrace& filter : trace.filters) {
    std::vector<std::string> left;
    for (const std::size_t survivor : filter.survivors)
      left.push_back(fmt::format("#{}", survivor));
    fmt::format_to(Out(out), "  {:<22}  left {}\n", filter.name, fmt::join(left, " "));
  }
}

}  // namespace

std::string report(const std::string& file, const Layout& layout,
                   const std::vector<GivenOption>& given) {
  std::string out = printable(file) + "\n";
  fmt::format_to(Out(out), "  layout          {}\n", to_string(dialect_of(layout)));
  if (!layout.no_table.empty()) {
    fmt::format_to(Out(out), "  no table        {}\n",
                   layout.no_table == "empty" ? "there is no line that is not blank"
                                              : "this is probably " + layout.no_table);
  }
  add_confidence(out, layout);
  if (layout.looks_binary) {
    out += "  looks binary    control characters as no text has them; this is probably no table\n";
  }
  for (const GivenOption& option : given) {
    const std::string values = option.is_json
                                   ? option.values.front()
                                   : fmt::format("'{}'", fmt::join(option.values, "' '"));
    fmt::format_to(Out(out), "  given           {} {}\n", printable(option.name),
                   printable(values));
  }
  fmt::format_to(Out(out), "  header lines    {}\n", layout.header_lines);
  fmt::format_to(Out(out), "  names           {}\n", names(layout));
  fmt::format_to(Out(out), "  variables       {}\n", layout.num_variables);
  add_columns(out, layout);
  fmt::format_to(Out(out), "  encoding        {}\n", encoding(layout));
  fmt::format_to(Out(out), "  line ending     {}\n", ending(layout.line_ending));
  fmt::format_to(Out(out), "  lines           {}\n", lines(layout));
  if (layout.ragged_lines > 0) {
    fmt::format_to(Out(out), "  ragged          {} lines of data, the first in line {}\n",
                   layout.ragged_lines, *layout.first_ragged_line);
  }
  fmt::format_to(Out(out), "  sampled         {}\n", sampled(layout));
  if (!layout.confidence) fmt::format_to(Out(out), "  decided by      {}\n", name_of_end(layout));
  if (!layout.trace) return out;
  if (layout.confidence) {
    out += "  evidence\n";
    add_evidence(out, layout);
    fmt::format_to(Out(out), "  cascade ended   {}\n", name_of_end(layout));
  }
  add_trace(out, *layout.trace);
  return out;
}

}  // namespace textio::tool
