// Candidate characters, column widths, and the candidates that are built from them.

#include <cstddef>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/candidates.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"

namespace textio {
namespace {

using detection::build_candidates;
using detection::CandidateFate;
using detection::CandidateInput;
using detection::Candidates;
using detection::find_candidate_chars;
using detection::find_column_widths;
using detection::SampleStore;
using detection::SelectionTrace;
using testing_support::ByRule;
using testing_support::delimiter_of;
using testing_support::describe;
using testing_support::ExactText;
using testing_support::readable;
using testing_support::widths_of;

constexpr unsigned long kUnknown = std::numeric_limits<unsigned long>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Separate lines, each in a block of exactly its size; empty lines are as a line reader keeps them.
class Lines {
 public:
  explicit Lines(const std::vector<std::u16string>& texts) {
    for (const std::u16string& text : texts) {
      blocks_.emplace_back(text);
      fields_.push_back(text.empty() ? empty_field() : blocks_.back().field());
    }
  }
  const std::vector<Field>& fields() const { return fields_; }

 private:
  std::vector<ExactText> blocks_;
  std::vector<Field> fields_;
};

// -- candidate characters -----------------------------------------------------------------------

struct CharsCase {
  const char* rule;
  std::vector<std::u16string> lines;
  std::u16string chars;
};
std::ostream& operator<<(std::ostream& out, const CharsCase& row) { return out << row.rule; }

const CharsCase kCharsCases[] = {
    {"NoLines", {}, u""},
    {"OnlyEmptyLines", {u"", u"", u""}, u""},
    {"ALoneLineIsScanned", {u"a,b"}, u","},
    {"ALoneLineAmongEmptyOnesIsScanned", {u"", u"a,b", u""}, u","},
    // From here on the first line may be a header and is skipped.
    {"OfTwoLinesTheSecond", {u"a,b", u"1;2"}, u";"},
    {"OfThreeLinesTheLastTwo", {u"a,b", u"1;2", u"3|4"}, u";|"},
    {"OfFiveLinesTheLastFour", {u"0,", u"1;", u"2|", u"3:", u"4#"}, u";|:#"},
    // 6 lines: from (6 + 2) / 3 = 2 up to, not including, 6 * 5 / 6 = 5
    {"OfSixLinesTheMiddleThree", {u"0,", u"1;", u"2|", u"3:", u"4#", u"5!"}, u"|:#"},
    // 7 lines: 9 / 3 = 3 to 35 / 6 = 5
    {"OfSevenLinesTwo", {u"0,", u"1;", u"2|", u"3:", u"4#", u"5!", u"6%"}, u":#"},
    // 12 lines: 14 / 3 = 4 to 60 / 6 = 10
    {"OfTwelveLinesFourToNine",
     {u"0!", u"1#", u"2%", u"3&", u"4(", u"5)", u"6*", u"7,", u"8/", u"9:", u"a;", u"b<"},
     u"()*,/:"},
    // The third and fourth line that are not empty.
    {"EmptyLinesAreNotCounted",
     {u"", u"0,", u"1;", u"", u"2|", u"", u"3:", u"4#", u"5!", u"", u"", u"6%"},
     u":#"},
    {"EachCharacterOnceInOrderOfAppearance", {u"x", u"1;2,3;4", u"5|6,7;8"}, u";,|"},
    {"LettersDigitsAndTheirCompanyAreNone",
     {u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ@0123456789-.\"$'+\r\n\u001A"},
     u""},
    {"NeighboursOfTheExcludedRangesAreSome", {u"/:A[`{Z@"}, u"/:[`{"},
    {"NothingAbove127", {u"a\u0080b\u00e9c\u2028d\u3000e\ufffe"}, u""},
    {"ControlCharactersAreSome",
     {std::u16string(u"a\0b\x01"
                     u"c\td\v\f\x1b\x1f\x7f",
                     12)},
     std::u16string(u"\0\x01\t\v\f\x1b\x1f\x7f", 8)},
    {"AnEndMarkEndsItsLineOnly", {u"x", u"1;2\uffff3,4", u"5|6"}, u";|"},
    {"ALineThatIsOnlyAnEndMarkCounts", {u"\uffff,", u"1;2"}, u";"},
};

class FindCandidateChars : public testing::TestWithParam<CharsCase> {};
TEST_P(FindCandidateChars, ReadsTheMiddleLines) {
  const Lines lines(GetParam().lines);
  EXPECT_EQ(readable(find_candidate_chars(lines.fields())), readable(GetParam().chars));
}
INSTANTIATE_TEST_SUITE_P(Table, FindCandidateChars, testing::ValuesIn(kCharsCases), ByRule());

TEST(FindCandidateCharsAscii, HasFiftySixCandidates) {
  // 128 less 52 letters, 10 digits, 7 companions @-."$'+ and 3 control characters.
  std::u16string ascii;
  for (char16_t unit = 0; unit < 256; ++unit) ascii.push_back(unit);
  const Lines lines({ascii});
  EXPECT_EQ(find_candidate_chars(lines.fields()).size(), 56U);
}

// -- column widths ------------------------------------------------------------------------------

struct WidthsCase {
  const char* rule;
  std::vector<std::u16string> lines;  // as long as the first, or shorter
  double variation;
  std::size_t most_columns;
  std::vector<unsigned long> widths;
};
std::ostream& operator<<(std::ostream& out, const WidthsCase& row) { return out << row.rule; }

// A line counts 1, and one more for each position where text follows a column that is blank in this
// line and in all lines before it. The blanks before a text belong to its column.
const WidthsCase kWidthsCases[] = {
    {"BlanksBelongToTheColumnAfterThem", {u"ab  12", u"cd  34"}, 0, 2, {2, 4}},
    {"ASingleBlankIsEnough", {u"a b", u"c d"}, 0, 2, {1, 2}},
    {"OneLineIsEnough", {u"a bc d"}, 0, 3, {1, 3, 2}},
    {"ABlankInOneLineOnlyIsText", {u"a b cd", u"efg hi"}, 1, 2, {3, 3}},
    // Only positions 4 and 5 are blank in both.
    {"OnlyWhatIsBlankInAllLines", {u"ab    12", u"cdef  34", u"gh    56"}, 0, 2, {4, 4}},
    // Columns 0, 1 and 4 are blank: text follows twice, so each line counts 3, but the widths
    // change only before position 4.
    {"LeadingBlanksBelongToTheFirstColumn", {u"  ab 1", u"  cd 2"}, 0, 3, {4, 2}},
    {"LeadingBlanksAreCounted", {u"  ab 1", u"  cd 2"}, 0, 2, {}},
    // No text follows the blanks: each line counts 1, but there are two widths.
    {"TrailingBlanksAreAColumn", {u"ab  ", u"cd  "}, 0, 1, {2, 2}},
    {"NoBlankIsOneColumn", {u"abc", u"def"}, 0, 1, {3}},
    {"OnlyBlanksAreOneColumn", {u"   ", u"   "}, 0, 1, {3}},
    {"OneUnitIsOneColumn", {u"x", u" "}, 0, 1, {1}},
    {"ATabIsText", {u"a\tb", u"c\td"}, 0, 1, {3}},
    // Line 0 counts 2; line 1 ends where the blanks are and counts 1: mean deviation 0.5.
    {"AfterTheEndOfALineNothingIsBlank", {u"a  b", u"c"}, 0.5, 1, {4}},
    {"ANoBreakSpaceIsText", {u"a\u00a0b"}, 0, 1, {3}},
    // Line 0 counts 3, line 1 only 2: median 2, mean deviation 0.5.
    {"AVariationUpToTheLimit", {u"a b c", u"abc d"}, 0.5, 2, {3, 2}},
    {"AVariationBeyondTheLimit", {u"a b c", u"abc d"}, 0.49, 2, {}},
    {"OnlyTheLastLineMustHaveFewColumns", {u"a b c", u"abc d"}, kInfinity, 2, {3, 2}},
    {"TooManyColumnsInTheLastLine", {u"a b c", u"abc d"}, kInfinity, 1, {}},
    {"AsManyColumnsAsAllowed", {u"a b c", u"d e f"}, 0, 3, {1, 2, 2}},
    {"OneColumnTooMany", {u"a b c", u"d e f"}, 0, 2, {}},
    // Eleven lines count 1, four 3: fewer than a third of 15 count more, so the median is 1; the
    // mean deviation is 8 / 15.
    {"TheMedianIsOneWhenFewLinesHaveColumns",
     {u"a b c", u"a b c", u"a b c", u"a b c", u"abcde", u"abcde", u"abcde", u"abcde", u"abcde",
      u"abcde", u"abcde", u"abcde", u"abcde", u"abcde", u"abcde"},
     0.54,
     1,
     {5}},
    {"TheMedianIsOneAndTheLinesVaryTooMuch",
     {u"a b c", u"a b c", u"a b c", u"a b c", u"abcde", u"abcde", u"abcde", u"abcde", u"abcde",
      u"abcde", u"abcde", u"abcde", u"abcde", u"abcde", u"abcde"},
     0.53,
     1,
     {}},
};

class FindColumnWidths : public testing::TestWithParam<WidthsCase> {};
TEST_P(FindColumnWidths, CutBeforeCommonBlanks) {
  const WidthsCase& row = GetParam();
  const Lines lines(row.lines);
  EXPECT_EQ(
      find_column_widths(lines.fields(), row.lines.at(0).size(), row.variation, row.most_columns),
      row.widths);
}
INSTANTIATE_TEST_SUITE_P(Table, FindColumnWidths, testing::ValuesIn(kWidthsCases), ByRule());

// -- candidates ---------------------------------------------------------------------------------

using Strategies = std::vector<std::shared_ptr<Strategy>>;

// The strategies, each with its sample.
Strategies strategies_of(Candidates candidates) {
  Strategies strategies;
  for (detection::Candidate& candidate : candidates) {
    candidate.strategy->keep(std::move(candidate.sample), candidate.counts);
    strategies.push_back(std::move(candidate.strategy));
  }
  return strategies;
}

// What is expected of one candidate.
struct Expected {
  int mode;
  std::u16string delimiter;
  std::vector<std::size_t> widths;
  unsigned long header_lines;
  long num_variables;
};

std::string describe(const Expected& candidate) {
  std::ostringstream out;
  out << "mode " << candidate.mode << " delimiter '" << readable(candidate.delimiter) << "' widths "
      << describe(candidate.widths) << "header " << candidate.header_lines << " variables "
      << candidate.num_variables << '\n';
  return out.str();
}

Expected delimited(std::u16string delimiter, unsigned long header_lines, long num_variables) {
  return {Strategy::kDelimited, std::move(delimiter), {}, header_lines, num_variables};
}
Expected space_aligned(unsigned long header_lines, long num_variables) {
  return {Strategy::kSpaceAligned, u"", {}, header_lines, num_variables};
}
Expected fixed_width(std::vector<std::size_t> widths, unsigned long header_lines,
                     long num_variables) {
  return {Strategy::kFixedWidth, u"", std::move(widths), header_lines, num_variables};
}

struct BuildCase {
  const char* rule;
  std::u16string chars;
  std::u16string text;
  unsigned long header_lines;  // kUnknown: to be detected
  std::vector<Expected> candidates;
};
std::ostream& operator<<(std::ostream& out, const BuildCase& row) { return out << row.rule; }

std::u16string times(std::size_t count, const std::u16string& line) {
  std::u16string text;
  for (std::size_t i = 0; i < count; ++i) text += line;
  return text;
}

// Lines of 14 code units: a name up to code unit 11, a number in the last two. One name has a
// blank, so the space-aligned candidate has 2, 2, 2, 3, 2 fields: median 2, mean deviation 0.2. One
// deviation among five is no header. Only code unit 11 is blank in all lines.
const std::u16string kNames =
    u"Anna        12\n"
    u"Bartholomew 34\n"
    u"Cid         56\n"
    u"Dan Xu      78\n"
    u"Eve         90\n";

// The same, with a last line of 13 code units.
const std::u16string kNamesWithAShortLine =
    u"Anna        12\n"
    u"Bartholomew 34\n"
    u"Cid         56\n"
    u"Dan Xu      78\n"
    u"Eve        90\n";

const BuildCase kBuildCases[] = {
    {"NoCharactersNoCandidates", u"", u"a,b\n1,2\n", kUnknown, {}},
    {"OneDelimiter", u",", u"a,b\n1,2\n3,4\n", kUnknown, {delimited(u",", 0, 2)}},
    {"InTheOrderOfTheCharacters",
     u";,",
     u"a,b;c;d\n1,2;3;4\n5,6;7;8\n",
     kUnknown,
     {delimited(u";", 0, 3), delimited(u",", 0, 2)}},
    // A space that separates all lines equally makes both candidates perfectly regular.
    {"ASpaceMakesTwoCandidates",
     u" ",
     u"a b\nc d\ne f\n",
     kUnknown,
     {space_aligned(0, 2), delimited(u" ", 0, 2)}},
    // The blanks vary, so the single space finds 3, 2, 5 and 4 fields: median 3 (the lower middle
    // one), and the last line with it is line 0. A single deviation measures nothing.
    {"RaggedBlanksAreAligned",
     u" ",
     u"a  b\nc d\ne    f\ng   h\n",
     kUnknown,
     {space_aligned(0, 2)}},
    // Fields 2, 2, 2, 1, 2: mean deviation 0.2. One deviation among five is no header.
    {"AFewDeviationsAreAccepted",
     u",",
     u"1,2\n3,4\n5,6\n7\n8,9\n",
     kUnknown,
     {delimited(u",", 0, 2)}},
    // Fields 2, 1, 2, 2: the bend is after the second line, and two lines of four may be header.
    {"ADeviationNearTheTopIsAHeader",
     u",",
     u"1,2\n3\n4,5\n6,7\n",
     kUnknown,
     {delimited(u",", 2, 2)}},
    // Fields 2, 4, 2, 4, 2: median 2, deviations 0, 2, 0, 2, 0: mean 0.8.
    {"ADeviationBelowOneIsAccepted",
     u",",
     u"1,2\n1,2,3,4\n1,2\n1,2,3,4\n1,2\n",
     0,
     {delimited(u",", 0, 4)}},
    // Fields 2, 5, 2, 4, 2: deviations 0, 3, 0, 2, 0: mean 1.
    {"ADeviationOfOneIsRefused", u",", u"1,2\n1,2,3,4,5\n1,2\n1,2,3,4\n1,2\n", 0, {}},
    {"OneLineMeasuresNothing", u",", u"1,2\n", kUnknown, {}},
    {"ACharacterThatIsNotThere", u";", u"a,b\n1,2\n3,4\n", kUnknown, {}},
    {"NoTextNoCandidates", u", ;", u"", kUnknown, {}},

    // Columns of fixed width.
    {"LinesOfOneLengthAreFixedWidth", u" ", kNames, kUnknown, {fixed_width({11, 3}, 0, 2)}},
    {"AShorterLineKeepsTheReadingAligned",
     u" ",
     kNamesWithAShortLine,
     kUnknown,
     {space_aligned(0, 3)}},
    // Detected: the line of names has the length of the data and no deviation of its own. The
    // single space now finds 9, 9, 2, 10, 8, 10 fields: median 9, and up to the last line with 9
    // nothing deviates.
    {"ANamesLineOfTheSameLengthIsData",
     u" ",
     u"Name        Nr\n" + kNames,
     kUnknown,
     {fixed_width({11, 3}, 0, 2), delimited(u" ", 0, 10)}},
    // Given: the line is not inspected again.
    {"AGivenHeaderLineStays",
     u" ",
     u"Name        Nr\n" + kNames,
     1,
     {fixed_width({11, 3}, 1, 2), delimited(u" ", 1, 10)}},
    // The header line has text at code unit 11, but the columns come from the data lines. The
    // single space finds 1, 9, 2, 10, 8, 10 fields: after the header line nothing deviates from 9.
    {"AGivenHeaderLineHasNoColumns",
     u" ",
     u"Name,NameAndNr\n" + kNames,
     1,
     {fixed_width({11, 3}, 1, 2), delimited(u" ", 1, 10)}},
    // The data lines agree with each other, but not with the line before them. The single space
    // finds 11, 9, 2, 10, 8, 10 fields: the lower middle one is 9 again.
    {"AHeaderOfAnotherLengthKeepsTheReadingAligned",
     u" ",
     u"Name          Nr\n" + kNames,
     1,
     {space_aligned(1, 3), delimited(u" ", 1, 10)}},
    // From the first line with two fields on there are eleven lines, two of them with two fields.
    // This is less than a third, so the aligned candidate has one column and is not measured.
    // Nothing prevents one column of 6 code units, and the lines before have that length as well.
    {"WordsOfOneLengthAreOneColumn",
     u" ",
     times(4, u"abcdef\n") + times(2, u"ab def\n") + times(9, u"abcdef\n"),
     kUnknown,
     {fixed_width({6}, 0, 1)}},
    // The same with a longer line between the two words and the lines before: the first data line
    // does not move up past it.
    {"HeaderLinesEndAtALineOfAnotherLength",
     u" ",
     u"abcdef\nabcdefgh\n" + times(2, u"ab def\n") + times(9, u"abcdef\n"),
     kUnknown,
     {fixed_width({6}, 2, 1)}},
    // Two deviations and two header lines: nothing is left to measure, and the two data lines form
    // one column of 5 code units.
    {"HeaderLinesThatTakeAllDeviations",
     u" ",
     u"ab cd\nab cd\nabcde\nabcde\n",
     2,
     {fixed_width({5}, 2, 1)}},

    // Given header lines beyond the sample.
    {"AsManyHeaderLinesAsLines", u" ", u"a b\nc d\n", 2, {}},
    // A mean over less than nothing is a (negative) zero, which counts as regular.
    {"MoreHeaderLinesThanLines",
     u" ,",
     u"a b,c\nd e,f\n",
     3,
     {space_aligned(3, 1), delimited(u" ", 3, 1), delimited(u",", 3, 1)}},
    {"ManyMoreHeaderLinesThanLines",
     u" ",
     u"a b\nc d\n",
     kUnknown - 1,
     {space_aligned(kUnknown - 1, 1), delimited(u" ", kUnknown - 1, 1)}},
};

class BuildCandidates : public testing::TestWithParam<BuildCase> {
 protected:
  BuildCandidates() : text_(GetParam().text) {
    options_.header_lines = GetParam().header_lines;
    options_.detect_header_lines = GetParam().header_lines == kUnknown;
  }

  Strategies build(SelectionTrace* trace) const {
    SampleStore samples(text_.field(), 100);
    return strategies_of(
        build_candidates(GetParam().chars, {options_, options_.header_lines, samples}, trace));
  }

  parser::options options_;
  ExactText text_;
};

TEST_P(BuildCandidates, GivesTheUsableOnesInOrder) {
  std::string expected;
  for (const Expected& candidate : GetParam().candidates) expected += describe(candidate);
  std::string built;
  for (const auto& candidate : build(nullptr)) {
    built += describe(Expected{candidate->mode(), delimiter_of(*candidate), widths_of(*candidate),
                               candidate->header_lines(), candidate->num_variables()});
  }
  EXPECT_EQ(built, expected);
}

TEST_P(BuildCandidates, GivesTheSameWithATrace) {
  SelectionTrace trace;
  const Strategies traced = build(&trace);
  const Strategies plain = build(nullptr);
  ASSERT_EQ(traced.size(), plain.size());
  for (std::size_t i = 0; i < plain.size(); ++i) {
    EXPECT_EQ(describe(*traced[i]), describe(*plain[i]));
    EXPECT_EQ(describe(traced[i]->valuation()), describe(plain[i]->valuation()));
  }
}

TEST_P(BuildCandidates, TracesTheKeptOnesAsTheyAre) {
  SelectionTrace trace;
  const Strategies candidates = build(&trace);
  std::vector<detection::CandidateTrace> kept;
  for (const auto& candidate : trace.candidates) {
    if (candidate.fate == CandidateFate::kept) kept.push_back(candidate);
  }
  ASSERT_EQ(kept.size(), candidates.size());
  for (std::size_t i = 0; i < kept.size(); ++i) {
    EXPECT_EQ(kept[i].dialect, candidates[i]->dialect());
    EXPECT_EQ(kept[i].header_lines, candidates[i]->header_lines());
    EXPECT_EQ(describe(kept[i].valuation), describe(candidates[i]->valuation()));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, BuildCandidates, testing::ValuesIn(kBuildCases), ByRule());

// Unlike in the table, one candidate each, with its own options.
class BuildOneCandidate : public testing::Test {
 protected:
  Strategies build(const std::u16string& chars, const ExactText& text,
                   unsigned long num_lines = 100) {
    SampleStore samples(text.field(), num_lines);
    return strategies_of(
        build_candidates(chars, {options_, options_.header_lines, samples}, &trace_));
  }

  parser::options options_;
  SelectionTrace trace_;
};

TEST_F(BuildOneCandidate, RecordsTheFateOfEach) {
  // The single space finds 9, 2, 10, 8 and 10 fields: median 9, and the last line with it is the
  // first.
  const ExactText text(kNames);
  build(u" ", text);
  ASSERT_EQ(trace_.candidates.size(), 3U);

  EXPECT_EQ(trace_.candidates[0].dialect, (Dialect{LayoutMode::space_aligned, {" ", "\t"}, {}}));
  EXPECT_EQ(trace_.candidates[0].fate, CandidateFate::made_fixed_width);
  EXPECT_EQ(trace_.candidates[0].valuation.data_variation, 1.0 / 5);
  EXPECT_EQ(trace_.candidates[0].valuation.num_variables, 3U);

  EXPECT_EQ(trace_.candidates[1].dialect, (Dialect{LayoutMode::fixed_width, {}, {11, 3}}));
  EXPECT_EQ(trace_.candidates[1].fate, CandidateFate::kept);
  EXPECT_EQ(trace_.candidates[1].header_lines, 0U);

  EXPECT_EQ(trace_.candidates[2].dialect, (Dialect{LayoutMode::delimited, {" "}, {}}));
  EXPECT_EQ(trace_.candidates[2].fate, CandidateFate::irregular);
  EXPECT_EQ(trace_.candidates[2].valuation.modal_field_count, 9);
  EXPECT_EQ(trace_.candidates[2].valuation.data_variation, kInfinity);
}

TEST_F(BuildOneCandidate, RecordsASingleColumn) {
  const ExactText text(kNames);
  EXPECT_TRUE(build(u",", text).empty());
  ASSERT_EQ(trace_.candidates.size(), 1U);
  EXPECT_EQ(trace_.candidates[0].dialect, (Dialect{LayoutMode::delimited, {","}, {}}));
  EXPECT_EQ(trace_.candidates[0].valuation.modal_field_count, 1);
  EXPECT_EQ(trace_.candidates[0].fate, CandidateFate::single_column);
}

TEST_F(BuildOneCandidate, RecordsADeviationOfOne) {
  // Fields 2, 5, 2, 4, 2: deviations 0, 3, 0, 2, 0: mean 1.
  options_.header_lines = 0;
  options_.detect_header_lines = false;
  const ExactText text(u"1,2\n1,2,3,4,5\n1,2\n1,2,3,4\n1,2\n");
  EXPECT_TRUE(build(u",", text).empty());
  ASSERT_EQ(trace_.candidates.size(), 1U);
  EXPECT_EQ(trace_.candidates[0].fate, CandidateFate::irregular);
  EXPECT_EQ(trace_.candidates[0].valuation.data_variation, 1.0);
}

TEST_F(BuildOneCandidate, ValuesTheFixedWidthOne) {
  const ExactText text(kNames);
  const Strategies candidates = build(u" ", text);
  ASSERT_EQ(candidates.size(), 1U);
  const StrategyValuation& valuation = candidates[0]->valuation();
  EXPECT_EQ(valuation.num_lines, 5U);
  EXPECT_EQ(valuation.modal_field_count, 2);
  EXPECT_EQ(valuation.data_variation, 0.0);
  EXPECT_EQ(valuation.typed_columns, 2U);    // a name and
  EXPECT_EQ(valuation.numeric_columns, 1U);  // a number
  EXPECT_EQ(valuation.priors_rank, kInfinity);
}

TEST_F(BuildOneCandidate, TheFixedWidthOneSamplesTheSameLinesAsTheAlignedOne) {
  // A budget of five lines, out of six.
  const ExactText text(kNames + u"Fay Ng      11\n");
  const Strategies candidates = build(u" ", text, 5);
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(candidates[0]->mode(), Strategy::kFixedWidth);
  EXPECT_EQ(candidates[0]->lines().size(), 5U);
}

TEST_F(BuildOneCandidate, RefusesOneColumnWithAFixedNumberOfVariablesToo) {
  // Most lines have one field: no deviation is measured, whatever the caller requests.
  options_.detect_num_variables = false;
  options_.num_variables = 1;
  const ExactText text(times(12, u"abc\n"));
  EXPECT_TRUE(build(u",", text).empty());
  ASSERT_EQ(trace_.candidates.size(), 1U);
  EXPECT_NE(trace_.candidates[0].fate, CandidateFate::kept);
}

TEST_F(BuildOneCandidate, RefusesASingleLineWithAFixedNumberOfVariablesToo) {
  // A single line has nothing to deviate from.
  options_.detect_num_variables = false;
  options_.num_variables = 2;
  const ExactText text(u"a,b\n");
  EXPECT_TRUE(build(u",", text).empty());
  ASSERT_EQ(trace_.candidates.size(), 1U);
  EXPECT_EQ(trace_.candidates[0].fate, CandidateFate::irregular);
}

TEST_F(BuildOneCandidate, PassesTheGivenHeaderLinesToTheAlignedOne) {
  // The caller fixes the number of header lines, but gives "not known": the aligned candidate
  // detects them. The title has one field, the data lines two; the title is longer.
  options_.detect_header_lines = false;
  options_.header_lines = kUnknown;
  const ExactText text(u"title\na b\nc d\ne f\ng h\n");
  const Strategies candidates = build(u" ", text);
  ASSERT_EQ(candidates.size(), 2U);
  EXPECT_EQ(candidates[0]->mode(), Strategy::kSpaceAligned);
  EXPECT_EQ(candidates[0]->header_lines(), 1U);
  EXPECT_EQ(candidates[0]->num_variables(), 2);
}

TEST_F(BuildOneCandidate, NeverMakesColumnsOfBlankLines) {
  // White space without the space character keeps blank lines. Without their leading blanks they
  // are all empty and of equal length. The single space finds four fields in each.
  options_.whitespace = u"";
  const ExactText text(u"   \n   \n   \n");
  const Strategies candidates = build(u" ", text);
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(delimiter_of(*candidates[0]), u" ");
  EXPECT_EQ(candidates[0]->num_variables(), 4);
  EXPECT_EQ(candidates[0]->valuation().typed_columns, 0U);
}

TEST_F(BuildOneCandidate, ReadsQuotedLineEndingsAsText) {
  const ExactText text(u"a,b\n\"x\ny\",1\n2,3\n4,5\n");
  const Strategies candidates = build(u",", text);
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(testing_support::sampled_lines_of(*candidates[0]),
            (std::vector<std::u16string>{u"a,b", u"\"x\ny\",1", u"2,3", u"4,5"}));
}

TEST_F(BuildOneCandidate, LooksForColumnsBelowTheLastBlankLine) {
  // Without header lines the blank line is one of those that are compared, and is shorter. The blank
  // before the numbers belongs to their column.
  const std::u16string with_blank = u"Zoe         55\n\n" + kNames;
  options_.detect_header_lines = false;
  options_.header_lines = 0;
  EXPECT_TRUE(widths_of(*build(u" ", ExactText(with_blank)).at(0)).empty());
  options_.header_lines = 2;
  EXPECT_EQ(widths_of(*build(u" ", ExactText(with_blank)).at(0)),
            (std::vector<unsigned long>{11, 3}));
}

// Ten lines that are blank to the line reader are known to the store. A candidate for which they are
// other lines, or not blank, reads them.
TEST_F(BuildOneCandidate, ReadsKnownBlankLinesIfTheyMayBeOthers) {
  struct Case {
    std::u16string blank;
    std::u16string whitespace;
    std::vector<std::u16string> line_endings;
  };
  const Case cases[] = {
      {u" \n", u" \t", {u"\n"}},  // a delimiter is in them
      {u"\t\n", u" \t", {u"\n"}},     {u"\n", u" \t", {u"\n"}},
      {u"\v\n", u" \v", {u"\n"}},      // white space that aligned fields do not skip
      {u"\"\n", u" \"", {u"\n"}},      // they open a quoted field
      {u"\t ", u"\t", {u" ", u"\n"}},  // they end with a blank
      {u" \t", u" ", {u"\t", u"\n"}},
  };
  for (const Case& row : cases) {
    options_.whitespace = row.whitespace;
    options_.line_endings = row.line_endings;
    const ExactText text(u"a,b c\n1,2 3\n" + times(10, row.blank) + u"4,5 6\n7,8 9\n");
    SampleStore samples(text.field(), 100);
    LineReaderStrategy reader(options_);
    samples.remember_blanks(samples.draw(reader));
    const Strategies known = strategies_of(
        build_candidates(u", \t", {options_, options_.header_lines, samples}, nullptr));
    const Strategies plain = build(u", \t", text);
    ASSERT_EQ(known.size(), plain.size()) << readable(row.blank);
    for (std::size_t i = 0; i < plain.size(); ++i) {
      EXPECT_EQ(describe(*known[i]), describe(*plain[i])) << readable(row.blank);
      EXPECT_EQ(describe(known[i]->valuation()), describe(plain[i]->valuation()));
    }
  }
}

TEST_F(BuildOneCandidate, CandidatesOutliveTheInputAndTheTrace) {
  auto text = std::make_unique<ExactText>(kNames);
  auto trace = std::make_unique<SelectionTrace>();
  auto samples = std::make_unique<SampleStore>(text->field(), 100);
  const Strategies candidates =
      strategies_of(build_candidates(u" ", {options_, kUnknown, *samples}, trace.get()));
  text.reset();
  samples.reset();
  trace.reset();
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(candidates[0]->num_variables(), 2);
}

}  // namespace
}  // namespace textio
