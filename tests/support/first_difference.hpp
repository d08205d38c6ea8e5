// Comparison of long texts: a failure names the position instead of printing both.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace textio::testing_support {

inline constexpr std::size_t kNoDifference = static_cast<std::size_t>(-1);

// The first position at which the texts differ, which is the length of the shorter one if the other
// starts with it; kNoDifference if they are equal.
inline std::size_t first_difference(std::u16string_view a, std::u16string_view b) {
  const auto [in_a, in_b] = std::mismatch(a.begin(), a.end(), b.begin(), b.end());
  if (in_a == a.end() && in_b == b.end()) return kNoDifference;
  return static_cast<std::size_t>(in_a - a.begin());
}

}  // namespace textio::testing_support
