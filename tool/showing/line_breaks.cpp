#include "tool/showing/line_breaks.hpp"

#include <algorithm>

#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kBlank = " ";

// Where the text after the heading of the line begins; headings are of ASCII, and two blanks follow them. A long one
// would leave the text no room.
std::size_t indent_of(std::string_view line, std::size_t width) {
  const std::size_t begin = std::min(line.find_first_not_of(kBlank), line.size());
  std::size_t indent = begin + 2;
  for (std::size_t gap = line.find("  ", begin); gap != line.npos; gap = line.find("  ", indent)) {
    const std::size_t text = line.find_first_not_of(kBlank, gap);
    if (text == line.npos || text > width / 2) break;
    indent = text;
  }
  return std::min(indent, width / 2);
}

// The bytes of the first part; it ends with a word, and is longer than the width if a word is. Nothing is broken before
// `first`.
std::size_t length_of_part(std::string_view text, std::size_t first, std::size_t width) {
  const std::size_t fitting = length_within(text, width);
  if (fitting == text.size()) return fitting;
  const std::size_t last = text.rfind(' ', fitting);
  if (last != text.npos && last > first) return last;
  return std::min(text.find(' ', std::max(fitting, first)), text.size());
}

void append_broken(std::string& out, std::string_view line, std::size_t width) {
  const std::size_t indent = indent_of(line, width);
  std::size_t length = length_of_part(line, indent, width);
  for (;;) {
    const std::size_t next = line.find_first_not_of(kBlank, length);
    if (next == line.npos) break;
    const std::size_t end = line.find_last_not_of(kBlank, length) + 1;
    out.append(line, 0, std::min(end, length)).append(1, '\n').append(indent, ' ');
    line.remove_prefix(next);
    length = length_of_part(line, 0, width - indent);
  }
  out.append(line) += '\n';
}

}  // namespace

std::string broken_to(std::string_view text, std::size_t width) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    append_broken(out, text.substr(0, end), width);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

}  // namespace textio::tool
