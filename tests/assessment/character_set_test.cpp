#include <vltextstream/assessment/character_set.hpp>

#include <bit>
#include <set>
#include <string_view>

#include <gtest/gtest.h>

namespace textio::assessment {
namespace {

TEST(CharacterSet, HasOneBitForEachCharacter) {
  for (char16_t unit = 0; unit < 0x180; ++unit) EXPECT_EQ(std::popcount(set_of(unit)), 1) << +unit;
}

TEST(CharacterSet, TellsAllPunctuationApart) {
  std::set<CharacterSet> sets;
  std::size_t size = 0;
  for (char16_t unit = 0x20; unit < 0x7F; ++unit) {
    if (character_set::is_letter_or_digit(unit)) continue;
    sets.insert(set_of(unit));
    ++size;
  }
  EXPECT_EQ(size, 33U);
  EXPECT_EQ(sets.size(), size);
  EXPECT_EQ(sets.count(set_of(u'\t')), 0U);
}

TEST(CharacterSet, SharesABitAmongWhatIsNoPunctuation) {
  for (const char16_t unit : std::u16string_view(u"09AZaz")) {
    EXPECT_EQ(set_of(unit), kLettersAndDigits) << +unit;
  }
  for (const char16_t unit : std::u16string_view(u"\u0001\n\v\r\u001F\u007F")) {
    EXPECT_EQ(set_of(unit), kControls) << +unit;
  }
  EXPECT_EQ(set_of(u'\0'), kControls);
  for (const char16_t unit : std::u16string_view(u"\u0080\u00A0\u00E9\u4E00\uFFFF")) {
    EXPECT_EQ(set_of(unit), kBeyondAscii) << +unit;
  }
  EXPECT_NE(set_of(u'\t'), kControls);
}

TEST(CharacterSet, OfATextHasThatOfEachCharacter) {
  EXPECT_EQ(characters_in(u""), 0U);
  EXPECT_EQ(characters_in(u"a;b;"), kLettersAndDigits | set_of(u';'));
  EXPECT_EQ(characters_in(u"\u00E9|\n"), kBeyondAscii | set_of(u'|') | kControls);
}

}  // namespace
}  // namespace textio::assessment
