// What a detection says about the columns of a table. Each row has the cells of one column; it stands
// between tabs beside a column of numbers.
#include <vltextstream/layout/column_facts.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>

#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/table_facts.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::facts_of;
using testing_support::readable;
using Cells = std::vector<std::u16string>;

std::u16string digits(std::size_t number) {
  const std::string text = std::to_string(number);
  return {text.begin(), text.end()};
}

// The first cell is in line 2.
std::u16string table_of(const Cells& cells, const std::u16string& name = u"value") {
  std::u16string text = u"number\t" + name + u"\n";
  for (std::size_t i = 0; i < cells.size(); ++i) {
    text += digits(i + 1) + u"\t" + cells[i] + u"\n";
  }
  return text;
}

ColumnFacts column_of(const std::u16string& table, std::size_t index = 1) {
  const Layout layout = detect_layout(std::u16string_view(table));
  if (layout.columns.size() <= index) {
    ADD_FAILURE() << layout.columns.size() << " columns in " << readable(table);
    return {};
  }
  return layout.columns[index];
}

struct ColumnCase {
  const char* rule;
  Cells cells;
  std::string facts;
};
std::ostream& operator<<(std::ostream& out, const ColumnCase& row) { return out << row.rule; }

class ColumnFactsOf : public testing::TestWithParam<ColumnCase> {};
TEST_P(ColumnFactsOf, AreThoseOfTheRow) {
  EXPECT_EQ(facts_of(column_of(table_of(GetParam().cells))), GetParam().facts);
}

// --- numbers -----------------------------------------------------------------------------------

const ColumnCase kNumbers[] = {
    {"Integers", {u"3", u"-22", u"+7", u"0"}, "integer"},
    {"Decimals", {u"1.5", u"-22.75", u"0.125", u"3"}, "decimal dec=."},
    {"Scientific", {u"1.5e-3", u"2.25e-3", u"4e-4", u"7.5e-4"}, "scientific dec=."},
    {"ScientificWithCommas", {u"1,5E+3", u"2,25E+3", u"4,5E+4", u"7,0E+4"}, "scientific dec=,"},
    {"Complex", {u"1+2i", u"3-4i", u"0.5+1.5i", u"2-2i"}, "complex"},
    {"LeadingZeros", {u"00712", u"01099", u"10115", u"80331"}, "identifier"},
    {"TooLongForADouble",
     {u"9007199254740993001", u"9007199254740993002", u"9007199254740993007",
      u"9007199254740993011"},
     "identifier"},
    {"TelephoneNumbers",
     {u"+49 30 1234567", u"+49 89 7654321", u"+44 20 7946 0018", u"+33 1 99 00 12 34"},
     "identifier"},

    {"PercentSigns", {u"50%", u"3.5%", u"100%", u"12.25%"}, "percentage dec=."},
    {"PercentSignsAfterBlanks", {u"50 %", u"3,5 %", u"100 %", u"12,25 %"}, "percentage dec=,"},
    {"WholePercent", {u"12%", u"7%", u"0%", u"100%"}, "percentage"},
    {"SignedPercent", {u"-3 %", u"+4 %", u"-12 %", u"+1 %"}, "percentage"},
    {"GroupedPercent", {u"1,250.5%", u"80.0%", u"2,000.0%", u"7.5%"}, "percentage dec=. grp=,"},
};
INSTANTIATE_TEST_SUITE_P(Numbers, ColumnFactsOf, testing::ValuesIn(kNumbers), ByRule());

// --- money -------------------------------------------------------------------------------------

const ColumnCase kMoney[] = {
    {"DollarsBefore", {u"$5.00", u"$12.50", u"-$3.25", u"$1,250.00"}, "money dec=. grp=, cur=$<"},
    {"PoundsBefore",
     {u"\u00A35.00", u"\u00A312.50", u"\u00A33.25", u"\u00A30.99"},
     "money dec=. cur=\\u00A3<"},
    {"EurosBefore",
     {u"\u20AC 5,00", u"\u20AC 1.234,50", u"\u20AC 7,25", u"\u20AC 0,99"},
     "money dec=, grp=. cur=\\u20AC<"},
    {"CodeBefore",
     {u"EUR 5,00", u"EUR 1.234,50", u"EUR 7,25", u"EUR 0,99"},
     "money dec=, grp=. cur=EUR<"},
    {"SwissFrancsBefore",
     {u"CHF 12.50", u"CHF 1'200.00", u"CHF 7.05", u"CHF 80.00"},
     "money dec=. grp=' cur=CHF<"},
    {"WholeDollars", {u"$5", u"$12", u"$3", u"$125"}, "money cur=$<"},

    {"EurosAfter",
     {u"5,00 \u20AC", u"1.234,50 \u20AC", u"-7,25 \u20AC", u"0,99 \u20AC"},
     "money dec=, grp=. cur=\\u20AC>"},
    {"EurosAfterWithoutBlanks",
     {u"5,00\u20AC", u"12,50\u20AC", u"7,25\u20AC", u"0,99\u20AC"},
     "money dec=, cur=\\u20AC>"},
    {"CodeAfter", {u"5.00 USD", u"12.50 USD", u"7.25 USD", u"0.99 USD"}, "money dec=. cur=USD>"},
    {"CrownsAfter", {u"12 kr", u"1 234 kr", u"85 kr", u"10 500 kr"}, "money grp=  cur=kr>"},
    {"ZlotysAfter",
     {u"5,00 z\u0142", u"12,50 z\u0142", u"7,25 z\u0142", u"0,99 z\u0142"},
     "money dec=, cur=z\\u0142>"},

    {"TwoCurrencies", {u"$5.00", u"\u20AC7.00", u"$1.50", u"\u20AC2.25"}, "money dec=."},
};
INSTANTIATE_TEST_SUITE_P(Money, ColumnFactsOf, testing::ValuesIn(kMoney), ByRule());

// --- booleans ----------------------------------------------------------------------------------

const ColumnCase kBooleans[] = {
    {"English", {u"true", u"false", u"true", u"true"}, "boolean true=true false=false"},
    {"EnglishInCapitals", {u"YES", u"NO", u"NO", u"YES"}, "boolean true=YES false=NO"},
    {"EnglishLetters", {u"Y", u"N", u"N", u"Y"}, "boolean true=Y false=N"},
    {"German", {u"ja", u"nein", u"nein", u"ja"}, "boolean true=ja false=nein"},
    {"GermanTruth", {u"falsch", u"wahr", u"wahr", u"wahr"}, "boolean true=wahr false=falsch"},
    {"French", {u"oui", u"non", u"oui", u"oui"}, "boolean true=oui false=non"},
    {"FrenchTruth", {u"VRAI", u"FAUX", u"FAUX", u"VRAI"}, "boolean true=VRAI false=FAUX"},
    {"Spanish", {u"s\u00ED", u"no", u"s\u00ED", u"no"}, "boolean true=s\\u00ED false=no"},
    {"Italian", {u"vero", u"falso", u"falso", u"vero"}, "boolean true=vero false=falso"},
    {"Dutch", {u"ja", u"nee", u"nee", u"ja"}, "boolean true=ja false=nee"},
    {"Polish", {u"tak", u"nie", u"nie", u"tak"}, "boolean true=tak false=nie"},
    {"Russian",
     {u"\u0434\u0430", u"\u043D\u0435\u0442", u"\u043D\u0435\u0442", u"\u0434\u0430"},
     "boolean true=\\u0434\\u0430 false=\\u043D\\u0435\\u0442"},
    {"OneOfTheWords", {u"true", u"true", u"true", u"true"}, "boolean true=true"},
    {"ZerosAndOnesAreIntegers", {u"0", u"1", u"1", u"0"}, "integer"},
};
INSTANTIATE_TEST_SUITE_P(Booleans, ColumnFactsOf, testing::ValuesIn(kBooleans), ByRule());

// --- dates -------------------------------------------------------------------------------------

const ColumnCase kDates[] = {
    {"YearFirstWithHyphens",
     {u"2024-01-31", u"2024-02-01", u"2024-02-02", u"2024-02-03"},
     "date strptime=%Y-%m-%d icu=yyyy-MM-dd year-first"},
    {"YearFirstWithSlashes",
     {u"2024/01/31", u"2024/02/01", u"2024/02/02", u"2024/02/03"},
     "date strptime=%Y/%m/%d icu=yyyy/MM/dd year-first"},
    {"YearFirstWithPoints",
     {u"2024.01.31", u"2024.02.01", u"2024.02.02", u"2024.02.03"},
     "date strptime=%Y.%m.%d icu=yyyy.MM.dd year-first"},
    {"YearFirstInDigitsAlone",
     {u"20240131", u"20240201", u"20240202", u"20240203"},
     "date strptime=%Y%m%d icu=yyyyMMdd year-first"},

    {"DayFirstWithSlashes",
     {u"31/01/2024", u"01/02/2024", u"02/02/2024", u"03/02/2024"},
     "date strptime=%d/%m/%Y icu=dd/MM/yyyy day-first"},
    {"DayFirstWithHyphens",
     {u"31-01-2024", u"01-02-2024", u"02-02-2024", u"03-02-2024"},
     "date strptime=%d-%m-%Y icu=dd-MM-yyyy day-first"},
    {"DayFirstWithShortYears",
     {u"31/1/24", u"1/2/24", u"2/2/24", u"13/2/24"},
     "date strptime=%d/%m/%y icu=d/M/yy day-first"},
    {"DayFirstByPoints",
     {u"01.02.2024", u"02.02.2024", u"03.02.2024", u"04.02.2024"},
     "date strptime=%d.%m.%Y icu=dd.MM.yyyy day-first"},

    {"MonthFirstWithSlashes",
     {u"01/31/2024", u"02/01/2024", u"02/02/2024", u"02/03/2024"},
     "date strptime=%m/%d/%Y icu=MM/dd/yyyy month-first"},
    {"MonthFirstWithShortNumbers",
     {u"1/31/24", u"2/1/24", u"2/2/24", u"12/13/24"},
     "date strptime=%m/%d/%y icu=M/d/yy month-first"},
    {"MonthFirstWithHyphens",
     {u"01-31-2024", u"02-01-2024", u"02-02-2024", u"02-13-2024"},
     "date strptime=%m-%d-%Y icu=MM-dd-yyyy month-first"},
    {"MonthFirstWithTimes",
     {u"1/31/2024 3:04 PM", u"2/1/2024 9:30 AM", u"2/2/2024 11:00 AM", u"2/3/2024 1:15 PM"},
     "date-time strptime=%m/%d/%Y %I:%M %p icu=M/d/yyyy h:mm a month-first"},

    {"AmbiguousWithSlashes",
     {u"01/02/2024", u"03/04/2024", u"05/06/2024", u"12/11/2024"},
     "date strptime=%d/%m/%Y icu=dd/MM/yyyy ambiguous"},
    {"AmbiguousWithShortNumbers",
     {u"1/2/24", u"3/4/24", u"5/6/24", u"10/11/24"},
     "date strptime=%d/%m/%y icu=d/M/yy ambiguous"},
    {"AmbiguousWithHyphens",
     {u"01-02-2024", u"03-04-2024", u"05-06-2024", u"12-11-2024"},
     "date strptime=%d-%m-%Y icu=dd-MM-yyyy ambiguous"},
    {"AmbiguousWithTimes",
     {u"01/02/2024 10:15", u"03/04/2024 11:15", u"05/06/2024 12:15", u"12/11/2024 13:15"},
     "date-time strptime=%d/%m/%Y %H:%M icu=dd/MM/yyyy HH:mm ambiguous"},

    {"EnglishNames",
     {u"31 Jan 2024", u"01 Feb 2024", u"02 Feb 2024", u"03 Mar 2024"},
     "date strptime=%d %b %Y icu=dd MMM yyyy language=en"},
    {"EnglishNamesFirst",
     {u"Jan 31, 2024", u"Feb 1, 2024", u"Feb 2, 2024", u"Mar 3, 2024"},
     "date strptime=%b %d, %Y icu=MMM d, yyyy language=en"},
    {"GermanNames",
     {u"31. Januar 2024", u"1. Februar 2024", u"2. M\u00E4rz 2024", u"3. Oktober 2024"},
     "date strptime=%d. %B %Y icu=d. MMMM yyyy language=de"},
    {"FrenchNames",
     {u"31 janvier 2024", u"12 mars 2024", u"14 juillet 2024", u"15 ao\u00FBt 2024"},
     "date strptime=%d %B %Y icu=dd MMMM yyyy language=fr"},
};
INSTANTIATE_TEST_SUITE_P(Dates, ColumnFactsOf, testing::ValuesIn(kDates), ByRule());

const ColumnCase kTimes[] = {
    {"UniversalTime",
     {u"2024-01-31T15:04:05Z", u"2024-02-01T00:10:00Z", u"2024-02-02T08:30:15Z",
      u"2024-02-03T09:45:30Z"},
     "date-time strptime=%Y-%m-%dT%H:%M:%S%z icu=yyyy-MM-dd'T'HH:mm:ssXXX year-first zone=Z"},
    {"OffsetWithAColon",
     {u"2024-01-31T15:04:05+01:00", u"2024-02-01T00:10:00+01:00", u"2024-02-02T08:30:15+01:00",
      u"2024-02-03T09:45:30+01:00"},
     "date-time strptime=%Y-%m-%dT%H:%M:%S%z icu=yyyy-MM-dd'T'HH:mm:ssXXX year-first "
     "zone=+01:00"},
    {"OffsetOfFourDigits",
     {u"2024-01-31 15:04 -0330", u"2024-02-01 00:10 -0330", u"2024-02-02 08:30 -0330",
      u"2024-02-03 09:45 -0330"},
     "date-time strptime=%Y-%m-%d %H:%M %z icu=yyyy-MM-dd HH:mm XX year-first zone=-0330"},
    {"OffsetsOfSummerAndWinter",
     {u"2024-01-31 15:04+01:00", u"2024-02-01 00:10+01:00", u"2024-07-02 08:30+02:00",
      u"2024-07-03 09:45+02:00"},
     "date-time strptime=%Y-%m-%d %H:%M%z icu=yyyy-MM-dd HH:mmXXX year-first"},
    {"NameOfTheUniversalZone",
     {u"2024-01-31 15:04 UTC", u"2024-02-01 00:10 UTC", u"2024-02-02 08:30 UTC",
      u"2024-02-03 09:45 UTC"},
     "date-time strptime=%Y-%m-%d %H:%M %Z icu=yyyy-MM-dd HH:mm z year-first zone=UTC"},
    {"NameOfAnAmericanZone",
     {u"2024-01-31 15:04 EST", u"2024-02-01 00:10 EST", u"2024-02-02 08:30 EST",
      u"2024-02-03 09:45 EST"},
     "date-time strptime=%Y-%m-%d %H:%M EST icu=yyyy-MM-dd HH:mm z year-first zone=EST"},
    {"NameOfAEuropeanZone",
     {u"31.01.2024 15:04 CET", u"01.02.2024 00:10 CET", u"02.02.2024 08:30 CET",
      u"03.02.2024 09:45 CET"},
     "date-time strptime=%d.%m.%Y %H:%M CET icu=dd.MM.yyyy HH:mm 'CET' day-first zone=CET"},
    {"NameOfAZoneAfterTheMonth",
     {u"Wed, 31 Jan 2024 15:04:05 GMT", u"Thu, 01 Feb 2024 00:10:00 GMT",
      u"Fri, 02 Feb 2024 08:30:15 GMT", u"Sat, 03 Feb 2024 09:45:30 GMT"},
     "date-time strptime=%a, %d %b %Y %H:%M:%S %Z icu=EEE, dd MMM yyyy HH:mm:ss z language=en "
     "zone=GMT"},

    {"TimesOfDay", {u"15:04", u"00:10", u"08:30", u"09:45"}, "time strptime=%H:%M icu=HH:mm"},
    {"HalfDays",
     {u"3:04 PM", u"12:10 AM", u"8:30 AM", u"9:45 AM"},
     "time strptime=%I:%M %p icu=h:mm a"},
    {"ClocksBeyondADay", {u"36:15:00", u"12:30:00", u"50:00:10", u"7:45:00"}, "duration"},
    {"DurationsOfOneUnitBesideSums", {u"1d 2h", u"5h", u"2d", u"3d 12h"}, "duration"},
    {"DurationsInWords", {u"1d 2h", u"5h 30m", u"2d 1h", u"3d 12h"}, "duration"},
    {"DurationsOfTheStandard", {u"PT5M", u"PT1H30M", u"P1D", u"PT45S"}, "duration"},
};
INSTANTIATE_TEST_SUITE_P(Times, ColumnFactsOf, testing::ValuesIn(kTimes), ByRule());

// The 31st in the second column says that the day is first in the third one as well.
TEST(ColumnFactsOfDates, DecideForDoubtfulDatesOfOtherColumns) {
  const std::u16string table =
      u"number\tfrom\tto\n"
      u"1\t28/01/2024\t01/02/2024\n"
      u"2\t29/01/2024\t02/02/2024\n"
      u"3\t30/01/2024\t03/02/2024\n"
      u"4\t31/01/2024\t04/02/2024\n";
  for (const std::size_t column : {1U, 2U}) {
    EXPECT_EQ(facts_of(column_of(table, column)),
              "date strptime=%d/%m/%Y icu=dd/MM/yyyy day-first");
  }
}

// "1,5" in the second column says that the comma of the third one is decimal as well.
TEST(ColumnFactsOfNumbers, DecideForDoubtfulNumbersOfOtherColumns) {
  const std::u16string table =
      u"number\tlevel\tflow\n"
      u"1\t1,5\t1,250\n"
      u"2\t2,5\t2,500\n"
      u"3\t3,5\t1,125\n"
      u"4\t4,5\t7,375\n";
  EXPECT_EQ(facts_of(column_of(table, 1)), "decimal dec=,");
  EXPECT_EQ(column_of(table, 2).kind, ColumnKind::decimal);
  EXPECT_EQ(column_of(table, 2).decimal, u',');
}

// --- other kinds -------------------------------------------------------------------------------

const ColumnCase kOthers[] = {
    {"Uuids",
     {u"123e4567-e89b-12d3-a456-426614174000", u"123e4567-e89b-12d3-a456-426614174001",
      u"223e4567-e89b-12d3-a456-426614174000", u"323e4567-e89b-12d3-a456-426614174000"},
     "uuid"},
    {"Urls",
     {u"https://example.org/a", u"https://example.org/b?c=1", u"http://example.net/",
      u"https://example.com/d"},
     "url"},
    {"Emails",
     {u"ann@example.org", u"bo@example.net", u"cy@example.com", u"di@example.org"},
     "email"},
    {"Ips", {u"10.0.0.1", u"10.0.0.17", u"192.168.1.5", u"10.0.1.200"}, "ip"},
    {"Categories",
     {u"red", u"blue", u"red", u"red", u"blue", u"red", u"blue", u"blue"},
     "category"},
    {"Texts", {u"alder", u"beech", u"elm", u"fir"}, "text"},
    {"EmptyCells", {u"", u"", u"", u""}, "empty empty=4"},
};
INSTANTIATE_TEST_SUITE_P(Others, ColumnFactsOf, testing::ValuesIn(kOthers), ByRule());

TEST(ColumnFactsOfIntegers, AreSecondsSince1970IfTheNameSpeaksOfTime) {
  const Cells cells = {u"1706700000", u"1706703600", u"1706707200", u"1706710800"};
  EXPECT_EQ(column_of(table_of(cells, u"timestamp")).kind, ColumnKind::epoch_seconds);
}

TEST(ColumnFactsOfIntegers, AreMillisecondsSince1970IfTheNameSpeaksOfTime) {
  const Cells cells = {u"1706700000123", u"1706703600456", u"1706707200789", u"1706710800012"};
  EXPECT_EQ(column_of(table_of(cells, u"created")).kind, ColumnKind::epoch_milliseconds);
}

// --- missing and bad cells ---------------------------------------------------------------------

const ColumnCase kMissing[] = {
    {"Letters", {u"1.5", u"NA", u"2.5", u"NA", u"3.5"}, "decimal dec=. missing=NA*2"},
    {"LettersWithASlash", {u"15", u"N/A", u"25", u"35", u"45"}, "integer missing=N/A*1"},
    {"Words", {u"15", u"null", u"25", u"null", u"45"}, "integer missing=null*2"},
    {"Dashes", {u"1,5", u"-", u"2,5", u"-", u"3,5"}, "decimal dec=, missing=-*2"},
    {"Points", {u"15", u"...", u"25", u"35", u"45"}, "integer missing=...*1"},
    {"TwoWords", {u"15", u"-", u"25", u"NA", u"45", u"NA"}, "integer missing=-*1 missing=NA*2"},
    {"NotANumber", {u"1.5", u"NaN", u"2.5", u"NaN", u"3.5"}, "decimal dec=. missing=NaN*2"},
    {"InDates",
     {u"2024-01-31", u"n/a", u"2024-02-01", u"2024-02-02", u"2024-02-03"},
     "date strptime=%Y-%m-%d icu=yyyy-MM-dd year-first missing=n/a*1"},
    {"EmptyCellsAreNoWords", {u"15", u"", u"25", u"", u"45"}, "integer empty=2"},
    {"InTextsTheyMayBeValues", {u"alder", u"NA", u"beech", u"elm", u"fir"}, "text"},

    {"NinesAmongTemperatures",
     {u"12.5", u"-3.5", u"-999", u"8.25", u"-999", u"15.0"},
     "decimal dec=. missing=-999*2"},
    {"FourNines", {u"12", u"15", u"-9999", u"18", u"11", u"14"}, "integer missing=-9999*1"},
    {"NinesWithAFraction",
     {u"1.5", u"2.5", u"-99.9", u"3.5", u"-99.9", u"2.0"},
     "decimal dec=. missing=-99.9*2"},
    {"NinesAsLargeAsTheRestAreValues",
     {u"-850", u"-999", u"-1100", u"-700", u"-1250", u"-640"},
     "integer"},
};
INSTANTIATE_TEST_SUITE_P(Missing, ColumnFactsOf, testing::ValuesIn(kMissing), ByRule());

const ColumnCase kBad[] = {
    {"WordAmongIntegers", {u"15", u"25", u"broken", u"45", u"55"}, "integer odd=1@4"},
    {"QuestionMarkAfterANumber",
     {u"1.5", u"2.5", u"3.5", u"4.5?", u"5.5"},
     "decimal dec=. odd=1@5"},
    {"FirstCell", {u"open", u"25", u"35", u"45", u"55"}, "integer odd=1@2"},
    {"DateThatTheCalendarLacks",
     {u"28.02.2024", u"29.02.2024", u"30.02.2024", u"01.03.2024", u"02.03.2024"},
     "date strptime=%d.%m.%Y icu=dd.MM.yyyy day-first odd=1@4"},
    {"BesideAMissingWord",
     {u"15", u"NA", u"25", u"35", u"broken", u"45"},
     "integer missing=NA*1 odd=1@6"},
    {"TwoOfTwenty",
     {u"1",  u"2",  u"3",  u"x?", u"5",  u"6",  u"7",  u"8",  u"9",  u"10",
      u"11", u"12", u"13", u"14", u"15", u"16", u"x?", u"18", u"19", u"20"},
     "integer odd=2@5"},
    {"TwoOfFiveAreTooMany", {u"15", u"x", u"y", u"45", u"55"}, "text"},
};
INSTANTIATE_TEST_SUITE_P(Bad, ColumnFactsOf, testing::ValuesIn(kBad), ByRule());

// --- counts, widths, examples ------------------------------------------------------------------

TEST(ColumnFactsCounts, AddUp) {
  const ColumnFacts column =
      column_of(table_of({u"7", u"NA", u"", u"8", u"bad", u"9", u"10", u"", u"-", u"11"}));
  EXPECT_EQ(column.num_cells, 10U);
  EXPECT_EQ(column.num_empty, 2U);
  EXPECT_EQ(column.num_missing, 2U);
  EXPECT_EQ(column.num_fitting, 5U);
  EXPECT_EQ(column.first_misfit_line, 6U);
}

TEST(ColumnFactsWidths, AreThoseOfFilledCells) {
  const ColumnFacts column = column_of(table_of({u"alder", u"", u"elm", u"hornbeam"}));
  EXPECT_EQ(column.least_width, 3U);
  EXPECT_EQ(column.most_width, 8U);
}

TEST(ColumnFactsExamples, AreTheFirstFiveDifferentCellsThatFit) {
  const ColumnFacts column = column_of(
      table_of({u"7", u"bad", u"7", u"8", u"NA", u"9", u"10", u"11", u"12", u"13", u"14"}));
  EXPECT_EQ(column.examples, (Cells{u"7", u"8", u"9", u"10", u"11"}));
}

// A line break within quotes makes line and record differ.
TEST(ColumnFactsMisfit, IsTheLineOfTheText) {
  const std::u16string table =
      u"a,b\n1,\"x\ny\"\n2,\"z\"\n3,\"u\nv\"\nfour,\"w\"\n5,\"t\"\n6,\"s\"\n";
  EXPECT_EQ(column_of(table, 0).first_misfit_line, 7U);
}

TEST(ColumnFacts, AreThereForEachColumnAndNotWithoutATable) {
  EXPECT_EQ(detect_layout(std::u16string_view(u"a;b;c\n1;2;3\n4;5;6\n7;8;9\n")).columns.size(), 3U);
  const Layout prose = detect_layout(std::u16string_view(
      u"The river rose in the night, and nobody slept.\nAt dawn the water stood at the mill;\n"
      u"the miller had gone to look for his boat.\nWhen he came back, it was noon.\n"));
  ASSERT_EQ(prose.no_table, "running text");
  EXPECT_TRUE(prose.columns.empty());
  EXPECT_TRUE(prose.names_unique.empty());
}

}  // namespace
}  // namespace textio::standalone
