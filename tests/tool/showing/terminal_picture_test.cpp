#include "tool/showing/terminal_picture.hpp"

#include <ostream>
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
     "\x1B[2m 1  data  \x1B[0m\x1B[36m1\x1B[0m\x1B[1;31m,\x1B[0m\x1B[35m2\x1B[0m\x1B[1;31m,"
     "\x1B[0m\x1B[36m3\x1B[0m\n"},
    {"BlanksSufficeBetweenColours",
     {{row(RowRole::data, 1, {cell(0, "1"), blanks(2), border(), cell(1, "2")})}, 2, true},
     {80, true},
     "\x1B[2m 1  data  \x1B[0m\x1B[36m1\x1B[0m  \x1B[35m2\x1B[0m\n"},
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
  const auto piece =
      rc::gen::element<std::string>("a", "bc", " ", kHan, kHebrew, "a\xCC\x88", "\xF0\x9F\x98\x80");
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
      RC_ASSERT(display_width(line) <= width);
      begin = end + 1;
    }
  }));
}

}  // namespace
}  // namespace textio::tool
