#include <vltextstream/detection/sample_keeper.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::detection {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::text_of;

using Texts = std::vector<std::u16string>;
using Counts = std::vector<std::size_t>;

Texts lines_of(const Strategy& strategy) {
  Texts lines;
  for (const Field& line : strategy.lines()) lines.push_back(text_of(line));
  return lines;
}

bool wanted(const StrategyValuation&) { return true; }
bool unwanted(const StrategyValuation&) { return false; }

// --- samples that are given up and drawn again -------------------------------------------------

struct KeptCase {
  const char* rule;
  std::shared_ptr<Strategy> (*make)(const parser::options&);
  std::u16string text;
  unsigned long num_lines;
  Texts lines;
  Counts counts;
};
std::ostream& operator<<(std::ostream& out, const KeptCase& row) { return out << row.rule; }

std::shared_ptr<Strategy> commas(const parser::options& options) {
  return std::make_shared<DelimitedStrategy>(options, u',');
}
std::shared_ptr<Strategy> blanks(const parser::options& options) {
  return std::make_shared<SpaceAlignedStrategy>(options);
}
std::shared_ptr<Strategy> whole_lines(const parser::options& options) {
  return std::make_shared<LineReaderStrategy>(options);
}

const KeptCase kKeptCases[] = {
    {"Delimited", commas, u"a,b\n1,2\n3,4,5\n", 100, {u"a,b", u"1,2", u"3,4,5"}, {2, 2, 3}},
    {"BudgetUsedUp", commas, u"a,b\n1,2\n3,4,5\n", 2, {u"a,b", u"1,2"}, {2, 2}},
    {"EmptyLines",
     commas,
     u"\n\na,b\n \n1,2\n",
     100,
     {u"", u"", u"a,b", u"", u"1,2"},
     {0, 0, 2, 0, 2}},
    {"EmptyLinesBehindTheBudget", commas, u"a,b\n1,2\n\n\n", 2, {u"a,b", u"1,2"}, {2, 2}},
    {"EmptyLinesBeforeTheEnd", commas, u"a,b\n\n\n", 100, {u"a,b", u"", u""}, {2, 0, 0}},
    {"LineEndingsInQuotes", commas, u"\"a\nb\",c\n1,2\n", 100, {u"\"a\nb\",c", u"1,2"}, {2, 2}},
    {"EndMark", commas, u"a,b\n1,2\n\uFFFF3,4\n", 100, {u"a,b", u"1,2"}, {2, 2}},
    {"SpaceAligned", blanks, u" a  b\n1 2 3\n", 100, {u"a  b", u"1 2 3"}, {2, 3}},
    {"LineReader", whole_lines, u"a\nb,c\n", 100, {u"a", u"b,c"}, {1, 1}},
};

class SampleKept : public testing::TestWithParam<KeptCase> {
 protected:
  SampleKept() : text_(GetParam().text), strategy_(GetParam().make(options_)) {}

  SampleKeeper valued(std::size_t most_lines) {
    SampleKeeper samples(text_.field(), GetParam().num_lines, most_lines);
    samples.draw(*strategy_);
    samples.value(*strategy_, wanted);
    samples.put_away(*strategy_);
    return samples;
  }

  parser::options options_;
  ExactText text_;
  std::shared_ptr<Strategy> strategy_;
};

TEST_P(SampleKept, StaysWhereThereIsRoom) {
  const SampleKeeper samples = valued(GetParam().lines.size());
  EXPECT_EQ(lines_of(*strategy_), GetParam().lines);
  EXPECT_EQ(strategy_->field_counts(), GetParam().counts);
  const Field* const before = strategy_->lines().data();
  samples.bring_back(*strategy_);
  EXPECT_EQ(strategy_->lines().data(), before);
}

TEST_P(SampleKept, IsGivenUpForWantOfRoomAndDrawnAgain) {
  const SampleKeeper samples = valued(GetParam().lines.size() - 1);
  EXPECT_EQ(strategy_->lines().capacity(), 0U);
  EXPECT_EQ(strategy_->field_counts().capacity(), 0U);
  samples.bring_back(*strategy_);
  EXPECT_EQ(lines_of(*strategy_), GetParam().lines);
  EXPECT_EQ(strategy_->field_counts(), GetParam().counts);
}

INSTANTIATE_TEST_SUITE_P(Table, SampleKept, testing::ValuesIn(kKeptCases), ByRule());

// --- what is never given up ---------------------------------------------------------------------

TEST(SampleKeeperPutAway, KeepsTheSampleOfFixedWidths) {
  const parser::options options;
  const ExactText text(u"aabb\nccdd\n");
  FixedWidthStrategy strategy(options, {2, 2});
  SampleKeeper samples(text.field(), 100, 0);
  samples.draw(strategy);
  samples.value(strategy, wanted);
  samples.put_away(strategy);
  EXPECT_EQ(lines_of(strategy), (Texts{u"aabb", u"ccdd"}));
}

// Its counts are those of another sample.
TEST(SampleKeeperPutAway, KeepsASampleThatIsNewerThanTheValuation) {
  const parser::options options;
  const ExactText text(u"a,b\n1,2\n3,4\n");
  DelimitedStrategy strategy(options, u',');
  SampleKeeper samples(text.field(), 2, 0);
  samples.draw(strategy);
  samples.value(strategy, wanted);
  samples.draw(strategy, 3);
  samples.put_away(strategy);
  samples.bring_back(strategy);
  EXPECT_EQ(lines_of(strategy), (Texts{u"a,b", u"1,2", u"3,4"}));
  EXPECT_EQ(strategy.field_counts(), (Counts{2, 2}));
}

TEST(SampleKeeperPutAway, CountsTheLinesOfAllThatItKept) {
  const parser::options options;
  const ExactText text(u"a,b\n1,2\n");
  DelimitedStrategy first(options, u',');
  DelimitedStrategy second(options, u';');
  SampleKeeper samples(text.field(), 100, 3);
  for (Strategy* strategy : {&first, &second}) {
    samples.draw(*strategy);
    samples.value(*strategy, wanted);
    samples.put_away(*strategy);
  }
  EXPECT_EQ(first.lines().size(), 2U);
  EXPECT_EQ(second.lines().size(), 0U);
  samples.bring_back(second);
  EXPECT_EQ(second.lines().size(), 2U);
}

// --- samples one after the other -----------------------------------------------------------------

// To commas the text is one line, to the line reader six.
struct OrderCase {
  const char* rule;
  std::vector<std::shared_ptr<Strategy> (*)(const parser::options&)> order;
};
std::ostream& operator<<(std::ostream& out, const OrderCase& row) { return out << row.rule; }

const OrderCase kOrderCases[] = {
    {"TheLongerOneFirst", {whole_lines, commas}},
    {"TheShorterOneFirst", {commas, whole_lines}},
    {"TheSameTwice", {whole_lines, whole_lines}},
    {"ThreeOfThem", {commas, whole_lines, commas}},
};

class SampleKeeperDraw : public testing::TestWithParam<OrderCase> {};
TEST_P(SampleKeeperDraw, DoesNotDependOnTheSampleBefore) {
  const parser::options options;
  const ExactText text(u"\"a\n1,2\n3\n\n5\n6");
  SampleKeeper samples(text.field(), 100);
  for (const auto make : GetParam().order) {
    const std::shared_ptr<Strategy> strategy = make(options);
    samples.draw(*strategy);
    const Texts expected = make == commas ? Texts{u"\"a\n1,2\n3\n\n5\n6"}
                                          : Texts{u"\"a", u"1,2", u"3", u"", u"5", u"6"};
    EXPECT_EQ(lines_of(*strategy), expected);
    EXPECT_LE(strategy->lines().capacity(), 2 * expected.size()) << "room that is not given back";
    samples.value(*strategy, wanted);
    EXPECT_EQ(strategy->field_counts(), make == commas ? Counts{1} : Counts({1, 1, 1, 0, 1, 1}));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, SampleKeeperDraw, testing::ValuesIn(kOrderCases), ByRule());
// --- drawing -------------------------------------------------------------------------------------

TEST(SampleKeeperDraw, MakesRoomForAsManyLinesAsWereDrawnBefore) {
  const parser::options options;
  std::u16string lines;
  for (std::size_t i = 0; i < 20'000; ++i) lines += u"1,2\n";
  const ExactText text(lines);
  DelimitedStrategy first(options, u',');
  DelimitedStrategy second(options, u';');
  SampleKeeper samples(text.field(), 30'000);
  samples.draw(first);
  samples.draw(second);
  EXPECT_GT(first.lines().capacity(), 20'000U);
  EXPECT_EQ(second.lines().size(), 20'000U);
  EXPECT_EQ(second.lines().capacity(), 20'000U);
}

// The quote swallows all lines but the first.
TEST(SampleKeeperDraw, TakesBackTheRoomForManyMoreLinesThanThereAre) {
  const parser::options options;
  const ExactText text(u"a\n\"\n\n\n\n\n\n\n\n\n\n");
  LineReaderStrategy first(options);
  DelimitedStrategy second(options, u',');
  SampleKeeper samples(text.field(), 100);
  samples.draw(first);
  samples.draw(second);
  EXPECT_EQ(first.lines().size(), 11U);
  EXPECT_EQ(second.lines().size(), 2U);
  EXPECT_EQ(second.lines().capacity(), 2U);
}

// --- valuing -------------------------------------------------------------------------------------

TEST(SampleKeeperValue, LeavesTheClassesOutOfWhatIsNotWanted) {
  const parser::options options;
  const ExactText text(u"a,b\n1,2\n3,4\n");
  DelimitedStrategy kept(options, u',');
  DelimitedStrategy dropped(options, u',');
  SampleKeeper samples(text.field(), 100);
  samples.draw(kept);
  samples.draw(dropped);
  EXPECT_EQ(samples.value(kept, wanted).numeric_columns, 2U);
  EXPECT_EQ(samples.value(dropped, unwanted).numeric_columns, 0U);
  EXPECT_EQ(dropped.valuation().modal_field_count, 2);
  EXPECT_TRUE(dropped.column_classes().empty());
}

}  // namespace
}  // namespace textio::detection
