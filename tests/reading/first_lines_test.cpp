#include <vltextstream/reading/first_lines.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/text/utf8.hpp>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::reading {
namespace {

using standalone::DetectSettings;
using testing_support::ByRule;
using testing_support::TempFolder;
using Lines = std::vector<std::string>;

// "6 names: [date],[level]": the number, the fate, "+" for a line that goes on, and the text with brackets around the
// cells.
std::string shown(const CutLine& line) {
  std::string out = std::to_string(line.number) + (line.is_continued ? "+ " : " ");
  out += std::string(to_string(line.fate)) + ":";
  if (!line.text.empty()) out += " ";
  std::size_t pos = 0;
  const std::u16string_view text = line.text;
  for (const CutCell& cell : line.cells) {
    out += to_utf8_lossy(text.substr(pos, cell.begin - pos)) + "[";
    out += to_utf8_lossy(text.substr(cell.begin, cell.end - cell.begin)) + "]";
    pos = cell.end;
  }
  return out + to_utf8_lossy(text.substr(pos));
}

Lines shown(const std::vector<CutLine>& lines) {
  Lines out;
  for (const CutLine& line : lines) out.push_back(shown(line));
  return out;
}

struct TopCase {
  const char* rule;
  std::string text;
  std::size_t num_rows;
  Lines lines;
  DetectSettings settings = {};
};
std::ostream& operator<<(std::ostream& out, const TopCase& row) { return out << row.rule; }

DetectSettings delimiter(std::u16string text) {
  DetectSettings settings;
  settings.options.delimiters = {std::move(text)};
  settings.options.detect_delimiters = false;
  return settings;
}

const TopCase kTops[] = {
    {"NamesAndRows",
     "x,y\n1,a\n2,b\n",
     9,
     {"1 names: [x],[y]", "2 data: [1],[a]", "3 data: [2],[b]"}},
    {"NoMoreRowsThanAsked", "x,y\n1,a\n2,b\n3,c\n", 1, {"1 names: [x],[y]", "2 data: [1],[a]"}},
    {"QuotesAreNotOfTheCell",
     "x,y\n1,\"a,b\"\n2,\"c\"\n",
     9,
     {"1 names: [x],[y]", "2 data: [1],\"[a,b]\"", "3 data: [2],\"[c]\""}},
    {"RowOverTwoLines",
     "x,y,z\n1,\"a\nb\",3\n2,\"c\",4\n5,\"d\",6\n",
     9,
     {"1 names: [x],[y],[z]", "2 data: [1],\"[a]", "3+ data: [b]\",[3]", "4 data: [2],\"[c]\",[4]",
      "5 data: [5],\"[d]\",[6]"}},
    {"EmptyCells",
     "x,y,z\n1,,3\n,5,\n",
     9,
     {"1 names: [x],[y],[z]", "2 data: [1],[],[3]", "3 data: [],[5],[]"}},
    {"LinesAboveAndFooter",
     "River levels\n\nday,level\n1,143\n2,147\n3,151\n4,152\n(4 rows)\n",
     2,
     {"1 preamble: River levels", "2 blank:", "3 names: [day],[level]", "4 data: [1],[143]",
      "5 data: [2],[147]", "8 footer: (4 rows)"}},
    {"GivenDelimiter",
     "a;b\n1;2\n3;4\n",
     9,
     {"1 names: [a];[b]", "2 data: [1];[2]", "3 data: [3];[4]"},
     delimiter(u";")},
    {"Crlf", "x,y\r\n1,a\r\n2,b\r\n", 1, {"1 names: [x],[y]", "2 data: [1],[a]"}},
    {"Aligned",
     "probe   depth\nA1        5.0\nA2       10.0\n",
     9,
     {"1 names: [probe]   [depth]", "2 data: [A1]        [5.0]", "3 data: [A2]       [10.0]"}},
    {"SurrogatePairs",
     "x,y\n\xF0\x9F\x98\x80,1\n\xF0\x9F\x98\x82,2\n",
     1,
     {"1 names: [x],[y]", "2 data: [\xF0\x9F\x98\x80],[1]"}},
    {"EmptyFile", "", 9, {}},
};

class FirstLines : public testing::TestWithParam<TopCase> {};
TEST_P(FirstLines, AreThoseOfTheFile) {
  const TempFolder folder;
  const TopCase& row = GetParam();
  const std::string path = folder.file("t", row.text);
  const FileTop top = look_at_top(path, row.settings, row.num_rows);
  EXPECT_EQ(shown(top.lines), row.lines);
}
TEST_P(FirstLines, AreTheSameOfAKnownLayout) {
  const TempFolder folder;
  const TopCase& row = GetParam();
  const std::string path = folder.file("t", row.text);
  const standalone::Layout layout = standalone::detect_layout(path, row.settings);
  EXPECT_EQ(shown(first_lines(path, layout, row.settings, row.num_rows)), row.lines);
  EXPECT_EQ(shown(first_lines_of_bytes(row.text, layout, row.settings, row.num_rows)), row.lines);
}
INSTANTIATE_TEST_SUITE_P(Table, FirstLines, testing::ValuesIn(kTops), ByRule());

TEST(LookAtTop, HasNoLinesForOtherLineEndings) {
  const TempFolder folder;
  DetectSettings settings;
  settings.options.line_endings = {u"x"};
  const FileTop top = look_at_top(folder.file("t", "1,2x3,4x"), settings, 9);
  EXPECT_EQ(top.layout.num_variables, 2U);
  EXPECT_TRUE(top.lines.empty());
  EXPECT_THROW(first_lines_of_bytes("1,2x3,4x", top.layout, settings, 9), ReadError);
}

TEST(LookAtTop, ComplainsOfAFileThatCannotBeOpened) {
  EXPECT_THROW(look_at_top("no/such/file", {}, 9), standalone::FileError);
}

}  // namespace
}  // namespace textio::reading
