#include <vltextstream/source/unit_block.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>

namespace textio {
namespace {

constexpr auto kUnits = static_cast<std::size_t>(kBlockUnits);

// A heap block of exactly its size, with `odd` at `place`.
template <typename Unit>
std::unique_ptr<Unit[]> block_with(Unit odd, std::size_t place) {
  auto block = std::make_unique<Unit[]>(kUnits);
  for (std::size_t i = 0; i < kUnits; ++i) block[i] = i == place ? odd : Unit{'a'};
  return block;
}

TEST(AnyInBlock, FindsAUnitAtEveryPlace) {
  for (std::size_t place = 0; place < kUnits; ++place) {
    const auto block = block_with<char16_t>(0xFFFF, place);
    EXPECT_TRUE(any_in_block(block.get(), [](char16_t unit) { return unit == 0xFFFF; })) << place;
    EXPECT_FALSE(any_in_block(block.get(), [](char16_t unit) { return unit == 0x00FF; })) << place;
  }
}

TEST(AnyInBlock, FindsAByteAtEveryPlace) {
  for (std::size_t place = 0; place < kUnits; ++place) {
    const auto block = block_with<char>('\xE9', place);
    EXPECT_TRUE(any_in_block(block.get(), [](char byte) { return byte < 0; })) << place;
    EXPECT_FALSE(any_in_block(block.get(), [](char byte) { return byte == 'b'; })) << place;
  }
}

// Hits in many code units do not overflow the number that collects them.
TEST(AnyInBlock, FindsWhatAllUnitsAre) {
  const auto block = block_with<char16_t>(u'a', 0);
  EXPECT_TRUE(any_in_block(block.get(), [](char16_t unit) { return unit == u'a'; }));
}

TEST(AnyInBlock, LooksAtNoUnitBehindTheBlock) {
  std::u16string text(kUnits, u'a');
  text += u'x';
  EXPECT_FALSE(any_in_block(text.data(), [](char16_t unit) { return unit == u'x'; }));
  EXPECT_TRUE(any_in_block(text.data() + 1, [](char16_t unit) { return unit == u'x'; }));
}

}  // namespace
}  // namespace textio
