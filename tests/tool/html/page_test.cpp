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

PageFile file(std::string path, std::string layout, std::string names = "") {
  PageFile page;
  page.path = std::move(path);
  page.layout = std::move(layout);
  page.names = std::move(names);
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
  const std::string page = page_of({file("a.csv", "delimited by comma, 2 columns")});
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
  const std::string page = page_of({file("data/a.csv", "delimited by comma, 2 columns")});
  EXPECT_THAT(page, HasSubstr("<title>a.csv - vltext report</title>"));
  EXPECT_THAT(page, HasSubstr("<h2 id=\"file-1-name\"><bdi>data/a.csv</bdi></h2>\n<p>it is</p>"));
  EXPECT_THAT(page, Not(HasSubstr("<nav")));
}

TEST(PageOf, GroupsFilesByLayoutTheMostFilesFirst) {
  std::vector<PageFile> files = {file("odd.csv", "delimited by semicolon, 2 columns", "x, y"),
                                 file("a.csv", "delimited by comma, 2 columns", "x, y"),
                                 file("other.csv", "delimited by comma, 2 columns", "x, z"),
                                 file("b.csv", "delimited by comma, 2 columns", "x, y")};
  files[3].is_doubtful = true;
  EXPECT_THAT(page_of(files),
              HasSubstr("<p>4 files of 3 layouts.</p>\n"
                        "<h3>delimited by comma, 2 columns</h3>\n"
                        "<p class=\"note\">Columns: <bdi>x, y</bdi></p>\n<ul>\n"
                        "<li><a href=\"#file-2\"><bdi>a.csv</bdi></a>, 98 % sure</li>\n"
                        "<li><a href=\"#file-4\"><bdi>b.csv</bdi></a>, 98 % sure "
                        "<strong class=\"doubt\">doubtful</strong></li>\n</ul>\n"
                        "<h3>delimited by semicolon, 2 columns</h3>\n"
                        "<p class=\"note\">Columns: <bdi>x, y</bdi></p>\n<ul>\n"
                        "<li><a href=\"#file-1\"><bdi>odd.csv</bdi></a>, 98 % sure</li>\n</ul>\n"
                        "<h3>delimited by comma, 2 columns</h3>\n"
                        "<p class=\"note\">Columns: <bdi>x, z</bdi></p>\n"));
}

TEST(PageOf, NamesTheFilesThatCouldNotBeRead) {
  PageFile lost;
  lost.path = "lost.csv";
  lost.problem = "lost.csv: No such <file>";
  const std::string page = page_of({lost, file("a.csv", "delimited by comma, 2 columns")});
  EXPECT_THAT(page, HasSubstr("<li><bdi>lost.csv: No such &lt;file&gt;</bdi></li>"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"file-1\"")));
  EXPECT_THAT(page, HasSubstr("<p>2 files of 1 layout.</p>"));
}

TEST(PageOf, EscapesPathsNamesAndLayouts) {
  const std::string page = page_of({file("\"><script>.csv", "delimited by '<'", "<i>, \"&\""),
                                    file("b.csv", "delimited by '<'", "<i>, \"&\"")});
  EXPECT_EQ(count_of("<script", page), 1U);
  EXPECT_EQ(count_of("<i>", page), 0U);
  EXPECT_THAT(page, HasSubstr("&quot;&gt;&lt;script&gt;.csv"));
  EXPECT_THAT(page, HasSubstr("<h3>delimited by &#39;&lt;&#39;</h3>"));
  EXPECT_THAT(page, HasSubstr("&lt;i&gt;, &quot;&amp;&quot;"));
}

}  // namespace
}  // namespace textio::tool
