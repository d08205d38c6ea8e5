// NumberFormat: the decimal and the grouping mark of the numbers in a column.
//
//   NumberVotes votes;
//   votes.add(shape_of_number(u"1.234"));      // grouped, or a decimal?
//   votes.add(shape_of_number(u"2.345,50"));   // this one decides
//   votes.format({});                          // ',' and '.', certain
//
// A cell such as "1,234" has one mark before three digits, so the mark may be either. What decides,
// the first that applies:
//   1. the marks that the caller gave;
//   2. another cell of the column: "1,5" has a decimal comma, "1,234,567" and "1,234.5" a grouping
//      comma, and beside "56789" nothing is grouped;
//   3. the marks of the other columns of the table;
//   4. the delimiter: a table is cut by semicolons because its decimal mark is the comma, and where
//      it is cut by commas the decimal mark is the point;
//   5. custom: a comma groups, a point is decimal; in money, which seldom has three decimals, both
//      group.
// After 3, 4 and 5 the format is not certain.
//
// Units    UTF-16; a mark is one code unit.
// Errors   nothing throws.
// Cost     linear in the text, no allocation.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace textio::columns {

struct NumberFormat {
  char16_t decimal = 0;   // 0: no cell has one
  char16_t grouping = 0;  // 0: no cell has one; of several blanks or apostrophes the commonest
  char16_t exponent = 0;  // the first seen: 'e', 'E', 'd' or 'D'

  // Whether the cells leave no doubt, or the caller gave the marks.
  bool is_certain = true;

  friend bool operator==(const NumberFormat&, const NumberFormat&) = default;
};

// What is known of the marks before the cells are seen. 0: nothing.
struct MarkHints {
  char16_t decimal = 0;
  char16_t grouping = 0;
  bool are_given =
      false;  // by the caller: no cell overrules them; the other one is found if only one is given
  char16_t delimiter = 0;  // of the table
  bool is_money = false;   // whether the numbers are amounts of money
};

// How one number is written.
struct NumberShape {
  char16_t decimal = 0;   // a mark that is decimal without doubt
  char16_t grouping = 0;  // a mark that groups without doubt
  char16_t either = 0;    // a mark that may be either
  char16_t exponent = 0;
  std::size_t whole_digits = 0;  // before the decimal mark or the one that may be either
  bool is_finite = true;         // false: "inf"
  bool is_all_nines = false;  // probably stands for a missing value, and is no example of a style

  // Of up to 15 digits of ASCII with at most a sign before them and one mark among them: the number without
  // the mark, and how many digits follow it.
  std::optional<std::int64_t> digits;
  std::size_t fraction_digits = 0;
};

// Of a cell that is an integer, a decimal, scientific or a percentage, or of an amount of money.
NumberShape shape_of_number(std::u16string_view text);

// Whether a number so written can be read with the format, and has a fraction then.
bool fits(const NumberShape& shape, const NumberFormat& format);
bool has_fraction(const NumberShape& shape, const NumberFormat& format);

// The number; none if it is not finite, or longer than 60 units.
std::optional<double> value_of(std::u16string_view text, const NumberFormat& format);

// The same of a number whose shape is known.
std::optional<double> value_of(std::u16string_view text, const NumberShape& shape,
                               const NumberFormat& format);

// The shapes of all cells of a column, counted by their marks.
class NumberVotes {
 public:
  void add(const NumberShape& shape);
  NumberFormat format(const MarkHints& hints) const;

 private:
  static constexpr std::size_t kMarks = 8;
  using Counts = std::array<std::size_t, kMarks>;

  static char16_t commonest(const Counts& counts);
  char16_t commonest_but(Counts counts, char16_t other) const;
  void add_own_marks(NumberFormat& format) const;
  void settle_doubtful(char16_t mark, const MarkHints& hints, NumberFormat& format) const;

  Counts decimals_{};
  Counts groupings_{};
  Counts eithers_{};
  std::size_t ungrouped_ = 0;  // whole parts of five digits or more without a grouping mark
  char16_t exponent_ = 0;
};

}  // namespace textio::columns
