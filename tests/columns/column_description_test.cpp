#include <vltextstream/columns/column_description.hpp>

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/text/utf8.hpp>

#include "columns/shown.hpp"
#include "support/column_cells.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactCells;
using testing_support::readable;
using Cells = std::vector<std::u16string>;

ColumnDescription describe(const Cells& cells, const ColumnHints& hints = {}) {
  return describe_column(ExactCells(cells).views(), hints);
}

std::string shown(char16_t mark) { return mark == 0 ? "" : readable(std::u16string(1, mark)); }

// In one line, without what is empty: "money dec=, grp=. cur=EUR< missing=n/a*2 odd=1@3".
std::string summary(const ColumnDescription& column) {
  std::string text(to_string(column.kind));
  const auto add = [&text](const char* name, const std::string& value) {
    if (!value.empty()) text += std::string(" ") + name + "=" + value;
  };
  add("dec", shown(column.number.decimal));
  add("grp", shown(column.number.grouping));
  add("exp", shown(column.number.exponent));
  if (!column.number.is_certain) text += " unsure";
  const char* const places[] = {"", "<", ">"};
  add("cur",
      readable(column.money.currency) + places[static_cast<std::size_t>(column.money.place)]);
  add("yes", readable(column.boolean.yes));
  add("no", readable(column.boolean.no));
  add("icu", column.date.icu);
  if (column.date.order == DateOrder::ambiguous) text += " ambiguous";
  for (const MissingWord& word : column.missing) {
    add("missing", readable(word.word) + "*" + std::to_string(word.count));
  }
  if (column.first_misfit) {
    add("odd", std::to_string(column.num_misfits()) + "@" + std::to_string(*column.first_misfit));
  }
  return text;
}

struct ColumnCase {
  const char* rule;
  Cells cells;
  std::string summary;
};
std::ostream& operator<<(std::ostream& out, const ColumnCase& row) { return out << row.rule; }

// `text`, `times` times, and then `rest`.
Cells with_many(const std::u16string& text, std::size_t times, Cells rest) {
  rest.insert(rest.begin(), times, text);
  return rest;
}

// --- numbers -----------------------------------------------------------------------------------

const ColumnCase kNumbers[] = {
    {"Integers", {u"1", u"-22", u"+3"}, "integer"},
    {"ZerosAndOnes", {u"0", u"1", u"1", u"0"}, "integer"},
    {"Years", {u"2019", u"2020", u"2021"}, "integer"},
    {"BlanksAround", {u" 1", u"22 ", u"\u00A03"}, "integer"},
    {"GroupedIntegers", {u"1,234", u"12,345,678", u"999"}, "integer grp=,"},
    {"GroupedByBlanks", {u"1 234", u"12 345 678"}, "integer grp= "},
    {"GroupedInDoubt", {u"1,234", u"12,345", u"999"}, "integer grp=, unsure"},
    {"Decimals", {u"1.5", u"22.75"}, "decimal dec=."},
    {"OneDecimalAmongIntegers", {u"1", u"2", u"3.5"}, "decimal dec=."},
    {"DecimalCommas", {u"1,5", u"22,75", u"0,123"}, "decimal dec=,"},
    {"DecimalCommasAndGroupingPoints", {u"1.234,50", u"7,25", u"1.234"}, "decimal dec=, grp=."},
    {"DecimalInDoubt", {u"1.234", u"2.345"}, "decimal dec=. unsure"},
    {"Infinity", {u"1.5", u"inf", u"-inf"}, "decimal dec=."},
    {"Scientific", {u"1.5e3", u"2.5e4"}, "scientific dec=. exp=e"},
    {"OneExponentAmongDecimals", {u"1.5", u"2.5", u"1e-5"}, "scientific dec=. exp=e"},
    {"ExponentsOfFortran", {u"1.5D+03", u"-2.5D-04"}, "scientific dec=. exp=D"},
    {"Complex", {u"1+2i", u"3-4i"}, "complex"},
    {"ComplexAndReal", {u"1+2j", u"3", u"4j", u"5"}, "complex"},

    {"Percent", {u"50%", u"3.5 %"}, "percentage dec=."},
    {"PercentWithCommas", {u"50 %", u"3,5 %"}, "percentage dec=,"},
    {"PercentAndZeros", {u"50%", u"0", u"25%", u"0"}, "percentage"},
    {"PerMille", {u"5\u2030", u"12\u2030"}, "percentage"},
    {"AFewPercentAmongNumbers", with_many(u"7", 9, {u"5%"}), "integer odd=1@9"},

    {"MoneyBefore", {u"$5.00", u"-$1,234.50"}, "money dec=. grp=, cur=$<"},
    {"MoneyAfter", {u"5,00 \u20AC", u"1.234,50 \u20AC"}, "money dec=, grp=. cur=\\u20AC>"},
    {"CodeBefore", {u"EUR 1.234,50", u"EUR 5,00"}, "money dec=, grp=. cur=EUR<"},
    {"NameAfter", {u"1 234,50 kr", u"12,50 kr"}, "money dec=, grp=  cur=kr>"},
    {"MoneyAndParentheses", {u"$5.00", u"$7.00", u"(12.00)"}, "money dec=. cur=$<"},
    {"LongDashesForCents", {u"CHF 12.\u2013", u"CHF 7.\u2014"}, "money cur=CHF<"},
    {"DashesForCents", {u"CHF 1'200.-", u"CHF 85.50"}, "money dec=. grp=' cur=CHF<"},
    {"MoneyWithThreeDigits", {u"\u20AC 1.234", u"\u20AC 2.500"}, "money grp=. unsure cur=\\u20AC<"},
    {"TwoCurrencies", {u"$5.00", u"\u20AC7.00"}, "money dec=. cur=<"},
};

// --- booleans and categories -------------------------------------------------------------------

const ColumnCase kWords[] = {
    {"English", {u"true", u"false", u"true"}, "boolean yes=true no=false"},
    {"German", {u"ja", u"nein", u"ja"}, "boolean yes=ja no=nein"},
    {"French", {u"oui", u"non", u"oui"}, "boolean yes=oui no=non"},
    {"Spanish", {u"s\u00ED", u"no"}, "boolean yes=s\\u00ED no=no"},
    {"Italian", {u"vero", u"falso"}, "boolean yes=vero no=falso"},
    {"Polish", {u"tak", u"nie"}, "boolean yes=tak no=nie"},
    {"Russian",
     {u"\u0434\u0430", u"\u043D\u0435\u0442"},
     "boolean yes=\\u0434\\u0430 no=\\u043D\\u0435\\u0442"},
    {"LettersWithMissing", {u"y", u"n", u"", u"NA"}, "boolean yes=y no=n missing=NA*1"},
    {"OnlyYes", {u"yes", u"yes"}, "boolean yes=yes"},
    {"OddWord", {u"yes", u"no", u"no", u"maybe"}, "boolean yes=yes no=no odd=1@3"},
    {"OnlyT", {u"T", u"T", u"T"}, "text"},
    {"WordsOfManyPairs", {u"yes", u"ja", u"oui", u"on"}, "text"},

    {"FewWords", {u"red", u"blue", u"red", u"red", u"blue", u"blue", u"red", u"blue"}, "category"},
    {"FewCodes", {u"A1", u"B2", u"A1", u"A1", u"B2", u"A1", u"B2", u"B2"}, "category"},
    {"Hemispheres", {u"N", u"S", u"N", u"N", u"S", u"N", u"S", u"S"}, "category"},
    {"SignsOfStrands", {u"+", u".", u"+", u"+", u".", u"+", u".", u"."}, "category"},
    {"TooFewCells", {u"red", u"red", u"red", u"red", u"red", u"red", u"red"}, "text"},
    {"TooManyWords", {u"a1", u"b2", u"c3", u"d4", u"a1", u"b2", u"c3", u"d4"}, "text"},
    {"Names", {u"Berlin", u"Paris", u"Rome"}, "text"},
    {"WordsAndNumbers", {u"Berlin", u"12", u"Rome", u"7"}, "text"},
    {"TextKeepsItsWords", {u"Berlin", u"NA", u"-"}, "text"},
};

// --- dates and times ---------------------------------------------------------------------------

const ColumnCase kDates[] = {
    {"Iso", {u"2024-01-31", u"2024-02-01"}, "date icu=yyyy-MM-dd"},
    {"DayFirst", {u"31/01/2024", u"01/02/2024"}, "date icu=dd/MM/yyyy"},
    {"MonthFirst", {u"01/31/2024", u"02/01/2024"}, "date icu=MM/dd/yyyy"},
    {"Ambiguous", {u"01/02/2024", u"03/04/2024"}, "date icu=dd/MM/yyyy ambiguous"},
    {"Points", {u"01.02.2024", u"03.04.2024"}, "date icu=dd.MM.yyyy"},
    {"DigitsAlone", {u"20240131", u"20240201", u"20240315"}, "date icu=yyyyMMdd"},
    {"DigitsThatAreNoDate", {u"20240131", u"20241301", u"12345678"}, "integer"},
    {"DigitsWithTimes", {u"20240131150405", u"20240201000000"}, "date-time icu=yyyyMMddHHmmss"},
    {"French", {u"31 janvier 2024", u"1 mars 2024"}, "date icu=d MMMM yyyy"},
    {"YearFirstOfTwoDigits", {u"99-12-31", u"98-11-30"}, "date icu=yy-MM-dd"},
    {"TwoStyles", {u"2024-01-31", u"31.01.2024"}, "date"},
    {"DateTimes",
     {u"2024-01-31T15:04Z", u"2024-02-01T09:00Z"},
     "date-time icu=yyyy-MM-dd'T'HH:mmXXX"},
    {"DatesAmongDateTimes", {u"2024-01-31 15:04", u"2024-02-01", u"2024-02-02 09:00"}, "date-time"},
    {"DatesWithoutAPattern", {u"5. J\u00E4nner 2024", u"6. J\u00E4nner 2024"}, "date"},
    {"OneDateWithoutAPattern", with_many(u"2024-01-31", 3, {u"5. J\u00E4nner 2024"}),
     "date icu=yyyy-MM-dd odd=1@3"},
    {"MonthThatOtherLanguagesAbbreviateSo",
     {u"Sept 5, 2024", u"Aug 6, 2024"},
     "date icu=MMM d, yyyy"},
    {"OddDate",
     {u"2024-01-31", u"2024-02-01", u"soon", u"2024-02-03"},
     "date icu=yyyy-MM-dd odd=1@2"},
    {"DayThatIsNone",
     {u"2024-01-31", u"2024-02-01", u"2024-02-30", u"2024-02-03"},
     "date icu=yyyy-MM-dd odd=1@2"},
    {"MissingDates",
     {u"2024-01-31", u"NaT", u"", u"-"},
     "date icu=yyyy-MM-dd missing=NaT*1 missing=-*1"},

    {"Times", {u"15:04", u"09:30"}, "time icu=HH:mm"},
    {"TimesWithFractions", {u"1:02:03.5", u"12:00:00.0"}, "time icu=H:mm:ss.S"},
    {"ClocksBeyondADay", {u"1:02:03", u"23:00:00", u"36:15:00"}, "duration"},
    {"HoursBeyondADay", {u"12:30", u"13:45", u"25:10"}, "duration"},
    {"Ratios", {u"50:50", u"60:40", u"70:30"}, "text"},
    {"ClocksWithoutHours", {u"3:05.12", u"59:12.5"}, "duration"},
    {"IsoDurations", {u"PT5M", u"P1DT2H"}, "duration"},
    {"OneUnitBesideSums", {u"1d 2h", u"5h", u"2d", u"30m"}, "duration"},
    {"OneUnitAloneMayBeCodes", {u"5h", u"2d", u"17d", u"3h"}, "text"},
    {"SumsOfUnits", {u"1d 2h", u"3 days, 4:05:06"}, "duration"},
};

// --- identifiers and addresses -----------------------------------------------------------------

const ColumnCase kAddresses[] = {
    {"LeadingZeros", {u"007", u"012", u"115"}, "identifier"},
    {"CodesOfPlaces", {u"01067", u"80331", u"10115"}, "identifier"},
    {"NineteenDigits", {u"1234567890123456789", u"1234567890123456790"}, "identifier"},
    {"TelephoneNumbers", {u"+49 30 123456", u"+49 89 654321"}, "identifier"},
    {"TelephoneNumbersAndDigits", {u"030/1234567", u"030/7654321", u"0891234567"}, "identifier"},
    {"OneZeroIsNoLeadingZero", {u"0", u"7", u"12"}, "integer"},
    {"DecimalsWithLeadingZeros", {u"00.5", u"01.5"}, "decimal dec=."},
    {"TenDigitsThatAreNoTimes", {u"1704067260", u"1704067200", u"1704067320"}, "integer"},
    {"SecondsInOrder", {u"1704067200", u"1704067260", u"1704067320"}, "epoch-seconds"},
    {"MillisecondsInOrder",
     {u"1704067200000", u"1704067200500", u"1704067202000"},
     "epoch-milliseconds"},
    {"Uuids",
     {u"123e4567-e89b-12d3-a456-426614174000", u"123e4567-e89b-12d3-a456-426614174001"},
     "uuid"},
    {"Pages", {u"https://example.org/a", u"www.example.org"}, "url"},
    {"Mails", {u"a@example.org", u"b@example.org"}, "email"},
    {"Machines", {u"10.0.0.1", u"fe80::1"}, "ip"},
};

// --- missing and odd cells ---------------------------------------------------------------------

const ColumnCase kMissing[] = {
    {"NoCell", {}, "empty"},
    {"OnlyEmptyCells", {u"", u" ", u"\t"}, "empty"},
    {"OnlyMissingWords", {u"NA", u"", u"NA", u"-"}, "empty missing=NA*2 missing=-*1"},
    {"WordsAmongNumbers",
     {u"1.5", u"NA", u"n/a", u"null", u"NA", u"nan", u"#DIV/0!"},
     "decimal dec=. missing=NA*2 missing=n/a*1 missing=null*1 missing=nan*1 missing=#DIV/0!*1"},
    {"MostAreMissing", with_many(u"-", 99, {u"7"}), "integer missing=-*99"},
    {"Sentinel", {u"12.5", u"14.0", u"9.5", u"-999"}, "decimal dec=. missing=-999*1"},
    {"TwoSentinels",
     {u"12", u"14", u"9", u"-999", u"-9999", u"-999"},
     "integer missing=-999*2 missing=-9999*1"},
    {"SentinelWithAComma", {u"12,5", u"14,0", u"9,5", u"-999,9"}, "decimal dec=, missing=-999,9*1"},
    {"NinesThatAreValues", {u"990", u"999", u"1005", u"1010"}, "integer"},

    {"OneOddCellOfFour", {u"1", u"2", u"x", u"4"}, "integer odd=1@2"},
    {"OneOddCellOfThree", {u"1", u"2", u"x"}, "text"},
    {"TwoOddCellsOfNine", with_many(u"1", 7, {u"x", u"y"}), "text"},
    {"TwoOddCellsOfTwenty", with_many(u"1", 18, {u"x", u"y"}), "integer odd=2@18"},
    {"OddMark", with_many(u"1,5", 9, {u"2.5"}), "decimal dec=, odd=1@9"},
    {"OddGroups", with_many(u"1.234,5", 9, {u"1,234.5"}), "decimal dec=, grp=. odd=1@9"},
};

class DescribeColumn : public testing::TestWithParam<ColumnCase> {};

TEST_P(DescribeColumn, IsAsInTheRow) {
  EXPECT_EQ(summary(describe(GetParam().cells)), GetParam().summary);
}

// Most of what the description says does not depend on the order of the cells.
TEST_P(DescribeColumn, CountsTheSameBackwards) {
  const Cells backwards(GetParam().cells.rbegin(), GetParam().cells.rend());
  const ColumnDescription column = describe(GetParam().cells);
  const ColumnDescription other = describe(backwards);
  EXPECT_EQ(other.num_empty, column.num_empty);
  EXPECT_EQ(other.num_missing, column.num_missing);
  EXPECT_EQ(other.num_fitting, column.num_fitting);
  EXPECT_EQ(other.least_width, column.least_width);
  EXPECT_EQ(other.most_width, column.most_width);
}

INSTANTIATE_TEST_SUITE_P(Numbers, DescribeColumn, testing::ValuesIn(kNumbers), ByRule());
INSTANTIATE_TEST_SUITE_P(Words, DescribeColumn, testing::ValuesIn(kWords), ByRule());
INSTANTIATE_TEST_SUITE_P(Dates, DescribeColumn, testing::ValuesIn(kDates), ByRule());
INSTANTIATE_TEST_SUITE_P(Addresses, DescribeColumn, testing::ValuesIn(kAddresses), ByRule());
INSTANTIATE_TEST_SUITE_P(Missing, DescribeColumn, testing::ValuesIn(kMissing), ByRule());

// --- counts, widths and examples ---------------------------------------------------------------

TEST(DescribeColumnCounts, AreThoseOfTheCells) {
  const ColumnDescription column =
      describe({u"1", u"", u"NA", u"x", u" 22 ", u"333", u"4", u"-", u"5"});
  EXPECT_EQ(column.num_cells, 9U);
  EXPECT_EQ(column.num_empty, 1U);
  EXPECT_EQ(column.num_missing, 2U);
  EXPECT_EQ(column.num_fitting, 5U);
  EXPECT_EQ(column.num_misfits(), 1U);
  EXPECT_EQ(column.first_misfit, 3U);
  EXPECT_EQ(column.least_width, 1U);
  EXPECT_EQ(column.most_width, 3U);
}

TEST(DescribeColumnExamples, AreTheFirstFiveDifferentCellsThatFit) {
  const ColumnDescription column = describe(
      {u"NA", u"1", u"", u"2", u"1", u"x", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10"});
  EXPECT_EQ(column.examples, (Cells{u"1", u"2", u"3", u"4", u"5"}));
}

TEST(DescribeColumnExamples, AreCut) {
  const ColumnDescription column = describe({std::u16string(1000, u'a')});
  EXPECT_EQ(column.examples, Cells{std::u16string(60, u'a')});
  EXPECT_EQ(column.most_width, 1000U);
}

// --- hints -------------------------------------------------------------------------------------

TEST(DescribeColumnByHints, TakesGivenWordsAsMissing) {
  ColumnHints hints;
  hints.missing = {u"x", u"-1"};
  EXPECT_EQ(summary(describe({u"5", u"x", u"-1", u"x", u"NA"}, hints)),
            "integer missing=x*2 missing=-1*1 missing=NA*1");
  EXPECT_EQ(summary(describe({u"Rome", u"x", u"NA"}, hints)), "text missing=x*1");
}

TEST(DescribeColumnByHints, ObeysGivenMarks) {
  ColumnHints hints;
  hints.marks = {u',', u'.', true, 0, false};
  EXPECT_EQ(summary(describe({u"1.234", u"5"}, hints)), "integer dec=, grp=.");
  EXPECT_EQ(summary(describe({u"1.5", u"2.5"}, hints)), "text");
}

TEST(DescribeColumnByHints, TakesTheMarksOfTheTable) {
  ColumnHints hints;
  hints.marks.decimal = u',';
  EXPECT_EQ(summary(describe({u"1,234"}, hints)), "decimal dec=, unsure");
  EXPECT_EQ(summary(describe({u"1.5"}, hints)), "decimal dec=.");
}

TEST(DescribeColumnByHints, TakesTheDelimiter) {
  ColumnHints hints;
  hints.marks.delimiter = u';';
  EXPECT_EQ(summary(describe({u"1,234"}, hints)), "decimal dec=, unsure");
}

TEST(DescribeColumnByHints, TakesTheOrderOfTheTable) {
  ColumnHints hints;
  hints.order.order = DateOrder::month_first;
  EXPECT_EQ(summary(describe({u"01/02/2024"}, hints)), "date icu=MM/dd/yyyy");
  EXPECT_EQ(summary(describe({u"31/02/2024", u"30/03/2024"}, hints)), "text");
}

TEST(DescribeColumnByHints, TakesTheLettersOfExponents) {
  ColumnHints hints;
  hints.exponents = u"eE";
  EXPECT_EQ(summary(describe({u"1D5", u"2D5"}, hints)), "text");
  EXPECT_EQ(summary(describe({u"1e5", u"2E5"}, hints)), "scientific exp=e");
}

TEST(DescribeColumnByHints, TakesTheName) {
  ColumnHints hints;
  hints.name = u"Time";
  EXPECT_EQ(summary(describe({u"1704067260", u"1704067200"}, hints)), "epoch-seconds");
  EXPECT_EQ(summary(describe({u"0930", u"1545"}, hints)), "time icu=HHmm");
  EXPECT_EQ(summary(describe({u"093000", u"154559"}, hints)), "time icu=HHmmss");
  EXPECT_EQ(summary(describe({u"0930", u"1575"}, hints)), "identifier");
  EXPECT_EQ(summary(describe({u"09", u"15"}, hints)), "integer");
  EXPECT_EQ(summary(describe({u"0930", u"1545"})), "identifier");
}

}  // namespace
}  // namespace textio::columns
