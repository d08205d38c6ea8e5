#include <vltextstream/strategy/space_aligned_strategy.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "support/strategy_cases.hpp"

namespace textio {
namespace {

using namespace testing_support;

// -- construction -------------------------------------------------------------------------------

TEST(SpaceAlignedConstructor, IsModeOneAndRanksAfterTheDelimitersInOrder) {
  const parser::options options;
  const Open<SpaceAlignedStrategy> strategy(options);
  EXPECT_EQ(strategy.mode(), 1);
  EXPECT_TRUE(strategy.space_separated_);
  EXPECT_EQ(strategy.valuation_.priors_rank, 3.5);
}

TEST(SpaceAlignedConstructor, IgnoresTheDelimitersOfTheOptions) {
  parser::options options;
  options.delimiters = {u","};
  SpaceAlignedStrategy strategy(options);
  const ExactText text(u"a,b c");
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"a,b", u"c"}}));
}

struct WhitespaceCase {
  const char* rule;
  std::u16string whitespace;
  std::u16string left;
};
std::ostream& operator<<(std::ostream& out, const WhitespaceCase& row) { return out << row.rule; }

const WhitespaceCase kWhitespaceCases[] = {
    {"TheTabInTheLastPlaceStays", u" \b\t", u"\b\t\t"},
    {"ABlankThenATabLeaveTabs", u" \t", u"\t\t"},
    {"ATabThenABlankLeaveBlanks", u"\t ", u"  "},
    {"ALoneBlankStays", u" ", u" "},
    {"ALoneTabStays", u"\t", u"\t"},
    {"TheTabIsTakenOutBeforeTheBlank", u"\t \b", u"\b\b\b"},
    {"OtherCharactersStay", u"xy", u"xy"},
    {"NothingStaysNothing", u"", u""},
};

class SpaceAlignedWhitespace : public testing::TestWithParam<WhitespaceCase> {};

TEST_P(SpaceAlignedWhitespace, LosesTabAndBlankButNotItsLength) {
  parser::options options;
  options.whitespace = GetParam().whitespace;
  const Open<SpaceAlignedStrategy> strategy(options);
  EXPECT_EQ(strategy.text_format_.whitespace, GetParam().left);
  EXPECT_EQ(strategy.quoted_format_.whitespace, GetParam().left);
  EXPECT_EQ(strategy.number_format_.whitespace, GetParam().left);
  EXPECT_EQ(options.whitespace, GetParam().whitespace);
}

INSTANTIATE_TEST_SUITE_P(Table, SpaceAlignedWhitespace, testing::ValuesIn(kWhitespaceCases),
                         ByRule());

// -- lines --------------------------------------------------------------------------------------

const LineCase kLineCases[] = {
    {"AnEmptyTextHasNoLine", u"", {}},
    {"LeadingBlanksAreNotPartOfTheLine", u"   a   b", {{u"a   b", 8}}},
    {"LeadingTabsAreNotPartOfTheLine", u"\t a b\n\tc", {{u"a b", 6}, {u"c", 8}}},
    {"TrailingBlanksArePartOfTheLine", u"a \t\nb", {{u"a \t", 4}, {u"b", 5}}},
    {"TrailingBlanksAtTheEndOfTheTextArePartOfIt", u"a b  ", {{u"a b  ", 5}}},
    {"OneTrailingBlankAtTheEndOfTheTextIsPartOfIt", u"a ", {{u"a ", 2}}},
    {"TheEndingIsConsumed", u"a b\r\nc\rd\n", {{u"a b", 5}, {u"c", 7}, {u"d", 9}}},
    {"ALineOfBlanksIsEmpty", u"   \nx", {{u"", 4}, {u"x", 5}}},
    {"BlanksAtTheEndOfTheTextAreAnEmptyLine", u"a\n \t", {{u"a", 2}, {u"", 4}}},
    {"EndingsAloneEncloseEmptyLines", u"\n\n", {{u"", 1}, {u"", 2}}},
    {"BlanksBetweenEndingsAreEmptyLines", u"a \n \n b", {{u"a ", 3}, {u"", 5}, {u"b", 7}}},
    {"QuotesHoldALineTogether", u"\"x\ny\" z\nw", {{u"\"x\ny\" z", 8}, {u"w", 9}}},
    {"AQuoteInsideAFieldHoldsNothing", u"x\"\ny\"", {{u"x\"", 3}, {u"y\"", 5}}},
    {"AnUnterminatedQuoteIsTheLastLine", u"a\n \"b\nc \n", {{u"a", 2}, {u"\"b\nc \n", 9}}},
    {"AnEndMarkAtTheStartStopsTheScan", u"\uFFFFa b", {}},
    {"AnEndMarkAfterLeadingBlanksLeavesAnEmptyLine", u"  \uFFFFa", {{u"", 2}}},
    {"AnEndMarkAfterBlanksEndsTheLine", u"a  \uFFFFb\nc", {{u"a  ", 3}}},
    {"AnEndMarkInsideAFieldIsPartOfTheLine", u"a\uFFFFb c\nd", {{u"a\uFFFFb c", 6}, {u"d", 7}}},
    {"AnEndMarkAfterAClosingQuoteEndsTheLine", u"\"a\"\uFFFFb\nc", {{u"\"a\"", 3}}},
    {"AnEndMarkAfterAnEndingStopsTheScan", u"a b\n\uFFFFc", {{u"a b", 4}}},
    {"AnEndMarkAtTheEndIsPartOfTheLine", u"a b\uFFFF", {{u"a b\uFFFF", 4}}},
};

class SpaceAlignedGetLineExtent : public testing::TestWithParam<LineCase> {};

TEST_P(SpaceAlignedGetLineExtent, SkipsLeadingBlanksAndEndsAtAnEndingOutsideQuotes) {
  const parser::options options;
  const SpaceAlignedStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(line_steps(strategy, text), GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(Table, SpaceAlignedGetLineExtent, testing::ValuesIn(kLineCases), ByRule());

TEST(SpaceAlignedScan, FindsNothingFromTheEndOn) {
  const parser::options options;
  SpaceAlignedStrategy strategy(options);
  expect_nothing_from_the_end_on(strategy, ExactText(u"a "));
}

TEST(SpaceAlignedScan, FindsNothingAtAnEndMark) {
  const parser::options options;
  SpaceAlignedStrategy strategy(options);
  expect_nothing_at(strategy, ExactText(u"a\uFFFFb c"), 1);
}

// A line ending that is only the end mark is also found after the last code unit.
TEST(SpaceAlignedScan, ConsumesAnEndMarkThatEndsLinesEvenPastTheText) {
  parser::options options;
  options.line_endings = {u"\uFFFF"};
  const SpaceAlignedStrategy strategy(options);
  const ExactText text(u"a b\uFFFFc");
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 0)), (Step{u"a b", 4}));
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 4)), (Step{u"c", 6}));
}

TEST(SpaceAlignedGetNextField, StepsOverAllBlanksAfterTheField) {
  const parser::options options;
  SpaceAlignedStrategy strategy(options);
  const ExactText tabs(u"a\t \tb");
  EXPECT_EQ(field_steps(strategy, tabs), (Steps{{u"a", 4}, {u"b", 5}}));
  const ExactText quoted(u"\"a b\"c  d ");
  EXPECT_EQ(field_steps(strategy, quoted), (Steps{{u"\"a b\"c", 8}, {u"d", 10}}));
}

TEST(SpaceAlignedGetNextField, GivesAnEmptyFieldAtABlank) {
  const parser::options options;
  SpaceAlignedStrategy strategy(options);
  const ExactText line(u"a  b");
  EXPECT_EQ(step_of(strategy.get_next_field(line.field(), 1)), (Step{u"", 3}));
}

// -- fields -------------------------------------------------------------------------------------

struct CutCase {
  const char* rule;
  Texts line_endings;
  std::u16string text;
  Rows rows;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kCutCases[] = {
    {"ARunOfBlanksSeparates", kDefault, u"   a   b", {{u"a", u"b"}}},
    {"TabsAndBlanksMix", kDefault, u"a\t \tb", {{u"a", u"b"}}},
    {"ASingleBlankSeparates", kDefault, u"a b\tc", {{u"a", u"b", u"c"}}},
    {"TrailingBlanksOpenOneEmptyField", kDefault, u"a b  ", {{u"a", u"b", u""}}},
    {"TrailingBlanksBeforeAnEndingDoSoToo", kDefault, u"a \r\n b\t\n", {{u"a", u""}, {u"b", u""}}},
    {"ALineOfBlanksHasNoField", kDefault, u"   \nx", {{}, {u"x"}}},
    {"EmptyLinesHaveNoField", kDefault, u"\n\na\n", {{}, {}, {u"a"}}},
    {"BlankLinesBetweenHaveNoField", kDefault, u"a \n \n b", {{u"a", u""}, {}, {u"b"}}},
    {"OtherBlankCharactersBelongToAField",
     kDefault,
     u"a\u00a0b\bc\u000bd",
     {{u"a\u00a0b\bc\u000bd"}}},
    {"CommasBelongToAField", kDefault, u"a, b", {{u"a,", u"b"}}},

    {"QuotesHoldBlanks", kDefault, u"\"x y\" z", {{u"\"x y\"", u"z"}}},
    {"QuotesHoldBlanksInALaterField", kDefault, u"a \"b c\"", {{u"a", u"\"b c\""}}},
    {"QuotesHoldEndings", kDefault, u"\"x\ny\" z\nw", {{u"\"x\ny\"", u"z"}, {u"w"}}},
    {"QuotedBesideQuoted", kDefault, u"\"a\" \"b\"", {{u"\"a\"", u"\"b\""}}},
    {"ADoubledQuoteDoesNotClose", kDefault, u"\"a\"\"b c\" d", {{u"\"a\"\"b c\"", u"d"}}},
    {"TextAfterTheClosingQuoteStays", kDefault, u"\"a b\"c d", {{u"\"a b\"c", u"d"}}},
    {"AQuoteInsideAFieldHoldsNothing", kDefault, u"a\"b c\"", {{u"a\"b", u"c\""}}},
    {"ABlankBeforeTheQuoteLeavesItAQuote", kDefault, u" \"a b\"", {{u"\"a b\""}}},
    {"AnUnterminatedQuoteTakesTheRest", kDefault, u"a \"b c\nd", {{u"a", u"\"b c\nd"}}},
    {"ALoneQuoteIsAField", kDefault, u"a \"", {{u"a", u"\""}}},
    {"AnEmptyQuotedField", kDefault, u"\"\" a\n\"\" ", {{u"\"\"", u"a"}, {u"\"\"", u""}}},

    {"DefaultEndingsInTheMixedText", kDefault, kMixed, {{u"a;b", u""}, {u"c"}}},
    {"WithoutEndingsTheTextIsALine", {}, kMixed, {{u"a;b", u"\nc"}}},
    {"AnEmptyEndingEndsNothing", {u""}, kMixed, {{u"a;b", u"\nc"}}},
    {"ABlankEndsNoLine", {u" "}, kMixed, {{u"a;b", u"\nc"}}},
    {"ABlankEndsNoLineAtAll", {u" "}, u"a b c", {{u"a", u"b", u"c"}}},
    {"ATabAndALineFeedEndNoLine", {u"\t\n"}, kMixed, {{u"a;b", u"\nc"}}},
    {"ATabAndALineFeedRightAfterAFieldNeither", {u"\t\n"}, u"a\t\nb", {{u"a", u"\nb"}}},
    {"AnEndingOfABlankAndALineFeedLosesItsBlank", {u" \n", u"\n"}, u"a \nb", {{u"a", u""}, {u"b"}}},
    {"AnEndMarkAsTheEndingEndsNothingElse", {u"\uFFFF"}, kMixed, {{u"a;b", u"\nc"}}},
    {"AnEndMarkAsTheEndingIsConsumedByTheLine",
     {u"\uFFFF"},
     u"a b\uFFFFc d",
     {{u"a", u"b"}, {u"c", u"d"}}},
    {"AnEndMarkAsTheEndingIsNotSeenAfterABlank", {u"\uFFFF"}, u"a \uFFFFb", {{u"a", u""}}},
    {"ASemicolonMayEndLines", {u";"}, kMixed, {{u"a"}, {u"b", u"\nc"}}},
    {"HalfAnEndingIsText", {u"\r\n"}, u"a\r b\r\nc", {{u"a\r", u"b"}, {u"c"}}},

    {"AnEndMarkAtTheStartLeavesNothing", kDefault, u"\uFFFFa b", {}},
    {"AnEndMarkAfterLeadingBlanksIsAnEmptyLine", kDefault, u"  \uFFFFa", {{}}},
    {"AnEndMarkAfterABlank", kDefault, u"a \uFFFFb", {{u"a", u""}}},
    {"AnEndMarkInsideAField", kDefault, u"a\uFFFFb c", {{u"a\uFFFFb", u"c"}}},
    {"AnEndMarkBeforeABlank", kDefault, u"a\uFFFF b", {{u"a\uFFFF", u"b"}}},
    {"AnEndMarkInsideQuotes", kDefault, u"\"a \uFFFF\" b", {{u"\"a \uFFFF\"", u"b"}}},
    {"AnEndMarkAfterAClosingQuote", kDefault, u"a \"b\"\uFFFF c", {{u"a", u"\"b\""}}},
    {"AnEndMarkAfterHalfAnEnding", {u"\r\n"}, u"a\r\uFFFFb", {{u"a\r"}}},
};

class SpaceAlignedCut : public testing::TestWithParam<CutCase> {};

TEST_P(SpaceAlignedCut, GivesTheFieldsOfEachLine) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  SpaceAlignedStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(cut_of(strategy, text), GetParam().rows);
}

TEST_P(SpaceAlignedCut, IsTheSameTwice) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  SpaceAlignedStrategy strategy(options);
  expect_the_same_cut_twice(strategy, ExactText(GetParam().text), GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Table, SpaceAlignedCut, testing::ValuesIn(kCutCases), ByRule());

TEST(SpaceAlignedPopulate, CountsTheEmptyFieldAfterTrailingBlanks) {
  const parser::options options;
  SpaceAlignedStrategy strategy(options);
  const ExactText text(u"  a b  \n\n c\n");
  EXPECT_EQ(lines_of(strategy, text, 9), (Texts{u"a b  ", u"", u"c"}));
  EXPECT_EQ(field_counts_of(strategy), (std::vector<std::size_t>{3, 0, 1}));
}

// The search for a comment marker uses the line, which has no leading blanks here. A line of quotes
// around blanks is not empty.
TEST(SpaceAlignedPopulate, DropsIndentedComments) {
  parser::options options;
  options.comment_style = {u"#"};
  SpaceAlignedStrategy strategy(options);
  const ExactText text(u"  # a\n\" \"\n b # c\n");
  EXPECT_EQ(lines_of(strategy, text, 9), (Texts{u"\" \"", u"b # c"}));
}

}  // namespace
}  // namespace textio
