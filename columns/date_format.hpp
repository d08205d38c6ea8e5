// DateFormat: how the dates or times of a column are written.
//
//   DateVotes votes;
//   votes.add(*read_date(u"31/01/2024 15:04"));
//   votes.settle({});
//   votes.format();   // strptime "%d/%m/%Y %H:%M", icu "dd/MM/yyyy HH:mm", order day_first
//
// Errors  nothing throws but std::bad_alloc.
// Cost    linear in the number of parts of each cell; eight ways to write dates are told apart.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/columns/date_cell.hpp>
#include <vltextstream/columns/date_order.hpp>

namespace textio::columns {

struct DateFormat {
  // A pattern each, empty if none fits all cells but a few odd ones. %f is a fraction of a second,
  // as in Python; C has none. Ambiguous dates have the patterns of the day first. A zone such as
  // CET that few readers know is in the pattern as it is written.
  std::string strptime;
  std::string icu;

  // The language of the names in it, "en" or another; empty without names.
  std::string language;

  // The zone as written: "Z", "+01:00", "CET"; empty if there is none or the cells differ.
  std::string zone;
  bool zones_differ = false;

  DateOrder order = DateOrder::none;

  friend bool operator==(const DateFormat&, const DateFormat&) = default;
};

// What is known of the order before the cells are seen; none: nothing.
struct OrderHints {
  DateOrder order = DateOrder::none;
  bool is_given = false;  // by the caller: no cell overrules it
};

class DateVotes {
 public:
  // Cells with the same parts vote together. One that has no pattern, or is a ninth way to write a
  // date, only counts.
  void add(const DateCell& cell);
  void add_without_parts() { ++count_; }

  // To be called once, after all cells were added.
  void settle(const OrderHints& hints);

  // Whether a cell that was added can be read with the format, as a day of the calendar. Without a
  // pattern for all, each cell is.
  bool fits(const DateCell& cell) const;
  bool fits_without_parts() const { return !has_pattern_; }

  DateFormat format() const;

  // Of the commonest way to write them: date, time or date_time.
  ColumnKind kind() const { return style_.sample.kind; }

 private:
  // From `first` to `three`.
  static constexpr std::size_t kUnknownUnits = 5;

  // One way to write a date, and what its cells have in common.
  struct Style {
    DateCell sample;
    std::size_t count = 0;
    std::uint32_t short_parts = 0;  // bit i: part i has one digit in some cell
    std::u16string zone;
    bool zones_differ = false;
    bool are_zones_universal = true;  // "UTC" or "GMT"
    bool are_zones_known = true;      // to ICU, in English
    bool month_point_differs = false;
    bool weekday_point_differs = false;
    bool one_differs = false;  // whether the part `one`, or `three`, is not the same everywhere
    bool three_differs = false;
    std::size_t one_is_year = 0;  // cells in which `one` can be nothing but a year
    std::size_t three_is_year = 0;
    std::array<std::size_t, kUnknownUnits> no_month{};  // cells in which the part is above 12
    std::uint8_t most_digits_of_fraction = 0;
  };

  class PatternWriter;

  static bool joins(const Style& style, const DateCell& cell);
  static void merge(Style& style, const DateCell& cell);
  static void count_numbers(Style& style, const DateCell& cell);
  bool is_year_first(const OrderHints& hints) const;
  DateOrder order_of_pair(const OrderHints& hints) const;
  DateUnit known_unit(DateUnit unit) const;
  int known_value(const DateCell& cell, DateUnit unit) const;
  std::string_view strptime_zone() const;
  std::string_view icu_zone(std::string_view language) const;

  std::vector<Style> styles_;
  std::size_t count_ = 0;
  bool has_pattern_ = false;
  Style style_;  // the commonest
  bool starts_with_year_ = false;
  bool is_day_before_month_ = true;
  DateOrder order_ = DateOrder::none;
};

}  // namespace textio::columns
