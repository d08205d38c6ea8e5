// The reduce_by_* filters over valuations made by hand; no text is involved.

#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include "support/rule_name.hpp"

namespace textio {
namespace {

using detection::StrategySelector;
using testing_support::ByRule;
using Survivors = StrategySelector::Survivors;
using Valuations = StrategySelector::Valuations;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kUnlistedRank = 18446744073709551616.0;  // 2^64
constexpr std::uint64_t kMostLines = std::numeric_limits<std::uint64_t>::max();

// The count -1: counts have 32 bits and are interpreted as signed.
constexpr std::uint32_t kMinusOne = 0xFFFFFFFF;
constexpr std::uint32_t kSmallest = 0x80000000;

struct FilterCase {
  const char* rule;
  Valuations valuations;
  Survivors survivors;
  Survivors kept;
};
std::ostream& operator<<(std::ostream& out, const FilterCase& row) { return out << row.rule; }

StrategyValuation variables(std::uint64_t count) {
  StrategyValuation valuation;
  valuation.num_variables = count;
  return valuation;
}

StrategyValuation variation(double value, std::uint64_t lines = 0) {
  StrategyValuation valuation;
  valuation.data_variation = value;
  valuation.num_lines = lines;
  return valuation;
}

struct Columns {
  std::uint32_t typed = 0;
  std::uint32_t dates = 0;
  std::uint32_t numbers = 0;
  std::uint32_t datetimes = 0;
};

StrategyValuation columns(const Columns& counts) {
  StrategyValuation valuation;
  valuation.typed_columns = counts.typed;
  valuation.date_columns = counts.dates;
  valuation.numeric_columns = counts.numbers;
  valuation.datetime_columns = counts.datetimes;
  return valuation;
}

StrategyValuation share(std::uint32_t typed, std::uint64_t count) {
  StrategyValuation valuation;
  valuation.typed_columns = typed;
  valuation.num_variables = count;
  return valuation;
}

StrategyValuation rank(double value) {
  StrategyValuation valuation;
  valuation.priors_rank = value;
  return valuation;
}

// -- number of variables ------------------------------------------------------------------------

constexpr std::uint64_t kAskedFor = 3;

const FilterCase kNumVariablesCases[] = {
    {"KeepsTheEqualOnes",
     {variables(2), variables(3), variables(4), variables(3)},
     {0, 1, 2, 3},
     {1, 3}},
    {"KeepsAllWhenNoneHasTheNumber", {variables(2), variables(4)}, {0, 1}, {0, 1}},
    {"AnAlreadyDroppedCandidateDoesNotCount",
     {variables(3), variables(2), variables(4)},
     {1, 2},
     {1, 2}},
    {"ComparesAll64Bits", {variables((std::uint64_t{1} << 32) + 3), variables(3)}, {0, 1}, {1}},
    {"OneSurvivorStays", {variables(7)}, {0}, {0}},
    {"NoSurvivorsGiveNone", {variables(3)}, {}, {}},
    {"NoCandidatesGiveNone", {}, {}, {}},
};

class ReduceByNumVariables : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByNumVariables, KeepsTheNumberOfTheOptions) {
  parser::options options;
  options.num_variables = kAskedFor;
  options.detect_num_variables = false;
  const StrategySelector selector(options);
  EXPECT_EQ(selector.reduce_by_numvariables(GetParam().survivors, GetParam().valuations),
            GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByNumVariables, testing::ValuesIn(kNumVariablesCases),
                         ByRule());

// -- dates --------------------------------------------------------------------------------------

const FilterCase kDatesCases[] = {
    {"KeepsDates", {columns({.typed = 1}), columns({.typed = 1, .dates = 1})}, {0, 1}, {1}},
    {"KeepsDatesWithTime",
     {columns({.typed = 1, .datetimes = 1}), columns({.typed = 1})},
     {0, 1},
     {0}},
    {"MoreDatesAreNotBetter",
     {columns({.typed = 5, .dates = 5}), columns({.typed = 1, .datetimes = 1}), columns({})},
     {0, 1, 2},
     {0, 1}},
    {"NumbersAreNoDates",
     {columns({.typed = 9, .numbers = 9}), columns({.dates = 1})},
     {0, 1},
     {1}},
    {"NoDatesAnywhereKeepsAll", {columns({.typed = 2}), columns({.typed = 3})}, {0, 1}, {0, 1}},
    {"AnAlreadyDroppedCandidateDoesNotCount",
     {columns({.dates = 1}), columns({}), columns({})},
     {1, 2},
     {1, 2}},
    {"CountsAreSigned",
     {columns({.dates = kMinusOne}), columns({.datetimes = kSmallest}), columns({.dates = 1})},
     {0, 1, 2},
     {2}},
    {"EitherCountSuffices",
     {columns({.dates = kMinusOne, .datetimes = 1}), columns({})},
     {0, 1},
     {0}},
    {"OnlyNegativeCountsKeepsAll", {columns({.dates = kMinusOne}), columns({})}, {0, 1}, {0, 1}},
    {"NoSurvivorsGiveNone", {columns({.dates = 1})}, {}, {}},
};

class ReduceByDates : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByDates, KeepsCandidatesWithADate) {
  const parser::options options;
  EXPECT_EQ(StrategySelector(options).reduce_by_dates(GetParam().survivors, GetParam().valuations),
            GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByDates, testing::ValuesIn(kDatesCases), ByRule());

// -- variation ----------------------------------------------------------------------------------

// The tolerance is a tenth of the smallest variation or a thousandth of the best candidate's lines,
// whichever is larger. Only variations closer than that stay.
const FilterCase kVariationCases[] = {
    // 0.001 * 100 lines = 0.1
    {"AThousandthOfTheLines",
     {variation(0.0, 100), variation(0.05), variation(0.2)},
     {0, 1, 2},
     {0, 1}},
    // 0.1 * 2.0 = 0.2 is more than 0.01
    {"ATenthOfTheSmallest", {variation(2.0, 10), variation(2.15)}, {0, 1}, {0, 1}},
    {"BeyondATenthOfTheSmallest", {variation(2.0, 10), variation(2.5)}, {0, 1}, {0}},
    // 0.001 * 1000 lines = 1, and 1.0 is not less than that
    {"TheToleranceItselfIsTooMuch",
     {variation(0.0, 1000), variation(1.0), variation(0.999)},
     {0, 1, 2},
     {0, 2}},
    // 0.1 * 10 = 1 with no lines: 10.9 is 0.9 away, 11 is 1 away
    {"TheTenthItselfIsTooMuch",
     {variation(10.0), variation(11.0), variation(10.9)},
     {0, 1, 2},
     {0, 2}},
    // 0.001 * 2000 = 2 is more than 0.1 * 10 = 1
    {"TheLargerToleranceCounts", {variation(10.0, 2000), variation(11.5)}, {0, 1}, {0, 1}},
    // 0.1 * 2.0 = 0.2 is more than 0.001 * 150 = 0.15
    {"TheLargerToleranceMayBeTheTenth", {variation(2.0, 150), variation(2.1875)}, {0, 1}, {0, 1}},
    {"TheBestMayStandAnywhere",
     {variation(3.0, 5), variation(0.5, 5), variation(0.5, 5), variation(0.1, 10)},
     {0, 1, 2, 3},
     {3}},
    // Both are smallest; the lines of the first determine the tolerance: 1, then 0.01.
    {"TheEarliestBestGivesTheLines",
     {variation(0.0, 1000), variation(0.0, 10), variation(0.5)},
     {0, 1, 2},
     {0, 1, 2}},
    {"ALaterTieGivesNoLines",
     {variation(0.0, 10), variation(0.0, 1000), variation(0.5)},
     {0, 1, 2},
     {0, 1}},
    {"OnlyTheLinesOfTheBestCount", {variation(0.5, 10000), variation(0.0, 10)}, {0, 1}, {1}},
    // Tolerance 0: not even the best is closer than that.
    {"NoLinesAndNoVariationKeepsAll", {variation(0.0), variation(0.7)}, {0, 1}, {0, 1}},
    // infinity - infinity is NaN
    {"NothingMeasuredKeepsAll", {variation(kInfinity, 9), variation(kInfinity, 9)}, {0, 1}, {0, 1}},
    {"NotMeasuredLoses", {variation(kInfinity, 9), variation(0.9, 9)}, {0, 1}, {1}},
    {"NotMeasuredLosesAgainstAnyTolerance",
     {variation(0.0, kMostLines), variation(kInfinity), variation(1e15)},
     {0, 1, 2},
     {0, 2}},
    {"MinusInfinityIsNearToNothing", {variation(1.0, 9), variation(-kInfinity, 9)}, {0, 1}, {0, 1}},
    // Nothing is smaller than a NaN, and no difference from it is smaller than anything.
    {"ANanInFrontKeepsAll",
     {variation(kNan, 9), variation(0.0, 9), variation(5.0, 9)},
     {0, 1, 2},
     {0, 1, 2}},
    {"ANanFurtherBackIsDropped",
     {variation(0.0, 9), variation(kNan, 9), variation(0.0, 9)},
     {0, 1, 2},
     {0, 2}},
    {"AllNanKeepsAll", {variation(kNan, 9), variation(kNan, 9)}, {0, 1}, {0, 1}},
    {"NegativeZeroIsZero", {variation(0.0, 100), variation(-0.0, 100)}, {0, 1}, {0, 1}},
    {"AnAlreadyDroppedCandidateDoesNotCount",
     {variation(0.0, 100), variation(0.5, 100), variation(0.9, 100), variation(0.55, 100)},
     {1, 2, 3},
     {1, 3}},
    {"OneSurvivorStays", {variation(0.3, 4)}, {0}, {0}},
    {"NoSurvivorsGiveNone", {variation(0.0, 9)}, {}, {}},
    {"NoCandidatesGiveNone", {}, {}, {}},
};

class ReduceByVariation : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByVariation, KeepsCandidatesThatAreHardlyLessRegular) {
  const parser::options options;
  EXPECT_EQ(
      StrategySelector(options).reduce_by_variation(GetParam().survivors, GetParam().valuations),
      GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByVariation, testing::ValuesIn(kVariationCases), ByRule());

// -- class value --------------------------------------------------------------------------------

// A text column is worth 1, a number 3, a date or clock value 10, a date with time 25.
const FilterCase kClassValueCases[] = {
    {"DateAndTimeBeatsEightNumbers",
     {columns({.typed = 8, .numbers = 8}), columns({.typed = 1, .datetimes = 1})},
     {0, 1},
     {1}},
    {"NineNumbersBeatDateAndTime",
     {columns({.typed = 9, .numbers = 9}), columns({.typed = 1, .datetimes = 1})},
     {0, 1},
     {0}},
    {"DateBeatsThreeNumbers",
     {columns({.typed = 3, .numbers = 3}), columns({.typed = 1, .dates = 1})},
     {0, 1},
     {1}},
    // 10 each
    {"TenTextsEqualADate",
     {columns({.typed = 10}), columns({.typed = 1, .dates = 1})},
     {0, 1},
     {0, 1}},
    // 25 each: 2 * 10 + 3 + 2 against one date with time
    {"AMixtureIsAddedUp",
     {columns({.typed = 5, .dates = 2, .numbers = 1}), columns({.typed = 1, .datetimes = 1})},
     {0, 1},
     {0, 1}},
    {"NumberBeatsTwoTexts",
     {columns({.typed = 2}), columns({.typed = 1, .numbers = 1})},
     {0, 1},
     {1}},
    {"EmptyColumnsCountNothing", {columns({}), columns({.typed = 1}), columns({})}, {0, 1, 2}, {1}},
    {"NothingTypedKeepsAll", {columns({}), columns({})}, {0, 1}, {0, 1}},
    {"TiesKeepTheirOrder",
     {columns({.typed = 2}), columns({.typed = 1}), columns({.typed = 2})},
     {0, 1, 2},
     {0, 2}},
    {"AnAlreadyDroppedCandidateDoesNotCount",
     {columns({.typed = 9}), columns({.typed = 2}), columns({.typed = 1})},
     {1, 2},
     {1}},
    // typed -1 is worth -1, less than nothing
    {"CountsAreSigned", {columns({.typed = kMinusOne}), columns({})}, {0, 1}, {1}},
    // 25 * -1 + (0 + 1) = -24
    {"ANegativeCountLowersTheValue", {columns({.datetimes = kMinusOne}), columns({})}, {0, 1}, {1}},
    // 10 * 1 + (0 - 1) = 9 against 8 texts
    {"MoreDatesThanTypedColumns", {columns({.typed = 8}), columns({.dates = 1})}, {0, 1}, {1}},
    // -2^31 - 1 wraps to 2^31 - 1; without wrapping the value would be the smallest of all.
    {"TheTextTermHas32Bits",
     {columns({.typed = kSmallest, .numbers = 1}), columns({.typed = 5})},
     {0, 1},
     {0}},
    // 25 * (2^31 - 1) does not fit into 32 bits, but into a double.
    {"TheProductsAreDoubles",
     {columns({.typed = 1}), columns({.typed = 0x7FFFFFFF, .datetimes = 0x7FFFFFFF})},
     {0, 1},
     {1}},
    {"OneSurvivorStays", {columns({})}, {0}, {0}},
    {"NoSurvivorsGiveNone", {columns({.typed = 1})}, {}, {}},
};

class ReduceByClassValue : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByClassValue, KeepsTheHighest) {
  const parser::options options;
  EXPECT_EQ(
      StrategySelector(options).reduce_by_class_value(GetParam().survivors, GetParam().valuations),
      GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByClassValue, testing::ValuesIn(kClassValueCases), ByRule());

// -- header lines -------------------------------------------------------------------------------

constexpr unsigned long kUnknown = std::numeric_limits<unsigned long>::max();

struct HeaderLinesCase {
  const char* rule;
  bool detect;
  std::vector<double> variations;           // one per candidate
  std::vector<unsigned long> header_lines;  // one per candidate
  Survivors survivors;
  Survivors kept;
};
std::ostream& operator<<(std::ostream& out, const HeaderLinesCase& row) { return out << row.rule; }

const HeaderLinesCase kHeaderLinesCases[] = {
    {"KeepsTheFewest", true, {0, 0, 0}, {2, 1, 1}, {0, 1, 2}, {1, 2}},
    {"KeepsAllWhenEqual", true, {0, 0}, {4, 4}, {0, 1}, {0, 1}},
    {"GivenHeaderLinesKeepAll", false, {0, 0, 0}, {2, 1, 1}, {0, 1, 2}, {0, 1, 2}},
    {"AnIrregularFirstSurvivorKeepsAll", true, {0.5, 0, 0}, {2, 1, 0}, {0, 1, 2}, {0, 1, 2}},
    {"ATinyIrregularityIsOne", true, {5e-324, 0}, {2, 1}, {0, 1}, {0, 1}},
    {"ANanInFrontKeepsAll", true, {kNan, 0}, {2, 1}, {0, 1}, {0, 1}},
    {"AnInfinityInFrontKeepsAll", true, {kInfinity, 0}, {2, 1}, {0, 1}, {0, 1}},
    {"NegativeZeroIsRegular", true, {-0.0, 0, -0.0}, {2, 1, 1}, {0, 1, 2}, {1, 2}},
    {"IrregularOnesAreDropped", true, {0, 0.25, 0}, {1, 1, 1}, {0, 1, 2}, {0, 2}},
    // The fewest header lines, 0, belong to an irregular candidate: none has both.
    {"TheFewestOfAnIrregularOneKeepsAll", true, {0, 0.25, 0}, {1, 0, 2}, {0, 1, 2}, {0, 1, 2}},
    {"ANanFurtherBackIsDropped", true, {0, kNan}, {1, 1}, {0, 1}, {0}},
    {"NotKnownIsTheMost", true, {0, 0}, {kUnknown, 1000000}, {0, 1}, {1}},
    {"AllNotKnownKeepsAll", true, {0, 0}, {kUnknown, kUnknown}, {0, 1}, {0, 1}},
    {"TheFirstSurvivorDecidesNotTheFirstCandidate", true, {0.5, 0, 0}, {0, 3, 2}, {1, 2}, {2}},
    {"AnAlreadyDroppedCandidateDoesNotCount", true, {0, 0, 0}, {0, 3, 3}, {1, 2}, {1, 2}},
    {"OneSurvivorStays", true, {0}, {7}, {0}, {0}},
    {"NoSurvivorsGiveNone", true, {0}, {1}, {}, {}},
    {"NoSurvivorsGiveNoneForGivenHeaderLines", false, {0}, {1}, {}, {}},
};

class ReduceByHeaderLines : public testing::TestWithParam<HeaderLinesCase> {};
TEST_P(ReduceByHeaderLines, KeepsTheFewestOfTheRegularOnes) {
  const HeaderLinesCase& row = GetParam();
  parser::options options;
  options.detect_header_lines = row.detect;
  const StrategySelector selector(options);
  Valuations valuations;
  std::vector<std::shared_ptr<Strategy>> candidates;
  for (const double value : row.variations) valuations.push_back(variation(value, 10));
  for (const unsigned long count : row.header_lines) {
    candidates.push_back(std::make_shared<LineReaderStrategy>(options));
    candidates.back()->header_lines(count);
  }
  EXPECT_EQ(selector.reduce_by_header_lines(row.survivors, valuations, candidates), row.kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByHeaderLines, testing::ValuesIn(kHeaderLinesCases),
                         ByRule());

TEST(ReduceByHeaderLinesFlag, IsFixedWhenTheSelectorIsMade) {
  parser::options options;
  const StrategySelector selector(options);
  options.detect_header_lines = false;
  const Valuations valuations = {variation(0.0), variation(0.0)};
  std::vector<std::shared_ptr<Strategy>> candidates;
  for (const unsigned long count : {2UL, 1UL}) {
    candidates.push_back(std::make_shared<LineReaderStrategy>(options));
    candidates.back()->header_lines(count);
  }
  EXPECT_EQ(selector.reduce_by_header_lines({0, 1}, valuations, candidates), (Survivors{1}));
}

// -- share of columns that are not empty --------------------------------------------------------

const FilterCase kNonEmptyCases[] = {
    {"KeepsTheHighestShare", {share(2, 3), share(2, 2), share(1, 2)}, {0, 1, 2}, {1}},
    {"ComparesSharesNotCounts", {share(9, 10), share(1, 1)}, {0, 1}, {1}},
    {"EqualSharesOfDifferentCounts", {share(1, 2), share(3, 6), share(1, 3)}, {0, 1, 2}, {0, 1}},
    {"AllEmptyKeepsAll", {share(0, 2), share(0, 5)}, {0, 1}, {0, 1}},
    // 0 / 0 is NaN: nothing is larger, nothing equals it.
    {"ANanInFrontKeepsAll", {share(0, 0), share(2, 2), share(1, 2)}, {0, 1, 2}, {0, 1, 2}},
    {"ANanFurtherBackIsDropped", {share(1, 2), share(0, 0), share(1, 2)}, {0, 1, 2}, {0, 2}},
    {"AnInfiniteShareWins", {share(2, 2), share(1, 0), share(5, 0)}, {0, 1, 2}, {1, 2}},
    {"CountsAreSigned", {share(kMinusOne, 2), share(0, 2)}, {0, 1}, {1}},
    {"MinusInfinityLoses", {share(kMinusOne, 0), share(kMinusOne, 2)}, {0, 1}, {1}},
    {"TheNumberOfVariablesIsUnsigned", {share(1, kMostLines), share(0, 1)}, {0, 1}, {0}},
    {"AnAlreadyDroppedCandidateDoesNotCount", {share(1, 1), share(1, 2), share(1, 3)}, {1, 2}, {1}},
    {"OneSurvivorStays", {share(0, 0)}, {0}, {0}},
    {"NoSurvivorsGiveNone", {share(1, 1)}, {}, {}},
};

class ReduceByNonEmpty : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByNonEmpty, KeepsTheHighestShare) {
  const parser::options options;
  EXPECT_EQ(
      StrategySelector(options).reduce_by_non_empty(GetParam().survivors, GetParam().valuations),
      GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByNonEmpty, testing::ValuesIn(kNonEmptyCases), ByRule());

// -- prior rank ---------------------------------------------------------------------------------

const FilterCase kPriorsRankCases[] = {
    {"CommaBeforeTab", {rank(1), rank(0)}, {0, 1}, {1}},
    {"SpaceBeforeSpaceAligned", {rank(3.5), rank(3)}, {0, 1}, {1}},
    {"SpaceAlignedBeforeAnUnlistedDelimiter", {rank(kUnlistedRank), rank(3.5)}, {0, 1}, {1}},
    {"TwoUnlistedDelimitersBothStay", {rank(kUnlistedRank), rank(kUnlistedRank)}, {0, 1}, {0, 1}},
    {"UnlistedIsNotSingledOutBeforeNoRank", {rank(kInfinity), rank(kUnlistedRank)}, {0, 1}, {0, 1}},
    {"NoRanksKeepAll", {rank(kInfinity), rank(kInfinity)}, {0, 1}, {0, 1}},
    {"TiesGoToTheEarliest", {rank(2), rank(1), rank(1)}, {0, 1, 2}, {1}},
    {"FourIsTooMuch", {rank(4), rank(5)}, {0, 1}, {0, 1}},
    {"JustBelowFour", {rank(5), rank(3.9999999999999996)}, {0, 1}, {1}},
    {"ANanInFrontKeepsAll", {rank(kNan), rank(0)}, {0, 1}, {0, 1}},
    {"ANanFurtherBackIsPassedOver", {rank(2), rank(kNan), rank(1)}, {0, 1, 2}, {2}},
    {"NegativeRanksAreSmall", {rank(0), rank(-kInfinity)}, {0, 1}, {1}},
    {"AnAlreadyDroppedCandidateDoesNotCount", {rank(0), rank(2), rank(1)}, {1, 2}, {2}},
    {"OneSurvivorStays", {rank(kUnlistedRank)}, {0}, {0}},
    {"NoSurvivorsGiveNone", {rank(0)}, {}, {}},
    {"NoCandidatesGiveNone", {}, {}, {}},
};

class ReduceByPriorsRank : public testing::TestWithParam<FilterCase> {};
TEST_P(ReduceByPriorsRank, KeepsTheSmallestListedRank) {
  const parser::options options;
  EXPECT_EQ(
      StrategySelector(options).reduce_by_priors_rank(GetParam().survivors, GetParam().valuations),
      GetParam().kept);
}
INSTANTIATE_TEST_SUITE_P(Table, ReduceByPriorsRank, testing::ValuesIn(kPriorsRankCases), ByRule());

}  // namespace
}  // namespace textio
