#include <vltextstream/assessment/text_traits.hpp>

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;

// Whether one line counts for a trait.
struct LineCase {
  const char* rule;
  double TextTraits::*trait;
  std::u16string line;
  bool has_trait;
};
std::ostream& operator<<(std::ostream& out, const LineCase& row) { return out << row.rule; }

const LineCase kProseLines[] = {
    {"FiveWords", &TextTraits::prose, u"It was a dark night.", true},
    {"FourWords", &TextTraits::prose, u"It was a night.", false},
    {"WithPunctuation", &TextTraits::prose, u"\"Well,\" he said, \"it's a half-day (today)!\"",
     true},
    // Each of these words is plain; without two of them there are too few.
    {"WithHyphens", &TextTraits::prose, u"half-baked ready-made last-minute plans fail", true},
    {"WithCurlyApostrophes", &TextTraits::prose, u"it\u2019s what we\u2019d say here", true},
    {"WithOtherMarksInWords", &TextTraits::prose, u"half+baked ready+made plans may fail", false},
    {"WithANumberAmongFour", &TextTraits::prose, u"There are 5 dogs here today", true},
    {"WithTooManyNumbers", &TextTraits::prose, u"Dogs 5 cats 7 birds", false},
    {"OtherAlphabets", &TextTraits::prose,
     u"\u0437\u0430 \u0434\u0435\u043D\u044C \u0438 \u043D\u043E\u0447\u044C \u0434\u043E", true},
    {"OneWideGap", &TextTraits::prose, u"It was late.  He went home.", true},
    {"TwoWideGaps", &TextTraits::prose, u"red  green  blue black white", false},
    {"Tab", &TextTraits::prose, u"It was\ta dark night.", false},
    {"TightComma", &TextTraits::prose, u"it was,not a dark night", false},
    // Eight letters and the end of a sentence; seven; eight without an end; a cell between separators.
    {"Japanese", &TextTraits::prose, u"\u6628\u65E5\u306F\u96E8\u304C\u964D\u3063\u305F\u3002",
     true},
    {"ShortJapanese", &TextTraits::prose, u"\u6628\u65E5\u306F\u96E8\u3060\u3063\u305F\u3002",
     false},
    {"JapaneseWords", &TextTraits::prose, u"\u6628\u65E5\u306F\u96E8\u304C\u964D\u3063\u305F",
     false},
    {"JapaneseBetweenCommas", &TextTraits::prose,
     u"1,\u6628\u65E5\u306F\u96E8\u304C\u964D\u3063\u305F\u3002,2", false},
    {"CommaWithinANumber", &TextTraits::prose, u"There were 1,234 dogs here today", true},
};

const LineCase kCodeLines[] = {
    {"OpeningBracket", &TextTraits::code, u"while x > 1 {", true},
    {"OnlyBrackets", &TextTraits::code, u"});", true},
    {"OnlyCommas", &TextTraits::code, u",,,", false},
    {"Continued", &TextTraits::code, u"one two \\", true},
    {"Assignment", &TextTraits::code, u"x=1;", true},
    {"ListOfNumbers", &TextTraits::code, u"1;2;3;", false},
    {"Call", &TextTraits::code, u"print(x", true},
    {"BracketAfterABlank", &TextTraits::code, u"level (m)", false},
    {"Comment", &TextTraits::code, u"// note", true},
    {"Directive", &TextTraits::code, u"#include <x>", true},
    {"Import", &TextTraits::code, u"import os", true},
    {"Definition", &TextTraits::code, u"def f", true},
    {"AssignmentWithBlanks", &TextTraits::code, u"x = 1", true},
    {"Comparison", &TextTraits::code, u"a==b", true},
    {"Arrow", &TextTraits::code, u"a->b", true},
    {"Words", &TextTraits::code, u"red green blue", false},
    {"Block", &TextTraits::code, u"a:hover{color:red;margin:0}", true},
    {"BlockOfAFunction", &TextTraits::code, u"var f=function(){}", true},
    {"BracesInACell", &TextTraits::code, u"1;2;{x}", false},
    {"BlockBeforeText", &TextTraits::code, u"x{y} 12", false},
    {"CommandOfTex", &TextTraits::code, u"\\section{One}", true},
    {"MissingValueFirst", &TextTraits::code, u"\\N 1 2", false},
    {"NetworkPath", &TextTraits::code, u"\\\\host\\share", false},
    {"TupleOfAList", &TextTraits::code, u"(1,'a',2.5),", true},
    {"LastTuple", &TextTraits::code, u"(1,'a',2.5);", true},
    {"TupleAlone", &TextTraits::code, u"(1, 2)", false},
    {"Numbers", &TextTraits::code, u"1,2,3", false},
};

const LineCase kMarkupLines[] = {
    {"OpeningTag", &TextTraits::markup, u"<p>text", true},
    {"ClosingTag", &TextTraits::markup, u"text</p>", true},
    {"Arrow", &TextTraits::markup, u"a ->", false},
    {"CurlyBracket", &TextTraits::markup, u"{", true},
    {"ClosingSquareBracket", &TextTraits::markup, u"],", true},
    {"ObjectInALine", &TextTraits::markup, u"{\"a\": 1}", true},
    {"ObjectAndMore", &TextTraits::markup, u"{\"a\": 1} 12:30", false},
    {"QuotedKey", &TextTraits::markup, u"  \"key\" : 1,", true},
    {"QuotedText", &TextTraits::markup, u"\"text\", 1", false},
    {"OpenQuote", &TextTraits::markup, u"\"text", false},
    {"Words", &TextTraits::markup, u"red", false},
    {"BranchOfATree", &TextTraits::markup, u"\u2502   \u251C\u2500\u2500 a.txt", true},
    {"LastBranch", &TextTraits::markup, u"\u2514\u2500\u2500\u00A0a", true},
    {"BranchWithoutAName", &TextTraits::markup, u"\u251C\u2500\u2500", false},
    {"RuleOfAFrame", &TextTraits::markup, u"\u251C\u2500\u2500\u2500\u253C a", false},
    {"CellInAFrame", &TextTraits::markup, u"\u2502 a \u2502 b \u2502", false},
};

const LineCase kKeyedLines[] = {
    {"EqualsSign", &TextTraits::keyed, u"key=value", true},
    {"Colon", &TextTraits::keyed, u"key: value", true},
    {"BlanksBefore", &TextTraits::keyed, u"  key.a-b/c = value", true},
    {"WithoutValue", &TextTraits::keyed, u"key:", true},
    {"Heading", &TextTraits::keyed, u"[section one]", true},
    {"ItemOfAList", &TextTraits::keyed, u"- key: value", true},
    {"OnlyADash", &TextTraits::keyed, u"- ", false},
    {"TwoWords", &TextTraits::keyed, u"my key: value", false},
    {"DigitFirst", &TextTraits::keyed, u"12:30", false},
    {"NoKey", &TextTraits::keyed, u"= value", false},
    {"OnlyAKey", &TextTraits::keyed, u"key", false},
    {"TimeAsTheValue", &TextTraits::keyed, u"start: 10:15:30", true},
    {"FourColons", &TextTraits::keyed, u"root:x:0:0:/bin/sh", false},
    {"KeyWithParameter", &TextTraits::keyed, u"DTSTART;TZID=Europe/Berlin:20200101T100000", true},
    {"ParameterWithoutValue", &TextTraits::keyed, u"TEL;HOME:123", false},
    {"SemicolonsBetweenPairs", &TextTraits::keyed, u"a;b=1;c=2", false},
    {"Address", &TextTraits::keyed, u"https://example.org/a", false},
    {"AddressAsTheValue", &TextTraits::keyed, u"home: https://example.org/a", true},
};

class TraitOfLine : public testing::TestWithParam<LineCase> {};
TEST_P(TraitOfLine, CountsOrNot) {
  const Sample sample(GetParam().line);
  EXPECT_EQ(traits_of(sample.lines()).*GetParam().trait, GetParam().has_trait ? 1 : 0);
}
INSTANTIATE_TEST_SUITE_P(Prose, TraitOfLine, testing::ValuesIn(kProseLines), ByRule());
INSTANTIATE_TEST_SUITE_P(Code, TraitOfLine, testing::ValuesIn(kCodeLines), ByRule());
INSTANTIATE_TEST_SUITE_P(Markup, TraitOfLine, testing::ValuesIn(kMarkupLines), ByRule());
INSTANTIATE_TEST_SUITE_P(Keyed, TraitOfLine, testing::ValuesIn(kKeyedLines), ByRule());

struct ShareCase {
  const char* rule;
  double TextTraits::*trait;
  std::u16string text;
  double share;
};
std::ostream& operator<<(std::ostream& out, const ShareCase& row) { return out << row.rule; }

const ShareCase kShareCases[] = {
    {"NoText", &TextTraits::prose, u"", 0},
    {"BlankLines", &TextTraits::keyed, u"\n  \n", 0},
    {"OneOfTwoLines", &TextTraits::keyed, u"a=b\nc\n", 0.5},
    {"BlankLinesDoNotCount", &TextTraits::keyed, u"\na=b\n\n\nc\n", 0.5},
    {"RulesDoNotCount", &TextTraits::keyed, u"a=b\n------\n", 1},
    {"LinesWithinQuotesDoNotCount", &TextTraits::keyed, u"a=\"b\nc\nd\"\n", 1},
    {"LinesAfterQuotesCount", &TextTraits::keyed, u"a=\"b\nc\"\nd\n", 0.5},

    {"NotIndented", &TextTraits::indented, u"a\nb\nc\n", 0},
    {"FurtherInOnce", &TextTraits::indented, u"a\n  b\n  c\n  d\n", 0.25},
    {"InAndOut", &TextTraits::indented, u"a\n\tb\nc\n d\n", 0.75},
    {"AllIndented", &TextTraits::indented, u"  a\n  b\n", 0},

    {"NotSpaced", &TextTraits::spaced, u"a\nb\n", 0},
    {"BlankLineBetween", &TextTraits::spaced, u"a\nb\n\nc\nd\n", 0.25},
    {"SeveralBlankLinesBetween", &TextTraits::spaced, u"a\n\n \n\nb\n", 0.5},
    {"BlankLineAbove", &TextTraits::spaced, u"\na\nb\n", 0},
    {"BlankLineBelow", &TextTraits::spaced, u"a\nb\n\n", 0},

    {"BriefWithOneLine", &TextTraits::brief, u"a\n", 1},
    {"BriefWithFour", &TextTraits::brief, u"a\nb\n\nc\nd\n", 0.25},
    {"NestedIsNotBrief", &TextTraits::brief, u"[1]\n", 0},
    {"Nested", &TextTraits::nested, u"\n[1,\n2]\n", 1},
    {"NotNested", &TextTraits::nested, u"[1]\nkey=2\n", 0},
    {"BriefWithoutAny", &TextTraits::brief, u"\n", 0},
};

class TraitShare : public testing::TestWithParam<ShareCase> {};
TEST_P(TraitShare, IsOfTheLinesWithText) {
  const Sample sample(GetParam().text);
  EXPECT_DOUBLE_EQ(traits_of(sample.lines()).*GetParam().trait, GetParam().share);
}
INSTANTIATE_TEST_SUITE_P(Table, TraitShare, testing::ValuesIn(kShareCases), ByRule());

}  // namespace
}  // namespace textio::assessment
