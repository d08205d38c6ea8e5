#include "tool/html/layout_html.hpp"

#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vltextstream/reading/first_lines.hpp>
#include <vltextstream/reading/table_reader.hpp>

#include "tool/html/page_assets.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

std::string fragment_of(std::string_view text, const std::string& path = "") {
  const reading::ReadSettings settings;
  reading::FileTop top;
  top.layout = reading::TableReader::of_bytes(text, settings).layout();
  top.lines = reading::first_lines_of_bytes(text, top.layout, settings.detect, kPictureRows);
  return layout_html(path, top.layout, picture_of(top));
}

TEST(LayoutHtml, HasTheAnswerThePictureAndTheColumns) {
  const std::string html = fragment_of("day,level [cm]\n2024-01-01,143\n2024-01-02,147\n", "a.csv");
  EXPECT_THAT(html, HasSubstr("<p class=\"note\"><bdi>a.csv</bdi></p>\n<p class=\"verdict\">The "
                              "table is <strong>delimited by comma</strong>, with 2 columns.</p>"));
  EXPECT_THAT(html, HasSubstr("<tr class=\"names\"><th scope=\"row\">1</th>"));
  EXPECT_THAT(html, HasSubstr("<bdi class=\"cell\">2024-01-02</bdi><bdi class=\"delimiter\">,</bdi>"
                              "<bdi class=\"cell odd\">147</bdi>"));
  EXPECT_THAT(html, HasSubstr("<tr><td class=\"number\">2</td><th scope=\"row\"><bdi>level "
                              "[cm]</bdi></th><td class=\"kind\">integer</td><td><bdi>cm</bdi>"));
}

TEST(LayoutHtml, NeedsNoPage) {
  const std::string html = fragment_of("a,b\n1,2\n3,4\n");
  EXPECT_TRUE(html.starts_with("<div class=\"vltext\">\n<style>" + std::string(kLayoutStyle) +
                               "</style>\n"));
  EXPECT_TRUE(html.ends_with("</div>\n"));
  EXPECT_THAT(html, Not(HasSubstr("<script")));
  EXPECT_THAT(html, Not(HasSubstr(" id=")));
}

TEST(LayoutHtml, SaysThatThereIsNoTable) {
  const std::string html = fragment_of("");
  EXPECT_THAT(html, HasSubstr("No table was found: <strong>"));
  EXPECT_THAT(html, Not(HasSubstr("<table")));
}

TEST(LayoutHtml, ShowsTheFirstFiftyColumns) {
  std::string names;
  std::string values;
  for (int i = 0; i < 51; ++i) {
    names += (i == 0 ? "c" : ",c") + std::to_string(i);
    values += (i == 0 ? "" : ",") + std::to_string(i);
  }
  const std::string text = names + "\n" + values + "\n" + values + "\n" + values + "\n";
  const std::string html = fragment_of(text);
  EXPECT_THAT(html, HasSubstr("<th scope=\"row\"><bdi>c49</bdi></th>"));
  EXPECT_THAT(html, Not(HasSubstr("<th scope=\"row\"><bdi>c50</bdi></th>")));
  EXPECT_THAT(html, HasSubstr("Of the 51 columns the first 50 are shown."));
}

// --- texts that try to be more ---------------------------------------------------------------------

struct HostileCase {
  const char* rule;
  const char* name;   // of the second column
  const char* shown;  // in the row of the column
};
std::ostream& operator<<(std::ostream& out, const HostileCase& row) { return out << row.rule; }

const HostileCase kHostileCases[] = {
    {"ATag", "<script>x</script>", "&lt;script&gt;x&lt;/script&gt;"},
    {"TheEndOfTheStyle", "</style>", "&lt;/style&gt;"},
    {"AnEntity", "&lt;b&gt;", "&amp;lt;b&amp;gt;"},
    {"AnApostrophe", "it's", "it&#39;s"},
    {"AnEscapeSequence", "x\x1B[31m", "x\xEF\xBF\xBD[31m"},
    {"AnOverrideOfTheDirection", "x\xE2\x80\xAEy", "x\xEF\xBF\xBDy"},
};

class LayoutHtmlHostile : public testing::TestWithParam<HostileCase> {};
TEST_P(LayoutHtmlHostile, IsShownAsText) {
  const std::string name = GetParam().name;
  const std::string html = fragment_of("id," + name + "\n1,2\n3,4\n5,6\n", name);
  const std::string shown = GetParam().shown;
  EXPECT_THAT(html, HasSubstr("<p class=\"note\"><bdi>" + shown + "</bdi></p>"));
  EXPECT_THAT(html, HasSubstr("<bdi class=\"name odd\">" + shown + "</bdi>"));
  EXPECT_THAT(html, HasSubstr("<th scope=\"row\"><bdi>" + shown + "</bdi></th>"));
}
INSTANTIATE_TEST_SUITE_P(Table, LayoutHtmlHostile, testing::ValuesIn(kHostileCases),
                         testing::PrintToStringParamName());

TEST(CompleteNames, TakesFromThePictureWhatALayoutHasNoPlaceFor) {
  LayoutWords words;
  words.columns.resize(2);
  words.columns[0].name = "\xEF\xBF\xBD";
  words.columns[1].name = "b";
  Picture picture;
  picture.rows = {{RowRole::names,
                   1,
                   false,
                   {{SpanRole::name, 0, "\xF0\x9F\x98\x80"}, {SpanRole::name, 1, "other"}}}};
  complete_names(picture, words);
  EXPECT_EQ(words.columns[0].name, "\xF0\x9F\x98\x80");
  EXPECT_EQ(words.columns[1].name, "b");
}

}  // namespace
}  // namespace textio::tool
