// CodeUnitFinder: finds the code units of a set in a text.
//
//   const CodeUnitSet ends(u"\n\r");
//   CodeUnitFinder finder(text, ends);
//   std::size_t end = finder.next(0);    // the first match; text.length if there is none
//
// For a set that is a list, compares blocks of 64 code units with the widest vector instructions of
// the machine and remembers the result, so asking for consecutive positions is cheap.
//
// Ownership  refers to the text and the set; neither may change while the finder exists.
// Cost       a few nanoseconds for each position and each block. A set that is a table is looked up
//            for each code unit. Never reads past the end of the text.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/search/code_unit_set.hpp>

namespace textio {

// One implementation of the search, for one vector instruction set. All give the same results.
struct SearchKernel {
  const char* name;

  // Returns the number of the first block of 64 code units, at or after `block`, that contains one
  // of the `count` code units at `units`. `places` receives a word with a bit for each match, for
  // this block and for each of the `num_blocks` - 1 blocks after it. Without a match: returns the
  // number of the last block and sets no bit. `units` has CodeUnitSet::kMostListed elements; the
  // last one of the list is repeated in the rest.
  std::size_t (*find_blocks)(const char16_t* text, std::size_t length, std::size_t block,
                             const char16_t* units, std::size_t count, std::uint64_t* places,
                             std::size_t num_blocks);
};

// The kernels that this machine can run, fastest first. The last one is the plain loop.
std::span<const SearchKernel> search_kernels();

// For tests: finders that are constructed from now on, in all threads, use `kernel`. Returns the
// previous kernel.
const SearchKernel& use_search_kernel(const SearchKernel& kernel);

class CodeUnitFinder {
 public:
  static constexpr std::size_t kBlockUnits = 64;

  CodeUnitFinder(const Field& text, const CodeUnitSet& set);
  CodeUnitFinder(const Field& text, CodeUnitSet&& set) = delete;

  // Continues with another text.
  void move_to(const Field& text) {
    text_ = text.data;
    length_ = text.length;
    num_blocks_ = 0;
  }

  // The first position at or after `i` whose code unit is in the set; the length of the text if
  // there is none.
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
