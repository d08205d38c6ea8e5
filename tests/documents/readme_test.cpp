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

// The picture is between the answer and what may be asked next, with an empty line before and after it.
TEST(Readme, ShowsAPicture) {
  std::filesystem::current_path(kRoot);
  const std::string all =
      run_command(VLTEXT_PROGRAM, {"--picture", "--width", "80", "examples/comments.csv"}).out;
  const std::size_t begin = all.find("\n\n") + 2;
  const std::string picture = all.substr(begin, all.find("\n\n", begin) + 1 - begin);
  EXPECT_THAT(picture, HasSubstr("\n  3  names    event,"));
  EXPECT_THAT(content_of(kRoot + "/README.md"), HasSubstr(block("text", picture)));
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
