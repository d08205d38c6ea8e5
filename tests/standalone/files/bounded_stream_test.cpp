#include <vltextstream/standalone/files/bounded_stream.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include <vltextstream/standalone/files/read_problem.hpp>

#include "support/rule_name.hpp"
#include "support/scripted_bytes.hpp"

namespace textio::standalone {
namespace {

using testing_support::AllRead;
using testing_support::ByRule;
using testing_support::read_all;
using testing_support::ScriptedBytes;

BoundedStream bounded(const std::string& bytes, std::int64_t bound) {
  return {std::make_unique<ScriptedBytes>(bytes), bound};
}

struct BoundCase {
  const char* rule;
  std::string bytes;
  std::int64_t bound;
  std::string text;
  int error;
};
std::ostream& operator<<(std::ostream& out, const BoundCase& row) { return out << row.rule; }

const BoundCase kBoundCases[] = {
    {"EndsBelowTheBound", "abc", 4, "abc", 0},
    {"EndsAtTheBound", "abc", 3, "abc", 0},
    {"HasOneByteMore", "abc", 2, "ab", kTooManyBytes},
    {"HasManyMore", "abcdefgh", 3, "abc", kTooManyBytes},
    {"IsEmptyWithoutABound", "", 0, "", 0},
    {"AllowsNothing", "abc", 0, "", kTooManyBytes},
};

class BoundedStreamRead : public testing::TestWithParam<BoundCase> {};

TEST_P(BoundedStreamRead, GivesTheBytesBeforeTheBoundThenAnError) {
  const BoundCase& row = GetParam();
  for (const std::size_t size : {1U, 2U, 3U, 100U}) {
    for (const std::size_t piece : {std::size_t{1}, std::string::npos}) {
      auto inner = std::make_unique<ScriptedBytes>(row.bytes);
      inner->piece = piece;
      BoundedStream stream(std::move(inner), row.bound);
      const AllRead all = read_all(stream, size);
      EXPECT_EQ(all.text, row.text) << size;
      EXPECT_EQ(all.error, row.error) << size;
      EXPECT_EQ(read_all(stream).error, row.error);  // and again
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Table, BoundedStreamRead, testing::ValuesIn(kBoundCases), ByRule());

TEST(BoundedStream, GivesTheSameAfterGoingBack) {
  BoundedStream stream = bounded("abcdef", 4);
  EXPECT_EQ(read_all(stream).text, "abcd");
  EXPECT_EQ(stream.seek(2, SEEK_SET), 2);
  const AllRead all = read_all(stream);
  EXPECT_EQ(all.text, "cd");
  EXPECT_EQ(all.error, kTooManyBytes);
}

TEST(BoundedStream, ReadsNothingBeyondTheBound) {
  BoundedStream stream = bounded("abcdef", 4);
  for (const std::int64_t position : {5, 6, 100}) {
    EXPECT_EQ(stream.seek(position, SEEK_SET), position);
    EXPECT_EQ(read_all(stream).error, kTooManyBytes) << position;
    EXPECT_EQ(stream.seek(0, SEEK_CUR), position);
  }
  EXPECT_EQ(stream.seek(-1, SEEK_END), 5);
}

TEST(BoundedStream, AsksForNoBytesWithoutRoom) {
  BoundedStream stream = bounded("abc", 0);
  char unused = 0;
  EXPECT_EQ(stream.read(&unused, 0), 0);
}

TEST(BoundedStream, PassesTheErrorsOfItsInnerStream) {
  for (const std::size_t place : {0U, 2U, 3U}) {
    auto inner = std::make_unique<ScriptedBytes>("abcdef");
    inner->fails_at = place;
    BoundedStream stream(std::move(inner), 3);
    const AllRead all = read_all(stream);
    EXPECT_EQ(all.text.size(), place);
    EXPECT_EQ(all.error, EIO);
  }
}

TEST(BoundedStream, StaysWhereItWasWhenItsInnerStreamCannotGoBack) {
  auto inner = std::make_unique<ScriptedBytes>("abc");
  inner->goes_back = false;
  BoundedStream stream(std::move(inner), 2);
  char byte = 0;
  EXPECT_EQ(stream.read(&byte, 1), 1);
  EXPECT_EQ(stream.seek(0, SEEK_SET), -1);
  EXPECT_EQ(errno, ESPIPE);
  EXPECT_EQ(stream.read(&byte, 1), 1);
  EXPECT_EQ(byte, 'b');
}

}  // namespace
}  // namespace textio::standalone
