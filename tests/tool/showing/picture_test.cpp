#include "tool/showing/picture.hpp"

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using testing_support::TempFolder;
using Rows = std::vector<std::string>;

// A letter for each role: "c0[143]" is the cell "143" of the first column.
std::string shown(const Span& span) {
  static const std::pair<SpanRole, const char*> kLetters[] = {
      {SpanRole::text, "t"},    {SpanRole::cell, "c"},   {SpanRole::name, "n"},
      {SpanRole::unit, "u"},    {SpanRole::quote, "q"},  {SpanRole::delimiter, "d"},
      {SpanRole::padding, "p"}, {SpanRole::border, "b"},
  };
  std::string out;
  for (const auto& [role, letter] : kLetters) {
    if (role == span.role) out = letter;
  }
  if (span.column != kNoColumn) out += std::to_string(span.column);
  return out + "[" + span.text + "]";
}

std::string shown(const Row& row) {
  std::string out = row.line ? std::to_string(*row.line) : "-";
  if (row.is_continued) out += "+";
  if (row.role == RowRole::hidden) out += " hidden";
  if (row.role == RowRole::unseen) out += " unseen";
  if (row.role == RowRole::text) out += " text";
  if (!to_string(row.role).empty()) out += " " + std::string(to_string(row.role));
  if (row.is_estimate) out += " about";
  if (row.num_lines) out += " " + std::to_string(*row.num_lines);
  out += ":";
  for (const Span& span : row.spans) out += " " + shown(span);
  return out;
}

Rows picture_rows(const std::string& text, const standalone::DetectSettings& settings = {}) {
  const TempFolder folder;
  const auto picture =
      picture_of(reading::look_at_top(folder.file("t", text), settings, kPictureRows));
  Rows rows;
  if (!picture) return {"no picture"};
  for (const Row& row : picture->rows) rows.push_back(shown(row));
  return rows;
}

struct PictureCase {
  const char* rule;
  std::string text;
  Rows rows;
};
std::ostream& operator<<(std::ostream& out, const PictureCase& row) { return out << row.rule; }

const PictureCase kPictures[] = {
    {"NamesAndData",
     "x,y\n1,a\n2,b\n",
     {"1 names: n0[x] d[,] n1[y]", "2 data: c0[1] d[,] c1[a]", "3 data: c0[2] d[,] c1[b]"}},
    {"Units",
     "time,level\ns,cm\n1.5,143\n2.5,147\n3.5,148\n",
     {"1 names: n0[time] d[,] n1[level]", "2 units: u0[s] d[,] u1[cm]",
      "3 data: c0[1.5] d[,] c1[143]", "4 data: c0[2.5] d[,] c1[147]",
      "5 data: c0[3.5] d[,] c1[148]"}},
    {"Quotes",
     "x,y\n1,\"a,b\"\n2,\"c\"\n",
     {"1 names: n0[x] d[,] n1[y]", "2 data: c0[1] d[,] q1[\"] c1[a,b] q1[\"]",
      "3 data: c0[2] d[,] q1[\"] c1[c] q1[\"]"}},
    {"BlanksAroundDelimiters",
     "x, y\n1, 2\n3, 4\n5, 6\n",
     {"1 names: n0[x] d[,] p[ ] n1[y]", "2 data: c0[1] d[,] p[ ] c1[2]",
      "3 data: c0[3] d[,] p[ ] c1[4]", "4 data: c0[5] d[,] p[ ] c1[6]"}},
    {"TabsAreArrows",
     "x\ty\n1\ta\n2\tb\n",
     {"1 names: n0[x] d[\xE2\x86\x92] n1[y]", "2 data: c0[1] d[\xE2\x86\x92] c1[a]",
      "3 data: c0[2] d[\xE2\x86\x92] c1[b]"}},
    // What is blank in all lines ends where the longest text of the second column begins.
    {"Aligned",
     "probe   depth\nA1        5.0\nA2       10.0\nA3       50.0\n",
     {"1 names: n0[probe] p[   ] b[] n1[depth]", "2 data: c0[A1] p[      ] b[] p[  ] c1[5.0]",
      "3 data: c0[A2] p[      ] b[] p[ ] c1[10.0]", "4 data: c0[A3] p[      ] b[] p[ ] c1[50.0]"}},
    {"ControlsAreReplaced",
     "x,y\n1,a\x1B[31m\n2,b\xC2\x9B\n3,c\xE2\x80\xAE\n",
     {"1 names: n0[x] d[,] n1[y]", "2 data: c0[1] d[,] c1[a\xEF\xBF\xBD[31m]",
      "3 data: c0[2] d[,] c1[b\xEF\xBF\xBD]", "4 data: c0[3] d[,] c1[c\xEF\xBF\xBD]"}},
    {"CommentAndBlank",
     "x,y\n1,a\n# note\n2,b\n\n3,c\n",
     {"1 names: n0[x] d[,] n1[y]", "2 data: c0[1] d[,] c1[a]", "3 comment: t[# note]",
      "4 data: c0[2] d[,] c1[b]", "5 blank:", "6 data: c0[3] d[,] c1[c]"}},
    {"OnlyTheFirstLinesAboveTheTable",
     "Levels\nof the river\nin centimetres\nby hand\nevery day\n\nday,level,note\n"
     "2024-01-01,143,a\n2024-01-02,147,b\n2024-01-03,151,c\n",
     {"1 above: t[Levels]", "2 above: t[of the river]", "3 above: t[in centimetres]",
      "- hidden 3:", "7 names: n0[day] d[,] n1[level] d[,] n2[note]",
      "8 data: c0[2024-01-01] d[,] c1[143] d[,] c2[a]",
      "9 data: c0[2024-01-02] d[,] c1[147] d[,] c2[b]",
      "10 data: c0[2024-01-03] d[,] c1[151] d[,] c2[c]"}},
    {"RunningText",
     "Dear Lena,\nthank you for the parcel that arrived on Monday.\nThe lamp is on my desk.\n",
     {"1 text: t[Dear Lena,]", "2 text: t[thank you for the parcel that arrived on Monday.]",
      "3 text: t[The lamp is on my desk.]"}},
    {"EmptyFile", "", {"no picture"}},
    {"BlankLinesAlone", "\n\n", {"no picture"}},
    {"Binary",
     std::string("\x7F"
                 "ELF\x02\x01\x01\0\0\0\0\0\0\x03\0\x3E\0\x01\n\x05\x06\x0E\n",
                 23),
     {"no picture"}},
};

class PictureOf : public testing::TestWithParam<PictureCase> {};
TEST_P(PictureOf, ShowsWhatEachPartIs) {
  EXPECT_EQ(picture_rows(GetParam().text), GetParam().rows);
}
INSTANTIATE_TEST_SUITE_P(Table, PictureOf, testing::ValuesIn(kPictures), ByRule());

TEST(PictureOf, HasBordersBeforeCellsWhereNoBlankIsInAllLines) {
  reading::FileTop top;
  top.layout.mode = standalone::LayoutMode::space_aligned;
  top.layout.num_variables = 2;
  top.lines = {{1, reading::LineFate::data, u"aaaa b", false, {{0, 0, 4}, {1, 5, 6}}},
               {2, reading::LineFate::data, u"c ddddd", false, {{0, 0, 1}, {1, 2, 7}}},
               {3, reading::LineFate::data, u"eeeeeff", false, {{0, 0, 5}, {1, 5, 7}}}};
  const auto picture = picture_of(top);
  ASSERT_TRUE(picture);
  EXPECT_TRUE(picture->is_by_place);
  EXPECT_EQ(shown(picture->rows[0]), "1 data: c0[aaaa] p[ ] b[] c1[b]");
  EXPECT_EQ(shown(picture->rows[1]), "2 data: c0[c] p[ ] b[] c1[ddddd]");
  EXPECT_EQ(shown(picture->rows[2]), "3 data: c0[eeeee] b[] c1[ff]");
}

// Names and as many records of eight bytes, and what follows them.
std::string table_of(std::size_t records, const std::string& footer = "") {
  std::string text = "num,abc\n";
  for (std::size_t i = 0; i < records; ++i) text += "1.5,abc\n";
  return text + footer;
}

// The names, eleven records, and what follows the twelve lines.
Rows after_twelve_lines(const std::string& text, const standalone::DetectSettings& settings = {}) {
  Rows rows = picture_rows(text, settings);
  EXPECT_GE(rows.size(), 12U);
  EXPECT_EQ(rows[11], "12 data: c0[1.5] d[,] c1[abc]");
  rows.erase(rows.begin(), rows.begin() + 12);
  return rows;
}

TEST(PictureOf, SaysHowManyLinesAreHidden) {
  EXPECT_EQ(after_twelve_lines(table_of(11)), Rows());
  EXPECT_EQ(after_twelve_lines(table_of(12)), Rows{"- hidden 1:"});
  EXPECT_EQ(after_twelve_lines(table_of(90)), Rows{"- hidden 79:"});
}

// 100 lines are looked at, of 3,001.
TEST(PictureOf, SaysHowManyLinesWereNotLookedAt) {
  EXPECT_EQ(after_twelve_lines(table_of(3000)), (Rows{"- hidden 88:", "- unseen about 2901:"}));
}

// 24,019 bytes are 3,002 times the eight of a line; 100 lines are looked at, and two at the end.
TEST(PictureOf, ShowsTheFooterOfALongFile) {
  EXPECT_EQ(
      after_twelve_lines(table_of(3000, "Total,\nBye\n")),
      (Rows{"- hidden 88:", "- unseen about 2900:", "- footer: t[Total,]", "- footer: t[Bye]"}));
  standalone::DetectSettings settings;
  settings.look_at_end = false;
  EXPECT_EQ(after_twelve_lines(table_of(3000, "Total,\nBye\n"), settings),
            (Rows{"- hidden 88:", "- unseen about 2902:"}));
}

TEST(PictureOf, ShowsThreeLinesOfAFooter) {
  EXPECT_EQ(after_twelve_lines(table_of(20, "\na b\nc d\ne f\ng h\n")),
            (Rows{"- hidden 10:", "23 footer: t[a b]", "24 footer: t[c d]", "25 footer: t[e f]",
                  "- hidden 1:"}));
}

// A line of one cell without an end.
reading::CutLine line(std::uint64_t number, reading::LineFate fate, std::u16string text) {
  const std::size_t size = text.size();
  return {number, fate, std::move(text), false, {{0, 0, size}}};
}

Rows rows_of(const reading::FileTop& top) {
  Rows rows;
  const auto picture = picture_of(top);
  if (!picture) return {"no picture"};
  for (const Row& row : picture->rows) rows.push_back(shown(row));
  return rows;
}

TEST(PictureOf, HasARoleForEachFate) {
  using reading::LineFate;
  reading::FileTop top;
  top.lines = {{1, LineFate::preamble, u"a", false, {}}, {2, LineFate::rule, u"--", false, {}},
               line(3, LineFate::names, u"n"),           line(4, LineFate::units, u"u"),
               line(5, LineFate::descriptions, u"d"),    line(6, LineFate::omitted, u"o"),
               line(7, LineFate::failed, u"f"),          {8, LineFate::comment, u"#", false, {}},
               {9, LineFate::blank, u"", false, {}},     {10, LineFate::footer, u"t", false, {}}};
  EXPECT_EQ(
      rows_of(top),
      (Rows{"1 above: t[a]", "2 rule: t[--]", "3 names: n0[n]", "4 units: u0[u]", "5 notes: c0[d]",
            "6 data: c0[o]", "7 data: c0[f]", "8 comment: t[#]", "9 blank:", "10 footer: t[t]"}));
  top.layout.no_table = "source code";
  EXPECT_EQ(rows_of(top)[0], "1 text: t[a]");
  EXPECT_EQ(rows_of(top)[1], "2 text: t[--]");
  EXPECT_EQ(rows_of(top)[7], "8 text: t[#]");
}

// Whatever the first line of the table is.
TEST(PictureOf, ShowsTheTableAfterManyLinesAboveIt) {
  using reading::LineFate;
  for (const LineFate fate :
       {LineFate::names, LineFate::units, LineFate::descriptions, LineFate::data}) {
    reading::FileTop top;
    for (std::uint64_t i = 1; i <= 20; ++i)
      top.lines.push_back({i, LineFate::preamble, u"a", false, {}});
    top.lines.push_back(line(21, fate, u"x"));
    const Rows rows = rows_of(top);
    ASSERT_EQ(rows.size(), 5U);
    EXPECT_EQ(rows[3], "- hidden 17:");
    EXPECT_EQ(rows[4].substr(0, 3), "21 ");
  }
}

TEST(PictureOf, LinesWithoutATableHaveNone) {
  using reading::LineFate;
  reading::FileTop top;
  EXPECT_EQ(rows_of(top), Rows{"no picture"});
  for (std::uint64_t i = 1; i <= 3; ++i)
    top.lines.push_back({i, LineFate::comment, u"#", false, {}});
  EXPECT_EQ(rows_of(top), (Rows{"1 comment: t[#]", "2 comment: t[#]", "3 comment: t[#]"}));
  top.layout.no_table = "binary data";
  EXPECT_EQ(rows_of(top), Rows{"no picture"});
}

TEST(PictureOf, ShowsThreeLinesOfALongFooterFarBelow) {
  reading::FileTop top;
  top.lines = {line(1, reading::LineFate::data, u"x")};
  top.layout.lines = {{standalone::LineRole::data, 1, 1, 1}};
  top.layout.has_more_text = true;
  top.layout.tail.emplace();
  top.layout.tail->footer_lines = 7;
  top.layout.tail->footer = {u"a", u"b", u"c", u"d", u"e"};
  const Rows expected = {"1 data: c0[x]",  "- unseen about:", "- footer: t[a]",
                         "- footer: t[b]", "- footer: t[c]",  "- hidden 4:"};
  EXPECT_EQ(rows_of(top), expected);
  top.layout.lines_estimated = 8;  // no more than those
  EXPECT_EQ(rows_of(top), expected);
  top.layout.lines_estimated = 9;
  EXPECT_EQ(rows_of(top)[1], "- unseen about 1:");
}

}  // namespace
}  // namespace textio::tool
