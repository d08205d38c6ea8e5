#include <vltextstream/strategy/utf8.hpp>

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
    {"TrailThenLead", units({0xDC00, 0xD800}), kBad + kBad},
};

class Utf8Lossy : public testing::TestWithParam<LossyCase> {};
TEST_P(Utf8Lossy, IsWellFormed) { EXPECT_EQ(to_utf8_lossy(GetParam().text), GetParam().utf8); }
INSTANTIATE_TEST_SUITE_P(Table, Utf8Lossy, testing::ValuesIn(kLossy), ByRule());

// --- code points -------------------------------------------------------------------------------

struct CodePointsCase {
  const char* rule;
  std::string utf8;
  std::u32string code_points;
};
std::ostream& operator<<(std::ostream& out, const CodePointsCase& row) { return out << row.rule; }

const CodePointsCase kCodePoints[] = {
    {"Empty", "", U""},
    {"EachLength", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x92\x80", U"a\u00E9\u20AC\U0001F480"},
    {"TrailAlone",
     "\x80"
     "a",
     U"\uFFFDa"},
    {"CutTwo", "\xC3", U"\uFFFD"},
    {"CutByAnother",
     "\xE2\x82"
     "a",
     U"\uFFFD\uFFFD"
     U"a"},
    {"CutFour", "\xF0\x9F\x92", U"\uFFFD\uFFFD\uFFFD"},
    {"OverlongTwo", "\xC1\xBF", U"\uFFFD\uFFFD"},
    {"SmallestOfTwo", "\xC2\x80", U"\u0080"},
    {"OverlongThree", "\xE0\x9F\xBF", U"\uFFFD\uFFFD\uFFFD"},
    {"SmallestOfThree", "\xE0\xA0\x80", U"\u0800"},
    {"OverlongFour", "\xF0\x8F\xBF\xBF", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"SmallestOfFour", "\xF0\x90\x80\x80", U"\U00010000"},
    {"LargestOfFour", "\xF4\x8F\xBF\xBF", U"\U0010FFFF"},
    {"BeyondTheLargest", "\xF4\x90\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD"},
    {"Surrogate", "\xED\xA0\x80", U"\uFFFD\uFFFD\uFFFD"},
    {"FiveByteLead", "\xF8\x88\x80\x80\x80", U"\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"},
};

class Utf8CodePoints : public testing::TestWithParam<CodePointsCase> {};
TEST_P(Utf8CodePoints, MarkEachIllFormedByte) {
  EXPECT_EQ(code_points_of(GetParam().utf8), GetParam().code_points);
}
INSTANTIATE_TEST_SUITE_P(Table, Utf8CodePoints, testing::ValuesIn(kCodePoints), ByRule());

TEST(Utf8, EveryCodePointSurvivesTheWayThereAndBack) {
  for (char32_t c = 0; c <= 0x10FFFF; ++c) {
    if (c == 0xD800) c = 0xE000;
    std::string utf8;
    append_utf8(utf8, c);
    ASSERT_EQ(code_points_of(utf8), std::u32string(1, c));
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
