#include "tool/showing/terminal_picture.hpp"

#include <algorithm>
#include <cmath>
#include <ostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <vltextstream/text/utf8.hpp>

#include "support/rule_name.hpp"
#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;

Span name(std::size_t column, std::string text) {
  return {SpanRole::name, column, std::move(text)};
}
Span cell(std::size_t column, std::string text) {
  return {SpanRole::cell, column, std::move(text)};
}
Span comma() { return {SpanRole::delimiter, kNoColumn, ","}; }
Span blanks(std::size_t count) { return {SpanRole::padding, kNoColumn, std::string(count, ' ')}; }
Span border() { return {SpanRole::border}; }
Span text(std::string text) { return {SpanRole::text, kNoColumn, std::move(text)}; }
Row row(RowRole role, std::uint64_t line, std::vector<Span> spans) {
  return {role, line, false, std::move(spans)};
}
Row hidden(std::uint64_t count) { return {RowRole::hidden, std::nullopt, false, {}, count}; }

#define PLAIN "\x1B[0m"
#define GREY "\x1B[38;5;243m"
#define TEAL "\x1B[38;5;30m"
#define BOLD_TEAL "\x1B[1;38;5;30m"
#define ITALIC_TEAL "\x1B[3;38;5;30m"
#define PURPLE "\x1B[38;5;133m"
#define BOLD_PURPLE "\x1B[1;38;5;133m"
#define ITALIC_PURPLE "\x1B[3;38;5;133m"
#define RED "\x1B[1;38;5;161m"
#define GREEN "\x1B[38;5;28m"
#define FAMILY "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9\xE2\x80\x8D\xF0\x9F\x91\xA7"

struct TextCase {
  const char* rule;
  Picture picture;
  TerminalStyle style;
  std::string text;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const Picture kTwoColumns = {{row(RowRole::above, 9, {text("Levels")}),
                              row(RowRole::names, 10, {name(0, "day"), comma(), name(1, "level")}),
                              row(RowRole::data, 11, {cell(0, "1"), comma(), cell(1, "143")}),
                              row(RowRole::data, 12, {cell(0, "2"), comma(), cell(1, "147")}),
                              row(RowRole::blank, 13, {}), hidden(1200)},
                             2};

const std::string kHebrew = "\xD7\xA9\xD7\x9D";
const std::string kHan = "\xE6\xBC\xA2";

const TextCase kTexts[] = {
    {"NumbersAndRoles",
     kTwoColumns,
     {},
     "  9  above  Levels\n"
     " 10  names  day,level\n"
     " 11  data   1,143\n"
     " 12         2,147\n"
     " 13  blank\n"
     "  \xE2\x8B\xAE         1,200 more lines\n"},
    {"OneMoreLine",
     {{row(RowRole::data, 1, {cell(0, "1")}), hidden(1)}},
     {},
     " 1  data  1\n"
     " \xE2\x8B\xAE        1 more line\n"},
    {"LinesThatWereNotLookedAt",
     {{row(RowRole::data, 1, {cell(0, "1")}),
       {RowRole::unseen, std::nullopt, false, {}, 2900, true},
       {RowRole::unseen, std::nullopt, false, {}, std::nullopt, true}}},
     {},
     " 1  data  1\n"
     " \xE2\x8B\xAE        about 2,900 more lines, not looked at\n"
     " \xE2\x8B\xAE        more lines, which were not looked at\n"},
    {"NoRolesOfAText",
     {{row(RowRole::text, 1, {text("Dear Lena")}), row(RowRole::text, 2, {text("Thanks")})}},
     {},
     " 1  Dear Lena\n"
     " 2  Thanks\n"},
    // The margin takes ten places, so ten are left.
    {"LongTextIsCut",
     {{row(RowRole::data, 1, {text("abcdefghijk")}), row(RowRole::data, 2, {text("abcdefghij")})}},
     {20},
     " 1  data  abcdefghi\xE2\x80\xA6\n"
     " 2        abcdefghij\n"},
    // Twenty are left: two for the commas, two for short cells, sixteen for the long one.
    {"LongCellLeavesRoomForTheOthers",
     {{row(RowRole::data, 1,
           {cell(0, "1"), comma(), cell(1, "abcdefghijklmnopqrst"), comma(), cell(2, "3")})},
      3},
     {30},
     " 1  data  1,abcdefghijklmno\xE2\x80\xA6,3\n"},
    // Seventeen are left: two of eight and the comma.
    {"LongCellsShare",
     {{row(RowRole::data, 1, {cell(0, "abcdefghij"), comma(), cell(1, "klmnopqrst")})}, 2},
     {27},
     " 1  data  abcdefg\xE2\x80\xA6,klmnopq\xE2\x80\xA6\n"},
    // Ten are left.
    {"TooManyColumns",
     {{row(RowRole::data, 1,
           {cell(0, "1"), comma(), cell(1, "22"), comma(), cell(2, "333"), comma(), cell(3, "4444"),
            comma(), cell(4, "5")})},
      5},
     {20},
     " 1  data  1,22,333,\xE2\x80\xA6\n"
     " \xE2\x8B\xAE  the first 3 of \xE2\x80\xA6\n"},
    {"WideLettersAreNotCutInHalf",
     {{row(RowRole::data, 1, {text(kHan + kHan + kHan + kHan + kHan + kHan)})}},
     {20},
     " 1  data  " + kHan + kHan + kHan + kHan + "\xE2\x80\xA6\n"},
    {"BarBetweenAlignedColumns",
     {{row(RowRole::data, 1, {cell(0, "A1"), blanks(3), border(), cell(1, "5.0")}),
       row(RowRole::data, 2,
           {blanks(1), cell(0, "A"), blanks(2), border(), blanks(1), cell(1, "10"), blanks(2)})},
      2,
      true},
     {},
     " 1  data  A1   \xE2\x94\x82"
     "5.0\n"
     " 2         A  \xE2\x94\x82 10  \n"},
    {"BarWhereNothingSeparates",
     {{row(RowRole::data, 1, {cell(0, "A1"), border(), cell(1, "50")})}, 2, true},
     {},
     " 1  data  A1\xE2\x94\x82"
     "50\n"},
    {"BlankAsDelimiterIsADot",
     {{row(RowRole::data, 1, {cell(0, "A"), {SpanRole::delimiter, kNoColumn, " "}, cell(1, "B")})},
      2},
     {},
     " 1  data  A\xC2\xB7"
     "B\n"},
    {"RightToLeftIsIsolated",
     {{row(RowRole::data, 1, {cell(0, kHebrew), comma(), cell(1, "7")})}, 2},
     {},
     " 1  data  \xE2\x81\xA8" + kHebrew + "\xE2\x81\xA9,7\n"},
    {"ColoursAlternate",
     {{row(RowRole::data, 1, {cell(0, "1"), comma(), cell(1, "2"), comma(), cell(2, "3")})}, 3},
     {80, true},
     GREY " 1  data  " PLAIN TEAL "1" PLAIN RED "," PLAIN PURPLE "2" PLAIN RED "," PLAIN TEAL
          "3" PLAIN "\n"},
    {"BlanksSufficeBetweenColours",
     {{row(RowRole::data, 1, {cell(0, "1"), blanks(2), border(), cell(1, "2")})}, 2, true},
     {80, true},
     GREY " 1  data  " PLAIN TEAL "1" PLAIN "  " PURPLE "2" PLAIN "\n"},
    {"RolesHaveColours",
     {{row(RowRole::comment, 1, {text("% x")}), row(RowRole::above, 2, {text("y")}),
       row(RowRole::names, 3, {name(0, "a"), {SpanRole::quote, 1, "'"}, name(1, "b")}),
       row(RowRole::units, 4, {{SpanRole::unit, 0, "m"}, {SpanRole::unit, 1, "s"}}),
       row(RowRole::text, 5, {text("z")})},
      2},
     {80, true},
     GREY " 1  comment  " PLAIN GREEN "% x" PLAIN "\n" GREY " 2  above    " PLAIN GREY "y" PLAIN
          "\n" GREY " 3  names    " PLAIN BOLD_TEAL "a" PLAIN GREY "'" PLAIN BOLD_PURPLE "b" PLAIN
          "\n" GREY " 4  units    " PLAIN ITALIC_TEAL "m" PLAIN ITALIC_PURPLE "s" PLAIN "\n" GREY
          " 5           " PLAIN "z\n"},
    {"MarksAndJoinedEmojiAreNotCutApart",
     {{row(RowRole::data, 1, {text("abcde" FAMILY)}),
       row(RowRole::data, 2, {text("abcdefgh" FAMILY)})}},
     {20},
     " 1  data  abcde\xE2\x80\xA6\n"
     " 2        abcdefgh\xE2\x80\xA6\n"},
    {"JoinedEmojiHaveThePlacesThatTheyTakeSideBySide",
     {{row(RowRole::data, 1, {text("abcd" FAMILY)})}},
     {20},
     " 1  data  abcd" FAMILY "\n"},
};

class TerminalText : public testing::TestWithParam<TextCase> {};
TEST_P(TerminalText, ShowsThePicture) {
  EXPECT_EQ(terminal_text(GetParam().picture, GetParam().style), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(Table, TerminalText, testing::ValuesIn(kTexts), ByRule());

// A line of hostile length: nine marks on one letter are cut off.
TEST(TerminalText, BoundsMarksOnALetter) {
  std::string marks = "a";
  for (int i = 0; i < 10'000; ++i) marks += "\xCC\x88";
  const std::string shown =
      terminal_text({{row(RowRole::data, 1, {cell(0, marks), comma(), cell(1, "2")})}, 2}, {});
  EXPECT_EQ(shown,
            " 1  data  a\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88\xCC\x88"
            "\xE2\x80\xA6,2\n");
}

std::string random_text() {
  const auto piece = rc::gen::element<std::string>("a", "bc", " ", kHan, kHebrew, "a\xCC\x88",
                                                   "\xF0\x9F\x98\x80", FAMILY);
  std::string out;
  for (const std::string& each : *rc::gen::container<std::vector<std::string>>(piece)) out += each;
  return out;
}

Picture random_picture() {
  Picture picture;
  picture.num_columns = 5;
  picture.is_by_place = *rc::gen::arbitrary<bool>();
  for (std::size_t i = 1; i < 4; ++i) {
    std::vector<Span> spans;
    for (std::size_t column = 0; column < 5; ++column) {
      spans.push_back(cell(column, random_text()));
      spans.push_back(picture.is_by_place ? blanks(*rc::gen::inRange<std::size_t>(1, 9)) : comma());
    }
    picture.rows.push_back(row(RowRole::data, i, std::move(spans)));
  }
  return picture;
}

TEST(TerminalText, NeverExceedsTheWidth) {
  EXPECT_TRUE(rc::check([] {
    const auto width = *rc::gen::inRange<std::size_t>(kLeastWidth, 120);
    const std::string shown = terminal_text(random_picture(), {width});
    std::size_t begin = 0;
    for (std::size_t end = shown.find('\n'); end != shown.npos; end = shown.find('\n', begin)) {
      const std::string line = shown.substr(begin, end - begin);
      RC_ASSERT(most_width(line) <= width);
      begin = end + 1;
    }
  }));
}

// As the recommendations for web pages define it (WCAG 2, "contrast ratio"), from 1 to 21. Large text needs 3, small
// text 4.5; on white and on black together no colour has more than 4.58.
double contrast(double a, double b) { return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05); }

// The luminance of a colour of the 6 x 6 x 6 cube or of the greys of a terminal, 0 to 1.
double luminance_of(unsigned color) {
  constexpr unsigned kLevels[] = {0, 95, 135, 175, 215, 255};
  const auto linear = [](unsigned level) {
    const double part = level / 255.0;
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
  };
  if (color >= 232) return linear(8 + 10 * (color - 232));
  const unsigned place = color - 16;
  return 0.2126 * linear(kLevels[place / 36]) + 0.7152 * linear(kLevels[place / 6 % 6]) +
         0.0722 * linear(kLevels[place % 6]);
}

TEST(TerminalText, ColoursCanBeReadOnWhiteAndOnBlack) {
  Picture picture;
  for (const RowRole role : {RowRole::above, RowRole::comment, RowRole::data})
    picture.rows.push_back(row(role, 1, {text("x")}));
  for (const SpanRole role : {SpanRole::cell, SpanRole::name, SpanRole::unit, SpanRole::quote,
                              SpanRole::delimiter, SpanRole::border}) {
    picture.rows.push_back(row(RowRole::data, 1, {{role, 0, "x"}, {role, 1, "y"}}));
  }
  const std::string shown = terminal_text(picture, {80, true});
  const std::regex color("\x1B\\[([0-9;]*)m");
  std::set<unsigned> seen;
  for (std::sregex_iterator each(shown.begin(), shown.end(), color), end; each != end; ++each) {
    const std::string found = (*each)[1].str();
    if (found == "0") continue;
    const std::size_t at = found.find("38;5;");
    ASSERT_NE(at, found.npos) << found;
    const auto number = static_cast<unsigned>(std::stoul(found.substr(at + 5)));
    ASSERT_GE(number, 16U);
    seen.insert(number);
    EXPECT_GE(contrast(luminance_of(number), 1.0), 4.0) << number;
    EXPECT_GE(contrast(luminance_of(number), 0.0), 4.0) << number;
  }
  EXPECT_EQ(seen.size(), 5U);  // grey, green, red, and two for columns
}

}  // namespace
}  // namespace textio::tool
