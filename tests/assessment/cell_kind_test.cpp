#include <vltextstream/assessment/cell_kind.hpp>

#include <cstddef>
#include <iterator>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/uchar.h>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {

std::ostream& operator<<(std::ostream& out, CellKind kind) { return out << to_string(kind); }

namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

// --- the kind of a cell ------------------------------------------------------------------------

// Cells of the same kind for the same reason.
struct KindCase {
  const char* rule;
  CellKind kind;
  std::vector<std::u16string> cells;
};
std::ostream& operator<<(std::ostream& out, const KindCase& row) { return out << row.rule; }

const KindCase kNumbers[] = {
    {"NothingOrBlanks", CellKind::empty, {u"", u" ", u"   ", u"\t", u"\u00A0", u" \t\u00A0 "}},
    {"DigitsAndASign", CellKind::integer, {u"0", u"7", u"12", u"+5", u"-12", u"\u22125"}},
    {"ZerosAtTheStart", CellKind::integer, {u"007", u"00012", u"-01"}},
    {"EightDigitsOfADateOrMore", CellKind::integer, {u"20200112", u"12345678901234567890"}},
    {"MarksOfMissingValuesThatAreNumbers", CellKind::integer, {u"-999", u"-1", u"9999"}},
    {"OtherDigits", CellKind::integer, {u"\u0661\u0662\u0663", u"\uFF11\uFF12"}},
    {"ThousandsWithACommaEvenOne", CellKind::integer, {u"1,234", u"-12,345", u"1,234,567"}},
    {"ThousandsWithPointsFromTwoOn", CellKind::integer, {u"1.234.567", u"12.345.678"}},
    {"ThousandsWithBlanks",
     CellKind::integer,
     {u"1 234", u"12 345 678", u"1\u00A0234", u"1\u202F234\u202F567"}},
    {"ThousandsWithApostrophes", CellKind::integer, {u"1'234", u"1\u2019234\u2019567"}},
    {"IndianGroups", CellKind::integer, {u"1,23,456", u"12,34,56,789"}},
    {"ANumberInParentheses", CellKind::integer, {u"(5)", u"(1,234)"}},

    {"PointOrComma",
     CellKind::decimal,
     {u"3.5", u"3,5", u"-0.25", u"+0,25", u"1234.5", u"\u22120.5"}},
    {"PointOrCommaFirst", CellKind::decimal, {u".5", u",5", u"-.5"}},
    {"PointAtTheEnd", CellKind::decimal, {u"5.", u"-12."}},
    {"OneGroupAfterAPoint", CellKind::decimal, {u"1.234", u"12.345"}},
    {"ThreeDigitsAfterAZero", CellKind::decimal, {u"0.123", u"0,123"}},
    {"ThreeDigitsAfterMoreThanThree", CellKind::decimal, {u"1234,567", u"12345.678"}},
    {"GroupsAndAFraction",
     CellKind::decimal,
     {u"1,234.5", u"1.234,56", u"1 234,56", u"1'234.50", u"1,23,456.75", u"1.234.567,8"}},
    {"FourDigitsAfterACommaAreNoGroup", CellKind::decimal, {u"1,2345"}},
    {"MinusAfterADecimal", CellKind::decimal, {u"1.234,56-", u"5.00-"}},
    {"NotFinite",
     CellKind::decimal,
     {u"inf", u"-Inf", u"+INF", u"-Infinity", u"nan", u"NaN", u"-nan", u"\u2212inf", u"+nan",
      u"\u2212infinity", u"+Infinity"}},

    {"Exponents",
     CellKind::scientific,
     {u"1e5", u"1E5", u"1.5e-3", u"-1,5E+10", u".5e2", u"5.e2", u"1d5", u"1.5D-03", u"1e0308"}},

    {"RealAndImaginaryPart",
     CellKind::complex,
     {u"1+2i", u"1-2j", u"-1.5+2.5i", u"1e5-2e3j", u"1.0 + 2.0i", u"(1+2j)", u"1+i"}},
    {"ImaginaryPartAlone", CellKind::complex, {u"3i", u"-2.5j"}},

    {"PercentWithOrWithoutABlank",
     CellKind::percentage,
     {u"5%", u"5 %", u"-3.5%", u"3,5\u00A0%", u"(5%)", u"12\u2030"}},

    {"SignBeforeTheAmount",
     CellKind::money,
     {u"$5", u"$ 5.00", u"\u00A35", u"\u20AC1.234,56", u"\u00A51,000", u"\u20B9 1,23,456", u"US$5",
      u"R$ 12,50"}},
    {"SignAfterTheAmount",
     CellKind::money,
     {u"5$", u"5,00 \u20AC", u"5\u20AC", u"1 234,56\u00A0\u20AC", u"12 \u20BD"}},
    {"CodeOrNameOfACurrency",
     CellKind::money,
     {u"EUR 5", u"5 EUR", u"USD1,234.56", u"5.00GBP", u"CHF 1'234.50", u"1000 JPY", u"5 kr",
      u"Rs. 500", u"12,50 z\u0142"}},
    {"NegativeMoney",
     CellKind::money,
     {u"-$5", u"$-5", u"-5 EUR", u"($5)", u"$(5)", u"(EUR 1,234.50)", u"$5-"}},
    {"ScaleAfterTheAmount", CellKind::money, {u"$5M", u"$1.2bn", u"\u20AC 10k"}},
};

const KindCase kTimes[] = {
    {"HoursAndMinutes", CellKind::time, {u"9:05", u"09:05", u"23:59", u"0:00", u"24:00"}},
    {"Seconds", CellKind::time, {u"15:04:05", u"1:02:03", u"23:59:60"}},
    {"FractionsOfASecond",
     CellKind::time,
     {u"15:04:05.5", u"15:04:05,123", u"15:04:05.123456789", u"09:59.99", u"01:23.4"}},
    {"HalvesOfTheDay",
     CellKind::time,
     {u"3:04 pm", u"3:04PM", u"03:04:05 am", u"5 pm", u"5pm", u"11 A.M.", u"12:30 p.m."}},
    {"Zones",
     CellKind::time,
     {u"15:04Z", u"15:04:05+01:00", u"15:04:05 +0100", u"15:04-0330", u"15:04 UTC",
      u"15:04:05 CEST"}},

    {"YearFirst",
     CellKind::date,
     {u"2020-01-12", u"2020/01/12", u"2020.01.12", u"2020-1-2", u"9999-12-31"}},
    {"YearFirstAndTheDayBeforeTheMonth", CellKind::date, {u"2020-31-12"}},
    {"YearLast",
     CellKind::date,
     {u"12/1/2020", u"1/12/2020", u"12.1.2020", u"12.01.20", u"12-01-2020", u"31/12/99",
      u"12/31/99", u"1.2.34"}},
    {"YearAndMonth", CellKind::date, {u"2020-01", u"2020/12", u"01/2020"}},
    {"DayAndNameOfTheMonth",
     CellKind::date,
     {u"12 Jan 2020", u"12-Jan-20", u"12/Jan/2020", u"12Jan2020", u"12 January, 2020",
      u"1st May 2020", u"12 JAN", u"2-Feb"}},
    {"GermanMonths",
     CellKind::date,
     {u"12. Januar 2020", u"3. M\u00E4rz 2020", u"3. M\u00C4RZ 2020", u"1. Mai 2020", u"Okt 2020",
      u"24. Dez. 2020"}},
    {"NameOfTheMonthFirst",
     CellKind::date,
     {u"Jan 12, 2020", u"January 12 2020", u"Jan. 12, 2020", u"Jan 12", u"Sept 3rd, 2020"}},
    {"MonthAndYear",
     CellKind::date,
     {u"January 2020", u"Jan-20", u"Jan 75", u"Jan '20", u"jan 2020"}},
    {"NameOfTheMonthInTheMiddle", CellKind::date, {u"2020-Jan-12", u"2020 Jan 2", u"2020 Jan"}},
    {"DaysOfTheWeek",
     CellKind::date,
     {u"Mon, 12 Jan 2020", u"Monday 12 January", u"Sun 2020-01-12", u"Mo. 12.1.2020"}},
    {"EastAsianDates", CellKind::date, {u"2020\u5E741\u670812\u65E5", u"2020\u5E7412\u6708"}},

    {"DateAndTime",
     CellKind::date_time,
     {u"2020-01-12T15:04:05", u"2020-01-12 15:04", u"2020-01-12_15:04:05", u"12.1.2020, 15:04",
      u"1/12/20 3:04 PM", u"12 Jan 2020 15:04:05", u"Jan 12, 2020 3:04 pm"}},
    {"DateAndTimeWithZone",
     CellKind::date_time,
     {u"2020-01-12T15:04:05Z", u"2020-01-12T15:04:05.123+01:00", u"2020-01-12 15:04:05 UTC",
      u"2020-01-12T15:04:05-0800"}},
    {"TimeAndDate",
     CellKind::date_time,
     {u"15:04 12.1.2020", u"3:04 pm, Jan 12, 2020", u"15:04 Jan 12"}},
    {"DateWithoutSeparators",
     CellKind::date_time,
     {u"20200112T150405Z", u"20200101T0000", u"20201231T2359", u"20200112T1504", u"20200112 15:04",
      u"20200112_150405"}},
    {"LogsAndMails",
     CellKind::date_time,
     {u"Mon Jan  2 15:04:05 2006", u"Mon Jan  2 15:04:05 MST 2006", u"02/Jan/2006:15:04:05 +0000",
      u"Mon, 02 Jan 2006 15:04:05 GMT", u"Jan 12 20:15:00", u"Jan  2 08:15:00"}},

    {"TwoUnitsOrMore",
     CellKind::duration,
     {u"1d 2h", u"1w 2d", u"1 month 2 weeks", u"1d2h", u"2h 30m", u"1 h 30 min 5.5 s",
      u"1 day, 2 hours", u"2 years and 3 months", u"-1h 5m"}},
    {"DaysAndAClock",
     CellKind::duration,
     {u"3 days, 4:05:06", u"1 day 04:05:06.5", u"0 days 00:05:00", u"-1 days +23:59:00"}},
    {"IsoDurations",
     CellKind::duration,
     {u"PT5M", u"P1D", u"P2W", u"P3Y6M4DT12H30M5S", u"PT0.5S", u"-P1D"}},
    {"MoreHoursThanADayHas", CellKind::duration, {u"36:15:00", u"125:00:00.5", u"25:00:00"}},
    {"ASignBeforeAClock", CellKind::duration, {u"-01:00:00", u"-1:00:00"}},
};

const KindCase kNames[] = {
    {"NoValue", CellKind::missing, {u"n/a",  u"N/A", u"na", u"NA",  u"n.a.", u"null",   u"NULL",
                                    u"None", u"nil", u"-",  u"--",  u"---",  u"\u2013", u"\u2014",
                                    u"?",    u".",   u"..", u"...", u"\\N",  u"#N/A",   u"<NA>"}},
    {"WordsForTrueAndFalse", CellKind::boolean, {u"true", u"False", u"TRUE", u"yes", u"No", u"NO"}},

    {"AddressesWithAScheme",
     CellKind::url,
     {u"http://example.org", u"https://example.org/a/b?c=d&e=5#f", u"ftp://example.org:21/x",
      u"file:///etc/hosts", u"s3://bucket/key", u"abcdefghijkl://x", u"HTTPS://EXAMPLE.ORG",
      u"https://[::1]:8080/x", u"http://m\u00FCnchen.example/"}},
    {"AddressesOfTheWeb", CellKind::url, {u"www.example.org", u"WWW.example.org/a,b"}},

    {"PathsWithSlashes",
     CellKind::path,
     {u"/a/b.c", u"/usr", u"./x", u"../x/y.txt", u"~/x", u"/home/j\u00FCrgen/a-b_c"}},
    {"PathsWithBackslashes",
     CellKind::path,
     {u"C:\\x", u"C:\\My Files\\x.txt", u"d:/x/y", u"\\\\server\\share", u"..\\x", u".\\x.txt"}},

    {"MailAddresses",
     CellKind::email,
     {u"a@example.org", u"a.b+c@mail.example.org", u"A_B%c@x-y.de"}},

    {"FourBytes",
     CellKind::ip,
     {u"10.0.0.1", u"255.255.255.255", u"192.168.100.200", u"10.0.0.1:80", u"10.0.0.0/8",
      u"0.0.0.0/0"}},
    {"EightGroups",
     CellKind::ip,
     {u"2001:db8:0:0:0:0:0:1", u"2001:db8::1", u"::1", u"fe80::", u"FE80::ABCD:1", u"2001:db8::/32",
      u"::ffff:10.0.0.1", u"[::1]:80"}},

    {"FiveGroupsOfHexadecimalDigits",
     CellKind::uuid,
     {u"123e4567-e89b-12d3-a456-426614174000", u"ABCDEFAB-ABCD-ABCD-ABCD-ABCDEFABCDEF",
      u"{123e4567-e89b-12d3-a456-426614174000}"}},

    {"BracesOrBracketsAroundAll",
     CellKind::structure,
     {u"{}", u"[]", u"[1, 2]", u"{\"a\": 1}", u"[\"x|y\"]", u"{a\tb}", u"[12/Jan/2006:15:04:05]"}},

    {"Letters",
     CellKind::word,
     {u"a", u"Berlin", u"NORTH", u"M\u00FCller", u"\u041C\u043E\u0441\u043A\u0432\u0430",
      u"\u6771\u4EAC", u"Monday", u"May", u"y", u"n", u"T", u"EUR", u"Inf\u00FC"}},
    {"HyphensAndApostrophesBetweenLetters",
     CellKind::word,
     {u"Jean-Luc", u"O'Neil", u"O\u2019Neil", u"Smith-Jones-Brown"}},
    {"CombiningMarks",
     CellKind::word,
     {u"e\u0301t\u00E9", u"\u0939\u093F\u0928\u094D\u0926\u0940"}},

    {"LettersAndDigits",
     CellKind::code,
     {u"A17", u"x1", u"A-17", u"item_5", u"0x1F", u"H2O", u"5kg"}},
    {"VersionsAndNumbersWithMarks",
     CellKind::code,
     {u"1.2.3", u"v1.2", u"1.2.3.4.5", u"256.0.0.1", u"12-34", u"1/2", u"#5", u"+49-30-123"}},
    {"NamesWithMarks",
     CellKind::code,
     {u"a.b", u"a/b", u"a:b", u"src/main.cpp", u"@user", u"_x", u"Dr.", u"a-", u"me@home",
      u"00:1A:2B:3C:4D:5E"}},
    {"OneUnitOfTime", CellKind::code, {u"12.5s", u"1d", u"5min"}},
    {"NoTimesAndDates",
     CellKind::code,
     {u"9:5", u"25:00", u"12:60", u"13/13/2020", u"2020-13-13", u"0/1/2020", u"32.1.2020",
      u"2020-00-12", u"DEC10", u"1800-01", u"12.1.202", u"12-1/2020", u"2020-W05"}},
    {"ExponentsWithoutOrWithTooManyDigits", CellKind::code, {u"1e", u"1e+", u"12e45678", u"1e5e5"}},
    {"NoDurations", CellKind::code, {u"P5", u"5M", u"PT5D"}},

    {"Words", CellKind::sentence, {u"New York", u"a b", u"two words.", u"No. 5", u"St. John's"}},
    {"ListsAndRemarks",
     CellKind::sentence,
     {u"a, b, c", u"12,13,14", u"Smith, John", u"a (b)", u"(see below)", u"\"quoted\" text",
      u"[1] and more", u"5 ms", u"12 apples", u"3 days", u"Really?", u"50% of all", u"a = b; c"}},
    {"SignsBeforeAWordOrNumber",
     CellKind::sentence,
     {u"+49 30 123456", u"-5 apples", u"#5 of 7", u"<0.1 mg", u"$5 an hour", u">5"}},
    {"LineBreaksInside", CellKind::sentence, {u"one\ntwo", u"one line\r\nand another"}},
    {"OtherScriptsAndPunctuation",
     CellKind::sentence,
     {u"\u6771\u4EAC\u3001\u5927\u962A", u"\u00ABBonjour\u00BB", u"\u201EJa\u201C, sagte er",
      u"20 \u00B0C", u"5 \u2013 7 m\u00B2", u"\u00BFQu\u00E9?"}},
    {"CharactersOutsideTheBmp", CellKind::sentence, {u"fine \u001A", u"\u001A"}},
    {"WhatIsAlmostANumber",
     CellKind::sentence,
     {u"5,", u"1,2,3", u"12,345,67", u"1 2 3", u"12 345 67", u"0 123", u"5 %5", u"1,234;5",
      u"5 $ 5", u"3 j"}},
    {"WhatIsAlmostADate",
     CellKind::sentence,
     {u"Jan 123", u"May 5 people", u"12 Jam 2020", u"15:04 o'clock", u"13 pm", u"Mon, 2020"}},
    {"NoAddresses",
     CellKind::sentence,
     {u"http://a b", u"see http://example.org", u"a@b.c, d@e.f"}},

    {"Separators",
     CellKind::unknown,
     {u",", u",,,", u";", u";;", u"|", u"||", u"|---|", u"\"", u"\"\"", u"()", u"+", u"=====", u"/",
      u":", u"::", u"****", u"____", u"- - -"}},
    {"MarksThatCutCellsHave",
     CellKind::unknown,
     {u",a", u";5", u"a|b", u"|a", u")a", u"}a", u"]5", u"a\tb", u"a^b", u"{a", u"* a"}},
    {"ControlCharacters",
     CellKind::unknown,
     {std::u16string(1, u'\0'), u"a\u0001", u"\u0085x", u"a\uFFFF", u"5\u0007", u"\uE000"}},
    {"SchemesWithoutAnAddress", CellKind::unknown, {u"http://a|b", u"C:\\a|b", u"/a|b"}},
};

// What a rule refuses although it looks like its kind, and what else is then made of it.
const KindCase kNearMisses[] = {
    {"MarksThatJoinNothing", CellKind::code, {u"a--b", u"-a", u"a-", u"a-\u0301b"}},
    {"ApostrophesThatJoinNothing", CellKind::sentence, {u"O'", u"'tis", u"a''b"}},
    {"RareLettersAndMarks",
     CellKind::word,
     {u"\u01C5", u"\u02B0", u"a\u20DD", u"co\u00ADop", u"\u0645\u06CC\u200C\u062E", u"a\u200D",
      u"a\u200E", u"a\u200F", u"Jean\u2010Luc", u"Jean\u2011Luc", u"P", u"PT"}},
    {"RareSymbols",
     CellKind::sentence,
     {u"a \u2160", u"a\u203Fb", u"\u300Ca\u300D", u"a \u00B1 5", u"a \u00B4", u"\u00A1Hola!"}},

    {"SumsAndDifferences", CellKind::code, {u"1+2", u"1+2x", u"1+2ix", u"5-3", u"5.0-3", u"5-"}},
    {"GroupsOfOtherLengths",
     CellKind::sentence,
     {u"123,45,678", u"1,234.", u"1,23,45", u"0,123,456"}},
    {"OpenParentheses", CellKind::sentence, {u"(5", u"5)", u"(1+2i"}},
    {"OtherCurrenciesAndAmounts",
     CellKind::sentence,
     {u"EUR x5", u"$5e3", u"EURO 5", u"ABC 5", u"5 EURO", u"5 eur", u"ABC$5", u"EUR 5 x"}},
    {"TwoSignsOfMoney", CellKind::unknown, {u"-$-5"}},

    {"OtherHalvesOfTheDay", CellKind::sentence, {u"5 p.m", u"5 pmx", u"13:04 pm", u"5 xm"}},
    {"OffsetOfAnHourAlone", CellKind::time, {u"15:04+01", u"15:04+14:59", u"15:04:05 -1459"}},
    {"OtherOffsets", CellKind::code, {u"15:04+15:00", u"15:04+01:60", u"15:04+1", u"15:04+01:"}},
    {"OtherOffsetsAfterABlank",
     CellKind::sentence,
     {u"15:04:05 +010", u"15:04:05 +1500", u"15:04:05 +0160", u"15:04:05 +01000"}},
    {"OtherFractionsOfASecond",
     CellKind::code,
     {u"009:05", u"15:04:05.", u"15:04:05.1234567890", u"15:04:61"}},
    {"TimesInOtherText", CellKind::sentence, {u"15:04 at home", u"15:04,", u"15:04 12.1.2020 x"}},

    {"OtherYearsAndMonths",
     CellKind::code,
     {u"2100-01", u"1899-12", u"2020-13", u"2020-1", u"1/1899", u"13/2020", u"0/2020",
      u"012/1/2020"}},
    {"FirstAndLastOfTheShortYears",
     CellKind::date,
     {u"1900-01", u"2099-12", u"1/1900", u"12/2099"}},
    {"FirstAndLastDays",
     CellKind::date,
     {u"1.1.2020", u"31.12.2020", u"12/31/2020", u"2020-12-31"}},
    {"MonthsThatAreCutShort", CellKind::code, {u"12Jan", u"Mon5", u"Jan2020"}},
    {"NamesThatAreNoMonths",
     CellKind::sentence,
     {u"Septembering 5", u"Ma 5", u"5 Septembering", u"Jan x5"}},
    {"OtherEastAsianDates",
     CellKind::code,
     {u"2020\u5E7413\u6708", u"2020\u5E74012\u6708", u"2020\u5E741", u"2020\u5E741\u670840\u65E5",
      u"2020\u5E741\u67085"}},
    {"HourAfterTheMonth", CellKind::date_time, {u"2020 Jan 15:04", u"2020 Jan 2 15:04"}},
    {"DatesWithoutSeparatorsOutOfRange",
     CellKind::code,
     {u"20201312T1504", u"20200012T1504", u"20200132T1504", u"20200100T1504", u"20200112X1504",
      u"20200112T150", u"20200112T15:04x", u"20200112-15", u"2020112T1504"}},
    {"DatesWithATimeThatIsNone",
     CellKind::sentence,
     {u"20200112 1504", u"Jan 2 15:04 206", u"12 Jan-15:04", u"2020-01-12 25:04",
      u"12 Jan 2020 15:04 2020"}},

    {"OtherSumsOfUnits",
     CellKind::sentence,
     {u"1.d 2h", u"1h andy", u"1d and", u"2h 1d", u"2h 2h", u"3 days 004:05:06", u"3 days 4:05:06x",
      u"3 hours 4:05:06", u"3 days 4:65"}},
    {"OtherClocks",
     CellKind::code,
     {u"P1DT", u"36:15:00x", u"36:61:00", u"36:15", u"123456:15:00"}},

    {"FullAddressOfEightShortGroups", CellKind::ip, {u"1:2:3:4:5:6:7:8", u"1:2:3:4:5:6:7::"}},
    {"OtherGroupsAndColons",
     CellKind::code,
     {u"12345::1", u"1:2:3", u"1:2:3:4:5:6:7:8:9", u"1:2:3:4:5:6:7::8", u"1:::2", u"a::b", u"g::1",
      u"1::2::3", u"::x5"}},
    {"OtherPortsAndPrefixes",
     CellKind::code,
     {u"10.0.0.1:65536", u"10.0.0.1:", u"10.0.0.1:123456", u"10.0.0.0/33", u"10.0.0.0/", u"10.0.0",
      u"10.0.0.", u"1.2.3.1000", u"0001.2.3.4", u"::1/129"}},
    {"LargestPortsAndPrefixes",
     CellKind::ip,
     {u"10.0.0.1:5", u"10.0.0.1:65535", u"10.0.0.0/32", u"::1/128"}},
    {"BracketsOfAddresses", CellKind::sentence, {u"[::1", u"[::1]x"}},
    {"HyphensAtOtherPlaces",
     CellKind::code,
     {u"123e456-7e89b-12d3-a456-426614174000", u"123e45670e89b-12d3-a456-426614174000",
      u"g23e4567-e89b-12d3-a456-426614174000", u"123e4567-e89b-12d3-a456-42661417400"}},
    {"OneBrace",
     CellKind::unknown,
     {u"{123e4567-e89b-12d3-a456-4266141740000", u"0123e4567-e89b-12d3-a456-426614174000}"}},
    {"DifferentBrackets", CellKind::unknown, {u"{a]", u"{", u"}"}},

    {"OtherSchemes", CellKind::code, {u"abcdefghijklm://x", u"1a://x", u"http://", u"www."}},
    {"BlanksInAddresses",
     CellKind::sentence,
     {u"http://a/b c", u"www.a b", u"www.,x", u"http://a,b"}},
    {"OddMarksInAddresses", CellKind::unknown, {u"http://a/b|c", u"www.a|b", u"http://a/`"}},
    {"ShortestPaths", CellKind::path, {u"/a", u"./5", u"~/5", u"C:\\", u"z:/", u"a://x"}},
    {"OtherSlashes", CellKind::unknown, {u"./", u"../", u"~/", u"~x", u"/a b", u"/a,b", u"/-"}},
    {"SlashesAndDigits", CellKind::code, {u"/1/2", u".x", u".../x", u"C:x", u"C:5/x"}},
    {"OtherBackslashes",
     CellKind::unknown,
     {u"\\\\", u"\\x", u"C:\\a?", u"C:\\a\nb", u"C:\\a,5", u"a\\b", u"5:\\x"}},
    {"OtherMailAddresses",
     CellKind::code,
     {u"a@b", u"@b.org", u"a@.org", u"a@-b.org", u"a@b..org", u"a@b.c", u"a@b.c1", u"a:b@c.de",
      u"a@b@c.de", u"a.b@c", u"a@b.org."}},

    {"SignsBeforeABlank", CellKind::unknown, {u"+ 5", u"- a", u"# a", u"< 5", u"= 5", u"\u20AC a"}},
};

class KindOf : public testing::TestWithParam<KindCase> {};

TEST_P(KindOf, IsThatOfTheRow) {
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_EQ(kind_of(ExactText(cell).view()), GetParam().kind) << "'" << readable(cell) << "'";
  }
}

TEST_P(KindOf, IgnoresBlanksAtTheEnds) {
  const std::u16string_view blanks[] = {u" ", u"\t", u"\u00A0", u"  \t "};
  for (const std::u16string& cell : GetParam().cells) {
    for (const std::u16string_view blank : blanks) {
      const std::u16string before = std::u16string(blank) + cell;
      const std::u16string after = cell + std::u16string(blank);
      EXPECT_EQ(kind_of(ExactText(before).view()), GetParam().kind)
          << "'" << readable(before) << "'";
      EXPECT_EQ(kind_of(ExactText(after).view()), GetParam().kind) << "'" << readable(after) << "'";
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Numbers, KindOf, testing::ValuesIn(kNumbers), ByRule());
INSTANTIATE_TEST_SUITE_P(Times, KindOf, testing::ValuesIn(kTimes), ByRule());
INSTANTIATE_TEST_SUITE_P(Names, KindOf, testing::ValuesIn(kNames), ByRule());
INSTANTIATE_TEST_SUITE_P(NearMisses, KindOf, testing::ValuesIn(kNearMisses), ByRule());

// --- limits of length --------------------------------------------------------------------------

std::u16string repeated(std::u16string_view part, std::size_t times) {
  std::u16string text;
  for (std::size_t i = 0; i < times; ++i) text += part;
  return text;
}

CellKind kind_of_exact(const std::u16string& text) { return kind_of(ExactText(text).view()); }

TEST(KindOfLongCell, ACodeIsShorterThanSixtyUnits) {
  EXPECT_EQ(kind_of_exact(u"A" + repeated(u"1", 58)), CellKind::code);
  EXPECT_EQ(kind_of_exact(u"A" + repeated(u"1", 59)), CellKind::sentence);
}

TEST(KindOfLongCell, IsAValueUpToTheLimitOnly) {
  EXPECT_EQ(kind_of_exact(repeated(u"1", kLongestExaminedCell)), CellKind::integer);
  EXPECT_EQ(kind_of_exact(repeated(u"1", kLongestExaminedCell + 1)), CellKind::sentence);
  EXPECT_EQ(kind_of_exact(repeated(u"a", kLongestExaminedCell)), CellKind::word);
  EXPECT_EQ(kind_of_exact(repeated(u"a", kLongestExaminedCell + 1)), CellKind::sentence);
}

TEST(KindOfLongCell, TheLimitDoesNotCountBlanksAtTheEnds) {
  const std::u16string blanks = repeated(u" ", kLongestExaminedCell);
  EXPECT_EQ(kind_of_exact(blanks + u"12" + blanks), CellKind::integer);
  EXPECT_EQ(kind_of_exact(blanks), CellKind::empty);
  EXPECT_EQ(kind_of_exact(blanks + blanks), CellKind::empty);
}

TEST(KindOfLongCell, IsAStructureByItsEnds) {
  const std::u16string inside = repeated(u"\"a|b\", ", 50);
  EXPECT_EQ(kind_of_exact(u"[" + inside + u"]"), CellKind::structure);
  EXPECT_EQ(kind_of_exact(u"{" + inside + u"}"), CellKind::structure);
  EXPECT_EQ(kind_of_exact(u"{" + inside + u"]"), CellKind::unknown);
}

TEST(KindOfLongCell, IsASentenceByItsFirstUnits) {
  const std::u16string words = repeated(u"word ", 40);  // 200 units
  EXPECT_EQ(kind_of_exact(words + u"end"), CellKind::sentence);
  EXPECT_EQ(kind_of_exact(words + u"|"), CellKind::sentence);
  EXPECT_EQ(kind_of_exact(u"|" + words), CellKind::unknown);
  EXPECT_EQ(kind_of_exact(repeated(u"-", kLongestExaminedCell + 1)), CellKind::unknown);
  EXPECT_EQ(kind_of_exact(words.substr(0, 199) + u"|d"), CellKind::unknown);
}

// --- any text ----------------------------------------------------------------------------------

// Texts of what the rules look for, in any order: most are cut or joined at odd places.
class RandomCells {
 public:
  std::u16string next() {
    constexpr std::u16string_view kParts[] = {
        u"1",      u"12",     u"2020",   u"255",    u"0",      u".",      u",",      u":",
        u"::",     u"-",      u"/",      u"+",      u" ",      u"'",      u"%",      u"$",
        u"EUR",    u"Jan",    u"Mon",    u"T",      u"Z",      u"pm",     u"P",      u"d",
        u"h",      u"e",      u"i",      u"@",      u"www.",   u"://",    u"http",   u"\\",
        u"C:",     u"~",      u"(",      u")",      u"[",      u"]",      u"{",      u"}",
        u"\"",     u"|",      u"_",      u"#",      u"\u00E4", u"\u0301", u"\u00A0", u"\u202F",
        u"\u2212", u"\u20AC", u"\u5E74", u"\u6708", u"\u0661", u"\x1A",   u"\t",     u"\n",
        u"n/a",    u"nan",    u"days",   u"and ",   u"fe80",   u"ffff"};
    std::uniform_int_distribution<std::size_t> part(0, std::size(kParts) - 1);
    std::uniform_int_distribution<int> length(0, 12);
    std::u16string text;
    for (int left = length(random_); left > 0; --left) text += kParts[part(random_)];
    return text;
  }

 private:
  std::mt19937 random_{20240517};
};

constexpr int kRandomCells = 100000;

// A text in a block of exactly its size: the sanitizer sees any read outside.
TEST(KindOfAnyText, IsTheSameWithBlanksAround) {
  RandomCells cells;
  for (int i = 0; i < kRandomCells; ++i) {
    const std::u16string cell = cells.next();
    EXPECT_EQ(kind_of_exact(cell), kind_of_exact(u" \t" + cell + u"\u00A0")) << readable(cell);
  }
}

TEST(KindOfAnyText, DoesNotDependOnWhatStandsAround) {
  RandomCells cells;
  for (int i = 0; i < kRandomCells; ++i) {
    const std::u16string cell = cells.next();
    const std::u16string inside_text = u"1" + cell + u"1";
    const auto cell_of_text = std::u16string_view(inside_text).substr(1, cell.size());
    EXPECT_EQ(kind_of_exact(cell), kind_of(cell_of_text)) << readable(cell);
  }
}

TEST(KindOfAnyText, OfOneOrTwoUnitsIsAKind) {
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string one(1, static_cast<char16_t>(unit));
    EXPECT_LT(static_cast<std::size_t>(kind_of_exact(one)), kCellKinds) << readable(one);
    EXPECT_LT(static_cast<std::size_t>(kind_of_exact(u"1" + one)), kCellKinds) << readable(one);
  }
}

// Letters and a blank are a sentence, with a bar anywhere inside they are unknown.
TEST(KindOfAnyText, DependsOnTheUnitAtEachPlace) {
  for (std::size_t size = 3; size <= 40; ++size) {
    std::u16string cell(size, u'a');
    cell[1] = u' ';
    EXPECT_EQ(kind_of_exact(cell), CellKind::sentence) << size;
    for (std::size_t at = 0; at < size; ++at) {
      std::u16string other = cell;
      other[at] = u'|';
      EXPECT_EQ(kind_of_exact(other), CellKind::unknown) << size << ", " << at;
    }
  }
}

// The same with another unit outside ASCII, which is examined in another way.
TEST(KindOfAnyText, DependsOnTheUnitAtEachPlaceBesideOtherLetters) {
  for (std::size_t size = 3; size <= 20; ++size) {
    for (std::size_t at = 0; at < size; ++at) {
      std::u16string cell(size, u'a');
      cell[size - 1 - at] = u'\u00E4';
      EXPECT_EQ(kind_of_exact(cell), CellKind::word) << size << ", " << at;
      cell[at] = u'\uE000';
      EXPECT_EQ(kind_of_exact(cell), CellKind::unknown) << size << ", " << at;
    }
  }
}

TEST(KindOfAnyText, OfOneUnitIsAWordIfItIsALetter) {
  for (char32_t unit = 0; unit <= 0xFFFF; ++unit) {
    const std::u16string one(1, static_cast<char16_t>(unit));
    const bool is_letter = (U_GET_GC_MASK(static_cast<UChar32>(unit)) & U_GC_L_MASK) != 0;
    EXPECT_EQ(kind_of_exact(one) == CellKind::word, is_letter) << readable(one);
  }
}

// --- properties of kinds -----------------------------------------------------------------------

struct PropertiesCase {
  const char* name;
  CellKind kind;
  bool is_number;
  bool is_value;
  bool is_text;
  double worth;
};
std::ostream& operator<<(std::ostream& out, const PropertiesCase& row) { return out << row.name; }

const PropertiesCase kProperties[] = {
    {"empty", CellKind::empty, false, false, false, 0.55},
    {"integer", CellKind::integer, true, true, false, 1.0},
    {"decimal", CellKind::decimal, true, true, false, 1.0},
    {"scientific", CellKind::scientific, true, true, false, 1.0},
    {"complex", CellKind::complex, true, true, false, 1.0},
    {"percentage", CellKind::percentage, true, true, false, 1.0},
    {"money", CellKind::money, true, true, false, 1.0},
    {"time", CellKind::time, false, true, false, 1.0},
    {"date", CellKind::date, false, true, false, 1.0},
    {"date-time", CellKind::date_time, false, true, false, 1.0},
    {"duration", CellKind::duration, false, true, false, 1.0},
    {"missing", CellKind::missing, false, false, false, 0.9},
    {"boolean", CellKind::boolean, false, true, false, 1.0},
    {"url", CellKind::url, false, true, false, 0.95},
    {"path", CellKind::path, false, true, false, 0.95},
    {"email", CellKind::email, false, true, false, 1.0},
    {"ip", CellKind::ip, false, true, false, 1.0},
    {"uuid", CellKind::uuid, false, true, false, 1.0},
    {"structure", CellKind::structure, false, false, false, 0.7},
    {"word", CellKind::word, false, false, true, 0.9},
    {"code", CellKind::code, false, false, true, 0.8},
    {"sentence", CellKind::sentence, false, false, true, 0.75},
    {"unknown", CellKind::unknown, false, false, true, 0.1},
};
static_assert(std::size(kProperties) == kCellKinds);

TEST(CellKindProperties, AreThoseOfTheTable) {
  for (const PropertiesCase& row : kProperties) {
    EXPECT_EQ(to_string(row.kind), row.name);
    EXPECT_EQ(is_number(row.kind), row.is_number) << row;
    EXPECT_EQ(is_value(row.kind), row.is_value) << row;
    EXPECT_EQ(is_text(row.kind), row.is_text) << row;
    EXPECT_DOUBLE_EQ(worth_of(row.kind), row.worth) << row;
  }
}

}  // namespace
}  // namespace textio::assessment
