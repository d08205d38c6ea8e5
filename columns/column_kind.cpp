#include <vltextstream/columns/column_kind.hpp>

#include <iterator>

namespace textio::columns {

std::string_view to_string(ColumnKind kind) noexcept {
  constexpr std::string_view kNames[] = {"empty",
                                         "integer",
                                         "decimal",
                                         "scientific",
                                         "complex",
                                         "percentage",
                                         "money",
                                         "boolean",
                                         "date",
                                         "time",
                                         "date-time",
                                         "duration",
                                         "epoch-seconds",
                                         "epoch-milliseconds",
                                         "identifier",
                                         "uuid",
                                         "url",
                                         "email",
                                         "ip",
                                         "category",
                                         "text"};
  static_assert(std::size(kNames) == kColumnKinds);
  return kNames[static_cast<std::size_t>(kind)];
}

bool is_plain_number(ColumnKind kind) noexcept {
  return kind == ColumnKind::integer || kind == ColumnKind::decimal ||
         kind == ColumnKind::scientific;
}

bool is_text(ColumnKind kind) noexcept {
  return kind == ColumnKind::category || kind == ColumnKind::text;
}

}  // namespace textio::columns
