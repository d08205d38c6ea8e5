#include "tool/showing/places.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

struct WidthCase {
  const char* rule;
  std::string text;
  std::size_t width;
  std::size_t apart = width;  // where nothing is joined
};
std::ostream& operator<<(std::ostream& out, const WidthCase& row) { return out << row.rule; }

#define WOMAN "\xF0\x9F\x91\xA9"
#define MAN "\xF0\x9F\x91\xA8"
#define JOINER "\xE2\x80\x8D"
#define LAPTOP "\xF0\x9F\x92\xBB"
#define BROWN "\xF0\x9F\x8F\xBD"  // of a skin
#define SUN "\xE2\x98\x80"
#define AS_EMOJI "\xEF\xB8\x8F"
#define LETTER_D "\xF0\x9F\x87\xA9"  // of a flag
#define LETTER_E "\xF0\x9F\x87\xAA"

const WidthCase kWidths[] = {
    {"Empty", "", 0},
    {"Ascii", "abc", 3},
    {"Umlaut", "\xC3\xA4", 1},
    {"CombiningMark", "a\xCC\x88", 1},
    {"Han", "\xE6\xBC\xA2\xE5\xAD\x97", 4},
    {"Hangul", "\xED\x95\x9C", 2},
    {"HangulInThreeParts", "\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB", 2},
    {"Fullwidth", "\xEF\xBC\xA1", 2},
    {"Halfwidth", "\xEF\xBD\xB1", 1},
    {"Emoji", "\xF0\x9F\x98\x80", 2},
    {"ZeroWidthJoiner", "a\xE2\x80\x8D", 1},
    {"JoinerBetweenLetters", "a" JOINER "b", 2},
    {"Couple", WOMAN JOINER MAN, 2, 4},
    {"CoupleSideBySide", WOMAN MAN, 4},
    {"WithAColour", WOMAN BROWN, 2, 4},
    {"WithAColourAtALaptop", WOMAN BROWN JOINER LAPTOP, 2, 6},
    {"ColourAlone", BROWN, 2},
    {"ColourAfterALetter", "a" BROWN, 3},
    {"SunAsText", SUN, 1},
    {"SunAsEmoji", SUN AS_EMOJI, 2},
    {"SunAsEmojiOnce", SUN AS_EMOJI AS_EMOJI, 2},
    {"KeyOne", "1" AS_EMOJI "\xE2\x83\xA3", 2},
    {"Flag", LETTER_D LETTER_E, 2},
    {"TwoFlags", LETTER_D LETTER_E LETTER_E LETTER_D, 4},
    {"Hebrew", "\xD7\xA9\xD7\x9D", 2},
    {"Replacement", "\xEF\xBF\xBD", 1},
};

class DisplayWidth : public testing::TestWithParam<WidthCase> {};
TEST_P(DisplayWidth, CountsPlaces) { EXPECT_EQ(display_width(GetParam().text), GetParam().width); }
TEST_P(DisplayWidth, IsMoreWhereEmojiAreNotJoined) {
  EXPECT_EQ(most_width(GetParam().text), GetParam().apart);
}
TEST_P(DisplayWidth, IsThatOfTheWholeText) {
  const WidthCase& row = GetParam();
  EXPECT_EQ(length_within(row.text, row.apart), row.text.size());
}
INSTANTIATE_TEST_SUITE_P(Table, DisplayWidth, testing::ValuesIn(kWidths), ByRule());

struct LengthCase {
  const char* rule;
  std::string text;
  std::size_t most;
  std::size_t length;
};
std::ostream& operator<<(std::ostream& out, const LengthCase& row) { return out << row.rule; }

const LengthCase kLengths[] = {
    {"Ascii", "abc", 2, 2},
    {"NoPlace", "abc", 0, 0},
    {"NotHalfAWideLetter", "\xE6\xBC\xA2\xE5\xAD\x97", 3, 3},
    {"MarksStayWithTheirLetter",
     "a\xCC\x88"
     "b",
     1, 3},
    {"NotHalfAFlag", "a" LETTER_D LETTER_E, 2, 1},
    {"OneOfTwoFlags", LETTER_D LETTER_E LETTER_E LETTER_D, 3, 8},
    {"NotHalfACouple", "a" WOMAN JOINER MAN, 4, 1},
    {"CoupleSideBySide", "a" WOMAN JOINER MAN "b", 5, 12},
    {"NotWithoutItsColour", "a" WOMAN BROWN, 4, 1},
    {"ColourBelongsToTheLetterBeforeIt", "a" BROWN, 2, 0},
    {"JoinersJoinNoLetters", "a" JOINER "b", 1, 4},
    {"NotHalfAKey", "a1" AS_EMOJI "\xE2\x83\xA3", 2, 1},
    {"NotHalfASyllable", "a\xE1\x84\x92\xE1\x85\xA1\xE1\x86\xAB", 2, 1},
    {"SyllableWithAnEnd", "\xED\x95\x98\xE1\x86\xAB\xED\x95\x9C", 3, 6},
    {"SyllablesOfTheirOwn", "\xED\x95\x9C\xED\x95\x9C", 3, 3},
    {"TwoInitialsOfASyllable", "\xE1\x84\x80\xE1\x84\x80\xEA\xB0\x80", 5, 0},
    {"InitialAndClosedSyllable", "a\xE1\x84\x80\xEA\xB0\x81", 4, 1},
    {"InitialAndLetter",
     "\xE1\x84\x80"
     "a",
     2, 3},
    {"ClosedSyllableWithAnEnd",
     "\xEA\xB0\x81\xE1\x86\xA8"
     "a",
     2, 6},
    {"OpenSyllableWithAVowel",
     "\xEA\xB0\x80\xE1\x85\xA1"
     "a",
     2, 6},
    {"OpenSyllableAndLetter",
     "\xEA\xB0\x80"
     "a",
     2, 3},
    {"SignBeforeANumber", "a\xD8\x80\xD9\xA1", 1, 1},
    {"JoinerAfterAnEmojiJoinsNoLetter", WOMAN JOINER "a", 2, 7},
    {"LetterOfAFlagAndAnother", LETTER_D "a", 2, 4},
    {"LetterIsNoEmoji", "a" AS_EMOJI "b", 1, 4},
    {"VowelSignTakesAPlace", "a\xE0\xA4\xA8\xE0\xA4\xBE", 2, 1},
    {"EightMarks",
     "a\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88"
     "b",
     9, 18},
    {"NotNineMarks", "a\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88", 9,
     17},
};

class LengthWithin : public testing::TestWithParam<LengthCase> {};
TEST_P(LengthWithin, EndsWhereTheNextLetterDoesNotFit) {
  const LengthCase& row = GetParam();
  EXPECT_EQ(length_within(row.text, row.most), row.length);
}
INSTANTIATE_TEST_SUITE_P(Table, LengthWithin, testing::ValuesIn(kLengths), ByRule());

const LengthCase kCharacters[] = {
    {"Fewer", "ab", 3, 2},
    {"AsMany", "abc", 3, 3},
    {"OneMore", "abcd", 3, 3},
    {"None", "abc", 0, 0},
    {"Han", "\xE6\xBC\xA2\xE5\xAD\x97", 1, 3},
    {"WithMarks", "ab\xCC\x88", 2, 1},
    {"Couple", "a" WOMAN JOINER MAN, 3, 1},
    {"WholeCouple", WOMAN JOINER MAN "a", 3, 11},
    {"TwoFlags", LETTER_D LETTER_E LETTER_E LETTER_D, 3, 8},
};

class LengthOfCharacters : public testing::TestWithParam<LengthCase> {};
TEST_P(LengthOfCharacters, EndsBetweenLetters) {
  const LengthCase& row = GetParam();
  EXPECT_EQ(length_of_characters(row.text, row.most), row.length);
}
INSTANTIATE_TEST_SUITE_P(Table, LengthOfCharacters, testing::ValuesIn(kCharacters), ByRule());

TEST(HasRightToLeft, FindsLetters) {
  EXPECT_TRUE(has_right_to_left("a \xD7\xA9"));                  // Hebrew
  EXPECT_TRUE(has_right_to_left("\xD8\xA7\xD9\x84"));            // Arabic
  EXPECT_FALSE(has_right_to_left("abc \xC3\xA4 \xE6\xBC\xA2"));  // Latin and Han
  EXPECT_FALSE(has_right_to_left("\xD9\xA1"));                   // a digit of Arabic
  EXPECT_FALSE(has_right_to_left(""));
}

}  // namespace
}  // namespace textio::tool
