// Going back in a source that can be read only once.
#include <vltextstream/standalone/files/rewindable_stream.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "support/rule_name.hpp"
#include "support/scripted_bytes.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::read_all;
using testing_support::ScriptedBytes;

constexpr std::int64_t kKept = RewindableStream::kKeptBytes;
constexpr std::int64_t kBlock = RewindableStream::kBlockBytes;

// The bytes of a long input repeat after a prime number of bytes, so that adjacent blocks differ.
constexpr std::int64_t kPeriod = 65'521;

const std::string& pattern() {
  static const std::string two_periods = [] {
    std::string bytes;
    for (std::int64_t i = 0; i < 2 * kPeriod; ++i) {
      bytes.push_back(static_cast<char>(i % kPeriod * 7 + i % kPeriod / 251));
    }
    return bytes;
  }();
  return two_periods;
}

std::string_view bytes_at(std::int64_t position, std::size_t count) {
  return std::string_view(pattern()).substr(static_cast<std::size_t>(position % kPeriod), count);
}

// Any number of these bytes, without a string of that size.
class LongBytes : public ByteReader {
 public:
  explicit LongBytes(std::int64_t size, std::size_t piece) : size_(size), piece_(piece) {}

  ssize_t read(char* to, std::size_t size) override {
    const auto left = static_cast<std::size_t>(size_ - position_);
    const std::size_t most = std::min({size, piece_, left, static_cast<std::size_t>(kPeriod)});
    const std::size_t count = bytes_at(position_, most).copy(to, most);
    position_ += static_cast<std::int64_t>(count);
    return static_cast<ssize_t>(count);
  }

 private:
  std::int64_t size_;
  std::size_t piece_;
  std::int64_t position_ = 0;
};

RewindableStream long_stream(std::int64_t size, std::size_t piece = 100'000) {
  return RewindableStream(std::make_unique<LongBytes>(size, piece));
}

// Reads from `position` up to `end` and checks each byte.
void expect_bytes(RewindableStream& stream, std::int64_t position, std::int64_t end) {
  std::string piece(static_cast<std::size_t>(kPeriod), '\0');
  while (position < end) {
    const std::size_t ask = std::min(piece.size(), static_cast<std::size_t>(end - position));
    const ssize_t count = stream.read(piece.data(), ask);
    ASSERT_GT(count, 0) << position;
    const std::string_view got(piece.data(), static_cast<std::size_t>(count));
    ASSERT_TRUE(got == bytes_at(position, got.size())) << position;
    position += count;
  }
}

RewindableStream of_scripted(const std::string& text, std::size_t piece) {
  auto source = std::make_unique<ScriptedBytes>(text);
  source->piece = piece;
  return RewindableStream(std::move(source));
}

// --- what is kept ------------------------------------------------------------------------------

TEST(RewindableStreamRead, GivesTheSameForAnySplitting) {
  const std::string text = "abcdefghijklmnopqrstuvwxyz";
  for (const std::size_t piece : {1U, 2U, 3U, 25U, 26U, 27U}) {
    for (const std::size_t size : {1U, 2U, 3U, 25U, 26U, 27U}) {
      RewindableStream stream = of_scripted(text, piece);
      EXPECT_EQ(read_all(stream, size).text, text);
      EXPECT_EQ(stream.seek(0, SEEK_SET), 0);
      EXPECT_EQ(read_all(stream, size).text, text) << "again";
    }
  }
}

TEST(RewindableStreamRead, OfNoBytesAsksForNone) {
  RewindableStream stream = of_scripted("abc", 3);
  char none = 'x';
  EXPECT_EQ(stream.read(&none, 0), 0);
  EXPECT_EQ(read_all(stream).text, "abc");
}

struct LengthCase {
  const char* rule;
  std::int64_t length;  // of the input
  std::int64_t read;    // the number of bytes that are read before going back
  bool goes_back;
};
std::ostream& operator<<(std::ostream& out, const LengthCase& row) { return out << row.rule; }

const LengthCase kLengths[] = {
    {"NothingRead", 100, 0, true},
    {"JustBelowOneBlock", 2 * kBlock, kBlock - 1, true},
    {"ExactlyOneBlock", 2 * kBlock, kBlock, true},
    {"JustAboveOneBlock", 2 * kBlock, kBlock + 1, true},
    {"WholeSampleOfWideCharacters", kKept + 1, 4 * 4'194'304, true},
    {"ExactlyWhatIsKept", 2 * kKept, kKept, true},
    {"OneByteMore", 2 * kKept, kKept + 1, false},
    {"MuchMore", 2 * kKept, 2 * kKept, false},
};

class RewindableStreamLength : public testing::TestWithParam<LengthCase> {};
TEST_P(RewindableStreamLength, DecidesWhetherItGoesBack) {
  const auto [rule, length, read, goes_back] = GetParam();
  RewindableStream stream = long_stream(length, 4096);
  expect_bytes(stream, 0, read);
  errno = 0;
  EXPECT_EQ(stream.seek(0, SEEK_SET), goes_back ? 0 : -1);
  EXPECT_EQ(errno, goes_back ? 0 : ESPIPE);
  EXPECT_EQ(stream.seek(0, SEEK_CUR), goes_back ? 0 : read) << "a refused seek moves nothing";
  expect_bytes(stream, goes_back ? 0 : read, length);
}
INSTANTIATE_TEST_SUITE_P(Table, RewindableStreamLength, testing::ValuesIn(kLengths), ByRule());

TEST(RewindableStreamEnd, WhereTheRoomEndsForgetsNothing) {
  RewindableStream stream = long_stream(kKept);
  for (int round = 0; round < 2; ++round) {
    expect_bytes(stream, 0, kKept);
    char none = 'x';
    EXPECT_EQ(stream.read(&none, 1), 0);
    EXPECT_EQ(stream.seek(0, SEEK_SET), 0);
  }
}

TEST(RewindableStreamAfterForgetting, StillHasTheLastBytes) {
  RewindableStream stream = long_stream(2 * kKept, 10'007);
  const std::int64_t end = kKept + 12'345;
  expect_bytes(stream, 0, end);
  for (const std::int64_t back : {std::int64_t{1}, std::int64_t{8192}, kBlock}) {
    EXPECT_EQ(stream.seek(end - back, SEEK_SET), end - back) << back;
    expect_bytes(stream, end - back, end);
  }
  EXPECT_EQ(stream.seek(end - 3 * kBlock, SEEK_SET), -1);
  EXPECT_EQ(errno, ESPIPE);
}

// The C library reads from the start of one of its buffers before it goes forward.
TEST(RewindableStreamAfterForgetting, GoesForwardAsACStream) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      as_c_stream(std::make_unique<RewindableStream>(std::make_unique<LongBytes>(2 * kKept, 4099))),
      &std::fclose);
  std::int64_t position = kKept;
  ASSERT_EQ(fseeko64(file.get(), position, SEEK_SET), 0);
  for (int step = 0; step < 500; ++step) {
    EXPECT_EQ(static_cast<char>(std::fgetc(file.get())), bytes_at(position, 1).front());
    EXPECT_EQ(ftello64(file.get()), position + 1);
    position += 1 + step * 37;
    ASSERT_EQ(fseeko64(file.get(), position, SEEK_SET), 0) << position;
  }
  EXPECT_EQ(fseeko64(file.get(), 0, SEEK_SET), -1);
  EXPECT_EQ(errno, ESPIPE);
}

// --- seeking -----------------------------------------------------------------------------------

TEST(RewindableStreamSeek, ForwardReadsOn) {
  RewindableStream stream = long_stream(2 * kKept);
  EXPECT_EQ(stream.seek(kKept + 5 * kBlock + 3, SEEK_SET), kKept + 5 * kBlock + 3);
  expect_bytes(stream, kKept + 5 * kBlock + 3, kKept + 7 * kBlock);
}

TEST(RewindableStreamSeek, PastTheEndFindsNothing) {
  RewindableStream stream = of_scripted("abc", 2);
  EXPECT_EQ(stream.seek(10, SEEK_SET), 10);
  EXPECT_EQ(read_all(stream).text, "");
  EXPECT_EQ(stream.seek(-9, SEEK_CUR), 1);
  EXPECT_EQ(read_all(stream).text, "bc");
}

TEST(RewindableStreamSeek, BeforeTheStartIsRefused) {
  RewindableStream stream = of_scripted("abc", 3);
  EXPECT_EQ(stream.seek(-1, SEEK_CUR), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(read_all(stream).text, "abc");
}

TEST(RewindableStreamSeek, FromTheEndNeedsAnEndThatWasMet) {
  RewindableStream stream = of_scripted("abc", 3);
  EXPECT_EQ(stream.seek(0, SEEK_END), -1);
  EXPECT_EQ(errno, ESPIPE);
  EXPECT_EQ(read_all(stream).text, "abc");
  EXPECT_EQ(stream.seek(-2, SEEK_END), 1);
  EXPECT_EQ(read_all(stream).text, "bc");
}

// --- ends and errors ---------------------------------------------------------------------------

TEST(RewindableStreamEnd, IsThereForGood) {
  class Terminal : public ByteReader {
   public:
    ssize_t read(char* to, std::size_t /*size*/) override {
      *to = 'a';
      return ++reads_ % 2;  // a byte, an end, a byte, an end
    }

   private:
    int reads_ = 0;
  };
  RewindableStream stream(std::make_unique<Terminal>());
  EXPECT_EQ(read_all(stream).text, "a");
  EXPECT_EQ(read_all(stream).text, "");
  EXPECT_EQ(stream.seek(0, SEEK_SET), 0);
  EXPECT_EQ(read_all(stream).text, "a");
}

TEST(RewindableStreamError, ComesAgainAfterTheSameText) {
  class FailsOnce : public ByteReader {
   public:
    ssize_t read(char* to, std::size_t /*size*/) override {
      *to = 'a';
      errno = ENXIO;
      return ++reads_ == 2 ? -1 : 1;
    }

   private:
    int reads_ = 0;
  };
  RewindableStream stream(std::make_unique<FailsOnce>());
  for (int round = 0; round < 2; ++round) {
    const auto all = read_all(stream);
    EXPECT_EQ(all.text, "a");
    EXPECT_EQ(all.error, ENXIO);
    EXPECT_EQ(stream.seek(0, SEEK_SET), 0);
  }
}

}  // namespace
}  // namespace textio::standalone
