// The order of the tests in `classify_text` matters. A text without a digit is text, so a column of
// "NaN" is not numeric. A number is never tested for being a date.
#include <vltextstream/scoring/datatype_recognizers.hpp>

#include <algorithm>
#include <string_view>

#include <cxxabi.h>

#include <vltextstream/host/datetime.hpp>
#include <vltextstream/strategy/field_text.hpp>

namespace textio {
namespace {

using View = std::u16string_view;

Field field_of(View text) { return {text.data(), text.size()}; }

bool is_digit(char16_t unit) { return unit >= u'0' && unit <= u'9'; }

bool has_unit(View text, std::size_t i, View set) {
  return i < text.size() && contains(set, text[i]);
}

std::size_t skip_digits(View text, std::size_t i) {
  while (i < text.size() && is_digit(text[i])) ++i;
  return i;
}

bool is_nan_or_inf(View three) {
  const auto equals = [three](View name) {
    return std::equal(three.begin(), three.end(), name.begin(), name.end(),
                      [](char16_t a, char16_t b) { return fold_ascii(a) == b; });
  };
  return equals(u"NAN") || equals(u"INF");
}

// The end of the real literal that starts at `start`; 0 if there is none.
std::size_t scan_real(View text, std::size_t start) {
  if (start > text.size()) return 0;
  const std::size_t digits = has_unit(text, start, u"+-") ? start + 1 : start;
  std::size_t i = skip_digits(text, digits);
  if (has_unit(text, i, u".")) i = skip_digits(text, i + 1);

  const View mantissa = text.substr(start, i - start);
  if (std::none_of(mantissa.begin(), mantissa.end(), is_digit)) {
    return is_nan_or_inf(text.substr(digits, 3)) ? digits + 3 : 0;
  }
  if (!has_unit(text, i, u"eEdD")) return i;
  const std::size_t exponent = has_unit(text, i + 1, u"+-") ? i + 2 : i + 1;
  const std::size_t end = skip_digits(text, exponent);
  return end > exponent ? end : i;
}

std::size_t split_complex(View text) {
  const std::size_t n = text.size();
  if (n == 0 || !contains(u"ij", text.back())) return n;
  const std::size_t real_end = scan_real(text, 0);
  if (real_end == n - 1) return 0;
  // The code unit between the parts is normally a sign, but any code unit is skipped.
  return scan_real(text, real_end + 1) == n - 1 ? real_end : n;
}

// A clock value of two groups, "hh:mm". is_duration needs three groups.
bool is_hours_and_minutes(View text) {
  return text.size() == 5 && is_digit(text[0]) && is_digit(text[1]) && text[2] == u':' &&
         is_digit(text[3]) && is_digit(text[4]);
}

// A date and a clock value with spaces between them, in either order.
bool is_date_and_clock(View text) {
  const std::size_t space = std::min(text.find(u' '), text.size());
  const Field head = field_of(text.substr(0, space));
  const Field tail =
      field_of(text.substr(std::min(text.find_first_not_of(u' ', space), text.size())));
  if (is_duration(head) && safe_is_datetime(tail)) return true;
  return is_duration(tail) && safe_is_datetime(head);
}

DatatypeCode classify_text(View text) {
  const Field field = field_of(text);
  if (text.empty()) return DatatypeCode::empty;
  if (std::none_of(text.begin(), text.end(), is_digit)) return DatatypeCode::text;
  if (is_number(field)) return DatatypeCode::number;
  if (is_duration(field) || is_hours_and_minutes(text)) return DatatypeCode::duration;
  if (safe_is_datetime(field)) {
    return contains(text, u':') ? DatatypeCode::datetime : DatatypeCode::date;
  }
  return is_date_and_clock(text) ? DatatypeCode::datetime : DatatypeCode::text;
}

void trim(Field& field, View whitespace) {
  while (field.length > 0 && contains(whitespace, field.data[0])) {
    ++field.data;
    --field.length;
  }
  while (field.length > 0 && contains(whitespace, field.data[field.length - 1])) --field.length;
}

void reduce_to_value(MutableField& field, const std::u16string& whitespace) {
  trim(field, whitespace);
  unquote(field, whitespace);
  trim(field, whitespace);
}

// Replaces doubled quotes from `i` on by single ones and removes the first quote that is not
// doubled. Without such a quote the last code unit is removed, as if it were the closing quote. One
// pass, in place.
void drop_closing_quote(MutableField& field, std::size_t i) {
  char16_t* const units = field.own_storage();
  const std::size_t n = field.length;
  std::size_t kept = i;
  while (i < n) {
    if (units[i] != u'"') {
      units[kept++] = units[i++];
    } else if (i + 1 < n && units[i + 1] == u'"') {
      units[kept++] = u'"';
      i += 2;
    } else {
      field.length =
          static_cast<std::size_t>(std::copy(units + i + 1, units + n, units + kept) - units);
      return;
    }
  }
  field.length = kept > 0 ? kept - 1 : 0;
}

}  // namespace

bool is_number(const Field& field) {
  const View text = view_of(field);
  const std::size_t n = text.size();
  const std::size_t split = split_complex(text);
  if (split == n) return scan_real(text, 0) == n;
  return split == 0 || scan_real(text, split + 1) == n - 1;
}

std::size_t split_complex(const Field& field) { return split_complex(view_of(field)); }

bool is_duration(const Field& field) {
  const View text = view_of(field);
  std::size_t i = skip_digits(text, 0);
  if (!has_unit(text, i, u":")) return false;
  i = skip_digits(text, i + 1);
  if (!has_unit(text, i, u":")) return false;
  i = skip_digits(text, i + 1);
  if (has_unit(text, i, u".")) i = skip_digits(text, i + 1);
  return i == text.size();
}

void unquote(MutableField& field, const std::u16string& whitespace) {
  const std::size_t open = find_first_not_of(field, 0, whitespace);
  if (open >= field.length || field.data[open] != u'"') return;

  // The copy, which can fail, comes first: if it fails, the field is unchanged.
  const std::size_t close = view_of(field).find(u'"', open + 1);
  const bool closes_inside = close != View::npos && close + 1 < field.length;
  if (open > 0 || closes_inside) field.own_storage();

  if (open == 0) {
    ++field.data;
  } else {
    char16_t* const units = field.own_storage();
    std::copy(units + open + 1, units + field.length, units + open);
  }
  --field.length;

  if (closes_inside) {
    drop_closing_quote(field, close - 1);
  } else if (field.length > 0) {
    --field.length;
  }
}

bool safe_is_datetime(const Field& text) {
  try {
    return datetime::is_datetime(text);
  } catch (abi::__forced_unwind&) {
    throw;
  } catch (...) {
    return false;
  }
}

DatatypeCode classify_field(const Field& raw, const std::u16string& whitespace) {
  MutableField field(raw);
  reduce_to_value(field, whitespace);
  return classify_text(view_of(field));
}

std::u16string value_text(const Field& raw, const std::u16string& whitespace) {
  MutableField field(raw);
  reduce_to_value(field, whitespace);
  return std::u16string(view_of(field));
}

}  // namespace textio
