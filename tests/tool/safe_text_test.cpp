#include "tool/safe_text.hpp"

#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/text/utf8.hpp>
#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

const std::string kReplaced = "\xEF\xBF\xBD";
const std::string kEllipsis = "...";

// --- what is shown -------------------------------------------------------------------------------

struct ShownCase {
  const char* rule;
  std::string text;
  std::string shown;
};
std::ostream& operator<<(std::ostream& out, const ShownCase& row) { return out << row.rule; }

// By their code, each between two letters.
const char32_t kHidden[] = {0x00,   0x1A,   0x1B,    0x1F,    0x7F,    0x80,   0x9F,
                            0xAD,   0x061C, 0x180E,  0x200B,  0x200E,  0x200F, 0x2028,
                            0x2029, 0x202A, 0x202E,  0x2060,  0x2066,  0x2069, 0x206A,
                            0x206F, 0xFEFF, 0xE0000, 0xE0001, 0xE0020, 0xE007F};
const char32_t kShown[] = {0x20,   0x7E,   0xA0,   0xAC,    0xAE,    0x061B, 0x180D, 0x180F,
                           0x200A, 0x200D, 0x2027, 0x202F,  0x205F,  0x2061, 0x2065, 0x2070,
                           0xFEFE, 0xFF00, 0xFFFD, 0x1F480, 0xDFFFF, 0xE0080};

TEST(Printable, ReplacesWhatCommandsOrHides) {
  for (const char32_t code : kHidden) {
    std::string text = "a";
    append_utf8(text, code);
    text += 'b';
    EXPECT_EQ(printable(text), "a" + kReplaced + "b") << std::hex << static_cast<unsigned>(code);
    EXPECT_EQ(printable(standalone::from_utf8(text)), "a" + kReplaced + "b");
  }
}

TEST(Printable, LeavesTheirNeighbours) {
  for (const char32_t code : kShown) {
    std::string text = "a";
    append_utf8(text, code);
    text += 'b';
    EXPECT_EQ(printable(text), text) << std::hex << static_cast<unsigned>(code);
    EXPECT_EQ(printable(standalone::from_utf8(text)), text);
  }
}

const ShownCase kShownCases[] = {
    {"Nothing", "", ""},
    {"Words", "red\x1B[31m", "red" + kReplaced + "[31m"},
    {"OneForEachIllFormedByte", "a\xE2\x82z", "a" + kReplaced + kReplaced + "z"},
    {"CutAtTheEnd", "a\xF0\x9F", "a" + kReplaced + kReplaced},
};

class PrintableText : public testing::TestWithParam<ShownCase> {};
TEST_P(PrintableText, IsShown) { EXPECT_EQ(printable(GetParam().text), GetParam().shown); }
TEST_P(PrintableText, IsWrittenAsItIsShown) {
  char* bytes = nullptr;
  std::size_t size = 0;
  std::FILE* const file = open_memstream(&bytes, &size);
  write_printable(GetParam().text, file);
  std::fclose(file);
  EXPECT_EQ(std::string(bytes, size), GetParam().shown);
  std::free(bytes);
}
INSTANTIATE_TEST_SUITE_P(Table, PrintableText, testing::ValuesIn(kShownCases), ByRule());

// U+DC80 to U+DCFF is how a byte that is no UTF-8 is kept.
TEST(Printable, ReplacesLoneSurrogates) {
  const std::u16string text = {u'a', 0xD800, u'b', 0xDC41, u'c', 0xDC80, 0xDBFF};
  EXPECT_EQ(printable(text), "a" + kReplaced + "b" + kReplaced + "c" + kReplaced + kReplaced);
}

// --- echoes --------------------------------------------------------------------------------------

std::string letters(std::size_t count) { return std::string(count, 'x'); }

const ShownCase kEchoes[] = {
    {"Nothing", "", ""},
    {"AsLongAsMayBe", letters(80), letters(80)},
    {"OneTooMany", letters(81), letters(77) + kEllipsis},
    {"VeryLong", letters(100'000), letters(77) + kEllipsis},
    {"EightyCharactersOfTwoBytes",
     [] {
       std::string text;
       for (int i = 0; i < 80; ++i) text += "\xC3\xA9";
       return text;
     }(),
     [] {
       std::string text;
       for (int i = 0; i < 80; ++i) text += "\xC3\xA9";
       return text;
     }()},
    {"NoCharacterIsCut", letters(76) + "\xF0\x9F\x92\x80wxyz",
     letters(76) + "\xF0\x9F\x92\x80" + kEllipsis},
};

class Shortened : public testing::TestWithParam<ShownCase> {};
TEST_P(Shortened, HasEightyCharactersAtMost) {
  EXPECT_EQ(shortened(GetParam().text), GetParam().shown);
}
INSTANTIATE_TEST_SUITE_P(Table, Shortened, testing::ValuesIn(kEchoes), ByRule());

TEST(WithShortEchoes, ShortensEachRepetition) {
  const std::string typed = letters(100);
  const std::string shorter = letters(77) + kEllipsis;
  EXPECT_EQ(with_short_echoes("'" + typed + "' is no '" + typed + "'.", {"short", typed}),
            "'" + shorter + "' is no '" + shorter + "'.");
  EXPECT_EQ(with_short_echoes("short is short", {"short", typed}), "short is short");
  EXPECT_EQ(with_short_echoes("", {typed, ""}), "");
}

}  // namespace
}  // namespace textio::tool
