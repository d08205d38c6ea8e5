// DateCell: one date, time of day or both, taken apart.
//
//   const auto cell = read_date(u"12. M\u00E4rz 2020, 15:04");
//   cell->kind;      // ColumnKind::date_time
//   cell->parts;     // day, '.', ' ', month_name, ' ', year, ',', ' ', hour, ':', minute
//
// What a number means may depend on other cells: the parts of "1/2/2020" are `first` and `second`,
// those of "01-02-03" `one`, `two` and `three`.
//
// Units      a part is a number, a name or one literal unit; a run of blanks is one part.
// Ownership  the zone is a view of the text.
// Errors     nothing throws but std::bad_alloc, at the first call.
// Cost       linear in the text, which has at most 60 units; no allocation.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/date_words.hpp>

namespace textio::columns {

enum class DateUnit : std::uint8_t {
  literal,
  number,      // a number of a date before its meaning is known; in no result
  year,        // four digits
  short_year,  // two digits
  month,
  day,
  month_name,
  weekday,
  first,  // day and month in either order, beside a year of four digits
  second,
  one,  // day, month and year of two digits each: year first or last
  two,
  three,
  hour,
  minute,
  seconds,
  fraction,
  half_day,   // "AM", "pm"
  offset,     // "+01:00", "Z"
  zone_name,  // "UTC", "CET"
};

struct DatePart {
  DateUnit unit = DateUnit::literal;
  char16_t literal = 0;
  std::uint8_t digits = 0;
  int value = 0;
};

// The ways to write an offset, as a set. "Z" is all of them.
inline constexpr std::uint8_t kOffsetWithColon = 1;  // +01:00
inline constexpr std::uint8_t kOffsetOfHours = 2;    // +01
inline constexpr std::uint8_t kOffsetPlain = 4;      // +0100
inline constexpr std::uint8_t kAnyOffset = 7;

class DateParts {
 public:
  static constexpr std::size_t kMost = 32;

  // Whether there was room.
  bool add(const DatePart& part) {
    if (size_ == kMost) return false;
    parts_[size_++] = part;
    return true;
  }

  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  DatePart& operator[](std::size_t index) { return parts_[index]; }
  const DatePart& operator[](std::size_t index) const { return parts_[index]; }
  const DatePart& back() const { return parts_[size_ - 1]; }
  const DatePart* begin() const { return parts_.data(); }
  const DatePart* end() const { return parts_.data() + size_; }

 private:
  std::array<DatePart, kMost> parts_{};
  std::size_t size_ = 0;
};

struct DateCell {
  ColumnKind kind = ColumnKind::date;  // date, time, date_time; duration for minutes and seconds
  DateParts parts;
  NameSet months = 0;
  NameSet weekdays = 0;
  bool month_has_point = false;
  bool weekday_has_point = false;
  std::uint8_t offset_forms = kAnyOffset;
  std::u16string_view zone;  // offset or name as written; empty if there is none

  // Whether a pattern can describe it. None describes "1st", "a.m.", 24:00 or a leap second.
  bool has_pattern = true;
};

// None if the text is nothing of this. In running text something may look like a date by chance:
// where kind_of() has seen none, see is_surely_date().
std::optional<DateCell> read_date(std::u16string_view text);

// Whether a text that kind_of() does not know is a date all the same, in another language, or with
// a year first: only if it has a year. "Set 5" is no 5 September.
bool is_surely_date(const DateCell& cell, std::u16string_view text);

// Whether all digits are a date, or date and time: "20240131", "20240131150405", from 1900 to 2099.
bool is_compact_date(std::u16string_view text);

// Whether the month has this day. The year matters for 29 February; 0 stands for any.
bool is_on_calendar(int year, int month, int day);

}  // namespace textio::columns
