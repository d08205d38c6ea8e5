#include <vltextstream/reading/record_cutter.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/unit_scan.hpp>
#include <vltextstream/layout/given_settings.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>

namespace textio::reading {
namespace {

using assessment::Form;
using assessment::LineEndings;
using assessment::Reading;
using assessment::Records;
using assessment::SampledLines;
using assessment::TextLine;
using standalone::Layout;
using standalone::LayoutMode;

constexpr char16_t kQuote = u'"';

// More than any text has that was not made to have them.
constexpr std::size_t kMostUnclosedQuotes = 1'000;

bool is_surrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
bool is_high_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xD800; }

// ---------------------------------------------------------------------------------------------
// Judged layouts

class JudgedCutter final : public RecordCutter {
 public:
  explicit JudgedCutter(Reading reading) : reading_(std::move(reading)) {}

  Records cut(const SampledLines& lines, Records used) override {
    switch (reading_.form) {
      case Form::framed:
        return assessment::cut_framed(lines, reading_.escape);
      case Form::runs:
        return assessment::cut_runs(lines, reading_.least_blanks, reading_.most_cells);
      default:
        return assessment::cut_delimited(lines, reading_, kMostUnclosedQuotes, std::move(used));
    }
  }

  bool needs_characters() const override {
    return reading_.form == Form::framed || reading_.form == Form::runs;
  }
  char16_t escape() const override { return reading_.escape; }
  char16_t quote() const override { return reading_.quote; }

 private:
  const Reading reading_;
};

// Whether a cell of the lines that were judged begins with a quote, though the reading has none: then quotes are
// part of the cells.
bool has_quotes_in_cells(const Reading& reading, std::u16string_view head,
                         const LineEndings& endings) {
  const SampledLines lines = lines_of(head, false, endings, false);
  const Records records = assessment::cut_delimited(lines, reading);
  for (std::size_t row = 0; row < records.size(); ++row) {
    for (const assessment::Cell& cell : records.cells(row)) {
      const std::u16string_view text = assessment::trimmed(records.view(cell));
      if (!text.empty() && text[0] == kQuote) return true;
    }
  }
  return false;
}

Reading delimited_reading(const Layout& layout, std::u16string_view head,
                          const LineEndings& endings) {
  Reading reading{Form::delimited, layout.delimiters.empty() ? u"" : layout.delimiters[0]};
  reading.comment_prefix = layout.dialect.comment_prefix;
  if (layout.delimiters.size() > 1) {
    reading.other_delimiters.assign(layout.delimiters.begin() + 1, layout.delimiters.end());
  }
  reading.escape = layout.escape.value_or(0);
  if (layout.quote) {
    reading.quote = *layout.quote;
  } else if (reading.escape == 0 && !has_quotes_in_cells(reading, head, endings)) {
    reading.quote = kQuote;
  }
  return reading;
}

Reading reading_of(const Layout& layout, std::u16string_view head, const LineEndings& endings) {
  if (layout.mode == LayoutMode::space_aligned) {
    return {Form::runs,
            u" ",
            0,
            0,
            layout.least_blanks,
            layout.rest_in_last ? layout.num_variables : 0};
  }
  if (layout.mode == LayoutMode::delimited) {
    if (layout.is_framed) {
      return {Form::framed, layout.delimiters.at(0), 0, layout.escape.value_or(0)};
    }
    return delimited_reading(layout, head, endings);
  }
  Reading reading{Form::one, u"", layout.quote.value_or(0), layout.escape.value_or(0)};
  reading.comment_prefix = layout.dialect.comment_prefix;
  return reading;
}

// ---------------------------------------------------------------------------------------------
// Fixed widths

class WidthsCutter final : public RecordCutter {
 public:
  explicit WidthsCutter(const std::vector<std::size_t>& widths) {
    std::size_t end = 0;
    for (const std::size_t width : widths) ends_.push_back(end += width);
  }

  Records cut(const SampledLines& lines, Records used) override {
    Records records = Records::in_place_of(std::move(used), lines.text());
    for (std::size_t k = 0; k < lines.size(); ++k) {
      const std::u16string_view line = lines.view(k);
      if (assessment::is_blank(line)) continue;
      records.add_record(k);
      const bool has_pairs = std::any_of(line.begin(), line.end(), is_surrogate);
      std::size_t begin = 0;
      for (std::size_t c = 0; c < ends_.size() && (c == 0 || begin < line.size()); ++c) {
        std::size_t end = line.size();
        if (c + 1 < ends_.size())
          end = has_pairs ? unit_at(line, ends_[c]) : std::min(ends_[c], end);
        add(records, lines[k].begin, line, begin, end);
        begin = end;
      }
    }
    return records;
  }

  char16_t quote() const override { return 0; }

 private:
  // The position of a character.
  static std::size_t unit_at(std::u16string_view line, std::size_t character) {
    std::size_t i = 0;
    for (; i < line.size() && character > 0; ++i, --character) {
      if (is_high_surrogate(line[i]) && i + 1 < line.size() && is_surrogate(line[i + 1])) ++i;
    }
    return i;
  }

  static void add(Records& records, std::size_t line_begin, std::u16string_view line,
                  std::size_t begin, std::size_t end) {
    const std::u16string_view cell = assessment::trimmed(line.substr(begin, end - begin));
    if (cell.empty()) return records.add_cell(line_begin + end, line_begin + end);
    begin = static_cast<std::size_t>(cell.data() - line.data());
    records.add_cell(line_begin + begin, line_begin + begin + cell.size());
  }

  std::vector<std::size_t> ends_;
};

// ---------------------------------------------------------------------------------------------
// The engine's strategies

class StrategyCutter final : public RecordCutter {
 public:
  StrategyCutter(const Layout& layout, const parser::options& options) : options_(options) {
    switch (layout.mode) {
      case LayoutMode::delimited:
        strategy_ = std::make_unique<DelimitedStrategy>(options_, layout.delimiters);
        break;
      case LayoutMode::space_aligned:
        strategy_ = std::make_unique<SpaceAlignedStrategy>(options_);
        break;
      default:
        strategy_ = std::make_unique<LineReaderStrategy>(options_);
    }
    has_quotes_ = layout.mode != LayoutMode::line_reader;
  }

  // The engine ends a text at a U+FFFF, so the lines are cut piece by piece between those.
  Records cut(const SampledLines& lines, Records used) override {
    Records records = Records::in_place_of(std::move(used), lines.text());
    const std::u16string_view text = lines.text().substr(0, lines.end());
    std::size_t line = 0;
    while (line < lines.size() && lines.view(line).empty()) ++line;  // those that are hidden
    while (line < lines.size()) {
      const std::size_t begin = lines[line].begin;
      const Field rest(text.data() + begin, text.size() - begin);
      const std::unique_ptr<LineCursor> cursor = strategy_->lines_of(rest);
      std::size_t pos = 0;
      while (line < lines.size()) {
        const FieldExtent extent = cursor->line_at(pos).extent;
        if (extent.next == pos) break;
        add(extent, begin, lines, line, records);
        pos = extent.next;
      }
      if (line == lines.size()) break;
      add_whole_line(lines, line, records);
    }
    return records;
  }

  char16_t quote() const override { return has_quotes_ ? kQuote : u'\0'; }

 private:
  // A record that begins on line `line`, which moves behind it.
  void add(const FieldExtent& extent, std::size_t base, const SampledLines& lines,
           std::size_t& line, Records& records) {
    const std::size_t first = line;
    while (line < lines.size() && lines[line].begin < base + extent.next) ++line;
    if (line == first) ++line;
    const Field& record = extent.field;
    const bool reaches_end = base + extent.next >= lines.end();
    if (assessment::is_blank({record.data, record.length})) return;
    records.add_record(first);
    records.add_lines(line - first - 1);
    fields_.clear();
    strategy_->cut_line(record, fields_);
    for (const Field& field : fields_) add_cell(field, lines.text().data(), records);
    // Within quotes it takes the last line ending with it.
    const bool is_open = reaches_end && lines.has_more() &&
                         record.data + record.length == lines.text().data() + lines.end();
    records.is_open = is_open;
    if (is_open && records.size() > 1) records.drop_last();
  }

  void add_cell(const Field& field, const char16_t* text, Records& records) const {
    const auto begin = static_cast<std::size_t>(field.data - text);
    const bool is_quoted = has_quotes_ && field.length > 1 && field.data[0] == kQuote &&
                           field.data[field.length - 1] == kQuote;
    if (field.length == 0) {
      records.add_cell(records.text().size(), records.text().size());
    } else if (is_quoted) {
      records.add_cell(begin + 1, begin + field.length - 1, true);
    } else {
      records.add_cell(begin, begin + field.length);
    }
  }

  static void add_whole_line(const SampledLines& lines, std::size_t& line, Records& records) {
    records.add_record(line);
    records.add_cell(lines[line].begin, lines[line].end);
    ++line;
  }

  const parser::options options_;
  std::unique_ptr<Strategy> strategy_;
  bool has_quotes_;
  std::vector<Field> fields_;
};

// The lines of a text, one after the other.
class LineScan {
 public:
  LineScan(std::u16string_view text, const LineEndings& endings)
      : text_(text),
        endings_(endings),
        ends_(text, endings.has_lf ? u'\n' : u'\r',
              endings.has_cr || endings.has_crlf ? u'\r' : u'\n') {}

  // The line at `pos`; its next is npos if it has no ending.
  TextLine line_at(std::size_t pos) {
    for (std::size_t at = pos;; ++at) {
      at = ends_.next(at, text_.size());
      if (at == text_.size()) return {pos, at, text_.npos};
      if (text_[at] == u'\n') {
        if (endings_.has_lf) return {pos, at, at + 1};
      } else if (endings_.has_crlf && text_.substr(at, 2) == u"\r\n") {
        return {pos, at, at + 2};
      } else if (endings_.has_cr) {
        return {pos, at, at + 1};
      }
    }
  }

 private:
  const std::u16string_view text_;
  const LineEndings& endings_;
  assessment::UnitScan ends_;
};

}  // namespace

// A "\r" at the end of a piece may be the first half of a line ending.
SampledLines lines_of(std::u16string_view text, bool has_more, const LineEndings& endings,
                      bool with_characters) {
  std::vector<TextLine> lines;
  lines.reserve(text.size() / 64);
  LineScan scan(text, endings);
  for (std::size_t pos = 0; pos < text.size();) {
    TextLine line = scan.line_at(pos);
    const bool may_be_half = has_more && line.next == text.size() && text.back() == u'\r';
    if (line.next == text.npos || may_be_half) {
      if (has_more) break;
      line.next = std::min(line.next, text.size());
    }
    if (with_characters) {
      line.characters = assessment::characters_in(text.substr(pos, line.end - pos));
    }
    lines.push_back(line);
    pos = line.next;
  }
  return {text, std::move(lines), has_more, with_characters};
}

std::unique_ptr<RecordCutter> cutter_of(const Layout& layout,
                                        const standalone::DetectSettings& settings,
                                        std::u16string_view head) {
  if (layout.mode == LayoutMode::fixed_width) return std::make_unique<WidthsCutter>(layout.widths);
  if (!layout.confidence) return std::make_unique<StrategyCutter>(layout, settings.options);
  return std::make_unique<JudgedCutter>(
      reading_of(layout, head, standalone::line_endings_of(settings)));
}

}  // namespace textio::reading
