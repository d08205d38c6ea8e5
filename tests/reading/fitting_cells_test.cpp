// What columns/ takes for a value of a kind is read as one.
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/columns/column_description.hpp>
#include <vltextstream/reading/column_builder.hpp>

#include "reading/cells.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using testing_support::ByRule;
using testing_support::ExactCells;
using testing_support::readable;
using Cells = std::vector<std::u16string>;

struct FittingCase {
  const char* rule;
  columns::ColumnKind kind;
  Cells cells;  // all of the kind
};
std::ostream& operator<<(std::ostream& out, const FittingCase& row) { return out << row.rule; }

using columns::ColumnKind;

const FittingCase kFitting[] = {
    {"Integers", ColumnKind::integer, {u"1", u"-22", u"+3", u"(4)", u"\u22125"}},
    {"IntegersOfArabic", ColumnKind::integer, {u"\u0661\u0662", u"\u0663"}},
    {"BlanksAround", ColumnKind::integer, {u" 1", u"22 ", u"\u00A03", u"\t4"}},
    {"GroupedIntegers", ColumnKind::integer, {u"1,234", u"12,345,678", u"999", u"1,23,456"}},
    {"GroupedByBlanks", ColumnKind::integer, {u"1 234", u"12\u00A0345\u00A0678", u"1\u2009000"}},
    {"GroupedByApostrophes", ColumnKind::integer, {u"1'234", u"12\u2019345"}},
    {"GroupedByPoints", ColumnKind::integer, {u"1.234.567", u"999"}},
    {"Decimals",
     ColumnKind::decimal,
     {u"1.5", u"22.75", u"7", u".5", u"5.", u"-.5", u"1.25-", u"(1.5)"}},
    {"DecimalCommas", ColumnKind::decimal, {u"1,5", u"22,75", u"0,123", u",5"}},
    {"BothMarks", ColumnKind::decimal, {u"1.234,50", u"7,25", u"1.234", u"-1.234.567,5"}},
    {"MarksAndBlanks", ColumnKind::decimal, {u"1 234,50", u"7,25", u"12\u00A0345,5"}},
    {"Infinity", ColumnKind::decimal, {u"1.5", u"inf", u"-inf", u"+Infinity", u"\u2212nan"}},
    {"Scientific", ColumnKind::scientific, {u"1.5e3", u"2.5E-4", u"1e5", u"7", u"1.5D+03", u"2d2"}},
    {"Percent", ColumnKind::percentage, {u"50%", u"3.5 %", u"1,234.5%", u"(5%)", u"-5 %"}},
    {"PercentWithCommas", ColumnKind::percentage, {u"50 %", u"3,5\u00A0%"}},
    {"PercentAndZeros", ColumnKind::percentage, {u"50%", u"0", u"25%", u"0"}},
    {"PerMille", ColumnKind::percentage, {u"5\u2030", u"12\u2030"}},
    {"MoneyBefore",
     ColumnKind::money,
     {u"$5.00", u"-$1,234.50", u"$ -5", u"$(5)", u"(1,234.50)", u"12", u"$1.2bn"}},
    {"MoneyAfter", ColumnKind::money, {u"5,00 \u20AC", u"1.234,50 \u20AC", u"-7\u20AC"}},
    {"CodeBefore", ColumnKind::money, {u"EUR 1.234,50", u"EUR 5,00-", u"EUR -5", u"-EUR 7"}},
    {"NameAfter", ColumnKind::money, {u"1 234,50 kr", u"12,50 kr."}},
    {"DashesForCents",
     ColumnKind::money,
     {u"CHF 1'200.-", u"CHF 85.50", u"5.--", u"CHF 12.\u2013"}},
    {"Booleans", ColumnKind::boolean, {u"true", u"False", u"TRUE"}},
    {"OtherBooleans", ColumnKind::boolean, {u"s\u00ED", u"NO", u"S\u00CD"}},
    {"Iso", ColumnKind::date, {u"2024-01-31", u"2024-02-29"}},
    {"YearAndDayFirst", ColumnKind::date, {u"2024-31-01", u"2024-02-05"}},
    {"DayFirst", ColumnKind::date, {u"31/01/2024", u"1/2/2024"}},
    {"MonthFirst", ColumnKind::date, {u"01/31/2024", u"2/1/2024"}},
    {"Points", ColumnKind::date, {u"01.02.2024", u"3.4.2024"}},
    {"DigitsAlone", ColumnKind::date, {u"20240131", u"20240201"}},
    {"TwoDigits", ColumnKind::date, {u"99-12-31", u"98-11-30"}},
    {"TwoDigitsYearLast", ColumnKind::date, {u"31.12.99", u"1.2.24"}},
    {"French", ColumnKind::date, {u"31 janvier 2024", u"1 mars 2024", u"2 ao\u00FBt 2023"}},
    {"German", ColumnKind::date, {u"31. Januar 2024", u"1. M\u00E4rz 2024", u"2. Dezember 1999"}},
    {"GermanWithWeekdays", ColumnKind::date, {u"Mi., 31. Jan. 2024", u"Do., 1. Feb. 2024"}},
    {"English", ColumnKind::date, {u"Jan 31, 2024", u"Sep 1, 2024"}},
    {"Ordinals", ColumnKind::date, {u"1st Jan 2024", u"2nd Feb 2024", u"3 March 2024"}},
    {"Months", ColumnKind::date, {u"2024-01", u"2024-02"}},
    {"NamedMonths", ColumnKind::date, {u"Jan 2024", u"Feb 2024"}},
    {"EastAsian", ColumnKind::date, {u"2024\u5E741\u670831\u65E5", u"2024\u5E7412\u67081\u65E5"}},
    {"TwoStyles", ColumnKind::date, {u"2024-01-31", u"31.01.2024", u"12/31/2024", u"31/12/2024"}},
    {"OtherNames", ColumnKind::date, {u"5. J\u00E4nner 2024", u"6. Mrz 2024", u"7 Maerz 2024"}},
    {"DateTimes", ColumnKind::date_time, {u"2024-01-31T15:04Z", u"2024-02-01T09:00+01:00"}},
    {"DatesAmongThem",
     ColumnKind::date_time,
     {u"2024-01-31 15:04", u"2024-02-01", u"2024-02-02 09:00"}},
    {"Nanoseconds",
     ColumnKind::date_time,
     {u"2024-01-31 15:04:05.123456789", u"2024-01-31 15:04:06.000000001"}},
    {"DigitsAndTimes", ColumnKind::date_time, {u"20240131150405", u"20240201000000"}},
    {"BasicFormat", ColumnKind::date_time, {u"20240131T150405Z", u"20240201T000000Z"}},
    {"AccessLog",
     ColumnKind::date_time,
     {u"31/Jan/2024:15:04:05 +0100", u"01/Feb/2024:00:00:00 +0000"}},
    {"ClockOfC", ColumnKind::date_time, {u"Mon Jan  2 15:04:05 2006", u"Tue Jan  3 15:04:05 2006"}},
    {"Mail",
     ColumnKind::date_time,
     {u"Mon, 02 Jan 2006 15:04:05 GMT", u"Tue, 03 Jan 2006 15:04:05 GMT"}},
    {"Cet", ColumnKind::date_time, {u"2024-01-31 15:04 CET", u"2024-02-01 09:00 CET"}},
    {"CetAndCest", ColumnKind::date_time, {u"2024-01-31 15:04 CET", u"2024-07-01 09:00 CEST"}},
    {"HalfDays", ColumnKind::date_time, {u"1/31/2024 3:04 PM", u"2/1/2024 12:00 AM"}},
    {"MidnightAtTheEnd",
     ColumnKind::date_time,
     {u"2024-01-31 24:00", u"2024-01-31 12:00", u"31.1.2024 23:59:60"}},
    {"Times", ColumnKind::time, {u"15:04", u"9:30"}},
    {"TimesWithSeconds", ColumnKind::time, {u"1:02:03.5", u"12:00:00,25", u"24:00:00"}},
    {"TimesOfHalfDays", ColumnKind::time, {u"5 pm", u"11:30 a.m.", u"12:00 PM"}},
    {"TimesWithZones", ColumnKind::time, {u"15:04:05+01:00", u"15:04:06Z"}},
    {"LongClocks", ColumnKind::duration, {u"1:02:03", u"36:15:00", u"-100:00:00.5"}},
    {"LongHours", ColumnKind::duration, {u"12:30", u"13:45", u"25:10"}},
    {"Minutes", ColumnKind::duration, {u"3:05.12", u"59:12.5"}},
    {"IsoDurations", ColumnKind::duration, {u"PT5M", u"P1DT2H", u"P3Y6M4DT12H30M5.5S", u"-P2W"}},
    {"Sums",
     ColumnKind::duration,
     {u"1d 2h", u"3 days, 4:05:06", u"2 hours and 5 minutes", u"1h30m"}},
    {"OneUnit", ColumnKind::duration, {u"1d 2h", u"5h", u"30 min", u"10 ms", u"2sec"}},
    {"ClocksOfHalfDays", ColumnKind::duration, {u"36:15:00", u"5 pm", u"4:05"}},
    {"Seconds", ColumnKind::epoch_seconds, {u"1704067200", u"1704067260", u"1704067320"}},
    {"Milliseconds",
     ColumnKind::epoch_milliseconds,
     {u"1704067200000", u"1704067200500", u"1704067202000"}},
};

class FittingCells : public testing::TestWithParam<FittingCase> {};

TEST_P(FittingCells, AreRead) {
  const Cells& cells = GetParam().cells;
  const columns::ColumnDescription column = columns::describe_column(ExactCells(cells).views());
  EXPECT_EQ(to_string(column.kind), to_string(GetParam().kind));
  EXPECT_EQ(column.num_fitting, cells.size())
      << (column.first_misfit ? readable(cells[*column.first_misfit]) : "");
  const ColumnPlan plan = plan_of(column);
  const Built result = built(plan, cells);
  for (const std::uint32_t i : result.misfits) {
    ADD_FAILURE() << "'" << readable(cells[i]) << "' by '" << plan.strptime << "'";
  }
  EXPECT_EQ(result.column.num_missing, 0U);
}

INSTANTIATE_TEST_SUITE_P(Table, FittingCells, testing::ValuesIn(kFitting), ByRule());

}  // namespace
}  // namespace textio::reading
