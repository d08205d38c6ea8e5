#include <vltextstream/columns/date_format.hpp>

#include <ctime>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unicode/localpointer.h>
#include <unicode/udat.h>
#include <unicode/unistr.h>

#include <vltextstream/text/utf8.hpp>

#include "columns/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

DateVotes votes_of(const std::vector<std::u16string>& cells, const OrderHints& hints = {}) {
  DateVotes votes;
  for (const std::u16string& cell : cells) {
    const ExactText exact(cell);
    const auto date = read_date(exact.view());
    if (date) {
      votes.add(*date);
    } else {
      votes.add_without_parts();
    }
  }
  votes.settle(hints);
  return votes;
}

// --- formats -----------------------------------------------------------------------------------

// The first cell is at `local` on the clocks of its zone, which are `offset` minutes ahead of UTC.
struct FormatCase {
  const char* rule;
  std::vector<std::u16string> cells;
  DateFormat format;  // strptime, icu, language, zone, zones differ, order
  std::string local;
  int offset = 0;
};
std::ostream& operator<<(std::ostream& out, const FormatCase& row) { return out << row.rule; }

constexpr DateOrder kYear = DateOrder::year_first;
constexpr DateOrder kDay = DateOrder::day_first;
constexpr DateOrder kMonth = DateOrder::month_first;
constexpr DateOrder kEither = DateOrder::ambiguous;
constexpr DateOrder kNone = DateOrder::none;

const FormatCase kDates[] = {
    {"YearFirstWithHyphens",
     {u"2024-01-31", u"2024-02-01"},
     {"%Y-%m-%d", "yyyy-MM-dd", "", "", false, kYear},
     "2024-01-31"},
    {"YearFirstWithSlashes",
     {u"2024/01/31"},
     {"%Y/%m/%d", "yyyy/MM/dd", "", "", false, kYear},
     "2024-01-31"},
    {"YearFirstWithPointsAndShortNumbers",
     {u"2024.1.5", u"2024.12.31"},
     {"%Y.%m.%d", "yyyy.M.d", "", "", false, kYear},
     "2024-01-05"},
    {"YearFirstAndTheDayBeforeTheMonth",
     {u"2024-31-01", u"2024-01-02"},
     {"%Y-%d-%m", "yyyy-dd-MM", "", "", false, kYear},
     "2024-01-31"},
    {"ShortYearFirst",
     {u"99-12-31", u"98-01-05"},
     {"%y-%m-%d", "yy-MM-dd", "", "", false, kYear},
     "1999-12-31"},
    {"ShortYearThatNeverChanges",
     {u"24-01-05", u"24-01-06", u"24-01-07"},
     {"%y-%m-%d", "yy-MM-dd", "", "", false, kYear},
     "2024-01-05"},
    {"DigitsAlone",
     {u"20240131", u"20231201"},
     {"%Y%m%d", "yyyyMMdd", "", "", false, kYear},
     "2024-01-31"},
    {"YearAndMonth",
     {u"2024-01", u"2023-12"},
     {"%Y-%m", "yyyy-MM", "", "", false, kYear},
     "2024-01-01"},
    {"MonthAndYear",
     {u"01/2024", u"12/2023"},
     {"%m/%Y", "MM/yyyy", "", "", false, kNone},
     "2024-01-01"},
    {"EastAsian",
     {u"2024\u5E741\u670831\u65E5", u"2023\u5E7412\u67081\u65E5"},
     {"%Y\xE5\xB9\xB4%m\xE6\x9C\x88%d\xE6\x97\xA5",
      "yyyy\xE5\xB9\xB4M\xE6\x9C\x88"
      "d\xE6\x97\xA5",
      "", "", false, kYear},
     "2024-01-31"},

    {"DayFirstWithSlashes",
     {u"01/02/2024", u"31/01/2024"},
     {"%d/%m/%Y", "dd/MM/yyyy", "", "", false, kDay},
     "2024-02-01"},
    {"DayFirstWithPoints",
     {u"31.01.2024", u"01.02.2024"},
     {"%d.%m.%Y", "dd.MM.yyyy", "", "", false, kDay},
     "2024-01-31"},
    {"DayFirstWithPointsAndShortNumbers",
     {u"1.2.2024", u"15.12.2024"},
     {"%d.%m.%Y", "d.M.yyyy", "", "", false, kDay},
     "2024-02-01"},
    {"DayFirstWithHyphens",
     {u"31-01-2024", u"01-02-2024"},
     {"%d-%m-%Y", "dd-MM-yyyy", "", "", false, kDay},
     "2024-01-31"},
    {"DayFirstWithShortYears",
     {u"31.01.24", u"01.02.24"},
     {"%d.%m.%y", "dd.MM.yy", "", "", false, kDay},
     "2024-01-31"},
    {"DayFirstByPointsAlone",
     {u"01.02.2024", u"03.04.2024"},
     {"%d.%m.%Y", "dd.MM.yyyy", "", "", false, kDay},
     "2024-02-01"},

    {"MonthFirstWithSlashes",
     {u"01/02/2024", u"01/31/2024"},
     {"%m/%d/%Y", "MM/dd/yyyy", "", "", false, kMonth},
     "2024-01-02"},
    {"MonthFirstWithShortNumbers",
     {u"1/31/24", u"12/1/24"},
     {"%m/%d/%y", "M/d/yy", "", "", false, kMonth},
     "2024-01-31"},
    {"MonthFirstWithHyphens",
     {u"01-31-2024", u"02-01-2024"},
     {"%m-%d-%Y", "MM-dd-yyyy", "", "", false, kMonth},
     "2024-01-31"},
    {"MonthFirstWithLateShortYears",
     {u"01/31/75", u"02/01/76"},
     {"%m/%d/%y", "MM/dd/yy", "", "", false, kMonth},
     "1975-01-31"},

    {"AmbiguousWithSlashes",
     {u"01/02/2024", u"03/04/2024"},
     {"%d/%m/%Y", "dd/MM/yyyy", "", "", false, kEither},
     "2024-02-01"},
    {"AmbiguousWithHyphens",
     {u"01-02-2024", u"12-12-2024"},
     {"%d-%m-%Y", "dd-MM-yyyy", "", "", false, kEither},
     "2024-02-01"},
    {"AmbiguousWithShortNumbers",
     {u"1/2/24", u"10/11/24"},
     {"%d/%m/%y", "d/M/yy", "", "", false, kEither},
     "2024-02-01"},
    {"AmbiguousInAllThree",
     {u"01-02-03", u"04-05-06"},
     {"%d-%m-%y", "dd-MM-yy", "", "", false, kEither},
     "2003-02-01"},
};

const FormatCase kNames[] = {
    {"DayAndShortMonth",
     {u"31 Jan 2024", u"01 Feb 2024"},
     {"%d %b %Y", "dd MMM yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"DayAndMonth",
     {u"31 January 2024", u"1 May 2024"},
     {"%d %B %Y", "d MMMM yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"Hyphens",
     {u"31-Jan-24", u"01-DEC-23"},
     {"%d-%b-%y", "dd-MMM-yy", "en", "", false, kNone},
     "2024-01-31"},
    {"Nothing", {u"31Jan2024"}, {"%d%b%Y", "ddMMMyyyy", "en", "", false, kNone}, "2024-01-31"},
    {"MonthFirst",
     {u"Jan 31, 2024", u"May 1, 2024"},
     {"%b %d, %Y", "MMM d, yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"MonthWithAPoint",
     {u"Jan. 31, 2024", u"Feb. 1, 2024"},
     {"%b. %d, %Y", "MMM. d, yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"YearFirst",
     {u"2024-Jan-31"},
     {"%Y-%b-%d", "yyyy-MMM-dd", "en", "", false, kYear},
     "2024-01-31"},
    {"MonthAndYear",
     {u"January 2024", u"March 2024"},
     {"%B %Y", "MMMM yyyy", "en", "", false, kNone},
     "2024-01-01"},
    {"MonthAndShortYear",
     {u"Jan-24", u"Feb-24"},
     {"%b-%y", "MMM-yy", "en", "", false, kNone},
     "2024-01-01"},
    {"LateShortYear",
     {u"Jan 75", u"Feb 76"},
     {"%b %y", "MMM yy", "en", "", false, kNone},
     "1975-01-01"},
    {"MonthThatIsAWeekdayToo",
     {u"05 mar 2024", u"06 apr 2024"},
     {"%d %b %Y", "dd MMM yyyy", "en", "", false, kNone},
     "2024-03-05"},
    {"Apostrophe", {u"Jan '24"}, {"%b '%y", "MMM ''yy", "en", "", false, kNone}, "2024-01-01"},
    {"Weekday",
     {u"Wed, 31 Jan 2024", u"Thu, 01 Feb 2024"},
     {"%a, %d %b %Y", "EEE, dd MMM yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"LongWeekday",
     {u"Wednesday 31 January 2024", u"Thursday 01 February 2024"},
     {"%A %d %B %Y", "EEEE dd MMMM yyyy", "en", "", false, kNone},
     "2024-01-31"},
    {"WeekdayBeforeNumbers",
     {u"Sun 2024-02-04", u"Mon 2024-02-05"},
     {"%a %Y-%m-%d", "EEE yyyy-MM-dd", "en", "", false, kYear},
     "2024-02-04"},

    {"German",
     {u"31. Januar 2024", u"1. M\u00E4rz 2024"},
     {"%d. %B %Y", "d. MMMM yyyy", "de", "", false, kNone},
     "2024-01-31"},
    {"GermanAbbreviationsWithPoints",
     {u"31. Okt. 2024", u"01. Dez. 2024"},
     {"%d. %b. %Y", "dd. MMM yyyy", "de", "", false, kNone},
     "2024-10-31"},
    {"GermanAbbreviationsWithAndWithoutPoints",
     {u"31. Okt. 2024", u"01. Mai 2024"},
     {"", "dd. MMM yyyy", "de", "", false, kNone},
     "2024-10-31"},
    {"GermanAbbreviationsWithoutPoints",
     {u"31. Okt 2024", u"01. M\u00E4r 2024"},
     {"%d. %b %Y", "dd. LLL yyyy", "de", "", false, kNone},
     "2024-10-31"},
    {"GermanWeekday",
     {u"Mi. 31.01.2024", u"Do. 01.02.2024"},
     {"%a. %d.%m.%Y", "EEE dd.MM.yyyy", "de", "", false, kDay},
     "2024-01-31"},
    {"French",
     {u"31 janvier 2024", u"12 mars 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "fr", "", false, kNone},
     "2024-01-31"},
    {"FrenchWeekday",
     {u"mer. 31 janv. 2024", u"mar. 12 sept. 2023"},
     {"%a. %d %b. %Y", "EEE dd MMM yyyy", "fr", "", false, kNone},
     "2024-01-31"},
    {"Spanish",
     {u"31 de enero de 2024", u"12 de marzo de 2024"},
     {"%d de %B de %Y", "dd 'de' MMMM 'de' yyyy", "es", "", false, kNone},
     "2024-01-31"},
    {"Italian",
     {u"31 gennaio 2024", u"12 luglio 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "it", "", false, kNone},
     "2024-01-31"},
    {"Dutch",
     {u"31 januari 2024", u"12 maart 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "nl", "", false, kNone},
     "2024-01-31"},
    {"Polish",
     {u"31 stycznia 2024", u"12 lutego 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "pl", "", false, kNone},
     "2024-01-31"},
    {"PolishMonthAlone",
     {u"stycze\u0144 2024", u"luty 2024"},
     {"%B %Y", "LLLL yyyy", "pl", "", false, kNone},
     "2024-01-01"},
    {"Russian",
     {u"31 \u044F\u043D\u0432\u0430\u0440\u044F 2024", u"12 \u043C\u0430\u0440\u0442\u0430 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "ru", "", false, kNone},
     "2024-01-31"},
    {"Swedish",
     {u"31 mars 2024", u"12 maj 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "sv", "", false, kNone},
     "2024-03-31"},
    {"Turkish",
     {u"31 Ocak 2024", u"12 \u015Eubat 2024"},
     {"%d %B %Y", "dd MMMM yyyy", "tr", "", false, kNone},
     "2024-01-31"},
};

const FormatCase kTimes[] = {
    {"Minutes", {u"15:04", u"09:30"}, {"%H:%M", "HH:mm", "", "", false, kNone}, "1970-01-01T15:04"},
    {"ShortHours",
     {u"9:05", u"15:04"},
     {"%H:%M", "H:mm", "", "", false, kNone},
     "1970-01-01T09:05"},
    {"Seconds",
     {u"15:04:05"},
     {"%H:%M:%S", "HH:mm:ss", "", "", false, kNone},
     "1970-01-01T15:04:05"},
    {"Milliseconds",
     {u"15:04:05.250"},
     {"%H:%M:%S.%f", "HH:mm:ss.SSS", "", "", false, kNone},
     "1970-01-01T15:04:05.250"},
    {"MillisecondsAfterAComma",
     {u"15:04:05,250"},
     {"%H:%M:%S,%f", "HH:mm:ss,SSS", "", "", false, kNone},
     "1970-01-01T15:04:05.250"},
    {"Nanoseconds",
     {u"15:04:05.250000000"},
     {"", "HH:mm:ss.SSSSSSSSS", "", "", false, kNone},
     "1970-01-01T15:04:05.250"},
    {"HalfDays",
     {u"3:04 PM", u"12:30 am"},
     {"%I:%M %p", "h:mm a", "", "", false, kNone},
     "1970-01-01T15:04"},
    {"HalfDaysWithoutBlank",
     {u"12:30:05AM", u"03:04:05PM"},
     {"%I:%M:%S%p", "hh:mm:ssa", "", "", false, kNone},
     "1970-01-01T00:30:05"},
    {"HoursOfHalfDays",
     {u"5 pm", u"11 am"},
     {"%I %p", "h a", "", "", false, kNone},
     "1970-01-01T17:00"},
    {"Offset",
     {u"15:04+01:00"},
     {"%H:%M%z", "HH:mmXXX", "", "+01:00", false, kNone},
     "1970-01-01T15:04",
     60},

    {"IsoInUtc",
     {u"2024-01-31T15:04:05Z", u"2024-02-01T00:00:00Z"},
     {"%Y-%m-%dT%H:%M:%S%z", "yyyy-MM-dd'T'HH:mm:ssXXX", "", "Z", false, kYear},
     "2024-01-31T15:04:05"},
    {"IsoWithAnOffset",
     {u"2024-01-31T15:04:05.25+01:00"},
     {"%Y-%m-%dT%H:%M:%S.%f%z", "yyyy-MM-dd'T'HH:mm:ss.SSXXX", "", "+01:00", false, kYear},
     "2024-01-31T15:04:05.250",
     60},
    {"OffsetOfFourDigits",
     {u"2024-01-31 15:04 -0330"},
     {"%Y-%m-%d %H:%M %z", "yyyy-MM-dd HH:mm XX", "", "-0330", false, kYear},
     "2024-01-31T15:04",
     -210},
    {"OffsetOfTwoDigits",
     {u"2024-01-31 15:04+01"},
     {"%Y-%m-%d %H:%M%z", "yyyy-MM-dd HH:mmX", "", "+01", false, kYear},
     "2024-01-31T15:04",
     60},
    {"OffsetsOfSummerAndWinter",
     {u"2024-01-31 15:04+01:00", u"2024-07-31 15:04+02:00"},
     {"%Y-%m-%d %H:%M%z", "yyyy-MM-dd HH:mmXXX", "", "", true, kYear},
     "2024-01-31T15:04",
     60},
    {"OffsetsOfThreeZones",
     {u"15:04+01:00", u"15:04+02:00", u"15:04+03:00"},
     {"%H:%M%z", "HH:mmXXX", "", "", true, kNone},
     "1970-01-01T15:04",
     60},
    {"OffsetsAndUtc",
     {u"2024-01-31T15:04:05+01:00", u"2024-01-31T15:04:05Z"},
     {"%Y-%m-%dT%H:%M:%S%z", "yyyy-MM-dd'T'HH:mm:ssXXX", "", "", true, kYear},
     "2024-01-31T15:04:05",
     60},
    {"NameOfTheUniversalZone",
     {u"2024-01-31 15:04 UTC"},
     {"%Y-%m-%d %H:%M %Z", "yyyy-MM-dd HH:mm z", "", "UTC", false, kYear},
     "2024-01-31T15:04"},
    {"NameOfAnAmericanZone",
     {u"2024-01-31 15:04 EST"},
     {"%Y-%m-%d %H:%M EST", "yyyy-MM-dd HH:mm z", "", "EST", false, kYear},
     "2024-01-31T15:04",
     -300},
    {"NameOfAEuropeanZone",
     {u"31.01.2024 15:04 CET"},
     {"%d.%m.%Y %H:%M CET", "dd.MM.yyyy HH:mm 'CET'", "", "CET", false, kDay},
     "2024-01-31T15:04",
     60},
    {"NamesOfAmericanZones",
     {u"2024-01-31 15:04 EST", u"2024-07-31 15:04 EDT"},
     {"%Y-%m-%d %H:%M %Z", "yyyy-MM-dd HH:mm z", "", "", true, kYear},
     "2024-01-31T15:04",
     -300},
    {"NamesOfEuropeanZones",
     {u"2024-01-31 15:04 CET", u"2024-07-31 15:04 CEST"},
     {"%Y-%m-%d %H:%M %Z", "", "", "", true, kYear},
     "2024-01-31T15:04",
     60},

    {"DayFirst",
     {u"31/01/2024 15:04", u"01/02/2024 09:00"},
     {"%d/%m/%Y %H:%M", "dd/MM/yyyy HH:mm", "", "", false, kDay},
     "2024-01-31T15:04"},
    {"MonthFirst",
     {u"1/31/2024 3:04 PM", u"12/1/2024 11:00 AM"},
     {"%m/%d/%Y %I:%M %p", "M/d/yyyy h:mm a", "", "", false, kMonth},
     "2024-01-31T15:04"},
    {"Ambiguous",
     {u"1/2/2024 15:04", u"10/12/2024 11:00"},
     {"%d/%m/%Y %H:%M", "d/M/yyyy HH:mm", "", "", false, kEither},
     "2024-02-01T15:04"},
    {"CommaBeforeTheTime",
     {u"31.01.2024, 15:04"},
     {"%d.%m.%Y, %H:%M", "dd.MM.yyyy, HH:mm", "", "", false, kDay},
     "2024-01-31T15:04"},
    {"TimeFirst",
     {u"15:04 31.01.2024"},
     {"%H:%M %d.%m.%Y", "HH:mm dd.MM.yyyy", "", "", false, kDay},
     "2024-01-31T15:04"},
    {"DigitsAndT",
     {u"20240131T150405Z", u"20240201T000000Z"},
     {"%Y%m%dT%H%M%S%z", "yyyyMMdd'T'HHmmssXXX", "", "Z", false, kYear},
     "2024-01-31T15:04:05"},
    {"DigitsAndTWithAFraction",
     {u"20240131T150405.250Z"},
     {"%Y%m%dT%H%M%S.%f%z", "yyyyMMdd'T'HHmmss.SSSXXX", "", "Z", false, kYear},
     "2024-01-31T15:04:05.250"},
    {"FrenchWords",
     {u"31 janvier 2024 \u00E0 15:04"},
     {"%d %B %Y \xC3\xA0 %H:%M", "dd MMMM yyyy \xC3\xA0 HH:mm", "fr", "", false, kNone},
     "2024-01-31T15:04"},
    {"DigitsAndTWithoutSeconds",
     {u"20240131T1504"},
     {"%Y%m%dT%H%M", "yyyyMMdd'T'HHmm", "", "", false, kYear},
     "2024-01-31T15:04"},
    {"DigitsAlone",
     {u"20240131150405"},
     {"%Y%m%d%H%M%S", "yyyyMMddHHmmss", "", "", false, kYear},
     "2024-01-31T15:04:05"},
    {"DigitsAndAUnderscore",
     {u"20240131_150405"},
     {"%Y%m%d_%H%M%S", "yyyyMMdd_HHmmss", "", "", false, kYear},
     "2024-01-31T15:04:05"},
    {"YearAtTheEnd",
     {u"Wed Jan 31 15:04:05 2024", u"Thu Feb  1 09:00:00 2024"},
     {"%a %b %d %H:%M:%S %Y", "EEE MMM d HH:mm:ss yyyy", "en", "", false, kNone},
     "2024-01-31T15:04:05"},
    {"Mail",
     {u"Wed, 31 Jan 2024 15:04:05 GMT"},
     {"%a, %d %b %Y %H:%M:%S %Z", "EEE, dd MMM yyyy HH:mm:ss z", "en", "GMT", false, kNone},
     "2024-01-31T15:04:05"},
    {"LogOfAServer",
     {u"31/Jan/2024:15:04:05 +0000"},
     {"%d/%b/%Y:%H:%M:%S %z", "dd/MMM/yyyy:HH:mm:ss XX", "en", "+0000", false, kNone},
     "2024-01-31T15:04:05"},
    {"GermanWords",
     {u"31. Januar 2024 um 15:04", u"1. M\u00E4rz 2024 um 09:30"},
     {"%d. %B %Y um %H:%M", "d. MMMM yyyy 'um' HH:mm", "de", "", false, kNone},
     "2024-01-31T15:04"},
};

class DateFormatOf : public testing::TestWithParam<FormatCase> {};
TEST_P(DateFormatOf, IsThatOfTheRow) {
  EXPECT_EQ(votes_of(GetParam().cells).format(), GetParam().format);
}

TEST_P(DateFormatOf, FitsAllCells) {
  const DateVotes votes = votes_of(GetParam().cells);
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_TRUE(votes.fits(*read_date(cell))) << readable(cell);
  }
}

// --- the patterns, read by others --------------------------------------------------------------

// Milliseconds since 1970 of "2024-01-31T15:04:05.250" or its beginning, in UTC.
double milliseconds_of(const std::string& local) {
  std::tm parts{};
  double seconds = 0;
  std::sscanf(local.c_str(), "%d-%d-%dT%d:%d:%lf", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
              &parts.tm_hour, &parts.tm_min, &seconds);
  parts.tm_year -= 1900;
  parts.tm_mon -= 1;
  return 1000.0 * static_cast<double>(timegm(&parts)) + 1000.0 * seconds;
}

// Strictly, the whole text; none if the pattern does not read it.
std::optional<double> read_by_icu(const DateFormat& format, const std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::UnicodeString pattern = icu::UnicodeString::fromUTF8(format.icu);
  const std::string locale = format.language.empty() ? "en" : format.language;
  const icu::LocalUDateFormatPointer reader(udat_open(UDAT_PATTERN, UDAT_PATTERN, locale.c_str(),
                                                      u"Etc/UTC", -1, pattern.getBuffer(),
                                                      pattern.length(), &status));
  udat_setLenient(reader.getAlias(), false);
  int32_t end = 0;
  const auto size = static_cast<int32_t>(text.size());
  const double value = udat_parse(reader.getAlias(), text.data(), size, &end, &status);
  if (U_FAILURE(status) || end != size) return std::nullopt;
  return value;
}

bool reads_zone(std::string_view icu_pattern) {
  bool is_quoted = false;
  for (const char unit : icu_pattern) {
    if (unit == '\'') is_quoted = !is_quoted;
    if (!is_quoted && (unit == 'X' || unit == 'z')) return true;
  }
  return false;
}

TEST_P(DateFormatOf, IsReadByIcu) {
  const FormatCase& row = GetParam();
  if (row.format.icu.empty()) return;
  const double offset = reads_zone(row.format.icu) ? 60000.0 * row.offset : 0;
  const auto value = read_by_icu(row.format, row.cells.front());
  ASSERT_TRUE(value) << readable(row.cells.front());
  EXPECT_EQ(*value, milliseconds_of(row.local) - offset);
  for (const std::u16string& cell : row.cells) {
    EXPECT_TRUE(read_by_icu(row.format, cell)) << readable(cell);
  }
}

// Only English, the language of the locale "C". C has no fraction of a second: the pattern is read
// up to it, and from there on.
const char* read_by_c(const char* text, const std::string& pattern, std::tm& parts) {
  const std::size_t fraction = pattern.find("%f");
  text = strptime(text, pattern.substr(0, fraction).c_str(), &parts);
  if (text == nullptr || fraction == std::string::npos) return text;
  while (*text >= '0' && *text <= '9') ++text;
  return strptime(text, pattern.substr(fraction + 2).c_str(), &parts);
}

TEST_P(DateFormatOf, IsReadByC) {
  const FormatCase& row = GetParam();
  const bool has_c_names = row.format.language.empty() || row.format.language == "en";
  if (row.format.strptime.empty() || !has_c_names) return;
  for (const std::u16string& cell : row.cells) {
    std::tm parts{};
    parts.tm_year = 70;
    parts.tm_mday = 1;
    const std::string text = to_utf8_lossy(cell);
    const char* const end = read_by_c(text.c_str(), row.format.strptime, parts);
    ASSERT_TRUE(end != nullptr && *end == '\0') << readable(cell);
    if (&cell != &row.cells.front()) continue;
    const double whole_seconds = milliseconds_of(row.local.substr(0, 19));
    EXPECT_EQ(1000.0 * static_cast<double>(timegm(&parts)), whole_seconds);
  }
}

INSTANTIATE_TEST_SUITE_P(Dates, DateFormatOf, testing::ValuesIn(kDates), ByRule());
INSTANTIATE_TEST_SUITE_P(Names, DateFormatOf, testing::ValuesIn(kNames), ByRule());
INSTANTIATE_TEST_SUITE_P(Times, DateFormatOf, testing::ValuesIn(kTimes), ByRule());

// --- columns without one pattern ---------------------------------------------------------------

struct PatternlessCase {
  const char* rule;
  std::vector<std::u16string> cells;
};
std::ostream& operator<<(std::ostream& out, const PatternlessCase& row) { return out << row.rule; }

const PatternlessCase kPatternless[] = {
    {"TwoStyles", {u"2024-01-31", u"31.01.2024"}},
    {"FractionsInSomeCells", {u"15:04:05", u"15:04:05.25"}},
    {"TwoLanguages", {u"31 Oct 2024", u"31 Okt 2024"}},
    {"OffsetsInTwoForms", {u"15:04+01:00", u"15:04+0100"}},
    {"Ordinals",
     {u"1st January 2024", u"2nd January 2024", u"3rd January 2024", u"4th January 2024"}},
    {"NineStyles",
     {u"2024-01-31", u"2024/01/31", u"2024.01.31", u"20240131", u"31.01.2024", u"31/01/2024",
      u"31-01-2024", u"31 Jan 2024", u"Jan 31, 2024"}},
    {"HalfDaysWithPoints", {u"3:04 p.m.", u"4:05 a.m."}},
    {"EndOfTheDay", {u"24:00"}},
    {"LeapSecond", {u"23:59:60"}},
    {"TwoLanguagesOfWeekdays", {u"Mon 2024-01-01", u"Di 2024-01-02"}},
    {"LongAndShortMonths", {u"31 January 2024", u"01 Feb 2024"}},
};

class Patternless : public testing::TestWithParam<PatternlessCase> {};
TEST_P(Patternless, HasNoPatternAndFitsEverywhere) {
  const DateVotes votes = votes_of(GetParam().cells);
  EXPECT_EQ(votes.format().strptime, "");
  EXPECT_EQ(votes.format().icu, "");
  EXPECT_TRUE(votes.fits_without_parts());
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_TRUE(votes.fits(*read_date(cell))) << readable(cell);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, Patternless, testing::ValuesIn(kPatternless), ByRule());

// --- odd cells ---------------------------------------------------------------------------------

struct OddCase {
  const char* rule;
  std::vector<std::u16string> cells;
  std::u16string odd;
  DateOrder order;
};
std::ostream& operator<<(std::ostream& out, const OddCase& row) { return out << row.rule; }

const OddCase kOdd[] = {
    {"AnotherStyle",
     {u"2024-01-31", u"2024-02-01", u"2024-02-02", u"31.01.2024"},
     u"31.01.2024",
     kYear},
    {"NoDayOfTheCalendar", {u"2024-01-31", u"2024-02-30"}, u"2024-02-30", kYear},
    {"NoLeapYear", {u"2024-02-29", u"2023-02-29"}, u"2023-02-29", kYear},
    {"MonthFirstAmongDaysFirst",
     {u"31/01/2024", u"30/01/2024", u"01/31/2024"},
     u"01/31/2024",
     kDay},
    {"DayFirstAmongMonthsFirst",
     {u"01/31/2024", u"01/30/2024", u"31/01/2024"},
     u"31/01/2024",
     kMonth},
    {"AnOrdinal",
     {u"31 May 2024", u"30 May 2024", u"29 May 2024", u"1st May 2024"},
     u"1st May 2024",
     kNone},
};

class OddDate : public testing::TestWithParam<OddCase> {};
TEST_P(OddDate, DoesNotFit) {
  const DateVotes votes = votes_of(GetParam().cells);
  EXPECT_EQ(votes.format().order, GetParam().order);
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_EQ(votes.fits(*read_date(cell)), cell != GetParam().odd) << readable(cell);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, OddDate, testing::ValuesIn(kOdd), ByRule());

// --- hints -------------------------------------------------------------------------------------

struct OrderCase {
  const char* rule;
  std::vector<std::u16string> cells;
  OrderHints hints;
  DateOrder order;
};
std::ostream& operator<<(std::ostream& out, const OrderCase& row) { return out << row.rule; }

const OrderCase kOrders[] = {
    {"TableDecidesForAmbiguous", {u"01/02/2024"}, {kMonth, false}, kMonth},
    {"CellsOverruleTheTable", {u"31/01/2024"}, {kMonth, false}, kDay},
    {"PointsOverruleTheTable", {u"01.02.2024"}, {kMonth, false}, kDay},
    {"GivenOrderOverrulesThePoints", {u"01.02.2024"}, {kMonth, true}, kMonth},
    {"GivenOrderOverrulesTheCells", {u"31/01/2024"}, {kMonth, true}, kMonth},
    {"YearFirstOfThreeShortNumbers", {u"01-02-03"}, {kYear, false}, kYear},
    {"GivenYearFirst", {u"01-02-03"}, {kYear, true}, kYear},
    {"YearLastOfThreeShortNumbers", {u"01-02-75"}, {kYear, false}, kEither},
    {"TableDecidesForTheDay", {u"01/02/2024"}, {kDay, false}, kDay},
    {"ThreeEqualDatesSayNothing", {u"01-02-03", u"01-02-03", u"01-02-03"}, {kNone, false}, kEither},
    {"NamesHaveNoOrder", {u"1 Jan 2024"}, {kMonth, true}, kNone},
};

class DateOrderByHints : public testing::TestWithParam<OrderCase> {};
TEST_P(DateOrderByHints, IsThatOfTheRow) {
  EXPECT_EQ(votes_of(GetParam().cells, GetParam().hints).format().order, GetParam().order);
}
INSTANTIATE_TEST_SUITE_P(Table, DateOrderByHints, testing::ValuesIn(kOrders), ByRule());

// --- parts of patterns -------------------------------------------------------------------------

TEST(DatePattern, HasShortMinutesOfAClockWithoutHours) {
  EXPECT_EQ(votes_of({u"9:12.5"}).format().icu, "m:ss.S");
  EXPECT_EQ(votes_of({u"9:12.5"}).format().strptime, "%M:%S.%f");
}

TEST(DatePattern, QuotesAZoneInAnotherLanguage) {
  const DateFormat format = votes_of({u"31. Januar 2024 15:04 EST"}).format();
  EXPECT_EQ(format.icu, "dd. MMMM yyyy HH:mm 'EST'");
  EXPECT_EQ(format.strptime, "%d. %B %Y %H:%M EST");
}

TEST(DatePattern, IsNoneWhereOnlySomeNamesHavePoints) {
  const DateFormat format = votes_of({u"Mon 1 Jan 2024", u"Tue. 2 Jan. 2024"}).format();
  EXPECT_EQ(format.icu, "");
  EXPECT_EQ(format.strptime, "");
}

TEST(DateOrderName, HasHyphens) {
  EXPECT_EQ(to_string(DateOrder::none), "none");
  EXPECT_EQ(to_string(DateOrder::year_first), "year-first");
  EXPECT_EQ(to_string(DateOrder::day_first), "day-first");
  EXPECT_EQ(to_string(DateOrder::month_first), "month-first");
  EXPECT_EQ(to_string(DateOrder::ambiguous), "ambiguous");
}

TEST(DateVotesOfNothing, HaveNoFormat) {
  DateVotes votes;
  votes.settle({});
  EXPECT_EQ(votes.format(), DateFormat());
}

}  // namespace
}  // namespace textio::columns
