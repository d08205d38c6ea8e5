// What README.md shows is what the tool and the library answer today.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::run_command;

const std::string kRoot = PROJECT_DIR;

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string block(const std::string& language, const std::string& content) {
  return "```" + language + "\n" + content + "```\n";
}

TEST(Readme, ShowsTheFileAndTheAnswerOfTheTool) {
  const std::string readme = content_of(kRoot + "/README.md");
  EXPECT_THAT(readme, HasSubstr(block("text", content_of(kRoot + "/examples/preamble.csv"))));
  std::filesystem::current_path(kRoot);
  const auto answer = run_command(VLTEXT_PROGRAM, {"examples/preamble.csv"});
  ASSERT_EQ(answer.status, 0);
  EXPECT_THAT(readme,
              HasSubstr(block("console", "$ ./vltext examples/preamble.csv\n" + answer.out)));
}

TEST(Readme, ShowsTheHeadAndAConversion) {
  const std::string readme = content_of(kRoot + "/README.md");
  std::filesystem::current_path(kRoot);
  const auto head = run_command(VLTEXT_PROGRAM, {"head", "examples/preamble.csv", "-n", "2"});
  const testing_support::TempFolder folder;
  const auto converted = run_command(VLTEXT_PROGRAM, {"convert", "examples/preamble.csv", "--to",
                                                      "sqlite", "-o", folder.path_of("gauge.db")});
  EXPECT_EQ(converted.status, 0);
  EXPECT_THAT(readme, HasSubstr(block("console",
                                      "$ ./vltext head examples/preamble.csv -n 2\n" + head.out +
                                          "$ ./vltext convert examples/preamble.csv --to sqlite -o "
                                          "gauge.db\n" +
                                          converted.err)));
}

TEST(Readme, ShowsAProgramAndItsOutput) {
  const std::string readme = content_of(kRoot + "/README.md");
  EXPECT_THAT(readme, HasSubstr(block("cpp", content_of(kRoot + "/docs/example.cpp"))));
  EXPECT_THAT(readme, HasSubstr(block("text", run_command(EXAMPLE_PROGRAM, {}).out)));
}

}  // namespace
}  // namespace textio
