#include <algorithm>
#include <utility>

#include <vltextstream/assessment/cuts.hpp>
#include <vltextstream/assessment/find_unit.hpp>
#include <vltextstream/assessment/unit_scan.hpp>

namespace textio::assessment {
namespace {

constexpr std::size_t kLongestQuote = 400;  // lines

char16_t first_of(const std::u16string& text) { return text.empty() ? u'\0' : text[0]; }

class DelimitedCut {
 public:
  DelimitedCut(const SampledLines& lines, const Reading& reading, std::size_t most_unclosed,
               Records used)
      : lines_(lines),
        reading_(reading),
        most_unclosed_(most_unclosed),
        has_one_delimiter_(reading.other_delimiters.empty()),
        looks_for_escapes_(reading.escape != 0 && reading.quote == 0),
        is_simple_(has_one_delimiter_ && !looks_for_escapes_ && reading.delimiter.size() == 1 &&
                   reading.delimiter[0] != reading.quote),
        text_(lines.text()),
        delimiters_(text_, first_of(reading.delimiter)),
        quotes_(text_, reading.quote),
        borders_(text_, first_of(reading.delimiter),
                 reading.quote != 0 ? reading.quote : first_of(reading.delimiter)),
        records_(Records::in_place_of(std::move(used), text_)) {}

  Records take() {
    while (line_ < lines_.size()) {
      const std::u16string_view line = lines_.view(line_);
      if (is_blank(line) || has_prefix(line, reading_.comment_prefix)) {
        ++line_;
      } else {
        add_record();
      }
    }
    return std::move(records_);
  }

 private:
  void add_record() {
    const std::size_t first_line = line_;
    is_open_ = false;
    records_.add_record(first_line);
    pos_ = lines_[line_].begin;
    if (is_simple_) {
      while (add_cells_before_quote() && add_cell()) {
      }
    } else {
      while (add_cell()) {
      }
    }
    records_.add_lines(line_ - first_line);
    ++line_;
    records_.is_open = is_open_;
    if (is_open_ && records_.size() > 1) records_.drop_last();
  }

  std::size_t line_end() const { return lines_[line_].end; }

  // Adds the cells of the line up to the first with a quote; false if there is none. Most lines have none.
  bool add_cells_before_quote() {
    const std::size_t end = line_end();
    std::size_t begin = pos_;
    for (;;) {
      const std::size_t at = borders_.next(begin, end);
      if (at < end && text_[at] == reading_.quote) break;
      records_.add_cell(begin, at);
      if (at == end) return false;
      begin = at + 1;
    }
    pos_ = begin;
    return true;
  }

  // Adds the cell at pos_; whether another one follows.
  bool add_cell() {
    std::size_t start = pos_;
    if (reading_.quote != 0 && reading_.delimiter != u" ") {
      while (start < line_end() && text_[start] == u' ') ++start;
    }
    const bool may_quote =
        reading_.quote != 0 && start < line_end() && text_[start] == reading_.quote;
    if (may_quote && unclosed_ < most_unclosed_) {
      const std::size_t line = line_;
      if (add_quoted(start)) return goes_on();
      line_ = line;
      ++unclosed_;
      records_.ill_placed_quotes += 2;
    }
    const std::size_t end = find_delimiter(pos_);
    if (reading_.quote != 0 && !may_quote) note_stray_quotes(pos_, end);
    records_.add_cell(pos_, end);
    pos_ = end;
    return goes_on();
  }

  // pos_ is at a delimiter or at the end of the line.
  bool goes_on() {
    if (pos_ >= line_end() || reading_.delimiter.empty()) return false;
    pos_ += has_one_delimiter_ ? reading_.delimiter.size() : length_of_delimiter_at(pos_);
    return true;
  }

  std::size_t find_delimiter(std::size_t from) {
    if (reading_.delimiter.empty()) return line_end();
    if (looks_for_escapes_ || !has_one_delimiter_) return find_unescaped(from);
    if (reading_.delimiter.size() == 1) return delimiters_.next(from, line_end());
    return find_text(text_, reading_.delimiter, from, line_end());
  }

  std::size_t find_unescaped(std::size_t from) const {
    while (from < line_end() && !is_delimiter_at(from))
      from += looks_for_escapes_ && text_[from] == reading_.escape ? 2 : 1;
    return std::min(from, line_end());
  }

  bool is_delimiter_at(std::size_t pos) const {
    return is_at(reading_.delimiter, pos) ||
           (!has_one_delimiter_ && length_of_delimiter_at(pos) > 0);
  }

  // Of the first delimiter that is at `pos`; 0 if there is none.
  std::size_t length_of_delimiter_at(std::size_t pos) const {
    if (is_at(reading_.delimiter, pos)) return reading_.delimiter.size();
    for (const std::u16string& delimiter : reading_.other_delimiters) {
      if (is_at(delimiter, pos)) return delimiter.size();
    }
    return 0;
  }

  bool is_at(const std::u16string& delimiter, std::size_t pos) const {
    return !delimiter.empty() && text_[pos] == delimiter[0] &&
           text_.substr(pos, std::min(delimiter.size(), line_end() - pos)) == delimiter;
  }

  void note_stray_quotes(std::size_t begin, std::size_t end) {
    if ((lines_.characters(line_) & set_of(reading_.quote)) == 0) return;
    const std::size_t at = find_unit(text_, reading_.quote, begin, end);
    if (at == end) return;
    // An apostrophe inside a word is not a quote.
    const bool in_word = at > begin && reading_.quote == u'\'' && is_word(text_[at - 1]);
    records_.ill_placed_quotes += in_word ? 0.15 : 1;
  }

  static bool is_word(char16_t unit) {
    return (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
           (unit >= u'0' && unit <= u'9') || unit >= 0xC0;
  }

  // Whether the quote at `pos` opens a cell: it is at the start of one, and text follows it.
  bool opens_cell(std::size_t pos) const {
    const std::size_t begin = lines_[line_].begin;
    if (pos + 1 >= line_end() || is_blank(text_[pos + 1]) || text_[pos + 1] == reading_.quote ||
        is_delimiter_at(pos + 1)) {
      return false;
    }
    if (pos == begin) return true;
    const auto precedes = [&](const std::u16string& delimiter) {
      return !delimiter.empty() && pos >= begin + delimiter.size() &&
             is_at(delimiter, pos - delimiter.size());
    };
    return precedes(reading_.delimiter) || std::any_of(reading_.other_delimiters.begin(),
                                                       reading_.other_delimiters.end(), precedes);
  }

  // Adds the cell whose quote is at `open`, which may take further lines. False if it is not closed: no quote
  // follows soon, or the first one on a later line opens a cell of its own.
  bool add_quoted(std::size_t open) {
    const std::size_t first_line = line_;
    const std::size_t last = std::min(line_ + kLongestQuote, lines_.size() - 1);
    bool inside = false;
    for (std::size_t i = open;;) {
      if (i >= line_end()) {
        if (!inside) return finish_quoted(open, line_end());
        if (line_ >= last) break;
        ++line_;
        i = lines_[line_].begin;
        continue;
      }
      if (reading_.escape != 0 && inside && text_[i] == reading_.escape) {
        i += 2;
      } else if (text_[i] == reading_.quote) {
        if (inside && line_ > first_line && opens_cell(i)) return false;
        inside = !inside;
        ++i;
      } else if (!inside && is_delimiter_at(i)) {
        return finish_quoted(open, i);
      } else if (inside && reading_.escape == 0) {
        i = quotes_.next(i, line_end());
      } else {
        ++i;
      }
    }
    if (!lines_.has_more() || line_ + 1 < lines_.size()) return false;
    is_open_ = true;
    records_.add_cell(open + 1, line_end(), true);
    pos_ = line_end();
    return true;
  }

  bool finish_quoted(std::size_t open, std::size_t end) {
    std::size_t close = end;
    while (close > open + 1 && is_blank(text_[close - 1])) --close;
    if (close > open + 1 && text_[close - 1] == reading_.quote) {
      records_.add_cell(open + 1, close - 1, true);
    } else {
      records_.ill_placed_quotes += 1;
      records_.add_cell(open, end);
    }
    pos_ = end;
    return true;
  }

  const SampledLines& lines_;
  const Reading& reading_;
  const std::size_t most_unclosed_;
  const bool has_one_delimiter_;
  const bool looks_for_escapes_;
  const bool is_simple_;  // a delimiter of one unit that nothing escapes outside quotes
  const std::u16string_view text_;
  UnitScan delimiters_;  // the first unit of the delimiter
  UnitScan quotes_;
  UnitScan borders_;  // either
  Records records_;
  std::size_t line_ = 0;
  std::size_t pos_ = 0;
  std::size_t unclosed_ = 0;
  bool is_open_ = false;  // the last cell of the record continues after the sample
};

}  // namespace

Records cut_delimited(const SampledLines& lines, const Reading& reading, std::size_t most_unclosed,
                      Records used) {
  return DelimitedCut(lines, reading, most_unclosed, std::move(used)).take();
}

}  // namespace textio::assessment
