// Each row becomes pieces, whose widths are known. Then it is made to fit: long cells share what there is, and what is
// still too much is cut at the end. Only then colours and isolating marks are added, which take no places.
#include "tool/showing/terminal_picture.hpp"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tool/grouped.hpp"
#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";
constexpr std::string_view kBar = "\xE2\x94\x82";
constexpr std::string_view kDot = "\xC2\xB7";       // a blank that separates
constexpr std::string_view kMore = "\xE2\x8B\xAE";  // three dots, one below the other
constexpr std::string_view kIsolate = "\xE2\x81\xA8";
constexpr std::string_view kEndIsolate = "\xE2\x81\xA9";
constexpr std::string_view kPlain = "\x1B[0m";

// Places that a cell keeps if all columns fit then, and otherwise.
constexpr std::size_t kLeastCell = 8;
constexpr std::size_t kUsualCell = 20;

struct Piece {
  SpanRole role = SpanRole::text;
  std::size_t column = kNoColumn;
  std::string text;
  std::size_t width = 0;
};

// ---------------------------------------------------------------------------------------------
// Pieces

// A letter with more marks than any language has ends the text.
void add(std::vector<Piece>& pieces, SpanRole role, std::size_t column, std::string_view text) {
  if (text.empty()) return;
  const std::size_t length = length_within(text, text.size() * 2);
  std::string shown(text.substr(0, length));
  if (length < text.size()) shown += kEllipsis;
  pieces.push_back({role, column, shown, most_width(shown)});
}

bool is_cell(SpanRole role) {
  return role == SpanRole::cell || role == SpanRole::name || role == SpanRole::unit;
}

// A blank that is the delimiter cannot be seen, and is shown as a dot.
std::string visible(std::string_view delimiter) {
  std::string out;
  for (const char c : delimiter) {
    if (c == ' ') {
      out += kDot;
    } else {
      out += c;
    }
  }
  return out;
}

// A bar is at each border; with colours, only where no blank is.
std::vector<Piece> pieces_of(const Row& row, bool has_color) {
  std::vector<Piece> pieces;
  const auto is_padding = [&](std::size_t i) {
    return i < row.spans.size() && row.spans[i].role == SpanRole::padding;
  };
  for (std::size_t i = 0; i < row.spans.size(); ++i) {
    const Span& span = row.spans[i];
    if (span.role == SpanRole::border) {
      const bool is_beside_blank = is_padding(i + 1) || (i > 0 && is_padding(i - 1));
      if (!has_color || !is_beside_blank) add(pieces, span.role, kNoColumn, kBar);
      continue;
    }
    const bool is_delimiter = span.role == SpanRole::delimiter;
    add(pieces, span.role, span.column, is_delimiter ? visible(span.text) : span.text);
  }
  return pieces;
}

// ---------------------------------------------------------------------------------------------
// Widths

std::size_t total_width(const std::vector<Piece>& pieces) {
  std::size_t width = 0;
  for (const Piece& piece : pieces) width += piece.width;
  return width;
}

// The text with the ellipsis takes at most `width` places, at least 1.
void shorten(Piece& piece, std::size_t width) {
  if (piece.width <= width && length_within(piece.text, width) == piece.text.size()) return;
  piece.text.resize(length_within(piece.text, width - 1));
  piece.text += kEllipsis;
  piece.width = most_width(piece.text);
}

// The most places for a cell with which all of them take no more than `room`; 0 if that is too few.
std::size_t fair_share(std::vector<std::size_t> widths, std::size_t room) {
  std::sort(widths.begin(), widths.end());
  for (std::size_t i = 0; i < widths.size(); ++i) {
    const std::size_t share = room / (widths.size() - i);
    if (widths[i] > share) return share < kLeastCell ? 0 : share;
    room -= widths[i];
  }
  return widths.empty() ? 0 : widths.back();
}

// Shortens long cells.
void share_out(std::vector<Piece>& pieces, std::size_t width) {
  std::vector<std::size_t> cells;
  std::size_t other = 0;
  for (const Piece& piece : pieces) {
    if (is_cell(piece.role)) {
      cells.push_back(piece.width);
    } else {
      other += piece.width;
    }
  }
  const std::size_t share = fair_share(std::move(cells), width - std::min(width, other));
  for (Piece& piece : pieces) {
    if (is_cell(piece.role)) shorten(piece, share > 0 ? share : kUsualCell);
  }
}

// Returns whether something of the row is left out.
bool cut_at_end(std::vector<Piece>& pieces, std::size_t width) {
  if (total_width(pieces) <= width) return false;
  std::size_t used = 0;
  std::size_t i = 0;
  while (used + pieces[i].width < width) used += pieces[i++].width;
  Piece& last = pieces[i];
  last.text.resize(length_within(last.text, width - 1 - used));
  last.text += kEllipsis;
  last.width = most_width(last.text);
  pieces.resize(i + 1);
  return true;
}

// ---------------------------------------------------------------------------------------------
// Colours

// Themes of terminals change the first 16 colours, and some of those cannot be read on white or on black. These are of
// the other 240 and of middle brightness, so that they can be read on both.
constexpr std::string_view kNames[] = {"\x1B[1;38;5;30m", "\x1B[1;38;5;133m"};  // teal and purple
constexpr std::string_view kUnits[] = {"\x1B[3;38;5;30m", "\x1B[3;38;5;133m"};
constexpr std::string_view kCells[] = {"\x1B[38;5;30m", "\x1B[38;5;133m"};
constexpr std::string_view kDelimiters = "\x1B[1;38;5;161m";  // red
constexpr std::string_view kComments = "\x1B[38;5;28m";       // green
constexpr std::string_view kFaint = "\x1B[38;5;243m";         // grey

std::string_view color_of(const Piece& piece, RowRole row) {
  const std::size_t shade = piece.column == kNoColumn ? 0 : piece.column % 2;
  switch (piece.role) {
    case SpanRole::name:
      return kNames[shade];
    case SpanRole::unit:
      return kUnits[shade];
    case SpanRole::cell:
      return kCells[shade];
    case SpanRole::quote:
      return kFaint;
    case SpanRole::delimiter:
    case SpanRole::border:
      return kDelimiters;
    case SpanRole::padding:
      return {};
    case SpanRole::text:
      break;
  }
  if (row == RowRole::comment) return kComments;
  return row == RowRole::text || row == RowRole::data ? std::string_view() : kFaint;
}

// ---------------------------------------------------------------------------------------------
// The rows

std::string hidden_sentence(const Row& row) {
  const bool is_unseen = row.role == RowRole::unseen;
  if (!row.num_lines) return "more lines, which were not looked at";
  return fmt::format("{}{} more line{}{}", row.is_estimate ? "about " : "", grouped(*row.num_lines),
                     *row.num_lines == 1 ? "" : "s", is_unseen ? ", not looked at" : "");
}

class TerminalWriter {
 public:
  TerminalWriter(const Picture& picture, const TerminalStyle& style)
      : picture_(picture), style_(style) {
    for (const Row& row : picture.rows) {
      number_width_ =
          std::max(number_width_, row.line ? std::to_string(*row.line).size() : std::size_t{1});
      role_width_ = std::max(role_width_, to_string(row.role).size());
    }
    const std::size_t margin = number_width_ + role_width_ + 2 + (role_width_ > 0 ? 2 : 0) + 1;
    room_ = std::max(style.width, kLeastWidth);
    room_ -= std::min(room_ - 1, margin);
  }

  std::string write() {
    const Row* before = nullptr;
    for (const Row& row : picture_.rows) {
      write_row(row, before != nullptr && before->role == row.role);
      before = &row;
    }
    write_note();
    return std::move(out_);
  }

 private:
  void write(std::string_view color, std::string_view text) {
    const bool is_colored = style_.has_color && !color.empty();
    const bool is_isolated = has_right_to_left(text);
    if (is_colored) out_ += color;
    if (is_isolated) out_ += kIsolate;
    out_ += text;
    if (is_isolated) out_ += kEndIsolate;
    if (is_colored) out_ += kPlain;
  }

  // The role is written where it changes.
  void write_row(const Row& row, bool has_same_role) {
    const bool is_line = row.role != RowRole::hidden && row.role != RowRole::unseen;
    std::string number = row.line ? std::to_string(*row.line) : std::string();
    if (!is_line) number = kMore;
    const std::size_t places_before = number_width_ - (is_line ? number.size() : 1);
    const std::string_view role = has_same_role ? std::string_view() : to_string(row.role);
    std::string margin = fmt::format(" {:{}}{}  ", "", places_before, number);
    if (role_width_ > 0) margin += fmt::format("{:{}}  ", role, role_width_);
    std::vector<Piece> pieces;
    if (is_line) {
      pieces = pieces_of(row, style_.has_color);
    } else {
      add(pieces, SpanRole::padding, kNoColumn, hidden_sentence(row));
    }
    if (pieces.empty()) margin.erase(margin.find_last_not_of(' ') + 1);
    write(kFaint, margin);
    fit(pieces);
    for (const Piece& piece : pieces) {
      write(is_line ? color_of(piece, row.role) : kFaint, piece.text);
    }
    out_ += '\n';
  }

  void fit(std::vector<Piece>& pieces) {
    if (total_width(pieces) > room_ && !picture_.is_by_place) share_out(pieces, room_);
    if (!cut_at_end(pieces, room_)) return;
    std::size_t last = 0;
    for (const Piece& piece : pieces) {
      const bool is_shown = piece.column != kNoColumn && piece.text != kEllipsis;
      if (is_shown) last = std::max(last, piece.column + 1);
    }
    if (last > 0) shown_columns_ = std::max(shown_columns_, last);
  }

  void write_note() {
    if (shown_columns_ == 0 || shown_columns_ >= picture_.num_columns) return;
    std::vector<Piece> note;
    add(note, SpanRole::padding, kNoColumn,
        fmt::format(" {:{}}{}  the first {} of {} columns; --width N shows more", "",
                    number_width_ - 1, kMore, grouped(shown_columns_),
                    grouped(picture_.num_columns)));
    cut_at_end(note, std::max(style_.width, kLeastWidth));
    write(kFaint, note.front().text);
    out_ += '\n';
  }

  const Picture& picture_;
  const TerminalStyle style_;
  std::string out_;
  std::size_t number_width_ = 1;
  std::size_t role_width_ = 0;
  std::size_t room_ = 1;
  std::size_t shown_columns_ = 0;  // where not all fit
};

}  // namespace

std::string terminal_text(const Picture& picture, const TerminalStyle& style) {
  return TerminalWriter(picture, style).write();
}

}  // namespace textio::tool
