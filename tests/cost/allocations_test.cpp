// A selection allocates per candidate, and an assessment per reading, never per line or per field. Only a
// few vectors grow with the text, by doubling: ten times as many entries take four more doublings. allocations_main.cpp
// counts a whole detection.
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/detection/strategy_selector.hpp>
#include "support/allocation_counter.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::allocations_are_counted;
using testing_support::allocations_of_this_thread;
using testing_support::ByRule;
using testing_support::ExactText;

constexpr std::size_t kDoublingsForTenTimes = 4;

// Per candidate: the runs of lines of one kind, and those of lines with equal numbers of fields.
// All other lists get their final length at once.
constexpr std::size_t kVectorsThatGrowWithLines = 2;

// Per candidate: the fields of a line, whose number is not known in advance.
constexpr std::size_t kVectorsThatGrowWithColumns = 1;

// A strategy, its two sets of markers and its splitter, its sample, and the lists for its score.
constexpr std::size_t kPerStrategy = 15;

// The lists of the candidates and of those that the filters keep; the empty lines of a hundred.
constexpr std::size_t kPerSelection = 15;

// A table of `columns` columns; `field` makes the text of one field, including the separator.
using MakeField = std::u16string (*)(std::size_t row, std::size_t column);

std::u16string table_of(MakeField field, std::size_t rows, std::size_t columns) {
  std::u16string text;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < columns; ++column) text += field(row, column);
    text += u"7\n";
  }
  return text;
}

std::u16string digit(std::size_t number) { return {static_cast<char16_t>(u'0' + number % 10)}; }

std::u16string number(std::size_t row, std::size_t column) {
  return digit(row) + u"." + digit(column) + u",";
}

std::u16string quoted(std::size_t row, std::size_t column) {
  return u"\"a, \"\"" + digit(row) + digit(column) + u"\"\"\",";
}

std::u16string quoted_line_break(std::size_t row, std::size_t column) {
  return u"\"a\n" + digit(row) + digit(column) + u"\",";
}

std::u16string date(std::size_t row, std::size_t column) {
  return u"2024-03-0" + digit(1 + row % 9) + u" 10:00:0" + digit(column) + u";";
}

// One to three blanks after each field.
std::u16string ragged(std::size_t row, std::size_t column) {
  return digit(row) + std::u16string(1 + (row * column) % 3, u' ');
}

// One or two words below each other; all lines have the same length.
std::u16string fixed(std::size_t row, std::size_t column) {
  return (row * row + column) % 3 == 0 ? u"ab cd  " : u"abcde  ";
}

// In every second line a field is missing; before every third there is an empty line.
std::u16string irregular(std::size_t row, std::size_t column) {
  if (column == 0 && row % 3 == 0) return u"\n";
  return row % 2 == 0 && column == 1 ? u"" : digit(row) + u",";
}

std::u16string empty(std::size_t /*row*/, std::size_t /*column*/) { return u","; }

std::u16string many_candidates(std::size_t row, std::size_t column) {
  return digit(row) + u"!#%&*,/:;=|" + digit(column) + u" \t";
}

struct TableCase {
  const char* rule;
  MakeField field;
};
std::ostream& operator<<(std::ostream& out, const TableCase& row) { return out << row.rule; }

const TableCase kTableCases[] = {
    {"OfNumbers", number},
    {"OfQuotedTexts", quoted},
    {"OfQuotedLineBreaks", quoted_line_break},
    {"OfDates", date},
    {"OfRaggedBlanks", ragged},
    {"OfFixedWidths", fixed},
    {"OfIrregularLines", irregular},
    {"OfEmptyFields", empty},
    {"OfManyCandidates", many_candidates},
};

struct Cost {
  std::size_t allocations;
  std::size_t strategies;  // that have been populated
};

Cost cost_of_detection(MakeField field, std::size_t rows, std::size_t columns) {
  const ExactText text(table_of(field, rows, columns));
  const parser::options options;
  const detection::StrategySelector selector(options);
  const std::size_t before = allocations_of_this_thread();
  const std::shared_ptr<Strategy> winner = selector.pick_strategy(text.field(), rows);
  const std::size_t allocations = allocations_of_this_thread() - before;

  detection::SelectionTrace trace;
  selector.pick_strategy(text.field(), rows, trace);
  return {allocations, trace.candidates.size() + 1};
}

class DetectionAllocations : public testing::TestWithParam<TableCase> {
 protected:
  // `more` is the cost of a table ten times as large as that of `fewer`.
  static void expect_only_doublings(const Cost& fewer, const Cost& more, std::size_t vectors) {
    ASSERT_EQ(fewer.strategies, more.strategies);
    EXPECT_LE(more.allocations,
              fewer.allocations + vectors * kDoublingsForTenTimes * more.strategies);
    EXPECT_EQ(more.allocations > 0, allocations_are_counted());
  }
};

TEST_P(DetectionAllocations, DoNotGrowWithLines) {
  const MakeField field = GetParam().field;
  const Cost lines_100 = cost_of_detection(field, 100, 5);
  const Cost lines_1000 = cost_of_detection(field, 1000, 5);
  const Cost lines_10000 = cost_of_detection(field, 10000, 5);
  expect_only_doublings(lines_100, lines_1000, kVectorsThatGrowWithLines);
  expect_only_doublings(lines_1000, lines_10000, kVectorsThatGrowWithLines);
}

TEST_P(DetectionAllocations, DoNotGrowWithColumns) {
  const MakeField field = GetParam().field;
  const Cost columns_5 = cost_of_detection(field, 100, 5);
  const Cost columns_50 = cost_of_detection(field, 100, 50);
  expect_only_doublings(columns_5, columns_50, kVectorsThatGrowWithColumns);
}

TEST_P(DetectionAllocations, AreFewPerCandidate) {
  const Cost cost = cost_of_detection(GetParam().field, 100, 5);
  EXPECT_LE(cost.allocations, kPerStrategy * cost.strategies + kPerSelection);
}

INSTANTIATE_TEST_SUITE_P(Table, DetectionAllocations, testing::ValuesIn(kTableCases), ByRule());

// Only the first sample is drawn without knowing the number of lines in the text. Beyond 16,384 of
// them its two lists, the lines and their numbers of fields, are doubled twice.
TEST(DetectionAllocationsOfManyLines, GrowOnlyForTheFirstSample) {
  const Cost lines_16000 = cost_of_detection(quoted, 16'000, 1);
  const Cost lines_40000 = cost_of_detection(quoted, 40'000, 1);
  ASSERT_EQ(lines_16000.strategies, lines_40000.strategies);
  EXPECT_LE(lines_40000.allocations, lines_16000.allocations + 2 * 2);
}

// --- the assessment ----------------------------------------------------------------------------

// Per reading: its cells, records and borders of columns, and of each number of columns the records that
// fit, those that are data and the kinds of their cells.
constexpr std::size_t kVectorsOfAReading = 9;

Cost cost_of_assessment(MakeField field, std::size_t rows, std::size_t columns) {
  const ExactText text(table_of(field, rows, columns));
  const std::size_t before = allocations_of_this_thread();
  const assessment::Verdict verdict = assessment::judge(text.view(), rows);
  return {allocations_of_this_thread() - before, verdict.cuts.size()};
}

class AssessmentAllocations : public testing::TestWithParam<TableCase> {};

TEST_P(AssessmentAllocations, DoNotGrowWithLines) {
  const Cost lines_100 = cost_of_assessment(GetParam().field, 100, 5);
  const Cost lines_1000 = cost_of_assessment(GetParam().field, 1000, 5);
  EXPECT_LE(
      lines_1000.allocations,
      lines_100.allocations + kVectorsOfAReading * kDoublingsForTenTimes * lines_1000.strategies);
  EXPECT_EQ(lines_1000.allocations > 0, allocations_are_counted());
}

TEST_P(AssessmentAllocations, DoNotGrowWithColumns) {
  const Cost columns_5 = cost_of_assessment(GetParam().field, 100, 5);
  const Cost columns_50 = cost_of_assessment(GetParam().field, 100, 50);
  EXPECT_LE(
      columns_50.allocations,
      columns_5.allocations + kVectorsOfAReading * kDoublingsForTenTimes * columns_50.strategies);
}

INSTANTIATE_TEST_SUITE_P(Table, AssessmentAllocations, testing::ValuesIn(kTableCases), ByRule());

}  // namespace
}  // namespace textio
