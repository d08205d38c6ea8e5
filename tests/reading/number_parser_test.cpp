#include <vltextstream/reading/number_parser.hpp>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <random>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using columns::ColumnKind;
using testing_support::ByRule;
using testing_support::ExactText;

constexpr auto kLeast = std::numeric_limits<std::int64_t>::min();
constexpr auto kMost = std::numeric_limits<std::int64_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

NumberRules marks(char16_t decimal, char16_t grouping, ColumnKind kind = ColumnKind::decimal) {
  return {decimal, grouping, u"eEdD", kind};
}

const NumberRules kPoint = marks(u'.', 0);
const NumberRules kComma = marks(u',', u'.');
const NumberRules kGrouped = marks(u'.', u',');

// --- integers ------------------------------------------------------------------------------------

struct IntegerCase {
  const char* rule;
  NumberRules rules;
  std::u16string cell;
  std::optional<std::int64_t> value;
};
std::ostream& operator<<(std::ostream& out, const IntegerCase& row) { return out << row.rule; }

const IntegerCase kIntegers[] = {
    {"OneDigit", kPoint, u"7", 7},
    {"TwoDigits", kPoint, u"42", 42},
    {"ThreeDigits", kPoint, u"123", 123},
    {"FourDigits", kPoint, u"1234", 1234},
    {"FiveDigits", kPoint, u"12345", 12345},
    {"SevenDigits", kPoint, u"1234567", 1234567},
    {"EightDigits", kPoint, u"12345678", 12345678},
    {"NineDigits", kPoint, u"123456789", 123456789},
    {"SixteenDigits", kPoint, u"1234567890123456", 1234567890123456},
    {"SeventeenDigits", kPoint, u"12345678901234567", 12345678901234567},
    {"Zero", kPoint, u"0", 0},
    {"MinusZero", kPoint, u"-0", 0},
    {"Plus", kPoint, u"+12", 12},
    {"Minus", kPoint, u"-12", -12},
    {"MinusOfTypography", kPoint, u"\u221212", -12},
    {"LeadingZeros", kPoint, u"007", 7},
    {"ManyLeadingZeros", kPoint, u"00000000000000000000000000007", 7},
    {"Most", kPoint, u"9223372036854775807", kMost},
    {"OneMoreThanMost", kPoint, u"9223372036854775808", {}},
    {"Least", kPoint, u"-9223372036854775808", kLeast},
    {"OneLessThanLeast", kPoint, u"-9223372036854775809", {}},
    {"Parentheses", kPoint, u"(12)", -12},
    {"DigitsOfArabic", kPoint, u"\u0661\u0662", 12},
    {"Grouped", kGrouped, u"1,234,567", 1234567},
    {"GroupedInIndia", kGrouped, u"1,23,456", 123456},
    {"GroupedAndNegative", kGrouped, u"-1,234", -1234},
    {"NotGroupedInAGroupedColumn", kGrouped, u"1234", 1234},
    {"GroupOfTwo", kGrouped, u"1,23", {}},
    {"GroupOfFour", kGrouped, u"1,2345", {}},
    {"FourBeforeAGroup", kGrouped, u"1234,567", {}},
    {"ZeroBeforeAGroup", kGrouped, u"0,123", {}},
    {"MarkAtTheEnd", kGrouped, u"1,234,", {}},
    {"MarkAtTheStart", kGrouped, u",123", {}},
    {"GroupedByPoints", kComma, u"1.234", 1234},
    {"GroupedByBlanks", marks(u',', u' '), u"1 234", 1234},
    {"GroupedByOtherBlanks", marks(u',', u' '), u"1\u00A0234\u00A0567", 1234567},
    {"GroupedByNarrowBlanks", marks(u',', 0x202F), u"1\u202F234", 1234},
    {"GroupedByApostrophes", marks(u'.', u'\''), u"1'234", 1234},
    {"GroupedByTypographicApostrophes", marks(u'.', u'\''), u"1\u2019234", 1234},
    {"GroupedWithoutAGroupingMark", kPoint, u"1,234", {}},
    {"OneMarkForBoth", marks(u'.', u'.'), u"1.234", 1234},
    {"Fraction", kPoint, u"1.0", {}},
    {"MarkWithoutFraction", kPoint, u"5.", {}},
    {"Exponent", kPoint, u"1e3", {}},
    {"Infinity", kPoint, u"inf", {}},
    {"NotANumber", kPoint, u"nan", {}},
    {"SignAlone", kPoint, u"-", {}},
    {"TwoSigns", kPoint, u"--1", {}},
    {"LetterAtTheEnd", kPoint, u"12a", {}},
    {"LetterAmongEight", kPoint, u"1234a678", {}},
    {"LetterAmongSixteen", kPoint, u"123456789012a456", {}},
    {"UnitThatIsADigitInItsLowByte", kPoint, u"1\u0132", {}},
    {"SlashIsBeforeZero", kPoint, u"12/4", {}},
    {"ColonIsAfterNine", kPoint, u"12:45678", {}},
    {"Nul", kPoint, std::u16string(1, u'\0'), {}},
    {"PercentOfPercentages", marks(u'.', 0, ColumnKind::percentage), u"5 %", 5},
    {"PercentOfOthers", kPoint, u"5%", {}},
    {"MoneyWithDashes", marks(u'.', u'\'', ColumnKind::money), u"CHF 1'200.-", 1200},
};

class NumberParserInteger : public testing::TestWithParam<IntegerCase> {};

TEST_P(NumberParserInteger, IsExactOrRefused) {
  NumberParser parser(GetParam().rules);
  std::int64_t value = -77;
  const bool was_read = parser.integer(ExactText(GetParam().cell).view(), value);
  EXPECT_EQ(was_read, GetParam().value.has_value());
  EXPECT_EQ(value, GetParam().value.value_or(-77));
}

INSTANTIATE_TEST_SUITE_P(Table, NumberParserInteger, testing::ValuesIn(kIntegers), ByRule());

// --- reals ---------------------------------------------------------------------------------------

struct RealCase {
  const char* rule;
  NumberRules rules;
  std::u16string cell;
  std::optional<double> value;
};
std::ostream& operator<<(std::ostream& out, const RealCase& row) { return out << row.rule; }

const NumberRules kPercent = marks(u'.', u',', ColumnKind::percentage);
const NumberRules kMoney = marks(u'.', u',', ColumnKind::money);
const NumberRules kEuro = marks(u',', u'.', ColumnKind::money);

const RealCase kReals[] = {
    {"Whole", kPoint, u"12", 12.0},
    {"Short", kPoint, u"1.5", 1.5},
    {"WithoutWhole", kPoint, u".5", 0.5},
    {"WithoutFraction", kPoint, u"5.", 5.0},
    {"WithoutEither", kPoint, u".", {}},
    {"SevenDigitsAndMark", kPoint, u"1234.567", 1234.567},
    {"MarkInTheSecondWord", kPoint, u"1234567890.25", 1234567890.25},
    {"MarkInTheFirstWord", kPoint, u"1.5000000000", 1.5},
    {"MarkBetweenTheWords", kPoint, u"12345678.12345678", 12345678.12345678},
    {"MarkAtTheEndOfAWord", kPoint, u"1234567.", 1234567.0},
    {"MarkAtTheEndOfTwoWords", kPoint, u"123456789012345.", 123456789012345.0},
    {"MarkAtTheStartOfTwoWords", kPoint, u".123456789", 0.123456789},
    {"TwoMarks", kPoint, u"1.2.3", {}},
    {"TwoMarksInTwoWords", kPoint, u"1.2345678901.3", {}},
    {"Negative", kPoint, u"-1.5", -1.5},
    {"Positive", kPoint, u"+1.5", 1.5},
    {"NegativeZero", kPoint, u"-0", -0.0},
    {"NegativeZeroWithExponent", kPoint, u"-0e0", -0.0},
    {"LeadingZeros", kPoint, u"00.5", 0.5},
    {"TrailingMinus", kPoint, u"1.25-", -1.25},
    {"Parentheses", kGrouped, u"(1,234.50)", -1234.5},
    {"TypographicMinus", kPoint, u"\u22121.5", -1.5},
    {"Grouped", kGrouped, u"1,234,567.25", 1234567.25},
    {"GroupedInIndia", kGrouped, u"1,23,456.5", 123456.5},
    {"GroupOfTwo", kGrouped, u"1,23.5", {}},
    {"GroupAfterMark", kGrouped, u"1.234,567", {}},
    {"Comma", kComma, u"1,5", 1.5},
    {"CommaAndPoints", kComma, u"1.234,5", 1234.5},
    {"PointGroupsWhereItMayDoEither", kComma, u"1.234", 1234.0},
    {"PointThatCannotGroup", kComma, u"1.5", {}},
    {"CommaWithoutFraction", kComma, u"5,", {}},
    {"CommaInAColumnOfPoints", kPoint, u"1,5", {}},

    {"Exponent", kPoint, u"1e3", 1000.0},
    {"ExponentOfFortran", kPoint, u"1.5D-03", 0.0015},
    {"ExponentThatIsNotAmongThem", {u'.', 0, u"eE", ColumnKind::decimal}, u"1D3", {}},
    {"ExponentWithoutDigits", kPoint, u"1e", {}},
    {"ExponentOfFiveDigits", kPoint, u"1e00001", {}},
    {"ExponentWithAFraction", kPoint, u"1e1.5", {}},
    {"LargestPowerThatIsExact", kPoint, u"1e22", 1e22},
    {"SmallestPowerThatIsNot", kPoint, u"1e23", 1e23},

    {"MostExactInteger", kPoint, u"9007199254740992", 9007199254740992.0},
    {"HalfwayRoundsToEven", kPoint, u"9007199254740993", 9007199254740992.0},
    {"HalfwayRoundsUpToEven", kPoint, u"9007199254740995", 9007199254740996.0},
    {"JustAboveHalfway", kPoint, u"9007199254740993.0000000000000000000001", 9007199254740994.0},
    {"HalfwayFraction", kPoint, u"1.00000000000000011102230246251565404", 1.0},
    {"AboveHalfwayFraction", kPoint, u"1.00000000000000011102230246251565405", 1.0000000000000002},
    {"LargestDouble", kPoint, u"1.7976931348623157e308", std::numeric_limits<double>::max()},
    {"RoundsDownToTheLargest", kPoint, u"1.7976931348623158e308",
     std::numeric_limits<double>::max()},
    {"BeyondTheLargest", kPoint, u"1.7976931348623159e308", {}},
    {"FarBeyond", kPoint, u"1e400", {}},
    {"FarBeyondAndNegative", kPoint, u"-1e400", {}},
    {"BeyondWithManyDigits", kPoint, std::u16string(400, u'9'), {}},
    {"SmallestNormal", kPoint, u"2.2250738585072014e-308", 2.2250738585072014e-308},
    {"LargestSubnormal", kPoint, u"2.2250738585072011e-308", 2.2250738585072009e-308},
    {"SmallestSubnormal", kPoint, u"4.9e-324", 4.9e-324},
    {"HalfOfTheSmallest", kPoint, u"2.4703282292062327e-324", 0.0},
    {"MoreThanHalfOfTheSmallest", kPoint, u"2.4703282292062328e-324", 4.9e-324},
    {"FarBelow", kPoint, u"1e-400", 0.0},
    {"FarBelowAndNegative", kPoint, u"-1e-400", -0.0},
    {"FarBelowInAFraction", kPoint, u"0." + std::u16string(500, u'0') + u"1", 0.0},
    {"ManyZerosAndAnExponent", kPoint, u"0." + std::u16string(399, u'0') + u"1e401", 10.0},
    {"ZeroWithAHugeExponent", kPoint, u"0e9999", 0.0},
    {"ManyZerosAtTheStart", kPoint, std::u16string(100, u'0') + u"1.5", 1.5},

    {"Infinity", kPoint, u"inf", kInfinity},
    {"InfinityInFull", kPoint, u"Infinity", kInfinity},
    {"MinusInfinity", kPoint, u"-INF", -kInfinity},
    {"TypographicMinusInfinity", kPoint, u"\u2212inf", -kInfinity},
    {"InfinityAndMore", kPoint, u"info", {}},

    {"Percent", kPercent, u"5 %", 5.0},
    {"PercentWithoutBlank", kPercent, u"3.5%", 3.5},
    {"PercentOfNegative", kPercent, u"-3.5%", -3.5},
    {"PercentGrouped", kPercent, u"1,234.5%", 1234.5},
    {"PercentInParentheses", kPercent, u"(5%)", -5.0},
    {"PercentOutsideParentheses", kPercent, u"(5)%", {}},
    {"PerMille", kPercent, u"5\u2030", 5.0},
    {"PlainAmongPercentages", kPercent, u"7", 7.0},
    {"PercentAlone", kPercent, u"%", {}},
    {"TwoPercents", kPercent, u"5%%", {}},
    {"PercentAmongPlain", kPoint, u"5%", {}},

    {"Dollar", kMoney, u"$5.00", 5.0},
    {"DollarAndBlank", kMoney, u"$ 5", 5.0},
    {"MinusBeforeTheDollar", kMoney, u"-$1,234.50", -1234.5},
    {"MinusAfterTheDollar", kMoney, u"$-5", -5.0},
    {"DollarInParentheses", kMoney, u"($5.00)", -5.0},
    {"DollarBeforeParentheses", kMoney, u"$(5)", -5.0},
    {"PlainAmongMoney", kMoney, u"(1,234.50)", -1234.5},
    {"TwoDollars", kMoney, u"$5$", {}},
    {"DollarAlone", kMoney, u"$", {}},
    {"DollarWithExponent", kMoney, u"$1e5", {}},
    {"Billions", kMoney, u"$1.2bn", 1.2e9},
    {"Thousands", kMoney, u"$ 5k", 5000.0},
    {"Millions", kMoney, u"EUR 3 Mio", 3e6},
    {"EuroAfter", kEuro, u"1.234,50 \u20AC", 1234.5},
    {"EuroBefore", kEuro, u"EUR 1.234,50", 1234.5},
    {"EuroAndFinalMinus", kEuro, u"EUR 1.234,50-", -1234.5},
    {"NameOfACurrency", marks(u',', u' ', ColumnKind::money), u"1 234,50 kr.", 1234.5},
    {"DashForCents", marks(u'.', u'\'', ColumnKind::money), u"1'200.-", 1200.0},
    {"LongDashForCents", marks(u'.', u'\'', ColumnKind::money), u"CHF 12.\u2013", 12.0},
    {"MoneyAmongPlain", kPoint, u"$5", {}},

    {"Word", kPoint, u"x", {}},
    {"SignAlone", kPoint, u"+", {}},
    {"Hexadecimal", kPoint, u"0x10", {}},
    {"Date", kPoint, u"2024-01-31", {}},
    {"Nul", kPoint, std::u16string(1, u'\0'), {}},
    {"MarkOutsideAscii", marks(0x066B, 0), u"12", 12.0},
};

class NumberParserReal : public testing::TestWithParam<RealCase> {};

TEST_P(NumberParserReal, IsTheNearestOrRefused) {
  NumberParser parser(GetParam().rules);
  double value = -77;
  const bool was_read = parser.real(ExactText(GetParam().cell).view(), value);
  EXPECT_EQ(was_read, GetParam().value.has_value()) << value;
  const double expected = GetParam().value.value_or(-77);
  EXPECT_EQ(std::bit_cast<std::uint64_t>(value), std::bit_cast<std::uint64_t>(expected)) << value;
}

INSTANTIATE_TEST_SUITE_P(Table, NumberParserReal, testing::ValuesIn(kReals), ByRule());

TEST(NumberParserRealOfNan, IsOne) {
  NumberParser parser(kPoint);
  for (const char16_t* const word : {u"nan", u"NaN", u"-nan", u"\u2212NAN"}) {
    double value = 0;
    EXPECT_TRUE(parser.real(word, value));
    EXPECT_TRUE(std::isnan(value));
  }
}

// --- decimals ------------------------------------------------------------------------------------

struct DecimalCase {
  const char* rule;
  NumberRules rules;
  std::u16string cell;
  std::optional<std::string> value;
};
std::ostream& operator<<(std::ostream& out, const DecimalCase& row) { return out << row.rule; }

const DecimalCase kDecimals[] = {
    {"KeepsZerosAtTheEnd", kPoint, u"-1234.50", "-1234.50"},
    {"DropsPlusAndZerosAtTheStart", kPoint, u"+007.5", "7.5"},
    {"KeepsOneZero", kPoint, u"000", "0"},
    {"AddsAZeroBeforeTheMark", kPoint, u".5", "0.5"},
    {"DropsAMarkAtTheEnd", kPoint, u"5.", "5"},
    {"KeepsAMinusOfZero", kPoint, u"-0.00", "-0.00"},
    {"WritesAPoint", kComma, u"1.234,50", "1234.50"},
    {"KeepsManyDigits", kPoint, u"12345678901234567890.123456789012345678901",
     "12345678901234567890.123456789012345678901"},
    {"MovesTheMarkToTheRight", kPoint, u"1.2345e2", "123.45"},
    {"MovesTheMarkBeyondTheDigits", kPoint, u"1.2e3", "1200"},
    {"MovesTheMarkToTheEnd", kPoint, u"1.2e1", "12"},
    {"MovesTheMarkToTheLeft", kPoint, u"12.5e-1", "1.25"},
    {"MovesTheMarkBeforeTheDigits", kPoint, u"12.5e-4", "0.00125"},
    {"MovesTheMarkOfZero", kPoint, u"0e5", "0"},
    {"DropsZerosThatComeToTheStart", kPoint, u"0.05e1", "0.5"},
    {"MovesFourHundredPlaces", kPoint, u"1e400", "1" + std::string(400, '0')},
    {"MovesNoFarther", kPoint, u"1e401", {}},
    {"MovesNoFartherToTheLeft", kPoint, u"1e-401", {}},
    {"Money", kMoney, u"($1,234.50)", "-1234.50"},
    {"MoneyOfThousands", kMoney, u"$1.25k", "1250"},
    {"Percent", kPercent, u"12.50 %", "12.50"},
    {"Infinity", kPoint, u"inf", {}},
    {"NotANumber", kPoint, u"nan", {}},
    {"Word", kPoint, u"x", {}},
};

class NumberParserDecimal : public testing::TestWithParam<DecimalCase> {};

TEST_P(NumberParserDecimal, IsAppendedOrRefused) {
  NumberParser parser(GetParam().rules);
  std::string text = "before:";
  const bool was_read = parser.decimal(ExactText(GetParam().cell).view(), text);
  EXPECT_EQ(was_read, GetParam().value.has_value());
  EXPECT_EQ(text, "before:" + GetParam().value.value_or(""));
}

INSTANTIATE_TEST_SUITE_P(Table, NumberParserDecimal, testing::ValuesIn(kDecimals), ByRule());

// --- random numbers ------------------------------------------------------------------------------

std::u16string widened_text(const std::string& text) { return {text.begin(), text.end()}; }

// With other marks, and groups of three before the fraction.
std::u16string with_marks(const std::string& text, char16_t decimal, char16_t grouping) {
  const std::size_t begin = text[0] == '-' ? 1 : 0;
  const std::size_t point = std::min(text.find('.'), text.size());
  std::u16string out(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(begin));
  for (std::size_t i = begin; i < point; ++i) {
    if (i > begin && (point - i) % 3 == 0) out += grouping;
    out += static_cast<char16_t>(text[i]);
  }
  if (point == text.size()) return out;
  out += decimal;
  return out + widened_text(text.substr(point + 1));
}

TEST(NumberParserProperty, ReadsBackEachDouble) {
  std::mt19937_64 random(20240131);
  NumberParser parser(kPoint);
  for (int i = 0; i < 200'000; ++i) {
    const auto written = std::bit_cast<double>(random());
    if (!std::isfinite(written)) continue;
    double read = 0;
    const std::string text = fmt::format("{:.17g}", written);
    ASSERT_TRUE(parser.real(widened_text(text), read)) << text;
    ASSERT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(written)) << text;
  }
}

TEST(NumberParserProperty, ReadsBackAmountsWithMarks) {
  std::mt19937_64 random(20240131);
  struct Marks {
    char16_t decimal;
    char16_t grouping;
  };
  for (const Marks each :
       {Marks{u',', u'.'}, Marks{u'.', u','}, Marks{u',', u' '}, Marks{u',', 0x00A0},
        Marks{u',', 0x202F}, Marks{u'.', u'\''}, Marks{u'.', 0x2019}}) {
    NumberParser parser(marks(each.decimal, each.grouping));
    for (int i = 0; i < 20'000; ++i) {
      const auto cents = static_cast<std::int64_t>(random() >> (12 + random() % 50)) - 500;
      const double written = static_cast<double>(cents) / 100;
      double read = 0;
      const std::string text = fmt::format("{:.2f}", written);
      ASSERT_TRUE(parser.real(with_marks(text, each.decimal, each.grouping), read)) << text;
      ASSERT_EQ(std::bit_cast<std::uint64_t>(read), std::bit_cast<std::uint64_t>(std::stod(text)))
          << text;
    }
  }
}

TEST(NumberParserProperty, ReadsBackEachInteger) {
  std::mt19937_64 random(20240131);
  NumberParser parser(kPoint);
  for (int i = 0; i < 200'000; ++i) {
    const auto written = static_cast<std::int64_t>(random()) >> (random() % 64);
    std::int64_t read = 0;
    ASSERT_TRUE(parser.integer(widened_text(std::to_string(written)), read)) << written;
    ASSERT_EQ(read, written);
  }
}

}  // namespace
}  // namespace textio::reading
