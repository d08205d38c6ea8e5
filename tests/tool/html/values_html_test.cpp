#include "tool/html/values_html.hpp"

#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace textio::tool {
namespace {

using testing::HasSubstr;

TEST(ValuesHtml, DrawsAHistogram) {
  ColumnValues values;
  values.num_rows = 13;
  values.bars = {12, 0, 1};
  values.least = "1";
  values.middle = "1";
  values.most = "3";
  EXPECT_EQ(
      values_html(values),
      "<svg class=\"histogram\" role=\"img\" width=\"30\" height=\"37\" viewBox=\"0 0 30 37\" "
      "aria-label=\"Histogram; values in each of 3 bars: 12, 0, 1\">"
      "<rect x=\"0\" y=\"0\" width=\"9\" height=\"36\"/>"
      "<rect x=\"20\" y=\"33\" width=\"9\" height=\"3\"/>"
      "<path d=\"M0 36H30\"/></svg><p>1 to 3, middle 1</p>");
}

TEST(ValuesHtml, ShowsABarForASingleOneOfMany) {
  ColumnValues values;
  values.bars = {100'000, 1};
  EXPECT_THAT(values_html(values), HasSubstr("<rect x=\"10\" y=\"34\" width=\"9\" height=\"2\"/>"));
}

TEST(ValuesHtml, CountsTheMostFrequent) {
  ColumnValues values;
  values.num_rows = 1007;
  values.num_missing = 2;
  values.num_different = 4;
  values.frequent = {{"<b>", 1000}, {"", 1}};
  EXPECT_EQ(values_html(values),
            "<ul><li><bdi>&lt;b&gt;</bdi> <span class=\"count\">1,000 times</span></li>"
            "<li><em>empty text</em> <span class=\"count\">1 time</span></li></ul>"
            "<p>and 2 others</p><p>2 missing or not of this kind</p>");
}

TEST(ValuesHtml, CountsNothingWhereAllDiffer) {
  ColumnValues values;
  values.num_rows = values.num_different = 3;
  values.frequent = {{"a", 1}, {"b", 1}, {"c", 1}};
  EXPECT_EQ(values_html(values),
            "<p>all different, first</p><ul><li><bdi>a</bdi></li><li><bdi>b</bdi></li>"
            "<li><bdi>c</bdi></li></ul>");
}

TEST(ValuesHtml, CutsLongValues) {
  ColumnValues values;
  values.num_rows = values.num_different = 1;
  values.frequent = {{std::string(50, 'x'), 1}};
  EXPECT_THAT(values_html(values), HasSubstr(">" + std::string(40, 'x') + "\xE2\x80\xA6<"));
}

TEST(ValuesHtml, SaysThatThereIsNothing) {
  EXPECT_EQ(values_html({}), "<p>no values</p>");
  ColumnValues missing;
  missing.num_rows = missing.num_missing = 3;
  EXPECT_EQ(values_html(missing), "<p>3 missing or not of this kind</p>");
}

}  // namespace
}  // namespace textio::tool
