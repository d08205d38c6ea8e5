// Date recognition by descent: a cursor walks over the field, and each rule of the grammar is one
// function that either steps over what it stands for or says no. `kDates` lists how a date is
// written, `kForms` how the whole field may be put together; a field is a date when one of the
// forms takes all of it.
//
// No two dates of `kDates` fit the same beginning of a text, so the first that fits is the only
// one to be tried further. A rule that fails leaves its cursor anywhere: whoever has another idea
// keeps a copy.
//
// A comma counts only with a blank behind it. Where it stands alone it separates columns.
#include "host/datetime.hpp"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "strategy/field.hpp"

namespace textio::datetime {
namespace {

using View = std::u16string_view;

// Longer than a date with everything that may be written beside it: names in full, nanoseconds,
// AM or PM and an offset. What is longer is prose.
constexpr std::size_t kLongestField = 64;

constexpr View kDateMarks = u"-/.";
constexpr View kBlanksBeforeHalfDay = u" \u00a0\u202f";

// --- names -------------------------------------------------------------------------------------

// One way to write the name of a month (1 to 12) or of a weekday (1 to 7), in lower case.
struct Spelling {
  View text;
  unsigned number;
  bool abbreviated;  // a dot may follow
};

constexpr Spelling kEnglishMonths[] = {
    {u"january", 1, false},   {u"jan", 1, true},        {u"february", 2, false},
    {u"feb", 2, true},        {u"march", 3, false},     {u"mar", 3, true},
    {u"april", 4, false},     {u"apr", 4, true},        {u"may", 5, true},
    {u"june", 6, false},      {u"jun", 6, true},        {u"july", 7, false},
    {u"jul", 7, true},        {u"august", 8, false},    {u"aug", 8, true},
    {u"september", 9, false}, {u"sept", 9, true},       {u"sep", 9, true},
    {u"october", 10, false},  {u"oct", 10, true},       {u"november", 11, false},
    {u"nov", 11, true},       {u"december", 12, false}, {u"dec", 12, true},
};

constexpr Spelling kEnglishWeekdays[] = {
    {u"monday", 1, false}, {u"mon", 1, true},       {u"tuesday", 2, false},
    {u"tues", 2, true},    {u"tue", 2, true},       {u"wednesday", 3, false},
    {u"wed", 3, true},     {u"thursday", 4, false}, {u"thurs", 4, true},
    {u"thur", 4, true},    {u"thu", 4, true},       {u"friday", 5, false},
    {u"fri", 5, true},     {u"saturday", 6, false}, {u"sat", 6, true},
    {u"sunday", 7, false}, {u"sun", 7, true},
};

char16_t to_lower(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

bool equals_lower_case(View word, View lower_case) {
  return word.size() == lower_case.size() &&
         std::equal(word.begin(), word.end(), lower_case.begin(),
                    [](char16_t unit, char16_t lower) { return to_lower(unit) == lower; });
}

template <std::size_t N>
const Spelling* find_spelling(View word, const Spelling (&spellings)[N]) {
  for (const Spelling& spelling : spellings) {
    if (equals_lower_case(word, spelling.text)) return &spelling;
  }
  return nullptr;
}

// The two questions asked about names. English is always answered; the names of another locale are
// looked up here, after the English ones, and nowhere else.
const Spelling* find_month(View word) { return find_spelling(word, kEnglishMonths); }
const Spelling* find_weekday(View word) { return find_spelling(word, kEnglishWeekdays); }

// --- the cursor --------------------------------------------------------------------------------

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

unsigned value_of(char16_t digit) { return static_cast<unsigned>(digit - u'0'); }

// Units above 127 count as letters, for names of other languages are made of them.
bool is_letter(char16_t unit) {
  const char16_t lower = to_lower(unit);
  return (lower >= u'a' && lower <= u'z') || unit > 127;
}

// A place in the field. The take... operations step over what they name and say whether it was
// there; where it was not, they do not move.
class Cursor {
 public:
  static constexpr char16_t kNone = 0;  // no rule asks for a NUL

  explicit Cursor(View rest) : rest_(rest) {}

  bool at_end() const { return rest_.empty(); }

  // The unit `ahead` places further on, kNone past the end.
  char16_t peek(std::size_t ahead = 0) const { return ahead < rest_.size() ? rest_[ahead] : kNone; }

  bool take(char16_t unit) {
    if (at_end() || rest_.front() != unit) return false;
    rest_.remove_prefix(1);
    return true;
  }

  // The unit taken, kNone when the next one is not in `set`.
  char16_t take_one_of(View set) {
    const char16_t unit = peek();
    return set.find(unit) != View::npos && take(unit) ? unit : kNone;
  }

  // As many units of `set` as there are.
  View take_run_of(View set) {
    return take_front(std::min(rest_.find_first_not_of(set), rest_.size()));
  }

  bool take_blanks() { return !take_run_of(u" ").empty(); }

  View take_word() { return take_while(is_letter); }

  View take_digits() { return take_while(is_digit); }

  // A whole run of digits, at least `fewest` and at most `most` of them; `most` is nine or less.
  bool take_number(std::size_t fewest, std::size_t most, unsigned& value) {
    Cursor ahead = *this;
    const View digits = ahead.take_digits();
    if (digits.size() < fewest || digits.size() > most) return false;
    value = 0;
    for (const char16_t digit : digits) value = value * 10 + value_of(digit);
    *this = ahead;
    return true;
  }

  // The first two of the digits that follow, whatever stands behind them.
  bool take_two_digits(unsigned& value) {
    if (!is_digit(peek()) || !is_digit(peek(1))) return false;
    value = value_of(peek()) * 10 + value_of(peek(1));
    take_front(2);
    return true;
  }

 private:
  View take_while(bool (*belongs)(char16_t)) {
    std::size_t count = 0;
    while (count < rest_.size() && belongs(rest_[count])) ++count;
    return take_front(count);
  }

  View take_front(std::size_t count) {
    const View front = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return front;
  }

  View rest_;
};

// A rule steps over what it describes, or answers false.
using Rule = bool (*)(Cursor&);

// Takes what `rule` describes if it is there, else stays.
bool take_optional(Cursor& cursor, Rule rule) {
  Cursor ahead = cursor;
  if (!rule(ahead)) return false;
  cursor = ahead;
  return true;
}

template <std::size_t N>
bool take_first_of(Cursor& cursor, const Rule (&rules)[N]) {
  return std::any_of(std::begin(rules), std::end(rules),
                     [&cursor](Rule rule) { return take_optional(cursor, rule); });
}

// --- the calendar ------------------------------------------------------------------------------

// Numbers as read; whether they make a date is for is_on_calendar to say.
struct Date {
  unsigned year;
  unsigned month;
  unsigned day;
};

bool is_on_calendar(const Date& date) {
  const std::chrono::year_month_day day(std::chrono::year(static_cast<int>(date.year)),
                                        std::chrono::month(date.month), std::chrono::day(date.day));
  return date.year >= 1 && day.ok();
}

// The year that two digits are checked with. 2000 is a leap year and 1900 is none, so a day that
// exists in either century is found here.
unsigned from_two_digits(unsigned year) { return 2000 + year; }

// --- parts of a date ---------------------------------------------------------------------------

bool take_comma_and_blanks(Cursor& cursor) { return cursor.take(u',') && cursor.take_blanks(); }

bool take_blanks_or_comma(Cursor& cursor) {
  return cursor.take_blanks() || take_comma_and_blanks(cursor);
}

// The dot of an abbreviation. Before a digit it is the mark between two parts of the date, and
// nothing has two dots.
void take_dot_of(const Spelling& spelling, Cursor& cursor) {
  const char16_t behind = cursor.peek(1);
  if (spelling.abbreviated && !is_digit(behind) && behind != u'.') cursor.take(u'.');
}

bool take_month_name(Cursor& cursor, unsigned& month) {
  const Spelling* const spelling = find_month(cursor.take_word());
  if (spelling == nullptr) return false;
  month = spelling->number;
  take_dot_of(*spelling, cursor);
  return true;
}

// "Fri, ", "Friday ": any weekday goes with any date.
bool take_weekday(Cursor& cursor) {
  const Spelling* const spelling = find_weekday(cursor.take_word());
  if (spelling == nullptr) return false;
  take_dot_of(*spelling, cursor);
  return take_blanks_or_comma(cursor);
}

View ordinal_suffix(unsigned day) {
  const bool is_teen = day >= 11 && day <= 13;
  if (is_teen) return u"th";
  switch (day % 10) {
    case 1:
      return u"st";
    case 2:
      return u"nd";
    case 3:
      return u"rd";
    default:
      return u"th";
  }
}

bool take_ordinal_suffix(Cursor& cursor, unsigned day) {
  Cursor ahead = cursor;
  if (!equals_lower_case(ahead.take_word(), ordinal_suffix(day))) return false;
  cursor = ahead;
  return true;
}

// The day behind a month's name: "1", "01", "1st".
bool take_day(Cursor& cursor, unsigned& day) {
  if (!cursor.take_number(1, 2, day)) return false;
  take_ordinal_suffix(cursor, day);
  return true;
}

// The day in front of a month's name; there a dot before a blank makes it an ordinal, too: "1. ".
bool take_leading_day(Cursor& cursor, unsigned& day) {
  if (!cursor.take_number(1, 2, day)) return false;
  if (!take_ordinal_suffix(cursor, day) && cursor.peek(1) == u' ') cursor.take(u'.');
  return true;
}

// The year beside a month's name may be short: the name says which number is which.
bool take_year(Cursor& cursor, unsigned& year) {
  if (cursor.take_number(4, 4, year)) return true;
  if (!cursor.take_number(2, 2, year)) return false;
  year = from_two_digits(year);
  return true;
}

// What stands between a month's name and a number: one of - / . or blanks, shown by a single blank.
// Both gaps of a date are alike.
bool take_gap(Cursor& cursor, char16_t& gap) {
  gap = cursor.take_blanks() ? u' ' : cursor.take_one_of(kDateMarks);
  return gap != Cursor::kNone;
}

bool take_same_gap(Cursor& cursor, char16_t gap) {
  return gap == u' ' ? cursor.take_blanks() : cursor.take(gap);
}

// Between blanks, the year may be set off by a comma.
bool take_same_gap_before_year(Cursor& cursor, char16_t gap) {
  return gap == u' ' ? take_blanks_or_comma(cursor) : cursor.take(gap);
}

// --- dates -------------------------------------------------------------------------------------

// 2024-03-01, 2024/3/1, 2024.03.01
bool year_month_day(Cursor& cursor) {
  Date date{};
  if (!cursor.take_number(4, 4, date.year)) return false;
  const char16_t mark = cursor.take_one_of(kDateMarks);
  return mark != Cursor::kNone && cursor.take_number(1, 2, date.month) && cursor.take(mark) &&
         cursor.take_number(1, 2, date.day) && is_on_calendar(date);
}

struct ThreeGroups {
  unsigned first;
  unsigned second;
  unsigned year;
};

bool take_three_groups(Cursor& cursor, View marks, std::size_t fewest, std::size_t year_digits,
                       ThreeGroups& groups) {
  if (!cursor.take_number(fewest, 2, groups.first)) return false;
  const char16_t mark = cursor.take_one_of(marks);
  return mark != Cursor::kNone && cursor.take_number(fewest, 2, groups.second) &&
         cursor.take(mark) && cursor.take_number(year_digits, year_digits, groups.year);
}

// Whether day or month comes first is not asked: one of the two has to make sense.
bool is_on_calendar_in_some_order(const ThreeGroups& groups) {
  return is_on_calendar({groups.year, groups.second, groups.first}) ||
         is_on_calendar({groups.year, groups.first, groups.second});
}

// 01.03.2024, 3/1/2024
bool day_and_month_then_year(Cursor& cursor) {
  ThreeGroups groups{};
  return take_three_groups(cursor, kDateMarks, 1, 4, groups) &&
         is_on_calendar_in_some_order(groups);
}

bool take_groups_with_short_year(Cursor& cursor, View marks, std::size_t fewest) {
  ThreeGroups groups{};
  if (!take_three_groups(cursor, marks, fewest, 2, groups)) return false;
  groups.year = from_two_digits(groups.year);
  return is_on_calendar_in_some_order(groups);
}

// 3/1/24, 03/01/24
bool slashes_then_short_year(Cursor& cursor) {
  return take_groups_with_short_year(cursor, u"/", 1);
}

// 01.03.24, 01-03-24. With fewer digits, "1.3.24" is a version as well as a date.
bool three_pairs_of_digits(Cursor& cursor) { return take_groups_with_short_year(cursor, u"-.", 2); }

// 1 Mar 2024, 1-Mar-24, 1st March, 2024, 1. March 2024
bool day_name_year(Cursor& cursor) {
  Date date{};
  char16_t gap = Cursor::kNone;
  return take_leading_day(cursor, date.day) && take_gap(cursor, gap) &&
         take_month_name(cursor, date.month) && take_same_gap_before_year(cursor, gap) &&
         take_year(cursor, date.year) && is_on_calendar(date);
}

// March 1, 2024, Mar. 1 2024, Mar-01-2024
bool name_day_year(Cursor& cursor) {
  Date date{};
  char16_t gap = Cursor::kNone;
  return take_month_name(cursor, date.month) && take_gap(cursor, gap) &&
         take_day(cursor, date.day) && take_same_gap_before_year(cursor, gap) &&
         take_year(cursor, date.year) && is_on_calendar(date);
}

// 2024-Mar-01, 2024 March 1
bool year_name_day(Cursor& cursor) {
  Date date{};
  char16_t gap = Cursor::kNone;
  return cursor.take_number(4, 4, date.year) && take_gap(cursor, gap) &&
         take_month_name(cursor, date.month) && take_same_gap(cursor, gap) &&
         take_day(cursor, date.day) && is_on_calendar(date);
}

constexpr Rule kDates[] = {
    year_month_day,           // 2024-03-01
    day_and_month_then_year,  // 01.03.2024, 03/01/2024
    slashes_then_short_year,  // 3/1/24
    three_pairs_of_digits,    // 01.03.24
    day_name_year,            // 1 Mar 2024
    name_day_year,            // March 1, 2024
    year_name_day,            // 2024-Mar-01
};

// --- the time of day ---------------------------------------------------------------------------

struct Clock {
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  bool has_fraction_above_zero = false;
  bool is_half_day = false;  // AM or PM follows
};

bool is_on_clock(const Clock& clock) {
  const bool in_minute = clock.minute <= 59 && clock.second <= 59;
  // Which minutes end in a leap second depends on the zone: any may that ends an hour.
  const bool is_leap_second = clock.minute == 59 && clock.second == 60;
  const bool is_end_of_day =
      clock.hour == 24 && clock.minute == 0 && clock.second == 0 && !clock.has_fraction_above_zero;
  if (clock.is_half_day) {
    return clock.hour >= 1 && clock.hour <= 12 && (in_minute || is_leap_second);
  }
  return is_end_of_day || (clock.hour <= 23 && (in_minute || is_leap_second));
}

// ".250" or ",250" behind the seconds; the mark alone is no fraction and stays.
void take_fraction(Cursor& cursor, Clock& clock) {
  if (!is_digit(cursor.peek(1)) || cursor.take_one_of(u".,") == Cursor::kNone) return;
  clock.has_fraction_above_zero = cursor.take_digits().find_first_not_of(u'0') != View::npos;
}

// "AM" or " PM".
bool half_day(Cursor& cursor) {
  cursor.take_run_of(kBlanksBeforeHalfDay);
  const View word = cursor.take_word();
  return equals_lower_case(word, u"am") || equals_lower_case(word, u"pm");
}

// 10:00, 9:05:30, 10:00:00.250, 2:05 PM
bool time_of_day(Cursor& cursor) {
  Clock clock;
  if (!cursor.take_number(1, 2, clock.hour)) return false;
  if (!cursor.take(u':') || !cursor.take_number(2, 2, clock.minute)) return false;
  if (cursor.take(u':')) {
    if (!cursor.take_number(2, 2, clock.second)) return false;
    take_fraction(cursor, clock);
  }
  clock.is_half_day = take_optional(cursor, half_day);
  return is_on_clock(clock);
}

// Z, UTC, GMT
bool zone_name(Cursor& cursor) {
  const View word = cursor.take_word();
  return equals_lower_case(word, u"z") || equals_lower_case(word, u"utc") ||
         equals_lower_case(word, u"gmt");
}

// +01, -0330, +05:45. No clock on earth is more than fourteen hours away from UTC; the bound also
// keeps most ranges of hours, "09:00-17:00", from being taken for a time with its zone.
bool zone_offset(Cursor& cursor) {
  unsigned hours = 0;
  unsigned minutes = 0;
  if (cursor.take_one_of(u"+-") == Cursor::kNone || !cursor.take_two_digits(hours)) return false;
  const bool wants_minutes = cursor.take(u':') || is_digit(cursor.peek());
  if (wants_minutes && !cursor.take_two_digits(minutes)) return false;
  return minutes <= 59 && hours * 60 + minutes <= 14 * 60;
}

constexpr Rule kZones[] = {zone_name, zone_offset};

// A zone, close to the time or after blanks.
bool zone(Cursor& cursor) {
  cursor.take_blanks();
  return take_first_of(cursor, kZones);
}

// --- whole fields ------------------------------------------------------------------------------

// "T", blanks, or a comma and blanks.
bool take_gap_before_time(Cursor& cursor) {
  return cursor.take(u'T') || cursor.take(u't') || take_blanks_or_comma(cursor);
}

// Fri, 01 Mar 2024 10:00:00 GMT; without the weekday, without the time, without the zone.
bool date_then_time(Cursor& cursor) {
  take_optional(cursor, take_weekday);
  if (!take_first_of(cursor, kDates)) return false;
  if (cursor.at_end()) return true;
  if (!take_gap_before_time(cursor) || !time_of_day(cursor)) return false;
  take_optional(cursor, zone);
  return true;
}

// Fri Mar  1 10:00:00 2024, with a zone before or behind the year.
bool time_before_year(Cursor& cursor) {
  Date date{};
  take_optional(cursor, take_weekday);
  if (!take_month_name(cursor, date.month) || !cursor.take_blanks()) return false;
  if (!take_day(cursor, date.day) || !cursor.take_blanks()) return false;
  if (!time_of_day(cursor)) return false;
  const bool has_zone = take_optional(cursor, zone);
  if (!cursor.take_blanks() || !cursor.take_number(4, 4, date.year)) return false;
  if (!has_zone) take_optional(cursor, zone);
  return is_on_calendar(date);
}

// 01/Mar/2024:10:00:00 +0000, as web servers write it.
bool access_log_time(Cursor& cursor) {
  Date date{};
  const bool is_date = cursor.take_number(1, 2, date.day) && cursor.take(u'/') &&
                       take_month_name(cursor, date.month) && cursor.take(u'/') &&
                       cursor.take_number(4, 4, date.year) && is_on_calendar(date);
  if (!is_date || !cursor.take(u':') || !time_of_day(cursor)) return false;
  take_optional(cursor, zone);
  return true;
}

// 20240301T100000Z. Without the time it would be a plain number.
bool compact_date_time(Cursor& cursor) {
  Date date{};
  Clock clock;
  unsigned century = 0;
  unsigned year = 0;
  const bool is_date = cursor.take_two_digits(century) && cursor.take_two_digits(year) &&
                       cursor.take_two_digits(date.month) && cursor.take_two_digits(date.day);
  if (!is_date || !(cursor.take(u'T') || cursor.take(u't'))) return false;
  const bool is_time = cursor.take_two_digits(clock.hour) && cursor.take_two_digits(clock.minute) &&
                       cursor.take_two_digits(clock.second);
  if (!is_time) return false;
  take_fraction(cursor, clock);
  take_optional(cursor, zone);
  date.year = century * 100 + year;
  return is_on_calendar(date) && is_on_clock(clock);
}

constexpr Rule kForms[] = {
    date_then_time,     // one of kDates, with or without a time
    time_before_year,   // Fri Mar  1 10:00:00 2024
    access_log_time,    // 01/Mar/2024:10:00:00 +0000
    compact_date_time,  // 20240301T100000Z
};

}  // namespace

bool is_datetime(const Field& field) {
  if (field.length > kLongestField) return false;
  const Cursor start(View(field.data, field.length));
  return std::any_of(std::begin(kForms), std::end(kForms), [&start](Rule form) {
    Cursor cursor = start;
    return form(cursor) && cursor.at_end();
  });
}

}  // namespace textio::datetime
