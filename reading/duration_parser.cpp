// A duration is a sum of quantities, each with a unit. The letters of ISO 8601 mean other units than the words do
// (M is a month before the T, and a minute after it), so each notation has its own list.
#include <vltextstream/reading/duration_parser.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

#include <vltextstream/columns/characters.hpp>

namespace textio::reading {
namespace {

using View = std::u16string_view;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;
constexpr std::int64_t kWeek = 7 * kDay;
constexpr std::int64_t kYear = 31'556'952 * kSecond;
constexpr std::int64_t kMonth = kYear / 12;

struct UnitOfTime {
  View name;
  std::int64_t length;
};

constexpr UnitOfTime kUnits[] = {
    {u"y", kYear},         {u"yr", kYear},         {u"yrs", kYear},      {u"year", kYear},
    {u"years", kYear},     {u"mo", kMonth},        {u"mos", kMonth},     {u"mon", kMonth},
    {u"month", kMonth},    {u"months", kMonth},    {u"w", kWeek},        {u"wk", kWeek},
    {u"wks", kWeek},       {u"week", kWeek},       {u"weeks", kWeek},    {u"d", kDay},
    {u"day", kDay},        {u"days", kDay},        {u"h", kHour},        {u"hr", kHour},
    {u"hrs", kHour},       {u"hour", kHour},       {u"hours", kHour},    {u"m", kMinute},
    {u"min", kMinute},     {u"mins", kMinute},     {u"minute", kMinute}, {u"minutes", kMinute},
    {u"s", kSecond},       {u"sec", kSecond},      {u"secs", kSecond},   {u"second", kSecond},
    {u"seconds", kSecond}, {u"ms", kSecond / 1000}};

constexpr UnitOfTime kDateUnits[] = {{u"Y", kYear}, {u"M", kMonth}, {u"W", kWeek}, {u"D", kDay}};
constexpr UnitOfTime kClockUnits[] = {{u"H", kHour}, {u"M", kMinute}, {u"S", kSecond}};

// What is left of a cell, and the sum of what was read.
class DurationReader {
 public:
  explicit DurationReader(View text) : text_(text) {}

  bool read(std::int64_t& microseconds) {
    const bool is_negative = columns::is_minus(unit());
    if (columns::is_sign(unit())) text_.remove_prefix(1);
    if (!columns::is_digit(unit()) && unit() != u'P') return false;
    const bool was_read = unit() == u'P' ? read_iso() : is_clock() ? read_clock() : read_words();
    if (!was_read || !text_.empty()) return false;
    microseconds = is_negative ? -sum_ : sum_;
    return true;
  }

 private:
  struct Quantity {
    std::int64_t whole = 0;
    double fraction = 0;
    std::size_t digits = 0;  // of the whole
  };

  char16_t unit(std::size_t ahead = 0) const { return ahead < text_.size() ? text_[ahead] : u'\0'; }

  bool take(char16_t unit_here) {
    if (unit() != unit_here) return false;
    text_.remove_prefix(1);
    return true;
  }

  bool take_whole(Quantity& quantity) {
    while (columns::is_digit(unit())) {
      const int digit = columns::digit_value(unit());
      if (__builtin_mul_overflow(quantity.whole, 10, &quantity.whole) ||
          __builtin_add_overflow(quantity.whole, digit, &quantity.whole)) {
        return false;
      }
      ++quantity.digits;
      text_.remove_prefix(1);
    }
    return quantity.digits > 0;
  }

  // ".25", ",25"; nothing is no error.
  void take_fraction(Quantity& quantity) {
    if ((unit() != u'.' && unit() != u',') || !columns::is_digit(unit(1))) return;
    text_.remove_prefix(1);
    double scale = 1;
    double digits = 0;
    while (columns::is_digit(unit())) {
      constexpr double kMostScale = 1e15;  // later digits are less than any microsecond
      if (scale < kMostScale) {
        digits = 10 * digits + columns::digit_value(unit());
        scale *= 10;
      }
      text_.remove_prefix(1);
    }
    quantity.fraction = digits / scale;
  }

  bool add(const Quantity& quantity, std::int64_t length) {
    std::int64_t whole = 0;
    const std::int64_t part = std::llround(quantity.fraction * static_cast<double>(length));
    return !__builtin_mul_overflow(quantity.whole, length, &whole) &&
           !__builtin_add_overflow(whole, part, &whole) &&
           !__builtin_add_overflow(sum_, whole, &sum_);
  }

  // --- ISO 8601 ----------------------------------------------------------------------------------

  bool read_iso() {
    text_.remove_prefix(1);
    std::size_t count = 0;
    if (!read_iso_part(kDateUnits, std::size(kDateUnits), count)) return false;
    if (!take(u'T')) return count > 0;
    count = 0;
    return read_iso_part(kClockUnits, std::size(kClockUnits), count) && count > 0;
  }

  // Each unit at most once, in their order.
  bool read_iso_part(const UnitOfTime* units, std::size_t size, std::size_t& count) {
    std::size_t next = 0;
    while (columns::is_digit(unit())) {
      Quantity quantity;
      if (!take_whole(quantity)) return false;
      take_fraction(quantity);
      while (next < size && units[next].name.front() != unit()) ++next;
      if (next == size || !add(quantity, units[next++].length)) return false;
      text_.remove_prefix(1);
      ++count;
    }
    return true;
  }

  // --- clocks ------------------------------------------------------------------------------------

  bool is_clock() const {
    const auto* const end = std::find_if_not(text_.begin(), text_.end(), columns::is_digit);
    return end != text_.end() && *end == u':';
  }

  // Two digits, at most `most`.
  bool take_two_digits(Quantity& quantity, std::int64_t most) {
    return take_whole(quantity) && quantity.digits == 2 && quantity.whole <= most;
  }

  bool read_clock() {
    constexpr std::int64_t kMostMinutes = 59;
    constexpr std::int64_t kMostSeconds = 60;  // with a leap second
    Quantity first;
    Quantity second;
    if (!take_whole(first) || !take(u':') || !take_two_digits(second, kMostMinutes)) return false;
    if (take(u':')) {
      Quantity third;
      if (!take_two_digits(third, kMostSeconds)) return false;
      take_fraction(third);
      return add(first, kHour) && add(second, kMinute) && add(third, kSecond);
    }
    // A fraction belongs to seconds.
    if (unit() != u'.') return add(first, kHour) && add(second, kMinute);
    take_fraction(second);
    return add(first, kMinute) && add(second, kSecond);
  }

  // --- quantities with units ---------------------------------------------------------------------

  bool read_words() {
    std::int64_t last = 0;
    while (!text_.empty()) {
      if (last == kDay) {
        take(u'+');
        if (is_clock()) return read_clock();
      }
      Quantity quantity;
      if (!take_whole(quantity)) return false;
      take_fraction(quantity);
      skip_blanks();
      const std::int64_t length = take_unit();
      // From the larger to the smaller.
      if (length == 0 || (last != 0 && length >= last) || !add(quantity, length)) return false;
      last = length;
      if (!text_.empty()) skip_separator();
    }
    return last != 0;
  }

  void skip_blanks() {
    while (columns::is_any_blank(unit())) text_.remove_prefix(1);
  }

  View letters() const {
    const auto* const end = std::find_if_not(text_.begin(), text_.end(), columns::is_letter);
    return text_.substr(0, static_cast<std::size_t>(end - text_.begin()));
  }

  // 0 if there is none.
  std::int64_t take_unit() {
    const View name = letters();
    const auto* const found =
        std::find_if(std::begin(kUnits), std::end(kUnits),
                     [name](const UnitOfTime& each) { return columns::is_word(name, each.name); });
    if (found == std::end(kUnits)) return 0;
    text_.remove_prefix(name.size());
    return found->length;
  }

  // Blanks, a comma, "and", or nothing.
  void skip_separator() {
    take(u',');
    skip_blanks();
    const View word = letters();
    if (!columns::is_word(word, u"and")) return;
    text_.remove_prefix(word.size());
    skip_blanks();
  }

  View text_;
  std::int64_t sum_ = 0;
};

}  // namespace

bool read_duration(View cell, std::int64_t& microseconds) {
  return DurationReader(cell).read(microseconds);
}

}  // namespace textio::reading
