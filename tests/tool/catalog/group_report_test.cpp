#include "tool/catalog/group_report.hpp"

#include <algorithm>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

CatalogRow example() {
  CatalogRow row;
  row.status = RowStatus::table;
  row.mode = "delimited";
  row.delimiters = {";"};
  row.encoding = "UTF-8";
  row.line_ending = "\r\n";
  row.decimal = ",";
  row.header_lines = 2;
  row.has_byte_order_mark = true;
  row.columns = {{"time", "date-time", ""}, {"", "decimal", "cm"}};
  return row;
}

TEST(GroupText, NamesEachGroupAndItsOddOnes) {
  Grouping found;
  found.num_files = 9;
  found.groups.push_back({example(),
                          {"1", "2", "3", "4"},
                          {{"5", {"comma", "a column less"}}, {"6", {"windows-1252"}}}});
  found.doubtful = {{"4", 0.419}};
  found.no_tables = {{"7", "empty"}};
  found.failures = {{"8", "gone"}, {"9", "damaged"}};
  EXPECT_EQ(group_text(found, {}),
            "9 files: 1 group, 2 odd ones, 1 doubtful, 1 without a table, 2 not read\n"
            "\n"
            "Group 1: 4 files, semicolon, UTF-8, byte order mark, decimal comma, CRLF line "
            "endings, 2 header lines, 2 columns\n"
            "  columns  time (date-time), column 2 (number, cm)\n"
            "  files    1, 2, 3 and 1 more\n"
            "  odd      5: comma, a column less\n"
            "           6: windows-1252\n"
            "\n"
            "Doubtful:\n"
            "  4: 41 % sure\n"
            "\n"
            "Without a table:\n"
            "  7: empty\n"
            "\n"
            "Not read:\n"
            "  8: gone\n"
            "  9: damaged\n");
}

TEST(GroupText, SaysLittleOfLittle) {
  EXPECT_EQ(group_text({}, {}), "0 files: 0 groups\n");
  Grouping one;
  one.num_files = 1;
  CatalogRow row;
  row.mode = "line-reader";
  row.encoding = "UTF-8";
  row.line_ending = "\n";
  row.columns = {{"a", "text", ""}};
  one.groups.push_back({row, {"f"}, {}});
  EXPECT_EQ(group_text(one, {}),
            "1 file: 0 groups, 1 unlike all others\n\n"
            "Unlike all others:\n  f: one column, UTF-8, 1 column\n");
}

TEST(GroupText, CountsFailuresThatWereComplainedOf) {
  Grouping found;
  found.num_files = 1;
  found.failures = {{"8", "gone"}};
  EXPECT_EQ(group_text(found, {false, true}), "1 file: 0 groups, 1 not read\n");
}

TEST(GroupText, IsPrintableWhateverTheNames) {
  Grouping found;
  CatalogRow row = example();
  row.columns[0].name = "\x1B[2Jred\n";
  found.groups.push_back({row, {"\xFF\n\x1B]0;x\x07", "b"}, {{"\x9B", {"quote \x1B"}}}});
  found.no_tables = {{"\x1B", "empty"}};
  found.failures = {{"\x1B", "\x1B"}};
  const std::string text = group_text(found, {});
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    EXPECT_TRUE(c == '\n' || (byte >= 0x20 && byte != 0x7F)) << int{byte};
  }
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 12);
}

// Groups, columns, files and odd files, each one more than is shown.
Grouping large() {
  Grouping found;
  found.num_files = 1000;
  for (int i = 0; i < 21; ++i) {
    FileGroup group = {example(), {"a", "b", "c", "last file"}, {}};
    group.example.columns.assign(9, {"x", "text", ""});
    group.example.columns.back().name = "last column";
    for (int k = 0; k < 21; ++k) group.odd.push_back({"odd" + std::to_string(k) + '.', {"tab"}});
    found.groups.push_back(std::move(group));
  }
  return found;
}

TEST(GroupText, HasTheFirstOfMany) {
  const std::string text = group_text(large(), {});
  EXPECT_THAT(text, HasSubstr("x (text) and 1 more\n"));
  EXPECT_THAT(text, HasSubstr("a, b, c and 1 more\n"));
  EXPECT_THAT(text, HasSubstr("odd19.: tab\n           and 1 more; --verbose names them\n"));
  EXPECT_THAT(text, HasSubstr("Group 20: "));
  EXPECT_THAT(text, HasSubstr("\n1 group more with at most 4 files each; --verbose shows them\n"));
  EXPECT_THAT(text, Not(HasSubstr("last")));
}

TEST(GroupText, HasAllOnRequest) {
  const std::string text = group_text(large(), {true, false});
  EXPECT_THAT(text, HasSubstr("last column (text)\n"));
  EXPECT_THAT(text, HasSubstr("a, b, c, last file\n"));
  EXPECT_THAT(text, HasSubstr("odd20.: tab\n"));
  EXPECT_THAT(text, HasSubstr("Group 21: "));
  EXPECT_THAT(text, Not(HasSubstr("more")));
}

TEST(GroupJson, HasEverything) {
  Grouping found = large();
  found.doubtful = {{"d", 0.25}};
  found.no_tables = {{"n", "empty"}};
  found.failures = {{"f", "gone"}};
  const auto document = nlohmann::json::parse(group_json(found));
  EXPECT_EQ(document["catalog"], kCatalogVersion);
  EXPECT_EQ(document["num_files"], 1000);
  ASSERT_EQ(document["groups"].size(), 21U);
  const auto& group = document["groups"][20];
  EXPECT_EQ(group["delimiters"], nlohmann::json({";"}));
  EXPECT_EQ(group["columns"].size(), 9U);
  EXPECT_EQ(group["files"].size(), 4U);
  EXPECT_EQ(group["odd"][20], (nlohmann::json{{"path", "odd20."}, {"differences", {"tab"}}}));
  EXPECT_EQ(document["doubtful"], (nlohmann::json{{{"path", "d"}, {"confidence", 0.25}}}));
  EXPECT_EQ(document["no_table"], (nlohmann::json{{{"path", "n"}, {"no_table", "empty"}}}));
  EXPECT_EQ(document["errors"], (nlohmann::json{{{"path", "f"}, {"error", "gone"}}}));
}

}  // namespace
}  // namespace textio::tool
