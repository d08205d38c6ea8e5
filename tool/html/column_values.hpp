// What the cells of a column hold, in a few numbers: for a small histogram, or as the most frequent values.
//
//   const ColumnValues level = values_of(batch.columns[1], batch.num_rows);
//   level.bars;        // {3, 9, 4}: how many values are in each part of the range
//   level.least;       // "131"
//   level.frequent;    // of texts: {{"good", 11}, {"bad", 1}}
//
// Units      counts are rows.
// Ownership  plain values without views.
// Errors     std::bad_alloc.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/reading/column.hpp>

namespace textio::tool {

struct FrequentValue {
  std::string text;  // UTF-8 as the file has it, of any length
  std::size_t count = 0;

  bool operator==(const FrequentValue&) const = default;
};

struct ColumnValues {
  std::size_t num_rows = 0;
  std::size_t num_missing = 0;
  std::size_t num_different = 0;  // values, of those that are not missing

  // Of numbers, dates and times with at least two different values: parts of the same width from the least to the
  // largest value, and these two with the one in the middle, as texts.
  std::vector<std::size_t> bars;
  std::string least;
  std::string middle;
  std::string most;

  // Otherwise: the most frequent first, and among those that are as frequent the one that comes first.
  std::vector<FrequentValue> frequent;
};

inline constexpr std::size_t kMostBars = 16;
inline constexpr std::size_t kMostFrequent = 5;

// Of the first `num_rows` rows.
ColumnValues values_of(const reading::Column& column, std::size_t num_rows);

}  // namespace textio::tool
