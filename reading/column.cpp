#include <vltextstream/reading/column.hpp>

#include <iterator>

namespace textio::reading {

std::string_view to_string(ColumnType type) noexcept {
  constexpr std::string_view kNames[] = {"integer", "real",      "decimal",  "boolean", "date",
                                         "time",    "date-time", "duration", "text",    "category"};
  static_assert(std::size(kNames) == static_cast<std::size_t>(ColumnType::category) + 1);
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kNames) ? kNames[index] : std::string_view();
}

}  // namespace textio::reading
