// MissingCells: tells the cells of a column that stand for a missing value from the others.
//
//   MissingCells missing({u"NA", u"-999"});
//   missing.has(u"-999")   // true
//
// Cost   one look at the first unit and the length of a cell, unless both are those of one of the words.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace textio::reading {

class MissingCells {
 public:
  // An empty word does not count.
  explicit MissingCells(std::vector<std::u16string> words) : words_(std::move(words)) {
    for (const std::u16string& word : words_) {
      if (!word.empty()) lengths_[index_of(word)] |= bit_of(word);
    }
  }

  // Of a cell that is not empty.
  bool has(std::u16string_view cell) const {
    if ((lengths_[index_of(cell)] & bit_of(cell)) == 0) return false;
    return std::find(words_.begin(), words_.end(), cell) != words_.end();
  }

 private:
  static constexpr std::size_t kFirstUnits = 128;
  static constexpr std::size_t kLengths = 64;

  static std::size_t index_of(std::u16string_view cell) { return cell.front() % kFirstUnits; }
  static std::uint64_t bit_of(std::u16string_view cell) {
    return std::uint64_t{1} << (cell.size() % kLengths);
  }

  std::vector<std::u16string> words_;
  std::array<std::uint64_t, kFirstUnits> lengths_{};  // of the words that begin so, as a set
};

}  // namespace textio::reading
