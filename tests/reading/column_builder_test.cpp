#include <vltextstream/reading/column_builder.hpp>

#include <cstdint>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reading/cells.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using testing_support::ByRule;
using Cells = std::vector<std::u16string>;

ColumnPlan plan_for(ColumnType type) {
  ColumnPlan plan;
  plan.type = type;
  return plan;
}

TEST(ColumnBuilderAppend, MakesIntegers) {
  const Built result = built(plan_for(ColumnType::integer), {u"1", u"-22", u"", u"x", u" 7 "});
  EXPECT_EQ(result.column.integers, (std::vector<std::int64_t>{1, -22, 0, 0, 7}));
  EXPECT_EQ(result.column.validity, std::vector<std::uint8_t>{0b10011});
  EXPECT_EQ(result.column.num_missing, 2U);
  EXPECT_EQ(result.misfits, std::vector<std::uint32_t>{3});
}

TEST(ColumnBuilderAppend, MakesReals) {
  const Built result =
      built(plan_for(ColumnType::real), {u"1.5", u"-0.25", u"1e3", u"123456789.125"});
  EXPECT_EQ(result.column.reals, (std::vector<double>{1.5, -0.25, 1000, 123456789.125}));
  EXPECT_TRUE(result.column.validity.empty());
  EXPECT_TRUE(result.misfits.empty());
}

TEST(ColumnBuilderAppend, MakesDates) {
  ColumnPlan plan = plan_for(ColumnType::date);
  plan.strptime = "%d.%m.%Y";
  plan.order = columns::DateOrder::day_first;
  const Built result = built(plan, {u"31.01.2024", u"1.1.1970", u"30.02.2024"});
  EXPECT_EQ(result.column.days, (std::vector<std::int32_t>{19753, 0, 0}));
  EXPECT_EQ(result.misfits, std::vector<std::uint32_t>{2});
}

TEST(ColumnBuilderAppend, MakesTexts) {
  const Built result = built(plan_for(ColumnType::text), {u"Z\u00FCrich", u"", u"Rome"});
  EXPECT_EQ(result.column.bytes, "Z\xC3\xBCrichRome");
  EXPECT_EQ(result.column.offsets, (std::vector<std::int64_t>{0, 7, 7, 11}));
  EXPECT_TRUE(result.column.validity.empty());
}

TEST(ColumnBuilderAppend, MakesCategories) {
  const Built result = built(plan_for(ColumnType::category), {u"red", u"blue", u"red"});
  EXPECT_EQ(result.column.codes, (std::vector<std::int32_t>{0, 1, 0}));
  EXPECT_EQ(result.column.words, (std::vector<std::string>{"red", "blue"}));
}

}  // namespace
}  // namespace textio::reading
