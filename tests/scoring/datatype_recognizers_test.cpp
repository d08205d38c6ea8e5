#include <vltextstream/scoring/datatype_recognizers.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::name_of;
using testing_support::readable;
using testing_support::text_of;

// --- accepted or refused ------------------------------------------------------------------------

struct AnswerCase {
  const char* rule;
  std::u16string text;
  bool accepted;
};
std::ostream& operator<<(std::ostream& out, const AnswerCase& row) {
  return out << row.rule << " '" << readable(row.text) << "'";
}

const AnswerCase kNumberCases[] = {
    // real literals
    {"OneDigit", u"0", true},
    {"Digits", u"12", true},
    {"LeadingZeros", u"00012", true},
    {"MoreDigitsThanAnyTypeHolds", u"123456789012345678901234567890", true},
    {"PlusSign", u"+7", true},
    {"MinusSignAndFraction", u"-3.5", true},
    {"FractionAlone", u".5", true},
    {"SignedFractionAlone", u"-.5", true},
    {"PointAtTheEnd", u"5.", true},
    {"SignedPointAtTheEnd", u"+5.", true},
    {"SmallE", u"1e5", true},
    {"SignAndExponent", u"+1e5", true},
    {"CapitalE", u"1E5", true},
    {"SmallD", u"1d5", true},
    {"CapitalDWithMinus", u"1.5D-3", true},
    {"ExponentWithPlus", u"1e+5", true},
    {"ExponentAfterAPoint", u"1.e5", true},
    {"ExponentAfterAFraction", u".5e5", true},
    {"ExponentOutOfAnyRange", u"1e99999", true},
    {"EmptyTextCountsAsANumber", u"", true},
    {"SignAlone", u"-", false},
    {"PointAlone", u".", false},
    {"SignAndPoint", u"+.", false},
    {"SignPointAndExponent", u"+.e5", false},
    {"ExponentAlone", u"e5", false},
    {"ExponentLetterWithoutDigits", u"1e", false},
    {"ExponentSignWithoutDigits", u"1e+", false},
    {"ExponentWithTwoSigns", u"1e+-5", false},
    {"ExponentWithAFraction", u"1e5.5", false},
    {"TwoExponents", u"1e5e5", false},
    {"OtherExponentLetter", u"1f5", false},
    {"TwoPoints", u"1.2.3", false},
    {"TwoSigns", u"--1", false},
    {"SignAtTheEnd", u"1-", false},
    {"SumWithoutUnit", u"1+2", false},
    {"DigitGrouping", u"1,000", false},
    {"DecimalComma", u"1,5", false},
    {"Underscore", u"1_000", false},
    {"Hexadecimal", u"0x1F", false},
    {"Octal", u"0o17", false},
    {"Binary", u"0b11", false},
    {"BlankInside", u"1 2", false},
    {"BlankBefore", u" 1", false},
    {"BlankAfter", u"1 ", false},
    {"BlankAfterTheSign", u"- 1", false},
    {"PercentSign", u"1%", false},
    {"Currency", u"$1", false},
    {"ZeroUnit", std::u16string(u"1\0", 2), false},
    {"EndMark", u"1\uFFFF", false},
    {"DigitsOfOtherScripts", u"\u0661\u0662", false},
    {"FullwidthDigit", u"\uFF11", false},
    {"MathematicalMinus", u"\u22125", false},
    // special values
    {"SmallNan", u"nan", true},
    {"MixedNan", u"NaN", true},
    {"CapitalNan", u"NAN", true},
    {"SignedNan", u"+nAn", true},
    {"SmallInf", u"inf", true},
    {"SignedInf", u"-Inf", true},
    {"CapitalInf", u"+INF", true},
    {"Infinity", u"Infinity", false},
    {"NanAndADigit", u"nan5", false},
    {"DigitAndNan", u"5nan", false},
    {"NanAndAnExponent", u"nane5", false},
    {"NanCutShort", u"na", false},
    {"InfCutShort", u"-in", false},
    {"PointBeforeNan", u".nan", false},
    {"TwoSignsBeforeInf", u"+-inf", false},
    {"DotlessIIsNotFolded", u"\u0131nf", false},
    {"FullwidthLettersAreNotFolded", u"\uFF4Ean", false},
    // imaginary and complex literals
    {"ImaginaryI", u"3i", true},
    {"ImaginaryJ", u"-2.5e3j", true},
    {"ImaginaryPointAtTheEnd", u"1.i", true},
    {"ImaginaryFractionAlone", u".5j", true},
    {"ImaginaryExponentWithSign", u"1e+2i", true},
    {"ImaginaryNan", u"nani", true},
    {"ImaginaryInf", u"-Infj", true},
    {"SumOfTwoParts", u"1+2i", true},
    {"DifferenceOfTwoParts", u"1-2.5j", true},
    {"BothPartsWithExponents", u"-1.5e3+2.5D-1j", true},
    {"NanPart", u"1+nani", true},
    {"InfPart", u"-inf-infj", true},
    {"SecondPartWithItsOwnSign", u"1+-2i", true},
    {"SecondPartWithTheSameSignTwice", u"1++2i", true},
    {"AnyUnitMayJoinTheParts", u"1x2i", true},
    {"AnyUnitMayJoinBeforeASign", u"1x-2i", true},
    {"ABlankMayJoinTheParts", u"1 2i", true},
    {"ACommaMayJoinTheParts", u"1,2i", true},
    {"AColonMayJoinTheParts", u"1:2i", true},
    {"APointMayJoinTheParts", u"1.5.5i", true},
    {"APointMayJoinBeforeAFraction", u"1...5i", true},
    {"AnExponentLetterWithoutDigitsMayJoin", u"1e.5i", true},
    {"AnotherUnitOfTheImaginaryPartMayJoin", u"1j2i", true},
    {"HexadecimalLooksLikeTwoParts", u"0x1i", true},
    {"OneStrangeUnitInPlaceOfTheFirstPart", u"x2i", true},
    {"StraySignInPlaceOfTheFirstPart", u"-+2i", true},
    {"TwoStrangeUnitsBefore", u"xx2i", false},
    {"TwoJoiningUnits", u"1xx2i", false},
    {"ThreeSigns", u"1---2i", false},
    {"BlankAfterTheJoiningSign", u"1+ 2i", false},
    {"UnitWithoutAFactor", u"1+i", false},
    {"SignAndUnit", u"+i", false},
    {"PointAndUnit", u"1+.i", false},
    {"CapitalI", u"3I", false},
    {"CapitalJ", u"1+2J", false},
    {"TwoUnits", u"1ii", false},
    {"UnitBeforeADigit", u"1i2", false},
    {"UnitBeforeThePart", u"i2", false},
    {"ThreeParts", u"1+2+3i", false},
    {"ExponentWithoutDigitsBeforeTheUnit", u"1ei", false},
    {"ImaginaryPartFirst", u"2i+1", false},
    {"NanAndADigitBeforeTheUnit", u"nan5i", false},
};

class IsNumber : public testing::TestWithParam<AnswerCase> {};
TEST_P(IsNumber, AcceptsOnlyWholeLiterals) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(is_number(text.field()), GetParam().accepted) << readable(GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, IsNumber, testing::ValuesIn(kNumberCases),
                         testing_support::ByRule());

const AnswerCase kDurationCases[] = {
    {"ThreeGroups", u"1:02:03", true},
    {"Fraction", u"1:02:03.5", true},
    {"LongFraction", u"12:34:56.789012345678901234567890", true},
    {"Zeros", u"00:00:00", true},
    {"NoRangeIsChecked", u"123:456:789", true},
    {"TwoColonsAlone", u"::", true},
    {"FirstGroupAlone", u"1::", true},
    {"MiddleGroupAlone", u":1:", true},
    {"LastGroupAlone", u"::1", true},
    {"FractionAlone", u"::.5", true},
    {"EmptyFraction", u"1:2:3.", true},
    {"PointAlone", u"::.", true},
    {"Empty", u"", false},
    {"OneGroup", u"12", false},
    {"OneColon", u":", false},
    {"HoursAndMinutes", u"12:34", false},
    {"MinutesWithAFraction", u"12:34.5", false},
    {"ThreeColons", u":::", false},
    {"FourGroups", u"1:2:3:4", false},
    {"TwoFractions", u"1:2:3.4.5", false},
    {"ColonAfterTheFraction", u"1:2:3.4:5", false},
    {"FractionInTheFirstGroup", u"1.5:2:3", false},
    {"FractionInTheSecondGroup", u"1:2.5:3", false},
    {"MinusSign", u"-1:2:3", false},
    {"PlusSign", u"+1:2:3", false},
    {"BlankBefore", u" 1:2:3", false},
    {"BlankAfter", u"1:2:3 ", false},
    {"BlankInside", u"1: 2:3", false},
    {"DecimalComma", u"1:2:3,5", false},
    {"LetterAfter", u"1:2:3s", false},
    {"LetterBefore", u"a1:2:3", false},
    {"LetterInTheFraction", u"1:2:3.x", false},
    {"HalfOfTheDay", u"1:02:03 PM", false},
    {"Semicolons", u"1;2;3", false},
    {"FullwidthDigit", u"\uFF11:2:3", false},
    {"FullwidthColon", u"1\uFF1A2:3", false},
    {"EndMark", u"1:2:3\uFFFF", false},
    {"ZeroUnit", std::u16string(u"1:2:3\0", 6), false},
};

class IsDuration : public testing::TestWithParam<AnswerCase> {};
TEST_P(IsDuration, AcceptsOnlyTwoColonsAndDigits) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(is_duration(text.field()), GetParam().accepted) << readable(GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, IsDuration, testing::ValuesIn(kDurationCases),
                         testing_support::ByRule());

// --- where the imaginary part begins -------------------------------------------------------------

struct SplitCase {
  const char* rule;
  std::u16string text;
  std::size_t split;
};
std::ostream& operator<<(std::ostream& out, const SplitCase& row) { return out << row.rule; }

const SplitCase kSplitCases[] = {
    {"EmptyText", u"", 0},
    {"RealLiteral", u"12", 2},
    {"AnyOtherText", u"hello", 5},
    {"CapitalUnit", u"1+2I", 4},
    {"PureImaginary", u"3i", 0},
    {"PureImaginaryWithExponent", u"1e+2j", 0},
    {"TwoParts", u"1+2i", 1},
    {"TwoLongParts", u"-1.5e3+2.5e-1j", 6},
    {"TwoPartsJoinedByALetter", u"1x2i", 1},
    {"LetterOfAnExponentWithoutDigits", u"1e.5i", 1},
    {"SecondPartWithItsOwnSign", u"10+-2i", 2},
    {"NoFirstPart", u"x2i", 0},
    {"NoFactorBeforeTheUnit", u"1+i", 3},
    {"SecondPartEndsTooEarly", u"1+2+3i", 6},
    {"WordThatEndsInTheUnit", u"hi", 2},
};

class SplitComplex : public testing::TestWithParam<SplitCase> {};
TEST_P(SplitComplex, FindsTheEndOfTheFirstPart) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(split_complex(text.field()), GetParam().split) << readable(GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, SplitComplex, testing::ValuesIn(kSplitCases),
                         testing_support::ByRule());

// --- quotes --------------------------------------------------------------------------------------

const std::u16string kBlanks = u" \b\t";

std::u16string repeated(const std::u16string& part, std::size_t times) {
  std::u16string all;
  all.reserve(part.size() * times);
  for (std::size_t i = 0; i < times; ++i) all += part;
  return all;
}

std::u16string run_of(std::size_t count) { return std::u16string(count, u'a'); }

struct UnquoteCase {
  const char* rule;
  std::u16string whitespace;
  std::u16string text;
  std::u16string left;
};
std::ostream& operator<<(std::ostream& out, const UnquoteCase& row) { return out << row.rule; }

const UnquoteCase kUnquoteCases[] = {
    // no opening quote
    {"EmptyFieldStays", kBlanks, u"", u""},
    {"PlainTextStays", kBlanks, u"abc", u"abc"},
    {"BlanksAloneStay", kBlanks, u" \t\b ", u" \t\b "},
    {"BlanksBeforePlainTextStay", kBlanks, u"  abc", u"  abc"},
    {"QuotesInsideStay", kBlanks, u"a\"b\"", u"a\"b\""},
    {"QuoteAtTheEndStays", kBlanks, u"abc\"", u"abc\""},
    {"SingleQuotesStay", kBlanks, u"'abc'", u"'abc'"},
    {"BlankOutsideTheWhiteSpaceHidesTheQuote", u"\t", u" \"abc\"", u" \"abc\""},
    {"WithoutWhiteSpaceABlankHidesTheQuote", u"", u" \"abc\"", u" \"abc\""},
    {"QuoteThatIsWhiteSpaceIsSkipped", u"\"", u"\"abc\"", u"\"abc\""},
    {"LineEndIsNoWhiteSpace", kBlanks, u"\n\"abc\"", u"\n\"abc\""},
    // closed
    {"EnclosingQuotesGo", kBlanks, u"\"abc\"", u"abc"},
    {"WithoutWhiteSpaceToo", u"", u"\"abc\"", u"abc"},
    {"TwoQuotesLeaveNothing", kBlanks, u"\"\"", u""},
    {"BlanksInsideStay", kBlanks, u"\" a \"", u" a "},
    {"BlanksBeforeTheQuoteStay", kBlanks, u" \t\"abc\"", u" \tabc"},
    {"BlanksBeforeTwoQuotesStay", kBlanks, u"  \"\"", u"  "},
    {"OtherWhiteSpaceBeforeTheQuote", u"_", u"__\"a\"", u"__a"},
    {"OnlyOneLevelGoes", kBlanks, u"\"'abc'\"", u"'abc'"},
    // doubled
    {"DoubledQuoteBecomesOne", kBlanks, u"\"4\"\"2\"", u"4\"2"},
    {"FourQuotesAreOne", kBlanks, u"\"\"\"\"", u"\""},
    {"SixQuotesAreTwo", kBlanks, u"\"\"\"\"\"\"", u"\"\""},
    {"DoubledAtTheStart", kBlanks, u"\"\"\"a\"", u"\"a"},
    {"DoubledBeforeTheClosingQuote", kBlanks, u"\"a\"\"\"", u"a\""},
    {"DoubledTwiceInARow", kBlanks, u"\"a\"\"\"\"b\"", u"a\"\"b"},
    {"DoubledInTwoPlaces", kBlanks, u"\"a\"\"b\"\"c\"", u"a\"b\"c"},
    {"DoubledAfterBlanks", kBlanks, u"  \"a\"\"b\"", u"  a\"b"},
    // text after the closing quote
    {"TextAfterTheClosingQuoteStays", kBlanks, u"\"a\"b", u"ab"},
    {"BlankAfterTheClosingQuoteStays", kBlanks, u"\"a\" ", u"a "},
    {"QuotesAfterTheClosingQuoteStay", kBlanks, u"\"a\"b\"", u"ab\""},
    {"SecondQuotedTextStays", kBlanks, u"\"a\" \"b\"", u"a \"b\""},
    {"DoubledAfterTheClosingQuoteStay", kBlanks, u"\"a\"b\"\"c", u"ab\"\"c"},
    {"TextAfterTwoQuotesStays", kBlanks, u"\"\"a", u"a"},
    {"TextAndAQuoteAfterTwoQuotesStay", kBlanks, u"\"\"a\"", u"a\""},
    {"DoubledAndThenTextAfterTheClosingQuote", kBlanks, u"\"a\"\"\"b", u"a\"b"},
    {"TextAfterTheClosingQuoteAndBlanks", kBlanks, u"\t\"a\"b", u"\tab"},
    // not closed: the last code unit is removed as if it were the closing quote
    {"UnterminatedLosesItsLastUnit", kBlanks, u"\"abc", u"ab"},
    {"UnterminatedOfOneUnitLosesIt", kBlanks, u"\"a", u""},
    {"UnterminatedAfterBlanksLosesItsLastUnit", kBlanks, u"  \"abc", u"  ab"},
    {"LoneQuoteBecomesEmpty", kBlanks, u"\"", u""},
    {"LoneQuoteAfterBlanksTakesOneWithIt", kBlanks, u"  \"", u" "},
    {"ThreeQuotesLoseTheKeptOne", kBlanks, u"\"\"\"", u""},
    {"FiveQuotesLoseTheLastKeptOne", kBlanks, u"\"\"\"\"\"", u"\""},
    {"DoubledAtTheEndLosesTheKeptOne", kBlanks, u"\"a\"\"", u"a"},
    {"DoubledAndThenUnterminated", kBlanks, u"\"a\"\"bc", u"a\"b"},
    // around the size of the storage inside a working field, 32 code units
    {"ThirtyOneUnitsEnclosed", kBlanks, u"\"" + run_of(29) + u"\"", run_of(29)},
    {"ThirtyTwoUnitsEnclosed", kBlanks, u"\"" + run_of(30) + u"\"", run_of(30)},
    {"ThirtyThreeUnitsEnclosed", kBlanks, u"\"" + run_of(31) + u"\"", run_of(31)},
    {"ThirtyOneUnitsShifted", kBlanks, u" \"" + run_of(28) + u"\"", u" " + run_of(28)},
    {"ThirtyTwoUnitsShifted", kBlanks, u" \"" + run_of(29) + u"\"", u" " + run_of(29)},
    {"ThirtyThreeUnitsShifted", kBlanks, u" \"" + run_of(30) + u"\"", u" " + run_of(30)},
    {"ThirtyOneUnitsDoubled", kBlanks, u"\"" + run_of(26) + u"\"\"b\"", run_of(26) + u"\"b"},
    {"ThirtyTwoUnitsDoubled", kBlanks, u"\"" + run_of(27) + u"\"\"b\"", run_of(27) + u"\"b"},
    {"ThirtyThreeUnitsDoubled", kBlanks, u"\"" + run_of(28) + u"\"\"b\"", run_of(28) + u"\"b"},
    {"ThirtyFourUnitsDoubled", kBlanks, u"\"" + run_of(29) + u"\"\"b\"", run_of(29) + u"\"b"},
    {"ThirtyOneUnitsWithTextAfter", kBlanks, u"\"" + run_of(27) + u"\"xy", run_of(27) + u"xy"},
    {"ThirtyTwoUnitsWithTextAfter", kBlanks, u"\"" + run_of(27) + u"\"xyz", run_of(27) + u"xyz"},
    {"ThirtyThreeUnitsWithTextAfter", kBlanks, u"\"" + run_of(28) + u"\"xyz", run_of(28) + u"xyz"},
    {"ThirtyThreeUnitsUnterminated", kBlanks, u"\"" + run_of(32), run_of(31)},
};

class Unquote : public testing::TestWithParam<UnquoteCase> {};
TEST_P(Unquote, RemovesOneLevel) {
  const ExactText text(GetParam().text);
  MutableField field(text.field());
  unquote(field, GetParam().whitespace);
  EXPECT_EQ(readable(text_of(field)), readable(GetParam().left));
}
TEST_P(Unquote, NeverWritesToTheText) {
  const ExactText text(GetParam().text);
  {
    MutableField field(text.field());
    unquote(field, GetParam().whitespace);
  }
  EXPECT_EQ(readable(text.view()), readable(GetParam().text));
}
INSTANTIATE_TEST_SUITE_P(Table, Unquote, testing::ValuesIn(kUnquoteCases),
                         testing_support::ByRule());

bool owns_a_copy_after_unquote(const std::u16string& units) {
  const ExactText text(units);
  MutableField field(text.field());
  unquote(field, kBlanks);
  return field.owns_storage;
}

TEST(UnquoteStorage, NoCopyIsMadeOfTextWithoutAnOpeningQuote) {
  EXPECT_FALSE(owns_a_copy_after_unquote(u"  abc"));
}

TEST(UnquoteStorage, NoCopyIsMadeWhenTheBoundsCanMove) {
  EXPECT_FALSE(owns_a_copy_after_unquote(u"\"abc\""));
  EXPECT_FALSE(owns_a_copy_after_unquote(u"\"abc"));
  EXPECT_FALSE(owns_a_copy_after_unquote(u"\""));
}

TEST(UnquoteStorage, ACopyIsMadeOfTextThatIsRewritten) {
  EXPECT_TRUE(owns_a_copy_after_unquote(u"\"a\"\"b\""));
  EXPECT_TRUE(owns_a_copy_after_unquote(u"\"a\"b"));
  EXPECT_TRUE(owns_a_copy_after_unquote(u" \"a\""));
}

TEST(UnquoteStorage, ShortTextsAreRewrittenInsideTheField) {
  const ExactText text(u" \"" + run_of(28) + u"\"");
  MutableField field(text.field());
  unquote(field, kBlanks);
  EXPECT_EQ(field.storage, field.inline_storage);
}

TEST(UnquoteStorage, LongTextsAreRewrittenInABlock) {
  const ExactText text(u" \"" + run_of(40) + u"\"\"b\"");
  MutableField field(text.field());
  unquote(field, kBlanks);
  EXPECT_NE(field.storage, field.inline_storage);
}

// A scan that moves the rest of the text for each pair would move 10^12 code units here.
TEST(UnquoteCost, AMillionDoubledQuotesArePassedOnce) {
  constexpr std::size_t kPairs = 1'000'000;
  const ExactText text(u"\"" + repeated(u"\"\"", kPairs) + u"\"");
  MutableField field(text.field());
  unquote(field, kBlanks);
  EXPECT_EQ(field.length, kPairs);
  EXPECT_EQ(std::u16string_view(field.data, field.length).find_first_not_of(u'"'),
            std::u16string_view::npos);
}

TEST(UnquoteCost, AMillionDoubledQuotesAfterABlankArePassedOnce) {
  constexpr std::size_t kPairs = 1'000'000;
  const ExactText text(u" \"" + repeated(u"\"\"", kPairs) + u"\"end");
  MutableField field(text.field());
  unquote(field, kBlanks);
  ASSERT_EQ(field.length, 1 + kPairs + 3);
  EXPECT_EQ(field.data[0], u' ');
  EXPECT_EQ(field.data[kPairs], u'"');
  EXPECT_EQ(field.data[kPairs + 1], u'e');
}

TEST(UnquoteCost, AMillionPairsWithoutAClosingQuoteLoseOne) {
  constexpr std::size_t kPairs = 1'000'000;
  const ExactText text(u"\"" + repeated(u"\"\"", kPairs));
  MutableField field(text.field());
  unquote(field, kBlanks);
  EXPECT_EQ(field.length, kPairs - 1);
}

// --- dates ---------------------------------------------------------------------------------------

TEST(SafeIsDatetime, ReturnsTheResultOfTheHost) {
  const ExactText date(u"2024-03-01");
  const ExactText word(u"hello");
  EXPECT_TRUE(safe_is_datetime(date.field()));
  EXPECT_FALSE(safe_is_datetime(word.field()));
}

// --- the order of the tests ----------------------------------------------------------------------

struct ClassCase {
  const char* rule;
  std::u16string whitespace;
  std::u16string text;
  DatatypeCode code;
};
std::ostream& operator<<(std::ostream& out, const ClassCase& row) { return out << row.rule; }

const ClassCase kClassCases[] = {
    // nothing left
    {"EmptyField", kBlanks, u"", DatatypeCode::empty},
    {"BlanksAlone", kBlanks, u" \t \b", DatatypeCode::empty},
    {"TwoQuotes", kBlanks, u"\"\"", DatatypeCode::empty},
    {"LoneQuote", kBlanks, u"\"", DatatypeCode::empty},
    {"LoneQuoteBetweenBlanks", kBlanks, u"  \" ", DatatypeCode::empty},
    {"ThreeQuotes", kBlanks, u"\"\"\"", DatatypeCode::empty},
    {"QuotedBlanks", kBlanks, u" \"  \t\" ", DatatypeCode::empty},
    {"UnterminatedBlanks", kBlanks, u"\"  ", DatatypeCode::empty},
    {"UnterminatedOfOneDigit", kBlanks, u"\"4", DatatypeCode::empty},
    {"OtherWhiteSpaceAlone", u"_x", u"_x_", DatatypeCode::empty},
    // no digit: text, before anything else is tested
    {"Word", kBlanks, u"hello", DatatypeCode::text},
    {"FourQuotesLeaveOne", kBlanks, u"\"\"\"\"", DatatypeCode::text},
    {"NanHasNoDigit", kBlanks, u"NaN", DatatypeCode::text},
    {"InfHasNoDigit", kBlanks, u"-Inf", DatatypeCode::text},
    {"ImaginaryNanHasNoDigit", kBlanks, u"nani", DatatypeCode::text},
    {"UnitAloneHasNoDigit", kBlanks, u"i", DatatypeCode::text},
    {"OtherUnitAloneHasNoDigit", kBlanks, u"j", DatatypeCode::text},
    {"ColonsHaveNoDigit", kBlanks, u"::", DatatypeCode::text},
    {"MonthNameHasNoDigit", kBlanks, u"March", DatatypeCode::text},
    {"DigitsOfOtherScriptsAreNone", kBlanks, u"\u0661\uFF12", DatatypeCode::text},
    {"LineEndIsNoWhiteSpace", kBlanks, u"\n", DatatypeCode::text},
    // numbers
    {"Number", kBlanks, u"42", DatatypeCode::number},
    {"NumberBetweenBlanks", kBlanks, u"\t 42 \b", DatatypeCode::number},
    {"NumberInQuotes", kBlanks, u"\"42\"", DatatypeCode::number},
    {"NumberBetweenBlanksInQuotesBetweenBlanks", kBlanks, u" \" 42\t\" ", DatatypeCode::number},
    {"UnterminatedNumberLosesADigit", kBlanks, u"\"42", DatatypeCode::number},
    {"ClosingQuoteBetweenDigits", kBlanks, u"\"4\"2", DatatypeCode::number},
    {"TwoQuotesBeforeDigits", kBlanks, u"\"\"42", DatatypeCode::number},
    {"Complex", kBlanks, u"1-2.5j", DatatypeCode::number},
    {"ComplexJoinedByAColon", kBlanks, u"1:2i", DatatypeCode::number},
    {"NanPartWithADigit", kBlanks, u"nan+5i", DatatypeCode::number},
    {"NumberBetweenOtherWhiteSpace", u"_x", u"_x42x_", DatatypeCode::number},
    // clock values
    {"ClockWithFraction", kBlanks, u"1:02:03.5", DatatypeCode::duration},
    {"FirstGroupAlone", kBlanks, u"1::", DatatypeCode::duration},
    {"HoursAndMinutes", kBlanks, u"12:34", DatatypeCode::duration},
    {"HoursAndMinutesOutOfRange", kBlanks, u"99:99", DatatypeCode::duration},
    {"HoursAndMinutesInQuotes", kBlanks, u" \"12:34\" ", DatatypeCode::duration},
    {"HoursAndMinutesAndAColon", kBlanks, u"12:34:", DatatypeCode::duration},
    // dates
    {"IsoDate", kBlanks, u"2024-03-01", DatatypeCode::date},
    {"IsoDateInQuotes", kBlanks, u"\"2024-03-01\"", DatatypeCode::date},
    {"DayMonthYear", kBlanks, u"13/01/2024", DatatypeCode::date},
    {"MonthName", kBlanks, u"1 March 2024", DatatypeCode::date},
    {"DateWithTime", kBlanks, u"2024-03-01 12:00:00", DatatypeCode::datetime},
    {"DateWithTimeInQuotes", kBlanks, u"\" 2024-03-01 12:00:00 \"", DatatypeCode::datetime},
    {"DateSeveralBlanksTime", kBlanks, u"2024-03-01    12:00:00", DatatypeCode::datetime},
    {"TimeThenDate", kBlanks, u"12:00:00 2024-03-01", DatatypeCode::datetime},
    {"TimeSeveralBlanksDate", kBlanks, u"12:00:00   2024-03-01", DatatypeCode::datetime},
    {"FractionThenDate", kBlanks, u"12:00:00.25 2024-03-01", DatatypeCode::datetime},
    // the host accepts neither of these as a date as a whole
    {"DateThenAClockValueBeyondTheDay", kBlanks, u"2024-03-01 99:99:99", DatatypeCode::datetime},
    {"AClockValueBeyondTheDayThenDate", kBlanks, u"99:99:99 2024-03-01", DatatypeCode::datetime},
    // nothing matches
    {"OneDigitOfMinutes", kBlanks, u"12:3", DatatypeCode::text},
    {"OneDigitOfHours", kBlanks, u"1:234", DatatypeCode::text},
    {"ThreeDigitsOfHours", kBlanks, u"123:4", DatatypeCode::text},
    {"LetterInTheMinutes", kBlanks, u"12:3x", DatatypeCode::text},
    {"LetterInTheTensOfMinutes", kBlanks, u"12:x3", DatatypeCode::text},
    {"DoubledQuoteBetweenDigits", kBlanks, u"\"4\"\"2\"", DatatypeCode::text},
    {"NanAndADigit", kBlanks, u"nan5", DatatypeCode::text},
    {"DigitGrouping", kBlanks, u"1,000", DatatypeCode::text},
    {"Hexadecimal", kBlanks, u"0x1F", DatatypeCode::text},
    {"TwoNumbers", kBlanks, u"1 2", DatatypeCode::text},
    {"NumberAndTime", kBlanks, u"7 12:00:00", DatatypeCode::text},
    {"TimeAndWord", kBlanks, u"12:00:00 noon", DatatypeCode::text},
    {"TwoTimes", kBlanks, u"12:00:00 13:00:00", DatatypeCode::text},
    {"SingleQuotes", kBlanks, u"'42'", DatatypeCode::text},
    {"MeasurementUnitAfterTheNumber", kBlanks, u"42 km", DatatypeCode::text},
    {"TextAfterTheClosingQuote", kBlanks, u"\"42\"x", DatatypeCode::text},
    // white space that does not include the space
    {"LeadingBlankThatIsNoWhiteSpace", u"\t", u" 42", DatatypeCode::text},
    {"TrailingBlankThatIsNoWhiteSpace", u"", u"42 ", DatatypeCode::text},
    {"BlankBeforeAClockValue", u"", u" 12:00:00", DatatypeCode::text},
    {"BlankBeforeTheQuote", u"\t", u" \"42\"", DatatypeCode::text},
    {"BlankInsideTheQuotes", u"\t", u"\" 42\"", DatatypeCode::text},
};

class ClassifyField : public testing::TestWithParam<ClassCase> {};
TEST_P(ClassifyField, TestsTheClassesInOrder) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(name_of(classify_field(text.field(), GetParam().whitespace)), name_of(GetParam().code))
      << readable(GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, ClassifyField, testing::ValuesIn(kClassCases),
                         testing_support::ByRule());

TEST(ValueText, IsTheTextBetweenBlanksAndQuotes) {
  const auto value_of = [](const std::u16string& units, const std::u16string& whitespace) {
    return readable(value_text(ExactText(units).field(), whitespace));
  };
  EXPECT_EQ(value_of(u"", kBlanks), "");
  EXPECT_EQ(value_of(u" \t", kBlanks), "");
  EXPECT_EQ(value_of(u"\"", kBlanks), "");
  EXPECT_EQ(value_of(u" name ", kBlanks), "name");
  EXPECT_EQ(value_of(u" \" a b \"\t", kBlanks), "a b");
  EXPECT_EQ(value_of(u"\"4\"\"2\"", kBlanks), "4\"2");
  EXPECT_EQ(value_of(u"__name_", u"_"), "name");
  EXPECT_EQ(value_of(u" name", u"_"), " name");
}

TEST(ClassifyFieldDefaults, TheWhiteSpaceOfTheOptionsIsBlankBackspaceTab) {
  const ExactText text(u" \b\t42\t\b ");
  EXPECT_EQ(name_of(classify_field(text.field(), parser::default_whitespace)), "number");
}

TEST(ClassifyFieldCost, ALongFieldOfDoubledQuotesIsText) {
  constexpr std::size_t kPairs = 1'000'000;
  const ExactText text(u"\"1" + repeated(u"\"\"", kPairs) + u"\"");
  EXPECT_EQ(name_of(classify_field(text.field(), kBlanks)), "text");
}

TEST(ClassifyFieldCost, AMillionDigitsAreANumber) {
  const ExactText text(std::u16string(1'000'000, u'7'));
  EXPECT_EQ(name_of(classify_field(text.field(), kBlanks)), "number");
}

// --- the codes -----------------------------------------------------------------------------------

TEST(DatatypeCodes, HaveTheNumbersOfTheInterface) {
  EXPECT_EQ(static_cast<int>(DatatypeCode::number), 1);
  EXPECT_EQ(static_cast<int>(DatatypeCode::text), 2);
  EXPECT_EQ(static_cast<int>(DatatypeCode::datetime), 3);
  EXPECT_EQ(static_cast<int>(DatatypeCode::empty), 5);
  EXPECT_EQ(static_cast<int>(DatatypeCode::date), 7);
  EXPECT_EQ(static_cast<int>(DatatypeCode::duration), 8);
}

}  // namespace
}  // namespace textio
