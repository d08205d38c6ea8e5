#include <vltextstream/columns/category.hpp>

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace textio::columns {
namespace {

bool is_category(const std::vector<std::u16string>& texts, int times) {
  CategoryTally tally;
  for (int i = 0; i < times; ++i) {
    for (const std::u16string& text : texts) tally.add(text);
  }
  return tally.is_category();
}

std::vector<std::u16string> different_texts(char16_t count) {
  std::vector<std::u16string> texts;
  for (char16_t i = 0; i < count; ++i) texts.push_back({u'x', static_cast<char16_t>(0x4E00 + i)});
  return texts;
}

TEST(Category, HasEachTextFourTimes) {
  EXPECT_TRUE(is_category({u"north", u"south", u"east"}, 4));
  EXPECT_FALSE(is_category({u"north", u"south", u"east"}, 3));
}

TEST(Category, HasEightCells) {
  EXPECT_TRUE(is_category({u"north"}, 8));
  EXPECT_FALSE(is_category({u"north"}, 7));
}

TEST(Category, HasAHundredTexts) {
  EXPECT_TRUE(is_category(different_texts(100), 4));
  EXPECT_FALSE(is_category(different_texts(101), 4));
}

TEST(Category, HasShortTexts) {
  EXPECT_TRUE(is_category({std::u16string(50, u'a')}, 8));
  EXPECT_FALSE(is_category({std::u16string(51, u'a')}, 8));
}

TEST(Category, IsNotEmpty) { EXPECT_FALSE(is_category({}, 1)); }

}  // namespace
}  // namespace textio::columns
