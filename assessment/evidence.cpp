#include <vltextstream/assessment/evidence.hpp>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>

#include <unicode/uchar.h>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/find_unit.hpp>
#include <vltextstream/assessment/table_top.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kLongestCellLookedInto = 2000;

double ratio(std::size_t part, std::size_t whole) {
  return static_cast<double>(part) / static_cast<double>(std::max<std::size_t>(whole, 1));
}

// ---------------------------------------------------------------------------------------------
// Within a cell

bool is_letter(char16_t unit) {
  return unit < 0x80 ? (unit | 0x20) >= u'a' && (unit | 0x20) <= u'z' : u_isalpha(unit);
}
bool is_letter_or_digit(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || unit == u'_' || is_letter(unit);
}
bool is_usual_separator(char16_t unit) {
  return unit == u',' || unit == u';' || unit == u'|' || unit == u'\t';
}
bool is_quote(char16_t unit) { return unit == u'"' || unit == u'\''; }

constexpr std::u16string_view kUsualSeparators = u",;|\t";

// Whether what separates at `i` has no blanks around it, and is between two pieces of which at least one is
// a word.
bool is_tight(std::u16string_view cell, std::size_t i) {
  if (i == 0 || i + 1 == cell.size()) return false;
  const char16_t before = is_quote(cell[i - 1]) && i > 1 ? cell[i - 2] : cell[i - 1];
  const char16_t after = is_quote(cell[i + 1]) && i + 2 < cell.size() ? cell[i + 2] : cell[i + 1];
  return (is_letter(before) && is_letter_or_digit(after)) ||
         (is_letter_or_digit(cell[i - 1]) && is_letter(cell[i + 1]));
}

// The first usual separator, of those in `characters`, that is tight.
std::size_t tight_separator(std::u16string_view cell, CharacterSet characters) {
  std::size_t first = cell.size();
  for (const char16_t separator : kUsualSeparators) {
    if ((characters & set_of(separator)) == 0) continue;
    std::size_t i = find_unit(cell, separator, 0, first);
    while (i < first && !is_tight(cell, i)) i = find_unit(cell, separator, i + 1, first);
    first = i;
  }
  return first;
}

// 1 if a usual separator is between values of different kinds, which are probably unsplit fields;
// 0.3 if they are of one kind, as in a list.
double unsplit(std::u16string_view cell, CharacterSet characters) {
  const std::size_t at = tight_separator(cell, characters);
  if (at == cell.size()) return 0;
  const char16_t separator = cell[at];
  CellKind common = CellKind::empty;
  for (;;) {
    const std::size_t end = find_unit(cell, separator, 0, cell.size());
    const CellKind kind = kind_of(cell.substr(0, end));
    if (kind != CellKind::empty) {
      if (common != CellKind::empty && kind != common) return 1;
      common = kind;
    }
    if (end == cell.size()) return 0.3;
    cell.remove_prefix(end + 1);
  }
}

bool is_torn(std::u16string_view cell) {
  cell = trimmed(cell);
  int quotes = 0;
  int round = 0;
  int square = 0;
  int curly = 0;
  for (const char16_t unit : cell) {
    switch (unit) {
      case u'"':
        ++quotes;
        break;
      case u'(':
        ++round;
        break;
      case u')':
        --round;
        break;
      case u'[':
        ++square;
        break;
      case u']':
        --square;
        break;
      case u'{':
        ++curly;
        break;
      case u'}':
        --curly;
        break;
      default:
        break;
    }
  }
  const bool half_quoted = cell.size() > 1 && (cell.front() == u'\'') != (cell.back() == u'\'');
  return quotes % 2 != 0 || round != 0 || square != 0 || curly != 0 || half_quoted;
}

// Where the first word of a text ends.
std::size_t word_end(std::u16string_view text) {
  const std::size_t blank = find_unit(text, u' ', 0, text.size());
  return find_unit(text, u'\t', 0, blank);
}

// Whether the cell is two values or more with blanks between them.
bool has_values_together(std::u16string_view cell) {
  cell = trimmed(cell);
  std::size_t end = word_end(cell);
  if (end == cell.size()) return false;
  for (;;) {
    if (!is_value(kind_of(cell.substr(0, end)))) return false;
    if (end == cell.size()) return true;
    while (is_blank(cell[end])) ++end;
    cell.remove_prefix(end);
    end = word_end(cell);
  }
}

// Two blanks in a row between words.
bool has_gap(std::u16string_view cell) {
  cell = trimmed(cell);
  return find_text(cell, u"  ", 0, cell.size()) < cell.size();
}

// A blank, a word in lower case and another word.
bool is_clause(std::u16string_view cell) {
  if (cell.size() < 4 || cell[0] != u' ' || !u_islower(cell[1])) return false;
  const std::size_t blank = cell.find(u' ', 1);
  return blank != cell.npos && blank + 1 < cell.size() && is_letter(cell[blank + 1]);
}

// A comma or the like at an end, where a cell would have lost its separator.
bool is_dangling(std::u16string_view cell) {
  cell = trimmed(cell);
  if (cell.empty()) return false;
  return is_usual_separator(cell.front()) || is_usual_separator(cell.back());
}

// ---------------------------------------------------------------------------------------------
// Values that are cut

bool may_contain_sign(CellKind kind) {
  switch (kind) {
    case CellKind::time:
    case CellKind::date:
    case CellKind::date_time:
    case CellKind::url:
    case CellKind::path:
    case CellKind::ip:
    case CellKind::uuid:
    case CellKind::email:
      return true;
    default:
      return false;
  }
}

// Whether this is a number, of this kind, whose comma groups digits or precedes at least two decimals. A single digit
// after a comma is usually a column of its own.
bool may_have_comma(std::u16string_view text, CellKind kind) {
  if (kind == CellKind::integer) return true;
  const std::size_t comma = text.rfind(u',');
  return is_number(kind) && comma != text.npos && text.size() - comma > 2;
}

// ---------------------------------------------------------------------------------------------
// The pieces of evidence

// The characters on the lines of a record.
CharacterSet characters_of(const SampledLines& lines, const Record& record) {
  CharacterSet characters = 0;
  for (std::size_t k = record.line; k < record.line + record.num_lines; ++k) {
    characters |= lines.characters(k);
  }
  return characters;
}

double& at(EvidenceAmounts& amounts, Evidence evidence) {
  return amounts[static_cast<std::size_t>(evidence)];
}

// A line ending counts as one code unit, however it is written.
std::size_t size_of_text(std::u16string_view text) {
  return text.size() - static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\r'));
}

constexpr std::size_t kLongestName = 40;

// Whether every cell of a record begins with a letter, is short and differs from the others.
bool has_names(const Records& records, std::size_t record) {
  std::vector<std::u16string_view> names;
  for (const Cell& cell : records.cells(record)) {
    const std::u16string_view name = trimmed(records.view(cell));
    if (name.empty() || size_of_text(name) > kLongestName || !is_letter(name[0])) return false;
    names.push_back(name);
  }
  std::sort(names.begin(), names.end());
  return std::adjacent_find(names.begin(), names.end()) == names.end();
}

constexpr std::size_t kNoRecord = static_cast<std::size_t>(-1);
constexpr std::size_t kFewestNames = 3;
constexpr double kWorthOfShort =
    0.5;  // of a record that ends early, where 1 is that of one that fits

// The first record with as many cells as no other exceeds, if it has names, another one has as many, and of all
// records four in five are below it and have several cells: those that have fewer end early.
std::size_t find_complete_names(const SampledLines& lines, const Records& records,
                                const Reading& reading) {
  if (reading.form != Form::delimited) return kNoRecord;
  std::size_t first = kNoRecord;
  std::size_t most = kFewestNames - 1;
  std::size_t count = 0;
  for (std::size_t i = 0; i < records.size(); ++i) {
    const std::size_t size = records.cells(i).size();
    if (size < most || lines.is_comment(records[i].line)) continue;
    if (size > most) {
      most = size;
      first = i;
      count = 0;
    }
    ++count;
  }
  if (first == kNoRecord || count < 2 || !has_names(records, first)) return kNoRecord;
  std::size_t below = 0;
  for (std::size_t i = first; i < records.size(); ++i) below += records.cells(i).size() > 1;
  return 5 * below >= 4 * records.size() ? first : kNoRecord;
}

class ContentWeigher {
 public:
  ContentWeigher(const SampledLines& lines, const Records& records, const Reading& reading,
                 const TableFrame& table, const CellKinds& kinds, EvidenceAmounts& amounts)
      : lines_(lines),
        records_(records),
        reading_(reading),
        table_(table),
        kinds_(kinds),
        looked_into_(kinds.size()),
        amounts_(amounts) {}

  void weigh() {
    amount(Evidence::named) = table_.columns > 1 && has_names(records_, table_.data[0]) ? 1 : 0;
    weigh_columns();
    weigh_cells();
  }

 private:
  double& amount(Evidence evidence) { return at(amounts_, evidence); }

  // The first record is skipped because it may hold names.
  void weigh_columns() {
    const std::size_t first = looked_into_ > table_.names_rows ? table_.names_rows : 0;
    double worth = 0;
    std::size_t empty = 0;
    std::size_t used = 0;
    std::size_t wordy = 0;
    for (std::size_t c = 0; c < table_.columns; ++c) {
      std::array<std::size_t, kCellKinds> counts = {};
      double sum = 0;
      const std::size_t size = looked_into_ - first;
      for (std::size_t i = first; i < looked_into_; ++i) {
        const Cell& cell = records_.cells(table_.data[i])[c];
        const CellKind kind = kinds_.at(i, c);
        ++counts[static_cast<std::size_t>(kind)];
        sum += cell.is_quoted ? std::max(worth_of(kind), kWorthOfQuoted) : worth_of(kind);
      }
      const std::size_t blanks = counts[static_cast<std::size_t>(CellKind::empty)];
      const std::size_t filled = size - blanks;
      if (filled == 0) ++empty;
      if (kFewestFilled * filled >= size) ++used;
      if (filled > 0) sum *= 0.8 + 0.2 * ratio(largest_class(counts), filled);
      worth += sum / static_cast<double>(size);
      const std::size_t words = counts[static_cast<std::size_t>(CellKind::word)] +
                                counts[static_cast<std::size_t>(CellKind::sentence)];
      const bool takes_rest = reading_.most_cells > 0 && c + 1 == table_.columns;
      if (10 * (words + blanks) >= 9 * size && !takes_rest) ++wordy;
    }
    amount(Evidence::worth) = worth / static_cast<double>(table_.columns);
    amount(Evidence::empty) = ratio(empty, table_.columns);
    if (table_.columns > 1)
      amount(Evidence::few) = 2 / static_cast<double>(std::max<std::size_t>(used, 1));
    const bool by_single_blanks =
        reading_.is_aligned() ? reading_.least_blanks == 1 : reading_.delimiter == u" ";
    if (by_single_blanks && table_.columns > 1)
      amount(Evidence::wordy) = ratio(wordy, table_.columns);
  }

  // Numbers are one class, however they are written.
  static std::size_t largest_class(const std::array<std::size_t, kCellKinds>& counts) {
    std::size_t numbers = 0;
    std::size_t largest = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const auto kind = static_cast<CellKind>(i);
      if (kind == CellKind::empty) continue;
      if (is_number(kind)) {
        numbers += counts[i];
      } else {
        largest = std::max(largest, counts[i]);
      }
    }
    return std::max(numbers, largest);
  }

  void weigh_cells() {
    CellFaults sum;
    double unsplit_sum = 0;
    std::size_t cut = 0;
    std::size_t cut_numbers = 0;
    for (std::size_t i = 0; i < looked_into_; ++i) {
      const CellFaults found = faults_of(i);
      unsplit_sum += found.unsplit;
      sum.torn += found.torn;
      sum.together += found.together;
      sum.dangling += found.dangling;
      sum.clauses += found.clauses;
      sum.gaps += found.gaps;
      const CutKinds values = cut_in(i);
      cut += values.value;
      cut_numbers += values.number;
    }
    amount(Evidence::unsplit) =
        unsplit_sum / static_cast<double>(std::max<std::size_t>(looked_into_, 1));
    amount(Evidence::torn) = ratio(sum.torn, looked_into_);
    amount(Evidence::numbers_cut) = ratio(cut_numbers, looked_into_);
    amount(Evidence::cut_values) = ratio(cut, looked_into_);
    amount(Evidence::left_together) = ratio(sum.together, looked_into_);
    amount(Evidence::gaps_inside) = ratio(sum.gaps, looked_into_);
    if (reading_.form == Form::delimited)
      amount(Evidence::clauses) = ratio(sum.clauses, looked_into_);
    amount(Evidence::dangling) = ratio(sum.dangling, looked_into_);
  }

  // What is wrong with cells: of one record 0 or 1 each, or the number of records.
  struct CellFaults {
    double unsplit = 0;
    std::size_t torn = 0;
    std::size_t together = 0;
    std::size_t dangling = 0;
    std::size_t clauses = 0;
    std::size_t gaps = 0;
  };

  CellFaults faults_of(std::size_t row) const {
    CellFaults found;
    const CharacterSet characters = characters_in_cells(row);
    const bool has_separators = (characters & kSeparators) != 0;
    const bool has_pairs = (characters & kPaired) != 0;
    const bool has_blanks = (characters & kBlanks) != 0;
    if (!has_separators && !has_pairs && !has_blanks) return found;
    std::size_t column = 0;
    for (const Cell& cell : records_.cells(table_.data[row])) {
      const std::u16string_view text = records_.view(cell);
      const CellKind kind = kinds_.at(row, column++);
      if (cell.is_quoted || text.size() > kLongestCellLookedInto) continue;
      if (has_separators) {
        found.unsplit = std::max(found.unsplit, unsplit(text, characters));
        if (is_dangling(text)) found.dangling = 1;
      }
      if (has_pairs && found.torn == 0 && is_torn(text)) found.torn = 1;
      if (!has_blanks) continue;
      if (reading_.is_aligned() && found.gaps == 0 && has_gap(text)) found.gaps = 1;
      if (is_text(kind) && found.together == 0 && has_values_together(text)) found.together = 1;
      const bool may_go_on = column > 1 && kind == CellKind::sentence;
      if (may_go_on && is_clause(text) && follows_tight(cell)) found.clauses = 1;
    }
    return found;
  }

  // Those that may be in cells without quotes: cells do not contain the delimiter if nothing quotes or
  // escapes it.
  CharacterSet characters_in_cells(std::size_t row) const {
    const CharacterSet characters = characters_of(lines_, records_[table_.data[row]]);
    const bool is_excluded = reading_.form == Form::delimited && reading_.delimiter.size() == 1 &&
                             reading_.quote == 0 && reading_.escape == 0;
    return is_excluded ? characters & ~set_of(reading_.delimiter[0]) : characters;
  }

  struct CutKinds {
    bool value = false;
    bool number = false;
  };

  // Whether neighbouring cells together form a value that contains the delimiter.
  CutKinds cut_in(std::size_t row) const {
    const std::span<const Cell> cells = records_.cells(table_.data[row]);
    CutKinds found;
    if (reading_.form == Form::fields) found.value = has_cut_value(cells);
    if (reading_.form != Form::delimited || reading_.delimiter.size() != 1) return found;
    const char16_t sign = reading_.delimiter[0];
    if (sign == u' ') {
      found.value = has_date_with_time(row);
      return found;
    }
    if (std::u16string_view(u",:-/").find(sign) == std::u16string_view::npos) return found;
    const std::u16string_view text = records_.text();
    for (std::size_t c = 0; c + 1 < cells.size();) {
      // From the border in the one cell to the border in the other, over cells without borders.
      const std::size_t begin = value_begin(cells[c]);
      std::size_t last = c + 1;
      while (last + 1 < cells.size() && has_no_border(cells[last])) ++last;
      const std::size_t end = value_end(cells[last]);
      if (begin < cells[c].end && end > cells[last].begin && end - begin <= 40) {
        const std::u16string_view whole = text.substr(begin, end - begin);
        const CellKind kind = kind_of(whole);
        found.value = found.value || may_contain_sign(kind);
        found.number = found.number || (sign == u',' && may_have_comma(whole, kind));
      }
      c = last;
    }
    return found;
  }

  // Whether fields that touch are a value together.
  bool has_cut_value(std::span<const Cell> cells) const {
    for (std::size_t c = 0; c + 1 < cells.size(); ++c) {
      const std::size_t first = c;
      while (c + 1 < cells.size() && cells[c].end == cells[c + 1].begin &&
             (c == first || has_no_border(cells[c]))) {
        ++c;
      }
      if (c == first) continue;
      const std::size_t begin = value_begin(cells[first]);
      const CellKind kind = kind_of(records_.text().substr(begin, value_end(cells[c]) - begin));
      if (may_contain_sign(kind) || kind == CellKind::complex || kind == CellKind::scientific)
        return true;
    }
    return false;
  }

  // Whether the separator before a cell has no blank before it.
  bool follows_tight(const Cell& cell) const {
    const std::size_t length = reading_.delimiter.size();
    return cell.begin > length && !is_blank(records_.text()[cell.begin - length - 1]);
  }

  bool has_date_with_time(std::size_t row) const {
    const std::span<const Cell> cells = records_.cells(table_.data[row]);
    for (std::size_t c = 0; c + 1 < cells.size(); ++c) {
      if (cells[c].is_quoted || cells[c + 1].is_quoted || cells[c + 1].begin != cells[c].end + 1)
        continue;
      if (kinds_.at(row, c) == CellKind::date && kinds_.at(row, c + 1) == CellKind::time) {
        return true;
      }
    }
    return false;
  }

  static bool is_border(char16_t unit) {
    return is_blank(unit) || is_usual_separator(unit) || is_quote(unit);
  }
  bool has_no_border(const Cell& cell) const {
    const std::u16string_view text = records_.view(cell);
    return !cell.is_quoted && !text.empty() && (characters_in(text) & kBorders) == 0;
  }
  std::size_t value_begin(const Cell& cell) const {
    std::size_t begin = cell.end;
    if (cell.is_quoted) return begin;
    while (begin > cell.begin && !is_border(records_.text()[begin - 1])) --begin;
    return begin;
  }
  std::size_t value_end(const Cell& cell) const {
    std::size_t end = cell.begin;
    if (cell.is_quoted) return end;
    while (end < cell.end && !is_border(records_.text()[end])) ++end;
    return end;
  }

  static constexpr double kWorthOfQuoted = 0.75;
  static constexpr std::size_t kFewestFilled = 20;  // at least one cell in twenty

  static constexpr CharacterSet kSeparators = characters_in(u",;|\t");
  static constexpr CharacterSet kPaired = characters_in(u"\"'()[]{}");
  static constexpr CharacterSet kBlanks = characters_in(u" \t");
  static constexpr CharacterSet kBorders = kSeparators | kBlanks | characters_in(u"\"'");

  const SampledLines& lines_;
  const Records& records_;
  const Reading& reading_;
  const TableFrame& table_;
  const CellKinds& kinds_;
  const std::size_t looked_into_;
  EvidenceAmounts& amounts_;
};

Evidence class_of_sign(const std::u16string& delimiter) {
  if (delimiter.size() > 1) return Evidence::several;
  switch (delimiter[0]) {
    case u'\t':
      return Evidence::tab;
    case u',':
      return Evidence::comma;
    case u';':
      return Evidence::semicolon;
    case u':':
      return Evidence::colon;
    case u'|':
      return Evidence::bar;
    case u' ':
      return Evidence::blank;
    case u'^':
    case u'~':
    case u'\u00A7':
    case u'\u00A6':
      return Evidence::caret;
    default:
      return delimiter[0] < 0x20 ? Evidence::control : Evidence::rare;
  }
}

void weigh_separator(const Reading& reading, EvidenceAmounts& amounts) {
  switch (reading.form) {
    case Form::one:
      at(amounts, Evidence::one) = 1;
      return;
    case Form::none:
      return;
    case Form::framed:
      at(amounts, Evidence::framed) = 1;
      return;
    case Form::runs:
      at(amounts, Evidence::runs) = 1;
      at(amounts, Evidence::rest) = reading.most_cells > 0 ? 1 : 0;
      [[fallthrough]];
    case Form::gaps:
      at(amounts, Evidence::narrow) = reading.least_blanks == 1 ? 1 : 0;
      at(amounts, Evidence::by_names) = reading.by_names ? 1 : 0;
      return;
    case Form::fields:
      at(amounts, Evidence::dense) = 1;
      return;
    case Form::delimited:
      at(amounts, class_of_sign(reading.delimiter)) = 1;
  }
}

bool has_quoted(std::span<const Cell> cells) {
  return std::any_of(cells.begin(), cells.end(), [](const Cell& cell) { return cell.is_quoted; });
}

// Quotes within cells of the records that are looked into, as shares of these.
void weigh_quotes(const SampledLines& lines, const Records& records, const Reading& reading,
                  const TableFrame& table, EvidenceAmounts& amounts) {
  if ((lines.characters() & (set_of(u'"') | set_of(u'\''))) == 0) return;
  const std::size_t size = std::min(table.data.size(), kRecordsLookedInto);
  std::size_t quoted = 0;
  std::size_t lost = 0;
  for (std::size_t i = 0; i < size; ++i) {
    const std::span<const Cell> cells = records.cells(table.data[i]);
    quoted += has_quoted(cells);
    const bool has_quotes = (characters_of(lines, records[table.data[i]]) & set_of(u'"')) != 0;
    if (reading.quote == u'"' || !has_quotes) continue;
    lost += std::any_of(cells.begin(), cells.end(), [&](const Cell& cell) {
      return !cell.is_quoted && records.view(cell).find(u'"') != std::u16string_view::npos;
    });
  }
  at(amounts, Evidence::well_quoted) = ratio(quoted, size);
  at(amounts, Evidence::lost_quotes) =
      reading.quote == u'"'
          ? std::min(1.0, records.ill_placed_quotes / static_cast<double>(records.size()))
          : ratio(lost, size);
}

// The most frequent number of cells from record `first` on; a single cell counts for less, and of two
// numbers the larger wins.
std::size_t most_frequent(const SampledLines& lines, const Records& records, std::size_t first) {
  std::map<std::size_t, std::size_t> counts;
  for (std::size_t i = first; i < records.size(); ++i) {
    if (!lines.is_comment(records[i].line)) ++counts[records.cells(i).size()];
  }
  std::size_t columns = 1;
  double most = 0;
  for (const auto& [cells, count] : counts) {
    const double weight = static_cast<double>(count) * (cells > 1 ? 1.0 : 0.6);
    if (weight >= most) {
      most = weight;
      columns = cells;
    }
  }
  return columns;
}

}  // namespace

std::string_view to_string(Evidence evidence) {
  static constexpr std::array<std::string_view, kNumEvidence> kNames = {
      "ragged",        "outside",  "worth",       "unsplit",     "torn",        "cut-values",
      "left-together", "dangling", "well-quoted", "lost-quotes", "wordy",       "empty",
      "few",           "one",      "runs",        "narrow",      "rest",        "dense",
      "framed",        "named",    "clauses",     "numbers-cut", "gaps-inside", "by-names",
      "tab",           "comma",    "semicolon",   "colon",       "bar",         "blank",
      "caret",         "control",  "several",     "rare",        "no-table",    "prose",
      "code",          "markup",   "nested",      "keyed",       "indented",    "spaced",
      "brief"};
  return kNames[static_cast<std::size_t>(evidence)];
}

std::vector<std::size_t> likely_columns(const SampledLines& lines, const Records& records,
                                        const Reading& reading) {
  if (records.empty()) return {};
  if (reading.form == Form::one || reading.form == Form::none) return {1};
  std::vector<std::size_t> columns;
  for (const std::size_t first : {std::size_t{0}, records.size() / 2,
                                  records.size() - std::min<std::size_t>(records.size(), 8)}) {
    const std::size_t found = most_frequent(lines, records, first);
    if (found > 1 && std::find(columns.begin(), columns.end(), found) == columns.end())
      columns.push_back(found);
  }
  const std::size_t names = find_complete_names(lines, records, reading);
  if (names == kNoRecord) return columns;
  const std::size_t named = records.cells(names).size();
  if (std::find(columns.begin(), columns.end(), named) == columns.end()) columns.push_back(named);
  return columns;
}

TableFrame find_table(const SampledLines& lines, const Records& records, const Reading& reading,
                      std::size_t columns) {
  TableFrame table;
  table.columns = columns;
  std::vector<std::uint8_t> fits(records.size());
  std::vector<std::uint8_t> notes(records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    const std::size_t line = records[i].line;
    const bool has_columns = records.cells(i).size() == columns;
    notes[i] =
        (lines.is_comment(line) && (reading.is_aligned() || !has_columns)) ||
        (reading.form == Form::delimited && !is_bar(reading.delimiter[0]) && is_rule(lines, line));
    fits[i] = has_columns && !notes[i];
  }
  const std::size_t names = find_complete_names(lines, records, reading);
  const bool is_named = names != kNoRecord && records.cells(names).size() == columns;
  const auto ends_early = [&](std::size_t i) {
    return is_named && i > names && !notes[i] && !fits[i] && records.cells(i).size() > 1;
  };
  // The table begins with the first record after which most records fit.
  double sum = 0;
  double most = -1e9;
  table.end = 0;
  for (std::size_t i = records.size(); i-- > 0;) {
    if (notes[i]) continue;
    const bool is_short = ends_early(i);
    sum += fits[i] ? 1 : is_short ? kWorthOfShort : -0.3;
    if (!fits[i] && !is_short) continue;
    if (table.end == 0) table.end = i + 1;
    if (fits[i] && sum >= most) {
      most = sum;
      table.first = i;
    }
  }
  if (lines.has_known_top()) table.first = 0;
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (i < table.first || i >= table.end) {
      table.num_outside += !notes[i];
      continue;
    }
    table.num_fitting += fits[i];
    table.num_short += ends_early(i);
    if (notes[i]) {
      ++table.num_notes;
    } else if (fits[i]) {
      table.data.push_back(i);
    }
  }
  return table;
}

EvidenceAmounts weigh_shape(const SampledLines& lines, const Records& records,
                            const Reading& reading, const TableFrame& table) {
  EvidenceAmounts amounts = {};
  const std::size_t size = table.end - table.first;
  at(amounts, Evidence::ragged) =
      -std::log((static_cast<double>(table.num_fitting) +
                 kWorthOfShort * static_cast<double>(table.num_short) + 0.5) /
                static_cast<double>(size - table.num_notes + 1));
  at(amounts, Evidence::outside) = ratio(table.num_outside, table.num_outside + size);
  if (table.columns > 1) at(amounts, Evidence::few) = 2.0 / static_cast<double>(table.columns);
  weigh_separator(reading, amounts);
  weigh_quotes(lines, records, reading, table, amounts);
  return amounts;
}

void weigh_content(const SampledLines& lines, const Records& records, const Reading& reading,
                   const TableFrame& table, const CellKinds& kinds, EvidenceAmounts& amounts) {
  ContentWeigher(lines, records, reading, table, kinds, amounts).weigh();
}

}  // namespace textio::assessment
