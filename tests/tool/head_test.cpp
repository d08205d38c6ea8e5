#include "tool/head_command.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

CommandResult head(std::vector<std::string> arguments, const std::string& input = {}) {
  arguments.insert(arguments.begin(), "head");
  return run_command(VLTEXT_PROGRAM, arguments, input);
}

const std::string kTable =
    "# made up\nplace;level;open;note\nAltenau;12,5;yes;dry\nBad Harzburg;7,25;no;\n"
    "Clausthal;100,0;yes;wet\n";

TEST(Head, PrintsNamesTypesAndValues) {
  const TempFolder folder;
  const CommandResult result = head({folder.file("t.csv", kTable)});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out,
            "place         level  open     note\n"
            "text           real  boolean  text\n"
            "------------  -----  -------  ----\n"
            "Altenau        12.5  true     dry\n"
            "Bad Harzburg   7.25  false    \"\"\n"
            "Clausthal       100  true     wet\n");
}

TEST(Head, StopsAfterTheRowsThatAreWanted) {
  const TempFolder folder;
  const std::string path = folder.file("t.csv", kTable);
  EXPECT_THAT(head({path, "-n", "1"}).out,
              testing::EndsWith("\n-------  -----  -------  ----\nAltenau   12.5  true     dry\n"));
  EXPECT_THAT(head({path, "--rows", "0"}).out, testing::EndsWith("---\n"));
  EXPECT_THAT(head({path, "--rows", "x"}).err, HasSubstr("--rows: Expected a whole number"));
}

TEST(Head, ObeysTheRulesAndReadsStandardInput) {
  EXPECT_THAT(head({"-", "--as-text"}, kTable).out,
              HasSubstr("\nAltenau       12,5   yes   dry\n"));
  EXPECT_THAT(head({"-", "--treat-as-missing", "wet"}, kTable).out,
              testing::EndsWith("\nClausthal       100  true\n"));
}

TEST(Head, PrintsSeveralFilesWithTheirNames) {
  const TempFolder folder;
  const std::string first = folder.file("a.csv", "x,y\n1,2\n3,4\n");
  const std::string second = folder.file("b.csv", "z,u\n5,6\n7,8\n");
  const CommandResult result = head({first, folder.path_of("missing"), second, "-n", "1"});
  EXPECT_EQ(result.status, 2);
  const std::string types = "integer  integer\n-------  -------\n";
  EXPECT_EQ(result.out, first + "\n      x        y\n" + types + "      1        2\n\n" + second +
                            "\n      z        u\n" + types + "      5        6\n");
  EXPECT_THAT(result.err, HasSubstr("missing': No such file or directory"));
}

// A pipe without an end.
TEST(Head, ReadsNoMoreThanItNeeds) {
  const CommandResult result = run_command(
      "/bin/sh",
      {"-c", "yes '1,2,some words' | { timeout 60 \"$0\" head - -n 2; echo $?; }", VLTEXT_PROGRAM});
  EXPECT_THAT(result.out, testing::EndsWith("some words\n0\n"));
}

TEST(Head, SaysWhatCannotBeWritten) {
  const TempFolder folder;
  const std::string path = folder.file("t.csv", kTable);
  const CommandResult result =
      run_command("/bin/sh", {"-c", "\"$0\" head \"$1\" >/dev/full", VLTEXT_PROGRAM, path});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "vltext: standard output: No space left on device\n");
}

TEST(Head, HasAHelpOfItsOwn) {
  const CommandResult result = head({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, testing::StartsWith("Usage: vltext head [OPTION]... FILE...\n"));
  EXPECT_THAT(result.out, HasSubstr("\nHow the table is read:\n  --consecutive-delimiters-rule"));
}

}  // namespace
}  // namespace textio
