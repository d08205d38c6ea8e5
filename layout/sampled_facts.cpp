// The cells of the lines of data are collected column by column, as views of the text without their quotes. What
// is asked of them is then what is asked of the columns of a judged table.
#include <vltextstream/layout/sampled_facts.hpp>

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/layout/table_columns.hpp>
#include <vltextstream/layout/tally.hpp>
#include <vltextstream/layout/text_lines.hpp>
#include <vltextstream/layout/unique_names.hpp>
#include <vltextstream/strategy/field_text.hpp>

namespace textio::standalone {
namespace {

using View = std::u16string_view;

constexpr char16_t kQuote = u'"';

struct CellText {
  View text;
  bool is_quoted = false;
};

// Without blanks and quotes around it; doubled quotes stay.
CellText cell_text(const Field& field) {
  const View text = assessment::trimmed(view_of(field));
  if (text.empty() || text.front() != kQuote) return {text, false};
  View inside = text.substr(1);
  if (!inside.empty() && inside.back() == kQuote) inside.remove_suffix(1);
  return {assessment::trimmed(inside), true};
}

class SampledFacts {
 public:
  SampledFacts(const Strategy& strategy, const SampledTable& table, const VariableNames& names,
               const DetectSettings& settings, Layout& layout)
      : strategy_(strategy), table_(table), names_(names), settings_(settings), layout_(layout) {}

  void describe() {
    TableDialect& dialect = layout_.dialect;
    dialect.delimiters = layout_.delimiters;
    dialect.widths = layout_.widths;
    count_line_endings();
    describe_comments();
    describe_columns();
    describe_blanks();
  }

 private:
  // Without those within quotes: of a line that spans several of the text, only the last counts.
  void count_line_endings() {
    const Field& text = strategy_.sample().text;
    TextLines lines(text, settings_.options);
    Tally endings;
    for (const SampledTable::Run& run : table_.runs()) {
      const bool is_one_each = run.last_line - run.first_line + 1 == run.count;
      while (lines.number() < run.last_line) {
        if (is_one_each && lines.number() >= run.first_line) add_ending(lines.line(), endings);
        const std::size_t number = lines.number();
        lines.go_to(lines.line().next);
        if (lines.number() == number) return;  // a U+FFFF
      }
      if (lines.number() == run.last_line) add_ending(lines.line(), endings);
    }
    for (auto& [ending, count] : endings.take()) {
      layout_.dialect.line_endings.push_back({std::move(ending), count});
    }
  }

  void add_ending(const FieldExtent& line, Tally& endings) const {
    const char16_t* const end = line.field.data + line.field.length;
    const char16_t* const next = strategy_.sample().text.data + line.next;
    if (next > end) endings.add({end, static_cast<std::size_t>(next - end)});
  }

  void describe_comments() {
    const auto& runs = table_.runs();
    const bool has_comments = std::any_of(
        runs.begin(), runs.end(),
        [](const SampledTable::Run& run) { return run.kind == SampledTable::Kind::comment; });
    const auto& style = settings_.options.comment_style;
    if (has_comments && !style.empty()) layout_.dialect.comment_prefix = style.front();
  }

  // --- columns ---------------------------------------------------------------------------------

  void describe_columns() {
    find_rows();
    char16_t delimiter = 0;
    const bool has_one = layout_.mode == LayoutMode::delimited && layout_.delimiters.size() == 1;
    if (has_one && layout_.delimiters[0].size() == 1) delimiter = layout_.delimiters[0][0];
    std::vector<columns::TableColumn> columns(
        std::min(layout_.num_variables, kMostColumnsDescribed),
        {{}, hints_for(delimiter, settings_)});
    for (std::size_t c = 0; c < std::min(columns.size(), layout_.names.size()); ++c) {
      columns[c].hints.name = layout_.names[c];
    }
    for (const std::size_t row : rows_) add_row(row, columns);
    TableColumns found = standalone::describe_columns(
        columns, [this](std::size_t, std::size_t cell) { return table_.line_number(rows_[cell]); });
    TableDialect& dialect = layout_.dialect;
    dialect.decimal = found.decimal;
    dialect.grouping = found.grouping;
    dialect.missing = found.missing();
    layout_.columns = std::move(found.facts);
    layout_.names_unique = unique_names(layout_.names, layout_.columns.size());
  }

  // Lines with as many fields as there are columns; a line that may hold the names is none of them.
  void find_rows() {
    for (const SampledTable::Run& run : table_.runs()) {
      if (run.kind != SampledTable::Kind::text) continue;
      for (std::size_t row = run.first_index; row < run.first_index + run.count; ++row) {
        if (is_data(row) && table_.field_count(row) == layout_.num_variables) rows_.push_back(row);
      }
    }
    if (names_.source == NamesSource::undecided && rows_.size() > 1) rows_.erase(rows_.begin());
  }

  bool is_data(std::size_t row) const {
    return row >= table_.header_lines() && names_.names_line != row && names_.units_line != row;
  }

  // A cell that a short line of fixed width does not have is empty.
  void add_row(std::size_t row, std::vector<columns::TableColumn>& columns) {
    const std::vector<Field> fields = table_.fields(row);
    for (std::size_t c = 0; c < columns.size(); ++c) {
      const CellText cell = c < fields.size() ? cell_text(fields[c]) : CellText{};
      columns[c].cells.push_back(cell.text);
      if (cell.is_quoted) note_quotes(cell.text);
      if (c > 0 && !cell.text.empty()) {
        ++filled_;
        after_blank_ += fields[c].length > 0 && fields[c].data[0] == u' ';
      }
    }
  }

  void note_quotes(View inside) {
    TableDialect& dialect = layout_.dialect;
    dialect.quote = kQuote;
    dialect.escape = Escape::doubled;
    dialect.is_escape_seen = dialect.is_escape_seen || inside.find(kQuote) != View::npos;
  }

  // After nine of ten delimiters before a cell with text, as in a judged table.
  void describe_blanks() {
    if (layout_.mode != LayoutMode::delimited || layout_.delimiters.empty()) return;
    const std::u16string& delimiter = layout_.delimiters.front();
    if (delimiter.empty() || assessment::is_blank(delimiter.back())) return;
    layout_.dialect.blanks_after_delimiters = filled_ > 0 && 10 * after_blank_ >= 9 * filled_;
  }

  const Strategy& strategy_;
  const SampledTable& table_;
  const VariableNames& names_;
  const DetectSettings& settings_;
  Layout& layout_;
  std::vector<std::size_t> rows_;  // sampled lines
  std::size_t filled_ = 0;         // cells after the first of their lines
  std::size_t after_blank_ = 0;
};

}  // namespace

void describe_facts(const Strategy& strategy, const SampledTable& table, const VariableNames& names,
                    const DetectSettings& settings, Layout& layout) {
  SampledFacts(strategy, table, names, settings, layout).describe();
}

}  // namespace textio::standalone
