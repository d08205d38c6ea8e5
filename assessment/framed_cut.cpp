#include <algorithm>

#include <vltextstream/assessment/cuts.hpp>

namespace textio::assessment {
namespace {

bool draws_rule(char16_t unit) {
  return unit == u'-' || unit == u'=' || unit == u'+' || unit == u'_' || unit == u'~' ||
         unit == u'*' || (unit >= u'\u2500' && unit <= u'\u257F' && !is_bar(unit));
}

// The first bar of a line that is not escaped; the size of the line if there is none.
std::size_t find_border(std::u16string_view line, char16_t escape) {
  for (std::size_t i = 0; i < line.size(); ++i) {
    if (!is_bar(line[i])) continue;
    if (escape == 0 || i == 0 || line[i - 1] != escape) return i;
  }
  return line.size();
}

// Whether the line ends in a bar that is not escaped.
bool has_bar_at_end(std::u16string_view line, char16_t escape) {
  if (line.empty() || !is_bar(line.back())) return false;
  return escape == 0 || line.size() == 1 || line[line.size() - 2] != escape;
}

}  // namespace

bool is_bar(char16_t unit) { return unit == u'|' || unit == u'\u2502' || unit == u'\u2551'; }

bool is_rule(std::u16string_view line) {
  std::size_t drawn = 0;
  bool has_run = false;
  char16_t before = u' ';
  for (const char16_t unit : line) {
    if (draws_rule(unit)) {
      ++drawn;
      has_run = has_run || draws_rule(before);
    } else if (is_bar(unit)) {
      has_run = true;
    } else if (unit != u':' && !is_blank(unit)) {
      return false;
    }
    before = unit;
  }
  return drawn >= 3 && has_run;
}

bool is_rule(const SampledLines& lines, std::size_t line) {
  return (lines.characters(line) & kLettersAndDigits) == 0 && is_rule(lines.view(line));
}

Records cut_framed(const SampledLines& lines, char16_t escape) {
  Records records(lines.text());
  for (std::size_t k = 0; k < lines.size(); ++k) {
    std::u16string_view line = trimmed(lines.view(k));
    if (line.empty() || is_rule(lines, k)) continue;
    records.add_record(k);
    if (is_bar(line.front())) line.remove_prefix(1);
    if (has_bar_at_end(line, escape)) line.remove_suffix(1);
    const auto add = [&](std::u16string_view cell) {
      const bool is_quoted = cell.size() > 1 && cell.front() == cell.back() &&
                             (cell.front() == u'"' || cell.front() == u'\'');
      if (is_quoted) cell = cell.substr(1, cell.size() - 2);
      const auto begin = static_cast<std::size_t>(cell.data() - lines.text().data());
      records.add_cell(begin, begin + cell.size(), is_quoted);
    };
    for (;;) {
      const std::size_t length = find_border(line, escape);
      add(trimmed(line.substr(0, length)));
      if (length == line.size()) break;
      line.remove_prefix(length + 1);
    }
  }
  return records;
}

}  // namespace textio::assessment
