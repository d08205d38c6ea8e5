// What a column holds decides. A footer is text where the table has values, or has fewer cells; a
// record that was cut off agrees with its columns as far as it goes.
#include <vltextstream/assessment/footers.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <span>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cuts.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kMostTotals = 3;
constexpr std::size_t kLongestTotal = 60;  // code units of the cell that begins with the word

// What of the end is looked at first, and how many records of the table it must have to be enough.
constexpr std::size_t kShortEnd = 8192;
constexpr std::size_t kClearRecords = 20;
constexpr std::size_t kMostFooterLines = 200;  // at the end of a text; more are another part of it

// ---------------------------------------------------------------------------------------------
// Words for totals

// Folded. Those that begin with others need no entry: "total general", "sum of squares".
constexpr std::u16string_view kTotals[] = {
    u"total", u"totals", u"totale", u"totali", u"totales", u"totaux", u"totaal", u"totalt",
    u"totalsumme", u"totais", u"grand total", u"grand totals", u"overall", u"subtotal",
    u"subtotals", u"sub-total", u"sub total", u"subtotale", u"sous-total", u"zwischensumme", u"sum",
    u"sums", u"summe", u"summen", u"somme", u"suma", u"summa", u"soma", u"som", u"gesamt",
    u"gesamtsumme", u"insgesamt", u"ensemble", u"razem", u"\u0142\u0105cznie", u"og\u00F3\u0142em",
    u"celkem", u"celkov\u011B", u"spolu", u"\u00F6sszesen", u"toplam", u"yhteens\u00E4", u"kokku",
    u"kop\u0101", u"i\u0161 viso", u"ukupno", u"skupaj", u"samtals", u"i alt", u"sammanlagt",
    // Russian, Ukrainian, Bulgarian, Greek
    u"\u0438\u0442\u043E\u0433\u043E", u"\u0432\u0441\u0435\u0433\u043E",
    u"\u0441\u0443\u043C\u043C\u0430", u"\u0440\u0430\u0437\u043E\u043C",
    u"\u0432\u0441\u044C\u043E\u0433\u043E", u"\u043E\u0431\u0449\u043E",
    u"\u03C3\u03CD\u03BD\u03BF\u03BB\u03BF",
    // Chinese, Japanese, Korean, Arabic
    u"\u5408\u8BA1", u"\u603B\u8BA1", u"\u5C0F\u8BA1", u"\u5408\u8A08", u"\u7E3D\u8A08",
    u"\u5C0F\u8A08", u"\uD569\uACC4", u"\u0627\u0644\u0645\u062C\u0645\u0648\u0639",
    // averages
    u"average", u"averages", u"avg", u"mean", u"means", u"median", u"mittelwert", u"mittelwerte",
    u"mittel", u"durchschnitt", u"schnitt", u"moyenne", u"moyennes", u"media", u"promedio",
    u"m\u00E9dia", u"gemiddelde", u"gemiddeld", u"gennemsnit", u"gjennomsnitt", u"medelv\u00E4rde",
    u"keskiarvo", u"\u015Brednia", u"pr\u016Fm\u011Br", u"\u00E1tlag", u"ortalama",
    u"\u0441\u0440\u0435\u0434\u043D\u0435\u0435", u"\u5E73\u5747", u"\uD3C9\uADE0"};

bool is_letter(char16_t unit) {
  return u_isalpha(unit) != 0 ||
         u_getIntPropertyValue(unit, UCHAR_GENERAL_CATEGORY) == U_NON_SPACING_MARK;
}

bool begins_with_word(std::u16string_view folded, std::u16string_view word) {
  return folded.starts_with(word) &&
         (folded.size() == word.size() || !is_letter(folded[word.size()]));
}

// ---------------------------------------------------------------------------------------------
// Records

bool is_rule_record(const SampledLines& lines, const Record& record) {
  return record.num_lines == 1 && is_rule(lines, record.line);
}

std::u16string_view first_filled(const Records& records, std::size_t record, std::size_t& column) {
  const std::span<const Cell> cells = records.cells(record);
  for (column = 0; column < cells.size(); ++column) {
    const std::u16string_view text = trimmed(records.view(cells[column]));
    if (!text.empty()) return text;
  }
  return {};
}

bool begins_with_total(const Records& records, std::size_t record) {
  std::size_t column = 0;
  return assessment::begins_with_total(first_filled(records, record, column));
}

bool has_value(const CellKinds& kinds, std::size_t row) {
  for (std::size_t c = 0; c < kinds.columns(); ++c) {
    if (is_value(kinds.at(row, c))) return true;
  }
  return false;
}

std::uint32_t bit_of(CellKind kind) { return std::uint32_t{1} << static_cast<unsigned>(kind); }

ColumnProfile column_profile(const Records& records, const TableFrame& table,
                             const CellKinds& kinds, std::size_t begin, std::size_t end,
                             std::size_t column) {
  ColumnProfile profile;
  std::array<std::size_t, static_cast<std::size_t>(CellGroup::other) + 1> counts = {};
  std::size_t filled = 0;
  for (std::size_t row = begin; row < end; ++row) {
    const CellKind kind = kinds.at(row, column);
    const Cell& cell = records.cells(table.data[row])[column];
    profile.kinds |= bit_of(kind);
    profile.longest = std::max<std::size_t>(profile.longest, cell.end - cell.begin);
    filled += kind != CellKind::empty;
    ++counts[static_cast<std::size_t>(group_of(kind))];
  }
  const auto first = counts.begin() + 1;
  // Of equally frequent groups the last one: a unit above the values does not make a text of them.
  const auto most =
      std::max_element(first, counts.end(), [](std::size_t a, std::size_t b) { return a <= b; });
  std::size_t valued = 0;
  for (auto count = first; count != counts.end(); ++count) valued += *count;
  if (valued > 0) profile.group = static_cast<CellGroup>(most - counts.begin());
  profile.is_typed = valued > 0 && profile.group != CellGroup::text && 5 * *most >= 4 * valued;
  profile.is_full = end > begin && 4 * filled >= 3 * (end - begin);
  return profile;
}

class FooterSearch {
 public:
  FooterSearch(const SampledLines& lines, const Records& records, const TableFrame& table,
               const TableProfile& profile)
      : lines_(lines), records_(records), table_(table), profile_(profile) {}

  // `least` of the data are left.
  std::size_t find(std::size_t least) {
    if (profile_.reading.form == Form::none || profile_.columns.size() != table_.columns)
      return records_.size();
    note_gaps();
    std::size_t data = table_.data.size();
    std::size_t first = records_.size();
    for (std::size_t i = records_.size(); i-- > 0;) {
      const bool fits = data > 0 && table_.data[data - 1] == i;
      if (!fits && is_note(i)) continue;
      if (!is_footer(i, fits) || (fits && data <= least)) break;
      data -= fits;
      first = i;
    }
    return first;
  }

 private:
  // Comments and rules keep their roles.
  bool is_note(std::size_t i) const {
    return lines_.is_comment(records_[i].line) || is_rule_record(lines_, records_[i]);
  }

  // Which records follow a blank line or a rule, at once or after others that may be of a footer.
  void note_gaps() {
    follows_gap_.assign(records_.size(), false);
    for (std::size_t i = 1; i < records_.size(); ++i) {
      const Record& above = records_[i - 1];
      const bool has_gap =
          records_[i].line > above.line + above.num_lines || is_rule_record(lines_, above);
      follows_gap_[i] = has_gap || (follows_gap_[i - 1] && may_be_footer(i - 1));
    }
  }

  bool may_be_footer(std::size_t i) const {
    return records_.cells(i).size() != table_.columns || begins_with_total(records_, i);
  }

  bool is_footer(std::size_t i, bool fits) {
    if (is_total(i, fits)) return true;
    return fits ? is_text_over_values(i) : !is_data(i);
  }

  CellKind kind_at(std::size_t i, std::size_t column) const {
    return kind_of(records_.view(records_.cells(i)[column]));
  }

  bool is_total(std::size_t i, bool fits) {
    if (totals_ == kMostTotals) return false;
    std::size_t column = 0;
    const std::u16string_view text = first_filled(records_, i, column);
    if (!assessment::begins_with_total(text)) return false;
    const bool is_over_values =
        column < profile_.columns.size() && profile_.columns[column].is_typed;
    const bool lacks_columns = records_.cells(i).size() < table_.columns;
    const bool is_one =
        is_over_values || follows_gap_[i] || lacks_columns || (fits && lacks_cells(i));
    totals_ += is_one;
    return is_one;
  }

  // Whether a cell is empty that its column fills otherwise.
  bool lacks_cells(std::size_t i) const {
    for (std::size_t c = 0; c < table_.columns; ++c) {
      if (profile_.columns[c].is_full && kind_at(i, c) == CellKind::empty) return true;
    }
    return false;
  }

  // A record with as many cells as columns, and a text in each column of values where anything is. A
  // single column of values must be empty or hold what is no word, unless something is between.
  bool is_text_over_values(std::size_t i) const {
    std::size_t contradictions = 0;
    bool is_worded = true;
    for (std::size_t c = 0; c < table_.columns; ++c) {
      const ColumnProfile& column = profile_.columns[c];
      const CellKind kind = kind_at(i, c);
      const CellGroup group = group_of(kind);
      if (!column.is_typed || group == CellGroup::nothing) continue;
      if (group != CellGroup::text) return false;
      ++contradictions;
      is_worded = is_worded && (kind == CellKind::word || kind == CellKind::code);
    }
    return contradictions > 1 || (contradictions == 1 && (follows_gap_[i] || !is_worded));
  }

  // A record with another number of cells than columns.
  bool is_data(std::size_t i) const {
    const std::span<const Cell> cells = records_.cells(i);
    bool has_value = false;
    bool is_filled = false;
    for (std::size_t c = 0; c < std::min(cells.size(), table_.columns); ++c) {
      const CellKind kind = kind_at(i, c);
      if (!agrees(kind, cells[c], profile_.columns[c])) return false;
      has_value =
          has_value || (profile_.columns[c].is_typed && group_of(kind) != CellGroup::nothing);
      is_filled = is_filled || kind != CellKind::empty;
    }
    if (cells.size() == 1) return !follows_gap_[i] && (has_value || is_cut_off(i));
    return has_value || !is_filled || !follows_gap_[i];
  }

  static bool agrees(CellKind kind, const Cell& cell, const ColumnProfile& column) {
    const CellGroup group = group_of(kind);
    if (group == CellGroup::nothing) return true;
    if (column.is_typed) return group == column.group;
    const std::size_t length = cell.end - cell.begin;
    return (column.kinds & bit_of(kind)) != 0 && length <= 2 * column.longest;
  }

  // Whether the text ends within this line.
  bool is_cut_off(std::size_t i) const {
    const TextLine& line = lines_[records_[i].line + records_[i].num_lines - 1];
    return line.next == line.end;
  }

  const SampledLines& lines_;
  const Records& records_;
  const TableFrame& table_;
  const TableProfile& profile_;
  std::vector<bool> follows_gap_;
  std::size_t totals_ = 0;
};

// ---------------------------------------------------------------------------------------------
// Parts of a text

// Cells between the starts of the columns. A line with a character right before a start, where the
// table has a blank, is one cell.
Records cut_at_columns(const SampledLines& lines, const TableProfile& profile) {
  Records records(lines.text());
  const std::vector<std::size_t>& starts = profile.column_starts;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const std::u16string_view line = lines.view(k);
    if (is_blank(line) || is_rule(lines, k)) continue;
    records.add_record(k);
    const auto is_crossed = [&](std::size_t start) {
      return start > 0 && start <= line.size() && !is_blank(line[start - 1]);
    };
    const bool is_one = std::any_of(starts.begin() + 1, starts.end(), is_crossed);
    const std::size_t size = is_one ? 1 : starts.size();
    for (std::size_t c = 0; c < size; ++c) {
      const std::size_t begin = c == 0 ? 0 : std::min(starts[c], line.size());
      const std::size_t end = c + 1 == size ? line.size() : std::min(starts[c + 1], line.size());
      const std::u16string_view part = trimmed(line.substr(begin, end - begin));
      const auto at =
          part.empty() ? lines[k].end : static_cast<std::size_t>(part.data() - lines.text().data());
      records.add_cell(at, at + part.size());
    }
  }
  return records;
}

std::size_t count_fitting(const Records& records, std::size_t columns) {
  std::size_t fitting = 0;
  for (std::size_t i = 0; i < records.size(); ++i) fitting += records.cells(i).size() == columns;
  return fitting;
}

// The first line that begins after the quoted cell in which the lines begin, if they do: after the
// first line with a quote that a delimiter or the end of the line follows. 0 without such a quote.
std::size_t line_after_quote(const SampledLines& lines, const Reading& reading) {
  const auto closes_at = [&](std::u16string_view line, std::size_t at) {
    const std::u16string_view rest = line.substr(at + 1);
    return rest.empty() || (!reading.delimiter.empty() && rest.starts_with(reading.delimiter));
  };
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const std::u16string_view line = lines.view(k);
    for (std::size_t at = 0; (at = line.find(reading.quote, at)) != line.npos; ++at) {
      if (closes_at(line, at)) return k + 1;
    }
  }
  return 0;
}

SampledLines lines_from(const SampledLines& lines, std::size_t first) {
  std::vector<TextLine> kept;
  for (std::size_t k = first; k < lines.size(); ++k) kept.push_back(lines[k]);
  return {lines.text(), std::move(kept), lines.has_more()};
}

Records with_lines_after(const Records& records, std::size_t skipped) {
  Records moved(records.text());
  for (std::size_t i = 0; i < records.size(); ++i) {
    moved.add_record(records[i].line + skipped);
    for (const Cell& cell : records.cells(i)) moved.add_cell(cell.begin, cell.end, cell.is_quoted);
    moved.add_lines(records[i].num_lines - 1);
  }
  return moved;
}

// No value if the part is not like the table, whose end it then says nothing about, or has fewer than
// `least` of its records, of which at least nine of ten must be.
std::optional<EndFooter> footer_of(std::u16string_view text, const TableProfile& profile,
                                   bool follows_data, std::size_t least) {
  const SampledLines lines = sample_lines(text, std::numeric_limits<std::size_t>::max());
  const Records records = cut_part(lines, profile);
  const std::size_t columns = profile.columns.size();
  const TableFrame table = find_table(lines, records, profile.reading, columns);
  const std::size_t first = FooterSearch(lines, records, table, profile).find(follows_data ? 0 : 1);
  const std::size_t fitting = count_fitting(records, columns);
  const bool is_clear = fitting >= least && (least == 0 || 10 * fitting >= 9 * first);
  const bool is_table = first > 0 ? 2 * fitting >= first : follows_data;
  if (!is_clear || !is_table) return std::nullopt;
  EndFooter footer{0, {}, text.size()};
  for (std::size_t i = first; i < records.size(); ++i) {
    if (lines.is_comment(records[i].line) || is_rule_record(lines, records[i])) continue;
    for (std::size_t k = 0; k < records[i].num_lines; ++k) {
      footer.lines.push_back(lines.view(records[i].line + k));
    }
  }
  footer.num_lines = footer.lines.size();
  return footer.num_lines <= kMostFooterLines ? footer : EndFooter{0, {}, text.size()};
}

}  // namespace

CellGroup group_of(CellKind kind) noexcept {
  if (kind == CellKind::empty || kind == CellKind::missing) return CellGroup::nothing;
  if (is_text(kind) || kind == CellKind::structure) return CellGroup::text;
  if (is_number(kind)) return CellGroup::number;
  if (kind == CellKind::date || kind == CellKind::date_time) return CellGroup::date;
  if (kind == CellKind::time) return CellGroup::time;
  return kind == CellKind::duration ? CellGroup::duration : CellGroup::other;
}

bool begins_with_total(std::u16string_view cell) {
  cell = trimmed(cell);
  while (!cell.empty() && !is_letter(cell.front()) && u_isdigit(cell.front()) == 0)
    cell.remove_prefix(1);
  if (cell.empty() || cell.size() > kLongestTotal || !is_letter(cell.front())) return false;
  std::u16string folded;
  for (const char16_t unit : cell)
    folded.push_back(static_cast<char16_t>(u_foldCase(unit, U_FOLD_CASE_DEFAULT)));
  return std::any_of(std::begin(kTotals), std::end(kTotals),
                     [&](std::u16string_view word) { return begins_with_word(folded, word); });
}

TableProfile profile_of(const Records& records, const Reading& reading, const TableFrame& table,
                        const CellKinds& kinds, std::size_t names_rows) {
  TableProfile profile{reading, {}, records.column_starts, records.column_ends, names_rows};
  const std::size_t all = std::min(kinds.size(), table.data.size());
  const auto may_be_footer = [&](std::size_t row) {
    return begins_with_total(records, table.data[row]) || !has_value(kinds, row);
  };
  std::size_t end = all;
  while (end > names_rows + 1 && all - end < kMostTotals && may_be_footer(end - 1)) --end;
  const std::size_t begin = std::min(names_rows, end - std::min<std::size_t>(end, 1));
  for (std::size_t c = 0; c < table.columns; ++c) {
    profile.columns.push_back(column_profile(records, table, kinds, begin, end, c));
  }
  return profile;
}

std::size_t first_footer(const SampledLines& lines, const Records& records, const TableFrame& table,
                         const TableProfile& profile) {
  return FooterSearch(lines, records, table, profile).find(profile.names_rows + 1);
}

// A part may begin inside a quoted cell. Then every quote that opens a cell seems to close one, and
// the other way round. So the part is cut twice, from its first line and from the first one after
// what would be the end of such a cell, and the cut with more records of the table is the right one; the
// second one if the lines that it leaves out have none.
Records cut_part(const SampledLines& lines, const TableProfile& profile) {
  if (profile.reading.form == Form::gaps) return cut_at_columns(lines, profile);
  Records records = cut(lines, profile.reading);
  if (profile.reading.quote == 0) return records;
  const std::size_t skipped = line_after_quote(lines, profile.reading);
  if (skipped == 0) return records;
  const SampledLines rest = lines_from(lines, skipped);
  Records others = cut(rest, profile.reading);
  const std::size_t columns = profile.columns.size();
  const std::size_t fitting = count_fitting(others, columns);
  const bool is_inside = fitting > 0 && fitting >= count_fitting(records, columns);
  return is_inside ? with_lines_after(others, skipped) : std::move(records);
}

EndFooter footer_at_end(std::u16string_view text, const TableProfile& profile, bool follows_data) {
  if (text.size() > 2 * kShortEnd) {
    const std::u16string_view end = from_next_line(text.substr(text.size() - kShortEnd));
    if (const auto footer = footer_of(end, profile, false, kClearRecords)) return *footer;
  }
  return footer_of(text, profile, follows_data, 0).value_or(EndFooter{0, {}, text.size()});
}

std::u16string_view from_next_line(std::u16string_view text) {
  const std::size_t ending = std::min(text.find_first_of(u"\r\n"), text.size());
  const bool has_two = text.substr(ending, 2) == u"\r\n";
  return text.substr(std::min(ending + (has_two ? 2U : 1U), text.size()));
}

}  // namespace textio::assessment
