// The memory that the tool holds, for the widest file and for many files; and what it does when there
// is less.
#include <cstddef>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/command.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

using Words = std::vector<std::string>;

// Two lines of `width` delimiters.
std::string file_of_width(const TempFolder& folder, std::size_t width) {
  const std::string line(width, ';');
  return folder.file("wide", line + '\n' + line + '\n');
}

// In megabytes. What it prints is thrown away, so that this process stays small.
std::size_t peak_of(const Words& arguments) {
  Words script = {"-c", "exec \"$0\" \"$@\" > /dev/null", VLTEXT_PROGRAM};
  script.insert(script.end(), arguments.begin(), arguments.end());
  const CommandResult result = run_command("/bin/sh", script);
  EXPECT_LE(result.status, 1) << result.err;  // some of these are no tables
  return result.peak_kilobytes / 1024;
}

Words repeated(const std::string& file, std::size_t count, Words before) {
  before.insert(before.end(), count, file);
  return before;
}

TEST(ToolPeak, OfTheWidestFileIsBounded) {
  const TempFolder folder;
  const std::string file = file_of_width(folder, 2'000'000);
  EXPECT_LE(peak_of({file}), 200U);
  EXPECT_LE(peak_of({"--json", file}), 200U);
  EXPECT_LE(peak_of({"--json", "--explain", file}), 200U);
}

// Every second line is blank, so the JSON names each line: 370 MB.
TEST(ToolPeak, OfTheLongestAnswerIsBounded) {
  const TempFolder folder;
  for (const char* const line : {"1\n\n", ",\n\n", ",;\n\n"}) {
    std::string text;
    while (text.size() < 4'194'000) text += line;
    EXPECT_LE(peak_of({"--json", "--lines", "4000000", folder.file("t", text)}), 400U) << line;
  }
}

// Every candidate has a run of lines for each of them.
TEST(ToolPeak, OfCommentsBetweenBlankLinesIsBounded) {
  const TempFolder folder;
  std::string text;
  while (text.size() < 4'194'000) text += "#\n\n";
  for (int i = 0; i < 8; ++i) text += "a;b,c|d:e\tf~!%^&*()_={}[]<>? g\n";
  EXPECT_LE(peak_of({"--comment-style", "#", folder.file("t", text)}), 400U);
}

// The JSON of all of them is 136 MB.
TEST(ToolPeak, DoesNotGrowWithTheNumberOfWideFiles) {
  const TempFolder folder;
  const std::string file = file_of_width(folder, 200'000);
  for (const char* jobs : {"1", "4"}) {
    const std::size_t peak_of_8 = peak_of(repeated(file, 8, {"--json", "--jobs", jobs}));
    EXPECT_LE(peak_of(repeated(file, 40, {"--json", "--jobs", jobs})), peak_of_8 + 32) << jobs;
  }
}

// The JSON of all of them is 40 MB.
TEST(ToolPeak, DoesNotGrowWithTheNumberOfSmallFiles) {
  const TempFolder folder;
  const std::string file = folder.file("t", "a,b,c\n1,2,3\n4,5,6\n");
  for (const char* jobs : {"1", "4"}) {
    EXPECT_LE(peak_of(repeated(file, 20'000, {"--json", "--jobs", jobs})), 40U) << jobs;
  }
}

// A table of this many megabytes, of which some cells are texts with line breaks. It is written in pieces, so that this
// process stays small: a program that it starts begins with its peak.
std::string large_table(const TempFolder& folder, std::size_t megabytes) {
  std::string rows;
  while (rows.size() < 1'048'576) {
    rows += "2024-01-31,142.75,\"calm, some\nclouds\"\n2024-02-01,-3.5,rain\n";
  }
  const std::string path = folder.file("t.csv", "day,level,note\n");
  std::ofstream file(path, std::ios::binary | std::ios::app);
  for (std::size_t i = 0; i < megabytes; ++i) file << rows;
  return path;
}

TEST(ToolPeak, OfAConversionDoesNotGrowWithTheFile) {
  const TempFolder folder;
  const std::string file = large_table(folder, 96);
  for (const char* format : {"csv", "jsonl", "sqlite"}) {
    SCOPED_TRACE(format);
    EXPECT_LE(peak_of({"convert", file, "--to", format, "-o", folder.path_of("out")}), 64U);
  }
}

// --- the program under a limit -------------------------------------------------------------------

// One file of 200,000 columns among small ones, in a limited address space.
class LimitedTool {
 public:
  LimitedTool() {
    std::string line = "1";
    for (std::size_t i = 0; i < 200'000; ++i) line += ",1";
    wide_ = folder_.file("wide", line + '\n' + line + '\n');
    before_ = folder_.file("before", "a,b\n1,2\n");
    after_ = folder_.file("after", "a;b\n1;2\n");
  }

  CommandResult run(std::size_t megabytes, const Words& options) const {
    Words script = {"-c", "ulimit -v \"$0\" && exec \"$@\"", std::to_string(megabytes * 1024),
                    VLTEXT_PROGRAM};
    script.insert(script.end(), options.begin(), options.end());
    script.insert(script.end(), {before_, wide_, after_});
    return run_command("/bin/sh", script);
  }

  const std::string& wide() const { return wide_; }

 private:
  const TempFolder folder_;
  std::string wide_;
  std::string before_;
  std::string after_;
};

// All of these limits let the program start and read a small file; the lowest do not let it read the
// wide one.
TEST(ToolUnderALimit, AnswersTheOtherFiles) {
  const LimitedTool tool;
  std::size_t num_refused = 0;
  for (const char* jobs : {"1", "4"}) {
    for (std::size_t megabytes = 52; megabytes <= 112; megabytes += 2) {
      SCOPED_TRACE(megabytes);
      const CommandResult result = tool.run(megabytes, {"--json", "--jobs", jobs});
      if (result.status == 0) continue;
      ++num_refused;
      EXPECT_EQ(result.status, 2);
      EXPECT_EQ(result.err, "vltext: cannot read '" + tool.wide() + "': Cannot allocate memory\n");
      ASSERT_TRUE(nlohmann::json::accept(result.out)) << result.out;
      EXPECT_EQ(nlohmann::json::parse(result.out)["files"].size(), 2U);
    }
  }
  EXPECT_GT(num_refused, 0U);
}

}  // namespace
}  // namespace textio
