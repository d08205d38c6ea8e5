// kind_of() recognises the currencies. What is left here is to take the cell apart: the currency is
// what is before or after the digits, without signs, parentheses and blanks.
#include <vltextstream/columns/money_format.hpp>

#include <algorithm>

#include <vltextstream/columns/characters.hpp>

namespace textio::columns {
namespace {

using View = std::u16string_view;
using assessment::CellKind;

// ".-", ",-", ".--" and the like at the end, in place of the cents.
View without_dash_for_cents(View text) {
  const auto is_dash = [](char16_t unit) {
    return unit == u'-' || unit == 0x2013 || unit == 0x2014;
  };
  View rest = text;
  std::size_t dashes = 0;
  for (; !rest.empty() && is_dash(rest.back()) && dashes < 2; ++dashes) rest.remove_suffix(1);
  const bool has_mark = !rest.empty() && (rest.back() == u'.' || rest.back() == u',');
  if (dashes == 0 || !has_mark) return text;
  rest.remove_suffix(1);
  return rest;
}

bool is_around_currency(char16_t unit) {
  return is_any_blank(unit) || is_sign(unit) || unit == u'(' || unit == u')';
}

View currency_in(View text) {
  while (!text.empty() && is_around_currency(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_around_currency(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace

bool is_money(View text, CellKind kind) {
  if (kind == CellKind::money) return true;
  if (!assessment::is_text(kind) && kind != CellKind::decimal) return false;
  const View rest = without_dash_for_cents(text);
  if (rest.size() == text.size()) return false;
  const CellKind amount = assessment::kind_of(rest);
  return amount == CellKind::money || amount == CellKind::integer;
}

MoneyParts parts_of_money(View text) {
  text = without_dash_for_cents(text);
  const std::size_t begin =
      static_cast<std::size_t>(std::find_if(text.begin(), text.end(), is_digit) - text.begin());
  std::size_t end = text.size();
  while (end > begin && !is_digit(text[end - 1])) --end;
  const View before = currency_in(text.substr(0, begin));
  const View amount = text.substr(begin, end - begin);
  if (!before.empty()) return {before, amount, true};
  return {currency_in(text.substr(end)), amount, false};
}

void MoneyVotes::add(const MoneyParts& parts) {
  if (parts.currency.empty()) return;
  if (before_ + after_ == 0) currency_ = parts.currency;
  differs_ = differs_ || currency_ != parts.currency;
  ++(parts.is_before ? before_ : after_);
}

MoneyFormat MoneyVotes::format() const {
  MoneyFormat format;
  if (!differs_) format.currency = currency_;
  if (before_ > 0 && after_ == 0) format.place = CurrencyPlace::before;
  if (after_ > 0 && before_ == 0) format.place = CurrencyPlace::after;
  return format;
}

}  // namespace textio::columns
