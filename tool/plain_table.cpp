#include "tool/plain_table.hpp"

#include <algorithm>
#include <utility>

#include <unicode/uchar.h>

#include <vltextstream/text/utf8.hpp>

#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kEllipsis = "...";
constexpr std::string_view kGap = "  ";

std::size_t width_of(char32_t code) {
  const auto c = static_cast<UChar32>(code);
  constexpr int kMarks = U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK;
  if ((U_GET_GC_MASK(c) & kMarks) != 0) return 0;
  const int width = u_getIntPropertyValue(c, UCHAR_EAST_ASIAN_WIDTH);
  return width == U_EA_WIDE || width == U_EA_FULLWIDTH ? 2 : 1;
}

// The bytes of the longest start that takes no more places.
std::size_t length_within(std::string_view text, std::size_t most_width) {
  std::size_t length = 0;
  std::size_t width = 0;
  while (length < text.size()) {
    const Utf8Character c = first_character(text.substr(length));
    width += width_of(c.code);
    if (width > most_width) break;
    length += c.length;
  }
  return length;
}

std::string cut(std::string text) {
  if (length_within(text, PlainTable::kMostWidth) == text.size()) return text;
  text.resize(length_within(text, PlainTable::kMostWidth - kEllipsis.size()));
  return text += kEllipsis;
}

}  // namespace

std::size_t display_width(std::string_view text) {
  std::size_t width = 0;
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    width += width_of(c.code);
    text.remove_prefix(c.length);
  }
  return width;
}

void PlainTable::add(const std::vector<std::string>& cells) {
  std::vector<Cell> row(sides_.size());
  for (std::size_t i = 0; i < std::min(cells.size(), row.size()); ++i) {
    row[i].text = cut(printable(cells[i]));
    row[i].width = display_width(row[i].text);
    widths_[i] = std::max(widths_[i], row[i].width);
  }
  rows_.push_back(std::move(row));
}

void PlainTable::add_line() { rows_.emplace_back(); }

std::string PlainTable::print() const {
  std::string out;
  for (const std::vector<Cell>& row : rows_) {
    append_row(out, row);
    out.resize(out.find_last_not_of(' ') + 1);
    out += '\n';
  }
  return out;
}

void PlainTable::append_row(std::string& out, const std::vector<Cell>& row) const {
  for (std::size_t i = 0; i < sides_.size(); ++i) {
    if (i > 0) out += kGap;
    if (row.empty()) {
      out.append(widths_[i], '-');
      continue;
    }
    const std::size_t rest = widths_[i] - row[i].width;
    if (sides_[i] == Side::right) out.append(rest, ' ');
    out += row[i].text;
    if (sides_[i] == Side::left) out.append(rest, ' ');
  }
}

}  // namespace textio::tool
