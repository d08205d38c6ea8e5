#include <vltextstream/layout/layout.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textio::standalone {
namespace {

TEST(NamesFoundInWords, AreTheEnumerators) {
  EXPECT_EQ(to_string(NamesSource::last_header_line), "last-header-line");
  EXPECT_EQ(to_string(NamesSource::line_after_header), "line-after-header");
  EXPECT_EQ(to_string(NamesSource::none), "none");
  EXPECT_EQ(to_string(NamesSource::undecided), "undecided");
  EXPECT_EQ(to_string(static_cast<NamesSource>(4)), "");
}

TEST(LineRoleInWords, AreTheEnumerators) {
  EXPECT_EQ(to_string(LineRole::header), "header");
  EXPECT_EQ(to_string(LineRole::names), "names");
  EXPECT_EQ(to_string(LineRole::units), "units");
  EXPECT_EQ(to_string(LineRole::blank), "blank");
  EXPECT_EQ(to_string(LineRole::comment), "comment");
  EXPECT_EQ(to_string(LineRole::data), "data");
  EXPECT_EQ(to_string(static_cast<LineRole>(6)), "");
}

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

TEST(DialectOfALayout, WithoutATableIsALineReader) { EXPECT_EQ(dialect_of(Layout()), Dialect()); }

}  // namespace
}  // namespace textio::standalone
