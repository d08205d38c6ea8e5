#include <vltextstream/assessment/records.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/cell_kind.hpp>

#include "assessment/shown.hpp"
#include "support/exact_text.hpp"

namespace textio::assessment {
namespace {

using testing_support::ExactText;
using testing_support::shown;

TEST(Records, AreEmptyAtFirst) {
  const Records records(u"ab");
  EXPECT_TRUE(records.empty());
  EXPECT_EQ(records.size(), 0U);
  EXPECT_TRUE(records.column_starts.empty());
  EXPECT_EQ(records.ill_placed_quotes, 0);
}

// Units:                0   4    8   12
const char16_t kText[] = u"ab,c\n\"d\ne\",f\n";

TEST(Records, KeepTheirLinesAndCells) {
  const ExactText text(kText);
  Records records(text.view());
  records.add_record(0);
  records.add_cell(0, 2);
  records.add_cell(3, 4);
  records.add_record(1);
  records.add_cell(6, 9, true);
  records.add_cell(11, 12);
  records.add_lines(1);
  EXPECT_EQ(records.size(), 2U);
  EXPECT_FALSE(records.empty());
  EXPECT_EQ(shown(records), "0[ab][c] 1-2{d\\u000Ae}[f]");
  EXPECT_EQ(records.text(), text.view());
}

TEST(Records, MayHaveNoCells) {
  Records records(u"ab");
  records.add_record(3);
  EXPECT_EQ(records.size(), 1U);
  EXPECT_TRUE(records.cells(0).empty());
  EXPECT_EQ(records[0].line, 3U);
  EXPECT_EQ(records[0].num_lines, 1U);
}

TEST(RecordsDropLast, TakesItsCellsWithIt) {
  const ExactText text(kText);
  Records records(text.view());
  records.add_record(0);
  records.add_cell(0, 2);
  records.add_record(1);
  records.add_cell(6, 9, true);
  records.add_cell(11, 12);
  records.drop_last();
  EXPECT_EQ(shown(records), "0[ab]");
  records.add_record(2);
  records.add_cell(3, 4);
  EXPECT_EQ(shown(records), "0[ab] 2[c]");
}

// --- kinds -----------------------------------------------------------------------------------

// One column of an integer, a word, nothing and a date; and one of the number of the row.
struct FourRecords {
  FourRecords() : records(text.view()) {
    const std::size_t begins[][4] = {
        {0, 2, 3, 4}, {5, 8, 9, 10}, {11, 11, 12, 13}, {14, 24, 25, 26}};
    for (std::size_t k = 0; k < 4; ++k) {
      records.add_record(k);
      records.add_cell(begins[k][0], begins[k][1]);
      records.add_cell(begins[k][2], begins[k][3]);
    }
  }
  ExactText text = std::u16string_view(u"12,1\nred,2\n,3\n2020-01-02,4\n");
  Records records;
};

TEST(CellKinds, AreThoseOfTheChosenRecords) {
  const FourRecords four;
  ASSERT_EQ(shown(four.records), "0[12][1] 1[red][2] 2[][3] 3[2020-01-02][4]");
  const std::vector<std::size_t> rows = {0, 1, 3};
  const CellKinds kinds(four.records, rows, 2, 10);
  ASSERT_EQ(kinds.size(), 3U);
  EXPECT_EQ(kinds.columns(), 2U);
  EXPECT_EQ(kinds.at(0, 0), CellKind::integer);
  EXPECT_EQ(kinds.at(1, 0), CellKind::word);
  EXPECT_EQ(kinds.at(2, 0), CellKind::date);
  EXPECT_EQ(kinds.at(2, 1), CellKind::integer);
}

TEST(CellKinds, AreOfNoMoreRecordsThanAskedFor) {
  const FourRecords four;
  const std::vector<std::size_t> rows = {1, 2, 3};
  const CellKinds kinds(four.records, rows, 2, 2);
  ASSERT_EQ(kinds.size(), 2U);
  EXPECT_EQ(kinds.at(0, 0), CellKind::word);
  EXPECT_EQ(kinds.at(1, 0), CellKind::empty);
}

TEST(CellKindsDropBefore, LeavesTheLaterRecords) {
  const FourRecords four;
  const std::vector<std::size_t> rows = {0, 1, 2, 3};
  CellKinds kinds(four.records, rows, 2, 10);
  kinds.drop_before(0);
  EXPECT_EQ(kinds.size(), 4U);
  kinds.drop_before(3);
  ASSERT_EQ(kinds.size(), 1U);
  EXPECT_EQ(kinds.at(0, 0), CellKind::date);
  kinds.drop_before(1);
  EXPECT_EQ(kinds.size(), 0U);
}

}  // namespace
}  // namespace textio::assessment
