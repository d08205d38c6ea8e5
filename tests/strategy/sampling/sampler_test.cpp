#include <vltextstream/strategy/sampling/sampler.hpp>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::text_of;

using Texts = std::vector<std::u16string>;

// "2 text at 0, 1 blank at 4": the lines of each run, and where the first of them starts.
std::string described(const DrawnSample& sample) {
  constexpr const char* kKinds[] = {"text", "blank", "comment"};
  std::string runs;
  for (const SampleRun& run : sample.found.runs) {
    if (!runs.empty()) runs += ", ";
    runs += std::to_string(run.num_lines) + ' ' + kKinds[static_cast<std::size_t>(run.kind)] +
            " at " + std::to_string(run.begin);
  }
  return runs;
}

struct SampleCase {
  const char* rule;
  std::u16string text;
  std::size_t most_texts;
  std::string runs;
  Texts lines;
  std::size_t end;
};
std::ostream& operator<<(std::ostream& out, const SampleCase& row) { return out << row.rule; }

const SampleCase kSampleCases[] = {
    {"LinesOfOneKindAreOneRun", u"a\nb\n", 9, "2 text at 0", {u"a", u"b"}, 4},
    {"BlankLinesAreCounted",
     u"a\n\n \n\t\nb",
     9,
     "1 text at 0, 3 blank at 2, 1 text at 7",
     {u"a", u"", u"", u"", u"b"},
     8},
    {"CommentsAreNoLines",
     u"#x\n#y\na\n#z\n",
     9,
     "2 comment at 0, 1 text at 6, 1 comment at 8",
     {u"a"},
     11},
    {"TheLimitCountsTexts",
     u"\na\n\nb\nc\n",
     2,
     "1 blank at 0, 1 text at 1, 1 blank at 3, 1 text at 4",
     {u"", u"a", u"", u"b"},
     6},
    {"NothingAfterTheLastTextIsLookedAt", u"a\n\n#x\n", 1, "1 text at 0", {u"a"}, 2},
    {"AQuotedLineEndingIsPartOfALine",
     u"\"a\nb\",c\nd",
     9,
     "2 text at 0",
     {u"\"a\nb\",c", u"d"},
     9},
    {"AnEndMarkEndsTheSample", u"a\n\uFFFFb\n", 9, "1 text at 0", {u"a"}, 2},
    {"NoTextIsWanted", u"a\n", 0, "", {}, 0},
    {"AnEmptyTextHasNoLine", u"", 9, "", {}, 0},
};

class DrawSample : public testing::TestWithParam<SampleCase> {};
TEST_P(DrawSample, FindsLinesAndRuns) {
  parser::options options;
  options.comment_style = {u"#"};
  DelimitedStrategy commas(options, u',');
  const ExactText text(GetParam().text);
  const DrawnSample sample = commas.draw(text.field(), {GetParam().most_texts});
  EXPECT_EQ(described(sample), GetParam().runs);
  Texts lines;
  for (std::size_t i = 0; i < sample.size(); ++i) lines.push_back(text_of(sample.line(i)));
  EXPECT_EQ(lines, GetParam().lines);
  EXPECT_EQ(sample.found.end, GetParam().end);
  EXPECT_TRUE(sample.has_counts());
}
INSTANTIATE_TEST_SUITE_P(Table, DrawSample, testing::ValuesIn(kSampleCases), ByRule());

// Where something stands for empty lines, they are texts, but have no field.
TEST(DrawSampleEmptyText, CountsNoFields) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  FieldFormat format;
  format.empty_text = u"-";
  const ExactText text(u"a,b\n\nc\n");
  const DrawnSample sample =
      draw_sample(text.field(), *commas.splitter(), {format, options.comment_style}, {9});
  EXPECT_EQ(described(sample), "3 text at 0");
  EXPECT_EQ(sample.counts.to_vector(), (std::vector<std::size_t>{2, 0, 1}));
}

TEST(DrawSampleLastComments, AreTakenUpToTheNextLine) {
  parser::options options;
  options.comment_style = {u"#"};
  DelimitedStrategy commas(options, u',');
  const ExactText text(u"a\n#x\n#y\nb\n#z\n");
  SampleLimits limits{1};
  limits.takes_last_comments = true;
  const DrawnSample sample = commas.draw(text.field(), limits);
  EXPECT_EQ(described(sample), "1 text at 0, 2 comment at 2");
  EXPECT_EQ(sample.found.end, 8U);
}

TEST(DrawnSample, TakesItsLinesWithTheBlankOnes) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  const ExactText text(u"a\n\n\nb\n");
  DrawnSample sample = commas.draw(text.field(), {9});
  EXPECT_EQ(sample.texts.size(), 2U);
  const std::vector<Field> lines = sample.take_lines();
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(text_of(lines[3]), u"b");
  EXPECT_EQ(lines[1].data, empty_field().data);
}

TEST(DrawnSample, HasNoCountsOfFixedWidths) {
  const parser::options options;
  FixedWidthStrategy fixed(options, {1, 2});
  const ExactText text(u"abc\n");
  EXPECT_FALSE(fixed.draw(text.field(), {9}).has_counts());
}

TEST(AddRun, BeginsAnotherRunWhereANumberWouldOverflow) {
  std::vector<SampleRun> runs;
  add_run(runs, {SampleLineKind::blank, 0, 0, 0, 0}, 4'294'967'290U);
  add_run(runs, {SampleLineKind::blank, 0, 4'294'967'290U, 0, 7}, 5);
  EXPECT_EQ(runs.size(), 1U);
  add_run(runs, {SampleLineKind::blank, 0, 4'294'967'295U, 0, 9}, 1);
  ASSERT_EQ(runs.size(), 2U);
  EXPECT_EQ(runs[0].num_lines, 4'294'967'295U);
  EXPECT_EQ(runs[1].num_lines, 1U);
  EXPECT_EQ(runs[1].first_line, 4'294'967'295U);
}

TEST(PopulateFields, KeepsWhatSamplingFound) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  const ExactText text(u"a\n\nb\nc\nddd\n");
  commas.populate_fields(text.field(), 2);
  EXPECT_EQ(commas.sample().runs.size(), 3U);
  EXPECT_EQ(commas.sample().end, 5U);
  EXPECT_FALSE(commas.sample().reached_end);
  EXPECT_EQ(commas.take_sample_runs().size(), 3U);
  EXPECT_TRUE(commas.sample().runs.empty());
  EXPECT_EQ(commas.sample().end, 5U);
}

}  // namespace
}  // namespace textio
