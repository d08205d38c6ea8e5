// The cells of a column in heap blocks of exactly their size.
#pragma once

#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "support/exact_text.hpp"

namespace textio::testing_support {

class ExactCells {
 public:
  ExactCells(const std::vector<std::u16string>& cells) {  // NOLINT: an implicit conversion is meant
    for (const std::u16string& cell : cells) {
      texts_.emplace_back(cell);
      views_.push_back(texts_.back().view());
    }
  }

  const std::vector<std::u16string_view>& views() const { return views_; }

 private:
  std::deque<ExactText> texts_;
  std::vector<std::u16string_view> views_;
};

}  // namespace textio::testing_support
