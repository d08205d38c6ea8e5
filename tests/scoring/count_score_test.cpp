#include <vltextstream/scoring/count_score.hpp>

#include <cstddef>
#include <optional>
#include <ostream>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;

using Series = std::vector<std::size_t>;

constexpr double kNone = StrategyValuation::kNotMeasured;

struct ScoreCase {
  const char* rule;
  Series counts;
  HeaderLines headers;
  std::int32_t modal;
  double total_variation;
  double data_variation;
  std::uint64_t num_variables;
  std::optional<std::size_t> header_lines;
  bool has_columns;
};
std::ostream& operator<<(std::ostream& out, const ScoreCase& row) { return out << row.rule; }

constexpr std::nullopt_t kFree = std::nullopt;

// The series of ten lines: deviations 2, 1 and eight zeros, a mean of 0.3.
// clang-format off
const ScoreCase kScoreCases[] = {
    {"NoLinesHaveNoColumns", {}, {kFree, true}, 1, kNone, kNone, 1, 0, false},
    {"NoLinesKeepAGivenHeader", {}, {4, false}, 1, kNone, kNone, 1, 4, false},
    {"OneFieldOnEachLineIsNoTable", {1, 1}, {kFree, true}, 1, kNone, kNone, 1, 0, false},
    {"OneFieldOnEachLineIsACandidateIfTheHeaderIsGiven", {1, 1}, {0, false}, 1, kNone, kNone, 1, 0, true},
    {"ARegularTableHasNoHeader", {3, 3, 3}, {kFree, true}, 3, 0, 0, 3, 0, true},
    {"LinesOfOneFieldComeBeforeTheData", {1, 1, 3, 3, 3, 3, 3, 3, 3, 3}, {kFree, true}, 3, 0.4, 0, 3, 2, true},
    {"AGivenHeaderStands", {1, 3, 3, 3}, {1, false}, 3, 0.5, 0, 3, 1, true},
    {"BlankLinesDoNotDeviate", {0, 3, 0, 3}, {kFree, true}, 3, 0, 0, 3, 1, true},
    {"TooFewDataLinesOverrideAGivenHeader", {1, 1, 5}, {0, false}, 5, 4.0 * 2 / 3, 4.0 * 2 / 3, 5, 0, true},
    {"ASingleDataLineCannotBeMeasured", {0, 4}, {0, false}, 4, kNone, kNone, 1, 1, true},
    {"TheWidestLineCounts", {2, 2, 2, 3}, {kFree, true}, 2, 0, 0, 3, 0, true},
};
// clang-format on

class ScoreCounts : public testing::TestWithParam<ScoreCase> {};
TEST_P(ScoreCounts, FollowsFromTheCountsAlone) {
  const ScoreCase& row = GetParam();
  const CountScore score = score_counts(LineCounts(row.counts), row.headers, {});
  EXPECT_EQ(score.valuation.num_lines, row.counts.size());
  EXPECT_EQ(score.valuation.modal_field_count, row.modal);
  EXPECT_DOUBLE_EQ(score.valuation.total_variation, row.total_variation);
  EXPECT_DOUBLE_EQ(score.valuation.data_variation, row.data_variation);
  EXPECT_EQ(score.valuation.num_variables, row.num_variables);
  EXPECT_EQ(score.header_lines, row.header_lines);
  EXPECT_EQ(score.has_columns, row.has_columns);
}
INSTANTIATE_TEST_SUITE_P(Table, ScoreCounts, testing::ValuesIn(kScoreCases), ByRule());

TEST(ScoreCountsOfNothing, KeepsWhatCannotBeMeasured) {
  StrategyValuation before;
  before.priors_rank = 2.0;
  before.num_variables = 7;
  const CountScore score = score_counts(LineCounts(), {std::nullopt, true}, before);
  EXPECT_EQ(score.valuation.priors_rank, 2.0);
  EXPECT_EQ(score.valuation.num_variables, 7U);
}

}  // namespace
}  // namespace textio
