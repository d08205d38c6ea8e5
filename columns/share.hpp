// How many odd cells a column may have and still be of a kind.
#pragma once

#include <cstddef>

namespace textio::columns {

// Nine cells of ten: a mistyped cell, a remark or an unknown word for a missing value are seldom
// more than one in ten, and a kind that every tenth cell contradicts is no help to a reader.
inline constexpr std::size_t kFittingOfTen = 9;

// With fewer than ten cells, one may be odd if three others agree: two against one is no majority
// that a reader should trust.
inline constexpr std::size_t kLeastForOneOdd = 4;

// Whether a column is of the kind that `fitting` of `all` cells have.
constexpr bool is_share_enough(std::size_t fitting, std::size_t all) {
  if (fitting == 0) return false;
  const std::size_t odd = all - fitting;
  if (odd == 0) return true;
  if (odd == 1 && all >= kLeastForOneOdd) return true;
  return fitting / kFittingOfTen >= odd;  // 10 * odd <= all, which could overflow
}

}  // namespace textio::columns
