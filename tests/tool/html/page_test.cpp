#include "tool/html/page.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tool/html/page_assets.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;

// A table with two columns, separated by `delimiter`.
PageFile file(std::string path, std::string delimiter = ",", std::string second_name = "y") {
  PageFile page;
  page.path = std::move(path);
  page.row.status = RowStatus::table;
  page.row.mode = "delimited";
  page.row.delimiters = {std::move(delimiter)};
  page.row.encoding = "UTF-8";
  page.row.line_ending = "\n";
  page.row.columns = {{"x", "integer", "cm"}, {std::move(second_name), "text", ""}};
  page.row.layout_fingerprint = page.row.delimiters.front();
  page.row.schema_fingerprint = page.row.columns.back().name;
  page.confidence = "98 %";
  page.section = "<p>it is</p>\n";
  return page;
}

std::size_t count_of(const std::string& part, const std::string& text) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// The digests of "abc" (FIPS 180-2) and of nothing.
TEST(PolicySource, IsTheDigestInBase64) {
  EXPECT_EQ(policy_source("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"),
            "sha256-ungWv48Bz+pBQUDeXa4iI7ADYaOWF3qctBD/YfIAFa0=");
  EXPECT_EQ(policy_source("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855"),
            "sha256-47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hSuFU=");
}

TEST(PageOf, ForbidsAllButItsOwnStyleAndScript) {
  const std::string page = page_of({file("a.csv")});
  EXPECT_THAT(page, HasSubstr("content=\"default-src 'none'; style-src '" +
                              policy_source(kPageStyleDigest) + "'; script-src '" +
                              policy_source(kPageScriptDigest) +
                              "'; base-uri 'none'; form-action 'none'\""));
  EXPECT_THAT(page, HasSubstr("<style>" + std::string(kPageStyle) + "</style>"));
  EXPECT_THAT(page, HasSubstr("<script>" + std::string(kPageScript) + "</script>"));
  EXPECT_EQ(count_of("http:", page) + count_of("https:", page) + count_of("src=", page), 0U);
}

// Neither may end the element that it is in.
TEST(PageAssets, HaveNoTags) {
  EXPECT_THAT(std::string(kPageStyle), Not(HasSubstr("<")));
  EXPECT_THAT(std::string(kPageScript), Not(HasSubstr("<")));
}

TEST(PageOf, HasNoOverviewOfOneFile) {
  const std::string page = page_of({file("data/a.csv")});
  EXPECT_THAT(page, HasSubstr("<title>a.csv - vltext report</title>"));
  EXPECT_THAT(page, HasSubstr("<h2 id=\"file-1-name\"><bdi>data/a.csv</bdi></h2>\n<p>it is</p>"));
  EXPECT_THAT(page, Not(HasSubstr("<nav")));
}

// As `vltext groups` says it.
TEST(PageOf, GroupsFilesAndSaysHowTheOddOnesDiffer) {
  std::vector<PageFile> files = {file("odd.csv", ";"),        file("a.csv"),
                                 file("other.csv", ",", "z"), file("b.csv"),
                                 file("alone.csv", "|"),      file("letter.txt")};
  files[3].is_doubtful = true;
  files[4].row.columns = {{"q", "text", ""}, {"r", "text", ""}, {"s", "text", ""}};
  files[4].row.schema_fingerprint = "qrs";
  files[5].row.status = RowStatus::no_table;
  files[5].row.no_table = "running text";
  EXPECT_THAT(
      page_of(files),
      HasSubstr("<p>6 files: 1 group, 1 unlike all others, 2 odd ones, 1 without a table.</p>\n"
                "<h3>comma, UTF-8, 2 columns</h3>\n"
                "<p class=\"note\">Columns: <bdi>x (number, cm), y (text)</bdi></p>\n<ul>\n"
                "<li><a href=\"#file-2\"><bdi>a.csv</bdi></a>, 98 % sure</li>\n"
                "<li><a href=\"#file-4\"><bdi>b.csv</bdi></a>, 98 % sure "
                "<strong class=\"doubt\">doubtful</strong></li>\n</ul>\n"
                "<p>Odd beside these:</p>\n<ul>\n"
                "<li><a href=\"#file-1\"><bdi>odd.csv</bdi></a>: <bdi>semicolon</bdi>, 98 % "
                "sure</li>\n"
                "<li><a href=\"#file-3\"><bdi>other.csv</bdi></a>: <bdi>column 2 is named z, not "
                "y</bdi>, 98 % "
                "sure</li>\n</ul>\n"
                "<h3>Unlike all others</h3>\n<ul>\n"
                "<li><a href=\"#file-5\"><bdi>alone.csv</bdi></a>: <bdi>bar, UTF-8, 3 "
                "columns</bdi>, 98 % sure</li>\n</ul>\n"
                "<h3>Without a table</h3>\n<ul>\n"
                "<li><a href=\"#file-6\"><bdi>letter.txt</bdi></a>: <bdi>running text</bdi>, 98 % "
                "sure</li>\n</ul>\n</nav>\n"));
}

TEST(PageOf, CountsTheDoubtfulOnes) {
  std::vector<PageFile> files = {file("a.csv"), file("b.csv")};
  files[0].row.confidence = 0.6;
  files[1].row.confidence = 0.7;
  EXPECT_THAT(page_of(files), HasSubstr("<p>2 files: 1 group.</p>"));
  EXPECT_THAT(page_of(files, 0.65), HasSubstr("<p>2 files: 1 group, 1 doubtful.</p>"));
}

// Each has its own place on the page.
TEST(PageOf, TheSameFileTwice) {
  EXPECT_THAT(page_of({file("a.csv"), file("a.csv")}),
              HasSubstr("<li><a href=\"#file-1\"><bdi>a.csv</bdi></a>, 98 % sure</li>\n"
                        "<li><a href=\"#file-2\"><bdi>a.csv</bdi></a>, 98 % sure</li>\n"));
}

TEST(PageOf, NamesTheFilesThatCouldNotBeRead) {
  PageFile lost;
  lost.path = "lost.csv";
  lost.problem = "lost.csv: No such <file>";
  const std::string page = page_of({lost, file("a.csv")});
  EXPECT_THAT(page, HasSubstr("<li><bdi>lost.csv: No such &lt;file&gt;</bdi></li>"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"file-1\"")));
  EXPECT_THAT(page, HasSubstr("<p>2 files: 0 groups, 1 unlike all others, 1 not read.</p>"));
}

TEST(PageOf, EscapesPathsNamesAndLayouts) {
  const std::string page =
      page_of({file("\"><script>.csv", "<", "<i>, \"&\""), file("b.csv", "<", "<i>, \"&\""),
               file("c.csv", "<b>", "<i>, \"&\"")});
  EXPECT_EQ(count_of("<script", page), 1U);
  EXPECT_EQ(count_of("<i>", page) + count_of("<b>", page), 0U);
  EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;script&gt;.csv"));
  EXPECT_THAT(page, HasSubstr("<h3>&#39;&lt;&#39;, UTF-8, 2 columns</h3>"));
  EXPECT_THAT(page, HasSubstr("&lt;i&gt;, &quot;&amp;&quot;"));
  EXPECT_THAT(page, HasSubstr(": <bdi>&#39;&lt;b&gt;&#39;</bdi>"));
}

}  // namespace
}  // namespace textio::tool
