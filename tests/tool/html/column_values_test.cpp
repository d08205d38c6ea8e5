#include "tool/html/column_values.hpp"

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/batches.hpp"
#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using reading::Column;
using reading::ColumnType;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_support::booleans;
using testing_support::ByRule;
using testing_support::dates;
using testing_support::integers;
using testing_support::reals;
using testing_support::texts;
using Counts = std::vector<std::size_t>;

constexpr std::int64_t kSmallest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kLargest = std::numeric_limits<std::int64_t>::max();
constexpr double kHuge = std::numeric_limits<double>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

Counts ends(std::size_t first, std::size_t last) {
  Counts counts(16, 0);
  counts.front() = first;
  counts.back() = last;
  return counts;
}

struct BarsCase {
  const char* rule;
  Column column;
  Counts bars;
  std::string least;
  std::string middle;
  std::string most;
};
std::ostream& operator<<(std::ostream& out, const BarsCase& row) { return out << row.rule; }

const BarsCase kBars[] = {
    {"ABarForEachWholeNumber", integers({3, 1, 1, 5}), {2, 0, 1, 0, 1}, "1", "1", "5"},
    {"TwoValues", integers({1, 2}), {1, 1}, "1", "1", "2"},
    {"SixteenBarsAtMost", integers({0, 15}), ends(1, 1), "0", "0", "15"},
    {"ALargerRangeHasBarsOfTheSameWidth",
     integers({0, 1, 2, 31}),
     {2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
     "0",
     "1",
     "31"},
    {"AsManyWholeNumbersInEachBar",
     integers({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}),
     {2, 2, 2, 2, 2, 2, 2, 2, 1},
     "0",
     "8",
     "16"},
    {"AllWholeNumbers", integers({kSmallest, kLargest, kLargest}), ends(1, 2),
     "-9223372036854775808", "9223372036854775807", "9223372036854775807"},
    {"Reals",
     reals({0.5, 0.0, 1.0}),
     {1, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 1},
     "0",
     "0.5",
     "1"},
    {"WhatIsNotFiniteHasNoPlace", reals({-kInfinity, 0.0, 1.0, kInfinity}), ends(1, 1), "0", "0",
     "1"},
    {"TheWholeRangeOfReals", reals({-kHuge, kHuge}), ends(1, 1), "", "", ""},
    {"Dates", dates({0, 2, 2}), {1, 0, 2}, "1970-01-01", "1970-01-03", "1970-01-03"},
    {"MissingOnesHaveNoPlace", integers({std::nullopt, 7, 8}), {1, 1}, "7", "7", "8"},
};

class ColumnBars : public testing::TestWithParam<BarsCase> {};
TEST_P(ColumnBars, CountWhatIsInEachPart) {
  const BarsCase& row = GetParam();
  const ColumnValues values = values_of(row.column, row.column.size);
  EXPECT_EQ(values.bars, row.bars);
  EXPECT_THAT(values.frequent, IsEmpty());
  if (row.least.empty()) return;  // written with some hundred digits
  EXPECT_EQ(values.least, row.least);
  EXPECT_EQ(values.middle, row.middle);
  EXPECT_EQ(values.most, row.most);
}
INSTANTIATE_TEST_SUITE_P(Table, ColumnBars, testing::ValuesIn(kBars), ByRule());

struct FrequentCase {
  const char* rule;
  Column column;
  std::vector<FrequentValue> frequent;
  std::size_t num_different;
};
std::ostream& operator<<(std::ostream& out, const FrequentCase& row) { return out << row.rule; }

const FrequentCase kFrequent[] = {
    {"MostFrequentFirst", texts({"a", "b", "b"}), {{"b", 2}, {"a", 1}}, 2},
    {"AsFrequentInTheirOrder", texts({"z", "y"}), {{"z", 1}, {"y", 1}}, 2},
    {"FiveAtMost",
     texts({"a", "b", "c", "d", "e", "f", "f"}),
     {{"f", 2}, {"a", 1}, {"b", 1}, {"c", 1}, {"d", 1}},
     6},
    {"AnEmptyTextIsOne", texts({"", ""}), {{"", 2}}, 1},
    {"Booleans", booleans({true, false, true}), {{"true", 2}, {"false", 1}}, 2},
    {"OneNumberHasNoRange", integers({4, 4, 4}), {{"4", 3}}, 1},
    {"NothingButMissing", integers({std::nullopt, std::nullopt}), {}, 0},
    {"NoRows", integers({}), {}, 0},
};

class ColumnFrequent : public testing::TestWithParam<FrequentCase> {};
TEST_P(ColumnFrequent, CountsEachValue) {
  const ColumnValues values = values_of(GetParam().column, GetParam().column.size);
  EXPECT_THAT(values.bars, IsEmpty());
  EXPECT_EQ(values.frequent, GetParam().frequent);
  EXPECT_EQ(values.num_different, GetParam().num_different);
}
INSTANTIATE_TEST_SUITE_P(Table, ColumnFrequent, testing::ValuesIn(kFrequent), ByRule());

TEST(ColumnValues, LooksAtTheFirstRowsAlone) {
  const ColumnValues values = values_of(integers({1, std::nullopt, 3, 900}), 3);
  EXPECT_EQ(values.num_rows, 3U);
  EXPECT_EQ(values.num_missing, 1U);
  EXPECT_THAT(values.bars, ElementsAre(1, 0, 1));
  EXPECT_EQ(values_of(integers({1}), 100).num_rows, 1U);
}

}  // namespace
}  // namespace textio::tool
