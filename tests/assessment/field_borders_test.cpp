#include <vltextstream/assessment/field_borders.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;
using Borders = std::vector<std::size_t>;

// The lines in turn until there are `count`.
std::u16string lines_of(std::size_t count, const std::vector<std::u16string>& lines) {
  std::u16string text;
  for (std::size_t k = 0; k < count; ++k) text += lines[k % lines.size()] + u'\n';
  return text;
}

struct BorderCase {
  const char* rule;
  std::vector<std::u16string> lines;  // twenty of them in turn
  Borders borders;
};
std::ostream& operator<<(std::ostream& out, const BorderCase& row) { return out << row.rule; }

const BorderCase kFoundCases[] = {
    {"LettersAfterDigits", {u"0123MILLER  0099X", u"4567LEE     0100Y"}, {0, 4, 12, 16, 17}},
    {"ColumnOfBlanks", {u"0123MILLER   7 99", u"4567LEE     12 10"}, {0, 4, 12, 15, 17}},
    {"TextAfterPaddedText",
     {u"0123MILLER  ROME  ", u"4567LEE     ULM   ", u"8901OTT     PARIS "},
     {0, 4, 12, 18}},
    {"BlanksWithinText",
     {u"0123ANN MILLER  17", u"4567BO LEE      20", u"8901CLARA VON B 31"},
     {0, 4, 16, 18}},
    {"DigitsThatNothingTellsApart",
     {u"ANNA  19840102000123", u"BERTA 19790331004567"},
     {}},  // two fields
    {"NumberAlignedToTheRight",
     {u"0123MILLER      5M", u"4567LEE       120F", u"8901KAY        17M"},
     {0, 4, 14, 17, 18}},
    {"SignOfANumber", {u"KD0123-0045EURO  1", u"KD4567+0100CENT  2"}, {0, 2, 6, 11, 17, 18}},
    {"DateWithItsMarks",
     {u"0123MILLER 2024-01-02A", u"4567LEE    2023-11-30B"},
     {0, 4, 11, 21, 22}},
    {"WithoutAnyBlanks", {u"0123M88K1234567890", u"4567F17L0987654321"}, {0, 4, 5, 7, 8, 18}},
    {"ShortDigitsBeforeAWord", {u"01MILL 9", u"02KAYE 8"}, {0, 2, 7, 8}},
};

const BorderCase kNoneCases[] = {
    {"CodesOfALine", {u"AB12CD", u"XY98ZW"}, {}},
    {"LongerCodesWithMarks", {u"SN-0123-A1B2", u"SN-9876-Z8Y7"}, {}},
    {"CodesBetweenBlanks", {u"A12  4.50  K100  7", u"B34  3.25  L234  8"}, {}},
    {"CodesOfDifferentLengths", {u"Cr11  21  7.5  8.5", u"Cr110 22  6.4  9.5"}, {}},
    {"OnlyColumnsOfBlanks", {u"0123 MILLER    17.5", u"4567 LEE       20.1"}, {}},
    {"SeparatorInTheSamePlace", {u"0123,MILLER12,0099X", u"4567,LEEMAN34,0100Y"}, {}},
    {"Times", {u"2024-01-02 10:15:00", u"2023-11-30 23:59:10"}, {}},
    {"LettersAlone", {u"ACGTACGTACGTACGTACGT", u"TTGACCATGGACCATTGACC"}, {}},
    {"LettersOrDigits", {u"4f1a02c8be01d77a4f1a", u"a1b2cd3e45ab6cd7e8f9"}, {}},
    {"LinesOfTwoLengths", {u"0123MILLER  0099X", u"4567LEE     0100YZ"}, {}},
};

class FindBorders : public testing::TestWithParam<BorderCase> {};
TEST_P(FindBorders, OfFieldsThatTouch) {
  const Sample sample(lines_of(20, GetParam().lines));
  EXPECT_EQ(find_borders(sample.lines()), GetParam().borders);
}
INSTANTIATE_TEST_SUITE_P(Found, FindBorders, testing::ValuesIn(kFoundCases), ByRule());
INSTANTIATE_TEST_SUITE_P(None, FindBorders, testing::ValuesIn(kNoneCases), ByRule());

const std::vector<std::u16string> kLines = {u"0123MILLER  0099X", u"4567LEE     0100Y"};

TEST(FindBordersOfFewLines, AreFoundInTen) {
  EXPECT_EQ(find_borders(Sample(lines_of(10, kLines)).lines()), (Borders{0, 4, 12, 16, 17}));
  EXPECT_TRUE(find_borders(Sample(lines_of(9, kLines)).lines()).empty());
  EXPECT_TRUE(find_borders(Sample(u"").lines()).empty());
}

TEST(FindBordersOfLinesOfOtherLengths, AreFoundIfOneInTenIs) {
  const std::u16string text = lines_of(18, kLines);
  EXPECT_FALSE(find_borders(Sample(text + u"END\nOF FILE\n").lines()).empty());
  EXPECT_TRUE(find_borders(Sample(text + u"END\nOF\nFILE\n").lines()).empty());
}

TEST(FindBordersOfBlankLines, DoNotCount) {
  EXPECT_FALSE(find_borders(Sample(lines_of(10, kLines) + u"\n\n  \n").lines()).empty());
}

}  // namespace
}  // namespace textio::assessment
