// The text is read from left to right: numbers, names, marks. A clock is recognised by its colon,
// by the half of the day after it, or by the T before it, and is read with its zone. What is left
// are the numbers of the date. Their number, the digits they have, and whether a month has a name
// say what they mean.
#include <vltextstream/columns/date_cell.hpp>

#include <algorithm>
#include <array>
#include <iterator>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

constexpr std::size_t kLongestDate = 60;
constexpr int kMonths = 12;
constexpr int kMostDays = 31;
constexpr int kMostHours = 24;
constexpr int kHoursOfHalf = 12;
constexpr int kMostMinutes = 59;
constexpr int kMostSeconds = 60;  // with a leap second
constexpr std::size_t kMostFraction = 9;
constexpr std::size_t kMostNumbers = 3;  // day, month and year

bool is_day(int value) { return value >= 1 && value <= kMostDays; }
bool is_month(int value) { return value >= 1 && value <= kMonths; }

// U+5E74, U+6708 and U+65E5 after year, month and day.
bool is_east_asian_mark(char16_t unit) {
  return unit == 0x5E74 || unit == 0x6708 || unit == 0x65E5;
}

struct Number {
  std::size_t digits = 0;
  int value = 0;
};

class DateReader {
 public:
  explicit DateReader(View text) : text_(text) {}

  std::optional<DateCell> read() {
    while (at_ < text_.size()) {
      const bool was_read = is_digit(text_[at_])    ? read_number()
                            : is_letter(text_[at_]) ? read_word()
                                                    : read_mark();
      if (!was_read) return std::nullopt;
    }
    if (!name_numbers()) return std::nullopt;
    return cell_;
  }

 private:
  char16_t unit(std::size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : u'\0';
  }
  bool is_digit_at(std::size_t ahead) const { return is_digit(unit(ahead)); }

  bool add(DateUnit unit, const Number& number = {}) {
    return cell_.parts.add({unit, u'\0', static_cast<std::uint8_t>(number.digits), number.value});
  }
  bool add_literal(char16_t literal) { return cell_.parts.add({DateUnit::literal, literal, 0, 0}); }

  // The first digits of a longer run; what is left of it does not belong to a date.
  Number take_number(std::size_t most = 9) {
    Number number;
    while (number.digits < most && is_digit_at(0)) {
      number.value = number.value * 10 + digit_value(text_[at_++]);
      ++number.digits;
    }
    return number;
  }

  View letters_here() const {
    std::size_t end = at_;
    while (end < text_.size() && is_letter(text_[end]) && !is_east_asian_mark(text_[end])) ++end;
    return text_.substr(at_, end - at_);
  }

  // --- the clock -------------------------------------------------------------------------------

  bool add_within(DateUnit unit, const Number& number, std::size_t digits, int most) {
    return number.digits == digits && number.value <= most && add(unit, number);
  }

  // The rest of "15:04:05.25 pm +01:00" after the hour.
  bool read_clock(const Number& hour) {
    has_clock_ = true;
    const std::size_t hour_at = cell_.parts.size();
    if (hour.value == kMostHours) cell_.has_pattern = false;
    if (!add(DateUnit::hour, hour)) return false;
    if (unit() == u':' && !read_minutes(hour_at)) return false;
    if (hour.value > (is_elapsed_ ? kMostMinutes : kMostHours)) return false;
    return read_half_day(hour) && read_zone();
  }

  bool read_minutes(std::size_t hour_at) {
    if (!take_literal() || !add_within(DateUnit::minute, take_number(), 2, kMostMinutes)) {
      return false;
    }
    const bool has_seconds = unit() == u':' && is_digit_at(1);
    if (has_seconds) {
      take_literal();
      const Number seconds = take_number();
      if (seconds.value == kMostSeconds) cell_.has_pattern = false;
      if (!add_within(DateUnit::seconds, seconds, 2, kMostSeconds)) return false;
    }
    const bool has_fraction = is_digit_at(1) && (unit() == u'.' || (unit() == u',' && has_seconds));
    if (!has_fraction) return true;
    // A clock without hours measures how long something took.
    if (!has_seconds) {
      cell_.parts[hour_at].unit = DateUnit::minute;
      cell_.parts[hour_at + 2].unit = DateUnit::seconds;
      is_elapsed_ = true;
    }
    return read_fraction();
  }

  // ".25", ",25"; nothing is no error.
  bool read_fraction() {
    if ((unit() != u'.' && unit() != u',') || !is_digit_at(1)) return true;
    return take_literal() && add(DateUnit::fraction, take_number(kMostFraction));
  }

  bool take_literal() { return add_literal(text_[at_++]); }

  // The units of "AM" or "p.m." from here on, with a blank before them; 0 if there is none.
  std::size_t half_day_size() const {
    std::size_t size = is_any_blank(unit()) ? 1 : 0;
    const char16_t half = folded(unit(size++));
    const bool has_point = unit(size) == u'.';
    if (has_point) ++size;
    const bool is_half =
        (half == u'a' || half == u'p') && folded(unit(size)) == u'm' && !is_letter(unit(size + 1));
    if (!is_half) return 0;
    return size + (has_point && unit(size + 1) == u'.' ? 2 : 1);
  }

  // Nothing is no error.
  bool read_half_day(const Number& hour) {
    const std::size_t size = half_day_size();
    if (size == 0) return true;
    if (hour.value < 1 || hour.value > kHoursOfHalf || is_elapsed_) return false;
    const std::size_t end = at_ + size;
    if (text_.substr(at_, size).find(u'.') != View::npos) cell_.has_pattern = false;
    if (is_any_blank(unit()) && !take_literal()) return false;
    at_ = end;
    return add(DateUnit::half_day);
  }

  // An offset or a name after at most one blank; nothing is no error.
  bool read_zone() {
    const std::size_t blanks = is_any_blank(unit()) ? 1 : 0;
    const char16_t start = unit(blanks);
    const bool is_offset = is_sign(start) && is_digit(unit(blanks + 1));
    const View name = View(text_).substr(std::min(at_ + blanks, text_.size()));
    const std::size_t letters = capitals_at_start(name);
    const bool is_zulu = letters == 1 && start == u'Z';
    if (!is_offset && !is_zulu && (letters < 3 || letters > 5)) return true;
    if (blanks > 0 && !take_literal()) return false;
    const std::size_t begin = at_;
    const bool was_read = is_offset ? read_offset() : read_zone_name(letters, is_zulu);
    cell_.zone = text_.substr(begin, at_ - begin);
    return was_read;
  }

  // 0 if another letter or a digit follows them.
  static std::size_t capitals_at_start(View text) {
    std::size_t size = 0;
    while (size < text.size() && text[size] >= u'A' && text[size] <= u'Z') ++size;
    const bool goes_on = size < text.size() && (is_letter(text[size]) || is_digit(text[size]));
    return goes_on ? 0 : size;
  }

  bool read_zone_name(std::size_t letters, bool is_zulu) {
    at_ += letters;
    return add(is_zulu ? DateUnit::offset : DateUnit::zone_name);
  }

  bool read_offset() {
    constexpr int kMostOffset = 14;
    if (text_[at_++] == kMinusSign) cell_.has_pattern = false;
    const Number number = take_number();
    int hours = number.value;
    if (number.digits == 4) {
      cell_.offset_forms = kOffsetPlain;
      hours /= 100;
    } else if (number.digits == 2 && unit() == u':' && is_digit_at(1)) {
      ++at_;
      cell_.offset_forms = kOffsetWithColon;
      if (take_number().digits != 2) return false;
    } else if (number.digits == 2) {
      cell_.offset_forms = kOffsetOfHours;
    } else {
      return false;
    }
    return hours <= kMostOffset && add(DateUnit::offset);
  }

  // --- numbers, names and marks of the date ----------------------------------------------------

  bool follows_compact_date() const {
    return is_compact_ &&
           (cell_.parts.back().literal == u'T' || cell_.parts.back().literal == u'_');
  }

  bool read_number() {
    const std::size_t begin = at_;
    while (is_digit_at(0)) ++at_;
    const std::size_t digits = at_ - begin;
    const std::size_t end = at_;
    at_ = begin;
    if (digits >= 8) return read_compact_date(digits);
    if (!has_clock_ && follows_compact_date() && (digits == 4 || digits == 6)) {
      return read_compact_clock(digits) && read_zone();
    }
    const Number number = take_number();
    at_ = end;
    const bool is_clock =
        digits <= 2 && ((unit() == u':' && is_digit_at(1)) || half_day_size() > 0);
    if (!has_clock_ && is_clock) return read_clock(number);
    if (digits != 4 && digits > 2) return false;
    if (numbers_ == kMostNumbers) return false;
    number_at_[numbers_++] = cell_.parts.size();
    return add(DateUnit::number, number);
  }

  bool read_compact_date(std::size_t digits) {
    constexpr int kFirstYear = 1900;
    constexpr int kLastYear = 2099;
    if (is_compact_ || (digits != 8 && digits != 12 && digits != 14)) return false;
    const Number year = take_number(4);
    const Number month = take_number(2);
    const Number day = take_number(2);
    if (year.value < kFirstYear || year.value > kLastYear) return false;
    if (!is_on_calendar(year.value, month.value, day.value)) return false;
    is_compact_ = true;
    return add(DateUnit::year, year) && add(DateUnit::month, month) && add(DateUnit::day, day) &&
           (digits == 8 || read_compact_clock(digits - 8));
  }

  // Without a zone.
  bool read_compact_clock(std::size_t digits) {
    has_clock_ = true;
    const Number hour = take_number(2);
    const bool was_read = add_within(DateUnit::hour, hour, 2, kMostHours - 1) &&
                          add_within(DateUnit::minute, take_number(2), 2, kMostMinutes);
    if (!was_read || digits == 4) return was_read;
    return add_within(DateUnit::seconds, take_number(2), 2, kMostSeconds - 1) && read_fraction();
  }

  bool read_word() {
    if (is_east_asian_mark(unit())) return take_literal();
    const View word = letters_here();
    if (word == u"T" && !cell_.parts.empty() && is_digit_at(1)) return take_literal();
    if (is_ordinal(word)) {
      cell_.has_pattern = false;
      at_ += word.size();
      return true;
    }
    if (const DateWord* const known = find_date_word(word)) return read_name(*known, word.size());
    return is_filler(word) && take_word(word);
  }

  bool is_ordinal(View word) const {
    const bool follows_number = !cell_.parts.empty() && cell_.parts.back().unit == DateUnit::number;
    return follows_number && (is_word(word, u"st") || is_word(word, u"nd") ||
                              is_word(word, u"rd") || is_word(word, u"th"));
  }

  // Words between day, month, year and time.
  static bool is_filler(View word) {
    constexpr View kFillers[] = {u"de", u"del", u"of", u"um", u"at", u"kl", u"klo", u"\u00E0"};
    return std::any_of(std::begin(kFillers), std::end(kFillers),
                       [word](View each) { return is_word(word, each); });
  }

  bool take_word(View word) {
    return std::all_of(word.begin(), word.end(), [this](char16_t) { return take_literal(); });
  }

  // A name that is a month and a weekday, as "mar" is, is a weekday if there is another month.
  bool read_name(const DateWord& word, std::size_t size) {
    at_ += size;
    const bool has_point = unit() == u'.';
    if (has_point) ++at_;
    const bool is_weekday = word.weekdays != 0 && (word.month == 0 || has_other_month());
    if (is_weekday) {
      if (cell_.weekdays != 0) return false;
      cell_.weekdays = word.weekdays;
      cell_.weekday_has_point = has_point;
      return add(DateUnit::weekday);
    }
    if (cell_.months != 0) return false;
    cell_.months = word.months;
    cell_.month_has_point = has_point;
    return add(DateUnit::month_name, {0, word.month});
  }

  bool has_other_month() const {
    if (cell_.months != 0) return true;
    for (std::size_t i = at_; i < text_.size(); ++i) {
      if (!is_letter(text_[i])) continue;
      DateReader rest(text_.substr(i));
      const View letters = rest.letters_here();
      if (letters.empty()) continue;
      const DateWord* const word = find_date_word(letters);
      if (word != nullptr && word->month != 0) return true;
      i += letters.size();
    }
    return false;
  }

  bool read_mark() {
    if (cell_.parts.empty()) return false;
    if (is_any_blank(unit())) {
      while (is_any_blank(unit(1))) ++at_;
      return take_literal();
    }
    return View(u",.-/:_'\u2019").find(unit()) != View::npos && take_literal();
  }

  // --- what the numbers mean -------------------------------------------------------------------

  bool name_numbers() {
    if (!has_clock_ && numbers_ == 0 && !is_compact_) return false;
    const bool has_date = numbers_ > 0 || is_compact_;
    if (!has_date && (cell_.months != 0 || cell_.weekdays != 0)) return false;
    if (is_compact_ && (numbers_ > 0 || cell_.months != 0)) return false;
    if (is_elapsed_ && has_date) return false;
    cell_.kind = !has_clock_   ? ColumnKind::date
                 : has_date    ? ColumnKind::date_time
                 : is_elapsed_ ? ColumnKind::duration
                               : ColumnKind::time;
    if (numbers_ == 0) return true;
    return cell_.months != 0 ? name_beside_month() : name_without_month();
  }

  DatePart& number(std::size_t index) { return cell_.parts[number_at_[index]]; }

  static bool name_year(DatePart& part) {
    if (part.digits != 4 && part.digits != 2) return false;
    part.unit = part.digits == 4 ? DateUnit::year : DateUnit::short_year;
    return true;
  }

  static bool name_day(DatePart& part) {
    part.unit = DateUnit::day;
    return part.digits <= 2 && is_day(part.value);
  }

  bool name_beside_month() {
    DatePart& a = number(0);
    if (numbers_ == 2) {
      DatePart& b = number(1);
      const bool is_year_first = a.digits == 4;
      return is_year_first ? name_year(a) && name_day(b) : name_day(a) && name_year(b);
    }
    if (numbers_ != 1) return false;
    return is_year_beside_month(a) ? name_year(a) : name_day(a);
  }

  // "Jan 2020", "Jan '20", "Jan 75", and "Jan-20", which spreadsheets write.
  bool is_year_beside_month(const DatePart& part) const {
    if (part.digits == 4 || part.value > kMostDays) return true;
    const std::size_t at = number_at_[0];
    const char16_t mark = at > 0 ? cell_.parts[at - 1].literal : u'\0';
    const bool follows_month = at > 1 && cell_.parts[at - 2].unit == DateUnit::month_name;
    return part.digits == 2 && (mark == u'\'' || mark == 0x2019 || (follows_month && mark == u'-'));
  }

  bool name_without_month() {
    DatePart& a = number(0);
    if (numbers_ == 2) return name_year_and_month(a, number(1));
    if (numbers_ != 3) return false;
    DatePart& b = number(1);
    DatePart& c = number(2);
    if (a.digits == 4) return name_year(a) && name_pair(b, c);
    if (c.digits == 4) return name_year(c) && name_pair(a, b);
    return name_three(a, b, c);
  }

  static bool name_year_and_month(DatePart& a, DatePart& b) {
    DatePart& year = a.digits == 4 ? a : b;
    DatePart& month = a.digits == 4 ? b : a;
    month.unit = DateUnit::month;
    return year.digits == 4 && name_year(year) && month.digits <= 2 && is_month(month.value);
  }

  static bool name_pair(DatePart& a, DatePart& b) {
    a.unit = DateUnit::first;
    b.unit = DateUnit::second;
    return a.digits <= 2 && b.digits <= 2 && is_day(a.value) && is_day(b.value) &&
           (is_month(a.value) || is_month(b.value));
  }

  static bool name_three(DatePart& a, DatePart& b, DatePart& c) {
    a.unit = DateUnit::one;
    b.unit = DateUnit::two;
    c.unit = DateUnit::three;
    if (b.digits > 2) return false;  // the others have no four digits, and no number has three
    const bool may_end_with_year = c.digits == 2 && is_day(a.value) && is_day(b.value) &&
                                   (is_month(a.value) || is_month(b.value));
    const bool may_begin_with_year = a.digits == 2 && is_month(b.value) && is_day(c.value);
    return may_end_with_year || may_begin_with_year;
  }

  View text_;
  std::size_t at_ = 0;
  std::size_t numbers_ = 0;
  std::array<std::size_t, kMostNumbers> number_at_{};  // among the parts
  bool has_clock_ = false;
  bool is_compact_ = false;
  bool is_elapsed_ = false;
  DateCell cell_;
};

bool has_unit(const DateCell& cell, DateUnit unit) {
  return std::any_of(cell.parts.begin(), cell.parts.end(),
                     [unit](const DatePart& part) { return part.unit == unit; });
}

// "99-12-31": two digits each, with the same mark between them.
bool is_strict_triple(View text) {
  constexpr std::size_t kLength = 8;
  return text.size() == kLength && text[2] == text[5] && !is_digit(text[2]);
}

}  // namespace

std::optional<DateCell> read_date(View text) {
  if (text.empty() || text.size() > kLongestDate) return std::nullopt;
  std::optional<DateCell> cell = DateReader(text).read();
  if (cell && !have_common_language(cell->months, cell->weekdays)) return std::nullopt;
  return cell;
}

bool is_surely_date(const DateCell& cell, View text) {
  if (cell.kind != ColumnKind::date && cell.kind != ColumnKind::date_time) return false;
  const bool has_year = has_unit(cell, DateUnit::year) || has_unit(cell, DateUnit::short_year);
  return cell.months != 0 ? has_year : has_unit(cell, DateUnit::one) && is_strict_triple(text);
}

bool is_compact_date(View text) {
  if (text.size() != 8 && text.size() != 12 && text.size() != 14) return false;
  return std::all_of(text.begin(), text.end(), is_digit) && DateReader(text).read().has_value();
}

bool is_on_calendar(int year, int month, int day) {
  constexpr int kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  if (!is_month(month) || day < 1 || day > kDays[month - 1]) return false;
  const bool is_leap_year = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return month != 2 || day < 29 || is_leap_year;
}

}  // namespace textio::columns
