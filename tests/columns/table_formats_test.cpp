#include <vltextstream/columns/table_formats.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "columns/shown.hpp"

namespace textio::columns {
namespace {

using Cells = std::vector<std::u16string_view>;

std::vector<ColumnDescription> describe(const std::vector<Cells>& columns) {
  std::vector<TableColumn> table;
  for (const Cells& cells : columns) table.push_back({cells, {}});
  return describe_columns(table);
}

TEST(TableFormats, AreThoseOfCertainColumns) {
  const auto columns = describe({{u"1,5"}, {u"1.234"}, {u"31/01/2024"}, {u"text"}});
  const TableFormats formats = find_formats(columns);
  EXPECT_EQ(formats.decimal, u',');
  EXPECT_EQ(formats.grouping, 0);
  EXPECT_EQ(formats.order, DateOrder::day_first);
}

TEST(TableFormats, AreThoseOfMostColumns) {
  const auto columns = describe({{u"1.5"}, {u"2,5"}, {u"3,5"}, {u"1.234.567"}});
  EXPECT_EQ(find_formats(columns).decimal, u',');
  EXPECT_EQ(find_formats(columns).grouping, u'.');
}

TEST(TableFormats, HaveTwoDifferentMarks) {
  const auto columns = describe({{u"1,5"}, {u"1,234,567"}, {u"2,345,678"}, {u"2,5"}});
  EXPECT_EQ(find_formats(columns).decimal, u',');
  EXPECT_EQ(find_formats(columns).grouping, 0);
}

TEST(TableFormats, HaveNoOrderIfColumnsDisagree) {
  const auto columns = describe({{u"31/01/2024"}, {u"01/31/2024"}});
  EXPECT_EQ(find_formats(columns).order, DateOrder::none);
}

TEST(TableFormats, OfNothingAreNone) { EXPECT_EQ(find_formats({}), TableFormats()); }

TEST(WithFormats, FillsInWhatIsUnknown) {
  const TableFormats formats{u',', u'.', DateOrder::day_first};
  ColumnHints hints = with_formats({}, formats);
  EXPECT_EQ(hints.marks.decimal, u',');
  EXPECT_EQ(hints.marks.grouping, u'.');
  EXPECT_EQ(hints.order.order, DateOrder::day_first);
  EXPECT_FALSE(hints.marks.are_given);
  EXPECT_FALSE(hints.order.is_given);

  ColumnHints known;
  known.marks = {u'.', u' ', false, 0, false};
  known.order = {DateOrder::month_first, false};
  hints = with_formats(known, formats);
  EXPECT_EQ(hints.marks.decimal, u'.');
  EXPECT_EQ(hints.marks.grouping, u' ');
  EXPECT_EQ(hints.order.order, DateOrder::month_first);

  known.marks = {u'.', 0, true, 0, false};
  EXPECT_EQ(with_formats(known, formats).marks.grouping, 0);
}

TEST(DescribeColumns, LetsCertainColumnsDecide) {
  const auto columns = describe({{u"1.234", u"2.345"}, {u"1,5", u"2,5"}, {u"1,234"}});
  EXPECT_EQ(columns[0].kind, ColumnKind::integer);
  EXPECT_EQ(columns[0].number, (NumberFormat{0, u'.', 0, false}));
  EXPECT_EQ(columns[1].number, (NumberFormat{u',', 0, 0, true}));
  EXPECT_EQ(columns[2].kind, ColumnKind::decimal);
  EXPECT_EQ(columns[2].number, (NumberFormat{u',', 0, 0, false}));
}

TEST(DescribeColumns, LetsColumnsThatDifferKeepTheirMarks) {
  const auto columns = describe({{u"1,5"}, {u"2,5"}, {u"1.5"}});
  EXPECT_EQ(columns[0].number.decimal, u',');
  EXPECT_EQ(columns[2].number.decimal, u'.');
}

TEST(DescribeColumns, LetsDatesDecideForDates) {
  const auto columns = describe({{u"01/02/2024"}, {u"01/31/2024"}});
  EXPECT_EQ(columns[0].date.order, DateOrder::month_first);
  EXPECT_EQ(columns[0].date.strptime, "%m/%d/%Y");
}

TEST(DescribeColumns, PrefersWhatTheCallerSays) {
  std::vector<TableColumn> table = {{{u"1,234"}, {}}, {{u"0.5"}, {}}};
  table[0].hints.marks.decimal = u',';
  EXPECT_EQ(describe_columns(table)[0].number.decimal, u',');
  table[0].hints.marks.decimal = 0;
  EXPECT_EQ(describe_columns(table)[0].number.grouping, u',');
}

// Two that are equal but for one member differ.
TEST(Formats, DifferByOneMember) {
  EXPECT_FALSE(TableFormats() == (TableFormats{u',', 0, DateOrder::none}));
  EXPECT_FALSE(NumberFormat() == (NumberFormat{0, u'.', 0, true}));
  EXPECT_FALSE(MoneyFormat() == (MoneyFormat{u"EUR", CurrencyPlace::none}));
  EXPECT_FALSE(DateFormat() == (DateFormat{"%Y", "", "", "", false, DateOrder::none}));
  EXPECT_FALSE(MissingWord() == (MissingWord{u"NA", 0}));
  EXPECT_FALSE(BooleanWords() == (BooleanWords{u"yes", u""}));
}

}  // namespace
}  // namespace textio::columns
