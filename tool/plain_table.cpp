#include "tool/plain_table.hpp"

#include <algorithm>
#include <utility>

#include "tool/safe_text.hpp"
#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kEllipsis = "...";
constexpr std::string_view kGap = "  ";

std::string cut(std::string text) {
  if (length_within(text, PlainTable::kMostWidth) == text.size()) return text;
  text.resize(length_within(text, PlainTable::kMostWidth - kEllipsis.size()));
  return text += kEllipsis;
}

}  // namespace

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
