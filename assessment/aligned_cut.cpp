#include <algorithm>
#include <optional>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/pieces.hpp>

namespace textio::assessment {
namespace {

// ---------------------------------------------------------------------------------------------
// Gaps

// The union of two series of spans, joined where fewer than `least_blanks` are between them.
void join(const Spans& a, const Spans& b, std::size_t least_blanks, Spans& joined) {
  joined.clear();
  const auto add = [&](const Span& span) {
    if (!joined.empty() && span.begin < joined.back().end + least_blanks) {
      joined.back().end = std::max(joined.back().end, span.end);
    } else {
      joined.push_back(span);
    }
  };
  std::size_t i = 0;
  for (const Span& span : a) {
    while (i < b.size() && b[i].begin < span.begin) add(b[i++]);
    add(span);
  }
  while (i < b.size()) add(b[i++]);
}

// Whether no two of the `old` columns have become one in `columns`.
bool keeps_apart(const Spans& old, const Spans& columns) {
  std::size_t j = 0;
  const Span* last = nullptr;
  for (const Span& column : old) {
    while (columns[j].end < column.end) ++j;
    if (last == &columns[j]) return false;
    last = &columns[j];
  }
  return true;
}

class GapCut {
 public:
  GapCut(const SampledLines& lines, std::size_t least_blanks, bool by_names)
      : lines_(lines), least_blanks_(least_blanks), by_names_(by_names), records_(lines.text()) {}

  Records take() {
    find_table_lines();
    if (table_lines_.size() < 2) return std::move(records_);
    find_columns();
    if (columns_.size() < 2) return std::move(records_);
    if (by_names_ && !obey_names()) return std::move(records_);
    join_dates_and_times();
    add_records();
    return std::move(records_);
  }

 private:
  // The columns with the pieces of a line joined to them.
  const Spans& joined_with(std::size_t line) {
    find_pieces(lines_, line, 1, pieces_);
    join(columns_, pieces_, least_blanks_, joined_);
    return joined_;
  }

  // Lines that may belong to the table.
  void find_table_lines() {
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      if (!is_blank(line) && !is_rule(lines_, k) && !lines_.is_comment(k))
        table_lines_.push_back(k);
    }
  }

  // No columns if they would make far more cells than the text has code units: then nearly all cells
  // would be empty, and cutting would not be linear.
  void find_columns() {
    const std::size_t most_cells = lines_.end() + kCellsOfSmallTable;
    const std::size_t size = table_lines_.size();
    std::size_t cells = 0;
    std::size_t longest = 0;
    for (const std::size_t line : table_lines_)
      longest = std::max(longest, lines_.view(line).size());
    const std::size_t first_sure =
        std::max(std::min(size / 2, kLinesAbove), size - std::min(size, kSureLines));
    for (std::size_t i = first_sure; i < size; ++i) {
      joined_with(table_lines_[i]);
      columns_.swap(joined_);
      if (columns_.size() == 1 && has_no_room_beside(columns_[0], longest)) return;
      cells += columns_.size();
      if (cells > most_cells) return columns_.clear();
    }
    is_data_.assign(lines_.size(), false);
    for (std::size_t i = size; i-- > 0;) {
      const std::size_t line = table_lines_[i];
      if (i >= first_sure) {
        is_data_[line] = true;
        continue;
      }
      cells += columns_.size();
      if (cells > most_cells) return columns_.clear();
      if (!keeps_apart(columns_, joined_with(line))) continue;
      is_data_[line] = true;
      columns_.swap(joined_);
    }
    if (columns_.size() > most_cells / size) columns_.clear();
  }

  // Whether no line of `longest` code units can have another column before or after this one.
  bool has_no_room_beside(const Span& column, std::size_t longest) const {
    return column.begin <= least_blanks_ && longest <= column.end + least_blanks_;
  }

  // The nearest line above the data, or the first of these.
  std::size_t names_line() const {
    std::size_t line = table_lines_[0];
    for (const std::size_t each : table_lines_) {
      if (is_data_[each]) return is_data_[line] ? each : line;
      line = each;
    }
    return line;
  }

  // Whether the names change the columns, and at least two are left. More lines may then agree with them.
  bool obey_names() {
    const std::size_t size = columns_.size();
    const std::size_t line = names_line();
    joined_with(line);
    columns_.swap(joined_);
    is_data_[line] = true;
    const std::u16string_view names = lines_.view(line);
    for (std::size_t c = columns_.size(); c-- > 1;) {
      if (!part(names, columns_[c]).empty()) continue;
      columns_[c - 1].end = columns_[c].end;
      columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(c));
    }
    if (columns_.size() < 2 || columns_.size() == size) return false;
    for (std::size_t i = table_lines_.size(); i-- > 0;) {
      const std::size_t other = table_lines_[i];
      if (is_data_[other] || !keeps_apart(columns_, joined_with(other))) continue;
      is_data_[other] = true;
      columns_.swap(joined_);
    }
    return true;
  }

  // A date and the time beside it are one column.
  void join_dates_and_times() {
    for (std::size_t c = columns_.size() - 1; c-- > 0;) {
      if (columns_[c + 1].begin - columns_[c].end != 1 || !has_dates_and_times(c)) continue;
      columns_[c].end = columns_[c + 1].end;
      columns_.erase(columns_.begin() + static_cast<std::ptrdiff_t>(c) + 1);
    }
  }

  bool has_dates_and_times(std::size_t column) const {
    std::size_t looked_at = 0;
    std::size_t found = 0;
    for (std::size_t i = table_lines_.size(); i-- > 0 && looked_at < 40;) {
      if (!is_data_[table_lines_[i]]) continue;
      ++looked_at;
      const std::u16string_view line = lines_.view(table_lines_[i]);
      if (is_date_with_time(part(line, columns_[column]), part(line, columns_[column + 1])))
        ++found;
    }
    return 10 * found >= 6 * looked_at;
  }

  static std::u16string_view part(std::u16string_view line, const Span& span) {
    const std::size_t begin = std::min(span.begin, line.size());
    return trimmed(line.substr(begin, std::min(span.end, line.size()) - begin));
  }

  void add_records() {
    for (const Span& column : columns_) {
      records_.column_starts.push_back(column.begin);
      records_.column_ends.push_back(column.end);
    }
    for (std::size_t k = 0; k < lines_.size(); ++k) {
      const std::u16string_view line = lines_.view(k);
      if (is_blank(line) || is_rule(lines_, k)) continue;
      records_.add_record(k);
      if (!is_data_[k]) {
        add_part(k, line);
        continue;
      }
      for (const Span& column : columns_) add_part(k, part(line, column));
    }
  }

  void add_part(std::size_t line, std::u16string_view part) {
    const std::size_t begin = part.empty()
                                  ? lines_[line].end
                                  : static_cast<std::size_t>(part.data() - lines_.text().data());
    records_.add_cell(begin, begin + part.size());
  }

  // The columns come from the lower half of the lines, or from all lines after the first twelve, but
  // from at most a hundred. Lines above these belong to the table if they agree.
  static constexpr std::size_t kLinesAbove = 12;
  static constexpr std::size_t kSureLines = 100;
  static constexpr std::size_t kCellsOfSmallTable = 10'000;

  const SampledLines& lines_;
  const std::size_t least_blanks_;
  const bool by_names_;
  Records records_;
  std::vector<std::size_t> table_lines_;
  std::vector<bool> is_data_;
  Spans columns_;

  // Of the line that is looked at.
  Spans pieces_;
  Spans joined_;
};

}  // namespace

Records cut_gaps(const SampledLines& lines, std::size_t least_blanks, bool by_names) {
  return GapCut(lines, least_blanks, by_names).take();
}

Records cut_runs(const SampledLines& lines, std::size_t least_blanks, std::size_t most_cells) {
  Records records(lines.text());
  Spans pieces;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    const std::u16string_view line = lines.view(k);
    if (is_blank(line) || is_rule(lines, k)) continue;
    records.add_record(k);
    find_pieces(lines, k, least_blanks, pieces);
    if (join_times(line, pieces)) records.joins_times = true;
    if (most_cells > 0 && pieces.size() > most_cells) {
      pieces[most_cells - 1].end = pieces.back().end;
      pieces.resize(most_cells);
    }
    for (const Span& piece : pieces) {
      records.add_cell(lines[k].begin + piece.begin, lines[k].begin + piece.end);
    }
  }
  return records;
}

}  // namespace textio::assessment
