// Many files in several threads: the output is that of one thread.
#include <cstdlib>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include "support/archives.hpp"
#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::gzip_of;
using testing_support::run_command;
using testing_support::TempFolder;
using testing_support::zstd_of;

using Words = std::vector<std::string>;

CommandResult vltext(const Words& arguments, const std::string& input = {}) {
  return run_command(VLTEXT_PROGRAM, arguments, input);
}

Words joined(Words first, const Words& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// Files of ten kinds in turn. The number of columns changes from file to file, so no two neighbours
// have the same layout.
class ManyFiles {
 public:
  static constexpr std::size_t kFiles = 300;

  ManyFiles() {
    for (std::size_t i = 0; i < kFiles; ++i) paths_.push_back(add(i));
  }

  const Words& paths() const { return paths_; }

 private:
  static std::string table_of(std::size_t columns) {
    std::string text;
    for (std::size_t line = 0; line < 5; ++line) {
      for (std::size_t column = 0; column < columns; ++column) {
        text += (column == 0 ? "" : ";") + std::to_string(line * 10 + column);
      }
      text += '\n';
    }
    return text;
  }

  std::string add(std::size_t i) const {
    const std::string name = std::to_string(i);
    const std::string table = table_of(2 + i % 11);
    switch (i % 10) {
      case 0:
        return folder_.path_of(name + "-missing");
      case 1:
        return folder_.file(name + "-empty", "");
      case 2:
        return folder_.folder(name + "-folder");
      case 3:
        return folder_.file(name + "-gzip", gzip_of(table));
      case 4:
        return folder_.file(name + "-zstd", zstd_of(table));
      case 5:
        return folder_.file(name + "-cut", gzip_of(table).substr(0, 20));
      case 6:
        return folder_.file(name + "-bzip2", "BZh9\x31\x41\x59\x26\x53\x59");
      case 7:
        return folder_.file(name + "-undecidable", "words\nand more words\n\nof no table\n");
      case 8:
        return folder_.file(name + "-long", std::string(5'000, 'x') + '\n' + table);
      default:
        return folder_.file(name + "-table", table);
    }
  }

  const TempFolder folder_;
  Words paths_;
};

struct WayOfPrinting {
  const char* rule;
  Words options;
};
std::ostream& operator<<(std::ostream& out, const WayOfPrinting& row) { return out << row.rule; }

const WayOfPrinting kWays[] = {
    {"Words", {}},
    {"ExplainedWords", {"--explain"}},
    {"Json", {"--json"}},
    {"ExplainedJson", {"--json", "--explain"}},
    {"DatesOfALocale", {"--json", "--date-locale", "de_DE"}},
    {"UnknownEncoding", {"--encoding", "klingon"}},
};

class ToolJobs : public testing::TestWithParam<WayOfPrinting> {
 protected:
  CommandResult vltext_with_jobs(const std::string& jobs) const {
    return vltext(joined(joined({"--jobs", jobs}, GetParam().options), files_.paths()));
  }

  const ManyFiles files_;
};

TEST_P(ToolJobs, PrintWhatOneJobPrints) {
  const CommandResult alone = vltext_with_jobs("1");
  EXPECT_EQ(alone.status, 2);
  for (const char* jobs : {"2", "8"}) {
    const CommandResult crowded = vltext_with_jobs(jobs);
    EXPECT_EQ(crowded.status, 2) << jobs;
    EXPECT_TRUE(crowded.out == alone.out) << jobs;
    EXPECT_EQ(crowded.err, alone.err) << jobs;
  }
  EXPECT_TRUE(vltext(joined(GetParam().options, files_.paths())).out == alone.out);
}
INSTANTIATE_TEST_SUITE_P(Table, ToolJobs, testing::ValuesIn(kWays), ByRule());

// Four of ten cannot be read: the missing file, the folder, the truncated archive and the archive of
// another kind.
TEST(ToolManyFiles, AreListedAndComplainedOfInTheirOrder) {
  const ManyFiles files;
  const CommandResult result = vltext(joined({"--json", "--jobs", "8"}, files.paths()));
  const auto listed = nlohmann::json::parse(result.out)["files"];
  ASSERT_EQ(listed.size(), 180U);
  std::size_t next_listed = 0;
  std::size_t place = 0;
  for (std::size_t i = 0; i < files.paths().size(); ++i) {
    const std::string& path = files.paths()[i];
    const bool is_unreadable = i % 10 == 0 || i % 10 == 2 || i % 10 == 5 || i % 10 == 6;
    if (is_unreadable) {
      place = result.err.find("'" + path + "': ", place);
      ASSERT_NE(place, std::string::npos) << path;
    } else {
      EXPECT_EQ(listed[next_listed++]["file"], path);
    }
  }
}

TEST(ToolManyFiles, OfWhichNoneCanBeReadPrintNothing) {
  for (const char* form : {"--json", "--explain"}) {
    const CommandResult result = vltext({form, "--jobs", "3", "none", "nor", "neither"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "vltext: cannot open 'none': No such file or directory\n"
              "vltext: cannot open 'nor': No such file or directory\n"
              "vltext: cannot open 'neither': No such file or directory\n");
  }
}

// The first one reads the pipe, whichever thread is faster.
TEST(ToolManyFiles, ShareStandardInputInTheirOrder) {
  const TempFolder folder;
  const std::string table = folder.file("t", "1,2\n3,4\n");
  for (int i = 0; i < 20; ++i) {
    const CommandResult result = run_command(
        "/bin/sh", {"-c", "printf 'a;1\\nb;2\\n' | \"$0\" --jobs 4 - \"$1\" - /dev/stdin",
                    VLTEXT_PROGRAM, table});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.out, testing::StartsWith("-\n  layout          delimited by semicolon\n"));
    EXPECT_THAT(result.out, HasSubstr(table + "\n  layout          delimited by comma\n"));
    EXPECT_THAT(result.out.substr(result.out.find("/dev/stdin\n")), HasSubstr("all 0 lines\n"));
    EXPECT_EQ(result.err, "vltext: cannot open '-': standard input has been read already\n");
  }
}

TEST(ToolManyFiles, ReadAFileAsStandardInputAsOftenAsAsked) {
  const CommandResult result = vltext({"--json", "--jobs", "4", "-", "-", "-"}, "a;1\nb;2\n");
  EXPECT_EQ(result.status, 0);
  const auto files = nlohmann::json::parse(result.out)["files"];
  ASSERT_EQ(files.size(), 3U);
  EXPECT_EQ(files[0], files[1]);
  EXPECT_EQ(files[0], files[2]);
}

// Opening a pipe waits for a writer; here the second writer starts after the first.
TEST(ToolManyFiles, ReadPipesOneAfterTheOther) {
  const TempFolder folder;
  const std::string first = folder.path_of("first");
  const std::string second = folder.path_of("second");
  ASSERT_EQ(mkfifo(first.c_str(), 0600), 0);
  ASSERT_EQ(mkfifo(second.c_str(), 0600), 0);
  const std::string script =
      "{ printf 'a;1\\nb;2\\n' > \"$1\"; printf 'a|1\\nb|2\\n' > \"$2\"; } & "
      "\"$0\" --jobs 2 \"$1\" \"$2\"";
  const CommandResult result =
      run_command("/bin/sh", {"-c", script, VLTEXT_PROGRAM, first, second});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.out, HasSubstr(first + "\n  layout          delimited by semicolon\n"));
  EXPECT_THAT(result.out, HasSubstr(second + "\n  layout          delimited by bar\n"));
}

// The second file is written when the first answer has been read: a tool that keeps its answers
// until the end would wait for ever.
TEST(ToolManyFiles, AreAnsweredAsTheyCome) {
  const TempFolder folder;
  const std::string table = folder.file("t", "a;1\nb;2\n");
  const std::string pipe = folder.path_of("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const char* jobs : {"1", "2"}) {
    const std::string script =
        "\"$0\" --jobs " + std::string(jobs) +
        " \"$1\" \"$2\" | while read -r line; do printf '%s\\n' \"$line\"; case $line in"
        " *semicolon*) printf 'x|1\\ny|2\\n' > \"$2\";; esac; done; exit ${PIPESTATUS[0]}";
    const CommandResult result = run_command(
        "/usr/bin/timeout", {"20", "/bin/bash", "-c", script, VLTEXT_PROGRAM, table, pipe});
    EXPECT_EQ(result.status, 0) << jobs;
    EXPECT_THAT(result.out, HasSubstr("delimited by semicolon\n"));
    EXPECT_THAT(result.out, HasSubstr("delimited by bar\n"));
  }
}

// The last file has no end: a tool that goes on would read it for ever.
TEST(ToolManyFiles, AreLeftWhenStandardOutputIsLost) {
  const TempFolder folder;
  const std::string table = folder.file("t", "a;1\nb;2\n");
  for (const char* jobs : {"1", "4"}) {
    const CommandResult result =
        run_command("/usr/bin/timeout",
                    {"20", "/bin/sh", "-c", "\"$0\" --jobs \"$1\" \"$2\" \"$3\" \"$4\" > /dev/full",
                     VLTEXT_PROGRAM, jobs, table, folder.path_of("missing"), "/dev/zero"});
    EXPECT_EQ(result.status, 2) << jobs;
    EXPECT_EQ(result.err, "vltext: standard output: No space left on device\n");
  }
}

// The output is more than a pipe holds, so the tool is still writing when its reader ends.
TEST(ToolManyFiles, EndAsOneJobDoesWhenNobodyReadsTheAnswer) {
  const ManyFiles files;
  const auto status = [&](const std::string& jobs) {
    const Words script = {"-c", "\"$0\" --json \"$@\" 2> /dev/null | true; exit ${PIPESTATUS[0]}",
                          VLTEXT_PROGRAM, "--jobs", jobs};
    return run_command("/bin/bash", joined(script, files.paths())).status;
  };
  EXPECT_NE(status("1"), 0);
  EXPECT_EQ(status("8"), status("1"));
}

// --- memory that is limited ----------------------------------------------------------------------

// Files with one long line each. A detection takes many times the memory of the program.
class LimitedMemory {
 public:
  LimitedMemory() {
    std::string line;
    for (std::size_t i = 0; i < 500'000; ++i) line += "1,";
    for (std::size_t i = 0; i < 4; ++i) {
      paths_.push_back(folder_.file(std::to_string(i), line + std::to_string(i) + "\n2,3\n"));
    }
  }

  // With at most this many megabytes of address space, or without a limit.
  CommandResult vltext_within(std::optional<std::size_t> megabytes, const std::string& jobs) const {
    const std::string limit = megabytes ? std::to_string(*megabytes * 1024) : "unlimited";
    const Words script = {"-c", "ulimit -v \"$0\" && exec \"$@\"", limit, VLTEXT_PROGRAM, "--jobs",
                          jobs};
    return run_command("/bin/sh", joined(script, paths_));
  }

  // The least limit with which one job reads all files. Nothing if a gigabyte is not enough: under a
  // sanitizer a program reserves more address space than a machine has memory.
  std::optional<std::size_t> least_for_one_job() const {
    std::size_t too_little = 0;
    std::size_t enough = 1024;
    if (vltext_within(enough, "1").status != 0) return std::nullopt;
    while (enough - too_little > 1) {
      const std::size_t middle = (too_little + enough) / 2;
      (vltext_within(middle, "1").status == 0 ? enough : too_little) = middle;
    }
    return enough;
  }

  void expect_the_same(std::optional<std::size_t> megabytes, const Words& jobs,
                       const CommandResult& alone) const {
    for (const std::string& count : jobs) {
      const CommandResult crowded = vltext_within(megabytes, count);
      EXPECT_EQ(crowded.status, alone.status) << count;
      EXPECT_EQ(crowded.out, alone.out) << count;
      EXPECT_EQ(crowded.err, alone.err) << count;
    }
  }

 private:
  TempFolder folder_;
  Words paths_;
};

// The four megabytes that are added are little for a detection, but enough for a heap that is
// fragmented in another way. With three quarters the program starts, and reads no file.
TEST(ToolWithLimitedMemory, PrintsWithManyJobsWhatItPrintsWithOne) {
  const LimitedMemory memory;
  const std::optional<std::size_t> least = memory.least_for_one_job();
  if (!least) return memory.expect_the_same(least, {"4"}, memory.vltext_within(least, "1"));

  const CommandResult enough = memory.vltext_within(*least + 4, "1");
  EXPECT_EQ(enough.status, 0);
  memory.expect_the_same(*least + 4, {"2", "4", "256"}, enough);
  const CommandResult too_little = memory.vltext_within(*least * 3 / 4, "1");
  EXPECT_EQ(too_little.status, 2);
  EXPECT_THAT(too_little.err, HasSubstr("': Cannot allocate memory\n"));
  memory.expect_the_same(*least * 3 / 4, {"2", "4", "256"}, too_little);
}

// --- what may be typed -------------------------------------------------------------------------

struct JobsCase {
  const char* rule;
  std::string jobs;
};
std::ostream& operator<<(std::ostream& out, const JobsCase& row) { return out << row.rule; }

const JobsCase kRefusedJobs[] = {
    {"None", "0"},
    {"Negative", "-1"},
    {"Word", "x"},
    {"Empty", ""},
    {"BlankInFront", " 2"},
    {"BlankBehind", "2 "},
    {"Sign", "+2"},
    {"Fraction", "1.5"},
    {"Power", "1e1"},
    {"Hexadecimal", "0x2"},
    {"OneTooMany", "257"},
    {"Million", "1000000"},
    {"MoreThanANumberHolds", "18446744073709551617"},
};

class ToolJobsRefusal : public testing::TestWithParam<JobsCase> {};
TEST_P(ToolJobsRefusal, NamesTheOptionAndWhatWasExpected) {
  const CommandResult result = vltext({"--jobs", GetParam().jobs, EXAMPLES_DIR "/comma.csv"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: --jobs: Expected a whole number from 1 to 256, got '" +
                            GetParam().jobs + "'.\n");
}
INSTANTIATE_TEST_SUITE_P(Table, ToolJobsRefusal, testing::ValuesIn(kRefusedJobs), ByRule());

const JobsCase kAcceptedJobs[] = {
    {"One", "1"},
    {"LeadingZero", "02"},
    {"MoreThanFiles", "8"},
    {"Most", "256"},
};

class ToolJobsAccepted : public testing::TestWithParam<JobsCase> {};
TEST_P(ToolJobsAccepted, LooksAtTheFile) {
  const CommandResult result = vltext({"--jobs", GetParam().jobs, EXAMPLES_DIR "/comma.csv"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, vltext({EXAMPLES_DIR "/comma.csv"}).out);
}
INSTANTIATE_TEST_SUITE_P(Table, ToolJobsAccepted, testing::ValuesIn(kAcceptedJobs), ByRule());

}  // namespace
}  // namespace textio
