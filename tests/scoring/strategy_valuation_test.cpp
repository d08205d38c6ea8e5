#include <vltextstream/scoring/strategy_valuation.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"
#include "support/unit_strategy.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of_counts;
using testing_support::UnitStrategy;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr unsigned long kManyLines = 1000;

using Series = std::vector<std::size_t>;

// --- the record ----------------------------------------------------------------------------------

static_assert(std::is_same_v<decltype(StrategyValuation::total_variation), double>);
static_assert(std::is_same_v<decltype(StrategyValuation::data_variation), double>);
static_assert(std::is_same_v<decltype(StrategyValuation::num_lines), std::uint64_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::modal_field_count), std::int32_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::num_variables), std::uint64_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::typed_columns), std::uint32_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::date_columns), std::uint32_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::numeric_columns), std::uint32_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::datetime_columns), std::uint32_t>);
static_assert(std::is_same_v<decltype(StrategyValuation::priors_rank), double>);
static_assert(std::is_trivially_copyable_v<StrategyValuation>);

TEST(StrategyValuationRecord, StartsWithNothingMeasured) {
  const StrategyValuation score;
  EXPECT_EQ(score.total_variation, kInfinity);
  EXPECT_EQ(score.data_variation, kInfinity);
  EXPECT_EQ(score.num_lines, 0u);
  EXPECT_EQ(score.modal_field_count, 1);
  EXPECT_EQ(score.num_variables, 1u);
  EXPECT_EQ(score.typed_columns, 0u);
  EXPECT_EQ(score.date_columns, 0u);
  EXPECT_EQ(score.numeric_columns, 0u);
  EXPECT_EQ(score.datetime_columns, 0u);
  EXPECT_EQ(score.priors_rank, kInfinity);
}

TEST(StrategyValuationRecord, KeepsTheOrderOfItsMembers) {
  const StrategyValuation score{0.5, 1.5, 2, 3, 4, 5, 6, 7, 8, 9.5};
  EXPECT_EQ(score.total_variation, 0.5);
  EXPECT_EQ(score.data_variation, 1.5);
  EXPECT_EQ(score.num_lines, 2u);
  EXPECT_EQ(score.modal_field_count, 3);
  EXPECT_EQ(score.num_variables, 4u);
  EXPECT_EQ(score.typed_columns, 5u);
  EXPECT_EQ(score.date_columns, 6u);
  EXPECT_EQ(score.numeric_columns, 7u);
  EXPECT_EQ(score.datetime_columns, 8u);
  EXPECT_EQ(score.priors_rank, 9.5);
}

TEST(StrategyValuationRecord, CopiesAllMembers) {
  const StrategyValuation score{0.5, 1.5, 2, 3, 4, 5, 6, 7, 8, 9.5};
  const StrategyValuation made(score);
  StrategyValuation assigned;
  assigned = score;
  for (const StrategyValuation& copy : {made, assigned}) {
    EXPECT_EQ(copy.total_variation, 0.5);
    EXPECT_EQ(copy.data_variation, 1.5);
    EXPECT_EQ(copy.num_lines, 2u);
    EXPECT_EQ(copy.modal_field_count, 3);
    EXPECT_EQ(copy.num_variables, 4u);
    EXPECT_EQ(copy.typed_columns, 5u);
    EXPECT_EQ(copy.date_columns, 6u);
    EXPECT_EQ(copy.numeric_columns, 7u);
    EXPECT_EQ(copy.datetime_columns, 8u);
    EXPECT_EQ(copy.priors_rank, 9.5);
  }
}

// --- series of field counts ----------------------------------------------------------------------

struct SeriesCase {
  const char* rule;
  Series counts;  // the fields are "x", so every inspected column is text
  std::optional<std::size_t> given;
  double total_variation;
  double data_variation;  // its sign matters
  std::int32_t modal_field_count;
  std::size_t header_lines;
  std::uint64_t num_variables;
  std::uint32_t typed_columns;
};
std::ostream& operator<<(std::ostream& out, const SeriesCase& row) { return out << row.rule; }

const auto kDetect = std::nullopt;
const double kInf = kInfinity;

// The comments show the deviations d. For the detection of header lines, C, Q and S are the running
// sum, the sum times the mean, and the smoothed series.
const SeriesCase kSeriesCases[] = {
    // header lines detected: no line has a second field
    {"NoLines", {}, kDetect, kInf, kInf, 1, 0, 1, 0},
    {"OneLineOfOneField", {1}, kDetect, kInf, kInf, 1, 0, 1, 0},
    {"OneFieldOnEveryLineIsNotInspected", {1, 1, 1}, kDetect, kInf, kInf, 1, 0, 1, 0},
    {"EmptyLinesAlone", {0, 0, 0}, kDetect, kInf, kInf, 1, 0, 1, 0},
    // the first count that is not 1 is the empty line; line 2 is inspected
    {"OneFieldAndAnEmptyLine", {1, 0, 1}, kDetect, kInf, kInf, 1, 1, 1, 1},
    {"OneFieldAndAnEmptyLineAtTheEnd", {1, 1, 0}, kDetect, kInf, kInf, 1, 2, 1, 0},

    // the plain cases
    // d 2 2 0 0 0; only zeros after the first line with more fields, so the data starts with that
    // one
    {"TwoTitleLines", {1, 1, 3, 3, 3}, kDetect, 0.8, 0.0, 3, 2, 3, 3},
    // d 0 0 0 0
    {"EmptyLineInTheData", {3, 3, 3, 0, 3}, kDetect, 0.0, 0.0, 3, 0, 3, 3},
    {"EveryLineAgrees", {2, 2, 2}, kDetect, 0.0, 0.0, 2, 0, 2, 2},
    // d 0 0 0 0; the last line is not included
    {"ShortLineAtTheEnd", {3, 3, 3, 3, 1}, kDetect, 0.0, 0.0, 3, 0, 3, 3},
    // d 0 0 0; the last line is not included in the deviations, but counts for the variables
    {"LongLineAtTheEnd", {3, 3, 3, 5}, kDetect, 0.0, 0.0, 3, 0, 5, 5},
    // d 0 0 2 0 0; more than half zeros, so back to the first line
    {"ShortLineInTheData", {3, 3, 1, 3, 3}, kDetect, 0.4, 0.4, 3, 0, 3, 3},
    // d 2 3 0 0 0 0 0 0; Q 4 12.5 8.3; S -8.5 12.7
    {"TitleLinesWithDelimiters", {2, 1, 4, 4, 4, 4, 4, 4}, kDetect, 0.625, 0.0, 4, 2, 4, 4},
    // d 2 0 0 0 without the empty lines: one header line among the others, which is line 1; an
    // empty line follows it
    {"EmptyLinesAboveTheData", {0, 1, 0, 3, 3, 3}, kDetect, 0.5, 0.0, 3, 3, 3, 3},
    // d 2 2 0 0 0 0 0 0 without the empty line; Q 4 8 5.3; S -4 6.7: two header lines among the
    // others, which are the lines 0 and 2
    {"EmptyLineAmongLongHeaderLines", {5, 0, 5, 3, 3, 3, 3, 3, 3}, kDetect, 0.5, 0.0, 3, 3, 3, 3},
    // d 9 2 0 0 0 0 0 0; Q 81 60.5 40.3; S 20.5 -0.3: one header line. The line of one field after
    // it is skipped later, when the variation has already been computed.
    {"OneFieldAfterTheHeader", {12, 1, 3, 3, 3, 3, 3, 3}, kDetect, 1.375, 2.0 / 7.0, 3, 2, 3, 3},

    // few lines
    {"OneLine", {3}, kDetect, kInf, kInf, 3, 0, 1, 0},
    {"TwoLinesTheLaterAlone", {0, 4}, kDetect, kInf, kInf, 4, 1, 1, 0},
    // d 0; the second line has too few fields to be inspected
    {"TwoLinesTheFirstWithMore", {4, 1}, kDetect, kInf, kInf, 4, 0, 1, 0},
    // d 0, because 3 is the lower of the two; one position of the second line is inspected
    {"TwoLinesTheFirstWithFewer", {3, 9}, kDetect, kInf, kInf, 3, 0, 1, 1},
    // d 3 0: two entries that differ
    {"TitleAndOneLine", {1, 4}, kDetect, 1.5, 0.0, 4, 1, 4, 0},
    {"TitleEmptyLineAndOneLine", {1, 0, 4}, kDetect, 1.5, 0.0, 4, 2, 4, 0},
    {"TwoEqualLines", {4, 4}, kDetect, 0.0, 0.0, 4, 0, 4, 4},
    // d 3 3 0
    {"TwoTitleLinesAndOneLine", {1, 1, 4}, kDetect, 2.0, 0.0, 4, 2, 4, 0},

    // around eleven lines
    // d 0 0: the lines of one field come after the last modal one
    {"TwoOfTenLines", {4, 4, 1, 1, 1, 1, 1, 1, 1, 1}, kDetect, 0.0, 0.0, 4, 0, 4, 4},
    {"TwoOfElevenLines", {4, 4, 1, 1, 1, 1, 1, 1, 1, 1, 1}, kDetect, kInf, kInf, 1, 0, 1, 1},
    {"ThreeOfElevenLines", {4, 4, 4, 1, 1, 1, 1, 1, 1, 1, 1}, kDetect, 0.0, 0.0, 4, 0, 4, 4},
    {"ThreeOfTwelveLines", {4, 4, 4, 1, 1, 1, 1, 1, 1, 1, 1, 1}, kDetect, kInf, kInf, 1, 0, 1, 1},
    // d 3 nine times, 0 0; only the two lines from the first one with more fields on are counted
    {"NineTitleLines", {1, 1, 1, 1, 1, 1, 1, 1, 1, 4, 4}, kDetect, 27.0 / 11.0, 0.0, 4, 9, 4, 4},

    // a variation of more than 1 after the detected header discards the header
    // d 20 4 0 0 4 0 4 0; Q 400 288 192 144 156.8 130.7 146.3 128; S 112 -16 -48 -60.8 38.9 -41.7
    // 33.9: one header line with 12 / 7 after it
    {"VariationAboveOne", {30, 14, 10, 10, 14, 10, 14, 10}, kDetect, 4.0, 4.0, 10, 0, 30, 14},
    // d 20 4 0 0 3 0 0 0; five candidates, Q 400 288 192 144 145.8 121.5; S 112 -16 -48 -49.8 26.1:
    // one header line with 7 / 7 after it
    {"VariationOfExactlyOne", {30, 14, 10, 10, 13, 10, 10, 10}, kDetect, 3.375, 1.0, 10, 1, 14, 13},
    // d 2 2 6 0 6 0 6 0; the peak is at the last candidate, 7 of 8, which is too many: the first
    // line with more fields is the fallback and is kept
    {"VariationAboveOneFromTheFirstLine", {1, 1, 9, 3, 9, 3, 9, 3}, kDetect, 2.75, 3.0, 3, 2, 9, 9},

    // header lines given; d 2 2 0 0 0
    {"GivenNone", {1, 1, 3, 3, 3}, 0, 0.8, 0.8, 3, 0, 3, 3},
    {"GivenOne", {1, 1, 3, 3, 3}, 1, 0.8, 0.5, 3, 1, 3, 3},
    {"GivenTwo", {1, 1, 3, 3, 3}, 2, 0.8, 0.0, 3, 2, 3, 3},
    {"GivenAllButOne", {1, 1, 3, 3, 3}, 4, 0.8, 0.0, 3, 4, 3, 0},
    {"GivenAll", {1, 1, 3, 3, 3}, 5, 0.8, kInf, 3, 5, 1, 0},
    {"GivenMoreThanThereAre", {1, 1, 3, 3, 3}, 6, 0.8, -0.0, 3, 6, 1, 0},
    {"GivenMoreThanAnyFileHas", {1, 1, 3, 3, 3}, SIZE_MAX - 1, 0.8, -0.0, 3, SIZE_MAX - 1, 1, 0},
    // d 0 0 0
    {"GivenOneOfEqualLines", {3, 3, 3}, 1, 0.0, 0.0, 3, 1, 3, 3},
    // d 3 0 0 0; the empty line is not skipped
    {"GivenHeaderIsNotMoved", {1, 0, 4, 4, 4}, 1, 0.75, 0.0, 4, 1, 4, 4},
    // d as in VariationAboveOne
    {"GivenHeaderIsNotGivenUp",
     {30, 14, 10, 10, 14, 10, 14, 10},
     1,
     4.0,
     12.0 / 7.0,
     10,
     1,
     14,
     14},
    {"GivenAndNoLines", {}, 5, kInf, kInf, 1, 5, 1, 0},
    {"GivenAndOneFieldOnEveryLine", {1, 1, 1}, 1, kInf, kInf, 1, 1, 1, 1},
    {"GivenNoneAndOneFieldOnEveryLine", {1, 1, 1}, 0, kInf, kInf, 1, 0, 1, 1},
    {"GivenMoreAndOneFieldOnEveryLine", {1, 1, 1}, 7, kInf, kInf, 1, 7, 1, 0},
    {"GivenAndEmptyLinesAlone", {0, 0, 0}, 1, kInf, kInf, 1, 1, 1, 0},
    // all lines are counted when the header is given: two of eleven
    {"GivenNineTitleLines", {1, 1, 1, 1, 1, 1, 1, 1, 1, 4, 4}, 9, kInf, kInf, 1, 9, 1, 1},

    // a list of one deviation overrides given header lines
    {"OneDeviationOverridesTheGivenTwo", {3, 1, 1}, 2, kInf, kInf, 3, 0, 1, 0},
    {"OneDeviationOverridesTheGivenFour", {3}, 4, kInf, kInf, 3, 0, 1, 0},
    {"OneDeviationOverridesTheGivenOne", {3, 5}, 1, kInf, kInf, 3, 0, 1, 1},
    {"OneDeviationOverridesByAnEmptyLine", {0, 3}, 5, kInf, kInf, 3, 1, 1, 0},
    {"OneDeviationOverridesTheGivenNone", {0, 0, 3}, 0, kInf, kInf, 3, 2, 1, 0},
};

class Valuation : public testing::TestWithParam<SeriesCase> {};
TEST_P(Valuation, ScoresTheSeries) {
  const SeriesCase& row = GetParam();
  const ExactText text(text_of_counts(row.counts, u'x'));
  parser::options options;
  UnitStrategy strategy(options);
  if (row.given) strategy.header_lines(*row.given);
  strategy.populate_fields(text.field(), kManyLines);
  const StrategyValuation& score = strategy.valuation();

  EXPECT_EQ(score.total_variation, row.total_variation);
  EXPECT_FALSE(std::signbit(score.total_variation));
  EXPECT_EQ(score.data_variation, row.data_variation);
  EXPECT_EQ(std::signbit(score.data_variation), std::signbit(row.data_variation));
  EXPECT_EQ(score.num_lines, row.counts.size());
  EXPECT_EQ(score.modal_field_count, row.modal_field_count);
  EXPECT_EQ(strategy.header_lines(), row.header_lines);
  EXPECT_EQ(score.num_variables, row.num_variables);
  EXPECT_EQ(strategy.num_variables(), static_cast<long>(row.num_variables));
  EXPECT_EQ(score.typed_columns, row.typed_columns);
  EXPECT_EQ(score.date_columns, 0u);
  EXPECT_EQ(score.numeric_columns, 0u);
  EXPECT_EQ(score.datetime_columns, 0u);
  EXPECT_EQ(score.priors_rank, kInfinity);
  EXPECT_TRUE(strategy.valuation_done_);
}
INSTANTIATE_TEST_SUITE_P(Table, Valuation, testing::ValuesIn(kSeriesCases),
                         testing_support::ByRule());

TEST(ValuationHeaderLines, GivenByTheOptionsAreKept) {
  const ExactText text(text_of_counts({1, 1, 3, 3, 3}, u'x'));
  parser::options options;
  options.header_lines = 1;
  options.detect_header_lines = false;
  UnitStrategy strategy(options);
  strategy.populate_fields(text.field(), kManyLines);
  EXPECT_EQ(strategy.valuation().data_variation, 0.5);
  EXPECT_EQ(strategy.header_lines(), 1u);
}

// Not to be detected, but not known: the detector runs with line 0 as its fallback, and its result
// is not moved. d 2 2 0 0 0; Q 4 8 5.3; S -4 6.7: two.
TEST(ValuationHeaderLines, UnknownOnesAreEstimatedWithoutBeingDetected) {
  const ExactText text(text_of_counts({1, 1, 3, 3, 3}, u'x'));
  parser::options options;
  options.header_lines = SIZE_MAX;
  options.detect_header_lines = false;
  UnitStrategy strategy(options);
  strategy.populate_fields(text.field(), kManyLines);
  const StrategyValuation& score = strategy.valuation();
  EXPECT_EQ(strategy.header_lines(), 2u);
  EXPECT_EQ(score.total_variation, 0.8);
  EXPECT_EQ(score.data_variation, 0.0);
  EXPECT_EQ(score.num_variables, 3u);
}

TEST(ValuationHeaderLines, UnknownOnesOfASingleColumnStayUnknownWithoutBeingDetected) {
  const ExactText text(text_of_counts({1, 1, 1}, u'x'));
  parser::options options;
  options.header_lines = SIZE_MAX;
  options.detect_header_lines = false;
  UnitStrategy strategy(options);
  strategy.populate_fields(text.field(), kManyLines);
  EXPECT_EQ(strategy.valuation().typed_columns, 0u);
  EXPECT_EQ(strategy.header_lines(), SIZE_MAX);
}

// A known number is not estimated; it is still moved to a line with data.
TEST(ValuationHeaderLines, KnownOnesThatAreToBeDetectedAreOnlyMoved) {
  const ExactText text(text_of_counts({3, 0, 3, 3, 4, 3}, u'x'));  // d 0 0 0 1 0
  parser::options options;
  options.header_lines = 1;
  options.detect_header_lines = true;
  UnitStrategy strategy(options);
  strategy.populate_fields(text.field(), kManyLines);
  const StrategyValuation& score = strategy.valuation();
  EXPECT_EQ(score.total_variation, 0.2);
  EXPECT_EQ(score.data_variation, 0.25);
  EXPECT_EQ(strategy.header_lines(), 2u);
}

// d 9 3 9 0 0 0 0 0 0 0: three header lines, or one if deviations are capped at 2. With one, the
// variation after it is (3 + 9) / 9 > 1, so the first line with more than one field is used
// instead.
TEST(ValuationHeaderLines, DeviationsAreCappedIfBlanksSeparate) {
  const ExactText text(text_of_counts({11, 5, 11, 2, 2, 2, 2, 2, 2, 2}, u'x'));
  parser::options options;
  UnitStrategy plain(options);
  plain.populate_fields(text.field(), kManyLines);
  plain.valuation();
  EXPECT_EQ(plain.header_lines(), 3u);

  UnitStrategy blanks(options);
  blanks.space_separated_ = true;
  blanks.populate_fields(text.field(), kManyLines);
  blanks.valuation();
  EXPECT_EQ(blanks.header_lines(), 0u);
}

// --- computed only once --------------------------------------------------------------------------

class ValuationOnce : public testing::Test {
 protected:
  void sample(const Series& counts, char16_t unit = u'7') {
    text_.emplace(text_of_counts(counts, unit));
    strategy_.populate_fields(text_->field(), kManyLines);
  }

  parser::options options_;
  UnitStrategy strategy_{options_};
  std::optional<ExactText> text_;
};

TEST_F(ValuationOnce, TheSecondCallReturnsTheSameRecord) {
  sample({1, 1, 3, 3, 3});
  const StrategyValuation& score = strategy_.valuation();
  EXPECT_EQ(score.numeric_columns, 3u);
  EXPECT_EQ(&strategy_.valuation(), &score);
  EXPECT_EQ(&score, &strategy_.valuation_);
  EXPECT_EQ(score.numeric_columns, 3u);  // not added twice
  EXPECT_EQ(score.typed_columns, 3u);
}

TEST(ValuationFieldCounts, AreKnownOnceTheStrategyIsValued) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  const ExactText text(u"a,b,c\n\n1\n4,5\n");
  commas.populate_fields(text.field(), kManyLines);
  EXPECT_EQ(commas.field_counts(), Series{});
  commas.valuation();
  EXPECT_EQ(commas.field_counts(), (Series{3, 0, 1, 2}));
}

TEST_F(ValuationOnce, ANewSampleDoesNotUndoIt) {
  sample({1, 1, 3, 3, 3});
  strategy_.valuation();
  sample({5, 5, 5, 5}, u'x');
  EXPECT_EQ(strategy_.valuation().num_lines, 5u);
  EXPECT_EQ(strategy_.valuation().num_variables, 3u);
  EXPECT_EQ(strategy_.num_variables(), 3);
  EXPECT_EQ(strategy_.header_lines(), 2u);
}

TEST_F(ValuationOnce, OtherHeaderLinesDoNotUndoIt) {
  sample({1, 1, 3, 3, 3});
  strategy_.valuation();
  strategy_.header_lines(1);
  EXPECT_EQ(strategy_.valuation().data_variation, 0.0);
  EXPECT_EQ(strategy_.num_variables(), 3);
  EXPECT_EQ(strategy_.header_lines(), 1u);
}

TEST_F(ValuationOnce, ASampleWithoutLinesIsValuedOnceToo) {
  strategy_.valuation();
  EXPECT_EQ(strategy_.num_variables(), 1);
  EXPECT_EQ(strategy_.header_lines(), 0u);
  sample({3, 3, 3});
  EXPECT_EQ(strategy_.valuation().num_lines, 0u);
  EXPECT_EQ(strategy_.valuation().num_variables, 1u);
}

TEST_F(ValuationOnce, ASampleOfSingleFieldsIsValuedOnceToo) {
  sample({1, 1});
  strategy_.valuation();
  EXPECT_EQ(strategy_.num_variables(), 1);
  sample({3, 3, 3});
  EXPECT_EQ(strategy_.valuation().num_lines, 2u);
  EXPECT_EQ(strategy_.valuation().num_variables, 1u);
}

TEST_F(ValuationOnce, BeforeItTheNumberOfVariablesIsUnknown) {
  options_.num_variables = 3;
  options_.detect_num_variables = false;
  sample({3, 3, 3});
  EXPECT_EQ(strategy_.num_variables(), -1);
}

TEST_F(ValuationOnce, HeaderLinesAnnouncedAsUnknownAreDetected) {
  strategy_.header_lines(4);
  strategy_.header_lines(SIZE_MAX);
  sample({1, 1, 3, 3, 3});
  strategy_.valuation();
  EXPECT_EQ(strategy_.header_lines(), 2u);
}

// --- texts ---------------------------------------------------------------------------------------

StrategyValuation value(Strategy& strategy, const ExactText& text) {
  strategy.populate_fields(text.field(), kManyLines);
  return strategy.valuation();
}

TEST(ValuationOfText, CommaSeparatedNumbers) {
  const ExactText text(u"a,b,c\n1,2,3\n4,5,6\n");
  parser::options options;
  DelimitedStrategy strategy(options, u',');
  const StrategyValuation score = value(strategy, text);
  EXPECT_EQ(strategy.header_lines(), 0u);
  EXPECT_EQ(score.total_variation, 0.0);
  EXPECT_EQ(score.data_variation, 0.0);
  EXPECT_EQ(score.num_lines, 3u);
  EXPECT_EQ(score.num_variables, 3u);
  EXPECT_EQ(score.typed_columns, 3u);
  EXPECT_EQ(score.numeric_columns, 3u);
  EXPECT_EQ(score.priors_rank, 0.0);
}

// Counts 1 0 2 2 2, d 1 0 0 0: line 1 is the first without exactly one field. The one header line
// among the lines with fields is line 0; the empty line after it is skipped.
TEST(ValuationOfText, TitleAndEmptyLineBeforeTheTable) {
  const ExactText text(u"Report\n\nname,when\nx,2024-03-01\ny,2024-03-02\n");
  parser::options options;
  DelimitedStrategy strategy(options, u',');
  const StrategyValuation score = value(strategy, text);
  EXPECT_EQ(strategy.header_lines(), 2u);
  EXPECT_EQ(score.total_variation, 0.25);
  EXPECT_EQ(score.data_variation, 0.0);
  EXPECT_EQ(score.num_lines, 5u);
  EXPECT_EQ(score.modal_field_count, 2);
  EXPECT_EQ(score.num_variables, 2u);
  EXPECT_EQ(score.typed_columns, 2u);
  EXPECT_EQ(score.date_columns, 1u);
  EXPECT_EQ(score.numeric_columns, 0u);
}

TEST(ValuationOfText, WithoutItsDelimiterADelimitedStrategyHasOneColumn) {
  const ExactText text(u"a,b\n1,2\n");
  parser::options options;
  DelimitedStrategy strategy(options, u'|');
  const StrategyValuation score = value(strategy, text);
  EXPECT_EQ(strategy.header_lines(), 0u);
  EXPECT_EQ(score.num_variables, 1u);
  EXPECT_EQ(score.total_variation, kInfinity);
  EXPECT_EQ(score.typed_columns, 0u);
  EXPECT_EQ(score.priors_rank, 18446744073709551616.0);
}

TEST(ValuationOfText, LinesReadWholeHaveOneColumn) {
  const ExactText text(u"a,b\n1,2\n\"3\n4");
  parser::options options;
  LineReaderStrategy strategy(options);
  const StrategyValuation score = value(strategy, text);
  EXPECT_EQ(strategy.header_lines(), 0u);
  EXPECT_EQ(score.num_lines, 4u);
  EXPECT_EQ(score.num_variables, 1u);
  EXPECT_EQ(score.typed_columns, 0u);
  EXPECT_EQ(score.priors_rank, kInfinity);
}

TEST(ValuationOfText, FixedWidthColumns) {
  const ExactText text(u"n  1\nx 42\ny 43");
  parser::options options;
  FixedWidthStrategy strategy(options, {2, 2});
  const StrategyValuation score = value(strategy, text);
  EXPECT_EQ(strategy.header_lines(), 0u);
  EXPECT_EQ(score.total_variation, 0.0);
  EXPECT_EQ(score.num_lines, 3u);
  EXPECT_EQ(score.num_variables, 2u);
  EXPECT_EQ(score.typed_columns, 2u);
  EXPECT_EQ(score.numeric_columns, 1u);
  EXPECT_EQ(score.priors_rank, kInfinity);
}

TEST(ValuationOfText, TheRankIsKept) {
  const ExactText text(u"1 2\n3 4\n");
  parser::options options;
  DelimitedStrategy tab(options, u'\t');
  DelimitedStrategy semicolon(options, u';');
  DelimitedStrategy blank(options, u' ');
  SpaceAlignedStrategy aligned(options);
  EXPECT_EQ(value(tab, text).priors_rank, 1.0);
  EXPECT_EQ(value(semicolon, text).priors_rank, 2.0);
  EXPECT_EQ(value(blank, text).priors_rank, 3.0);
  EXPECT_EQ(value(aligned, text).priors_rank, 3.5);
}

}  // namespace
}  // namespace textio
