// cut_runs and cut_gaps: columns aligned by blanks.
#include <vltextstream/assessment/cuts.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;
using testing_support::shown;

struct CutCase {
  const char* rule;
  std::size_t least_blanks;
  std::u16string text;
  std::string records;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

// --- runs ------------------------------------------------------------------------------------

const CutCase kRunCases[] = {
    {"NoText", 1, u"", ""},
    {"SingleBlanks", 1, u"a b  c\n", "0[a][b][c]"},
    {"TwoBlanks", 2, u"a b  c\n", "0[a b][c]"},
    {"ManyBlanks", 2, u"a      b\n", "0[a][b]"},
    {"ATabSeparates", 2, u"a\tb c\n", "0[a][b c]"},
    {"ATabAfterABlank", 2, u"a \tb\t c\n", "0[a][b][c]"},
    {"BlanksAtTheEndsOfALine", 1, u"  a b \n", "0[a][b]"},
    {"BlankLines", 1, u"\na b\n  \nc d\n", "1[a][b] 3[c][d]"},
    {"Rules", 1, u"a b\n--- ---\nc d\n=====\n", "0[a][b] 2[c][d]"},
    {"CommentsAreRecords", 1, u"# a\nb c\n", "0[#][a] 1[b][c]"},
    {"RecordsOfDifferentLengths", 1, u"a\nb c d\n", "0[a] 1[b][c][d]"},

    {"DateAndTime", 1, u"2020-01-02 12:30 a\n", "0[2020-01-02 12:30][a]"},
    {"DateAndTimeTwice", 1, u"2020-01-02 12:30 2020-01-03 8:15:00\n",
     "0[2020-01-02 12:30][2020-01-03 8:15:00]"},
    {"DateAndTimeWithManyBlanks", 2, u"2020-01-02   12:30  a\n", "0[2020-01-02   12:30][a]"},
    {"TimeAndDate", 1, u"12:30 2020-01-02\n", "0[12:30][2020-01-02]"},
    {"DateAndNumber", 1, u"2020-01-02 1230\n", "0[2020-01-02][1230]"},
    {"DateAtTheEnd", 1, u"a 2020-01-02\n", "0[a][2020-01-02]"},
};

class CutRuns : public testing::TestWithParam<CutCase> {};
TEST_P(CutRuns, IntoTheseCells) {
  const Sample sample(GetParam().text);
  const Records records = cut_runs(sample.lines(), GetParam().least_blanks);
  EXPECT_EQ(shown(records), GetParam().records);
  EXPECT_TRUE(records.column_starts.empty());
}
INSTANTIATE_TEST_SUITE_P(Table, CutRuns, testing::ValuesIn(kRunCases), ByRule());

const CutCase kRestCases[] = {
    {"MorePieces", 1, u"a b c d  e\n", "0[a][b][c d  e]"},
    {"AsManyPieces", 1, u"a b c\n", "0[a][b][c]"},
    {"FewerPieces", 1, u"a b\n\nc\n", "0[a][b] 2[c]"},
    {"BlanksAtTheEnd", 1, u"a b c d  \n", "0[a][b][c d]"},
    {"SingleBlanksInside", 2, u"a b  c d  e  f\n", "0[a b][c d][e  f]"},
    {"ADateWithItsTimeIsOneCell", 1, u"2020-01-02 12:30 a b c\n", "0[2020-01-02 12:30][a][b c]"},
    {"DateAndTimeInTheRest", 1, u"a b c 2020-01-02 12:30\n", "0[a][b][c 2020-01-02 12:30]"},
};

class CutRunsWithRest : public testing::TestWithParam<CutCase> {};
TEST_P(CutRunsWithRest, HaveThreeCellsAtMost) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_runs(sample.lines(), GetParam().least_blanks, 3)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutRunsWithRest, testing::ValuesIn(kRestCases), ByRule());

TEST(CutRunsIntoOneCell, TakesTheLine) {
  const Sample sample(u" a b c\n");
  EXPECT_EQ(shown(cut_runs(sample.lines(), 1, 1)), "0[a b c]");
}

// --- gaps ------------------------------------------------------------------------------------

const CutCase kGapCases[] = {
    {"NoText", 1, u"", ""},
    {"OneLine", 1, u"a b\n", ""},
    {"OneColumn", 1, u"abc\nde\n", ""},
    {"NoGapInCommon", 1, u"ab cd\na bcd\nabc d\n", ""},
    {"TwoColumns", 1, u"ab 12\ncd  3\n", "0[ab][12] 1[cd][3]"},
    {"RightAligned", 1, u" a  1\nbb 22\n", "0[a][1] 1[bb][22]"},
    {"EmptyCellInside", 1, u"a 1 x\nb   y\nc 3 z\n", "0[a][1][x] 1[b][][y] 2[c][3][z]"},
    {"EmptyCellAtTheEnd", 1, u"ab 12\ncd\nef 34\n", "0[ab][12] 1[cd][] 2[ef][34]"},
    {"EmptyCellAtTheStart", 1, u"ab 12\n   34\nef 56\n", "0[ab][12] 1[][34] 2[ef][56]"},
    {"BlanksWithinCells", 2, u"ann lee  12\nbob kay  34\n", "0[ann lee][12] 1[bob kay][34]"},
    {"GapOfOneBlankOnly", 2, u"ab 12\ncd 34\n", ""},
    {"BlankLinesAndRules", 1, u"ab 12\n-- --\n\ncd 34\n", "0[ab][12] 3[cd][34]"},
    {"LastLineWithoutAnEnding", 1, u"ab 12\ncd 34", "0[ab][12] 1[cd][34]"},

    {"FirstLinesHaveOneColumnOnTheLeft", 1, u"a\nb\nc\nd 1\ne 2\nf 3\n",
     "0[a][] 1[b][] 2[c][] 3[d][1] 4[e][2] 5[f][3]"},
    {"FirstLinesHaveOneColumnOnTheRight", 1, u"  1\n  2\n  3\nd 4\ne 5\nf 6\n",
     "0[][1] 1[][2] 2[][3] 3[d][4] 4[e][5] 5[f][6]"},
    {"LineAboveThatClosesTheGap", 1, u"Results of today\nab 12\ncd 34\n",
     "0[Results of today] 1[ab][12] 2[cd][34]"},
    {"LineAboveThatFits", 1, u"n  v\nab 12\ncd 34\n", "0[n][v] 1[ab][12] 2[cd][34]"},
    {"CommentIsOneCell", 1, u"# of a day\nab 12\ncd 34\n", "0[# of a day] 1[ab][12] 2[cd][34]"},

    {"DatesAndTimes", 1, u"2020-01-02 10:00 a\n2020-01-03 11:30 b\n",
     "0[2020-01-02 10:00][a] 1[2020-01-03 11:30][b]"},
    {"DatesAndNumbers", 1, u"2020-01-02 1000 a\n2020-01-03 1130 b\n",
     "0[2020-01-02][1000][a] 1[2020-01-03][1130][b]"},
    {"DatesAndTimesFarApart", 1, u"2020-01-02  10:00\n2020-01-03  11:30\n",
     "0[2020-01-02][10:00] 1[2020-01-03][11:30]"},
};

class CutGaps : public testing::TestWithParam<CutCase> {};
TEST_P(CutGaps, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_gaps(sample.lines(), GetParam().least_blanks)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutGaps, testing::ValuesIn(kGapCases), ByRule());

const CutCase kNamedCases[] = {
    {"ANameOverTwoColumns", 1, u"item   qty\nred ox   1\nold ox   2\n",
     "0[item][qty] 1[red ox][1] 2[old ox][2]"},
    {"ColumnsWithoutANameBelongToTheOneBefore", 1,
     u"id  t       year\n1   a b c   1999\n2   d e f   2001\n",
     "0[id][t][year] 1[1][a b c][1999] 2[2][d e f][2001]"},
    {"LinesThatCloseGapsWithinAColumn", 1,
     u"a   text     n\n1   abcdefg  5\n2   ab  efg  6\n3   ab  efg  7\n4   ab  efg  8\n",
     "0[a][text][n] 1[1][abcdefg][5] 2[2][ab  efg][6] 3[3][ab  efg][7] 4[4][ab  efg][8]"},
    {"NothingToChange", 1, u"id  year\n1   1999\n2   2001\n", ""},
    {"OneNameForAll", 1, u"abcdefg\na b c d\ne f g h\n", ""},
};

class CutByNames : public testing::TestWithParam<CutCase> {};
TEST_P(CutByNames, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_gaps(sample.lines(), GetParam().least_blanks, true)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutByNames, testing::ValuesIn(kNamedCases), ByRule());

struct StartCase {
  const char* rule;
  std::u16string text;
  std::vector<std::size_t> starts;
};
std::ostream& operator<<(std::ostream& out, const StartCase& row) { return out << row.rule; }

const StartCase kStartCases[] = {
    {"OneBlankBetween", u"ab 12 x\ncd 34 y\n", {0, 3, 6}},
    {"ManyBlanksBetween", u"ab    12\ncd    34\n", {0, 6}},
    {"BlanksBeforeAll", u"  ab 12\n  cd 34\n", {2, 5}},
    {"LeftmostOfAllCells", u"ab   1\ncd 234\n", {0, 3}},
    {"DateWithItsTime", u"2020-01-02 10:00 a\n2020-01-03 11:30 b\n", {0, 17}},
    {"NoColumns", u"abc\ndef\n", {}},
};

class CutGapsStarts : public testing::TestWithParam<StartCase> {};
TEST_P(CutGapsStarts, AreWhereTheColumnsBegin) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(cut_gaps(sample.lines(), 1).column_starts, GetParam().starts);
}
INSTANTIATE_TEST_SUITE_P(Table, CutGapsStarts, testing::ValuesIn(kStartCases), ByRule());

// Of many lines the last hundred decide: what is above them and fits belongs to the table, what
// does not is one cell.
TEST(CutGapsOfManyLines, FollowsTheLastHundred) {
  std::u16string text = u"ab 12\nabcde\n";
  for (int k = 0; k < 150; ++k) text += u"cd 34\n";
  const Sample sample(text);
  const Records records = cut_gaps(sample.lines(), 1);
  ASSERT_EQ(records.size(), 152U);
  EXPECT_EQ(records[0].num_cells, 2U);
  EXPECT_EQ(records[1].num_cells, 1U);
  EXPECT_EQ(records[2].num_cells, 2U);
}

// One wide line among short ones: nearly all cells would be empty.
TEST(CutGapsOfSparseLines, AreNone) {
  std::u16string wide;
  for (int k = 0; k < 5'000; ++k) wide += u"a ";
  std::u16string narrow;
  for (int k = 0; k < 200; ++k) narrow += u"b c\n";
  for (const std::u16string& text : {narrow + wide, wide + u'\n' + narrow}) {
    const Sample sample(text);
    const Records records = cut_gaps(sample.lines(), 1);
    EXPECT_TRUE(records.empty());
    EXPECT_TRUE(records.column_starts.empty());
  }
}

TEST(CutGapsOfWideLines, AreAllTheirColumns) {
  std::u16string text;
  for (int line = 0; line < 20; ++line) {
    for (int k = 0; k < 5'000; ++k) text += u"a ";
    text += u'\n';
  }
  const Sample sample(text);
  const Records records = cut_gaps(sample.lines(), 1);
  ASSERT_EQ(records.size(), 20U);
  EXPECT_EQ(records[19].num_cells, 5'000U);
}

// A date and a time are one column if they are in six of ten lines.
TEST(CutGapsOfDates, JoinTimesThatAreInMostLines) {
  for (const int times : {5, 6}) {
    std::u16string text;
    for (int line = 0; line < 10; ++line) {
      text += line < times ? u"2024-05-01 10:15 7\n" : u"2024-05-01 abcde 7\n";
    }
    const Sample sample(text);
    const Records records = cut_gaps(sample.lines(), 1);
    ASSERT_EQ(records.size(), 10U);
    EXPECT_EQ(records[9].num_cells, times == 6 ? 2U : 3U);
  }
}

}  // namespace
}  // namespace textio::assessment
