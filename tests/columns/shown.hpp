// How failure messages show kinds and formats of columns.
#pragma once

#include <ostream>
#include <string>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/columns/date_format.hpp>
#include <vltextstream/columns/money_format.hpp>
#include <vltextstream/columns/number_format.hpp>

#include "support/printing.hpp"

namespace textio::columns {

inline std::ostream& operator<<(std::ostream& out, ColumnKind kind) {
  return out << to_string(kind);
}

inline std::ostream& operator<<(std::ostream& out, const NumberFormat& format) {
  const auto shown = [](char16_t mark) {
    return mark == 0 ? "none" : testing_support::readable(std::u16string(1, mark));
  };
  return out << "decimal " << shown(format.decimal) << ", grouping " << shown(format.grouping)
             << ", exponent " << shown(format.exponent)
             << (format.is_certain ? ", certain" : ", uncertain");
}

inline std::ostream& operator<<(std::ostream& out, const MoneyFormat& format) {
  const char* const places[] = {"none", "before", "after"};
  return out << '\'' << testing_support::readable(format.currency) << "' "
             << places[static_cast<std::size_t>(format.place)];
}

inline std::ostream& operator<<(std::ostream& out, const DateFormat& format) {
  return out << "strptime '" << format.strptime << "', icu '" << format.icu << "', language '"
             << format.language << "', zone '" << format.zone
             << (format.zones_differ ? "', zones differ, " : "', ") << to_string(format.order);
}

}  // namespace textio::columns
