#include <vltextstream/columns/number_format.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "columns/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

NumberFormat format_of(const std::vector<std::u16string>& cells, const MarkHints& hints = {}) {
  NumberVotes votes;
  for (const std::u16string& cell : cells) votes.add(shape_of_number(ExactText(cell).view()));
  return votes.format(hints);
}

// --- marks found in the cells ------------------------------------------------------------------

struct FormatCase {
  const char* rule;
  std::vector<std::u16string> cells;
  NumberFormat format;  // decimal, grouping, exponent, certain
};
std::ostream& operator<<(std::ostream& out, const FormatCase& row) { return out << row.rule; }

const FormatCase kFormats[] = {
    {"DigitsAlone", {u"0", u"12", u"-345678"}, {0, 0, 0, true}},
    {"NoCell", {}, {0, 0, 0, true}},
    {"NotFinite", {u"inf", u"-Infinity"}, {0, 0, 0, true}},

    {"DecimalPoint", {u"1.5", u"22.75"}, {u'.', 0, 0, true}},
    {"DecimalPointAtTheEnd", {u"5.", u"7."}, {u'.', 0, 0, true}},
    {"DecimalPointFirst", {u".5"}, {u'.', 0, 0, true}},
    {"DecimalComma", {u"1,5", u"22,75"}, {u',', 0, 0, true}},
    {"DecimalCommaFirst", {u",5", u"-,25"}, {u',', 0, 0, true}},
    {"DecimalCommaAfterAZero", {u"0,123"}, {u',', 0, 0, true}},
    {"DecimalCommaAfterFourDigits", {u"1234,567"}, {u',', 0, 0, true}},
    {"DecimalCommaBeforeFourDigits", {u"1,2345"}, {u',', 0, 0, true}},
    {"DecimalCommaOfAnotherCell", {u"1,234", u"1,5"}, {u',', 0, 0, true}},
    {"DecimalCommaBecauseNothingIsGrouped", {u"1,234", u"56789"}, {u',', 0, 0, true}},
    {"DecimalPointBecauseNothingIsGrouped", {u"1.234", u"12345"}, {u'.', 0, 0, true}},
    {"DecimalCommaBesideGroupingBlanks", {u"1,234", u"12 345"}, {u',', u' ', 0, true}},
    {"DecimalCommaBesideGroupingPoints", {u"1.234.567", u"1,234"}, {u',', u'.', 0, true}},
    {"DecimalOfAMantissa", {u"1,234e5"}, {u',', 0, u'e', true}},

    {"GroupingCommaTwice", {u"1,234,567", u"1,234"}, {0, u',', 0, true}},
    {"GroupingCommaBeforeAPoint", {u"1,234.5", u"2,345"}, {u'.', u',', 0, true}},
    {"GroupingCommaBesideADecimalPoint", {u"1,234", u"0.5"}, {u'.', u',', 0, true}},
    {"GroupingPointTwice", {u"1.234.567", u"999"}, {0, u'.', 0, true}},
    {"GroupingPointBeforeAComma", {u"1.234,5", u"2.345"}, {u',', u'.', 0, true}},
    {"GroupingPointBesideADecimalComma", {u"1.234", u"0,5"}, {u',', u'.', 0, true}},
    {"GroupingBlank", {u"1 234", u"1 234 567"}, {0, u' ', 0, true}},
    {"GroupingBlankBeforeAComma", {u"1 234,5"}, {u',', u' ', 0, true}},
    {"GroupingNoBreakSpace", {u"1\u00A0234", u"12\u00A0345,5"}, {u',', 0x00A0, 0, true}},
    {"GroupingNarrowNoBreakSpace", {u"1\u202F234"}, {0, 0x202F, 0, true}},
    {"GroupingThinSpace", {u"1\u2009234.5"}, {u'.', 0x2009, 0, true}},
    {"GroupingBlanksOfTwoWidths", {u"1\u00A0234", u"1\u00A0235", u"1 236"}, {0, 0x00A0, 0, true}},
    {"GroupingApostrophe", {u"1'234", u"1'234'567.50"}, {u'.', u'\'', 0, true}},
    {"GroupingCurlyApostrophe", {u"1\u2019234"}, {0, 0x2019, 0, true}},
    {"IndianGroups", {u"1,23,456", u"12,34,567.50"}, {u'.', u',', 0, true}},

    {"OneCommaMayBeEither", {u"1,234", u"12,345", u"999"}, {0, u',', 0, false}},
    {"OnePointMayBeEither", {u"1.234", u"12.345", u"999"}, {u'.', 0, 0, false}},
    {"FourDigitsWithoutAMarkDecideNothing", {u"1,234", u"5678"}, {0, u',', 0, false}},
    {"NinesDecideNothing", {u"1,234", u"-99999"}, {0, u',', 0, false}},
    {"CommaAndPointThatMayBeEither", {u"1,234", u"1,235", u"1.234"}, {u'.', u',', 0, false}},

    {"ThreeMarks", {u"0,5", u"1 234", u"1.234"}, {u',', u' ', 0, true}},
    {"MostCellsDecideOnAMark", {u"1,5", u"2,5", u"1,234,567"}, {u',', 0, 0, true}},
    {"MostCellsDecide", {u"1,5", u"2,5", u"1.234.567", u"1,234,567"}, {u',', u'.', 0, true}},
    {"OtherDigits", {u"\u0661\u0662,\u0665"}, {u',', 0, 0, true}},
    {"SignsAndParentheses", {u"(1,234.50)", u"\u22121.5", u"+2"}, {u'.', u',', 0, true}},
    {"MinusAtTheEnd", {u"1.234,56-"}, {u',', u'.', 0, true}},
    {"Percent", {u"12,5 %", u"3%"}, {u',', 0, 0, true}},
    {"Exponents", {u"1e5", u"2E5"}, {0, 0, u'e', true}},
    {"ExponentOfFortran", {u"1.5D-03"}, {u'.', 0, u'D', true}},
    {"LetterThatIsNoExponent", {u"5ex"}, {0, 0, 0, true}},
    {"EmptyCell", {u""}, {0, 0, 0, true}},
    {"CommaAtTheEnd", {u"5,"}, {0, 0, 0, true}},
    {"PointOfAWord", {u"Rs. 5"}, {0, 0, 0, true}},
    {"PercentageThatMayBeEither", {u"1,234 %"}, {0, u',', 0, false}},
    {"PercentageThatBeginsWithAComma", {u",125 %"}, {u',', 0, 0, true}},
    {"PercentageBelowOne", {u"0,125 %"}, {u',', 0, 0, true}},
    {"PercentageOfFourDigits", {u"1234,567 %"}, {u',', 0, 0, true}},
};

class NumberFormatOf : public testing::TestWithParam<FormatCase> {};
TEST_P(NumberFormatOf, IsThatOfTheRow) {
  EXPECT_EQ(format_of(GetParam().cells), GetParam().format);
}
INSTANTIATE_TEST_SUITE_P(Table, NumberFormatOf, testing::ValuesIn(kFormats), ByRule());

// --- marks by hints ----------------------------------------------------------------------------

struct HintCase {
  const char* rule;
  std::vector<std::u16string> cells;
  MarkHints hints;  // decimal, grouping, given, delimiter, money
  NumberFormat format;
};
std::ostream& operator<<(std::ostream& out, const HintCase& row) { return out << row.rule; }

const HintCase kHints[] = {
    {"DecimalOfTheTable", {u"1,234"}, {u',', 0, false, 0, false}, {u',', 0, 0, false}},
    {"OtherDecimalOfTheTable", {u"1.234"}, {u',', 0, false, 0, false}, {0, u'.', 0, false}},
    {"GroupingOfTheTable", {u"1.234"}, {0, u'.', false, 0, false}, {0, u'.', 0, false}},
    {"OtherGroupingOfTheTable", {u"1,234"}, {0, u'.', false, 0, false}, {u',', 0, 0, false}},
    {"CellsOverruleTheTable", {u"1,5"}, {u'.', u',', false, 0, false}, {u',', 0, 0, true}},
    {"GivenMarksOverruleTheCells", {u"1,5"}, {u'.', u',', true, 0, false}, {u'.', u',', 0, true}},
    {"GivenMarksAreCertain", {u"1,234"}, {u',', u'.', true, 0, false}, {u',', u'.', 0, true}},
    {"GivenMarksThatAreEqual", {u"1.5"}, {u'.', u'.', true, 0, false}, {u'.', 0, 0, true}},
    {"SemicolonsMakeCommasDecimal", {u"1,234"}, {0, 0, false, u';', false}, {u',', 0, 0, false}},
    {"SemicolonsLeavePoints", {u"1.234"}, {0, 0, false, u';', false}, {u'.', 0, 0, false}},
    {"MoneyIsGroupedByPoints", {u"1.234"}, {0, 0, false, 0, true}, {0, u'.', 0, false}},
    {"CommasMakePointsOfMoneyDecimal", {u"1.234"}, {0, 0, false, u',', true}, {u'.', 0, 0, false}},
    {"CommasLeaveCommas", {u"1,234"}, {0, 0, false, u',', false}, {0, u',', 0, false}},
    {"MoneyWithCents", {u"1.50"}, {0, 0, false, 0, true}, {u'.', 0, 0, true}},
    {"TableBeforeDelimiter", {u"1,234"}, {u'.', 0, false, u';', false}, {0, u',', 0, false}},
    {"GivenDecimalMark", {u"1,234.5"}, {u'.', 0, true, 0, false}, {u'.', u',', 0, true}},
    {"GivenGroupingMark", {u"1.5", u"2,345"}, {0, u',', true, 0, false}, {u'.', u',', 0, true}},
    {"GivenDecimalMarkThatMayBeEither", {u"1,234"}, {u',', 0, true, 0, false}, {u',', 0, 0, true}},
    {"GivenDecimalMarkThatIsRare", {u"1,234"}, {u'/', 0, true, 0, false}, {u'/', u',', 0, true}},
    // Former bugs.
    {"GivenMarksOfWhichNeitherIs", {u"1,234"}, {0, 0, true, 0, false}, {0, u',', 0, true}},
};

class NumberFormatByHints : public testing::TestWithParam<HintCase> {};
TEST_P(NumberFormatByHints, IsThatOfTheRow) {
  EXPECT_EQ(format_of(GetParam().cells, GetParam().hints), GetParam().format);
}
INSTANTIATE_TEST_SUITE_P(Table, NumberFormatByHints, testing::ValuesIn(kHints), ByRule());

// --- one cell and a format ---------------------------------------------------------------------

struct FitCase {
  const char* rule;
  std::u16string cell;
  NumberFormat format;
  bool fits;
  bool has_fraction;
};
std::ostream& operator<<(std::ostream& out, const FitCase& row) { return out << row.rule; }

const FitCase kFits[] = {
    {"OtherDecimalMark", u"1.5", {u',', u'.', 0, true}, false, true},
    {"OtherGroupingMark", u"1 234", {u',', u'.', 0, true}, false, false},
    {"EitherAsDecimal", u"1.234", {u'.', 0, 0, true}, true, true},
    {"EitherAsGrouping", u"1.234", {u',', u'.', 0, true}, true, false},
    {"EitherAsNothing", u"1.234", {u',', 0, 0, true}, false, false},
    {"BlankOfAnotherWidth", u"1\u00A0234", {u',', u' ', 0, true}, true, false},
    {"TheOtherApostrophe", u"1\u2019234", {u'.', u'\'', 0, true}, true, false},
    {"DigitsAlone", u"1234", {u',', u'.', 0, true}, true, false},
    {"NotFinite", u"inf", {u',', u'.', 0, true}, true, true},
    {"ApostropheAmongPoints", u"1'234", {u',', u'.', 0, true}, false, false},
    {"ThinSpaceAmongNarrowOnes", u"1\u2009234", {u',', u'\u202F', 0, true}, true, false},
};

class NumberFits : public testing::TestWithParam<FitCase> {};
TEST_P(NumberFits, AsInTheRow) {
  const NumberShape shape = shape_of_number(ExactText(GetParam().cell).view());
  EXPECT_EQ(fits(shape, GetParam().format), GetParam().fits);
  EXPECT_EQ(has_fraction(shape, GetParam().format), GetParam().has_fraction);
}
INSTANTIATE_TEST_SUITE_P(Table, NumberFits, testing::ValuesIn(kFits), ByRule());

// --- values ------------------------------------------------------------------------------------

struct ValueCase {
  std::u16string text;
  double value;
};

TEST(NumberValue, FollowsTheFormat) {
  const ValueCase comma[] = {{u"1.234,5", 1234.5}, {u"-7,25", -7.25},  {u"1.234", 1234},
                             {u"(12,00)", -12},    {u"1,5-", -1.5},    {u"\u2212,5", -0.5},
                             {u"+3", 3},           {u"1,5e-2", 0.015}, {u"1,5D+2", 150}};
  for (const ValueCase& row : comma) {
    EXPECT_EQ(value_of(ExactText(row.text).view(), {u',', u'.', 0, true}), row.value)
        << readable(row.text);
  }
  EXPECT_EQ(value_of(u"1,234.5", {u'.', u',', 0, true}), 1234.5);
  EXPECT_EQ(value_of(u"1 234", {0, u' ', 0, true}), 1234);
  EXPECT_EQ(value_of(u"\u0661\u0662", {}), 12);
}

TEST(NumberShape, HasDigitsUpToThoseThatADoubleHolds) {
  EXPECT_EQ(shape_of_number(u"123456789012345").digits, 123'456'789'012'345);
  EXPECT_EQ(shape_of_number(u"-1234567890.12345").digits, -123'456'789'012'345);
  EXPECT_EQ(shape_of_number(u"1234567890123456").digits, std::nullopt);
}

TEST(NumberValue, IsNoneIfNotFiniteOrLong) {
  EXPECT_EQ(value_of(u"inf", {}), std::nullopt);
  EXPECT_EQ(value_of(u"1e9999", {}), std::nullopt);
  EXPECT_EQ(value_of(std::u16string(61, u'1'), {}), std::nullopt);
  EXPECT_NE(value_of(std::u16string(60, u'1'), {}), std::nullopt);
}

}  // namespace
}  // namespace textio::columns
