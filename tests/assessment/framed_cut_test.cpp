// cut_framed, and the rules and bars of frames.
#include <vltextstream/assessment/cuts.hpp>

#include <string>

#include <gtest/gtest.h>

#include "assessment/cut_case.hpp"
#include "assessment/shown.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::CutCase;
using testing_support::ExactText;
using testing_support::Sample;
using testing_support::shown;

const CutCase kCutCases[] = {
    {"NoText", u"", ""},
    {"BarsAtBothEnds", u"|a|b|\n|1|2|\n", "0[a][b] 1[1][2]"},
    {"BlanksAroundTheCells", u"  |  a b | c|  \n", "0[a b][c]"},
    {"NoBarsAtTheEnds", u"a | b\n1 | 2\n", "0[a][b] 1[1][2]"},
    {"BarAtOneEnd", u"|a | b\nc | d|\n", "0[a][b] 1[c][d]"},
    {"EmptyCells", u"|a||b|\n|| |c|\n", "0[a][][b] 1[][][c]"},
    {"RulesAreLeftOut", u"+---+---+\n| a | b |\n+---+---+\n| 1 | 2 |\n+---+---+\n",
     "1[a][b] 3[1][2]"},
    {"RuleWithAlignment", u"| a | b |\n|:--|--:|\n| 1 | 2 |\n", "0[a][b] 2[1][2]"},
    {"BlankLinesAreLeftOut", u"\n|a|\n \n|b|\n", "1[a] 3[b]"},
    {"LineWithoutBars", u"Title\n| a | b |\n", "0[Title] 1[a][b]"},
    {"OnlyABar", u"|\n", "0[]"},
    {"OnlyTwoBars", u"||\n", "0[]"},
    {"OnlyThreeBars", u"|||\n", "0[][]"},
    {"LinesOfABox", u"\u2502a\u2502b\u2502\n\u2551c\u2551d\u2551\n", "0[a][b] 1[c][d]"},
    {"RulesOfABox", u"\u250C\u2500\u252C\u2510\n\u2502a\u2502b\u2502\n", "1[a][b]"},
    {"Quotes", u"| \"a b\" | 'c' |\n", "0{a b}{c}"},
    {"QuotesOfNothing", u"|\"\"|a|\n", "0{}[a]"},
    {"SingleQuoteCharacter", u"|\"|a|\n", "0[\"][a]"},
    {"UnlikeQuotes", u"|\"a'|b|\n", "0[\"a'][b]"},
    {"BarsInQuotesSeparate", u"|\"a|b\"|\n", "0[\"a][b\"]"},
};

class CutFramed : public testing::TestWithParam<CutCase> {};
TEST_P(CutFramed, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_framed(sample.lines())), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutFramed, testing::ValuesIn(kCutCases), ByRule());

// With a backslash as the escape.
const CutCase kEscapedCases[] = {
    {"BarInACell", u"|a\\|b|c|\n", "0[a\\|b][c]"},
    {"BarAtTheEnd", u"|a|b\\|\n", "0[a][b\\|]"},
    {"BarAtTheStart", u"\\|a|b|\n", "0[\\|a][b]"},
    {"OtherBackslashes", u"|a\\b|\\|\n", "0[a\\b][\\|]"},
    {"OnlyABar", u"|\n", "0[]"},
    {"LinesOfABox", u"\u2502a\\\u2502b\u2502c\u2502\n", "0[a\\\\u2502b][c]"},
};

class CutEscaped : public testing::TestWithParam<CutCase> {};
TEST_P(CutEscaped, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_framed(sample.lines(), u'\\')), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutEscaped, testing::ValuesIn(kEscapedCases), ByRule());

// --- rules and bars --------------------------------------------------------------------------

struct RuleCase {
  const char* rule;
  std::u16string line;
  bool is_rule;
};
std::ostream& operator<<(std::ostream& out, const RuleCase& row) { return out << row.rule; }

const RuleCase kRuleCases[] = {
    {"ThreeDashes", u"---", true},
    {"TwoDashes", u"--", false},
    {"EqualsSigns", u"=====", true},
    {"Underscores", u"____", true},
    {"Tildes", u"~~~", true},
    {"Asterisks", u"***", true},
    {"SeveralRuns", u"--- ---- --", true},
    {"BlanksBefore", u"  ---", true},
    {"TabsBetween", u"---\t---", true},
    {"CornersOfAFrame", u"+--+--+", true},
    {"BarsBetween", u"|---|---|", true},
    {"Alignment", u"|:--|:-:|--:|", true},
    {"LinesOfABox", u"\u251C\u2500\u253C\u2500\u2524", true},
    {"DashesThatAreNotTogether", u"- - -", false},
    {"DashesBetweenBars", u"-|-|-", true},
    {"OnlyBars", u"||||", false},
    {"OnlyColons", u":::", false},
    {"LetterWithin", u"---a---", false},
    {"DigitWithin", u"---1", false},
    {"CommasBetween", u"---,---", false},
    {"Empty", u"", false},
    {"Blank", u"   ", false},
};

class IsRule : public testing::TestWithParam<RuleCase> {};
TEST_P(IsRule, ForLinesThatDrawOne) {
  EXPECT_EQ(is_rule(ExactText(GetParam().line).view()), GetParam().is_rule);
}
INSTANTIATE_TEST_SUITE_P(Table, IsRule, testing::ValuesIn(kRuleCases), ByRule());

TEST(IsBar, ForUprightLines) {
  for (const char16_t bar : {u'|', u'\u2502', u'\u2551'}) EXPECT_TRUE(is_bar(bar)) << +bar;
  for (const char16_t other : {u'!', u'/', u'I', u'\u00A6', u'\u2500'}) {
    EXPECT_FALSE(is_bar(other)) << +other;
  }
}

}  // namespace
}  // namespace textio::assessment
