#include "tool/report.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/text/utf8.hpp>
#include "tool/grouped.hpp"
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

std::string ending(const Layout& layout) {
  const auto& counts = layout.dialect.line_endings;
  if (counts.size() < 2) return layout.line_ending ? shown(*layout.line_ending) : "none";
  std::vector<std::string> parts;
  parts.reserve(counts.size());
  for (const standalone::LineEndingCount& each : counts) {
    parts.push_back(
        fmt::format("{} {} time{}", shown(each.ending), each.count, each.count == 1 ? "" : "s"));
  }
  return fmt::format("mixed: {}", fmt::join(parts, ", "));
}

std::string number(double value) { return std::isinf(value) ? "-" : fmt::format("{:.4g}", value); }

// What a filter of the cascade looks for.
std::string_view what_decided(std::string_view filter) {
  static constexpr std::pair<std::string_view, std::string_view> kFilters[] = {
      {"reduce_by_numvariables", "it has the number of columns that was given"},
      {"reduce_by_dates", "it finds the most columns of dates and times"},
      {"reduce_by_variation", "its lines have the most regular number of cells"},
      {"reduce_by_class_value", "its columns hold the most values that are not text"},
      {"reduce_by_header_lines", "it has the fewest lines before the data"},
      {"reduce_by_non_empty", "the fewest of its columns are empty"},
      {"reduce_by_priors_rank", "its delimiter is the most usual one"},
  };
  for (const auto& [name, words] : kFilters) {
    if (name == filter) return words;
  }
  return filter;
}

// Why the cascade answers as it does.
std::string_view end_of_cascade(const Layout& layout) {
  switch (layout.selection_end) {
    case SelectionEnd::single_survivor:
      return what_decided(layout.decided_by);
    case SelectionEnd::only_candidate:
      return "nothing else can separate the columns";
    case SelectionEnd::no_candidate:
      return "no character separates columns";
    case SelectionEnd::empty_sample:
      return "there is no line to look at";
    case SelectionEnd::whole_line_dates:
      return "each line is a date";
    case SelectionEnd::unresolved_tie:
      return "several answers are as good, so each line is one cell";
    case SelectionEnd::given:
      return "it was given";
  }
  return {};
}

// A layout in the words of the tool.
std::string in_words(const Dialect& dialect) {
  switch (dialect.mode) {
    case LayoutMode::space_aligned:
      return "columns aligned with blanks";
    case LayoutMode::fixed_width: {
      std::string out = "columns of fixed width";
      if (!dialect.widths.empty()) out += ": " + joined(dialect.widths) + " characters";
      return out;
    }
    case LayoutMode::line_reader:
      return "one column, each line a cell";
    case LayoutMode::delimited:
      break;
  }
  return to_string(dialect);
}

// What a line is for, in the words of the tool.
std::string_view in_words(LineRole role) {
  return role == LineRole::header ? std::string_view("above") : to_string(role);
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
  if (!layout.units_line) return name;  // the unit is part of the name
  const std::string unit = printable(layout.units[column]);
  const bool has_brackets = unit.front() == '[' || unit.front() == '(';
  return fmt::format(fmt::runtime(has_brackets ? "{} {}" : "{} [{}]"), name, unit);
}

std::string quoted(std::u16string_view text) {
  return fmt::format("\"{}\"", printable(to_utf8_lossy(text)));
}

// Blanks that look like the one of the keyboard have their numbers.
std::string quoted(char16_t unit) {
  const bool is_other_blank = unit == 0x00A0 || unit == 0x2009 || unit == 0x202F;
  return is_other_blank ? fmt::format("U+{:04X}", static_cast<unsigned>(unit))
                        : quoted(std::u16string_view(&unit, 1));
}

std::string quoted_and_counted(const std::vector<standalone::MissingWord>& words) {
  constexpr std::size_t kMostWords = 3;
  std::vector<std::string> parts;
  for (const standalone::MissingWord& each : words) {
    if (parts.size() == kMostWords) return fmt::format("{}, ...", fmt::join(parts, ", "));
    parts.push_back(
        fmt::format("{} {} time{}", quoted(each.word), each.count, each.count == 1 ? "" : "s"));
  }
  return fmt::format("{}", fmt::join(parts, ", "));
}

// How the cells of a column are written, as far as a reader may not guess it: nothing of plain numbers.
std::vector<std::string> details_of(const Layout& layout, const standalone::ColumnFacts& column) {
  std::vector<std::string> details;
  if (!column.date.strptime.empty()) details.push_back(printable(column.date.strptime));
  if (column.date.order == standalone::DateOrder::ambiguous)
    details.emplace_back("day or month first: nothing decides");
  if (!column.currency.empty()) details.push_back(printable(to_utf8_lossy(column.currency)));
  if (!column.true_word.empty() || !column.false_word.empty())
    details.push_back(quoted(column.true_word) + " or " + quoted(column.false_word));
  if (column.decimal && *column.decimal != u'.' && column.decimal != layout.dialect.decimal)
    details.push_back("decimal mark " + quoted(*column.decimal));
  if (column.grouping && column.grouping != layout.dialect.grouping)
    details.push_back("grouped by " + quoted(*column.grouping));
  if (!column.are_marks_certain) details.emplace_back("a mark that may be decimal or grouping");
  const std::size_t misfits =
      column.num_cells - column.num_empty - column.num_missing - column.num_fitting;
  if (misfits > 0) {
    details.push_back(fmt::format("{} cell{} not fit, first in line {}", misfits,
                                  misfits == 1 ? " does" : "s do", *column.first_misfit_line));
  }
  return details;
}

std::string_view kind_of_column(const Layout& layout, std::size_t column) {
  return column < layout.columns.size() ? to_string(layout.columns[column].kind)
                                        : to_string(layout.classes[column]);
}

void add_columns(std::string& out, const Layout& layout, std::size_t most) {
  const std::size_t shown = std::min(layout.classes.size(), most);
  std::size_t width = 8;  // of the longest class
  for (std::size_t i = 0; i < shown; ++i) width = std::max(width, kind_of_column(layout, i).size());
  for (std::size_t i = 0; i < shown; ++i) {
    fmt::format_to(Out(out), "  {:>14}  {:<{}}  {}", i + 1, kind_of_column(layout, i), width,
                   name_and_unit(layout, i));
    if (i < layout.columns.size()) {
      const std::vector<std::string> details = details_of(layout, layout.columns[i]);
      if (!details.empty()) fmt::format_to(Out(out), "  ({})", fmt::join(details, "; "));
    }
    out.erase(out.find_last_not_of(' ') + 1);
    out.push_back('\n');
  }
  if (layout.classes.size() > shown)
    fmt::format_to(Out(out), "  {:>14}  {} more columns\n", "...", layout.classes.size() - shown);
  if (!layout.columns.empty() && layout.columns.size() < layout.classes.size()) {
    fmt::format_to(Out(out), "  not described   the columns from {} on\n",
                   grouped(layout.columns.size() + 1));
  }
}

// What a reader must be told besides the separators; an empty text if it is the custom.
std::string dialect_details(const Layout& layout) {
  const standalone::TableDialect& dialect = layout.dialect;
  std::vector<std::string> parts;
  if (dialect.quote && *dialect.quote != u'"')
    parts.push_back("quoted by " + quoted(*dialect.quote));
  if (dialect.escape == standalone::Escape::backslash) parts.emplace_back("escaped by backslashes");
  if (dialect.decimal && *dialect.decimal != u'.')
    parts.push_back("decimal mark " + quoted(*dialect.decimal));
  if (dialect.grouping) parts.push_back("numbers grouped by " + quoted(*dialect.grouping));
  if (dialect.blanks_after_delimiters) parts.emplace_back("blanks after delimiters");
  if (!dialect.comment_prefix.empty())
    parts.push_back("comments begin with " + quoted(dialect.comment_prefix));
  if (dialect.has_byte_order_mark) parts.emplace_back("byte-order mark");
  if (!dialect.missing.empty()) parts.push_back("missing: " + quoted_and_counted(dialect.missing));
  return fmt::format("{}", fmt::join(parts, ", "));
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
    fmt::format_to(Out(out), ", {} place{} not valid in it", layout.ill_formed_parts,
                   layout.ill_formed_parts == 1 ? " is" : "s are");
  }
  return out;
}

std::string looked_at(const Layout& layout) {
  if (layout.characters_sampled == 0 && layout.has_more_text) {
    return "nothing: no line ends in the first 4,194,304 characters";
  }
  const std::size_t last_line = layout.lines.empty() ? 0 : layout.lines.back().last_line;
  if (!layout.has_more_text) {
    return last_line == 1 ? "the only line" : fmt::format("all {} lines", grouped(last_line));
  }
  if (!layout.lines_estimated)
    return fmt::format("{} lines, and there are more", grouped(last_line));
  return fmt::format("{} of about {} lines", grouped(last_line), grouped(*layout.lines_estimated));
}

void add_tail(std::string& out, const Layout& layout) {
  if (!layout.tail || layout.tail->footer_lines == 0) return;
  const standalone::TailLook& tail = *layout.tail;
  fmt::format_to(Out(out), "  footer          {} line{} at the end:", tail.footer_lines,
                 tail.footer_lines == 1 ? "" : "s");
  const char* separator = " ";
  for (const std::u16string& text : tail.footer) {
    fmt::format_to(Out(out), "{}'{}'", separator, printable(text));
    separator = ", ";
  }
  out += tail.footer_lines > tail.footer.size() ? " and more\n" : "\n";
}

// "in about line 12,004, byte 250,000"
std::string shown(const standalone::TextPlace& place) {
  std::string out =
      fmt::format("in {}line {}", place.is_line_exact ? "" : "about ", grouped(place.line));
  if (place.byte) fmt::format_to(Out(out), ", byte {}", grouped(*place.byte));
  return out;
}

// "3 (level)"
std::string shown_column(const Layout& layout, std::size_t column) {
  const bool has_name = column < layout.names.size() && !layout.names[column].empty();
  return has_name ? fmt::format("{} ({})", column + 1, printable(layout.names[column]))
                  : fmt::format("{}", column + 1);
}

void add_spread(std::string& out, const Layout& layout) {
  constexpr std::size_t kMostContradictions = 20;
  if (!layout.spread) return;
  const standalone::SpreadLook& look = *layout.spread;
  if (!look.reason.empty()) fmt::format_to(Out(out), "  not spread      {}\n", look.reason);
  if (look.places == 0) return;
  const bool is_clear =
      look.contradictions.empty() && look.ragged_records == 0 && look.missing.empty();
  fmt::format_to(Out(out), "  spread          {} records at {} place{}{}\n", grouped(look.records),
                 look.places, look.places == 1 ? "" : "s",
                 is_clear ? ", and none contradicts the answer" : "");
  const std::size_t shown_ones = std::min(look.contradictions.size(), kMostContradictions);
  for (std::size_t i = 0; i < shown_ones; ++i) {
    const standalone::Contradiction& each = look.contradictions[i];
    fmt::format_to(Out(out), "  contradicts     column {}: {} cell{} not fit {}, first {} {}\n",
                   shown_column(layout, each.column), grouped(each.count),
                   each.count == 1 ? " does" : "s do", to_string(each.expected),
                   quoted(each.example), shown(each.place));
  }
  if (look.contradictions.size() > shown_ones) {
    fmt::format_to(Out(out), "  contradicts     {} more columns\n",
                   look.contradictions.size() - shown_ones);
  }
  if (look.ragged_records > 0) {
    fmt::format_to(Out(out),
                   "  contradicts     {} record{} of another number of cells, first {} {}\n",
                   grouped(look.ragged_records), look.ragged_records == 1 ? "" : "s",
                   look.ragged_cells, shown(look.ragged_place));
  }
  if (!look.missing.empty())
    fmt::format_to(Out(out), "  also missing    {}\n", quoted_and_counted(look.missing));
}

// "1-4 above, 5 blank, 6 names, 7-18 data", or of many runs how many lines each role has.
std::string lines(const Layout& layout) {
  constexpr std::size_t kMostRuns = 8;
  std::vector<std::string> parts;
  if (layout.lines.size() <= kMostRuns) {
    for (const LineRun& run : layout.lines) {
      const std::string numbers = run.first_line == run.last_line
                                      ? fmt::format("{}", run.first_line)
                                      : fmt::format("{}-{}", run.first_line, run.last_line);
      parts.push_back(fmt::format("{} {}", numbers, in_words(run.role)));
    }
    return parts.empty() ? "none" : fmt::format("{}", fmt::join(parts, ", "));
  }
  for (const LineRole role : {LineRole::header, LineRole::names, LineRole::units, LineRole::blank,
                              LineRole::comment, LineRole::data, LineRole::footer}) {
    std::size_t count = 0;
    for (const LineRun& run : layout.lines) count += run.role == role ? run.count : 0;
    if (count > 0) parts.push_back(fmt::format("{} {}", count, in_words(role)));
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
  if (dialect.mode == LayoutMode::line_reader) return in_words(short_form);
  return fmt::format("{}, {} column{}", in_words(short_form), columns, columns == 1 ? "" : "s");
}

Dialect dialect_with(LayoutMode mode, const std::vector<std::u16string>& delimiters) {
  Layout layout;
  layout.mode = mode;
  layout.delimiters = delimiters;
  return dialect_of(layout);
}

std::string short_form(const standalone::Rival& rival) {
  if (!rival.no_table.empty()) return "no table: " + rival.no_table;
  return dialect_and_columns(dialect_with(rival.mode, rival.delimiters), rival.num_variables);
}

bool is_next_best(const standalone::CascadeAnswer& answer, const Layout& layout) {
  if (layout.rivals.empty()) return false;
  const standalone::Rival& next = layout.rivals.front();
  return next.no_table.empty() && next.mode == answer.mode &&
         next.delimiters == answer.delimiters && next.num_variables == answer.num_variables;
}

void add_confidence(std::string& out, const Layout& layout) {
  if (!layout.confidence || layout.no_table == "empty") return;
  const bool is_doubtful = *layout.confidence < 0.5;
  const char* const doubt = !is_doubtful   ? ""
                            : layout.trace ? ": no answer is likely"
                                           : ": no answer is likely, --explain tells why";
  fmt::format_to(Out(out), "  confidence      {} sure{}\n", percent(*layout.confidence), doubt);
  if (!layout.rivals.empty() && !layout.trace) {
    const standalone::Rival& next = layout.rivals.front();
    fmt::format_to(Out(out), "  next best       {}, {}: {}\n", short_form(next),
                   percent(next.probability), printable(next.reason));
  }
  if (layout.cascade && !layout.cascade->agrees && !is_next_best(*layout.cascade, layout)) {
    const Dialect dialect = dialect_with(layout.cascade->mode, layout.cascade->delimiters);
    fmt::format_to(Out(out), "  or perhaps      {}, as --judge cascade answers\n",
                   dialect_and_columns(dialect, layout.cascade->num_variables));
  }
}

// -------------------------------------------------------------------------------------------------
// How the answer came about

constexpr std::size_t kMostDelimiters = 6;

// "comma, semicolon, tab and 4 more"
std::string first_of(const std::vector<std::string>& names) {
  const std::size_t shown = std::min(names.size(), kMostDelimiters);
  std::string out = fmt::format(
      "{}", fmt::join(names.begin(), names.begin() + static_cast<std::ptrdiff_t>(shown), ", "));
  if (names.size() > shown) out += fmt::format(" and {} more", names.size() - shown);
  return out;
}

void add_once(std::vector<std::string>& names, const std::string& name) {
  if (std::find(names.begin(), names.end(), name) == names.end()) names.push_back(name);
}

std::string in_ways(std::string_view what, std::size_t count) {
  return count == 1 ? std::string(what) : fmt::format("{}, in {} ways", what, count);
}

// What was weighed, in the words of the tool, a line for each kind; the likeliest kind first.
std::vector<std::string> considered_kinds(const Layout& layout) {
  enum Kind { characters, marks, runs, fixed, one, none, kKinds };
  std::array<std::size_t, kKinds> counts = {};
  std::vector<Kind> order;
  std::vector<std::string> names[2];
  for (const standalone::ConsideredReading& each : layout.considered) {
    Kind kind = each.is_table ? one : none;
    if (each.mode == LayoutMode::delimited) kind = each.delimiter.size() > 1 ? marks : characters;
    if (each.mode == LayoutMode::space_aligned) kind = runs;
    if (each.mode == LayoutMode::fixed_width) kind = fixed;
    if (kind == characters || kind == marks) add_once(names[kind], shown(each.delimiter));
    if (counts[kind]++ == 0) order.push_back(kind);
  }
  std::vector<std::string> lines;
  for (const Kind kind : order) {
    switch (kind) {
      case characters:
      case marks: {
        const std::size_t count = names[kind].size();
        lines.push_back(fmt::format("{} {}{}: {}", count,
                                    kind == marks ? "mark of several characters" : "delimiter",
                                    count == 1 ? "" : "s", first_of(names[kind])));
        break;
      }
      case runs:
        lines.push_back(in_ways("columns aligned with blanks", counts[kind]));
        break;
      case fixed:
        lines.push_back(in_ways("columns of fixed width", counts[kind]));
        break;
      case one:
        lines.push_back(in_ways("one column", counts[kind]));
        break;
      default:
        lines.emplace_back("no table");
    }
  }
  return lines;
}

// What a piece of evidence is worth, in a word.
std::string_view strength(double worth) {
  if (std::abs(worth) >= 3) return "strongly";
  return std::abs(worth) >= 1 ? "clearly" : "slightly";
}

void add_sentences(std::string& out, const Layout& layout, std::string_view label, bool is_for) {
  bool is_first = true;
  for (const standalone::EvidenceItem& item : layout.evidence) {
    if ((item.worth > 0) != is_for) continue;
    fmt::format_to(Out(out), "  {:<14}  {}: {}\n", is_first ? label : std::string_view(),
                   strength(item.worth), printable(item.sentence));
    is_first = false;
  }
  if (is_first) fmt::format_to(Out(out), "  {:<14}  nothing\n", label);
}

// "lost: ..." with what is wrong with the rival, or what is better about the answer.
std::string why_lost(const standalone::Rival& rival) {
  constexpr std::string_view kOfAnswer = "of the answer, ";
  std::string_view reason = rival.reason;
  const bool is_of_answer = reason.starts_with(kOfAnswer);
  if (is_of_answer) reason.remove_prefix(kOfAnswer.size());
  return fmt::format("lost{}: {}", is_of_answer ? " to the answer" : "", printable(reason));
}

void add_story(std::string& out, const Layout& layout) {
  out += '\n';
  std::string_view label = "considered";
  for (const std::string& line : considered_kinds(layout)) {
    fmt::format_to(Out(out), "  {:<14}  {}\n", label, line);
    label = {};
  }
  add_sentences(out, layout, "for the answer", true);
  add_sentences(out, layout, "against it", false);
  if (layout.rivals.empty()) {
    out += "  next best       no other answer is worth mentioning\n";
    return;
  }
  for (const standalone::Rival& rival : layout.rivals) {
    const bool is_next = &rival == &layout.rivals.front();
    fmt::format_to(Out(out), "  {:<14}  {}, {}, {}\n", is_next ? "next best" : "after it",
                   short_form(rival), percent(rival.probability), why_lost(rival));
  }
}

// The line in which the table begins, if something is above it.
void add_top(std::string& out, const Layout& layout) {
  for (const LineRun& run : layout.lines) {
    const bool is_above = run.role == LineRole::header || run.role == LineRole::blank ||
                          run.role == LineRole::comment;
    if (is_above) continue;
    if (run.role != LineRole::footer && run.first_line > 1)
      fmt::format_to(Out(out), "  table begins    in line {}\n", run.first_line);
    return;
  }
}

std::string candidate_name(const CandidateTrace& candidate) {
  return in_words(Dialect{candidate.dialect.mode, candidate.dialect.delimiters, {}});
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
    fmt::format_to(
        Out(out),
        "  {:14}    {} records, {} of them above the data; usually {} fields; {} columns\n", "",
        v.num_lines, candidate.header_lines, v.modal_field_count, v.num_variables);
    fmt::format_to(Out(out),
                   "  {:14}    variation {} in all, {} in the data; rank of the delimiter {}\n", "",
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

// What a text is if it is not a table; empty if it is one.
std::string no_table(const Layout& layout, std::string_view file_kind) {
  if (layout.no_table.empty()) return {};
  return (layout.no_table == "empty" ? "there is no line that is not blank"
                                     : "this is probably " + layout.no_table) +
         (file_kind.empty() ? "" : fmt::format(" ({})", printable(file_kind)));
}

// What the text is: a table and how it is laid out, or what else.
void add_answer(std::string& out, const Layout& layout, std::string_view file_kind) {
  if (layout.no_table.empty()) {
    fmt::format_to(Out(out), "  layout          {}{}\n", in_words(dialect_of(layout)),
                   layout.rest_in_last ? ", the last column takes the rest of the line" : "");
  } else {
    fmt::format_to(Out(out), "  no table        {}\n", no_table(layout, file_kind));
  }
  add_confidence(out, layout);
  if (layout.looks_binary) {
    out += "  looks binary    control characters as no text has them; this is probably no table\n";
  }
}

void add_given(std::string& out, const std::vector<GivenOption>& given) {
  for (const GivenOption& option : given) {
    const std::string values = option.is_json
                                   ? option.values.front()
                                   : fmt::format("'{}'", fmt::join(option.values, "' '"));
    fmt::format_to(Out(out), "  given           {} {}\n", printable(option.name),
                   printable(values));
  }
}

void add_table(std::string& out, const Layout& layout, std::size_t most_columns) {
  add_top(out, layout);
  fmt::format_to(Out(out), "  names           {}\n", names(layout));
  fmt::format_to(Out(out), "  columns         {}\n", layout.num_variables);
  add_columns(out, layout, most_columns);
  if (const std::string details = dialect_details(layout); !details.empty())
    fmt::format_to(Out(out), "  written         {}\n", details);
}

void add_lines(std::string& out, const Layout& layout) {
  fmt::format_to(Out(out), "  lines           {}\n", lines(layout));
  if (layout.ragged_lines == 0) return;
  fmt::format_to(Out(out),
                 "  uneven          {} line{} of data without a cell for each column, or with "
                 "more, the first in line {}\n",
                 layout.ragged_lines, layout.ragged_lines == 1 ? "" : "s",
                 *layout.first_ragged_line);
}

// How the answer came about, as far as it is asked for.
void add_reasons(std::string& out, const Layout& layout, bool explains_cascade) {
  const bool is_judged = layout.confidence.has_value();
  if (!is_judged) fmt::format_to(Out(out), "  chosen because  {}\n", end_of_cascade(layout));
  if (!layout.trace || layout.no_table == "empty") return;
  if (is_judged) add_story(out, layout);
  if (is_judged && !explains_cascade) return;
  if (is_judged) fmt::format_to(Out(out), "\n  the cascade     {}\n", end_of_cascade(layout));
  if (layout.selection_end != SelectionEnd::given) add_trace(out, *layout.trace);
}

}  // namespace

std::string report(const std::string& file, const Layout& layout,
                   const std::vector<GivenOption>& given, std::string_view file_kind,
                   bool explains_cascade, std::size_t most_columns) {
  const bool is_table = layout.no_table.empty();
  std::string out = printable(file) + "\n";
  add_answer(out, layout, file_kind);
  add_given(out, given);
  if (is_table) add_table(out, layout, most_columns);
  fmt::format_to(Out(out), "  encoding        {}\n", encoding(layout));
  fmt::format_to(Out(out), "  line ending     {}\n", ending(layout));
  if (is_table) add_lines(out, layout);
  add_tail(out, layout);
  add_spread(out, layout);
  fmt::format_to(Out(out), "  looked at       {}\n", looked_at(layout));
  add_reasons(out, layout, explains_cascade);
  return out;
}

LayoutWords words_of(const Layout& layout, std::size_t most_columns, std::string_view file_kind) {
  LayoutWords words;
  words.layout = in_words(dialect_of(layout));
  if (layout.rest_in_last) words.layout += ", the last column takes the rest of the line";
  words.no_table = no_table(layout, file_kind);
  if (layout.confidence && layout.no_table != "empty")
    words.confidence = percent(*layout.confidence);
  words.encoding = encoding(layout);
  words.line_ending = ending(layout);
  if (layout.no_table.empty()) {
    words.names = names(layout);
    words.written = dialect_details(layout);
    words.lines = lines(layout);
  }
  words.looked_at = looked_at(layout);
  for (const standalone::Rival& rival : layout.rivals)
    words.rivals.push_back({short_form(rival), percent(rival.probability), why_lost(rival)});
  for (const standalone::EvidenceItem& item : layout.evidence) {
    std::vector<std::string>& sentences =
        item.worth > 0 ? words.evidence_for : words.evidence_against;
    sentences.push_back(fmt::format("{}: {}", strength(item.worth), printable(item.sentence)));
  }
  for (std::size_t i = 0; i < std::min(layout.classes.size(), most_columns); ++i) {
    ColumnWords& column = words.columns.emplace_back();
    column.kind = kind_of_column(layout, i);
    if (i < layout.names.size()) column.name = printable(layout.names[i]);
    if (i < layout.units.size()) column.unit = printable(layout.units[i]);
    if (i < layout.columns.size()) column.details = details_of(layout, layout.columns[i]);
  }
  return words;
}

}  // namespace textio::tool
