#include <vltextstream/standalone/dates/date_names.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <string>
#include <string_view>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::datetime {
namespace {

using testing_support::ExactText;
using testing_support::readable;

// --- look-ups ----------------------------------------------------------------------------------

constexpr Name kNames[] = {
    {u"3x", 8, false},   {u"mar 1", 7, false}, {u"mardi", 5, false},
    {u"mars", 4, false}, {u"mar", 3, true},    {u"ma", 2, true},
    {u"x 12", 6, false}, {u"x 1", 1, false},   {u"\u0663", 9, false},
};

struct FindCase {
  const char* rule;
  std::u16string text;
  NameEnd end;
  unsigned number;  // 0: nothing is found
};
std::ostream& operator<<(std::ostream& out, const FindCase& row) { return out << row.rule; }

const FindCase kFindCases[] = {
    {"NothingInAnEmptyText", u"", NameEnd::anywhere, 0},
    {"ExactText", u"mars", NameEnd::of_word, 4},
    {"LongerText", u"mars 2024", NameEnd::of_word, 4},
    {"LongestOfSeveral", u"mardi", NameEnd::anywhere, 5},
    {"LongestThatIsWhole", u"mar 12", NameEnd::of_word, 3},
    {"NameWithABlank", u"mar 1.", NameEnd::of_word, 7},
    {"WordThatGoesOn", u"marx", NameEnd::of_word, 0},
    {"WordThatGoesOnAnywhere", u"marx", NameEnd::anywhere, 3},
    {"WordThatGoesOnWithOtherLetters", u"mar\u00e7", NameEnd::of_word, 0},
    {"DigitAfterALetter", u"mar1", NameEnd::of_word, 3},
    {"NumberThatGoesOn", u"x 13", NameEnd::of_word, 0},
    {"NumberThatIsWhole", u"x 1,", NameEnd::of_word, 1},
    {"LongerNumber", u"x 12", NameEnd::of_word, 6},
    {"PartOfANameAlone", u"m", NameEnd::anywhere, 0},
    {"OtherFirstUnit", u"n", NameEnd::anywhere, 0},
    {"DigitFirst", u"3x", NameEnd::of_word, 8},
    // U+0663 and U+0023 share the bit of the filter with 'c'.
    {"OtherUnitOfTheSameBit", u"#", NameEnd::anywhere, 0},
    {"LastName", u"\u0663", NameEnd::of_word, 9},
    {"AfterTheLastName", u"\u06a3", NameEnd::of_word, 0},
};

class NameTableFind : public testing::TestWithParam<FindCase> {};
TEST_P(NameTableFind, GivesTheLongestThatFits) {
  ASSERT_TRUE(std::is_sorted(std::begin(kNames), std::end(kNames), stands_before));
  const Name* const found =
      NameTable(kNames).find(ExactText(GetParam().text).view(), GetParam().end);
  EXPECT_EQ(found == nullptr ? 0 : found->number, GetParam().number);
}
INSTANTIATE_TEST_SUITE_P(Table, NameTableFind, testing::ValuesIn(kFindCases),
                         testing_support::ByRule());

TEST(NameTable, WithoutNamesFindsNone) {
  EXPECT_EQ(NameTable().find(u"may", NameEnd::anywhere), nullptr);
}

TEST(EnglishNames, AreSortedForTheSearch) {
  for (const NameTable* table :
       {&english_names().months, &english_names().weekdays, &english_names().half_days}) {
    EXPECT_TRUE(std::is_sorted(table->names().begin(), table->names().end(), stands_before));
  }
}

// --- folding -----------------------------------------------------------------------------------

constexpr Folding kNoLocale;
constexpr Folding kLocale{true, false, u'0'};
constexpr Folding kTurkic{true, true, u'0'};
constexpr Folding kArabicDigits{true, false, u'\u0660'};

struct FoldCase {
  const char* rule;
  Folding folding;
  std::u16string text;
  std::u16string result;
};
std::ostream& operator<<(std::ostream& out, const FoldCase& row) { return out << row.rule; }

const FoldCase kFoldCases[] = {
    {"AsciiLetters", kNoLocale, u"AZaz@[`{09", u"azaz@[`{09"},
    {"OtherLettersStayWithoutLocale", kNoLocale, u"\u00c4\u212a\u00a0\u200e\u2019",
     u"\u00c4\u212a\u00a0\u200e\u2019"},
    {"AsciiLettersOfALocale", kLocale, u"MAI 1", u"mai 1"},
    {"LettersOfALocale", kLocale, u"\u00c4\u0416\u03a3\u03c2", u"\u00e4\u0436\u03c3\u03c3"},
    {"NothingBecomesTwo", kLocale, u"\u00df\u1e9e", u"\u00df\u00df"},
    {"DotlessLettersOfOthers", kLocale, u"\u0130\u0131I", u"\u0130\u0131i"},
    {"FourTurkicLetters", kTurkic, u"I\u0130\u0131i", u"iiii"},
    {"Blanks", kLocale, u"\u00a0\u202f\u2009", u"   "},
    {"Apostrophes", kLocale, u"d\u2019d\u02bcd'", u"d'd'd'"},
    {"DirectionMarksGo", kLocale, u"\u200e1\u200f\u061c", u"1"},
    {"OwnDigits", kArabicDigits, u"\u0660\u0669\u066a", u"09\u066a"},
    {"DigitsOfOthers", kLocale, u"\u0660", u"\u0660"},
    {"EndMarkAndFoldedCharacter", kLocale, u"\uffff\u001a", u"\uffff\u001a"},
    {"NoCharacterStaysWithoutLocale", kNoLocale, u"\ufffe", u"\ufffe"},
};

class FoldText : public testing::TestWithParam<FoldCase> {};
TEST_P(FoldText, GivesLowerCase) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(readable(folded(text.view(), GetParam().folding)), readable(GetParam().result));
}
INSTANTIATE_TEST_SUITE_P(Table, FoldText, testing::ValuesIn(kFoldCases), testing_support::ByRule());

}  // namespace
}  // namespace textio::datetime
