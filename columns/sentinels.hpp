// SentinelSearch: numbers that stand for a missing value, such as -999 among temperatures.
//
//   SentinelSearch search;
//   for (...) search.add(text, value);
//   search.is_sentinel(u"-999");
//
// Only customary numbers are considered: nines alone ("-999", "9999", "-99.9", "999.99"), -999.25,
// -32768, and the fill values 1e20, 1e30 and 9.96921e36. Such a number is a value if others of the
// column are near. It is a sentinel if it is farther from all of them than they are from each other
// and from 0, and besides
//   - it is negative, and three others or more are there to compare;
//   - or it occurs at least twice, among as many;
//   - or it is ten times as far away, and ten others or more are there.
//
// Errors   nothing throws but std::bad_alloc.
// Cost     constant for each cell; at most 16 texts are kept.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace textio::columns {

// Whether the text is one of the customary numbers, `value` being what it says.
bool is_customary_sentinel(std::u16string_view text, double value);

class SentinelSearch {
 public:
  void add(std::u16string_view text, double value);

  // Of a text that was added, once all were.
  bool is_sentinel(std::u16string_view text) const;

 private:
  struct Candidate {
    std::u16string text;
    double value = 0;
    std::size_t count = 0;
  };

  bool stands_off(const Candidate& candidate) const;

  std::vector<Candidate> candidates_;
  std::size_t others_ = 0;
  double least_ = 0;
  double most_ = 0;
};

}  // namespace textio::columns
