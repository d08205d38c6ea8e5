// The limit of the bytes that are read of a file, as the tool sets it.
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

CommandResult vltext(const std::vector<std::string>& arguments) {
  return run_command(VLTEXT_PROGRAM, arguments, "");
}

std::string too_many(const std::string& file, const std::string& limit) {
  return "vltext: cannot read '" + file + "': a look at it takes more than " + limit +
         " bytes, before or after decompression; the limit is max_bytes (--max-bytes)\n";
}

TEST(ToolMaxBytes, BoundsAFileThatGivesNoCharacters) {
  const TempFolder folder;
  const std::string file = folder.file("t", std::string(100'000, '\xFF'));
  const CommandResult result = vltext({"--encoding", "BOCU-1", "--max-bytes", "99999", file});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, too_many(file, "99999"));
  EXPECT_EQ(vltext({"--encoding", "BOCU-1", "--max-bytes", "100000", file}).status, 1);
  EXPECT_EQ(vltext({"--encoding", "BOCU-1", file}).status, 1);
}

TEST(ToolMaxBytes, BoundsEachFileOnItsOwn) {
  const TempFolder folder;
  const std::string small = folder.file("small", "a,b\n1,2\n3,4\n");
  const std::string large = folder.file("large", "a;b\n1;2\n3;4\n5;6\n");
  const CommandResult result = vltext({"--max-bytes=12", large, small, small});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, too_many(large, "12"));
  EXPECT_THAT(result.out, HasSubstr("delimited by comma"));
}

TEST(ToolMaxBytes, BoundsAPipe) {
  const std::vector<std::string> script = {
      "-c", "printf 'a,b\\n1,2\\n3,4\\n' | \"$0\" --max-bytes \"$1\" -", VLTEXT_PROGRAM};
  const auto with_limit = [&script](const std::string& limit) {
    std::vector<std::string> arguments = script;
    arguments.push_back(limit);
    return run_command("/bin/sh", arguments, "");
  };
  EXPECT_EQ(with_limit("12").status, 0);
  EXPECT_EQ(with_limit("11").err, too_many("-", "11"));
}

struct LimitCase {
  const char* rule;
  std::string limit;
};
std::ostream& operator<<(std::ostream& out, const LimitCase& row) { return out << row.rule; }

const LimitCase kBadLimits[] = {
    {"Zero", "0"},
    {"Negative", "-1"},
    {"Fraction", "1.5"},
    {"Word", "all"},
    {"Unit", "4M"},
    {"Empty", ""},
    {"TooMany", "18446744073709551616"},
};

class ToolMaxBytesProblem : public testing::TestWithParam<LimitCase> {};

TEST_P(ToolMaxBytesProblem, IsReported) {
  const CommandResult result = vltext({"--max-bytes", GetParam().limit, EXAMPLES_DIR "/comma.csv"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: --max-bytes: Expected a whole number from 1 to 2^64 - 1, got '" +
                            GetParam().limit + "'.\n");
}

INSTANTIATE_TEST_SUITE_P(Table, ToolMaxBytesProblem, testing::ValuesIn(kBadLimits), ByRule());

}  // namespace
}  // namespace textio
