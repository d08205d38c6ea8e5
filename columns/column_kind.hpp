// ColumnKind: what the cells of a column are.
//
//   to_string(ColumnKind::date_time)   // "date-time"
//
// Errors   nothing throws.
// Threads  all functions may run at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::columns {

enum class ColumnKind : std::uint8_t {
  empty,               // no cell has a value: all are empty or missing
  integer,             // also 0 and 1 alone: counts, codes and flags are written the same way
  decimal,             // a decimal mark in at least one cell, and no exponent
  scientific,          // an exponent in at least one cell
  complex,             // "1+2i"
  percentage,          // "50 %"
  money,               // "$5", "EUR 1.234,50"
  boolean,             // two words, one for true and one for false
  date,                // a day, or a month of a year
  time,                // a time of day
  date_time,           // both
  duration,            // "PT5M", "1d 2h", clocks beyond 24 hours, "3:05.12"
  epoch_seconds,       // integers that are probably seconds since 1970-01-01 00:00 UTC
  epoch_milliseconds,  // the same in milliseconds
  identifier,          // digits that a number would not keep: "007", 19 digits, "+49 30 123456"
  uuid,
  url,
  email,
  ip,
  category,  // few texts, each many times
  text,      // everything else
};

inline constexpr std::size_t kColumnKinds = static_cast<std::size_t>(ColumnKind::text) + 1;

// The name of the enumerator, with hyphens.
VLTEXTSTREAM_EXPORT std::string_view to_string(ColumnKind kind) noexcept;

// integer, decimal or scientific: a plain number.
bool is_plain_number(ColumnKind kind) noexcept;

// category or text: each cell fits.
bool is_text(ColumnKind kind) noexcept;

}  // namespace textio::columns
