#include <vltextstream/scoring/line_counts.hpp>

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace textio {
namespace {

using Series = std::vector<std::size_t>;

TEST(LineCounts, KeepsEqualNeighboursOnce) {
  LineCounts counts;
  counts.add(3);
  counts.add(3, 2);
  counts.add(0, 1'000'000);
  counts.add(3);
  EXPECT_EQ(counts.size(), 1'000'004U);
  ASSERT_EQ(counts.runs().size(), 3U);
  EXPECT_EQ(counts.runs()[1].first, 3U);
  EXPECT_EQ(counts.runs()[1].fields, 0U);
  EXPECT_EQ(counts.end_of(1), 1'000'003U);
  EXPECT_EQ(counts.end_of(2), 1'000'004U);
}

TEST(LineCounts, AddsNoLinesForNone) {
  LineCounts counts;
  counts.add(3, 0);
  EXPECT_EQ(counts.size(), 0U);
  EXPECT_TRUE(counts.runs().empty());
}

TEST(LineCounts, FindsTheRunOfEachLine) {
  const LineCounts counts(Series{2, 2, 0, 5});
  EXPECT_EQ(counts.run_at(0), 0U);
  EXPECT_EQ(counts.run_at(1), 0U);
  EXPECT_EQ(counts.run_at(2), 1U);
  EXPECT_EQ(counts.run_at(3), 2U);
  EXPECT_EQ(counts.run_at(4), 3U) << "no line has this number";
  EXPECT_EQ(counts[1], 2U);
  EXPECT_EQ(counts[2], 0U);
  EXPECT_EQ(counts[3], 5U);
}

TEST(LineCounts, GivesBackWhatItIsMadeOf) {
  for (const Series& series : {Series{}, Series{0}, Series{1, 1, 2}, Series{0, 4, 4, 0, 0, 1}}) {
    EXPECT_EQ(LineCounts(series).to_vector(), series);
  }
}

TEST(LineCounts, KeepsAllOfManyRuns) {
  Series series;
  for (std::size_t i = 0; i < 1'000; ++i) series.push_back(i % 7);
  const LineCounts counts(series);
  EXPECT_EQ(counts.runs().size(), series.size());
  EXPECT_EQ(counts.to_vector(), series);
}

}  // namespace
}  // namespace textio
