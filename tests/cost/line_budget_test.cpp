// Sampling reads the lines of the budget and no more.
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/detection/strategy_selector.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

constexpr auto kAllLines = std::numeric_limits<unsigned long>::max();

class CountingStrategy : public DelimitedStrategy {
 public:
  using DelimitedStrategy::DelimitedStrategy;

  FieldExtent get_line_extent(const Field& text, unsigned long start) const override {
    ++lines_cut;
    return DelimitedStrategy::get_line_extent(text, start);
  }

  mutable std::size_t lines_cut = 0;
};

std::u16string repeat(const std::u16string& part, std::size_t times) {
  std::u16string text;
  for (std::size_t i = 0; i < times; ++i) text += part;
  return text;
}

struct BudgetCase {
  const char* rule;
  std::u16string text;
  bool header_given;
  unsigned long header_lines;
  unsigned long budget;
  std::size_t lines_cut;
};
std::ostream& operator<<(std::ostream& out, const BudgetCase& row) { return out << row.rule; }

const BudgetCase kBudgetCases[] = {
    {"NoLineForABudgetOfZero", repeat(u"a,b\n", 1000), false, 0, 0, 0},
    {"OneLine", repeat(u"a,b\n", 1000), false, 0, 1, 1},
    {"AHundredLines", repeat(u"a,b\n", 1000), false, 0, 100, 100},
    {"AllLinesOfAShortText", repeat(u"a,b\n", 7), false, 0, 100, 7},
    {"AllLinesForTheLargestBudget", repeat(u"a,b\n", 1000), false, 0, kAllLines, 1000},
    {"GivenHeaderLinesComeOnTop", repeat(u"a,b\n", 1000), true, 3, 100, 103},
    {"GivenZeroHeaderLinesAddNothing", repeat(u"a,b\n", 1000), true, 0, 100, 100},
    {"EmptyLinesAreCutButDoNotCount", repeat(u"a,b\n\n", 1000), false, 0, 100, 199},
    {"CommentsAreCutButDoNotCount", repeat(u"#\na,b\n", 1000), false, 0, 100, 200},
    {"AQuotedLineBreakIsOneLine", repeat(u"\"a\nb\",c\n", 1000), false, 0, 100, 100},
};

class LineBudget : public testing::TestWithParam<BudgetCase> {};
TEST_P(LineBudget, EndsTheSampling) {
  const BudgetCase& row = GetParam();
  parser::options options;
  options.comment_style = {u"#"};
  if (row.header_given) {
    options.detect_header_lines = false;
    options.header_lines = row.header_lines;
  }
  const ExactText text(row.text);
  CountingStrategy strategy(options, u',');
  strategy.populate_fields(text.field(), row.budget);
  EXPECT_EQ(strategy.lines_cut, row.lines_cut);
  strategy.valuation();
  EXPECT_EQ(strategy.lines_cut, row.lines_cut) << "the valuation sampled again";
}
INSTANTIATE_TEST_SUITE_P(Table, LineBudget, testing::ValuesIn(kBudgetCases), ByRule());

// A text of which only the beginning may be read: the rest is in pages without read access.
class GuardedText {
 public:
  explicit GuardedText(const std::u16string& readable)
      : page_(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
        readable_bytes_(rounded_up(readable.size() * sizeof(char16_t))),
        bytes_(readable_bytes_ + 16 * page_),
        memory_(
            ::mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    if (memory_ == MAP_FAILED) throw std::bad_alloc();
    auto* const units = static_cast<char16_t*>(memory_);
    for (std::size_t i = 0; i < readable_bytes_ / sizeof(char16_t); ++i) {
      units[i] = readable[i % readable.size()];
    }
    ::mprotect(static_cast<char*>(memory_) + readable_bytes_, bytes_ - readable_bytes_, PROT_NONE);
  }
  GuardedText(const GuardedText&) = delete;
  GuardedText& operator=(const GuardedText&) = delete;
  ~GuardedText() { ::munmap(memory_, bytes_); }

  // All of it, including the part that must not be read.
  Field field() const { return {static_cast<char16_t*>(memory_), bytes_ / sizeof(char16_t)}; }

 private:
  std::size_t rounded_up(std::size_t bytes) const { return (bytes + page_ - 1) / page_ * page_; }

  std::size_t page_;
  std::size_t readable_bytes_;
  std::size_t bytes_;
  void* memory_;
};

struct TableCase {
  const char* rule;
  std::u16string line;
};
std::ostream& operator<<(std::ostream& out, const TableCase& row) { return out << row.rule; }

const TableCase kTableCases[] = {
    {"OfADelimitedTable", u"1.5,north;2024-03-01\n"},
    {"OfAQuotedTable", u"\"a, \"\"b\"\"\",\"c\nd\"\n"},
    {"OfAnAlignedTable", u"1.5   north  2024-03-01\n"},
    {"OfProse", u"the weather was fine\n"},
};

class LineBudgetOfADetection : public testing::TestWithParam<TableCase> {};
TEST_P(LineBudgetOfADetection, LeavesTheRestOfTheTextUntouched) {
  // The line after the budget is present, and part of the next ones.
  const GuardedText text(repeat(GetParam().line, 101));
  const parser::options options;
  const detection::StrategySelector selector(options);
  EXPECT_EXIT(
      {
        const std::size_t lines = selector.pick_strategy(text.field(), 100)->lines().size();
        std::_Exit(lines == 100 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}
INSTANTIATE_TEST_SUITE_P(Table, LineBudgetOfADetection, testing::ValuesIn(kTableCases), ByRule());

}  // namespace
}  // namespace textio
