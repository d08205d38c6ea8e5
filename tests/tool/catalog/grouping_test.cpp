#include "tool/catalog/grouping.hpp"

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "tool/catalog/fingerprint.hpp"

namespace textio::tool {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing_support::ByRule;

using Words = std::vector<std::string>;
using Change = std::function<void(CatalogRow&)>;

CatalogRow plain_row() {
  CatalogRow row;
  row.status = RowStatus::table;
  row.mode = "delimited";
  row.delimiters = {","};
  row.encoding = "UTF-8";
  row.line_ending = "\n";
  row.names_line = 1;
  row.confidence = 0.99;
  row.columns = {{"time", "date-time", ""}, {"level", "decimal", "cm"}, {"note", "text", ""}};
  return row;
}

CatalogRow changed_row(const std::string& path, const Change& change) {
  CatalogRow row = plain_row();
  row.path = path;
  if (change) change(row);
  row.layout_fingerprint = fingerprint_of(canonical_layout(row));
  row.schema_fingerprint = fingerprint_of(canonical_schema(row));
  return row;
}

// --- differences ---------------------------------------------------------------------------------

void remove_names(CatalogRow& row) {
  row.names_line.reset();
  for (CatalogColumn& column : row.columns) column.name.clear();
}

struct DifferenceCase {
  const char* rule;
  Change change;
  Words words;
};
std::ostream& operator<<(std::ostream& out, const DifferenceCase& row) { return out << row.rule; }

const DifferenceCase kDifferences[] = {
    {"Encoding", [](CatalogRow& r) { r.encoding = "windows-1252"; }, {"windows-1252"}},
    {"ByteOrderMark", [](CatalogRow& r) { r.has_byte_order_mark = true; }, {"a byte order mark"}},
    {"Semicolon", [](CatalogRow& r) { r.delimiters = {";"}; }, {"semicolon"}},
    {"Tab", [](CatalogRow& r) { r.delimiters = {"\t"}; }, {"tab"}},
    {"OtherDelimiter", [](CatalogRow& r) { r.delimiters = {"~~"}; }, {"'~~'"}},
    {"TwoDelimiters",
     [](CatalogRow& r) {
       r.delimiters = {",", ";"};
     },
     {"comma and semicolon"}},
    {"Aligned",
     [](CatalogRow& r) {
       r.mode = "space-aligned", r.delimiters = {" ", "\t"};
     },
     {"aligned by blanks"}},
    {"FixedWidth",
     [](CatalogRow& r) {
       r.mode = "fixed-width", r.delimiters = {}, r.widths = {4, 4, 4};
     },
     {"fixed width"}},
    {"Widths", [](CatalogRow& r) { r.widths = {4}; }, {"other column widths"}},
    {"Quote", [](CatalogRow& r) { r.quote = "'"; }, {"quote '"}},
    {"DecimalComma", [](CatalogRow& r) { r.decimal = ","; }, {"decimal comma"}},
    {"DecimalMark", [](CatalogRow& r) { r.decimal = "'"; }, {"decimal mark '"}},
    {"LineEndings", [](CatalogRow& r) { r.line_ending = "\r\n"; }, {"CRLF line endings"}},
    {"OldLineEndings", [](CatalogRow& r) { r.line_ending = "\r"; }, {"CR line endings"}},
    {"NoLineEnding", [](CatalogRow& r) { r.line_ending = ""; }, {"no line endings"}},
    {"HeaderLine", [](CatalogRow& r) { r.header_lines = 1; }, {"1 header line instead of 0"}},
    {"HeaderLines", [](CatalogRow& r) { r.header_lines = 2; }, {"2 header lines instead of 0"}},
    {"UnitsLine", [](CatalogRow& r) { r.units_line = 2; }, {"a line of units"}},
    {"NoNames", remove_names, {"no line of names"}},
    {"AColumnLess", [](CatalogRow& r) { r.columns.pop_back(); }, {"a column less (note)"}},
    {"ColumnsLess", [](CatalogRow& r) { r.columns.resize(1); }, {"2 columns less (level, note)"}},
    {"AColumnMore",
     [](CatalogRow& r) {
       r.columns.insert(r.columns.begin(), {"id", "integer", ""});
     },
     {"a column more (id)"}},
    {"ManyColumnsMore",
     [](CatalogRow& r) {
       r.columns.resize(8, {"x", "integer", ""});
     },
     {"5 columns more (x, x, x, ...)"}},
    {"AnotherName",
     [](CatalogRow& r) { r.columns[1].name = "depth"; },
     {"column 2 is named depth, not level"}},
    {"NoName",
     [](CatalogRow& r) { r.columns[1].name = ""; },
     {"column 2 is named none, not level"}},
    {"AnotherOrder",
     [](CatalogRow& r) { std::swap(r.columns[0], r.columns[2]); },
     {"columns in another order"}},
    {"AnotherUnit", [](CatalogRow& r) { r.columns[1].unit = "m"; }, {"unit of level: m, not cm"}},
    {"NoUnit", [](CatalogRow& r) { r.columns[1].unit = ""; }, {"unit of level: none, not cm"}},
    {"AnotherKind",
     [](CatalogRow& r) { r.columns[1].kind = "category"; },
     {"level: text, not number"}},
    {"ManyRemarks",
     [](CatalogRow& r) {
       r.columns[0].kind = r.columns[1].kind = r.columns[2].kind = "boolean";
       r.columns[0].unit = r.columns[1].unit = "m";
     },
     {"unit of time: m, not none", "time: boolean, not date-time", "unit of level: m, not cm",
      "2 more about its columns"}},
    {"SeveralAtOnce",
     [](CatalogRow& r) {
       r.delimiters = {";"}, r.decimal = ",", r.encoding = "windows-1252";
       r.columns.pop_back();
     },
     {"windows-1252", "semicolon", "decimal comma", "a column less (note)"}},
};

class DifferencesBetween : public testing::TestWithParam<DifferenceCase> {};
TEST_P(DifferencesBetween, AreNamed) {
  const CatalogRow odd = changed_row("odd", GetParam().change);
  EXPECT_THAT(differences_between(odd, plain_row()), ElementsAreArray(GetParam().words));
}
INSTANTIATE_TEST_SUITE_P(Table, DifferencesBetween, testing::ValuesIn(kDifferences), ByRule());

TEST(DifferencesBetweenTables, WithoutNamesAreNamedByTheirPlaces) {
  const CatalogRow usual = changed_row("usual", remove_names);
  const CatalogRow odd = changed_row("odd", [](CatalogRow& row) {
    remove_names(row);
    row.columns.pop_back();
    row.columns[1].kind = "text";
  });
  EXPECT_THAT(differences_between(odd, usual),
              ElementsAre("a column less", "column 2: text, not number"));
}

// --- groups --------------------------------------------------------------------------------------

const Change kNone;
const Change kSemicolon = [](CatalogRow& row) { row.delimiters = {";"}; };
const Change kTab = [](CatalogRow& row) { row.delimiters = {"\t"}; };
const Change kOther = [](CatalogRow& row) { row.columns = {{"x", "text", ""}, {"y", "text", ""}}; };
const Change kShort = [](CatalogRow& row) { row.columns.resize(1); };
const Change kHalf = [](CatalogRow& row) {
  row.columns = {
      {"time", "date-time", ""}, {"level", "decimal", "cm"}, {"a", "text", ""}, {"b", "text", ""}};
};

struct Files {
  std::size_t count;
  Change change;
};

struct GroupCase {
  const char* rule;
  std::vector<Files> files;
  Words groups;  // "files+odd files"
};
std::ostream& operator<<(std::ostream& out, const GroupCase& row) { return out << row.rule; }

const GroupCase kGroups[] = {
    {"NoFile", {}, {}},
    {"OneFile", {{1, kNone}}, {"1+0"}},
    {"TwoThatDifferAreTwoGroups", {{1, kNone}, {1, kSemicolon}}, {"1+0", "1+0"}},
    {"ASingleOneIsOddBesideTwo", {{2, kNone}, {1, kSemicolon}}, {"2+1"}},
    {"ASingleOneMayComeFirst", {{1, kSemicolon}, {2, kNone}}, {"2+1"}},
    {"TwoAreNotOddBesideNineteen", {{19, kNone}, {2, kSemicolon}}, {"19+0", "2+0"}},
    {"TwoAreOddBesideTwenty", {{20, kNone}, {2, kSemicolon}}, {"20+2"}},
    {"SinglesOfManyKindsAreOdd", {{2, kNone}, {1, kSemicolon}, {1, kTab}}, {"2+2"}},
    {"OtherColumnsAreAnotherGroup", {{9, kNone}, {1, kOther}}, {"9+0", "1+0"}},
    {"LessThanHalfOfTheColumnsIsAnotherGroup", {{9, kNone}, {1, kShort}}, {"9+0", "1+0"}},
    {"HalfOfTheColumnsIsEnough", {{9, kNone}, {1, kHalf}}, {"9+1"}},
    {"FilesWithoutNamesAreComparedByKinds", {{9, kNone}, {1, remove_names}}, {"9+1"}},
};

class Groups : public testing::TestWithParam<GroupCase> {};
TEST_P(Groups, HaveTheOddOnesBesideThem) {
  Grouper grouper;
  std::size_t total = 0;
  for (const Files& files : GetParam().files) {
    for (std::size_t i = 0; i < files.count; ++i)
      grouper.add(changed_row(std::to_string(total++), files.change));
  }
  const Grouping found = grouper.finish();
  EXPECT_EQ(found.num_files, total);
  Words groups;
  for (const FileGroup& group : found.groups) {
    groups.push_back(std::to_string(group.files.size()) + '+' + std::to_string(group.odd.size()));
  }
  EXPECT_THAT(groups, ElementsAreArray(GetParam().groups));
}
INSTANTIATE_TEST_SUITE_P(Table, Groups, testing::ValuesIn(kGroups), ByRule());

TEST(Grouper, NamesTheOddOnesInTheOrderOfTheFiles) {
  Grouper grouper;
  grouper.add(changed_row("03", kTab));
  for (const char* const path : {"01", "02", "04"}) grouper.add(changed_row(path, kNone));
  grouper.add(changed_row("05", kSemicolon));
  const Grouping found = grouper.finish();
  ASSERT_EQ(found.groups.size(), 1U);
  EXPECT_THAT(found.groups[0].files, ElementsAre("01", "02", "04"));
  EXPECT_EQ(found.groups[0].example.path, "01");
  ASSERT_EQ(found.groups[0].odd.size(), 2U);
  EXPECT_EQ(found.groups[0].odd[0].path, "03");
  EXPECT_THAT(found.groups[0].odd[0].differences, ElementsAre("tab"));
  EXPECT_EQ(found.groups[0].odd[1].path, "05");
  EXPECT_THAT(found.groups[0].odd[1].differences, ElementsAre("semicolon"));
}

// Beside the group with commas there are two differences, beside the one with semicolons one.
TEST(Grouper, PutsAnOddOneBesideTheGroupThatItIsMostLike) {
  Grouper grouper;
  for (const char* const path : {"a", "b", "c"}) grouper.add(changed_row(path, kNone));
  for (const char* const path : {"d", "e"}) grouper.add(changed_row(path, kSemicolon));
  grouper.add(changed_row("f", [](CatalogRow& row) {
    row.delimiters = {";"};
    row.decimal = ",";
  }));
  const Grouping found = grouper.finish();
  ASSERT_EQ(found.groups.size(), 2U);
  EXPECT_THAT(found.groups[0].odd, IsEmpty());
  ASSERT_EQ(found.groups[1].odd.size(), 1U);
  EXPECT_THAT(found.groups[1].odd[0].differences, ElementsAre("decimal comma"));
}

TEST(Grouper, KeepsWhatHasNoTableOrCannotBeReadApart) {
  Grouper grouper;
  CatalogRow text;
  text.path = "t";
  text.status = RowStatus::no_table;
  text.no_table = "running text";
  grouper.add(text);
  grouper.add(failed_row("f", "gone"));
  const Grouping found = grouper.finish();
  EXPECT_EQ(found.num_files, 2U);
  EXPECT_THAT(found.groups, IsEmpty());
  ASSERT_EQ(found.no_tables.size(), 1U);
  EXPECT_EQ(found.no_tables[0].path + found.no_tables[0].text, "trunning text");
  ASSERT_EQ(found.failures.size(), 1U);
  EXPECT_EQ(found.failures[0].path + found.failures[0].text, "fgone");
}

TEST(Grouper, NamesDoubtfulTablesAsWell) {
  Grouper grouper(0.5);
  grouper.add(changed_row("a", [](CatalogRow& row) { row.confidence = 0.5; }));
  grouper.add(changed_row("b", [](CatalogRow& row) { row.confidence = 0.49; }));
  grouper.add(changed_row("c", [](CatalogRow& row) { row.confidence.reset(); }));
  const Grouping found = grouper.finish();
  ASSERT_EQ(found.groups.size(), 1U);
  EXPECT_THAT(found.groups[0].files, ElementsAre("a", "b", "c"));
  ASSERT_EQ(found.doubtful.size(), 1U);
  EXPECT_EQ(found.doubtful[0].path, "b");
}

TEST(Grouper, IsEmptyAfterItsEnd) {
  Grouper grouper;
  grouper.add(changed_row("a", kNone));
  grouper.finish();
  grouper.add(changed_row("b", kNone));
  const Grouping found = grouper.finish();
  EXPECT_EQ(found.num_files, 1U);
  EXPECT_THAT(found.groups[0].files, ElementsAre("b"));
}

}  // namespace
}  // namespace textio::tool
