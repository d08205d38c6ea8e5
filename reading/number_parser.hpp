// NumberParser: reads the numbers of one column.
//
//   NumberParser parser({.decimal = u',', .grouping = u'.'});
//   double value;
//   parser.real(u"1.234,50", value);   // true, 1234.5
//
// What columns/ takes for a number with these marks is read. Numbers of up to 16 digits in ASCII, which are most,
// take a few steps without a loop over the digits.
//
//   real      the double nearest to the number. Infinity, "nan". A number beyond all doubles is refused, and one that
//             is smaller than all of them is 0.
//   integer   64 bits; "1.0" and "1e3" are refused.
//   decimal   decimal notation: digits as the cell has them, without a sign "+", grouping marks, and zeros at the
//             start. An exponent of up to 400 moves the point. Infinity is refused.
//
// Units      a cell has no blanks at its ends.
// Errors     std::bad_alloc.
// Cost       linear in the cell. No allocation once the longest cells were read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/number_format.hpp>

namespace textio::reading {

struct NumberRules {
  char16_t decimal = u'.';
  char16_t grouping = 0;  // 0: none
  std::u16string exponents = u"eEdD";

  // Of percentages and money, the sign, the code or the name of the currency and what scales an amount, as in
  // "$1.2bn", belong to the number. Of all other kinds they make the cell something else.
  columns::ColumnKind kind = columns::ColumnKind::decimal;
};

class NumberParser {
 public:
  explicit NumberParser(NumberRules rules);

  // Whether the cell is such a number; only then is `value` written. The cell is not empty.
  bool integer(std::u16string_view cell, std::int64_t& value);
  bool real(std::u16string_view cell, double& value);

  // Appends the number.
  bool decimal(std::u16string_view cell, std::string& out);

 private:
  // A number taken apart.
  struct Parts {
    bool is_negative = false;
    bool is_infinite = false;
    bool is_nan = false;
    bool has_mark = false;  // a decimal mark
    bool has_exponent = false;
    std::string room;       // longer than the digits
    std::size_t size = 0;   // of the digits, which have no marks
    std::size_t whole = 0;  // how many of them are before the decimal mark
    int exponent = 0;       // by how many places the mark moves to the right

    // Makes room for as many digits as a cell has units.
    void clear(std::size_t units);
    void add(char16_t digit) { room[size++] = static_cast<char>(digit); }
    std::string_view digits() const { return std::string_view(room).substr(0, size); }

    // Where the mark is in the digits after the move; less than 0 before them.
    std::ptrdiff_t point() const { return static_cast<std::ptrdiff_t>(whole) + exponent; }
  };

  bool slow_integer(std::u16string_view cell, std::int64_t& value);
  bool slow_real(std::u16string_view cell, double& value);
  std::u16string_view without_unit(std::u16string_view cell) const;
  bool take_apart(std::u16string_view cell);
  bool take_plain(std::u16string_view text, bool may_have_exponent);
  bool take_any(std::u16string_view cell);
  bool take_word(std::u16string_view cell);
  bool take_amount(std::u16string_view cell, std::u16string_view amount);
  void take_exponent(std::u16string_view text);
  bool nearest_double(double& value);

  NumberRules rules_;
  columns::NumberFormat format_;
  char16_t ascii_decimal_;  // the decimal mark, or something that no cell has in its place
  bool has_unit_;           // percentages and money
  Parts parts_;
  std::string text_;
};

// --- the fast way --------------------------------------------------------------------------------

namespace digits {

inline constexpr std::uint64_t kZeros = 0x3030303030303030;
inline constexpr std::uint64_t kOnes = 0x0101010101010101;
inline constexpr std::uint64_t kNotAscii = 0xFF80FF80FF80FF80;
inline constexpr std::size_t kMost = 16;
inline constexpr std::size_t kOfWord = 8;

// Four units, the first in the lowest bits. Compilers make one load of it.
inline std::uint64_t load_four(const char16_t* units) {
  return std::uint64_t{units[0]} | std::uint64_t{units[1]} << 16U | std::uint64_t{units[2]} << 32U |
         std::uint64_t{units[3]} << 48U;
}

// Four units of ASCII as four bytes.
inline std::uint64_t narrowed_four(std::uint64_t units) {
  units = (units | units >> 8U) & 0x0000FFFF0000FFFF;
  return (units | units >> 16U) & 0xFFFFFFFF;
}

// One to eight units as the last bytes of a word, after zeros. False if one is not ASCII.
inline bool load_word(const char16_t* units, std::size_t size, std::uint64_t& word) {
  const auto shift = static_cast<unsigned>(8 * (kOfWord - size));
  if (size >= 4) {
    const std::uint64_t first = load_four(units);
    const std::uint64_t last = load_four(units + size - 4);
    if (((first | last) & kNotAscii) != 0) return false;
    word = narrowed_four(last) << 32U | narrowed_four(first) << shift;
  } else {
    const std::uint64_t first = units[0];
    const std::uint64_t middle = units[size / 2];
    const std::uint64_t last = units[size - 1];
    if ((first | middle | last) > 0x7F) return false;
    word = first << shift | middle << (shift + 8 * static_cast<unsigned>(size / 2)) | last << 56U;
  }
  word |= (kZeros >> 8U) >> (8 * (static_cast<unsigned>(size) - 1));
  return true;
}

inline bool are_digits(std::uint64_t word) {
  return ((word & 0xF0F0F0F0F0F0F0F0) | ((word + 0x0606060606060606) & 0xF0F0F0F0F0F0F0F0) >> 4U) ==
         0x3333333333333333;
}

// Of eight digits.
inline std::uint64_t value_of(std::uint64_t word) {
  word = (word & 0x0F0F0F0F0F0F0F0F) * 2561 >> 8U;
  word = (word & 0x00FF00FF00FF00FF) * 6553601 >> 16U;
  return (word & 0x0000FFFF0000FFFF) * 42949672960001 >> 32U;
}

inline constexpr unsigned kNoMark = 8;

// Takes the first `mark` out of the word, a zero comes in at its start; the place of the mark.
inline unsigned take_mark(std::uint64_t& word, char16_t mark) {
  const std::uint64_t without = word ^ (kOnes * mark);
  const std::uint64_t found = (without - kOnes) & ~without & 0x8080808080808080;
  if (found == 0) return kNoMark;
  const unsigned place = static_cast<unsigned>(__builtin_ctzll(found)) / 8;
  const std::uint64_t before = word & ((std::uint64_t{1} << (8 * place)) - 1);
  const std::uint64_t after = (word >> (8 * place)) >> 8U;
  word = (after << (8 * place)) << 8U | before << 8U | u'0';
  return place;
}

struct Number {
  std::uint64_t value = 0;
  unsigned fraction = 0;  // digits
};

// Digits with at most one mark among them, which is not the last. `size` is 1 to kMost.
inline bool read(const char16_t* units, std::size_t size, char16_t mark, Number& number) {
  std::uint64_t word = 0;
  if (size <= kOfWord) {
    if (!load_word(units, size, word)) return false;
    const unsigned place = take_mark(word, mark);
    if (place == kOfWord - 1 || !are_digits(word)) return false;
    number.fraction = place == kNoMark ? 0 : static_cast<unsigned>(kOfWord) - 1 - place;
    number.value = value_of(word);
    return true;
  }
  std::uint64_t last = 0;
  if (!load_word(units, size - kOfWord, word)) return false;
  if (!load_word(units + size - kOfWord, kOfWord, last)) return false;
  constexpr std::uint64_t kPowerOfWord = 100'000'000;
  std::uint64_t power = kPowerOfWord;
  unsigned place = take_mark(last, mark);
  if (place != kNoMark) {
    if (place == kOfWord - 1) return false;
    number.fraction = static_cast<unsigned>(kOfWord) - 1 - place;
    power = kPowerOfWord / 10;
  } else {
    place = take_mark(word, mark);
    number.fraction = place == kNoMark ? 0 : 2 * static_cast<unsigned>(kOfWord) - 1 - place;
  }
  if (!are_digits(word) || !are_digits(last)) return false;
  number.value = value_of(word) * power + value_of(last);
  return true;
}

inline constexpr char16_t kNoUnit = 0xFF;  // is not ASCII

}  // namespace digits

inline bool NumberParser::integer(std::u16string_view cell, std::int64_t& value) {
  const char16_t* units = cell.data();
  std::size_t size = cell.size();
  const bool is_negative = *units == u'-';
  if (is_negative || *units == u'+') {
    ++units;
    --size;
  }
  digits::Number number;
  if (size - 1 < digits::kMost && digits::read(units, size, digits::kNoUnit, number)) {
    const auto magnitude = static_cast<std::int64_t>(number.value);
    value = is_negative ? -magnitude : magnitude;
    return true;
  }
  return slow_integer(cell, value);
}

inline bool NumberParser::real(std::u16string_view cell, double& value) {
  // Doubles hold these powers, and integers up to the limit, so that one division gives the nearest double.
  constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr std::uint64_t kExact = std::uint64_t{1} << 53U;
  const std::u16string_view inside = has_unit_ ? without_unit(cell) : cell;
  const char16_t* units = inside.data();
  std::size_t size = inside.size();
  const bool is_negative = size != 0 && *units == u'-';
  if (is_negative || (size != 0 && *units == u'+')) {
    ++units;
    --size;
  }
  digits::Number number;
  if (size - 1 < digits::kMost && digits::read(units, size, ascii_decimal_, number) &&
      number.value <= kExact) {
    const double magnitude =
        static_cast<double>(static_cast<std::int64_t>(number.value)) / kPowers[number.fraction];
    value = is_negative ? -magnitude : magnitude;
    return true;
  }
  return slow_real(cell, value);
}

}  // namespace textio::reading
