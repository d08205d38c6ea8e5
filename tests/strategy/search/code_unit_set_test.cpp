#include <vltextstream/strategy/search/code_unit_set.hpp>

#include <string>

#include <gtest/gtest.h>

namespace textio {
namespace {

TEST(CodeUnitSet, ContainsItsCodeUnits) {
  const CodeUnitSet set(std::u16string_view(u"\0;\uFFFF", 3));
  EXPECT_TRUE(set.contains(u'\0') && set.contains(u';') && set.contains(u'\uFFFF'));
  EXPECT_FALSE(set.contains(u','));
  EXPECT_FALSE(set.is_empty());
}

TEST(CodeUnitSet, HoldsCodeUnitsOnBothSidesOfAWord) {
  const CodeUnitSet set(u"?@");  // U+003F and U+0040
  EXPECT_TRUE(set.contains(u'?') && set.contains(u'@'));
  EXPECT_FALSE(set.contains(u'>') || set.contains(u'A') || set.contains(u'\x7F'));
}

TEST(CodeUnitSet, IsEmptyWithoutCodeUnits) {
  const CodeUnitSet set;
  EXPECT_TRUE(set.is_empty());
  EXPECT_FALSE(set.contains(u'\0')) << "the room for more holds zeros";
}

TEST(CodeUnitSet, RepeatsTheLastCodeUnitInTheRestOfTheList) {
  const CodeUnitSet set(u"ab");
  ASSERT_TRUE(set.is_list());
  EXPECT_EQ(set.num_listed(), 2U);
  EXPECT_EQ(std::u16string_view(set.listed(), CodeUnitSet::kMostListed), u"abbbbbbb");
}

TEST(CodeUnitSet, IsAListUpToEight) {
  EXPECT_TRUE(CodeUnitSet(u"abcdefgh").is_list());
  EXPECT_FALSE(CodeUnitSet(u"abcdefghi").is_list());
}

TEST(CodeUnitSet, ContainsTheSameAsATable) {
  const std::u16string units = u"abcdefghi\uFFFF" + std::u16string(1, u'\0');
  const CodeUnitSet set(units);
  const CodeUnitSet copy = set;
  for (const char16_t unit : units) EXPECT_TRUE(copy.contains(unit));
  EXPECT_FALSE(copy.contains(u'j'));
  EXPECT_FALSE(copy.is_empty());
}

}  // namespace
}  // namespace textio
