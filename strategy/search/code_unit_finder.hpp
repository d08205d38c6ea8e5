// CodeUnitFinder: finds the code units of a set in a text.
//
//   const CodeUnitSet ends(u"\n\r");
//   CodeUnitFinder finder(text, ends);
//   std::size_t end = finder.next(0);    // of the first one, text.length if there is none
//
// For a list, compares blocks of 64 code units with the widest vectors of the machine and remembers
// the result: asking for one position after the other is cheap.
//
// Ownership  refers to the text and the set; neither may change while the finder lives.
// Cost       a few nanoseconds for each position and each block; a large set is looked up code unit
//            by code unit. Never reads past the end of the text.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/search/code_unit_set.hpp>

namespace textio {

// One way to search a text, for one kind of vectors. All give the same answers.
struct SearchKernel {
  const char* name;

  // The number of the first block of 64 code units, from `block` on, that holds one of the `count`
  // code units at `units`. `places` receives a word for this block and each of the `num_blocks` - 1
  // after it, with a bit for each match. Without a match: the number of the last block, and no bit.
  // `units` has room for CodeUnitSet::kMostListed, the last one repeated.
  std::size_t (*find_blocks)(const char16_t* text, std::size_t length, std::size_t block,
                             const char16_t* units, std::size_t count, std::uint64_t* places,
                             std::size_t num_blocks);
};

// The kernels that this machine can run, the fastest first; the last is the plain loop.
std::span<const SearchKernel> search_kernels();

// Makes finders that are constructed from now on, in all threads, search by `kernel`: for tests.
// Returns the kernel used until now.
const SearchKernel& use_search_kernel(const SearchKernel& kernel);

class CodeUnitFinder {
 public:
  static constexpr std::size_t kBlockUnits = 64;

  CodeUnitFinder(const Field& text, const CodeUnitSet& set);
  CodeUnitFinder(const Field& text, CodeUnitSet&& set) = delete;

  // Goes on with another text.
  void move_to(const Field& text) {
    text_ = text.data;
    length_ = text.length;
    num_blocks_ = 0;
  }

  // The first position from `i` on whose code unit is in the set, the text's length if there is
  // none.
  std::size_t next(std::size_t i) {
    const std::size_t block = i / kBlockUnits - first_block_;
    const std::uint64_t rest = block < num_blocks_ ? places_[block] >> (i % kBlockUnits) : 0;
    return rest != 0 ? i + static_cast<std::size_t>(std::countr_zero(rest)) : next_outside(i);
  }

 private:
  static constexpr std::size_t kMostBlocks = 8;

  std::size_t next_outside(std::size_t i);
  std::size_t next_within(std::size_t i) const;
  std::size_t next_in_table(std::size_t i) const;

  const SearchKernel* kernel_;
  const CodeUnitSet* set_;
  const char16_t* text_;
  std::size_t length_;

  // The blocks that were searched last, and a bit for each match in them.
  std::size_t first_block_ = 0;
  std::size_t num_blocks_ = 0;
  std::uint64_t places_[kMostBlocks];
};

}  // namespace textio
