#include "tool/catalog/catalog_row.hpp"

#include <cstdlib>
#include <ostream>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::TempFolder;

const std::string kTable = "time,level [cm],note\n2024-01-01,1.5,dry\n2024-01-02,12.25,wet\n";

TEST(LookAt, SaysHowATableIsLaidOut) {
  const TempFolder folder;
  const std::string path = folder.file("t.csv", kTable);
  const timespec times[] = {{0, UTIME_OMIT}, {1'700'000'000, 5'000'000}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, 0), 0);
  const CatalogRow row = look_at(path, {});
  EXPECT_EQ(row.path, path);
  EXPECT_EQ(row.size, kTable.size());
  EXPECT_EQ(row.modified, "2023-11-14T22:13:20.005000000Z");
  EXPECT_EQ(row.status, RowStatus::table);
  EXPECT_EQ(row.error, "");
  EXPECT_EQ(row.mode, "delimited");
  EXPECT_EQ(row.delimiters, std::vector<std::string>{","});
  EXPECT_EQ(row.decimal, ".");
  EXPECT_EQ(row.encoding, "UTF-8");
  EXPECT_EQ(row.line_ending, "\n");
  EXPECT_EQ(row.header_lines, 0U);
  EXPECT_EQ(row.names_line, 1U);
  EXPECT_EQ(row.units_line, std::nullopt);
  EXPECT_EQ(row.lines, 3U);
  const std::vector<CatalogColumn> columns = {
      {"time", "date", ""}, {"level [cm]", "decimal", "cm"}, {"note", "text", ""}};
  EXPECT_EQ(row.columns, columns);
}

TEST(LookAt, SaysWhatHoldsNoTable) {
  const TempFolder folder;
  const CatalogRow row = look_at(folder.file("e", ""), {});
  EXPECT_EQ(row.status, RowStatus::no_table);
  EXPECT_EQ(row.no_table, "empty");
  EXPECT_EQ(row.size, 0U);
  EXPECT_EQ(row.layout_fingerprint, "");
  EXPECT_TRUE(row.columns.empty());
}

TEST(LookAt, GivesARowToWhatFails) {
  const TempFolder folder;
  EXPECT_EQ(look_at(folder.path_of("missing"), {}).error, "No such file or directory");
  EXPECT_EQ(look_at(folder.path(), {}).error, "this is a folder, not a regular file");
  EXPECT_EQ(look_at("/dev/zero", {}).error, "this is a device, not a regular file");
  const std::string pipe = folder.path_of("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(look_at(pipe, {}).error, "this is a pipe, not a regular file");
  const CatalogRow damaged = look_at(folder.file("d", "BZh9\x31\x41\x59\x26\x53\x59"), {});
  EXPECT_EQ(damaged.status, RowStatus::error);
  EXPECT_NE(damaged.error, "");
  EXPECT_EQ(damaged.error.find(folder.path()), std::string::npos) << damaged.error;
}

// A terabyte of zeros that take no room on the disk.
TEST(LookAt, ReadsNoMoreThanASampleOfAHugeFile) {
  const TempFolder folder;
  const std::string path = folder.file("huge", "");
  ASSERT_EQ(truncate(path.c_str(), 1'000'000'000'000), 0);
  const CatalogRow row = look_at(path, {});
  EXPECT_EQ(row.status, RowStatus::no_table);
  EXPECT_EQ(row.size, 1'000'000'000'000U);
}

CatalogRow full_row() {
  CatalogRow row;
  row.path = "a\n\"b\"";
  row.size = 18'446'744'073'709'551'615U;
  row.modified = "2026-11-22T15:42:27.123456789Z";
  row.status = RowStatus::table;
  row.mode = "delimited";
  row.delimiters = {"\t", "||"};
  row.widths = {1, 2};
  row.quote = "'";
  row.decimal = ",";
  row.grouping = ".";
  row.comment_prefix = "#";
  row.encoding = "UTF-16LE";
  row.has_byte_order_mark = true;
  row.line_ending = "\r\n";
  row.header_lines = 3;
  row.names_line = 4;
  row.units_line = 5;
  row.confidence = 0.25;
  row.lines = 6;
  row.columns = {{"a\x1F\xC3\xA9", "integer", ""}, {"", "text", "m\"s"}};
  row.layout_fingerprint = "l";
  row.schema_fingerprint = "s";
  return row;
}

CatalogRow no_table_row() {
  CatalogRow row;
  row.path = "p";
  row.size = 7;
  row.status = RowStatus::no_table;
  row.no_table = "binary data";
  row.file_kind = "PNG image data";
  return row;
}

TEST(RowLine, IsReadAsTheSameRow) {
  CatalogRow strange = failed_row("\xFF/\xC3\xA9\n\x1B", "it's \"gone\"");
  for (const CatalogRow& row : {full_row(), no_table_row(), strange, CatalogRow()}) {
    const std::string line = row_line(row);
    EXPECT_EQ(line.find('\n'), line.size() - 1);
    EXPECT_EQ(line.rfind(kRowOpening, 0), 0U);
    EXPECT_EQ(parse_row(line), row) << line;
  }
}

TEST(RowLine, HasTheBytesOfAPathThatIsNotUtf8) {
  const auto strange = nlohmann::json::parse(row_line(failed_row("a\xFF", "x")));
  EXPECT_EQ(strange["path"], "a\xEF\xBF\xBD");
  EXPECT_EQ(strange["path_bytes"], "61ff");
  EXPECT_FALSE(nlohmann::json::parse(row_line(failed_row("a", "x"))).contains("path_bytes"));
}

struct NoRow {
  const char* rule;
  const char* line;
};
std::ostream& operator<<(std::ostream& out, const NoRow& row) { return out << row.rule; }

const NoRow kNoRows[] = {
    {"Nothing", ""},
    {"NoJson", "a,b"},
    {"CutOff", R"({"catalog": 1, "path": "a", "sta)"},
    {"List", "[]"},
    {"Number", "1"},
    {"NoVersion", R"({"path": "a", "status": "error", "error": "x"})"},
    {"AnotherVersion", R"({"catalog": 2, "path": "a", "status": "error", "error": "x"})"},
    {"NoPath", R"({"catalog": 1, "status": "error", "error": "x"})"},
    {"PathThatIsNoText", R"({"catalog": 1, "path": 1, "status": "error", "error": "x"})"},
    {"UnknownStatus", R"({"catalog": 1, "path": "a", "status": "fine"})"},
    {"TableWithoutColumns", R"({"catalog": 1, "path": "a", "status": "table"})"},
    {"BytesThatAreNone",
     R"({"catalog": 1, "path": "a", "path_bytes": "zz", "status": "error", "error": "x"})"},
};

class ParseRow : public testing::TestWithParam<NoRow> {};
TEST_P(ParseRow, RefusesWhatIsNoRow) {
  EXPECT_THROW(parse_row(GetParam().line), std::invalid_argument);
}
INSTANTIATE_TEST_SUITE_P(Table, ParseRow, testing::ValuesIn(kNoRows), ByRule());

TEST(ParseRow, IgnoresMembersThatItDoesNotKnow) {
  const CatalogRow row =
      parse_row(R"({"catalog": 1, "path": "a", "etag": "x", "status": "error", "error": "gone"})");
  EXPECT_EQ(row, failed_row("a", "gone"));
}

}  // namespace
}  // namespace textio::tool
