#include <vltextstream/reading/duration_parser.hpp>

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

struct DurationCase {
  const char* rule;
  std::u16string cell;
  std::optional<std::int64_t> value;
};
std::ostream& operator<<(std::ostream& out, const DurationCase& row) { return out << row.rule; }

const DurationCase kDurations[] = {
    {"IsoMinutes", u"PT5M", 5 * kMinute},
    {"IsoDaysAndHours", u"P1DT2H", kDay + 2 * kHour},
    {"IsoWeeks", u"P2W", 14 * kDay},
    {"IsoYear", u"P1Y", 31'556'952 * kSecond},
    {"IsoMonthsBeforeTheT", u"P12M", 31'556'952 * kSecond},
    {"IsoFraction", u"PT1.5S", 1'500'000},
    {"IsoFractionAfterComma", u"PT0,25H", 15 * kMinute},
    {"IsoNegative", u"-PT5M", -5 * kMinute},
    {"IsoNothing", u"P", {}},
    {"IsoNothingAfterT", u"P1DT", {}},
    {"IsoTwice", u"PT1H1H", {}},
    {"IsoWrongOrder", u"PT5M1H", {}},
    {"IsoHoursBeforeT", u"P1H", {}},
    {"IsoMoreAfterIt", u"PT5M!", {}},

    {"Clock", u"36:15:00", 36 * kHour + 15 * kMinute},
    {"NegativeClock", u"-0:00:01", -kSecond},
    {"ClockWithFraction", u"100:00:00.000001", 100 * kHour + 1},
    {"FractionIsRounded", u"0:00:00.0000005", 1},
    {"HoursAndMinutes", u"36:15", 36 * kHour + 15 * kMinute},
    {"MinutesAndSeconds", u"3:05.12", 3 * kMinute + 5'120'000},
    {"Minute60", u"1:60:00", {}},
    {"Second61", u"1:00:61", {}},
    {"LeapSecond", u"23:59:60", kDay},
    {"OneDigitOfMinutes", u"1:5", {}},
    {"ThreeDigitsOfMinutes", u"1:005", {}},
    {"FourParts", u"1:02:03:04", {}},

    {"DaysAndHours", u"1d 2h", kDay + 2 * kHour},
    {"InFull", u"2 hours and 5 minutes", 2 * kHour + 5 * kMinute},
    {"AnyCase", u"2 Hours, 5 MIN", 2 * kHour + 5 * kMinute},
    {"WithoutBlanks", u"1h30m", kHour + 30 * kMinute},
    {"DaysAndClock", u"3 days, 4:05:06", 3 * kDay + 4 * kHour + 5 * kMinute + 6 * kSecond},
    {"DaysAndSignedClock", u"3 days +04:05:06", 3 * kDay + 4 * kHour + 5 * kMinute + 6 * kSecond},
    {"NegativeSum", u"-1d 2h", -(kDay + 2 * kHour)},
    {"Milliseconds", u"10 ms", 10'000},
    {"Fraction", u"1.5 h", kHour + 30 * kMinute},
    {"WrongOrder", u"2h 1d", {}},
    {"Twice", u"2h 1h", {}},
    {"ClockAfterHours", u"2h 1:00:00", {}},
    {"UnknownUnit", u"5 apples", {}},
    {"NumberAlone", u"5", {}},
    {"UnitAlone", u"h", {}},
    {"SignAlone", u"-", {}},
    {"Word", u"soon", {}},

    {"Longest", u"2562047788:00:54.775807", 9'223'372'036'854'775'807},
    {"OneMicrosecondMore", u"2562047788:00:54.775808", {}},
    {"FarMore", u"99999999999999999999:00:00", {}},
    {"ManyYears", u"P300000Y", {}},
};

class ReadDuration : public testing::TestWithParam<DurationCase> {};

TEST_P(ReadDuration, IsInMicrosecondsOrRefused) {
  std::int64_t value = -77;
  EXPECT_EQ(read_duration(ExactText(GetParam().cell).view(), value), GetParam().value.has_value());
  EXPECT_EQ(value, GetParam().value.value_or(-77));
}

INSTANTIATE_TEST_SUITE_P(Table, ReadDuration, testing::ValuesIn(kDurations), ByRule());

}  // namespace
}  // namespace textio::reading
