// DateParser: reads the dates, times of day and moments of one column.
//
//   DateParser parser({.strptime = "%d.%m.%Y"});
//   std::int32_t days;
//   parser.date(u"31.01.2024", days);   // true, 19753
//
// A cell is read by the pattern. One that the pattern does not fit is read by itself, with the order of day and month
// of the column; without a pattern, the other order is tried where a number is no month.
//
//   Years        of two digits: 69 to 99 are 1969 to 1999, 00 to 68 are 2000 to 2068. A date without a year is refused.
//   Months       without a day are their first day. A day that the calendar does not have is refused.
//   Hours        24:00 is the end of the day, and 24:01 is refused. A leap second is the first second of the next
//                minute.
//   Fractions    digits beyond microseconds are cut off.
//   Zones        an offset, "Z", or a name: UTC, GMT, WET, WEST, BST, CET, CEST, MEZ, MESZ, EET, EEST, MSK, IST (of
//                India), JST, AEST, AEDT, EST, EDT, CST, CDT (of America), MST, MDT, PST, PDT. Another name is refused.
//                A moment with a zone is converted to UTC; a time of day is kept as it is.
//
// Units      a cell has no blanks at its ends.
// Errors     std::bad_alloc.
// Cost       linear in the cell. No allocation for a cell that the pattern fits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/columns/date_cell.hpp>
#include <vltextstream/columns/date_order.hpp>
#include <vltextstream/reading/number_parser.hpp>

namespace textio::reading {

inline constexpr std::int64_t kMicroseconds = 1'000'000;
inline constexpr std::int64_t kMicrosecondsOfDay = 86'400 * kMicroseconds;

// Whether a column of dates with such a pattern says the year of each: "%d %b" does not. An empty pattern may.
bool has_year(std::string_view strptime);

struct DateRules {
  std::string strptime;  // of columns/; another directive makes the pattern useless
  columns::DateOrder order = columns::DateOrder::none;

  // Whether cells of the column have zones, which the pattern need not say.
  bool has_zone = false;
};

class DateParser {
 public:
  explicit DateParser(const DateRules& rules);

  // Whether the cell is one; only then is the value written. The cell is not empty.
  bool date(std::u16string_view cell, std::int32_t& days);
  bool time(std::u16string_view cell, std::int64_t& microseconds);
  bool date_time(std::u16string_view cell, std::int64_t& microseconds);

  // Whether the rules, or a moment so far, have a zone.
  bool is_utc() const { return is_utc_; }

 private:
  enum class Step : std::uint8_t {
    literal,
    blanks,
    year,
    short_year,
    month,
    day,
    month_name,
    weekday,
    hour,
    hour_of_half,
    minute,
    second,
    fraction,
    half_day,
    offset,
    zone_name,
  };
  static constexpr std::size_t kSteps = static_cast<std::size_t>(Step::zone_name) + 1;

  struct PatternPart {
    Step step = Step::literal;
    char16_t literal = 0;
  };

  // What a cell says.
  struct Moment {
    int year = 0;
    int month = 1;
    int day = 1;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int microsecond = 0;
    int offset = 0;  // seconds east of Greenwich
    bool has_year = false;
    bool has_month = false;
    bool has_clock = false;
    bool has_zone = false;
    bool has_half = false;
    bool is_after_noon = false;
  };

  // The parts at the start of the pattern that have the same width in most cells.
  struct Fixed {
    static constexpr std::size_t kMost = 20;
    static constexpr std::uint8_t kAbsent = 0xFF;

    std::size_t parts = 0;
    std::size_t size = 0;                  // units; 0: too few to look at
    std::array<char16_t, kMost> units{};   // as the cell has them, with "0" for each digit
    std::array<char16_t, kMost> limits{};  // 6 for a digit, 15 for all else: see read_fixed()
    std::array<std::uint8_t, kSteps> places{};

    // Whether the pattern has nothing else, and is a day; or a day, an hour, and perhaps minutes and seconds. Of
    // these, what is absent is read at kMost.
    bool is_date = false;
    bool is_moment = false;
    std::size_t minute_at = kMost;
    std::size_t second_at = kMost;

    std::size_t place(Step step) const { return places[static_cast<std::size_t>(step)]; }
  };
  using Digits = std::array<char16_t, Fixed::kMost + 2>;

  // A name of a month or weekday that was looked up.
  struct KnownName {
    std::array<char16_t, 15> units{};
    std::uint8_t size = 0;
    std::uint8_t month = 0;
    bool is_weekday = false;
  };

  class Cursor;
  class PartsByUnit;

  bool compile(std::string_view strptime);
  bool add_directive(char letter);
  void find_zone_name();
  void find_fixed_part();
  bool has_step(Step step) const;
  bool read(std::u16string_view cell, Moment& moment);
  bool read_by_pattern(std::u16string_view cell, Moment& moment);
  bool take_digits(const char16_t* units, Digits& digits) const;
  bool days_of(const Digits& digits, std::int32_t& days) const;
  bool slow_date(std::u16string_view cell, std::int32_t& days);
  bool slow_date_time(std::u16string_view cell, std::int64_t& microseconds);
  void read_fixed(const Digits& digits, Moment& moment) const;
  bool read_parts(std::u16string_view cell, std::size_t first, std::size_t at, Moment& moment);
  bool read_part(const PatternPart& part, Cursor& cursor, Moment& moment);
  bool read_name(Step step, Cursor& cursor, Moment& moment);
  const KnownName& name_of(std::u16string_view letters);
  bool read_by_itself(std::u16string_view cell, Moment& moment) const;
  bool read_iso(std::u16string_view cell, Moment& moment);
  bool take_date(const PartsByUnit& parts, Moment& moment) const;
  bool take_pair_after_year(int first, int second, Moment& moment) const;
  bool take_pair(int first, int second, char16_t mark, Moment& moment) const;
  bool take_three(const PartsByUnit& parts, Moment& moment) const;
  static bool is_valid(const Moment& moment);
  static bool clock_of(const Moment& moment, std::int64_t& microseconds);

  std::vector<PatternPart> parts_;
  columns::DateOrder order_;
  bool has_pattern_ = false;
  bool is_utc_ = false;
  bool is_day_after_year_ = false;  // "%Y-%d-%m"
  Fixed fixed_;
  std::array<KnownName, 64> names_{};
};

// --- the fast way --------------------------------------------------------------------------------

// Of the Gregorian calendar, from 1970-01-01. The year is not negative. Years of the calculation begin in March, so
// that a leap day is the last.
inline std::int32_t days_until(int year, int month, int day) {
  constexpr std::array<std::int16_t, 13> kUntilMonth{0,   306, 337, 0,   31,  61, 92,
                                                     122, 153, 184, 214, 245, 275};
  constexpr std::uint32_t kYearsAhead = 400;
  constexpr std::int32_t kDaysUntil1970 = 719'469 + 146'097;  // with those of the years ahead
  const auto march_year = static_cast<std::uint32_t>(year) + kYearsAhead - (month <= 2 ? 1U : 0U);
  const std::uint32_t century = march_year / 100;
  const auto days = static_cast<std::int32_t>(march_year * 1461 / 4 - century + century / 4);
  return days + kUntilMonth[static_cast<std::size_t>(month)] + day - kDaysUntil1970;
}

// What the units of the fixed part have different from the pattern: digits in the places of digits, 0 elsewhere. A
// larger difference has one of the bits above the lowest four, or gets one when the limit is added.
inline bool DateParser::take_digits(const char16_t* units, Digits& digits) const {
  std::uint64_t beyond = 0;
  const auto compare_at = [&](std::size_t at) {
    const std::uint64_t different =
        digits::load_four(units + at) ^ digits::load_four(fixed_.units.data() + at);
    beyond |= different | (different + digits::load_four(fixed_.limits.data() + at));
    digits[at] = static_cast<char16_t>(different);
    digits[at + 1] = static_cast<char16_t>(different >> 16U);
    digits[at + 2] = static_cast<char16_t>(different >> 32U);
    digits[at + 3] = static_cast<char16_t>(different >> 48U);
  };
  std::size_t at = 0;
  for (; at + 4 <= fixed_.size; at += 4) compare_at(at);
  if (at < fixed_.size) compare_at(fixed_.size - 4);
  return (beyond & 0xFFF0FFF0FFF0FFF0) == 0;
}

inline bool DateParser::days_of(const Digits& digits, std::int32_t& days) const {
  const auto two_at = [&digits](std::size_t place) {
    return 10 * digits[place] + digits[place + 1];
  };
  const std::size_t year_at = fixed_.place(Step::year);
  const int year = 100 * two_at(year_at) + two_at(year_at + 2);
  const int month = two_at(fixed_.place(Step::month));
  const int day = two_at(fixed_.place(Step::day));
  constexpr int kDaysOfEveryMonth = 28;
  const bool is_common = month >= 1 && month <= 12 && day >= 1 && day <= kDaysOfEveryMonth;
  if (!is_common && !columns::is_on_calendar(year, month, day)) return false;
  days = days_until(year, month, day);
  return true;
}

inline bool DateParser::date(std::u16string_view cell, std::int32_t& days) {
  Digits digits;  // NOLINT: each unit that is read was written
  if (fixed_.is_date && cell.size() == fixed_.size && take_digits(cell.data(), digits)) {
    return days_of(digits, days);
  }
  return slow_date(cell, days);
}

inline bool DateParser::date_time(std::u16string_view cell, std::int64_t& microseconds) {
  Digits digits;  // NOLINT: as above
  if (!fixed_.is_moment || cell.size() != fixed_.size || !take_digits(cell.data(), digits)) {
    return slow_date_time(cell, microseconds);
  }
  digits[Fixed::kMost] = digits[Fixed::kMost + 1] = 0;
  const auto two_at = [&digits](std::size_t place) {
    return 10 * digits[place] + digits[place + 1];
  };
  const int hour = two_at(fixed_.place(Step::hour));
  const int minute = two_at(fixed_.minute_at);
  const int second = two_at(fixed_.second_at);
  if (hour > 23 || minute > 59 || second > 59) return slow_date_time(cell, microseconds);
  std::int32_t days = 0;
  if (!days_of(digits, days)) return false;
  microseconds = days * kMicrosecondsOfDay + (hour * 3600 + minute * 60 + second) * kMicroseconds;
  return true;
}

}  // namespace textio::reading
