// Questions about many units at a time.
//
//   while (end - text >= kBlockUnits && !any_in_block(text, is_surrogate)) text += kBlockUnits;
//
// A loop that may end at each unit looks at them one by one. This one looks at all of a block, so
// that the compiler makes vectors of them.
#pragma once

#include <cstddef>
#include <type_traits>

namespace textio {

inline constexpr std::ptrdiff_t kBlockUnits = 64;

// Whether `test` accepts one of the kBlockUnits units from `block` on. It is asked of all of them,
// so it should be no more than a few comparisons, without `||` and `&&`.
template <typename Unit, typename Test>
bool any_in_block(const Unit* block, Test test) {
  using Found = std::make_unsigned_t<Unit>;  // as wide as the units, so that the vectors match
  Found found = 0;
  for (std::ptrdiff_t i = 0; i < kBlockUnits; ++i) {
    const bool is_found = test(block[i]);
    found = static_cast<Found>(found | -static_cast<int>(is_found));
  }
  return found != 0;
}

}  // namespace textio
