#include "tool/table_commands.hpp"

#include <initializer_list>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing::ElementsAre;
using testing_support::ByRule;

ConvertArguments convert_line(std::vector<const char*> words) {
  words.insert(words.begin(), {"vltext", "convert"});
  return parse_convert_line(static_cast<int>(words.size()), words.data());
}

HeadArguments head_line(std::vector<const char*> words) {
  words.insert(words.begin(), {"vltext", "head"});
  return parse_head_line(static_cast<int>(words.size()), words.data());
}

struct ExtensionCase {
  const char* rule;
  const char* out;
  Format format;
};
std::ostream& operator<<(std::ostream& out, const ExtensionCase& row) { return out << row.rule; }

const ExtensionCase kExtensions[] = {
    {"Csv", "a.csv", Format::csv},          {"Tsv", "a.tsv", Format::tsv},
    {"Tab", "a.tab", Format::tsv},          {"Jsonl", "a.jsonl", Format::jsonl},
    {"Ndjson", "a.ndjson", Format::jsonl},  {"Db", "a.db", Format::sqlite},
    {"Sqlite", "a.sqlite", Format::sqlite}, {"Sqlite3", "a.SQLITE3", Format::sqlite},
};

class ConvertLineOutput : public testing::TestWithParam<ExtensionCase> {};
TEST_P(ConvertLineOutput, TakesTheFormatFromTheExtension) {
  EXPECT_EQ(convert_line({"in", "-o", GetParam().out}).format, GetParam().format);
  EXPECT_EQ(convert_line({"in", "-o", GetParam().out, "--to", "jsonl"}).format, Format::jsonl);
}
INSTANTIATE_TEST_SUITE_P(Table, ConvertLineOutput, testing::ValuesIn(kExtensions), ByRule());

TEST(ConvertLine, PassesOptionsOn) {
  const ConvertArguments arguments =
      convert_line({"a", "--to=csv", "b", "--missing-rule", "omitrow", "--exp-chars", "x",
                    "--threads", "3", "--strict", "--lines", "7", "--no-tail"});
  EXPECT_THAT(arguments.files, ElementsAre("a", "b"));
  EXPECT_EQ(arguments.settings.detect.options.missing_rule, parser::row_rule::omitrow);
  EXPECT_EQ(arguments.settings.detect.options.exp_chars, u"x");
  EXPECT_EQ(arguments.settings.detect.num_lines, 7U);
  EXPECT_FALSE(arguments.settings.detect.look_at_end);
  EXPECT_EQ(arguments.settings.num_threads, 3U);
  EXPECT_TRUE(arguments.strict);
  EXPECT_TRUE(arguments.is_given("MissingRule"));
  EXPECT_FALSE(arguments.is_given("ImportErrorRule"));
}

// By their names as well.
TEST(ConvertLine, KnowsWhatIsGiven) {
  const ConvertArguments arguments =
      convert_line({"a", "--to", "csv", "--option", "importerrorrule=omitrow"});
  EXPECT_TRUE(arguments.is_given("ImportErrorRule"));
}

// A rule for cells that do not fit has an effect only where they widen no column.
TEST(ConvertLine, WidensUnlessARuleIsGiven) {
  EXPECT_TRUE(convert_line({"a", "--to", "csv"}).settings.widen);
  EXPECT_FALSE(convert_line({"a", "--to", "csv", "--no-widen"}).settings.widen);
  EXPECT_FALSE(convert_line({"a", "--to", "csv", "--import-error-rule", "fill"}).settings.widen);
  EXPECT_TRUE(
      convert_line({"a", "--to", "csv", "--import-error-rule", "fill", "--widen"}).settings.widen);
}

TEST(HeadLine, TakesTheNumberOfRows) {
  EXPECT_EQ(head_line({"a"}).num_rows, 10U);
  EXPECT_EQ(head_line({"a", "-n", "3"}).num_rows, 3U);
  EXPECT_EQ(head_line({"-n4", "a", "--as-text"}).num_rows, 4U);
  EXPECT_TRUE(head_line({"a", "--as-text"}).settings.all_text);
  EXPECT_THROW(head_line({"a", "-n", "100001"}), BadArgument);
  EXPECT_THROW(head_line({"a", "-n", "-1"}), BadArgument);
  EXPECT_THROW(head_line({}), UsageError);
}

}  // namespace
}  // namespace textio::tool
