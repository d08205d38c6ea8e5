#include <vltextstream/scoring/line_statistics.hpp>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/line_counts.hpp>
#include "support/rule_name.hpp"
#include "support/unit_strategy.hpp"

namespace textio {
namespace {

using testing_support::UnitStrategy;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

using Series = std::vector<std::size_t>;

// `head` followed by `count` copies of `value`.
Series with_run(Series head, std::size_t count, std::size_t value) {
  head.insert(head.end(), count, value);
  return head;
}

Series joined(Series head, const Series& tail) {
  head.insert(head.end(), tail.begin(), tail.end());
  return head;
}

// --- median --------------------------------------------------------------------------------------

struct MedianCase {
  const char* rule;
  Series counts;
  std::size_t first;
  std::size_t median;
};
std::ostream& operator<<(std::ostream& out, const MedianCase& row) { return out << row.rule; }

const MedianCase kMedianCases[] = {
    {"NoLineGivesOne", {}, 0, 1},
    {"StartAtTheEndGivesOne", {3, 3}, 2, 1},
    {"StartPastTheEndGivesOne", {3, 3}, 3, 1},
    {"StartFarPastTheEndGivesOne", {3, 3}, SIZE_MAX, 1},
    {"EmptyLinesAloneGiveOne", {0, 0, 0}, 0, 1},
    {"SingleFieldsAloneGiveOne", {1, 1, 1}, 0, 1},
    {"SingleFieldsAndEmptyLinesGiveOne", {0, 1, 0, 1}, 0, 1},
    {"OneLineWithFieldsDecides", {5}, 0, 5},
    {"SingleFieldsDoNotTakePart", {1, 1, 3, 3, 3}, 0, 3},
    {"OnlyLinesFromTheStartOnTakePart", {9, 9, 9, 2}, 3, 2},
    {"OddNumberGivesTheMiddle", {9, 2, 5}, 0, 5},
    {"EvenNumberGivesTheLowerMiddle", {5, 2, 4, 3}, 0, 3},
    {"TwoGiveTheSmaller", {9, 4}, 0, 4},
    {"OrderDoesNotMatter", {2, 9, 2, 9, 9}, 0, 9},
    // fewer than eleven lines with fields: a single line with two fields decides
    {"OneOfTenDecides", with_run({5}, 9, 1), 0, 5},
    {"OneOfTenAtTheEndDecides", joined(with_run({}, 9, 1), {5}), 0, 5},
    {"TwoOfTenGiveTheSmaller", with_run({7, 4}, 8, 1), 0, 4},
    // with eleven lines or more, a third of them (rounded down) must have two fields
    {"OneOfElevenIsTooFew", with_run({5}, 10, 1), 0, 1},
    {"TwoOfElevenAreTooFew", with_run({4, 4}, 9, 1), 0, 1},
    {"ThreeOfElevenSuffice", with_run({4, 4, 4}, 8, 1), 0, 4},
    {"ThreeOfTwelveAreTooFew", with_run({4, 4, 4}, 9, 1), 0, 1},
    {"FourOfTwelveSuffice", with_run({4, 4, 4, 4}, 8, 1), 0, 4},
    {"FourOfFourteenSuffice", with_run({4, 4, 4, 4}, 10, 1), 0, 4},
    {"FourOfFifteenAreTooFew", with_run({4, 4, 4, 4}, 11, 1), 0, 1},
    {"TenOfThirtyThreeAreTooFew", joined(with_run({}, 10, 6), with_run({}, 23, 1)), 0, 1},
    {"ElevenOfThirtyThreeSuffice", joined(with_run({}, 11, 6), with_run({}, 22, 1)), 0, 6},
    {"ElevenOfThirtyFiveSuffice", joined(with_run({}, 11, 6), with_run({}, 24, 1)), 0, 6},
    {"ElevenOfThirtySixAreTooFew", joined(with_run({}, 11, 6), with_run({}, 25, 1)), 0, 1},
    // empty lines are not counted among the eleven
    {"EmptyLinesKeepOneOfTenDeciding", joined(with_run({5}, 9, 1), with_run({}, 20, 0)), 0, 5},
    {"EmptyLinesDoNotSaveOneOfEleven", joined(with_run({5}, 10, 1), with_run({}, 20, 0)), 0, 1},
    // nor are lines before the start
    {"LinesBeforeTheStartAreNotCounted", joined(with_run({}, 10, 1), {1, 5}), 2, 5},
    {"AllFieldsOfElevenLines", joined(with_run({}, 5, 2), with_run({}, 6, 8)), 0, 8},
    {"AllFieldsOfTwelveLinesGiveTheLower", joined(with_run({}, 6, 2), with_run({}, 6, 8)), 0, 2},
};

class ModifiedMedian : public testing::TestWithParam<MedianCase> {};
TEST_P(ModifiedMedian, IsTheUsualNumberOfFields) {
  EXPECT_EQ(get_modified_median(GetParam().counts, GetParam().first), GetParam().median);
}
INSTANTIATE_TEST_SUITE_P(Table, ModifiedMedian, testing::ValuesIn(kMedianCases),
                         testing_support::ByRule());

// --- deviations ----------------------------------------------------------------------------------

struct DiffCase {
  const char* rule;
  Series counts;
  std::int32_t modal;
  Series diffs;
};
std::ostream& operator<<(std::ostream& out, const DiffCase& row) { return out << row.rule; }

const DiffCase kDiffCases[] = {
    {"NoLineGivesNothing", {}, 3, {}},
    {"NoModalLineGivesNothing", {1, 2, 4}, 3, {}},
    {"EmptyLinesAloneGiveNothing", {0, 0}, 3, {}},
    {"HeaderLinesTakePart", {1, 1, 3, 3, 3}, 3, {2, 2, 0, 0, 0}},
    {"EmptyLinesAreSkipped", {3, 3, 3, 0, 3}, 3, {0, 0, 0, 0}},
    {"EmptyLinesAtTheTopAreSkipped", {0, 0, 1, 3}, 3, {2, 0}},
    {"LinesAfterTheLastModalOneDoNotTakePart", {3, 2, 3, 5, 7, 1}, 3, {0, 1, 0}},
    {"OnlyTheFirstIsModal", {3, 5, 5}, 3, {0}},
    {"OnlyTheLastIsModal", {5, 5, 3}, 3, {2, 2, 0}},
    {"MoreAndFewerFieldsBothDeviate", {5, 1, 3}, 3, {2, 2, 0}},
    {"OneLine", {4}, 4, {0}},
    {"OneLineAfterAnEmptyOne", {0, 4}, 4, {0}},
    {"SingleColumn", {1, 2, 1}, 1, {0, 1, 0}},
    {"WideLine", {4'194'304, 2}, 2, {4'194'302, 0}},
};

class AbsDiffs : public testing::TestWithParam<DiffCase> {};
TEST_P(AbsDiffs, EndWithTheLastModalLine) {
  EXPECT_EQ(get_abs_diffs(GetParam().counts, GetParam().modal), GetParam().diffs);
}
INSTANTIATE_TEST_SUITE_P(Table, AbsDiffs, testing::ValuesIn(kDiffCases), testing_support::ByRule());

// --- variations ----------------------------------------------------------------------------------

TEST(TotalVariation, IsInfiniteForAnEmptyList) { EXPECT_EQ(get_total_variation({}), kInfinity); }

TEST(TotalVariation, IsTheMean) {
  EXPECT_EQ(get_total_variation({7}), 7.0);
  EXPECT_EQ(get_total_variation({1, 2}), 1.5);
  EXPECT_EQ(get_total_variation({2, 2, 0, 0, 0}), 4.0 / 5.0);
}

TEST(TotalVariation, OfZerosIsAZeroWithoutSign) {
  EXPECT_EQ(get_total_variation({0, 0}), 0.0);
  EXPECT_FALSE(std::signbit(get_total_variation({0, 0})));
}

TEST(TotalVariation, DoesNotWrapWhereTheSumPassesTheLargestInteger) {
  const std::size_t half = std::size_t{1} << 63;
  EXPECT_EQ(get_total_variation({half, half}), 9223372036854775808.0);
}

struct DataVariationCase {
  const char* rule;
  Series diffs;
  std::size_t header_lines;
  double variation;  // its sign matters
};
std::ostream& operator<<(std::ostream& out, const DataVariationCase& row) {
  return out << row.rule;
}

// The stored total variation. It is the mean of none of the lists.
constexpr double kStored = 7.25;

const DataVariationCase kDataVariationCases[] = {
    {"WithoutHeaderTheStoredTotalIsTaken", {2, 2, 0}, 0, kStored},
    {"WithoutHeaderTheStoredTotalIsTakenForAnEmptyList", {}, 0, kStored},
    {"MeanFromTheHeaderOn", {5, 1, 2}, 1, 1.5},
    {"LastEntryAlone", {5, 1, 3}, 2, 3.0},
    {"ZerosGiveAZeroWithoutSign", {2, 2, 0, 0, 0}, 2, 0.0},
    {"HeaderEndsWhereTheListEnds", {2, 2, 0}, 3, kInfinity},
    {"HeaderEndsOnePastTheList", {2, 2, 0}, 4, -0.0},
    {"HeaderEndsFarPastTheList", {2, 2, 0}, SIZE_MAX, -0.0},
    {"AnyHeaderPassesAnEmptyList", {}, 1, -0.0},
};

class DataVariation : public testing::TestWithParam<DataVariationCase> {};
TEST_P(DataVariation, IsTheMeanAfterTheHeader) {
  const double variation = get_data_variation(GetParam().diffs, GetParam().header_lines, kStored);
  EXPECT_EQ(variation, GetParam().variation);
  EXPECT_EQ(std::signbit(variation), std::signbit(GetParam().variation));
}
INSTANTIATE_TEST_SUITE_P(Table, DataVariation, testing::ValuesIn(kDataVariationCases),
                         testing_support::ByRule());

// --- number of variables -------------------------------------------------------------------------

struct VariablesCase {
  const char* rule;
  Series counts;
  std::size_t header_lines;
  std::size_t variables;
};
std::ostream& operator<<(std::ostream& out, const VariablesCase& row) { return out << row.rule; }

const VariablesCase kVariablesCases[] = {
    {"NoLineGivesOne", {}, 0, 1},
    {"EmptyLinesGiveOne", {0, 0}, 0, 1},
    {"LargestCountOfAll", {2, 5, 3}, 0, 5},
    {"HeaderLinesDoNotCount", {9, 2, 3}, 1, 3},
    {"LastLineAlone", {9, 2, 3}, 2, 3},
    {"LastLineAloneIsEmpty", {9, 2, 0}, 2, 1},
    {"HeaderEndsWithTheLines", {9, 2, 3}, 3, 1},
    {"HeaderPassesTheLines", {9, 2, 3}, 4, 1},
    {"HeaderIsUnknown", {9, 2, 3}, SIZE_MAX, 1},
};

class NumberOfVariables : public testing::TestWithParam<VariablesCase> {};
TEST_P(NumberOfVariables, IsTheLargestCountAfterTheHeader) {
  EXPECT_EQ(get_number_of_variables(GetParam().counts, GetParam().header_lines),
            GetParam().variables);
}
INSTANTIATE_TEST_SUITE_P(Table, NumberOfVariables, testing::ValuesIn(kVariablesCases),
                         testing_support::ByRule());

// --- from positions to lines ---------------------------------------------------------------------

struct SkipCase {
  const char* rule;
  std::size_t position;
  Series empty_lines;
  Series counts;
  std::size_t line;
};
std::ostream& operator<<(std::ostream& out, const SkipCase& row) { return out << row.rule; }

const SkipCase kSkipCases[] = {
    {"DataAtTheTop", 0, {}, {3, 3}, 0},
    {"NoLines", 0, {}, {}, 0},
    {"PositionIsALineWithoutEmptyLines", 1, {}, {2, 3, 4}, 1},
    {"SingleFieldsArePassed", 0, {}, {1, 1, 3}, 2},
    {"SingleFieldsInTheMiddleArePassed", 1, {}, {3, 1, 1, 3}, 3},
    {"EmptyLineBeforeShifts", 0, {0}, {0, 3}, 1},
    {"EmptyLineAtThePositionShifts", 1, {1}, {3, 0, 3}, 2},
    {"EmptyLineAfterDoesNotShift", 1, {3}, {1, 3, 3, 0}, 1},
    {"EachEmptyLineBeforeShifts", 2, {1, 3}, {1, 0, 1, 0, 3}, 4},
    {"AShiftMayReachTheNextEmptyLine", 0, {0, 1, 2}, {0, 0, 0, 3}, 3},
    {"EmptyLinesAndThenSingleFields", 2, {1}, {1, 0, 1, 1, 3}, 4},
    {"EmptyLineAmongSingleFieldsIsPassed", 0, {1}, {1, 0, 1, 2}, 3},
    {"NoDataGivesTheNumberOfLines", 0, {}, {1, 1, 1}, 3},
    {"EmptyLinesAloneGiveTheNumberOfLines", 0, {0, 1}, {0, 0}, 2},
    {"PositionAfterTheLinesIsKept", 3, {}, {3, 3, 3}, 3},
    {"PositionFarAfterTheLinesIsKept", 10, {}, {3, 3, 3}, 10},
    {"PositionAfterTheLinesIsStillShifted", 3, {1}, {3, 0, 3}, 4},
    {"LargestPositionStays", SIZE_MAX, {}, {3, 3}, SIZE_MAX},
    {"LargestPositionIsNotShifted", SIZE_MAX, {0}, {0, 3}, SIZE_MAX},
};

class SkipToData : public testing::TestWithParam<SkipCase> {};
TEST_P(SkipToData, FindsTheLineOfAPosition) {
  EXPECT_EQ(skip_to_data(GetParam().position, GetParam().empty_lines, GetParam().counts),
            GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(Table, SkipToData, testing::ValuesIn(kSkipCases),
                         testing_support::ByRule());

// For LineCounts, a position that wraps around continues from 0: one after the largest is line 0,
// which is empty, and the first line with several fields follows.
TEST(SkipToDataOfRuns, ContinuesFromTheFirstLineWhereItWraps) {
  EXPECT_EQ(skip_to_data(SIZE_MAX, LineCounts({0, 3})), 1U);
  EXPECT_EQ(skip_to_data(SIZE_MAX, LineCounts({3, 3})), SIZE_MAX);
}

// --- the member functions of the strategy --------------------------------------------------------

TEST(StrategyStatistics, ReadTheScoresAndTheHeaderOfTheStrategy) {
  parser::options options;
  UnitStrategy strategy(options);
  strategy.valuation_.modal_field_count = 3;
  strategy.valuation_.total_variation = kStored;
  strategy.header_lines(1);

  EXPECT_EQ(strategy.get_modified_median({1, 9, 2, 5}, 1), 5u);
  EXPECT_EQ(strategy.get_abs_diffs({5, 0, 3, 4}), (Series{2, 0}));
  EXPECT_EQ(strategy.get_total_variation({1, 2}), 1.5);
  EXPECT_EQ(strategy.get_data_variation({5, 1, 2}), 1.5);
  EXPECT_EQ(strategy.get_number_of_variables({9, 2, 3}), 3u);

  strategy.header_lines(0);
  EXPECT_EQ(strategy.get_data_variation({5, 1, 2}), kStored);
  EXPECT_EQ(strategy.get_number_of_variables({9, 2, 3}), 9u);
}

TEST(StrategyStatistics, ChangeNothing) {
  parser::options options;
  UnitStrategy strategy(options);
  strategy.header_lines(1);
  strategy.get_modified_median({3, 3}, 0);
  strategy.get_abs_diffs({3, 3});
  strategy.get_total_variation({1, 2});
  strategy.get_data_variation({1, 2});
  strategy.get_number_of_variables({3, 3});

  EXPECT_EQ(strategy.header_lines(), 1u);
  EXPECT_EQ(strategy.num_variables(), -1);
  EXPECT_EQ(strategy.valuation_.modal_field_count, 1);
  EXPECT_EQ(strategy.valuation_.total_variation, kInfinity);
  EXPECT_EQ(strategy.valuation_.data_variation, kInfinity);
}

}  // namespace
}  // namespace textio
