#include <vltextstream/scoring/datatype_inspection.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/field_table.hpp"
#include "support/rule_name.hpp"
#include "support/unit_strategy.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::FieldTable;
using testing_support::names_of;
using testing_support::Rows;
using testing_support::UnitStrategy;

// --- classify_columns ----------------------------------------------------------------------------

struct ColumnsCase {
  const char* rule;
  std::size_t header_lines;
  std::int32_t modal_field_count;
  std::size_t num_variables;
  Rows rows;
  std::string codes;
};
std::ostream& operator<<(std::ostream& out, const ColumnsCase& row) { return out << row.rule; }

const ColumnsCase kColumnsCases[] = {
    // which lines are inspected
    {"NoLines", 0, 1, 1, {}, "empty"},
    {"TheFirstLineAfterTheHeaderIsNot", 0, 1, 1, {{u"1"}}, "empty"},
    {"TheSecondLineAfterTheHeaderIs", 0, 1, 1, {{u"name"}, {u"1"}}, "number"},
    {"TheNamesAreNot", 0, 2, 2, {{u"12:30", u"7"}, {u"x", u""}}, "text empty"},
    {"HeaderLinesAreNot", 2, 1, 1, {{u"a"}, {u"b"}, {u"c"}, {u"1"}}, "number"},
    {"HeaderLinesAndOneMoreLineLeaveNone", 2, 1, 1, {{u"1"}, {u"2"}, {u"3"}}, "empty"},
    {"HeaderLinesAloneLeaveNone", 3, 1, 1, {{u"1"}, {u"2"}, {u"3"}}, "empty"},
    {"MoreHeaderLinesThanLinesLeaveNone", 4, 1, 1, {{u"1"}, {u"2"}, {u"3"}}, "empty"},
    {"AllButTheLargestHeaderLeavesNone", SIZE_MAX - 1, 1, 1, {{u"1"}, {u"2"}, {u"3"}}, "empty"},
    {"UnknownHeaderLeavesNone", SIZE_MAX, 1, 1, {{u"1"}, {u"2"}, {u"3"}}, "empty"},

    // which field determines the class
    {"TheLowestFieldDecides", 0, 1, 1, {{u"n"}, {u"1"}, {u"12:30"}, {u"x"}}, "text"},
    {"EmptyFieldsDoNotDecide", 0, 1, 1, {{u"n"}, {u"x"}, {u"1"}, {u""}, {u" \t"}}, "number"},
    {"QuotedBlanksDoNotDecide", 0, 1, 1, {{u"n"}, {u"1"}, {u"\"\""}, {u"\" \""}}, "number"},
    {"EachColumnHasItsOwnField",
     0,
     3,
     3,
     {{u"n", u"n", u"n"}, {u"1", u"x", u"1:2:3"}, {u"", u"2", u""}, {u"", u"", u"y"}},
     "number number text"},
    {"BlankColumnStaysEmpty",
     0,
     2,
     2,
     {{u"n", u"n"}, {u" ", u"1"}, {u"\t", u"2"}, {u"\"\"", u"3"}},
     "empty number"},
    {"AllClasses",
     0,
     6,
     6,
     {{u"a", u"b", u"c", u"d", u"e", u"f"},
      {u"1", u"x", u"2024-03-01 12:00:00", u"", u"2024-03-01", u"1:02:03"}},
     "number text datetime empty date duration"},

    // lines with another number of fields
    {"ShorterLinesArePassedOver", 0, 2, 2, {{u"a", u"b"}, {u"1", u"2"}, {u"x"}}, "number number"},
    {"EmptyLinesArePassedOver", 0, 2, 2, {{u"a", u"b"}, {u"1", u"2"}, {}, {}}, "number number"},
    {"ShorterLinesAloneLeaveNone", 0, 3, 3, {{u"a"}, {u"1", u"2"}, {u"3"}}, "empty empty empty"},
    {"LinesOfTheModalCountAreLookedAt", 0, 1, 3, {{u"a"}, {u"1"}}, "number empty empty"},
    {"LongerLinesAreLookedAtToo",
     0,
     2,
     3,
     {{u"a", u"b"}, {u"1", u"2"}, {u"x", u"", u"12:30"}},
     "text number duration"},
    {"NegativeModalCountPassesNoLine", 0, -1, 1, {{u"a"}, {u"1"}, {}}, "number"},

    // more fields than variables
    {"FieldsBeyondTheVariablesAreNot", 0, 3, 2, {{u"a"}, {u"1", u"x", u"2"}}, "number text"},
    {"NoVariables", 0, 1, 0, {{u"a"}, {u"1"}, {u"2", u"3"}}, ""},
};

class ClassifyColumns : public testing::TestWithParam<ColumnsCase> {};
TEST_P(ClassifyColumns, UsesTheLowestField) {
  const FieldTable table(GetParam().rows);
  InspectionScope scope;
  scope.header_lines = GetParam().header_lines;
  scope.modal_field_count = GetParam().modal_field_count;
  scope.num_variables = GetParam().num_variables;
  scope.whitespace = u" \b\t";
  EXPECT_EQ(names_of(classify_columns(table.array(), scope)), GetParam().codes);
}
INSTANTIATE_TEST_SUITE_P(Table, ClassifyColumns, testing::ValuesIn(kColumnsCases),
                         testing_support::ByRule());

TEST(ClassifyColumnsScope, WhiteSpaceIsTheScopes) {
  const FieldTable table({{u"n", u"n"}, {u"__42", u" 42"}});
  InspectionScope scope;
  scope.modal_field_count = 2;
  scope.num_variables = 2;
  scope.whitespace = u"_";
  EXPECT_EQ(names_of(classify_columns(table.array(), scope)), "number text");
}

// --- fields that report more code units than there are -------------------------------------------

class ClassifyColumnsBounds : public testing::Test {
 protected:
  // The names, and one line with one field, which starts at `start` and reports `length` code
  // units.
  std::string classify(const ExactText& text, std::size_t start, std::size_t length) {
    FieldArray fields;
    fields.fields = {Field(text.data(), 1), Field(text.data() + start, length)};
    fields.counts = {1, 2};
    InspectionScope scope;
    scope.whitespace = u" \b\t";
    scope.text = text.field();
    return names_of(textio::classify_columns(fields, scope));
  }
};

TEST_F(ClassifyColumnsBounds, FieldThatEndsWithTheTextIsReadWhole) {
  EXPECT_EQ(classify(ExactText(u"n\n42"), 2, 2), "number");
}

TEST_F(ClassifyColumnsBounds, FieldThatPassesTheEndIsReadUpToIt) {
  EXPECT_EQ(classify(ExactText(u"n\n42"), 2, 3), "number");
  EXPECT_EQ(classify(ExactText(u"n\n\"42\""), 2, 9), "number");
  EXPECT_EQ(classify(ExactText(u"n\n\"4\"\"2\""), 2, 100), "text");
}

TEST_F(ClassifyColumnsBounds, ReportedLengthThatWouldWrapIsCutToo) {
  EXPECT_EQ(classify(ExactText(u"n\n12:34"), 2, SIZE_MAX), "duration");
}

TEST_F(ClassifyColumnsBounds, FieldThatStartsAtTheEndIsEmpty) {
  EXPECT_EQ(classify(ExactText(u"n\n42"), 4, 0), "empty");
  EXPECT_EQ(classify(ExactText(u"n\n42"), 4, 3), "empty");
}

TEST_F(ClassifyColumnsBounds, FieldMayPassTheEndOfItsLineInsideTheText) {
  EXPECT_EQ(classify(ExactText(u"n\n42\nx"), 2, 4), "text");
}

TEST(ClassifyColumnsElsewhere, FieldOutsideTheTextIsReadAtItsFullLength) {
  const ExactText text(u"n\n1");
  const ExactText elsewhere(u"12:34");
  FieldArray fields;
  fields.fields = {Field(text.data(), 1), elsewhere.field()};
  fields.counts = {1, 2};
  InspectionScope scope;
  scope.text = text.field();
  EXPECT_EQ(names_of(classify_columns(fields, scope)), "duration");
}

TEST(ClassifyColumnsElsewhere, TheSharedEmptyFieldIsEmpty) {
  const ExactText text(u"n\n1");
  FieldArray fields;
  fields.fields = {Field(text.data(), 1), empty_field()};
  fields.counts = {1, 2};
  InspectionScope scope;
  scope.text = text.field();
  EXPECT_EQ(names_of(classify_columns(fields, scope)), "empty");
}

// One column of 5 code units. Each line of two code units gives two fields: one that reports five,
// and the extra one after it, since the line does not end with the first.
TEST(FixedWidthInspection, NeverReadsPastTheText) {
  const ExactText text(u"12\n34\n56");
  parser::options options;
  FixedWidthStrategy strategy(options, {5});
  strategy.populate_fields(text.field(), 10);
  const StrategyValuation& score = strategy.valuation();
  EXPECT_EQ(score.modal_field_count, 2);
  EXPECT_EQ(score.num_variables, 2u);
  EXPECT_EQ(strategy.header_lines(), 0u);
  // Last line: "56" and an empty field. Line before it, second column: the line ending and "56".
  EXPECT_EQ(names_of(strategy.classify_columns(strategy.get_fields_from_lines())), "number text");
  EXPECT_EQ(score.typed_columns, 2u);
  EXPECT_EQ(score.numeric_columns, 1u);
}

// --- Strategy::inspect_datatypes -----------------------------------------------------------------

class InspectDatatypes : public testing::Test {
 protected:
  InspectDatatypes() { strategy_.header_lines(0); }

  void inspect(const Rows& rows, std::int32_t modal_field_count, std::size_t num_variables) {
    strategy_.valuation_.modal_field_count = modal_field_count;
    strategy_.valuation_.num_variables = num_variables;
    const FieldTable table(rows);
    strategy_.inspect_datatypes(table.array());
  }

  void expect_counts(unsigned typed, unsigned dates, unsigned numbers, unsigned datetimes) {
    EXPECT_EQ(strategy_.valuation_.typed_columns, typed);
    EXPECT_EQ(strategy_.valuation_.date_columns, dates);
    EXPECT_EQ(strategy_.valuation_.numeric_columns, numbers);
    EXPECT_EQ(strategy_.valuation_.datetime_columns, datetimes);
  }

  parser::options options_;
  UnitStrategy strategy_{options_};
};

// Text, text, empty, empty; one date, two clock values; four numbers; five with date and time.
const Rows kMixed = {{},
                     {u"x", u"y", u"", u" ", u"2024-03-01", u"12:30", u"1:02:03", u"1", u"2.5",
                      u"3i", u"-4e5", u"2024-03-01 12:00:00", u"2024-03-02 12:00:00",
                      u"2024-03-03 12:00:00", u"12:00:00 2024-03-04", u"2024-03-05  12:00:00"}};

TEST_F(InspectDatatypes, CountsTheColumnsOfEachKind) {
  inspect(kMixed, 16, 16);
  expect_counts(14, 3, 4, 5);
}

TEST_F(InspectDatatypes, AddsToTheCounters) {
  inspect(kMixed, 16, 16);
  inspect(kMixed, 16, 16);
  expect_counts(28, 6, 8, 10);
}

TEST_F(InspectDatatypes, CountsOnlyColumnsBelowTheNumberOfVariables) {
  inspect(kMixed, 16, 8);
  expect_counts(6, 3, 1, 0);
}

TEST_F(InspectDatatypes, CountsNothingWithoutVariables) {
  inspect(kMixed, 16, 0);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, CountsNothingWithoutLines) {
  inspect({}, 1, 3);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, SkipsLinesBelowTheModalCount) {
  inspect(kMixed, 17, 16);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, LeavesTheCountersWhenAllLinesAreHeader) {
  strategy_.header_lines(2);
  inspect(kMixed, 16, 16);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, LeavesTheCountersWhenOneLineFollowsTheHeader) {
  strategy_.header_lines(1);
  inspect(kMixed, 16, 16);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, LeavesTheCountersWhileTheHeaderIsUnknown) {
  strategy_.header_lines(SIZE_MAX);
  inspect(kMixed, 16, 16);
  expect_counts(0, 0, 0, 0);
}

TEST_F(InspectDatatypes, ChangesNoOtherScore) {
  inspect(kMixed, 16, 16);
  EXPECT_EQ(strategy_.valuation_.total_variation, std::numeric_limits<double>::infinity());
  EXPECT_EQ(strategy_.valuation_.data_variation, std::numeric_limits<double>::infinity());
  EXPECT_EQ(strategy_.valuation_.num_lines, 0u);
  EXPECT_EQ(strategy_.valuation_.modal_field_count, 16);
  EXPECT_EQ(strategy_.valuation_.num_variables, 16u);
  EXPECT_EQ(strategy_.header_lines(), 0u);
  EXPECT_EQ(strategy_.num_variables(), -1);
}

TEST_F(InspectDatatypes, TrimsTheWhiteSpaceOfTheOptions) {
  options_.whitespace = u"_";
  strategy_.reset_whitespace(u" ");
  inspect({{}, {u"_42_", u"_", u" 42"}}, 3, 3);
  expect_counts(2, 0, 1, 0);
}

TEST_F(InspectDatatypes, KeepsTheClassesOfTheLastInspection) {
  EXPECT_EQ(names_of(strategy_.column_classes()), "");
  inspect({{}, {u"12:30", u"7", u""}}, 3, 3);
  EXPECT_EQ(names_of(strategy_.column_classes()), "duration number empty");
  inspect({{}, {u"x", u"7"}}, 2, 2);
  EXPECT_EQ(names_of(strategy_.column_classes()), "text number");
}

TEST_F(InspectDatatypes, TheClassesThemselvesLeaveTheCounters) {
  strategy_.valuation_.modal_field_count = 2;
  strategy_.valuation_.num_variables = 2;
  const FieldTable table({{u"a", u"b"}, {u"12:30", u"7"}});
  EXPECT_EQ(names_of(strategy_.classify_columns(table.array())), "duration number");
  expect_counts(0, 0, 0, 0);
}

}  // namespace
}  // namespace textio
