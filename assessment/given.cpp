// Lines that cannot belong to the table are hidden from the readings; readings that contradict what is given are
// changed to agree with it, and those that become the same are one.
#include <vltextstream/assessment/given.hpp>

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

namespace textio::assessment {
namespace {

LineRules rules_of(const Given& given, const KnownTop& top) {
  return {given.line_endings, top.num_lines, given.comment_prefix};
}

bool may_be_quoted(const Reading& reading) {
  return reading.form == Form::delimited || reading.form == Form::one;
}

void obey(const Given& given, Reading& reading) {
  if (reading.form == Form::framed && given.escape) reading.escape = *given.escape;
  if (!may_be_quoted(reading)) return;
  if (given.quote) reading.quote = *given.quote;
  if (given.escape) reading.escape = *given.escape;
}

// Each with no quotes, with `"` and with `'`, unless it is given what quotes; and where a quote may be escaped by a
// backslash, with that.
std::vector<Reading> with_quotes(const Reading& reading, const SampledLines& lines) {
  std::vector<Reading> readings;
  const bool has_backslash = (lines.characters() & set_of(u'\\')) != 0;
  for (const char16_t quote : {u'\0', u'"', u'\''}) {
    if (quote != 0 && (lines.characters() & set_of(quote)) == 0) continue;
    for (const char16_t escape : {u'\\', u'\0'}) {
      if (escape != 0 && !has_backslash) continue;
      readings.push_back(reading);
      readings.back().quote = quote;
      readings.back().escape = escape;
    }
  }
  return readings;
}

std::vector<Reading> readings_of(const SampledLines& lines, const Given& given) {
  if (!given.widths.empty()) {
    Reading reading{Form::gaps, u" "};
    reading.widths = given.widths;
    return {reading};
  }
  if (!given.delimiters) return find_readings(lines);
  Reading reading{Form::one};
  for (const std::u16string& delimiter : *given.delimiters) {
    if (delimiter.empty()) continue;
    if (reading.form == Form::one) {
      reading.form = Form::delimited;
      reading.delimiter = delimiter;
    } else {
      reading.other_delimiters.push_back(delimiter);
    }
  }
  return with_quotes(reading, lines);
}

// --- checks --------------------------------------------------------------------------------------

// How far below the header lines a line may be: names, units and descriptions may follow them.
constexpr std::size_t kLinesBelowHeader = 3;

struct NamedLine {
  const char* option;
  std::size_t line;  // 0: none
};

std::array<NamedLine, 3> named_lines(const Given& given) {
  return {{{"VariableNamesLine", given.names_line.value_or(0)},
           {"VariableUnitsLine", given.units_line.value_or(0)},
           {"VariableDescriptionsLine", given.descriptions_line}}};
}

}  // namespace

std::size_t Given::last_named_line() const {
  return std::max({names_line.value_or(0), units_line.value_or(0), descriptions_line});
}

Given with_first_line(Given given, std::u16string_view text) {
  const bool is_settled = given.delimiters || !given.widths.empty() || given.header_lines ||
                          given.last_named_line() > 0;
  if (is_settled) return given;
  std::u16string_view line = text.substr(0, line_at(text, 0, given.line_endings).end);
  if (line.size() > 1 && line.front() == u'"' && line.back() == u'"')
    line = line.substr(1, line.size() - 2);
  constexpr std::u16string_view kPrefix = u"sep=";
  if (line.size() != kPrefix.size() + 1) return given;
  for (std::size_t i = 0; i < kPrefix.size(); ++i) {
    const bool is_letter = kPrefix[i] != u'=';
    if ((is_letter ? static_cast<char16_t>(line[i] | 0x20) : line[i]) != kPrefix[i]) return given;
  }
  given.delimiters = {std::u16string(1, line.back())};
  given.descriptions_line = 1;
  return given;
}

KnownTop known_top(std::u16string_view text, const Given& given) {
  KnownTop top;
  const std::size_t header_lines = given.header_lines.value_or(0);
  const std::size_t last = given.last_named_line();
  const bool names_are_last = last > 0 && last == given.names_line;
  const std::size_t least = names_are_last ? last - 1 : last;
  for (std::size_t found = 0; top.end < text.size();) {
    if (found >= header_lines && top.num_lines >= least) break;
    const TextLine line = line_at(text, top.end, given.line_endings);
    const bool is_comment =
        has_prefix(text.substr(line.begin, line.end - line.begin), given.comment_prefix);
    ++top.num_lines;
    if (!is_comment && found < header_lines) {
      ++found;
      top.num_header = top.num_lines;
    }
    top.end = line.next;
  }
  return top;
}

void apply_given(const Given& given, const KnownTop& top, SampledLines& lines) {
  std::vector<std::size_t> hidden;
  const std::size_t names_line = given.names_line.value_or(0);
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const bool is_top = k < top.num_lines;
    if (!given.comment_prefix.empty()) {
      lines.set_comment(k, has_prefix(lines.view(k), given.comment_prefix));
    } else if (is_top && given.header_lines) {
      lines.set_comment(k, false);
    }
    // Names below all header lines are a record of the table.
    const bool is_shown = names_line == k + 1 && names_line > top.num_header;
    const bool is_comment = !given.comment_prefix.empty() && lines.is_comment(k);
    if ((is_top || is_comment) && !is_shown) hidden.push_back(k);
  }
  lines.hide(hidden);
  if (given.header_lines) lines.set_known_top();
}

SampledLines sample_lines(std::u16string_view text, std::size_t num_lines, const Given& given) {
  const KnownTop top = known_top(text, given);
  SampledLines lines = sample_lines(text, num_lines, rules_of(given, top));
  apply_given(given, top, lines);
  return lines;
}

std::vector<Reading> find_readings(const SampledLines& lines, const Given& given) {
  std::vector<Reading> kept;
  for (Reading& reading : readings_of(lines, given)) {
    obey(given, reading);
    const bool is_quote =
        reading.quote != 0 && reading.delimiter.find(reading.quote) != std::u16string::npos;
    const bool is_known = std::find(kept.begin(), kept.end(), reading) != kept.end();
    if (!is_quote && !is_known) kept.push_back(std::move(reading));
  }
  return kept;
}

std::optional<std::string> problem_with_lines(const Given& given, const SampledLines& lines) {
  for (const auto& [option, line] : named_lines(given)) {
    if (line > lines.size()) {
      return fmt::format("{}: Expected a line from 1 to {}, got {}.", option, lines.size(), line);
    }
    if (!given.header_lines || line == 0) continue;
    const std::size_t last = known_top(lines.text(), given).num_header + kLinesBelowHeader;
    if (line > last) {
      return fmt::format("{}: Expected a line from 1 to {}, as {} header line{} given, got {}.",
                         option, last, *given.header_lines,
                         *given.header_lines == 1 ? " is" : "s are", line);
    }
  }
  return std::nullopt;
}

}  // namespace textio::assessment
