// Identifiers: digits that do not express an amount and that a number would not preserve.
//
//   is_phone_like(u"+49 30 123456")   // true
//   IdentifierVotes votes;            // "007", "012", "115"
//   votes.are_identifiers();          // true
//
// Errors   nothing throws.
// Cost     linear in the text, no allocation.
#pragma once

#include <cstddef>
#include <string_view>

namespace textio::columns {

// Seven to fifteen digits in groups, with a sign, a zero or a parenthesis at the start or with two
// hyphens, points or slashes between them: telephone numbers, and numbers of books and insurances.
bool is_phone_like(std::u16string_view text);

// Looks at the integers of a column.
class IdentifierVotes {
 public:
  // The text of a cell that is an integer.
  void add(std::u16string_view text);

  // Whether the integers have leading zeros, or more digits than a double holds: a tenth of them,
  // or any if all have as many digits, as the codes of a list have.
  bool are_identifiers() const;

  // Whether all have `width` digits, and at least one begins with a zero.
  bool have_width(std::size_t width) const {
    return has_one_width_ && width_ == width && padded_ > 0;
  }

 private:
  std::size_t count_ = 0;
  std::size_t padded_ = 0;    // with leading zeros
  std::size_t too_long_ = 0;  // beyond the integers that a double holds
  std::size_t width_ = 0;
  bool has_one_width_ = true;
};

}  // namespace textio::columns
