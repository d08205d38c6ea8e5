// CodeUnitSet: an immutable set of UTF-16 code units.
//
//   const CodeUnitSet ends(u"\n\r");
//   ends.contains(u'\n');            // true
//
// A set of at most kMostListed code units is a list, which vector code searches for. A larger set
// is a table of bits. Only the constructor makes this decision.
//
// Cost     a list takes no allocation, a table 8 KB. Copies share the table.
// Threads  any number of threads may read a set.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace textio {

class CodeUnitSet {
 public:
  static constexpr std::size_t kMostListed = 8;

  CodeUnitSet() = default;

  // `units` in any order. Duplicates count towards kMostListed.
  explicit CodeUnitSet(std::u16string_view units);

  // Most separators are below U+0040. Those are looked up in one word.
  bool contains(char16_t unit) const {
    if (unit < 64) return ((low_ >> unit) & 1) != 0;
    return has_high_ && contains_high(unit);
  }

  bool is_empty() const { return num_listed_ == 0 && !table_; }

  // Whether the set is a list. `listed` has kMostListed elements; the last of the `num_listed` is
  // repeated in the rest.
  bool is_list() const { return !table_; }
  const char16_t* listed() const { return listed_; }
  std::size_t num_listed() const { return num_listed_; }

 private:
  using Table = std::bitset<65536>;

  bool contains_high(char16_t unit) const {
    if (table_) return (*table_)[unit];
    std::size_t i = 0;
    while (i < num_listed_ && listed_[i] != unit) ++i;
    return i < num_listed_;
  }

  std::uint64_t low_ = 0;  // a bit for each code unit below 64
  bool has_high_ = false;
  char16_t listed_[kMostListed] = {};
  std::size_t num_listed_ = 0;
  std::shared_ptr<const Table> table_;
};

}  // namespace textio
