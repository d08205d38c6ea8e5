// ColumnCheck: whether further cells of a column are what the facts about it make a reader expect.
//
//   const ColumnCheck check(layout.columns[2], layout.dialect, settings);   // a column of decimals with commas
//   check.judge(u"7,25");    // CellJudgement::fits
//   check.judge(u"7.25");    // CellJudgement::contradicts
//   check.judge(u"n/a");     // CellJudgement::missing
//
// Ownership  the facts and the settings must outlive it.
// Errors     nothing throws but std::bad_alloc.
// Cost       linear in the cell.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <vltextstream/columns/cell_class.hpp>
#include <vltextstream/columns/date_format.hpp>
#include <vltextstream/columns/number_format.hpp>
#include <vltextstream/layout/column_facts.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/table_dialect.hpp>

namespace textio::standalone {

enum class CellJudgement { fits, missing, contradicts };

class ColumnCheck {
 public:
  // The marks of the table hold for a column whose own cells have none.
  ColumnCheck(const ColumnFacts& facts, const TableDialect& dialect,
              const DetectSettings& settings);

  CellJudgement judge(std::u16string_view cell) const;

 private:
  bool fits(std::u16string_view text, columns::CellClass one) const;
  bool is_number_fitting(std::u16string_view amount) const;
  bool is_date_fitting(std::u16string_view text) const;

  const ColumnFacts& facts_;
  columns::CellRules rules_;
  columns::NumberFormat format_;
  std::unique_ptr<columns::DateVotes> dates_;  // of a column of dates
  std::uint32_t classes_ = 0;                  // those that the column allows, one bit each
  std::u16string true_word_;                   // folded
  std::u16string false_word_;
};

}  // namespace textio::standalone
