#include <vltextstream/layout/judged_layout.hpp>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/sentences.hpp>
#include <vltextstream/assessment/unit_symbols.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/layout/judged_dialect.hpp>
#include <vltextstream/layout/table_columns.hpp>
#include <vltextstream/layout/unique_names.hpp>
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
constexpr double kUndecided = 0.15;          // on both sides of one half
constexpr double kUndecidedAmongTexts = 0.25;
constexpr double kLikelyNames = 0.2;  // then the first record is not taken for data
constexpr std::size_t kLongestRemark = 32;

LayoutMode mode_of(const Reading& reading) {
  switch (reading.form) {
    case Form::delimited:
    case Form::framed:
      return LayoutMode::delimited;
    case Form::runs:
      return LayoutMode::space_aligned;
    case Form::gaps:
    case Form::fields:
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
// otherwise to the next: longer values need them. The last column ends with the longest line of the table, fields
// where they end.
std::vector<std::size_t> widths_of(const Verdict& verdict, const Hypothesis& hypothesis) {
  const auto& [reading, records] = verdict.cut_of(hypothesis);
  if (!reading.widths.empty()) return reading.widths;
  const std::size_t size = records.column_starts.size();
  std::vector<std::size_t> widths;
  std::size_t longest = 0;
  for (const std::size_t row : hypothesis.table.data) {
    longest = std::max(longest, verdict.lines.view(records[row].line).size());
  }
  std::size_t begin = 0;
  for (std::size_t c = 0; c < size; ++c) {
    const bool is_last = c + 1 == size;
    std::size_t end =
        reading.form == Form::fields ? records.column_ends[c] : std::max(longest, begin + 1);
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
  VerdictDescription(const Verdict& verdict, const DetectSettings& settings, bool ends,
                     Layout& layout)
      : verdict_(verdict),
        winner_(verdict.winner()),
        cut_(verdict.cut_of(winner_)),
        records_(cut_.records),
        profile_(profile_of(verdict)),
        ends_(ends),
        first_footer_(ends ? first_footer(verdict.lines, records_, winner_.table, profile_)
                           : records_.size()),
        table_(without_footer(winner_.table, first_footer_)),
        settings_(settings),
        given_(given_of(settings)),
        layout_(layout) {}

  const assessment::TableProfile& profile() const { return profile_; }

  void describe() {
    describe_separators();
    describe_names();
    find_units();
    find_units_in_names();
    describe_given_lines();
    describe_columns();
    describe_lines();
    describe_dialect(verdict_, table_, layout_);
    describe_evidence();
    describe_rivals();
    if (settings_.trace) describe_considered();
    layout_.characters_sampled = verdict_.lines.end();
    compare_with_cascade();
  }

 private:
  const Reading& reading() const { return cut_.reading; }
  bool is_none() const { return reading().form == Form::none; }

  static assessment::TableProfile profile_of(const Verdict& verdict) {
    const Hypothesis& winner = verdict.winner();
    const assessment::Cut& cut = verdict.cut_of(winner);
    const bool has_names =
        verdict.names.probability > kLikelyNames && !verdict.names.is_above_table;
    return assessment::profile_of(cut.records, cut.reading, winner.table, winner.kinds,
                                  has_names ? winner.table.names_rows : 0);
  }

  static assessment::TableFrame without_footer(assessment::TableFrame table,
                                               std::size_t first_footer) {
    while (!table.data.empty() && table.data.back() >= first_footer) table.data.pop_back();
    return table;
  }

  static std::string no_table_of(const Reading& reading, const Hypothesis& hypothesis) {
    return reading.form == Form::none ? assessment::kind_of_text(hypothesis.amounts)
                                      : std::string();
  }

  void describe_separators() {
    layout_.mode = mode_of(reading());
    layout_.delimiters = delimiters_of(reading());
    layout_.widths = widths_of(verdict_, winner_);
    layout_.quote = unit_or_none(reading().quote);
    layout_.escape = unit_or_none(reading().escape);
    layout_.num_variables = table_.columns;
    if (reading().form == Form::runs) layout_.least_blanks = reading().least_blanks;
    layout_.joins_times = records_.joins_times;
    layout_.rest_in_last = reading().most_cells > 0;
    layout_.is_framed = reading().form == Form::framed;
    layout_.confidence = verdict_.confidence;
    layout_.no_table = no_table_of(reading(), winner_);
  }

  // -------------------------------------------------------------------------------------------
  // Names and units

  // Among texts alone, only the look of the first line tells names from data.
  static double least_for_names(const assessment::NamesVerdict& names) {
    using assessment::NamesEvidence;
    const auto holds = [&](NamesEvidence evidence) {
      return names.amounts[static_cast<std::size_t>(evidence)] > 0;
    };
    const bool has_only_texts =
        holds(NamesEvidence::only_texts) || holds(NamesEvidence::column_of_texts);
    return 0.5 + (has_only_texts ? kUndecidedAmongTexts : kUndecided);
  }

  void describe_names() {
    if (is_none()) {
      layout_.names_reason = "the text is not a table";
      return;
    }
    const assessment::NamesVerdict& names = verdict_.names;
    layout_.names_probability = names.probability;
    const std::size_t line = names.line + 1;
    if (names.probability > least_for_names(names)) {
      has_names_ = true;
      layout_.names_line = line;
      layout_.names = names_texts();
      const bool is_header_line = line <= given_.header_lines.value_or(0);
      layout_.names_source =
          is_header_line ? NamesSource::last_header_line : NamesSource::line_after_header;
      layout_.names_reason = names.is_given ? fmt::format("line {} was given", line)
                                            : assessment::names_reason(names, true);
      return;
    }
    if (names.is_given) {
      layout_.names_reason = "it was given that no line holds them";
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
    for (std::size_t row = table_.names_rows - 1; row-- > 0;) add_groups(row, texts);
    return texts;
  }

  // The name of a group of columns is above its first column. It ends where a row above has another name.
  void add_groups(std::size_t row, std::vector<std::u16string>& texts) const {
    std::u16string group;
    const auto groups = records_.cells(table_.data[row]);
    for (std::size_t c = 0; c < texts.size(); ++c) {
      const std::u16string above = text_of(groups[c]);
      if (!above.empty() || has_name_above(row, c)) group = above;
      if (!group.empty() && !texts[c].empty())
        texts[c] = group + settings_.name_separator + texts[c];
      if (texts[c].empty()) texts[c] = above;
    }
  }

  bool has_name_above(std::size_t row, std::size_t column) const {
    for (std::size_t i = 0; i < row; ++i) {
      if (!text_of(records_.cells(table_.data[i])[column]).empty()) return true;
    }
    return false;
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

  // The record below the names, if no cell of it is a value, and of those over values at least a third are units
  // or say that there is none, and one is a unit. The others may be units that nobody has heard of.
  void find_units() {
    if (!has_names_ || given_.units_line || find_units_in_header()) return;
    const std::size_t row = names_rows();
    if (row + 1 >= table_.data.size()) return;
    const auto cells = records_.cells(table_.data[row]);
    std::size_t over_values = 0;
    std::size_t known = 0;
    bool has_unit = false;
    for (std::size_t c = 0; c < cells.size(); ++c) {
      const std::u16string_view text = assessment::trimmed(records_.view(cells[c]));
      const bool is_unit = assessment::is_unit(text) || assessment::is_time_pattern(text);
      const bool may_be_unit =
          text.size() <= kLongestRemark && !assessment::is_value(kind_at(row, c));
      if (!is_unit && !may_be_unit) return;
      if (!assessment::is_value(kind_below(row, c))) continue;
      ++over_values;
      known += is_unit || assessment::is_no_unit(text);
      has_unit = has_unit || is_unit;
    }
    if (!has_unit || 3 * known < over_values) return;
    has_units_ = true;
    layout_.units_line = line_of(table_.data[row]) + 1;
    for (const Cell& cell : cells) layout_.units.push_back(text_of(cell));
  }

  // Units that are part of the names.
  void find_units_in_names() {
    if (layout_.units_line || given_.units_line.value_or(0) > 0) return;
    std::vector<std::u16string> units;
    bool has_unit = false;
    for (const std::u16string& name : layout_.names) {
      units.emplace_back(assessment::unit_in_name(name));
      has_unit = has_unit || !units.back().empty();
    }
    if (has_unit) layout_.units = std::move(units);
  }

  // The line above or below the names, where these are in a header line.
  bool find_units_in_header() {
    const std::size_t names = verdict_.names.line;
    if (!verdict_.lines.is_hidden(names)) return false;
    for (const std::size_t line : {names - 1, names + 1}) {
      const bool is_hidden = line < verdict_.lines.size() && verdict_.lines.is_hidden(line);
      if (!is_hidden || !assessment::holds_units(verdict_.lines, line, cut_, table_.columns))
        continue;
      layout_.units_line = line + 1;
      layout_.units = texts_in(line + 1);
      return true;
    }
    return false;
  }

  void describe_given_lines() {
    const std::size_t units = given_.units_line.value_or(0);
    const std::size_t descriptions = given_.descriptions_line;
    if (units > 0) {
      layout_.units_line = units;
      layout_.units = texts_in(units);
    }
    if (descriptions > 0) {
      layout_.descriptions_line = descriptions;
      layout_.descriptions = texts_in(descriptions);
    }
  }

  // The cells of a line that is counted from 1.
  std::vector<std::u16string> texts_in(std::size_t line) const {
    std::vector<std::u16string> texts;
    for (const std::u16string_view cell :
         assessment::cells_of_line(verdict_.lines, line - 1, cut_, table_.columns)) {
      texts.push_back(plain(cell));
    }
    return texts;
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
    if (is_none()) {
      layout_.classes.push_back(class_of_column(0));
      return;
    }
    const std::size_t first = std::min(first_data(), table_.data.size());
    data_.assign(table_.data.begin() + static_cast<std::ptrdiff_t>(first), table_.data.end());
    TableColumns columns = standalone::describe_columns(verdict_, data_, layout_.names, settings_);
    for (std::size_t c = 0; c < table_.columns; ++c) {
      const bool has_kind = c < columns.facts.size();
      layout_.classes.push_back(has_kind ? class_of_kind(columns.facts[c].kind, c)
                                         : class_of_column(c));
    }
    layout_.dialect.decimal = columns.decimal;
    layout_.dialect.grouping = columns.grouping;
    layout_.dialect.missing = columns.missing();
    layout_.columns = std::move(columns.facts);
    layout_.names_unique = unique_names(layout_.names, layout_.columns.size());
  }

  // Numbers are what their marks make them. Of all else the class is that of most cells, which the host says
  // of dates.
  DatatypeCode class_of_kind(ColumnKind kind, std::size_t column) const {
    switch (kind) {
      case ColumnKind::integer:
      case ColumnKind::decimal:
      case ColumnKind::scientific:
        return DatatypeCode::number;
      case ColumnKind::empty:
        return DatatypeCode::empty;
      default:
        return class_of_column(column);
    }
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
    const std::u16string_view text = records_.view(records_.cells(table_.data[row])[column]);
    if (is_missing(assessment::trimmed(text), settings_)) return assessment::CellKind::missing;
    if (row < winner_.kinds.size()) return winner_.kinds.at(row, column);
    return assessment::kind_of(text);
  }

  DatatypeCode class_of(std::size_t row, std::size_t column) const {
    const Cell& cell = records_.cells(table_.data[row])[column];
    if (kind_at(row, column) == assessment::CellKind::missing) return DatatypeCode::empty;
    const std::u16string& whitespace = settings_.options.whitespace;
    if (!has_other_exponents(settings_)) {
      const Field field(records_.text().data() + cell.begin, cell.end - cell.begin);
      return classify_field(field, whitespace);
    }
    const std::u16string text = with_usual_exponent(records_.view(cell), settings_);
    return classify_field(Field(text.data(), text.size()), whitespace);
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
    if (given_.header_lines) layout_.header_lines = *given_.header_lines;
  }

  // Lines that are no records: blank ones, rules, and a record that the end of the sample cuts.
  void add_lines_between(std::size_t begin, std::size_t end) {
    for (std::size_t k = begin; k < end; ++k) {
      const bool is_rule = !assessment::is_blank(verdict_.lines.view(k));
      add_run(is_rule ? LineRole::comment : role_of_hidden(k), k, 1);
    }
  }

  // Of a line that is blank, or that is known not to be a record.
  LineRole role_of_hidden(std::size_t line) const {
    if (assessment::is_blank(verdict_.lines.whole(line))) return LineRole::blank;
    if (has_names_ && verdict_.names.line == line) return LineRole::names;
    if (layout_.units_line == line + 1) return LineRole::units;
    return verdict_.lines.is_comment(line) ? LineRole::comment : LineRole::header;
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
    const auto names_end = table_.data.begin() + static_cast<std::ptrdiff_t>(names_rows());
    if (std::find(table_.data.begin(), names_end, record) != names_end) return LineRole::names;
    if (layout_.units_line == line + 1) return LineRole::units;
    const bool is_among_data = std::binary_search(table_.data.begin(), table_.data.end(), record);
    if (is_among_data) return LineRole::data;
    if (verdict_.lines.is_comment(line)) return LineRole::comment;
    if (ends_ && record > table_.data.back() && is_rule(line)) return LineRole::comment;
    if (record >= first_footer_) return LineRole::footer;
    const bool is_above = record < table_.data.front() && !verdict_.lines.has_known_top();
    return is_above && !is_none() ? LineRole::header : LineRole::data;
  }

  // A rule below the table belongs neither to the data nor to the footer.
  bool is_rule(std::size_t line) const {
    return !is_none() && assessment::is_rule(verdict_.lines, line);
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
                                assessment::deciding_sentence(verdict_, hypothesis),
                                no_table_of(cut.reading, hypothesis)});
    }
  }

  // A reading was weighed with each number of columns that is likely for it.
  void describe_considered() {
    std::vector<ConsideredReading> found(verdict_.cuts.size());
    std::vector<bool> was_weighed(found.size(), false);
    for (const Hypothesis& each : verdict_.hypotheses) {
      found[each.cut].probability += each.probability;
      was_weighed[each.cut] = true;
    }
    for (std::size_t i = 0; i < found.size(); ++i) {
      if (!was_weighed[i]) continue;
      const Reading& reading = verdict_.cuts[i].reading;
      found[i].mode = mode_of(reading);
      found[i].delimiter = reading.delimiter;
      found[i].is_table = reading.form != Form::none;
      layout_.considered.push_back(std::move(found[i]));
    }
    std::stable_sort(layout_.considered.begin(), layout_.considered.end(),
                     [](const ConsideredReading& a, const ConsideredReading& b) {
                       return a.probability > b.probability;
                     });
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
  const assessment::TableProfile profile_;
  const bool ends_;
  const std::size_t first_footer_;      // a record; their number if there is no footer
  const assessment::TableFrame table_;  // without the footer
  const DetectSettings& settings_;
  const assessment::Given given_;
  Layout& layout_;
  bool has_names_ = false;
  bool has_units_ = false;
  std::vector<std::size_t> data_;  // the records of the data
};

}  // namespace

assessment::TableProfile describe_verdict(const Verdict& verdict, const DetectSettings& settings,
                                          bool ends, Layout& layout) {
  VerdictDescription description(verdict, settings, ends, layout);
  description.describe();
  return description.profile();
}

}  // namespace textio::standalone
