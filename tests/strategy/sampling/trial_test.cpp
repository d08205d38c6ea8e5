#include <vltextstream/strategy/sampling/trial.hpp>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include "support/exact_text.hpp"

namespace textio {
namespace {

using testing_support::ExactText;

TEST(Trial, LeavesTheStrategyAloneUntilItIsSettled) {
  const parser::options options;
  const ExactText text(u"name,age\nAnn,31\nBob,27\n");
  DelimitedStrategy commas(options, u',');
  DrawnSample sample = commas.draw(text.field(), {100});
  Trial trial(commas, sample);
  EXPECT_EQ(trial.score().valuation.modal_field_count, 2);
  EXPECT_EQ(trial.score().valuation.numeric_columns, 0U) << "columns are not classified yet";
  EXPECT_EQ(commas.num_variables(), -1);
  EXPECT_EQ(commas.header_lines(), Strategy::kUnknownHeaderLines);

  trial.settle();
  EXPECT_EQ(commas.num_variables(), 2);
  EXPECT_EQ(commas.header_lines(), 0U);
  EXPECT_EQ(commas.valuation().numeric_columns, 1U);
  EXPECT_EQ(commas.column_classes().size(), 2U);
}

// Widths 1 and 2: "ab" has a short second field and so a third; the next line starts at width 2.
TEST(Trial, MovesAFixedWidthStrategyToTheColumnAfterItsSample) {
  const parser::options options;
  const ExactText text(u"ab\n");
  const ExactText line(u"xyz");
  FixedWidthStrategy fixed(options, {1, 2});
  DrawnSample sample = fixed.draw(text.field(), {100});
  Trial trial(fixed, sample);
  EXPECT_EQ(trial.counts().to_vector(), (std::vector<std::size_t>{3}));
  EXPECT_EQ(fixed.next_column(), 0U);
  trial.settle();
  EXPECT_EQ(fixed.next_column(), 1U);
}

}  // namespace
}  // namespace textio
