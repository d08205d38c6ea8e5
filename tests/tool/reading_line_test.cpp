#include "tool/reading_line.hpp"

#include <chrono>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

namespace textio::tool {
namespace {

using std::chrono::milliseconds;

class ReadingLineOnATerminal : public testing::Test {
 protected:
  ProgressLine::Surroundings surroundings(bool is_terminal = true) {
    return {is_terminal, [this] { return now_; },
            [this](std::string_view text) { written_ += text; }};
  }

  static reading::Account account(std::uint64_t bytes, std::uint64_t rows) {
    reading::Account read;
    read.num_bytes = bytes;
    read.num_rows = rows;
    return read;
  }

  std::string taken() { return std::exchange(written_, {}); }

  ProgressLine::Time now_;
  std::string written_;
};

TEST_F(ReadingLineOnATerminal, WaitsAndThenShowsBytesRowsAndRate) {
  ReadingLine line(100'000'000, surroundings());
  line.show(account(1'000'000, 10));
  EXPECT_EQ(taken(), "");
  now_ += milliseconds(500);
  line.show(account(12'000'000, 345'678));
  EXPECT_EQ(taken(), "\r  12.0 of 100.0 MB, 345,678 rows, 24.0 MB/s");
  now_ += milliseconds(99);
  line.show(account(13'000'000, 400'000));
  EXPECT_EQ(taken(), "");
}

TEST_F(ReadingLineOnATerminal, CoversALongerLine) {
  ReadingLine line(0, surroundings());
  now_ += milliseconds(1000);
  line.show(account(20'000'000, 1000));
  EXPECT_EQ(taken(), "\r  20.0 MB, 1,000 rows, 20.0 MB/s");
  now_ += milliseconds(1000);
  line.show(account(1'000'000, 7));  // a second reading
  EXPECT_EQ(taken(), "\r  1.0 MB, 7 rows, 0.5 MB/s      ");
  line.clear();
  EXPECT_EQ(taken(), "\r                          \r");
  line.clear();
  EXPECT_EQ(taken(), "");
}

// More bytes than the file has: it is compressed.
TEST_F(ReadingLineOnATerminal, LeavesOutATotalThatIsExceeded) {
  ReadingLine line(1'000'000, surroundings());
  now_ += milliseconds(1000);
  line.show(account(2'000'000, 1));
  EXPECT_EQ(taken(), "\r  2.0 MB, 1 rows, 2.0 MB/s");
}

TEST_F(ReadingLineOnATerminal, IsForTerminalsOnly) {
  ReadingLine line(0, surroundings(false));
  now_ += milliseconds(1000);
  line.show(account(1, 1));
  line.clear();
  EXPECT_EQ(taken(), "");
}

}  // namespace
}  // namespace textio::tool
