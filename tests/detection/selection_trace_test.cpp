// The record of a selection by itself. What a selection writes into it is tested with the selector.

#include <vltextstream/detection/selection_trace.hpp>

#include <cstddef>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/detection/strategy_selector.hpp>
#include "support/exact_text.hpp"
#include "support/selection.hpp"

namespace textio {
namespace {

using detection::CandidateFate;
using detection::CandidateTrace;
using detection::SelectionEnd;
using detection::SelectionTrace;
using detection::StrategySelector;
using testing_support::describe;
using testing_support::ExactText;

TEST(SelectionTraceRecord, IsEmptyAtFirst) {
  const SelectionTrace trace;
  EXPECT_EQ(trace.candidate_chars, u"");
  EXPECT_TRUE(trace.candidates.empty());
  EXPECT_TRUE(trace.filters.empty());
  EXPECT_EQ(trace.end, SelectionEnd::no_candidate);
  EXPECT_FALSE(trace.reached_end);
}

TEST(SelectionTraceRecord, HoldsCandidatesThatWereNotMeasuredAtFirst) {
  const CandidateTrace candidate;
  EXPECT_EQ(candidate.dialect, Dialect());
  EXPECT_EQ(candidate.header_lines, 0U);
  EXPECT_EQ(candidate.fate, CandidateFate::kept);
  EXPECT_EQ(describe(candidate.valuation), describe(StrategyValuation()));
}

TEST(SelectionTraceRecord, IsAPlainValue) {
  EXPECT_TRUE(std::is_copy_constructible_v<SelectionTrace>);
  EXPECT_TRUE(std::is_copy_assignable_v<SelectionTrace>);
  EXPECT_TRUE(std::is_nothrow_move_constructible_v<SelectionTrace>);
}

// The comma and the semicolon both separate a number and a text. The space occurs in no line and
// gives nothing.
const char16_t kTable[] = u"a;b,c\n1;2,3\n4;5,6\n";

TEST(SelectionTraceRecord, OutlivesTextOptionsSelectorAndStrategies) {
  SelectionTrace trace;
  {
    const auto options = std::make_unique<parser::options>();
    const ExactText text(kTable);
    StrategySelector(*options).pick_strategy(text.field(), 100, trace);
  }
  ASSERT_EQ(trace.candidates.size(), 2U);
  EXPECT_EQ(trace.candidates[0].dialect, (Dialect{LayoutMode::delimited, {";"}, {}}));
  EXPECT_EQ(trace.candidates[1].dialect, (Dialect{LayoutMode::delimited, {","}, {}}));
  EXPECT_EQ(trace.candidates[0].valuation.priors_rank, 2.0);
  EXPECT_EQ(trace.candidates[1].valuation.priors_rank, 0.0);
  EXPECT_EQ(trace.filters.back().name, "reduce_by_priors_rank");
  EXPECT_EQ(trace.filters.back().survivors, (std::vector<std::size_t>{1}));
}

TEST(SelectionTraceRecord, ACopyIsIndependent) {
  const parser::options options;
  const ExactText text(kTable);
  SelectionTrace trace;
  StrategySelector(options).pick_strategy(text.field(), 100, trace);
  const SelectionTrace copy = trace;
  const std::string before = describe(copy);
  StrategySelector(options).pick_strategy(ExactText(u"").field(), 100, trace);
  EXPECT_EQ(describe(copy), before);
  EXPECT_NE(describe(trace), before);
}

// --- names -------------------------------------------------------------------------------------

TEST(CandidateFateInWords, AreTheEnumerators) {
  EXPECT_EQ(to_string(CandidateFate::kept), "kept");
  EXPECT_EQ(to_string(CandidateFate::irregular), "irregular");
  EXPECT_EQ(to_string(CandidateFate::single_column), "single-column");
  EXPECT_EQ(to_string(CandidateFate::made_fixed_width), "made-fixed-width");
  EXPECT_EQ(to_string(static_cast<CandidateFate>(4)), "");
}

TEST(SelectionEndInWords, AreTheEnumerators) {
  EXPECT_EQ(to_string(SelectionEnd::single_survivor), "single-survivor");
  EXPECT_EQ(to_string(SelectionEnd::only_candidate), "only-candidate");
  EXPECT_EQ(to_string(SelectionEnd::no_candidate), "no-candidate");
  EXPECT_EQ(to_string(SelectionEnd::empty_sample), "empty-sample");
  EXPECT_EQ(to_string(SelectionEnd::whole_line_dates), "whole-line-dates");
  EXPECT_EQ(to_string(SelectionEnd::unresolved_tie), "unresolved-tie");
  EXPECT_EQ(to_string(SelectionEnd::given), "given");
  EXPECT_EQ(to_string(static_cast<SelectionEnd>(7)), "");
}

}  // namespace
}  // namespace textio
