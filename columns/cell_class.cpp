// kind_of() gives the coarse kind. Only a cell that it takes for text is then tried as a word for
// true or false, a date in another language, an amount with a dash for the cents, or a telephone
// number.
#include <vltextstream/columns/cell_class.hpp>

#include <algorithm>
#include <iterator>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/columns/boolean_words.hpp>
#include <vltextstream/columns/characters.hpp>
#include <vltextstream/columns/date_cell.hpp>
#include <vltextstream/columns/identifiers.hpp>
#include <vltextstream/columns/missing_words.hpp>
#include <vltextstream/columns/money_format.hpp>
#include <vltextstream/columns/number_format.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;
using assessment::CellKind;

CellClass class_if(bool holds, CellClass value, CellClass other) { return holds ? value : other; }

CellClass class_of_integer(View cell) {
  if (is_compact_date(cell)) return CellClass::compact_date;
  const bool is_phone = cell.front() == u'+' && is_phone_like(cell);
  return class_if(is_phone, CellClass::phone, CellClass::number);
}

CellClass class_of_scientific(View cell, View exponents) {
  const char16_t exponent = shape_of_number(cell).exponent;
  return class_if(exponents.find(exponent) != View::npos, CellClass::number, CellClass::text);
}

CellClass class_of_time(View cell) {
  const auto clock = read_date(cell);
  const bool is_elapsed = clock && clock->kind == ColumnKind::duration;
  return class_if(is_elapsed, CellClass::elapsed_clock, CellClass::time);
}

bool has_only_digits(View text) { return std::all_of(text.begin(), text.end(), is_digit); }

bool has_digit(View cell) { return std::any_of(cell.begin(), cell.end(), is_digit); }

// "36:15", with two to four digits before the colon.
bool is_long_clock(View cell) {
  constexpr std::size_t kMostDigits = 4;
  const std::size_t colon = cell.find(u':');
  if (colon < 2 || colon > kMostDigits || colon + 3 != cell.size()) return false;
  const View minutes = cell.substr(colon + 1);
  const View hours = cell.substr(0, colon);
  return has_only_digits(hours) && has_only_digits(minutes) && digit_value(minutes[0]) <= 5;
}

// "5h", "30 min".
bool is_one_duration(View cell) {
  constexpr View kUnits[] = {u"d", u"h", u"m", u"min", u"s", u"sec", u"ms"};
  const auto* const unit = std::find_if_not(cell.begin(), cell.end(), is_digit);
  const auto digits = static_cast<std::size_t>(unit - cell.begin());
  if (digits == 0) return false;
  View rest = cell.substr(digits);
  if (!rest.empty() && rest.front() == u' ') rest.remove_prefix(1);
  return std::find(std::begin(kUnits), std::end(kUnits), rest) != std::end(kUnits);
}

CellClass class_of_text(View cell, CellKind kind) {
  if (is_boolean_word(cell)) return CellClass::boolean;
  if (kind == CellKind::word || !has_digit(cell)) return CellClass::text;
  if (is_money(cell, kind)) return CellClass::money;
  if (is_phone_like(cell)) return CellClass::phone;
  if (is_long_clock(cell)) return CellClass::long_clock;
  if (is_one_duration(cell)) return CellClass::one_duration;
  const auto date = read_date(cell);
  if (date && date->kind == ColumnKind::duration) return CellClass::elapsed_clock;
  if (!date || !is_surely_date(*date, cell)) return CellClass::text;
  return class_if(date->kind == ColumnKind::date, CellClass::date, CellClass::date_time);
}

CellClass class_of_kind(View cell, CellKind kind, const CellRules& rules) {
  switch (kind) {
    case CellKind::integer:
      return class_of_integer(cell);
    case CellKind::decimal:
      return class_if(is_money(cell, kind), CellClass::money, CellClass::number);
    case CellKind::scientific:
      return class_of_scientific(cell, rules.exponents);
    case CellKind::complex:
      return CellClass::complex;
    case CellKind::percentage:
      return CellClass::percentage;
    case CellKind::money:
      return CellClass::money;
    case CellKind::boolean:
      return CellClass::boolean;
    case CellKind::date:
      return CellClass::date;
    case CellKind::time:
      return class_of_time(cell);
    case CellKind::date_time:
      return CellClass::date_time;
    case CellKind::duration:
      return class_if(cell.find(u':') != View::npos, CellClass::elapsed_clock, CellClass::duration);
    case CellKind::uuid:
      return CellClass::uuid;
    case CellKind::url:
      return CellClass::url;
    case CellKind::email:
      return CellClass::email;
    case CellKind::ip:
      return CellClass::ip;
    default:
      return class_of_text(cell, kind);
  }
}

}  // namespace

CellClass class_of_cell(View cell, const CellRules& rules) {
  return class_of_cell(cell, assessment::kind_of(cell), rules);
}

CellClass class_of_cell(View cell, CellKind kind, const CellRules& rules) {
  if (cell.empty()) return CellClass::empty;
  const bool is_given =
      std::find(rules.missing.begin(), rules.missing.end(), cell) != rules.missing.end();
  if (is_given) return CellClass::given_missing;
  if (kind == CellKind::empty) return CellClass::empty;
  if (is_missing_word(cell, kind)) return CellClass::missing;
  return class_of_kind(cell, kind, rules);
}

}  // namespace textio::columns
