#include <vltextstream/reading/batch_maker.hpp>

#include <algorithm>
#include <deque>
#include <utility>

#include <fmt/format.h>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>
#include <vltextstream/assessment/unit_scan.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::reading {
namespace {

using assessment::Cell;
using parser::consecutive_delimiters_action;
using parser::empty_line_action;
using parser::extra_columns_action;
using parser::leading_delimiters_action;
using parser::partial_field_action;
using parser::row_rule;
using standalone::LayoutMode;

// So many rows are turned into columns at once that their text and cells stay in the nearest cache. The cells of a
// column are so far from those of the next that these do not compete for the same places in it, as powers of two do.
constexpr std::size_t kChunkRows = 64;
constexpr std::size_t kColumnStep = kChunkRows + 4;

constexpr std::size_t kLongestText = 100;  // of an odd place
constexpr double kExcelEpoch = 25'569.0;   // days from 1899-12-30 to 1970-01-01
constexpr double kMicrosecondsOfDay = 86'400e6;

std::string shortened(std::u16string_view text) {
  std::size_t length = std::min(text.size(), kLongestText);
  if (length < text.size() && (text[length] & 0xFC00) == 0xDC00) --length;
  return to_utf8_lossy(text.substr(0, length));
}

// Dates as spreadsheets count them: days since 1899-12-30.
void turn_into_excel_dates(Column& column) {
  if (column.type == ColumnType::date) {
    for (const std::int32_t day : column.days) column.reals.push_back(day + kExcelEpoch);
    column.days.clear();
  } else if (column.type == ColumnType::date_time || column.type == ColumnType::time) {
    const double epoch = column.type == ColumnType::date_time ? kExcelEpoch : 0.0;
    for (const std::int64_t moment : column.integers) {
      column.reals.push_back(static_cast<double>(moment) / kMicrosecondsOfDay + epoch);
    }
    column.integers.clear();
  } else {
    return;
  }
  for (std::size_t row = 0; row < column.size; ++row) {
    if (column.is_missing(row)) column.reals[row] = 0;
  }
  column.type = ColumnType::real;
}

// ---------------------------------------------------------------------------------------------
// From the records of a block to rows

class RowMaker {
 public:
  RowMaker(const Block& block, const TablePlan& plan, const RecordShape& shape,
           const parser::options& rules, MadeBatch& made, BatchRoom& room)
      : block_(block),
        plan_(plan),
        shape_(shape),
        rules_(rules),
        made_(made),
        rows_(room.rows),
        cells_(room.cells),
        copied_(room.copied),
        marks_(block.text.view(), shape.quote != 0 ? shape.quote : shape.escape,
               shape.escape != 0 ? shape.escape : shape.quote) {
    rows_.clear();
    cells_.clear();
    is_left_out_.resize(block.groups.size(), false);
  }

  // Until a rule refuses a record.
  void make() {
    for (std::size_t i = 0; i < block_.groups.size() && !made_.error; ++i) {
      const LineGroup& group = block_.groups[i];
      group_ = static_cast<std::uint32_t>(i);
      if (group.fate == LineFate::blank) {
        add_blank_line(group);
      } else if (group.record != LineGroup::kNoRecord) {
        add_record(block_.records.cells(group.record));
      }
    }
    finish_continued_row();
    num_groups_ = made_.error ? group_ : static_cast<std::uint32_t>(block_.groups.size());
  }

  const std::vector<Row>& rows() const { return rows_; }
  const std::vector<CellText>& cells() const { return cells_; }
  std::size_t num_columns() const { return num_columns_; }

  // Groups from this one on were not reached, as an error was found.
  std::uint32_t num_groups() const { return num_groups_; }

  // Whether a rule leaves out a record, or a blank line is a row.
  bool is_left_out(std::size_t group) const { return is_left_out_[group]; }
  bool reads_blank_lines() const { return rules_.empty_line_rule == empty_line_action::read; }

 private:
  const LineGroup& group() const { return block_.groups[group_]; }

  void refuse(std::string problem, std::size_t column = 0) {
    if (made_.error) return;
    made_.error.emplace(fmt::format("line {}: {}", group().first_line, problem), group().first_line,
                        column);
  }

  void add_blank_line(const LineGroup& group) {
    switch (rules_.empty_line_rule) {
      case empty_line_action::skip:
        return;
      case empty_line_action::read:
        finish_continued_row();
        for (std::uint32_t i = 0; i < group.num_lines; ++i) begin_row();
        return;
      case empty_line_action::error:
        refuse("the line is empty, and EmptyLineRule is error");
        return;
    }
  }

  void begin_row() {
    rows_.push_back({group_, group_, static_cast<std::uint32_t>(cells_.size()), 0});
  }

  void end_row() {
    Row& row = rows_.back();
    row.num_cells = static_cast<std::uint32_t>(cells_.size()) - row.first_cell;
  }

  void add_record(std::span<const Cell> record) {
    if (shape_.mode == LayoutMode::fixed_width && !is_whole_line(record)) return;
    if (record.size() <= plan_.num_of_layout && !has_rules_for_delimiters()) {
      return add_ordinary(record);
    }
    cells_of_record_.clear();
    for (const Cell& cell : record) cells_of_record_.push_back(text_of(cell));
    if (shape_.mode == LayoutMode::delimited) {
      obey_leading_delimiters();
      obey_consecutive_delimiters();
    }
    add_cells(cells_of_record_);
  }

  bool has_rules_for_delimiters() const {
    return shape_.mode == LayoutMode::delimited &&
           (rules_.leading_delimiters_rule != leading_delimiters_action::keep ||
            rules_.consecutive_delimiters_rule != consecutive_delimiters_action::split);
  }

  // A record with no more cells than columns.
  void add_ordinary(std::span<const Cell> record) {
    begin_row();
    for (const Cell& cell : record) cells_.push_back(text_of(cell));
    if (record.size() < plan_.num_of_layout) {
      note(Oddity::short_row, record.size() + 1, block_.view(group()));
    }
    end_row();
  }

  // ------------------------------------------------------------------------------------------
  // Cells

  CellText text_of(const Cell& cell) {
    const char16_t* const text = block_.text.data();
    if (cell.is_quoted) return unquoted(cell);
    std::size_t begin = cell.begin;
    std::size_t end = cell.end;
    if (shape_.blanks_after_delimiters) {
      while (begin < end && text[begin] == u' ') ++begin;
    }
    if (shape_.quote == 0 && shape_.escape != 0)
      return unescaped({static_cast<std::uint32_t>(begin), cell.end});
    return {text + begin, static_cast<std::uint32_t>(end - begin), false, false};
  }

  // Without the second one of doubled quotes, and without escapes.
  CellText unquoted(const Cell& cell) {
    const std::u16string_view text = block_.text.view();
    if (shape_.quote == 0) return {text.data() + cell.begin, cell.end - cell.begin, true, false};
    std::size_t at = marks_.next(cell.begin, cell.end);
    if (at == cell.end) return {text.data() + cell.begin, cell.end - cell.begin, true, false};
    char16_t* const copy = room_for_copy(cell);
    char16_t* out = copy;
    for (std::size_t from = cell.begin;;) {
      out = std::copy(text.begin() + from, text.begin() + at, out);
      if (at == cell.end) break;
      const char16_t mark = text[at];
      const char16_t next = at + 1 < cell.end ? text[at + 1] : u'\0';
      const bool is_escape = shape_.escape != 0 && mark == shape_.escape && at + 1 < cell.end &&
                             (next == shape_.quote || next == shape_.escape);
      const bool is_doubled = mark == shape_.quote && at + 1 < cell.end && next == shape_.quote;
      if (is_escape || is_doubled) ++at;
      *out++ = text[at];
      from = at + 1;
      at = marks_.next(from, cell.end);
    }
    return finish_copy(copy, out, true);
  }

  bool may_escape(char16_t unit) const {
    return !shape_.escapes_bars_alone || assessment::is_bar(unit);
  }

  CellText unescaped(const Cell& cell) {
    const std::u16string_view text = block_.text.view();
    if (marks_.next(cell.begin, cell.end) == cell.end) {
      return {text.data() + cell.begin, cell.end - cell.begin, false, false};
    }
    char16_t* const copy = room_for_copy(cell);
    char16_t* out = copy;
    for (std::size_t i = cell.begin; i < cell.end; ++i) {
      if (text[i] == shape_.escape && i + 1 < cell.end && may_escape(text[i + 1])) ++i;
      *out++ = text[i];
    }
    return finish_copy(copy, out, false);
  }

  // A copy is not longer than its cell, and each cell is copied once: there is room for all if there is room for
  // the text of the block.
  char16_t* room_for_copy(const Cell& cell) {
    if (!has_room_) {
      copied_.clear();
      copied_.room_for(block_.text.size());
      has_room_ = true;
    }
    return copied_.room_for(cell.end - cell.begin);
  }

  CellText finish_copy(const char16_t* copy, const char16_t* end, bool is_quoted) {
    const auto length = static_cast<std::uint32_t>(end - copy);
    copied_.add(length);
    return {copy, length, is_quoted, false};
  }

  static bool is_empty(const CellText& cell) {
    return cell.is_absent || (!cell.is_quoted && assessment::is_blank(cell.view()));
  }

  // ------------------------------------------------------------------------------------------
  // Delimiters

  void obey_leading_delimiters() {
    if (rules_.leading_delimiters_rule == leading_delimiters_action::keep) return;
    std::vector<CellText>& cells = cells_of_record_;
    const auto first = std::find_if(cells.begin(), cells.end(), [](const CellText& cell) {
      return cell.length > 0 || cell.is_quoted;
    });
    if (first == cells.begin() || cells.size() < 2) return;
    if (rules_.leading_delimiters_rule == leading_delimiters_action::error) {
      return refuse("the line begins with a delimiter, and LeadingDelimitersRule is error", 1);
    }
    cells.erase(cells.begin(), first);
  }

  // An empty cell between two delimiters is what is between consecutive ones.
  void obey_consecutive_delimiters() {
    if (rules_.consecutive_delimiters_rule == consecutive_delimiters_action::split) return;
    std::vector<CellText>& cells = cells_of_record_;
    if (cells.size() < 3) return;
    const auto is_between = [](const CellText& cell) {
      return cell.length == 0 && !cell.is_quoted;
    };
    const auto first = std::find_if(cells.begin() + 1, cells.end() - 1, is_between);
    if (first == cells.end() - 1) return;
    if (rules_.consecutive_delimiters_rule == consecutive_delimiters_action::error) {
      return refuse("two delimiters follow one another, and ConsecutiveDelimitersRule is error",
                    static_cast<std::size_t>(first - cells.begin()) + 1);
    }
    cells.erase(std::remove_if(first, cells.end() - 1, is_between), cells.end() - 1);
  }

  // ------------------------------------------------------------------------------------------
  // Fields cut short

  // The column in which a line of fixed widths ends before the column does; 0: none.
  std::size_t column_cut_short(std::size_t length, std::size_t num_cells) const {
    if (num_cells == 0 || num_cells > shape_.widths.size()) return 0;
    std::size_t end = 0;
    for (std::size_t c = 0; c < num_cells; ++c) end += shape_.widths[c];
    return length < end ? num_cells : 0;
  }

  // Whether the record is a row by itself.
  bool is_whole_line(std::span<const Cell> record) {
    if (rules_.partial_field_rule == partial_field_action::keep) return true;
    const std::u16string_view line = block_.view(group());
    if (rules_.partial_field_rule == partial_field_action::wrap) {
      continue_row(line);
      return false;
    }
    const std::size_t column = column_cut_short(line.size(), record.size());
    if (column == 0) return true;
    count(made_.cut_short, column - 1);
    switch (rules_.partial_field_rule) {
      case partial_field_action::fill:
        begin_row();
        for (const Cell& cell : record.first(column - 1)) cells_.push_back(text_of(cell));
        pad_row();
        return false;
      case partial_field_action::omitrow:
        leave_out("a field is cut short, and PartialFieldRule is omitrow", column);
        return false;
      case partial_field_action::error:
        refuse("a field is cut short, and PartialFieldRule is error", column);
        return false;
      default:
        return true;
    }
  }

  // Adds a line to the row that goes on over lines, and ends the row if it is full.
  void continue_row(std::u16string_view line) {
    std::size_t width = 0;
    for (const std::size_t each : shape_.widths) width += each;
    if (!continued_) {
      continued_ = &copies_.emplace_back();
      continued_group_ = group_;
    }
    last_continued_group_ = group_;
    continued_->append(line);
    if (continued_->size() >= width) finish_continued_row();
  }

  void finish_continued_row() {
    if (!continued_) return;
    const std::u16string_view text = *continued_;
    continued_ = nullptr;
    rows_.push_back(
        {continued_group_, last_continued_group_, static_cast<std::uint32_t>(cells_.size()), 0});
    std::size_t begin = 0;
    for (std::size_t c = 0; c < shape_.widths.size() && begin < text.size(); ++c) {
      const bool is_last = c + 1 == shape_.widths.size();
      const std::size_t end =
          is_last ? text.size() : std::min(begin + shape_.widths[c], text.size());
      const std::u16string_view cell = assessment::trimmed(text.substr(begin, end - begin));
      cells_.push_back({cell.data(), static_cast<std::uint32_t>(cell.size()), false, false});
      begin = end;
    }
    end_row();
  }

  // ------------------------------------------------------------------------------------------
  // Rows

  void leave_out(const char* reason, std::size_t column) {
    is_left_out_[group_] = true;
    note(Oddity::misfit, column, block_.view(group()));
    reject(reason);
  }

  void add_cells(std::span<const CellText> cells) {
    // What a row is does not depend on columns that records before it added.
    const std::size_t columns = plan_.num_of_layout;
    // Delimiters at the end of a line make empty cells, which are nothing that could be lost.
    while (cells.size() > columns && is_empty(cells.back())) cells = cells.first(cells.size() - 1);
    if (cells.size() > columns) return add_long_record(cells);
    begin_row();
    cells_.insert(cells_.end(), cells.begin(), cells.end());
    if (cells.size() < columns) {
      note(Oddity::short_row, cells.size() + 1, block_.view(group()));
      pad_row();
    }
    end_row();
  }

  void pad_row() { end_row(); }

  void add_long_record(std::span<const CellText> cells) {
    const std::size_t columns = plan_.num_of_layout;
    note(Oddity::long_row, columns + 1, block_.view(group()));
    switch (rules_.extra_columns_rule) {
      case extra_columns_action::addvars:
        num_columns_ = std::max(num_columns_, cells.size());
        begin_row();
        cells_.insert(cells_.end(), cells.begin(), cells.end());
        return end_row();
      case extra_columns_action::ignore:
        reject(fmt::format("{} cells more than columns", cells.size() - columns));
        begin_row();
        cells_.insert(cells_.end(), cells.begin(),
                      cells.begin() + static_cast<std::ptrdiff_t>(columns));
        return end_row();
      case extra_columns_action::wrap:
        for (; !cells.empty(); cells = cells.subspan(std::min(columns, cells.size()))) {
          begin_row();
          const auto part = cells.first(std::min(columns, cells.size()));
          cells_.insert(cells_.end(), part.begin(), part.end());
          end_row();
        }
        return;
      case extra_columns_action::error:
        return refuse(
            fmt::format("the record has {} cells for {} columns, and ExtraColumnsRule is error",
                        cells.size(), columns),
            columns + 1);
    }
  }

  void note(Oddity oddity, std::size_t column, std::u16string_view text) {
    if (made_.oddities[static_cast<std::size_t>(oddity)]++ >= Account::kMostPlaces) return;
    made_.places.push_back({oddity, group().first_line, column, shortened(text)});
  }

  void reject(std::string reason) {
    made_.rejects.push_back(
        {group().first_line, std::u16string(block_.view(group())), std::move(reason)});
  }

  static void count(std::vector<std::size_t>& counts, std::size_t column) {
    if (counts.size() <= column) counts.resize(column + 1);
    ++counts[column];
  }

  const Block& block_;
  const TablePlan& plan_;
  const RecordShape& shape_;
  const parser::options& rules_;
  MadeBatch& made_;

  std::vector<Row>& rows_;
  std::vector<CellText>& cells_;
  TextBuffer& copied_;
  bool has_room_ = false;
  assessment::UnitScan marks_;  // of quotes and escapes
  std::vector<CellText> cells_of_record_;
  std::deque<std::u16string> copies_;
  std::vector<bool> is_left_out_;
  std::size_t num_columns_ = 0;  // of the longest record, if it adds columns
  std::uint32_t group_ = 0;
  std::uint32_t num_groups_ = 0;

  std::u16string* continued_ = nullptr;
  std::uint32_t continued_group_ = 0;
  std::uint32_t last_continued_group_ = 0;
};

// ---------------------------------------------------------------------------------------------
// From rows to columns

class BatchMaker {
 public:
  BatchMaker(const Block& block, const TablePlan& plan, const RecordShape& shape,
             const ReadSettings& settings, BatchRoom& room)
      : block_(block),
        plan_(plan),
        settings_(settings),
        rules_(settings.detect.options),
        matrix_(room.matrix),
        rows_(block, plan, shape, rules_, made_, room) {}

  MadeBatch take() {
    rows_.make();
    TablePlan plan = plan_;
    if (rows_.num_columns() > plan.columns.size()) plan.add_columns(rows_.num_columns());
    is_row_left_out_.assign(rows_.rows().size(), false);
    // A type is wide enough after two changes: from integers to reals, and to texts.
    while (!make_columns(plan)) {
    }
    if (!made_.error) leave_rows_out(plan);
    settle_lines();
    note_ill_formed_parts();
    const auto is_before = [](const auto& a, const auto& b) { return a.line < b.line; };
    std::stable_sort(made_.places.begin(), made_.places.end(), is_before);
    std::stable_sort(made_.rejects.begin(), made_.rejects.end(), is_before);
    const bool is_changed =
        plan.columns.size() > plan_.columns.size() || was_widened_ || has_found_zones_;
    if (is_changed) {
      plan.version = plan_.version + 1;
      made_.plan = std::move(plan);
    }
    return std::move(made_);
  }

 private:
  const LineGroup& group_of(std::size_t row) const {
    return block_.groups[rows_.rows()[row].group];
  }

  // False if the types of the plan had to be changed: then the columns must be made again.
  bool make_columns(TablePlan& plan) {
    const std::vector<Row>& rows = rows_.rows();
    const std::size_t num_columns = plan.columns.size();
    std::vector<ColumnBuilder> builders;
    builders.reserve(num_columns);
    for (const PlannedColumn& column : plan.columns) {
      builders.emplace_back(column.cells).reserve(rows.size());
    }
    misfits_.assign(num_columns, {});
    Batch& batch = made_.batch;
    batch = {};
    bool has_widened = false;
    if (matrix_.size() < kColumnStep * num_columns) matrix_.resize(kColumnStep * num_columns);
    CellText* const matrix = matrix_.data();
    batch.lines.reserve(rows.size());
    std::vector<std::uint32_t> chunk_rows;
    std::vector<std::uint32_t> misfits;
    const auto flush = [&] {
      for (std::size_t c = 0; c < num_columns; ++c) {
        if (plan.columns[c].is_left_out) continue;
        misfits.clear();
        builders[c].append({matrix + c * kColumnStep, chunk_rows.size()}, misfits);
        for (const std::uint32_t index : misfits) misfits_[c].push_back(chunk_rows[index]);
      }
      chunk_rows.clear();
    };
    for (std::size_t r = 0; r < rows.size(); ++r) {
      if (is_row_left_out_[r]) continue;
      const Row& row = rows[r];
      const std::size_t at = chunk_rows.size();
      const CellText* const cells = rows_.cells().data() + row.first_cell;
      for (std::size_t c = 0; c < row.num_cells; ++c) {
        matrix[c * kColumnStep + at] = cells[c];
        __builtin_prefetch(cells[c].data);
      }
      for (std::size_t c = row.num_cells; c < num_columns; ++c) {
        matrix[c * kColumnStep + at] = {nullptr, 0, false, true};
      }
      chunk_rows.push_back(static_cast<std::uint32_t>(r));
      batch.lines.push_back(group_of(r).first_line);
      if (chunk_rows.size() == kChunkRows) flush();
    }
    flush();
    if (settings_.widen) {
      for (std::size_t c = 0; c < num_columns; ++c) has_widened = widen(plan, c) || has_widened;
      if (has_widened) return false;
    }
    batch.num_rows = batch.lines.size();
    made_.missing.assign(num_columns, 0);
    made_.misfits.assign(num_columns, 0);
    for (std::size_t c = 0; c < num_columns; ++c) {
      if (plan.columns[c].is_left_out) continue;
      Column column = builders[c].take();
      made_.missing[c] = column.num_missing;
      made_.misfits[c] = misfits_[c].size();
      note_zone(column, plan.columns[c].cells);
      if (rules_.datetime_type == parser::datetime_kind::exceldate) turn_into_excel_dates(column);
      batch.columns.push_back(std::move(column));
    }
    return true;
  }

  // A column whose first zone is in this batch is in UTC from here on.
  void note_zone(const Column& column, ColumnPlan& cells) {
    if (!column.is_utc || cells.has_zone || ColumnBuilder(cells).take().is_utc) return;
    cells.has_zone = true;
    has_found_zones_ = true;
  }

  CellText cell_at(std::size_t row, std::size_t column) const {
    const Row& place = rows_.rows()[row];
    if (column >= place.num_cells) return {nullptr, 0, false, true};
    return rows_.cells()[place.first_cell + column];
  }

  bool widen(TablePlan& plan, std::size_t column) {
    if (misfits_[column].empty()) return false;
    ColumnPlan& cells = plan.columns[column].cells;
    const ColumnType before = cells.type;
    for (const std::uint32_t row : misfits_[column]) {
      cells.type = before;
      const ColumnType type = widened(cells, cell_at(row, column).view());
      cells.type = type;
      if (type == ColumnType::text) break;
    }
    if (cells.type == before) return false;
    const std::uint32_t first = misfits_[column].front();
    note(Oddity::widened, first, column, cell_at(first, column).view());
    was_widened_ = true;
    return true;
  }

  void note(Oddity oddity, std::size_t row, std::size_t column, std::u16string_view text) {
    if (made_.oddities[static_cast<std::size_t>(oddity)]++ >= Account::kMostPlaces) return;
    made_.places.push_back({oddity, group_of(row).first_line, column + 1, shortened(text)});
  }

  // ------------------------------------------------------------------------------------------
  // Missing values and misfits

  std::string name_of(const TablePlan& plan, std::size_t column) const {
    return fmt::format("column {} ({})", column + 1, plan.columns[column].name);
  }

  void refuse(std::size_t row, std::size_t column, const std::string& problem) {
    const std::uint64_t line = group_of(row).first_line;
    if (made_.error && made_.error->line() <= line) return;
    made_.error.emplace(fmt::format("line {}: {}", line, problem), line, column + 1);
  }

  void leave_row_out(std::size_t row, const std::string& reason) {
    if (is_row_left_out_[row]) return;
    is_row_left_out_[row] = true;
    has_rows_left_out_ = true;
    if (settings_.rejects == nullptr) return;
    made_.rejects.push_back(
        {group_of(row).first_line, std::u16string(block_.view(group_of(row))), reason});
  }

  void settle_misfits(const TablePlan& plan) {
    std::vector<std::pair<std::uint32_t, std::size_t>> places;  // row, column
    for (std::size_t c = 0; c < misfits_.size(); ++c) {
      for (const std::uint32_t row : misfits_[c]) places.emplace_back(row, c);
    }
    std::sort(places.begin(), places.end());
    for (const auto& [row, c] : places) {
      const std::u16string_view text = cell_at(row, c).view();
      note(Oddity::misfit, row, c, text);
      const std::string problem =
          fmt::format("{}: '{}' is no {}", name_of(plan, c), shortened(text),
                      to_string(plan.columns[c].cells.type));
      switch (rules_.import_error_rule) {
        case row_rule::omitrow:
          leave_row_out(row, problem);
          break;
        case row_rule::error:
          refuse(row, c, problem + ", and ImportErrorRule is error");
          break;
        default:
          if (settings_.rejects != nullptr) {
            made_.rejects.push_back(
                {group_of(row).first_line, std::u16string(block_.view(group_of(row))), problem});
          }
      }
    }
  }

  void settle_missing(const TablePlan& plan) {
    const bool omits = rules_.missing_rule == row_rule::omitrow;
    if (!omits && rules_.missing_rule != row_rule::error) return;
    std::vector<std::size_t> made_rows;
    for (std::size_t r = 0; r < rows_.rows().size(); ++r) made_rows.push_back(r);
    std::size_t built = 0;
    for (std::size_t c = 0; c < plan.columns.size(); ++c) {
      if (plan.columns[c].is_left_out) continue;
      const Column& column = made_.batch.columns[built++];
      if (column.num_missing == 0) continue;
      for (std::size_t r = 0; r < column.size; ++r) {
        if (!column.is_missing(r)) continue;
        if (omits) {
          leave_row_out(r, fmt::format("{}: a value is missing", name_of(plan, c)));
        } else {
          refuse(r, c,
                 fmt::format("{}: a value is missing, and MissingRule is error", name_of(plan, c)));
          break;
        }
      }
    }
  }

  // The columns are made again if rows are left out.
  void leave_rows_out(TablePlan& plan) {
    settle_misfits(plan);
    if (!made_.error) settle_missing(plan);
    if (made_.error || !has_rows_left_out_) return;
    make_columns(plan);
  }

  // ------------------------------------------------------------------------------------------
  // Lines

  void add_fate(LineFate fate, const LineGroup& group) {
    if (made_.fates.empty() || made_.fates.back().fate != fate) {
      made_.fates.push_back({fate, group.first_line, 0, 0});
    }
    made_.fates.back().num_lines += group.num_lines;
    made_.fates.back().num_bytes += group.num_bytes;
  }

  void settle_lines() {
    std::vector<bool> has_row(block_.groups.size(), false);
    for (std::size_t r = 0; r < rows_.rows().size(); ++r) {
      if (is_row_left_out_[r]) continue;
      const Row& row = rows_.rows()[r];
      for (std::uint32_t i = row.group; i <= row.last_group; ++i) has_row[i] = true;
    }
    std::size_t end = rows_.num_groups();
    if (made_.error) {
      const auto failed = std::find_if(
          block_.groups.begin(), block_.groups.end(),
          [&](const LineGroup& group) { return group.first_line == made_.error->line(); });
      end = static_cast<std::size_t>(failed - block_.groups.begin());
    }
    for (std::size_t i = 0; i < end; ++i) {
      const LineGroup& group = block_.groups[i];
      LineFate fate = group.fate;
      if (fate == LineFate::blank && rows_.reads_blank_lines()) fate = LineFate::data;
      const bool is_omitted =
          rows_.is_left_out(i) || (has_rows_left_out_ && fate == LineFate::data && !has_row[i]);
      add_fate(is_omitted ? LineFate::omitted : fate, group);
    }
    if (made_.error && end < block_.groups.size()) add_fate(LineFate::failed, block_.groups[end]);
  }

  // The places; the stream counts them.
  void note_ill_formed_parts() {
    if (!block_.may_be_ill_formed) return;
    for (std::size_t r = 0; r < rows_.rows().size(); ++r) {
      for (std::size_t c = 0; c < rows_.rows()[r].num_cells; ++c) {
        const std::u16string_view text = cell_at(r, c).view();
        if (text.find(u'\uFFFD') == text.npos) continue;
        made_.places.push_back(
            {Oddity::ill_formed, group_of(r).first_line, c + 1, shortened(text)});
        if (++ill_formed_places_ == Account::kMostPlaces) return;
      }
    }
  }

  const Block& block_;
  const TablePlan& plan_;
  const ReadSettings& settings_;
  const parser::options& rules_;
  std::vector<CellText>& matrix_;
  MadeBatch made_;
  RowMaker rows_;
  std::vector<std::vector<std::uint32_t>> misfits_;  // of each column: rows
  std::vector<bool> is_row_left_out_;
  bool has_rows_left_out_ = false;
  bool was_widened_ = false;
  bool has_found_zones_ = false;
  std::size_t ill_formed_places_ = 0;
};

}  // namespace

MadeBatch make_batch(const Block& block, const TablePlan& plan, const RecordShape& shape,
                     const ReadSettings& settings, BatchRoom& room) {
  return BatchMaker(block, plan, shape, settings, room).take();
}

}  // namespace textio::reading
