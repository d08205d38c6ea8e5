// CategoryTally: whether a column has few texts, each many times.
//
// Ownership  keeps views of the texts, which must outlive it.
// Errors     nothing throws but std::bad_alloc.
// Cost       a look-up for each text; at most 100 are kept.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>

namespace textio::columns {

class CategoryTally {
 public:
  void add(std::u16string_view text);
  bool is_category() const;

 private:
  std::unordered_map<std::u16string_view, std::size_t> counts_;
  std::size_t total_ = 0;
  bool is_refused_ = false;
};

}  // namespace textio::columns
