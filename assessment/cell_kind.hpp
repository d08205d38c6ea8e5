// CellKind: what one cell of a table looks like, by its characters alone.
//
//   kind_of(u" 1,234.50 ")            // CellKind::decimal
//   kind_of(u"12-Jan-20")             // CellKind::date
//   worth_of(CellKind::date)          // 1.0
//
// Units    UTF-16 with one code unit for each character; U+001A stands for one outside the BMP.
// Errors   nothing throws.
// Cost     linear in the cell, no allocation; of a long cell only the first 200 code units.
// Threads  all functions may run at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace textio::assessment {

// The order matters: the numbers are consecutive.
enum class CellKind : std::uint8_t {
  empty,       // nothing but blanks
  integer,     // "12", "-007", "1,234" (grouped rather than decimal), "1 234 567", "1,23,456"
  decimal,     // "3.5", "3,5", ".5", "5.", "1.234" (decimal rather than grouped), "nan", "-inf"
  scientific,  // "1e5", "1.5D-3"
  complex,     // "1+2i", "3j"
  percentage,  // "50%", "3,5 %"
  money,       // "$5", "(EUR 1,234.50)", "5 kr"
  time,        // "9:05", "15:04:05.123+01:00", "5 pm"
  date,        // "2020-01-12", "12.1.20", "Jan 12, 2020", "January 2020"
  date_time,   // a date and a time in either order, "Mon Jan  2 15:04:05 2006"
  duration,    // "1d 2h", "PT5M", "3 days, 4:05:06"
  missing,     // "n/a", "NULL", "-", "...", "\N"
  boolean,     // "true", "No"
  url,         // "https://example.org/a?b=c", "www.example.org"
  path,        // "/a/b.c", "C:\My Files\x.txt", "../x"
  email,       // "a.b@example.org"
  ip,          // "10.0.0.1", "10.0.0.1:80", "10.0.0.0/8", "fe80::1"
  uuid,        // 32 hexadecimal digits in five groups
  structure,   // from a { or [ to the } or ] of the same form
  word,        // letters of any script: "Berlin", "O'Neil", "Jean-Luc"
  code,        // "A-17", "1.2.3", "0x1F": letters, digits and a few marks, without blanks
  sentence,    // words, numbers and everyday punctuation
  unknown,     // everything else: "|---|", ",,,", control characters
};

inline constexpr std::size_t kCellKinds = static_cast<std::size_t>(CellKind::unknown) + 1;

// A cell of more code units than this, without the blanks at its ends, is a structure, a sentence
// or unknown.
inline constexpr std::size_t kLongestExaminedCell = 200;

// The kind of a whole cell. Blanks, tabs and no-break spaces at its ends do not count. Where a text
// has several readings, the first of these decides: a keyword (missing, boolean), a word, a number,
// money, a date or time, a duration, an address.
CellKind kind_of(std::u16string_view cell) noexcept;

// integer, decimal, scientific, complex, percentage or money.
constexpr bool is_number(CellKind kind) noexcept {
  return kind >= CellKind::integer && kind <= CellKind::money;
}

// word, code, sentence or unknown.
constexpr bool is_text(CellKind kind) noexcept {
  return kind == CellKind::word || kind == CellKind::code || kind == CellKind::sentence ||
         kind == CellKind::unknown;
}

// A kind with strict rules: a number, time, date, date_time, duration, boolean, url, path, email,
// ip or uuid.
constexpr bool is_value(CellKind kind) noexcept {
  const bool is_other = kind == CellKind::empty || kind == CellKind::missing ||
                        kind == CellKind::structure || is_text(kind);
  return !is_other;
}

// How recognisable a cell of this kind is: 0 (not at all) to 1. What is cut at the wrong place
// seldom leaves a cell of a kind that is worth much.
double worth_of(CellKind kind) noexcept;

// "1800" to "2099".
bool is_year(std::u16string_view text) noexcept;

// The name of the enumerator, with hyphens: "date-time".
std::string_view to_string(CellKind kind) noexcept;

}  // namespace textio::assessment
