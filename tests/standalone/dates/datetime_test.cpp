#include <vltextstream/host/datetime.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "support/allocation_counter.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::allocations_are_counted;
using testing_support::allocations_of_this_thread;
using testing_support::ExactText;
using testing_support::readable;

bool is_datetime(std::u16string_view text) {
  const ExactText exact(text);
  return datetime::is_datetime(exact.field());
}

// Texts that are accepted or refused for the same reason.
struct Texts {
  const char* rule;
  std::vector<std::u16string> texts;
};
std::ostream& operator<<(std::ostream& out, const Texts& row) { return out << row.rule; }

// --- accepted ----------------------------------------------------------------------------------

const Texts kAccepted[] = {
    {"YearFirst",
     {u"2024-03-01", u"2024/03/01", u"2024.03.01", u"1999-12-31", u"2024-01-01", u"2024-12-31"}},
    {"YearFirstWithShortGroups",
     {u"2024-3-1", u"2024/3/1", u"2024.3.1", u"2024-03-1", u"2024-3-01", u"2024/12/1"}},
    {"FirstAndLastYear",
     {u"0001-01-01", u"9999-12-31", u"01.01.0001", u"31.12.9999", u"1 Jan 0001", u"0099/05/06"}},
    {"DayMonthYear",
     {u"01.03.2024", u"1.3.2024", u"24-12-2023", u"31/12/2023", u"1/3/2024", u"31.1.2024"}},
    {"MonthDayYear",
     {u"03/31/2024", u"3/31/2024", u"12-25-2023", u"12.31.2023", u"2/28/2024", u"1/31/2024"}},
    {"TwoDigitYearInThreePairs",
     {u"01.03.24", u"31-12-99", u"12/31/99", u"01/02/03", u"29.02.24", u"29.02.00", u"24-03-01",
      u"10-20-30"}},
    {"TwoDigitYearAfterSlashes", {u"1/2/24", u"3/31/24", u"31/3/24", u"12/1/99", u"2/29/00"}},
    {"DayThenMonthName",
     {u"1 Mar 2024", u"01 Mar 2024", u"1 March 2024", u"31 December 1999", u"1-Mar-2024",
      u"01/Mar/2024", u"1.Mar.2024", u"1  Mar   2024", u"9 September 2024", u"30-June-2024"}},
    {"DayThenMonthNameAndShortYear",
     {u"1-Mar-24", u"01-Mar-24", u"1 Mar 24", u"31/Dec/99", u"29 Feb 00", u"15.Jul.05"}},
    {"MonthNameThenDay",
     {u"March 1, 2024", u"Mar 1 2024", u"Mar 1, 2024", u"Mar 01, 2024", u"Mar  1  2024",
      u"Mar-01-2024", u"Mar/1/2024", u"Mar.1.2024", u"December 31, 1999", u"May 5, 24"}},
    {"EveryMonthInFull",
     {u"January 2, 2023", u"February 2, 2023", u"March 2, 2023", u"April 2, 2023", u"May 2, 2023",
      u"June 2, 2023", u"July 2, 2023", u"August 2, 2023", u"September 2, 2023", u"October 2, 2023",
      u"November 2, 2023", u"December 2, 2023"}},
    {"EveryMonthAbbreviated",
     {u"3 Jan 2023", u"3 Feb 2023", u"3 Mar 2023", u"3 Apr 2023", u"3 May 2023", u"3 Jun 2023",
      u"3 Jul 2023", u"3 Aug 2023", u"3 Sep 2023", u"3 Sept 2023", u"3 Oct 2023", u"3 Nov 2023",
      u"3 Dec 2023"}},
    {"AbbreviationWithDot",
     {u"1 Mar. 2024", u"Mar. 1, 2024", u"Sept. 30, 2024", u"30 Sept. 2024", u"Dec. 31 1999",
      u"1-Mar.-2024", u"May. 5, 2024", u"1. Mar. 2024"}},
    {"NamesInAnyCase",
     {u"1 MAR 2024", u"1 mar 2024", u"1 mAr 2024", u"MARCH 1, 2024", u"march 1, 2024",
      u"FRI, 1 MAR 2024", u"friday, march 1, 2024", u"01-JAN-24", u"1 SEPT 2024"}},
    {"DayWithOrdinalSuffix",
     {u"1st March 2024", u"2nd March 2024", u"3rd March 2024", u"4th March 2024",
      u"11th March 2024", u"12th March 2024", u"13th March 2024", u"20th March 2024",
      u"21st March 2024", u"22nd March 2024", u"23rd March 2024", u"30th March 2024",
      u"31st March 2024", u"March 1st, 2024", u"March 2nd 2024", u"MARCH 3RD, 2024",
      u"Mar-4th-2024"}},
    {"DayWithDotBeforeBlank", {u"1. March 2024", u"31. Dec 1999", u"7. May 24"}},
    {"CommaBeforeTheYear", {u"1 March, 2024", u"1st Mar, 2024", u"Mar 1,  2024"}},
    {"YearThenMonthName",
     {u"2024-Mar-01", u"2024 Mar 1", u"2024 March 1", u"2024/Mar/01", u"2024.Mar.1",
      u"2024 Mar. 1"}},
    {"WeekdayBefore",
     {u"Fri, 01 Mar 2024", u"Fri 1 Mar 2024", u"Friday, March 1, 2024", u"Friday 1 March 2024",
      u"Fri. 1 Mar 2024", u"Fri., 1 Mar 2024", u"Fri, 2024-03-01", u"Friday, 01.03.2024",
      u"Friday, 01-Mar-24", u"Fri  03/01/2024"}},
    {"EveryWeekday",
     {u"Mon, 1 Mar 2024", u"Tue, 1 Mar 2024", u"Tues, 1 Mar 2024", u"Wed, 1 Mar 2024",
      u"Thu, 1 Mar 2024", u"Thur, 1 Mar 2024", u"Thurs, 1 Mar 2024", u"Sat, 1 Mar 2024",
      u"Sun, 1 Mar 2024", u"Monday 1 Mar 2024", u"Tuesday 1 Mar 2024", u"Wednesday 1 Mar 2024",
      u"Thursday 1 Mar 2024", u"Saturday 1 Mar 2024", u"Sunday 1 Mar 2024"}},
    {"DateTAndTime",
     {u"2024-03-01T10:00", u"2024-03-01T10:00:00", u"2024-03-01t10:00", u"2024/03/01T10:00:00",
      u"01.03.2024T10:00", u"2024-Mar-01T10:00", u"1-Mar-24T10:00:00"}},
    {"DateBlanksAndTime",
     {u"2024-03-01 10:00", u"2024-03-01 10:00:00", u"2024-03-01  10:00", u"01.03.2024 10:00",
      u"3/31/2024 9:05", u"01.03.24 10:00", u"1 Mar 2024 10:00", u"1-Mar-24 10:00:00",
      u"March 1, 2024 10:00"}},
    {"DateCommaBlanksAndTime",
     {u"01.03.2024, 10:00", u"2024-03-01, 10:00:00", u"03/01/2024, 2:05 PM",
      u"March 1, 2024, 10:00", u"1 Mar 2024,  10:00"}},
    {"SecondsWithFraction",
     {u"2024-03-01 10:00:00.5", u"2024-03-01 10:00:00,5", u"2024-03-01T10:00:00.123456789",
      u"2024-03-01 08:15:02.120", u"2024-03-01 08:15:02,120", u"01.03.2024 10:00:00.0"}},
    {"HalfDays",
     {u"3/1/2024 2:05 PM", u"3/1/2024 2:05PM", u"3/1/2024 02:05:06 am", u"3/1/2024 12:00 AM",
      u"3/1/2024 12:59:59.9 PM", u"3/1/2024 1:00 Am", u"Mar 1, 2024 02:05 PM",
      u"2024-03-01 10:00  PM"}},
    {"NoBreakSpaceBeforeHalfDay",
     {u"3/1/2024 2:05\u00a0PM", u"3/1/2024 2:05\u202fPM", u"3/1/2024, 2:05:06\u202fAM"}},
    {"ZoneNames",
     {u"2024-03-01T10:00:00Z", u"2024-03-01T10:00Z", u"2024-03-01t10:00:00z",
      u"2024-03-01 10:00:00 Z", u"2024-03-01 10:00:00 UTC", u"2024-03-01 10:00:00UTC",
      u"2024-03-01 10:00 GMT", u"2024-03-01 10:00:00.5 utc"}},
    {"ZoneOffsets",
     {u"2024-03-01T10:00:00+01", u"2024-03-01T10:00:00+0100", u"2024-03-01T10:00:00+01:00",
      u"2024-03-01T10:00:00-05:00", u"2024-03-01T10:00:00.123-0330", u"2024-03-01T10:00+05:45",
      u"2024-03-01 10:00:00 +0000", u"2024-03-01 10:00:00 -00:00", u"2024-03-01 10:00:00+14:00",
      u"2024-03-01 10:00:00-12", u"2024-03-01 2:05 PM +01:00"}},
    {"MailAndWebDates",
     {u"Fri, 01 Mar 2024 10:00:00 GMT", u"Fri, 1 Mar 2024 10:00:00 +0000",
      u"Friday, 01-Mar-24 10:00:00 GMT", u"01 Mar 2024 10:00:00 -0500", u"1 Mar 2024 10:00 Z"}},
    {"TimeBeforeTheYear",
     {u"Fri Mar  1 10:00:00 2024", u"Fri Mar 01 10:00:00 2024", u"Mar  1 10:00:00 2024",
      u"Mar 1 10:00 2024", u"Fri Mar  1 10:00:00 UTC 2024", u"Fri Mar 01 10:00:00 +0000 2024",
      u"Fri Mar 1 10:00:00 2024 +0100", u"Fri Mar  1 10:00:00 AM UTC 2024",
      u"Thu Feb 29 23:59:60 2024"}},
    {"AccessLogTime",
     {u"01/Mar/2024:10:00:00 +0000", u"1/Mar/2024:10:00:00 -0800", u"31/Dec/1999:23:59:59",
      u"29/Feb/2024:10:00:00 +0000"}},
    {"CompactDateAndTime",
     {u"20240301T100000", u"20240301T100000Z", u"20240301t100000z", u"20240301T100000+0100",
      u"20240301T100000+01", u"20240301T100000-05:00", u"20240301T100000.250Z", u"00010101T000000",
      u"99991231T235959", u"20240229T120000"}},
    {"LastMomentsOfADay",
     {u"2024-03-01 00:00", u"2024-03-01 00:00:00", u"2024-03-01 0:00", u"2024-03-01 23:59:59",
      u"2024-03-01 23:59:59.999"}},
    {"MidnightAtTheEndOfADay",
     {u"2024-03-01 24:00", u"2024-03-01T24:00:00", u"2024-03-01T24:00:00.0",
      u"2024-03-01 24:00:00,000", u"20240301T240000", u"2024-03-01T24:00:00Z"}},
    {"LeapSecond",
     {u"2016-12-31 23:59:60", u"2016-12-31T23:59:60Z", u"2017-01-01T00:59:60+01:00",
      u"2016-12-31 23:59:60.5", u"20161231T235960Z", u"12/31/2016 6:59:60 PM"}},
    {"LeapDays",
     {u"2000-02-29", u"2024-02-29", u"29.02.2000", u"2/29/2024", u"29 Feb 2024",
      u"February 29, 2000", u"0004-02-29"}},
    {"LastDayOfEachMonth",
     {u"2023-01-31", u"2023-02-28", u"2023-03-31", u"2023-04-30", u"2023-05-31", u"2023-06-30",
      u"2023-07-31", u"2023-08-31", u"2023-09-30", u"2023-10-31", u"2023-11-30", u"2023-12-31"}},
    {"LongestText",
     {u"Wednesday, September 30th, 2024, 10:00:00.123456789 AM +01:00",
      u"2024-03-01" + std::u16string(64 - 10 - 5, u' ') + u"10:00"}},
};

class IsDatetimeAccepts : public testing::TestWithParam<Texts> {};
TEST_P(IsDatetimeAccepts, EveryText) {
  for (const auto& text : GetParam().texts) EXPECT_TRUE(is_datetime(text)) << readable(text);
}
INSTANTIATE_TEST_SUITE_P(Table, IsDatetimeAccepts, testing::ValuesIn(kAccepted),
                         testing_support::ByRule());

// --- refused -----------------------------------------------------------------------------------

const Texts kRefused[] = {
    {"Nothing", {u"", u" ", u"-", u"/", u".", u":", u"T", u"Z"}},
    {"PlainNumbers",
     {u"0", u"1", u"2024", u"20240301", u"240301", u"20240301100000", u"45352.41667", u"3.14",
      u"-12", u"1e5", u"12345678901234567890"}},
    {"TimesAlone",
     {u"10:00", u"10:00:00", u"10:00:00.5", u"2:05 PM", u"10:00Z", u"T10:00:00", u"12:3",
      u"100:00:00", u"Fri 10:00"}},
    {"YearAndMonthOnly",
     {u"2024-03", u"2024/03", u"2024.03", u"03/2024", u"03.2024", u"Mar 2024", u"March 2024",
      u"2024 Mar", u"Mar-24", u"2024-Mar", u"03-2024"}},
    {"DayAndMonthOnly",
     {u"1 Mar", u"Mar 1", u"March 1st", u"01.03.", u"1/3", u"24-12", u"Fri, 1 Mar",
      u"Mar  1 10:00:00", u"1 Mar 10:00"}},
    {"NamesOnly", {u"March", u"Mar", u"Friday", u"Fri,", u"Sept.", u"Fri Mar"}},
    {"Versions",
     {u"1.2.3", u"1.10.0", u"v1.2.3", u"10.15.7", u"2.4.57", u"1.2.3.4", u"2024.1", u"1.2.3-rc1",
      u"22.04.3", u"5.10.0-8", u"1.24.3", u"v2024.03.01"}},
    {"InternetAddresses",
     {u"10.0.0.12", u"192.168.1.1", u"127.0.0.1", u"255.255.255.0", u"10.12.2024.1", u"10.12.20.24",
      u"2001:db8::1", u"fe80::1", u"10.0.0.0/8", u"00:1A:2B:3C:4D:5E", u"01-02-03-04-05-06"}},
    {"PhoneNumbers",
     {u"555-123-4567", u"(555) 123-4567", u"+49 30 123456", u"030/123456", u"0171-1234567",
      u"555.123.4567", u"1-800-555-0199", u"+1 202 555 0143", u"12-34-5678", u"06 12 34 56 78",
      u"020 7946 0018"}},
    {"Ranges",
     {u"1-3", u"2020-2024", u"2020/2021", u"10-20-30-40", u"2024-03-01/2024-03-05",
      u"2024-03-01-2024-03-05", u"1-3 Mar 2024", u"Mar 1-3, 2024", u"01.-03.03.2024",
      u"2024-03-01 - 2024-03-05", u"9:00-17:00", u"2024-03-01 09:00-17:00"}},
    {"Scores", {u"3:2", u"21:15", u"6-4 6-3", u"6-4, 6-3", u"25-23-25", u"3-1-0", u"102:98"}},
    {"Fractions", {u"1/2", u"3/4", u"1/2/3", u"12/100", u"1 1/2", u"7/8\"", u"22/7"}},
    {"PartNumbers",
     {u"A-2024-03-01", u"2024-03-01A", u"12-345-678", u"2024-1234", u"AB-12-34-56", u"0815-4711",
      u"978-3-16-148410-0", u"078-05-1120", u"12MAY3456", u"MAR-1001", u"1234-56-78", u"X1 Mar 24",
      u"2024-03-001"}},
    {"Coordinates",
     {u"52.5200", u"52.52,13.40", u"52.52, 13.40", u"52.52 13.40", u"48\u00b051'24\"", u"N52 31 12",
      u"-33.86/151.21", u"12/34", u"52 31 12"}},
    {"Amounts",
     {u"1,000", u"1.234,56", u"1,234.56", u"$12.50", u"12.50 EUR", u"1.000.000", u"1 000 000",
      u"12,5 %", u"20.-", u"1.3.2024 EUR", u"01.03.2024 kg", u"10.50.99"}},
    {"MonthsThatDoNotExist",
     {u"2020-13-45", u"2024-13-01", u"2024-00-01", u"2024-0-1", u"13.13.2024", u"31.13.2024",
      u"00/10/2024", u"13/32/2024", u"20-20-20", u"20241301T100000", u"20240001T100000"}},
    {"DaysThatDoNotExist",
     {u"2024-03-00", u"2024-03-32", u"2024-3-0", u"30.02.2021", u"31.04.2024", u"0 Mar 2024",
      u"32 Mar 2024", u"March 0, 2024", u"April 31, 2024", u"31-Jun-24", u"2024-Sep-31",
      u"31/Nov/2024:10:00:00 +0000", u"20240431T100000", u"30.02.24", u"99.99.99",
      u"Fri Feb 30 10:00:00 2024"}},
    {"LeapDaysOfOtherYears",
     {u"1900-02-29", u"2023-02-29", u"29.02.1900", u"2/29/2023", u"29 Feb 2100",
      u"February 29, 2023", u"29.02.23", u"29-Feb-25", u"19000229T100000", u"2000-02-30"}},
    {"DayAfterTheLastOfEachMonth",
     {u"2023-01-32", u"2023-02-30", u"2023-03-32", u"2023-04-31", u"2023-05-32", u"2023-06-31",
      u"2023-07-32", u"2023-08-32", u"2023-09-31", u"2023-10-32", u"2023-11-31", u"2023-12-32"}},
    {"YearsOfWrongLength",
     {u"0000-01-01", u"01.01.0000", u"1 Jan 0000", u"10000-01-01", u"01.01.10000", u"999-01-01",
      u"01.01.999", u"1 Mar 024", u"1 Mar 2", u"1 Mar 20240", u"March 1, 202", u"00000101T000000",
      u"020240301T100000"}},
    {"ShortYearWithShortGroups",
     {u"1.3.24", u"01.3.24", u"1.03.24", u"3.31.24", u"12-1-99", u"1-1-01", u"1/2/4", u"13/13/24"}},
    {"ShortYearFirst", {u"99-12-31", u"32/01/02", u"45.12.30"}},
    {"GroupsOfWrongLength",
     {u"2024-003-01", u"2024-03-011", u"001.03.2024", u"01.003.2024", u"001 Mar 2024",
      u"March 001, 2024"}},
    {"MixedSeparators",
     {u"2024-03/01", u"2024/03-01", u"2024.03-01", u"01.03/2024", u"01/03-2024", u"01-03.24",
      u"1-Mar 2024", u"1 Mar-2024", u"1/Mar-2024", u"Mar-1, 2024", u"Mar 1-2024", u"2024-Mar 01",
      u"01/Mar-2024:10:00:00"}},
    {"OtherSeparators",
     {u"2024_03_01", u"2024:03:01", u"2024 03 01", u"01,03,2024", u"2024--03--01", u"1--Mar--2024",
      u"2024- 03-01", u"1. 3. 2024", u"2024\u201303\u201301", u"2024\\03\\01", u"1\tMar\t2024",
      u"1,Mar,2024"}},
    {"MissingOrExtraParts",
     {u"-03-01-2024", u"2024--01", u"2024-03-", u"2024-03-01-", u"2024-03-01.", u".01.03.2024",
      u"01.03.2024.", u"2024-03-01,", u"1 Mar 2024,", u"2024-03-01-01", u"1 Mar Mar 2024",
      u"1 1 Mar 2024", u"Mar 1 2024 2024"}},
    {"BlanksAround",
     {u" 2024-03-01", u"2024-03-01 ", u"\t2024-03-01", u"2024-03-01 10:00 ", u"2024-03-01\n",
      u" 1 Mar 2024", u"Fri, 1 Mar 2024 "}},
    {"OtherWordsForMonths",
     {u"1 Mars 2024", u"1 Marc 2024", u"1 Ma 2024", u"1 Septe 2024", u"1 Juni 2024", u"1 Foo 2024",
      u"1 M 2024", u"Marches 1, 2024", u"1 Mar\u00e7 2024", u"X 1, 2024"}},
    {"DotAfterFullName",
     {u"1 March. 2024", u"March. 1, 2024", u"Friday. 1 Mar 2024", u"1 Mar.. 2024", u"1.Mar..2024"}},
    {"OtherWordsForWeekdays",
     {u"Fr, 1 Mar 2024", u"Frid, 1 Mar 2024", u"Foo, 1 Mar 2024", u"Mar, 1 Mar 2024",
      u"Fri Fri 1 Mar 2024", u"Fri-1-Mar-2024", u"Fri1 Mar 2024", u"Fri,, 1 Mar 2024",
      u"Fri 20240301T100000", u"2024-03-01 Fri"}},
    {"WrongOrdinalSuffix",
     {u"1th March 2024", u"2st March 2024", u"3nd March 2024", u"4rd March 2024",
      u"11st March 2024", u"12nd March 2024", u"13rd March 2024", u"21th March 2024",
      u"1s March 2024", u"1stt March 2024", u"1 st March 2024", u"1st. March 2024"}},
    {"OrdinalSuffixWithoutName", {u"1st/3/2024", u"2024-03-01st", u"1st.03.2024"}},
    {"CommaWithoutBlank",
     {u"March 1,2024", u"Fri,1 Mar 2024", u"2024-03-01,10:00", u"1 March,2024",
      u"March 1, 2024,10:00"}},
    {"CommaInTheWrongPlace",
     {u"March, 1 2024", u"1, March 2024", u"March 1 , 2024", u"2024-03-01 , 10:00",
      u"Fri Mar 1, 10:00:00 2024", u"2024, Mar 1"}},
    {"PartsRunTogether",
     {u"1Mar2024", u"01Mar24", u"Mar1,2024", u"2024Mar01", u"2024-03-0110:00",
      u"2024-03-0110:00:00", u"1 Mar2024"}},
    {"DateAndJustAnHour",
     {u"2024-03-01 12", u"2024-03-01T12", u"2024-03-01, 12", u"2024-03-01 12 PM", u"2024-03-01T12Z",
      u"1 Mar 2024 10", u"2024-03-01 12:"}},
    {"TimesOfWrongShape",
     {u"2024-03-01 1:2",       u"2024-03-01 10:0",        u"2024-03-01 10:00:0",
      u"2024-03-01 010:00",    u"2024-03-01 10:000",      u"2024-03-01 10:00:000",
      u"2024-03-01 10:00:",    u"2024-03-01 10.00",       u"2024-03-01 10:00.5",
      u"2024-03-01 10:00:00.", u"2024-03-01 10:00:00:00", u"2024-03-01 10:00:00.5.5",
      u"2024-03-01 1000",      u"2024-03-01T100000",      u"2024-03-01 :00",
      u"2024-03-01TT10:00",    u"2024-03-01 T10:00",      u"2024-03-01T 10:00",
      u"2024-03-01-10:00",     u"2024-03-01:10:00:00",    u"10:00 2024-03-01",
      u"2024-03-01\u00a010:00"}},
    {"TimesOffTheClock",
     {u"2024-03-01 25:00", u"2024-03-01 10:60", u"2024-03-01 10:00:61", u"2024-03-01 99:99",
      u"Fri Mar 1 25:00:00 2024", u"01/Mar/2024:10:60:00 +0000", u"20240301T250000",
      u"20240301T106000", u"20240301T100061"}},
    {"PastTheEndOfTheDay",
     {u"2024-03-01 24:01", u"2024-03-01 24:00:01", u"2024-03-01 24:00:00.1",
      u"2024-03-01 24:00:00.0001", u"20240301T240001", u"2024-03-01 24:59:60"}},
    {"SecondSixtyElsewhere",
     {u"2016-12-31 23:58:60", u"2016-12-31 23:00:60", u"2016-12-31 23:59:61", u"20161231T235860"}},
    {"HalfDayOfAnImpossibleHour",
     {u"3/1/2024 13:00 PM", u"3/1/2024 0:00 AM", u"3/1/2024 00:30 AM", u"3/1/2024 24:00 AM",
      u"3/1/2024 23:59 PM"}},
    {"OtherHalfDays",
     {u"3/1/2024 2:05 XM", u"3/1/2024 2:05 A", u"3/1/2024 2:05 AMPM", u"3/1/2024 2:05 AM PM",
      u"3/1/2024 PM", u"3/1/2024 2 PM", u"3/1/2024 2:05\u2003PM", u"3/1/2024 2:05\u00a0",
      u"3/1/2024\u00a02:05 PM"}},
    {"OtherZones",
     {u"2024-03-01 10:00 CET", u"2024-03-01 10:00 ZZ", u"2024-03-01 10:00 UTC+1",
      u"2024-03-01 10:00 Z+01:00", u"2024-03-01 10:00 +01:00 Z", u"2024-03-01 10:00 U",
      u"2024-03-01 10:00\u00a0UTC"}},
    {"OffsetsOfWrongShape",
     {u"2024-03-01 10:00 +1", u"2024-03-01 10:00 +010", u"2024-03-01 10:00 +01:0",
      u"2024-03-01 10:00 +01:", u"2024-03-01 10:00 +01000", u"2024-03-01 10:00 +1:00",
      u"2024-03-01 10:00 +", u"2024-03-01 10:00 -", u"2024-03-01 10:00 + 01:00",
      u"2024-03-01 10:00 +01:60", u"2024-03-01 10:00 +14:01", u"2024-03-01 10:00 -15:00",
      u"2024-03-01 10:00 -2024", u"2024-03-01 10:00 \u221201:00"}},
    {"ZoneWithoutTime",
     {u"2024-03-01Z", u"2024-03-01+01:00", u"2024-03-01 UTC", u"1 Mar 2024 GMT", u"20240301Z"}},
    {"TimeBeforeTheYearSpoilt",
     {u"Fri Mar 1 10:00:00 24", u"Fri Mar 1 10:00:00", u"Fri 1 Mar 10:00:00 2024",
      u"Fri Mar 1 10:00:00 UTC 2024 UTC", u"Mar-1 10:00:00 2024", u"Fri Mar 1 10:00:002024",
      u"Fri Mar 1T10:00:00 2024", u"Fri Mar 1 10:00:00 2024 10:00"}},
    {"AccessLogTimeSpoilt",
     {u"[01/Mar/2024:10:00:00 +0000]", u"01/Mar/24:10:00:00", u"01/03/2024:10:00:00",
      u"01-Mar-2024:10:00:00", u"01/Mar/2024: 10:00:00", u"001/Mar/2024:10:00:00"}},
    {"CompactSpoilt",
     {u"20240301T1000", u"20240301T10", u"20240301T", u"20240301 100000", u"20240301T10:00:00",
      u"2024031T100000", u"20240301T1000000", u"20240301T100000.", u"20240301T100000X", u"T100000",
      u"240301T100000"}},
    {"DigitsOfOtherScripts",
     {u"\u0662\u0660\u0662\u0664-\u0660\u0663-\u0660\u0661",
      u"\uff12\uff10\uff12\uff14-\uff10\uff13-\uff10\uff11", u"2024-03-0\u0661"}},
    {"StrangeUnits",
     {std::u16string(u"2024-03-01\0", 11),
      std::u16string(u"\0"
                     u"2024-03-01",
                     11),
      std::u16string(u"2024\0"
                     u"03\0"
                     u"01",
                     10),
      u"2024-03-01\uffff", u"\ufeff2024-03-01", u"2024-03-01\u200b",
      std::u16string(1, char16_t{0xD800}) + u"2024-03-01"}},
    {"SentencesWithADate",
     {u"on 2024-03-01", u"2024-03-01 at 10:00", u"due March 1, 2024", u"March 1, 2024 (Friday)",
      u"\"2024-03-01\"", u"(2024-03-01)", u"2024-03-01;", u"1st of March 2024", u"2024-W09-5",
      u"2024-061"}},
    {"LongerThanAnyDate",
     {u"2024-03-01" + std::u16string(65 - 10 - 5, u' ') + u"10:00",
      u"2024-03-01T10:00:00." + std::u16string(65 - 20, u'0'), std::u16string(1000, u'1')}},
};

class IsDatetimeRefuses : public testing::TestWithParam<Texts> {};
TEST_P(IsDatetimeRefuses, EveryText) {
  for (const auto& text : GetParam().texts) EXPECT_FALSE(is_datetime(text)) << readable(text);
}
INSTANTIATE_TEST_SUITE_P(Table, IsDatetimeRefuses, testing::ValuesIn(kRefused),
                         testing_support::ByRule());

template <std::size_t N>
std::vector<std::u16string> all_texts(const Texts (&rows)[N]) {
  std::vector<std::u16string> texts;
  for (const Texts& row : rows) texts.insert(texts.end(), row.texts.begin(), row.texts.end());
  return texts;
}

TEST(IsDatetimeTables, HoldManyTextsAndNoneTwice) {
  const auto accepted = all_texts(kAccepted);
  const auto refused = all_texts(kRefused);
  const std::set<std::u16string> distinct_accepted(accepted.begin(), accepted.end());
  const std::set<std::u16string> distinct_refused(refused.begin(), refused.end());
  EXPECT_GE(distinct_accepted.size(), 150u);
  EXPECT_GE(distinct_refused.size(), 150u);
  EXPECT_EQ(distinct_accepted.size(), accepted.size());
  EXPECT_EQ(distinct_refused.size(), refused.size());
}

TEST(IsDatetime, RefusesAFieldWithoutText) { EXPECT_FALSE(datetime::is_datetime(Field())); }

// --- a second route to the same answers --------------------------------------------------------

int days_in_month(int year, int month) {
  constexpr int kDays[] = {0, 31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (month < 1 || month > 12) return 0;
  const bool is_leap = year % 400 == 0 || (year % 4 == 0 && year % 100 != 0);
  return month == 2 && is_leap ? 29 : kDays[month];
}

std::u16string digits(int value, std::size_t width) {
  std::u16string text(width, u'0');
  for (std::size_t i = width; i-- > 0; value /= 10) {
    text[i] = static_cast<char16_t>(u'0' + value % 10);
  }
  return text;
}

TEST(IsDatetime, KnowsTheLengthOfEachMonth) {
  for (const int year : {1, 4, 100, 400, 1900, 1999, 2000, 2023, 2024, 2100, 9999}) {
    for (int month = 0; month <= 14; ++month) {
      for (int day = 0; day <= 33; ++day) {
        const std::u16string text =
            digits(year, 4) + u"-" + digits(month, 2) + u"-" + digits(day, 2);
        const bool exists = day >= 1 && day <= days_in_month(year, month);
        ASSERT_EQ(is_datetime(text), exists) << readable(text);
      }
    }
  }
}

TEST(IsDatetime, TakesDayAndMonthInEitherOrder) {
  for (const int year : {1900, 2000, 2023, 2024}) {
    for (int first = 0; first <= 33; ++first) {
      for (int second = 0; second <= 33; ++second) {
        const std::u16string text =
            digits(first, 2) + u"/" + digits(second, 2) + u"/" + digits(year, 4);
        const bool day_first = first >= 1 && first <= days_in_month(year, second);
        const bool month_first = second >= 1 && second <= days_in_month(year, first);
        ASSERT_EQ(is_datetime(text), day_first || month_first) << readable(text);
      }
    }
  }
}

TEST(IsDatetime, TakesALeapDayOfAShortYearWhenEitherCenturyHasIt) {
  for (int year = 0; year <= 99; ++year) {
    const std::u16string text = u"29.02." + digits(year, 2);
    const bool exists = days_in_month(1900 + year, 2) == 29 || days_in_month(2000 + year, 2) == 29;
    // Otherwise 29.02 has no second reading: there is no month 29.
    EXPECT_EQ(is_datetime(text), exists) << readable(text);
  }
}

TEST(IsDatetime, KnowsTheTimesOfADay) {
  for (const int hour : {0, 1, 9, 10, 12, 13, 19, 20, 22, 23, 24, 25, 30, 99}) {
    for (const int minute : {0, 1, 9, 10, 30, 58, 59, 60, 61, 99}) {
      for (const int second : {0, 1, 9, 10, 30, 58, 59, 60, 61, 99}) {
        const std::u16string text =
            u"2024-03-01T" + digits(hour, 2) + u":" + digits(minute, 2) + u":" + digits(second, 2);
        const bool usual = hour < 24 && minute < 60 && second < 60;
        const bool end_of_day = hour == 24 && minute == 0 && second == 0;
        const bool leap_second = hour < 24 && minute == 59 && second == 60;
        ASSERT_EQ(is_datetime(text), usual || end_of_day || leap_second) << readable(text);
      }
    }
  }
}

// --- spoilt texts ------------------------------------------------------------------------------

// One text of each form, with as many optional parts as fit.
const std::u16string kRichTexts[] = {
    u"Friday, 2024-03-01T10:00:00.250 AM +01:00",
    u"01.03.2024, 10:00:00,5\u202fPM GMT",
    u"01/03/24 24:00:00.0Z",
    u"Wed., 30th Sept., 2024 10:00 -0330",
    u"Thursday, February 29th, 2024, 12:59 PM UTC",
    u"2024-Mar.-01T10:00",
    u"Fri Mar  1 10:00:00 AM UTC 2024",
    u"01/Mar/2024:10:00:00 +0000",
    u"20240301T100000.5+01:00",
};

TEST(IsDatetimeSpoilt, TakesTheWholeTexts) {
  for (const auto& text : kRichTexts) EXPECT_TRUE(is_datetime(text)) << readable(text);
}

// The answer for `text` between other code units, which must not matter.
bool is_datetime_among(std::u16string_view neighbours, const std::u16string& text) {
  const std::u16string whole = std::u16string(neighbours) + text + std::u16string(neighbours);
  return datetime::is_datetime(Field(whole.data() + neighbours.size(), text.size()));
}

// In a block of the exact size, the sanitizer finds a read past the end. Between neighbours that
// would continue the date, the answer shows it.
void expect_same_answer_everywhere(const std::u16string& text) {
  const bool alone = is_datetime(text);
  for (const std::u16string_view neighbours : {u"0", u"1:00", u"-01", u" AM", u" 2024", u"Z"}) {
    EXPECT_EQ(is_datetime_among(neighbours, text), alone) << readable(text);
  }
}

TEST(IsDatetimeSpoilt, ReadsNothingAroundAnyPartOfAText) {
  for (const auto& text : kRichTexts) {
    for (std::size_t first = 0; first < text.size(); ++first) {
      expect_same_answer_everywhere(text.substr(0, first));
      expect_same_answer_everywhere(text.substr(first));
    }
  }
}

TEST(IsDatetimeSpoilt, ReadsNothingAroundATextThatLacksAUnit) {
  for (const auto& text : kRichTexts) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      std::u16string less = text;
      less.erase(i, 1);
      expect_same_answer_everywhere(less);
    }
  }
}

TEST(IsDatetimeSpoilt, ReadsNothingAroundATextWithAStrangeUnit) {
  const char16_t strange[] = {u'9', u',', u'\0', u'\u00a0', u'\u202f', u'\uffff', 0xD800};
  for (const auto& text : kRichTexts) {
    for (std::size_t i = 0; i < text.size(); ++i) {
      for (const char16_t unit : strange) {
        std::u16string other = text;
        other[i] = unit;
        expect_same_answer_everywhere(other);
      }
    }
  }
}

// "1/1/24" is the shortest possible date.
TEST(IsDatetimeSpoilt, RefusesEveryPartThatIsTooShortForADate) {
  for (const auto& text : kRichTexts) {
    for (std::size_t first = 0; first < text.size(); ++first) {
      for (std::size_t count = 0; count < 6 && first + count <= text.size(); ++count) {
        EXPECT_FALSE(is_datetime(text.substr(first, count))) << readable(text);
      }
    }
  }
}

TEST(IsDatetimeSpoilt, RefusesAYearThatLostItsFirstDigit) {
  EXPECT_FALSE(is_datetime(u"024-03-01"));
  EXPECT_FALSE(is_datetime(u"01.03.024"));
  EXPECT_FALSE(is_datetime(u"1 Mar 024 10:00"));
}

// --- cost --------------------------------------------------------------------------------------

// Otherwise the zero below would prove nothing.
TEST(IsDatetimeCost, IsMeasuredByACounterThatCounts) {
  const std::size_t before = allocations_of_this_thread();
  ::operator delete(::operator new(1));
  EXPECT_EQ(allocations_of_this_thread() - before, allocations_are_counted() ? 1u : 0u);
}

TEST(IsDatetimeCost, AllocatesNothing) {
  std::vector<ExactText> fields;
  for (const auto& text : all_texts(kAccepted)) fields.emplace_back(text);
  for (const auto& text : all_texts(kRefused)) fields.emplace_back(text);
  std::size_t dates = 0;
  const std::size_t before = allocations_of_this_thread();
  for (const ExactText& text : fields) dates += datetime::is_datetime(text.field()) ? 1 : 0;
  EXPECT_EQ(allocations_of_this_thread(), before);
  EXPECT_EQ(dates, all_texts(kAccepted).size());
}

}  // namespace
}  // namespace textio
