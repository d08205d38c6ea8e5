#include <vltextstream/layout/binary_look.hpp>

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::TempFolder;

std::u16string letters(std::size_t count) { return std::u16string(count, u'x'); }
std::u16string controls(std::size_t count) { return std::u16string(count, u'\x04'); }

struct LookCase {
  const char* rule;
  std::u16string text;
  bool looks_binary;
};
std::ostream& operator<<(std::ostream& out, const LookCase& row) { return out << row.rule; }

const LookCase kLookCases[] = {
    {"Nothing", u"", false},
    {"Words", u"a,b\n1,2\n", false},

    // More than one in 50.
    {"OneInFifty", letters(49) + controls(1), false},
    {"OneInFortyNine", letters(48) + controls(1), true},
    {"TwoInHundred", letters(98) + controls(2), false},
    {"ThreeInHundred", letters(97) + controls(3), true},
    {"WhereverTheyAre", controls(3) + letters(97), true},

    // Each of the counted characters: 0, 4 to 7, 14 to 25, 127.
    {"Nul", std::u16string(1, u'\0'), true},
    {"FirstOfFourToSeven", u"\x04", true},
    {"LastOfFourToSeven", u"\x07", true},
    {"FirstOfFourteenToTwentyFive", u"\x0E", true},
    {"LastOfFourteenToTwentyFive", u"\x19", true},
    {"Delete", u"\x7F", true},

    // Those beside them.
    {"SeparatorsOfLists", u"a\x01\x02\x03", false},
    {"BackspaceTabsAndLineEnds", u"\b\t\n\v\f\r", false},
    {"FoldedCharacters", u"\x1A\x1A\x1A", false},
    {"Escape", u"\x1B[1m", false},
    {"SeparatorsOfFields", u"\x1C\x1D\x1E\x1F", false},
    {"BlankAndTilde", u" ~", false},
    {"ControlsAboveAscii", u"\x80\x85\x9F", false},
    {"ReplacedBytes", u"\xFFFD\xFFFD\xFFFD", false},
    {"LowByteOfAnotherCharacter", u"\x0104\x0400\x7F00", false},

    // The start alone.
    {"LastThatIsLookedAt", letters(kBinaryLookUnits - 1'311) + controls(1'311), true},
    {"OneFurther", letters(kBinaryLookUnits - 1'310) + controls(1'311), false},
};

class LooksBinary : public testing::TestWithParam<LookCase> {};
TEST_P(LooksBinary, ByTheShareOfControlCharacters) {
  EXPECT_EQ(looks_binary(ExactText(GetParam().text).view()), GetParam().looks_binary);
}
INSTANTIATE_TEST_SUITE_P(Table, LooksBinary, testing::ValuesIn(kLookCases), ByRule());

// --- in a layout ---------------------------------------------------------------------------------

struct FileCase {
  const char* rule;
  std::string bytes;
  bool looks_binary;
};
std::ostream& operator<<(std::ostream& out, const FileCase& row) { return out << row.rule; }

std::string start_of_a_program() {
  std::string bytes =
      "\x7F"
      "ELF\x02\x01\x01";
  for (int i = 0; i < 50; ++i) bytes += std::string("\0\0\0\x04\0@\n", 7);
  return bytes;
}

// Every byte value equally often, as in compressed data.
std::string even_bytes() {
  std::string bytes;
  for (int i = 0; i < 8'192; ++i) bytes.push_back(static_cast<char>(i * 7 + i / 256));
  return bytes;
}

const FileCase kFileCases[] = {
    {"Program", start_of_a_program(), true},
    {"CompressedData", "\x89PNG\r\n\x1A\n" + even_bytes(), true},
    {"Table", "a,b\n1,2\n3,4\n", false},
    {"TableOfEmoji", "\xF0\x9F\x92\x80,b\n\xF0\x9F\x92\x80,2\n", false},
    {"TableInUtf16",
     std::string("\xFF\xFE"
                 "1\0,\0"
                 "2\0\n\0",
                 10),
     false},
    {"TableSeparatedByAControl",
     "a\x01"
     "b\n1\x01"
     "2\n3\x01"
     "4\n",
     false},
};

class LayoutLooksBinary : public testing::TestWithParam<FileCase> {};
TEST_P(LayoutLooksBinary, WhereItsSampleDoes) {
  const TempFolder folder;
  EXPECT_EQ(detect_layout(folder.file("t", GetParam().bytes)).looks_binary,
            GetParam().looks_binary);
}
INSTANTIATE_TEST_SUITE_P(Table, LayoutLooksBinary, testing::ValuesIn(kFileCases), ByRule());

TEST(LayoutLooksBinary, OfATextInMemoryToo) {
  EXPECT_TRUE(detect_layout(std::u16string_view(u"a\x04"
                                                u"b\n"))
                  .looks_binary);
  EXPECT_FALSE(detect_layout(std::u16string_view(u"a,b\n")).looks_binary);
}

}  // namespace
}  // namespace textio::standalone
