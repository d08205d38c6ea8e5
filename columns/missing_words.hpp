// MissingWords: words that stand for a missing value, and how often each occurs.
//
//   is_missing_word(u"N/A", CellKind::missing)   // true
//
// Errors   nothing throws but std::bad_alloc.
// Cost     a look-up for each cell; at most 32 words are kept.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/cell_kind.hpp>

namespace textio::columns {

struct MissingWord {
  std::u16string word;  // as the cells write it
  std::size_t count = 0;

  friend bool operator==(const MissingWord&, const MissingWord&) = default;
};

// Whether a cell of a column of numbers, dates or other values says that there is none: "NA", "-",
// "nan", "#DIV/0!". In a column of texts the same word may be a value. `kind` is that of the cell.
bool is_missing_word(std::u16string_view text, assessment::CellKind kind);

// Counts words, each way of writing by itself; of more than 32 of them, the first.
class MissingTally {
 public:
  void add(std::u16string_view word);
  const std::vector<MissingWord>& words() const { return words_; }

  // In the order of their first cells.
  std::vector<MissingWord> take() { return std::move(words_); }

 private:
  std::vector<MissingWord> words_;
};

}  // namespace textio::columns
