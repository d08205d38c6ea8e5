// Random columns of each kind, written in random formats: the kind and the format are found again.
#include <vltextstream/columns/column_description.hpp>

#include <cstddef>
#include <cstdio>
#include <functional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "columns/shown.hpp"
#include "support/column_cells.hpp"

namespace textio::columns {
namespace {

using testing_support::ExactCells;
using Cells = std::vector<std::u16string>;

std::u16string wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

int below(int bound) { return *rc::gen::inRange(0, bound); }

std::u16string any_of(const std::vector<std::u16string>& texts) {
  return *rc::gen::elementOf(texts);
}

Cells cells_of(const std::function<std::u16string()>& cell, int least = 8, int most = 60) {
  Cells cells(static_cast<std::size_t>(*rc::gen::inRange(least, most)));
  for (std::u16string& each : cells) each = cell();
  return cells;
}

ColumnDescription describe(const Cells& cells, const ColumnHints& hints = {}) {
  return describe_column(ExactCells(cells).views(), hints);
}

// --- numbers -----------------------------------------------------------------------------------

struct Marks {
  char16_t decimal;
  std::u16string grouping;
};

Marks random_marks() {
  const std::vector<std::u16string> with_point = {u"", u",", u" ", u"'", u"\u00A0", u"\u2019"};
  const std::vector<std::u16string> with_comma = {u"", u".", u" ", u"'", u"\u202F", u"\u2009"};
  return *rc::gen::arbitrary<bool>() ? Marks{u'.', any_of(with_point)}
                                     : Marks{u',', any_of(with_comma)};
}

// An amount with two decimals. Those from a million on have two groups.
std::u16string amount_in(const Marks& marks, int whole, int cents) {
  std::string digits = std::to_string(whole);
  std::u16string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    const std::size_t left = digits.size() - i;
    if (i > 0 && left % 3 == 0) text += marks.grouping;
    text += static_cast<char16_t>(digits[i]);
  }
  text += marks.decimal;
  text += static_cast<char16_t>(u'0' + cents / 10);
  return text + static_cast<char16_t>(u'0' + cents % 10);
}

Cells amounts_in(const Marks& marks) {
  Cells cells = cells_of([&] { return amount_in(marks, below(2000000), below(100)); });
  cells.push_back(amount_in(marks, 1234567, 50));
  return cells;
}

void require_marks(const ColumnDescription& column, const Marks& marks) {
  RC_ASSERT(column.number.decimal == marks.decimal);
  const char16_t grouping = marks.grouping.empty() ? u'\0' : marks.grouping[0];
  RC_ASSERT(column.number.grouping == grouping);
  RC_ASSERT(column.number.is_certain);
  RC_ASSERT(column.num_fitting == column.num_cells);
}

TEST(RandomColumn, OfAmountsHasTheirMarks) {
  EXPECT_TRUE(rc::check([] {
    const Marks marks = random_marks();
    const ColumnDescription column = describe(amounts_in(marks));
    RC_ASSERT(column.kind == ColumnKind::decimal);
    require_marks(column, marks);
  }));
}

TEST(RandomColumn, OfPercentagesHasTheirMarks) {
  EXPECT_TRUE(rc::check([] {
    const Marks marks = random_marks();
    const std::u16string sign = any_of({u"%", u" %", u"\u00A0%"});
    Cells cells = amounts_in(marks);
    for (std::u16string& cell : cells) cell += sign;
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == ColumnKind::percentage);
    require_marks(column, marks);
  }));
}

TEST(RandomColumn, OfMoneyHasItsCurrency) {
  EXPECT_TRUE(rc::check([] {
    const Marks marks = random_marks();
    const std::u16string currency = any_of({u"$", u"\u20AC", u"EUR", u"CHF", u"kr", u"\u00A3"});
    const std::u16string gap = any_of({u"", u" "});
    const bool is_before = *rc::gen::arbitrary<bool>();
    const std::u16string blank = is_before || currency.size() == 1 ? gap : u" ";
    Cells cells = amounts_in(marks);
    for (std::u16string& cell : cells) {
      cell = is_before ? currency + blank + cell : cell + blank + currency;
    }
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == ColumnKind::money);
    RC_ASSERT(column.money.currency == currency);
    RC_ASSERT((column.money.place == CurrencyPlace::before) == is_before);
    require_marks(column, marks);
  }));
}

TEST(RandomColumn, OfIntegersIsOne) {
  EXPECT_TRUE(rc::check([] {
    const Cells cells = cells_of([] { return wide(std::to_string(below(2000000) - 1000000)); });
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == ColumnKind::integer);
    RC_ASSERT(column.number == NumberFormat());
  }));
}

TEST(RandomColumn, OfExponentsIsScientific) {
  EXPECT_TRUE(rc::check([] {
    const std::u16string exponent = any_of({u"e", u"E", u"d", u"D"});
    const Cells cells = cells_of([&] {
      return wide(std::to_string(1 + below(9)) + ".5") + exponent +
             wide(std::to_string(below(40) - 20));
    });
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == ColumnKind::scientific);
    RC_ASSERT(column.number.exponent == exponent[0]);
    RC_ASSERT(column.number.decimal == u'.');
  }));
}

// --- dates and times ---------------------------------------------------------------------------

// A format for printf() of year, month, day, and for strptime() and ICU. `first` is the number of
// the day among day and month: 0 or 1.
struct DateStyle {
  const char* printed;
  const char* strptime;
  const char* icu;
  DateOrder order;
};

// The arguments are year, month, day, year of two digits.
const DateStyle kDateStyles[] = {
    {"%1$04d-%2$02d-%3$02d", "%Y-%m-%d", "yyyy-MM-dd", DateOrder::year_first},
    {"%1$04d/%2$02d/%3$02d", "%Y/%m/%d", "yyyy/MM/dd", DateOrder::year_first},
    {"%1$04d%2$02d%3$02d", "%Y%m%d", "yyyyMMdd", DateOrder::year_first},
    {"%3$02d.%2$02d.%1$04d", "%d.%m.%Y", "dd.MM.yyyy", DateOrder::day_first},
    {"%3$02d/%2$02d/%1$04d", "%d/%m/%Y", "dd/MM/yyyy", DateOrder::day_first},
    {"%3$02d-%2$02d-%1$04d", "%d-%m-%Y", "dd-MM-yyyy", DateOrder::day_first},
    {"%2$02d/%3$02d/%1$04d", "%m/%d/%Y", "MM/dd/yyyy", DateOrder::month_first},
    {"%2$02d-%3$02d-%1$04d", "%m-%d-%Y", "MM-dd-yyyy", DateOrder::month_first},
    {"%2$d/%3$d/%4$02d", "%m/%d/%y", "M/d/yy", DateOrder::month_first},
    {"%3$d.%2$d.%1$04d", "%d.%m.%Y", "d.M.yyyy", DateOrder::day_first},
};

std::ostream& operator<<(std::ostream& out, const DateStyle& style) { return out << style.icu; }

std::u16string date_in(const DateStyle& style, int year, int month, int day) {
  char text[64];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
#pragma GCC diagnostic ignored "-Wformat-extra-args"
  std::snprintf(text, sizeof text, style.printed, year, month, day, year % 100);
#pragma GCC diagnostic pop
  return wide(text);
}

// One day is above 12, and one number has one digit if the style allows it.
Cells dates_in(const DateStyle& style) {
  Cells cells =
      cells_of([&] { return date_in(style, 2000 + below(30), 1 + below(12), 1 + below(28)); });
  cells.push_back(date_in(style, 2024, 1, 28));
  cells.push_back(date_in(style, 2024, 2, 2));
  return cells;
}

TEST(RandomColumn, OfDatesHasTheirFormat) {
  EXPECT_TRUE(rc::check([] {
    const DateStyle style =
        *rc::gen::elementOf(std::vector<DateStyle>(std::begin(kDateStyles), std::end(kDateStyles)));
    const ColumnDescription column = describe(dates_in(style));
    RC_ASSERT(column.kind == ColumnKind::date);
    RC_ASSERT(column.date.strptime == style.strptime);
    RC_ASSERT(column.date.icu == style.icu);
    RC_ASSERT(column.date.order == style.order);
    RC_ASSERT(column.num_fitting == column.num_cells);
  }));
}

TEST(RandomColumn, OfDatesAndTimesHasTheirFormat) {
  struct ClockStyle {
    std::u16string end;
    std::string strptime;
    std::string icu;
    std::string zone;
  };
  // For ICU the number of letters says how an offset is written: with a colon, if there are three.
  const std::string with_colon(3, 'X');
  const std::vector<ClockStyle> zones = {{u"", "", "", ""},
                                         {u"Z", "%z", with_colon, "Z"},
                                         {u"+01:00", "%z", with_colon, "+01:00"},
                                         {u" +0100", " %z", " XX", "+0100"},
                                         {u" UTC", " %Z", " z", "UTC"}};
  EXPECT_TRUE(rc::check([&] {
    const DateStyle style =
        *rc::gen::elementOf(std::vector<DateStyle>(std::begin(kDateStyles), std::end(kDateStyles)));
    const ClockStyle& zone = zones[static_cast<std::size_t>(below(static_cast<int>(zones.size())))];
    const bool has_t = *rc::gen::arbitrary<bool>();
    Cells cells = dates_in(style);
    for (std::u16string& cell : cells) {
      char clock[16];
      std::snprintf(clock, sizeof clock, "%02d:%02d:%02d", below(24), below(60), below(60));
      cell += (has_t ? u"T" : u" ") + wide(clock) + zone.end;
    }
    const ColumnDescription column = describe(cells);
    const std::string strptime_gap = has_t ? "T" : " ";
    const std::string icu_gap = has_t ? "'T'" : " ";
    RC_ASSERT(column.kind == ColumnKind::date_time);
    RC_ASSERT(column.date.strptime == style.strptime + strptime_gap + "%H:%M:%S" + zone.strptime);
    RC_ASSERT(column.date.icu == style.icu + icu_gap + "HH:mm:ss" + zone.icu);
    RC_ASSERT(column.date.zone == zone.zone);
  }));
}

// --- words -------------------------------------------------------------------------------------

TEST(RandomColumn, OfTwoWordsIsBoolean) {
  const std::vector<std::vector<std::u16string>> pairs = {
      {u"true", u"false"},  {u"yes", u"no"},     {u"ja", u"nein"},      {u"oui", u"non"},
      {u"si", u"no"},       {u"vero", u"falso"}, {u"sim", u"n\u00E3o"}, {u"tak", u"nie"},
      {u"waar", u"onwaar"}, {u"Y", u"N"},        {u"WAHR", u"FALSCH"},  {u"vrai", u"faux"}};
  EXPECT_TRUE(rc::check([&] {
    const auto pair = *rc::gen::elementOf(pairs);
    Cells cells = cells_of([&] { return any_of(pair); });
    cells.push_back(pair[0]);
    cells.push_back(pair[1]);
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == ColumnKind::boolean);
    RC_ASSERT(column.boolean == (BooleanWords{pair[0], pair[1]}));
  }));
}

TEST(RandomColumn, OfPaddedDigitsIsAnIdentifier) {
  EXPECT_TRUE(rc::check([] {
    Cells cells = cells_of([] {
      char digits[16];
      std::snprintf(digits, sizeof digits, "%05d", below(100000));
      return wide(digits);
    });
    cells.push_back(u"01067");
    RC_ASSERT(describe(cells).kind == ColumnKind::identifier);
  }));
}

// --- cells that do not fit ---------------------------------------------------------------------

Cells random_values() {
  switch (below(4)) {
    case 0:
      return amounts_in(random_marks());
    case 1:
      return dates_in(kDateStyles[below(static_cast<int>(std::size(kDateStyles)))]);
    case 2:
      return cells_of([] { return wide(std::to_string(below(100000))); });
    default:
      return cells_of([] { return wide(std::to_string(below(90) + 5) + "%"); });
  }
}

TEST(RandomColumn, WithOneOddCellIsTheSame) {
  EXPECT_TRUE(rc::check([] {
    Cells cells = random_values();
    const ColumnDescription former = describe(cells);
    const auto at = *rc::gen::inRange<std::size_t>(0, cells.size() + 1);
    cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(at), u"see note");
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == former.kind);
    RC_ASSERT(column.number == former.number);
    RC_ASSERT(column.date == former.date);
    RC_ASSERT(column.first_misfit == at);
    RC_ASSERT(column.num_misfits() == 1U);
  }));
}

TEST(RandomColumn, WithMissingWordsCountsThem) {
  EXPECT_TRUE(rc::check([] {
    Cells cells = random_values();
    const ColumnDescription former = describe(cells);
    const std::u16string word = any_of({u"NA", u"n/a", u"-", u"null", u"nan", u"...", u"\\N"});
    const auto count = *rc::gen::inRange<std::size_t>(1, 30);
    for (std::size_t i = 0; i < count; ++i) {
      const auto at = *rc::gen::inRange<std::size_t>(0, cells.size() + 1);
      cells.insert(cells.begin() + static_cast<std::ptrdiff_t>(at), word);
    }
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.kind == former.kind);
    RC_ASSERT(column.num_fitting == former.num_fitting);
    RC_ASSERT(column.num_missing == count);
    RC_ASSERT(column.missing == (std::vector<MissingWord>{{word, count}}));
  }));
}

TEST(RandomColumn, OfAnyCellsHasCountsThatAddUp) {
  const std::vector<std::u16string> parts = {
      u"1",  u"12",  u"2024", u"0",   u".",   u",", u":",  u"-",      u"/",      u" ",    u"'",
      u"%",  u"$",   u"EUR",  u"Jan", u"Mon", u"T", u"Z",  u"pm",     u"e",      u"i",    u"NA",
      u"no", u"yes", u"-999", u"+",   u"(",   u")", u"PT", u"\u20AC", u"\u00A0", u"\x1A", u"x"};
  EXPECT_TRUE(rc::check([&] {
    const Cells cells = cells_of(
        [&] {
          std::u16string cell;
          for (int left = below(5); left > 0; --left) cell += any_of(parts);
          return cell;
        },
        0, 30);
    const ColumnDescription column = describe(cells);
    RC_ASSERT(column.num_cells == cells.size());
    RC_ASSERT(column.num_empty + column.num_missing + column.num_fitting <= cells.size());
    RC_ASSERT(column.first_misfit.has_value() == (column.num_misfits() > 0));
    RC_ASSERT(column.least_width <= column.most_width);
  }));
}

}  // namespace
}  // namespace textio::columns
