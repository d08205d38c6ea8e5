#include <vltextstream/scoring/deviations.hpp>

#include <cmath>
#include <cstddef>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/scoring/line_statistics.hpp>
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;

using Series = std::vector<std::size_t>;

struct DeviationsCase {
  const char* rule;
  Series counts;  // with the modal number 3
  Series diffs;
};
std::ostream& operator<<(std::ostream& out, const DeviationsCase& row) { return out << row.rule; }

const DeviationsCase kCases[] = {
    {"NoLine", {}, {}},
    {"NoModalLine", {1, 2, 4}, {}},
    {"OneModalLine", {3}, {0}},
    {"HeaderAndData", {1, 1, 3, 3, 3}, {2, 2, 0, 0, 0}},
    {"EmptyLinesAreLeftOut", {0, 1, 0, 0, 4, 3, 0, 3}, {2, 1, 0, 0}},
    {"LinesAfterTheLastModalOneAreLeftOut", {3, 2, 3, 5, 7, 1}, {0, 1, 0}},
    {"NoTwoNeighboursAgree", {1, 3, 5, 3, 9, 3}, {2, 0, 2, 0, 6, 0}},
};

class DeviationsOfCounts : public testing::TestWithParam<DeviationsCase> {
 protected:
  const LineCounts counts_{GetParam().counts};
  const Deviations diffs_{counts_, 3};
};

TEST_P(DeviationsOfCounts, AreThoseOfTheLinesThatAreNotEmpty) {
  EXPECT_EQ(diffs_.to_vector(), GetParam().diffs);
  EXPECT_EQ(diffs_.size(), GetParam().diffs.size());
}

// A second route: the statistics of the list, from each line on and from beyond the list.
TEST_P(DeviationsOfCounts, VaryAsTheirListDoes) {
  const Series& list = GetParam().diffs;
  const double total = get_total_variation(list);
  EXPECT_EQ(diffs_.total_variation(), total);
  for (std::size_t header_lines = 0; header_lines <= list.size() + 2; ++header_lines) {
    const double expected = get_data_variation(list, header_lines, total);
    EXPECT_EQ(diffs_.data_variation(header_lines, total), expected) << header_lines;
    EXPECT_EQ(std::signbit(diffs_.data_variation(header_lines, total)), std::signbit(expected));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, DeviationsOfCounts, testing::ValuesIn(kCases), ByRule());

}  // namespace
}  // namespace textio
