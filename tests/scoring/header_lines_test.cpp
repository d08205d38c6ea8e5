#include <vltextstream/scoring/header_lines.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include "support/rule_name.hpp"
#include "support/unit_strategy.hpp"

namespace textio {
namespace {

using detection::get_header_lines;
using detection::three_point_filter;
using testing_support::UnitStrategy;

using Series = std::vector<std::size_t>;

// --- the filter ----------------------------------------------------------------------------------

using Values = std::vector<double>;

TEST(ThreePointFilter, LeavesShortSeriesAlone) {
  EXPECT_EQ(three_point_filter({}, 2.0, 3.0, 5.0), Values{});
  EXPECT_EQ(three_point_filter({7.5}, 2.0, 3.0, 5.0), Values{7.5});
}

TEST(ThreePointFilter, WeighsEachEntryAndItsNeighbours) {
  // 1*(3+2) + 2*5, 1*2 + 2*3 + 4*5, 2*2 + 4*3 + 8*5, 8*(3+5) + 4*5
  EXPECT_EQ(three_point_filter({1.0, 2.0, 4.0, 8.0}, 2.0, 3.0, 5.0),
            (Values{15.0, 28.0, 56.0, 84.0}));
}

TEST(ThreePointFilter, ReflectsATwoEntrySeriesAtBothEnds) {
  // 3*(3+2) + 5*5, 5*(3+5) + 3*5
  EXPECT_EQ(three_point_filter({3.0, 5.0}, 2.0, 3.0, 5.0), (Values{40.0, 55.0}));
}

TEST(ThreePointFilter, IsTheNegatedSecondDifferenceWithTheWeightsOfTheDetection) {
  // 1 - 2, -1 + 4 - 4, -2 + 8 - 8, 8 - 4
  EXPECT_EQ(three_point_filter({1.0, 2.0, 4.0, 8.0}, -1.0, 2.0, -1.0),
            (Values{-1.0, -1.0, -2.0, 4.0}));
}

TEST(ThreePointFilter, AStraightLineBendsAtItsEndsOnly) {
  EXPECT_EQ(three_point_filter({1.0, 2.0, 3.0, 4.0}, -1.0, 2.0, -1.0),
            (Values{-1.0, 0.0, 0.0, 1.0}));
}

// --- the detector --------------------------------------------------------------------------------

struct HeaderCase {
  const char* rule;
  Series diffs;
  std::size_t first;
  std::size_t uncapped;  // the result without capping
  std::size_t capped;    // the result with capping
};
std::ostream& operator<<(std::ostream& out, const HeaderCase& row) { return out << row.rule; }

// C is the running sum of the deviations, Q = C / length * C, S the smoothed series. The comments
// show S for the candidates 0..k-1.
const HeaderCase kHeaderCases[] = {
    // short lists
    {"EmptyListGivesTheFallback", {}, 4, 4, 4},
    {"OneEntryGivesTheFallback", {3}, 4, 4, 4},
    {"TwoEqualEntries", {5, 5}, 0, 0, 0},
    {"TwoZeros", {0, 0}, 0, 0, 0},
    {"TwoEntriesThatFall", {2, 0}, 0, 1, 1},
    {"TwoEntriesThatRise", {0, 2}, 0, 1, 1},
    {"TwoEqualEntriesWhateverTheFallback", {5, 5}, 7, 0, 0},
    {"TwoDifferentEntriesWhateverTheFallback", {5, 0}, 7, 1, 1},

    // no candidate is left
    {"FallbackAtTheLastEntry", {2, 2, 0}, 2, 2, 2},
    {"FallbackPastTheList", {2, 2, 0}, 9, 9, 9},
    {"UnknownFallback", {2, 2, 0}, SIZE_MAX, SIZE_MAX, SIZE_MAX},
    {"ZerosDownToTheFallback", {2, 2, 0, 0, 0}, 2, 2, 2},
    {"OnlyTheLastEntryDeviates", {0, 0, 7}, 0, 0, 0},
    {"OnlyTheLastEntryDeviatesAndTheFallbackIsInside", {0, 0, 0, 7}, 1, 1, 1},
    {"ZerosAlone", {0, 0, 0, 0}, 0, 0, 0},

    // the plain cases
    // Q 4 4.5 3; S -0.5 2: k = 2
    {"TwoHeaderLines", {2, 1, 0, 0, 0, 0, 0, 0}, 0, 2, 2},
    // Q 16 32 48 36; S -16 0 28: k = 3
    // capped: C 4 6 8 8, Q 16 18 21.3 16; S -2 -1.3 8.7: k = 3
    {"ThreeHeaderLines", {4, 4, 4, 0, 0, 0, 0, 0, 0}, 0, 3, 3},
    // four candidates, Q 25 12.5 8.3 9 7.2; S 12.5 -8.3 -4.8 2.5: k = 1
    {"LateDeviationDoesNotMatter", {5, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 0, 1, 1},
    // Q 9 4.5; S 4.5: k = 1
    {"OneHeaderLine", {3, 0, 0, 0}, 0, 1, 1},

    // C 1 2 3 .. 9, Q the same; S -1 0 0 0 0 0 0 0: the earliest of equal ones, k = 2
    {"EarliestOfEqualPeaks", {1, 1, 1, 1, 1, 1, 1, 1, 1}, 0, 2, 2},
    // C 1 2 3 53, Q 1 2 3 702.25; S -1 0 -695: k = 2; the last entry itself would win
    // capped: C 1 2 3 5, Q 1 2 3 6.25; S -1 0 -2.25: k = 2
    {"LastEntryIsNoCandidate", {1, 1, 1, 50}, 0, 2, 2},

    // capping: C 9 12 21 21, Q 81 72 147 110.25; S 9 -84 111.75: k = 3
    // capped: C 9 11 13 13, Q 81 60.5 56.3 42.25; S 20.5 -16.3 9.9: k = 1. Were the first entry
    // capped too, C 2 4 6 6, Q 4 8 12 9; S -4 0 7 would give 3.
    {"CappingSparesTheFirstEntry", {9, 3, 9, 0, 0, 0, 0, 0, 0, 0}, 0, 3, 1},
    // Q 4 8 12 9; S -4 0 7, the same with and without
    {"TwoIsNotCapped", {2, 2, 2, 0, 0, 0, 0, 0}, 0, 3, 3},

    // more than half zeros: k goes down from 5 over 4 and 3 to 2 (zeros 3 > 2, 3 > 2, 2 > 1, 1 =
    // 1); Q 1 0.5 0.3; S 0.5 -0.3: k = 1. Without the guard S[4] = 23 would be the largest.
    {"ZeroGuardCutsTheCandidates", {1, 0, 0, 0, 9, 0, 0, 0, 0}, 0, 1, 1},
    {"ZeroGuardStopsAtTheFallback", {1, 0, 0, 0, 9, 0, 0, 0, 0}, 2, 2, 2},
    {"ZeroGuardTakesOneStepDownToTheFallback", {1, 0, 0, 0, 9, 0, 0, 0, 0}, 4, 4, 4},
    // three of the six candidates are zeros, which is not more than half: all six stay; C 0 0 5 10
    // 10 17 17, Q 0 0 8.3 25 20 48.2 41.3; S 0 -8.3 -8.3 21.7 -33.2 35.0: k = 6
    // capped: C 0 0 2 4 4 6 6, Q 0 0 1.3 4 3.2 6 5.1; S 0 -1.3 -1.3 3.5 -3.6 3.7: k = 6
    {"HalfZerosPassTheGuard", {0, 0, 5, 5, 0, 7, 0, 0, 0, 0, 0, 0}, 0, 6, 6},
    // zeros 1 2 2 3 4: k = 5 has 4 > 2, 4 has 3 > 2, 3 has 2 > 1, 2 has 2 > 1, 1 has 1 > 0: k = 0
    {"ZeroGuardReachesZero", {0, 0, 2, 0, 0, 3, 0, 0}, 0, 0, 0},
    {"DeviationInTheMiddle", {0, 0, 2, 0, 0}, 0, 0, 0},

    // the peak (index 0, as in LateDeviationDoesNotMatter) is before the fallback: k = 3 moves back
    // over the zeros to 1, past the fallback itself
    {"PullBackPassesTheFallback", {5, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 3, 1, 1},
    {"PullBackByOne", {5, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 2, 1, 1},
    // C 9 10 11 12, Q 81 50 40.3 36 28.8; S 31 -21.3 -5.3 2.9: k = 1, raised to the fallback
    {"PeakBeforeTheFallbackIsRaised", {9, 1, 1, 1, 0, 0, 0, 0, 0, 0}, 2, 2, 2},
    {"PeakWithoutAFallbackIsNot", {9, 1, 1, 1, 0, 0, 0, 0, 0, 0}, 0, 1, 1},
    // Q 16 32 48 36 as above; the peak after the fallback is kept
    {"PeakAfterTheFallbackIsKept", {4, 4, 4, 0, 0, 0, 0, 0, 0}, 2, 3, 3},
    // C 0 0 1 2 .. 8, Q 0 0 .33 1 1.8 2.67 3.57 4.5 5.44 6.4; S 0 -.33 -.33 -.13 -.07 and rising to
    // -.01: k = 1, moved back to 0
    {"PullBackReachesZero", {0, 0, 1, 1, 1, 1, 1, 1, 1, 1}, 0, 0, 0},
    {"PullBackReachesZeroFromTheFallback", {0, 0, 1, 1, 1, 1, 1, 1, 1, 1}, 2, 0, 0},

    // two thirds: k = 3 as in ThreeHeaderLines
    {"ThreeOfFourAreTooMany", {4, 4, 4, 0}, 0, 0, 0},
    {"ThreeOfFiveAreNot", {4, 4, 4, 0, 0}, 0, 3, 3},
    {"TwoOfThreeAreExactlyTwoThirds", {2, 1, 0}, 0, 2, 2},
    // the fallback is the result, not the rest of the estimate; Q as above, k = 3
    {"TooManyGiveTheFallback", {4, 4, 4, 0}, 1, 1, 1},
};

class GetHeaderLines : public testing::TestWithParam<HeaderCase> {};
TEST_P(GetHeaderLines, FindsTheSharpestBend) {
  EXPECT_EQ(get_header_lines(GetParam().diffs, GetParam().first, false), GetParam().uncapped);
}
TEST_P(GetHeaderLines, FindsTheSharpestBendOfCappedDeviations) {
  EXPECT_EQ(get_header_lines(GetParam().diffs, GetParam().first, true), GetParam().capped);
}
INSTANTIATE_TEST_SUITE_P(Table, GetHeaderLines, testing::ValuesIn(kHeaderCases),
                         testing_support::ByRule());

// --- the member function of the strategy ---------------------------------------------------------

// As in CappingSparesTheFirstEntry: 3 without capping, 1 with capping.
const Series kCapMatters = {9, 3, 9, 0, 0, 0, 0, 0, 0, 0};

class CalculateHeaderlines : public testing::Test {
 protected:
  CalculateHeaderlines() {
    strategy_.header_lines(SIZE_MAX);
    strategy_.valuation_.total_variation = 2.1;
  }

  parser::options options_;
  UnitStrategy strategy_{options_};
};

TEST_F(CalculateHeaderlines, DetectsAnUnknownHeader) {
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), 3u);
}

TEST_F(CalculateHeaderlines, CapsDeviationsIfBlanksSeparate) {
  strategy_.space_separated_ = true;
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), 1u);
}

TEST_F(CalculateHeaderlines, PassesTheFallbackOn) {
  strategy_.calculate_headerlines({2, 2, 0, 0, 0}, 2);
  EXPECT_EQ(strategy_.header_lines(), 2u);
}

TEST_F(CalculateHeaderlines, KnownHeaderLinesAreKept) {
  strategy_.header_lines(5);
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), 5u);
}

TEST_F(CalculateHeaderlines, KnownAbsenceOfHeaderLinesIsKept) {
  strategy_.header_lines(0);
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), 0u);
}

TEST_F(CalculateHeaderlines, TheLargestKnownNumberIsKept) {
  strategy_.header_lines(SIZE_MAX - 1);
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), SIZE_MAX - 1);
}

TEST_F(CalculateHeaderlines, NoVariationAtAllMeansNoHeader) {
  strategy_.valuation_.total_variation = 0.0;
  strategy_.calculate_headerlines(kCapMatters, 4);
  EXPECT_EQ(strategy_.header_lines(), 0u);
}

TEST_F(CalculateHeaderlines, KnownHeaderLinesAreKeptWithoutVariation) {
  strategy_.valuation_.total_variation = 0.0;
  strategy_.header_lines(5);
  strategy_.calculate_headerlines(kCapMatters, 4);
  EXPECT_EQ(strategy_.header_lines(), 5u);
}

TEST_F(CalculateHeaderlines, TheSmallestVariationCounts) {
  strategy_.valuation_.total_variation = std::numeric_limits<double>::denorm_min();
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.header_lines(), 3u);
}

TEST_F(CalculateHeaderlines, ChangesNoScore) {
  strategy_.calculate_headerlines(kCapMatters, 0);
  EXPECT_EQ(strategy_.valuation_.total_variation, 2.1);
  EXPECT_EQ(strategy_.num_variables(), -1);
}

}  // namespace
}  // namespace textio
