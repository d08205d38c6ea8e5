// Whole selections: from a text and options to a strategy. The stand-alone host recognises the
// dates.

#include <vltextstream/detection/strategy_selector.hpp>

#include <cstddef>
#include <limits>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"

namespace textio {
namespace {

using detection::CandidateFate;
using detection::SelectionEnd;
using detection::SelectionOutcome;
using detection::SelectionTrace;
using detection::StrategySelector;
using testing_support::ByRule;
using testing_support::delimiter_of;
using testing_support::describe;
using testing_support::ExactText;
using testing_support::readable;
using testing_support::sampled_lines_of;
using testing_support::widths_of;

constexpr unsigned long kUnknown = std::numeric_limits<unsigned long>::max();
constexpr unsigned long kBudget = 100;

std::u16string times(std::size_t count, const std::u16string& line) {
  std::u16string text;
  for (std::size_t i = 0; i < count; ++i) text += line;
  return text;
}

// What the caller fixes in advance.
struct Given {
  bool header_lines_given = false;
  unsigned long header_lines = kUnknown;
  bool variables_given = false;
  std::uint64_t variables = 0;
  std::u16string whitespace = u" \b\t";
  unsigned long budget = kBudget;
};

Given header_lines(unsigned long count) {
  Given given;
  given.header_lines_given = true;
  given.header_lines = count;
  return given;
}

Given variables(std::uint64_t count) {
  Given given;
  given.variables_given = true;
  given.variables = count;
  return given;
}

Given whitespace(std::u16string set) {
  Given given;
  given.whitespace = std::move(set);
  return given;
}

Given budget(unsigned long lines) {
  Given given;
  given.budget = lines;
  return given;
}

parser::options options_of(const Given& given) {
  parser::options options;
  options.detect_header_lines = !given.header_lines_given;
  options.header_lines = given.header_lines;
  options.detect_num_variables = !given.variables_given;
  options.num_variables = given.variables;
  options.whitespace = given.whitespace;
  return options;
}

struct Answer {
  int mode;
  std::u16string delimiter;
  std::vector<std::size_t> widths;
  unsigned long header_lines;
  long num_variables;
  std::size_t num_lines;  // sampled lines
  SelectionEnd end;
  std::string last_filter;  // the last filter that ran
};

std::string describe(const Answer& answer) {
  std::ostringstream out;
  out << "mode " << answer.mode << " delimiter '" << readable(answer.delimiter) << "' widths "
      << describe(answer.widths) << "header " << answer.header_lines << " variables "
      << answer.num_variables << " lines " << answer.num_lines << " end "
      << static_cast<int>(answer.end) << " after '" << answer.last_filter << "'";
  return out.str();
}

Answer answer_of(const Strategy& winner, const SelectionTrace& trace) {
  return {winner.mode(),
          delimiter_of(winner),
          widths_of(winner),
          winner.header_lines(),
          winner.num_variables(),
          winner.lines().size(),
          trace.end,
          trace.filters.empty() ? "" : trace.filters.back().name};
}

// The only candidate that a filter kept.
Answer survivor(std::u16string delimiter, unsigned long header, long columns, std::size_t lines,
                std::string filter) {
  return {Strategy::kDelimited,          std::move(delimiter), {}, header, columns, lines,
          SelectionEnd::single_survivor, "reduce_by_" + filter};
}

// The only candidate.
Answer only(std::u16string delimiter, unsigned long header, long columns, std::size_t lines) {
  return {Strategy::kDelimited,
          std::move(delimiter),
          {},
          header,
          columns,
          lines,
          SelectionEnd::only_candidate,
          ""};
}

Answer line_reader(std::size_t lines) {
  return {Strategy::kLineReader, u"", {}, 0, 1, lines, SelectionEnd::no_candidate, ""};
}

Answer nothing_sampled() {
  return {Strategy::kLineReader, u"", {}, 0, 1, 0, SelectionEnd::empty_sample, ""};
}

// Not scored, so its number of variables is not known yet.
Answer single_column_of_dates(std::size_t lines) {
  return {Strategy::kDelimited, u",", {}, 0, -1, lines, SelectionEnd::whole_line_dates, ""};
}

Answer single_column_of_a_tie(std::size_t lines) {
  return {Strategy::kDelimited,   u",", {}, 0, -1, lines, SelectionEnd::unresolved_tie,
          "reduce_by_priors_rank"};
}

struct PickCase {
  const char* rule;
  std::u16string text;
  Given given;
  Answer answer;
};
std::ostream& operator<<(std::ostream& out, const PickCase& row) { return out << row.rule; }

// Names, one of which has a blank. Only code unit 11 is blank in all lines.
const std::u16string kNames =
    u"Anna        12\n"
    u"Bartholomew 34\n"
    u"Cid         56\n"
    u"Dan Xu      78\n"
    u"Eve         90\n";

const PickCase kPickCases[] = {
    // -- each way to end ------------------------------------------------------------------------

    {"NoTextGivesTheLineReader", u"", {}, nothing_sampled()},
    {"ATextThatIsOnlyAnEndMark", u"\uffff,", {}, nothing_sampled()},
    {"WordsAloneGiveTheLineReader", u"abc\ndef\n123\n", {}, line_reader(3)},
    // The comma of the first of three lines is not examined.
    {"ADelimiterInTheFirstLineOnly", u"a,b\n12\n34\n", {}, line_reader(3)},
    // One line has one deviation, which measures nothing.
    {"ACandidateThatIsRefused", u"1,2\n", {}, line_reader(1)},
    {"TheOnlyCandidate", u"a,b\n1,2\n3,4\n", {}, only(u",", 0, 2, 3)},
    {"TheOnlyCandidateMayHaveAnUnlistedDelimiter", u"a|b\n1|2\n3|4\n", {}, only(u"|", 0, 2, 3)},
    // The aligned candidate has 2, 2, 2, 3, 2 fields, and all lines have 14 code units. The single
    // space finds 9, 2, 10, 8, 10 fields: median 9, found last in the first line, so it is not
    // measured.
    {"TheOnlyCandidateMayBeFixedWidth",
     kNames,
     {},
     {Strategy::kFixedWidth, u"", {11, 3}, 0, 2, 5, SelectionEnd::only_candidate, ""}},
    {"LinesThatAreDates", u"2020-01-01\n2020-01-02\n2020-01-03\n", {}, single_column_of_dates(3)},
    {"LinesThatAreDatesWithTime",
     u"2020-01-01 10:30:00\n2020-01-02 11:30:00\n",
     {},
     single_column_of_dates(2)},
    {"LinesThatAreClockValues", u"10:30\n11:45\n12:00\n", {}, single_column_of_dates(3)},
    // Both split each line into a number and a text; neither delimiter is in the priority list.
    {"ATieOfUnlistedDelimiters", u"a|b#c\n1|2#3\n4|5#6\n", {}, single_column_of_a_tie(3)},

    // -- lines that are dates -------------------------------------------------------------------

    {"DayMonthYear", u"03/04/2020\n14/04/2020\n", {}, single_column_of_dates(2)},
    {"EnglishMonthNames", u"4 Jan 2020\n11 Feb 2020\n", {}, single_column_of_dates(2)},
    // The lowest line decides; the first line is never inspected.
    {"ATitleAboveDates", u"when, exactly\n2020-01-01\n2020-01-02\n", {}, single_column_of_dates(3)},
    {"DatesAboveAWord", u"2020-01-01\n2020-01-02\nend\n", {}, line_reader(3)},
    {"ALoneDateIsTheUninspectedFirstLine", u"2020-01-01\n", {}, line_reader(1)},
    {"BlankLinesBelowADate", u"2020-01-01\n2020-01-02\n\n  \n", {}, single_column_of_dates(4)},
    {"TheFallbackSamplesWithTheBudget", u"2020-01-01\n2020-01-02\n2020-01-03\n", budget(2),
     single_column_of_dates(2)},
    // The line reader skips no header line, and the fallback has none either.
    {"GivenHeaderLinesDoNotReachTheFallback", u"2020-01-01\n2020-01-02\n2020-01-03\n",
     header_lines(2), single_column_of_dates(3)},

    // -- what decides -----------------------------------------------------------------------------

    {"TheGivenNumberOfVariables", u"a,b,c|d\n1,2,3|4\n5,6,7|8\n", variables(2),
     survivor(u"|", 0, 2, 3, "numvariables")},
    // Three numbers and a text are worth 7, a text and a number 4.
    {"ANumberOfVariablesThatNobodyHasDecidesNothing", u"a,b,c|d\n1,2,3|4\n5,6,7|8\n", variables(9),
     survivor(u",", 0, 3, 3, "class_value")},
    // The bar finds a date in the first of its 2, 2, 2, 3, 2 fields. The comma finds two fields in
    // each line, but no date.
    {"DatesBeforeRegularity",
     u"when|x,y\n2020-01-01|1,2\n2020-01-02|3,4\n2020-01-03|5,6|z\n2020-01-04|7,8\n",
     {},
     survivor(u"|", 0, 3, 5, "dates")},
    {"ADateIsNotSplitAtItsSlashes",
     u"day,n\n03/04/2020,1\n14/04/2020,22\n15/04/2020,3\n",
     {},
     survivor(u",", 0, 2, 4, "dates")},
    {"ADateIsNotSplitAtItsBlanks",
     u"day;n\n4 Jan 2020;5\n11 Feb 2020;66\n9 Mar 2020;7\n",
     {},
     survivor(u";", 0, 2, 4, "dates")},
    // The semicolon finds 2, 2, 1, 2, 2 fields, the bar 2 in each line: 0.2 against a tolerance of
    // five thousandths.
    {"RegularityBeforePriors",
     u"a;b|c\n1;2|3\n4|5\n6;7|8\n9;0|1\n",
     {},
     survivor(u"|", 0, 2, 5, "variation")},
    // Two numbers and a text are worth 7, two texts 2.
    {"ColumnClassesBeforePriors",
     u"a|b|c,d\n1|2|3,x\n4|5|6,y\n",
     {},
     survivor(u"|", 0, 3, 3, "class_value")},
    // The comma has one field in the first line: a header line. The bar has none.
    {"FewerHeaderLinesBeforePriors",
     u"a|b\n1,2|3\n4,5|6\n7,8|9\n2,3|4\n",
     {},
     survivor(u"|", 0, 2, 5, "header_lines")},
    // Worth 4 each: text and number for the bar; number, empty and text for the comma.
    {"FewerEmptyColumnsBeforePriors",
     u"a,b,c|d\n1,,x|7\n2,,y|8\n",
     {},
     survivor(u"|", 0, 2, 3, "non_empty")},
    {"PriorsLast", u"a;b,c\n1;2,3\n4;5,6\n", {}, survivor(u",", 0, 2, 3, "priors_rank")},
    // The comma has one header line, the semicolon none, but the number is given: both have 1.
    {"GivenHeaderLinesLeaveItToThePriors", u"a;b\n1,2;3\n4,5;6\n7,8;9\n2,3;4\n", header_lines(1),
     survivor(u",", 1, 2, 5, "priors_rank")},
    // 3 against 3.5
    {"SpaceBeforeSpaceAligned", u"ab c\nd e\nf g\n", {}, survivor(u" ", 0, 2, 3, "priors_rank")},
    // The single space finds 2, 3, 2, 2, 2 fields and makes the first two lines header lines. The
    // aligned candidate needs none.
    {"RaggedBlanksAreAligned",
     u"a b\nc  d\ne f\ng h\ni j\n",
     {},
     {Strategy::kSpaceAligned,
      u"",
      {},
      0,
      2,
      5,
      SelectionEnd::single_survivor,
      "reduce_by_header_lines"}},
    // The single space finds 3, 2, 5, 4 fields: median 3, found last in the first line.
    {"VeryRaggedBlanksAreNothingElse",
     u"a  b\nc d\ne    f\ng   h\n",
     {},
     {Strategy::kSpaceAligned, u"", {}, 0, 2, 4, SelectionEnd::only_candidate, ""}},
    // Two perfectly regular candidates with two texts each: cut before code unit 11 and at the
    // comma. Fixed columns have no rank at all.
    {"FixedWidthHasNoPriors",
     u"Anna        ,ab\nBartholomew ,cd\nCid         ,ef\nDan Xu      ,gh\nEve         ,ij\n",
     {},
     survivor(u",", 0, 2, 5, "priors_rank")},
    // The same with numbers: after a comma they are numbers; with the comma before them they are
    // text.
    {"FixedWidthAgainstNumbers",
     u"Anna        ,12\nBartholomew ,34\nCid         ,56\nDan Xu      ,78\nEve         ,90\n",
     {},
     survivor(u",", 0, 2, 5, "class_value")},
    // A bar in each name makes two texts, but the name as a whole and a number are worth more. The
    // single space finds 7, 2, 10, 7, 10 fields, which deviate too much.
    {"FixedWidthWins",
     u"Anna|x      12\nBarthol|mew 34\nC|d         56\nDan X|u     78\nE|e         90\n",
     {},
     {Strategy::kFixedWidth,
      u"",
      {11, 3},
      0,
      2,
      5,
      SelectionEnd::single_survivor,
      "reduce_by_class_value"}},

    // -- header lines ---------------------------------------------------------------------------

    // Fields 1, 2, 2, 2, 2.
    {"ATitleIsAHeaderLine", u"title\na,b\n1,2\n3,4\n5,6\n", {}, only(u",", 1, 2, 5)},
    {"AGivenHeaderLine", u"x,y\n1,2\n3,4\n", header_lines(1), only(u",", 1, 2, 3)},
    {"GivenHeaderLinesAddToTheBudget", u"x,y\n1,2\n3,4\n5,6\n7,8\n",
     [] {
       Given given = header_lines(2);
       given.budget = 2;
       return given;
     }(),
     // The line reader has two lines of its own and inspects the second.
     only(u",", 2, 2, 4)},
    // No data line is left: the deviations after the header lines are not measured.
    {"AsManyHeaderLinesAsLines", u"a b\nc d\n", header_lines(2), line_reader(2)},
    {"AsManyHeaderLinesAsDelimitedLines", u"a,b\nc,d\n", header_lines(2), line_reader(2)},
    // One more: the mean over less than nothing is zero, and no column is inspected.
    {"MoreHeaderLinesThanLines", u"a,b\nc,d\n", header_lines(3), only(u",", 3, 1, 2)},
    {"MoreHeaderLinesThanAlignedLines", u"a b\nc d\n", header_lines(3),
     survivor(u" ", 3, 1, 2, "priors_rank")},
    {"AHugeNumberOfHeaderLines", u"a,b\n1,2\n3,4\n", header_lines(1000000000000),
     only(u",", 1000000000000, 1, 3)},
    {"TheHugestNumberOfHeaderLines", u"a,b\n1,2\n3,4\n", header_lines(kUnknown - 1),
     only(u",", kUnknown - 1, 1, 3)},
    {"TheHugestNumberOfHeaderLinesAndAnUnlimitedBudget", u"a,b\n1,2\n3,4\n",
     [] {
       Given given = header_lines(kUnknown - 1);
       given.budget = kUnknown;
       return given;
     }(),
     only(u",", kUnknown - 1, 1, 3)},
    // Given, but not known: the number is still derived from the deviations.
    {"NotKnownGivenOnPurpose", u"a,b\n1,2\n3,4\n", header_lines(kUnknown), only(u",", 0, 2, 3)},
    {"NotKnownGivenOnPurposeWithATitle", u"title\na,b\n1,2\n3,4\n5,6\n", header_lines(kUnknown),
     only(u",", 1, 2, 5)},
    {"NotKnownGivenOnPurposeWithBlanks", u"ab c\nd e\nf g\n", header_lines(kUnknown),
     survivor(u" ", 0, 2, 3, "priors_rank")},
    {"NotKnownGivenOnPurposeForWords", u"abc\ndef\n", header_lines(kUnknown), line_reader(2)},
    {"NotKnownGivenOnPurposeForNothing", u"", header_lines(kUnknown), nothing_sampled()},

    // -- budgets --------------------------------------------------------------------------------

    {"NoBudgetSamplesNothing", u"a,b\n1,2\n3,4\n", budget(0), nothing_sampled()},
    {"NoBudgetSamplesNothingOfGivenHeaderLines", u"a,b\n1,2\n3,4\n",
     [] {
       Given given = header_lines(2);
       given.budget = 0;
       return given;
     }(),
     nothing_sampled()},
    {"ABudgetOfOneLineMeasuresNothing", u"a,b\n1,2\n3,4\n", budget(1), line_reader(1)},
    {"ABudgetOfTwoLines", u"a,b\n1,2\n3,4\n", budget(2), only(u",", 0, 2, 2)},
    {"AnUnlimitedBudget", u"a,b\n1,2\n3,4\n", budget(kUnknown), only(u",", 0, 2, 3)},

    // -- blank lines ----------------------------------------------------------------------------

    {"OnlyLineEnds", u"\n\n\n", {}, line_reader(3)},
    {"OnlyLineEndsOfTwoUnits", u"\r\n\r\n", {}, line_reader(2)},
    {"BlankLinesOfOneLength", u"   \n   \n   \n", {}, line_reader(3)},
    {"BlankLinesOfManyLengths", u" \n\t\t\n   ", {}, line_reader(3)},
    // The white space does not include the space: the lines are four empty fields each. Without
    // their leading blanks they have no length, so no columns are made.
    {"BlankLinesThatAreNotWhiteSpace", u"   \n   \n   \n", whitespace(u""), only(u" ", 0, 4, 3)},
    {"BlankLinesThatAreNotWhiteSpaceBelowGivenHeaderLines", u"   \n   \n   \n",
     [] {
       Given given = whitespace(u"");
       given.header_lines_given = true;
       given.header_lines = 1;
       return given;
     }(),
     only(u" ", 1, 4, 3)},
    {"BlankLinesBetweenTheOthers", u"\na,b\n\n1,2\n3,4\n\n", {}, only(u",", 1, 2, 6)},

    // -- lines ----------------------------------------------------------------------------------

    {"CarriageReturns", u"a,b\r1,2\r3,4", {}, only(u",", 0, 2, 3)},
    {"LineEndsInQuotes", u"a,b\n\"x\ny\",1\n2,3\n4,5\n", {}, only(u",", 0, 2, 4)},
    {"TheTextEndsAtAnEndMark", u"a,b\n1,2\n3,4\n\uffff5|6\n7|8\n", {}, only(u",", 0, 2, 3)},
};

class PickStrategy : public testing::TestWithParam<PickCase> {
 protected:
  PickStrategy() : options_(options_of(GetParam().given)), text_(GetParam().text) {}

  std::shared_ptr<Strategy> pick() const {
    return StrategySelector(options_).pick_strategy(text_.field(), GetParam().given.budget);
  }
  std::shared_ptr<Strategy> pick(SelectionTrace& trace) const {
    return StrategySelector(options_).pick_strategy(text_.field(), GetParam().given.budget, trace);
  }

  parser::options options_;
  ExactText text_;
};

TEST_P(PickStrategy, GivesTheExpectedResultForTheExpectedReason) {
  SelectionTrace trace;
  const auto winner = pick(trace);
  ASSERT_NE(winner, nullptr);
  EXPECT_EQ(describe(answer_of(*winner, trace)), describe(GetParam().answer)) << describe(trace);
}

TEST_P(PickStrategy, GivesTheSameWithoutATrace) {
  SelectionTrace trace;
  EXPECT_EQ(describe(*pick()), describe(*pick(trace)));
}

TEST_P(PickStrategy, ReportsHowItEndedWithoutATrace) {
  SelectionTrace trace;
  const auto traced = pick(trace);
  SelectionOutcome outcome{SelectionEnd::given, "left from before"};
  const auto winner =
      StrategySelector(options_).pick_strategy(text_.field(), GetParam().given.budget, outcome);
  EXPECT_EQ(describe(*winner), describe(*traced));
  EXPECT_EQ(outcome.end, trace.end);
  const bool is_decided = trace.end == SelectionEnd::single_survivor;
  EXPECT_EQ(outcome.decided_by, is_decided ? trace.filters.back().name : "");
}

TEST_P(PickStrategy, GivesTheSameTwiceAndAtAnotherAddress) {
  SelectionTrace first;
  SelectionTrace second;
  const std::string winner = describe(*pick(first));
  EXPECT_EQ(describe(*pick(second)), winner);
  EXPECT_EQ(describe(second), describe(first));

  // A copy of the text at an unaligned position in a larger block.
  const ExactText shifted(u"x" + GetParam().text);
  const Field copy(shifted.data() + 1, shifted.size() - 1);
  SelectionTrace third;
  EXPECT_EQ(
      describe(*StrategySelector(options_).pick_strategy(copy, GetParam().given.budget, third)),
      winner);
  EXPECT_EQ(describe(third), describe(first));
}

TEST_P(PickStrategy, ValuesEveryCandidate) {
  // A candidate that was not scored would still have 0 as its number of lines.
  SelectionTrace trace;
  const auto winner = pick(trace);
  for (const auto& candidate : trace.candidates) EXPECT_GT(candidate.valuation.num_lines, 0U);
  const bool fallback =
      trace.end == SelectionEnd::whole_line_dates || trace.end == SelectionEnd::unresolved_tie;
  EXPECT_EQ(winner->num_variables() == -1, fallback);
}

TEST_P(PickStrategy, TracesADecreasingNumberOfSurvivors) {
  SelectionTrace trace;
  pick(trace);
  std::vector<std::size_t> before;
  for (const auto& candidate : trace.candidates) {
    if (candidate.fate == CandidateFate::kept) before.push_back(before.size());
  }
  for (const auto& filter : trace.filters) {
    EXPECT_GT(before.size(), 1U) << "a filter ran after the decision: " << filter.name;
    EXPECT_FALSE(filter.survivors.empty());
    std::size_t position = 0;
    for (const std::size_t index : filter.survivors) {
      while (position < before.size() && before[position] != index) ++position;
      EXPECT_LT(position, before.size()) << index << " is new or out of order";
    }
    before = filter.survivors;
  }
  if (trace.end == SelectionEnd::only_candidate) {
    EXPECT_EQ(before.size(), 1U);
  }
  if (trace.end == SelectionEnd::single_survivor) {
    EXPECT_EQ(before.size(), 1U);
  }
  if (trace.end == SelectionEnd::unresolved_tie) {
    EXPECT_GT(before.size(), 1U);
  }
}

TEST_P(PickStrategy, DoesNotChangeTheSelector) {
  options_.delimiters = {u"::", u"\t"};
  const StrategySelector selector(options_);
  selector.pick_strategy(text_.field(), GetParam().given.budget);
  EXPECT_EQ(selector.delimiters(), (std::vector<std::u16string>{u"::", u"\t"}));
  EXPECT_EQ(selector.header_lines(), GetParam().given.header_lines);
}

INSTANTIATE_TEST_SUITE_P(Table, PickStrategy, testing::ValuesIn(kPickCases), ByRule());

// -- the selector -------------------------------------------------------------------------------

TEST(StrategySelectorCopies, KeepTheInitialValuesOfTheOptions) {
  parser::options options;
  options.delimiters = {u";"};
  options.header_lines = 4;
  const StrategySelector selector(options);
  options.delimiters = {u"|"};
  options.header_lines = 5;
  EXPECT_EQ(selector.delimiters(), (std::vector<std::u16string>{u";"}));
  EXPECT_EQ(selector.header_lines(), 4UL);

  const StrategySelector copy(selector);
  EXPECT_EQ(copy.delimiters(), selector.delimiters());
  EXPECT_EQ(copy.header_lines(), 4UL);

  StrategySelector assigned(options);
  assigned = selector;
  EXPECT_EQ(assigned.delimiters(), selector.delimiters());
  EXPECT_EQ(assigned.header_lines(), 4UL);
}

TEST(StrategySelectorCopies, SurviveSelfAssignment) {
  parser::options options;
  options.delimiters = {u";", u"a delimiter that is longer than a string keeps inside"};
  options.header_lines = 4;
  StrategySelector selector(options);
  const StrategySelector& same = selector;
  selector = same;
  EXPECT_EQ(selector.delimiters(), options.delimiters);
  EXPECT_EQ(selector.header_lines(), 4UL);
}

TEST(StrategySelectorCopies, PickTheSame) {
  const parser::options options = options_of(variables(2));
  const ExactText text(u"a,b,c|d\n1,2,3|4\n5,6,7|8\n");
  const StrategySelector selector(options);
  const StrategySelector copy(selector);
  EXPECT_EQ(delimiter_of(*copy.pick_strategy(text.field(), kBudget)), u"|");
}

TEST(StrategySelectorWinner, OutlivesTheSelectorAndIsSampledAndValued) {
  const parser::options options;
  const ExactText text(u"title\na,b\n1,2\n3,4\n5,6\n");
  std::shared_ptr<Strategy> winner;
  {
    const StrategySelector selector(options);
    winner = selector.pick_strategy(text.field(), kBudget);
  }
  EXPECT_EQ(sampled_lines_of(*winner),
            (std::vector<std::u16string>{u"title", u"a,b", u"1,2", u"3,4", u"5,6"}));
  EXPECT_EQ(winner->valuation().num_lines, 5U);
  EXPECT_EQ(winner->valuation().numeric_columns, 2U);
  EXPECT_EQ(winner->get_fields_from_lines().counts, (std::vector<std::size_t>{1, 3, 5, 7, 9}));
  EXPECT_EQ(winner.use_count(), 1);
}

TEST(StrategySelectorWinner, SkipsComments) {
  parser::options options;
  options.comment_style = {u"%"};
  const ExactText text(u"% a|b|c\na,b\n1,2\n% 1|2|3\n3,4\n");
  const auto winner = StrategySelector(options).pick_strategy(text.field(), kBudget);
  EXPECT_EQ(delimiter_of(*winner), u",");
  EXPECT_EQ(sampled_lines_of(*winner), (std::vector<std::u16string>{u"a,b", u"1,2", u"3,4"}));
}

// -- the single-column fallback -----------------------------------------------------------------

class SingleColumn : public testing::TestWithParam<const char16_t*> {};

// Lines that are dates, and a tie: everything except the text is destroyed before the strategy is
// used.
TEST_P(SingleColumn, OutlivesTheSelectorAndTheCallersRecord) {
  const ExactText text(GetParam());
  auto options = std::make_unique<parser::options>();
  options->line_endings = {u";"};
  options->comment_style = {u"%"};
  auto selector = std::make_unique<StrategySelector>(*options);
  const auto winner = selector->pick_strategy(text.field(), kBudget);
  selector.reset();
  options.reset();

  // The copy of the record keeps the line endings and the comment marker of the caller.
  EXPECT_EQ(winner->lines().size(), 3U);
  EXPECT_EQ(winner->populate_fields(text.field(), kBudget).size(), 3U);
  EXPECT_EQ(winner->populate_fields(text.field(), 2).size(), 2U);
  EXPECT_EQ(winner->header_lines(), 0UL);
  EXPECT_EQ(winner->num_variables(), -1);
  EXPECT_EQ(winner->valuation().num_variables, 1U);
  EXPECT_EQ(winner->valuation().typed_columns, 1U);
  EXPECT_EQ(winner->header_lines(), 0UL);
}
INSTANTIATE_TEST_SUITE_P(Texts, SingleColumn,
                         testing::Values(u"2020-01-01;% no date;2020-01-02;2020-01-03",
                                         u"a|b#c;% no line;1|2#3;4|5#6"),
                         [](const testing::TestParamInfo<const char16_t*>& text) {
                           return text.index == 0 ? "LinesThatAreDates" : "ATie";
                         });

TEST(SingleColumnRecord, IsACopy) {
  parser::options options;
  options.delimiters = {u";", u"|"};
  options.num_variables = 7;
  const ExactText text(u"2020-01-01\n2020-01-02\n");
  const auto winner = StrategySelector(options).pick_strategy(text.field(), kBudget);
  EXPECT_EQ(delimiter_of(*winner), u",");
  EXPECT_EQ(options.delimiters, (std::vector<std::u16string>{u";", u"|"}));
  EXPECT_EQ(options.num_variables, 7U);
  EXPECT_EQ(options.header_lines, kUnknown);
  EXPECT_TRUE(options.detect_delimiters);
  EXPECT_TRUE(options.detect_header_lines);
}

// All values of the returned record are final.
TEST(SingleColumnRecord, DescribesTheStrategy) {
  struct Open : Strategy {
    using Strategy::options_;
  };
  const parser::options options;
  const ExactText text(u"2020-01-01\n2020-01-02\n");
  const auto winner = StrategySelector(options).pick_strategy(text.field(), kBudget);
  const parser::options& record = *((*winner).*(&Open::options_));
  EXPECT_EQ(record.delimiters, std::vector<std::u16string>{u","});
  EXPECT_FALSE(record.detect_delimiters);
  EXPECT_EQ(record.header_lines, 0U);
  EXPECT_FALSE(record.detect_header_lines);
  EXPECT_EQ(record.num_variables, 1U);
}

TEST(SingleColumnRecord, EachStrategyHasItsOwn) {
  const parser::options options;
  const ExactText text(u"2020-01-01\n2020-01-02\n");
  const StrategySelector selector(options);
  auto first = selector.pick_strategy(text.field(), kBudget);
  const auto second = selector.pick_strategy(text.field(), kBudget);
  first.reset();
  EXPECT_EQ(second->populate_fields(text.field(), kBudget).size(), 2U);
}

// -- the trace ----------------------------------------------------------------------------------

std::vector<std::string> names_of_filters(const SelectionTrace& trace) {
  std::vector<std::string> names;
  for (const auto& filter : trace.filters) names.push_back(filter.name);
  return names;
}

std::vector<std::string> all_filters() {
  return {"reduce_by_dates",        "reduce_by_variation", "reduce_by_class_value",
          "reduce_by_header_lines", "reduce_by_non_empty", "reduce_by_priors_rank"};
}

SelectionTrace trace_of(const std::u16string& text, const Given& given) {
  const parser::options options = options_of(given);
  const ExactText exact(text);
  SelectionTrace trace;
  StrategySelector(options).pick_strategy(exact.field(), given.budget, trace);
  return trace;
}

TEST(PickStrategyTrace, RecordsEveryStep) {
  // Bar, comma and hash split each line in two. The exclamation mark is only in the last line, so
  // all lines before it become header lines.
  const SelectionTrace trace = trace_of(u"a|b,c#d\n1|2,3#4\n5|6,7#8\n9|0,1#2!\n", {});
  EXPECT_EQ(trace.candidate_chars, u"|,#!");

  ASSERT_EQ(trace.candidates.size(), 4U);
  for (std::size_t i = 0; i < 3; ++i) {
    const auto& candidate = trace.candidates[i];
    const std::string delimiter(1, "|,#"[i]);
    EXPECT_EQ(candidate.dialect, (Dialect{LayoutMode::delimited, {delimiter}, {}}));
    EXPECT_EQ(candidate.header_lines, 0U);
    EXPECT_EQ(candidate.fate, CandidateFate::kept);
    EXPECT_EQ(candidate.valuation.num_lines, 4U);
    EXPECT_EQ(candidate.valuation.data_variation, 0.0);
    EXPECT_EQ(candidate.valuation.num_variables, 2U);
    EXPECT_EQ(candidate.valuation.typed_columns, 2U);
  }
  // A number and "0,1#2!"; "9|0" and "1#2!"; "9|0,1" and "2!".
  EXPECT_EQ(trace.candidates[0].valuation.numeric_columns, 1U);
  EXPECT_EQ(trace.candidates[1].valuation.numeric_columns, 0U);
  EXPECT_EQ(trace.candidates[2].valuation.numeric_columns, 0U);
  EXPECT_EQ(trace.candidates[3].dialect, (Dialect{LayoutMode::delimited, {"!"}, {}}));
  EXPECT_EQ(trace.candidates[3].fate, CandidateFate::kept);
  EXPECT_EQ(trace.candidates[3].header_lines, 3U);
  EXPECT_EQ(trace.candidates[3].valuation.total_variation, 0.75);
  EXPECT_EQ(trace.candidates[3].valuation.data_variation, 0.0);
  EXPECT_EQ(trace.candidates[3].valuation.typed_columns, 0U);

  ASSERT_EQ(names_of_filters(trace),
            (std::vector<std::string>{"reduce_by_dates", "reduce_by_variation",
                                      "reduce_by_class_value"}));
  EXPECT_EQ(trace.filters[0].survivors, (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(trace.filters[1].survivors, (std::vector<std::size_t>{0, 1, 2, 3}));
  EXPECT_EQ(trace.filters[2].survivors, (std::vector<std::size_t>{0}));
  EXPECT_EQ(trace.end, SelectionEnd::single_survivor);
}

TEST(PickStrategyTrace, CountsTheKeptCandidatesOnly) {
  // The hash finds 3, 2, 5, 4 fields: median 3, found last in the first line, so nothing is
  // measured. The bar finds two texts, the comma a text and a number.
  const SelectionTrace trace = trace_of(u"##|a,b\n#|1,2\n####|3,4\n###|5,6\n", {});
  EXPECT_EQ(trace.candidate_chars, u"#|,");
  ASSERT_EQ(trace.candidates.size(), 3U);
  EXPECT_EQ(trace.candidates[0].fate, CandidateFate::irregular);
  EXPECT_EQ(trace.candidates[1].fate, CandidateFate::kept);
  EXPECT_EQ(trace.candidates[2].fate, CandidateFate::kept);
  ASSERT_EQ(trace.filters.size(), 3U);
  EXPECT_EQ(trace.filters[0].survivors, (std::vector<std::size_t>{0, 1}));
  EXPECT_EQ(trace.filters[2].survivors, (std::vector<std::size_t>{1}));
}

TEST(PickStrategyTrace, NamesAllFiltersInOrder) {
  const SelectionTrace trace = trace_of(u"a|b#c\n1|2#3\n4|5#6\n", {});
  EXPECT_EQ(names_of_filters(trace), all_filters());
  for (const auto& filter : trace.filters) {
    EXPECT_EQ(filter.survivors, (std::vector<std::size_t>{0, 1})) << filter.name;
  }
  EXPECT_EQ(trace.end, SelectionEnd::unresolved_tie);
}

TEST(PickStrategyTrace, NamesTheFilterForAGivenNumberOfVariablesFirst) {
  std::vector<std::string> names = all_filters();
  names.insert(names.begin(), "reduce_by_numvariables");
  EXPECT_EQ(names_of_filters(trace_of(u"a|b#c\n1|2#3\n4|5#6\n", variables(2))), names);
}

TEST(PickStrategyTrace, LosesItsPreviousContents) {
  const parser::options options;
  const ExactText table(u"a|b,c\n1|2,3\n4|5,6\n");
  const StrategySelector selector(options);
  SelectionTrace trace;
  selector.pick_strategy(table.field(), kBudget, trace);
  EXPECT_FALSE(trace.candidates.empty());
  EXPECT_FALSE(trace.filters.empty());

  const SelectionTrace dates = trace_of(u"2020-01-01\n2020-01-02\n", {});
  const ExactText date_lines(u"2020-01-01\n2020-01-02\n");
  selector.pick_strategy(date_lines.field(), kBudget, trace);
  EXPECT_EQ(describe(trace), describe(dates));
  EXPECT_EQ(trace.candidate_chars, u"");
  EXPECT_TRUE(trace.candidates.empty());
  EXPECT_TRUE(trace.filters.empty());
  EXPECT_EQ(trace.end, SelectionEnd::whole_line_dates);

  selector.pick_strategy(ExactText(u"").field(), kBudget, trace);
  EXPECT_EQ(trace.end, SelectionEnd::empty_sample);
}

TEST(PickStrategyTrace, KeepsTheRefusedOnesWhenNoCandidateIsLeft) {
  const SelectionTrace trace = trace_of(u"1,2\n", {});
  EXPECT_EQ(trace.candidate_chars, u",");
  ASSERT_EQ(trace.candidates.size(), 1U);
  EXPECT_EQ(trace.candidates[0].fate, CandidateFate::irregular);
  EXPECT_TRUE(trace.filters.empty());
  EXPECT_EQ(trace.end, SelectionEnd::no_candidate);
}

TEST(PickStrategyTrace, ShowsTheAlignedCandidateAfterTheFixedWidthOne) {
  const SelectionTrace trace = trace_of(kNames, {});
  ASSERT_EQ(trace.candidates.size(), 3U);
  EXPECT_EQ(trace.candidates[0].dialect.mode, LayoutMode::space_aligned);
  EXPECT_EQ(trace.candidates[0].fate, CandidateFate::made_fixed_width);
  EXPECT_EQ(trace.candidates[1].dialect, (Dialect{LayoutMode::fixed_width, {}, {11, 3}}));
  EXPECT_EQ(trace.candidates[1].fate, CandidateFate::kept);
  EXPECT_EQ(trace.candidates[1].valuation.numeric_columns, 1U);
  EXPECT_EQ(trace.candidates[2].dialect.mode, LayoutMode::delimited);
  EXPECT_EQ(trace.candidates[2].fate, CandidateFate::irregular);
}

// -- texts that are not tables ------------------------------------------------------------------

constexpr std::size_t kManyUnits = 20000;

// The 56 candidate characters, each between two letters.
std::u16string line_of_all_candidates() {
  std::u16string line = u"a";
  for (char16_t unit = 0; unit < 128; ++unit) {
    const bool word = (unit >= u'a' && unit <= u'z') || (unit >= u'A' && unit <= u'Z') ||
                      (unit >= u'0' && unit <= u'9');
    if (word || std::u16string_view(u"@-.\"$'+\r\n\x1A").find(unit) != std::u16string_view::npos) {
      continue;
    }
    line.push_back(unit);
    line.push_back(u'a');
  }
  line.push_back(u'\n');
  return line;
}

Answer all_candidates_answer() {
  // The aligned candidate is separated by the space and the tab: three texts are worth more than
  // the two that each delimiter finds. All lines are equal and of the same length, so it stays
  // aligned.
  return {Strategy::kSpaceAligned, u"", {}, 0, 3, kManyUnits / 114, SelectionEnd::single_survivor,
          "reduce_by_class_value"};
}

const PickCase kHostileCases[] = {
    {"OneLineOfOneWord", std::u16string(kManyUnits, u'x'), {}, line_reader(1)},
    {"OneLineOfDigits", std::u16string(kManyUnits, u'7'), {}, line_reader(1)},
    // A single line measures nothing, whatever its number of fields.
    {"OneLineOfFields", times(kManyUnits / 2, u"1,"), {}, line_reader(1)},
    {"OneLineOfCommas", std::u16string(kManyUnits, u','), {}, line_reader(1)},
    {"OneLineOfColons", std::u16string(kManyUnits, u':'), {}, line_reader(1)},
    {"OneLineOfBlanksAndWords", times(kManyUnits / 2, u" x"), {}, line_reader(1)},
    // A quote is not a candidate.
    {"OnlyQuotes", std::u16string(kManyUnits, u'"'), {}, line_reader(1)},
    {"OnlyAnOddNumberOfQuotes", std::u16string(kManyUnits - 1, u'"'), {}, line_reader(1)},
    {"OnlyQuotesInLines", times(kManyUnits / 4, u"\"\"\"\n"), {}, line_reader(kBudget)},
    // The comma sees one field in one line, the line reader as many lines as its budget allows.
    {"AnUnterminatedQuoteAtTheStart",
     u"\"" + times(kManyUnits / 4, u"1,2\n"),
     {},
     line_reader(kBudget)},
    // Without a budget the last line is read as well.
    {"AnUnterminatedQuoteAtTheStartAndNoBudget", u"\"" + times(kManyUnits / 4, u"1,2\n"),
     budget(kUnknown), line_reader(kManyUnits / 4)},
    {"AllCandidateCharacters", times(kManyUnits / 114, line_of_all_candidates()), budget(kUnknown),
     all_candidates_answer()},
    // Empty lines do not use up the budget.
    {"OnlyLineEnds", std::u16string(kManyUnits, u'\n'), {}, line_reader(kManyUnits)},
    {"OnlyCarriageReturns", std::u16string(kManyUnits, u'\r'), {}, line_reader(kManyUnits)},
    {"OnlyLineEndsOfTwoUnits", times(kManyUnits / 2, u"\r\n"), {}, line_reader(kManyUnits / 2)},
    {"OnlyBlanks", std::u16string(kManyUnits, u' '), {}, line_reader(1)},
    {"OnlyTabs", std::u16string(kManyUnits, u'\t'), {}, line_reader(1)},
    {"OnlyBlanksThatAreNotWhiteSpace", std::u16string(kManyUnits, u' '), whitespace(u""),
     line_reader(1)},
    {"OnlyNulls", std::u16string(kManyUnits, u'\0'), {}, line_reader(1)},
    {"OnlyEndMarks", std::u16string(kManyUnits, u'\uffff'), {}, nothing_sampled()},
    {"OnlyUnitsBeyondAscii", std::u16string(kManyUnits, u'\u00e9'), {}, line_reader(1)},
};

class PickStrategyOfHostileText : public testing::TestWithParam<PickCase> {};
TEST_P(PickStrategyOfHostileText, EndsWithAConsistentResult) {
  const PickCase& row = GetParam();
  const parser::options options = options_of(row.given);
  const ExactText text(row.text);
  SelectionTrace trace;
  const auto winner =
      StrategySelector(options).pick_strategy(text.field(), row.given.budget, trace);
  EXPECT_EQ(describe(answer_of(*winner, trace)), describe(row.answer));
}
INSTANTIATE_TEST_SUITE_P(Table, PickStrategyOfHostileText, testing::ValuesIn(kHostileCases),
                         ByRule());

}  // namespace
}  // namespace textio
