// CellClass: what one cell adds to the decision on its column.
//
//   class_of_cell(u"wahr", {})      // CellClass::boolean
//   class_of_cell(u"20240131", {})  // CellClass::compact_date: a number, or a date
//
// It is coarser than CellKind where the column decides, and knows more dates, amounts of money and
// words.
//
// Errors  nothing throws but std::bad_alloc.
// Cost    linear in the cell, of which 200 code units at most are examined.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include <vltextstream/assessment/cell_kind.hpp>

namespace textio::columns {

enum class CellClass : std::uint8_t {
  empty,
  given_missing,  // one of the words that the caller names
  missing,        // one of the usual words: missing in a column of values
  number,
  compact_date,  // a number whose digits are a date, with or without a time
  percentage,
  money,
  complex,
  boolean,  // a word of some pair
  date,
  time,
  date_time,
  duration,
  elapsed_clock,  // a clock that shows no time of day: "36:15:00", "59:12.5"
  long_clock,     // hours and minutes beyond a day: "36:15"; it may be a ratio, too
  one_duration,   // a number with one unit of time: "5h", "30 min"; it may be a code, too
  uuid,
  url,
  email,
  ip,
  phone,
  text,
};

inline constexpr std::size_t kCellClasses = static_cast<std::size_t>(CellClass::text) + 1;

// What classes depend on.
struct CellRules {
  std::span<const std::u16string> missing;
  std::u16string_view exponents = u"eEdD";  // a number with another one is text
};

// `cell` has no blanks at its ends.
CellClass class_of_cell(std::u16string_view cell, const CellRules& rules);

// The same of a cell whose kind is known.
CellClass class_of_cell(std::u16string_view cell, assessment::CellKind kind,
                        const CellRules& rules);

}  // namespace textio::columns
