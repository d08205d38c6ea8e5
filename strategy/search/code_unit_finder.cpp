// The part between HWY_BEFORE_NAMESPACE and HWY_AFTER_NAMESPACE is compiled once per vector
// instruction set, each time in its own namespace. This file chooses the one that runs; the Highway
// library's own dispatch would be a run-time dependency.
#include <vltextstream/strategy/search/code_unit_finder.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <initializer_list>

#include <vltextstream/strategy/field_text.hpp>

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strategy/search/code_unit_finder.cpp"
#include <hwy/foreach_target.h>
// Must come after foreach_target.h.
#include <hwy/highway.h>

// Without vector instructions only the plain loop below is used.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace textio::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kBlock = CodeUnitFinder::kBlockUnits;

// A mask of the 64 code units at `block`: a bit is set where the code unit is one of `units`.
template <std::size_t kCount>
std::uint64_t places_in(const char16_t* block, const char16_t* units) {
  const hn::CappedTag<std::uint16_t, kBlock> d;  // at least eight lanes: they fill whole bytes
  const auto* const in = reinterpret_cast<const std::uint16_t*>(block);
  std::uint64_t places = 0;
  for (std::size_t i = 0; i < kBlock; i += hn::Lanes(d)) {
    const auto text = hn::LoadU(d, in + i);
    auto found = hn::Eq(text, hn::Set(d, static_cast<std::uint16_t>(units[0])));
    for (std::size_t k = 1; k < kCount; ++k) {
      found = hn::Or(found, hn::Eq(text, hn::Set(d, static_cast<std::uint16_t>(units[k]))));
    }
    std::uint8_t bits[8] = {};
    hn::StoreMaskBits(d, found, bits);
    for (std::size_t byte = 0; byte < hn::Lanes(d) / 8; ++byte) {
      places |= std::uint64_t{bits[byte]} << (i + 8 * byte);
    }
  }
  return places;
}

// The last block is not full, and nothing after the text may be read.
template <std::size_t kCount>
std::uint64_t places_in_last(const char16_t* block, std::size_t rest, const char16_t* units) {
  char16_t last[kBlock] = {};
  std::copy_n(block, rest, last);
  return places_in<kCount>(last, units) & ((std::uint64_t{1} << rest) - 1);
}

template <std::size_t kCount>
std::size_t search(const char16_t* text, std::size_t length, std::size_t block,
                   const char16_t* units, std::uint64_t* places, std::size_t num_blocks) {
  const std::size_t num_full = length / kBlock;
  places[0] = 0;
  while (block < num_full) {
    places[0] = places_in<kCount>(text + block * kBlock, units);
    if (places[0] != 0) break;
    ++block;
  }
  for (std::size_t k = block < num_full ? 1 : 0; k < num_blocks; ++k) {
    const std::size_t at = (block + k) * kBlock;
    const std::size_t rest = length - std::min(length, at);
    places[k] = rest >= kBlock ? places_in<kCount>(text + at, units)
                : rest > 0     ? places_in_last<kCount>(text + at, rest, units)
                               : 0;
  }
  return block;
}

std::size_t find_blocks(const char16_t* text, std::size_t length, std::size_t block,
                        const char16_t* units, std::size_t count, std::uint64_t* places,
                        std::size_t num_blocks) {
  static constexpr std::array kSearches = {search<1>, search<2>, search<3>,
                                           search<4>, search<5>, search<CodeUnitSet::kMostListed>};
  const std::size_t fitting = std::min(count, kSearches.size()) - 1;
  return kSearches[fitting](text, length, block, units, places, num_blocks);
}

}  // namespace textio::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace textio {
namespace {

std::uint64_t plain_places_in(const char16_t* text, std::size_t length, std::size_t block,
                              std::u16string_view units) {
  const std::size_t begin = std::min(length, block * CodeUnitFinder::kBlockUnits);
  const std::size_t end = std::min(length, begin + CodeUnitFinder::kBlockUnits);
  std::uint64_t places = 0;
  for (std::size_t i = begin; i < end; ++i) {
    places |= std::uint64_t{contains(units, text[i])} << (i - begin);
  }
  return places;
}

std::size_t plain_find_blocks(const char16_t* text, std::size_t length, std::size_t block,
                              const char16_t* units, std::size_t count, std::uint64_t* places,
                              std::size_t num_blocks) {
  const std::u16string_view set(units, count);
  places[0] = plain_places_in(text, length, block, set);
  while (places[0] == 0 && block < length / CodeUnitFinder::kBlockUnits) {
    places[0] = plain_places_in(text, length, ++block, set);
  }
  for (std::size_t k = 1; k < num_blocks; ++k) {
    places[k] = plain_places_in(text, length, block + k, set);
  }
  return block;
}

// Whether the processor has every feature that the compiler assumes for this instruction set.
bool are_all_there(std::initializer_list<bool> features) {
  return std::find(features.begin(), features.end(), false) == features.end();
}

#if HWY_TARGETS & HWY_AVX3
bool has_avx512() {
  return are_all_there(
      {__builtin_cpu_supports("avx512f") != 0, __builtin_cpu_supports("avx512bw") != 0,
       __builtin_cpu_supports("avx512cd") != 0, __builtin_cpu_supports("avx512dq") != 0,
       __builtin_cpu_supports("avx512vl") != 0});
}
#endif
#if HWY_TARGETS & HWY_AVX2
bool has_avx2() {
  return are_all_there({__builtin_cpu_supports("avx2") != 0, __builtin_cpu_supports("bmi") != 0,
                        __builtin_cpu_supports("bmi2") != 0, __builtin_cpu_supports("fma") != 0});
}
#endif
#if HWY_TARGETS & HWY_SSE4
bool has_sse4() { return __builtin_cpu_supports("sse4.1") != 0; }
#endif

struct Kernels {
  Kernels() {
#if HWY_TARGETS & HWY_AVX3
    if (has_avx512()) add({"avx512", N_AVX3::find_blocks});
#endif
#if HWY_TARGETS & HWY_AVX2
    if (has_avx2()) add({"avx2", N_AVX2::find_blocks});
#endif
#if HWY_TARGETS & HWY_SSE4
    if (has_sse4()) add({"sse4", N_SSE4::find_blocks});
#endif
#if !HWY_ARCH_X86 && HWY_STATIC_TARGET != HWY_SCALAR && HWY_STATIC_TARGET != HWY_EMU128
    add({"native", HWY_STATIC_DISPATCH(find_blocks)});
#endif
    add({"plain", plain_find_blocks});
  }

  void add(const SearchKernel& kernel) { all[count++] = kernel; }

  std::array<SearchKernel, 5> all = {};
  std::size_t count = 0;
};

const Kernels& kernels() {
  static const Kernels found;
  return found;
}

std::atomic<const SearchKernel*>& chosen_kernel() {
  static std::atomic<const SearchKernel*> chosen = kernels().all.data();
  return chosen;
}

}  // namespace

std::span<const SearchKernel> search_kernels() {
  return std::span(kernels().all).first(kernels().count);
}

const SearchKernel& use_search_kernel(const SearchKernel& kernel) {
  return *chosen_kernel().exchange(&kernel);
}

CodeUnitFinder::CodeUnitFinder(const Field& text, const CodeUnitSet& set)
    : kernel_(chosen_kernel()), set_(&set), text_(text.data), length_(text.length) {}

// The number of blocks searched ahead grows with the requests, because a text may be a short line.
std::size_t CodeUnitFinder::next_outside(std::size_t i) {
  if (set_->is_empty() || i >= length_) return length_;
  if (!set_->is_list()) return next_in_table(i);
  std::size_t place = next_within(i);
  std::size_t block = i / kBlockUnits;
  if (block - first_block_ < num_blocks_) block = first_block_ + num_blocks_;
  while (place == length_ && block * kBlockUnits < length_) {
    num_blocks_ = std::clamp<std::size_t>(2 * num_blocks_, 1, kMostBlocks);
    first_block_ = kernel_->find_blocks(text_, length_, block, set_->listed(), set_->num_listed(),
                                        places_, num_blocks_);
    place = next_within(std::max(i, first_block_ * kBlockUnits));
    block = first_block_ + num_blocks_;
  }
  return place;
}

std::size_t CodeUnitFinder::next_in_table(std::size_t i) const {
  while (i < length_ && !set_->contains(text_[i])) ++i;
  return i;
}

// The first match at or after `i` in the blocks that were searched. The length of the text if there
// is none, or if the block of `i` was not searched.
std::size_t CodeUnitFinder::next_within(std::size_t i) const {
  std::size_t k = i / kBlockUnits - first_block_;
  if (k >= num_blocks_) return length_;
  const std::uint64_t rest = places_[k] >> (i % kBlockUnits);
  if (rest != 0) return i + static_cast<std::size_t>(std::countr_zero(rest));
  while (++k < num_blocks_) {
    if (places_[k] != 0) {
      return (first_block_ + k) * kBlockUnits +
             static_cast<std::size_t>(std::countr_zero(places_[k]));
    }
  }
  return length_;
}

}  // namespace textio
#endif
