// Each row has the cells of a column as the sample shows them, and further cells, each after what is said of it:
// "+" it fits, "?" it is missing, "!" it contradicts.
#include <vltextstream/layout/column_check.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>

#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::readable;
using Cells = std::vector<std::u16string>;

struct CheckCase {
  const char* rule;
  Cells sample;
  Cells cells;
};
std::ostream& operator<<(std::ostream& out, const CheckCase& row) { return out << row.rule; }

const CheckCase kChecks[] = {
    {"Integers",
     {u"1", u"25", u"-3", u"0"},
     {u"+7", u"+-12", u"+", u"?NA", u"!1.5", u"!1e3", u"!x", u"!2024-01-31", u"!5 %"}},
    {"DecimalCommas",
     {u"1,5", u"22,75", u"0,5", u"3"},
     {u"+7,25", u"+8", u"+1,5e3", u"?n/a", u"!7.25", u"!1.234,5", u"!ja"}},
    {"DecimalCommasWithGroups",
     {u"1.234,5", u"2.222,75", u"0,5", u"3,1"},
     {u"+7.654.321,25", u"+8", u"!1,234.5", u"!1'000,5"}},
    {"Percentages", {u"5 %", u"7 %", u"12 %"}, {u"+8 %", u"+8", u"!$8", u"!x"}},
    {"Money", {u"$5.00", u"$7.25", u"$1.50"}, {u"+$8.00", u"+8.25", u"!$8,00", u"!8 %"}},
    {"Booleans",
     {u"ja", u"nein", u"ja", u"ja"},
     {u"+nein", u"+JA", u"?-", u"!yes", u"!vielleicht", u"!1"}},
    {"DaysFirst",
     {u"31.01.2024", u"01.02.2024", u"15.03.2024"},
     {u"+28.02.2023", u"!2024-01-31", u"!31.02.2024", u"!01/31/2024", u"!31.01.2024 15:04"}},
    {"AmbiguousDaysAreFirst",
     {u"01/02/2024", u"03/02/2024", u"05/06/2024"},
     {u"+31/01/2024", u"!01/31/2024"}},
    {"MonthsFirst",
     {u"01/31/2024", u"02/01/2024", u"02/15/2024"},
     {u"+12/31/2024", u"!31/12/2024"}},
    {"DateTimes",
     {u"2024-01-31 15:04:05", u"2024-02-01 16:00:00", u"2024-02-02 17:30:00"},
     {u"+2024-12-31 23:59:59", u"!2024-12-31", u"!15:04:05"}},
    {"Times", {u"15:04", u"16:00", u"17:30"}, {u"+23:59", u"!23:59:59", u"!2024-01-31"}},
    {"Identifiers", {u"00712", u"01099", u"10115", u"80331"}, {u"+00001", u"!1.5", u"!D-10115"}},
    {"Addresses",
     {u"a@b.org", u"c@d.org", u"e.f@g.net"},
     {u"+x@y.de", u"!x at y", u"!7", u"?NULL"}},
    {"Texts", {u"alder", u"elm", u"fir", u"beech"}, {u"+7", u"+NA", u"+2024-01-31", u"+"}},
    {"Empty", {u"", u"", u""}, {u"+", u"!7", u"!x"}},
};

char16_t sign_of(CellJudgement judgement) {
  if (judgement == CellJudgement::fits) return u'+';
  return judgement == CellJudgement::missing ? u'?' : u'!';
}

class ColumnChecks : public testing::TestWithParam<CheckCase> {};
TEST_P(ColumnChecks, JudgeTheCellsOfTheRow) {
  std::u16string text = u"letter\tvalue\n";
  for (const std::u16string& cell : GetParam().sample) text += u"abc\t" + cell + u"\n";
  const DetectSettings settings;
  const Layout layout = detect_layout(std::u16string_view(text), settings);
  ASSERT_EQ(layout.columns.size(), 2U);
  const ColumnCheck check(layout.columns[1], layout.dialect, settings);
  for (const std::u16string& each : GetParam().cells) {
    const std::u16string cell = each.substr(1);
    EXPECT_EQ(sign_of(check.judge(cell)), each.front()) << readable(each);
    EXPECT_EQ(sign_of(check.judge(u" " + cell + u" ")), each.front()) << readable(each);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ColumnChecks, testing::ValuesIn(kChecks), ByRule());

// "1,234" is grouped where the table groups by commas, and a decimal where its decimal mark is the comma.
TEST(ColumnCheckMarks, AreThoseOfTheTableWhereTheColumnHasNone) {
  ColumnFacts integers;
  integers.kind = ColumnKind::integer;
  const DetectSettings settings;
  TableDialect dialect;
  EXPECT_EQ(ColumnCheck(integers, dialect, settings).judge(u"1,234"), CellJudgement::contradicts);
  dialect.grouping = u',';
  EXPECT_EQ(ColumnCheck(integers, dialect, settings).judge(u"1,234"), CellJudgement::fits);
  dialect.grouping.reset();
  dialect.decimal = u',';
  EXPECT_EQ(ColumnCheck(integers, dialect, settings).judge(u"1,234"), CellJudgement::contradicts);
}

TEST(ColumnCheckMissing, AreTheGivenWordsToo) {
  ColumnFacts integers;
  integers.kind = ColumnKind::integer;
  DetectSettings settings;
  settings.missing = {u"offline"};
  EXPECT_EQ(ColumnCheck(integers, {}, settings).judge(u"offline"), CellJudgement::missing);
}

}  // namespace
}  // namespace textio::standalone
