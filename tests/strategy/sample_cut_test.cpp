#include <vltextstream/strategy/sample_cut.hpp>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/exact_text.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;

using Texts = std::vector<std::u16string>;
using Counts = std::vector<std::size_t>;

// Each field of a line, as far as the line goes.
Texts fields_of(SampleCut& cut, const Strategy& strategy, std::size_t line) {
  const Field& whole = strategy.lines()[line];
  Texts texts;
  for (const Field& field : cut.fields(line)) {
    const auto rest = static_cast<std::size_t>(whole.data + whole.length - field.data);
    texts.push_back(text_of(Field(field.data, std::min(field.length, rest))));
  }
  return texts;
}

TEST(SampleCut, CountsAndCutsDelimitedLines) {
  const parser::options options;
  const ExactText text(u"a,b\n\n\"1,2\",3,\n");
  DelimitedStrategy strategy(options, u',');
  strategy.populate_fields(text.field(), 100);
  SampleCut cut(strategy);
  EXPECT_EQ(cut.counts(), (Counts{2, 0, 3}));
  EXPECT_EQ(fields_of(cut, strategy, 2), (Texts{u"\"1,2\"", u"3", u""}));
  EXPECT_EQ(fields_of(cut, strategy, 1), Texts{});
  EXPECT_EQ(fields_of(cut, strategy, 0), (Texts{u"a", u"b"}));
}

TEST(SampleCut, CutsBlankSeparatedAndWholeLines) {
  const parser::options options;
  const ExactText text(u"a  b\n1 2  3\n");
  SpaceAlignedStrategy aligned(options);
  aligned.populate_fields(text.field(), 100);
  SampleCut columns(aligned);
  EXPECT_EQ(fields_of(columns, aligned, 1), (Texts{u"1", u"2", u"3"}));
  LineReaderStrategy reader(options);
  reader.populate_fields(text.field(), 100);
  SampleCut lines(reader);
  EXPECT_EQ(fields_of(lines, reader, 1), (Texts{u"1 2  3"}));
}

// Widths 1, 2, 3. "abcd" takes the columns 1, 2, 3, of which the last is short and brings one field
// more: column 1 again. So "ef" starts at width 2, which it fills; "ghi" starts at width 3.
class SampleCutOfFixedWidths : public testing::Test {
 protected:
  SampleCutOfFixedWidths() { strategy_.populate_fields(text_.field(), 100); }

  parser::options options_;
  ExactText text_{u"abcd\nef\nghi\n"};
  FixedWidthStrategy strategy_{options_, {1, 2, 3}};
};

TEST_F(SampleCutOfFixedWidths, GoesBackToTheColumnOfTheLine) {
  SampleCut cut(strategy_);
  EXPECT_EQ(cut.counts(), (Counts{4, 1, 1}));
  EXPECT_EQ(fields_of(cut, strategy_, 2), (Texts{u"ghi"}));
  EXPECT_EQ(fields_of(cut, strategy_, 1), (Texts{u"ef"}));
  EXPECT_EQ(fields_of(cut, strategy_, 0), (Texts{u"a", u"bc", u"d", u""}));
  EXPECT_EQ(fields_of(cut, strategy_, 2), (Texts{u"ghi"}));
}

// Six fields lead back to width 1; the next field has it.
TEST_F(SampleCutOfFixedWidths, LeavesTheStrategyWhereTheLastLineEnds) {
  SampleCut cut(strategy_);
  cut.fields(0);
  const ExactText line(u"xyz");
  EXPECT_EQ(strategy_.get_next_field(line.field(), 0).field.length, 1U);
}

// The second cut begins where the first one has left the strategy: at width 2 after seven fields.
TEST_F(SampleCutOfFixedWidths, BeginsAtTheColumnThatComesNext) {
  const ExactText line(u"xyz");
  strategy_.get_next_field(line.field(), 0);
  SampleCut cut(strategy_);
  EXPECT_EQ(fields_of(cut, strategy_, 0), (Texts{u"ab", u"cd", u""}));
}

// A strategy from outside, which tells no field twice: each is as long as the fields cut so far.
class GrowingFields : public LineReaderStrategy {
 public:
  using LineReaderStrategy::LineReaderStrategy;

  FieldExtent get_next_field(const Field& line, unsigned long start) override {
    const std::size_t length = std::min<std::size_t>(++fields_, line.length - start);
    return {Field(line.data + start, length), start + length};
  }
  void reset_fields() override { ++resets_; }

  std::size_t fields_ = 0;
  std::size_t resets_ = 0;
};

TEST(SampleCut, CutsAStrategyFromOutsideOnce) {
  const parser::options options;
  const ExactText text(u"abc\n\ndefg\n");
  GrowingFields strategy(options);
  strategy.populate_fields(text.field(), 100);
  SampleCut cut(strategy);
  EXPECT_EQ(cut.counts(), (Counts{2, 0, 2}));
  EXPECT_EQ(fields_of(cut, strategy, 2), (Texts{u"def", u"g"}));
  EXPECT_EQ(fields_of(cut, strategy, 1), Texts{});
  EXPECT_EQ(fields_of(cut, strategy, 0), (Texts{u"a", u"bc"}));
  EXPECT_EQ(strategy.fields_, 4U);
  EXPECT_EQ(strategy.resets_, 3U);
}

}  // namespace
}  // namespace textio
