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

namespace textio::reading {

inline constexpr std::int64_t kMicroseconds = 1'000'000;
inline constexpr std::int64_t kMicrosecondsOfDay = 86'400 * kMicroseconds;

// Whether a column of dates with such a pattern says the year of each: "%d %b" does not. An empty pattern may.
bool has_year(std::string_view strptime);

struct DateRules {
  std::string strptime;  // of columns/; another directive makes the pattern useless
  columns::DateOrder order = columns::DateOrder::none;
};

class DateParser {
 public:
  explicit DateParser(const DateRules& rules);

  // Whether the cell is one; only then is the value written. The cell is not empty.
  bool date(std::u16string_view cell, std::int32_t& days);
  bool time(std::u16string_view cell, std::int64_t& microseconds);
  bool date_time(std::u16string_view cell, std::int64_t& microseconds);

  // Whether the pattern, or a moment so far, has a zone.
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
  };

  // A name of a month or weekday that was looked up.
  struct KnownName {
    std::array<char16_t, 15> units{};
    std::uint8_t size = 0;
    std::int8_t month = 0;
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
  bool read_fixed(std::u16string_view cell, Moment& moment) const;
  bool read_parts(std::u16string_view cell, std::size_t first, std::size_t at, Moment& moment);
  bool read_part(const PatternPart& part, Cursor& cursor, Moment& moment);
  bool read_name(Step step, Cursor& cursor, Moment& moment);
  const KnownName& name_of(std::u16string_view letters);
  bool read_by_itself(std::u16string_view cell, Moment& moment) const;
  bool read_iso(std::u16string_view cell, Moment& moment);
  bool take_date(const PartsByUnit& parts, Moment& moment) const;
  bool take_pair_after_year(int first, int second, Moment& moment) const;
  bool take_pair(int first, int second, char16_t mark, Moment& moment) const;
  bool take_three(const std::array<int, 3>& numbers, char16_t mark, Moment& moment) const;
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

}  // namespace textio::reading
