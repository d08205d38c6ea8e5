// Files and pipes as bytes, and bytes as C streams.
#include <vltextstream/standalone/files/byte_stream.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdio>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <thread>

#include <fcntl.h>
#include <signal.h>
#include <sys/time.h>
#include <unistd.h>

#include "support/rule_name.hpp"
#include "support/scripted_bytes.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::read_all;
using testing_support::ScriptedBytes;
using testing_support::TempFolder;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

bool is_open(int descriptor) { return ::fcntl(descriptor, F_GETFD) >= 0; }

// --- positions ---------------------------------------------------------------------------------

TEST(SumOfPositions, IsAPositionOrAnError) {
  constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
  EXPECT_EQ(sum_of_positions(5, -5), 0);
  EXPECT_EQ(sum_of_positions(kMost - 1, 1), kMost);
  EXPECT_EQ(sum_of_positions(5, -6), -1);
  EXPECT_EQ(errno, EINVAL);
  EXPECT_EQ(sum_of_positions(kMost, 1), -1);
  EXPECT_EQ(errno, EOVERFLOW);
}

// --- descriptors -------------------------------------------------------------------------------

TEST(ADescriptor, IsClosedOnce) {
  const int number = ::open("/dev/null", O_RDONLY);
  {
    Descriptor first(number);
    const Descriptor second(std::move(first));
    EXPECT_EQ(second.number(), number);
    EXPECT_TRUE(is_open(number));
  }
  EXPECT_FALSE(is_open(number));
}

TEST(ADescriptor, LeavesErrnoAlone) {
  errno = ENOTTY;
  { const Descriptor wrong(1'000'000); }
  EXPECT_EQ(errno, ENOTTY);
}

// --- files -------------------------------------------------------------------------------------

class FileBytesOf : public testing::Test {
 protected:
  FileBytes from(std::int64_t start) {
    return {Descriptor(::open(path_.c_str(), O_RDONLY)), start};
  }

  const TempFolder folder_;
  const std::string path_ = folder_.file("t", "abcdefgh");
};

TEST_F(FileBytesOf, CountFromTheStart) {
  FileBytes bytes = from(3);
  EXPECT_EQ(read_all(bytes, 2).text, "defgh");
  EXPECT_EQ(bytes.seek(0, SEEK_SET), 0);
  EXPECT_EQ(read_all(bytes).text, "defgh");
}

struct SeekCase {
  const char* rule;
  std::int64_t offset;
  int whence;
  std::int64_t position;  // -1: refused
  std::string rest;       // the bytes from there on
};
std::ostream& operator<<(std::ostream& out, const SeekCase& row) { return out << row.rule; }

const SeekCase kSeeks[] = {
    {"FromTheStart", 4, SEEK_SET, 4, "fghi"},
    {"Forward", 2, SEEK_CUR, 5, "ghi"},
    {"Back", -3, SEEK_CUR, 0, "bcdefghi"},
    {"FromTheEnd", -1, SEEK_END, 7, "i"},
    {"ToTheEnd", 0, SEEK_END, 8, ""},
    {"PastTheEnd", 9, SEEK_END, 17, ""},
    {"BeforeTheStart", -4, SEEK_CUR, -1, "efghi"},
    {"FarBeforeTheStart", std::numeric_limits<std::int64_t>::min(), SEEK_END, -1, "efghi"},
    {"ToThePlaceThatNoFileReaches", std::numeric_limits<std::int64_t>::max(), SEEK_SET,
     std::numeric_limits<std::int64_t>::max(), ""},
};

class FileBytesSeek : public testing::TestWithParam<SeekCase> {};
TEST_P(FileBytesSeek, MovesOrStays) {
  const TempFolder folder;
  FileBytes bytes(Descriptor(::open(folder.file("t", "abcdefghi").c_str(), O_RDONLY)), 1);
  char head[3];
  ASSERT_EQ(bytes.read(head, sizeof head), 3);
  EXPECT_EQ(bytes.seek(GetParam().offset, GetParam().whence), GetParam().position);
  EXPECT_EQ(read_all(bytes).text, GetParam().rest);
}
INSTANTIATE_TEST_SUITE_P(Table, FileBytesSeek, testing::ValuesIn(kSeeks), ByRule());

TEST_F(FileBytesOf, LeaveTheSharedPositionWhereItIs) {
  const Descriptor shared(::open(path_.c_str(), O_RDONLY));
  ASSERT_EQ(::lseek(shared.number(), 2, SEEK_SET), 2);
  FileBytes bytes(Descriptor(::dup(shared.number())), 2);
  EXPECT_EQ(read_all(bytes).text, "cdefgh");
  EXPECT_EQ(bytes.seek(0, SEEK_END), 6);
  EXPECT_EQ(::lseek(shared.number(), 0, SEEK_CUR), 2);
}

TEST_F(FileBytesOf, AreNoneInAFileThatGotShorter) {
  FileBytes bytes = from(5);
  ASSERT_EQ(::truncate(path_.c_str(), 2), 0);
  EXPECT_EQ(bytes.seek(0, SEEK_END), 0);
  EXPECT_EQ(read_all(bytes).text, "");
}

TEST_F(FileBytesOf, SayWhatTheSystemSays) {
  FileBytes bytes(Descriptor(-1), 0);
  EXPECT_EQ(read_all(bytes).error, EBADF);
  EXPECT_EQ(bytes.seek(0, SEEK_END), -1);
}

// --- pipes -------------------------------------------------------------------------------------

struct Pipe {
  explicit Pipe(int flags = 0) { EXPECT_EQ(::pipe2(ends, flags), 0); }
  int ends[2] = {-1, -1};
};

TEST(PipeBytesOf, ComeAsTheyAreWritten) {
  const Pipe pipe;
  PipeBytes bytes{Descriptor(pipe.ends[0])};
  char got[8];
  ASSERT_EQ(::write(pipe.ends[1], "abc", 3), 3);
  EXPECT_EQ(bytes.read(got, sizeof got), 3);
  ASSERT_EQ(::write(pipe.ends[1], "d", 1), 1);
  EXPECT_EQ(bytes.read(got, sizeof got), 1);
  ::close(pipe.ends[1]);
  EXPECT_EQ(bytes.read(got, sizeof got), 0);
}

TEST(PipeBytesOf, AreWaitedForAlsoWhereTheDescriptorDoesNot) {
  const Pipe pipe(O_NONBLOCK);
  PipeBytes bytes{Descriptor(pipe.ends[0])};
  std::thread writer([&] {
    EXPECT_EQ(::write(pipe.ends[1], "abc", 3), 3);
    ::close(pipe.ends[1]);
  });
  EXPECT_EQ(read_all(bytes).text, "abc");
  writer.join();
}

TEST(PipeBytesOf, SayWhatTheSystemSays) {
  PipeBytes bytes{Descriptor(::open("/", O_RDONLY))};
  EXPECT_EQ(read_all(bytes).error, EISDIR);
}

// The signal comes while the read waits, or before. Its handler writes the bytes that the read
// needs.
int interrupted_pipe = -1;
void write_and_close(int /*signal*/) {
  if (::write(interrupted_pipe, "abc", 3) == 3) ::close(interrupted_pipe);
}

TEST(PipeBytesOf, ComeThroughASignal) {
  const Pipe pipe;
  interrupted_pipe = pipe.ends[1];
  struct sigaction action {};
  struct sigaction before {};
  action.sa_handler = write_and_close;  // without SA_RESTART: the call is interrupted
  ASSERT_EQ(::sigaction(SIGALRM, &action, &before), 0);
  const itimerval soon = {{0, 0}, {0, 20'000}};
  ASSERT_EQ(::setitimer(ITIMER_REAL, &soon, nullptr), 0);
  PipeBytes bytes{Descriptor(pipe.ends[0])};
  const auto all = read_all(bytes);
  EXPECT_EQ(all.text, "abc");
  EXPECT_EQ(all.error, 0);
  ::sigaction(SIGALRM, &before, nullptr);
}

// --- C streams ---------------------------------------------------------------------------------

File c_stream(std::unique_ptr<ByteStream> bytes) {
  return {as_c_stream(std::move(bytes)), &std::fclose};
}

TEST(CStreamOfBytes, ReadsSeeksAndPushesBack) {
  const File file = c_stream(std::make_unique<ScriptedBytes>("abcdef"));
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::ftell(file.get()), 0);
  EXPECT_EQ(std::fgetc(file.get()), 'a');
  EXPECT_EQ(std::ungetc('a', file.get()), 'a');
  EXPECT_EQ(ftello64(file.get()), 0);
  EXPECT_EQ(fseeko64(file.get(), 5, SEEK_SET), 0);
  EXPECT_EQ(std::fgetc(file.get()), 'f');
  EXPECT_EQ(std::fgetc(file.get()), EOF);
  EXPECT_EQ(std::ferror(file.get()), 0);
}

TEST(CStreamOfBytes, HandsOnTheReasonOfAFailedRead) {
  auto bytes = std::make_unique<ScriptedBytes>("abcdef");
  bytes->fails_at = 2;
  bytes->error = ENXIO;
  const File file = c_stream(std::move(bytes));
  char got[6];
  errno = 0;
  EXPECT_EQ(std::fread(got, 1, sizeof got, file.get()), 2U);
  EXPECT_EQ(errno, ENXIO);
  EXPECT_NE(std::ferror(file.get()), 0);
}

TEST(CStreamOfBytes, MakesAnErrorOfAFailedAllocation) {
  auto bytes = std::make_unique<ScriptedBytes>("abcdef");
  bytes->fails_at = 0;
  bytes->goes_back = false;
  bytes->runs_out_of_memory = true;
  const File file = c_stream(std::move(bytes));
  errno = 0;
  EXPECT_EQ(std::fgetc(file.get()), EOF);
  EXPECT_EQ(errno, ENOMEM);
  errno = 0;
  EXPECT_EQ(fseeko64(file.get(), 100'000, SEEK_SET), -1);
  EXPECT_EQ(errno, ENOMEM);
}

TEST(CStreamOfBytes, ClosesWhatItReadsFrom) {
  const int number = ::open("/dev/null", O_RDONLY);
  std::FILE* const file = as_c_stream(std::make_unique<FileBytes>(Descriptor(number), 0));
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(is_open(number));
  EXPECT_EQ(std::fclose(file), 0);
  EXPECT_FALSE(is_open(number));
}

}  // namespace
}  // namespace textio::standalone
