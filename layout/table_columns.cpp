#include <vltextstream/layout/table_columns.hpp>

#include <algorithm>
#include <deque>
#include <string_view>
#include <unordered_map>
#include <utility>

#include <vltextstream/layout/given_settings.hpp>

namespace textio::standalone {
namespace {

using assessment::Reading;
using assessment::Records;

std::optional<char16_t> mark_or_none(char16_t mark) {
  return mark != 0 ? std::optional<char16_t>(mark) : std::nullopt;
}

char16_t delimiter_of(const Reading& reading) {
  const bool has_one = reading.form == assessment::Form::delimited && reading.delimiter.size() == 1;
  return has_one ? reading.delimiter[0] : u'\0';
}

// A line break at an end of a cell counts for its kind, but is cut off here.
bool has_break_at_end(std::u16string_view cell) {
  const auto is_break = [](char16_t unit) { return unit >= u'\n' && unit <= u'\r'; };
  return !cell.empty() && (is_break(cell.front()) || is_break(cell.back()));
}

DateFacts facts_of(const columns::DateFormat& date) {
  return {date.strptime, date.icu, date.language, date.zone, date.order};
}

ColumnFacts facts_of(columns::ColumnDescription&& column) {
  ColumnFacts facts;
  facts.kind = column.kind;
  facts.num_cells = column.num_cells;
  facts.num_empty = column.num_empty;
  facts.num_missing = column.num_missing;
  facts.num_fitting = column.num_fitting;
  for (columns::MissingWord& each : column.missing) {
    facts.missing.push_back({std::move(each.word), each.count});
  }
  facts.least_width = column.least_width;
  facts.most_width = column.most_width;
  facts.decimal = mark_or_none(column.number.decimal);
  facts.grouping = mark_or_none(column.number.grouping);
  facts.are_marks_certain = column.number.is_certain;
  facts.currency = column.money.currency;
  facts.is_currency_before = column.money.place == columns::CurrencyPlace::before;
  facts.true_word = column.boolean.yes;
  facts.false_word = column.boolean.no;
  facts.date = facts_of(column.date);
  facts.examples = std::move(column.examples);
  return facts;
}

// The mark of the table or, if none is certain, that of the first column with another mark than `other`.
std::optional<char16_t> mark_of_table(char16_t mark, char16_t other,
                                      const std::vector<columns::ColumnDescription>& columns,
                                      char16_t columns::NumberFormat::*member) {
  if (mark != 0) return mark;
  for (const columns::ColumnDescription& each : columns) {
    const char16_t own = each.number.*member;
    if (own != 0 && own != other) return own;
  }
  return std::nullopt;
}

// The columns with the usual letters in the exponents of their numbers, which is how numbers are recognised.
class UsualExponents {
 public:
  explicit UsualExponents(std::span<const columns::TableColumn> columns)
      : columns_(columns.begin(), columns.end()) {
    DetectSettings settings;
    const std::u16string usual = settings.options.exp_chars;
    for (columns::TableColumn& column : columns_) {
      settings.options.exp_chars = column.hints.exponents;
      for (std::u16string_view& cell : column.cells) {
        std::u16string text = with_usual_exponent(cell, settings);
        if (text == cell) continue;
        const std::u16string_view rewritten = texts_.emplace_back(std::move(text));
        originals_.emplace(rewritten, cell);
        cell = rewritten;
      }
      column.hints.exponents = usual;
      column.hints.kinds = {};
    }
  }

  std::span<const columns::TableColumn> columns() const { return columns_; }

  // Turns examples into what the cells are.
  void restore(std::vector<std::u16string>& examples) const {
    for (std::u16string& example : examples) {
      const auto original = originals_.find(example);
      if (original != originals_.end()) example = original->second;
    }
  }

 private:
  std::vector<columns::TableColumn> columns_;
  std::deque<std::u16string> texts_;
  std::unordered_map<std::u16string_view, std::u16string_view> originals_;
};

std::vector<columns::ColumnDescription> described_columns(
    std::span<const columns::TableColumn> columns) {
  const bool is_usual =
      columns.empty() || columns.front().hints.exponents == parser::default_exp_chars;
  if (is_usual) return columns::describe_columns(columns);
  const UsualExponents usual(columns);
  std::vector<columns::ColumnDescription> described = columns::describe_columns(usual.columns());
  for (columns::ColumnDescription& each : described) usual.restore(each.examples);
  return described;
}

}  // namespace

std::vector<MissingWord> TableColumns::missing() const {
  std::vector<MissingWord> all;
  std::unordered_map<std::u16string_view, std::size_t> places;
  for (const ColumnFacts& column : facts) {
    for (const MissingWord& each : column.missing) {
      const auto [place, is_new] = places.emplace(each.word, all.size());
      if (is_new) {
        all.push_back(each);
      } else {
        all[place->second].count += each.count;
      }
    }
  }
  std::stable_sort(all.begin(), all.end(),
                   [](const MissingWord& a, const MissingWord& b) { return a.count > b.count; });
  return all;
}

columns::ColumnHints hints_for(char16_t delimiter, const DetectSettings& settings) {
  columns::ColumnHints hints;
  hints.marks.delimiter = delimiter;
  hints.marks.are_given = settings.decimal || settings.grouping;
  hints.marks.decimal = settings.decimal.value_or(0);
  hints.marks.grouping = settings.grouping.value_or(0);
  hints.missing = settings.missing;
  hints.exponents = settings.options.exp_chars;
  return hints;
}

TableColumns describe_columns(
    std::span<const columns::TableColumn> columns,
    const std::function<std::size_t(std::size_t column, std::size_t cell)>& line_of) {
  std::vector<columns::ColumnDescription> described = described_columns(columns);
  const columns::TableFormats formats = columns::find_formats(described);
  TableColumns found;
  found.decimal =
      mark_of_table(formats.decimal, formats.grouping, described, &columns::NumberFormat::decimal);
  found.grouping = mark_of_table(formats.grouping, found.decimal.value_or(0), described,
                                 &columns::NumberFormat::grouping);
  found.facts.reserve(described.size());
  for (std::size_t c = 0; c < described.size(); ++c) {
    const std::optional<std::size_t> misfit = described[c].first_misfit;
    found.facts.push_back(facts_of(std::move(described[c])));
    if (misfit) found.facts.back().first_misfit_line = line_of(c, *misfit);
  }
  return found;
}

TableColumns describe_columns(const assessment::Verdict& verdict,
                              const std::vector<std::size_t>& rows,
                              const std::vector<std::u16string>& names,
                              const DetectSettings& settings) {
  const assessment::Cut& cut = verdict.cut_of(verdict.winner());
  const Records& records = cut.records;
  const columns::ColumnHints hints = hints_for(delimiter_of(cut.reading), settings);
  std::vector<columns::TableColumn> columns(
      std::min(verdict.winner().table.columns, kMostColumnsDescribed), {{}, hints});
  const assessment::Hypothesis& winner = verdict.winner();
  const std::vector<std::size_t>& data = winner.table.data;
  const auto first = static_cast<std::size_t>(
      rows.empty() ? 0 : std::lower_bound(data.begin(), data.end(), rows.front()) - data.begin());
  const std::size_t known =
      std::min(rows.size(), winner.kinds.size() - std::min(first, winner.kinds.size()));
  std::vector<assessment::CellKind> kinds(columns.size() * known);
  for (std::size_t c = 0; c < columns.size(); ++c) {
    columns::TableColumn& column = columns[c];
    if (c < names.size()) column.hints.name = names[c];
    column.cells.reserve(rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const std::u16string_view cell = records.view(records.cells(rows[i])[c]);
      column.cells.push_back(assessment::trimmed(cell));
      if (i >= known) continue;
      kinds[c * known + i] = has_break_at_end(cell) ? assessment::kind_of(column.cells[i])
                                                    : winner.kinds.at(first + i, c);
    }
    column.hints.kinds = std::span(kinds).subspan(c * known, known);
  }
  return describe_columns(
      columns, [&](std::size_t, std::size_t cell) { return records[rows[cell]].line + 1; });
}

}  // namespace textio::standalone
