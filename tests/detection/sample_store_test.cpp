#include <vltextstream/detection/sample_store.hpp>

#include <algorithm>
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

Texts lines_of(const DrawnSample& sample) {
  Texts lines;
  for (std::size_t i = 0; i < sample.size(); ++i) lines.push_back(text_of(sample.line(i)));
  return lines;
}

Candidate valued_by(SampleStore& samples, const std::shared_ptr<Strategy>& strategy) {
  return valued(strategy, samples.draw(*strategy));
}

// --- samples that are dropped and drawn again -------------------------------------------------

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
    {"EmptyLinesAfterTheBudget", commas, u"a,b\n1,2\n\n\n", 2, {u"a,b", u"1,2"}, {2, 2}},
    {"EmptyLinesBeforeTheEnd", commas, u"a,b\n\n\n", 100, {u"a,b", u"", u""}, {2, 0, 0}},
    {"LineEndingsInQuotes", commas, u"\"a\nb\",c\n1,2\n", 100, {u"\"a\nb\",c", u"1,2"}, {2, 2}},
    {"EndMark", commas, u"a,b\n1,2\n\uFFFF3,4\n", 100, {u"a,b", u"1,2"}, {2, 2}},
    {"SpaceAligned", blanks, u" a  b\n1 2 3\n", 100, {u"a  b", u"1 2 3"}, {2, 3}},
    {"LineReader", whole_lines, u"a\nb,c\n", 100, {u"a", u"b,c"}, {1, 1}},
};

// The lines and counts of a sample, and where it ends.
class SampleKept : public testing::TestWithParam<KeptCase> {
 protected:
  SampleKept() : text_(GetParam().text), strategy_(GetParam().make(options_)) {}

  void expect_sample(const Candidate& candidate) const {
    EXPECT_EQ(lines_of(candidate.sample), GetParam().lines);
    EXPECT_EQ(candidate.counts.to_vector(), GetParam().counts);
  }

  // The text lines, the runs of texts and blank lines, and those of equal numbers of fields.
  std::size_t num_entries() const {
    const Counts& counts = GetParam().counts;
    std::size_t entries = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const bool begins = i == 0;
      if (counts[i] > 0) ++entries;
      if (begins || (counts[i] == 0) != (counts[i - 1] == 0)) ++entries;
      if (begins || counts[i] != counts[i - 1]) ++entries;
    }
    return entries;
  }

  parser::options options_;
  ExactText text_;
  std::shared_ptr<Strategy> strategy_;
};

TEST_P(SampleKept, IsKeptIfThereIsRoom) {
  SampleStore samples(text_.field(), GetParam().num_lines, num_entries());
  Candidate candidate = valued_by(samples, strategy_);
  samples.keep_or_drop(candidate);
  expect_sample(candidate);
  const Field* const before = candidate.sample.texts.data();
  samples.restore(candidate);
  EXPECT_EQ(candidate.sample.texts.data(), before);
}

TEST_P(SampleKept, IsDroppedWithoutRoomAndDrawnAgain) {
  SampleStore samples(text_.field(), GetParam().num_lines, num_entries() - 1);
  Candidate candidate = valued_by(samples, strategy_);
  const std::size_t end = candidate.sample.found.end;
  samples.keep_or_drop(candidate);
  EXPECT_EQ(candidate.sample.texts.capacity(), 0U);
  EXPECT_EQ(candidate.counts.size(), 0U);
  samples.restore(candidate);
  expect_sample(candidate);
  EXPECT_EQ(candidate.sample.found.end, end);
}

INSTANTIATE_TEST_SUITE_P(Table, SampleKept, testing::ValuesIn(kKeptCases), ByRule());

// --- what is never dropped ----------------------------------------------------------------------

TEST(SampleStoreKeepOrDrop, KeepsTheSampleOfFixedWidths) {
  const parser::options options;
  const ExactText text(u"aabb\nccdd\n");
  SampleStore samples(text.field(), 100, 0);
  Candidate candidate = valued_by(
      samples, std::make_shared<FixedWidthStrategy>(options, std::vector<unsigned long>{2, 2}));
  samples.keep_or_drop(candidate);
  EXPECT_EQ(lines_of(candidate.sample), (Texts{u"aabb", u"ccdd"}));
}

// Its counts belong to another sample.
TEST(SampleStoreKeepOrDrop, KeepsASampleThatIsNewerThanTheValuation) {
  const parser::options options;
  const ExactText text(u"a,b\n1,2\n3,4\n");
  SampleStore samples(text.field(), 2, 0);
  Candidate candidate = valued_by(samples, commas(options));
  candidate.sample = samples.draw(*candidate.strategy, 3);
  samples.keep_or_drop(candidate);
  samples.restore(candidate);
  EXPECT_EQ(lines_of(candidate.sample), (Texts{u"a,b", u"1,2", u"3,4"}));
  EXPECT_EQ(candidate.counts.to_vector(), (Counts{2, 2}));
}

TEST(SampleStoreKeepOrDrop, CountsTheLinesOfAllKeptSamples) {
  const parser::options options;
  const ExactText text(u"a,b\n1,2\n");
  SampleStore samples(text.field(), 100, 7);  // each has four entries
  Candidate first = valued_by(samples, commas(options));
  samples.keep_or_drop(first);
  Candidate second = valued_by(samples, commas(options));
  samples.keep_or_drop(second);
  EXPECT_EQ(first.sample.size(), 2U);
  EXPECT_EQ(second.sample.size(), 0U);
  samples.restore(second);
  EXPECT_EQ(second.sample.size(), 2U);
}

// --- consecutive samples -------------------------------------------------------------------------

// For commas the text is one line, for the line reader six.
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

class SampleStoreDraw : public testing::TestWithParam<OrderCase> {};
TEST_P(SampleStoreDraw, DoesNotDependOnTheSampleBefore) {
  const parser::options options;
  const ExactText text(u"\"a\n1,2\n3\n\n5\n6");
  SampleStore samples(text.field(), 100);
  for (const auto make : GetParam().order) {
    const std::shared_ptr<Strategy> strategy = make(options);
    const Candidate candidate = valued_by(samples, strategy);
    const Texts expected = make == commas ? Texts{u"\"a\n1,2\n3\n\n5\n6"}
                                          : Texts{u"\"a", u"1,2", u"3", u"", u"5", u"6"};
    EXPECT_EQ(lines_of(candidate.sample), expected);
    EXPECT_LE(candidate.sample.texts.capacity(), 2 * expected.size()) << "room is not given back";
    EXPECT_EQ(candidate.counts.to_vector(),
              make == commas ? Counts{1} : Counts({1, 1, 1, 0, 1, 1}));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, SampleStoreDraw, testing::ValuesIn(kOrderCases), ByRule());
// --- drawing -------------------------------------------------------------------------------------

TEST(SampleStoreDraw, MakesRoomForAsManyLinesAsWereDrawnBefore) {
  const parser::options options;
  std::u16string lines;
  for (std::size_t i = 0; i < 20'000; ++i) lines += u"1,2\n";
  const ExactText text(lines);
  SampleStore samples(text.field(), 30'000);
  DelimitedStrategy commas(options, u',');
  DelimitedStrategy semicolons(options, u';');
  const DrawnSample first = samples.draw(commas);
  const DrawnSample second = samples.draw(semicolons);
  EXPECT_GT(first.texts.capacity(), 20'000U);
  EXPECT_EQ(second.texts.size(), 20'000U);
  EXPECT_EQ(second.texts.capacity(), 20'000U);
}

// The quoted field contains all lines except the first.
TEST(SampleStoreDraw, GivesBackRoomForManyMissingLines) {
  const parser::options options;
  const ExactText text(u"a\n\"\nb\nc\nd\ne\nf\n");
  SampleStore samples(text.field(), 100);
  LineReaderStrategy reader(options);
  DelimitedStrategy commas(options, u',');
  EXPECT_EQ(samples.draw(reader).texts.size(), 7U);
  const DrawnSample second = samples.draw(commas);
  EXPECT_EQ(second.texts.size(), 2U);
  EXPECT_EQ(second.texts.capacity(), 2U);
}

// --- blank lines known from another sample -----------------------------------------------------

struct BlankCase {
  const char* rule;
  std::u16string text;
  Counts counts;  // of the fields between commas
};
std::ostream& operator<<(std::ostream& out, const BlankCase& row) { return out << row.rule; }

// Eight blank lines are enough to be remembered.
const std::u16string kEightBlanks = u" \n\t\n\n\n \t\n\n\n \n";

const BlankCase kBlankCases[] = {
    {"InTheMiddle", u"a,b\n" + kEightBlanks + u"1,2,3\n", {2, 0, 0, 0, 0, 0, 0, 0, 0, 3}},
    {"AtTheStart", kEightBlanks + u"1,2\n", {0, 0, 0, 0, 0, 0, 0, 0, 2}},
    {"AtTheEnd", u"1,2\n" + kEightBlanks, {2, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"EndingWithoutALineEnding", u"1,2\n" + kEightBlanks + u" ", {2, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {"InsideQuotes", u"\"a,b\n" + kEightBlanks + u"c\",d\n1,2\n", {2, 2}},
    {"TwoGroups",
     u"1,2\n" + kEightBlanks + u"3\n" + kEightBlanks,
     {2, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0}},
};

void expect_same(const DrawnSample& shared, const DrawnSample& plain) {
  EXPECT_EQ(shared.counts.to_vector(), plain.counts.to_vector());
  EXPECT_EQ(lines_of(shared), lines_of(plain));
  EXPECT_EQ(shared.found.end, plain.found.end);
  ASSERT_EQ(shared.found.runs.size(), plain.found.runs.size());
  for (std::size_t i = 0; i < plain.found.runs.size(); ++i) {
    EXPECT_EQ(shared.found.runs[i].begin, plain.found.runs[i].begin);
    EXPECT_EQ(shared.found.runs[i].num_lines, plain.found.runs[i].num_lines);
    EXPECT_EQ(shared.found.runs[i].first_line, plain.found.runs[i].first_line);
  }
}

class KnownBlanks : public testing::TestWithParam<BlankCase> {};
TEST_P(KnownBlanks, GiveTheSameSampleAsReadingThem) {
  const parser::options options;
  const ExactText text(GetParam().text);
  SampleStore samples(text.field(), 100);
  LineReaderStrategy reader(options);
  samples.remember_blanks(samples.draw(reader));
  DelimitedStrategy commas(options, u',');
  const DrawnSample plain = samples.draw(commas);
  EXPECT_EQ(plain.counts.to_vector(), GetParam().counts);
  expect_same(samples.draw_past_blanks(commas), plain);
  SpaceAlignedStrategy aligned(options);
  expect_same(samples.draw_past_blanks(aligned), samples.draw(aligned));
}
INSTANTIATE_TEST_SUITE_P(Table, KnownBlanks, testing::ValuesIn(kBlankCases), ByRule());

TEST(KnownBlanksUnits, AreThoseOfLongRunsAlone) {
  const parser::options options;
  const ExactText text(u"a\n\b\nb\n" + kEightBlanks);
  SampleStore samples(text.field(), 100);
  LineReaderStrategy reader(options);
  samples.remember_blanks(samples.draw(reader));
  std::u16string units = samples.blank_units();
  std::sort(units.begin(), units.end());
  EXPECT_EQ(units, u"\t\n ");
}

// --- samples of the same lines ---------------------------------------------------------------------

// A budget of two lines is used up before the comments.
TEST(SampleStoreDrawLike, TakesTheCommentsAtTheEndIfTheOtherSampleDid) {
  parser::options options;
  options.comment_style = {u"#"};
  const ExactText text(u"aa\nbb\n#x\n#y\n");
  SpaceAlignedStrategy aligned(options);
  FixedWidthStrategy fixed(options, {2});
  fixed.header_lines(0);
  SampleStore all(text.field(), 100);
  const DrawnSample whole = all.draw_like(all.draw(aligned), fixed);
  EXPECT_EQ(lines_of(whole), (Texts{u"aa", u"bb"}));
  EXPECT_EQ(whole.found.end, text.size());
  SampleStore few(text.field(), 2);
  const DrawnSample part = few.draw_like(few.draw(aligned), fixed);
  EXPECT_EQ(lines_of(part), (Texts{u"aa", u"bb"}));
  EXPECT_EQ(part.found.end, 6U);
}

// --- whether a sample depends on where the text ends ----------------------------------------------

struct EndCase {
  const char* rule;
  std::u16string text;
  unsigned long num_lines;
  bool reached_end;
};
std::ostream& operator<<(std::ostream& out, const EndCase& row) { return out << row.rule; }

// The longest line ending has two code units.
const EndCase kEndCases[] = {
    {"AllLinesAreTaken", u"a\nb\n", 100, true},
    {"TheLastLineMayGoOn", u"a\nb", 2, true},
    {"ALineEndingMayGoOn", u"a\nb\r", 2, true},
    {"OneCodeUnitIsLeft", u"a\nb\nc", 2, true},
    {"MoreIsLeftThanALineEnding", u"a\nb\nccc", 2, false},
    {"AQuoteMayClose", u"a\n\"b\nccc", 2, false},  // for the line reader, this is not a quote
};

class ReachedEnd : public testing::TestWithParam<EndCase> {};
TEST_P(ReachedEnd, IsTrueIfMoreTextCouldMatter) {
  const parser::options options;
  const ExactText text(GetParam().text);
  SampleStore samples(text.field(), GetParam().num_lines);
  LineReaderStrategy reader(options);
  EXPECT_EQ(samples.draw(reader).found.reached_end, GetParam().reached_end);
  EXPECT_EQ(samples.reached_end(), GetParam().reached_end);
}
INSTANTIATE_TEST_SUITE_P(Table, ReachedEnd, testing::ValuesIn(kEndCases), ByRule());

}  // namespace
}  // namespace textio::detection
