#include "tool/html/html_text.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::tool {
namespace {

using testing_support::ByRule;
using std::string_literals::operator""s;

#define BAD "\xEF\xBF\xBD"

struct TextCase {
  const char* rule;
  std::string text;
  std::string html;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const TextCase kTexts[] = {
    {"PlainStays", "level 7", "level 7"},
    {"Empty", "", ""},
    {"Tags", "<script>x</script>", "&lt;script&gt;x&lt;/script&gt;"},
    {"DoubleQuotesEndAttributes", "a\"b", "a&quot;b"},
    {"SingleQuotesDoToo", "a'b", "a&#39;b"},
    {"AnEntityIsText", "&lt;", "&amp;lt;"},
    {"Comment", "<!-- x -->", "&lt;!-- x --&gt;"},
    {"Nul", "a\0b"s, "a" BAD "b"},
    {"Escape", "a\x1B[31m", "a" BAD "[31m"},
    {"LineBreak", "a\nb", "a" BAD "b"},
    {"RightToLeftOverride",
     "a\xE2\x80\xAE"
     "b",
     "a" BAD "b"},
    {"Isolate", "\xE2\x81\xA6x", BAD "x"},
    {"ByteOrderMark", "\xEF\xBB\xBFx", BAD "x"},
    {"NoUtf8", "a\xFF\xFE", "a" BAD BAD},
    {"CutShort", "a\xE6\x97", "a" BAD},
    {"OtherLanguagesStay", "\xE6\x97\xA5\xD8\xA7", "\xE6\x97\xA5\xD8\xA7"},
};

class HtmlText : public testing::TestWithParam<TextCase> {};
TEST_P(HtmlText, IsTextAndNothingElse) { EXPECT_EQ(html(GetParam().text), GetParam().html); }
INSTANTIATE_TEST_SUITE_P(Table, HtmlText, testing::ValuesIn(kTexts), ByRule());

struct CutCase {
  const char* rule;
  std::string text;
  std::size_t most;
  std::string html;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kCuts[] = {
    {"ShortEnough", "abc", 3, "abc"},
    {"OneTooMany", "abcd", 3, "abc\xE2\x80\xA6"},
    {"CharactersCountNotBytes", "\xE6\x97\xA5\xE6\x97\xA5", 2, "\xE6\x97\xA5\xE6\x97\xA5"},
    {"NeverWithinAnEntity", "<<<", 2, "&lt;&lt;\xE2\x80\xA6"},
    {"NothingFits", "a", 0, "\xE2\x80\xA6"},
    {"NothingIsThere", "", 0, ""},
    {"NeverWithinALetterWithMarks", "ab\xCC\x88", 2, "a\xE2\x80\xA6"},
};

class HtmlCut : public testing::TestWithParam<CutCase> {};
TEST_P(HtmlCut, CountsCharacters) {
  EXPECT_EQ(html_cut(GetParam().text, GetParam().most), GetParam().html);
}
INSTANTIATE_TEST_SUITE_P(Table, HtmlCut, testing::ValuesIn(kCuts), ByRule());

TEST(HtmlLines, KeepsBreaksAndTabs) {
  EXPECT_EQ(html_lines("if a < b:\n\tprint(\"x\")\n"), "if a &lt; b:\n\tprint(&quot;x&quot;)\n");
  EXPECT_EQ(html_lines("a\rb\n"), "a" BAD "b\n");
  EXPECT_EQ(html_lines("\n\n"), "\n\n");
  EXPECT_EQ(html_lines(""), "");
}

}  // namespace
}  // namespace textio::tool
