// A cell that the fast way does not read is taken apart into digits: in one pass if it is written in ASCII with
// groups of three, and otherwise by the rules of columns/, which know every way to write a number, a percentage or
// an amount. The digits are then put together in the notation of C.
#include <vltextstream/reading/number_parser.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <system_error>
#include <utility>

#include <vltextstream/columns/cell_class.hpp>
#include <vltextstream/columns/characters.hpp>
#include <vltextstream/columns/money_format.hpp>

namespace textio::reading {
namespace {

using View = std::u16string_view;
using columns::CellClass;
using columns::ColumnKind;

constexpr std::size_t kDigitsOfGroup = 3;
constexpr std::size_t kMostDigitsOfExponent = 4;

bool is_ascii_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

// Marks that columns/ knows.
bool is_mark(char16_t unit) {
  return unit == u'.' || unit == u',' || unit == u'\'' || unit == 0x2019 ||
         columns::is_any_blank(unit);
}

bool is_sign_of_currency(char16_t unit) {
  return unit == u'$' || unit == 0x20AC || unit == 0x00A3 || unit == 0x00A5;
}

// How many zeros "k", "m", "bn" and the like at the end of an amount stand for.
int zeros_of_scale(View text) {
  struct Scale {
    View name;
    int zeros;
  };
  constexpr Scale kScales[] = {{u"k", 3}, {u"m", 6},  {u"mn", 6},  {u"mm", 6}, {u"mio", 6},
                               {u"b", 9}, {u"bn", 9}, {u"mrd", 9}, {u"tn", 12}};
  while (!text.empty() && columns::is_any_blank(text.front())) text.remove_prefix(1);
  std::size_t size = 0;
  while (size < text.size() && columns::is_letter(text[size])) ++size;
  for (const Scale& scale : kScales) {
    if (columns::is_word(text.substr(0, size), scale.name)) return scale.zeros;
  }
  return 0;
}

}  // namespace

void NumberParser::Parts::clear(std::size_t units) {
  if (room.size() < units) room.resize(units);
  is_negative = is_infinite = is_nan = has_mark = has_exponent = false;
  size = whole = 0;
  exponent = 0;
}

// Where both marks are the same, as they are where no cell has a decimal mark, the mark groups.
NumberParser::NumberParser(NumberRules rules) : rules_(std::move(rules)) {
  if (rules_.decimal == rules_.grouping) rules_.decimal = rules_.grouping == u'.' ? u',' : u'.';
  format_.decimal = rules_.decimal;
  format_.grouping = rules_.grouping;
  const bool is_ascii =
      rules_.decimal != 0 && rules_.decimal < 0x80 && !is_ascii_digit(rules_.decimal);
  ascii_decimal_ = is_ascii ? rules_.decimal : digits::kNoUnit;
  has_unit_ = rules_.kind == ColumnKind::percentage || rules_.kind == ColumnKind::money;
}

// --- the ways to write a number ------------------------------------------------------------------

// Without the sign of a percentage or the commonest currencies, and a blank before or after it.
View NumberParser::without_unit(View cell) const {
  const auto drop_blank_at_end = [&cell] {
    if (!cell.empty() && columns::is_any_blank(cell.back())) cell.remove_suffix(1);
  };
  if (rules_.kind == ColumnKind::percentage) {
    if (cell.back() != u'%') return cell;
    cell.remove_suffix(1);
    drop_blank_at_end();
  } else if (is_sign_of_currency(cell.front())) {
    cell.remove_prefix(1);
    if (!cell.empty() && columns::is_any_blank(cell.front())) cell.remove_prefix(1);
  } else if (is_sign_of_currency(cell.back())) {
    cell.remove_suffix(1);
    drop_blank_at_end();
  }
  return cell;
}

bool NumberParser::take_apart(View cell) {
  const View inside = has_unit_ ? without_unit(cell) : cell;
  parts_.clear(cell.size());
  if (take_plain(inside, rules_.kind != ColumnKind::money)) return true;
  parts_.clear(cell.size());
  return take_any(cell);
}

// ASCII alone: a sign, digits in groups of three or not, a fraction, an exponent.
bool NumberParser::take_plain(View text, bool may_have_exponent) {
  std::size_t at = 0;
  const auto take_digits = [&] {
    const std::size_t before = parts_.size;
    for (; at < text.size() && is_ascii_digit(text[at]); ++at) parts_.add(text[at]);
    return parts_.size - before;
  };
  const auto unit = [&] { return at < text.size() ? text[at] : u'\0'; };
  const auto take_sign = [&] {
    const char16_t sign = unit();
    if (sign == u'-' || sign == u'+') ++at;
    return sign == u'-';
  };
  parts_.is_negative = take_sign();
  const std::size_t head = take_digits();
  const bool may_group =
      rules_.grouping != 0 && head >= 1 && head <= kDigitsOfGroup && parts_.room[0] != '0';
  bool is_grouped = false;
  while (may_group && unit() == rules_.grouping) {
    ++at;
    is_grouped = true;
    if (take_digits() != kDigitsOfGroup) return false;
  }
  parts_.whole = parts_.size;
  if (rules_.decimal != 0 && unit() == rules_.decimal) {
    ++at;
    parts_.has_mark = true;
    // "5." is a number, and "5," is not.
    const bool may_end = parts_.whole > 0 && rules_.decimal == u'.' && !is_grouped;
    if (take_digits() == 0 && !may_end) return false;
  }
  if (parts_.size == 0) return false;
  if (at == text.size()) return true;
  if (!may_have_exponent || is_grouped || rules_.exponents.find(unit()) == View::npos) return false;
  const View exponent = text.substr(at++);
  take_sign();
  const std::size_t count = text.size() - at;
  if (count == 0 || count > kMostDigitsOfExponent) return false;
  take_exponent(exponent);
  return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), is_ascii_digit);
}

// A letter, a sign or none, and at most four digits.
void NumberParser::take_exponent(View text) {
  int value = 0;
  bool is_negative = false;
  for (const char16_t unit : text.substr(1)) {
    if (columns::is_minus(unit)) is_negative = true;
    if (columns::is_digit(unit)) value = 10 * value + columns::digit_value(unit);
  }
  parts_.has_exponent = true;
  parts_.exponent += is_negative ? -value : value;
}

bool NumberParser::take_any(View cell) {
  if (take_word(cell)) return true;
  switch (columns::class_of_cell(cell, {{}, rules_.exponents})) {
    case CellClass::number:
    case CellClass::compact_date:
      return take_amount(cell, cell);
    case CellClass::percentage:
      return rules_.kind == ColumnKind::percentage && take_amount(cell, cell);
    case CellClass::money:
      return rules_.kind == ColumnKind::money &&
             take_amount(cell, columns::parts_of_money(cell).amount);
    default:
      return false;
  }
}

bool NumberParser::take_word(View cell) {
  parts_.is_negative = columns::is_minus(cell.front());
  const View word = cell.substr(columns::is_sign(cell.front()) ? 1 : 0);
  parts_.is_infinite = columns::is_word(word, u"inf") || columns::is_word(word, u"infinity");
  parts_.is_nan = columns::is_word(word, u"nan");
  return parts_.is_infinite || parts_.is_nan;
}

// `amount` is what of the cell the number is, perhaps with a sign or parentheses around it.
bool NumberParser::take_amount(View cell, View amount) {
  const columns::NumberShape shape = columns::shape_of_number(amount);
  if (!columns::fits(shape, format_)) return false;
  const bool has_decimal =
      rules_.decimal != 0 && (shape.decimal == rules_.decimal || shape.either == rules_.decimal);
  std::size_t at = 0;
  while (at < amount.size() && !columns::is_digit(amount[at]) &&
         !(at + 1 < amount.size() && (amount[at] == u'.' || amount[at] == u',') &&
           columns::is_digit(amount[at + 1]))) {
    ++at;
  }
  for (; at < amount.size(); ++at) {
    if (columns::is_digit(amount[at])) {
      parts_.add(static_cast<char16_t>(u'0' + columns::digit_value(amount[at])));
    } else if (has_decimal && amount[at] == rules_.decimal) {
      parts_.has_mark = true;
      parts_.whole = parts_.size;
    } else if (!is_mark(amount[at]) || at + 1 == amount.size() ||
               !columns::is_digit(amount[at + 1])) {
      break;
    }
  }
  if (!parts_.has_mark) parts_.whole = parts_.size;
  if (shape.exponent != 0 && at < amount.size()) take_exponent(amount.substr(at));
  const std::size_t begin = static_cast<std::size_t>(amount.data() - cell.data());
  const View before = cell.substr(0, begin + amount.size());
  const auto first_digit = static_cast<std::size_t>(
      std::find_if(before.begin(), before.end(), columns::is_digit) - before.begin());
  const View sign = cell.substr(0, first_digit);
  const bool ends_with_minus =
      cell.size() > 1 && cell.back() == u'-' &&
      (columns::is_digit(cell[cell.size() - 2]) || columns::is_letter(cell[cell.size() - 2]));
  parts_.is_negative = std::any_of(sign.begin(), sign.end(), columns::is_minus) ||
                       sign.find(u'(') != View::npos || ends_with_minus;
  if (rules_.kind == ColumnKind::money) {
    parts_.exponent += zeros_of_scale(cell.substr(begin + amount.size()));
  }
  return parts_.size > 0;
}

// --- values --------------------------------------------------------------------------------------

bool NumberParser::slow_integer(View cell, std::int64_t& value) {
  if (!take_apart(cell) || parts_.is_infinite || parts_.is_nan) return false;
  if (parts_.has_mark || parts_.has_exponent || parts_.exponent != 0) return false;
  text_.clear();
  if (parts_.is_negative) text_.push_back('-');
  text_.append(parts_.digits());
  std::int64_t read = 0;
  const auto result = std::from_chars(text_.data(), text_.data() + text_.size(), read);
  if (result.ec != std::errc()) return false;
  value = read;
  return true;
}

bool NumberParser::slow_real(View cell, double& value) {
  if (!take_apart(cell)) return false;
  double magnitude = 0;
  if (parts_.is_infinite) {
    magnitude = std::numeric_limits<double>::infinity();
  } else if (parts_.is_nan) {
    magnitude = std::numeric_limits<double>::quiet_NaN();
  } else if (!nearest_double(magnitude)) {
    return false;
  }
  value = parts_.is_negative ? -magnitude : magnitude;
  return true;
}

// False if the number is beyond all doubles.
bool NumberParser::nearest_double(double& value) {
  constexpr std::size_t kMostDigits = 19;  // that surely fit 64 bits
  constexpr double kPowers[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  constexpr std::uint64_t kExact = std::uint64_t{1} << 53U;
  const std::ptrdiff_t power = parts_.point() - static_cast<std::ptrdiff_t>(parts_.size);
  const auto magnitude = static_cast<std::size_t>(power < 0 ? -power : power);
  if (parts_.size <= kMostDigits && magnitude < std::size(kPowers)) {
    std::uint64_t digits = 0;
    for (const char digit : parts_.digits())
      digits = 10 * digits + static_cast<unsigned>(digit - '0');
    if (digits <= kExact) {
      const auto exact = static_cast<double>(static_cast<std::int64_t>(digits));
      value = power < 0 ? exact / kPowers[magnitude] : exact * kPowers[magnitude];
      return true;
    }
  }
  text_.assign(parts_.digits());
  if (power != 0) {
    std::array<char, 24> exponent{};
    const auto written = std::to_chars(exponent.data(), exponent.data() + exponent.size(), power);
    text_.push_back('e');
    text_.append(exponent.data(), written.ptr);
  }
  double read = 0;
  const auto result = std::from_chars(text_.data(), text_.data() + text_.size(), read);
  value = read;
  if (result.ec != std::errc::result_out_of_range) return std::isfinite(read);
  // Too large, or so small that 0 is nearest.
  value = 0;
  const std::size_t zeros = parts_.digits().find_first_not_of('0');
  return parts_.point() - static_cast<std::ptrdiff_t>(zeros) <= 0;
}

bool NumberParser::decimal(View cell, std::string& out) {
  constexpr int kMostMoved = 400;
  if (!take_apart(cell) || parts_.is_infinite || parts_.is_nan) return false;
  if (parts_.exponent > kMostMoved || parts_.exponent < -kMostMoved) return false;
  const std::string_view digits = parts_.digits();
  const std::ptrdiff_t point = parts_.point();
  const auto whole = static_cast<std::size_t>(std::max<std::ptrdiff_t>(point, 0));
  std::string_view before = digits.substr(0, whole);
  before.remove_prefix(std::min(before.find_first_not_of('0'), before.size()));
  if (parts_.is_negative) out += '-';
  if (before.empty()) out += '0';
  out += before;
  if (whole > digits.size() && !before.empty()) out.append(whole - digits.size(), '0');
  if (whole >= digits.size()) return true;
  out += '.';
  if (point < 0) out.append(static_cast<std::size_t>(-point), '0');
  out += digits.substr(whole);
  return true;
}

}  // namespace textio::reading
