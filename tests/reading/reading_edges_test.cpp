// Texts at the edges of what a table is, and at the borders of windows and reads.
#include <cstdint>
#include <numeric>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/reading/table_reader.hpp>
#include "support/archives.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using namespace std::string_literals;
using standalone::Layout;
using standalone::LayoutMode;
using testing_support::ByRule;
using testing_support::gzip_of;

using Rows = std::vector<std::vector<std::string>>;
using Fates = std::vector<std::pair<LineFate, std::uint64_t>>;

constexpr auto kData = LineFate::data;
constexpr auto kBlank = LineFate::blank;
constexpr std::size_t kChunkBytes = 65'536;

Layout commas(std::size_t columns, const std::string& encoding = "UTF-8") {
  Layout layout;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {u","};
  layout.num_variables = columns;
  layout.encoding = encoding;
  layout.confidence = 1.0;
  return layout;
}

ReadSettings texts(std::size_t window = 256) {
  ReadSettings settings;
  settings.all_text = true;
  settings.window = window;
  return settings;
}

void add_rows(const Batch& batch, Rows& rows) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) {
    std::vector<std::string> cells;
    for (const Column& column : batch.columns) {
      cells.emplace_back(column.is_missing(row) ? "(none)" : column.text_at(row));
    }
    rows.push_back(cells);
  }
}

Rows rows_of(TableReader& reader) {
  Rows rows;
  while (const auto batch = reader.next()) add_rows(*batch, rows);
  return rows;
}

Fates fates_of(const Account& account) {
  Fates fates;
  for (const FateRun& run : account.runs) fates.emplace_back(run.fate, run.num_lines);
  return fates;
}

struct EdgeCase {
  const char* rule;
  const char* encoding;
  std::string bytes;
  std::size_t columns;
  Rows rows;
  Fates fates;
};
std::ostream& operator<<(std::ostream& out, const EdgeCase& row) { return out << row.rule; }

const EdgeCase kEdgeCases[] = {
    {"NothingAtAll", "UTF-8", "", 2, {}, {}},
    {"OnlyLineEndings", "UTF-8", "\n\r\n\r", 2, {}, {{kBlank, 3}}},
    {"OneLineWithoutEnding", "UTF-8", "a,b", 2, {{"a", "b"}}, {{kData, 1}}},
    {"LoneReturns",
     "UTF-8",
     "a\rb\r\rc",
     1,
     {{"a"}, {"b"}, {"c"}},
     {{kData, 2}, {kBlank, 1}, {kData, 1}}},
    {"NulCharacters", "UTF-8", "a\0b,\0\n"s, 2, {{"a\0b"s, "\0"s}}, {{kData, 1}}},
    {"TheLastCodeUnit",
     "UTF-8",
     "a\xEF\xBF\xBF"
     "b,c\nd,\xEF\xBF\xBF\n",
     2,
     {{"a\xEF\xBF\xBF"
       "b",
       "c"},
      {"d", "\xEF\xBF\xBF"}},
     {{kData, 2}}},
    {"BytesThatAreNoCharacters",
     "UTF-8",
     "\xFF,\x80\n",
     2,
     {{"\xEF\xBF\xBD", "\xEF\xBF\xBD"}},
     {{kData, 1}}},
    {"TwoBytesEach",
     "UTF-16BE",
     "\xFE\xFF\0a\0,\0b\0\r\0\n\0c"s,
     2,
     {{"a", "b"}, {"c", "(none)"}},
     {{kData, 2}}},
    {"HalfACharacterAtTheEnd", "UTF-16LE", "a\0\n\0b"s, 1, {{"a"}, {"\xEF\xBF\xBD"}}, {{kData, 2}}},
};

class ReadingEdge : public testing::TestWithParam<EdgeCase> {};
TEST_P(ReadingEdge, IsReadAndAccountedFor) {
  const EdgeCase& row = GetParam();
  TableReader reader = TableReader::of_bytes(row.bytes, commas(row.columns, row.encoding), texts());
  EXPECT_EQ(rows_of(reader), row.rows);
  EXPECT_EQ(fates_of(reader.account()), row.fates);
  EXPECT_EQ(reader.account().num_bytes, row.bytes.size());
}
INSTANTIATE_TEST_SUITE_P(Table, ReadingEdge, testing::ValuesIn(kEdgeCases), ByRule());

TEST(ReadingEdges, AByteOrderMarkAloneIsNoLine) {
  TableReader reader = TableReader::of_bytes("\xEF\xBB\xBF", commas(1), texts());
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.account().num_lines, 0U);
}

// "\n" is byte 10, "\r" is byte 13, and they are not side by side: 11, 3 and 242 bytes.
TEST(ReadingEdges, AllBytesAreThreeLines) {
  std::string bytes(256, '\0');
  std::iota(bytes.begin(), bytes.end(), '\0');
  TableReader reader = TableReader::of_bytes(bytes, commas(2, "windows-1252"), texts());
  EXPECT_EQ(rows_of(reader).size(), 2U);
  const Fates expected = {{kData, 1}, {kBlank, 1}, {kData, 1}};
  EXPECT_EQ(fates_of(reader.account()), expected);
  EXPECT_EQ(reader.account().runs[0].num_bytes, 11U);
  EXPECT_EQ(reader.account().runs[1].num_bytes, 3U);
  EXPECT_EQ(reader.account().runs[2].num_bytes, 242U);
}

TEST(ReadingEdges, NothingIsAnEmptyTable) {
  for (const std::string bytes : {"", "\n", "\xEF\xBB\xBF"}) {
    const Table table = read_table_of_bytes(bytes);
    EXPECT_EQ(table.num_rows(), 0U);
    EXPECT_TRUE(table.batches.empty());
  }
}

// --- borders of windows and reads ------------------------------------------------------------------

// A line ending whose first character is the one with this number from 0, and a line after it.
void expect_two_lines_around(std::size_t place, const std::string& ending, std::size_t window) {
  const std::string bytes = std::string(place, 'x') + ending + "y,z" + ending;
  TableReader reader = TableReader::of_bytes(bytes, commas(2), texts(window));
  const Rows rows = rows_of(reader);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0][0].size(), place);
  EXPECT_EQ(rows[1], (std::vector<std::string>{"y", "z"}));
  const Fates expected = {{kData, 2}};
  EXPECT_EQ(fates_of(reader.account()), expected);
  EXPECT_EQ(reader.account().num_bytes, bytes.size());
}

TEST(ReadingBorder, LineEndingsAreWholeAtEveryBorder) {
  for (const std::size_t border :
       {std::size_t{256}, std::size_t{512}, kChunkBytes, 2 * kChunkBytes}) {
    for (std::size_t place = border - 3; place <= border + 1; ++place) {
      for (const std::string ending : {"\r\n", "\n", "\r"}) {
        SCOPED_TRACE(std::to_string(place));
        expect_two_lines_around(place, ending, 256);
        expect_two_lines_around(place, ending, kChunkBytes);
        expect_two_lines_around(place, ending, 1'048'576);
      }
    }
  }
}

TEST(ReadingBorder, AQuotedCellIsWholeAtEveryBorder) {
  const std::string cell = "\"a,\r\n\"\"b\r\n\",c\r\n";
  for (std::size_t before = 250 - cell.size(); before < 260; ++before) {
    const std::string bytes = std::string(before, 'x') + "\n" + cell + "d,e";
    TableReader reader = TableReader::of_bytes(bytes, commas(2), texts());
    const Rows rows = rows_of(reader);
    ASSERT_EQ(rows.size(), 3U) << before;
    EXPECT_EQ(rows[1], (std::vector<std::string>{"a,\r\n\"b\r\n", "c"})) << before;
    EXPECT_EQ(rows[2], (std::vector<std::string>{"d", "e"})) << before;
    EXPECT_EQ(reader.account().num_bytes, bytes.size());
    EXPECT_EQ(reader.account().lines_of(kData), 5U);
  }
}

// --- records that are too long ---------------------------------------------------------------------

std::string lines_of_ten(std::size_t count) {
  std::string bytes;
  for (std::size_t i = 0; i < count; ++i) bytes += "abcd,fghi\n";
  return bytes;
}

// Whatever the window: what precedes the record is given, and the account ends before it.
TEST(LongestRecord, IsTheSameLimitForEveryWindow) {
  const std::string before = lines_of_ten(40);
  for (const std::size_t window : {256U, 1000U, 1'048'576U}) {
    ReadSettings settings = texts(window);
    settings.longest_record = 300;
    const std::string fitting = before + std::string(300, 'x') + "\n" + before;
    TableReader reader = TableReader::of_bytes(fitting, commas(2), settings);
    EXPECT_EQ(rows_of(reader).size(), 81U);

    const std::string too_long = before + std::string(301, 'x') + "\n" + before;
    TableReader failing = TableReader::of_bytes(too_long, commas(2), settings);
    Rows rows;
    try {
      while (const auto batch = failing.next()) add_rows(*batch, rows);
      FAIL() << "the record was read";
    } catch (const ReadError& error) {
      EXPECT_STREQ(error.what(),
                   "line 41: a record has more than 300 characters; the limit is longest_record");
      EXPECT_EQ(error.line(), 41U);
    }
    EXPECT_EQ(rows.size(), 40U);
    EXPECT_EQ(failing.account().num_lines, 40U);
    EXPECT_FALSE(failing.next());
  }
}

// --- packed files that are cut short -----------------------------------------------------------------

TEST(CutArchive, IsAnErrorWhereverItIsCut) {
  const std::string packed = gzip_of(lines_of_ten(200));
  TableReader whole = TableReader::of_bytes(packed, commas(2), texts());
  EXPECT_EQ(rows_of(whole).size(), 200U);
  EXPECT_EQ(whole.account().num_bytes, 2000U);
  for (std::size_t size = 20; size < packed.size(); ++size) {
    const std::string cut = packed.substr(0, size);
    const auto read = [&] {
      TableReader reader = TableReader::of_bytes(cut, commas(2), texts());
      rows_of(reader);
    };
    EXPECT_THROW(read(), standalone::FileError) << size;
  }
}

// --- former bugs -----------------------------------------------------------------------------------

// A quote in a comment opened a quoted cell, which the lines that follow were lost in.
TEST(FormerReadingBugs, AQuoteInACommentOpensNothing) {
  Layout layout = commas(2);
  layout.dialect.comment_prefix = u"#";
  TableReader reader = TableReader::of_bytes("# a,\"b\n1,2\n# \",c\n3,4\n", layout, texts());
  EXPECT_EQ(rows_of(reader), (Rows{{"1", "2"}, {"3", "4"}}));
  EXPECT_EQ(reader.account().lines_of(LineFate::comment), 2U);
}

// Lines below a header were rules if the cascade had chosen the layout.
TEST(FormerReadingBugs, AHeaderAboveTheAnswerOfTheCascade) {
  Layout layout = commas(2);
  layout.confidence.reset();
  layout.header_lines = 1;
  TableReader reader = TableReader::of_bytes("a title\n1,2\n3,4\n", layout, texts());
  EXPECT_EQ(rows_of(reader), (Rows{{"1", "2"}, {"3", "4"}}));
}

// An empty cell was a value or none depending on whether a window before it had added its column.
TEST(FormerReadingBugs, EmptyCellsAfterTheColumnsOfTheLayoutAreNone) {
  const std::string bytes = "1,2,3\n" + lines_of_ten(60) + "4,5,\n6,\n";
  for (const std::size_t window : {256U, 100'000U}) {
    TableReader reader = TableReader::of_bytes(bytes, commas(2), texts(window));
    const Rows rows = rows_of(reader);
    ASSERT_EQ(rows.size(), 63U);
    EXPECT_EQ(rows[0], (std::vector<std::string>{"1", "2", "3"}));
    EXPECT_EQ(rows[61], (std::vector<std::string>{"4", "5", "(none)"}));
    EXPECT_EQ(reader.account().count_of(Oddity::long_row), 1U);
    EXPECT_EQ(reader.account().count_of(Oddity::short_row), 0U);
  }
}

Layout widths_of_two_and_three() {
  Layout layout = commas(2);
  layout.mode = LayoutMode::fixed_width;
  layout.widths = {2, 3};
  layout.delimiters.clear();
  return layout;
}

ReadSettings wrapping() {
  ReadSettings settings = texts();
  settings.detect.options.partial_field_rule = parser::partial_field_action::wrap;
  return settings;
}

// Blank lines and comments counted as parts of a row that goes on over lines; a footer cut it.
TEST(FormerReadingBugs, ARowOverLinesGoesOnInTheNextWindow) {
  Layout layout = widths_of_two_and_three();
  layout.dialect.comment_prefix = u"#";
  layout.has_more_text = true;
  layout.tail.emplace().footer_lines = 1;
  std::string bytes;
  for (int i = 0; i < 100; ++i) bytes += "ab\n    \n# x\n123\n";
  TableReader reader = TableReader::of_bytes(bytes + "end\n", layout, wrapping());
  EXPECT_EQ(rows_of(reader), Rows(100, {"ab", "123"}));
  EXPECT_EQ(reader.account().lines_of(kData), 200U);
  EXPECT_EQ(reader.account().lines_of(LineFate::footer), 1U);
}

// The lines of such a row but its first were omitted where another row was left out.
TEST(FormerReadingBugs, AllLinesOfARowOverLinesAreData) {
  ReadSettings settings = wrapping();
  settings.detect.options.missing_rule = parser::row_rule::omitrow;
  settings.detect.options.text_type = parser::text_kind::string;
  TableReader reader =
      TableReader::of_bytes("ab\n123\n  456\ncd\n789\n", widths_of_two_and_three(), settings);
  EXPECT_EQ(rows_of(reader), (Rows{{"ab", "123"}, {"cd", "789"}}));
  const Fates expected = {{kData, 2}, {LineFate::omitted, 1}, {kData, 2}};
  EXPECT_EQ(fates_of(reader.account()), expected);
}

class Noted : public ReadSettings::Rejects {
 public:
  void add(std::uint64_t line, std::u16string_view, std::string_view) override {
    lines.push_back(line);
  }
  std::vector<std::uint64_t> lines;
};

// Misfits were listed and rejected column by column.
TEST(FormerReadingBugs, MisfitsAreInTheOrderOfTheFile) {
  Noted noted;
  ReadSettings settings;
  settings.widen = false;
  settings.rejects = &noted;
  for (const std::size_t number : {1U, 2U})
    settings.types.push_back({u"", number, ColumnType::integer});
  TableReader reader = TableReader::of_bytes("1,x\ny,2\n3,z\n", commas(2), settings);
  while (reader.next()) {
  }
  EXPECT_EQ(noted.lines, (std::vector<std::uint64_t>{1, 2, 3}));
  std::vector<std::string> places;
  for (const OddPlace& place : reader.account().places) places.push_back(place.text);
  EXPECT_EQ(places, (std::vector<std::string>{"x", "y", "z"}));
}

// Ill-formed cells were not listed if they were in another window than the one that they were read with.
TEST(FormerReadingBugs, IllFormedCellsAreListedInTheirWindow) {
  const std::string bytes = lines_of_ten(25) + "ab,\xFF" + std::string(20, 'c') + "\n";
  TableReader reader = TableReader::of_bytes(bytes, commas(2), texts());
  EXPECT_EQ(rows_of(reader).size(), 26U);
  EXPECT_EQ(reader.account().count_of(Oddity::ill_formed), 1U);
  ASSERT_EQ(reader.account().places.size(), 1U);
  EXPECT_EQ(reader.account().places[0].line, 26U);
}

// A cascade's record whose quote was open at the end of a window ended there.
TEST(FormerReadingBugs, AnOpenQuoteOfTheCascadeGoesOn) {
  Layout layout = commas(2);
  layout.confidence.reset();
  const std::string bytes =
      lines_of_ten(25) + "a,\"b\nc\"\nd,e\n";  // 255 units up to the quoted ending
  TableReader reader = TableReader::of_bytes(bytes, layout, texts());
  const Rows rows = rows_of(reader);
  ASSERT_EQ(rows.size(), 27U);
  EXPECT_EQ(rows[25], (std::vector<std::string>{"a", "b\nc"}));
}

// The backslash goes with the bar that it escapes; before anything else it is a character of the cell.
TEST(EscapedBars, LoseTheirBackslashInAFrame) {
  Layout layout = commas(2);
  layout.delimiters = {u"|"};
  layout.is_framed = true;
  layout.escape = u'\\';
  TableReader reader =
      TableReader::of_bytes("| a\\|b | c\\d |\n|---|---|\n| \\| | e\\ |\n", layout, texts());
  EXPECT_EQ(rows_of(reader), (Rows{{"a|b", "c\\d"}, {"|", "e\\"}}));
}

}  // namespace
}  // namespace textio::reading
