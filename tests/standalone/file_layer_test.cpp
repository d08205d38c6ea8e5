// The file layer of the stand-alone host: UTF-16 paths to C streams.
#include "host/file_layer.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>

#include <unistd.h>

#include "standalone/utf_text.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using standalone::from_utf8;
using testing_support::ByRule;
using testing_support::TempFolder;

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

// The reason why nothing was opened; 0 when a stream came back.
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

TEST(OpenFileRefusal, TellsTheReasonOfTheSystem) {
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

// What stands before the NUL names a file that is there; it must not be taken for it.
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

// A surrogate that hides no byte is no ASCII character either.
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
  for (const char* mode : {"r", "rb", "r+", "rb+", "r+b"}) {
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

TEST(OpenFileMode, OfWritingMakesTheFileAnew) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  for (const std::string& target : {path, folder.path_of("n\xC3\xA9w")}) {
    File file = open(target, "wb");
    ASSERT_NE(file, nullptr);
    EXPECT_NE(std::fputs("x\n", file.get()), EOF);
    file.reset();
    EXPECT_EQ(content_of(target), "x\n");
  }
}

TEST(OpenFileMode, OfAppendingKeepsWhatIsThere) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  File file = open(path, "ab");
  ASSERT_NE(file, nullptr);
  std::fputs("de", file.get());
  file.reset();
  EXPECT_EQ(content_of(path), "abcde");
}

TEST(OpenFileMode, OfExclusiveCreationRefusesWhatIsThere) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  EXPECT_EQ(refusal(from_utf8(path), "wbx"), EEXIST);
  EXPECT_EQ(content_of(path), "abc");
}

TEST(OpenFileMode, OfWritingIsRefusedForAFolder) {
  const TempFolder folder;
  EXPECT_EQ(refusal(from_utf8(folder.path()), "wb"), EISDIR);
  EXPECT_EQ(refusal(from_utf8(folder.path()), "r+b"), EISDIR);
}

TEST(OpenFileMode, ThatIsNoneIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("t", "abc");
  for (const char* mode : {"", "?", "b"}) {
    EXPECT_EQ(refusal(from_utf8(path), mode), EINVAL) << mode;
  }
  EXPECT_EQ(content_of(path), "abc");
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

TEST(OpenFileStream, OpensAPipe) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  ASSERT_EQ(write(ends[1], "1,2", 3), 3);
  ASSERT_EQ(close(ends[1]), 0);
  const File file = open("/dev/fd/" + std::to_string(ends[0]));
  close(ends[0]);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(content_of(file.get()), "1,2");
}

}  // namespace
}  // namespace textio
