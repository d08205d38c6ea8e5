#include <vltextstream/assessment/verdict.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/table_top.hpp>
#include <vltextstream/assessment/text_traits.hpp>
#include <vltextstream/assessment/unit_symbols.hpp>
#include <vltextstream/assessment/weights.hpp>

namespace textio::assessment {
namespace {

template <typename Amounts>
double weighted(const Amounts& amounts, const Amounts& weights) {
  return std::inner_product(amounts.begin(), amounts.end(), weights.begin(), 0.0);
}

constexpr std::size_t kRecordsForFirstLook = 12;
constexpr std::size_t kLinesForFirstLook = 20;

// The evidence in some records from all over the table.
EvidenceAmounts first_look(const SampledLines& lines, const Cut& cut,
                           const Hypothesis& hypothesis) {
  TableFrame part = hypothesis.table;
  const std::vector<std::size_t>& data = hypothesis.table.data;
  part.data.clear();
  const std::size_t size = std::min(data.size(), kRecordsForFirstLook);
  for (std::size_t i = 0; i < size; ++i) part.data.push_back(data[i * data.size() / size]);
  EvidenceAmounts amounts = hypothesis.amounts;
  weigh_content(lines, cut.records, cut.reading, part,
                CellKinds(cut.records, part.data, part.columns, size), amounts);
  return amounts;
}

CellKinds kinds_of(const Cut& cut, const TableFrame& table) {
  return {cut.records, table.data, table.columns, kRecordsLookedInto};
}

// Drops records above the names or the first data, unless the table is known to begin there. Returns the kinds of the first ones that are left.
CellKinds find_top(const SampledLines& lines, const Cut& cut, TableFrame& table) {
  CellKinds kinds = kinds_of(cut, table);
  const TableTop top = assessment::find_top(cut.records, table.data, kinds);
  if (lines.has_known_top()) {
    if (top.first == 0) table.names_rows = top.names_rows;
    return kinds;
  }
  table.data.erase(table.data.begin(), table.data.begin() + static_cast<std::ptrdiff_t>(top.first));
  table.names_rows = top.names_rows;
  kinds.drop_before(top.first);
  return kinds;
}

void look_closely(const SampledLines& lines, const Cut& cut, Hypothesis& hypothesis) {
  hypothesis.kinds = find_top(lines, cut, hypothesis.table);
  weigh_content(lines, cut.records, cut.reading, hypothesis.table, hypothesis.kinds,
                hypothesis.amounts);
}

EvidenceAmounts weigh_text(const SampledLines& lines, std::size_t most) {
  const TextTraits traits = traits_of(lines, most);
  EvidenceAmounts amounts = {};
  const auto set = [&](Evidence evidence, double amount) {
    amounts[static_cast<std::size_t>(evidence)] = amount;
  };
  set(Evidence::no_table, 1);
  set(Evidence::prose, traits.prose);
  set(Evidence::code, traits.code);
  set(Evidence::markup, traits.markup);
  set(Evidence::nested, traits.nested);
  set(Evidence::keyed, traits.keyed);
  set(Evidence::indented, traits.indented);
  set(Evidence::spaced, traits.spaced);
  set(Evidence::brief, traits.brief);
  return amounts;
}

// Whether no cell of several columns has any text.
bool is_void(const Records& records, const TableFrame& table) {
  return table.columns > 1 &&
         std::all_of(table.data.begin(), table.data.end(), [&](std::size_t row) {
           const auto cells = records.cells(row);
           return std::all_of(cells.begin(), cells.end(), [&](const Cell& cell) {
             return trimmed(records.view(cell)).empty();
           });
         });
}

// The numbers of columns that a reading is tried with; also the one that is given, and one where separators are
// given that separate nothing.
std::vector<std::size_t> columns_to_try(const SampledLines& lines, const Cut& cut,
                                        const Given& given) {
  std::vector<std::size_t> columns = likely_columns(lines, cut.records, cut.reading);
  if (columns.empty() && (given.delimiters || !given.widths.empty())) columns = {1};
  const bool has_one =
      !given.columns || std::find(columns.begin(), columns.end(), *given.columns) != columns.end();
  if (has_one || cut.reading.form == Form::none || *given.columns < 2) return columns;
  for (std::size_t i = 0; i < cut.records.size(); ++i) {
    if (cut.records.cells(i).size() != *given.columns) continue;
    columns.push_back(*given.columns);
    break;
  }
  return columns;
}

// Hypotheses with the evidence of their shape.
void add_hypotheses(Verdict& verdict, Reading reading, const Given& given) {
  Cut cut{std::move(reading), Records(verdict.lines.text())};
  cut.records = assessment::cut(verdict.lines, cut.reading);
  for (const std::size_t columns : columns_to_try(verdict.lines, cut, given)) {
    Hypothesis hypothesis;
    hypothesis.cut = verdict.cuts.size();
    hypothesis.table = find_table(verdict.lines, cut.records, cut.reading, columns);
    if (hypothesis.table.data.empty() || is_void(cut.records, hypothesis.table)) continue;
    hypothesis.amounts =
        cut.reading.form == Form::none
            ? weigh_text(verdict.lines, kLinesForFirstLook)
            : weigh_shape(verdict.lines, cut.records, cut.reading, hypothesis.table);
    hypothesis.score = weighted(hypothesis.amounts, kWeights);
    verdict.hypotheses.push_back(std::move(hypothesis));
  }
  verdict.cuts.push_back(std::move(cut));
}

// Drops hypotheses with another number of columns than is given, or with fewer than a given column needs, if others
// are left.
void prefer_given_columns(Verdict& verdict, const Given& given) {
  std::vector<Hypothesis>& all = verdict.hypotheses;
  const auto keep = [&](auto is_right) {
    if (std::any_of(all.begin(), all.end(), is_right)) std::erase_if(all, std::not_fn(is_right));
  };
  keep([&](const Hypothesis& each) { return each.table.columns >= given.row_names_column; });
  if (!given.columns) return;
  keep([&](const Hypothesis& each) { return each.table.columns == *given.columns; });
}

// Adds the evidence of the content.
void weigh_contents(Verdict& verdict, double margin) {
  double best = std::numeric_limits<double>::lowest();
  std::vector<EvidenceAmounts> looks;
  for (Hypothesis& each : verdict.hypotheses) {
    const Cut& cut = verdict.cut_of(each);
    looks.push_back(cut.reading.form == Form::none ? each.amounts
                                                   : first_look(verdict.lines, cut, each));
    each.score = weighted(looks.back(), kWeights);
    best = std::max(best, each.score);
  }
  for (std::size_t i = 0; i < looks.size(); ++i) {
    Hypothesis& each = verdict.hypotheses[i];
    const Cut& cut = verdict.cut_of(each);
    if (each.score < best - margin) {
      each.amounts = looks[i];
      continue;
    }
    if (cut.reading.form == Form::none) {
      each.amounts = weigh_text(verdict.lines, verdict.lines.size());
    } else {
      look_closely(verdict.lines, cut, each);
    }
    each.score = weighted(each.amounts, kWeights);
  }
}

// The best is the likeliest hypothesis of the answer that is the likeliest in all its hypotheses.
void make_probabilities(Verdict& verdict) {
  std::vector<Hypothesis>& all = verdict.hypotheses;
  const auto highest =
      std::max_element(all.begin(), all.end(),
                       [](const Hypothesis& a, const Hypothesis& b) { return a.score < b.score; });
  const double highest_score = highest->score;
  double sum = 0;
  for (Hypothesis& each : all) sum += each.probability = std::exp(each.score - highest_score);
  for (Hypothesis& each : all) each.probability /= sum;
  for (std::size_t i = 0; i < all.size(); ++i) {
    double probability = 0;
    bool is_likeliest_of_its_answer = true;
    for (const Hypothesis& other : all) {
      if (!is_same_answer(verdict, other, all[i])) continue;
      probability += other.probability;
      is_likeliest_of_its_answer = is_likeliest_of_its_answer && other.score <= all[i].score;
    }
    if (!is_likeliest_of_its_answer || probability <= verdict.confidence) continue;
    verdict.best = i;
    verdict.confidence = probability;
  }
}

// Whether there are fewer than half as many texts as names.
bool are_alike(std::vector<std::u16string_view> names) {
  const std::size_t size = names.size();
  std::sort(names.begin(), names.end());
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return 2 * names.size() < size;
}

// Whether the cells of aligned columns cannot be told from single blanks alone.
bool needs_positions(const Cut& cut) {
  return cut.reading.least_blanks > 1 || cut.records.joins_times;
}

// How far in score another alignment may be from the best: odds of one to twenty.
constexpr double kLikely = 3;

// Of aligned hypotheses with the answer of the best, the one that fits most records; if that is by runs of
// blanks, and single blanks are within cells, one by positions that fits as many.
void choose_alignment(Verdict& verdict) {
  if (!verdict.cut_of(verdict.winner()).reading.is_aligned()) return;
  const auto find_better = [&](auto is_better) {
    for (std::size_t i = 0; i < verdict.hypotheses.size(); ++i) {
      const Hypothesis& each = verdict.hypotheses[i];
      const bool is_rival = verdict.cut_of(each).reading.is_aligned() &&
                            is_same_answer(verdict, each, verdict.winner()) &&
                            each.score > verdict.winner().score - kLikely;
      if (is_rival && is_better(each)) verdict.best = i;
    }
  };
  find_better([&](const Hypothesis& each) {
    return each.table.data.size() > verdict.winner().table.data.size();
  });
  const bool is_by_runs = verdict.cut_of(verdict.winner()).reading.form == Form::runs;
  if (!is_by_runs || !needs_positions(verdict.cut_of(verdict.winner()))) return;
  find_better([&](const Hypothesis& each) {
    return verdict.cut_of(each).reading.form == Form::gaps &&
           each.table.data.size() >= verdict.winner().table.data.size();
  });
}

// How the cells of a line above the table may be separated.
std::vector<Reading> readings_of_line(const Reading& reading) {
  std::vector<Reading> readings = {reading};
  const bool by_blanks = reading.is_aligned() || reading.delimiter == u" ";
  if (reading.is_aligned() && reading.widths.empty()) readings.clear();
  if (by_blanks)
    readings.insert(readings.end(), {{Form::runs, u" ", 0, 0, 2}, {Form::runs, u" ", 0, 0, 1}});
  return readings;
}

// A part of a line of the text as a sample of its own.
SampledLines sample_of(const SampledLines& lines, std::u16string_view part) {
  const auto begin = static_cast<std::size_t>(part.data() - lines.text().data());
  return {lines.text(),
          {{begin, begin + part.size(), begin + part.size(), characters_in(part)}},
          false};
}

// The cells of a part of a line, if there are as many as columns and none is a value. There may be one
// fewer if the first column, or the one of the names of rows, has no name.
std::optional<std::vector<std::u16string_view>> names_in(const SampledLines& lines,
                                                         std::u16string_view part,
                                                         const Reading& reading,
                                                         std::size_t columns,
                                                         std::size_t row_names) {
  if (part.empty()) return std::nullopt;
  const SampledLines one = sample_of(lines, part);
  for (const Reading& each : readings_of_line(reading)) {
    const Records records = cut(one, each);
    if (records.size() != 1) continue;
    const std::size_t size = records.cells(0).size();
    const bool may_lack = row_names > 0 || (columns > 2 && !reading.is_aligned());
    const bool lacks_one = size + 1 == columns && may_lack;
    if (size != columns && !lacks_one) continue;
    std::vector<std::u16string_view> names;
    for (const Cell& cell : records.cells(0)) names.push_back(trimmed(records.view(cell)));
    const std::size_t lacking = std::clamp<std::size_t>(row_names, 1, columns) - 1;
    if (lacks_one) names.emplace(names.begin() + static_cast<std::ptrdiff_t>(lacking));
    const auto is_name = [](std::u16string_view name) {
      return name.empty() || is_text(kind_of(name));
    };
    if (std::all_of(names.begin(), names.end(), is_name) && !are_alike(names)) return names;
  }
  return std::nullopt;
}

// Whether a mark other than a blank separates the cells, with or without a frame.
bool separates(const Reading& reading) {
  return (reading.form == Form::delimited && reading.delimiter != u" ") ||
         reading.form == Form::framed;
}

}  // namespace

bool is_same_answer(const Verdict& verdict, const Hypothesis& a, const Hypothesis& b) {
  if (a.table.columns != b.table.columns) return false;
  const Reading& x = verdict.cut_of(a).reading;
  const Reading& y = verdict.cut_of(b).reading;
  if ((x.form == Form::none) != (y.form == Form::none)) return false;
  return separates(x) == separates(y) && (!separates(x) || x.delimiter == y.delimiter);
}

namespace {

// How far a piece of a line is from a column; negative if they overlap.
std::ptrdiff_t distance_from(const Records& records, std::size_t column, std::size_t begin,
                             std::size_t end) {
  const auto signed_of = [](std::size_t number) { return static_cast<std::ptrdiff_t>(number); };
  return std::max(signed_of(begin) - signed_of(records.column_ends[column]),
                  signed_of(records.column_starts[column]) - signed_of(end));
}

// Each piece between blanks belongs to the column that it overlaps most or is next to.
std::vector<std::u16string_view> cells_by_positions(const SampledLines& one, const Cut& cut) {
  const Records pieces = assessment::cut(one, {Form::runs, u" "});
  std::vector<std::u16string_view> cells(cut.records.column_starts.size());
  if (pieces.empty()) return cells;
  for (const Cell& piece : pieces.cells(0)) {
    const std::size_t begin = piece.begin - one[0].begin;
    const std::size_t end = piece.end - one[0].begin;
    std::size_t nearest = 0;
    for (std::size_t c = 1; c < cells.size(); ++c) {
      if (distance_from(cut.records, c, begin, end) <
          distance_from(cut.records, nearest, begin, end)) {
        nearest = c;
      }
    }
    std::u16string_view& cell = cells[nearest];
    const std::u16string_view text = pieces.view(piece);
    cell = cell.empty() ? text
                        : std::u16string_view(
                              cell.data(),
                              static_cast<std::size_t>(text.data() - cell.data()) + text.size());
  }
  return cells;
}

}  // namespace

std::vector<std::u16string_view> cells_of_line(const SampledLines& lines, std::size_t line,
                                               const Cut& cut, std::size_t columns) {
  const std::u16string_view whole = lines.whole(line);
  std::vector<std::u16string_view> cells;
  std::vector<std::u16string_view> parts = {whole};
  if (has_comment_sign(whole)) parts.push_back(without_comment_sign(whole));
  for (const std::u16string_view part : parts) {
    if (part.empty()) continue;
    const SampledLines one = sample_of(lines, part);
    for (const Reading& each : readings_of_line(cut.reading)) {
      const Records records = assessment::cut(one, each);
      if (records.size() != 1) continue;
      const auto found = records.cells(0);
      if (!cells.empty() && found.size() != columns) continue;
      cells.clear();
      for (const Cell& cell : found) cells.push_back(trimmed(records.view(cell)));
      if (cells.size() == columns) return cells;
    }
  }
  if (cut.reading.form == Form::gaps && !whole.empty()) {
    return cells_by_positions(sample_of(lines, whole), cut);
  }
  cells.resize(columns);
  return cells;
}

namespace {

// A comment sign before the names is not part of the first name, unless it is all of it.
void drop_comment_sign(std::u16string_view line, const Given& given,
                       std::vector<std::u16string_view>& names) {
  if (!given.comment_prefix.empty() || names.empty()) return;
  if (!has_comment_sign(line) || !has_comment_sign(names[0])) return;
  const std::u16string_view name = without_comment_sign(names[0]);
  if (!name.empty()) names[0] = name;
}

// The names in the line that is given, counted from 1; 0: there are none.
NamesVerdict given_names(const SampledLines& lines, const Cut& cut, const TableFrame& table,
                         const Given& given) {
  const std::size_t line = *given.names_line;
  NamesVerdict names;
  names.is_given = true;
  const std::size_t first_line = cut.records[table.data[0]].line;
  names.line = line > 0 ? line - 1 : first_line;
  if (line == 0 || names.line >= lines.size()) return names;
  names.probability = 1;
  names.is_above_table = names.line != first_line;
  if (names.is_above_table) {
    const std::u16string_view whole = lines.whole(names.line);
    std::optional<std::vector<std::u16string_view>> found;
    if (has_comment_sign(whole)) {
      found = names_in(lines, without_comment_sign(whole), cut.reading, table.columns,
                       given.row_names_column);
    }
    names.texts = found ? *found : cells_of_line(lines, names.line, cut, table.columns);
  } else {
    for (const Cell& cell : cut.records.cells(table.data[0]))
      names.texts.push_back(trimmed(cut.records.view(cell)));
  }
  drop_comment_sign(lines.whole(names.line), given, names.texts);
  return names;
}

bool is_last_column_empty(const CellKinds& kinds) {
  for (std::size_t row = 0; row < kinds.size(); ++row) {
    if (kinds.at(row, kinds.columns() - 1) != CellKind::empty) return false;
  }
  return !kinds.empty();
}

// Whether a line above the table is known to hold no names.
bool is_known_not_to_name(const SampledLines& lines, std::size_t line, const Given& given) {
  const bool is_comment = !given.comment_prefix.empty() && lines.is_comment(line);
  return is_comment || given.units_line == line + 1 || given.descriptions_line == line + 1;
}

// Whether a header line holds units, so that the names may be in the one above it.
bool is_units_in_header(const SampledLines& lines, std::size_t line, const Cut& cut,
                        std::size_t columns) {
  return line > 0 && lines.is_hidden(line) && lines.is_hidden(line - 1) &&
         holds_units(lines, line, cut, columns) &&
         names_in(lines, trimmed(lines.whole(line - 1)), cut.reading, columns, 0);
}

}  // namespace

bool holds_units(const SampledLines& lines, std::size_t line, const Cut& cut, std::size_t columns) {
  const auto cells = cells_of_line(lines, line, cut, columns);
  const auto is_symbol = [](std::u16string_view text) {
    return is_unit(text) || is_time_pattern(text);
  };
  return cells.size() == columns && std::any_of(cells.begin(), cells.end(), is_symbol) &&
         std::all_of(cells.begin(), cells.end(),
                     [&](std::u16string_view text) { return is_symbol(text) || is_no_unit(text); });
}

NamesVerdict find_names(const SampledLines& lines, const Cut& cut, const TableFrame& table,
                        const CellKinds& kinds, const Given& given) {
  if (given.names_line) return given_names(lines, cut, table, given);
  const auto weighed = [](std::size_t line, NamesAmounts amounts) {
    NamesVerdict names;
    names.line = line;
    names.amounts = amounts;
    names.probability = 1 / (1 + std::exp(-(kNamesStart + weighted(amounts, kNamesWeights))));
    return names;
  };
  const std::size_t first_line = cut.records[table.data[0]].line;
  NamesVerdict in_table =
      weighed(first_line, weigh_names(cut.records, table, kinds, nullptr, given.row_names_column));
  for (const Cell& cell : cut.records.cells(table.data[table.names_rows - 1])) {
    in_table.texts.push_back(trimmed(cut.records.view(cell)));
  }
  drop_comment_sign(lines.view(first_line), given, in_table.texts);
  if (cut.reading.form == Form::one || cut.reading.form == Form::none) return in_table;
  std::size_t above = first_line;
  while (above > 0 && (is_blank(lines.whole(above - 1)) || is_rule(lines.whole(above - 1)) ||
                       is_known_not_to_name(lines, above - 1, given))) {
    --above;
  }
  if (above > 0 && is_units_in_header(lines, above - 1, cut, table.columns)) --above;
  if (above == 0) return in_table;
  const std::u16string_view line = lines.whole(above - 1);
  const bool is_note = has_comment_sign(line);
  const bool is_next = above == first_line;
  if (!is_note && in_table.probability > 0.5 && !is_next) return in_table;
  auto found = names_in(lines, is_note ? without_comment_sign(line) : trimmed(line), cut.reading,
                        table.columns, given.row_names_column);
  if (!found) return in_table;
  // Where each record ends in a delimiter, it is the last column that lacks a name.
  if (found->front().empty() && given.row_names_column == 0 && is_last_column_empty(kinds)) {
    std::rotate(found->begin(), found->begin() + 1, found->end());
  }
  const bool lacks_first = found->front().empty();
  if (!is_note && !lacks_first && in_table.probability > 0.5) return in_table;
  NamesVerdict names =
      weighed(above - 1, weigh_names(cut.records, table, kinds, &*found, given.row_names_column));
  names.is_above_table = true;
  names.texts = *found;
  return names.probability > in_table.probability ? names : in_table;
}

std::vector<Rival> rivals_of(const Verdict& verdict, std::size_t most) {
  std::vector<std::size_t> order(verdict.hypotheses.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return verdict.hypotheses[a].probability > verdict.hypotheses[b].probability;
  });
  std::vector<Rival> rivals;
  for (const std::size_t index : order) {
    const Hypothesis& each = verdict.hypotheses[index];
    if (is_same_answer(verdict, each, verdict.winner())) continue;
    const auto same = std::find_if(rivals.begin(), rivals.end(), [&](const Rival& rival) {
      return is_same_answer(verdict, each, verdict.hypotheses[rival.hypothesis]);
    });
    if (same == rivals.end()) {
      rivals.push_back({index, each.probability});
    } else {
      same->probability += each.probability;
    }
  }
  std::stable_sort(rivals.begin(), rivals.end(),
                   [](const Rival& a, const Rival& b) { return a.probability > b.probability; });
  if (rivals.size() > most) rivals.resize(most);
  return rivals;
}

namespace {

// What is judged: the first lines that end within kMostJudgedUnits after the blank lines above them, or a
// part of the first line.
SampledLines lines_to_judge(std::u16string_view text, std::size_t num_lines, const Given& given) {
  const KnownTop top = known_top(text, given);
  const auto first = static_cast<std::size_t>(
      std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(top.end), text.end(),
                       [](char16_t unit) { return is_blank(std::u16string_view(&unit, 1)); }) -
      text.begin());
  const std::size_t end_of_part = std::min(text.size(), first + kMostJudgedUnits);
  const SampledLines lines =
      sample_lines(text.substr(0, end_of_part), std::min(num_lines, kMostJudgedLines),
                   {given.line_endings, top.num_lines, given.comment_prefix});
  std::vector<TextLine> kept;
  for (std::size_t k = 0; k < lines.size(); ++k) kept.push_back(lines[k]);
  const bool is_cut = end_of_part < text.size() && lines.end() == end_of_part;
  if (is_cut && kept.size() > 1) kept.pop_back();
  const bool has_more = !kept.empty() && kept.back().next < text.size();
  SampledLines judged(text, std::move(kept), has_more);
  apply_given(given, top, judged);
  return judged;
}

// Cuts all lines of the sample as the winner cuts those that were judged.
void extend(Verdict& verdict, SampledLines lines) {
  Hypothesis& winner = verdict.hypotheses[verdict.best];
  Cut& cut = verdict.cuts[winner.cut];
  cut.records = Records(lines.text());  // frees the memory of those that were judged
  cut.records = assessment::cut(lines, cut.reading);
  const auto table_of = [&](std::size_t columns) {
    return find_table(lines, cut.records, cut.reading, columns);
  };
  TableFrame table = table_of(winner.table.columns);
  const std::vector<std::size_t> likely = likely_columns(lines, cut.records, cut.reading);
  if (table.data.empty() && !likely.empty()) table = table_of(likely.front());
  if (table.data.empty()) {
    cut.records = assessment::cut(verdict.lines, cut.reading);
    return;
  }
  winner.table = std::move(table);
  winner.kinds = cut.reading.form != Form::none ? find_top(lines, cut, winner.table) : CellKinds();
  verdict.lines = std::move(lines);
}

}  // namespace

Verdict judge(std::u16string_view text, std::size_t num_lines, double margin) {
  return judge(text, num_lines, Given(), margin);
}

Verdict judge(std::u16string_view text, std::size_t num_lines, const Given& by_caller,
              double margin) {
  const Given given = with_first_line(by_caller, text);
  Verdict verdict{lines_to_judge(text, num_lines, given), {}, {}, 0, 0, {}};
  for (Reading& reading : find_readings(verdict.lines, given)) {
    add_hypotheses(verdict, std::move(reading), given);
  }
  if (verdict.hypotheses.empty()) return verdict;
  prefer_given_columns(verdict, given);
  weigh_contents(verdict, margin);
  make_probabilities(verdict);
  choose_alignment(verdict);
  if (verdict.lines.has_more()) {
    SampledLines all = sample_lines(text, num_lines, given);
    if (all.end() > verdict.lines.end()) extend(verdict, std::move(all));
  }
  Hypothesis& winner = verdict.hypotheses[verdict.best];
  const Cut& cut = verdict.cut_of(winner);
  if (winner.kinds.empty()) winner.kinds = kinds_of(cut, winner.table);
  if (given.names_line) winner.table.names_rows = 1;
  verdict.names = find_names(verdict.lines, cut, winner.table, winner.kinds, given);
  return verdict;
}

}  // namespace textio::assessment
