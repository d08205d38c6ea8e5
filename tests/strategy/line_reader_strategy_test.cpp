#include <vltextstream/strategy/line_reader_strategy.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include "support/strategy_cases.hpp"

namespace textio {
namespace {

using namespace testing_support;

TEST(LineReaderConstructor, IsModeThreeWithoutRankOrSeparator) {
  const parser::options options;
  const Open<LineReaderStrategy> strategy(options);
  EXPECT_EQ(strategy.mode(), 3);
  EXPECT_FALSE(strategy.space_separated_);
  EXPECT_EQ(strategy.valuation_.priors_rank, std::numeric_limits<double>::infinity());
  EXPECT_EQ(strategy.text_format_.whitespace, u" \b\t");
}

const EndingCase kLineCases[] = {
    {"AnEmptyTextHasNoLine", kDefault, u"", {}},
    {"TheTwoUnitEndingIsConsumedAsOne", kDefault, u"ab\r\ncd", {{u"ab", 4}, {u"cd", 6}}},
    {"TheLastLineNeedsNoEnding", kDefault, u"ab", {{u"ab", 2}}},
    {"EndingsAloneEncloseEmptyLines", kDefault, u"\n\n", {{u"", 1}, {u"", 2}}},
    {"ALoneCarriageReturnEndsALine", kDefault, u"ab\rx", {{u"ab", 3}, {u"x", 4}}},
    {"ACarriageReturnAtTheVeryEndEndsALine", kDefault, u"ab\r", {{u"ab", 3}}},
    {"TheOtherOrderIsTwoEndings", kDefault, u"a\n\rb", {{u"a", 2}, {u"", 3}, {u"b", 4}}},
    {"TwoCarriageReturnsBeforeALineFeedAreTwo",
     kDefault,
     u"a\r\r\nb",
     {{u"a", 2}, {u"", 4}, {u"b", 5}}},
    {"QuotesDoNotHoldLinesTogether", kDefault, u"\"a\nb\"", {{u"\"a", 3}, {u"b\"", 5}}},
    {"BlanksBelongToTheLine", kDefault, u" a \n", {{u" a ", 4}}},
    {"OtherLineCharactersEndNothing",
     kDefault,
     u"a\u2028b\u000bc\u0085d",
     {{u"a\u2028b\u000bc\u0085d", 7}}},

    {"ASemicolonMayEndLines", {u";"}, u"a;b", {{u"a", 2}, {u"b", 3}}},
    {"ASemicolonLeavesLineFeedsAlone", {u";"}, kMixed, {{u"a", 2}, {u"b \t\nc", 7}}},
    {"WithoutEndingsTheTextIsOneLine", {}, kMixed, {{kMixed, 7}}},
    {"AnEmptyEndingEndsNothing", {u""}, kMixed, {{kMixed, 7}}},
    {"AnEmptyEndingEndsNothingAtANul", {u""}, with_nul(u"a\0b"), {{with_nul(u"a\0b"), 3}}},
    {"AnEmptyEndingInFrontHidesTheOthers", {u"", u"\n"}, kMixed, {{kMixed, 7}}},
    {"AnEmptyEndingAtTheEndHidesNothing", {u"\n", u""}, kMixed, {{u"a;b \t", 6}, {u"c", 7}}},
    {"ABlankMayEndLines", {u" "}, kMixed, {{u"a;b", 4}, {u"\t\nc", 7}}},
    {"ATabAndALineFeedMayEndLinesTogether", {u"\t\n"}, kMixed, {{u"a;b ", 6}, {u"c", 7}}},
    {"PartOfAnEndingEndsNothing", {u"\t\n"}, u"a\tb\nc\t", {{u"a\tb\nc\t", 6}}},
    {"ARepeatedEndingIsOne", {u"\n", u"\n"}, kMixed, {{u"a;b \t", 6}, {u"c", 7}}},
    {"TheFirstEndingThatFitsWins", {u"\r", u"\r\n"}, u"a\r\nb", {{u"a", 2}, {u"\nb", 4}}},
    {"OfAnEndingOnlyItsWholeLengthCounts", {u"\r\n"}, u"a\rb\r\nc", {{u"a\rb", 5}, {u"c", 6}}},
    {"AnEndingThatDoesNotFitIsPassedOver", {u"\r\n"}, u"a\r", {{u"a\r", 2}}},
    {"ALongEndingMayOverlapItself", {u"aab"}, u"aaabc", {{u"a", 4}, {u"c", 5}}},

    {"AnEndMarkAtTheStartLeavesNothing", kDefault, u"\uFFFFab", {}},
    {"AnEndMarkInsideALineIsPartOfIt", kDefault, u"a\uFFFFb\nc", {{u"a\uFFFFb", 4}, {u"c", 5}}},
    {"AnEndMarkAtTheEndIsPartOfTheLine", kDefault, u"ab\uFFFF", {{u"ab\uFFFF", 3}}},
    {"AnEndMarkAfterAnEndingStopsTheScan", kDefault, u"a\n\uFFFFb", {{u"a", 2}}},
    {"AnEndMarkAfterHalfAnEndingStopsTheScan", {u"\r\n"}, u"a\r\uFFFFb", {{u"a\r", 2}}},
    {"AnEndMarkAfterAHalfAndMoreDoesNot",
     {u"\r\n"},
     u"a\rb\uFFFFc\r\nd",
     {{u"a\rb\uFFFFc", 7}, {u"d", 8}}},
    {"AnEndMarkIsNeverConsumedAsAnEnding", {u"\uFFFF"}, u"a\uFFFFb", {{u"a", 1}}},
    {"AnEndMarkAsTheEndingEndsNothingElse", {u"\uFFFF"}, kMixed, {{kMixed, 7}}},
    {"AnEndingThatStartsWithAnEndMarkStopsTheScan", {u"\uFFFF\n"}, u"a\uFFFF\nb", {{u"a", 1}}},
};

class LineReaderGetLineExtent : public testing::TestWithParam<EndingCase> {};

TEST_P(LineReaderGetLineExtent, EndsALineAtItsEnding) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  const LineReaderStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(line_steps(strategy, text), GetParam().steps);
}

TEST_P(LineReaderGetLineExtent, MakesEveryLineThatIsNotEmptyOneField) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  LineReaderStrategy strategy(options);
  const ExactText text(GetParam().text);
  Rows rows;
  for (const Step& step : GetParam().steps) {
    rows.push_back(step.found.empty() ? Texts{} : Texts{step.found});
  }
  EXPECT_EQ(cut_of(strategy, text), rows);
}

INSTANTIATE_TEST_SUITE_P(Table, LineReaderGetLineExtent, testing::ValuesIn(kLineCases), ByRule());

TEST(LineReaderScan, FindsNothingFromTheEndOn) {
  const parser::options options;
  LineReaderStrategy strategy(options);
  expect_nothing_from_the_end_on(strategy, ExactText(u"ab"));
}

TEST(LineReaderScan, FindsNothingAtAnEndMark) {
  const parser::options options;
  LineReaderStrategy strategy(options);
  expect_nothing_at(strategy, ExactText(u"a\uFFFFb"), 1);
}

TEST(LineReaderScan, MayStartInTheMiddleOfALine) {
  const parser::options options;
  const LineReaderStrategy strategy(options);
  const ExactText text(u"abc\r\nd");
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 1)), (Step{u"bc", 5}));
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 4)), (Step{u"", 5}));
}

TEST(LineReaderGetNextField, IsTheWholeRestOfTheLine) {
  const parser::options options;
  LineReaderStrategy strategy(options);
  const ExactText line(u"a, \"b\tc\";d ");
  EXPECT_EQ(field_steps(strategy, line), (Steps{{u"a, \"b\tc\";d ", 11}}));
  EXPECT_EQ(step_of(strategy.get_next_field(line.field(), 9)), (Step{u"d ", 11}));
}

TEST(LineReaderPopulate, CountsOneFieldPerLineThatIsNotEmpty) {
  const parser::options options;
  LineReaderStrategy strategy(options);
  const ExactText text(u"a,b\r\n\r\n  \r\nc;d\r\n\"e");
  EXPECT_EQ(lines_of(strategy, text, 100), (Texts{u"a,b", u"", u"", u"c;d", u"\"e"}));
  EXPECT_EQ(field_counts_of(strategy), (std::vector<std::size_t>{1, 0, 0, 1, 1}));
}

}  // namespace
}  // namespace textio
