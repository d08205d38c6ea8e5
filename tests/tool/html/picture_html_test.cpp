#include "tool/html/picture_html.hpp"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

Span cell(std::size_t column, std::string text) {
  return {SpanRole::cell, column, std::move(text)};
}

std::string html_of(Row row, std::size_t num_columns = 2) {
  Picture picture;
  picture.rows = {std::move(row)};
  picture.num_columns = num_columns;
  return picture_html(picture);
}

TEST(PictureHtml, SaysWhatEachPartIs) {
  const Row row = {RowRole::names,
                   1'234,
                   false,
                   {{SpanRole::name, 0, "day"},
                    {SpanRole::delimiter, kNoColumn, ","},
                    {SpanRole::padding, kNoColumn, " "},
                    {SpanRole::quote, 1, "\""},
                    {SpanRole::name, 1, "a<b"},
                    {SpanRole::quote, 1, "\""}}};
  EXPECT_THAT(
      html_of(row),
      HasSubstr("<tr class=\"names\"><th scope=\"row\">1,234</th><td class=\"role\">names</td>"
                "<td class=\"line\"><bdi class=\"name\">day</bdi>"
                "<bdi class=\"delimiter\">,</bdi> <bdi class=\"quote\">&quot;</bdi>"
                "<bdi class=\"name odd\">a&lt;b</bdi><bdi class=\"quote\">&quot;</bdi></td></tr>"));
}

TEST(PictureHtml, UnitsHaveTheColoursOfTheirColumns) {
  Picture picture;
  picture.rows.push_back(
      {RowRole::units, 2, false, {{SpanRole::unit, 0, "s"}, {SpanRole::unit, 1, "cm"}}});
  EXPECT_THAT(picture_html(picture), HasSubstr("<td class=\"role\">units</td><td class=\"line\">"
                                               "<bdi class=\"unit\">s</bdi>"
                                               "<bdi class=\"unit odd\">cm</bdi></td>"));
}

TEST(PictureHtml, ShowsABlankThatSeparates) {
  EXPECT_THAT(html_of({RowRole::data, 1, false, {{SpanRole::delimiter, kNoColumn, " "}}}),
              HasSubstr("<bdi class=\"delimiter\">\xC2\xB7</bdi>"));
}

TEST(PictureHtml, HasABorderWithoutAText) {
  EXPECT_THAT(html_of({RowRole::data, 1, false, {{SpanRole::border}}}),
              HasSubstr("<bdi class=\"border\"></bdi>"));
}

TEST(PictureHtml, HasNoNumberForALineAtAnUncountedEnd) {
  EXPECT_THAT(html_of({RowRole::footer, std::nullopt, false, {{SpanRole::text, kNoColumn, "sum"}}}),
              HasSubstr("<th scope=\"row\">end</th><td class=\"role\">footer</td>"
                        "<td class=\"line\"><bdi>sum</bdi></td>"));
}

TEST(PictureHtml, SaysHowManyLinesAreLeftOut) {
  EXPECT_THAT(html_of({RowRole::hidden, std::nullopt, false, {}, 1}), HasSubstr(">1 more line<"));
  EXPECT_THAT(html_of({RowRole::unseen, std::nullopt, false, {}, 2'000, true}),
              HasSubstr(">about 2,000 more lines, not looked at<"));
  EXPECT_THAT(html_of({RowRole::unseen, std::nullopt, false, {}}),
              HasSubstr(">more lines, not looked at<"));
}

TEST(PictureHtml, CutsLongCellsAndLines) {
  const std::string long_text(1000, 'x');
  EXPECT_THAT(html_of({RowRole::data, 1, false, {cell(0, long_text)}}),
              HasSubstr(">" + std::string(60, 'x') + "\xE2\x80\xA6<"));
  EXPECT_THAT(html_of({RowRole::above, 1, false, {{SpanRole::text, kNoColumn, long_text}}}),
              HasSubstr(">" + std::string(400, 'x') + "\xE2\x80\xA6<"));
}

TEST(PictureHtml, ShowsTheFirstFortyColumns) {
  Row row = {RowRole::data, 1, false, {}};
  for (std::size_t i = 0; i < 40; ++i) row.spans.push_back(cell(i, "c" + std::to_string(i)));
  EXPECT_THAT(html_of(row, 40), Not(HasSubstr("are shown")));
  row.spans.push_back(cell(40, "c40"));
  const std::string html = html_of(row, 41);
  EXPECT_THAT(html, HasSubstr("c39"));
  EXPECT_THAT(html, Not(HasSubstr("c40")));
  EXPECT_THAT(html, HasSubstr("Of the 41 columns the first 40 are shown."));
}

}  // namespace
}  // namespace textio::tool
