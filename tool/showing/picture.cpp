// Of the lines above the table the first are enough. The room that is left is for the table.
#include "tool/showing/picture.hpp"

#include <algorithm>
#include <limits>

#include <vltextstream/text/utf8.hpp>

namespace textio::tool {
namespace {

using reading::CutCell;
using reading::CutLine;
using reading::LineFate;
using standalone::Layout;
using standalone::LayoutMode;

constexpr std::size_t kMostLines = 12;
constexpr std::size_t kMostAbove = 4;
constexpr std::size_t kMostFooter = 3;
constexpr std::string_view kTab = "\xE2\x86\x92";  // an arrow to the right

// -------------------------------------------------------------------------------------------------
// One line

std::string shown(std::u16string_view text) {
  std::string out;
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = next_character(text, pos);
    if (code == U'\t') {
      out += kTab;
    } else {
      append_utf8(out, is_unprintable(code) ? kReplacement : code);
    }
  }
  return out;
}

SpanRole cell_role(LineFate fate) {
  if (fate == LineFate::names) return SpanRole::name;
  return fate == LineFate::units ? SpanRole::unit : SpanRole::cell;
}

// How the lines of a table are taken apart.
struct Style {
  bool has_cells = true;
  bool is_by_place = false;
  bool has_blanks_after_delimiters = false;
};

// The blanks between a cell and the next one.
struct Gap {
  std::size_t begin = 0;
  std::size_t end = std::numeric_limits<std::size_t>::max();
};

// What is blank after a column in all of some lines.
class Gaps {
 public:
  void add(const CutLine& line) {
    for (std::size_t i = 0; i + 1 < line.cells.size(); ++i) {
      const std::size_t column = line.cells[i].column;
      if (column >= gaps_.size()) gaps_.resize(column + 1);
      gaps_[column].begin = std::max(gaps_[column].begin, line.cells[i].end);
      gaps_[column].end = std::min(gaps_[column].end, line.cells[i + 1].begin);
    }
  }

  // Where the border between the two cells is in its line.
  std::size_t border(const CutCell& before, const CutCell& after) const {
    const bool is_known = before.column < gaps_.size();
    const Gap gap = is_known ? gaps_[before.column] : Gap();
    const std::size_t border = gap.begin <= gap.end ? gap.end : after.begin;
    return std::clamp(border, before.end, after.begin);
  }

 private:
  std::vector<Gap> gaps_;  // after each column
};

class LineSpans {
 public:
  LineSpans(const CutLine& line, const Style& style, const Gaps& gaps)
      : line_(line), style_(style), gaps_(gaps) {}

  std::vector<Span> take() {
    const SpanRole role = cell_role(line_.fate);
    if (line_.cells.empty() || !style_.has_cells) {
      add(role == SpanRole::cell ? SpanRole::text : role, kNoColumn, line_.text);
      return std::move(spans_);
    }
    std::size_t pos = 0;
    const CutCell* before = nullptr;
    for (const CutCell& cell : line_.cells) {
      add_between(before, pos, cell.begin, &cell);
      add_cell(role, cell);
      pos = cell.end;
      before = &cell;
    }
    add_between(before, pos, line_.text.size(), nullptr);
    return std::move(spans_);
  }

 private:
  std::u16string_view part(std::size_t begin, std::size_t end) const {
    return std::u16string_view(line_.text).substr(begin, end - begin);
  }

  void add(SpanRole role, std::size_t column, std::u16string_view text) {
    if (!text.empty()) spans_.push_back({role, column, shown(text)});
  }

  void add_cell(SpanRole role, const CutCell& cell) {
    const std::u16string_view text = part(cell.begin, cell.end);
    std::size_t blanks = 0;
    if (style_.has_blanks_after_delimiters && !cell.is_quoted && cell.column > 0)
      blanks = std::min(text.find_first_not_of(u' '), text.size());
    add(SpanRole::padding, kNoColumn, text.substr(0, blanks));
    add(role, cell.column, text.substr(blanks));
  }

  bool are_blank(std::size_t begin, std::size_t end) const {
    return part(begin, end).find_first_not_of(u' ') == std::u16string_view::npos;
  }

  // What is between two cells: the quotes around each, and a separator.
  void add_between(const CutCell* before, std::size_t begin, std::size_t end,
                   const CutCell* after) {
    const bool has_border = style_.is_by_place && before != nullptr && after != nullptr &&
                            begin <= end && are_blank(begin, end);
    if (has_border) {
      const std::size_t border = gaps_.border(*before, *after);
      add(SpanRole::padding, kNoColumn, part(begin, border));
      spans_.push_back({SpanRole::border});
      add(SpanRole::padding, kNoColumn, part(border, end));
      return;
    }
    const bool closes = before != nullptr && before->is_quoted && begin < end;
    if (closes) {
      add(SpanRole::quote, before->column, part(begin, begin + 1));
      ++begin;
    }
    const bool opens = after != nullptr && after->is_quoted && begin < end;
    add_separator(part(begin, end - (opens ? 1 : 0)));
    if (opens) add(SpanRole::quote, after->column, part(end - 1, end));
  }

  void add_separator(std::u16string_view text) {
    const std::size_t first = text.find_first_not_of(u' ');
    if (first == text.npos && style_.is_by_place) return add(SpanRole::padding, kNoColumn, text);
    if (first == text.npos) return add(SpanRole::delimiter, kNoColumn, text);
    const std::size_t end = text.find_last_not_of(u' ') + 1;
    add(SpanRole::padding, kNoColumn, text.substr(0, first));
    add(SpanRole::delimiter, kNoColumn, text.substr(first, end - first));
    add(SpanRole::padding, kNoColumn, text.substr(end));
  }

  const CutLine& line_;
  const Style style_;
  const Gaps& gaps_;
  std::vector<Span> spans_;
};

RowRole role_of(const CutLine& line, const Layout& layout) {
  const bool has_table = layout.no_table.empty();
  switch (line.fate) {
    case LineFate::names:
      return RowRole::names;
    case LineFate::units:
      return RowRole::units;
    case LineFate::descriptions:
      return RowRole::descriptions;
    case LineFate::blank:
      return RowRole::blank;
    case LineFate::comment:
      return has_table ? RowRole::comment : RowRole::text;
    case LineFate::rule:
      return has_table ? RowRole::rule : RowRole::text;
    case LineFate::footer:
      return RowRole::footer;
    case LineFate::preamble:
      return has_table ? RowRole::above : RowRole::text;
    case LineFate::data:
    case LineFate::omitted:
    case LineFate::failed:
      break;
  }
  return has_table ? RowRole::data : RowRole::text;
}

// -------------------------------------------------------------------------------------------------
// The lines

class PictureMaker {
 public:
  explicit PictureMaker(const reading::FileTop& top) : layout_(top.layout), lines_(top.lines) {
    picture_.num_columns = layout_.num_variables;
    picture_.is_by_place =
        layout_.mode == LayoutMode::space_aligned || layout_.mode == LayoutMode::fixed_width;
  }

  Picture make() {
    const std::size_t top = first_of_table();
    const std::size_t above = top > kMostAbove ? kMostAbove - 1 : top;
    for (std::size_t i = 0; i < above; ++i) add(lines_[i]);
    if (above < top) add_hidden(top - above);
    const std::size_t footer = first_of_footer();
    const std::size_t end = std::min(footer, top + kMostLines - picture_.rows.size());
    for (std::size_t i = top; i < end; ++i) gaps_.add(lines_[i]);
    for (std::size_t i = top; i < end; ++i) add(lines_[i]);
    add_rest(footer);
    return std::move(picture_);
  }

 private:
  // The number of lines before the table; 0 where none is found.
  std::size_t first_of_table() const {
    const auto first = std::find_if(lines_.begin(), lines_.end(), [](const CutLine& line) {
      return line.fate == LineFate::names || line.fate == LineFate::units ||
             line.fate == LineFate::descriptions || line.fate == LineFate::data;
    });
    return first == lines_.end() ? 0 : static_cast<std::size_t>(first - lines_.begin());
  }

  std::size_t first_of_footer() const {
    const auto first = std::find_if(lines_.begin(), lines_.end(), [](const CutLine& line) {
      return line.fate == LineFate::footer;
    });
    return static_cast<std::size_t>(first - lines_.begin());
  }

  void add(const CutLine& line) {
    const Style style = {layout_.no_table.empty(), picture_.is_by_place,
                         layout_.dialect.blanks_after_delimiters};
    picture_.rows.push_back({role_of(line, layout_), line.number, line.is_continued,
                             LineSpans(line, style, gaps_).take()});
    last_shown_ = line.number;
  }

  void add_hidden(std::uint64_t num_lines) {
    picture_.rows.push_back({RowRole::hidden, std::nullopt, false, {}, num_lines});
  }

  // What follows the lines that are shown, from the first line of a footer in the sample on, if it has one.
  void add_rest(std::size_t footer) {
    const std::uint64_t looked_at = layout_.lines.empty() ? 0 : layout_.lines.back().last_line;
    const bool has_footer = footer < lines_.size();
    const std::uint64_t end = has_footer ? lines_[footer].number - 1 : looked_at;
    if (end > last_shown_) add_hidden(end - last_shown_);
    if (has_footer) return add_footer(footer);
    if (!layout_.has_more_text) return;
    const std::size_t footer_lines = layout_.tail ? layout_.tail->footer_lines : 0;
    Row& unseen = picture_.rows.emplace_back();
    unseen.role = RowRole::unseen;
    unseen.is_estimate = true;
    if (layout_.lines_estimated && *layout_.lines_estimated > looked_at + footer_lines)
      unseen.num_lines = *layout_.lines_estimated - looked_at - footer_lines;
    if (footer_lines > 0) add_footer_of_tail(*layout_.tail);
  }

  void add_footer(std::size_t first) {
    const std::size_t end = std::min(lines_.size(), first + kMostFooter);
    for (std::size_t i = first; i < end; ++i) add(lines_[i]);
    if (end < lines_.size()) add_hidden(lines_.size() - end);
  }

  void add_footer_of_tail(const standalone::TailLook& tail) {
    const std::size_t count = std::min(tail.footer.size(), kMostFooter);
    for (std::size_t i = 0; i < count; ++i) {
      picture_.rows.push_back({RowRole::footer,
                               std::nullopt,
                               false,
                               {{SpanRole::text, kNoColumn, shown(tail.footer[i])}}});
    }
    if (tail.footer_lines > count) add_hidden(tail.footer_lines - count);
  }

  const Layout& layout_;
  const std::vector<CutLine>& lines_;
  Gaps gaps_;
  Picture picture_;
  std::uint64_t last_shown_ = 0;
};

}  // namespace

std::string_view to_string(RowRole role) {
  switch (role) {
    case RowRole::above:
      return "above";
    case RowRole::names:
      return "names";
    case RowRole::units:
      return "units";
    case RowRole::descriptions:
      return "notes";
    case RowRole::data:
      return "data";
    case RowRole::blank:
      return "blank";
    case RowRole::comment:
      return "comment";
    case RowRole::rule:
      return "rule";
    case RowRole::footer:
      return "footer";
    case RowRole::text:
    case RowRole::hidden:
    case RowRole::unseen:
      break;
  }
  return {};
}

std::optional<Picture> picture_of(const reading::FileTop& top) {
  const bool is_binary = top.layout.looks_binary || top.layout.no_table == "binary data";
  if (is_binary || top.layout.no_table == "empty" || top.lines.empty()) return std::nullopt;
  return PictureMaker(top).make();
}

}  // namespace textio::tool
