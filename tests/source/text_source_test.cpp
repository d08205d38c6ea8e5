#include "source/text_source.hpp"

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

}  // namespace
}  // namespace textio
