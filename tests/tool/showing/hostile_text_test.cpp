// Random texts that try to be more than text, shown on a terminal and on a page.
#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <vltextstream/text/utf8.hpp>

#include "support/temp_folder.hpp"
#include "tool/html/picture_html.hpp"
#include "tool/showing/picture.hpp"
#include "tool/showing/terminal_picture.hpp"

namespace textio::tool {
namespace {

using testing_support::TempFolder;

constexpr char32_t kIsolate = 0x2068;
constexpr char32_t kEndIsolate = 0x2069;

// With these, hostile lines before them do not make a file look binary.
std::string harmless_rows() {
  std::string rows;
  for (int i = 0; i < 40; ++i) rows += "4,a text that is rather long\n";
  return rows;
}

std::string hostile_text() {
  const auto piece = rc::gen::element<std::string>(
      "a", "7", "1.5", " ", "  ", ",", ";", "|", "\t", "\n", "\n", "\r", "\"", "'", "\\", "# ",
      "---", std::string(1, '\0'), "\x07", "\x08", "\x0E", "\x1B[31m", "\x1B]0;x\x07", "\x1B",
      "\x7F",
      "\x9B"
      "2J",
      "\xC2\x9B"
      "2J",
      "\xC2\x85", "\xC2\xAD", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA8",
      "\xE2\x81\xA9", "\xE2\x80\x8F", "\xEF\xBB\xBF", "\xF3\xA0\x81\xA7", "\xED\xA0\x80", "\xFF",
      "<b>", "</td>", "<script>", "<!--", "]]>", "&lt;", "&", "\" onload=\"x", "\xD7\xA9\xD7\x9D",
      "\xD8\xA7", "\xE6\xBC\xA2", "a\xCC\x88", "\xF0\x9F\x91\xA8\xE2\x80\x8D\xF0\x9F\x91\xA9");
  std::string text;
  for (const std::string& each : *rc::gen::container<std::vector<std::string>>(piece)) text += each;
  return text + '\n' + harmless_rows();
}

std::optional<Picture> picture_of_text(const std::string& text) {
  const TempFolder folder;
  return picture_of(reading::look_at_top(folder.file("t", text), {}, kPictureRows));
}

// What is wrong with a text for a terminal: a control other than the ends of lines, or an isolate that is nested, ends
// nothing, or goes beyond its line.
std::string wrong_on_a_terminal(std::string_view text) {
  bool is_isolated = false;
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    text.remove_prefix(c.length);
    if (!c.is_well_formed) return "not well-formed";
    if (c.code == kIsolate || c.code == kEndIsolate) {
      if (is_isolated == (c.code == kIsolate)) return "isolates in disorder";
      is_isolated = !is_isolated;
    } else if (c.code == U'\n') {
      if (is_isolated) return "an isolate beyond its line";
    } else if (is_unprintable(c.code)) {
      return "U+" + std::to_string(static_cast<unsigned>(c.code));
    }
  }
  return "";
}

// Without the colours that the picture itself has.
std::string without_colors(std::string_view text) {
  constexpr std::array<std::string_view, 9> kOwn = {
      "\x1B[0m",         "\x1B[38;5;243m",   "\x1B[38;5;30m",
      "\x1B[38;5;133m",  "\x1B[1;38;5;30m",  "\x1B[1;38;5;133m",
      "\x1B[3;38;5;30m", "\x1B[3;38;5;133m", "\x1B[1;38;5;161m"};
  constexpr std::string_view kComment = "\x1B[38;5;28m";
  std::string out;
  while (!text.empty()) {
    const auto own = std::find_if(kOwn.begin(), kOwn.end(),
                                  [&](std::string_view each) { return text.starts_with(each); });
    if (own != kOwn.end() || text.starts_with(kComment)) {
      text.remove_prefix(own != kOwn.end() ? own->size() : kComment.size());
      continue;
    }
    out += text.front();
    text.remove_prefix(1);
  }
  return out;
}

bool is_own_tag(std::string_view tag) {
  const std::size_t begin = tag.starts_with('/') ? 1 : 0;
  const std::string_view name = tag.substr(begin, tag.find(' ') - begin);
  constexpr std::array<std::string_view, 8> kNames = {"div", "table", "thead", "tbody",
                                                      "tr",  "th",    "td",    "bdi"};
  return name == "p" || std::find(kNames.begin(), kNames.end(), name) != kNames.end();
}

// What is wrong with a part of a page: a tag that it does not have by itself, or what could begin one.
std::string wrong_on_a_page(std::string_view html) {
  constexpr std::array<std::string_view, 5> kEntities = {"&amp;", "&lt;", "&gt;", "&quot;",
                                                         "&#39;"};
  while (!html.empty()) {
    if (html.front() == '<') {
      const std::size_t end = html.find('>');
      if (end == html.npos || !is_own_tag(html.substr(1, end - 1)))
        return "tag " + std::string(html.substr(0, end));
      html.remove_prefix(end + 1);
      continue;
    }
    const bool is_entity =
        std::any_of(kEntities.begin(), kEntities.end(),
                    [&](std::string_view each) { return html.starts_with(each); });
    if (html.front() == '&' && !is_entity) return "&";
    if (std::string_view("<>\"'").find(html.front()) != std::string_view::npos)
      return std::string(1, html.front());
    const Utf8Character c = first_character(html);
    if (!c.is_well_formed || (is_unprintable(c.code) && c.code != U'\n')) return "a control";
    html.remove_prefix(c.length);
  }
  return "";
}

TEST(HostileText, TheChecksNoticeWhatIsWrong) {
  EXPECT_EQ(wrong_on_a_terminal("a\x1B[31m"), "U+27");
  EXPECT_EQ(wrong_on_a_terminal("\xE2\x81\xA8"
                                "a\n"),
            "an isolate beyond its line");
  EXPECT_EQ(wrong_on_a_terminal("\xE2\x81\xA9"), "isolates in disorder");
  EXPECT_EQ(without_colors("\x1B[0ma\x1B[31m"), "a\x1B[31m");
  EXPECT_EQ(wrong_on_a_page("<td>a</td><b>"), "tag <b");
  EXPECT_EQ(wrong_on_a_page("a & b"), "&");
  EXPECT_EQ(wrong_on_a_page("a\"b"), "\"");
}

TEST(HostileText, IsTextAlone) {
  EXPECT_TRUE(rc::check([] {
    const std::optional<Picture> picture = picture_of_text(hostile_text());
    if (!picture) RC_DISCARD("no picture");
    const auto width = *rc::gen::inRange<std::size_t>(kLeastWidth, 200);
    RC_ASSERT(wrong_on_a_terminal(terminal_text(*picture, {width, false})) == "");
    RC_ASSERT(wrong_on_a_terminal(without_colors(terminal_text(*picture, {width, true}))) == "");
    RC_ASSERT(wrong_on_a_page(picture_html(*picture)) == "");
  }));
}

}  // namespace
}  // namespace textio::tool
