// Each piece of evidence for itself. Expected amounts are sums over the few cells of a text.
#include <vltextstream/assessment/evidence.hpp>

#include <cmath>
#include <cstddef>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/cell_kind.hpp>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;
using Numbers = std::vector<std::size_t>;

Reading by(std::u16string_view delimiter, char16_t quote = 0) {
  return {Form::delimited, std::u16string(delimiter), quote};
}
const Reading kOne = {Form::one};
const Reading kFramed = {Form::framed, u"|"};
const Reading kRuns = {Form::runs, u" ", 0, 0, 1};
const Reading kRest = {Form::runs, u" ", 0, 0, 1, 2};
const Reading kFields = {Form::fields, u"", 0, 0, 1, 0, {0, 2, 4, 6}};
const Reading kWideRuns = {Form::runs, u" ", 0, 0, 2};
const Reading kGaps = {Form::gaps, u" ", 0, 0, 1};
const Reading kByNames = {Form::gaps, u" ", 0, 0, 1, 0, {}, {}, {}, true};
const Reading kWideGaps = {Form::gaps, u" ", 0, 0, 2};

std::u16string lines_of(std::size_t count, std::u16string_view line) {
  std::u16string text;
  for (std::size_t k = 0; k < count; ++k) {
    text += line;
    text += u'\n';
  }
  return text;
}

// --- the numbers of columns to try -----------------------------------------------------------

struct ColumnsCase {
  const char* rule;
  Reading reading;
  std::u16string text;
  Numbers columns;
};
std::ostream& operator<<(std::ostream& out, const ColumnsCase& row) { return out << row.rule; }

const ColumnsCase kColumnsCases[] = {
    {"NoRecords", by(u","), u"\n", {}},
    {"OneCellEach", by(u","), u"a\nb\n", {}},
    {"AllAlike", by(u","), u"a,b,c\n1,2,3\n", {3}},
    {"MostFrequent", by(u","), u"a,b\n1,2,3\n4,5,6\n", {3}},
    {"OfEquallyFrequentOnesTheLarger", by(u","), u"a,b\n1,2,3\n", {3}},
    // Three times 0.6 is less than 2, four times is more.
    {"SingleCellsCountLess", by(u","), u"a\nb\nc\n1,2\n3,4\n", {2}},
    {"ButTheyCount", by(u","), u"1,2\n3,4\na\nb\nc\nd\n", {}},
    {"LowerHalfDiffers", by(u","), lines_of(30, u"a,b") + lines_of(20, u"1,2,3"), {2, 3}},
    {"LastEightDiffer", by(u","), lines_of(30, u"a,b") + lines_of(8, u"1,2,3"), {2, 3}},
    {"LastFourOfEight", by(u","), lines_of(30, u"a,b") + lines_of(4, u"1,2,3"), {2, 3}},
    {"LastThreeOfEight", by(u","), lines_of(30, u"a,b") + lines_of(3, u"1,2,3"), {2}},
    {"CommentsDoNotCount", by(u","), u"# a,b,c\n# d,e,f\n1,2\n", {2}},
    {"CompleteNames", by(u","), u"id,name,tel\n1,a,5\n2,b\n3,c\n4,d\n", {2, 3}},
    {"CompleteNamesAlone", by(u","), u"id,name,tel\n1,a\n2,b\n3,c\n", {2}},
    {"CompleteValues", by(u","), u"1,2,3\n1,a,5\n2,b\n3,c\n4,d\n", {2}},
    {"SingleColumn", kOne, u"a,b\n", {1}},
    {"NoTable", {Form::none}, u"a,b\n", {1}},
    {"SingleColumnWithoutRecords", kOne, u"\n", {}},
};

class LikelyColumns : public testing::TestWithParam<ColumnsCase> {};
TEST_P(LikelyColumns, AreTheMostFrequent) {
  const Sample sample(GetParam().text);
  const Records records = cut(sample.lines(), GetParam().reading);
  EXPECT_EQ(likely_columns(sample.lines(), records, GetParam().reading), GetParam().columns);
}
INSTANTIATE_TEST_SUITE_P(Table, LikelyColumns, testing::ValuesIn(kColumnsCases), ByRule());

// --- the records of a table ------------------------------------------------------------------

struct FrameCase {
  const char* rule;
  Reading reading;
  std::u16string text;
  std::size_t columns;
  TableFrame frame;
};
std::ostream& operator<<(std::ostream& out, const FrameCase& row) { return out << row.rule; }

TableFrame frame(std::size_t first, std::size_t end, Numbers data, std::size_t notes,
                 std::size_t outside) {
  TableFrame table;
  table.first = first;
  table.end = end;
  table.num_fitting = data.size();
  table.data = std::move(data);
  table.num_notes = notes;
  table.num_outside = outside;
  return table;
}

const FrameCase kFrameCases[] = {
    {"AllFit", by(u","), u"a,b\n1,2\n", 2, frame(0, 2, {0, 1}, 0, 0)},
    {"NoneFits", by(u","), u"a,b\n1,2\n", 3, frame(0, 0, {}, 0, 2)},
    {"RecordsBefore", by(u","), u"t\n\nu\na,b\n1,2\n", 2, frame(2, 4, {2, 3}, 0, 2)},
    {"RecordsAfter", by(u","), u"a,b\n1,2\nt\n", 2, frame(0, 2, {0, 1}, 0, 1)},
    {"RecordBetween", by(u","), u"a,b\nt\n1,2\n", 2, frame(0, 3, {0, 2}, 0, 0)},
    // One record that fits is worth three between it and the table, but not four.
    {"AFewRecordsBetween", by(u","), u"a,b\nt\nt\nt\n1,2\n", 2, frame(0, 5, {0, 4}, 0, 0)},
    {"ManyRecordsBetween", by(u","), u"a,b\nt\nt\nt\nt\n1,2\n", 2, frame(5, 6, {5}, 0, 5)},
    {"CommentBetween", by(u","), u"a,b\n# t\n1,2\n3,4\n", 2, frame(0, 4, {0, 2, 3}, 1, 0)},
    {"CommentBefore", by(u","), u"# t\na,b\n1,2\n", 2, frame(1, 3, {1, 2}, 0, 0)},
    {"CommentThatFits", by(u","), u"# a,b\n1,2\n3,4\n", 2, frame(0, 3, {0, 1, 2}, 0, 0)},
    {"CommentThatFitsAlignedColumns", kRuns, u"# b\n1 2\n3 4\n", 2, frame(1, 3, {1, 2}, 0, 0)},
    {"RuleBetween", by(u","), u"a,b\n-----\n1,2\n", 2, frame(0, 3, {0, 2}, 1, 0)},
    {"RuleOfBars", by(u"|"), u"a|b\n--|--\n1|2\n", 2, frame(0, 3, {0, 1, 2}, 0, 0)},
};

class FindTable : public testing::TestWithParam<FrameCase> {};
TEST_P(FindTable, AmongTheRecords) {
  const Sample sample(GetParam().text);
  const Records records = cut(sample.lines(), GetParam().reading);
  const TableFrame found =
      find_table(sample.lines(), records, GetParam().reading, GetParam().columns);
  const TableFrame& expected = GetParam().frame;
  EXPECT_EQ(found.columns, GetParam().columns);
  EXPECT_EQ(found.first, expected.first);
  EXPECT_EQ(found.end, expected.end);
  EXPECT_EQ(found.data, expected.data);
  EXPECT_EQ(found.num_fitting, expected.num_fitting);
  EXPECT_EQ(found.num_notes, expected.num_notes);
  EXPECT_EQ(found.num_outside, expected.num_outside);
  EXPECT_EQ(found.names_rows, 1U);
}
INSTANTIATE_TEST_SUITE_P(Table, FindTable, testing::ValuesIn(kFrameCases), ByRule());

TEST(FindTable, CountsRecordsThatEndEarlyBelowCompleteNames) {
  const Sample sample(u"id,name,tel\n1,a,5\n2,b\n3,c\nx\n4,d\n");
  const Records records = cut(sample.lines(), by(u","));
  const TableFrame table = find_table(sample.lines(), records, by(u","), 3);
  EXPECT_EQ(table.first, 0U);
  EXPECT_EQ(table.end, 6U);
  EXPECT_EQ(table.data, Numbers({0, 1}));
  EXPECT_EQ(table.num_short, 3U);  // not the single cell
  EXPECT_EQ(table.num_outside, 0U);
  // Two fit and three count half, of six.
  const EvidenceAmounts amounts = weigh_shape(sample.lines(), records, by(u","), table);
  EXPECT_NEAR(amounts[static_cast<std::size_t>(Evidence::ragged)], -std::log(4.0 / 7), 1e-12);
}

// --- single pieces ---------------------------------------------------------------------------

struct AmountCase {
  const char* rule;
  Evidence evidence;
  Reading reading;
  std::u16string text;
  std::size_t columns;
  double amount;
};
std::ostream& operator<<(std::ostream& out, const AmountCase& row) { return out << row.rule; }

EvidenceAmounts amounts_of(const Sample& sample, const Reading& reading, std::size_t columns) {
  const Records records = cut(sample.lines(), reading);
  const TableFrame table = find_table(sample.lines(), records, reading, columns);
  EvidenceAmounts amounts = weigh_shape(sample.lines(), records, reading, table);
  const CellKinds kinds(records, table.data, columns, kRecordsLookedInto);
  weigh_content(sample.lines(), records, reading, table, kinds, amounts);
  return amounts;
}

// Half a record is added to those that fit, and one to all.
const AmountCase kShapeCases[] = {
    {"AllFit", Evidence::ragged, by(u","), u"a,b\n1,2\n3,4\n", 2, -std::log(3.5 / 4)},
    {"TwoOfThreeFit", Evidence::ragged, by(u","), u"a,b\n1\n3,4\n", 2, -std::log(2.5 / 4)},
    {"CommentsNeedNotFit", Evidence::ragged, by(u","), u"a,b\n#\n3,4\n5,6\n", 2,
     -std::log(3.5 / 4)},
    {"RecordsOutsideNeedNotFit", Evidence::ragged, by(u","), u"t\na,b\n1,2\n", 2,
     -std::log(2.5 / 3)},

    {"NothingOutside", Evidence::outside, by(u","), u"a,b\n1,2\n", 2, 0},
    {"OneBeforeThree", Evidence::outside, by(u","), u"t\na,b\n1,2\n3,4\n", 2, 1.0 / 4},
    {"OneAfterThree", Evidence::outside, by(u","), u"a,b\n1,2\n3,4\nt\n", 2, 1.0 / 4},
    {"CommentsOutsideDoNotCount", Evidence::outside, by(u","), u"# t\na,b\n1,2\n", 2, 0},

    {"TwoColumns", Evidence::few, by(u","), u"a,b\n", 2, 1},
    {"FiveColumns", Evidence::few, by(u","), u"a,b,c,d,e\n", 5, 0.4},
    {"OneColumn", Evidence::few, kOne, u"a\n", 1, 0},
    {"OneOfTwoIsEmpty", Evidence::few, by(u","), u"a,b\n1,\n2,\n", 2, 2},
    {"OneInTwentyIsFilled", Evidence::few, by(u","), u"a,b\n1,2\n" + lines_of(19, u"1,"), 2, 1},
    {"OneInTwentyOneIsFilled", Evidence::few, by(u","), u"a,b\n1,2\n" + lines_of(20, u"1,"), 2, 2},
};

const AmountCase kSeparatorCases[] = {
    {"Tab", Evidence::tab, by(u"\t"), u"a\tb\n", 2, 1},
    {"Comma", Evidence::comma, by(u","), u"a,b\n", 2, 1},
    {"Semicolon", Evidence::semicolon, by(u";"), u"a;b\n", 2, 1},
    {"Colon", Evidence::colon, by(u":"), u"a:b\n", 2, 1},
    {"Bar", Evidence::bar, by(u"|"), u"a|b\n", 2, 1},
    {"Blank", Evidence::blank, by(u" "), u"a b\n", 2, 1},
    {"Caret", Evidence::caret, by(u"^"), u"a^b\n", 2, 1},
    {"Tilde", Evidence::caret, by(u"~"), u"a~b\n", 2, 1},
    {"SectionSign", Evidence::caret, by(u"\u00A7"), u"a\u00A7b\n", 2, 1},
    {"BrokenBar", Evidence::caret, by(u"\u00A6"), u"a\u00A6b\n", 2, 1},
    {"Control", Evidence::control, by(u"\x1F"),
     u"a\x1F"
     u"b\n",
     2, 1},
    {"TwoSigns", Evidence::several, by(u"||"), u"a||b\n", 2, 1},
    {"AnotherSign", Evidence::rare, by(u"@"), u"a@b\n", 2, 1},
    {"SingleColumn", Evidence::one, kOne, u"a\n", 1, 1},
    {"Frame", Evidence::framed, kFramed, u"|a|b|\n", 2, 1},
    {"AFrameIsNoBar", Evidence::bar, kFramed, u"|a|b|\n", 2, 0},
    {"Runs", Evidence::runs, kRuns, u"a b\n", 2, 1},
    {"RunsOfOneBlankAreNarrow", Evidence::narrow, kRuns, u"a b\n", 2, 1},
    {"RunsOfTwoBlanksAreNot", Evidence::narrow, kWideRuns, u"a  b\n", 2, 0},
    {"GapsAreNoRuns", Evidence::runs, kGaps, u"a b\nc d\n", 2, 0},
    {"GapsOfOneBlankAreNarrow", Evidence::narrow, kGaps, u"a b\nc d\n", 2, 1},
    {"GapsOfTwoBlanksAreNot", Evidence::narrow, kWideGaps, u"a  b\nc  d\n", 2, 0},
    {"GapsByNames", Evidence::by_names, kByNames, u"a     b\nc d   e\nf g   h\n", 2, 1},
    {"GapsWithout", Evidence::by_names, kGaps, u"a b\nc d\n", 2, 0},
    {"TextAtTheEnd", Evidence::rest, kRest, u"a b c\n", 2, 1},
    {"TextAtTheEndIsNarrow", Evidence::narrow, kRest, u"a b c\n", 2, 1},
    {"RunsHaveNoRest", Evidence::rest, kRuns, u"a b\n", 2, 0},
    {"Fields", Evidence::dense, kFields, u"12ab34\n", 3, 1},
    {"FieldsAreNotNarrow", Evidence::narrow, kFields, u"12ab34\n", 3, 0},
    {"GapsAreNotDense", Evidence::dense, kGaps, u"a b\nc d\n", 2, 0},
};

const double kInteger = worth_of(CellKind::integer);
const double kWord = worth_of(CellKind::word);
const double kUnknown = worth_of(CellKind::unknown);
const double kEmpty = worth_of(CellKind::empty);

// The first record may hold names and does not count, unless it is the only one.
const AmountCase kColumnCases[] = {
    {"Integers", Evidence::worth, by(u","), u"a,b\n1,2\n3,4\n", 2, kInteger},
    {"IntegersAndWords", Evidence::worth, by(u","), u"a,b\n1,x\n3,y\n", 2, (kInteger + kWord) / 2},
    {"OneRecord", Evidence::worth, by(u","), u"a,1\n", 2, (kWord + kInteger) / 2},
    {"MixedColumn", Evidence::worth, kOne, u"a\n1\nx\n", 1, (kInteger + kWord) / 2 * 0.9},
    {"NumbersOfAllWritingsAreAlike", Evidence::worth, kOne, u"a\n1\n2.5\n", 1,
     (kInteger + worth_of(CellKind::decimal)) / 2},
    {"HalfFilledColumn", Evidence::worth, by(u","), u"a,b\n1,2\n3,\n", 2,
     (kInteger + (kInteger + kEmpty) / 2) / 2},
    {"UnknownThings", Evidence::worth, by(u";"), u"a;b\n|-;|=\n", 2, kUnknown},
    {"UnknownThingsInQuotes", Evidence::worth, by(u";", u'"'), u"a;b\n\"|-\";\"|=\"\n", 2, 0.75},

    {"NoEmptyColumn", Evidence::empty, by(u","), u"a,b\n1,\n,2\n", 2, 0},
    {"ColumnOfNothingButAName", Evidence::empty, by(u","), u"a,b\n1,\n2,\n", 2, 0.5},
    {"ColumnOfBlanks", Evidence::empty, by(u","), u"a, ,b,c\n1, ,2,3\n", 4, 0.25},

    {"ColumnsOfWords", Evidence::wordy, by(u" "), u"red fox\nold cow\nbig dog\n", 2, 1},
    {"WordsAndNumbers", Evidence::wordy, by(u" "), u"red a\nold 5\nbig 7\n", 2, 0.5},
    {"WordsInRuns", Evidence::wordy, kRuns, u"red fox\nold cow\n", 2, 1},
    {"WordsInGaps", Evidence::wordy, kGaps, u"red fox\nold cow\n", 2, 1},
    {"WordsAtTheEndOfTheLineAreText", Evidence::wordy, kRest, u"5 red fox\n7 old cow\n", 2, 0},
    {"WordsBeforeThem", Evidence::wordy, kRest, u"one red fox\ntwo old cow\n", 2, 0.5},
    {"WordsBetweenCommas", Evidence::wordy, by(u","), u"red,fox\nold,cow\n", 2, 0},

    {"Names", Evidence::named, by(u","), u"day,level [m]\n1,2\n", 2, 1},
    {"NamesWithADigitFirst", Evidence::named, by(u","), u"day,1st\n1,2\n", 2, 0},
    {"NameThatIsMissing", Evidence::named, by(u","), u"day,\n1,2\n", 2, 0},
    {"NamesThatAreAlike", Evidence::named, by(u","), u"day, day\n1,2\n", 2, 0},
    {"NameOfFortyCharacters", Evidence::named, by(u","),
     u"day," + std::u16string(40, u'x') + u"\n1,2\n", 2, 1},
    {"NameOfMore", Evidence::named, by(u","), u"day," + std::u16string(41, u'x') + u"\n1,2\n", 2,
     0},
    {"NameOfASingleColumn", Evidence::named, kOne, u"day\n1\n", 1, 0},
};

// Shares of all records of the table, the first one too.
const AmountCase kCellCases[] = {
    {"GapInTheRest", Evidence::gaps_inside, kRest, u"x a  b\ny c d\n", 2, 0.5},
    {"GapBetweenRuns", Evidence::gaps_inside, kRuns, u"x  a\n", 2, 0},
    {"GapBetweenSemicolons", Evidence::gaps_inside, by(u";"), u"x  a;b\n", 2, 0},
    {"LettersAroundAComma", Evidence::unsplit, by(u";"), u"x;a,b\n", 2, 0.3},
    {"LetterAndNumberAroundAComma", Evidence::unsplit, by(u";"), u"x;a,1\n", 2, 1},
    {"NumberAndLetterAroundAComma", Evidence::unsplit, by(u";"), u"x;1,a\n", 2, 1},
    {"NumbersAroundAComma", Evidence::unsplit, by(u";"), u"x;1,2\n", 2, 0},
    {"CommaBeforeABlank", Evidence::unsplit, by(u";"), u"x;a, b\n", 2, 0},
    {"CommaAtAnEnd", Evidence::unsplit, by(u";"), u"x;,a\n", 2, 0},
    {"CommaBetweenQuotes", Evidence::unsplit, by(u";"), u"x;'a','b'\n", 2, 0.3},
    {"CommaInAQuotedCell", Evidence::unsplit, by(u";", u'"'), u"x;\"a,1\"\n", 2, 0},
    {"CommaInHalfOfTheRecords", Evidence::unsplit, by(u";"), u"x;a,1\ny;b\n", 2, 0.5},
    {"TwoCellsOfOneRecord", Evidence::unsplit, by(u";"), u"a,b;a,1\n", 2, 1},
    {"OneUnlikeThingAmongAlikeOnes", Evidence::unsplit, by(u";"), u"x;a,b,c,1\n", 2, 1},
    {"TabInACell", Evidence::unsplit, by(u";"), u"x;a\t1\n", 2, 1},
    {"ColonInACell", Evidence::unsplit, by(u";"), u"x;a:1\n", 2, 0},

    {"BracketsInTwoCells", Evidence::torn, by(u","), u"(a,b)\n", 2, 1},
    {"BracketsInOneCell", Evidence::torn, by(u","), u"(a),[b]\n", 2, 0},
    {"SquareBrackets", Evidence::torn, by(u","), u"a,[b\n", 2, 1},
    {"CurlyBrackets", Evidence::torn, by(u","), u"a},b\n", 2, 1},
    {"OneQuote", Evidence::torn, by(u","), u"a,5\"\n", 2, 1},
    {"TwoQuotes", Evidence::torn, by(u","), u"a,\"b\"\n", 2, 0},
    {"SingleQuoteAtOneEnd", Evidence::torn, by(u","), u"'a,b'\n", 2, 1},
    {"SingleQuotesAtBothEnds", Evidence::torn, by(u","), u"'a',b\n", 2, 0},
    {"Apostrophe", Evidence::torn, by(u","), u"it's,b\n", 2, 0},
    {"BracketInAQuotedCell", Evidence::torn, by(u",", u'"'), u"a,\"(\"\n", 2, 0},
    {"InOneOfFourRecords", Evidence::torn, by(u","), u"a,b\n(,1\nc,d\ne,f\n", 2, 0.25},

    {"TimeCutByColons", Evidence::cut_values, by(u":"), u"12:30:15\n", 3, 1},
    {"DateCutByDashes", Evidence::cut_values, by(u"-"), u"2020-01-02\n", 3, 1},
    {"DateCutBySlashes", Evidence::cut_values, by(u"/"), u"1/2/2020\n", 3, 1},
    {"TimeWithABlankBefore", Evidence::cut_values, by(u":"), u"at 12:30\n", 2, 1},
    {"TimeWithABlankWithin", Evidence::cut_values, by(u":"), u"12: 30\n", 2, 0},
    {"WordsCutByColons", Evidence::cut_values, by(u":"), u"a:b\n", 2, 0},
    {"AnUnusualSignCutsNothing", Evidence::cut_values, by(u"@"), u"a@example.org\n", 2, 0},
    {"DateAndTimeCutByABlank", Evidence::cut_values, by(u" "), u"2020-01-02 12:30\n", 2, 1},
    {"DateAndNumberCutByABlank", Evidence::cut_values, by(u" "), u"2020-01-02 1230\n", 2, 0},
    {"NumberCutByFields", Evidence::cut_values, kFields, u"1.5E02\n", 3, 1},
    {"WordsCutByFields", Evidence::cut_values, kFields, u"12ab34\n", 3, 0},
    {"BlanksBetweenFields", Evidence::cut_values, kFields, u"1 2 34\n", 3, 0},
    {"TimeInRuns", Evidence::cut_values, kRuns, u"12:30 a\n", 2, 0},
    {"TimeInOneOfTwoRecords", Evidence::cut_values, by(u":"), u"12:30\na:b\n", 2, 0.5},

    {"GroupedNumbersCutByCommas", Evidence::numbers_cut, by(u","), u"12,345\n", 2, 1},
    {"NumbersWithABlankBetween", Evidence::numbers_cut, by(u","), u"12, 345\n", 2, 0},
    {"NumbersInQuotes", Evidence::numbers_cut, by(u",", u'"'), u"\"12\",\"345\"\n", 2, 0},
    {"WordsCutByCommas", Evidence::numbers_cut, by(u","), u"a,b\n", 2, 0},
    {"NumbersCutBySemicolons", Evidence::numbers_cut, by(u";"), u"12;345\n", 2, 0},

    {"DecimalsTogether", Evidence::left_together, by(u","), u"a,3.5 7.5\n", 2, 1},
    {"DateAndDecimal", Evidence::left_together, by(u","), u"a,2020-01-02 3.5\n", 2, 1},
    {"WordAndDecimal", Evidence::left_together, by(u","), u"a,b 3.5\n", 2, 0},
    {"OneDecimal", Evidence::left_together, by(u","), u"a,3.5\n", 2, 0},
    {"DecimalsTogetherInHalf", Evidence::left_together, by(u","), u"a,b\nc,3.5 7.5\n", 2, 0.5},

    {"CommaAtTheEndOfACell", Evidence::dangling, by(u";"), u"a,;b\n", 2, 1},
    {"BarAtTheStartOfACell", Evidence::dangling, by(u";"), u"a;|b\n", 2, 1},
    {"CommaBeforeABlankAtTheEnd", Evidence::dangling, by(u";"), u"a, ;b\n", 2, 1},
    {"CommaWithinACell", Evidence::dangling, by(u";"), u"a;b,c\n", 2, 0},
    {"ColonAtTheEndOfACell", Evidence::dangling, by(u";"), u"a:;b\n", 2, 0},

    {"SentenceGoesOn", Evidence::clauses, by(u","), u"He came, saw the sea\n", 2, 1},
    {"InUpperCase", Evidence::clauses, by(u","), u"He came, Saw the sea\n", 2, 0},
    {"WithoutABlank", Evidence::clauses, by(u","), u"He came,saw the sea\n", 2, 0},
    {"BlankBeforeTheSeparator", Evidence::clauses, by(u","), u"He came , saw the sea\n", 2, 0},
    {"FirstCellOfALine", Evidence::clauses, by(u","), u"He came,x\n saw the sea,y\n", 2, 0},
    {"ASingleWord", Evidence::clauses, by(u","), u"He came, saw\n", 2, 0},
};

const AmountCase kQuoteCases[] = {
    {"NoQuotes", Evidence::well_quoted, by(u",", u'"'), u"a,b\n1,2\n", 2, 0},
    {"InOneOfTwoRecords", Evidence::well_quoted, by(u",", u'"'), u"a,b\n\"1\",\"2\"\n", 2, 0.5},
    {"WithoutMeaning", Evidence::well_quoted, by(u","), u"\"a\",b\n", 2, 0},

    {"AllExplained", Evidence::lost_quotes, by(u",", u'"'), u"\"a\",b\n", 2, 0},
    {"WithinOneOfFourRecords", Evidence::lost_quotes, by(u",", u'"'), u"a,b\"c\n1,2\n3,4\n5,6\n", 2,
     0.25},
    {"AtMostOne", Evidence::lost_quotes, by(u",", u'"'), u"a\"b,c\"d\n", 2, 1},
    {"NotExplained", Evidence::lost_quotes, by(u","), u"\"a\",b\n1,2\n", 2, 0.5},
    {"NotExplainedByOtherQuotes", Evidence::lost_quotes, by(u",", u'\''), u"\"a\",b\n1,2\n", 2,
     0.5},
};

class EvidenceAmount : public testing::TestWithParam<AmountCase> {};
TEST_P(EvidenceAmount, IsWhatTheCellsAddUpTo) {
  const AmountCase& row = GetParam();
  const Sample sample(row.text);
  const EvidenceAmounts amounts = amounts_of(sample, row.reading, row.columns);
  EXPECT_NEAR(amounts[static_cast<std::size_t>(row.evidence)], row.amount, 1e-12);
}
INSTANTIATE_TEST_SUITE_P(Shape, EvidenceAmount, testing::ValuesIn(kShapeCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Separators, EvidenceAmount, testing::ValuesIn(kSeparatorCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Columns, EvidenceAmount, testing::ValuesIn(kColumnCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Cells, EvidenceAmount, testing::ValuesIn(kCellCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Quotes, EvidenceAmount, testing::ValuesIn(kQuoteCases), ByRule());

// Exactly one says what separates, or that nothing does.
TEST(EvidenceOfSeparators, IsOneOfAll) {
  for (const AmountCase& row : kSeparatorCases) {
    if (row.reading.is_aligned() || row.amount == 0) continue;
    const Sample sample(row.text);
    const EvidenceAmounts amounts = amounts_of(sample, row.reading, row.columns);
    double sum = amounts[static_cast<std::size_t>(Evidence::one)] +
                 amounts[static_cast<std::size_t>(Evidence::dense)] +
                 amounts[static_cast<std::size_t>(Evidence::framed)];
    for (auto k = static_cast<std::size_t>(Evidence::tab);
         k <= static_cast<std::size_t>(Evidence::rare); ++k) {
      sum += amounts[k];
    }
    EXPECT_EQ(sum, 1) << row.rule;
  }
}

TEST(EvidenceNames, AreDifferentWordsWithHyphens) {
  std::set<std::string_view> names;
  for (std::size_t k = 0; k < kNumEvidence; ++k) {
    const std::string_view name = to_string(static_cast<Evidence>(k));
    EXPECT_TRUE(names.insert(name).second) << name;
    EXPECT_FALSE(name.empty()) << k;
    EXPECT_EQ(name.find_first_not_of("abcdefghijklmnopqrstuvwxyz-"), name.npos) << name;
  }
  EXPECT_EQ(to_string(Evidence::ragged), "ragged");
  EXPECT_EQ(to_string(Evidence::cut_values), "cut-values");
  EXPECT_EQ(to_string(Evidence::numbers_cut), "numbers-cut");
  EXPECT_EQ(to_string(Evidence::indented), "indented");
  EXPECT_EQ(to_string(Evidence::nested), "nested");
  EXPECT_EQ(to_string(Evidence::spaced), "spaced");
}

}  // namespace
}  // namespace textio::assessment
