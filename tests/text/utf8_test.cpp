#include <vltextstream/text/utf8.hpp>

#include <initializer_list>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;

// --- from UTF-16 -------------------------------------------------------------------------------

const std::string kBad = "\xEF\xBF\xBD";

std::u16string units(std::initializer_list<int> values) {
  std::u16string text;
  for (const int value : values) text.push_back(static_cast<char16_t>(value));
  return text;
}

struct LossyCase {
  const char* rule;
  std::u16string text;
  std::string utf8;
};
std::ostream& operator<<(std::ostream& out, const LossyCase& row) { return out << row.rule; }

const LossyCase kLossy[] = {
    {"Empty", u"", ""},
    {"Nul", units({0}), std::string(1, '\0')},
    {"LastOfOneByte", units({0x7F}), "\x7F"},
    {"FirstOfTwoBytes", units({0x80}), "\xC2\x80"},
    {"LastOfTwoBytes", units({0x7FF}), "\xDF\xBF"},
    {"FirstOfThreeBytes", units({0x800}), "\xE0\xA0\x80"},
    {"LastBeforeTheSurrogates", units({0xD7FF}), "\xED\x9F\xBF"},
    {"FirstAfterTheSurrogates", units({0xE000}), "\xEE\x80\x80"},
    {"LastOfThreeBytes", units({0xFFFF}), "\xEF\xBF\xBF"},
    {"FirstPair", units({0xD800, 0xDC00}), "\xF0\x90\x80\x80"},
    {"LastPair", units({0xDBFF, 0xDFFF}), "\xF4\x8F\xBF\xBF"},
    {"LeadAlone", units({'a', 0xD800, 'b'}), "a" + kBad + "b"},
    {"LeadAtTheEnd", units({'a', 0xDBFF}), "a" + kBad},
    {"TrailAlone", units({0xDC80, 'b'}), kBad + "b"},
    {"TwoLeadsThenATrail", units({0xD800, 0xD83D, 0xDC80}), kBad + "\xF0\x9F\x92\x80"},
    {"LeadBeforeALargerUnit", units({0xD800, 0xE000}), kBad + "\xEE\x80\x80"},
    {"TrailThenLead", units({0xDC00, 0xD800}), kBad + kBad},
};

class Utf8Lossy : public testing::TestWithParam<LossyCase> {};
TEST_P(Utf8Lossy, IsWellFormed) { EXPECT_EQ(to_utf8_lossy(GetParam().text), GetParam().utf8); }
INSTANTIATE_TEST_SUITE_P(Table, Utf8Lossy, testing::ValuesIn(kLossy), ByRule());

// --- from UTF-8 ---------------------------------------------------------------------------------

struct CharacterCase {
  const char* rule;
  std::string bytes;
  char32_t code;
  std::size_t length;
  bool is_well_formed;
};
std::ostream& operator<<(std::ostream& out, const CharacterCase& row) { return out << row.rule; }

const CharacterCase kCharacters[] = {
    {"Letter", "ab", U'a', 1, true},
    {"Nul", std::string(1, '\0'), 0, 1, true},
    {"FirstOfTwoBytes", "\xC2\x80", 0x80, 2, true},
    {"LastOfTwoBytes", "\xDF\xBF", 0x7FF, 2, true},
    {"FirstOfThreeBytes", "\xE0\xA0\x80", 0x800, 3, true},
    {"LastBeforeTheSurrogates", "\xED\x9F\xBF", 0xD7FF, 3, true},
    {"FirstAfterTheSurrogates", "\xEE\x80\x80", 0xE000, 3, true},
    {"LastOfThreeBytes", "\xEF\xBF\xBF", 0xFFFF, 3, true},
    {"FirstOfFourBytes", "\xF0\x90\x80\x80", 0x10000, 4, true},
    {"LastOfAll", "\xF4\x8F\xBF\xBF", 0x10FFFF, 4, true},

    {"LoneContinuation", "\x80", 0xFFFD, 1, false},
    {"OverlongTwoBytes", "\xC1\xBF", 0xFFFD, 1, false},
    {"OverlongThreeBytes", "\xE0\x9F\xBF", 0xFFFD, 1, false},
    {"OverlongFourBytes", "\xF0\x8F\xBF\xBF", 0xFFFD, 1, false},
    {"Surrogate", "\xED\xA0\x80", 0xFFFD, 1, false},
    {"AboveTheLast", "\xF4\x90\x80\x80", 0xFFFD, 1, false},
    {"NoLead", "\xF5\x80\x80\x80", 0xFFFD, 1, false},
    {"CutAfterOne", "\xE2", 0xFFFD, 1, false},
    {"CutAfterTwo", "\xE2\x82", 0xFFFD, 2, false},
    {"CutAfterThree", "\xF0\x9F\x92", 0xFFFD, 3, false},
    {"ThirdDoesNotFit",
     "\xF0\x9F"
     "ab",
     0xFFFD, 2, false},
};

class FirstCharacter : public testing::TestWithParam<CharacterCase> {};
TEST_P(FirstCharacter, IsDecodedOrReplaced) {
  const CharacterCase& row = GetParam();
  const Utf8Character c = first_character(row.bytes);
  EXPECT_EQ(c.code, row.code);
  EXPECT_EQ(c.length, row.length);
  EXPECT_EQ(c.is_well_formed, row.is_well_formed);
}
INSTANTIATE_TEST_SUITE_P(Table, FirstCharacter, testing::ValuesIn(kCharacters), ByRule());

TEST(Utf8, OfEveryCharacterComesBack) {
  for (char32_t code = 0; code <= 0x10FFFF; ++code) {
    if (code >= 0xD800 && code <= 0xDFFF) continue;
    std::string bytes;
    append_utf8(bytes, code);
    const Utf8Character c = first_character(bytes);
    ASSERT_TRUE(c.is_well_formed && c.code == code && c.length == bytes.size())
        << static_cast<unsigned>(code);
  }
}

// --- unprintable characters --------------------------------------------------------------------

struct PrintableCase {
  const char* rule;
  char32_t first;  // of the unprintable range; the neighbours of both ends are printable
  char32_t last;
};
std::ostream& operator<<(std::ostream& out, const PrintableCase& row) { return out << row.rule; }

const PrintableCase kUnprintable[] = {
    {"DeleteAndC1Controls", 0x7F, 0x9F},
    {"SoftHyphen", 0xAD, 0xAD},
    {"ArabicLetterMark", 0x61C, 0x61C},
    {"MongolianVowelSeparator", 0x180E, 0x180E},
    {"ZeroWidthSpace", 0x200B, 0x200B},
    {"DirectionMarks", 0x200E, 0x200F},
    {"SeparatorsAndEmbeddings", 0x2028, 0x202E},
    {"WordJoiner", 0x2060, 0x2060},
    {"IsolatesAndDeprecatedFormats", 0x2066, 0x206F},
    {"ByteOrderMark", 0xFEFF, 0xFEFF},
    {"Surrogates", 0xD800, 0xDFFF},
    {"Tags", 0xE0000, 0xE007F},
};

class Unprintable : public testing::TestWithParam<PrintableCase> {};
TEST_P(Unprintable, IsTheRangeAlone) {
  EXPECT_FALSE(is_unprintable(GetParam().first - 1));
  for (char32_t c = GetParam().first; c <= GetParam().last; ++c) EXPECT_TRUE(is_unprintable(c));
  EXPECT_FALSE(is_unprintable(GetParam().last + 1));
}
INSTANTIATE_TEST_SUITE_P(Table, Unprintable, testing::ValuesIn(kUnprintable), ByRule());

TEST(UnprintableControls, EndBeforeTheSpace) {
  for (char32_t c = 0; c < 0x20; ++c) EXPECT_TRUE(is_unprintable(c));
  EXPECT_FALSE(is_unprintable(U' '));
}

}  // namespace
}  // namespace textio
