// cut_delimited: cells between separators, with quotes.
#include <vltextstream/assessment/cuts.hpp>

#include <cstddef>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::kAllLines;
using testing_support::Sample;
using testing_support::shown;

const Reading kComma = {Form::delimited, u","};
const Reading kQuoted = {Form::delimited, u",", u'"'};
const Reading kEscaped = {Form::delimited, u",", u'"', u'\\'};

const Reading kEscapedSeparator = {Form::delimited, u",", 0, u'\\'};

struct CutCase {
  const char* rule;
  Reading reading;
  std::u16string text;
  std::string records;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kPlainCases[] = {
    {"NoText", kComma, u"", ""},
    {"OnlyBlankLines", kComma, u"\n \n\t\n", ""},
    {"TwoRecords", kComma, u"a,b\n1,2\n", "0[a][b] 1[1][2]"},
    {"BlankLinesAreNoRecords", kComma, u"\na\n\nb", "1[a] 3[b]"},
    {"EmptyCells", kComma, u"a,,b\n", "0[a][][b]"},
    {"EmptyCellsAtBothEnds", kComma, u",a,\n", "0[][a][]"},
    {"OnlyASeparator", kComma, u",", "0[][]"},
    {"BlanksBelongToTheCells", kComma, u" a , b\t\n", "0[ a ][ b\\u0009]"},
    {"LineEndingsOfTwoUnits", kComma, u"a,b\r\n1,2\r\n", "0[a][b] 1[1][2]"},
    {"RecordsOfDifferentLengths", kComma, u"a\nb,c,d\n,\n", "0[a] 1[b][c][d] 2[][]"},
    {"CommentsAreRecords", kComma, u"# a,b\nc,d\n", "0[# a][b] 1[c][d]"},
    {"QuotesWithoutMeaning", kComma, u"\"a,b\",c\n", "0[\"a][b\"][c]"},
    {"Blanks", {Form::delimited, u" "}, u"a  b c\n", "0[a][][b][c]"},
    {"Mark", {Form::delimited, u"||"}, u"a|b||c||\n", "0[a|b][c][]"},
    {"MarkThatOverlapsItself", {Form::delimited, u"||"}, u"a|||b\n", "0[a][|b]"},
    {"HalfAMarkAtTheEnd", {Form::delimited, u"||"}, u"a||b|\n|c\n", "0[a][b|] 1[|c]"},
    {"SeparatorOutsideAscii", {Form::delimited, u"\u00A7"}, u"a\u00A7b\n", "0[a][b]"},
    {"OneColumn", {Form::one}, u"a,b\n c \n", "0[a,b] 1[ c ]"},
};

const CutCase kQuoteCases[] = {
    {"SeparatorInQuotes", kQuoted, u"\"a,b\",c\n", "0{a,b}[c]"},
    {"LastCellInQuotes", kQuoted, u"a,\"b,c\"\n", "0[a]{b,c}"},
    {"AllInQuotes", kQuoted, u"\"a\",\"b\"\n\"1\",\"2\"\n", "0{a}{b} 1{1}{2}"},
    {"NothingInQuotes", kQuoted, u"\"\",a,\"\"\n", "0{}[a]{}"},
    {"DoubledQuotesStay", kQuoted, u"\"a\"\"b\",c\n", "0{a\"\"b}[c]"},
    {"DoubledQuotesAtTheEnds", kQuoted, u"\"\"\"a\"\"\",c\n", "0{\"\"a\"\"}[c]"},
    {"SeparatorBetweenDoubledQuotes", kQuoted, u"\"a\"\",\"\"b\",c\n", "0{a\"\",\"\"b}[c]"},
    {"BlanksAroundTheQuotes", kQuoted, u"a, \"b,c\" \t,d\n", "0[a]{b,c}[d]"},
    {"BlanksWithinTheQuotesStay", kQuoted, u"\" a \",b\n", "0{ a }[b]"},
    {"ATabBeforeTheQuote", kQuoted, u"a,\t\"b,c\"\n", "0[a][\\u0009\"b][c\"]"},
    {"OtherQuote", {Form::delimited, u",", u'\''}, u"'a,b',\"c\n", "0{a,b}[\"c]"},
    {"MarkInQuotes", {Form::delimited, u"||", u'"'}, u"\"a||b\"||c\n", "0{a||b}[c]"},
    {"BlanksAsSeparators", {Form::delimited, u" ", u'"'}, u"\"a b\" c\n", "0{a b}[c]"},
    {"OneColumnInQuotes", {Form::one, u"", u'"'}, u"\"a,b\"\nc\n", "0{a,b} 1[c]"},

    {"LinesInQuotes", kQuoted, u"a,\"b\nc\",d\n1,2,3\n", "0-1[a]{b\\u000Ac}[d] 2[1][2][3]"},
    {"BlankLinesInQuotes", kQuoted, u"\"a\n\n\nb\",c\n", "0-3{a\\u000A\\u000A\\u000Ab}[c]"},
    {"TwoCellsOverLines", kQuoted, u"\"a\nb\",\"c\nd\"\n", "0-2{a\\u000Ab}{c\\u000Ad}"},
    {"OneColumnOverLines", {Form::one, u"", u'"'}, u"\"a\nb\"\nc\n", "0-1{a\\u000Ab} 2[c]"},
    {"EndOfATextInQuotes", kQuoted, u"a,\"b\r\nc\"", "0-1[a]{b\\u000D\\u000Ac}"},
};

const CutCase kOddQuoteCases[] = {
    {"QuoteWithinACell", kQuoted, u"a\"b,c\n", "0[a\"b][c]"},
    {"TextAfterTheQuotes", kQuoted, u"\"a\"b,c\n", "0[\"a\"b][c]"},
    {"TextBetweenTwoPairs", kQuoted, u"\"a\" and \"b\",c\n", "0{a\" and \"b}[c]"},
    {"NotClosed", kQuoted, u"\"a,b\nc,d\n", "0[\"a][b] 1[c][d]"},
    {"NotClosedOnTheLastLine", kQuoted, u"a,b\nc,\"d\n", "0[a][b] 1[c][\"d]"},
    {"NotClosedAboveAQuotedLine", kQuoted, u"a,\"b\n\"c\",d\n", "0[a][\"b] 1{c}[d]"},
    {"NotClosedAboveAQuotedCell", kQuoted, u"a,\"b\nc,\"d\"\n", "0[a][\"b] 1[c]{d}"},
    {"NotClosedAboveAQuoteWithinACell", kQuoted, u"a,\"b\nc,d\"e\"\n", "0[a][\"b] 1[c][d\"e\"]"},
    {"ClosedAtTheStartOfALine", kQuoted, u"a,\"b\n\",c\n", "0-1[a]{b\\u000A}[c]"},
    {"ClosedAtTheEndOfTheText", kQuoted, u"a,\"b\n\"", "0-1[a]{b\\u000A}"},
    {"DoubledAtTheStartOfALine", kQuoted, u"a,\"b\n\"\"c\"\"\",d\n",
     "0-1[a]{b\\u000A\"\"c\"\"}[d]"},
    {"OnlyAQuote", kQuoted, u"\"", "0[\"]"},
    {"ThreeQuotes", kQuoted, u"\"\"\",a\n", "0[\"\"\"][a]"},
};

const CutCase kEscapeCases[] = {
    {"EscapedQuote", kEscaped, u"\"a\\\"b\",c\n", "0{a\\\"b}[c]"},
    {"EscapedQuoteBeforeASeparator", kEscaped, u"\"a\\\",b\",c\n", "0{a\\\",b}[c]"},
    {"EscapedEscape", kEscaped, u"\"a\\\\\",c\n", "0{a\\\\}[c]"},
    {"DoubledQuoteAsWell", kEscaped, u"\"a\"\"b\",c\n", "0{a\"\"b}[c]"},
    {"OutsideOfQuotesItIsText", kEscaped, u"a\\,b\n", "0[a\\][b]"},
    {"EscapedSeparator", kEscapedSeparator, u"a\\,b,c\\\\,d\n", "0[a\\,b][c\\\\][d]"},
    {"EscapedEndOfALine", kEscapedSeparator, u"a,b\\\nc,d\\", "0[a][b\\] 1[c][d\\]"},
    {"AtTheEndOfALine", kEscaped, u"\"a\\\nb\",c\n", "0-1{a\\\\u000Ab}[c]"},
    {"AtTheEndOfTheText", kEscaped, u"\"a,b\\", "0[\"a][b\\]"},
};

class CutDelimited : public testing::TestWithParam<CutCase> {};
TEST_P(CutDelimited, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_delimited(sample.lines(), GetParam().reading)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Plain, CutDelimited, testing::ValuesIn(kPlainCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Quotes, CutDelimited, testing::ValuesIn(kQuoteCases), ByRule());
INSTANTIATE_TEST_SUITE_P(OddQuotes, CutDelimited, testing::ValuesIn(kOddQuoteCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Escapes, CutDelimited, testing::ValuesIn(kEscapeCases), ByRule());

// --- the end of a sample ---------------------------------------------------------------------

struct SampleCase {
  const char* rule;
  std::u16string text;
  std::size_t num_lines;
  std::string records;
};
std::ostream& operator<<(std::ostream& out, const SampleCase& row) { return out << row.rule; }

const SampleCase kSampleCases[] = {
    {"WithinQuotesTheRecordIsMissing", u"a,b\nc,\"d\ne\",f\n", 2, "0[a][b]"},
    {"ThereIsNoOtherRecord", u"c,\"d\ne\",f\n", 1, "0[c]{d}"},
    {"OutsideOfQuotesNothingIsMissing", u"a,b\nc,\"d\"\ne,f\n", 2, "0[a][b] 1[c]{d}"},
    {"AtTheEndOfTheTextNothingIsMissing", u"a,b\nc,\"d\n", 2, "0[a][b] 1[c][\"d]"},
};

class CutDelimitedSample : public testing::TestWithParam<SampleCase> {};
TEST_P(CutDelimitedSample, EndsLikeThis) {
  const Sample sample(GetParam().text, GetParam().num_lines);
  EXPECT_EQ(shown(cut_delimited(sample.lines(), kQuoted)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutDelimitedSample, testing::ValuesIn(kSampleCases), ByRule());

// --- long quotes -----------------------------------------------------------------------------

std::u16string lines_of(std::size_t count, std::u16string_view line) {
  std::u16string text;
  for (std::size_t k = 0; k < count; ++k) {
    text += line;
    text += u'\n';
  }
  return text;
}

TEST(CutDelimitedLongQuotes, AreClosedOnTheFourHundredthLineAfterThem) {
  const Sample sample(u"\"a\n" + lines_of(399, u"b") + u"c\",d\n");
  const Records records = cut_delimited(sample.lines(), kQuoted);
  ASSERT_EQ(records.size(), 1U);
  EXPECT_EQ(records[0].num_lines, 401U);
  EXPECT_EQ(records[0].num_cells, 2U);
}

TEST(CutDelimitedLongQuotes, AreCharactersIfTheyAreNotClosedByThen) {
  const Sample sample(u"\"a\n" + lines_of(400, u"b") + u"c\",d\n");
  const Records records = cut_delimited(sample.lines(), kQuoted);
  EXPECT_EQ(records.size(), 402U);
  EXPECT_EQ(records.ill_placed_quotes, 2 + 1);  // one opens and one is within a cell
}

TEST(CutDelimitedLongQuotes, AreGivenUpAfterEight) {
  const std::u16string block = u"\"a\n" + lines_of(401, u"b");
  const std::u16string last = u"\"c,d\"\n";
  std::u16string text;
  for (int k = 0; k < 7; ++k) text += block;
  {
    const Sample sample(text + last);
    const Records records = cut_delimited(sample.lines(), kQuoted);
    ASSERT_EQ(records.size(), 7U * 402 + 1);
    EXPECT_EQ(records[7 * 402].num_cells, 1U);
  }
  text += block;
  {
    const Sample sample(text + last);
    const Records records = cut_delimited(sample.lines(), kQuoted);
    ASSERT_EQ(records.size(), 8U * 402 + 1);
    EXPECT_EQ(records[8 * 402].num_cells, 2U);
  }
}

// --- quotes in odd places --------------------------------------------------------------------

struct QuoteCount {
  const char* rule;
  Reading reading;
  std::u16string text;
  double ill_placed;
};
std::ostream& operator<<(std::ostream& out, const QuoteCount& row) { return out << row.rule; }

const Reading kSingle = {Form::delimited, u",", u'\''};

const QuoteCount kQuoteCounts[] = {
    {"None", kQuoted, u"a,\"b\"\n\"c\",\"d\"\"e\"\n", 0},
    {"WithinACell", kQuoted, u"a\"b,c\n", 1},
    {"TwiceWithinACell", kQuoted, u"a\"b\"c,d\n", 1},
    {"WithinTwoCells", kQuoted, u"a\"b,c\"d\n", 2},
    {"AfterAWord", kQuoted, u"5\",7\n", 1},
    {"TextAfterTheQuotes", kQuoted, u"\"a\"b,c\n", 1},
    {"NotClosed", kQuoted, u"\"a,b\n", 2},
    {"ApostropheWithinAWord", kSingle, u"it's,a\n", 0.15},
    {"ApostropheAfterABlank", kSingle, u"a 's,b\n", 1},
    {"QuotesWithoutMeaning", kComma, u"a\"b,\"c\n", 0},
};

class IllPlacedQuotes : public testing::TestWithParam<QuoteCount> {};
TEST_P(IllPlacedQuotes, AreCounted) {
  const Sample sample(GetParam().text);
  EXPECT_DOUBLE_EQ(cut_delimited(sample.lines(), GetParam().reading).ill_placed_quotes,
                   GetParam().ill_placed);
}
INSTANTIATE_TEST_SUITE_P(Table, IllPlacedQuotes, testing::ValuesIn(kQuoteCounts), ByRule());

}  // namespace
}  // namespace textio::assessment
