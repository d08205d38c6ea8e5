// The lines and counts of a strategy over a text in a block of exactly its size.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/strategy/strategy.hpp>
#include "support/exact_text.hpp"

namespace textio::testing_support {

// The lines that `strategy` samples from `text`, as strings.
inline std::vector<std::u16string> lines_of(Strategy& strategy, const ExactText& text,
                                            unsigned long num_lines) {
  std::vector<std::u16string> lines;
  for (const Field& line : strategy.populate_fields(text.field(), num_lines)) {
    lines.push_back(text_of(line));
  }
  return lines;
}

// The number of fields of each line that `strategy` has sampled.
inline std::vector<std::size_t> field_counts_of(Strategy& strategy) {
  std::vector<std::size_t> counts;
  std::size_t before = 0;
  for (const std::size_t total : strategy.get_fields_from_lines().counts) {
    counts.push_back(total - before);
    before = total;
  }
  return counts;
}

}  // namespace textio::testing_support
