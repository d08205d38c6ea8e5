// Tests that a small world contains every series, and that the comparisons find what is wrong: the
// reference gets other choices than the library, or a record is changed.
#include "differential/small_worlds.hpp"

#include <cmath>
#include <limits>
#include <ostream>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "differential/comparison.hpp"
#include "support/rule_name.hpp"

namespace textio::differential {
namespace {

using testing::HasSubstr;

TEST(SmallWorld, CountsEverySeries) {
  EXPECT_EQ(SmallWorld(8, 0).size(), 1U);
  EXPECT_EQ(SmallWorld(8, 4).size(), 1U + 8 + 64 + 512 + 4096);
  EXPECT_EQ(SmallWorld(5, 8).size(), 488281U);
}

TEST(SmallWorld, GivesShorterSeriesFirst) {
  const SmallWorld world(3, 2);
  const std::vector<Series> expected = {{},     {0},    {1},    {2},    {0, 0}, {0, 1}, {0, 2},
                                        {1, 0}, {1, 1}, {1, 2}, {2, 0}, {2, 1}, {2, 2}};
  std::vector<Series> all;
  for (std::uint64_t number = 0; number < world.size(); ++number) {
    all.push_back(world.series(number));
  }
  EXPECT_EQ(all, expected);
}

TEST(SmallWorld, GivesEachTextOnce) {
  const SmallWorld world(kSmallAlphabetSize, 4);
  std::set<std::u16string> texts;
  for (std::uint64_t number = 0; number < world.size(); ++number) {
    texts.insert(small_text(world.series(number)));
  }
  EXPECT_EQ(texts.size(), world.size());
}

// The blocks of the vector code have 64 code units.
TEST(TextsAcrossBlocks, CrossABlockAfterTheirSecondUnit) {
  const Series comma_a_quote = {2, 0, 4};
  const std::vector<std::u16string> texts = texts_across_blocks(comma_a_quote);
  ASSERT_EQ(texts.size(), 2U);
  for (const std::u16string& text : texts) {
    EXPECT_EQ(text.substr(0, 62), std::u16string(61, u'b') + u'\n');
    EXPECT_EQ(text.substr(62, 2), u",a");
    EXPECT_EQ(text.substr(64, 1), u"\"");
  }
  EXPECT_EQ(texts[0].size(), 65U);
  EXPECT_EQ(texts[1].substr(65), std::u16string(64, u'b'));
}

TEST(SmallWorld, IsDividedIntoPartsCompletely) {
  const SmallWorld world(kSmallCounts, 4);
  std::multiset<Series> seen;
  for (const std::uint64_t part : {0U, 1U, 2U}) {
    EXPECT_FALSE(first_difference(world, {part, 3}, [&](const Series& series) {
      seen.insert(series);
      return std::string();
    }));
  }
  std::multiset<Series> all;
  for (std::uint64_t number = 0; number < world.size(); ++number) all.insert(world.series(number));
  EXPECT_EQ(seen, all);
}

TEST(SmallWorld, ReportsTheFirstSeriesThatDiffers) {
  const auto is_wrong = [](const Series& series) {
    return series.size() == 2 && series[1] == 1 ? std::string("wrong") : std::string();
  };
  const SmallWorld world(3, 3);
  const auto found = first_difference(world, {}, is_wrong);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->number, 5U);  // {0, 1}
  EXPECT_EQ(found->description, "wrong");
  const auto found_in_part = first_difference(world, {0, 2}, is_wrong);
  ASSERT_TRUE(found_in_part);
  EXPECT_EQ(found_in_part->number, 8U);  // {1, 1}
}

// ---------------------------------------------------------------------------------------------
// A record with one wrong member, by the smallest possible difference.

struct MemberCase {
  const char* rule;  // the member
  void (*change)(StrategyValuation& valuation);
};
std::ostream& operator<<(std::ostream& out, const MemberCase& row) { return out << row.rule; }

constexpr double kInfinity = std::numeric_limits<double>::infinity();

const MemberCase kMemberCases[] = {
    {"total_variation",
     [](StrategyValuation& valuation) { valuation.total_variation = std::nextafter(0.5, 1.0); }},
    {"data_variation", [](StrategyValuation& valuation) { valuation.data_variation = -0.0; }},
    {"num_lines", [](StrategyValuation& valuation) { ++valuation.num_lines; }},
    {"modal_field_count", [](StrategyValuation& valuation) { ++valuation.modal_field_count; }},
    {"num_variables", [](StrategyValuation& valuation) { ++valuation.num_variables; }},
    {"typed_columns", [](StrategyValuation& valuation) { ++valuation.typed_columns; }},
    {"date_columns", [](StrategyValuation& valuation) { ++valuation.date_columns; }},
    {"numeric_columns", [](StrategyValuation& valuation) { ++valuation.numeric_columns; }},
    {"datetime_columns", [](StrategyValuation& valuation) { ++valuation.datetime_columns; }},
    {"priors_rank", [](StrategyValuation& valuation) { valuation.priors_rank = kInfinity; }},
};

class WrongMember : public testing::TestWithParam<MemberCase> {};
TEST_P(WrongMember, IsNamedInTheDifference) {
  StrategyValuation library;
  reference::Valuation plain;
  library.total_variation = plain.total_variation = 0.5;
  library.data_variation = plain.data_variation = 0.0;
  library.priors_rank = plain.priors_rank = 18446744073709551616.0;
  ASSERT_EQ(difference_in_valuations(library, plain), "");
  GetParam().change(library);
  EXPECT_THAT(difference_in_valuations(library, plain),
              HasSubstr(std::string("valuation ") + GetParam().rule + ":"));
}
INSTANTIATE_TEST_SUITE_P(Table, WrongMember, testing::ValuesIn(kMemberCases),
                         testing_support::ByRule());

// ---------------------------------------------------------------------------------------------
// A reference with other choices, over a whole world.

Choices with_header_lines(std::size_t header_lines) {
  Choices choices;
  choices.header_lines = header_lines;
  return choices;
}

// No header line is given, and one. That matters once there are two lines and a delimiter in the
// second: "a" deviates from ",", and only the library takes it for data.
TEST(WrongReference, IsFoundInADetection) {
  const auto compare = [](const Series& series) {
    return difference_in_detection(small_text(series), with_header_lines(0), with_header_lines(1));
  };
  const auto found = first_difference(SmallWorld(kSmallAlphabetSize, 3), {}, compare);
  ASSERT_TRUE(found);
  EXPECT_EQ(small_text(SmallWorld(kSmallAlphabetSize, 3).series(found->number)), u"a\n,");
  EXPECT_THAT(found->description, HasSubstr("winner header lines: library 0, reference 1\n"));
}

// "a" is a comment for the reference, which samples no line of that text. It is the first
// difference.
TEST(WrongReference, IsFoundInAStrategy) {
  Choices with_comments;
  with_comments.comment_style = {u"a"};
  const auto compare = [&](const Series& series) {
    return difference_in_strategies(small_text(series), {}, with_comments, {1});
  };
  const auto found = first_difference(SmallWorld(kSmallAlphabetSize, 3), {}, compare);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->number, 1U);
  EXPECT_THAT(found->description, HasSubstr("line reader lines: library [0+1 ], reference []\n"));
  EXPECT_THAT(found->description, HasSubstr("fixed-width num_lines: library 1, reference 0\n"));
}

// Only for the reference, three lines are header lines; the one after them has a single field.
TEST(WrongReference, IsFoundInTheScores) {
  const std::string differences =
      difference_in_scores({2, 1, 2, 1}, with_header_lines(0), with_header_lines(3));
  EXPECT_THAT(differences, HasSubstr("units header_lines: library 0, reference 3\n"));
  EXPECT_THAT(differences, HasSubstr("units num_variables: library 2, reference 1\n"));
}

}  // namespace
}  // namespace textio::differential
