// Every example has the layout that its case expects, by the library and by the tool.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/layout/detect_layout.hpp>

#include "support/command.hpp"
#include "support/example_cases.hpp"
#include "tool/json_report.hpp"

namespace textio {
namespace {

using standalone::detect_layout;
using standalone::DetectSettings;
using testing_support::CommandResult;
using testing_support::example_cases;
using testing_support::ExampleCase;
using testing_support::run_command;

// Whether `actual` is `expected`. Of objects, as a dialect or a column, a case may leave out members.
bool is_as_expected(const nlohmann::json& actual, const nlohmann::json& expected) {
  if (expected.is_object() && actual.is_object()) {
    const auto members = expected.items();
    return std::all_of(members.begin(), members.end(), [&](const auto& member) {
      return actual.contains(member.key()) && is_as_expected(actual[member.key()], member.value());
    });
  }
  if (expected.is_array() && actual.is_array()) {
    return std::equal(actual.begin(), actual.end(), expected.begin(), expected.end(),
                      is_as_expected);
  }
  return actual == expected;
}

void expect_members(const nlohmann::json& actual, const nlohmann::json& expected) {
  ASSERT_FALSE(expected.empty());
  for (const auto& [name, value] : expected.items()) {
    ASSERT_TRUE(actual.contains(name)) << name;
    EXPECT_TRUE(is_as_expected(actual[name], value))
        << name << "\n  is       " << actual[name] << "\n  expected " << value;
  }
}

// Of an example with a wrong answer, the answer must be that one, and not yet the right one.
void expect_answer(const nlohmann::json& actual, const ExampleCase& example) {
  if (example.known_wrong.is_null()) return expect_members(actual, example.assessed);
  expect_members(actual, example.known_wrong);
  EXPECT_FALSE(is_as_expected(actual, example.assessed))
      << "the answer is right: remove \"known_wrong\" of " << example.file;
}

nlohmann::json as_json(const standalone::Layout& layout) {
  return nlohmann::json::parse(tool::json_member("", layout));
}

std::string name_of_case(const testing::TestParamInfo<ExampleCase>& info) {
  std::string name = info.param.file;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char c) { return !std::isalnum(c); }, '_');
  return name;
}

class Examples : public testing::TestWithParam<ExampleCase> {};

TEST_P(Examples, AreLaidOutByTheCascadeAsTheirCaseSays) {
  const ExampleCase& example = GetParam();
  DetectSettings settings = example.settings;
  settings.judge = standalone::Judge::cascade;
  const nlohmann::json layout = as_json(detect_layout(example.path(), settings));
  expect_members(layout, example.expect);
  EXPECT_FALSE(layout.contains("confidence"));
}

TEST_P(Examples, AreLaidOutAsTheirCaseSays) {
  const ExampleCase& example = GetParam();
  const standalone::Layout layout = detect_layout(example.path(), example.settings);
  expect_answer(as_json(layout), example);
  if (example.is_doubtful) {
    ASSERT_TRUE(layout.confidence.has_value());
    EXPECT_LT(*layout.confidence, 0.9);
  }
}

TEST_P(Examples, AreReportedByTheToolUnderTheCascadeAsTheirCaseSays) {
  const ExampleCase& example = GetParam();
  std::vector<std::string> arguments = {"--json", "--judge", "cascade", example.path()};
  arguments.insert(arguments.end(), example.arguments.begin(), example.arguments.end());
  const CommandResult result = run_command(VLTEXT_PROGRAM, arguments);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  expect_members(nlohmann::json::parse(result.out)["files"][0], example.expect);
}

TEST_P(Examples, AreReportedByTheToolAsTheirCaseSays) {
  const ExampleCase& example = GetParam();
  std::vector<std::string> arguments = {"--json", example.path()};
  arguments.insert(arguments.end(), example.arguments.begin(), example.arguments.end());
  const CommandResult result = run_command(VLTEXT_PROGRAM, arguments);
  if (example.is_status_open) {
    EXPECT_LE(result.status, 1);
  } else {
    EXPECT_EQ(result.status, example.status);
  }
  EXPECT_EQ(result.err, "");
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(document["schema"], tool::kJsonSchema);
  ASSERT_EQ(document["files"].size(), 1U);
  expect_answer(document["files"][0], example);
}

TEST_P(Examples, GiveTheSameLayoutWithAndWithoutTrace) {
  const ExampleCase& example = GetParam();
  DetectSettings traced = example.settings;
  traced.trace = true;
  auto with_trace = detect_layout(example.path(), traced);
  ASSERT_TRUE(with_trace.trace.has_value());
  with_trace.trace.reset();
  with_trace.considered.clear();
  EXPECT_EQ(as_json(with_trace), as_json(detect_layout(example.path(), example.settings)));
}

// The text is decoded in one go; a character outside the basic plane is a pair of surrogates.
std::u16string text_of(const std::string& bytes, const std::string& encoding) {
  StreamCodeConverter converter(encoding, false);
  std::u16string text(2 * bytes.size() + 1, u'\0');
  char16_t* out = text.data();
  const char* in = bytes.data();
  converter.convert(out, out + text.size(), in, in + bytes.size(), true);
  EXPECT_FALSE(converter.has_more());
  text.resize(static_cast<std::size_t>(out - text.data()));
  return text;
}

TEST_P(Examples, GiveTheSameLayoutAsFileAndAsText) {
  const ExampleCase& example = GetParam();
  std::ifstream file(example.path(), std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const standalone::Layout layout = detect_layout(example.path(), example.settings);
  const std::u16string text = text_of(bytes, layout.encoding);
  auto from_file = as_json(layout);
  auto from_text = as_json(detect_layout(std::u16string_view(text), example.settings));
  for (const char* name : {"encoding", "encoding_found", "encoding_confidence"}) {
    from_file.erase(name);
    from_text.erase(name);
  }
  // Only a file has a byte-order mark.
  if (from_file.contains("dialect")) {
    from_file["dialect"].erase("byte_order_mark");
    from_text["dialect"].erase("byte_order_mark");
  }
  EXPECT_EQ(from_text, from_file);
}

INSTANTIATE_TEST_SUITE_P(Files, Examples, testing::ValuesIn(example_cases()), name_of_case);

TEST(ExamplesFolder, HasACaseForEveryFile) {
  std::set<std::string> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(EXAMPLES_DIR)) {
    if (entry.is_regular_file()) files.insert(entry.path().lexically_relative(EXAMPLES_DIR));
  }
  files.erase("README.md");
  files.erase("expected.json");
  std::set<std::string> cases;
  for (const ExampleCase& example : example_cases()) cases.insert(example.file);
  EXPECT_EQ(files, cases);
  EXPECT_GE(cases.size(), 16U);
}

TEST(ExamplesFolder, HasAReadmeThatNamesEveryFileAndEveryWrongAnswer) {
  std::ifstream file(EXAMPLES_DIR "/README.md");
  const std::string readme{std::istreambuf_iterator<char>(file), {}};
  for (const ExampleCase& example : example_cases()) {
    SCOPED_TRACE(example.file);
    const std::size_t row = readme.find("\n| `" + example.file + "` |");
    ASSERT_NE(row, std::string::npos);
    const std::string text = readme.substr(row + 1, readme.find('\n', row + 1) - row - 1);
    EXPECT_EQ(text.find("Wrong today:") != std::string::npos, !example.known_wrong.is_null());
  }
}

}  // namespace
}  // namespace textio
