// The marks of a number are found in one pass: a mark is a unit of kMarkUnits that a digit follows.
// The number of marks, the first, the last, and the digits around them then say what each mark is.
#include <vltextstream/columns/number_format.hpp>

#include <algorithm>
#include <charconv>
#include <cstdint>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;

constexpr View kMarkUnits = u".,' \u2019\u00A0\u202F\u2009";
constexpr std::size_t kDigitsOfGroup = 3;

bool is_mark(char16_t unit) { return kMarkUnits.find(unit) != View::npos; }

bool is_point_or_comma(char16_t unit) { return unit == u'.' || unit == u','; }

bool is_apostrophe(char16_t unit) { return unit == u'\'' || unit == 0x2019; }

// Blanks of different widths, and both apostrophes, are one mark to a reader.
bool is_same_mark(char16_t a, char16_t b) {
  return a == b || (is_any_blank(a) && is_any_blank(b)) || (is_apostrophe(a) && is_apostrophe(b));
}

// The digits of a number with their marks, without sign, exponent and what else is around them.
struct Core {
  std::size_t begin = 0;
  std::size_t end = 0;
  std::size_t marks = 0;
  char16_t first_mark = 0;
  char16_t last_mark = 0;
  std::size_t digits_before_mark = 0;  // before the first mark
  std::size_t digits_after_mark = 0;   // after the last one
};

bool is_mark_before_digit(View text, std::size_t at) {
  return is_mark(text[at]) && at + 1 < text.size() && is_digit(text[at + 1]);
}

std::size_t start_of_core(View text) {
  std::size_t at = 0;
  while (at < text.size() && !is_digit(text[at]) &&
         !(is_point_or_comma(text[at]) && is_mark_before_digit(text, at))) {
    ++at;
  }
  return at;
}

Core core_of(View text) {
  Core core;
  core.begin = start_of_core(text);
  std::size_t at = core.begin;
  for (; at < text.size(); ++at) {
    if (is_digit(text[at])) {
      ++(core.marks == 0 ? core.digits_before_mark : core.digits_after_mark);
      continue;
    }
    const bool is_last_point = text[at] == u'.' && core.marks == 0 && at > core.begin;
    if (!is_last_point && !is_mark_before_digit(text, at)) break;
    if (core.marks++ == 0) core.first_mark = text[at];
    core.last_mark = text[at];
    core.digits_after_mark = 0;
  }
  core.end = at;
  return core;
}

// The letter of an exponent that follows the digits.
char16_t exponent_after(View text, const Core& core) {
  if (core.end + 1 >= text.size()) return 0;
  const char16_t unit = text[core.end];
  const bool is_exponent = View(u"eEdD").find(unit) != View::npos;
  const char16_t next = text[core.end + 1];
  return is_exponent && (is_digit(next) || is_sign(next)) ? unit : u'\0';
}

bool is_all_nines(View digits_and_marks) {
  const auto is_nine_or_mark = [](char16_t unit) {
    return digit_value(unit) == 9 || is_mark(unit);
  };
  return std::all_of(digits_and_marks.begin(), digits_and_marks.end(), is_nine_or_mark);
}

void read_only_mark(View text, const Core& core, NumberShape& shape) {
  const char16_t mark = core.first_mark;
  const bool may_group = core.digits_after_mark == kDigitsOfGroup && core.digits_before_mark > 0 &&
                         core.digits_before_mark <= kDigitsOfGroup &&
                         digit_value(text[core.begin]) != 0 && shape.exponent == 0;
  if (!is_point_or_comma(mark)) {
    shape.grouping = mark;
  } else if (may_group) {
    shape.either = mark;
  } else {
    shape.decimal = mark;
  }
}

// Most numbers of most files are simple, with digits in NumberShape. What is more needs the slower functions
// above.
bool read_simple(View text, NumberShape& shape) {
  constexpr std::size_t kExactDigits = 15;
  if (text.empty() || text.size() > kExactDigits + 2) return false;
  const bool is_negative = text.front() == u'-';
  if (is_negative || text.front() == u'+') text.remove_prefix(1);
  std::int64_t digits = 0;
  std::size_t count = 0;
  std::size_t whole = 0;
  char16_t mark = 0;
  bool is_all_nines = true;
  for (const char16_t unit : text) {
    const int digit = unit - u'0';
    if (digit >= 0 && digit <= 9) {
      digits = 10 * digits + digit;
      is_all_nines = is_all_nines && digit == 9;
      ++count;
    } else if (is_point_or_comma(unit) && mark == 0) {
      mark = unit;
      whole = count;
    } else {
      return false;
    }
  }
  if (mark == 0) whole = count;
  if (whole == 0 || count > kExactDigits || (mark != 0 && whole == count)) return false;
  shape.digits = is_negative ? -digits : digits;
  shape.fraction_digits = count - whole;
  shape.whole_digits = whole;
  shape.is_all_nines = is_all_nines;
  const bool may_group =
      count - whole == kDigitsOfGroup && whole <= kDigitsOfGroup && text.front() != u'0';
  (may_group ? shape.either : shape.decimal) = mark;
  return true;
}

}  // namespace

NumberShape shape_of_number(View text) {
  NumberShape shape;
  if (read_simple(text, shape)) return shape;
  const Core core = core_of(text);
  if (core.begin == text.size()) {
    shape.is_finite = false;
    return shape;
  }
  shape.exponent = exponent_after(text, core);
  shape.whole_digits = core.digits_before_mark;
  shape.is_all_nines = is_all_nines(text.substr(core.begin, core.end - core.begin));
  if (core.marks == 1) {
    read_only_mark(text, core, shape);
  } else if (core.marks > 1) {
    shape.grouping = core.first_mark;
    if (core.first_mark != core.last_mark) shape.decimal = core.last_mark;
  }
  return shape;
}

bool fits(const NumberShape& shape, const NumberFormat& format) {
  const bool decimal_fits = shape.decimal == 0 || shape.decimal == format.decimal;
  const bool grouping_fits = shape.grouping == 0 || is_same_mark(shape.grouping, format.grouping);
  const bool either_fits =
      shape.either == 0 || shape.either == format.decimal || shape.either == format.grouping;
  return decimal_fits && grouping_fits && either_fits;
}

bool has_fraction(const NumberShape& shape, const NumberFormat& format) {
  const bool is_decimal = shape.either != 0 && shape.either == format.decimal;
  return !shape.is_finite || shape.decimal != 0 || is_decimal;
}

std::optional<double> value_of(View text, const NumberShape& shape, const NumberFormat& format) {
  constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  if (!shape.digits) return value_of(text, format);
  // A double holds both numbers exactly, so their quotient is the double nearest to the value.
  const char16_t mark = shape.decimal != 0 ? shape.decimal : shape.either;
  const bool is_decimal = mark != 0 && mark == format.decimal;
  return static_cast<double>(*shape.digits) / kPowers[is_decimal ? shape.fraction_digits : 0];
}

std::optional<double> value_of(View text, const NumberFormat& format) {
  constexpr std::size_t kLongest = 60;
  if (text.size() > kLongest) return std::nullopt;
  const Core core = core_of(text);
  if (core.begin == text.size()) return std::nullopt;

  std::array<char, kLongest + 1> ascii{};
  std::size_t size = 0;
  for (const char16_t unit : text.substr(core.begin, core.end - core.begin)) {
    if (is_digit(unit)) ascii[size++] = static_cast<char>('0' + digit_value(unit));
    if (unit == format.decimal) ascii[size++] = '.';
  }
  if (exponent_after(text, core) != 0) {
    ascii[size++] = 'e';
    for (const char16_t unit : text.substr(core.end + 1)) {
      if (is_minus(unit)) ascii[size++] = '-';
      if (is_digit(unit)) ascii[size++] = static_cast<char>('0' + digit_value(unit));
    }
  }
  double value = 0;
  const auto result = std::from_chars(ascii.data(), ascii.data() + size, value);
  if (result.ec != std::errc()) return std::nullopt;
  const View before = text.substr(0, core.begin);
  const bool is_negative = std::any_of(before.begin(), before.end(), is_minus) ||
                           before.find(u'(') != View::npos || text.back() == u'-';
  return is_negative ? -value : value;
}

// --- votes -------------------------------------------------------------------------------------

namespace {

// Whether a mark that may be either groups: by the table, by the delimiter, by custom.
bool groups_by_hints(char16_t mark, const MarkHints& hints) {
  if (hints.decimal == mark) return false;
  if (hints.grouping == mark || hints.decimal != 0) return true;
  if (hints.grouping != 0) return false;
  const bool is_decimal_by_delimiter =
      (hints.delimiter == u';' && mark == u',') || (hints.delimiter == u',' && mark == u'.');
  if (is_decimal_by_delimiter) return false;
  return mark == u',' || hints.is_money;
}

}  // namespace

void NumberVotes::add(const NumberShape& shape) {
  constexpr std::size_t kSurelyGrouped = 5;  // many who group do not group four digits
  static_assert(kMarkUnits.size() == kMarks);
  const auto count = [](Counts& counts, char16_t mark) {
    if (mark != 0) ++counts[kMarkUnits.find(mark)];
  };
  count(decimals_, shape.decimal);
  count(groupings_, shape.grouping);
  count(eithers_, shape.either);
  if (exponent_ == 0) exponent_ = shape.exponent;
  const bool is_ungrouped =
      shape.grouping == 0 && shape.whole_digits >= kSurelyGrouped && !shape.is_all_nines;
  if (is_ungrouped) ++ungrouped_;
}

// The first of the marks that most cells have; 0 if none has one.
char16_t NumberVotes::commonest(const Counts& counts) {
  const auto most = std::max_element(counts.begin(), counts.end());
  return *most == 0 ? u'\0' : kMarkUnits[static_cast<std::size_t>(most - counts.begin())];
}

// Of those in `counts`, and of those that may be either, the commonest that is not `other`.
char16_t NumberVotes::commonest_but(Counts counts, char16_t other) const {
  for (std::size_t i = 0; i < kMarks; ++i) counts[i] += eithers_[i];
  if (const std::size_t i = kMarkUnits.find(other); i != View::npos) counts[i] = 0;
  return commonest(counts);
}

// A mark that is decimal in some cells and groups in others is what it is in most.
void NumberVotes::add_own_marks(NumberFormat& format) const {
  Counts decimals = decimals_;
  Counts groupings = groupings_;
  for (std::size_t i = 0; i < kMarks; ++i) {
    Counts& weaker = decimals[i] < groupings[i] ? decimals : groupings;
    if (decimals[i] > 0 && groupings[i] > 0) weaker[i] = 0;
  }
  format.decimal = commonest(decimals);
  format.grouping = commonest(groupings);
}

// What the mark of cells such as "1,234" is, if that is not clear from other cells.
void NumberVotes::settle_doubtful(char16_t mark, const MarkHints& hints,
                                  NumberFormat& format) const {
  if (mark == format.decimal || mark == format.grouping) return;
  if (format.decimal != 0) {
    if (format.grouping == 0) format.grouping = mark;
    return;
  }
  if (format.grouping != 0 || ungrouped_ > 0) {
    format.decimal = mark;
    return;
  }
  format.is_certain = false;
  const bool groups = groups_by_hints(mark, hints);
  (groups ? format.grouping : format.decimal) = mark;
}

NumberFormat NumberVotes::format(const MarkHints& hints) const {
  NumberFormat format;
  format.exponent = exponent_;
  if (hints.are_given) {
    format.decimal = hints.decimal;
    if (hints.grouping != hints.decimal) format.grouping = hints.grouping;
    if (hints.grouping == 0) format.grouping = commonest_but(groupings_, hints.decimal);
    if (hints.decimal == 0) format.decimal = commonest_but(decimals_, format.grouping);
    return format;
  }
  add_own_marks(format);
  // Of two doubtful marks, the commoner is settled first.
  Counts doubtful = eithers_;
  while (const char16_t mark = commonest(doubtful)) {
    settle_doubtful(mark, hints, format);
    doubtful[kMarkUnits.find(mark)] = 0;
  }
  return format;
}

}  // namespace textio::columns
