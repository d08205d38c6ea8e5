// The file layer of the stand-alone host: UTF-16 paths to C streams of text.
#include <vltextstream/host/file_layer.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>
#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using standalone::from_utf8;
using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::skippable_frame;
using testing_support::TempFolder;
using testing_support::zstd_of;

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File open(const std::string& path, const char* mode = "rb") {
  return {open_file(from_utf8(path), mode), &std::fclose};
}

std::string content_of(std::FILE* file) {
  std::string content;
  for (int byte = std::fgetc(file); byte != EOF; byte = std::fgetc(file)) {
    content.push_back(static_cast<char>(byte));
  }
  return content;
}

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// The errno of a failed open; 0 if there is a stream.
int refusal(const std::u16string& path, const char* mode = "rb") {
  errno = 0;
  const File file(open_file(path, mode), &std::fclose);
  const int reason = errno;
  return file ? 0 : reason;
}

// --- names -------------------------------------------------------------------------------------

struct NameCase {
  const char* rule;
  std::string name;
};
std::ostream& operator<<(std::ostream& out, const NameCase& row) { return out << row.rule; }

const NameCase kNames[] = {
    {"Ascii", "table.csv"},
    {"Blanks", " a  b "},
    {"NotInAscii", "caf\xC3\xA9.csv"},
    {"ThreeBytes", "\xE8\xA1\xA8.csv"},
    {"OutsideTheBasicPlane", "\xF0\x9F\x98\x80.csv"},
    {"Latin1", "caf\xE9.csv"},
    {"ShiftJisWithABackslash", "\x83\x5C.csv"},
    {"LoneContinuation", "\x80"},
    {"ByteOfAllOnes", "\xFF\xFF"},
    {"CutSequence", "a\xE2\x82"},
    {"OverlongSlash",
     "a\xC0\xAF"
     "b"},
    {"EncodedSurrogate", "\xED\xA0\x80"},
    {"LineEnd", "a\nb"},
    {"LongestName", std::string(255, 'x')},
};

class OpenFileName : public testing::TestWithParam<NameCase> {};

TEST_P(OpenFileName, LeadsToTheFile) {
  const TempFolder folder;
  const std::string path = folder.file(GetParam().name, "1,2\r\n\x1A\xFF");
  const File file = open(path);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "1,2\r\n\x1A\xFF");
}

TEST_P(OpenFileName, LeadsThroughAFolder) {
  const TempFolder folder;
  folder.folder(GetParam().name);
  const std::string path = folder.file(GetParam().name + "/t", "x");
  const File file = open(path);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "x");
}

TEST_P(OpenFileName, IsMissedWhenNothingIsThere) {
  const TempFolder folder;
  EXPECT_EQ(refusal(from_utf8(folder.path_of(GetParam().name))), ENOENT);
}

INSTANTIATE_TEST_SUITE_P(Table, OpenFileName, testing::ValuesIn(kNames), ByRule());

// --- refusals ----------------------------------------------------------------------------------

TEST(OpenFileRefusal, OfAFolder) {
  const TempFolder folder;
  for (const char* mode : {"rb", "r"}) {
    EXPECT_EQ(refusal(from_utf8(folder.path()), mode), EISDIR) << mode;
    EXPECT_EQ(refusal(from_utf8(folder.path() + "/"), mode), EISDIR) << mode;
    EXPECT_EQ(refusal(from_utf8(folder.path() + "/."), mode), EISDIR) << mode;
    EXPECT_EQ(refusal(u"/", mode), EISDIR) << mode;
  }
}

TEST(OpenFileRefusal, OfALinkToAFolder) {
  const TempFolder folder;
  const std::string link = folder.path_of("link");
  std::filesystem::create_directory_symlink(folder.folder("d"), link);
  EXPECT_EQ(refusal(from_utf8(link)), EISDIR);
}

std::size_t open_descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST(OpenFileRefusal, LeavesNothingOpen) {
  const TempFolder folder;
  const std::u16string path = from_utf8(folder.path());
  refusal(path);
  const std::size_t before = open_descriptors();
  for (int i = 0; i < 10; ++i) {
    EXPECT_EQ(refusal(path), EISDIR);
    EXPECT_EQ(refusal(from_utf8(folder.path_of("none"))), ENOENT);
  }
  EXPECT_EQ(open_descriptors(), before);
}

TEST(OpenFileRefusal, ReportsTheReasonOfTheSystem) {
  const TempFolder folder;
  const std::string file = folder.file("t", "x");
  EXPECT_EQ(refusal(u""), ENOENT);
  EXPECT_EQ(refusal(from_utf8(file + "/x")), ENOTDIR);
  EXPECT_EQ(refusal(from_utf8(file + "/")), ENOTDIR);
  EXPECT_EQ(refusal(from_utf8(folder.path_of("none/t"))), ENOENT);
  EXPECT_EQ(refusal(from_utf8(folder.path_of(std::string(256, 'x')))), ENAMETOOLONG);
  EXPECT_EQ(refusal(from_utf8(std::string(100'000, '/') + "x")), ENAMETOOLONG);
}

TEST(OpenFileRefusal, OfALinkThatLeadsNowhere) {
  const TempFolder folder;
  std::filesystem::create_symlink("none", folder.path_of("dangling"));
  std::filesystem::create_symlink("loop", folder.path_of("loop"));
  EXPECT_EQ(refusal(from_utf8(folder.path_of("dangling"))), ENOENT);
  EXPECT_EQ(refusal(from_utf8(folder.path_of("loop"))), ELOOP);
}

// The part before the NUL names an existing file, which must not be opened.
TEST(OpenFileRefusal, OfAPathWithANulInside) {
  const TempFolder folder;
  const std::u16string path = from_utf8(folder.file("t", "x"));
  EXPECT_NE(refusal(path + u'\0'), 0);
  EXPECT_NE(refusal(path + u'\0' + u".csv"), 0);
  EXPECT_NE(refusal(u'\0' + path), 0);
  EXPECT_NE(refusal(std::u16string(1, u'\0')), 0);
  EXPECT_NE(refusal(from_utf8(folder.path_of("new")) + u'\0', "wb"), 0);
  EXPECT_FALSE(std::filesystem::exists(folder.path_of("new")));
}

// A surrogate that is no escaped byte must not become an ASCII character either.
TEST(OpenFileRefusal, OfAPathWhoseSurrogatesHideNoBytes) {
  const TempFolder folder;
  const std::string file = folder.file("t", "x");
  std::u16string path = from_utf8(file);
  path[path.rfind(u'/')] = static_cast<char16_t>(0xDC00 + u'/');
  EXPECT_NE(refusal(path), 0);
  path = from_utf8(file) + static_cast<char16_t>(0xDC00);
  EXPECT_NE(refusal(path), 0);
}

// --- modes -------------------------------------------------------------------------------------

TEST(OpenFileMode, ReadsFromTheStart) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  for (const char* mode : {"r", "rb", "re", "rbm", "rc", "r,ccs=UTF+8"}) {
    const File file = open(path, mode);
    ASSERT_NE(file, nullptr) << mode;
    EXPECT_EQ(std::ftell(file.get()), 0) << mode;
    EXPECT_EQ(content_of(file.get()), "abc") << mode;
  }
}

TEST(OpenFileMode, OfReadingAloneDoesNotWrite) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  File file = open(path, "rb");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(std::fputc('x', file.get()), EOF);
  file.reset();
  EXPECT_EQ(content_of(path), "abc");
}

TEST(OpenFileMode, ThatWritesOrIsNoneIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  const std::string none = folder.path_of("none");
  for (const char* mode : {"w", "wb", "w+", "wx", "a", "ab", "a+", "r+", "rb+", "r+b", "re+b", "",
                           "?", "b", "R", "+r"}) {
    EXPECT_EQ(refusal(from_utf8(path), mode), EINVAL) << mode;
    EXPECT_EQ(refusal(from_utf8(none), mode), EINVAL) << mode;
    EXPECT_EQ(refusal(from_utf8(folder.path()), mode), EINVAL) << mode;
  }
  EXPECT_EQ(content_of(path), "abc");
  EXPECT_FALSE(std::filesystem::exists(none));
}

// --- streams -----------------------------------------------------------------------------------

TEST(OpenFileStream, IsTheCallersAlone) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  const File one = open(path);
  const File two = open(path);
  ASSERT_NE(one, nullptr);
  ASSERT_NE(two, nullptr);
  EXPECT_EQ(std::fgetc(one.get()), 'a');
  EXPECT_EQ(std::fgetc(one.get()), 'b');
  EXPECT_EQ(std::fgetc(two.get()), 'a');
}

TEST(OpenFileStream, SeeksAndPushesBack) {
  const TempFolder folder;
  const File file = open(folder.file("t", "abcdef"));
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(fseeko64(file.get(), 4, SEEK_SET), 0);
  const int byte = std::fgetc(file.get());
  EXPECT_EQ(byte, 'e');
  EXPECT_EQ(std::ungetc(byte, file.get()), 'e');
  EXPECT_EQ(ftello64(file.get()), 4);
}

TEST(OpenFileStream, OpensAnEmptyFileAndADevice) {
  const TempFolder folder;
  for (const std::string& path : {folder.file("t", ""), std::string("/dev/null")}) {
    const File file = open(path);
    ASSERT_NE(file, nullptr) << path;
    EXPECT_EQ(content_of(file.get()), "") << path;
  }
}

TEST(OpenFileStream, IsNotInheritedByOtherPrograms) {
  const TempFolder folder;
  const std::size_t before = open_descriptors();
  const File file = open(folder.file("t", "abc"));
  ASSERT_EQ(open_descriptors(), before + 1);
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry, gone) != folder.path_of("t")) continue;
    const int descriptor = std::stoi(entry.path().filename());
    EXPECT_EQ(fcntl(descriptor, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
  }
}

// --- what cannot seek --------------------------------------------------------------------------

// The reading end of a pipe with `bytes`. All bytes that fit are in the pipe from the start, and
// the writing end is closed.
class FilledPipe {
 public:
  explicit FilledPipe(const std::string& bytes) {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe");
    reading_end_ = ends[0];
    if (bytes.size() <= PIPE_BUF) {
      write_all(ends[1], bytes);
    } else {
      writer_ = std::thread(write_all, ends[1], bytes);
    }
  }
  FilledPipe(const FilledPipe&) = delete;
  FilledPipe& operator=(const FilledPipe&) = delete;
  ~FilledPipe() {
    close(reading_end_);
    if (writer_.joinable()) writer_.join();
  }

  int reading_end() const { return reading_end_; }
  std::string path() const { return "/dev/fd/" + std::to_string(reading_end_); }

 private:
  static void write_all(int end, const std::string& bytes) {
    std::size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t count = write(end, bytes.data() + done, bytes.size() - done);
      if (count < 0) break;
      done += static_cast<std::size_t>(count);
    }
    close(end);
  }

  int reading_end_ = -1;
  std::thread writer_;
};

TEST(OpenFileStream, OfAPipeGoesBack) {
  const std::string text(200'000, 'x');
  const FilledPipe input("1,2\n" + text);
  const File file = open(input.path());
  ASSERT_NE(file, nullptr);
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(std::ftell(file.get()), 0);
    EXPECT_TRUE(content_of(file.get()) == "1,2\n" + text);
    EXPECT_EQ(ftello64(file.get()), 200'004);
    std::rewind(file.get());
  }
  EXPECT_EQ(fseeko64(file.get(), 2, SEEK_SET), 0);
  EXPECT_EQ(std::fgetc(file.get()), '2');
}

TEST(OpenFileStream, OfAShortPipeIsComplete) {
  for (const char* text : {"", "a", "\x1F", "123456789", "1234567890", "12345678901"}) {
    const FilledPipe input(text);
    const File file = open(input.path());
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(content_of(file.get()), text);
  }
}

TEST(OpenFileStream, OfANamedPipeWaitsForItsWriter) {
  const TempFolder folder;
  const std::string path = folder.path_of("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] { std::ofstream(path) << "1,2\n"; });
  const File file = open(path);
  writer.join();
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "1,2\n");
}

TEST(OpenFileStream, OfAnEndlessDeviceIsReadAsFarAsAsked) {
  const File file = open("/dev/zero");
  ASSERT_NE(file, nullptr);
  std::string bytes(100'000, 'x');
  EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file.get()), bytes.size());
  EXPECT_EQ(bytes, std::string(100'000, '\0'));
}

// --- standard input ----------------------------------------------------------------------------

// Replaces standard input for the lifetime of the object.
class StandardInput {
 public:
  explicit StandardInput(int descriptor) : before_(dup(STDIN_FILENO)) {
    dup2(descriptor, STDIN_FILENO);
  }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;
  ~StandardInput() {
    dup2(before_, STDIN_FILENO);
    close(before_);
  }

 private:
  int before_;
};

struct OpenedFile {
  explicit OpenedFile(const std::string& path) : number(::open(path.c_str(), O_RDONLY)) {}
  OpenedFile(const OpenedFile&) = delete;
  OpenedFile& operator=(const OpenedFile&) = delete;
  ~OpenedFile() { close(number); }
  int number;
};

TEST(OpenFileDash, IsStandardInput) {
  const FilledPipe input("1,2\n");
  const StandardInput replaced(input.reading_end());
  const File file = open("-");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "1,2\n");
  std::rewind(file.get());
  EXPECT_EQ(content_of(file.get()), "1,2\n");
}

TEST(OpenFileDash, LeavesStandardInputOpen) {
  const FilledPipe input("1,2\n");
  const StandardInput replaced(input.reading_end());
  const std::size_t before = open_descriptors();
  open("-").reset();
  EXPECT_GE(fcntl(STDIN_FILENO, F_GETFD), 0);
  EXPECT_EQ(open_descriptors(), before);
}

TEST(OpenFileDash, OfAPipeIsRefusedTheSecondTime) {
  const FilledPipe first("1,2\n");
  const FilledPipe second("3,4\n");
  for (const FilledPipe* input : {&first, &second}) {
    const StandardInput replaced(input->reading_end());
    EXPECT_NE(open("-"), nullptr);
    EXPECT_EQ(refusal(u"-"), standalone::kStandardInputIsGone);
    EXPECT_EQ(refusal(u"-"), standalone::kStandardInputIsGone);
  }
}

// It starts at the current offset in the file, each time it is opened.
TEST(OpenFileDash, OfAFileIsReadEachTime) {
  const TempFolder folder;
  const OpenedFile input(folder.file("t", "title\n1,2\n"));
  ASSERT_EQ(lseek(input.number, 6, SEEK_SET), 6);
  const StandardInput replaced(input.number);
  for (int round = 0; round < 2; ++round) {
    const File file = open("-");
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::ftell(file.get()), 0);
    EXPECT_EQ(content_of(file.get()), "1,2\n");
  }
}

TEST(OpenFileDash, MayBeASocket) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  ASSERT_EQ(write(ends[1], "1,2\n", 4), 4);
  close(ends[1]);
  const StandardInput replaced(ends[0]);
  close(ends[0]);
  const File file = open("-");
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "1,2\n");
}

TEST(OpenFileDash, IsRefusedWhereStandardInputIsAFolderOrClosed) {
  const TempFolder folder;
  const OpenedFile input(folder.path());
  const StandardInput replaced(input.number);
  EXPECT_EQ(refusal(u"-"), EISDIR);
  close(STDIN_FILENO);
  EXPECT_EQ(refusal(u"-"), EBADF);
}

TEST(OpenFileDash, InAFolderIsAFile) {
  const TempFolder folder;
  const File file = open(folder.file("-", "a file"));
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "a file");
}

// --- compressed files --------------------------------------------------------------------------

struct ContentCase {
  const char* rule;
  std::string bytes;
  std::string text;
};
std::ostream& operator<<(std::ostream& out, const ContentCase& row) { return out << row.rule; }

const ContentCase kContents[] = {
    {"Plain", "x,y\n1,2\n", "x,y\n1,2\n"},
    {"Empty", "", ""},
    {"Gzip", gzip_of("x,y\n1,2\n"), "x,y\n1,2\n"},
    {"GzipOfNothing", gzip_of(""), ""},
    {"GzipOfTwoMembers", gzip_of("x,y\n") + gzip_of("1,2\n"), "x,y\n1,2\n"},
    {"Zstd", zstd_of("x,y\n1,2\n"), "x,y\n1,2\n"},
    {"ZstdOfNothing", zstd_of(""), ""},
    {"ZstdAfterASkippableFrame", skippable_frame("index") + zstd_of("x,y\n"), "x,y\n"},
    {"TextThatStartsLikeGzip", "\x1F\x8B,1,2\n3,4,5\n", "\x1F\x8B,1,2\n3,4,5\n"},
    {"TextThatStartsLikeBzip2", "BZh9,1,2\n3,4,5\n", "BZh9,1,2\n3,4,5\n"},
};

class OpenFileContent : public testing::TestWithParam<ContentCase> {
 protected:
  static void expect_text_twice(const File& file) {
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(std::ftell(file.get()), 0);
    EXPECT_EQ(content_of(file.get()), GetParam().text);
    std::rewind(file.get());
    EXPECT_EQ(content_of(file.get()), GetParam().text);
    EXPECT_EQ(std::ferror(file.get()), 0);
  }
};

TEST_P(OpenFileContent, IsRecognisedByTheFirstBytesOfAFile) {
  const TempFolder folder;
  expect_text_twice(open(folder.file("table", GetParam().bytes)));
}

TEST_P(OpenFileContent, IsRecognisedByTheFirstBytesOfAPipe) {
  const FilledPipe input(GetParam().bytes);
  expect_text_twice(open(input.path()));
}

TEST_P(OpenFileContent, IsRecognisedByTheFirstBytesOfStandardInput) {
  const TempFolder folder;
  const OpenedFile input(folder.file("table", GetParam().bytes));
  const StandardInput replaced(input.number);
  expect_text_twice(open("-"));
}

INSTANTIATE_TEST_SUITE_P(Table, OpenFileContent, testing::ValuesIn(kContents), ByRule());

struct ForeignCase {
  const char* rule;
  std::string bytes;
  int reason;
};
std::ostream& operator<<(std::ostream& out, const ForeignCase& row) { return out << row.rule; }

const ForeignCase kForeign[] = {
    {"Bzip2", "BZh9\x31\x41\x59\x26\x53\x59 and more", standalone::kFormatBzip2},
    {"Lz4", "\x04\x22\x4D\x18 and more", standalone::kFormatLz4},
    {"Xz", std::string("\xFD\x37zXZ\0 and more", 15), standalone::kFormatXz},
    {"Zip", "PK\x03\x04 and more", standalone::kFormatZip},
    {"GzipOfGzip", gzip_of(gzip_of("x")), standalone::kCompressedTwice},
    {"ZstdOfGzip", zstd_of(gzip_of("x")), standalone::kCompressedTwice},
    {"GzipOfZip", gzip_of("PK\x03\x04 and more"), standalone::kCompressedTwice},
};

class OpenFileForeign : public testing::TestWithParam<ForeignCase> {};
TEST_P(OpenFileForeign, FormatIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("table.csv", GetParam().bytes);
  const FilledPipe input(GetParam().bytes);
  const std::size_t before = open_descriptors();
  EXPECT_EQ(refusal(from_utf8(path)), GetParam().reason);
  EXPECT_EQ(refusal(from_utf8(input.path())), GetParam().reason);
  EXPECT_EQ(open_descriptors(), before);
}
INSTANTIATE_TEST_SUITE_P(Table, OpenFileForeign, testing::ValuesIn(kForeign), ByRule());

TEST(OpenFileArchive, OfTextReadTwiceFailsTwice) {
  const TempFolder folder;
  const std::string archive = gzip_of("x,y\n1,2\n");
  const File file = open(folder.file("t.gz", archive.substr(0, archive.size() - 1)));
  ASSERT_NE(file, nullptr);
  for (int round = 0; round < 2; ++round) {
    errno = 0;
    content_of(file.get());
    EXPECT_NE(std::ferror(file.get()), 0);
    EXPECT_EQ(errno, standalone::kDataEndTooEarly);
    std::rewind(file.get());
  }
}

TEST(OpenFileArchive, LeavesNothingOpen) {
  const TempFolder folder;
  const std::size_t before = open_descriptors();
  for (const std::string& bytes : {gzip_of("x,y\n"), zstd_of("x,y\n"), std::string("\x1F\x8B")}) {
    const FilledPipe input(bytes);
    const std::size_t with_pipe = open_descriptors();
    for (const std::string& path : {folder.file("t", bytes), input.path()}) {
      File file = open(path);
      ASSERT_NE(file, nullptr);
      content_of(file.get());
      file.reset();
    }
    EXPECT_LE(open_descriptors(), with_pipe);
  }
  EXPECT_EQ(open_descriptors(), before);
}

}  // namespace
}  // namespace textio
