#include <vltextstream/layout/judged_layout.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/sentences.hpp>
#include <vltextstream/assessment/unit_symbols.hpp>
#include <vltextstream/scoring/datatype_recognizers.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio::standalone {
namespace {

using assessment::Cell;
using assessment::Form;
using assessment::Hypothesis;
using assessment::Reading;
using assessment::Records;
using assessment::Verdict;

constexpr std::size_t kMostRivals = 3;
constexpr double kLeastProbability = 0.005;  // of a rival that is worth mentioning
constexpr double kLeastWorth = 0.5;          // of evidence that is
constexpr std::size_t kCellsClassified = 9;  // in each column
constexpr double kUndecided = 0.1;           // on both sides of one half
constexpr std::size_t kLongestRemark = 32;

LayoutMode mode_of(const Reading& reading) {
  switch (reading.form) {
    case Form::delimited:
    case Form::framed:
      return LayoutMode::delimited;
    case Form::runs:
      return LayoutMode::space_aligned;
    case Form::gaps:
      return LayoutMode::fixed_width;
    case Form::one:
    case Form::none:
      break;
  }
  return LayoutMode::line_reader;
}

std::vector<std::u16string> delimiters_of(const Reading& reading) {
  switch (mode_of(reading)) {
    case LayoutMode::delimited:
      return {reading.delimiter};
    case LayoutMode::space_aligned:
      return {u" ", u"\t"};
    default:
      return {};
  }
}

std::optional<char16_t> unit_or_none(char16_t unit) {
  return unit != 0 ? std::optional<char16_t>(unit) : std::nullopt;
}

// Whether most cells of a column begin where it begins.
bool is_left_aligned(const Verdict& verdict, const Hypothesis& hypothesis, std::size_t column) {
  const Records& records = verdict.cut_of(hypothesis).records;
  std::size_t filled = 0;
  std::size_t left = 0;
  for (const std::size_t row : hypothesis.table.data) {
    const Cell& cell = records.cells(row)[column];
    if (cell.begin == cell.end) continue;
    ++filled;
    left += cell.begin - verdict.lines[records[row].line].begin == records.column_starts[column];
  }
  return 5 * left >= 4 * filled;
}

// The blanks between two columns belong to the one before if the cells of the next begin where it begins, and
// otherwise to the next: longer values need them. The last column ends with the longest line.
std::vector<std::size_t> widths_of(const Verdict& verdict, const Hypothesis& hypothesis) {
  const Records& records = verdict.cut_of(hypothesis).records;
  const std::size_t size = records.column_starts.size();
  std::vector<std::size_t> widths;
  std::size_t longest = 0;
  for (std::size_t k = 0; k < verdict.lines.size(); ++k) {
    longest = std::max(longest, verdict.lines.view(k).size());
  }
  std::size_t begin = 0;
  for (std::size_t c = 0; c < size; ++c) {
    const bool is_last = c + 1 == size;
    std::size_t end = std::max(longest, begin + 1);
    if (!is_last) {
      end = is_left_aligned(verdict, hypothesis, c + 1) ? records.column_starts[c + 1]
                                                        : records.column_ends[c];
    }
    widths.push_back(end - begin);
    begin = end;
  }
  return widths;
}

class VerdictDescription {
 public:
  VerdictDescription(const Verdict& verdict, const DetectSettings& settings, Layout& layout)
      : verdict_(verdict),
        winner_(verdict.winner()),
        cut_(verdict.cut_of(winner_)),
        records_(cut_.records),
        table_(winner_.table),
        settings_(settings),
        layout_(layout) {}

  void describe() {
    describe_separators();
    describe_names();
    find_units();
    describe_columns();
    describe_lines();
    describe_evidence();
    describe_rivals();
    layout_.characters_sampled = verdict_.lines.end();
    compare_with_cascade();
  }

 private:
  const Reading& reading() const { return cut_.reading; }
  bool is_none() const { return reading().form == Form::none; }

  void describe_separators() {
    layout_.mode = mode_of(reading());
    layout_.delimiters = delimiters_of(reading());
    layout_.widths = widths_of(verdict_, winner_);
    layout_.quote = unit_or_none(reading().quote);
    layout_.escape = unit_or_none(reading().escape);
    layout_.num_variables = table_.columns;
    if (reading().form == Form::runs) layout_.least_blanks = reading().least_blanks;
    layout_.joins_times = records_.joins_times;
    layout_.confidence = verdict_.confidence;
    if (is_none()) layout_.no_table = assessment::kind_of_text(winner_.amounts);
  }

  // -------------------------------------------------------------------------------------------
  // Names and units

  void describe_names() {
    if (is_none()) {
      layout_.names_reason = "the text is not a table";
      return;
    }
    const assessment::NamesVerdict& names = verdict_.names;
    layout_.names_probability = names.probability;
    const std::size_t line = names.line + 1;
    if (names.probability > 0.5 + kUndecided) {
      has_names_ = true;
      layout_.names_line = line;
      layout_.names = names_texts();
      layout_.names_source = NamesSource::line_after_header;
      layout_.names_reason = assessment::names_reason(names, true);
      return;
    }
    layout_.names_candidate = line;
    const bool is_undecided = names.probability > 0.5 - kUndecided;
    layout_.names_source = is_undecided ? NamesSource::undecided : NamesSource::none;
    layout_.names_reason = is_undecided ? fmt::format("line {} may hold names or values", line)
                                        : assessment::names_reason(names, false);
  }

  // How many of the data records hold names.
  std::size_t names_rows() const {
    return has_names_ && !verdict_.names.is_above_table ? table_.names_rows : 0;
  }

  std::vector<std::u16string> names_texts() const {
    std::vector<std::u16string> texts;
    for (const std::u16string_view name : verdict_.names.texts) texts.push_back(plain(name));
    if (verdict_.names.is_above_table || table_.names_rows < 2) return texts;
    // The name of a group of columns is above its first column.
    std::u16string group;
    const auto groups = records_.cells(table_.data[0]);
    for (std::size_t c = 0; c < texts.size(); ++c) {
      const std::u16string above = text_of(groups[c]);
      if (!above.empty()) group = above;
      if (!group.empty() && !texts[c].empty()) texts[c] = group + u'.' + texts[c];
      if (texts[c].empty()) texts[c] = above;
    }
    return texts;
  }

  std::u16string text_of(const Cell& cell) const {
    return plain(assessment::trimmed(records_.view(cell)));
  }

  // Without doubled quotes and escapes.
  std::u16string plain(std::u16string_view text) const {
    std::u16string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const bool is_pair =
          i + 1 < text.size() && reading().quote != 0 && text[i + 1] == reading().quote;
      if (is_pair &&
          (text[i] == reading().quote || (reading().escape != 0 && text[i] == reading().escape)))
        ++i;
      out.push_back(text[i]);
    }
    return out;
  }

  // The record below the names, if each of its cells is a unit, a remark over texts, or says that there is none.
  void find_units() {
    if (!has_names_) return;
    const std::size_t row = names_rows();
    if (row + 1 >= table_.data.size()) return;
    const auto cells = records_.cells(table_.data[row]);
    bool has_unit = false;
    for (std::size_t c = 0; c < cells.size(); ++c) {
      const std::u16string_view text = assessment::trimmed(records_.view(cells[c]));
      const bool is_unit = assessment::is_unit(text) || assessment::is_time_pattern(text);
      const bool above_values = assessment::is_value(kind_below(row, c));
      const bool fits = above_values ? is_unit || assessment::is_no_unit(text)
                                     : text.size() <= kLongestRemark &&
                                           !assessment::is_value(assessment::kind_of(text));
      if (!fits) return;
      has_unit = has_unit || (above_values && is_unit);
    }
    if (!has_unit) return;
    has_units_ = true;
    layout_.units_line = line_of(table_.data[row]) + 1;
    for (const Cell& cell : cells) layout_.units.push_back(text_of(cell));
  }

  assessment::CellKind kind_below(std::size_t row, std::size_t column) const {
    for (std::size_t i = row + 1; i < std::min(table_.data.size(), row + 1 + kCellsClassified);
         ++i) {
      const assessment::CellKind kind = kind_at(i, column);
      if (kind != assessment::CellKind::empty && kind != assessment::CellKind::missing) return kind;
    }
    return assessment::CellKind::empty;
  }

  std::size_t line_of(std::size_t record) const { return records_[record].line; }

  // -------------------------------------------------------------------------------------------
  // Columns

  std::size_t first_data() const { return names_rows() + (has_units_ ? 1 : 0); }

  void describe_columns() {
    layout_.classes.clear();
    for (std::size_t c = 0; c < table_.columns; ++c) layout_.classes.push_back(class_of_column(c));
  }

  // The most frequent class among some filled cells from all over the data; of equally frequent ones the
  // more general, which comes first.
  DatatypeCode class_of_column(std::size_t column) const {
    constexpr std::array kOrder = {DatatypeCode::text, DatatypeCode::number, DatatypeCode::date,
                                   DatatypeCode::datetime, DatatypeCode::duration};
    std::array<std::size_t, kOrder.size()> counts = {};
    const std::size_t begin = first_data();
    const std::size_t size = table_.data.size() - std::min(begin, table_.data.size());
    std::size_t found = 0;
    const std::size_t step = std::max<std::size_t>(size / kCellsClassified, 1);
    for (std::size_t i = begin; i < begin + size && found < kCellsClassified; i += step) {
      const DatatypeCode code = class_of(i, column);
      const auto* const place = std::find(kOrder.begin(), kOrder.end(), code);
      if (place == kOrder.end()) continue;
      ++counts[static_cast<std::size_t>(place - kOrder.begin())];
      ++found;
    }
    const auto* const most = std::max_element(counts.begin(), counts.end());
    return found > 0 ? kOrder[static_cast<std::size_t>(most - counts.begin())]
                     : DatatypeCode::empty;
  }

  assessment::CellKind kind_at(std::size_t row, std::size_t column) const {
    if (row < winner_.kinds.size()) return winner_.kinds.at(row, column);
    return assessment::kind_of(records_.view(records_.cells(table_.data[row])[column]));
  }

  DatatypeCode class_of(std::size_t row, std::size_t column) const {
    const Cell& cell = records_.cells(table_.data[row])[column];
    if (kind_at(row, column) == assessment::CellKind::missing) return DatatypeCode::empty;
    const Field field(records_.text().data() + cell.begin, cell.end - cell.begin);
    return classify_field(field, settings_.options.whitespace);
  }

  // -------------------------------------------------------------------------------------------
  // Lines

  void describe_lines() {
    layout_.lines.clear();
    layout_.header_lines = 0;
    layout_.lines_sampled = 0;
    layout_.ragged_lines = 0;
    layout_.first_ragged_line = std::nullopt;
    std::size_t line = 0;
    for (std::size_t i = 0; i < records_.size(); ++i) {
      add_lines_between(line, line_of(i));
      line = line_of(i) + records_[i].num_lines;
      add_record(i);
    }
    add_lines_between(line, verdict_.lines.size());
  }

  // Lines that are no records: blank ones, rules, and a record that the end of the sample cuts.
  void add_lines_between(std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) {
      add_run(assessment::is_blank(verdict_.lines.view(k)) ? LineRole::blank : LineRole::comment, k,
              1);
    }
  }

  void add_record(std::size_t record) {
    const LineRole role = role_of(record);
    const std::size_t line = line_of(record);
    add_run(role, line, records_[record].num_lines);
    if (role != LineRole::data || records_.cells(record).size() == table_.columns) return;
    ++layout_.ragged_lines;
    if (!layout_.first_ragged_line) layout_.first_ragged_line = line + 1;
  }

  LineRole role_of(std::size_t record) const {
    const std::size_t line = line_of(record);
    if (has_names_ && verdict_.names.line == line) return LineRole::names;
    if (has_names_ && names_rows() == 2 && table_.data[1] == record) return LineRole::names;
    if (layout_.units_line == line + 1) return LineRole::units;
    const bool is_among_data = std::binary_search(table_.data.begin(), table_.data.end(), record);
    if (is_among_data) return LineRole::data;
    if (verdict_.lines.is_comment(line)) return LineRole::comment;
    return record < table_.data.front() && !is_none() ? LineRole::header : LineRole::data;
  }

  void add_run(LineRole role, std::size_t line, std::size_t num_lines) {
    if (role != LineRole::comment) ++layout_.lines_sampled;
    const bool is_before_table = line < std::min(line_of(table_.data.front()), verdict_.names.line);
    if (is_before_table && role != LineRole::comment && role != LineRole::names && !is_none())
      ++layout_.header_lines;
    if (layout_.lines.empty() || layout_.lines.back().role != role) {
      layout_.lines.push_back({role, line + 1, line + 1, 0});
    }
    layout_.lines.back().last_line = line + num_lines;
    ++layout_.lines.back().count;
  }

  // -------------------------------------------------------------------------------------------
  // Evidence and rivals

  void describe_evidence() {
    for (std::size_t k = 0; k < assessment::kNumEvidence; ++k) {
      const auto evidence = static_cast<assessment::Evidence>(k);
      const double worth = assessment::weight_of(evidence) * winner_.amounts[k];
      if (std::abs(worth) < kLeastWorth) continue;
      layout_.evidence.push_back({std::string(to_string(evidence)), worth,
                                  assessment::sentence_of(evidence, verdict_, winner_)});
    }
    std::stable_sort(layout_.evidence.begin(), layout_.evidence.end(),
                     [](const EvidenceItem& a, const EvidenceItem& b) {
                       return std::abs(a.worth) > std::abs(b.worth);
                     });
  }

  void describe_rivals() {
    for (const assessment::Rival& each : assessment::rivals_of(verdict_, kMostRivals)) {
      if (each.probability < kLeastProbability) break;
      const Hypothesis& hypothesis = verdict_.hypotheses[each.hypothesis];
      const assessment::Cut& cut = verdict_.cut_of(hypothesis);
      layout_.rivals.push_back({mode_of(cut.reading), delimiters_of(cut.reading),
                                widths_of(verdict_, hypothesis), unit_or_none(cut.reading.quote),
                                hypothesis.table.columns, each.probability,
                                assessment::deciding_sentence(verdict_, hypothesis)});
    }
  }

  void compare_with_cascade() {
    if (!layout_.cascade) return;
    const CascadeAnswer& other = *layout_.cascade;
    const auto is_aligned = [](LayoutMode mode) {
      return mode == LayoutMode::space_aligned || mode == LayoutMode::fixed_width;
    };
    const bool has_same_mode =
        layout_.mode == other.mode || (is_aligned(layout_.mode) && is_aligned(other.mode));
    const bool has_same_delimiters =
        is_aligned(layout_.mode) || layout_.delimiters == other.delimiters;
    layout_.cascade->agrees =
        has_same_mode && has_same_delimiters && layout_.num_variables == other.num_variables;
  }

  const Verdict& verdict_;
  const Hypothesis& winner_;
  const assessment::Cut& cut_;
  const Records& records_;
  const assessment::TableFrame& table_;
  const DetectSettings& settings_;
  Layout& layout_;
  bool has_names_ = false;
  bool has_units_ = false;
};

}  // namespace

void describe_verdict(const Verdict& verdict, const DetectSettings& settings, Layout& layout) {
  VerdictDescription(verdict, settings, layout).describe();
}

}  // namespace textio::standalone
