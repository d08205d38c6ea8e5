// The pattern is compiled into parts. Those at its start that are digits of a known number and marks are compared
// four units at a time: what a unit has different from "0" in the place of a digit is the digit itself, and nothing
// may be different in other places. A cell that is written with fewer digits, and all that follows, is read part by
// part. What the pattern does not fit is taken apart by columns/.
#include <vltextstream/reading/date_parser.hpp>

#include <algorithm>
#include <iterator>
#include <optional>

#include <vltextstream/columns/characters.hpp>
#include <vltextstream/columns/date_words.hpp>
#include <vltextstream/reading/number_parser.hpp>
#include <vltextstream/text/utf8.hpp>

namespace textio::reading {
namespace {

using View = std::u16string_view;
using columns::DateCell;
using columns::DateOrder;
using columns::DatePart;
using columns::DateUnit;

constexpr int kHoursOfDay = 24;
constexpr int kHoursOfHalf = 12;
constexpr int kMostMinutes = 59;
constexpr int kMostSeconds = 60;  // with a leap second
constexpr int kSecondsOfMinute = 60;
constexpr int kSecondsOfHour = 3600;
constexpr std::size_t kDigitsOfMicrosecond = 6;
constexpr std::size_t kMostDigitsOfFraction = 9;

int year_of_two_digits(int year) {
  constexpr int kFirstOf1900 = 69;
  return year + (year >= kFirstOf1900 ? 1900 : 2000);
}

struct Zone {
  View name;
  int minutes;
};

constexpr Zone kZones[] = {
    {u"UTC", 0},    {u"GMT", 0},    {u"Z", 0},      {u"WET", 0},    {u"WEST", 60},
    {u"BST", 60},   {u"CET", 60},   {u"CEST", 120}, {u"MEZ", 60},   {u"MESZ", 120},
    {u"EET", 120},  {u"EEST", 180}, {u"MSK", 180},  {u"IST", 330},  {u"JST", 540},
    {u"AEST", 600}, {u"AEDT", 660}, {u"EST", -300}, {u"EDT", -240}, {u"CST", -360},
    {u"CDT", -300}, {u"MST", -420}, {u"MDT", -360}, {u"PST", -480}, {u"PDT", -420}};

// Seconds east of Greenwich.
std::optional<int> offset_of_name(View name) {
  const auto* const found = std::find_if(std::begin(kZones), std::end(kZones),
                                         [name](const Zone& zone) { return zone.name == name; });
  if (found == std::end(kZones)) return std::nullopt;
  return found->minutes * kSecondsOfMinute;
}

// Names of months and weekdays that are known as such, but not among those of columns/date_words.
struct OtherName {
  View name;
  View usual;
};
constexpr OtherName kOtherNames[] = {
    {u"j\u00E4nner", u"jan"}, {u"mrz", u"mar"},  {u"maerz", u"mar"}, {u"sonnabend", u"sat"},
    {u"tues", u"tue"},        {u"thur", u"thu"}, {u"thurs", u"thu"}};

bool is_letter_of_name(char16_t unit) {
  const bool is_east_asian_mark = unit == 0x5E74 || unit == 0x6708 || unit == 0x65E5;
  return columns::is_letter(unit) && !is_east_asian_mark;
}

// The text with the usual name for one of the others; empty if it has none.
std::u16string with_usual_names(View text) {
  std::u16string out;
  bool is_changed = false;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at;
    while (end < text.size() && is_letter_of_name(text[end])) ++end;
    const View word = text.substr(at, end - at);
    const auto* const other =
        std::find_if(std::begin(kOtherNames), std::end(kOtherNames),
                     [word](const OtherName& each) { return columns::is_word(word, each.name); });
    if (!word.empty() && other != std::end(kOtherNames)) {
      out += other->usual;
      is_changed = true;
    } else {
      out += word;
    }
    if (end < text.size()) out += text[end++];
    at = end;
  }
  return is_changed ? out : std::u16string();
}

}  // namespace

bool has_year(std::string_view strptime) {
  return strptime.empty() || strptime.find("%Y") != std::string_view::npos ||
         strptime.find("%y") != std::string_view::npos;
}

// --- reading ahead -------------------------------------------------------------------------------

class DateParser::Cursor {
 public:
  Cursor(View text, std::size_t at) : text_(text), at_(at) {}

  bool at_end() const { return at_ == text_.size(); }
  View rest() const { return text_.substr(at_); }
  char16_t unit(std::size_t ahead = 0) const {
    return at_ + ahead < text_.size() ? text_[at_ + ahead] : u'\0';
  }
  void skip(std::size_t count) { at_ += count; }

  bool take(char16_t unit_here) {
    if (unit() != unit_here || at_end()) return false;
    ++at_;
    return true;
  }

  bool take_blanks() {
    if (!columns::is_any_blank(unit())) return false;
    while (columns::is_any_blank(unit())) ++at_;
    return true;
  }

  // One digit or two.
  bool take_short_number(int& value) {
    const unsigned first = unit() - unsigned{u'0'};
    const unsigned second = unit(1) - unsigned{u'0'};
    if (first > 9) return take_number(1, 2, value);
    const bool are_two = second <= 9;
    value = static_cast<int>(are_two ? 10 * first + second : first);
    at_ += are_two ? 2 : 1;
    return true;
  }

  // Of `least` to `most` digits of any script.
  bool take_number(std::size_t least, std::size_t most, int& value) {
    std::size_t count = 0;
    int read = 0;
    for (; count < most; ++count, ++at_) {
      const int digit = columns::digit_value(unit());
      if (digit == columns::kNoDigit) break;
      read = 10 * read + digit;
    }
    value = read;
    return count >= least;
  }

  // Digits after the point, as microseconds.
  bool take_fraction(int& microseconds) {
    std::size_t count = 0;
    int read = 0;
    for (; count < kMostDigitsOfFraction; ++count, ++at_) {
      const int digit = columns::digit_value(unit());
      if (digit == columns::kNoDigit) break;
      if (count < kDigitsOfMicrosecond) read = 10 * read + digit;
    }
    for (std::size_t i = count; i < kDigitsOfMicrosecond; ++i) read *= 10;
    microseconds = read;
    return count > 0;
  }

  View letters() const {
    std::size_t end = at_;
    while (end < text_.size() && is_letter_of_name(text_[end])) ++end;
    return text_.substr(at_, end - at_);
  }

  // "AM", "pm".
  bool take_half_day(Moment& moment) {
    const char16_t half = columns::folded(unit());
    if ((half != u'a' && half != u'p') || columns::folded(unit(1)) != u'm') return false;
    moment.has_half = true;
    moment.is_after_noon = half == u'p';
    at_ += 2;
    return true;
  }

  // "Z", "+01:00", "+0100", "+01".
  bool take_offset(Moment& moment) {
    constexpr int kMostHours = 14;
    moment.has_zone = true;
    if (take(u'Z')) return true;
    if (!columns::is_sign(unit())) return false;
    const bool is_west = columns::is_minus(unit());
    ++at_;
    int hours = 0;
    int minutes = 0;
    if (!take_number(2, 2, hours)) return false;
    const bool has_minutes = take(u':') || columns::is_digit(unit());
    if (has_minutes && !take_number(2, 2, minutes)) return false;
    if (hours > kMostHours || minutes > kMostMinutes) return false;
    const int seconds = hours * kSecondsOfHour + minutes * kSecondsOfMinute;
    moment.offset = is_west ? -seconds : seconds;
    return true;
  }

  bool take_zone_name(Moment& moment) {
    const View name = letters();
    const auto offset = offset_of_name(name);
    if (!offset) return false;
    moment.has_zone = true;
    moment.offset = *offset;
    at_ += name.size();
    return true;
  }

 private:
  View text_;
  std::size_t at_;
};

// --- the pattern ---------------------------------------------------------------------------------

DateParser::DateParser(const DateRules& rules) : order_(rules.order) {
  has_pattern_ = compile(rules.strptime);
  if (!has_pattern_) parts_.clear();
  find_fixed_part();
  is_utc_ = rules.has_zone || has_step(Step::offset) || has_step(Step::zone_name);
  const auto place = [this](Step step) {
    return std::find_if(parts_.begin(), parts_.end(),
                        [step](const PatternPart& part) { return part.step == step; });
  };
  is_day_after_year_ =
      place(Step::year) < place(Step::day) && place(Step::day) < place(Step::month);
}

bool DateParser::has_step(Step step) const {
  return std::any_of(parts_.begin(), parts_.end(),
                     [step](const PatternPart& part) { return part.step == step; });
}

bool DateParser::compile(std::string_view strptime) {
  while (!strptime.empty()) {
    if (strptime[0] == '%') {
      if (strptime.size() < 2 || !add_directive(strptime[1])) return false;
      strptime.remove_prefix(2);
      continue;
    }
    const Utf8Character character = first_character(strptime);
    if (character.code > 0xFFFF) return false;
    const auto unit = static_cast<char16_t>(character.code);
    parts_.push_back({columns::is_any_blank(unit) ? Step::blanks : Step::literal, unit});
    strptime.remove_prefix(character.length);
  }
  find_zone_name();
  return !parts_.empty();
}

bool DateParser::add_directive(char letter) {
  struct Directive {
    char letter;
    Step step;
  };
  constexpr Directive kDirectives[] = {
      {'Y', Step::year},     {'y', Step::short_year}, {'m', Step::month},
      {'d', Step::day},      {'b', Step::month_name}, {'B', Step::month_name},
      {'a', Step::weekday},  {'A', Step::weekday},    {'H', Step::hour},
      {'I', Step::hour},     {'M', Step::minute},     {'S', Step::second},
      {'f', Step::fraction}, {'p', Step::half_day},   {'z', Step::offset},
      {'Z', Step::zone_name}};
  const auto* const found =
      std::find_if(std::begin(kDirectives), std::end(kDirectives),
                   [letter](const Directive& each) { return each.letter == letter; });
  if (found == std::end(kDirectives)) return false;
  parts_.push_back({found->step, 0});
  return true;
}

// A zone such as CET is in the pattern as the column writes it.
void DateParser::find_zone_name() {
  const auto is_capital = [](const PatternPart& part) {
    return part.step == Step::literal && part.literal >= u'A' && part.literal <= u'Z';
  };
  std::size_t begin = parts_.size();
  std::u16string name;
  while (begin > 0 && is_capital(parts_[begin - 1])) name.insert(0, 1, parts_[--begin].literal);
  if (name.size() < 3 || !offset_of_name(name)) return;
  parts_.resize(begin);
  parts_.push_back({Step::zone_name, 0});
}

void DateParser::find_fixed_part() {
  constexpr std::size_t kLeast = 4;  // that are loaded at once
  constexpr char16_t kDigitLimit = 6;
  constexpr char16_t kOtherLimit = 15;
  fixed_.places.fill(Fixed::kAbsent);
  std::size_t size = 0;
  std::size_t count = 0;
  for (const PatternPart& part : parts_) {
    const bool is_mark = part.step == Step::literal || part.step == Step::blanks;
    const bool is_number = part.step == Step::year || part.step == Step::short_year ||
                           part.step == Step::month || part.step == Step::day ||
                           part.step == Step::hour || part.step == Step::minute ||
                           part.step == Step::second;
    const std::size_t width = is_mark ? 1 : part.step == Step::year ? 4 : 2;
    if ((!is_mark && !is_number) || size + width > Fixed::kMost) break;
    if (is_number)
      fixed_.places[static_cast<std::size_t>(part.step)] = static_cast<std::uint8_t>(size);
    for (std::size_t i = 0; i < width; ++i, ++size) {
      fixed_.units[size] = is_mark ? part.literal : u'0';
      fixed_.limits[size] = is_mark ? kOtherLimit : kDigitLimit;
    }
    ++count;
  }
  if (size < kLeast) return;
  fixed_.size = size;
  fixed_.parts = count;
  const auto has = [this](Step step) { return fixed_.place(step) != Fixed::kAbsent; };
  const bool has_day = has(Step::year) && has(Step::month) && has(Step::day);
  const bool is_all = count == parts_.size() && has_day;
  fixed_.is_date = is_all && !has(Step::hour) && !has(Step::minute) && !has(Step::second);
  if (!is_all || !has(Step::hour)) return;
  fixed_.is_moment = true;
  if (has(Step::minute)) fixed_.minute_at = fixed_.place(Step::minute);
  if (has(Step::second)) fixed_.second_at = fixed_.place(Step::second);
}

// --- one cell ------------------------------------------------------------------------------------

void DateParser::read_fixed(const Digits& digits, Moment& moment) const {
  const auto two_at = [&digits](std::size_t place) {
    return 10 * digits[place] + digits[place + 1];
  };
  const auto two_of = [&](Step step, int& value) {
    const std::size_t place = fixed_.place(step);
    if (place == Fixed::kAbsent) return false;
    value = two_at(place);
    return true;
  };
  if (const std::size_t place = fixed_.place(Step::year); place != Fixed::kAbsent) {
    moment.year = 100 * two_at(place) + two_at(place + 2);
    moment.has_year = true;
  } else if (two_of(Step::short_year, moment.year)) {
    moment.year = year_of_two_digits(moment.year);
    moment.has_year = true;
  }
  moment.has_month = two_of(Step::month, moment.month);
  two_of(Step::day, moment.day);
  moment.has_clock = two_of(Step::hour, moment.hour);
  two_of(Step::minute, moment.minute);
  two_of(Step::second, moment.second);
}

bool DateParser::read_by_pattern(View cell, Moment& moment) {
  Digits digits;  // NOLINT: each unit that is read was written
  if (fixed_.size != 0 && cell.size() >= fixed_.size && take_digits(cell.data(), digits)) {
    read_fixed(digits, moment);
    if (cell.size() == fixed_.size && fixed_.parts == parts_.size()) return true;
    if (read_parts(cell, fixed_.parts, fixed_.size, moment)) return true;
  }
  moment = {};
  return read_parts(cell, 0, 0, moment);
}

bool DateParser::read_parts(View cell, std::size_t first, std::size_t at, Moment& moment) {
  Cursor cursor(cell, at);
  for (std::size_t i = first; i < parts_.size(); ++i) {
    if (!read_part(parts_[i], cursor, moment)) return false;
  }
  return cursor.at_end();
}

bool DateParser::read_part(const PatternPart& part, Cursor& cursor, Moment& moment) {
  switch (part.step) {
    case Step::literal:
      return cursor.take(part.literal);
    case Step::blanks:
      return cursor.take_blanks();
    case Step::year:
      moment.has_year = true;
      return cursor.take_number(4, 4, moment.year);
    case Step::short_year:
      moment.has_year = cursor.take_number(2, 2, moment.year);
      moment.year = year_of_two_digits(moment.year);
      return moment.has_year;
    case Step::month:
      moment.has_month = true;
      return cursor.take_short_number(moment.month);
    case Step::day:
      return cursor.take_short_number(moment.day);
    case Step::hour:
      moment.has_clock = true;
      return cursor.take_short_number(moment.hour);
    case Step::minute:
      return cursor.take_number(2, 2, moment.minute);
    case Step::second:
      return cursor.take_number(2, 2, moment.second);
    case Step::fraction:
      return cursor.take_fraction(moment.microsecond);
    case Step::half_day:
      return cursor.take_half_day(moment);
    case Step::offset:
      return cursor.take_offset(moment);
    case Step::zone_name:
      return cursor.take_zone_name(moment);
    default:
      return read_name(part.step, cursor, moment);
  }
}

bool DateParser::read_name(Step step, Cursor& cursor, Moment& moment) {
  const View letters = cursor.letters();
  const KnownName& name = name_of(letters);
  cursor.skip(letters.size());
  if (step == Step::weekday) return name.is_weekday;
  moment.month = name.month;
  moment.has_month = true;
  return name.month != 0;
}

// The names of a column are few: each is looked up once, unless two share a place.
const DateParser::KnownName& DateParser::name_of(View letters) {
  static constexpr KnownName kUnknown;
  if (letters.empty() || letters.size() > kUnknown.units.size()) return kUnknown;
  const std::size_t place = (letters[0] + std::size_t{7} * letters[letters.size() / 2] +
                             std::size_t{31} * letters.back() + letters.size()) %
                            names_.size();
  KnownName& name = names_[place];
  if (View(name.units.data(), name.size) == letters) return name;
  const columns::DateWord* const word = columns::find_date_word(letters);
  std::copy(letters.begin(), letters.end(), name.units.begin());
  name.size = static_cast<std::uint8_t>(letters.size());
  name.month = static_cast<std::uint8_t>(word == nullptr ? 0 : word->month);
  name.is_weekday = word != nullptr && word->weekdays != 0;
  return name;
}

// --- a cell by itself ----------------------------------------------------------------------------

// The first part of each unit.
class DateParser::PartsByUnit {
 public:
  explicit PartsByUnit(const DateCell& cell) : cell_(cell) {
    for (const DatePart& part : cell.parts) {
      const DatePart*& first = parts_[static_cast<std::size_t>(part.unit)];
      if (first == nullptr) first = &part;
    }
  }

  // Null if there is none.
  const DatePart* operator[](DateUnit unit) const { return parts_[static_cast<std::size_t>(unit)]; }

  int value(DateUnit unit) const {
    const DatePart* const part = (*this)[unit];
    return part == nullptr ? 0 : part->value;
  }

  char16_t mark_after(DateUnit unit) const {
    const DatePart* const next = (*this)[unit] + 1;
    return next == cell_.parts.end() ? u'\0' : next->literal;
  }

  void take_clock(Moment& moment) const {
    moment.has_clock = (*this)[DateUnit::hour] != nullptr;
    moment.hour = value(DateUnit::hour);
    moment.minute = value(DateUnit::minute);
    moment.second = value(DateUnit::seconds);
    const DatePart* const fraction = (*this)[DateUnit::fraction];
    if (fraction == nullptr) return;
    moment.microsecond = fraction->value;
    for (std::size_t i = fraction->digits; i < kDigitsOfMicrosecond; ++i) moment.microsecond *= 10;
    for (std::size_t i = kDigitsOfMicrosecond; i < fraction->digits; ++i) moment.microsecond /= 10;
  }

 private:
  static constexpr std::size_t kUnits = static_cast<std::size_t>(DateUnit::zone_name) + 1;

  const DateCell& cell_;
  std::array<const DatePart*, kUnits> parts_{};
};

namespace {

// Of a text that has "AM", "p.m." or the like after its hours and minutes.
bool is_after_noon(View text) {
  for (std::size_t at = 1; at + 1 < text.size(); ++at) {
    const char16_t half = columns::folded(text[at]);
    if ((half != u'a' && half != u'p') || columns::is_letter(text[at - 1])) continue;
    const std::size_t next = text[at + 1] == u'.' ? at + 2 : at + 1;
    const bool is_half = next < text.size() && columns::folded(text[next]) == u'm' &&
                         (next + 1 == text.size() || !columns::is_letter(text[next + 1]));
    if (is_half) return half == u'p';
  }
  return false;
}

}  // namespace

// Day and month in either order.
bool DateParser::take_pair(int first, int second, char16_t mark, Moment& moment) const {
  const bool is_month_first = order_ == DateOrder::month_first;
  const bool is_known = is_month_first || order_ == DateOrder::day_first ||
                        order_ == DateOrder::ambiguous || mark == u'.';
  const auto take = [&](bool as_month_first) {
    const int month = as_month_first ? first : second;
    const int day = as_month_first ? second : first;
    if (!columns::is_on_calendar(moment.year, month, day)) return false;
    moment.month = month;
    moment.day = day;
    moment.has_month = true;
    return true;
  };
  if (has_pattern_ && is_known) return take(is_month_first);
  const bool may_be_both = take(true) && take(false) && first != second;
  if (has_pattern_ && may_be_both) return false;
  return take(is_month_first) || take(!is_month_first);
}

// Three short numbers, with a year of two digits first or last.
bool DateParser::take_three(const PartsByUnit& parts, Moment& moment) const {
  const DatePart& one = *parts[DateUnit::one];
  const DatePart& three = *parts[DateUnit::three];
  const int two = parts.value(DateUnit::two);
  moment.has_year = true;
  const auto take_year_first = [&] {
    moment.year = year_of_two_digits(one.value);
    moment.month = two;
    moment.day = three.value;
    moment.has_month = one.digits == 2 && columns::is_on_calendar(moment.year, two, three.value);
    return moment.has_month;
  };
  const auto take_year_last = [&] {
    moment.year = year_of_two_digits(three.value);
    return three.digits == 2 && take_pair(one.value, two, parts.mark_after(DateUnit::one), moment);
  };
  if (order_ == DateOrder::year_first) {
    return take_year_first() || (!has_pattern_ && take_year_last());
  }
  return take_year_last() || (!has_pattern_ && take_year_first());
}

bool DateParser::read_by_itself(View cell, Moment& moment) const {
  std::u16string usual;
  auto parts = columns::read_date(cell);
  if (!parts) {
    usual = with_usual_names(cell);
    parts = columns::read_date(usual);
  }
  if (!parts || parts->kind == columns::ColumnKind::duration) return false;
  const PartsByUnit by_unit(*parts);
  by_unit.take_clock(moment);
  if (by_unit[DateUnit::half_day] != nullptr) {
    moment.has_half = true;
    moment.is_after_noon = is_after_noon(usual.empty() ? cell : usual);
  }
  if (!parts->zone.empty()) {
    Cursor cursor(parts->zone, 0);
    if (!cursor.take_zone_name(moment) && !cursor.take_offset(moment)) return false;
  }
  return take_date(by_unit, moment);
}

// A time without a date is no error here.
bool DateParser::take_date(const PartsByUnit& parts, Moment& moment) const {
  if (parts[DateUnit::one] != nullptr) return take_three(parts, moment);
  const DatePart* const year = parts[DateUnit::year];
  const DatePart* const short_year = parts[DateUnit::short_year];
  if (year != nullptr) moment.year = year->value;
  if (short_year != nullptr) moment.year = year_of_two_digits(short_year->value);
  moment.has_year = year != nullptr || short_year != nullptr;
  if (parts[DateUnit::day] != nullptr) moment.day = parts.value(DateUnit::day);
  const DateUnit month = parts[DateUnit::month] != nullptr ? DateUnit::month : DateUnit::month_name;
  moment.has_month = parts[month] != nullptr;
  if (moment.has_month) moment.month = parts.value(month);
  const DatePart* const first = parts[DateUnit::first];
  if (first == nullptr) return true;
  const int second = parts.value(DateUnit::second);
  return year < first ? take_pair_after_year(first->value, second, moment)
                      : take_pair(first->value, second, parts.mark_after(DateUnit::first), moment);
}

// The month is first unless the pattern of the column says otherwise.
bool DateParser::take_pair_after_year(int first, int second, Moment& moment) const {
  const auto take = [&moment](int month, int day) {
    moment.month = month;
    moment.day = day;
    moment.has_month = columns::is_on_calendar(moment.year, month, day);
    return moment.has_month;
  };
  if (is_day_after_year_) return take(second, first);
  return take(first, second) || (!has_pattern_ && take(second, first));
}

// "2024-01-31", perhaps with a clock after a blank or T, a fraction and a zone.
bool DateParser::read_iso(View cell, Moment& moment) {
  Cursor cursor(cell, 0);
  moment.has_year = moment.has_month = true;
  if (!cursor.take_number(4, 4, moment.year) || !cursor.take(u'-') ||
      !cursor.take_number(2, 2, moment.month) || !cursor.take(u'-') ||
      !cursor.take_number(2, 2, moment.day)) {
    return false;
  }
  if (cursor.at_end()) return true;
  moment.has_clock = true;
  if ((!cursor.take(u'T') && !cursor.take(u' ')) || !cursor.take_number(2, 2, moment.hour) ||
      !cursor.take(u':') || !cursor.take_number(2, 2, moment.minute)) {
    return false;
  }
  if (cursor.take(u':')) {
    if (!cursor.take_number(2, 2, moment.second)) return false;
    if ((cursor.take(u'.') || cursor.take(u',')) && !cursor.take_fraction(moment.microsecond))
      return false;
  }
  return cursor.at_end() || (cursor.take_offset(moment) && cursor.at_end());
}

bool DateParser::read(View cell, Moment& moment) {
  if (has_pattern_ ? read_by_pattern(cell, moment) : read_iso(cell, moment) && is_valid(moment))
    return true;
  moment = {};
  return read_by_itself(cell, moment);
}

// --- values --------------------------------------------------------------------------------------

bool DateParser::is_valid(const Moment& moment) {
  return !moment.has_month || columns::is_on_calendar(moment.year, moment.month, moment.day);
}

// Since midnight.
bool DateParser::clock_of(const Moment& moment, std::int64_t& microseconds) {
  int hour = moment.hour;
  if (moment.has_half) {
    if (hour < 1 || hour > kHoursOfHalf) return false;
    hour = hour % kHoursOfHalf + (moment.is_after_noon ? kHoursOfHalf : 0);
  }
  const int seconds = moment.minute * kSecondsOfMinute + moment.second;
  const bool is_late = hour == kHoursOfDay && (seconds != 0 || moment.microsecond != 0);
  if (hour > kHoursOfDay || is_late || moment.minute > kMostMinutes ||
      moment.second > kMostSeconds) {
    return false;
  }
  microseconds =
      (hour * std::int64_t{kSecondsOfHour} + seconds) * kMicroseconds + moment.microsecond;
  return true;
}

bool DateParser::slow_date(View cell, std::int32_t& days) {
  Moment moment;
  if (!read(cell, moment)) return false;
  if (moment.has_clock || !moment.has_year || !moment.has_month || !is_valid(moment)) return false;
  days = days_until(moment.year, moment.month, moment.day);
  return true;
}

bool DateParser::time(View cell, std::int64_t& microseconds) {
  Moment moment;
  if (!read(cell, moment)) return false;
  return moment.has_clock && !moment.has_month && clock_of(moment, microseconds);
}

bool DateParser::slow_date_time(View cell, std::int64_t& microseconds) {
  Moment moment;
  std::int64_t clock = 0;
  if (!read(cell, moment)) return false;
  if (!moment.has_year || !moment.has_month || !is_valid(moment) || !clock_of(moment, clock))
    return false;
  if (moment.has_zone && !is_utc_) {
    if (has_pattern_) return false;
    is_utc_ = true;
  }
  microseconds = days_until(moment.year, moment.month, moment.day) * kMicrosecondsOfDay + clock -
                 moment.offset * kMicroseconds;
  return true;
}

}  // namespace textio::reading
