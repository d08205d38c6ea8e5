// Where a text may come from: files, pipes, standard input, compressed files; and what the tool
// says when it cannot be read.
#include <algorithm>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include "support/archives.hpp"
#include "support/command.hpp"
#include "support/example_cases.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::example_cases;
using testing_support::ExampleCase;
using testing_support::gzip_of;
using testing_support::run_command;
using testing_support::TempFolder;
using testing_support::zstd_of;

using Arguments = std::vector<std::string>;

// `input` is standard input as a file.
CommandResult vltext(const Arguments& arguments, const std::string& input = {}) {
  return run_command(VLTEXT_PROGRAM, arguments, input);
}

// The same with `input` in a pipe.
CommandResult vltext_with_a_pipe(Arguments arguments, const std::string& input) {
  arguments.insert(arguments.begin(), {"-c", "cat | \"$0\" \"$@\"", VLTEXT_PROGRAM});
  return run_command("/bin/sh", arguments, input);
}

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// --- every way in gives the same answer ---------------------------------------------------------

// The answer for the one file, without its name.
nlohmann::json document_of(const CommandResult& result, int highest_status = 0) {
  EXPECT_LE(result.status, highest_status);
  EXPECT_EQ(result.err, "");
  nlohmann::json document = nlohmann::json::parse(result.out, nullptr, false);
  if (document.is_object() && document["files"].size() == 1) document["files"][0].erase("file");
  return document;
}

// Some examples are no tables, or doubtful.
constexpr int kHighestStatus = 1;

class ExamplesFromElsewhere : public testing::TestWithParam<ExampleCase> {
 protected:
  Arguments arguments(const std::string& file) const {
    Arguments all = {"--json", file};
    all.insert(all.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    return all;
  }

  nlohmann::json document_of_file(const std::string& bytes) const {
    const TempFolder folder;
    return document_of(vltext(arguments(folder.file("table", bytes))), kHighestStatus);
  }

  const std::string bytes_ = content_of(GetParam().path());
  const nlohmann::json expected_ =
      document_of(vltext(arguments(GetParam().path())), kHighestStatus);
};

TEST_P(ExamplesFromElsewhere, AreLaidOutAlike) {
  ASSERT_EQ(expected_["files"].size(), 1U);
  EXPECT_EQ(document_of_file(gzip_of(bytes_)), expected_);
  EXPECT_EQ(document_of_file(zstd_of(bytes_)), expected_);
  EXPECT_EQ(document_of(vltext(arguments("-"), bytes_), kHighestStatus), expected_);
  EXPECT_EQ(document_of(vltext(arguments("-"), gzip_of(bytes_)), kHighestStatus), expected_);
  EXPECT_EQ(document_of(vltext_with_a_pipe(arguments("-"), bytes_), kHighestStatus), expected_);
  EXPECT_EQ(document_of(vltext_with_a_pipe(arguments("-"), zstd_of(bytes_)), kHighestStatus),
            expected_);
}

std::string name_of_case(const testing::TestParamInfo<ExampleCase>& info) {
  std::string name = info.param.file;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
  return name;
}
INSTANTIATE_TEST_SUITE_P(Files, ExamplesFromElsewhere, testing::ValuesIn(example_cases()),
                         name_of_case);

// --- standard input and pipes --------------------------------------------------------------------

const std::string kTable = "name;size\na;1\nb;2\n";

struct Disguise {
  const char* rule;
  std::string bytes;
};
std::ostream& operator<<(std::ostream& out, const Disguise& row) { return out << row.rule; }

const Disguise kDisguises[] = {
    {"Plain", kTable},
    {"Gzip", gzip_of(kTable)},
    {"GzipOfTwoMembers", gzip_of(kTable.substr(0, 5)) + gzip_of(kTable.substr(5))},
    {"Zstd", zstd_of(kTable)},
    {"ZstdOfTwoFrames", zstd_of(kTable.substr(0, 5)) + zstd_of(kTable.substr(5))},
};

class ToolInput : public testing::TestWithParam<Disguise> {
 protected:
  static void expect_table(const CommandResult& result) {
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("delimited by semicolon"));
    EXPECT_THAT(result.out, HasSubstr("all 3 lines"));
  }

  const TempFolder folder_;
};

TEST_P(ToolInput, MayBeAFileOfAnyName) {
  expect_table(vltext({folder_.file("table.txt", GetParam().bytes)}));
  expect_table(vltext({folder_.file("table.zip", GetParam().bytes)}));
}

TEST_P(ToolInput, MayBeStandardInput) {
  expect_table(vltext({"-"}, GetParam().bytes));
  expect_table(vltext_with_a_pipe({"-"}, GetParam().bytes));
}

TEST_P(ToolInput, MayBeANamedPipe) {
  const std::string pipe = folder_.path_of("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  expect_table(run_command(
      "/bin/sh", {"-c", "exec 3<&0; cat <&3 > \"$1\" & \"$0\" \"$1\"", VLTEXT_PROGRAM, pipe},
      GetParam().bytes));
}

TEST_P(ToolInput, MayBeTheOutputOfAnotherProgram) {
  expect_table(vltext_with_a_pipe({"/dev/fd/0"}, GetParam().bytes));
}

INSTANTIATE_TEST_SUITE_P(Table, ToolInput, testing::ValuesIn(kDisguises), ByRule());

// More than a pipe holds, and the rest is never read.
TEST(ToolStandardInput, MayBeLongerThanWhatIsRead) {
  const CommandResult result =
      run_command("/bin/sh", {"-c", "yes 'abc;1.5' | head -c 40000000 | \"$0\" -", VLTEXT_PROGRAM});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("delimited by semicolon"));
}

TEST(ToolStandardInput, OfAPipeIsReadOnce) {
  const CommandResult result = vltext_with_a_pipe({"-", "-"}, kTable);
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, HasSubstr("delimited by semicolon"));
  EXPECT_EQ(result.err, "vltext: cannot open '-': standard input has been read already\n");
}

TEST(ToolStandardInput, OfAFileIsReadAsOftenAsAsked) {
  const CommandResult result = vltext({"--json", "-", "-"}, kTable);
  EXPECT_EQ(result.status, 0);
  const auto files = nlohmann::json::parse(result.out)["files"];
  ASSERT_EQ(files.size(), 2U);
  EXPECT_EQ(files[0], files[1]);
  EXPECT_EQ(files[0]["file"], "-");
}

TEST(ToolStandardInput, MayBeEmpty) {
  for (const CommandResult& result : {vltext({"-"}), vltext_with_a_pipe({"-"}, ""),
                                      vltext({"-"}, gzip_of("")), vltext({"-"}, zstd_of(""))}) {
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.out, HasSubstr("all 0 lines"));
  }
}

// The encoding is found in a pipe and in a compressed file as well.
TEST(ToolStandardInput, IsLookedAtForItsEncoding) {
  const std::string bytes(
      "\xFF\xFE"
      "1\0;\0"
      "2\0\n\0"
      "3\0;\0"
      "4\0\n\0",
      18);
  for (const std::string& input : {bytes, gzip_of(bytes), zstd_of(bytes)}) {
    EXPECT_THAT(vltext({"-"}, input).out, HasSubstr("UTF-16"));
    EXPECT_THAT(vltext_with_a_pipe({"-"}, input).out, HasSubstr("UTF-16"));
  }
}

// --- what cannot be read -------------------------------------------------------------------------

// A text whose archives are longer than the bytes that are read for the encoding.
std::string long_table() {
  std::string text = "name;size\n";
  unsigned value = 1;
  while (text.size() < 400'000) {
    value = value * 1'664'525 + 1'013'904'223;
    text += std::to_string(value) + ';' + std::to_string(value >> 7) + '\n';
  }
  return text;
}

std::string cut(const std::string& bytes, std::size_t off_end) {
  return bytes.substr(0, bytes.size() - off_end);
}

std::string with_wrong_byte(std::string bytes, std::size_t from_end) {
  char& byte = bytes[bytes.size() - from_end];
  byte = static_cast<char>(~byte);
  return bytes;
}

const char* const kAllLines = "1000000";
const char* const kTooEarly = "the compressed data end too early";
const char* const kDamaged = "the compressed data are damaged";

struct BadFile {
  const char* rule;
  std::string bytes;
  std::string reason;
};
std::ostream& operator<<(std::ostream& out, const BadFile& row) { return out << row.rule; }

const BadFile kBadFiles[] = {
    {"GzipHeaderAlone", "\x1F\x8B\x08", kTooEarly},
    {"GzipCutOff", cut(gzip_of(kTable), 1), kTooEarly},
    {"GzipCutInHalf", cut(gzip_of(kTable), 20), kTooEarly},
    {"LongGzipCutOff", cut(gzip_of(long_table()), 1), kTooEarly},
    {"LongGzipCutInHalf", cut(gzip_of(long_table()), 100'000), kTooEarly},
    {"GzipOfWrongChecksum", with_wrong_byte(gzip_of(kTable), 8), kDamaged},
    {"GzipOfWrongLength", with_wrong_byte(gzip_of(kTable), 1), kDamaged},
    {"LongGzipOfWrongChecksum", with_wrong_byte(gzip_of(long_table()), 8), kDamaged},
    {"OtherBytesAfterGzip", gzip_of(kTable) + kTable, kDamaged},
    {"ZstdMagicAlone", "\x28\xB5\x2F\xFD", kTooEarly},
    {"ZstdCutOff", cut(zstd_of(kTable), 1), kTooEarly},
    {"LongZstdCutInHalf", cut(zstd_of(long_table()), 100'000), kTooEarly},
    {"ZstdOfWrongChecksum", with_wrong_byte(zstd_of(kTable), 1), kDamaged},
    {"LongZstdOfWrongChecksum", with_wrong_byte(zstd_of(long_table()), 1), kDamaged},
    {"Bzip2", "BZh9\x31\x41\x59\x26\x53\x59 and more", "it is compressed with bzip2"},
    {"Xz", std::string("\xFD\x37zXZ\0 and more", 15), "it is compressed with xz"},
    {"Lz4", "\x04\x22\x4D\x18 and more", "it is compressed with lz4"},
    {"Zip", "PK\x03\x04 and more", "it is a zip archive"},

    // Former bugs.
    {"GzipOfGzip", gzip_of(gzip_of(kTable)), "it is compressed more than once"},
    {"ZstdOfGzip", zstd_of(gzip_of(kTable)), "it is compressed more than once"},
    {"GzipOfZip", gzip_of("PK\x03\x04 and more"), "it is compressed more than once"},
};

class ToolBadFile : public testing::TestWithParam<BadFile> {
 protected:
  static void expect_complaint(const CommandResult& result, const std::string& file) {
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("'" + file + "': " + GetParam().reason));
  }
};

TEST_P(ToolBadFile, IsNamedWithTheReason) {
  const TempFolder folder;
  const std::string path = folder.file("table.gz", GetParam().bytes);
  const std::string& bytes = GetParam().bytes;
  expect_complaint(vltext({"--lines", kAllLines, path}), path);
  expect_complaint(vltext({"--lines", kAllLines, "--encoding", "UTF-8", path}), path);
  expect_complaint(vltext({"--lines", kAllLines, "-"}, bytes), "-");
  expect_complaint(vltext_with_a_pipe({"--lines", kAllLines, "-"}, bytes), "-");
}
INSTANTIATE_TEST_SUITE_P(Table, ToolBadFile, testing::ValuesIn(kBadFiles), ByRule());

TEST(ToolDamagedFile, IsReadUpToTheLastLineThatIsNeeded) {
  const TempFolder folder;
  const std::string sound = folder.file("sound.gz", gzip_of(long_table()));
  const std::string damaged = folder.file("damaged.gz", cut(gzip_of(long_table()), 1));
  const CommandResult result = vltext({damaged});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out.substr(damaged.size()), vltext({sound}).out.substr(sound.size()));
}

// Its parent folder cannot be entered. The superuser can, so the program runs as another user then.
TEST(ToolClosedFolder, IsNamedWithTheReason) {
  const TempFolder folder;
  folder.folder("closed");
  const std::string path = folder.file("closed/t.csv", kTable);
  ASSERT_EQ(chmod(folder.path_of("closed").c_str(), 0), 0);
  ASSERT_EQ(chmod(folder.path().c_str(), 0755), 0);
  const Arguments as_nobody = {"--reuid=65534", "--clear-groups", "--inh-caps=-all", VLTEXT_PROGRAM,
                               path};
  const CommandResult result =
      geteuid() == 0 ? run_command("/usr/bin/setpriv", as_nobody) : vltext({path});
  ASSERT_EQ(chmod(folder.path_of("closed").c_str(), 0700), 0);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: cannot open '" + path + "': Permission denied\n");
}

struct OpenCase {
  const char* rule;
  std::string command;  // in a shell; $0 is the tool
  std::string message;
};
std::ostream& operator<<(std::ostream& out, const OpenCase& row) { return out << row.rule; }

const OpenCase kOpenCases[] = {
    {"EmptyFolder",
     "empty=$(mktemp -d); cd $empty; \"$0\" .; status=$?; rmdir $empty; exit $status",
     "cannot open '.': no file is in this folder"},
    {"FolderAsStandardInput", "\"$0\" - < /", "cannot open '-': Is a directory"},
    {"Missing", "\"$0\" ./no-such-file", "cannot open './no-such-file': No such file or directory"},
    {"MissingDash", "cd / && \"$0\" ./-", "cannot open './-': No such file or directory"},
    {"ClosedStandardInput", "\"$0\" - <&-", "cannot open '-': Bad file descriptor"},
};

class ToolUnopened : public testing::TestWithParam<OpenCase> {};
TEST_P(ToolUnopened, IsNamedWithTheReasonOfTheSystem) {
  const CommandResult result = run_command("/bin/sh", {"-c", GetParam().command, VLTEXT_PROGRAM});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: " + GetParam().message + "\n");
}
INSTANTIATE_TEST_SUITE_P(Table, ToolUnopened, testing::ValuesIn(kOpenCases), ByRule());

}  // namespace
}  // namespace textio
