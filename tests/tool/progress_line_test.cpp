#include "tool/progress_line.hpp"

#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using std::chrono::milliseconds;
using testing_support::ByRule;

// A terminal that records what it is sent, and a clock that only the test moves.
struct Desk {
  ProgressLine::Surroundings surroundings(bool is_terminal = true) {
    return {is_terminal, [this] { return time; },
            [this](std::string_view text) { written += text; }};
  }

  // What was written since the last call.
  std::string taken() { return std::exchange(written, {}); }

  ProgressLine::Time time;
  std::string written;
};

class ProgressLineTest : public testing::Test {
 protected:
  Desk desk_;
};

TEST_F(ProgressLineTest, WaitsForHalfASecond) {
  ProgressLine line(2000, desk_.surroundings());
  line.show(1);
  desk_.time += milliseconds(499);
  line.show(122);
  EXPECT_EQ(desk_.taken(), "");
  desk_.time += milliseconds(1);
  line.show(123);
  EXPECT_EQ(desk_.taken(), "\r  123 of 2,000 files");
}

TEST_F(ProgressLineTest, IsRewrittenTenTimesASecondAtMost) {
  ProgressLine line(20, desk_.surroundings());
  desk_.time += milliseconds(700);
  line.show(7);
  EXPECT_EQ(desk_.taken(), "\r  7 of 20 files");
  desk_.time += milliseconds(99);
  line.show(8);
  EXPECT_EQ(desk_.taken(), "");
  desk_.time += milliseconds(1);
  line.show(9);
  EXPECT_EQ(desk_.taken(), "\r  9 of 20 files");
}

TEST_F(ProgressLineTest, IsNotRewrittenForTheSameNumber) {
  ProgressLine line(20, desk_.surroundings());
  desk_.time += milliseconds(500);
  line.show(0);
  EXPECT_EQ(desk_.taken(), "\r  0 of 20 files");
  desk_.time += milliseconds(100);
  line.show(0);
  EXPECT_EQ(desk_.taken(), "");
  line.clear();
  desk_.taken();
  line.show(0);
  EXPECT_EQ(desk_.taken(), "\r  0 of 20 files");
}

// "  20 of 20 files" has 16 characters.
TEST_F(ProgressLineTest, IsOverwrittenByBlanksOnce) {
  ProgressLine line(20, desk_.surroundings());
  desk_.time += milliseconds(500);
  line.show(9);
  desk_.taken();
  line.clear();
  EXPECT_EQ(desk_.taken(), "\r                \r");
  line.clear();
  EXPECT_EQ(desk_.taken(), "");
}

TEST_F(ProgressLineTest, ComesBackBehindAMessage) {
  ProgressLine line(20, desk_.surroundings());
  desk_.time += milliseconds(500);
  line.show(9);
  line.clear();
  desk_.time += milliseconds(100);
  desk_.taken();
  line.show(10);
  EXPECT_EQ(desk_.taken(), "\r  10 of 20 files");
}

TEST_F(ProgressLineTest, IsNotClearedBeforeItWasShown) {
  ProgressLine line(20, desk_.surroundings());
  line.clear();
  line.show(3);
  line.clear();
  EXPECT_EQ(desk_.written, "");
}

TEST_F(ProgressLineTest, IsClearedAtItsEnd) {
  {
    ProgressLine line(20, desk_.surroundings());
    desk_.time += milliseconds(500);
    line.show(20);
    EXPECT_EQ(desk_.taken(), "\r  20 of 20 files");
  }
  EXPECT_EQ(desk_.taken(), "\r                \r");
}

struct SilentCase {
  const char* rule;
  std::size_t total;
  bool is_terminal;
};
std::ostream& operator<<(std::ostream& out, const SilentCase& row) { return out << row.rule; }

const SilentCase kSilentCases[] = {
    {"NoTerminal", 2000, false},
    {"OneFile", 1, true},
    {"NoFile", 0, true},
};

class SilentProgressLine : public testing::TestWithParam<SilentCase> {};
TEST_P(SilentProgressLine, IsNeverWritten) {
  Desk desk;
  {
    ProgressLine line(GetParam().total, desk.surroundings(GetParam().is_terminal));
    desk.time += milliseconds(10'000);
    line.show(GetParam().total);
    line.clear();
  }
  EXPECT_EQ(desk.written, "");
}
INSTANTIATE_TEST_SUITE_P(Table, SilentProgressLine, testing::ValuesIn(kSilentCases), ByRule());

struct NumberCase {
  const char* rule;
  std::size_t done;
  std::size_t total;
  std::string line;
};
std::ostream& operator<<(std::ostream& out, const NumberCase& row) { return out << row.rule; }

const NumberCase kNumberCases[] = {
    {"Few", 0, 2, "\r  0 of 2 files"},
    {"ThreeDigits", 100, 999, "\r  100 of 999 files"},
    {"FourDigits", 1000, 9999, "\r  1,000 of 9,999 files"},
    {"SixDigits", 999'999, 999'999, "\r  999,999 of 999,999 files"},
    {"SevenDigits", 1'000'000, 1'234'567, "\r  1,000,000 of 1,234,567 files"},
};

class ProgressLineNumbers : public testing::TestWithParam<NumberCase> {};
TEST_P(ProgressLineNumbers, AreGroupedByThreeDigits) {
  Desk desk;
  ProgressLine line(GetParam().total, desk.surroundings());
  desk.time += milliseconds(500);
  line.show(GetParam().done);
  EXPECT_EQ(desk.written, GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(Table, ProgressLineNumbers, testing::ValuesIn(kNumberCases), ByRule());

}  // namespace
}  // namespace textio::tool
