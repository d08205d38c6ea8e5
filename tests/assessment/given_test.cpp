#include <vltextstream/assessment/given.hpp>

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/verdict.hpp>
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
using testing_support::shown;

// --- the lines above the table -------------------------------------------------------------------

struct TopCase {
  const char* rule;
  std::u16string text;
  Given given;
  std::size_t num_lines;
  std::size_t end;
  std::size_t num_header;
};
std::ostream& operator<<(std::ostream& out, const TopCase& row) { return out << row.rule; }

const std::u16string kFour = u"a\nb\nc\nd\n";

const TopCase kTops[] = {
    {"NothingGiven", kFour, {}, 0, 0, 0},
    {"NoHeaderLine", kFour, {.header_lines = 0}, 0, 0, 0},
    {"TwoHeaderLines", kFour, {.header_lines = 2}, 2, 4, 2},
    {"BlankLinesCount", u"a\n\nc\n", {.header_lines = 2}, 2, 3, 2},
    {"CommentsDoNotCount", u"a\n#b\nc\nd\n", {.header_lines = 2, .comment_prefix = u"#"}, 3, 7, 3},
    {"CommentsAfterTheHeaderAreNotAbove",
     u"a\n#b\nc\n",
     {.header_lines = 1, .comment_prefix = u"#"},
     1,
     2,
     1},
    {"MoreThanTheText", kFour, {.header_lines = 9}, 4, 8, 4},
    {"ATextWithoutLines", u"", {.header_lines = 9}, 0, 0, 0},
    {"TheLinesAboveTheNames", kFour, {.names_line = 3}, 2, 4, 0},
    {"NoLineOfNames", kFour, {.names_line = 0}, 0, 0, 0},
    {"UntilTheUnits", kFour, {.units_line = 3}, 3, 6, 0},
    {"UntilTheUnitsBelowTheNames", kFour, {.names_line = 1, .units_line = 2}, 2, 4, 0},
    {"UntilTheNamesBelowTheUnits", kFour, {.names_line = 2, .units_line = 1}, 1, 2, 0},
    {"UntilTheDescriptions", kFour, {.descriptions_line = 2}, 2, 4, 0},
    {"TheHeaderGoesOn", kFour, {.header_lines = 3, .names_line = 1}, 3, 6, 3},
    {"TheNamesFollowTheHeader", kFour, {.header_lines = 1, .names_line = 2}, 1, 2, 1},
    {"CarriageReturns", u"a\rb\rc\r", {.header_lines = 2}, 2, 4, 2},
    {"CarriageReturnsEndNoLine",
     u"a\rb\nc\r\n",
     {.header_lines = 1, .line_endings = {true, false, false}},
     1,
     4,
     1},
};

class KnownTopOf : public testing::TestWithParam<TopCase> {};

TEST_P(KnownTopOf, IsCounted) {
  const ExactText text(GetParam().text);
  const KnownTop top = known_top(text.view(), GetParam().given);
  EXPECT_EQ(top.num_lines, GetParam().num_lines);
  EXPECT_EQ(top.end, GetParam().end);
  EXPECT_EQ(top.num_header, GetParam().num_header);
}

INSTANTIATE_TEST_SUITE_P(Table, KnownTopOf, testing::ValuesIn(kTops), ByRule());

// --- the sample ----------------------------------------------------------------------------------

struct SampleCase {
  const char* rule;
  std::u16string text;
  std::size_t num_lines;
  Given given;
  std::string lines;  // "-" before those that are hidden, "#" before comments
};
std::ostream& operator<<(std::ostream& out, const SampleCase& row) { return out << row.rule; }

const SampleCase kSamples[] = {
    {"NothingGiven", u"#a\nb\nc\nd\n", 2, {}, "#[#a][b][c]"},
    {"HeaderLinesAreHidden", u"a\nb\nc\nd\n", 2, {.header_lines = 1}, "-[a][b][c]"},
    {"HeaderLinesAreNoComments", u"#a\nb\nc\n", 2, {.header_lines = 1}, "-[#a][b][c]"},
    {"OnlyTheGivenComments",
     u"#a\n% b\nc\n  %d\ne\n",
     2,
     {.comment_prefix = u"%"},
     "[#a]-#[% b][c]"},
    {"CommentsAreNotCounted",
     u"a\n%b\nc\n%d\n%e\nf\n",
     3,
     {.comment_prefix = u"%"},
     "[a]-#[%b][c]-#[%d]-#[%e][f]"},
    {"TheNamesAreShown", u"a\nb\nc\nd\n", 1, {.names_line = 2}, "-[a][b]"},
    {"UnitsAreHidden", u"a\nb\nc\nd\n", 1, {.names_line = 1, .units_line = 2}, "[a]-[b][c]"},
    {"NamesAmongHeaderLinesAreHidden",
     u"a\nb\nc\nd\n",
     1,
     {.header_lines = 2, .names_line = 1},
     "-[a]-[b][c]"},
};

class GivenSample : public testing::TestWithParam<SampleCase> {};

TEST_P(GivenSample, HidesWhatIsNoRecord) {
  const ExactText text(GetParam().text);
  const SampledLines lines = sample_lines(text.view(), GetParam().num_lines, GetParam().given);
  std::string found;
  for (std::size_t k = 0; k < lines.size(); ++k) {
    if (lines.is_hidden(k)) found += '-';
    if (lines.is_comment(k)) found += '#';
    found += '[' + readable(lines.whole(k)) + ']';
    EXPECT_EQ(lines.view(k).empty(), lines.is_hidden(k));
  }
  EXPECT_EQ(found, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenSample, testing::ValuesIn(kSamples), ByRule());

// --- line endings --------------------------------------------------------------------------------

struct EndingCase {
  const char* rule;
  LineEndings endings;
  std::string lines;
};
std::ostream& operator<<(std::ostream& out, const EndingCase& row) { return out << row.rule; }

const EndingCase kEndings[] = {
    {"All", {true, true, true}, "[a][b][c][d]"},
    {"LineFeeds", {true, false, false}, "[a][b\\u000Dc\\u000D][d]"},
    {"CarriageReturns", {false, true, false}, "[a\\u000Ab][c][\\u000Ad]"},
    {"Both", {true, true, false}, "[a][b][c][][d]"},
    {"PairsAlone", {false, false, true}, "[a\\u000Ab\\u000Dc][d]"},
    {"LineFeedsAndPairs", {true, false, true}, "[a][b\\u000Dc][d]"},
};

class GivenEndings : public testing::TestWithParam<EndingCase> {};

TEST_P(GivenEndings, EndLines) {
  const ExactText text(u"a\nb\rc\r\nd");
  Given given;
  given.line_endings = GetParam().endings;
  const SampledLines lines = sample_lines(text.view(), kAllLines, given);
  std::string found;
  for (std::size_t k = 0; k < lines.size(); ++k) found += '[' + readable(lines.view(k)) + ']';
  EXPECT_EQ(found, GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenEndings, testing::ValuesIn(kEndings), ByRule());

// --- readings ------------------------------------------------------------------------------------

struct ReadingsCase {
  const char* rule;
  std::u16string text;
  Given given;
  std::string readings;
};
std::ostream& operator<<(std::ostream& out, const ReadingsCase& row) { return out << row.rule; }

using Texts = std::vector<std::u16string>;

const ReadingsCase kReadings[] = {
    {"NothingGiven", u"a;b\n", {}, "delimited ;, one, none"},
    {"AnotherDelimiter", u"a;b\n", {.delimiters = Texts{u"x"}}, "delimited x"},
    {"NoDelimiter", u"a;b\n", {.delimiters = Texts{}}, "one"},
    {"AnEmptyDelimiter", u"a;b\n", {.delimiters = Texts{u""}}, "one"},
    {"ADelimiterWithTheQuotesOfTheText",
     u"\"a\";'b'\n",
     {.delimiters = Texts{u";"}},
     "delimited ;, delimited ; \", delimited ; '"},
    {"ADelimiterThatIsAQuote", u"a'b\n", {.delimiters = Texts{u"'"}}, "delimited '"},
    {"ADelimiterAndAQuote",
     u"\"a\";'b'\n",
     {.delimiters = Texts{u";"}, .quote = u'\''},
     "delimited ; '"},
    {"AQuoteThatTheTextLacks", u"a;b\n", {.quote = u'$'}, "delimited ; $, one $, none"},
    {"NoQuote", u"\"a\";\"b\"\n", {.quote = u'\0'}, "delimited ;, one, none"},
    {"AnEscape", u"a;b\n", {.escape = u'\\'}, "delimited ; \\, one \\, none"},
    {"OnlyDoubledQuotes",
     u"\"a\\\"\";\"b\"\n",
     {.escape = u'\0'},
     "delimited ;, delimited ; \", delimited \\, delimited \\ \", one, one \", none"},
    {"AQuoteIsNoDelimiter", u"a;b|c\n", {.quote = u'|'}, "delimited ; |, one |, none"},
    {"Widths", u"a;b\n", {.widths = {1, 2}}, "gaps 1"},
};

class GivenReadings : public testing::TestWithParam<ReadingsCase> {};

TEST_P(GivenReadings, AgreeWithWhatIsGiven) {
  const Sample sample(GetParam().text);
  std::string found;
  for (const Reading& reading : find_readings(sample.lines(), GetParam().given)) {
    if (!found.empty()) found += ", ";
    found += shown(reading);
  }
  EXPECT_EQ(found, GetParam().readings);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenReadings, testing::ValuesIn(kReadings), ByRule());

TEST(GivenDelimiters, AreTriedInTheirOrder) {
  const Sample sample(u"1::2:3\n\"a:b\":c\n");
  const auto records = [&](const Texts& delimiters) {
    Given given;
    given.delimiters = delimiters;
    given.quote = u'"';
    return shown(cut(sample.lines(), find_readings(sample.lines(), given).at(0)));
  };
  EXPECT_EQ(records({u"::", u":"}), "0[1][2][3] 1{a:b}[c]");
  EXPECT_EQ(records({u":", u"::"}), "0[1][][2][3] 1{a:b}[c]");
}

// --- lines that cannot be ------------------------------------------------------------------------

struct ProblemCase {
  const char* rule;
  Given given;
  std::string problem;
};
std::ostream& operator<<(std::ostream& out, const ProblemCase& row) { return out << row.rule; }

const ProblemCase kProblems[] = {
    {"NothingGiven", {}, ""},
    {"TheLastLine", {.names_line = 6}, ""},
    {"OneBelowTheText",
     {.names_line = 7},
     "VariableNamesLine: Expected a line from 1 to 6, got 7."},
    {"ThreeBelowTheHeader", {.header_lines = 2, .descriptions_line = 5}, ""},
    {"FourBelowTheHeader",
     {.header_lines = 2, .descriptions_line = 6},
     "VariableDescriptionsLine: Expected a line from 1 to 5, as 2 header lines are given, got 6."},
    {"FourBelowOneHeaderLine",
     {.header_lines = 1, .units_line = 5},
     "VariableUnitsLine: Expected a line from 1 to 4, as 1 header line is given, got 5."},
    {"ManyHeaderLines", {.header_lines = 100, .names_line = 6}, ""},
};

class GivenLines : public testing::TestWithParam<ProblemCase> {};

TEST_P(GivenLines, AreInTheText) {
  const ExactText text(u"a\nb\nc\nd\ne\nf\n");
  const SampledLines lines = sample_lines(text.view(), 100, GetParam().given);
  EXPECT_EQ(problem_with_lines(GetParam().given, lines).value_or(""), GetParam().problem);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenLines, testing::ValuesIn(kProblems), ByRule());

// --- the verdict ---------------------------------------------------------------------------------

TEST(GivenVerdict, IsThatOfJudgeWhenNothingIsGiven) {
  const ExactText text(u"a;b,c\n1,5;2\n2,5;3\n");
  const Verdict with = judge(text.view(), 100, Given());
  const Verdict without = judge(text.view(), 100);
  ASSERT_EQ(with.hypotheses.size(), without.hypotheses.size());
  EXPECT_EQ(with.best, without.best);
  for (std::size_t i = 0; i < with.hypotheses.size(); ++i) {
    EXPECT_EQ(with.hypotheses[i].probability, without.hypotheses[i].probability);
  }
}

TEST(GivenVerdict, HasNoHypothesisWithoutALineBelowTheHeader) {
  Given given;
  given.header_lines = 5;
  EXPECT_TRUE(judge(u"a;b\n1;2\n", 100, given).hypotheses.empty());
}

TEST(GivenVerdict, IsSureOfTheOnlyReading) {
  Given given;
  given.delimiters = Texts{u";"};
  given.quote = u'\0';
  const Verdict verdict = judge(u"a;b,c\n1,5;2\n2,5;3\n", 100, given);
  EXPECT_EQ(verdict.hypotheses.size(), 1U);
  EXPECT_DOUBLE_EQ(verdict.confidence, 1.0);
}

TEST(GivenVerdict, HasTheGivenColumnsIfAnyReadingHas) {
  Given given;
  const auto columns = [&](std::size_t count) {
    given.columns = count;
    return judge(u"1;2,3,4\n5;6,7,8\n9;1,2,3\n", 100, given).winner().table.columns;
  };
  EXPECT_EQ(columns(2), 2U);
  EXPECT_EQ(columns(3), 3U);
  EXPECT_EQ(columns(17), 3U);
}

TEST(GivenVerdict, CutsAnyLineIntoCells) {
  Given given;
  given.header_lines = 2;
  const ExactText text(
      u"# x y, z\n      m   km/h\nOslo  1.5   22\nRome  2.5    3\nBonn 13.5    4\n");
  const Verdict verdict = judge(text.view(), 100, given);
  const Cut& cut = verdict.cut_of(verdict.winner());
  EXPECT_EQ(verdict.winner().table.columns, 3U);
  const auto units = cells_of_line(verdict.lines, 1, cut, 3);
  ASSERT_EQ(units.size(), 3U);
  EXPECT_EQ(readable(units[1]), "m");
  EXPECT_EQ(readable(units[2]), "km/h");
}

// Two words of the header are over the last column, one over each of the others.
TEST(GivenVerdict, CutsALineByThePositionsOfColumns) {
  Given given;
  given.header_lines = 2;
  const ExactText text(
      u"depth of water  speed\n    \nOslo  1.5   22\nRome  2.5    3\nBonn 13.5    4\n");
  const Verdict verdict = judge(text.view(), 100, given);
  const Cut& cut = verdict.cut_of(verdict.winner());
  ASSERT_EQ(verdict.winner().table.columns, 3U);
  const auto names = cells_of_line(verdict.lines, 0, cut, 3);
  ASSERT_EQ(names.size(), 3U);
  EXPECT_EQ(readable(names[0]), "depth");
  EXPECT_EQ(readable(names[1]), "of");
  EXPECT_EQ(readable(names[2]), "water  speed");
  for (const std::u16string_view cell : cells_of_line(verdict.lines, 1, cut, 3)) {
    EXPECT_EQ(readable(cell), "");
  }
}

TEST(GivenVerdict, HasNoNamesInALineThatTheTextLacks) {
  Given given;
  given.names_line = 9;
  const ExactText text(u"1,2\n3,4\n");
  const Verdict verdict = judge(text.view(), 100, given);
  EXPECT_EQ(verdict.names.probability, 0);
}

TEST(GivenVerdict, KnowsPatternsOfTimesAsUnits) {
  Given given;
  given.header_lines = 2;
  const ExactText text(u"day,depth\nyyyy-mm-dd,m\n2024-01-01,5\n2024-01-02,6\n2024-01-03,7\n");
  const Verdict verdict = judge(text.view(), 100, given);
  const Cut& cut = verdict.cut_of(verdict.winner());
  EXPECT_TRUE(holds_units(verdict.lines, 1, cut, 2));
  EXPECT_FALSE(holds_units(verdict.lines, 0, cut, 2));
}

// Without quotes in the text, the two readings differ by the backslash.
TEST(GivenDelimiters, MayBeEscapedWhereThereIsABackslash) {
  Given given;
  given.delimiters = {{u";"}};
  const ExactText text(u"a\\;b;c\nd;e\n");
  const std::vector<Reading> readings = find_readings(sample_lines(text.view(), 100, given), given);
  ASSERT_EQ(readings.size(), 2U);
  EXPECT_EQ(readings[0].escape, u'\\');
  EXPECT_EQ(readings[1].escape, u'\0');
}

}  // namespace
}  // namespace textio::assessment
