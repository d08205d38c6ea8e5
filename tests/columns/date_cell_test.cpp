#include <vltextstream/columns/date_cell.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "columns/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

struct KindCase {
  const char* rule;
  ColumnKind kind;
  std::vector<std::u16string> cells;
};
std::ostream& operator<<(std::ostream& out, const KindCase& row) { return out << row.rule; }

const KindCase kKinds[] = {
    {"Dates",
     ColumnKind::date,
     {u"2024-01-31", u"1/2/24", u"31 Jan", u"Jan 31", u"Jan 2024", u"1st May 2024", u"20240131",
      u"Mi. 31.01.2024", u"12/2023", u"12 sept. mar 2023", u"Jan \u201920"}},
    {"Times",
     ColumnKind::time,
     {u"9:05", u"24:00", u"15:04:60", u"5pm", u"5 p.m.", u"12 AM", u"1 am", u"1 p.m. UTC",
      u"15:04 CET", u"15:04+14:00", u"5 p.m"}},
    {"DatesAndTimes",
     ColumnKind::date_time,
     {u"2024-01-31T15:04", u"31.1.2024 5 pm", u"15:04 31 Jan", u"202401311504",
      u"20240131 15:04:05"}},
    {"ClocksWithoutHours", ColumnKind::duration, {u"59:12.5", u"03:07.123"}},
};

class ReadDate : public testing::TestWithParam<KindCase> {};
TEST_P(ReadDate, HasTheKindOfTheRow) {
  for (const std::u16string& cell : GetParam().cells) {
    const ExactText exact(cell);
    const auto date = read_date(exact.view());
    ASSERT_TRUE(date) << readable(cell);
    EXPECT_EQ(date->kind, GetParam().kind) << readable(cell);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ReadDate, testing::ValuesIn(kKinds), ByRule());

TEST(ReadDateOf, OtherTextsIsNone) {
  for (const std::u16string cell :
       {u"", u"12", u"2024", u"12.5", u"1-2", u"2024-13-13", u"2024-1-32", u"13/13/2024",
        u"0/1/2024", u"32.1.2024", u"1/2/3/2024", u"12345-01-01", u"25:00", u"25:00:00", u"15:60",
        u"15:04:61", u"9:5", u"13 pm", u"0 am", u"15:04+15:00", u"15:04+1", u"15:04+010", u"Monday",
        u"January", u"Mon 5", u"1 Jan 5", u"45-99-12", u"12-45-7", u"Jan 1, 5", u"5 apples",
        u"Jan Feb 2024", u"Mon Tue 1 Jan 2024", u"1 Jan 2024x", u"20241301", u"20240230",
        u"18991231", u"21000101", u"202401312460", u"20240131T2460", u"-2024-01-31",
        u"31 March 2024, Montag", u"59:12.5 1.2.2024", u"60:12.5", u"59:12.5 pm", u"15:04 16:05",
        u"2024013", u"20240131 20240131",
        // Words and marks after a part of a clock or a date.
        u"x\u5E74", u"15:04:x", u"15:04,5", u"20240131150405.x", u"5 amp", u"9:12.5 pm",
        u"15:04 +x", u"15:04 A", u"15:04 ABCDEF", u"15:04 CETx", u"15:04+01:x", u"15:04+01:5",
        u"20240131T1504+1", u"202401311", u"mar 5\u6708 x", u"mar x 5", u"mar Mon 5 x",
        // Parts that do not go together.
        u"15:04 Jan", u"15:04 Mon", u"20240131 5", u"20240131 Jan", u"2024 Jan 2024",
        u"45 Jan 2024", u"1 2 Jan 2024", u"2024 2024", u"2024-2024-01", u"2024-01-2024",
        u"1-2024-1", u"12-45-12", u"13-13-13"}) {
    EXPECT_FALSE(read_date(ExactText(cell).view())) << readable(cell);
  }
}

TEST(ReadDateOf, LongTextsIsNone) {
  const std::u16string date = u"2024-01-31";
  const std::u16string blanks(50, u' ');
  EXPECT_TRUE(read_date(date + std::u16string(44, u' ') + u"15:04"));
  EXPECT_FALSE(read_date(date + blanks + u"15:04"));
}

// A cell has room for 32 parts. Each of these begins with one and then has `n` commas.
TEST(ReadDateOf, MorePartsThanThereIsRoomForIsNone) {
  struct PartsCase {
    std::u16string begin;
    std::u16string end;
    std::size_t parts;  // without the commas
  };
  const PartsCase cases[] = {
      {u"1", u" Jan 2024 3:04:05.25 pm UTC", 17},
      {u"1", u" Jan 2024 15:04 +01", 11},
      {u"1", u" de Jan 2024", 8},
      {u"Wed", u"20240131150405.25", 9},
  };
  for (const PartsCase& row : cases) {
    // A longer text is no date either, so that this would prove nothing.
    for (std::size_t n = 0; row.begin.size() + n + row.end.size() <= 60; ++n) {
      const std::u16string text = row.begin + std::u16string(n, u',') + row.end;
      EXPECT_EQ(read_date(text).has_value(), row.parts + n <= 32) << readable(text);
    }
  }
}

TEST(ReadDateOf, WhatNoPatternDescribesSaysSo) {
  for (const std::u16string cell :
       {u"1st May 2024", u"5 p.m.", u"24:00", u"23:59:60", u"15:04\u221201:00"}) {
    ASSERT_TRUE(read_date(cell)) << readable(cell);
    EXPECT_FALSE(read_date(cell)->has_pattern) << readable(cell);
  }
  EXPECT_TRUE(read_date(u"1 May 2024")->has_pattern);
}

TEST(ReadDateZone, IsThatOfTheText) {
  const std::u16string_view zones[] = {u"Z", u"+01:00", u"-0330", u"+01", u"UTC", u"CEST"};
  for (const std::u16string_view zone : zones) {
    const std::u16string text = u"15:04 " + std::u16string(zone);
    EXPECT_EQ(readable(read_date(text)->zone), readable(zone));
  }
  EXPECT_EQ(read_date(u"15:04")->zone, u"");
}

TEST(IsSurelyDate, NeedsAYear) {
  const auto is_sure = [](const std::u16string& cell) {
    const auto date = read_date(cell);
    return date && is_surely_date(*date, cell);
  };
  for (const std::u16string cell : {u"12 mars 2024", u"12 de marzo de 2024", u"99-12-31",
                                    u"set 2024", u"12 lipca 2024 15:04", u"12 mars 24"}) {
    EXPECT_TRUE(is_sure(cell)) << readable(cell);
  }
  for (const std::u16string cell : {u"Set 5", u"12 mars", u"15:04 ABC", u"99-12-1", u"99.12-31",
                                    u"5 do", u"1-12-12,", u"31.01.2024"}) {
    EXPECT_FALSE(is_sure(cell)) << readable(cell);
  }
}

TEST(IsCompactDate, HasAllItsDigits) {
  for (const std::u16string cell :
       {u"20240131", u"19000101", u"20991231", u"202401311504", u"20240131150405", u"20240229"}) {
    EXPECT_TRUE(is_compact_date(cell)) << readable(cell);
  }
  for (const std::u16string cell :
       {u"2024013", u"20241301", u"20240230", u"20230229", u"18991231", u"21000101", u"2024013115",
        u"202401312504", u"20240131150460", u"2024-1-1", u"20240131150405123"}) {
    EXPECT_FALSE(is_compact_date(cell)) << readable(cell);
  }
}

TEST(IsOnCalendar, KnowsTheDaysOfMonths) {
  EXPECT_TRUE(is_on_calendar(2023, 1, 31));
  EXPECT_FALSE(is_on_calendar(2023, 4, 31));
  EXPECT_FALSE(is_on_calendar(2023, 1, 0));
  EXPECT_FALSE(is_on_calendar(2023, 0, 1));
  EXPECT_FALSE(is_on_calendar(2023, 13, 1));
}

TEST(IsOnCalendar, KnowsLeapYears) {
  EXPECT_TRUE(is_on_calendar(2024, 2, 29));
  EXPECT_TRUE(is_on_calendar(2000, 2, 29));
  EXPECT_TRUE(is_on_calendar(0, 2, 29));
  EXPECT_FALSE(is_on_calendar(2023, 2, 29));
  EXPECT_FALSE(is_on_calendar(1900, 2, 29));
  EXPECT_FALSE(is_on_calendar(2024, 2, 30));
}

}  // namespace
}  // namespace textio::columns
