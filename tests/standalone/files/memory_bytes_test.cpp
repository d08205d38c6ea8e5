#include <vltextstream/standalone/files/memory_bytes.hpp>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/archives.hpp"

namespace textio::standalone {
namespace {

using testing_support::gzip_of;
using testing_support::zstd_of;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

std::string read_up_to(MemoryBytes& bytes, std::size_t size) {
  std::string out(size, '?');
  const ssize_t count = bytes.read(out.data(), size);
  out.resize(count < 0 ? 0 : static_cast<std::size_t>(count));
  return out;
}

TEST(MemoryBytesRead, GoesOnFromThePosition) {
  MemoryBytes bytes("abcdefg");
  EXPECT_EQ(read_up_to(bytes, 3), "abc");
  EXPECT_EQ(read_up_to(bytes, 0), "");
  EXPECT_EQ(read_up_to(bytes, 3), "def");
  EXPECT_EQ(read_up_to(bytes, 3), "g");
  EXPECT_EQ(read_up_to(bytes, 3), "");
}

TEST(MemoryBytesRead, OfNothingIsTheEnd) {
  MemoryBytes bytes{std::string_view()};
  EXPECT_EQ(read_up_to(bytes, 3), "");
}

TEST(MemoryBytesSeek, CountsFromStartPositionOrEnd) {
  MemoryBytes bytes("abcdefg");
  EXPECT_EQ(bytes.seek(5, SEEK_SET), 5);
  EXPECT_EQ(bytes.seek(-2, SEEK_CUR), 3);
  EXPECT_EQ(read_up_to(bytes, 1), "d");
  EXPECT_EQ(bytes.seek(-1, SEEK_END), 6);
  EXPECT_EQ(read_up_to(bytes, 9), "g");
}

TEST(MemoryBytesSeek, MayPassTheEnd) {
  MemoryBytes bytes("abc");
  constexpr auto kFar = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(bytes.seek(kFar, SEEK_SET), kFar);
  EXPECT_EQ(read_up_to(bytes, 1), "");
  EXPECT_EQ(bytes.seek(1, SEEK_CUR), -1);
  EXPECT_EQ(errno, EOVERFLOW);
}

TEST(MemoryBytesSeek, StaysWhereItWasOnAnError) {
  MemoryBytes bytes("abc");
  bytes.seek(1, SEEK_SET);
  EXPECT_EQ(bytes.seek(-1, SEEK_SET), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(read_up_to(bytes, 9), "bc");
}

// --- as a file ---------------------------------------------------------------------------------

std::string content_of(std::string_view bytes) {
  const File file(open_bytes(bytes), std::fclose);
  std::string out(100, '?');
  out.resize(std::fread(out.data(), 1, out.size(), file.get()));
  return out;
}

TEST(OpenBytes, UnpacksWhatIsCompressed) {
  EXPECT_EQ(content_of("x,y\n"), "x,y\n");
  EXPECT_EQ(content_of(""), "");
  EXPECT_EQ(content_of(gzip_of("x,y\n")), "x,y\n");
  EXPECT_EQ(content_of(zstd_of("x,y\n")), "x,y\n");
}

TEST(OpenBytes, GivesTheReasonWhenItRefuses) {
  errno = 0;
  EXPECT_EQ(open_bytes(gzip_of(gzip_of("x,y\n"))), nullptr);
  EXPECT_NE(errno, 0);
}

}  // namespace
}  // namespace textio::standalone
