#include <vltextstream/strategy/sampling/sample_cut.hpp>

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

DrawnSample sample_of(Strategy& strategy, const ExactText& text) {
  return strategy.draw(text.field(), {100});
}

// Each field of a line, cut off at the end of the line.
Texts fields_of(SampleCut& cut, const DrawnSample& sample, std::size_t line) {
  const Field& whole = sample.line(line);
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
  DrawnSample sample_of_cut = sample_of(strategy, text);
  SampleCut cut(strategy, sample_of_cut);
  EXPECT_EQ(cut.counts().to_vector(), (Counts{2, 0, 3}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 2), (Texts{u"\"1,2\"", u"3", u""}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 1), Texts{});
  EXPECT_EQ(fields_of(cut, sample_of_cut, 0), (Texts{u"a", u"b"}));
}

TEST(SampleCut, CutsBlankSeparatedAndWholeLines) {
  const parser::options options;
  const ExactText text(u"a  b\n1 2  3\n");
  SpaceAlignedStrategy aligned(options);
  DrawnSample sample_of_columns = sample_of(aligned, text);
  SampleCut columns(aligned, sample_of_columns);
  EXPECT_EQ(fields_of(columns, sample_of_columns, 1), (Texts{u"1", u"2", u"3"}));
  LineReaderStrategy reader(options);
  DrawnSample sample_of_lines = sample_of(reader, text);
  SampleCut lines(reader, sample_of_lines);
  EXPECT_EQ(fields_of(lines, sample_of_lines, 1), (Texts{u"1 2  3"}));
}

TEST(SampleCut, CutsNoComments) {
  parser::options options;
  options.comment_style = {u"#"};
  const ExactText text(u"#abc\nabc\n#\nd\n");
  FixedWidthStrategy fixed(options, {1, 2});
  DrawnSample sample_of_cut = sample_of(fixed, text);
  SampleCut cut(fixed, sample_of_cut);
  EXPECT_EQ(cut.counts().to_vector(), (Counts{2, 1}));
}

// Widths 1, 2, 3. "abcd" uses the columns 1, 2, 3. The last is short, so one more field follows:
// column 1 again. So "ef" starts at width 2, which it fills, and "ghi" starts at width 3.
class SampleCutOfFixedWidths : public testing::Test {
 protected:
  parser::options options_;
  ExactText text_{u"abcd\nef\nghi\n"};
  FixedWidthStrategy strategy_{options_, {1, 2, 3}};
  DrawnSample sample_of_cut = sample_of(strategy_, text_);
};

TEST_F(SampleCutOfFixedWidths, GoesBackToTheColumnOfTheLine) {
  SampleCut cut(strategy_, sample_of_cut);
  EXPECT_EQ(cut.counts().to_vector(), (Counts{4, 1, 1}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 2), (Texts{u"ghi"}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 1), (Texts{u"ef"}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 0), (Texts{u"a", u"bc", u"d", u""}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 2), (Texts{u"ghi"}));
}

// Five fields before it lead to width 3, while the strategy itself is still at width 1.
TEST_F(SampleCutOfFixedWidths, ReportsTheColumnAfterTheLastLine) {
  ExactText text(u"abcd\nef\n");
  DrawnSample sample = sample_of(strategy_, text);
  SampleCut cut(strategy_, sample);
  cut.fields(0);
  EXPECT_EQ(cut.end_column(), 2U);
  const ExactText line(u"xyz");
  EXPECT_EQ(strategy_.get_next_field(line.field(), 0).field.length, 1U);
}

// The second cut begins where the first one left the strategy: at width 2 after seven fields.
TEST_F(SampleCutOfFixedWidths, BeginsAtTheNextColumn) {
  const ExactText line(u"xyz");
  strategy_.get_next_field(line.field(), 0);
  SampleCut cut(strategy_, sample_of_cut);
  EXPECT_EQ(fields_of(cut, sample_of_cut, 0), (Texts{u"ab", u"cd", u""}));
}

// A strategy from outside that never finds the same field twice: each is as long as the number of
// fields cut so far.
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
  DrawnSample sample_of_cut = sample_of(strategy, text);
  SampleCut cut(strategy, sample_of_cut);
  EXPECT_EQ(cut.counts().to_vector(), (Counts{2, 0, 2}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 2), (Texts{u"def", u"g"}));
  EXPECT_EQ(fields_of(cut, sample_of_cut, 1), Texts{});
  EXPECT_EQ(fields_of(cut, sample_of_cut, 0), (Texts{u"a", u"bc"}));
  EXPECT_EQ(strategy.fields_, 4U);
  EXPECT_EQ(strategy.resets_, 3U);
}

}  // namespace
}  // namespace textio
