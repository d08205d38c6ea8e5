#include <vltextstream/layout/table_lines.hpp>

#include <gtest/gtest.h>

namespace textio::standalone {
namespace {

TEST(NamesSourceInWords, AreTheEnumerators) {
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
  EXPECT_EQ(to_string(LineRole::footer), "footer");
  EXPECT_EQ(to_string(static_cast<LineRole>(7)), "");
}

}  // namespace
}  // namespace textio::standalone
