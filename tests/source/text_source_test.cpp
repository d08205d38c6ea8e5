#include <vltextstream/source/text_source.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

#include "support/rule_name.hpp"

namespace textio {
namespace {

struct FoldCase {
  const char* rule;
  std::u16string units;
  std::u16string folded;
};
std::ostream& operator<<(std::ostream& out, const FoldCase& row) { return out << row.rule; }

const FoldCase kFoldCases[] = {
    {"NothingStaysNothing", {}, {}},
    {"OtherUnitsStay", u"a\u0000\u001b\uffff", u"a\u0000\u001b\uffff"},
    {"TheNeighboursOfSurrogatesStay", {0xD7FF, 0xE000}, {0xD7FF, 0xE000}},
    {"TheFirstPair", {0xD800, 0xDC00}, {0x001A}},
    {"TheLastPair", {0xDBFF, 0xDFFF}, {0x001A}},
    {"EachOfTwoPairs", {0xD800, 0xDFFF, 0xDBFF, 0xDC00}, {0x001A, 0x001A}},
    {"PairsBetweenOtherUnits",
     {u'a', 0xD83D, 0xDE00, u'b', 0xD83D, 0xDE01, u'c'},
     {u'a', 0x001A, u'b', 0x001A, u'c'}},
    {"HighSurrogatesAlone", {0xD800, 0xD800, u'a', 0xDBFF}, {0x001A, 0x001A, u'a', 0x001A}},
    {"LowSurrogatesAlone", {0xDC00, u'a', 0xDFFF}, {u'a'}},
};

class FoldSurrogatePairs : public testing::TestWithParam<FoldCase> {};
TEST_P(FoldSurrogatePairs, MakesOneUnitOfEachPair) {
  const std::size_t size = GetParam().units.size();
  const auto block = std::make_unique<char16_t[]>(size);
  std::copy_n(GetParam().units.data(), size, block.get());
  char16_t* const end = fold_surrogate_pairs(block.get(), block.get() + size);
  ASSERT_EQ(end - block.get(), static_cast<std::ptrdiff_t>(GetParam().folded.size()));
  EXPECT_EQ(std::u16string(block.get(), end), GetParam().folded);
}
INSTANTIATE_TEST_SUITE_P(Table, FoldSurrogatePairs, testing::ValuesIn(kFoldCases),
                         testing_support::ByRule());

// Blocks without a surrogate are skipped: the place of a surrogate must make no difference.
TEST(FoldSurrogatePairs, FindsAPairAtEveryPlace) {
  constexpr std::size_t kLength = 200;
  for (std::size_t place = 0; place + 2 <= kLength; ++place) {
    std::u16string text(kLength, u'a');
    text[place] = 0xD83D;
    text[place + 1] = 0xDE00;
    std::u16string folded(kLength - 1, u'a');
    folded[place] = kFoldedCharacter;
    char16_t* const end = fold_surrogate_pairs(text.data(), text.data() + kLength);
    EXPECT_EQ(std::u16string(text.data(), end), folded) << "pair at " << place;
  }
}

}  // namespace
}  // namespace textio
