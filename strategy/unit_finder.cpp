// The part between HWY_BEFORE_NAMESPACE and HWY_AFTER_NAMESPACE is compiled once for each kind of
// vectors, in a namespace of its own. Which one runs is decided here and not by the library that
// comes with these headers, so that ours needs no other at run time.
#include "strategy/unit_finder.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <initializer_list>

#include "strategy/scan.hpp"

#define HWY_DISABLED_TARGETS (HWY_SSSE3 | HWY_AVX3_DL)
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "strategy/unit_finder.cpp"
#include <hwy/foreach_target.h>
// Must come behind foreach_target.h.
#include <hwy/highway.h>

// Without vectors the plain loop is what runs.
#if HWY_TARGET != HWY_SCALAR && HWY_TARGET != HWY_EMU128
HWY_BEFORE_NAMESPACE();
namespace textio::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

constexpr std::size_t kBlock = UnitFinder::kBlockUnits;

// A bit for each of the 64 units at `block` that is one of `units`.
template <std::size_t kCount>
std::uint64_t places_in(const char16_t* block, const char16_t* units) {
  const hn::CappedTag<std::uint16_t, kBlock> d;  // of eight units at least: they fill whole bytes
  const auto* const in = reinterpret_cast<const std::uint16_t*>(block);
  alignas(8) std::uint8_t bits[kBlock / 8] = {};
  for (std::size_t i = 0; i < kBlock; i += hn::Lanes(d)) {
    const auto text = hn::LoadU(d, in + i);
    auto found = hn::Eq(text, hn::Set(d, static_cast<std::uint16_t>(units[0])));
    for (std::size_t k = 1; k < kCount; ++k) {
      found = hn::Or(found, hn::Eq(text, hn::Set(d, static_cast<std::uint16_t>(units[k]))));
    }
    hn::StoreMaskBits(d, found, bits + i / 8);
  }
  std::uint64_t places = 0;
  for (std::size_t i = 0; i < sizeof bits; ++i) places |= std::uint64_t{bits[i]} << (8 * i);
  return places;
}

template <std::size_t kCount>
std::size_t first_block(const char16_t* text, std::size_t length, std::size_t block,
                        const char16_t* units, std::uint64_t& places) {
  for (; (block + 1) * kBlock <= length; ++block) {
    places = places_in<kCount>(text + block * kBlock, units);
    if (places != 0) return block;
  }
  // The last block is not full: nothing behind the text may be read.
  char16_t last[kBlock] = {};
  const std::size_t rest = length - std::min(length, block * kBlock);
  std::copy_n(text + (length - rest), rest, last);
  places = places_in<kCount>(last, units) & ((std::uint64_t{1} << rest) - 1);
  return block;
}

std::size_t find_block(const char16_t* text, std::size_t length, std::size_t block,
                       const char16_t* units, std::size_t count, std::uint64_t& places) {
  if (count <= 1) return first_block<1>(text, length, block, units, places);
  if (count <= 2) return first_block<2>(text, length, block, units, places);
  if (count <= 3) return first_block<3>(text, length, block, units, places);
  if (count <= 4) return first_block<4>(text, length, block, units, places);
  return first_block<UnitFinder::kMostUnits>(text, length, block, units, places);
}

}  // namespace textio::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();
#endif

#if HWY_ONCE
namespace textio {
namespace {

std::size_t plain_find_block(const char16_t* text, std::size_t length, std::size_t block,
                             const char16_t* units, std::size_t count, std::uint64_t& places) {
  for (;; ++block) {
    const std::size_t begin = block * UnitFinder::kBlockUnits;
    const std::size_t end = std::min(length, begin + UnitFinder::kBlockUnits);
    places = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const bool is_found = contains({units, count}, text[i]);
      places |= std::uint64_t{is_found} << (i - begin);
    }
    const bool is_last = begin + UnitFinder::kBlockUnits > length;
    if (places != 0 || is_last) return block;
  }
}

// What the compiler may make use of where it compiles for such vectors.
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
    if (has_avx512()) add({"avx512", N_AVX3::find_block});
#endif
#if HWY_TARGETS & HWY_AVX2
    if (has_avx2()) add({"avx2", N_AVX2::find_block});
#endif
#if HWY_TARGETS & HWY_SSE4
    if (has_sse4()) add({"sse4", N_SSE4::find_block});
#endif
#if !HWY_ARCH_X86 && HWY_STATIC_TARGET != HWY_SCALAR && HWY_STATIC_TARGET != HWY_EMU128
    add({"native", HWY_STATIC_DISPATCH(find_block)});
#endif
    add({"plain", plain_find_block});
  }

  void add(const UnitKernel& kernel) { all[count++] = kernel; }

  std::array<UnitKernel, 5> all = {};
  std::size_t count = 0;
};

const Kernels& kernels() {
  static const Kernels found;
  return found;
}

std::atomic<const UnitKernel*>& chosen_kernel() {
  static std::atomic<const UnitKernel*> chosen = kernels().all.data();
  return chosen;
}

}  // namespace

std::span<const UnitKernel> unit_kernels() {
  return std::span(kernels().all).first(kernels().count);
}

void use_unit_kernel(const UnitKernel& kernel) { chosen_kernel() = &kernel; }

UnitFinder::UnitFinder(const Field& text, std::u16string_view set)
    : kernel_(chosen_kernel()), text_(text.data), length_(text.length), num_units_(set.size()) {
  if (num_units_ > kMostUnits) {
    large_set_ = set;
    return;
  }
  std::copy(set.begin(), set.end(), units_);
  std::fill(units_ + num_units_, units_ + kMostUnits, set.empty() ? u'\0' : set.back());
}

// What is left of the block looked at last holds nothing.
std::size_t UnitFinder::next_outside(std::size_t i) {
  if (num_units_ == 0 || i >= length_) return length_;
  if (num_units_ > kMostUnits) return find_first_of(Field(text_, length_), i, large_set_);
  const std::size_t own_block = i / kBlockUnits;
  std::size_t block = own_block == block_ ? own_block + 1 : own_block;
  do {
    block_ = kernel_->find_block(text_, length_, block, units_, num_units_, places_);
    const std::uint64_t from_i = ~std::uint64_t{0} << (i % kBlockUnits);
    const std::uint64_t places = block_ == own_block ? places_ & from_i : places_;
    if (places != 0) {
      return block_ * kBlockUnits + static_cast<std::size_t>(std::countr_zero(places));
    }
    block = block_ + 1;
  } while (block * kBlockUnits < length_);
  return length_;
}

}  // namespace textio
#endif
