#include <vltextstream/columns/share.hpp>

#include <cstddef>
#include <limits>

#include <gtest/gtest.h>

namespace textio::columns {
namespace {

TEST(Share, IsNineOfTen) {
  EXPECT_TRUE(is_share_enough(90, 100));
  EXPECT_FALSE(is_share_enough(89, 100));
  EXPECT_TRUE(is_share_enough(18, 20));
  EXPECT_FALSE(is_share_enough(17, 19));
}

TEST(Share, LetsOneOfFourBeOdd) {
  EXPECT_TRUE(is_share_enough(3, 4));
  EXPECT_TRUE(is_share_enough(8, 9));
  EXPECT_FALSE(is_share_enough(2, 3));
  EXPECT_FALSE(is_share_enough(7, 9));
}

TEST(Share, OfAllOrNone) {
  EXPECT_TRUE(is_share_enough(1, 1));
  EXPECT_FALSE(is_share_enough(0, 1));
  EXPECT_FALSE(is_share_enough(0, 0));
}

TEST(Share, OfHugeCountsDoesNotOverflow) {
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  EXPECT_TRUE(is_share_enough(kMost, kMost));
  EXPECT_FALSE(is_share_enough(kMost / 2, kMost));
}

}  // namespace
}  // namespace textio::columns
