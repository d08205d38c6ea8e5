// Whole numbers in a small range have a bar each, and in a larger one each bar has as many of them: bars for 1 and for 2
// in turn would look like a pattern of the data. Otherwise there are as many bars as fit, of the same width.
#include "tool/html/column_values.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <set>

#include "tool/writing/value_text.hpp"

namespace textio::tool {
namespace {

using reading::Column;
using reading::ColumnType;

// Nothing for what has no place on a scale.
std::optional<double> number_at(const Column& column, std::size_t row) {
  switch (column.type) {
    case ColumnType::integer:
    case ColumnType::time:
    case ColumnType::date_time:
    case ColumnType::duration:
      return static_cast<double>(column.integers[row]);
    case ColumnType::real:
      if (!std::isfinite(column.reals[row])) return std::nullopt;
      return column.reals[row];
    case ColumnType::date:
      return column.days[row];
    case ColumnType::decimal:
    case ColumnType::boolean:
    case ColumnType::text:
    case ColumnType::category:
      break;
  }
  return std::nullopt;
}

// A range in which the bars of whole numbers differ; in a larger one the steps are too fine to matter.
constexpr double kLargestWhole = 1e6;

bool counts_whole_steps(ColumnType type) {
  return type == ColumnType::integer || type == ColumnType::date;
}

std::string text_at(const Column& column, std::size_t row) {
  std::string text;
  append_value(text, column, row);
  return text;
}

struct PlacedRow {
  double number = 0;
  std::size_t row = 0;
};

// How many numbers have a bar of whole numbers.
double whole_step(double least, double most) {
  return std::floor((most - least) / static_cast<double>(kMostBars)) + 1;
}

std::vector<std::size_t> bars_of(const std::vector<PlacedRow>& ascending, ColumnType type) {
  const double least = ascending.front().number;
  const double most = ascending.back().number;
  const bool is_whole = counts_whole_steps(type) && most - least < kLargestWhole;
  const double step = whole_step(least, most);
  const std::size_t num_bars =
      is_whole ? static_cast<std::size_t>((most - least) / step) + 1 : kMostBars;
  std::vector<std::size_t> bars(num_bars, 0);
  for (const PlacedRow& each : ascending) {
    // Halves, since the distance of two large numbers may be more than a double can hold.
    const double share = (each.number / 2 - least / 2) / (most / 2 - least / 2);
    const double place =
        is_whole ? (each.number - least) / step : share * static_cast<double>(num_bars);
    ++bars[std::min(static_cast<std::size_t>(place), num_bars - 1)];
  }
  return bars;
}

void add_bars(const Column& column, std::vector<PlacedRow> rows, ColumnValues& values) {
  std::stable_sort(rows.begin(), rows.end(),
                   [](const PlacedRow& a, const PlacedRow& b) { return a.number < b.number; });
  values.bars = bars_of(rows, column.type);
  values.least = text_at(column, rows.front().row);
  values.middle = text_at(column, rows[(rows.size() - 1) / 2].row);
  values.most = text_at(column, rows.back().row);
}

std::vector<FrequentValue> most_frequent(const std::vector<std::string>& texts) {
  std::map<std::string_view, std::size_t> places;
  std::vector<FrequentValue> found;
  for (const std::string& text : texts) {
    const auto [entry, is_new] = places.emplace(text, found.size());
    if (is_new) found.push_back({text, 0});
    ++found[entry->second].count;
  }
  std::stable_sort(found.begin(), found.end(), [](const FrequentValue& a, const FrequentValue& b) {
    return a.count > b.count;
  });
  found.resize(std::min(found.size(), kMostFrequent));
  return found;
}

}  // namespace

ColumnValues values_of(const Column& column, std::size_t num_rows) {
  ColumnValues values;
  values.num_rows = std::min(num_rows, column.size);
  std::vector<PlacedRow> placed;
  std::vector<std::string> texts;
  for (std::size_t row = 0; row < values.num_rows; ++row) {
    if (column.is_missing(row)) {
      ++values.num_missing;
      continue;
    }
    texts.push_back(text_at(column, row));
    if (const std::optional<double> number = number_at(column, row))
      placed.push_back({*number, row});
  }
  values.num_different = std::set<std::string>(texts.begin(), texts.end()).size();
  const auto [least, most] = std::minmax_element(
      placed.begin(), placed.end(),
      [](const PlacedRow& a, const PlacedRow& b) { return a.number < b.number; });
  if (least != most && least->number < most->number) {
    add_bars(column, std::move(placed), values);
  } else {
    values.frequent = most_frequent(texts);
  }
  return values;
}

}  // namespace textio::tool
