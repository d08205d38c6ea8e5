#include "tool/writing/value_text.hpp"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include "support/batches.hpp"
#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;
using testing_support::ByRule;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kHour = 3600 * kSecond;
constexpr std::int64_t kDay = 24 * kHour;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct RealCase {
  const char* rule;
  double number;
  const char* text;
};
std::ostream& operator<<(std::ostream& out, const RealCase& row) { return out << row.rule; }

const RealCase kReals[] = {
    {"Whole", 12.0, "12"},
    {"Shortest", 0.1, "0.1"},
    {"ThirdHasAllItsDigits", 1.0 / 3, "0.3333333333333333"},
    {"Negative", -12.75, "-12.75"},
    {"MinusZeroKeepsItsSign", -0.0, "-0"},
    {"ManyZerosWithoutExponent", 1e5, "100000"},
    {"LargestWithoutExponent", 9999999999999998.0, "9999999999999998"},
    {"SmallestWithExponent", 1e16, "1e+16"},
    {"SmallWithoutExponent", 0.00001, "0.00001"},
    {"SmallerWithExponent", 0.000009, "9e-06"},
    {"Largest", std::numeric_limits<double>::max(), "1.7976931348623157e+308"},
    {"Least", std::numeric_limits<double>::denorm_min(), "5e-324"},
    {"NotANumber", std::nan(""), "NaN"},
    {"NotANumberHasNoSign", -std::nan(""), "NaN"},
    {"Infinite", kInfinity, "Inf"},
    {"InfiniteBelow", -kInfinity, "-Inf"},
};

class AppendReal : public testing::TestWithParam<RealCase> {};
TEST_P(AppendReal, WritesTheShortestText) {
  std::string out = ">";
  append_real(out, GetParam().number);
  EXPECT_EQ(out, std::string(">") + GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, AppendReal, testing::ValuesIn(kReals), ByRule());

TEST(AppendRealProperty, IsReadBackAsTheSameNumber) {
  EXPECT_TRUE(rc::check([](std::uint64_t bits) {
    double number = 0;
    std::memcpy(&number, &bits, sizeof number);
    RC_PRE(std::isfinite(number));
    std::string out;
    append_real(out, number);
    RC_ASSERT(std::strtod(out.c_str(), nullptr) == number);
  }));
}

// --- dates ---------------------------------------------------------------------------------------

struct DateCase {
  const char* rule;
  std::int64_t days;
  const char* text;
};
std::ostream& operator<<(std::ostream& out, const DateCase& row) { return out << row.rule; }

// 1970 to 2000 are 30 years with 7 leap days; 1600 to 2000 are 146,097 days.
const DateCase kDates[] = {
    {"First", 0, "1970-01-01"},
    {"DayBefore", -1, "1969-12-31"},
    {"EndOfFebruary", 58, "1970-02-28"},
    {"BeginOfMarch", 59, "1970-03-01"},
    {"LeapDayOf2000", 10'957 + 59, "2000-02-29"},
    {"NoLeapDayIn1900", -25'567 + 59, "1900-03-01"},
    {"LeapDayOf1600", 10'957 - 146'097 + 59, "1600-02-29"},
    {"YearZero", 10'957 - 5 * 146'097, "0000-01-01"},
    {"YearBeforeZero", 10'957 - 5 * 146'097 - 1, "-0001-12-31"},
    {"LastOfFourDigits", 10'957 + 20 * 146'097 - 1, "9999-12-31"},
    {"FirstOfFiveDigits", 10'957 + 20 * 146'097, "+10000-01-01"},
};

class AppendDate : public testing::TestWithParam<DateCase> {};
TEST_P(AppendDate, WritesIso8601) {
  std::string out;
  append_date(out, GetParam().days);
  EXPECT_EQ(out, GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, AppendDate, testing::ValuesIn(kDates), ByRule());

struct MomentCase {
  const char* rule;
  ColumnType type;
  std::int64_t microseconds;
  const char* text;
};
std::ostream& operator<<(std::ostream& out, const MomentCase& row) { return out << row.rule; }

const MomentCase kMoments[] = {
    {"Midnight", ColumnType::time, 0, "00:00:00"},
    {"LastOfADay", ColumnType::time, kDay - 1, "23:59:59.999999"},
    {"FractionWithoutZerosAtItsEnd", ColumnType::time, kSecond / 2, "00:00:00.5"},
    {"FractionWithZerosAtItsStart", ColumnType::time, 1200, "00:00:00.0012"},
    {"EndOfDay", ColumnType::time, kDay, "24:00:00"},
    {"Epoch", ColumnType::date_time, 0, "1970-01-01T00:00:00"},
    {"JustBefore", ColumnType::date_time, -1, "1969-12-31T23:59:59.999999"},
    {"DayBefore", ColumnType::date_time, -kDay, "1969-12-31T00:00:00"},
    {"Later", ColumnType::date_time, kDay + 25 * kHour + 90 * kSecond, "1970-01-03T01:01:30"},
    {"NoDuration", ColumnType::duration, 0, "PT0S"},
    {"AllParts", ColumnType::duration, kHour + 123 * kSecond + kSecond / 2, "PT1H2M3.5S"},
    {"HoursAlone", ColumnType::duration, 26 * kHour, "PT26H"},
    {"NoMinutes", ColumnType::duration, kHour + kSecond, "PT1H1S"},
    {"FractionAlone", ColumnType::duration, 1, "PT0.000001S"},
    {"Backwards", ColumnType::duration, -90 * kSecond, "-PT1M30S"},
    {"Shortest", ColumnType::duration, std::numeric_limits<std::int64_t>::min(),
     "-PT2562047788H54.775808S"},
};

class AppendMoment : public testing::TestWithParam<MomentCase> {};
TEST_P(AppendMoment, WritesIso8601) {
  std::string out;
  append_value(out, testing_support::integers({GetParam().microseconds}, GetParam().type), 0);
  EXPECT_EQ(out, GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, AppendMoment, testing::ValuesIn(kMoments), ByRule());

TEST(AppendDateTime, HasAZoneInUtc) {
  std::string out;
  append_date_time(out, kSecond / 4, true);
  EXPECT_EQ(out, "1970-01-01T00:00:00.25Z");
}

TEST(AppendInteger, WritesAllDigits) {
  std::string out;
  append_integer(out, std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(out, "-9223372036854775808");
}

}  // namespace
}  // namespace textio::tool
