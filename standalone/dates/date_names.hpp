// Names in dates: of months, weekdays, halves of the day and eras.
//
//   const DateNames& names = english_names();
//   names.months.find(u"mar. 1", NameEnd::of_word)->number;     // 3
//   names.months.find(u"marches", NameEnd::of_word);            // null: the word continues
//
// Texts are compared code unit by code unit, so the caller folds the text first, as the names were.
//
// Units      positions and counts are UTF-16 code units.
// Ownership  a table is a view of names stored elsewhere, which must outlive it.
// Cost       find: O(1) if no name has the first code unit of the text, else a binary search and
//            the names with that code unit. fold_text: O(code units). Neither allocates.
// Threads    everything here is immutable once built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace textio::datetime {

// --- folding -----------------------------------------------------------------------------------

// How texts are folded before they are compared. Without a locale only the case of A to Z is
// folded.
struct Folding {
  bool of_locale = false;  // simple case folding, look-alike blanks and apostrophes, no marks
  bool turkic = false;     // all four letters i are the same
  char16_t zero = u'0';    // the first of the locale's own ten digits
};

// Writes the folded `text` to `to`, which has room for as many code units. Returns their number.
std::size_t fold_text(std::u16string_view text, const Folding& folding, char16_t* to);

std::u16string folded(std::u16string_view text, const Folding& folding);

// Code units above 127 count as letters, because names in other languages have them.
constexpr bool is_letter(char16_t unit) { return (unit >= u'a' && unit <= u'z') || unit > 127; }

constexpr bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// --- names -------------------------------------------------------------------------------------

// One way to write a name, folded and without a dot at its end.
struct Name {
  std::u16string_view text;
  unsigned number;   // of a month 1 to 12, of a weekday 1 to 7
  bool abbreviated;  // a dot may follow
};

// The order of tables: by first code unit, and longer names first.
constexpr bool stands_before(const Name& a, const Name& b) {
  if (a.text.front() != b.text.front()) return a.text.front() < b.text.front();
  if (a.text.size() != b.text.size()) return a.text.size() > b.text.size();
  return a.text < b.text;
}

enum class NameEnd {
  of_word,  // no letter follows a letter, and no digit a digit
  anywhere
};

class NameTable {
 public:
  constexpr NameTable() = default;

  // `names` are non-empty texts in the order of stands_before.
  constexpr explicit NameTable(std::span<const Name> names) : names_(names) {
    for (const Name& name : names) first_units_ |= bit_of(name.text.front());
  }

  // The longest name at the start of `text`, null if there is none.
  const Name* find(std::u16string_view text, NameEnd end) const;

  std::span<const Name> names() const { return names_; }

 private:
  static constexpr std::uint64_t bit_of(char16_t unit) { return std::uint64_t{1} << (unit & 63U); }

  std::span<const Name> names_;
  std::uint64_t first_units_ = 0;
};

// --- how a locale writes dates -----------------------------------------------------------------

// One part of a date. A pattern has them in the order in which they are written.
struct DatePart {
  enum class Kind { literal, year, month, month_name, day, weekday, era };

  Kind kind;
  std::u16string literal;  // folded; a blank in it matches any number of blanks

  friend bool operator==(const DatePart&, const DatePart&) = default;
};

struct DatePattern {
  std::vector<DatePart> parts;
  bool short_year = false;   // two digits
  bool wants_pairs = false;  // day and month have two digits each

  friend bool operator==(const DatePattern&, const DatePattern&) = default;
};

// What a language adds to the recognition of dates.
struct DateNames {
  Folding folding;
  NameTable months;
  NameTable weekdays;
  NameTable half_days;
  NameTable eras;
  std::span<const DatePattern> patterns;
  std::span<const std::u16string> gaps_before_time;  // besides T, blanks and a comma
};

// The names without a locale.
const DateNames& english_names();

}  // namespace textio::datetime
