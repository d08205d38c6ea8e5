// A table has a kind of cell for each column, one delimiter and one line ending, and before it what
// files often begin with. Each of these is occasionally broken.
#include "fuzz/table_maker.hpp"

#include <algorithm>

#include "fuzz/choices.hpp"

namespace textio::fuzz {
namespace {

constexpr std::string_view kNumbers[] = {"1", "-2.5", "1e5", ".5", "NaN", "12345", "0", "1.5D-3"};
constexpr std::string_view kDates[] = {"2024-03-01",    "01.03.2024", "3/1/24",
                                       "March 1, 2024", "2024-02-30", "20240301"};
constexpr std::string_view kDatetimes[] = {"2024-03-01 10:00:00", "2024-03-01T10:00Z",
                                           "1 Mar 2024 9:30", "10:00:00 2024-03-01"};
constexpr std::string_view kDurations[] = {"1:02:03", "12:30", "::", "1:02:03.5", "99:99:99"};
constexpr std::string_view kTexts[] = {"north", "a b", "\xC6t\xC6", "x", "km/h", "id", "it's", "-"};
constexpr std::string_view kQuoted[] = {"\"q\"", "\"a,b\"", "\"x\ny\"", "\"he said \"\"no\"\"\"",
                                        "\"\"",  "\"1\"",   "\"open",   "\""};
constexpr std::string_view kOdd[] = {"", " ", "1+2i", "3j", "\x81", "\x80", "1:2", "i", "+", "1."};

constexpr std::string_view kDelimiters[] = {",", ",",  ";",  "\t", " ", "|",
                                            ":", "  ", ", ", "#",  "/"};
constexpr std::string_view kLineEndings[] = {"\n", "\n", "\r\n", "\r", "\n\n", ";"};
constexpr std::string_view kPreambles[] = {
    "Measured in winter", "# a, b; c", "",     "station 12: north", "% remark", "2024-03-01",
    "\"quoted\" words",   "a,b",       "// x", "/* y */",           " "};
constexpr std::size_t kMostColumns = 6;
constexpr std::size_t kMostRows = 16;
constexpr std::size_t kCellWidth = 8;

std::string joined(const std::vector<std::string>& lines, std::string_view ending) {
  std::string out;
  for (const std::string& line : lines) out.append(line).append(ending);
  return out;
}

// The text between line feeds. The other bytes of longer line endings stay in the lines.
std::vector<std::string> lines_of(const std::string& table) {
  std::vector<std::string> lines;
  std::size_t begin = 0;
  for (std::size_t end = table.find('\n'); end != table.npos; end = table.find('\n', begin)) {
    lines.push_back(table.substr(begin, end - begin));
    begin = end + 1;
  }
  lines.push_back(table.substr(begin));
  return lines;
}

void replace_all(std::string& text, char from, std::string_view to) {
  std::string out;
  for (const char c : text) c == from ? out.append(to) : out.append(1, c);
  text = out;
}

}  // namespace

std::string TableMaker::choices() {
  std::string bytes(kChoiceBytes, '\0');
  const auto set = [&](std::size_t place, std::size_t value) {
    bytes[place] = static_cast<char>(value);
  };
  if (one_in(3)) set(kNumLinesByte, below(256));
  if (one_in(4)) set(kHeaderLinesByte, one_in(6) ? below(256) : below(6));
  if (one_in(5)) set(kNumVariablesByte, one_in(6) ? below(256) : below(8));
  if (one_in(6)) set(kLineEndingsByte, below(256));
  if (one_in(3)) set(kCommentsByte, one_in(4) ? below(256) : below(comment_lists().size()));
  if (one_in(6)) set(kWhitespaceByte, below(256));
  if (one_in(4)) {
    for (std::size_t i = kFreeBytes; i < kChoiceBytes; ++i) {
      set(i, one_in(2) ? below(4) : below(128));
    }
  }
  return bytes;
}

std::string TableMaker::cell(std::size_t kind) {
  switch (kind) {
    case 0:
    case 1:
      return one_in(2) ? std::string(one_of(kNumbers)) : std::to_string(below(1000));
    case 2:
      return std::string(one_of(kDates));
    case 3:
      return std::string(one_of(kDatetimes));
    case 4:
      return std::string(one_of(kDurations));
    case 5:
      return std::string(one_of(kQuoted));
    case 6:
      return std::string(one_of(kOdd));
    default:
      return std::string(one_of(kTexts));
  }
}

// With a `width`, cells are padded to it.
std::string TableMaker::row(const std::vector<std::size_t>& kinds, const std::string& delimiter,
                            std::size_t width) {
  std::string line;
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    if (i > 0) line += delimiter;
    std::string text = cell(one_in(12) ? below(8) : kinds[i]);
    if (width > 0) text.resize(std::max(width, text.size()), ' ');
    line += text;
  }
  return line;
}

std::string TableMaker::table() {
  const std::string delimiter(one_of(kDelimiters));
  const std::size_t width = one_in(4) ? kCellWidth : 0;
  std::vector<std::size_t> kinds(1 + below(kMostColumns));
  for (std::size_t& kind : kinds) kind = below(9);
  Lines lines;
  for (std::size_t i = one_in(3) ? below(5) : 0; i > 0; --i) {
    lines.emplace_back(one_of(kPreambles));
  }
  if (one_in(2)) lines.push_back(row(std::vector<std::size_t>(kinds.size(), 7), delimiter, width));
  for (std::size_t i = below(kMostRows); i > 0; --i) {
    lines.push_back(row(kinds, delimiter, width));
    if (one_in(12)) lines.emplace_back(one_of(kPreambles));
    if (one_in(20)) lines.push_back(row({kinds.front()}, delimiter, width));
    if (one_in(20)) lines.back() += delimiter;
  }
  std::string out = joined(lines, one_of(kLineEndings));
  if (one_in(3) && !out.empty()) out.pop_back();
  return out;
}

// The delimiter that the line seems to have, otherwise a comma.
char TableMaker::delimiter_in(const std::string& line) {
  const std::size_t place = line.find_first_of(",;\t|:# /");
  return place == line.npos ? ',' : line[place];
}

void TableMaker::change_fields(std::string& line) {
  const char delimiter = delimiter_in(line);
  std::vector<std::string> fields;
  std::size_t begin = 0;
  for (std::size_t end = line.find(delimiter); end != line.npos;
       end = line.find(delimiter, begin)) {
    fields.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  fields.push_back(line.substr(begin));
  const std::size_t place = below(fields.size());
  const auto at = fields.begin() + static_cast<std::ptrdiff_t>(place);
  switch (below(5)) {
    case 0:
      fields.insert(at, cell(below(8)));
      break;
    case 1:
      fields.erase(at);
      break;
    case 2:
      *at = '"' + *at + '"';
      break;
    case 3:
      at->resize(std::max(kCellWidth, at->size()), ' ');
      break;
    default:
      *at = cell(below(8));
  }
  line = joined(fields, std::string_view(&delimiter, 1));
  if (!line.empty()) line.pop_back();
}

void TableMaker::change_lines(Lines& lines) {
  const std::size_t place = below(lines.size());
  const auto at = lines.begin() + static_cast<std::ptrdiff_t>(place);
  switch (below(7)) {
    case 0:
      lines.insert(at, std::string(*at));
      break;
    case 1:
      lines.erase(at);
      break;
    case 2:
      std::swap(*at, lines[below(lines.size())]);
      break;
    case 3:
      lines.insert(at, std::string(one_of(kPreambles)));
      break;
    case 4:
      for (std::string& line : lines) line += delimiter_in(line) + cell(below(8));
      break;
    default:
      change_fields(*at);
  }
}

void TableMaker::change(std::string& table) {
  switch (below(8)) {
    case 0:
      return replace_all(table, delimiter_in(table), one_of(kDelimiters));
    case 1:
      return replace_all(table, '\n', one_of(kLineEndings));
    case 2:
      table.resize(below(table.size() + 1));
      return;
    default: {
      Lines lines = lines_of(table);
      change_lines(lines);
      table = joined(lines, "\n");
      if (!table.empty()) table.pop_back();
    }
  }
}

void TableMaker::add_noise(std::string& bytes) {
  constexpr char kBytes[] = ",; \t\n\r\"%#1a.:-|\x80\x81\x83";
  for (std::size_t i = 1 + below(3); i > 0; --i) {
    const std::size_t place = below(bytes.size() + 1);
    switch (below(3)) {
      case 0:
        bytes.insert(place, 1, one_of(kBytes));
        break;
      case 1:
        if (place < bytes.size()) bytes.erase(place, 1);
        break;
      default:
        if (place < bytes.size()) bytes[place] = one_of(kBytes);
    }
  }
}

}  // namespace textio::fuzz
