#include <vltextstream/layout/judged_dialect.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/layout/tally.hpp>

namespace textio::standalone {
namespace {

using assessment::Cell;
using assessment::Form;

class DialectDescription {
 public:
  DialectDescription(const assessment::Verdict& verdict, const assessment::TableFrame& table,
                     Layout& layout)
      : verdict_(verdict),
        reading_(verdict.cut_of(verdict.winner()).reading),
        records_(verdict.cut_of(verdict.winner()).records),
        table_(table),
        layout_(layout) {}

  void describe() {
    count_line_endings();
    if (reading_.form == Form::none) return;
    TableDialect& dialect = layout_.dialect;
    dialect.delimiters = layout_.delimiters;
    dialect.widths = layout_.widths;
    describe_quotes();
    dialect.blanks_after_delimiters = blanks_follow_delimiters();
    dialect.comment_prefix = comment_prefix();
  }

 private:
  // Without those within quotes, which are parts of cells.
  void count_line_endings() {
    Tally endings;
    const auto add = [&](std::size_t begin, std::size_t end) {
      for (std::size_t k = begin; k < end; ++k) {
        const assessment::TextLine& line = verdict_.lines[k];
        const std::size_t line_end = line.begin + verdict_.lines.whole(k).size();
        if (line.next == line_end) continue;
        endings.add(verdict_.lines.text().substr(line_end, line.next - line_end));
      }
    };
    std::size_t line = 0;
    for (std::size_t i = 0; i < records_.size(); ++i) {
      add(line, records_[i].line);
      line = records_[i].line + records_[i].num_lines;
      add(line - 1, line);
    }
    add(line, verdict_.lines.size());
    for (auto& [ending, count] : endings.take()) {
      layout_.dialect.line_endings.push_back({std::move(ending), count});
    }
  }

  void describe_quotes() {
    TableDialect& dialect = layout_.dialect;
    const bool has_backslash = reading_.escape != 0;
    for (const std::size_t row : table_.data) {
      for (const Cell& cell : records_.cells(row)) {
        if (cell.is_quoted) dialect.quote = reading_.quote;
        dialect.is_escape_seen = dialect.is_escape_seen || has_escape(cell);
      }
    }
    if (has_backslash) {
      dialect.escape = Escape::backslash;
    } else if (dialect.quote) {
      dialect.escape = Escape::doubled;
    }
  }

  // A quote within quotes, or an escaped character.
  bool has_escape(const Cell& cell) const {
    const std::u16string_view text = records_.view(cell);
    if (reading_.escape != 0) return text.find(reading_.escape) != text.npos;
    return cell.is_quoted && text.find(reading_.quote) != text.npos;
  }

  // After nine of ten delimiters before a cell with text.
  bool blanks_follow_delimiters() const {
    const std::u16string& delimiter = reading_.delimiter;
    if (reading_.form != Form::delimited || assessment::is_blank(delimiter.back())) return false;
    std::size_t filled = 0;
    std::size_t blanks = 0;
    for (const std::size_t row : table_.data) {
      for (const Cell& cell : records_.cells(row).subspan(1)) {
        const std::size_t begin = cell.begin - (cell.is_quoted ? 1 : 0);
        if (cell.begin == cell.end) continue;
        ++filled;
        const std::u16string_view text = records_.text();
        blanks += text[begin] == u' ' || (cell.is_quoted && text[begin - 1] == u' ');
      }
    }
    return filled > 0 && 10 * blanks >= 9 * filled;
  }

  // Of lines that are comments, not rules, the commonest sign.
  std::u16string comment_prefix() const {
    Tally signs;
    for (const LineRun& run : layout_.lines) {
      if (run.role != LineRole::comment) continue;
      for (std::size_t k = run.first_line - 1; k < run.last_line; ++k) {
        const std::u16string_view line = assessment::trimmed(verdict_.lines.view(k));
        if (!assessment::has_comment_sign(line) || assessment::is_rule(line)) continue;
        signs.add(line.substr(0, line.substr(0, 2) == u"//" ? 2 : 1));
      }
    }
    const auto counts = signs.take();
    return counts.empty() ? std::u16string() : counts.front().first;
  }

  const assessment::Verdict& verdict_;
  const assessment::Reading& reading_;
  const assessment::Records& records_;
  const assessment::TableFrame& table_;
  Layout& layout_;
};

}  // namespace

void describe_dialect(const assessment::Verdict& verdict, const assessment::TableFrame& table,
                      Layout& layout) {
  DialectDescription(verdict, table, layout).describe();
}

}  // namespace textio::standalone
