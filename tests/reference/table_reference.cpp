#include "reference/table_reference.hpp"

#include <algorithm>
#include <stdexcept>

namespace reference {
namespace {

using textio::standalone::Layout;
using textio::standalone::LayoutMode;
using textio::standalone::LineRole;

constexpr std::size_t kLongestQuote = 400;  // lines

bool is_white(char16_t unit) { return unit == u' ' || (unit >= 9 && unit <= 13) || unit == 0xA0; }
bool is_space_or_tab(char16_t unit) { return unit == u' ' || unit == u'\t'; }

bool is_blank(const std::u16string& text) {
  for (const char16_t unit : text) {
    if (!is_white(unit)) return false;
  }
  return true;
}

std::u16string trimmed(std::u16string text) {
  while (!text.empty() && is_white(text.back())) text.pop_back();
  while (!text.empty() && is_white(text.front())) text.erase(0, 1);
  return text;
}

bool begins_with(const std::u16string& text, const std::u16string& prefix) {
  return text.compare(0, prefix.size(), prefix) == 0;
}

std::vector<std::u16string> lines_of(const std::u16string& text) {
  std::vector<std::u16string> lines;
  std::u16string line;
  std::size_t i = 0;
  while (i < text.size()) {
    const char16_t unit = text.at(i);
    if (unit == u'\n' || unit == u'\r') {
      if (unit == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') ++i;
      lines.push_back(line);
      line.clear();
    } else {
      line.push_back(unit);
    }
    ++i;
  }
  const bool ends_with_line_ending = text.empty() || text.back() == u'\n' || text.back() == u'\r';
  if (!ends_with_line_ending) lines.push_back(line);
  return lines;
}

struct Cell {
  std::u16string text;
  bool is_quoted = false;
};

struct Record {
  std::vector<Cell> cells;
  std::size_t num_lines = 1;
};

// One record from its first line on; no cells if the line is no record.
class Cutter {
 public:
  Cutter(const std::u16string& text, const Layout& layout)
      : text_(text), lines_(lines_of(text)), layout_(layout) {
    if (layout.is_framed) throw std::invalid_argument("a frame");
    std::size_t pos = 0;
    for (const std::u16string& line : lines_) {
      begins_.push_back(pos);
      pos += line.size();
      if (pos >= text.size()) break;
      const bool is_crlf =
          text.at(pos) == u'\r' && pos + 1 < text.size() && text.at(pos + 1) == u'\n';
      pos += is_crlf ? 2 : 1;
    }
    if (layout.quote) {
      quote_ = *layout.quote;
    } else if (layout.mode == LayoutMode::delimited && !layout.escape) {
      quote_ = u'"';
    }
    escape_ = layout.escape.value_or(0);
  }

  const std::vector<std::u16string>& lines() const { return lines_; }

  Record cut(std::size_t line) const {
    switch (layout_.mode) {
      case LayoutMode::space_aligned:
        return cut_aligned(lines_.at(line));
      case LayoutMode::fixed_width:
        return cut_widths(lines_.at(line));
      default:
        return cut_delimited(line);
    }
  }

 private:
  // --- delimited, and one column

  Record cut_delimited(std::size_t first_line) const {
    Record record;
    std::size_t line = first_line;
    std::size_t pos = begins_.at(line);
    for (;;) {
      Cell cell;
      std::size_t end = 0;
      if (!take_quoted(line, pos, cell, end)) {
        end = pos;
        while (end < line_end(line) && delimiter_at(end, line) == 0) {
          const bool escapes = quote_ == 0 && escape_ != 0 && text_.at(end) == escape_;
          end = std::min(line_end(line), end + (escapes ? 2 : 1));
        }
        cell = {plain(text_.substr(pos, end - pos)), false};
      }
      record.cells.push_back(cell);
      if (end >= line_end(line)) break;
      pos = end + delimiter_at(end, line);
    }
    record.num_lines = line - first_line + 1;
    return record;
  }

  std::size_t line_end(std::size_t line) const { return begins_.at(line) + lines_.at(line).size(); }

  // The length of the delimiter at `pos`; 0 if there is none.
  std::size_t delimiter_at(std::size_t pos, std::size_t line) const {
    for (const std::u16string& delimiter : layout_.delimiters) {
      const bool fits = pos + delimiter.size() <= line_end(line);
      if (!delimiter.empty() && fits && text_.substr(pos, delimiter.size()) == delimiter)
        return delimiter.size();
    }
    return 0;
  }

  // A quoted cell from `pos` on: `line` and `end` move to its end. Nothing changes if there is none.
  bool take_quoted(std::size_t& line, std::size_t pos, Cell& cell, std::size_t& end) const {
    if (quote_ == 0) return false;
    const bool blank_separates = !layout_.delimiters.empty() && layout_.delimiters.at(0) == u" ";
    std::size_t open = pos;
    while (!blank_separates && open < line_end(line) && text_.at(open) == u' ') ++open;
    if (open >= line_end(line) || text_.at(open) != quote_) return false;
    std::size_t at_line = line;
    std::size_t at = open;
    bool is_inside = false;
    for (;;) {
      if (at >= line_end(at_line)) {
        if (!is_inside) break;
        ++at_line;
        if (at_line == lines_.size() || at_line > line + kLongestQuote) return false;
        at = begins_.at(at_line);
        continue;
      }
      if (!is_inside && delimiter_at(at, at_line) > 0) break;
      if (is_inside && escape_ != 0 && text_.at(at) == escape_) {
        at += 2;
        continue;
      }
      if (text_.at(at) == quote_) {
        // On a later line, the start of a quoted cell shows that this one was never closed.
        if (is_inside && at_line > line && is_start_of_quoted(at, at_line)) return false;
        is_inside = !is_inside;
      }
      ++at;
    }
    cell = closed(open, std::min(at, line_end(at_line)));
    line = at_line;
    end = std::min(at, line_end(at_line));
    return true;
  }

  // Whether a cell begins at `at`, with a quote that text follows.
  bool is_start_of_quoted(std::size_t at, std::size_t line) const {
    const std::size_t next = at + 1;
    if (next >= line_end(line) || is_space_or_tab(text_.at(next)) || text_.at(next) == quote_ ||
        delimiter_at(next, line) > 0) {
      return false;
    }
    if (at == begins_.at(line)) return true;
    for (std::size_t from = begins_.at(line); from < at; ++from) {
      for (const std::u16string& delimiter : layout_.delimiters) {
        if (!delimiter.empty() && from + delimiter.size() == at &&
            text_.substr(from, delimiter.size()) == delimiter) {
          return true;
        }
      }
    }
    return false;
  }

  // Quotes that do not close at the end of the cell, blanks aside, belong to it.
  Cell closed(std::size_t open, std::size_t end) const {
    std::size_t close = end;
    while (close > open + 1 && is_space_or_tab(text_.at(close - 1))) --close;
    if (close <= open + 1 || text_.at(close - 1) != quote_)
      return {plain(text_.substr(open, end - open)), false};
    return {unquoted(text_.substr(open + 1, close - 1 - (open + 1))), true};
  }

  std::u16string unquoted(const std::u16string& text) const {
    std::u16string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const char16_t next = i + 1 < text.size() ? text.at(i + 1) : u'\0';
      const bool has_next = i + 1 < text.size();
      const bool is_doubled = has_next && text.at(i) == quote_ && next == quote_;
      const bool is_escaped =
          has_next && escape_ != 0 && text.at(i) == escape_ && (next == quote_ || next == escape_);
      if (is_doubled || is_escaped) ++i;
      out.push_back(text.at(i));
    }
    return out;
  }

  // A cell without quotes around it.
  std::u16string plain(std::u16string text) const {
    if (layout_.dialect.blanks_after_delimiters) {
      while (!text.empty() && text.front() == u' ') text.erase(0, 1);
    }
    if (quote_ != 0 || escape_ == 0) return text;
    std::u16string out;
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text.at(i) == escape_ && i + 1 < text.size()) ++i;
      out.push_back(text.at(i));
    }
    return out;
  }

  // --- aligned by blanks

  Record cut_aligned(const std::u16string& line) const {
    struct Piece {
      std::size_t begin;
      std::size_t end;
    };
    std::vector<Piece> pieces;
    std::size_t blanks = 0;
    bool has_tab = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
      if (is_space_or_tab(line.at(i))) {
        ++blanks;
        has_tab = has_tab || line.at(i) == u'\t';
        continue;
      }
      const bool separates = has_tab || blanks >= layout_.least_blanks;
      const bool is_first_of_piece = i == 0 || blanks > 0;
      if (pieces.empty() || (is_first_of_piece && separates)) {
        pieces.push_back({i, i + 1});
      } else {
        pieces.back().end = i + 1;
      }
      blanks = 0;
      has_tab = false;
    }
    if (layout_.rest_in_last && layout_.num_variables > 0 &&
        pieces.size() > layout_.num_variables) {
      pieces.at(layout_.num_variables - 1).end = pieces.back().end;
      pieces.resize(layout_.num_variables);
    }
    Record record;
    if (is_rule(line)) return record;
    for (const Piece& piece : pieces) {
      record.cells.push_back({line.substr(piece.begin, piece.end - piece.begin), false});
    }
    return record;
  }

  // A line that is drawn: three dashes or other strokes at least, two of them side by side or a bar.
  static bool is_rule(const std::u16string& line) {
    const std::u16string strokes = u"-=+_~*";
    std::size_t drawn = 0;
    bool has_run = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const bool is_stroke = strokes.find(line.at(i)) != strokes.npos;
      const bool other = line.at(i) == u':' || is_space_or_tab(line.at(i));
      if (line.at(i) == u'|') {
        has_run = true;
      } else if (is_stroke) {
        ++drawn;
        has_run = has_run || (i > 0 && strokes.find(line.at(i - 1)) != strokes.npos);
      } else if (!other) {
        return false;
      }
    }
    return drawn >= 3 && has_run;
  }

  // --- fixed widths

  // A surrogate pair is one character.
  static std::vector<std::u16string> characters_of(const std::u16string& line) {
    std::vector<std::u16string> characters;
    for (std::size_t i = 0; i < line.size(); ++i) {
      const bool is_high = line.at(i) >= 0xD800 && line.at(i) <= 0xDBFF;
      const bool is_pair =
          is_high && i + 1 < line.size() && line.at(i + 1) >= 0xD800 && line.at(i + 1) <= 0xDFFF;
      characters.push_back(line.substr(i, is_pair ? 2 : 1));
      if (is_pair) ++i;
    }
    return characters;
  }

  Record cut_widths(const std::u16string& line) const {
    const std::vector<std::u16string> characters = characters_of(line);
    Record record;
    std::size_t pos = 0;
    for (std::size_t c = 0; c < layout_.widths.size(); ++c) {
      if (c > 0 && pos >= characters.size()) break;
      const bool is_last = c + 1 == layout_.widths.size();
      const std::size_t end =
          is_last ? characters.size() : std::min(pos + layout_.widths.at(c), characters.size());
      std::u16string cell;
      for (; pos < end; ++pos) cell += characters.at(pos);
      record.cells.push_back({trimmed(cell), false});
    }
    return record;
  }

  const std::u16string& text_;
  const std::vector<std::u16string> lines_;
  const Layout& layout_;
  std::vector<std::size_t> begins_;
  char16_t quote_ = 0;
  char16_t escape_ = 0;
};

// How many lines are above the data.
std::size_t lines_above(const Layout& layout) {
  std::size_t above = 0;
  for (const auto& run : layout.lines) {
    if (run.role == LineRole::data) return run.first_line - 1;
    if (run.role == LineRole::header || run.role == LineRole::names || run.role == LineRole::units)
      above = run.last_line;
  }
  if (!layout.lines.empty()) return above;
  return std::max({layout.header_lines, layout.names_line.value_or(0),
                   layout.units_line.value_or(0), layout.descriptions_line.value_or(0)});
}

std::string fate_above(std::size_t line, const std::u16string& text, const Layout& layout) {
  if (is_blank(text)) return "blank";
  if (line == layout.names_line) return "names";
  if (line == layout.units_line) return "units";
  if (line == layout.descriptions_line) return "descriptions";
  return "preamble";
}

// Where the footer begins that the layout found by its lines; 0 if it found none.
std::size_t first_footer_line(const Layout& layout) {
  for (const auto& run : layout.lines) {
    if (run.role == LineRole::footer && !layout.has_more_text) return run.first_line;
  }
  return 0;
}

// A record and its lines.
struct Piece {
  std::size_t first_line;
  std::size_t num_lines;
  std::string fate;
  std::vector<Cell> cells;
};

// The last lines with something on them that are as many as the layout found at the end.
void mark_footer(const Layout& layout, std::vector<Piece>& pieces) {
  if (!layout.has_more_text || !layout.tail) return;
  std::size_t found = 0;
  for (std::size_t i = pieces.size(); i-- > 0 && found < layout.tail->footer_lines;) {
    Piece& piece = pieces.at(i);
    if (piece.fate != "data" && piece.fate != "comment") continue;
    piece.fate = "footer";
    found += piece.num_lines;
  }
}

}  // namespace

ReadTable read_table(const std::u16string& text, const Layout& layout) {
  const Cutter cutter(text, layout);
  const std::vector<std::u16string>& lines = cutter.lines();
  const std::size_t above = lines_above(layout);
  const std::size_t footer = first_footer_line(layout);
  ReadTable table;
  std::vector<Piece> pieces;
  for (std::size_t k = 0; k < lines.size();) {
    const std::size_t line = k + 1;
    const std::u16string& whole = lines.at(k);
    Piece piece{line, 1, "", {}};
    if (line <= above) {
      table.fates.push_back(fate_above(line, whole, layout));
      ++k;
      continue;
    }
    const std::u16string& prefix = layout.dialect.comment_prefix;
    if (is_blank(whole)) {
      piece.fate = "blank";
    } else if (!prefix.empty() && begins_with(trimmed(whole), prefix)) {
      piece.fate = "comment";
    } else {
      const Record record = cutter.cut(k);
      piece.fate = record.cells.empty() ? "rule" : "data";
      piece.cells = record.cells;
      piece.num_lines = record.num_lines;
    }
    if (footer != 0 && line >= footer && piece.fate != "blank") piece.fate = "footer";
    k += piece.num_lines;
    pieces.push_back(piece);
  }
  mark_footer(layout, pieces);

  table.num_columns = layout.num_variables;
  for (Piece& piece : pieces) {
    table.fates.insert(table.fates.end(), piece.num_lines, piece.fate);
    if (piece.fate != "data") continue;
    // Delimiters at the end of a line make no columns.
    while (piece.cells.size() > layout.num_variables && !piece.cells.back().is_quoted &&
           is_blank(piece.cells.back().text)) {
      piece.cells.pop_back();
    }
    TableRow row;
    row.line = piece.first_line;
    for (const Cell& cell : piece.cells) row.cells.push_back(cell.text);
    table.num_columns = std::max(table.num_columns, row.cells.size());
    table.rows.push_back(row);
  }
  return table;
}

}  // namespace reference
