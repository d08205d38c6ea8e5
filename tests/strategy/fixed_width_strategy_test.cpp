#include <vltextstream/strategy/fixed_width_strategy.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/strategy_cases.hpp"

namespace textio {
namespace {

using namespace testing_support;

using Widths = std::vector<unsigned long>;
using Counts = std::vector<std::size_t>;

constexpr unsigned long kLongest = std::numeric_limits<unsigned long>::max();
constexpr unsigned long kHalf = 1UL << 63;

// -- construction -------------------------------------------------------------------------------

TEST(FixedWidthConstructor, IsModeTwoWithoutRankOrSeparator) {
  const parser::options options;
  const Open<FixedWidthStrategy> strategy(options, {2, 3});
  EXPECT_EQ(strategy.mode(), 2);
  EXPECT_FALSE(strategy.space_separated_);
  EXPECT_EQ(strategy.valuation_.priors_rank, std::numeric_limits<double>::infinity());
  EXPECT_EQ(strategy.text_format_.whitespace, u" \b\t");
}

TEST(FixedWidthConstructor, KeepsTheWidthsItIsGiven) {
  parser::options options;
  options.variable_widths = {1, 1};
  auto widths = std::make_unique<Widths>(Widths{4, 0, 7});
  FixedWidthStrategy strategy(options, *widths);
  widths.reset();
  EXPECT_EQ(strategy.widths(), (Counts{4, 0, 7}));
}

struct RefusedCase {
  const char* rule;
  Widths widths;
};
std::ostream& operator<<(std::ostream& out, const RefusedCase& row) { return out << row.rule; }

const RefusedCase kRefusedCases[] = {
    {"NoWidths", {}},
    {"OneWidthOfZero", {0}},
    {"OnlyWidthsOfZero", {0, 0, 0}},
};

class FixedWidthRefused : public testing::TestWithParam<RefusedCase> {};

TEST_P(FixedWidthRefused, AtConstruction) {
  const parser::options options;
  EXPECT_THROW(FixedWidthStrategy(options, GetParam().widths), std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(Table, FixedWidthRefused, testing::ValuesIn(kRefusedCases), ByRule());

TEST(FixedWidthConstructor, DoesNotMistakeASumThatWrapsForZero) {
  const parser::options options;
  EXPECT_NO_THROW(FixedWidthStrategy(options, {kHalf, kHalf}));
  EXPECT_NO_THROW(FixedWidthStrategy(options, {kLongest, 1}));
  EXPECT_NO_THROW(FixedWidthStrategy(options, {0, 1}));
}

// -- lines --------------------------------------------------------------------------------------

const EndingCase kLineCases[] = {
    {"AnEmptyTextHasNoLine", kDefault, u"", {}},
    {"TheTwoUnitEndingIsConsumedAsOne", kDefault, u"ab\r\ncd\r\n", {{u"ab", 4}, {u"cd", 8}}},
    {"TheLastLineNeedsNoEnding", kDefault, u"ab", {{u"ab", 2}}},
    {"EndingsAloneEncloseEmptyLines", kDefault, u"\n\r", {{u"", 1}, {u"", 2}}},
    {"QuotesHoldNothingTogether", kDefault, u"\"a\nb\"", {{u"\"a", 3}, {u"b\"", 5}}},
    {"BlanksBelongToTheLine", kDefault, u" a \nb", {{u" a ", 4}, {u"b", 5}}},
    {"WithoutEndingsTheTextIsOneLine", {}, kMixed, {{kMixed, 7}}},
    {"AnEmptyEndingEndsNothing", {u""}, kMixed, {{kMixed, 7}}},
    {"AnEmptyEndingEndsNothingAtANul", {u""}, with_nul(u"a\0b"), {{with_nul(u"a\0b"), 3}}},
    {"AnEmptyEndingInFrontHidesTheOthers", {u"", u"\n"}, kMixed, {{kMixed, 7}}},
    {"ABlankMayEndLines", {u" "}, kMixed, {{u"a;b", 4}, {u"\t\nc", 7}}},
    {"ATabAndALineFeedMayEndLinesTogether", {u"\t\n"}, kMixed, {{u"a;b ", 6}, {u"c", 7}}},
    {"ASemicolonMayEndLines", {u";"}, kMixed, {{u"a", 2}, {u"b \t\nc", 7}}},
    {"HalfAnEndingIsText", {u"\r\n"}, u"a\rb\r\nc\r", {{u"a\rb", 5}, {u"c\r", 7}}},
    {"ALongEndingMayOverlapItself", {u"aab"}, u"aaabc", {{u"a", 4}, {u"c", 5}}},
    {"AnEndMarkAtTheStartLeavesNothing", kDefault, u"\uFFFFab", {}},
    {"AnEndMarkInsideALineDoesNotEndIt",
     kDefault,
     u"ab\uFFFFcd\nef",
     {{u"ab\uFFFFcd", 6}, {u"ef", 8}}},
    {"AnEndMarkAfterHalfAnEndingDoesNotEndIt",
     {u"\r\n"},
     u"a\r\uFFFFb\r\nc",
     {{u"a\r\uFFFFb", 6}, {u"c", 7}}},
    {"AnEndMarkAtTheEndIsPartOfTheLine", kDefault, u"ab\uFFFF", {{u"ab\uFFFF", 3}}},
    {"AnEndMarkAfterAnEndingStopsTheScan", kDefault, u"ab\n\uFFFFcd", {{u"ab", 3}}},
    {"AnEndingThatStartsWithAnEndMarkIsConsumed",
     {u"\uFFFF\n"},
     u"a\uFFFF\nb",
     {{u"a", 3}, {u"b", 4}}},
};

class FixedWidthGetLineExtent : public testing::TestWithParam<EndingCase> {};

TEST_P(FixedWidthGetLineExtent, EndsALineAtItsEnding) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  const FixedWidthStrategy strategy(options, {2});
  const ExactText text(GetParam().text);
  EXPECT_EQ(line_steps(strategy, text), GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(Table, FixedWidthGetLineExtent, testing::ValuesIn(kLineCases), ByRule());

TEST(FixedWidthScan, SeesTheLineAfterAnEndMark) {
  const parser::options options;
  const FixedWidthStrategy strategy(options, {2});
  const ExactText text(u"a\uFFFFb\nc");
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 1)), (Step{u"\uFFFFb", 4}));
}

TEST(FixedWidthScan, FindsAnEmptyLineAtTheEnd) {
  const parser::options options;
  const FixedWidthStrategy strategy(options, {2});
  const ExactText text(u"ab");
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 2)), (Step{u"", 2}));
  EXPECT_EQ(strategy.get_line_extent(text.field(), 100).field.length, 0u);
}

TEST(FixedWidthScan, AcceptsAnEndMarkAsALineEnding) {
  parser::options options;
  options.line_endings = {u"\uFFFF"};
  FixedWidthStrategy strategy(options, {2});
  const ExactText text(u"a\uFFFFb\nc");
  EXPECT_EQ(lines_of(strategy, text, 9), (Texts{u"a", u"b\nc"}));
}

// A scan sees an end mark after the last code unit, and here the end mark is a line ending.
TEST(FixedWidthScan, ConsumesAnEndMarkThatEndsLinesEvenPastTheText) {
  parser::options options;
  options.line_endings = {u"\uFFFF"};
  const FixedWidthStrategy strategy(options, {2});
  const ExactText text(u"a\uFFFFb");
  EXPECT_EQ(line_steps(strategy, text), (Steps{{u"a", 2}, {u"b", 4}}));
}

// -- fields -------------------------------------------------------------------------------------

// One call of get_next_field: where the field starts, the length it reports, and `next`.
struct Call {
  std::size_t pos;
  std::size_t begin;
  std::size_t length;
  std::size_t next;
};

void expect_calls(FixedWidthStrategy& strategy, const Field& line, const std::vector<Call>& calls) {
  for (const Call& call : calls) {
    SCOPED_TRACE(call.pos);
    const FieldExtent extent = strategy.get_next_field(line, call.pos);
    EXPECT_EQ(static_cast<std::size_t>(extent.field.data - line.data), call.begin);
    EXPECT_EQ(extent.field.length, call.length);
    EXPECT_EQ(extent.next, call.next);
  }
}

TEST(FixedWidthGetNextField, UsesTheWidthsInTurn) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText line(u"abcde");
  expect_calls(strategy, line.field(), {{0, 0, 2, 2}, {2, 2, 3, 5}, {0, 0, 2, 2}});
}

TEST(FixedWidthGetNextField, ReportsTheWholeWidthOfAShortField) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText line(u"abc");
  expect_calls(strategy, line.field(), {{0, 0, 2, 2}, {2, 2, 3, 3}, {3, 3, 2, 3}});
}

TEST(FixedWidthGetNextField, AdvancesToTheNextColumnForAnyLine) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {1, 2, 4});
  const ExactText line(u"abc");
  expect_calls(strategy, line.field(), {{4, 3, 0, 3}, {0, 0, 2, 2}, {1000, 3, 0, 3}, {0, 0, 1, 1}});
}

TEST(FixedWidthGetNextField, DoesNotAdvanceForAColumnWithoutWidth) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {0, 2});
  const ExactText line(u"ab");
  expect_calls(strategy, line.field(), {{0, 0, 0, 0}, {0, 0, 2, 2}, {2, 2, 0, 2}});
}

TEST(FixedWidthGetNextField, DoesNotWrapForEndlessWidths) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {kLongest, kHalf});
  const ExactText line(u"abc");
  expect_calls(strategy, line.field(),
               {{1, 1, kLongest, 3}, {1, 1, kHalf, 3}, {3, 3, kLongest, 3}});
}

TEST(FixedWidthGetNextField, AcceptsAnEmptyLine) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2});
  const FieldExtent extent = strategy.get_next_field(empty_field(), 0);
  EXPECT_EQ(extent.field.length, 2u);
  EXPECT_EQ(extent.next, 0u);
}

struct CutCase {
  const char* rule;
  Widths widths;
  std::u16string text;
  Rows rows;       // the part of each field that is inside its line
  Counts lengths;  // the length that each field reports
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kCutCases[] = {
    {"TheWidthsFillTheLine", {2, 3}, u"abcde", {{u"ab", u"cde"}}, {2, 3}},
    {"TheWidthsFillEveryLine", {2, 1}, u"abc\ndef\n", {{u"ab", u"c"}, {u"de", u"f"}}, {2, 1, 2, 1}},
    {"ALineMayHoldTheWidthsTwice", {3, 3}, u"abcdef", {{u"abc", u"def"}}, {3, 3}},
    {"OneWidthServesForAllFields", {1}, u"abc", {{u"a", u"b", u"c"}}, {1, 1, 1}},
    {"AShortLastFieldOpensOneMore", {3, 3}, u"abcde", {{u"abc", u"de", u""}}, {3, 3, 3}},
    {"AShortOnlyFieldOpensOneMore", {100}, u"abc", {{u"abc", u""}}, {100, 100}},
    {"TheFieldTooManyShiftsTheNextLine",
     {2, 3},
     u"abc\nabcde",
     {{u"ab", u"c", u""}, {u"abc", u"de"}},
     {2, 3, 2, 3, 2}},
    {"TheFieldMissingShiftsTheNextLineToo",
     {2, 3},
     u"ab\nabc\nab",
     {{u"ab"}, {u"abc"}, {u"ab"}},
     {2, 3, 2}},
    {"ALongerLineStartsTheWidthsAgain",
     {1, 2},
     u"abcd\nef",
     {{u"a", u"bc", u"d"}, {u"ef"}},
     {1, 2, 1, 2}},
    {"EmptyLinesDoNotMoveTheColumn", {1, 2}, u"   \na\n\nbc\n", {{}, {u"a"}, {}, {u"bc"}}, {1, 2}},
    {"BlanksBelongToTheFields", {2, 2}, u" a b", {{u" a", u" b"}}, {2, 2}},
    {"QuotesHoldNothing", {2}, u"\"a\nb\"", {{u"\"a"}, {u"b\""}}, {2, 2}},
    {"DelimitersSeparateNothing", {3}, u"a,bc,d", {{u"a,b", u"c,d"}}, {3, 3}},

    {"ALeadingColumnWithoutWidthIsAnEmptyField", {0, 2}, u"ab", {{u"", u"ab"}}, {0, 2}},
    {"ATrailingColumnWithoutWidthGoesToTheNextLine",
     {2, 0},
     u"ab\ncd",
     {{u"ab"}, {u"", u"cd"}},
     {2, 0, 2}},
    {"ColumnsWithoutWidthReturnInALongLine",
     {0, 2},
     u"abc",
     {{u"", u"ab", u"", u"c", u""}},
     {0, 2, 0, 2, 0}},
    {"SeveralColumnsWithoutWidthInARow",
     {0, 0, 1},
     u"ab",
     {{u"", u"", u"a", u"", u"", u"b"}},
     {0, 0, 1, 0, 0, 1}},

    {"AHalfEndlessWidthTakesTheLine", {kHalf}, u"ab", {{u"ab", u""}}, {kHalf, kHalf}},
    {"AWidthThatWouldWrapInUnitsDoesNotEndAtTheLine",
     {kHalf + 2},
     u"ab",
     {{u"ab", u""}},
     {kHalf + 2, kHalf + 2}},
    {"AnEndlessWidthTakesTheLine", {kLongest}, u"ab", {{u"ab", u""}}, {kLongest, kLongest}},
    {"AnEndlessWidthInTheMiddleDoesNotWrap",
     {1, kLongest},
     u"abc",
     {{u"a", u"bc", u""}},
     {1, kLongest, 1}},
    {"EndlessWidthsAlone", {kHalf, kHalf}, u"ab", {{u"ab", u""}}, {kHalf, kHalf}},

    {"AnEndMarkAtTheStartLeavesNothing", {2}, u"\uFFFFab", {}, {}},
    {"AnEndMarkInsideAFieldIsPartOfIt",
     {2, 1},
     u"a\uFFFFb\nc",
     {{u"a\uFFFF", u"b"}, {u"c", u""}},
     {2, 1, 2, 1}},
    {"AnEndMarkAtTheStartOfAFieldOpensOneMore",
     {2, 3},
     u"ab\uFFFFcd",
     {{u"ab", u"\uFFFFcd"}},
     {2, 3}},
    {"AfterThatFieldTheCutContinues",
     {2, 1},
     u"ab\uFFFFcd",
     {{u"ab", u"\uFFFF", u"cd"}},
     {2, 1, 2}},
    {"TwoEndMarksInARowEndTheCut", {2, 1}, u"ab\uFFFF\uFFFFcd", {{u"ab", u"\uFFFF"}}, {2, 1}},
    {"AnEndMarkAtTheEndOfTheLineIsAField", {2}, u"ab\uFFFF", {{u"ab", u"\uFFFF"}}, {2, 2}},
    {"AnEndMarkAfterAnEndingStopsTheScan", {2}, u"ab\n\uFFFFcd", {{u"ab"}}, {2}},
    // The column without width does not advance at the end mark: one more field, then the line
    // ends.
    {"AColumnWithoutWidthAtAnEndMarkEndsTheCut", {2, 0}, u"ab\uFFFFcd", {{u"ab", u""}}, {2, 0}},
};

class FixedWidthCut : public testing::TestWithParam<CutCase> {};

TEST_P(FixedWidthCut, GivesTheFieldsOfEachLine) {
  const parser::options options;
  FixedWidthStrategy strategy(options, GetParam().widths);
  const ExactText text(GetParam().text);
  EXPECT_EQ(cut_of(strategy, text), GetParam().rows);
}

TEST_P(FixedWidthCut, ReportsTheWidthsAsLengths) {
  const parser::options options;
  FixedWidthStrategy strategy(options, GetParam().widths);
  const ExactText text(GetParam().text);
  strategy.populate_fields(text.field(), 1000);
  Counts lengths;
  for (const Field& field : strategy.get_fields_from_lines().fields) {
    lengths.push_back(field.length);
  }
  EXPECT_EQ(lengths, GetParam().lengths);
}

INSTANTIATE_TEST_SUITE_P(Table, FixedWidthCut, testing::ValuesIn(kCutCases), ByRule());

TEST(FixedWidthColumn, ContinuesFromCutToCut) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText text(u"abc");
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"ab", u"c", u""}}));
  EXPECT_EQ(cut_of(strategy), (Rows{{u"abc"}}));
  EXPECT_EQ(cut_of(strategy), (Rows{{u"ab", u"c", u""}}));
}

TEST(FixedWidthColumn, ContinuesFromSampleToSample) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText text(u"abc");
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"ab", u"c", u""}}));
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"abc"}}));
}

TEST(FixedWidthColumn, IsNotChangedBySampling) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText text(u"abcde");
  strategy.populate_fields(text.field(), 9);
  strategy.populate_fields(text.field(), 9);
  strategy.reset_fields();
  EXPECT_EQ(cut_of(strategy), (Rows{{u"ab", u"cde"}}));
}

// The lengths show which widths were used: a line of three code units leaves the second width for
// the next line.
TEST(FixedWidthColumn, ContinuesFromLineToLineWithCutLine) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText line(u"abc");
  std::vector<Field> fields;
  for (int i = 0; i < 3; ++i) strategy.cut_line(line.field(), fields);
  Counts lengths;
  for (const Field& field : fields) lengths.push_back(field.length);
  EXPECT_EQ(lengths, (Counts{2, 3, 2, 3, 2, 3, 2}));
}

TEST(FixedWidthColumn, ContinuesFromTheValuationToTheNextCut) {
  const parser::options options;
  FixedWidthStrategy strategy(options, {2, 3});
  const ExactText text(u"abc");
  strategy.populate_fields(text.field(), 9);
  strategy.valuation();
  EXPECT_EQ(cut_of(strategy), (Rows{{u"abc"}}));
}

// Code that reads a field stops at the end of the text, whatever length the field reports.
TEST(FixedWidthColumn, IsNotReadPastTheText) {
  parser::options options;
  options.detect_header_lines = false;
  options.header_lines = 0;
  for (const unsigned long width : {3UL, 1000000UL, kHalf, kLongest}) {
    FixedWidthStrategy strategy(options, {2, width});
    const ExactText text(u"1 23\n4 56\n7 8");
    strategy.populate_fields(text.field(), 9);
    EXPECT_EQ(strategy.valuation().num_lines, 3u);
  }
}

}  // namespace
}  // namespace textio
