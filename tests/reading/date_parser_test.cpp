#include <vltextstream/reading/date_parser.hpp>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using columns::DateOrder;
using testing_support::ByRule;
using testing_support::ExactText;

// --- dates ---------------------------------------------------------------------------------------

struct DateCase {
  const char* rule;
  DateRules rules;
  std::u16string cell;
  std::optional<std::int32_t> days;
};
std::ostream& operator<<(std::ostream& out, const DateCase& row) { return out << row.rule; }

const DateRules kIso{"%Y-%m-%d", DateOrder::year_first};
const DateRules kPoints{"%d.%m.%Y", DateOrder::day_first};
const DateRules kDayFirst{"%d/%m/%Y", DateOrder::day_first};
const DateRules kMonthFirst{"%m/%d/%Y", DateOrder::month_first};
const DateRules kAmbiguous{"%d/%m/%Y", DateOrder::ambiguous};
const DateRules kNamed{"%d %b %Y", DateOrder::none};
const DateRules kMixed{"", DateOrder::none};

constexpr std::int32_t kJanuary31 = 19753;  // of 2024
constexpr std::int32_t kFebruary1 = 19754;  // of 2024
constexpr std::int32_t kJanuary2 = 19724;   // of 2024

const DateCase kDates[] = {
    {"FirstDay", kIso, u"1970-01-01", 0},
    {"DayBefore", kIso, u"1969-12-31", -1},
    {"January", kIso, u"2024-01-31", kJanuary31},
    {"LeapDay", kIso, u"2024-02-29", 19782},
    {"DayAfterLeapDay", kIso, u"2024-03-01", 19783},
    {"LeapDayOfNoLeapYear", kIso, u"2023-02-29", {}},
    {"LeapDayOfACentury", kIso, u"1900-02-29", {}},
    {"MarchOfACentury", kIso, u"1900-03-01", -25508},
    {"LeapDayOfFourCenturies", kIso, u"2000-02-29", 11016},
    {"MarchOfALaterCentury", kIso, u"2100-03-01", 47541},
    {"LastDayOfMillennium", kIso, u"1999-12-31", 10956},
    {"YearOne", kIso, u"0001-01-01", -719162},
    {"YearZero", kIso, u"0000-03-01", -719468},
    {"LastYear", kIso, u"9999-12-31", 2932896},
    {"FebruaryHasNo30th", kIso, u"2024-02-30", {}},
    {"AprilHasNo31st", kIso, u"2024-04-31", {}},
    {"NoDayZero", kIso, u"2024-01-00", {}},
    {"NoDay32", kIso, u"2024-01-32", {}},
    {"NoMonthZero", kIso, u"2024-00-01", {}},
    {"NoMonth13", kIso, u"2024-13-01", {}},
    {"FewerDigits", kIso, u"2024-1-31", kJanuary31},
    {"OtherMarks", kIso, u"2024/01/31", kJanuary31},
    {"LetterForADigit", kIso, u"2024-O1-31", {}},
    {"MoreAfterIt", kIso, u"2024-01-311", {}},
    {"LessThanAll", kIso, u"2024-01", kJanuary31 - 30},
    {"TimeAfterIt", kIso, u"2024-01-31 10:00", {}},
    {"DigitsAlone", kIso, u"20240131", kJanuary31},
    {"PointsAmongIso", kIso, u"31.01.2024", kJanuary31},
    {"SurelyDayFirstAmongIso", kIso, u"31/01/2024", kJanuary31},
    {"SurelyMonthFirstAmongIso", kIso, u"01/31/2024", kJanuary31},
    {"EitherAmongIso", kIso, u"01/02/2024", {}},
    {"SameBothWaysAmongIso", kIso, u"01/01/2024", kJanuary31 - 30},
    {"MonthBeforeDay", {"%Y-%d-%m", DateOrder::year_first}, u"2024-31-01", kJanuary31},
    {"MonthBeforeDayOtherwise", {"%Y-%d-%m", DateOrder::year_first}, u"2024/01/02", kFebruary1},

    {"Points", kPoints, u"31.01.2024", kJanuary31},
    {"PointsAndFewDigits", kPoints, u"1.2.2024", kFebruary1},
    {"PointsAndBlanks", kPoints, u"1. 2. 2024", kFebruary1},
    {"IsoAmongPoints", kPoints, u"2024-01-31", kJanuary31},
    {"NameAmongPoints", kPoints, u"31. Januar 2024", kJanuary31},
    {"SlashesAmongPoints", kPoints, u"01/02/2024", kFebruary1},

    {"DayFirst", kDayFirst, u"01/02/2024", kFebruary1},
    {"DayFirstOtherwise", kDayFirst, u"01-02-2024", kFebruary1},
    {"MonthFirstInDayFirst", kDayFirst, u"01/31/2024", {}},
    {"MonthFirst", kMonthFirst, u"02/01/2024", kFebruary1},
    {"MonthFirstWithFewDigits", kMonthFirst, u"2/1/2024", kFebruary1},
    {"MonthFirstOtherwise", kMonthFirst, u"2-1-2024", kFebruary1},
    {"DayFirstInMonthFirst", kMonthFirst, u"31/01/2024", {}},
    {"AmbiguousIsDayFirst", kAmbiguous, u"01/02/2024", kFebruary1},
    {"AmbiguousStaysDayFirst", kAmbiguous, u"01/31/2024", {}},

    {"TwoDigitsOfTheLastCentury", {"%d.%m.%y", DateOrder::day_first}, u"31.12.69", -1},
    {"TwoDigitsOfThisCentury", {"%d.%m.%y", DateOrder::day_first}, u"01.01.68", 35794},
    {"TwoDigitsYearFirst", {"%y-%m-%d", DateOrder::year_first}, u"99-12-31", 10956},
    {"FourDigitsAmongTwo", {"%d.%m.%y", DateOrder::day_first}, u"31.01.2024", kJanuary31},
    {"OneDigitIsNoYear", {"%d.%m.%y", DateOrder::day_first}, u"31.01.4", {}},

    {"English", kNamed, u"31 Jan 2024", kJanuary31},
    {"EnglishInFull", {"%d %B %Y", DateOrder::none}, u"1 February 2024", kFebruary1},
    {"EnglishMonthFirst", {"%b %d, %Y", DateOrder::none}, u"Feb 1, 2024", kFebruary1},
    {"AnyCase", kNamed, u"31 JAN 2024", kJanuary31},
    {"German", {"%d. %B %Y", DateOrder::none}, u"1. M\u00E4rz 2024", 19783},
    {"GermanWithPoint", {"%d. %b. %Y", DateOrder::none}, u"31. Okt. 2023", 19661},
    {"French", {"%d %B %Y", DateOrder::none}, u"2 ao\u00FBt 2023", 19571},
    {"FrenchWithWeekday",
     {"%A %d %B %Y", DateOrder::none},
     u"mercredi 31 janvier 2024",
     kJanuary31},
    {"Weekday", {"%a, %d %b %Y", DateOrder::none}, u"Wed, 31 Jan 2024", kJanuary31},
    {"NoWeekday", {"%a, %d %b %Y", DateOrder::none}, u"Foo, 31 Jan 2024", {}},
    {"NoMonth", kNamed, u"31 Foo 2024", {}},
    {"NamedDayThatIsNone", kNamed, u"31 Feb 2024", {}},
    {"Ordinal", kNamed, u"31st January 2024", kJanuary31},
    {"AustrianJanuary", kMixed, u"31. J\u00E4nner 2024", kJanuary31},
    {"EastAsian",
     {"%Y\xE5\xB9\xB4%m\xE6\x9C\x88%d\xE6\x97\xA5", DateOrder::year_first},
     u"2024\u5E741\u670831\u65E5",
     kJanuary31},
    {"MonthAlone", {"%Y-%m", DateOrder::year_first}, u"2024-02", kFebruary1},
    {"NamedMonthAlone", {"%b %Y", DateOrder::none}, u"Feb 2024", kFebruary1},
    {"WithoutYear", {"%d %b", DateOrder::none}, u"31 Jan", {}},
    {"BlanksCountAsOne", kNamed, u"31  Jan\u00A02024", kJanuary31},

    {"MixedIso", kMixed, u"2024-01-31", kJanuary31},
    {"MixedPoints", kMixed, u"31.01.2024", kJanuary31},
    {"MixedDayFirst", kMixed, u"31/01/2024", kJanuary31},
    {"MixedMonthFirst", kMixed, u"01/31/2024", kJanuary31},
    {"MixedEither", kMixed, u"02/01/2024", kJanuary2},
    {"MixedEitherByOrder", {"", DateOrder::month_first}, u"02/01/2024", kFebruary1},
    {"MixedDayThatIsNone", kMixed, u"2024-02-30", {}},
    {"MixedThree", kMixed, u"31-01-24", kJanuary31},
    {"UnknownDirective", {"%Y-%j", DateOrder::year_first}, u"2024-01-31", kJanuary31},
    {"PercentAtTheEnd", {"%Y-%m-%", DateOrder::year_first}, u"2024-01-31", kJanuary31},
    {"DigitsOfArabic", kIso, u"\u0662\u0660\u0662\u0664-01-31", kJanuary31},
    {"Word", kIso, u"yesterday", {}},
    {"Number", kIso, u"12", {}},
};

class DateParserDate : public testing::TestWithParam<DateCase> {};

TEST_P(DateParserDate, IsADayOfTheCalendarOrRefused) {
  DateParser parser(GetParam().rules);
  std::int32_t days = -77'777;
  const bool was_read = parser.date(ExactText(GetParam().cell).view(), days);
  EXPECT_EQ(was_read, GetParam().days.has_value());
  EXPECT_EQ(days, GetParam().days.value_or(-77'777));
}

INSTANTIATE_TEST_SUITE_P(Table, DateParserDate, testing::ValuesIn(kDates), ByRule());

// Each day from 1600 to 2400 follows the one before it.
TEST(DateParserDays, FollowOneAnother) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  std::int32_t expected = days_until(1600, 1, 1);
  EXPECT_EQ(expected, -135'140);
  for (int year = 1600; year <= 2400; ++year) {
    const bool is_leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    for (int month = 1; month <= 12; ++month) {
      const int days = kDays[month - 1] + (month == 2 && is_leap ? 1 : 0);
      for (int day = 1; day <= days; ++day) ASSERT_EQ(days_until(year, month, day), expected++);
    }
  }
}

// --- times of day --------------------------------------------------------------------------------

constexpr std::int64_t at(int hour, int minute, int second, int microsecond = 0) {
  return ((hour * std::int64_t{60} + minute) * 60 + second) * kMicroseconds + microsecond;
}

struct TimeCase {
  const char* rule;
  std::string strptime;
  std::u16string cell;
  std::optional<std::int64_t> time;
};
std::ostream& operator<<(std::ostream& out, const TimeCase& row) { return out << row.rule; }

const TimeCase kTimes[] = {
    {"Minutes", "%H:%M", u"15:04", at(15, 4, 0)},
    {"OneDigit", "%H:%M", u"9:05", at(9, 5, 0)},
    {"Seconds", "%H:%M:%S", u"15:04:05", at(15, 4, 5)},
    {"SecondsAmongMinutes", "%H:%M", u"15:04:05", at(15, 4, 5)},
    {"Fraction", "%H:%M:%S.%f", u"15:04:05.25", at(15, 4, 5, 250'000)},
    {"FractionAfterComma", "%H:%M:%S,%f", u"15:04:05,000001", at(15, 4, 5, 1)},
    {"Nanoseconds", "", u"15:04:05.123456789", at(15, 4, 5, 123'456)},
    {"Digits", "%H%M", u"0930", at(9, 30, 0)},
    {"DigitsWithSeconds", "%H%M%S", u"235959", at(23, 59, 59)},
    {"HalfDay", "%I:%M %p", u"3:04 PM", at(15, 4, 0)},
    {"Noon", "%I:%M %p", u"12:00 pm", at(12, 0, 0)},
    {"Midnight", "%I:%M %p", u"12:30 AM", at(0, 30, 0)},
    {"HalfDayWithPoints", "", u"11:30 p.m.", at(23, 30, 0)},
    {"HourAndHalfDay", "%I%p", u"5pm", at(17, 0, 0)},
    {"NoHourZeroOfHalfDays", "%I:%M %p", u"0:30 AM", {}},
    {"NoHour13OfHalfDays", "%I:%M %p", u"13:30 PM", {}},
    {"EndOfTheDay", "%H:%M", u"24:00", at(24, 0, 0)},
    {"AfterTheEndOfTheDay", "%H:%M", u"24:01", {}},
    {"Hour25", "%H:%M", u"25:00", {}},
    {"Minute60", "%H:%M", u"10:60", {}},
    {"LeapSecond", "%H:%M:%S", u"23:59:60", at(24, 0, 0)},
    {"Second61", "%H:%M:%S", u"23:59:61", {}},
    {"ZoneIsLeftOut", "%H:%M%z", u"15:04+01:00", at(15, 4, 0)},
    {"DateIsNoTime", "%H:%M", u"2024-01-31", {}},
    {"DateAndTimeIsNoTime", "%H:%M", u"2024-01-31 15:04", {}},
    {"MinutesAndSecondsMeasure", "%H:%M", u"3:05.12", {}},
};

class DateParserTime : public testing::TestWithParam<TimeCase> {};

TEST_P(DateParserTime, IsSinceMidnightOrRefused) {
  DateParser parser({GetParam().strptime, DateOrder::none});
  std::int64_t time = -77;
  const bool was_read = parser.time(ExactText(GetParam().cell).view(), time);
  EXPECT_EQ(was_read, GetParam().time.has_value());
  EXPECT_EQ(time, GetParam().time.value_or(-77));
}

INSTANTIATE_TEST_SUITE_P(Table, DateParserTime, testing::ValuesIn(kTimes), ByRule());

// --- moments -------------------------------------------------------------------------------------

constexpr std::int64_t on_january_31(std::int64_t time) {
  return kJanuary31 * kMicrosecondsOfDay + time;
}

struct MomentCase {
  const char* rule;
  std::string strptime;
  std::u16string cell;
  std::optional<std::int64_t> moment;
  bool is_utc = false;
  bool has_zone = false;  // of the rules
};
std::ostream& operator<<(std::ostream& out, const MomentCase& row) { return out << row.rule; }

constexpr const char* kSeconds = "%Y-%m-%d %H:%M:%S";
constexpr const char* kWithZone = "%Y-%m-%dT%H:%M:%S%z";

const MomentCase kMoments[] = {
    {"Seconds", kSeconds, u"2024-01-31 15:04:05", on_january_31(at(15, 4, 5))},
    {"Minutes", "%Y-%m-%d %H:%M", u"2024-01-31 15:04", on_january_31(at(15, 4, 0))},
    {"BeforeTheEpoch", kSeconds, u"1969-12-31 23:59:59", -kMicroseconds},
    {"MinutesAmongSeconds", kSeconds, u"2024-01-31 15:04", on_january_31(at(15, 4, 0))},
    {"DateAmongSeconds", kSeconds, u"2024-01-31", on_january_31(0)},
    {"FractionAmongSeconds", kSeconds, u"2024-01-31 15:04:05.5",
     on_january_31(at(15, 4, 5, 500'000))},
    {"LetterTAmongSeconds", kSeconds, u"2024-01-31T15:04:05", on_january_31(at(15, 4, 5))},
    {"DayFirst", "%d.%m.%Y %H:%M", u"31.01.2024 15:04", on_january_31(at(15, 4, 0))},
    {"HalfDay", "%m/%d/%Y %I:%M %p", u"1/31/2024 3:04 PM", on_january_31(at(15, 4, 0))},
    {"HalfDayOfTwoDigits", "%m/%d/%Y %I:%M %p", u"01/31/2024 12:04 AM", on_january_31(at(0, 4, 0))},
    {"DigitsAlone", "%Y%m%d%H%M%S", u"20240131150405", on_january_31(at(15, 4, 5))},
    {"EndOfTheDay", kSeconds, u"2024-01-31 24:00:00", on_january_31(at(24, 0, 0))},
    {"AfterTheEndOfTheDay", kSeconds, u"2024-01-31 24:00:01", {}},
    {"LeapSecond", kSeconds, u"2024-01-31 23:59:60", on_january_31(at(24, 0, 0))},
    {"Minute60", kSeconds, u"2024-01-31 15:60:00", {}},
    {"DayThatIsNone", kSeconds, u"2024-02-30 15:04:05", {}},
    {"TimeAlone", kSeconds, u"15:04:05", {}},
    {"Nanoseconds", "", u"2024-01-31 15:04:05.123456789", on_january_31(at(15, 4, 5, 123'456))},
    {"ClockOfC", "%a %b %d %H:%M:%S %Y", u"Wed Jan 31 15:04:05 2024", on_january_31(at(15, 4, 5))},

    {"Zulu", kWithZone, u"2024-01-31T15:04:05Z", on_january_31(at(15, 4, 5)), true},
    {"East", kWithZone, u"2024-01-31T15:04:05+01:30", on_january_31(at(13, 34, 5)), true},
    {"West", kWithZone, u"2024-01-31T15:04:05-0800", on_january_31(at(23, 4, 5)), true},
    {"HoursAlone", kWithZone, u"2024-01-31T15:04:05+02", on_january_31(at(13, 4, 5)), true},
    {"TypographicMinus", kWithZone, u"2024-01-31T15:04:05\u221202:00", on_january_31(at(17, 4, 5)),
     true},
    {"NoZoneAmongZones", kWithZone, u"2024-01-31T15:04:05", on_january_31(at(15, 4, 5)), true},
    {"FifteenHours", kWithZone, u"2024-01-31T15:04:05+15:00", {}, true},
    {"SixtyMinutes", kWithZone, u"2024-01-31T15:04:05+01:60", {}, true},
    {"FractionAndZone", "%Y-%m-%dT%H:%M:%S.%f%z", u"2024-01-31T15:04:05.250+01:00",
     on_january_31(at(14, 4, 5, 250'000)), true},
    {"NamedZone", "%a, %d %b %Y %H:%M:%S %Z", u"Wed, 31 Jan 2024 15:04:05 GMT",
     on_january_31(at(15, 4, 5)), true},
    {"ZoneInThePattern", "%Y-%m-%d %H:%M CET", u"2024-01-31 15:04 CET", on_january_31(at(14, 4, 0)),
     true},
    {"OtherZoneThanInThePattern", "%Y-%m-%d %H:%M CET", u"2024-01-31 15:04 EST",
     on_january_31(at(20, 4, 0)), true},
    {"UnknownZone", "%Y-%m-%d %H:%M %Z", u"2024-01-31 15:04 QQT", {}, true},
    {"ZoneAmongLocalTimes", kSeconds, u"2024-01-31 15:04:05Z", {}},
    {"ZoneWithoutPattern", "", u"2024-01-31 15:04:05+01:00", on_january_31(at(14, 4, 5)), true},
    {"NoZoneAmongZonesWithoutPattern", "", u"2024-01-31 15:04:05", on_january_31(at(15, 4, 5)),
     true, true},
    {"NoZoneWithoutPattern", "", u"2024-01-31 15:04:05", on_january_31(at(15, 4, 5)), false},
};

class DateParserMoment : public testing::TestWithParam<MomentCase> {};

TEST_P(DateParserMoment, IsSince1970OrRefused) {
  DateParser parser({GetParam().strptime, DateOrder::none, GetParam().has_zone});
  std::int64_t moment = -77;
  const bool was_read = parser.date_time(ExactText(GetParam().cell).view(), moment);
  EXPECT_EQ(was_read, GetParam().moment.has_value());
  EXPECT_EQ(moment, GetParam().moment.value_or(-77));
  EXPECT_EQ(parser.is_utc(), GetParam().is_utc);
}

INSTANTIATE_TEST_SUITE_P(Table, DateParserMoment, testing::ValuesIn(kMoments), ByRule());

// Each name is found again, whichever shares its place.
TEST(DateParserNames, AreKeptApart) {
  DateParser parser({"%d %b %Y", DateOrder::none});
  constexpr const char16_t* kNames[] = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun", u"Jul",
                                        u"Aug", u"Sep", u"Oct", u"Nov", u"Dec", u"Dez", u"Mai"};
  constexpr int kMonths[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 12, 5};
  for (int round = 0; round < 3; ++round) {
    for (std::size_t i = 0; i < std::size(kNames); ++i) {
      std::int32_t days = 0;
      ASSERT_TRUE(parser.date(std::u16string(u"1 ") + kNames[i] + u" 2024", days));
      EXPECT_EQ(days, days_until(2024, kMonths[i], 1));
    }
  }
}

TEST(HasYear, LooksForItInThePattern) {
  EXPECT_TRUE(has_year("%Y-%m-%d"));
  EXPECT_TRUE(has_year("%d.%m.%y"));
  EXPECT_TRUE(has_year(""));
  EXPECT_FALSE(has_year("%d %b"));
}

}  // namespace
}  // namespace textio::reading
