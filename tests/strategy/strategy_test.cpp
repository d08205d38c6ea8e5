#include <vltextstream/strategy/strategy.hpp>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"
#include "support/table_strategy.hpp"

namespace textio {
namespace {

using testing_support::cut_of;
using testing_support::ExactText;
using testing_support::field_counts_of;
using testing_support::lines_of;
using testing_support::Rows;
using testing_support::text_of;
using testing_support::Texts;

constexpr std::size_t kUnknown = std::numeric_limits<std::size_t>::max();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The simplest possible strategy: lines end at '\n', fields at ','. It leaves everything else to
// the base class and gives the tests access to the members.
class PlainStrategy : public Strategy {
 public:
  using Strategy::Strategy;

  int mode() const override { return 42; }

  FieldExtent get_line_extent(const Field& text, unsigned long start) const override {
    return until(u'\n', text, start);
  }

  FieldExtent get_next_field(const Field& line, unsigned long start) override {
    return until(u',', line, start);
  }

  void reset_fields() override { ++resets; }

  using Strategy::header_lines_;
  using Strategy::header_lines_auto_;
  using Strategy::lines_;
  using Strategy::number_format_;
  using Strategy::options_;
  using Strategy::quoted_format_;
  using Strategy::space_separated_;
  using Strategy::text_format_;
  using Strategy::valuation_;
  using Strategy::valuation_done_;

  int resets = 0;

 private:
  static FieldExtent until(char16_t mark, const Field& text, std::size_t start) {
    std::size_t end = start;
    while (end < text.length && text.data[end] != mark) ++end;
    return {Field(text.data + start, end - start), end < text.length ? end + 1 : end};
  }
};

// -- construction -------------------------------------------------------------------------------

TEST(StrategyConstructor, KeepsTheAddressOfTheOptions) {
  const parser::options options;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.options_, &options);
}

TEST(StrategyConstructor, StartsWithoutScoresAndLines) {
  const parser::options options;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.valuation_.total_variation, kInfinity);
  EXPECT_EQ(strategy.valuation_.data_variation, kInfinity);
  EXPECT_EQ(strategy.valuation_.priors_rank, kInfinity);
  EXPECT_EQ(strategy.valuation_.num_lines, 0u);
  EXPECT_EQ(strategy.valuation_.modal_field_count, 1);
  EXPECT_EQ(strategy.valuation_.num_variables, 1u);
  EXPECT_FALSE(strategy.valuation_done_);
  EXPECT_FALSE(strategy.space_separated_);
  EXPECT_TRUE(strategy.lines_.empty());
  EXPECT_TRUE(strategy.lines().empty());
}

TEST(StrategyConstructor, SetsTheFormatOfWholeLines) {
  const parser::options options;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.text_format_.whitespace, u" \b\t");
  EXPECT_FALSE(strategy.text_format_.quote.has_value());
  EXPECT_FALSE(strategy.text_format_.affixes.has_value());
  EXPECT_FALSE(strategy.text_format_.case_sensitive);
  EXPECT_EQ(strategy.text_format_.unquoted, u"");
  EXPECT_EQ(strategy.text_format_.empty_text, u"");
  EXPECT_EQ(strategy.text_format_.trim, FieldFormat::Trim::both);
}

TEST(StrategyConstructor, SetsTheFormatOfQuotedText) {
  const parser::options options;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.quoted_format_.whitespace, u" \b\t");
  EXPECT_EQ(strategy.quoted_format_.quote, u'"');
  EXPECT_FALSE(strategy.quoted_format_.affixes.has_value());
  EXPECT_FALSE(strategy.quoted_format_.case_sensitive);
  EXPECT_EQ(strategy.quoted_format_.unquoted, u"");
  EXPECT_EQ(strategy.quoted_format_.empty_text, u"");
  EXPECT_EQ(strategy.quoted_format_.trim, FieldFormat::Trim::both);
}

TEST(StrategyConstructor, SetsTheFormatOfNumbers) {
  const parser::options options;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.number_format_.whitespace, u" \b\t");
  EXPECT_FALSE(strategy.number_format_.quote.has_value());
  EXPECT_FALSE(strategy.number_format_.affixes.has_value());
  EXPECT_EQ(strategy.number_format_.exp_chars, u"eEdD");
  EXPECT_TRUE(strategy.number_format_.exp_chars_default);
  EXPECT_EQ(strategy.number_format_.decimal_separator, u'.');
  EXPECT_EQ(strategy.number_format_.thousands_separator, char16_t{0xFFFF});
  EXPECT_EQ(strategy.number_format_.narrow_text, "");
}

TEST(StrategyFormats, HaveTheDefaultsOfAPlainText) {
  const FieldFormat text;
  EXPECT_EQ(text.whitespace, u" \b\t");
  EXPECT_FALSE(text.case_sensitive);
  EXPECT_EQ(text.trim, FieldFormat::Trim::both);
  const NumberFormat number;
  EXPECT_EQ(number.whitespace, u" \b\t");
  EXPECT_EQ(number.exp_chars, u"eEdD");
  EXPECT_TRUE(number.exp_chars_default);
  EXPECT_EQ(number.decimal_separator, u'.');
  EXPECT_EQ(number.thousands_separator, char16_t{0xFFFF});
}

TEST(StrategyConstructor, CopiesTheWhiteSpaceOfTheOptionsToAllFormats) {
  for (const std::u16string& whitespace : {std::u16string(u"_"), std::u16string()}) {
    parser::options options;
    options.whitespace = whitespace;
    const PlainStrategy strategy(options);
    EXPECT_EQ(strategy.text_format_.whitespace, whitespace);
    EXPECT_EQ(strategy.quoted_format_.whitespace, whitespace);
    EXPECT_EQ(strategy.number_format_.whitespace, whitespace);
  }
}

TEST(StrategyConstructor, UsesTheHeaderLinesOfTheOptions) {
  parser::options options;
  EXPECT_EQ(PlainStrategy(options).header_lines_, kUnknown);
  EXPECT_TRUE(PlainStrategy(options).header_lines_auto_);
  options.header_lines = 3;
  EXPECT_EQ(PlainStrategy(options).header_lines_, 3u);
  EXPECT_TRUE(PlainStrategy(options).header_lines_auto_);
  options.detect_header_lines = false;
  EXPECT_EQ(PlainStrategy(options).header_lines_, 3u);
  EXPECT_FALSE(PlainStrategy(options).header_lines_auto_);
  options.header_lines = kUnknown;
  EXPECT_EQ(PlainStrategy(options).header_lines_, kUnknown);
  EXPECT_FALSE(PlainStrategy(options).header_lines_auto_);
}

struct ExpCharsCase {
  const char* rule;
  std::u16string exp_chars;
  bool is_default;
};
std::ostream& operator<<(std::ostream& out, const ExpCharsCase& row) { return out << row.rule; }

const ExpCharsCase kExpCharsCases[] = {
    {"TheDefaultIsTheDefault", u"eEdD", true},     {"APrefixOfItIsNot", u"eEd", false},
    {"ALongerTextIsNot", u"eEdDx", false},         {"AnotherOrderIsNot", u"EeDd", false},
    {"AnotherLastCharacterIsNot", u"eEdd", false}, {"NoneIsNot", u"", false},
};

class StrategyExpChars : public testing::TestWithParam<ExpCharsCase> {};

TEST_P(StrategyExpChars, AreCopiedAndComparedWithTheDefault) {
  parser::options options;
  options.exp_chars = GetParam().exp_chars;
  const PlainStrategy strategy(options);
  EXPECT_EQ(strategy.number_format_.exp_chars, GetParam().exp_chars);
  EXPECT_EQ(strategy.number_format_.exp_chars_default, GetParam().is_default);
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyExpChars, testing::ValuesIn(kExpCharsCases),
                         testing_support::ByRule());

// -- the binary interface -----------------------------------------------------------------------

// The slot of a virtual operation: a pointer to it has the offset into the table of operations.
template <typename Operation>
std::size_t slot_of(Operation operation) {
  const auto words = std::bit_cast<std::array<std::size_t, 2>>(operation);
  return (words[0] & ~std::size_t{1}) / sizeof(void*);
}

TEST(StrategyInterface, HoldsItsVirtualOperationsInTheirOrder) {
  static_assert(std::has_virtual_destructor_v<Strategy>);
  // The destructor takes slots 0 and 1.
  EXPECT_EQ(slot_of(&Strategy::mode), 2u);
  EXPECT_EQ(slot_of(&Strategy::get_line_extent), 3u);
  EXPECT_EQ(slot_of(&Strategy::get_next_field), 4u);
  EXPECT_EQ(slot_of(&Strategy::reset_fields), 5u);
}

TEST(StrategyInterface, DestroysThroughTheFirstSlots) {
  static bool destroyed;
  struct Witness : PlainStrategy {
    using PlainStrategy::PlainStrategy;
    ~Witness() override { destroyed = true; }
  };
  destroyed = false;
  const parser::options options;
  std::unique_ptr<Strategy>(new Witness(options)).reset();
  EXPECT_TRUE(destroyed);
}

TEST(StrategyInterface, HoldsItsMembersInTheirOrder) {
  const parser::options options;
  const PlainStrategy strategy(options);
  const auto offset = [&](const auto& member) {
    return reinterpret_cast<std::uintptr_t>(&member) - reinterpret_cast<std::uintptr_t>(&strategy);
  };
  EXPECT_EQ(offset(strategy.options_), sizeof(void*));
  EXPECT_EQ(offset(strategy.valuation_), 2 * sizeof(void*));
  const std::vector<std::uintptr_t> offsets = {
      offset(strategy.options_),         offset(strategy.valuation_),
      offset(strategy.text_format_),     offset(strategy.quoted_format_),
      offset(strategy.number_format_),   offset(strategy.lines_),
      offset(strategy.header_lines_),    offset(strategy.valuation_done_),
      offset(strategy.space_separated_), offset(strategy.header_lines_auto_)};
  for (std::size_t i = 1; i < offsets.size(); ++i) {
    EXPECT_LT(offsets[i - 1], offsets[i]) << "member " << i;
  }
}

TEST(StrategyInterface, IsAbstractAndHasTheModesOfTheInterface) {
  static_assert(std::is_abstract_v<Strategy>);
  EXPECT_EQ(Strategy::kDelimited, 0);
  EXPECT_EQ(Strategy::kSpaceAligned, 1);
  EXPECT_EQ(Strategy::kFixedWidth, 2);
  EXPECT_EQ(Strategy::kLineReader, 3);
}

// -- accessors ----------------------------------------------------------------------------------

TEST(StrategyHeaderLines, TurnsDetectionOffForAnyNumber) {
  const parser::options options;
  for (const std::size_t n : {std::size_t{0}, std::size_t{1}, std::size_t{70000}, kUnknown - 1}) {
    PlainStrategy strategy(options);
    strategy.header_lines(n);
    EXPECT_EQ(strategy.header_lines(), n);
    EXPECT_EQ(strategy.header_lines_, n);
    EXPECT_FALSE(strategy.header_lines_auto_);
  }
}

TEST(StrategyHeaderLines, TurnsDetectionOnForTheUnknownNumber) {
  parser::options options;
  options.header_lines = 2;
  options.detect_header_lines = false;
  PlainStrategy strategy(options);
  strategy.header_lines(kUnknown);
  EXPECT_EQ(strategy.header_lines(), kUnknown);
  EXPECT_TRUE(strategy.header_lines_auto_);
}

TEST(StrategyHeaderLines, DoesNotChangeTheOptions) {
  parser::options options;
  options.header_lines = 2;
  PlainStrategy strategy(options);
  strategy.header_lines(7);
  EXPECT_EQ(options.header_lines, 2u);
  EXPECT_EQ(PlainStrategy(options).header_lines(), 2u);
}

TEST(StrategyNumVariables, IsMinusOneUntilTheStrategyIsValued) {
  parser::options options;
  options.num_variables = 3;
  options.detect_num_variables = false;
  PlainStrategy strategy(options);
  EXPECT_EQ(strategy.num_variables(), -1);
  const ExactText text(u"a,b\nc,d\n");
  strategy.populate_fields(text.field(), 10);
  strategy.get_fields_from_lines();
  EXPECT_EQ(strategy.num_variables(), -1);
}

TEST(StrategyNumVariables, IsTheScoredNumberAfterwards) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.valuation_.num_variables = 5;
  EXPECT_EQ(strategy.num_variables(), -1);
  strategy.valuation_done_ = true;
  EXPECT_EQ(strategy.num_variables(), 5);
}

TEST(StrategyResetWhitespace, SetsAllFormats) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.reset_whitespace(u"xyz");
  EXPECT_EQ(strategy.text_format_.whitespace, u"xyz");
  EXPECT_EQ(strategy.quoted_format_.whitespace, u"xyz");
  EXPECT_EQ(strategy.number_format_.whitespace, u"xyz");
  EXPECT_EQ(options.whitespace, u" \b\t");
}

TEST(StrategyResetWhitespace, SetsMissingWhiteSpace) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.whitespace.reset();
  strategy.quoted_format_.whitespace.reset();
  strategy.number_format_.whitespace.reset();
  strategy.reset_whitespace(u"");
  EXPECT_EQ(strategy.text_format_.whitespace, u"");
  EXPECT_EQ(strategy.quoted_format_.whitespace, u"");
  EXPECT_EQ(strategy.number_format_.whitespace, u"");
}

// -- sampling: the budget -----------------------------------------------------------------------

struct BudgetCase {
  const char* rule;
  bool detect_header_lines;
  std::size_t header_lines;
  std::size_t num_lines;
  std::size_t sampled;  // number of lines, of a text of ten
};
std::ostream& operator<<(std::ostream& out, const BudgetCase& row) { return out << row.rule; }

const BudgetCase kBudgetCases[] = {
    {"GivenHeaderLinesComeOnTop", false, 2, 5, 7},
    {"HeaderLinesToDetectDoNot", true, 2, 5, 5},
    {"UnknownHeaderLinesToDetectDoNot", true, kUnknown, 5, 5},
    {"NoLinesSampleNothing", true, 2, 0, 0},
    {"NoLinesSampleTheHeaderLines", false, 3, 0, 3},
    {"NoLinesAndNoHeaderLinesSampleNothing", false, 0, 0, 0},
    {"NoHeaderLinesAddNothing", false, 0, 4, 4},
    {"OneBelowAllLines", true, 0, 9, 9},
    {"ExactlyAllLines", true, 0, 10, 10},
    {"MoreThanAllLines", true, 0, 11, 10},
    {"AllLinesAndMoreByTheHeader", false, 10, 1, 10},
    {"AnEndlessHeaderDoesNotWrap", false, kUnknown, 1, 10},
    {"AnEndlessBudgetDoesNotWrap", false, 1, kUnknown, 10},
    {"ASumThatReachesZeroDoesNotWrap", false, kUnknown - 4, 5, 10},
    {"BothEndless", false, kUnknown, kUnknown, 10},
    {"AnEndlessBudgetAlone", true, kUnknown, kUnknown, 10},
    {"AnEndlessHeaderAlone", false, kUnknown, 0, 10},
};

class StrategyPopulateBudget : public testing::TestWithParam<BudgetCase> {
 protected:
  StrategyPopulateBudget() {
    options_.detect_header_lines = GetParam().detect_header_lines;
    options_.header_lines = GetParam().header_lines;
  }

  parser::options options_;
};

TEST_P(StrategyPopulateBudget, SamplesTheRequestedNumberOfLines) {
  const ExactText text(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n");
  PlainStrategy strategy(options_);
  const Texts all = {u"0", u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9"};
  const Texts expected(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(GetParam().sampled));
  EXPECT_EQ(lines_of(strategy, text, GetParam().num_lines), expected);
}

// A text of n code units has at most n + 1 lines, whatever the budget is.
TEST_P(StrategyPopulateBudget, ReservesAtMostTheLinesOfTheText) {
  for (const std::u16string_view units : {u"", u"0", u"0\n1\n2\n3\n"}) {
    const ExactText text(units);
    PlainStrategy strategy(options_);
    strategy.populate_fields(text.field(), GetParam().num_lines);
    EXPECT_LE(strategy.lines_.capacity(), units.size() + 1);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyPopulateBudget, testing::ValuesIn(kBudgetCases),
                         testing_support::ByRule());

TEST(StrategyPopulate, ReservesTheBudgetBeforeItSamples) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(u"0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n");
  strategy.populate_fields(text.field(), 5);
  EXPECT_EQ(strategy.lines_.capacity(), 5u);
}

// Without characters to trim, a line of blanks is text.
TEST(StrategyPopulate, TrimsNothingWithoutWhiteSpace) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.whitespace.reset();
  const ExactText text(u" \n\na\n");
  EXPECT_EQ(testing_support::lines_of(strategy, text, 100), (Texts{u" ", u"", u"a"}));
}

// -- sampling: which lines ----------------------------------------------------------------------

struct PopulateCase {
  const char* rule;
  std::u16string text;
  std::size_t num_lines;
  Texts lines;
};
std::ostream& operator<<(std::ostream& out, const PopulateCase& row) { return out << row.rule; }

const PopulateCase kPopulateCases[] = {
    {"AnEmptyTextHasNoLine", u"", 10, {}},
    {"TheLastLineNeedsNoEnding", u"a\nb", 10, {u"a", u"b"}},
    {"AnEndingAtTheEndOpensNoLine", u"a\nb\n", 10, {u"a", u"b"}},
    {"EmptyLinesAreKeptButNotCounted", u"a\n\n\nb\nc\n", 2, {u"a", u"", u"", u"b"}},
    {"LinesOfBlanksAreKeptAsEmptyOnes", u"a\n \t\b\nb\nc\n", 2, {u"a", u"", u"b"}},
    {"NothingIsSampledAfterTheLastCountedLine", u"a\n\n\nb", 1, {u"a"}},
    {"EmptyLinesBeforeTheFirstAreKept", u"\n\na\nb", 1, {u"", u"", u"a"}},
    {"OnlyEmptyLinesAreAllKept", u"\n\n\n", 1, {u"", u"", u""}},
    {"NoBudgetKeepsNotEvenEmptyLines", u"\n\na", 0, {}},
    {"BlanksAtTheEndsOfALineAreKept", u"  x  \n\ty\n", 10, {u"  x  ", u"\ty"}},
    {"TheScanStopsAtAnEndMark", u"a\nb\n\uFFFFc\nd\n", 10, {u"a", u"b"}},
    {"TheScanStopsAtAnEndMarkAtTheStart", u"\uFFFFa\nb", 10, {}},
    {"AnEndMarkInsideALineDoesNotStopTheScan", u"a\uFFFFb\nc", 10, {u"a\uFFFFb", u"c"}},
    {"AnEndMarkIsNotWhiteSpace", u" \uFFFF\nc", 1, {u" \uFFFF"}},
    {"OtherBlankCharactersMakeALine", u"\u00a0\nc", 1, {u"\u00a0"}},
};

class StrategyPopulateLines : public testing::TestWithParam<PopulateCase> {};

TEST_P(StrategyPopulateLines, AreTheLinesOfTheText) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(lines_of(strategy, text, GetParam().num_lines), GetParam().lines);
}

TEST_P(StrategyPopulateLines, AreSampledAgainByEachCall) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText before(u"this\nwas\nbefore\n");
  const ExactText text(GetParam().text);
  strategy.populate_fields(before.field(), 100);
  EXPECT_EQ(lines_of(strategy, text, GetParam().num_lines), GetParam().lines);
  EXPECT_EQ(lines_of(strategy, text, GetParam().num_lines), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyPopulateLines, testing::ValuesIn(kPopulateCases),
                         testing_support::ByRule());

TEST(StrategyPopulate, ReturnsACopyOfTheLinesItKeeps) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(u"a\n\nbc\n");
  const std::vector<Field> returned = strategy.populate_fields(text.field(), 10);
  ASSERT_EQ(returned.size(), 3u);
  ASSERT_EQ(strategy.lines().size(), 3u);
  EXPECT_NE(returned.data(), strategy.lines().data());
  for (std::size_t k = 0; k < returned.size(); ++k) {
    EXPECT_EQ(returned[k].data, strategy.lines()[k].data);
    EXPECT_EQ(returned[k].length, strategy.lines()[k].length);
  }
}

TEST(StrategyPopulate, KeepsLinesAsViewsOfTheTextAndEmptyOnesAsTheEmptyField) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(u"a\n \nbc\n");
  const std::vector<Field> lines = strategy.populate_fields(text.field(), 10);
  ASSERT_EQ(lines.size(), 3u);
  EXPECT_EQ(lines[0].data, text.data());
  EXPECT_EQ(lines[1].data, empty_field().data);
  EXPECT_EQ(lines[1].length, 0u);
  EXPECT_EQ(lines[2].data, text.data() + 4);
  EXPECT_EQ(lines[2].length, 2u);
}

TEST(StrategyPopulate, AcceptsAnEmptyText) {
  const parser::options options;
  PlainStrategy strategy(options);
  EXPECT_TRUE(strategy.populate_fields(Field(), 10).empty());
  EXPECT_TRUE(strategy.get_fields_from_lines().counts.empty());
  EXPECT_TRUE(strategy.get_fields_from_lines().fields.empty());
}

TEST(StrategyPopulate, TestsForEmptinessWithTheWhiteSpaceOfTheOptions) {
  parser::options options;
  options.whitespace = u"_";
  PlainStrategy strategy(options);
  const ExactText text(u"__\n  \n_a_\n");
  EXPECT_EQ(lines_of(strategy, text, 10), (Texts{u"", u"  ", u"_a_"}));
}

// -- sampling: cleaning -------------------------------------------------------------------------

TEST(StrategyPopulateCleaning, DoesNotTrimIfTheFormatForbidsIt) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.trim = FieldFormat::Trim::none;
  const ExactText text(u" \n\na\n");
  EXPECT_EQ(lines_of(strategy, text, 1), (Texts{u" "}));
}

TEST(StrategyPopulateCleaning, TreatsAPairOfQuotesAsAnEmptyLineWhenQuotesAreRemoved) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.quote = u'"';
  const ExactText text(u"\"\"\n\"a\"\nb\n");
  EXPECT_EQ(lines_of(strategy, text, 1), (Texts{u"", u"\"a\""}));
}

TEST(StrategyPopulateCleaning, TreatsAffixesAloneAsAnEmptyLine) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.affixes = std::pair<Texts, Texts>{{u"$"}, {u"%"}};
  const ExactText text(u"$ %\n$5%\nb\n");
  EXPECT_EQ(lines_of(strategy, text, 1), (Texts{u"", u"$5%"}));
}

TEST(StrategyPopulateCleaning, ReplacesEmptyLinesByAText) {
  const parser::options options;
  PlainStrategy strategy(options);
  strategy.text_format_.empty_text = u"x";
  const ExactText text(u"\n  \na\n");
  EXPECT_EQ(lines_of(strategy, text, 2), (Texts{u"", u"  "}));
  EXPECT_EQ(strategy.lines()[0].data, text.data());
}

TEST(StrategyPopulateCleaning, DropsEmptyLinesWhoseReplacementIsAComment) {
  parser::options options;
  options.comment_style = {u"%"};
  PlainStrategy strategy(options);
  strategy.text_format_.empty_text = u"% nothing";
  const ExactText text(u"\na\n \nb\n");
  EXPECT_EQ(lines_of(strategy, text, 2), (Texts{u"a", u"b"}));
}

// -- sampling: comments -------------------------------------------------------------------------

struct CommentCase {
  const char* rule;
  Texts comment_style;
  std::u16string text;
  std::size_t num_lines;
  Texts lines;
};
std::ostream& operator<<(std::ostream& out, const CommentCase& row) { return out << row.rule; }

const CommentCase kCommentCases[] = {
    {"ALineThatBeginsWithTheMarkerIsDropped", {u"%"}, u"% a\nb\n", 10, {u"b"}},
    {"BlanksBeforeTheMarkerDoNotMatter", {u"%"}, u"   % note\nb\n", 10, {u"b"}},
    {"AMarkerInsideALineKeepsItWhole", {u"%"}, u"x % note\n", 10, {u"x % note"}},
    {"TheMarkerAloneIsAComment", {u"%"}, u"%\nb\n", 10, {u"b"}},
    {"DroppedLinesAreNotCounted", {u"%"}, u"%\na\n%\nb\nc\n", 2, {u"a", u"b"}},
    {"CommentsAfterTheLastCountedLineAreNotReached", {u"%"}, u"a\n%\nb\n", 1, {u"a"}},
    {"ALineShorterThanTheMarkerIsKept", {u"//"}, u"/\n//\na\n", 10, {u"/", u"a"}},
    {"ALineThatIsJustAboveTheMarkerIsDropped", {u"//"}, u"//x\na\n", 10, {u"a"}},
    {"TheMarkerIsComparedExactly", {u"rem"}, u"REM x\nrem x\n", 10, {u"REM x"}},
    {"TheEndOfABlockIsKept", {u"/*", u"*/"}, u"/* a\nb */\nc\n", 10, {u"b */", u"c"}},
    {"LinesInsideABlockAreKept", {u"/*", u"*/"}, u"/*\na\n/* b\n*/\n", 10, {u"a", u"*/"}},
    {"WhatFollowsABlockOnItsLineIsDroppedWithIt", {u"/*", u"*/"}, u"/* a */ b\nc\n", 10, {u"c"}},
    {"AnUnterminatedBlockDropsOneLine", {u"/*", u"*/"}, u"/* a\nb\n", 10, {u"b"}},
    {"AnEmptyMarkerDropsNothing", {u""}, u"% a\nb\n", 10, {u"% a", u"b"}},
    {"AnEmptyStartDropsNothing", {u"", u"*/"}, u"*/ a\nb\n", 10, {u"*/ a", u"b"}},
    {"AnEmptyEndDropsTheLine", {u"%", u""}, u"% a\nb\n", 10, {u"b"}},
    {"OfThreeMarkersTheFirstCounts", {u"%", u"#", u"!"}, u"% a\n# b\n! c\n", 10, {u"# b", u"! c"}},
    {"EmptyLinesAreKeptBesideComments", {u"%"}, u"%\n\n%\n", 10, {u""}},
    {"ABlankMarkerMeetsNoTrimmedLine", {u" "}, u" a\nb\n", 10, {u" a", u"b"}},
    {"AMarkerAtTheEndOfTheTextIsDropped", {u"%"}, u"a\n%", 10, {u"a"}},
    {"OnlyCommentsGiveNoLine", {u"%"}, u"%\n%\n% x", 10, {}},
    {"TheEndMarkAsAMarkerMeetsABlankLineWithOne", {u"\uFFFF"}, u" \uFFFFx\nb\n", 10, {u"b"}},
};

class StrategyPopulateComments : public testing::TestWithParam<CommentCase> {};

TEST_P(StrategyPopulateComments, AreDroppedByTheBeginningOfTheCleanedLine) {
  parser::options options;
  options.comment_style = GetParam().comment_style;
  PlainStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(lines_of(strategy, text, GetParam().num_lines), GetParam().lines);
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyPopulateComments, testing::ValuesIn(kCommentCases),
                         testing_support::ByRule());

// -- cutting ------------------------------------------------------------------------------------

struct CutCase {
  const char* rule;
  std::u16string text;
  Rows rows;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kCutCases[] = {
    {"ALineWithoutASeparatorIsOneField", u"abc", {{u"abc"}}},
    {"SeparatorsCutTheLine", u"a,b,c", {{u"a", u"b", u"c"}}},
    {"ASeparatorAtTheEndOpensAnEmptyField", u"a,b,", {{u"a", u"b", u""}}},
    {"ASeparatorAtTheStartClosesAnEmptyField", u",a", {{u"", u"a"}}},
    {"TwoSeparatorsEncloseAnEmptyField", u"a,,b", {{u"a", u"", u"b"}}},
    {"ALoneSeparatorLiesBetweenTwoEmptyFields", u",", {{u"", u""}}},
    {"EmptyLinesHaveNoFields", u"\na,b\n\n \nc\n", {{}, {u"a", u"b"}, {}, {}, {u"c"}}},
    {"OnlyEmptyLinesHaveNoFields", u"\n\n\n", {{}, {}, {}}},
};

class StrategyGetFieldsFromLines : public testing::TestWithParam<CutCase> {};

TEST_P(StrategyGetFieldsFromLines, CutsEveryLine) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(GetParam().text);
  EXPECT_EQ(cut_of(strategy, text), GetParam().rows);
}

TEST_P(StrategyGetFieldsFromLines, CutsTheSameTwice) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(GetParam().text);
  cut_of(strategy, text);
  EXPECT_EQ(cut_of(strategy), GetParam().rows);
}

TEST_P(StrategyGetFieldsFromLines, CallsTheResetOncePerLine) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(GetParam().text);
  cut_of(strategy, text);
  EXPECT_EQ(strategy.resets, static_cast<int>(GetParam().rows.size()));
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyGetFieldsFromLines, testing::ValuesIn(kCutCases),
                         testing_support::ByRule());

TEST(StrategyFieldArray, CountsAreRunningTotals) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(u"a,b\n\nc\nd,e,f\n");
  strategy.populate_fields(text.field(), 10);
  const FieldArray array = strategy.get_fields_from_lines();
  EXPECT_EQ(array.counts, (std::vector<std::size_t>{2, 2, 3, 6}));
  EXPECT_EQ(array.fields.size(), 6u);
  EXPECT_EQ(field_counts_of(strategy), (std::vector<std::size_t>{2, 0, 1, 3}));
}

TEST(StrategyFieldArray, FieldsAreViewsOfTheText) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText text(u"a,bc,\n");
  strategy.populate_fields(text.field(), 10);
  const FieldArray array = strategy.get_fields_from_lines();
  ASSERT_EQ(array.fields.size(), 3u);
  EXPECT_EQ(array.fields[0].data, text.data());
  EXPECT_EQ(array.fields[1].data, text.data() + 2);
  EXPECT_EQ(array.fields[2].data, text.data() + 5);
}

TEST(StrategyFieldArray, IsEmptyBeforeAnythingWasSampled) {
  const parser::options options;
  PlainStrategy strategy(options);
  EXPECT_TRUE(strategy.get_fields_from_lines().fields.empty());
  EXPECT_TRUE(strategy.get_fields_from_lines().counts.empty());
}

// A field that starts after its line does not end where the line ends.
TEST(StrategyGetFieldsFromLines, AFieldAfterTheLineIsFollowedByOneMore) {
  struct Beyond : PlainStrategy {
    using PlainStrategy::PlainStrategy;
    FieldExtent get_next_field(const Field& line, unsigned long /*start*/) override {
      return {Field(line.data + line.length + 1, 1), line.length};
    }
  };
  const parser::options options;
  Beyond strategy(options);
  const ExactText text(u"ab\ncd");
  strategy.populate_fields(text.field(), 1);
  const FieldArray array = strategy.get_fields_from_lines();
  EXPECT_EQ(array.counts, (std::vector<std::size_t>{2}));
  ASSERT_EQ(array.fields.size(), 2u);
  EXPECT_EQ(text_of(array.fields[0]), u"c");
}

// The cut of lines that contain an end mark. The lines are set directly.
struct EndMarkCase {
  const char* rule;
  std::u16string line;
  Texts fields;
};
std::ostream& operator<<(std::ostream& out, const EndMarkCase& row) { return out << row.rule; }

const EndMarkCase kEndMarkCases[] = {
    {"AtTheStartItMakesTheLineEmpty", u"\uFFFFa,b", {}},
    {"InsideAFieldItChangesNothing", u"a\uFFFFb,c", {u"a\uFFFFb", u"c"}},
    {"AfterASeparatorItGivesOneMoreField", u"a,\uFFFFb", {u"a", u"\uFFFFb"}},
    {"AfterTheExtraFieldTheCutContinues", u"a,\uFFFF,b", {u"a", u"\uFFFF", u"b"}},
    {"AfterTheExtraFieldItEndsTheCut", u"a,\uFFFF,\uFFFF,b", {u"a", u"\uFFFF"}},
    {"AtTheEndItIsPartOfTheField", u"a,b\uFFFF", {u"a", u"b\uFFFF"}},
};

class StrategyEndMarkInALine : public testing::TestWithParam<EndMarkCase> {};

TEST_P(StrategyEndMarkInALine, EndsTheCutWhereAFieldWouldStart) {
  const parser::options options;
  PlainStrategy strategy(options);
  const ExactText line(GetParam().line);
  strategy.populate_fields(line.field(), 10);
  strategy.lines_ = {line.field()};
  EXPECT_EQ(cut_of(strategy), (Rows{GetParam().fields}));
}

INSTANTIATE_TEST_SUITE_P(Table, StrategyEndMarkInALine, testing::ValuesIn(kEndMarkCases),
                         testing_support::ByRule());

// A strategy may rely on the operation of the base class, which does nothing.
TEST(StrategyResetFields, DoesNothingInTheBase) {
  struct Untouched : PlainStrategy {
    using PlainStrategy::PlainStrategy;
    void reset_fields() override { Strategy::reset_fields(); }
  };
  const parser::options options;
  Untouched strategy(options);
  const ExactText text(u"a,b\nc\n");
  EXPECT_EQ(cut_of(strategy, text), (Rows{{u"a", u"b"}, {u"c"}}));
  strategy.reset_fields();
  EXPECT_EQ(cut_of(strategy), (Rows{{u"a", u"b"}, {u"c"}}));
}

// -- lines that hold a line ending ----------------------------------------------------------------

// Each of these lines used to be cut without end.
TEST(CutLine, RefusesALineThatHoldsALineEnding) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  SpaceAlignedStrategy blanks(options);
  for (const char16_t* const units : {u"a\nb", u"\n", u"a,\nb", u"a \nb"}) {
    const ExactText line(units);
    std::vector<Field> fields(1);
    EXPECT_THROW(commas.cut_line(line.field(), fields), std::invalid_argument);
    EXPECT_THROW(blanks.cut_line(line.field(), fields), std::invalid_argument);
    EXPECT_EQ(fields.size(), 1U) << "all fields or none";
  }
}

TEST(CutLine, CutsALineEndingInsideQuotes) {
  const parser::options options;
  DelimitedStrategy commas(options, u',');
  const ExactText line(u"\"a\nb\",c");
  std::vector<Field> fields;
  commas.cut_line(line.field(), fields);
  EXPECT_EQ(fields.size(), 2U);
}

TEST(CutLine, GoesOnAfterALineEndingWhereLinesAreNotRead) {
  const parser::options options;
  LineReaderStrategy reader(options);
  FixedWidthStrategy fixed(options, {2});
  const ExactText line(u"a\nb");
  std::vector<Field> fields;
  reader.cut_line(line.field(), fields);
  EXPECT_EQ(fields.size(), 2U);  // "a" and "b"
  fixed.cut_line(line.field(), fields);
  EXPECT_EQ(fields.size(), 2U + 3U);  // "a\n", "b" and, since that is short, one more
}

// A strategy from outside whose fields never move on.
class StandingFields : public LineReaderStrategy {
 public:
  using LineReaderStrategy::LineReaderStrategy;
  FieldExtent get_next_field(const Field& line, unsigned long start) override {
    return {Field(line.data + start, 0), start};
  }
};

TEST(CutLine, RefusesFieldsThatNeverMoveOn) {
  const parser::options options;
  StandingFields standing(options);
  const ExactText line(u"a");
  std::vector<Field> fields;
  EXPECT_THROW(standing.cut_line(line.field(), fields), std::invalid_argument);
  EXPECT_TRUE(fields.empty());
}

// -- fields of one line ---------------------------------------------------------------------------

TEST(FieldsOf, StartAtTheFirstColumnAndStayThere) {
  const parser::options options;
  FixedWidthStrategy fixed(options, {1, 2});
  const ExactText line(u"a");
  std::vector<Field> fields;
  fixed.cut_line(line.field(), fields);
  EXPECT_EQ(fixed.next_column(), 1U);
  const std::vector<Field> alone = fixed.fields_of(line.field());
  ASSERT_EQ(alone.size(), 1U);
  EXPECT_EQ(alone[0].length, 1U);
  EXPECT_EQ(fixed.next_column(), 1U);
}

// -- dialects -------------------------------------------------------------------------------------

TEST(StrategyDialect, IsThatOfEachClass) {
  const parser::options options;
  const Dialect delimited{LayoutMode::delimited, {"::", "\t"}, {}};
  const Dialect aligned{LayoutMode::space_aligned, {" ", "\t"}, {}};
  const Dialect fixed{LayoutMode::fixed_width, {}, {3, 4}};
  EXPECT_EQ(DelimitedStrategy(options, {u"::", u"\t"}).dialect(), delimited);
  EXPECT_EQ(SpaceAlignedStrategy(options).dialect(), aligned);
  EXPECT_EQ(FixedWidthStrategy(options, {3, 4}).dialect(), fixed);
  EXPECT_EQ(LineReaderStrategy(options).dialect(), Dialect());
  EXPECT_EQ(StandingFields(options).dialect(), Dialect());
}

}  // namespace
}  // namespace textio
