#include <vltextstream/reading/utf8_writer.hpp>

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/text/utf8.hpp>

#include "support/exact_text.hpp"

namespace textio::reading {
namespace {

using testing_support::ExactText;

std::string written(const std::vector<std::u16string>& texts, std::size_t expected) {
  std::string bytes = "before:";
  Utf8Writer writer(bytes);
  writer.expect(expected);
  for (const std::u16string& text : texts) writer.append(ExactText(text).view());
  writer.finish();
  return bytes;
}

TEST(Utf8WriterAppend, WritesEachLength) {
  for (std::size_t length = 0; length <= 20; ++length) {
    const std::u16string text = std::u16string(u"abcdefghijklmnopqrst").substr(0, length);
    const std::string narrow(text.begin(), text.end());
    EXPECT_EQ(written({text, u"|"}, length + 1), "before:" + narrow + "|");
    EXPECT_EQ(written({text, u"|"}, 0), "before:" + narrow + "|");
  }
}

TEST(Utf8WriterAppend, WritesAllCharacters) {
  EXPECT_EQ(written({u"\u007F\u0080\u07FF\u0800\uFFFD\uFFFF"}, 6),
            "before:\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBD\xEF\xBF\xBF");
  EXPECT_EQ(written({u"\U00010000\U0010FFFF"}, 4), "before:\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
  EXPECT_EQ(written({std::u16string(2, u'\0')}, 2), std::string("before:\0\0", 9));
}

TEST(Utf8WriterAppend, ReplacesUnpairedSurrogates) {
  EXPECT_EQ(written({std::u16string{0xD800}, std::u16string{0xDC00}}, 2),
            "before:\xEF\xBF\xBD\xEF\xBF\xBD");  // not a pair: they are in two texts
  EXPECT_EQ(written({std::u16string{0xDC00, 0xD800, u'a'}}, 3),
            "before:\xEF\xBF\xBD\xEF\xBF\xBD"
            "a");
}

TEST(Utf8WriterProperty, WritesWhatTheSlowFunctionDoes) {
  std::mt19937 random(20240131);
  for (int i = 0; i < 2000; ++i) {
    std::vector<std::u16string> texts(random() % 5);
    std::string expected = "before:";
    for (std::u16string& text : texts) {
      const bool is_ascii = random() % 2 == 0;
      for (std::size_t left = random() % 30; left > 0; --left) {
        text += static_cast<char16_t>(is_ascii ? random() % 0x80 : random() % 0x10000);
      }
      expected += to_utf8_lossy(text);
    }
    ASSERT_EQ(written(texts, random() % 20), expected);
  }
}

}  // namespace
}  // namespace textio::reading
