// Small worlds: every short text and every short series of field counts, for the library and the
// reference. A result for all of them does not depend on luck with random ones.
//
//   const SmallWorld world(8, 6);      // 299,593 series of up to 6 of 8 letters
//   const auto found = first_difference(world, {0, 2}, [](const Series& series) {...});
//
// A text is a series of code units of kSmallAlphabet; numbers of fields are a series by themselves.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace textio::differential {

using Series = std::vector<std::size_t>;

// What the rules distinguish: letter, digit, delimiter, blank, quote, both line endings, end mark.
inline constexpr char16_t kSmallAlphabet[] = u"a1, \"\n\r\uFFFF";
inline constexpr std::size_t kSmallAlphabetSize = 8;

// Lines of up to four fields: a deviation of more than 2 counts differently.
inline constexpr std::size_t kSmallCounts = 5;

// All series of up to `longest` of the numbers 0 to `letters` - 1.
class SmallWorld {
 public:
  SmallWorld(std::size_t letters, std::size_t longest);

  std::uint64_t size() const { return size_; }

  // The series with a number below size(): shorter ones first, then by their first letters.
  Series series(std::uint64_t number) const;

 private:
  std::size_t letters_;
  std::uint64_t size_;
};

// The series whose numbers leave the remainder `index` when divided by `count`.
struct Part {
  std::uint64_t index = 0;
  std::uint64_t count = 1;
};

struct FirstDifference {
  std::uint64_t number;     // of the series
  std::string description;  // what `compare` returned for it
};

// The first series of a part for which `compare` returns a difference.
std::optional<FirstDifference> first_difference(
    const SmallWorld& world, const Part& part,
    const std::function<std::string(const Series&)>& compare);

// The text of a series over kSmallAlphabet.
std::u16string small_text(const Series& series);

// The text after a line of its own, so that its third code unit begins a block of the vector code:
// once at the end of the text, in a block that is not full, and once in the middle, in a full one.
std::vector<std::u16string> texts_across_blocks(const Series& series);

// The differences between library and reference over a small text, in each strategy and in the
// detection. With `with_given` also with 0, 1, 2 and more given header lines than it has lines.
// Empty if there are none.
std::string difference_in_small_text(const Series& series, bool with_given);

// The same for each of the texts across blocks.
std::string difference_across_blocks(const Series& series, bool with_given);

// The same for the scores of a series of field counts. The given header lines are then all numbers
// up to one more than there are lines, and the one that means "not known".
std::string difference_in_small_counts(const Series& counts, bool with_given);

}  // namespace textio::differential
