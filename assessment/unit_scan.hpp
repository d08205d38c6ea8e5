// UnitScan: the places of one or two code units in a text, asked for in rising order.
//
//   UnitScan ends(text, u'\n', u'\r');
//   for (std::size_t at = ends.next(0, text.size()); at < text.size(); at = ends.next(at + 1, text.size()))
//
// Looks at blocks of 64 units and remembers the last one, so that matches close to one another cost next to nothing. Any
// order is right; going back looks at a block once more.
//
// Ownership  refers to the text.
// Cost       of each block a few dozen instructions, of each match a few.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace textio::assessment {

class UnitScan {
 public:
  UnitScan(std::u16string_view text, char16_t unit) : UnitScan(text, unit, unit) {}
  UnitScan(std::u16string_view text, char16_t first, char16_t second)
      : text_(text), first_(first), second_(second) {}

  // The first place of one of the units that is at least `from` and less than `end`; `end` if there is none. `end` is
  // at most the size of the text.
  std::size_t next(std::size_t from, std::size_t end) {
    if (from >= end) return end;
    std::size_t block = from / kBlock;
    std::uint64_t places = places_in(block) >> (from % kBlock) << (from % kBlock);
    while (places == 0) {
      ++block;
      if (block * kBlock >= end) return end;
      places = places_in(block);
    }
    return std::min(block * kBlock + static_cast<std::size_t>(std::countr_zero(places)), end);
  }

 private:
  static constexpr std::size_t kBlock = 64;

  std::uint64_t places_in(std::size_t block) {
    if (block != block_) look_at(block);
    return places_;
  }

  void look_at(std::size_t block) {
    const char16_t* const units = text_.data() + block * kBlock;
    const std::size_t count = std::min(kBlock, text_.size() - block * kBlock);
    block_ = block;
    places_ = 0;
    std::size_t i = 0;
#if defined(__SSE2__)
    constexpr std::size_t kStep = 16;
    const __m128i first = _mm_set1_epi16(static_cast<short>(first_));
    const __m128i second = _mm_set1_epi16(static_cast<short>(second_));
    const auto matches = [&](const char16_t* eight) {
      const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(eight));
      return _mm_or_si128(_mm_cmpeq_epi16(text, first), _mm_cmpeq_epi16(text, second));
    };
    for (; i + kStep <= count; i += kStep) {
      const __m128i sixteen = _mm_packs_epi16(matches(units + i), matches(units + i + kStep / 2));
      places_ |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(sixteen))} << i;
    }
#endif
    for (; i < count; ++i) {
      places_ |= std::uint64_t{units[i] == first_ || units[i] == second_} << i;
    }
  }

  std::u16string_view text_;
  char16_t first_;
  char16_t second_;
  std::size_t block_ = ~std::size_t{0};
  std::uint64_t places_ = 0;  // in this block
};

}  // namespace textio::assessment
