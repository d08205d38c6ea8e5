#include "tool/account_text.hpp"

#include <cstdint>
#include <string_view>

#include <fmt/format.h>

#include "tool/grouped.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

using reading::Account;
using reading::LineFate;
using reading::Oddity;
using reading::OddPlace;

struct FateWords {
  LineFate fate;
  std::string_view one;
  std::string_view many;
};

// In the order in which they are said, after the rows.
constexpr FateWords kFates[] = {
    {LineFate::names, "of names", "of names"},
    {LineFate::units, "of units", "of units"},
    {LineFate::descriptions, "of descriptions", "of descriptions"},
    {LineFate::preamble, "preamble", "preamble"},
    {LineFate::blank, "blank", "blank"},
    {LineFate::comment, "comment", "comments"},
    {LineFate::rule, "drawn", "drawn"},
    {LineFate::footer, "footer", "footer"},
    {LineFate::omitted, "left out by a rule", "left out by a rule"},
    {LineFate::failed, "failed", "failed"},
};

struct OddityWords {
  Oddity oddity;
  std::string_view one;
  std::string_view many;
};
constexpr OddityWords kOddities[] = {
    {Oddity::misfit, "cell did not fit", "cells did not fit"},
    {Oddity::short_row, "row was short", "rows were short"},
    {Oddity::long_row, "row was long", "rows were long"},
    {Oddity::ill_formed, "cell was ill-formed", "cells were ill-formed"},
};

std::string counted(std::uint64_t count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", grouped(count), count == 1 ? one : many);
}

// A row may take several lines.
std::string rows_text(const Account& account) {
  const std::uint64_t lines = account.lines_of(LineFate::data);
  const std::string rows = counted(account.num_rows, "row", "rows");
  return lines == account.num_rows ? rows : fmt::format("{} of data ({})", grouped(lines), rows);
}

std::string first_of(const std::optional<OddPlace>& place, const std::vector<std::string>& names) {
  return place ? fmt::format(" (first: {})", place_text(*place, names)) : std::string();
}

}  // namespace

std::string place_text(const OddPlace& place, const std::vector<std::string>& names) {
  std::string text = fmt::format("line {}", grouped(place.line));
  if (place.column > 0) {
    const bool has_name = place.column <= names.size();
    text += ", column " + (has_name ? shortened(printable(names[place.column - 1]))
                                    : std::to_string(place.column));
  }
  return text + ", \"" + printable(place.text) + '"';
}

std::string account_text(const Converted& converted) {
  const Account& account = converted.account;
  std::string text = counted(account.num_lines, "line", "lines") + ": " + rows_text(account);
  for (const FateWords& words : kFates) {
    const std::uint64_t lines = account.lines_of(words.fate);
    if (lines > 0) text += ", " + counted(lines, words.one, words.many);
  }
  for (const OddityWords& words : kOddities) {
    const std::uint64_t count = account.count_of(words.oddity);
    if (count == 0) continue;
    text += "; " + counted(count, words.one, words.many) +
            first_of(first_place(account, words.oddity), converted.names);
  }
  if (converted.num_widened > 0) {
    text += "; " + counted(converted.num_widened, "column was widened", "columns were widened") +
            first_of(converted.first_widened, converted.names);
  }
  return text;
}

}  // namespace textio::tool
