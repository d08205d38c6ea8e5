#include "tool/writing/value_text.hpp"

#include <array>
#include <charconv>
#include <cmath>

namespace textio::tool {
namespace {

using reading::Column;
using reading::ColumnType;

constexpr std::int64_t kSecond = 1'000'000;
constexpr std::int64_t kMinute = 60 * kSecond;
constexpr std::int64_t kHour = 60 * kMinute;
constexpr std::int64_t kDay = 24 * kHour;

// With zeros before it up to `least_digits`.
void append_padded(std::string& out, std::uint64_t number, std::size_t least_digits) {
  std::array<char, 20> digits{};
  char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  const auto count = static_cast<std::size_t>(end - digits.begin());
  if (count < least_digits) out.append(least_digits - count, '0');
  out.append(digits.data(), count);
}

// The largest multiple of `unit` up to `number`, divided by it.
std::int64_t floor_of(std::int64_t number, std::int64_t unit) {
  return number / unit - (number % unit < 0 ? 1 : 0);
}

// Also of the least number.
std::uint64_t magnitude_of(std::int64_t number) {
  const auto bits = static_cast<std::uint64_t>(number);
  return number < 0 ? 0 - bits : bits;
}

void append_fraction(std::string& out, std::uint64_t microseconds) {
  if (microseconds == 0) return;
  out += '.';
  append_padded(out, microseconds, 6);
  out.resize(out.find_last_not_of('0') + 1);
}

// From the first of March on, so that leap days end a year: 146,097 days are 400 years.
void append_civil_date(std::string& out, std::int64_t days) {
  constexpr std::int64_t kEra = 146'097;
  const std::int64_t shifted = days + 719'468;  // since 0000-03-01
  const std::int64_t era = floor_of(shifted, kEra);
  const std::int64_t day_of_era = shifted - era * kEra;
  const std::int64_t year_of_era =
      (day_of_era - day_of_era / 1460 + day_of_era / 36'524 - day_of_era / 146'096) / 365;
  const std::int64_t day_of_year =
      day_of_era - (365 * year_of_era + year_of_era / 4 - year_of_era / 100);
  const std::int64_t month_from_march = (5 * day_of_year + 2) / 153;
  const std::int64_t day = day_of_year - (153 * month_from_march + 2) / 5 + 1;
  const std::int64_t month = month_from_march < 10 ? month_from_march + 3 : month_from_march - 9;
  const std::int64_t year = era * 400 + year_of_era + (month <= 2 ? 1 : 0);
  if (year < 0) out += '-';
  if (year > 9999) out += '+';
  append_padded(out, magnitude_of(year), 4);
  out += '-';
  append_padded(out, static_cast<std::uint64_t>(month), 2);
  out += '-';
  append_padded(out, static_cast<std::uint64_t>(day), 2);
}

void append_clock(std::string& out, std::uint64_t microseconds) {
  append_padded(out, microseconds / kHour, 2);
  out += ':';
  append_padded(out, microseconds / kMinute % 60, 2);
  out += ':';
  append_padded(out, microseconds / kSecond % 60, 2);
  append_fraction(out, microseconds % kSecond);
}

}  // namespace

void append_integer(std::string& out, std::int64_t number) {
  std::array<char, 24> digits{};
  char* const end = std::to_chars(digits.begin(), digits.end(), number).ptr;
  out.append(digits.data(), end);
}

void append_real(std::string& out, double number) {
  if (std::isnan(number)) {
    out += "NaN";
    return;
  }
  if (std::isinf(number)) {
    out += number < 0 ? "-Inf" : "Inf";
    return;
  }
  const double size = std::abs(number);
  const bool is_plain = size == 0 || (size >= 1e-5 && size < 1e16);
  const auto format = is_plain ? std::chars_format::fixed : std::chars_format::scientific;
  std::array<char, 48> digits{};
  char* const end = std::to_chars(digits.begin(), digits.end(), number, format).ptr;
  out.append(digits.data(), end);
}

void append_date(std::string& out, std::int64_t days) { append_civil_date(out, days); }

void append_time(std::string& out, std::int64_t microseconds) {
  if (microseconds < 0) out += '-';
  append_clock(out, magnitude_of(microseconds));
}

void append_date_time(std::string& out, std::int64_t microseconds, bool is_utc) {
  const std::int64_t days = floor_of(microseconds, kDay);
  append_civil_date(out, days);
  out += 'T';
  const std::int64_t rest = microseconds % kDay;
  append_clock(out, static_cast<std::uint64_t>(rest < 0 ? rest + kDay : rest));
  if (is_utc) out += 'Z';
}

void append_duration(std::string& out, std::int64_t microseconds) {
  if (microseconds < 0) out += '-';
  out += "PT";
  const std::uint64_t size = magnitude_of(microseconds);
  const std::uint64_t hours = size / kHour;
  const std::uint64_t minutes = size / kMinute % 60;
  const std::uint64_t rest = size % kMinute;
  if (hours > 0) {
    append_padded(out, hours, 1);
    out += 'H';
  }
  if (minutes > 0) {
    append_padded(out, minutes, 1);
    out += 'M';
  }
  if (rest == 0 && size > 0) return;
  append_padded(out, rest / kSecond, 1);
  append_fraction(out, rest % kSecond);
  out += 'S';
}

void append_value(std::string& out, const Column& column, std::size_t row) {
  switch (column.type) {
    case ColumnType::integer:
      return append_integer(out, column.integers[row]);
    case ColumnType::real:
      return append_real(out, column.reals[row]);
    case ColumnType::boolean:
      out += column.boolean_at(row) ? "true" : "false";
      return;
    case ColumnType::date:
      return append_date(out, column.days[row]);
    case ColumnType::time:
      return append_time(out, column.integers[row]);
    case ColumnType::date_time:
      return append_date_time(out, column.integers[row], column.is_utc);
    case ColumnType::duration:
      return append_duration(out, column.integers[row]);
    case ColumnType::decimal:
    case ColumnType::text:
    case ColumnType::category:
      break;
  }
  out += column.text_at(row);
}

}  // namespace textio::tool
