#include "tool/catalog/fingerprint.hpp"

#include <functional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "tool/catalog/catalog_row.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

// The expectations are those of uuid.uuid5 in Python.
TEST(Fingerprint, IsAUuidOfVersion5) {
  EXPECT_EQ(fingerprint_of(""), "c3c71822-1acd-5719-a282-15038378c335");
  EXPECT_EQ(fingerprint_of("4:time,9:date-time,0:,5:level,6:number,2:cm,"),
            "4df10baf-a734-5292-a28f-3d197004ca8c");
}

CatalogRow plain_row() {
  CatalogRow row;
  row.status = RowStatus::table;
  row.mode = "delimited";
  row.delimiters = {","};
  row.encoding = "UTF-8";
  row.line_ending = "\n";
  row.names_line = 1;
  row.columns = {{"time", "date-time", ""}, {"level", "decimal", "cm"}};
  return row;
}

TEST(Canonical, TextsAreMadeOfParts) {
  EXPECT_EQ(canonical_layout(plain_row()),
            "9:delimited,1:1,1:,,0:,1:\",1:.,5:UTF-8,2:no,1:\n,1:0,3:yes,2:no,");
  EXPECT_EQ(canonical_schema(plain_row()), "4:time,9:date-time,0:,5:level,6:number,2:cm,");
}

TEST(Canonical, PartsHaveTheLengthInBytes) {
  std::string text;
  append_part(text, "\xC3\xA9,");
  append_part(text, "");
  EXPECT_EQ(text, "3:\xC3\xA9,,0:,");
}

struct ChangeCase {
  const char* rule;
  std::function<void(CatalogRow&)> change;
  bool changes_layout;
  bool changes_schema;
};
std::ostream& operator<<(std::ostream& out, const ChangeCase& row) { return out << row.rule; }

const ChangeCase kChanges[] = {
    {"Path", [](CatalogRow& row) { row.path = "b"; }, false, false},
    {"SizeAndTime", [](CatalogRow& row) { row.size = 9, row.modified = "2026"; }, false, false},
    {"Confidence", [](CatalogRow& row) { row.confidence = 0.5; }, false, false},
    {"Lines", [](CatalogRow& row) { row.lines = 7; }, false, false},
    {"PlaceOfTheNames", [](CatalogRow& row) { row.names_line = 2; }, false, false},
    {"Comments", [](CatalogRow& row) { row.comment_prefix = "#"; }, false, false},
    {"Grouping", [](CatalogRow& row) { row.grouping = ","; }, false, false},
    {"TheUsualQuote", [](CatalogRow& row) { row.quote = "\""; }, false, false},
    {"TheUsualDecimalMark", [](CatalogRow& row) { row.decimal = "."; }, false, false},
    {"WholeNumbers", [](CatalogRow& row) { row.columns[1].kind = "integer"; }, false, false},
    {"Mode", [](CatalogRow& row) { row.mode = "fixed-width"; }, true, false},
    {"Delimiter", [](CatalogRow& row) { row.delimiters = {";"}; }, true, false},
    {"Delimiters",
     [](CatalogRow& row) {
       row.delimiters = {",", ""};
     },
     true, false},
    {"Widths", [](CatalogRow& row) { row.widths = {8}; }, true, false},
    {"Quote", [](CatalogRow& row) { row.quote = "'"; }, true, false},
    {"DecimalMark", [](CatalogRow& row) { row.decimal = ","; }, true, false},
    {"Encoding", [](CatalogRow& row) { row.encoding = "UTF-16LE"; }, true, false},
    {"ByteOrderMark", [](CatalogRow& row) { row.has_byte_order_mark = true; }, true, false},
    {"LineEnding", [](CatalogRow& row) { row.line_ending = "\r\n"; }, true, false},
    {"HeaderLines", [](CatalogRow& row) { row.header_lines = 1; }, true, false},
    {"NoNames", [](CatalogRow& row) { row.names_line.reset(); }, true, false},
    {"UnitsLine", [](CatalogRow& row) { row.units_line = 2; }, true, false},
    {"NameOfAColumn", [](CatalogRow& row) { row.columns[1].name = "depth"; }, false, true},
    {"UnitOfAColumn", [](CatalogRow& row) { row.columns[1].unit = "m"; }, false, true},
    {"FamilyOfAColumn", [](CatalogRow& row) { row.columns[1].kind = "text"; }, false, true},
    {"NumberOfColumns", [](CatalogRow& row) { row.columns.pop_back(); }, false, true},
    {"OrderOfColumns", [](CatalogRow& row) { std::swap(row.columns[0], row.columns[1]); }, false,
     true},
};

class Fingerprints : public testing::TestWithParam<ChangeCase> {};
TEST_P(Fingerprints, ChangeWithWhatAReaderMustKnow) {
  const CatalogRow plain = plain_row();
  CatalogRow changed = plain;
  GetParam().change(changed);
  ASSERT_NE(changed, plain);
  EXPECT_EQ(canonical_layout(changed) != canonical_layout(plain), GetParam().changes_layout);
  EXPECT_EQ(canonical_schema(changed) != canonical_schema(plain), GetParam().changes_schema);
}
INSTANTIATE_TEST_SUITE_P(Table, Fingerprints, testing::ValuesIn(kChanges), ByRule());

TEST(Family, JoinsNumbersAndTexts) {
  for (const char* const kind :
       {"integer", "decimal", "scientific", "epoch-seconds", "epoch-milliseconds"}) {
    EXPECT_EQ(family_of(kind), "number");
  }
  for (const char* const kind : {"category", "identifier", "uuid", "url", "email", "ip", "text"}) {
    EXPECT_EQ(family_of(kind), "text");
  }
  for (const char* const kind : {"date", "time", "date-time", "money", "boolean", "empty"}) {
    EXPECT_EQ(family_of(kind), kind);
  }
}

}  // namespace
}  // namespace textio::tool
