// BooleanWords: the words for true and false in a column.
//
//   BooleanVotes votes;
//   votes.add(u"Ja");
//   votes.add(u"nein");
//   votes.words();   // u"Ja" and u"nein"
//
// 0 and 1 are not among them: they are just as often counts or codes, and an integer can still be read as
// true or false, while a boolean cannot become a 2 that follows later.
//
// Errors   nothing throws but std::bad_alloc.
// Cost     a look-up in a list of a few dozen words for each cell of at most ten units.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace textio::columns {

// As the column first writes them. One is empty if it never occurs.
struct BooleanWords {
  std::u16string yes;
  std::u16string no;

  friend bool operator==(const BooleanWords&, const BooleanWords&) = default;
};

// Whether a word belongs to a pair of words for true and false in any of the known languages.
bool is_boolean_word(std::u16string_view text);

// The other word of a pair of which one is enough, folded: "false" for "True". Empty for all other words.
std::u16string_view other_boolean_word(std::u16string_view text);

class BooleanVotes {
 public:
  void add(std::u16string_view text);

  // The two words of the pair that most cells have; none without a pair of which both words occur.
  // One word is enough if it is "true", "false", "yes" or "no".
  std::optional<BooleanWords> words() const;

 private:
  static constexpr std::size_t kPairs = 27;

  struct Side {
    std::size_t count = 0;
    std::u16string first;
  };
  struct Pair {
    Side yes;
    Side no;
  };

  std::array<Pair, kPairs> pairs_;
};

}  // namespace textio::columns
