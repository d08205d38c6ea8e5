#include <vltextstream/reading/account.hpp>

#include <string>

#include <gtest/gtest.h>

namespace textio::reading {
namespace {

TEST(LineFate, HasANameForEachValue) {
  EXPECT_EQ(to_string(LineFate::preamble), "preamble");
  EXPECT_EQ(to_string(LineFate::data), "data");
  EXPECT_EQ(to_string(LineFate::rule), "rule");
  EXPECT_EQ(to_string(LineFate::failed), "failed");
  EXPECT_EQ(to_string(static_cast<LineFate>(kLineFates)), "");
}

TEST(Oddity, HasANameForEachValue) {
  EXPECT_EQ(to_string(Oddity::misfit), "misfit");
  EXPECT_EQ(to_string(Oddity::short_row), "short-row");
  EXPECT_EQ(to_string(Oddity::widened), "widened");
  EXPECT_EQ(to_string(static_cast<Oddity>(kOddities)), "");
}

TEST(Account, JoinsLinesOfTheSameFate) {
  Account account;
  account.add(LineFate::names, 1, 10);
  account.add(LineFate::data, 2, 20);
  account.add(LineFate::data, 3, 30);
  account.add(LineFate::blank, 1, 1);
  account.add(LineFate::data, 1, 9);
  const std::vector<FateRun> runs = {{LineFate::names, 1, 1, 10},
                                     {LineFate::data, 2, 5, 50},
                                     {LineFate::blank, 7, 1, 1},
                                     {LineFate::data, 8, 1, 9}};
  EXPECT_EQ(account.runs, runs);
  EXPECT_EQ(account.lines_of(LineFate::data), 6U);
  EXPECT_EQ(account.bytes_of(LineFate::data), 59U);
  EXPECT_EQ(account.num_lines, 8U);
  EXPECT_EQ(account.num_bytes, 70U);
}

TEST(Account, TakesNoNoticeOfNothing) {
  Account account;
  account.add(LineFate::data, 0, 0);
  EXPECT_EQ(account, Account());
}

TEST(Account, KeepsABoundedNumberOfRunsAndAllSums) {
  Account account;
  for (std::size_t i = 0; i < Account::kMostRuns; ++i) {
    account.add(LineFate::data, 1, 2);
    account.add(LineFate::blank, 1, 1);
  }
  EXPECT_EQ(account.runs.size(), Account::kMostRuns);
  EXPECT_TRUE(account.has_more_runs);
  EXPECT_EQ(account.runs.back(), (FateRun{LineFate::blank, Account::kMostRuns, 1, 1}));
  EXPECT_EQ(account.lines_of(LineFate::data), Account::kMostRuns);
  EXPECT_EQ(account.num_bytes, 3 * Account::kMostRuns);
}

TEST(Account, DoesNotJoinLinesAfterRunsThatWereDropped) {
  Account account;
  for (std::size_t i = 0; i < Account::kMostRuns; ++i) {
    account.add(i % 2 == 0 ? LineFate::data : LineFate::blank, 1, 1);
  }
  account.add(LineFate::data, 1, 1);
  account.add(LineFate::blank, 1, 1);
  EXPECT_EQ(account.runs.back().num_lines, 1U);
}

TEST(Account, KeepsTheFirstPlacesAndCountsAll) {
  Account account;
  for (std::uint64_t i = 1; i <= Account::kMostPlaces + 5; ++i) {
    account.add(OddPlace{Oddity::misfit, i, 2, "x"});
  }
  account.add(OddPlace{Oddity::short_row, 7, 0, "y"});
  EXPECT_EQ(account.count_of(Oddity::misfit), Account::kMostPlaces + 5);
  EXPECT_EQ(account.count_of(Oddity::short_row), 1U);
  ASSERT_EQ(account.places.size(), Account::kMostPlaces + 1);
  EXPECT_EQ(account.places[Account::kMostPlaces - 1].line, Account::kMostPlaces);
  EXPECT_EQ(account.places.back().text, "y");
}

}  // namespace
}  // namespace textio::reading
