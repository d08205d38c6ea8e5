#include <vltextstream/assessment/sampled_lines.hpp>

#include <cstddef>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::kAllLines;
using testing_support::readable;
using testing_support::Sample;

// --- lines -----------------------------------------------------------------------------------

struct LinesCase {
  const char* rule;
  std::u16string text;
  std::size_t num_lines;
  std::string lines;  // each before a slash
  bool has_more;
};
std::ostream& operator<<(std::ostream& out, const LinesCase& row) { return out << row.rule; }

const LinesCase kLinesCases[] = {
    {"NoText", u"", 5, "", false},
    {"LineFeeds", u"a\nb\n", 5, "a/b/", false},
    {"CarriageReturns", u"a\rb\r", 5, "a/b/", false},
    {"BothAreOneEnding", u"a\r\nb\r\n", 5, "a/b/", false},
    {"InTheOtherOrderTheyAreTwo", u"a\n\rb", 5, "a//b/", false},
    {"MixedEndings", u"a\rb\nc\r\nd", 5, "a/b/c/d/", false},
    {"LastLineWithoutAnEnding", u"a\nb", 5, "a/b/", false},
    {"EmptyLinesAreLines", u"\n\na\n\n", 5, "//a//", false},
    {"OtherSeparatorsOfLinesAreNoEndings", u"a\u2028b\u0085\vc\f\n", 5,
     "a\\u2028b\\u0085\\u000Bc\\u000C/", false},

    {"AsManyAsAskedFor", u"a\nb\n", 2, "a/b/", false},
    {"OneLessThanThereAre", u"a\nb\n", 1, "a/", true},
    {"NoneAskedFor", u"a\n", 0, "", true},
    {"NoneAskedForOfNothing", u"", 0, "", false},
    {"MoreOnlyAnEnding", u"a\n\n", 1, "a/", true},

    {"BlankLinesDoNotCount", u"\na\n \t\nb\nc\n", 2, "/a/ \\u0009/b/", true},
    {"CommentsAboveAllOthersDoNotCount", u"# x\n% y\n\n// z\na\nb\n", 1, "# x/% y//// z/a/", true},
    {"CommentsFurtherBelowCount", u"a\n# x\nb\n", 2, "a/# x/", true},
    {"AllOfNothingButComments", u"# x\n# y\n", 1, "# x/# y/", false},
};

class SampleLines : public testing::TestWithParam<LinesCase> {};
TEST_P(SampleLines, AsAnEditorShowsThem) {
  const Sample sample(GetParam().text, GetParam().num_lines);
  std::string found;
  for (std::size_t k = 0; k < sample.lines().size(); ++k) {
    found += readable(sample.lines().view(k)) + '/';
  }
  EXPECT_EQ(found, GetParam().lines);
  EXPECT_EQ(sample.lines().has_more(), GetParam().has_more);
  EXPECT_EQ(sample.lines().empty(), GetParam().lines.empty());
}
INSTANTIATE_TEST_SUITE_P(Table, SampleLines, testing::ValuesIn(kLinesCases), ByRule());

TEST(SampledLinesPositions, AreBeforeAndAfterEachEnding) {
  const Sample sample(u"ab\r\nc\n\nd\r");
  struct Positions {
    std::size_t begin, end, next;
  };
  const Positions expected[] = {{0, 2, 4}, {4, 5, 6}, {6, 6, 7}, {7, 8, 9}};
  ASSERT_EQ(sample.lines().size(), std::size(expected));
  for (std::size_t k = 0; k < std::size(expected); ++k) {
    EXPECT_EQ(sample.lines()[k].begin, expected[k].begin) << k;
    EXPECT_EQ(sample.lines()[k].end, expected[k].end) << k;
    EXPECT_EQ(sample.lines()[k].next, expected[k].next) << k;
  }
  EXPECT_EQ(sample.lines().end(), 9U);
}

TEST(SampledLinesEnd, IsAfterTheLastLineAlthoughTheTextContinues) {
  EXPECT_EQ(Sample(u"ab\r\nc\n", 1).lines().end(), 4U);
  EXPECT_EQ(Sample(u"ab", 1).lines().end(), 2U);
  EXPECT_EQ(Sample(u"", 1).lines().end(), 0U);
}

// --- comments --------------------------------------------------------------------------------

struct CommentCase {
  const char* rule;
  std::u16string text;
  std::string marks;  // # for a comment, . for another line
};
std::ostream& operator<<(std::ostream& out, const CommentCase& row) { return out << row.rule; }

const CommentCase kCommentCases[] = {
    {"NoSigns", u"a\nb\n", ".."},
    {"AboveAllOthers", u"# x\n# y\na\n", "##."},
    {"AboveAllOthersAfterBlankLines", u"\n# x\n\na\n", ".#.."},
    {"FewAmongOthers", u"a\n# x\nb\n", ".#."},
    {"HalfOfTheOthersAreNone", u"a\n# x\n", ".."},
    {"MostOfTheOthersAreNone", u"# t\na\n#1\n#2\nb\n#3\n", "#....."},
    {"BlankLinesAreNotCounted", u"a\n\n\n# x\n", "...."},
    {"NothingButSigns", u"# x\n# y\n", ".."},
    {"DifferentSigns", u"; x\n! y\na\nb\nc\n* z\n", "##...#"},
    {"BlanksBeforeTheSign", u"  # x\na\n", "#."},
    {"SignsWithinALine", u"a # x\nb\n", ".."},
};

class SampledLinesComments : public testing::TestWithParam<CommentCase> {};
TEST_P(SampledLinesComments, AreAboveTheOthersOrFewAmongThem) {
  const Sample sample(GetParam().text);
  std::string found;
  for (std::size_t k = 0; k < sample.lines().size(); ++k) {
    found += sample.lines().is_comment(k) ? '#' : '.';
  }
  EXPECT_EQ(found, GetParam().marks);
}
INSTANTIATE_TEST_SUITE_P(Table, SampledLinesComments, testing::ValuesIn(kCommentCases), ByRule());

struct SignCase {
  const char* rule;
  std::u16string line;
  bool has_sign;
  std::u16string rest;  // of a line with a sign
};
std::ostream& operator<<(std::ostream& out, const SignCase& row) { return out << row.rule; }

const SignCase kSignCases[] = {
    {"SemicolonsAlone", u" ;;; ;", false, u""},
    {"Hash", u"# a b", true, u"a b"},
    {"Percent", u"%a", true, u"a"},
    {"Exclamation", u"! a", true, u"a"},
    {"Semicolon", u"; a", true, u"a"},
    {"Asterisk", u"* a", true, u"a"},
    {"TwoSlashes", u"// a", true, u"a"},
    {"Repeated", u"### a", true, u"a"},
    {"ThreeSlashes", u"/// a", true, u"a"},
    {"AnotherSignAfterIt", u"#% a", true, u"% a"},
    {"BlanksAround", u" \t# a \t", true, u"a"},
    {"NothingElse", u"#", true, u""},
    {"NothingButSigns", u"////", true, u""},
    {"OneSlash", u"/ a", false, u""},
    {"Dashes", u"-- a", false, u""},
    {"Within", u"a # b", false, u""},
    {"Empty", u"", false, u""},
    {"Blank", u"  ", false, u""},
};

class CommentSign : public testing::TestWithParam<SignCase> {};
TEST_P(CommentSign, IsTheFirstOfALine) {
  const ExactText line(GetParam().line);
  EXPECT_EQ(has_comment_sign(line.view()), GetParam().has_sign);
  if (GetParam().has_sign) {
    EXPECT_EQ(without_comment_sign(line.view()), GetParam().rest);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, CommentSign, testing::ValuesIn(kSignCases), ByRule());

// --- blanks ----------------------------------------------------------------------------------

TEST(IsBlankUnit, ForSpacesAndTabsOnly) {
  EXPECT_TRUE(is_blank(u' '));
  EXPECT_TRUE(is_blank(u'\t'));
  for (const char16_t unit : u"\n\r\v\f\u00A0\u3000a0") EXPECT_FALSE(is_blank(unit)) << +unit;
}

struct TrimCase {
  const char* rule;
  std::u16string text;
  std::u16string trimmed;
};
std::ostream& operator<<(std::ostream& out, const TrimCase& row) { return out << row.rule; }

const TrimCase kTrimCases[] = {
    {"Nothing", u"", u""},
    {"OnlyBlanks", u" \t ", u""},
    {"AllKindsOfBlanks", u"\t\n\v\f\r \u00A0", u""},
    {"NoBlanks", u"ab", u"ab"},
    {"BothEnds", u" \ta\u00A0", u"a"},
    {"BlanksWithinStay", u" a  b ", u"a  b"},
    {"AWideSpaceIsText", u"\u3000", u"\u3000"},
};

class Trimmed : public testing::TestWithParam<TrimCase> {};
TEST_P(Trimmed, HasNoBlanksAtItsEnds) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(trimmed(text.view()), GetParam().trimmed);
  EXPECT_EQ(is_blank(text.view()), GetParam().trimmed.empty());
}
INSTANTIATE_TEST_SUITE_P(Table, Trimmed, testing::ValuesIn(kTrimCases), ByRule());

// A thousand comments do not count; the next one is the first of two lines.
TEST(SampleLines, CountCommentsAboveFromTheThousandAndFirstOn) {
  std::u16string text;
  for (int i = 0; i < 1001; ++i) text += u"# c\n";
  text += u"1,2\n3,4\n5,6\n";
  EXPECT_EQ(sample_lines(text, 2).size(), 1002U);
}

}  // namespace
}  // namespace textio::assessment
