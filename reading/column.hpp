// Column: the values of one column of a table, one for each row, typed.
//
//   const Column& level = batch.columns[2];
//   level.type;                // ColumnType::real
//   level.is_missing(7);       // false
//   level.reals[7];            // 2.71
//
// The arrays are laid out as Arrow lays them out, so that they can be handed on without a copy: validity and
// booleans are bits, the lowest first; texts are UTF-8, one after the other, between offsets.
//
// Units      rows are numbered from 0. Days count from 1970-01-01. Times of day, durations and moments count
//            microseconds; moments from 1970-01-01 00:00, in UTC where the cells have a zone, and otherwise in
//            the local time that they are written in.
// Ownership  a plain value without views.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::reading {

enum class ColumnType : std::uint8_t {
  integer,  // 64 bits
  real,     // double
  decimal,  // a number in decimal notation, as text: "-1234.50"
  boolean,
  date,       // days
  time,       // microseconds since midnight
  date_time,  // microseconds since 1970
  duration,   // microseconds
  text,       // UTF-8
  category,   // a number that stands for one of a few texts
};

// The name of the enumerator, with a hyphen.
VLTEXTSTREAM_EXPORT std::string_view to_string(ColumnType type) noexcept;

struct VLTEXTSTREAM_EXPORT Column {
  ColumnType type = ColumnType::text;
  std::size_t size = 0;

  // Bit i is set if row i has a value; empty if all rows have one. The value of a row without one is 0, false or
  // an empty text.
  std::vector<std::uint8_t> validity;
  std::size_t num_missing = 0;

  // The values, in the one of these that belongs to the type.
  std::vector<std::int64_t> integers;  // integer, time, date_time, duration
  std::vector<double> reals;           // real
  std::vector<std::uint8_t> booleans;  // boolean: bits
  std::vector<std::int32_t> days;      // date
  std::vector<std::int64_t> offsets;   // text, decimal: size + 1 of them, the first is 0
  std::string bytes;                   // text, decimal: all texts, one after the other
  std::vector<std::int32_t> codes;     // category: positions in `words`
  std::vector<std::string> words;      // category: in the order of their first row

  // Of date_time: whether the values are moments in UTC, since the cells have a zone. In a column without one
  // format the first zone may come late: those of all batches after it are in UTC, and of all with
  // ReadSettings::two_passes.
  bool is_utc = false;

  bool is_missing(std::size_t row) const {
    return !validity.empty() && ((validity[row / 8] >> (row % 8)) & 1) == 0;
  }
  bool boolean_at(std::size_t row) const { return ((booleans[row / 8] >> (row % 8)) & 1) != 0; }

  // Of text, decimal and category.
  std::string_view text_at(std::size_t row) const {
    if (type == ColumnType::category) return words[static_cast<std::size_t>(codes[row])];
    const auto begin = static_cast<std::size_t>(offsets[row]);
    return std::string_view(bytes).substr(begin,
                                          static_cast<std::size_t>(offsets[row + 1]) - begin);
  }
};

}  // namespace textio::reading
