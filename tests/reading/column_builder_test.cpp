#include <vltextstream/reading/column_builder.hpp>

#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reading/cells.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using columns::ColumnKind;
using testing_support::ByRule;
using testing_support::ExactCells;
using Cells = std::vector<std::u16string>;
using Positions = std::vector<std::uint32_t>;

ColumnPlan plan_for(ColumnType type, ColumnKind kind = ColumnKind::text) {
  ColumnPlan plan;
  plan.type = type;
  plan.kind = kind;
  return plan;
}

ColumnPlan plan_for_dates(ColumnType type, std::string strptime) {
  ColumnPlan plan = plan_for(type);
  plan.strptime = std::move(strptime);
  plan.order = columns::DateOrder::day_first;
  return plan;
}

// The values that are there, "~" for a missing one, "!" for a misfit.
std::string summary(const Built& built) {
  const Column& column = built.column;
  std::string text;
  for (std::size_t i = 0; i < column.size; ++i) {
    if (i > 0) text += ' ';
    const bool is_misfit =
        std::find(built.misfits.begin(), built.misfits.end(), i) != built.misfits.end();
    if (column.is_missing(i)) {
      text += is_misfit ? "!" : "~";
    } else if (!column.integers.empty()) {
      text += std::to_string(column.integers[i]);
    } else if (!column.reals.empty()) {
      text += std::to_string(column.reals[i]);
    } else if (!column.days.empty()) {
      text += std::to_string(column.days[i]);
    } else if (!column.booleans.empty()) {
      text += column.boolean_at(i) ? "yes" : "no";
    } else {
      text += '<';
      text += column.text_at(i);
      text += '>';
    }
  }
  return text;
}

// --- each type -----------------------------------------------------------------------------------

struct TypeCase {
  const char* rule;
  ColumnPlan plan;
  Cells cells;
  std::string summary;
};
std::ostream& operator<<(std::ostream& out, const TypeCase& row) { return out << row.rule; }

ColumnPlan with_missing(ColumnPlan plan, Cells words) {
  plan.missing = std::move(words);
  return plan;
}

ColumnPlan with_words(std::u16string yes, std::u16string no) {
  ColumnPlan plan = plan_for(ColumnType::boolean, ColumnKind::boolean);
  plan.words = {std::move(yes), std::move(no)};
  return plan;
}

ColumnPlan with_empty_missing(ColumnPlan plan) {
  plan.is_empty_text_missing = true;
  return plan;
}

ColumnPlan with_marks(ColumnType type, char16_t decimal, char16_t grouping) {
  ColumnPlan plan = plan_for(type);
  plan.decimal = decimal;
  plan.grouping = grouping;
  return plan;
}

const TypeCase kTypes[] = {
    {"Integers",
     plan_for(ColumnType::integer),
     {u"1", u"-22", u"", u"x", u" 7 ", u"1.0"},
     "1 -22 ~ ! 7 !"},
    {"BlanksOfAllSorts",
     plan_for(ColumnType::integer),
     {u"\t1", u"2\u00A0", u" ", u"\u00A0", u"1 2"},
     "1 2 ~ ~ !"},
    {"MissingNumbers",
     with_missing(plan_for(ColumnType::integer), {u"-999", u"NA", u"0"}),
     {u"-999", u" NA ", u"0", u"00", u"na", u"-9990"},
     "~ ~ ~ 0 ! -9990"},
    {"Reals",
     plan_for(ColumnType::real),
     {u"1.5", u"-0.25", u"1e3", u"", u"1,5"},
     "1.500000 -0.250000 1000.000000 ~ !"},
    {"Percentages",
     plan_for(ColumnType::real, ColumnKind::percentage),
     {u"5 %", u"5", u"$5"},
     "5.000000 5.000000 !"},
    {"Decimals",
     with_marks(ColumnType::decimal, u',', u'.'),
     {u"1.234,50", u"", u"x", u"-7"},
     "<1234.50> ~ ! <-7>"},
    {"Booleans",
     with_words(u"ja", u"nein"),
     {u"JA", u"nein", u"", u"yes", u"1", u"j", u" Nein"},
     "yes no ~ ! ! ! no"},
    {"OneBooleanWord", with_words(u"True", u""), {u"true", u"FALSE", u"no"}, "yes no !"},
    {"OtherBooleanWord", with_words(u"", u"no"), {u"yes", u"No", u"true"}, "yes no !"},
    {"OneWordOfAPairThatNeedsBoth", with_words(u"ja", u""), {u"ja", u"nein"}, "yes !"},
    {"Dates",
     plan_for_dates(ColumnType::date, "%d.%m.%Y"),
     {u"31.01.2024", u"1.1.1970", u"30.02.2024", u""},
     "19753 0 ! ~"},
    {"Times",
     plan_for_dates(ColumnType::time, "%H:%M"),
     {u"0:01", u"24:00", u"x"},
     "60000000 86400000000 !"},
    {"Moments",
     plan_for_dates(ColumnType::date_time, "%d.%m.%Y %H:%M"),
     {u"1.1.1970 0:01", u"02.01.1970", u"1.1.1970 0:01Z"},
     "60000000 86400000000 !"},
    {"Durations",
     plan_for(ColumnType::duration),
     {u"0:00:01", u"1m 1s", u"5 am", u"x"},
     "1000000 61000000 18000000000 !"},
    {"Seconds",
     plan_for(ColumnType::date_time, ColumnKind::epoch_seconds),
     {u"1704067200", u"-1", u"1.5", u"9223372036855"},
     "1704067200000000 -1000000 ! !"},
    {"Milliseconds",
     plan_for(ColumnType::date_time, ColumnKind::epoch_milliseconds),
     {u"1704067200123", u"x"},
     "1704067200123000 !"},
    {"Texts",
     plan_for(ColumnType::text),
     {u"Z\u00FCrich", u"", u" a ", u"NA"},
     "<Z\xC3\xBCrich> <> < a > <NA>"},
    {"MissingTexts",
     with_missing(plan_for(ColumnType::text), {u"NA"}),
     {u"NA", u" NA ", u"NAN", u"na"},
     "~ ~ <NAN> <na>"},
    {"EmptyTextsThatAreMissing",
     with_empty_missing(plan_for(ColumnType::text)),
     {u"", u" ", u"a"},
     "~ ~ <a>"},
    {"TextsWithOddUnits",
     plan_for(ColumnType::text),
     {u"\U0001F600", std::u16string{0xD83D}, u"\uFFFD"},
     "<\xF0\x9F\x98\x80> <\xEF\xBF\xBD> <\xEF\xBF\xBD>"},
    {"Categories",
     with_missing(plan_for(ColumnType::category), {u"?"}),
     {u"red", u"blue", u"?", u"red", u""},
     "<red> <blue> ~ <red> <>"},
};

class ColumnBuilderTypes : public testing::TestWithParam<TypeCase> {};

TEST_P(ColumnBuilderTypes, AreReadAsInTheRow) {
  const Built result = built(GetParam().plan, GetParam().cells);
  EXPECT_EQ(summary(result), GetParam().summary);
  EXPECT_EQ(result.column.type, GetParam().plan.type);
  EXPECT_EQ(result.column.size, GetParam().cells.size());
}

// What a cell is does not depend on the batch that it is in.
TEST_P(ColumnBuilderTypes, AreTheSameOneByOne) {
  const Cells& texts = GetParam().cells;
  const ExactCells exact(texts);
  ColumnBuilder builder(GetParam().plan);
  Built result;
  for (std::size_t i = 0; i < texts.size(); ++i) {
    Positions misfits;
    const CellText cell = cell_of(exact.views()[i]);
    builder.append({&cell, 1}, misfits);
    if (!misfits.empty()) result.misfits.push_back(static_cast<std::uint32_t>(i));
  }
  result.column = builder.take();
  EXPECT_EQ(summary(result), GetParam().summary);
}

INSTANTIATE_TEST_SUITE_P(Table, ColumnBuilderTypes, testing::ValuesIn(kTypes), ByRule());

// --- cells ---------------------------------------------------------------------------------------

Built built_from(const ColumnPlan& plan, const std::vector<CellText>& cells) {
  ColumnBuilder builder(plan);
  Built result;
  builder.append(cells, result.misfits);
  result.column = builder.take();
  return result;
}

TEST(ColumnBuilderCells, ThatAreAbsentAreMissing) {
  for (const ColumnType type : {ColumnType::integer, ColumnType::decimal, ColumnType::boolean,
                                ColumnType::date, ColumnType::text, ColumnType::category}) {
    const Built result = built_from(plan_for(type), {absent_cell(), absent_cell()});
    EXPECT_EQ(result.column.num_missing, 2U);
    EXPECT_TRUE(result.column.is_missing(0));
    EXPECT_TRUE(result.misfits.empty());
  }
}

TEST(ColumnBuilderCells, ThatAreQuotedAndEmptyAreTexts) {
  const ColumnPlan plan = with_empty_missing(plan_for(ColumnType::text));
  const Built result =
      built_from(plan, {cell_of(u"", true), cell_of(u"", false), cell_of(u"  ", true)});
  EXPECT_EQ(summary(result), "<> ~ <  >");
}

TEST(ColumnBuilderCells, ThatAreQuotedAreValuesAlike) {
  const ColumnPlan plan = with_missing(plan_for(ColumnType::integer), {u"NA"});
  const Built result =
      built_from(plan, {cell_of(u"7", true), cell_of(u"", true), cell_of(u"NA", true)});
  EXPECT_EQ(summary(result), "7 ~ ~");
}

// --- validity ------------------------------------------------------------------------------------

TEST(ColumnBuilderValidity, IsEmptyWithoutMissingValues) {
  EXPECT_TRUE(built(plan_for(ColumnType::integer), {u"1", u"2"}).column.validity.empty());
  EXPECT_TRUE(built(plan_for(ColumnType::integer), {}).column.validity.empty());
}

TEST(ColumnBuilderValidity, HasABitForEachRow) {
  for (std::size_t rows = 1; rows <= 20; ++rows) {
    for (std::size_t missing = 0; missing < rows; ++missing) {
      Cells cells(rows, u"1");
      cells[missing] = u"";
      const Column column = built(plan_for(ColumnType::integer), cells).column;
      std::vector<std::uint8_t> expected((rows + 7) / 8);
      for (std::size_t i = 0; i < rows; ++i) {
        if (i != missing)
          expected[i / 8] = static_cast<std::uint8_t>(expected[i / 8] | 1U << i % 8);
      }
      ASSERT_EQ(column.validity, expected);
      ASSERT_EQ(column.num_missing, 1U);
    }
  }
}

TEST(ColumnBuilderValidity, CoversRowsBeforeAndAfterTheFirstMissing) {
  ColumnBuilder builder(plan_for(ColumnType::integer));
  Positions misfits;
  const std::vector<CellText> values(5, cell_of(u"1"));
  const std::vector<CellText> mixed{cell_of(u"1"), cell_of(u""), cell_of(u"1"), cell_of(u"1")};
  builder.append(values, misfits);
  builder.append(mixed, misfits);
  builder.append(values, misfits);
  const Column column = builder.take();
  EXPECT_EQ(column.size, 14U);
  EXPECT_EQ(column.validity, (std::vector<std::uint8_t>{0b10111111, 0b00111111}));
}

// --- batches -------------------------------------------------------------------------------------

TEST(ColumnBuilderTake, BeginsAnew) {
  for (const TypeCase& row : kTypes) {
    const ExactCells exact(row.cells);
    std::vector<CellText> cells;
    for (const std::u16string_view view : exact.views()) cells.push_back(cell_of(view));
    ColumnBuilder builder(row.plan);
    for (int round = 0; round < 3; ++round) {
      Built result;
      builder.append(cells, result.misfits);
      result.column = builder.take();
      EXPECT_EQ(summary(result), row.summary) << row.rule;
    }
    const Column rest = builder.take();
    EXPECT_EQ(rest.size, 0U);
    EXPECT_EQ(rest.num_missing, 0U);
    EXPECT_TRUE(rest.validity.empty());
    const bool has_offsets =
        row.plan.type == ColumnType::text || row.plan.type == ColumnType::decimal;
    EXPECT_EQ(rest.offsets,
              has_offsets ? std::vector<std::int64_t>{0} : std::vector<std::int64_t>{});
  }
}

TEST(ColumnBuilderTake, KeepsTheCodesOfCategories) {
  ColumnBuilder builder(plan_for(ColumnType::category));
  Positions misfits;
  const std::vector<CellText> first{cell_of(u"red"), cell_of(u"blue")};
  const std::vector<CellText> second{cell_of(u"green"), cell_of(u"blue")};
  builder.append(first, misfits);
  const Column before = builder.take();
  EXPECT_EQ(before.codes, (std::vector<std::int32_t>{0, 1}));
  EXPECT_EQ(before.words, (std::vector<std::string>{"red", "blue"}));
  builder.append(second, misfits);
  const Column after = builder.take();
  EXPECT_EQ(after.codes, (std::vector<std::int32_t>{2, 1}));
  EXPECT_EQ(after.words, (std::vector<std::string>{"red", "blue", "green"}));
}

TEST(ColumnBuilderCategories, MayBeMany) {
  Cells cells;
  for (int i = 0; i < 1000; ++i)
    cells.push_back(u"word " + std::u16string(static_cast<std::size_t>(i % 500), u'x'));
  const Column column = built(plan_for(ColumnType::category), cells).column;
  EXPECT_EQ(column.words.size(), 500U);
  for (std::size_t i = 0; i < 1000; ++i)
    ASSERT_EQ(column.codes[i], static_cast<std::int32_t>(i % 500));
}

TEST(ColumnBuilderUtc, IsSaidOfColumnsWithZones) {
  EXPECT_FALSE(built(plan_for_dates(ColumnType::date_time, "%d.%m.%Y %H:%M"), {u"1.1.1970 0:01"})
                   .column.is_utc);
  EXPECT_TRUE(built(plan_for_dates(ColumnType::date_time, "%d.%m.%Y %H:%M%z"), {u"1.1.1970 0:01"})
                  .column.is_utc);
  EXPECT_TRUE(
      built(plan_for(ColumnType::date_time, ColumnKind::epoch_seconds), {u"0"}).column.is_utc);
  ColumnPlan mixed = plan_for(ColumnType::date_time);
  EXPECT_FALSE(built(mixed, {u"1970-01-01 00:00"}).column.is_utc);
  EXPECT_TRUE(built(mixed, {u"1970-01-01 00:00", u"1970-01-01 00:00Z"}).column.is_utc);
  mixed.has_zone = true;
  EXPECT_TRUE(built(mixed, {u"1970-01-01 00:00"}).column.is_utc);
}

TEST(ColumnBuilderMisfits, AreAppended) {
  Positions misfits{17};
  ColumnBuilder builder(plan_for(ColumnType::integer));
  const std::vector<CellText> cells{cell_of(u"1"), cell_of(u"x"), cell_of(u"y")};
  builder.append(cells, misfits);
  EXPECT_EQ(misfits, (Positions{17, 1, 2}));
}

TEST(ColumnBuilderMove, KeepsTheValues) {
  ColumnBuilder first(plan_for(ColumnType::integer));
  Positions misfits;
  const std::vector<CellText> cells{cell_of(u"1")};
  first.append(cells, misfits);
  ColumnBuilder second(std::move(first));
  EXPECT_EQ(second.plan().type, ColumnType::integer);
  EXPECT_EQ(second.take().integers, std::vector<std::int64_t>{1});
}

// --- wider types ---------------------------------------------------------------------------------

struct WidenedCase {
  const char* rule;
  ColumnPlan plan;
  std::u16string cell;
  ColumnType type;
};
std::ostream& operator<<(std::ostream& out, const WidenedCase& row) { return out << row.rule; }

const WidenedCase kWidened[] = {
    {"FractionInIntegers", plan_for(ColumnType::integer), u"1.5", ColumnType::real},
    {"FractionOfZero", plan_for(ColumnType::integer), u"1.0", ColumnType::real},
    {"MarkAtTheEnd", plan_for(ColumnType::integer), u"5.", ColumnType::real},
    {"ExponentInIntegers", plan_for(ColumnType::integer), u"1e3", ColumnType::real},
    {"InfinityInIntegers", plan_for(ColumnType::integer), u"inf", ColumnType::real},
    {"BlanksAround", plan_for(ColumnType::integer), u" 1.5 ", ColumnType::real},
    {"FractionWithTheMarksOfTheColumn", with_marks(ColumnType::integer, u',', u'.'), u"1.234,5",
     ColumnType::real},
    {"FractionWithOtherMarks", with_marks(ColumnType::integer, u',', u'.'), u"1,234.5",
     ColumnType::text},
    {"IntegerBeyondTheBits", plan_for(ColumnType::integer), u"9223372036854775808",
     ColumnType::text},
    {"GroupedIntegerBeyondTheBits", with_marks(ColumnType::integer, u'.', u','),
     u"9,223,372,036,854,775,808", ColumnType::text},
    {"WordInIntegers", plan_for(ColumnType::integer), u"x", ColumnType::text},
    {"NumberBeyondDoubles", plan_for(ColumnType::integer), u"1e400", ColumnType::text},
    {"NothingInIntegers", plan_for(ColumnType::integer), u" ", ColumnType::text},
    {"WordInReals", plan_for(ColumnType::real), u"x", ColumnType::text},
    {"NumberInDates", plan_for(ColumnType::date), u"1.5", ColumnType::text},
};

class Widened : public testing::TestWithParam<WidenedCase> {};

TEST_P(Widened, HoldsTheCell) {
  EXPECT_EQ(widened(GetParam().plan, GetParam().cell), GetParam().type);
}

INSTANTIATE_TEST_SUITE_P(Table, Widened, testing::ValuesIn(kWidened), ByRule());

}  // namespace
}  // namespace textio::reading
