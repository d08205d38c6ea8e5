#include <vltextstream/strategy/delimited_strategy.hpp>

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

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotInTheOrder = 18446744073709551616.0;  // 2 to the 64th

// -- construction -------------------------------------------------------------------------------

struct RankCase {
  const char* rule;
  Texts delimiters;
  double priors_rank;
  bool space_separated;
};
std::ostream& operator<<(std::ostream& out, const RankCase& row) { return out << row.rule; }

const RankCase kRankCases[] = {
    {"TheCommaIsFirst", {u","}, 0, false},
    {"TheTabIsSecond", {u"\t"}, 1, false},
    {"TheSemicolonIsThird", {u";"}, 2, false},
    {"TheBlankIsFourthAndSeparatesBySpaces", {u" "}, 3, true},
    {"ABarRanksLast", {u"|"}, kNotInTheOrder, false},
    {"ANulRanksLast", {with_nul(u"\0")}, kNotInTheOrder, false},
    {"TheEndMarkRanksLast", {u"\uFFFF"}, kNotInTheOrder, false},
    {"TwoCharactersHaveNoRank", {u",;"}, kInfinity, false},
    {"TwoBlanksHaveNoRank", {u"  "}, kInfinity, false},
    {"TwoDelimitersHaveNoRank", {u",", u";"}, kInfinity, false},
    {"TwoDelimitersWithABlankHaveNoRank", {u" ", u"\t"}, kInfinity, false},
    {"ARepeatedDelimiterHasNoRank", {u" ", u" "}, kInfinity, false},
    {"AnEmptyDelimiterHasNoRank", {u""}, kInfinity, false},
    {"NoDelimiterHasNoRank", {}, kInfinity, false},
};

class DelimitedRank : public testing::TestWithParam<RankCase> {};

TEST_P(DelimitedRank, IsThePositionOfItsOnlyCharacter) {
  const parser::options options;
  const Open<DelimitedStrategy> strategy(options, GetParam().delimiters);
  EXPECT_EQ(strategy.valuation_.priors_rank, GetParam().priors_rank);
  EXPECT_EQ(strategy.space_separated_, GetParam().space_separated);
}

TEST_P(DelimitedRank, IsTheSameForTheDelimitersOfTheOptions) {
  parser::options options;
  options.delimiters = GetParam().delimiters;
  const Open<DelimitedStrategy> strategy(options);
  EXPECT_EQ(strategy.valuation_.priors_rank, GetParam().priors_rank);
  EXPECT_EQ(strategy.space_separated_, GetParam().space_separated);
  EXPECT_EQ(strategy.delimiter()->strings, GetParam().delimiters);
}

TEST_P(DelimitedRank, IsTheSameForASingleCharacter) {
  if (GetParam().delimiters.size() != 1 || GetParam().delimiters[0].size() != 1) return;
  const parser::options options;
  const Open<DelimitedStrategy> strategy(options, GetParam().delimiters[0][0]);
  EXPECT_EQ(strategy.valuation_.priors_rank, GetParam().priors_rank);
  EXPECT_EQ(strategy.space_separated_, GetParam().space_separated);
  EXPECT_EQ(strategy.delimiter()->strings, GetParam().delimiters);
}

INSTANTIATE_TEST_SUITE_P(Table, DelimitedRank, testing::ValuesIn(kRankCases), ByRule());

TEST(DelimitedConstructor, IsModeZero) {
  const parser::options options;
  EXPECT_EQ(DelimitedStrategy(options, u',').mode(), 0);
}

TEST(DelimitedConstructor, PrefersGivenDelimitersToThoseOfTheOptions) {
  parser::options options;
  options.delimiters = {u";"};
  const DelimitedStrategy strategy(options, Texts{u",", u"::"});
  EXPECT_EQ(strategy.delimiter()->strings, (Texts{u",", u"::"}));
}

TEST(DelimitedDelimiters, AreTheOnesItCutsAt) {
  const parser::options options;
  EXPECT_EQ(DelimitedStrategy(options, u';').delimiters(), Texts{u";"});
  EXPECT_EQ(DelimitedStrategy(options, Texts{u"::"}).delimiters(), Texts{u"::"});
  EXPECT_EQ(DelimitedStrategy(options, Texts{u",", u"|"}).delimiters(), (Texts{u",", u"|"}));
}

struct WhitespaceCase {
  const char* rule;
  std::u16string whitespace;
  Texts delimiters;
  std::u16string left;
};
std::ostream& operator<<(std::ostream& out, const WhitespaceCase& row) { return out << row.rule; }

const WhitespaceCase kWhitespaceCases[] = {
    {"ADelimiterOutsideItChangesNothing", u" \b\t", {u","}, u" \b\t"},
    {"TheTabInTheLastPlaceStaysWhiteSpace", u" \b\t", {u"\t"}, u" \b\t"},
    {"TheBlankIsTakenOutInPlace", u" \b\t", {u" "}, u"\b\t\t"},
    {"TheBackspaceIsTakenOutInPlace", u" \b\t", {u"\b"}, u" \t\t"},
    {"SeveralAreTakenOutInTheirOrder", u" \b\t", {u" ", u"\b"}, u"\t\t\t"},
    {"TheOtherOrderEndsTheSameHere", u" \b\t", {u"\b", u" "}, u"\t\t\t"},
    {"ATabThenABlankLeavesTheTab", u" \b\t", {u"\t", u" "}, u"\b\t\t"},
    {"ABlankThenATabLeavesTheTabInTheLastPlaces", u" \b\t", {u" ", u"\t"}, u"\b\t\t"},
    {"ALoneDelimiterStaysWhiteSpace", u" ", {u" "}, u" "},
    {"SeveralOccurrencesKeepAsManyPlaces", u" x y", {u" "}, u"xy y"},
    {"LongerDelimitersChangeNothing", u" \b\t", {u"  ", u"\b\t"}, u" \b\t"},
    {"OnlyTheOneCharacterDelimitersCount", u" \b\t", {u"\b\b", u" "}, u"\b\t\t"},
    {"AnEmptyDelimiterChangesNothing", u" \b\t", {u""}, u" \b\t"},
    {"EmptyWhiteSpaceStaysEmpty", u"", {u" "}, u""},
};

class DelimitedWhitespace : public testing::TestWithParam<WhitespaceCase> {};

TEST_P(DelimitedWhitespace, LosesTheDelimitersButNotItsLength) {
  parser::options options;
  options.whitespace = GetParam().whitespace;
  const Open<DelimitedStrategy> strategy(options, GetParam().delimiters);
  EXPECT_EQ(strategy.text_format_.whitespace, GetParam().left);
  EXPECT_EQ(strategy.quoted_format_.whitespace, GetParam().left);
  EXPECT_EQ(strategy.number_format_.whitespace, GetParam().left);
  EXPECT_EQ(options.whitespace, GetParam().whitespace);
}

INSTANTIATE_TEST_SUITE_P(Table, DelimitedWhitespace, testing::ValuesIn(kWhitespaceCases), ByRule());

TEST(DelimitedPopulate, CleansLinesWithTheRemainingWhiteSpace) {
  const parser::options options;
  const ExactText text(u"   \n\t\t\nx\n");
  DelimitedStrategy commas(options, u',');
  EXPECT_EQ(lines_of(commas, text, 9), (Texts{u"", u"", u"x"}));
  DelimitedStrategy tabs(options, u'\t');
  EXPECT_EQ(lines_of(tabs, text, 9), (Texts{u"", u"", u"x"}));
  DelimitedStrategy blanks(options, u' ');
  EXPECT_EQ(lines_of(blanks, text, 9), (Texts{u"   ", u"", u"x"}));
  EXPECT_EQ(field_counts_of(blanks), (std::vector<std::size_t>{4, 0, 1}));
}

// -- lines --------------------------------------------------------------------------------------

const LineCase kLineCases[] = {
    {"AnEmptyTextHasNoLine", u"", {}},
    {"TheEndingIsConsumed", u"a,b\r\nc", {{u"a,b", 5}, {u"c", 6}}},
    {"ADelimiterAtTheEndBelongsToTheLine", u"a,\nb", {{u"a,", 3}, {u"b", 4}}},
    {"ADelimiterAtTheEndOfTheTextBelongsToTheLine", u"a,", {{u"a,", 2}}},
    {"EndingsAloneEncloseEmptyLines", u"\n\n", {{u"", 1}, {u"", 2}}},
    {"QuotesHoldALineTogether", u"\"x\ny\",1\n2,3\n", {{u"\"x\ny\",1", 8}, {u"2,3", 12}}},
    {"QuotesInALaterFieldHoldItTogetherToo", u"1,\"x\ny\"\n2", {{u"1,\"x\ny\"", 8}, {u"2", 9}}},
    {"AQuoteInsideAFieldHoldsNothing", u"1\"x\ny\"", {{u"1\"x", 4}, {u"y\"", 6}}},
    {"AnUnterminatedQuoteIsTheLastLine", u"a\n\"b,c\nd\ne", {{u"a", 2}, {u"\"b,c\nd\ne", 10}}},
    {"ALoneQuoteIsALine", u"\"\n", {{u"\"\n", 2}}},
    {"AnEndMarkAfterADelimiterEndsTheLine", u"a,\uFFFFb\nc", {{u"a,", 2}}},
    {"AnEndMarkAfterTwoDelimitersEndsTheLine", u"a,,\uFFFF", {{u"a,,", 3}}},
    {"AnEndMarkAfterAClosingQuoteEndsTheLine", u"\"a\"\uFFFFb\nc", {{u"\"a\"", 3}}},
    {"AnEndMarkInsideAFieldIsPartOfTheLine", u"a,b\uFFFFc,d\ne", {{u"a,b\uFFFFc,d", 8}, {u"e", 9}}},
    {"AnEndMarkAtTheEndIsPartOfTheLine", u"ab\uFFFF", {{u"ab\uFFFF", 3}}},
    {"AnEndMarkAfterAnEndingStopsTheScan", u"a\n\uFFFFb", {{u"a", 2}}},
    {"AnEndMarkBeforeAnEndingIsPartOfTheLine", u"a\uFFFF\nb", {{u"a\uFFFF", 3}, {u"b", 4}}},
};

class DelimitedGetLineExtent : public testing::TestWithParam<LineCase> {};

TEST_P(DelimitedGetLineExtent, EndsALineAtAnEndingOutsideQuotes) {
  const parser::options options;
  const DelimitedStrategy strategy(options, u',');
  const ExactText text(GetParam().text);
  EXPECT_EQ(line_steps(strategy, text), GetParam().steps);
}

INSTANTIATE_TEST_SUITE_P(Table, DelimitedGetLineExtent, testing::ValuesIn(kLineCases), ByRule());

TEST(DelimitedScan, FindsNothingFromTheEndOn) {
  const parser::options options;
  DelimitedStrategy strategy(options, u',');
  expect_nothing_from_the_end_on(strategy, ExactText(u"a,"));
}

TEST(DelimitedScan, FindsNothingAtAnEndMark) {
  const parser::options options;
  DelimitedStrategy strategy(options, u',');
  expect_nothing_at(strategy, ExactText(u"a\uFFFFb,c"), 1);
}

TEST(DelimitedScan, StartsAnywhere) {
  const parser::options options;
  const DelimitedStrategy strategy(options, u',');
  const ExactText text(u"\"a\nb\",c\nd");
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 1)), (Step{u"a", 3}));
  EXPECT_EQ(step_of(strategy.get_line_extent(text.field(), 6)), (Step{u"c", 8}));
}

// A scan sees an end mark after the last code unit, and here the end mark is a line ending.
TEST(DelimitedScan, ConsumesAnEndMarkThatEndsLinesEvenPastTheText) {
  parser::options options;
  options.line_endings = {u"\uFFFF"};
  const DelimitedStrategy strategy(options, u',');
  const ExactText text(u"a,b\uFFFFc");
  EXPECT_EQ(line_steps(strategy, text), (Steps{{u"a,b", 4}, {u"c", 6}}));
}

TEST(DelimitedGetNextField, StepsOverTheDelimiter) {
  const parser::options options;
  DelimitedStrategy strategy(options, u',');
  const ExactText line(u"ab,\"c,d\"x,,e");
  EXPECT_EQ(field_steps(strategy, line),
            (Steps{{u"ab", 3}, {u"\"c,d\"x", 10}, {u"", 11}, {u"e", 12}}));
}

// -- fields -------------------------------------------------------------------------------------

struct CutCase {
  const char* rule;
  Texts delimiters;
  Texts line_endings;
  std::u16string text;
  Rows rows;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const Texts kComma = {u","};
const CutCase kCutCases[] = {
    // Plain fields.
    {"DelimitersSeparateFields", kComma, kDefault, u"a,b,c", {{u"a", u"b", u"c"}}},
    {"TwoInARowEncloseAnEmptyField", kComma, kDefault, u"a,,c", {{u"a", u"", u"c"}}},
    {"ALeadingOneClosesAnEmptyField", kComma, kDefault, u",a", {{u"", u"a"}}},
    {"ATrailingOneOpensAnEmptyField", kComma, kDefault, u"a,", {{u"a", u""}}},
    {"ATrailingOneOpensAnEmptyFieldBeforeAnEnding",
     kComma,
     kDefault,
     u"a,b,\nc,\n",
     {{u"a", u"b", u""}, {u"c", u""}}},
    {"ALoneOneLiesBetweenEmptyFields", kComma, kDefault, u",", {{u"", u""}}},
    {"ThreeLieBetweenFourEmptyFields", kComma, kDefault, u",,,", {{u"", u"", u"", u""}}},
    {"AnEmptyLineHasNoField", kComma, kDefault, u"\na\n\n", {{}, {u"a"}, {}}},
    {"ALineOfBlanksHasNoField", kComma, kDefault, u"  \na", {{}, {u"a"}}},
    {"BlanksBesideADelimiterStay", kComma, kDefault, u" a , b ", {{u" a ", u" b "}}},

    // Quotes in all positions.
    {"QuotedThenPlain", kComma, kDefault, u"\"a\",b", {{u"\"a\"", u"b"}}},
    {"PlainThenQuoted", kComma, kDefault, u"a,\"b\"", {{u"a", u"\"b\""}}},
    {"QuotedThenNothing", kComma, kDefault, u"\"a\",", {{u"\"a\"", u""}}},
    {"NothingThenQuoted", kComma, kDefault, u",\"a\"", {{u"", u"\"a\""}}},
    {"QuotedThenAnEnding", kComma, kDefault, u"\"a\"\r\n\"b\"", {{u"\"a\""}, {u"\"b\""}}},
    {"QuotedAroundADelimiterThenText", kComma, kDefault, u"\"a,b\"x,c", {{u"\"a,b\"x", u"c"}}},
    {"QuotedBesideQuoted", kComma, kDefault, u"\"a\"\"b\",c", {{u"\"a\"\"b\"", u"c"}}},
    {"TwoEmptyQuotedFields", kComma, kDefault, u"\"\",\"\"", {{u"\"\"", u"\"\""}}},
    {"AnEmptyQuotedLine", kComma, kDefault, u"\"\"\na", {{u"\"\""}, {u"a"}}},
    {"ABlankBeforeTheQuoteMakesItPlain", kComma, kDefault, u" \"a,b\"", {{u" \"a", u"b\""}}},
    {"ABlankAfterTheQuoteStays", kComma, kDefault, u"\"a\" ,b", {{u"\"a\" ", u"b"}}},
    {"ATextBeforeTheQuoteMakesItPlain", kComma, kDefault, u"a\"b,c\"d", {{u"a\"b", u"c\"d"}}},
    {"AThirdQuoteClosesNothing", kComma, kDefault, u"\"a\"b\"c,d\"", {{u"\"a\"b\"c", u"d\""}}},
    {"FourQuotesAreAField", kComma, kDefault, u"\"\"\"\",x", {{u"\"\"\"\"", u"x"}}},
    {"ThreeQuotesTakeTheRest", kComma, kDefault, u"\"\"\",x\ny", {{u"\"\"\",x\ny"}}},
    {"AQuotedEndingAlone", kComma, kDefault, u"\"\n\"\n\"\n\"", {{u"\"\n\""}, {u"\"\n\""}}},
    {"AQuotedDelimiterAlone", kComma, kDefault, u"\",\",\",\"", {{u"\",\"", u"\",\""}}},
    {"AnUnterminatedQuoteTakesTheRest", kComma, kDefault, u"\"a,b\nc,d\n", {{u"\"a,b\nc,d\n"}}},
    {"AnUnterminatedQuoteLaterTakesTheRest", kComma, kDefault, u"a,\"\nb,c", {{u"a", u"\"\nb,c"}}},
    {"AnUnterminatedQuoteAtTheVeryEnd", kComma, kDefault, u"x\n\"", {{u"x"}, {u"\""}}},
    {"AQuoteOpenedByADoubledOneTakesTheRest",
     kComma,
     kDefault,
     u"\"a\"\"\nb,c\n",
     {{u"\"a\"\"\nb,c\n"}}},

    // Unusual delimiters.
    {"TheLongerDelimiterWinsWhenItComesFirst", {u"::", u":"}, kDefault, u"a::b", {{u"a", u"b"}}},
    {"TheShorterDelimiterWinsWhenItComesFirst",
     {u":", u"::"},
     kDefault,
     u"a::b",
     {{u"a", u"", u"b"}}},
    {"LettersMayDelimit",
     {u"ab"},
     kDefault,
     u"xaby\nababx\nxa",
     {{u"x", u"y"}, {u"", u"", u"x"}, {u"xa"}}},
    {"ADelimiterMayStartInsideItself", {u"aab"}, kDefault, u"aaab", {{u"a", u""}}},
    {"WithoutDelimitersALineIsAField", {}, kDefault, u"a,b\nc", {{u"a,b"}, {u"c"}}},
    {"AnEmptyDelimiterSeparatesNothing", {u""}, kDefault, u"a,b\nc", {{u"a,b"}, {u"c"}}},
    {"AnEmptyDelimiterInFrontHidesTheOthers", {u"", u","}, kDefault, u"a,b", {{u"a,b"}}},
    {"AnEmptyDelimiterAtTheEndHidesNothing", {u",", u""}, kDefault, u"a,b", {{u"a", u"b"}}},
    {"ALineEndingSeparatesNoFields", {u"\n"}, kDefault, u"a\nb", {{u"a"}, {u"b"}}},
    {"AForeignLineEndingSeparatesFields", {u"\r\n"}, {u"\n"}, u"a\r\nb\nc", {{u"a", u"b"}, {u"c"}}},
    {"TheQuoteMayDelimitPlainFields", {u"\""}, kDefault, u"a\"b\n", {{u"a", u"b"}}},
    {"TheQuoteAtTheStartStillQuotes", {u"\""}, kDefault, u"\"a\"b\"c", {{u"\"a\"b", u"c"}}},
    {"ANulMayDelimit", {with_nul(u"\0")}, kDefault, with_nul(u"a\0b"), {{u"a", u"b"}}},
    {"SeveralDelimitersAreNotMerged", {u",", u" "}, kDefault, u"a, b", {{u"a", u"", u"b"}}},
    {"TheEndMarkSeparatesNothing", {u"\uFFFF"}, kDefault, u"a\uFFFFb", {{u"a"}}},
    {"TheEndMarkHidesNoOther", {u"\uFFFF", u","}, kDefault, u"a,b", {{u"a", u"b"}}},

    // Unusual line endings.
    {"WithoutEndingsTheTextIsALine", {u";"}, {}, kMixed, {{u"a", u"b \t\nc"}}},
    {"AnEmptyEndingEndsNothing", {u";"}, {u""}, kMixed, {{u"a", u"b \t\nc"}}},
    {"AnEmptyEndingInFrontHidesTheOthers", {u";"}, {u"", u"\n"}, kMixed, {{u"a", u"b \t\nc"}}},
    {"ABlankMayEndLines", {u";"}, {u" "}, kMixed, {{u"a", u"b"}, {u"\t\nc"}}},
    {"ATabAndALineFeedMayEndLinesTogether", {u";"}, {u"\t\n"}, kMixed, {{u"a", u"b "}, {u"c"}}},
    {"AnEndMarkAsTheEndingEndsNothingElse", {u";"}, {u"\uFFFF"}, kMixed, {{u"a", u"b \t\nc"}}},
    {"AnEndMarkAsTheEndingIsConsumedByTheLine",
     {u";"},
     {u"\uFFFF"},
     u"a;b\uFFFFc;d",
     {{u"a", u"b"}, {u"c", u"d"}}},
    {"AnEndingThatStartsWithAnEndMarkIsConsumed",
     {u";"},
     {u"\uFFFF\n"},
     u"a\uFFFF\nb",
     {{u"a"}, {u"b"}}},
    {"TheEndingComesBeforeTheDelimiter", {u";"}, {u";"}, kMixed, {{u"a"}, {u"b \t\nc"}}},
    {"ALongerDelimiterLosesToTheEnding", {u";b"}, {u";"}, u"a;b", {{u"a"}, {u"b"}}},
    {"HalfAnEndingIsText", kComma, {u"\r\n"}, u"a\r,b\r\nc", {{u"a\r", u"b"}, {u"c"}}},

    // The end mark.
    {"AnEndMarkAtTheStartLeavesNothing", kComma, kDefault, u"\uFFFFa,b", {}},
    {"AnEndMarkAfterADelimiter", kComma, kDefault, u"a,\uFFFFb", {{u"a", u""}}},
    {"AnEndMarkAfterTwoDelimiters", kComma, kDefault, u"a,,\uFFFF", {{u"a", u"", u""}}},
    {"AnEndMarkInsideAField", kComma, kDefault, u"a,b\uFFFFc,d", {{u"a", u"b\uFFFFc", u"d"}}},
    {"AnEndMarkBeforeADelimiter", kComma, kDefault, u"a\uFFFF,b", {{u"a\uFFFF", u"b"}}},
    {"AnEndMarkInsideQuotes", kComma, kDefault, u"\"a\uFFFF,\"b,c", {{u"\"a\uFFFF,\"b", u"c"}}},
    {"AnEndMarkAfterAClosingQuote", kComma, kDefault, u"a,\"b\"\uFFFF,c", {{u"a", u"\"b\""}}},
    {"AnEndMarkAfterAnUnterminatedQuote", kComma, kDefault, u"\"a\uFFFF", {{u"\"a\uFFFF"}}},
    {"AnEndMarkAfterHalfAnEnding", kComma, {u"\r\n"}, u"a\r\uFFFFb", {{u"a\r"}}},
    {"AnEndMarkAloneInALine", kComma, kDefault, u"a\n\uFFFF\nb", {{u"a"}}},
};

class DelimitedCut : public testing::TestWithParam<CutCase> {};

TEST_P(DelimitedCut, GivesTheFieldsOfEachLine) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  DelimitedStrategy strategy(options, GetParam().delimiters);
  const ExactText text(GetParam().text);
  EXPECT_EQ(cut_of(strategy, text), GetParam().rows);
}

TEST_P(DelimitedCut, IsTheSameTwice) {
  parser::options options;
  options.line_endings = GetParam().line_endings;
  DelimitedStrategy strategy(options, GetParam().delimiters);
  expect_the_same_cut_twice(strategy, ExactText(GetParam().text), GetParam().rows);
}

INSTANTIATE_TEST_SUITE_P(Table, DelimitedCut, testing::ValuesIn(kCutCases), ByRule());

// The rules for consecutive and leading delimiters belong to the import, not to the cut.
TEST(DelimitedOptions, RulesForRunsAndLeadingDelimitersAreIgnored) {
  parser::options options;
  options.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
  options.leading_delimiters_rule = parser::leading_delimiters_action::ignore;
  DelimitedStrategy strategy(options, u',');
  const ExactText text(u",a,,b");
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"", u"a", u"", u"b"}}));
}

TEST(DelimitedPopulate, ReadsAQuotedFieldOverSeveralLinesAsOneLine) {
  const parser::options options;
  DelimitedStrategy strategy(options, u',');
  const ExactText text(u"\"x\ny\",1\n2,3\n4,5\n");
  EXPECT_EQ(lines_of(strategy, text, 2), (Texts{u"\"x\ny\",1", u"2,3"}));
}

}  // namespace
}  // namespace textio
