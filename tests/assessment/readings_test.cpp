#include <vltextstream/assessment/reading.hpp>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing::UnorderedElementsAreArray;
using testing_support::ByRule;
using testing_support::Sample;
using testing_support::shown;
using Names = std::vector<std::string>;

Names names_of_readings(std::u16string_view text) {
  const Sample sample(text);
  Names names;
  for (const Reading& reading : find_readings(sample.lines())) names.push_back(shown(reading));
  return names;
}

std::u16string lines_of(std::size_t count, std::u16string_view line) {
  std::u16string text;
  for (std::size_t k = 0; k < count; ++k) {
    text += line;
    text += u'\n';
  }
  return text;
}

// --- all readings of a text ------------------------------------------------------------------

struct ReadingsCase {
  const char* rule;
  std::u16string text;
  Names separators;  // besides a single column and no table, which are always tried
};
std::ostream& operator<<(std::ostream& out, const ReadingsCase& row) { return out << row.rule; }

const ReadingsCase kSignCases[] = {
    {"NoText", u"", {}},
    {"NoSigns", u"ab\n12\n", {}},
    {"Comma", u"a,b\n1,2\n", {"delimited ,"}},
    {"EachUsualSign",
     u"a,b;c|d:e\n1,2;3|4:5\n",
     {"delimited ,", "delimited ;", "delimited |", "delimited :"}},
    {"UsualSignInFewLines", u"a,b\nc\nd\ne\nf\n", {"delimited ,"}},
    {"UsualSignInOneOfElevenLines", u"a,b\n" + lines_of(10, u"c"), {}},
    {"UsualSignTwiceInOneOfElevenLines", u"a,b,c\n" + lines_of(10, u"c"), {}},
    {"UsualSignThriceInOneOfElevenLines", u"a,b,c,d\n" + lines_of(10, u"c"), {"delimited ,"}},
    {"UsualSignInOneOfTenLines", u"a,b\n" + lines_of(9, u"c"), {"delimited ,"}},

    {"UnusualSignInEveryLine", u"a@b\n1@2\n", {"delimited @"}},
    {"UnusualSignInHalfOfTheLines", u"a@b\n12\n", {"delimited @"}},
    {"UnusualSignInAThird", u"a@b\n12\n34\n", {}},
    {"SignOfValuesInNineOfTenLines", lines_of(9, u"a-b") + u"c\n", {"delimited -"}},
    {"SignOfValuesInEightOfNineLines", lines_of(8, u"a-b") + u"c\n", {}},
    {"AllSignsOfValues", u"a-b_c/d\n1-2_3/4\n", {"delimited -", "delimited _", "delimited /"}},
    {"BlankLinesAreNotCounted", u"a@b\n\n\n\n1@2\n", {"delimited @"}},

    {"PartsOfNumbersAndBrackets", u"a.b\n(1.2)\n[3.4]\n{5.6}\n", {}},
    {"TypographicQuotes", u"\u201Ca\u201D\u2019b\n\u201Cc\u201D\u2019d\n", {}},
    {"ReplacedAndFoldedCharacters", u"a\uFFFD\x1A\n1\uFFFD\x1A\n", {}},
    {"LettersOutsideAscii", u"a\u00E9b\n1\u00E92\n", {}},
    {"MarksOutsideAscii", u"a\u00A7b\n1\u00A72\n", {"delimited \\u00A7"}},
    {"ControlCharacter",
     u"a\x1F"
     u"b\n1\x1F"
     u"2\n",
     {"delimited \\u001F"}},
};

Names with_narrow(Names names) {
  names.insert(names.end(), {"runs 1", "gaps 1", "gaps 1, by names"});
  return names;
}
Names with_wide(Names names) {
  names.insert(names.end(), {"runs 1", "runs 2", "gaps 1", "gaps 2", "gaps 1, by names"});
  return names;
}

const ReadingsCase kBlankCases[] = {
    {"SingleBlanks", u"a b\n1 2\n", with_narrow({"delimited  "})},
    {"TwoBlanks", u"a  b\n1  2\n", with_wide({"delimited  "})},
    {"TwoBlanksInOneOfFiveLines", u"a  b\n" + lines_of(4, u"1 2"), with_wide({"delimited  "})},
    {"TwoBlanksInOneOfSixLines", u"a  b\n" + lines_of(5, u"1 2"), with_narrow({"delimited  "})},
    {"TwoBlanksAtTheEndsOfLines", u"  a b\n1 2  \n", with_narrow({"delimited  "})},
    {"Tabs", u"a\tb\n1\t2\n", {"delimited \\u0009", "runs 1", "runs 2", "gaps 1", "gaps 2"}},
    {"BlankAfterEachComma", u"a, b\n1, 2\n", with_narrow({"delimited ,", "delimited  "})},
    {"ColonBetweenBlanks", u"a : b\n1 : 2\n",
     with_narrow({"delimited :", "delimited  ", "delimited  : "})},
};

const ReadingsCase kRestCases[] = {
    {"TextAtTheEndsOfLines",
     lines_of(5, u"10:15 one") + lines_of(5, u"10:16 two three"),
     {"delimited :", "delimited  ", "runs 1", "gaps 1", "gaps 1, by names", "runs 1, 2 cells"}},
    {"TabsInHalfOfTheLines",
     lines_of(5, u"10:15 one\ttwo") + lines_of(5, u"10:16 two three four"),
     {"delimited \\u0009", "delimited :", "delimited  ", "runs 1", "runs 2", "gaps 1", "gaps 2"}},
    {"BlanksInEightOfTenLines",
     lines_of(2, u"10:15") + lines_of(4, u"10:15 one") + lines_of(4, u"10:16 two three"),
     {"delimited :", "delimited  ", "runs 1", "gaps 1"}},
    {"FieldsThatTouch", lines_of(10, u"0123MILLER0099X"), {"fields 0 4 10 14 15"}},
};

const ReadingsCase kMarkCases[] = {
    {"TwoBars", u"a||b\n1||2\n", {"delimited |", "delimited ||"}},
    {"TwoCommasAsHalfOfAllCommas", u"a,,b,c,d\n1,,2,3,4\n", {"delimited ,", "delimited ,,"}},
    {"TwoCommasAsLessThanHalf", u"a,,b,c,d,e\n1,,2,3,4,5\n", {"delimited ,"}},
    {"InFourOfFiveLines", lines_of(4, u"a->b") + u"c\n", {"delimited >", "delimited ->"}},
    {"InThreeOfFiveLines", lines_of(3, u"a->b") + u"c\nd\n", {"delimited >"}},
    {"Once", u"a||b\n", {"delimited |", "delimited ||"}},
    {"PaddedSignBesideBareOnes", u"1,5, 2,5\n3,5, 4,5\n",
     with_narrow({"delimited ,", "delimited  ", "delimited , "})},
    {"PaddedSignAlone", u"a; b\n1; 2\n", with_narrow({"delimited ;", "delimited  "})},
    {"PaddedBarBesideBareOnes", u"a | b|c\n1 | 2\n",
     with_narrow({"delimited |", "delimited  ", "delimited  | "})},
    {"OfThreeSigns", u"a~|~b\n1~|~2\n", {"delimited |", "delimited ~", "delimited ~|~"}},
};

const ReadingsCase kQuoteCases[] = {
    {"QuotesAtACommaAndTheEndOfALine",
     u"a,\"b\"\n1,2\n",
     {"delimited ,", "delimited , \"", "one \""}},
    {"QuotesAtACommaOnly", u"a,\"b\",c\n1,2,3\n", {"delimited ,", "delimited , \""}},
    {"BlanksBetweenQuoteAndComma",
     u"a, \"b\" ,c\n1,2,3\n",
     {"delimited ,", "delimited , \"", "delimited  ", "delimited   \"", "runs 1", "gaps 1"}},
    {"QuotesAwayFromTheSeparator", u"x,a \"b\" c,y\n",
     with_narrow({"delimited ,", "delimited  ", "delimited   \""})},
    {"OneQuote", u"a,\"b\n1,2\n", {"delimited ,"}},
    {"SingleQuotes", u"'a','b'\n", {"delimited ,", "delimited , '"}},
    {"OneApostrophe", u"it's,a\n", {"delimited ,"}},
    {"EscapedQuote",
     u"\"a\\\"b\\\"\",c\nd,e\nf,g\n",
     {"delimited ,", "delimited , \"", "delimited , \"\\", "one \""}},
    {"EscapedSeparator", u"a\\,b,c\nd,e\nf,g\n", {"delimited ,", "delimited , \\"}},
    {"EscapedLetter", u"a\\n,c\nd,e\nf,g\n", {"delimited ,"}},
    {"MarksWithDoubleQuotesOnly",
     u"'a'||\"b\"\n'c'||\"d\"\n",
     {"delimited |", "delimited | \"", "delimited | '", "delimited ||", "delimited || \"",
      "one \""}},
    // Lines that begin within quotes have no separator.
    {"LinesInQuotesAreNotCounted",
     u"1@\"a\nb\nc\"\n2@\"d\ne\nf\"\n",
     {"delimited @", "delimited @ \"", "one \""}},
    {"UnlessNearlyAllAre", u"1@\"a\nb\nc\nd\"\n", {"one \""}},
};

const ReadingsCase kFrameCases[] = {
    {"BarsAtBothEnds", u"|a|b|\n|1|2|\n", {"delimited |", "framed |"}},
    {"EscapedBarInAFrame",
     u"|a\\|b|c|\n|1|2|\n",
     {"delimited |", "delimited | \\", "delimited \\", "framed | \\", "framed |"}},
    {"BarsAndARule", u"a|b\n---\n1|2\n", {"delimited |", "framed |"}},
    {"BarsOnly", u"a|b\n1|2\n", {"delimited |"}},
    {"BarsAtBothEndsOfFewLines", u"|a|b|\n1|2\n3|4\n", {"delimited |"}},
    {"RulesAndBarsInFewLines", u"a|b\n---\nc\nd\n", {"delimited |"}},
    {"OtherBars",
     u"\u2502a\u2502b\u2502\n\u25021\u25022\u2502\n",
     {"delimited \\u2502", "framed \\u2502"}},
};

class FindReadings : public testing::TestWithParam<ReadingsCase> {};
TEST_P(FindReadings, TriesTheseAndNoOthers) {
  Names expected = GetParam().separators;
  expected.insert(expected.end(), {"one", "none"});
  EXPECT_THAT(names_of_readings(GetParam().text), UnorderedElementsAreArray(expected));
}
INSTANTIATE_TEST_SUITE_P(Signs, FindReadings, testing::ValuesIn(kSignCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Blanks, FindReadings, testing::ValuesIn(kBlankCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Rest, FindReadings, testing::ValuesIn(kRestCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Marks, FindReadings, testing::ValuesIn(kMarkCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Quotes, FindReadings, testing::ValuesIn(kQuoteCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Frames, FindReadings, testing::ValuesIn(kFrameCases), ByRule());

// --- very many signs -------------------------------------------------------------------------

TEST(FindReadingsOfManySigns, TriesTheSixteenThatMostLinesHave) {
  // Twenty unusual signs in two of three lines; \u00B6 in all three.
  const std::u16string many =
      u"a!a#a$a%a&a*a+a<a=a>a?a@a^a~a\u00A4a\u00A6a\u00A7a\u00B1a\u00D7a\u00F7";
  const Names names = names_of_readings(many + u"a\u00B6\n" + many + u"a\u00B6\na\u00B6\n");
  const auto by_signs = std::count_if(names.begin(), names.end(), [](const std::string& name) {
    return name.substr(0, 9) == "delimited";
  });
  EXPECT_EQ(by_signs, 16);
  EXPECT_THAT(names, testing::Contains("delimited \\u00B6"));
}

TEST(FindReadingsOfManySigns, TriesEveryUsualSignAsWell) {
  const std::u16string many = u"a!a#a$a%a&a*a+a<a=a>a?a@a^a~a\u00A4a\u00A6a\u00A7a\u00B1a\u00D7\n";
  const Names names = names_of_readings(many + many + u"a,b;c|d:e\n");
  for (const char* const usual : {"delimited ,", "delimited ;", "delimited |", "delimited :"}) {
    EXPECT_THAT(names, testing::Contains(usual));
  }
}

// --- forms -----------------------------------------------------------------------------------

TEST(ReadingIsAligned, ByRunsOrGaps) {
  EXPECT_TRUE((Reading{Form::runs}.is_aligned()));
  EXPECT_TRUE((Reading{Form::gaps}.is_aligned()));
  for (const Form form : {Form::delimited, Form::framed, Form::fields, Form::one, Form::none}) {
    EXPECT_FALSE((Reading{form}.is_aligned()));
  }
}

struct FormCase {
  const char* rule;
  Reading reading;
  std::string records;
};
std::ostream& operator<<(std::ostream& out, const FormCase& row) { return out << row.rule; }

const FormCase kFormCases[] = {
    {"Delimited", {Form::delimited, u"|"}, "0[a x ][ b] 1[1   ][ 2]"},
    {"Framed", {Form::framed, u"|"}, "0[a x][b] 1[1][2]"},
    {"RunsOfOneBlank", {Form::runs, u" ", 0, 0, 1}, "0[a][x][|][b] 1[1][|][2]"},
    {"RunsOfTwoBlanks", {Form::runs, u" ", 0, 0, 2}, "0[a x | b] 1[1][| 2]"},
    {"GapsOfOneBlank", {Form::gaps, u" ", 0, 0, 1}, "0[a][x][|][b] 1[1][][|][2]"},
    {"GapsOfTwoBlanks", {Form::gaps, u" ", 0, 0, 2}, "0[a x | b] 1[1][| 2]"},
    {"RunsWithRest", {Form::runs, u" ", 0, 0, 1, 2}, "0[a][x | b] 1[1][| 2]"},
    {"Fields", {Form::fields, u"", 0, 0, 1, 0, {0, 4, 7}}, "0[a x][| b] 1[1][| 2]"},
    {"SingleColumn", {Form::one}, "0[a x | b] 1[1   | 2]"},
    {"NoTable", {Form::none}, "0[a x | b] 1[1   | 2]"},
};

class CutByReading : public testing::TestWithParam<FormCase> {};
TEST_P(CutByReading, TakesTheFunctionOfTheForm) {
  const Sample sample(u"a x | b\n1   | 2\n");
  EXPECT_EQ(shown(cut(sample.lines(), GetParam().reading)), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutByReading, testing::ValuesIn(kFormCases), ByRule());

}  // namespace
}  // namespace textio::assessment
