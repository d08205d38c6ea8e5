// A cell that the fast way does not read is taken apart into digits: in one pass if it is written in ASCII with
// groups of three, and otherwise by the rules of columns/, which know every way to write a number, a percentage or
// an amount. The digits are then put together in the notation of C.
#include <vltextstream/reading/number_parser.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
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

std::size_t digits_at(View text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && is_ascii_digit(text[end])) ++end;
  return end - at;
}

void append_narrowed(std::string& out, View text) {
  for (const char16_t unit : text) out += static_cast<char>(unit);
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

void NumberParser::Parts::clear() {
  is_negative = is_infinite = is_nan = has_exponent = false;
  exponent = 0;
  whole.clear();
  fraction.clear();
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
  parts_.clear();
  if (take_plain(inside, rules_.kind != ColumnKind::money)) return true;
  parts_.clear();
  return take_any(cell);
}

// ASCII alone: a sign, digits in groups of three or not, a fraction, an exponent.
bool NumberParser::take_plain(View text, bool may_have_exponent) {
  std::size_t at = 0;
  if (!text.empty() && (text[0] == u'-' || text[0] == u'+')) {
    parts_.is_negative = text[0] == u'-';
    at = 1;
  }
  std::size_t count = digits_at(text, at);
  append_narrowed(parts_.whole, text.substr(std::min(at, text.size()), count));
  const bool may_group = count >= 1 && count <= kDigitsOfGroup && text[at] != u'0';
  at += count;
  bool is_grouped = false;
  while (rules_.grouping != 0 && may_group && at < text.size() && text[at] == rules_.grouping) {
    count = digits_at(text, at + 1);
    if (count != kDigitsOfGroup) return false;
    append_narrowed(parts_.whole, text.substr(at + 1, count));
    at += count + 1;
    is_grouped = true;
  }
  if (at < text.size() && text[at] == rules_.decimal) {
    count = digits_at(text, at + 1);
    if (count == 0 && (parts_.whole.empty() || rules_.decimal != u'.' || is_grouped)) return false;
    append_narrowed(parts_.fraction, text.substr(at + 1, count));
    at += count + 1;
  }
  if (parts_.whole.empty() && parts_.fraction.empty()) return false;
  if (at == text.size()) return true;
  if (!may_have_exponent || is_grouped || rules_.exponents.find(text[at]) == View::npos)
    return false;
  std::size_t first = at + 1;
  if (first < text.size() && (text[first] == u'-' || text[first] == u'+')) ++first;
  count = digits_at(text, first);
  if (count == 0 || count > kMostDigitsOfExponent || first + count != text.size()) return false;
  take_exponent(text.substr(at));
  return true;
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
  bool is_fraction = false;
  for (; at < amount.size(); ++at) {
    if (columns::is_digit(amount[at])) {
      (is_fraction ? parts_.fraction : parts_.whole) +=
          static_cast<char>('0' + columns::digit_value(amount[at]));
    } else if (has_decimal && amount[at] == rules_.decimal) {
      is_fraction = true;
    } else if (!is_mark(amount[at]) || at + 1 == amount.size() ||
               !columns::is_digit(amount[at + 1])) {
      break;
    }
  }
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
  return !parts_.whole.empty() || !parts_.fraction.empty();
}

// --- values --------------------------------------------------------------------------------------

bool NumberParser::slow_integer(View cell, std::int64_t& value) {
  if (!take_apart(cell)) return false;
  if (parts_.whole.empty() || !parts_.fraction.empty() || parts_.has_exponent ||
      parts_.exponent != 0 || parts_.is_infinite || parts_.is_nan) {
    return false;
  }
  // "5." has a decimal mark.
  if (cell.back() == u'.') return false;
  text_.clear();
  if (parts_.is_negative) text_.push_back('-');
  text_.append(parts_.whole);
  std::int64_t read = 0;
  const auto result = std::from_chars(text_.data(), text_.data() + text_.size(), read);
  if (result.ec != std::errc()) return false;
  value = read;
  return true;
}

// How many digits the whole part has after its zeros; less than 0 if the fraction begins with zeros.
int NumberParser::place_of_point() const {
  const std::size_t first = parts_.whole.find_first_not_of('0');
  if (first != std::string::npos) return static_cast<int>(parts_.whole.size() - first);
  return -static_cast<int>(
      std::min(parts_.fraction.find_first_not_of('0'), parts_.fraction.size()));
}

bool NumberParser::slow_real(View cell, double& value) {
  if (!take_apart(cell)) return false;
  double magnitude = 0;
  if (parts_.is_infinite) {
    magnitude = std::numeric_limits<double>::infinity();
  } else if (parts_.is_nan) {
    magnitude = std::numeric_limits<double>::quiet_NaN();
  } else {
    text_.clear();
    text_.append(parts_.whole).push_back('.');
    text_.append(parts_.fraction);
    if (parts_.exponent != 0) text_.append("e").append(std::to_string(parts_.exponent));
    const auto result = std::from_chars(text_.data(), text_.data() + text_.size(), magnitude);
    if (result.ec == std::errc::result_out_of_range) {
      if (place_of_point() + parts_.exponent > 0) return false;  // too large, not too small
      magnitude = 0;
    } else if (!std::isfinite(magnitude)) {
      return false;
    }
  }
  value = parts_.is_negative ? -magnitude : magnitude;
  return true;
}

bool NumberParser::decimal(View cell, std::string& out) {
  if (!take_apart(cell) || parts_.is_infinite || parts_.is_nan) return false;
  return append_moved(out);
}

bool NumberParser::append_moved(std::string& out) const {
  constexpr int kMostMoved = 400;
  if (std::abs(parts_.exponent) > kMostMoved) return false;
  const auto moved = static_cast<std::size_t>(std::abs(parts_.exponent));
  std::string_view whole = parts_.whole;
  std::string_view fraction = parts_.fraction;
  std::string moved_whole;
  std::string moved_fraction;
  if (parts_.exponent > 0) {
    moved_whole = whole;
    moved_whole += fraction.substr(0, moved);
    moved_whole.append(moved - std::min(moved, fraction.size()), '0');
    fraction.remove_prefix(std::min(moved, fraction.size()));
    whole = moved_whole;
  } else if (parts_.exponent < 0) {
    moved_fraction.append(moved - std::min(moved, whole.size()), '0');
    moved_fraction += whole.substr(whole.size() - std::min(moved, whole.size()));
    moved_fraction += fraction;
    whole.remove_suffix(std::min(moved, whole.size()));
    fraction = moved_fraction;
  }
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  if (parts_.is_negative) out += '-';
  if (whole.empty()) out += '0';
  out += whole;
  if (!fraction.empty()) out.append(".").append(fraction);
  return true;
}

}  // namespace textio::reading
