// Tests of many code units at a time.
//
//   while (end - text >= kBlockUnits && !any_in_block(text, is_surrogate)) text += kBlockUnits;
//
// A loop that can end at each code unit is not vectorised. This one always tests a whole block, so
// that the compiler can vectorise it.
#pragma once

#include <cstddef>
#include <type_traits>

namespace textio {

inline constexpr std::ptrdiff_t kBlockUnits = 64;

// Whether `test` accepts any of the kBlockUnits code units from `block` on. `test` is called for
// all of them, so it should be a few comparisons without `||` and `&&`.
template <typename Unit, typename Test>
bool any_in_block(const Unit* block, Test test) {
  using Found = std::make_unsigned_t<Unit>;  // as wide as the code units: the vectors match
  Found found = 0;
  for (std::ptrdiff_t i = 0; i < kBlockUnits; ++i) {
    const bool is_found = test(block[i]);
    found = static_cast<Found>(found | -static_cast<int>(is_found));
  }
  return found != 0;
}

}  // namespace textio
