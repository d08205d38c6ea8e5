#include <vltextstream/layout/layout.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textio::standalone {
namespace {

TEST(DialectOfALayout, IsItsModeDelimitersAndWidthsInUtf8) {
  Layout layout;
  layout.mode = LayoutMode::fixed_width;
  layout.delimiters = {u"::", u"\u00A7", u"\U0001F480"};
  layout.widths = {3, 15};
  EXPECT_EQ(dialect_of(layout),
            (Dialect{LayoutMode::fixed_width, {"::", "\xC2\xA7", "\xF0\x9F\x92\x80"}, {3, 15}}));
}

TEST(DialectOfALayout, HasNoHalfCharacters) {
  Layout layout;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {std::u16string(1, char16_t{0xD83D}), std::u16string(1, char16_t{0xDCE9})};
  EXPECT_EQ(dialect_of(layout).delimiters,
            (std::vector<std::string>{"\xEF\xBF\xBD", "\xEF\xBF\xBD"}));
}

TEST(JudgeName, IsThatOfTheEnumerator) {
  EXPECT_EQ(to_string(Judge::assessment), "assessment");
  EXPECT_EQ(to_string(Judge::cascade), "cascade");
  EXPECT_EQ(to_string(static_cast<Judge>(2)), "");
}

TEST(DialectOfALayout, WithoutATableIsALineReader) { EXPECT_EQ(dialect_of(Layout()), Dialect()); }

}  // namespace
}  // namespace textio::standalone
