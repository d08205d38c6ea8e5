// UnitFinder: where the units of a small set stand in a text.
//
//   UnitFinder ends(text, u"\n\r");
//   std::size_t end = ends.next(0);    // the first of them, text.length when there is none
//
// Looks at blocks of 64 units with the widest vectors that the machine has, at several of them
// where units are found, and remembers what it saw: asking for one place after the other is cheap.
//
// Units      positions count UTF-16 code units.
// Ownership  refers to the text, which must not change while the finder lives.
// Cost       a few nanoseconds for each place and each block; sets of more than kMostUnits units
//            are looked up unit by unit. Never reads past the end of the text.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include <vltextstream/strategy/field.hpp>

namespace textio {

// One way to search a text, for one kind of vectors. All give the same answers.
struct UnitKernel {
  const char* name;

  // The number of the first block of 64 units, from `block` on, in which one of the `count` units
  // at `units` stands. `places` has a bit for each place in it and in the `num_blocks` - 1 blocks
  // behind it, a word for each. When there is none, the number of the last block, and no bit.
  // `units` has room for UnitFinder::kMostUnits, the last one repeated.
  std::size_t (*find_blocks)(const char16_t* text, std::size_t length, std::size_t block,
                             const char16_t* units, std::size_t count, std::uint64_t* places,
                             std::size_t num_blocks);
};

// The kernels that this machine can run, the fastest first; the last is the plain loop.
std::span<const UnitKernel> unit_kernels();

// Lets finders that are made from now on, in all threads, search by `kernel`: for tests. Returns
// the one that they searched by until now.
const UnitKernel& use_unit_kernel(const UnitKernel& kernel);

class UnitFinder {
 public:
  static constexpr std::size_t kMostUnits = 8;
  static constexpr std::size_t kBlockUnits = 64;

  // `set` must live as long as the finder when it has more than kMostUnits units.
  UnitFinder(const Field& text, std::u16string_view set);

  // The first position from `i` on whose unit is in the set, the text's length when there is none.
  std::size_t next(std::size_t i) {
    const std::size_t block = i / kBlockUnits - first_block_;
    const std::uint64_t rest = block < num_blocks_ ? places_[block] >> (i % kBlockUnits) : 0;
    return rest != 0 ? i + static_cast<std::size_t>(std::countr_zero(rest)) : next_outside(i);
  }

 private:
  static constexpr std::size_t kMostBlocks = 8;

  std::size_t next_outside(std::size_t i);
  std::size_t next_within(std::size_t i) const;

  const UnitKernel* kernel_;
  const char16_t* text_;
  std::size_t length_;
  std::u16string_view large_set_;
  char16_t units_[kMostUnits];  // the set; the last one stands in the places that are left
  std::size_t num_units_;

  // The blocks that were looked at last, and a bit for each of their units that is in the set.
  std::size_t first_block_ = 0;
  std::size_t num_blocks_ = 0;
  std::uint64_t places_[kMostBlocks];
};

}  // namespace textio
