// MoneyFormat: the currency of the amounts in a column.
//
//   parts_of_money(u"- EUR 1.234,50").currency   // u"EUR"
//   parts_of_money(u"- EUR 1.234,50").is_before  // true
//   is_money(u"1'200.-", CellKind::code)         // true
//
// Ownership  parts are views of the text.
// Errors     nothing throws but std::bad_alloc.
// Cost       linear in the text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <vltextstream/assessment/cell_kind.hpp>

namespace textio::columns {

enum class CurrencyPlace { none, before, after };  // none: no cell has one, or they differ

struct MoneyFormat {
  std::u16string currency;  // sign, code or name: "$", "EUR", "kr"; empty if the cells differ
  CurrencyPlace place = CurrencyPlace::none;

  friend bool operator==(const MoneyFormat&, const MoneyFormat&) = default;
};

struct MoneyParts {
  std::u16string_view currency;  // empty in "5.-"
  std::u16string_view amount;    // from the first digit to the last
  bool is_before = false;
};

// Whether a cell is an amount of money: one of the kind money, also with a dash for the cents, and
// an integer with such a dash. `kind` is that of the whole cell.
bool is_money(std::u16string_view text, assessment::CellKind kind);

// Of a cell that is money.
MoneyParts parts_of_money(std::u16string_view text);

// What all cells have in common.
class MoneyVotes {
 public:
  void add(const MoneyParts& parts);
  MoneyFormat format() const;

 private:
  std::u16string currency_;
  bool differs_ = false;
  std::size_t before_ = 0;
  std::size_t after_ = 0;
};

}  // namespace textio::columns
