// What a cut that throws takes back.
#pragma once

#include <cstddef>

#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

// Unless dismissed, takes a fixed-width strategy back to the column at which it stood: that column
// is all that a strategy of this library remembers from one line to the next.
class Strategy::CutRollback {
 public:
  explicit CutRollback(Strategy& strategy)
      : fixed_(dynamic_cast<FixedWidthStrategy*>(&strategy)),
        column_(fixed_ ? fixed_->next_column_ : 0) {}
  CutRollback(const CutRollback&) = delete;
  CutRollback& operator=(const CutRollback&) = delete;
  ~CutRollback() {
    if (fixed_) fixed_->next_column_ = column_;
  }

  void dismiss() { fixed_ = nullptr; }

 private:
  FixedWidthStrategy* fixed_;
  std::size_t column_;
};

}  // namespace textio
