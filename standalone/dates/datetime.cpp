// Dates are recognised by recursive descent: a cursor walks over the field, and each rule of the
// grammar is a function that either takes its text or fails. `kDates` lists the ways to write a
// date, `kForms` the ways to compose a whole field; a field is a date if one of the forms takes all
// of it. A rule that fails may leave its cursor anywhere: a caller with an alternative keeps a
// copy.
//
// The current names decide the language: English alone, or a locale and English. A locale also has
// patterns, which are tried in addition to `kDates`. There a text may start with several dates and
// weekdays ("mar." is a Tuesday and a month in Spanish), so each is tried with what follows. The
// field is folded first: rules see lower case and the digits 0 to 9.
//
// A comma counts only with a blank after it. A comma alone separates columns.
#include <vltextstream/host/datetime.hpp>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iterator>
#include <string_view>

#include <vltextstream/standalone/dates/date_locale.hpp>
#include <vltextstream/standalone/dates/date_names.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio::datetime {
namespace {

using View = std::u16string_view;

// Longer than any date with full names, nanoseconds, AM or PM and an offset. Longer fields are
// prose.
constexpr std::size_t kLongestField = 64;

constexpr View kDateMarks = u"-/.";
constexpr View kBlanksBeforeHalfDay = u" \u00a0\u202f";

// --- the cursor --------------------------------------------------------------------------------

unsigned value_of(char16_t digit) { return static_cast<unsigned>(digit - u'0'); }

// A position in the folded field, and the names to read it with. The take... operations step over
// what they name and return whether it was there; otherwise they do not move.
class Cursor {
 public:
  static constexpr char16_t kNone = 0;  // no rule looks for a NUL

  Cursor(View rest, const DateNames& names) : rest_(rest), names_(&names) {}

  const DateNames& names() const { return *names_; }

  bool at_end() const { return rest_.empty(); }

  // The code unit `ahead` positions further on, kNone past the end.
  char16_t peek(std::size_t ahead = 0) const { return ahead < rest_.size() ? rest_[ahead] : kNone; }

  bool take(char16_t unit) {
    if (at_end() || rest_.front() != unit) return false;
    rest_.remove_prefix(1);
    return true;
  }

  // The code unit that was taken, kNone if the next one is not in `set`.
  char16_t take_one_of(View set) {
    const char16_t unit = peek();
    return set.find(unit) != View::npos && take(unit) ? unit : kNone;
  }

  // Takes all consecutive code units of `set`.
  View take_run_of(View set) {
    return take_front(std::min(rest_.find_first_not_of(set), rest_.size()));
  }

  bool take_blanks() { return !take_run_of(u" ").empty(); }

  bool take_text(View text) {
    if (!rest_.starts_with(text)) return false;
    rest_.remove_prefix(text.size());
    return true;
  }

  // The longest name of `table` at this position, null if there is none.
  const Name* take_name(const NameTable& table, NameEnd end = NameEnd::of_word) {
    const Name* const name = table.find(rest_, end);
    if (name != nullptr) rest_.remove_prefix(name->text.size());
    return name;
  }

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

  // The first two of the digits that follow, whatever comes after them.
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
  const DateNames* names_;
};

// A rule steps over what it describes, or returns false.
using Rule = bool (*)(Cursor&);

// Takes what `rule` describes if it is there, else does not move.
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

// Numbers as read; is_on_calendar decides whether they are a date.
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

// The year with which two digits are checked. 2000 is a leap year and 1900 is not, so each day that
// exists in either century exists here.
unsigned from_two_digits(unsigned year) { return 2000 + year; }

// --- parts of a date ---------------------------------------------------------------------------

bool take_comma_and_blanks(Cursor& cursor) { return cursor.take(u',') && cursor.take_blanks(); }

bool take_blanks_or_comma(Cursor& cursor) {
  return cursor.take_blanks() || take_comma_and_blanks(cursor);
}

// The dot of an abbreviation. Before a digit it separates two parts of the date, and no
// abbreviation has two dots.
void take_dot_of(const Name& name, Cursor& cursor) {
  const char16_t behind = cursor.peek(1);
  if (name.abbreviated && !is_digit(behind) && behind != u'.') cursor.take(u'.');
}

bool take_month_name(Cursor& cursor, unsigned& month) {
  const Name* const name = cursor.take_name(cursor.names().months);
  if (name == nullptr) return false;
  month = name->number;
  take_dot_of(*name, cursor);
  return true;
}

// "Fri, ", "Friday "
bool take_weekday(Cursor& cursor) {
  const Name* const name = cursor.take_name(cursor.names().weekdays);
  if (name == nullptr) return false;
  take_dot_of(*name, cursor);
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
  if (ahead.take_word() != ordinal_suffix(day)) return false;
  cursor = ahead;
  return true;
}

// The day after a month's name: "1", "01", "1st".
bool take_day(Cursor& cursor, unsigned& day) {
  if (!cursor.take_number(1, 2, day)) return false;
  take_ordinal_suffix(cursor, day);
  return true;
}

// The day before a month's name, where a dot and a blank also make it an ordinal: "1. ".
bool take_leading_day(Cursor& cursor, unsigned& day) {
  if (!cursor.take_number(1, 2, day)) return false;
  if (!take_ordinal_suffix(cursor, day) && cursor.peek(1) == u' ') cursor.take(u'.');
  return true;
}

// The year next to a month's name may be short: the name shows which number is which.
bool take_year(Cursor& cursor, unsigned& year) {
  if (cursor.take_number(4, 4, year)) return true;
  if (!cursor.take_number(2, 2, year)) return false;
  year = from_two_digits(year);
  return true;
}

// The separator between a month's name and a number: one of - / . or blanks, returned as one blank.
// Both separators of a date are the same.
bool take_gap(Cursor& cursor, char16_t& gap) {
  gap = cursor.take_blanks() ? u' ' : cursor.take_one_of(kDateMarks);
  return gap != Cursor::kNone;
}

bool take_same_gap(Cursor& cursor, char16_t gap) {
  return gap == u' ' ? cursor.take_blanks() : cursor.take(gap);
}

// If the separators are blanks, a comma may come before the year.
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

// Day and month may come in either order; one of the two must make a date.
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

// 01.03.24, 01-03-24. With fewer digits it could be a version: "1.3.24".
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

// --- dates as the locale writes them -----------------------------------------------------------

// A blank matches one or more blanks.
bool take_literal(Cursor& cursor, View literal) {
  return std::all_of(literal.begin(), literal.end(), [&cursor](char16_t unit) {
    return unit == u' ' ? cursor.take_blanks() : cursor.take(unit);
  });
}

// Matches one pattern.
class PatternReader {
 public:
  using Kind = DatePart::Kind;

  PatternReader(const DatePattern& pattern, Cursor& cursor) : pattern_(pattern), cursor_(cursor) {}

  bool take() {
    const std::size_t count = pattern_.parts.size();
    for (std::size_t i = 0; i < count; ++i) {
      const bool may_be_missing = i + 1 == count && closes_date(pattern_.parts[i]);
      if (!take_whole_part(i) && !may_be_missing) return false;
    }
    return is_on_calendar(date_);
  }

 private:
  // A last word, as for "year", or a last dot is often left out. After a short year it must be
  // there, because it distinguishes a date from a version.
  bool closes_date(const DatePart& part) const {
    return part.kind == Kind::literal && !pattern_.short_year &&
           (part.literal.front() == u' ' || part.literal == u".");
  }

  // Does not move if the part is not there.
  bool take_whole_part(std::size_t index) {
    const Cursor former = cursor_;
    if (take_part(index)) return true;
    cursor_ = former;
    return false;
  }

  bool take_part(std::size_t index) {
    switch (pattern_.parts[index].kind) {
      case Kind::literal:
        return take_literal(cursor_, pattern_.parts[index].literal);
      case Kind::year:
        return take_year_of_pattern();
      case Kind::month:
        return cursor_.take_number(fewest_digits(), 2, date_.month);
      case Kind::month_name:
        return take_name(cursor_.names().months, index, &date_.month);
      case Kind::day:
        return cursor_.take_number(fewest_digits(), 2, date_.day);
      case Kind::weekday:
        return take_name(cursor_.names().weekdays, index, nullptr);
      case Kind::era:
        return take_name(cursor_.names().eras, index, nullptr);
    }
    return false;
  }

  std::size_t fewest_digits() const { return pattern_.wants_pairs ? 2 : 1; }

  bool take_year_of_pattern() {
    return pattern_.short_year ? take_year(cursor_, date_.year)
                               : cursor_.take_number(4, 4, date_.year);
  }

  // The pattern decides what may follow, such as an ending directly after the name.
  bool take_name(const NameTable& table, std::size_t index, unsigned* number) {
    const Name* const name = cursor_.take_name(table, NameEnd::anywhere);
    if (name == nullptr) return false;
    if (number != nullptr) *number = name->number;
    const bool dot_is_of_pattern = next_begins_with_dot(index) && cursor_.peek(1) != u'.';
    if (name->abbreviated && !dot_is_of_pattern) cursor_.take(u'.');
    return true;
  }

  bool next_begins_with_dot(std::size_t index) const {
    return index + 1 < pattern_.parts.size() && pattern_.parts[index + 1].literal.starts_with(u'.');
  }

  const DatePattern& pattern_;
  Cursor& cursor_;
  Date date_{};
};

// --- the time of day ---------------------------------------------------------------------------

struct Clock {
  unsigned hour = 0;
  unsigned minute = 0;
  unsigned second = 0;
  bool has_fraction_above_zero = false;
  bool is_half_day = false;  // with AM or PM
};

bool is_on_clock(const Clock& clock) {
  const bool in_minute = clock.minute <= 59 && clock.second <= 59;
  // Which minute has a leap second depends on the zone: any last minute of an hour may.
  const bool is_leap_second = clock.minute == 59 && clock.second == 60;
  const bool is_end_of_day =
      clock.hour == 24 && clock.minute == 0 && clock.second == 0 && !clock.has_fraction_above_zero;
  if (clock.is_half_day) {
    return clock.hour >= 1 && clock.hour <= 12 && (in_minute || is_leap_second);
  }
  return is_end_of_day || (clock.hour <= 23 && (in_minute || is_leap_second));
}

// ".250" or ",250" after the seconds; the mark alone is no fraction and is not taken.
void take_fraction(Cursor& cursor, Clock& clock) {
  if (!is_digit(cursor.peek(1)) || cursor.take_one_of(u".,") == Cursor::kNone) return;
  clock.has_fraction_above_zero = cursor.take_digits().find_first_not_of(u'0') != View::npos;
}

bool half_day_name(Cursor& cursor) {
  const Name* const name = cursor.take_name(cursor.names().half_days);
  if (name == nullptr) return false;
  take_dot_of(*name, cursor);
  return true;
}

// "AM" or " PM".
bool half_day(Cursor& cursor) {
  cursor.take_run_of(kBlanksBeforeHalfDay);
  return half_day_name(cursor);
}

// Before the time, as in Korean and Chinese.
bool leading_half_day(Cursor& cursor) {
  if (!cursor.names().folding.of_locale || !half_day_name(cursor)) return false;
  cursor.take_blanks();
  return true;
}

// 10:00, 9:05:30, 10:00:00.250, 2:05 PM
bool time_of_day(Cursor& cursor) {
  Clock clock;
  const bool has_half_day = take_optional(cursor, leading_half_day);
  if (!cursor.take_number(1, 2, clock.hour)) return false;
  if (!cursor.take(u':') || !cursor.take_number(2, 2, clock.minute)) return false;
  if (cursor.take(u':')) {
    if (!cursor.take_number(2, 2, clock.second)) return false;
    take_fraction(cursor, clock);
  }
  clock.is_half_day = has_half_day || take_optional(cursor, half_day);
  return is_on_clock(clock);
}

// Z, UTC, GMT
bool zone_name(Cursor& cursor) {
  const View word = cursor.take_word();
  return word == u"z" || word == u"utc" || word == u"gmt";
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

// A zone, directly after the time or after blanks.
bool zone(Cursor& cursor) {
  cursor.take_blanks();
  return take_first_of(cursor, kZones);
}

// --- whole fields ------------------------------------------------------------------------------

// "T", blanks, or a comma and blanks.
bool take_gap_before_time(Cursor& cursor) {
  return cursor.take(u't') || take_blanks_or_comma(cursor);
}

bool is_time_up_to_end(Cursor cursor) {
  if (!time_of_day(cursor)) return false;
  take_optional(cursor, zone);
  return cursor.at_end();
}

// Nothing, or a gap and a time of day. The gap may be the locale's own: " um ", " klo ".
bool takes_rest_behind_date(const Cursor& start) {
  if (start.at_end()) return true;
  Cursor usual = start;
  if (take_gap_before_time(usual) && is_time_up_to_end(usual)) return true;
  const auto& gaps = start.names().gaps_before_time;
  return std::any_of(gaps.begin(), gaps.end(), [&start](View gap) {
    Cursor cursor = start;
    return take_literal(cursor, gap) && is_time_up_to_end(cursor);
  });
}

// 2024-03-01, 01 Mar 2024 10:00:00 GMT, and the patterns of the locale
bool date_then_time(const Cursor& start) {
  const bool is_usual = std::any_of(std::begin(kDates), std::end(kDates), [&start](Rule date) {
    Cursor cursor = start;
    return date(cursor) && takes_rest_behind_date(cursor);
  });
  const auto& patterns = start.names().patterns;
  return is_usual ||
         std::any_of(patterns.begin(), patterns.end(), [&start](const DatePattern& pattern) {
           Cursor cursor = start;
           return PatternReader(pattern, cursor).take() && takes_rest_behind_date(cursor);
         });
}

// Mar  1 10:00:00 2024, with a zone before or after the year
bool time_before_year(const Cursor& start) {
  Cursor cursor = start;
  Date date{};
  if (!take_month_name(cursor, date.month) || !cursor.take_blanks()) return false;
  if (!take_day(cursor, date.day) || !cursor.take_blanks()) return false;
  if (!time_of_day(cursor)) return false;
  const bool has_zone = take_optional(cursor, zone);
  if (!cursor.take_blanks() || !cursor.take_number(4, 4, date.year)) return false;
  if (!has_zone) take_optional(cursor, zone);
  return cursor.at_end() && is_on_calendar(date);
}

// Either of these after a weekday: "Fri, 01 Mar 2024". Any weekday is accepted for any date.
bool date_after_weekday(const Cursor& start) {
  Cursor cursor = start;
  return take_weekday(cursor) && (date_then_time(cursor) || time_before_year(cursor));
}

// 01/Mar/2024:10:00:00 +0000, as web servers write it.
bool access_log_time(const Cursor& start) {
  Cursor cursor = start;
  Date date{};
  const bool is_date = cursor.take_number(1, 2, date.day) && cursor.take(u'/') &&
                       take_month_name(cursor, date.month) && cursor.take(u'/') &&
                       cursor.take_number(4, 4, date.year) && is_on_calendar(date);
  if (!is_date || !cursor.take(u':') || !time_of_day(cursor)) return false;
  take_optional(cursor, zone);
  return cursor.at_end();
}

// 20240301T100000Z. Without the time it would be a plain number.
bool compact_date_time(const Cursor& start) {
  Cursor cursor = start;
  Date date{};
  Clock clock;
  unsigned century = 0;
  unsigned year = 0;
  const bool is_date = cursor.take_two_digits(century) && cursor.take_two_digits(year) &&
                       cursor.take_two_digits(date.month) && cursor.take_two_digits(date.day);
  if (!is_date || !cursor.take(u't')) return false;
  const bool is_time = cursor.take_two_digits(clock.hour) && cursor.take_two_digits(clock.minute) &&
                       cursor.take_two_digits(clock.second);
  if (!is_time) return false;
  take_fraction(cursor, clock);
  take_optional(cursor, zone);
  date.year = century * 100 + year;
  return cursor.at_end() && is_on_calendar(date) && is_on_clock(clock);
}

// A form takes the whole rest of the field, or returns false.
using Form = bool (*)(const Cursor&);

constexpr Form kForms[] = {
    date_then_time,      // a date, with or without a time
    time_before_year,    // Mar  1 10:00:00 2024
    date_after_weekday,  // Fri, 01 Mar 2024
    access_log_time,     // 01/Mar/2024:10:00:00 +0000
    compact_date_time,   // 20240301T100000Z
};

}  // namespace

bool is_datetime(const Field& field) {
  if (field.length > kLongestField) return false;
  const DateNames& names = names_in_force();
  char16_t units[kLongestField];
  const View text(units, fold_text(View(field.data, field.length), names.folding, units));
  // All forms have a year, and most fields that are not dates have no digit.
  if (std::none_of(text.begin(), text.end(), is_digit)) return false;
  const Cursor start(text, names);
  return std::any_of(std::begin(kForms), std::end(kForms),
                     [&start](Form form) { return form(start); });
}

}  // namespace textio::datetime
