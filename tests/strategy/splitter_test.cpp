#include <vltextstream/strategy/splitter.hpp>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/line_reader_strategy.hpp>
#include <vltextstream/strategy/space_aligned_strategy.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::text_of;

// All lines of a text, each with its number of fields if it is counted: "a,b=2 c=1".
std::string scanned(Strategy& strategy, const Field& text) {
  const std::shared_ptr<const Splitter> splitter = strategy.splitter();
  const std::unique_ptr<LineCursor> lines = splitter->lines_of(text);
  std::string found;
  std::size_t pos = 0;
  while (!ends_at(text, pos)) {
    const SplitLine line = lines->line_at(pos);
    if (!found.empty()) found += ' ';
    for (const char16_t unit : text_of(line.extent.field)) found += static_cast<char>(unit);
    if (splitter->counts_fields()) found += '=' + std::to_string(line.num_fields);
    pos = line.extent.next;
  }
  return found;
}

// --- the lines and the numbers of fields ---------------------------------------------------------

using Make = std::unique_ptr<Strategy> (*)(const parser::options&);

std::unique_ptr<Strategy> commas(const parser::options& options) {
  return std::make_unique<DelimitedStrategy>(options, u',');
}
std::unique_ptr<Strategy> blanks(const parser::options& options) {
  return std::make_unique<SpaceAlignedStrategy>(options);
}
std::unique_ptr<Strategy> widths(const parser::options& options) {
  return std::make_unique<FixedWidthStrategy>(options, std::vector<unsigned long>{1, 2});
}
std::unique_ptr<Strategy> whole_lines(const parser::options& options) {
  return std::make_unique<LineReaderStrategy>(options);
}

struct ScanCase {
  const char* rule;
  Make make;
  std::u16string text;
  std::string found;
};
std::ostream& operator<<(std::ostream& out, const ScanCase& row) { return out << row.rule; }

const ScanCase kScanCases[] = {
    {"DelimitedFields", commas, u"a,b\nc\n,,\n", "a,b=2 c=1 ,,=3"},
    {"LineEndingsOfTwoUnits", commas, u"a,b\r\nc,d\r\n", "a,b=2 c,d=2"},
    {"LastLineWithoutAnEnding", commas, u"a,b\nc,d", "a,b=2 c,d=2"},
    {"DelimiterAtTheEndOfALine", commas, u"a,\nb,c\n", "a,=2 b,c=2"},
    {"DelimiterAtTheEndOfTheText", commas, u"a,b\nc,", "a,b=2 c,=2"},
    {"DelimiterBeforeTheEndMark", commas, u"a,b,\uFFFF", "a,b,=3"},
    {"FieldBeforeTheEndMark", commas, u"a,b\n\uFFFF", "a,b=2"},
    {"DelimitersInQuotes", commas, u"\"a,b\",c\n", "\"a,b\",c=2"},
    {"UnterminatedQuote", commas, u"a,\"b,c", "a,\"b,c=2"},
    {"BlankSeparatedFields", blanks, u"  a  b\nc\n", "a  b=2 c=1"},
    {"BlanksAtTheEndOfALine", blanks, u"a b \nc\n", "a b =3 c=1"},
    {"BlanksAtTheEndOfTheText", blanks, u"a b ", "a b =3"},
    {"WholeLines", whole_lines, u"a,b\nc d\r\n", "a,b=1 c d=1"},
    {"FixedWidthsAreNotCounted", widths, u"abc\ndef\n", "abc def"},
};

class SplitterLines : public testing::TestWithParam<ScanCase> {};
TEST_P(SplitterLines, AreFoundAndCounted) {
  const parser::options options;
  const ExactText text(GetParam().text);
  EXPECT_EQ(scanned(*GetParam().make(options), text.field()), GetParam().found);
}
INSTANTIATE_TEST_SUITE_P(Table, SplitterLines, testing::ValuesIn(kScanCases), ByRule());

// The lists of markers are too long for a linear search.
TEST(Splitter, LooksUpManyMarkers) {
  parser::options options;
  options.line_endings.clear();
  std::vector<std::u16string> delimiters;
  for (char16_t unit = u'A'; unit < u'A' + 40; ++unit) options.line_endings.push_back({unit, u'.'});
  for (char16_t unit = 0x100; unit < 0x100 + 40; ++unit) delimiters.push_back({unit});
  const ExactText text(u"x\u0100xA.yyB.A\u0127A.");
  LineReaderStrategy reader(options);
  EXPECT_EQ(scanned(reader, ExactText(u"xxA.yyB.zC").field()), "xx=1 yy=1 zC=1");
  FixedWidthStrategy fixed(options, {1});
  EXPECT_EQ(scanned(fixed, ExactText(u"xxA.yyB.zC").field()), "xx yy zC");
  const DelimitedStrategy delimited(options, delimiters);
  const std::unique_ptr<LineCursor> lines = delimited.lines_of(text.field());
  EXPECT_EQ(lines->line_at(0).num_fields, 2U);
  EXPECT_EQ(lines->line_at(0).extent.next, 5U);
  EXPECT_EQ(lines->line_at(5).num_fields, 1U);
  EXPECT_EQ(lines->line_at(9).num_fields, 2U);
  EXPECT_EQ(lines->line_at(9).extent.next, 13U);
}

// For a class derived from one of the library's, the virtual operation is called for each line.
class EveryCodeUnit : public LineReaderStrategy {
 public:
  using LineReaderStrategy::LineReaderStrategy;
  FieldExtent get_line_extent(const Field& text, unsigned long start) const override {
    return {slice(text, start, start + 1), start + 1};
  }
};

TEST(Splitter, CallsAStrategyFromOutside) {
  const parser::options options;
  const ExactText text(u"ab\n");
  EveryCodeUnit strategy(options);
  EXPECT_EQ(scanned(strategy, text.field()), "a b \n");
}

// --- lines without text --------------------------------------------------------------------------

struct EmptyCase {
  const char* rule;
  Make make;
  std::u16string text;
  std::size_t start;
  std::size_t most;
  std::size_t count;
  std::size_t next;
};
std::ostream& operator<<(std::ostream& out, const EmptyCase& row) { return out << row.rule; }

constexpr std::size_t kAny = static_cast<std::size_t>(-1);

const EmptyCase kEmptyCases[] = {
    {"NoneAtALineWithText", commas, u"a\n\n", 0, kAny, 0, 0},
    {"OneAfterTheOther", commas, u"a\n\n\nb", 2, kAny, 2, 4},
    {"OfEachLineEnding", commas, u"\n\r\n\rb", 0, kAny, 3, 4},
    {"UpToTheEndOfTheText", commas, u"\n\n", 0, kAny, 2, 2},
    {"UpToAnEndMark", commas, u"\n\uFFFF\n", 0, kAny, 1, 1},
    {"NoMoreThanAreWanted", commas, u"\n\n\n", 0, 2, 2, 2},
    {"NoneWhenNoneIsWanted", commas, u"\n", 0, 0, 0, 0},
    {"NoneAtTheEndOfTheText", commas, u"a", 1, kAny, 0, 1},
    {"LinesOfBlanksAreNotEmpty", commas, u"\n \n", 0, kAny, 1, 1},
    {"AlignedLines", blanks, u"\n\na", 0, kAny, 2, 2},
    {"FixedWidthLines", widths, u"\n\na", 0, kAny, 2, 2},
    {"WholeLines", whole_lines, u"\n\na", 0, kAny, 2, 2},
};

class SplitterEmptyLines : public testing::TestWithParam<EmptyCase> {};
TEST_P(SplitterEmptyLines, AreFoundTogether) {
  const parser::options options;
  const ExactText text(GetParam().text);
  const std::unique_ptr<Strategy> strategy = GetParam().make(options);
  const EmptyLines lines =
      strategy->lines_of(text.field())->empty_lines_at(GetParam().start, GetParam().most);
  EXPECT_EQ(lines.count, GetParam().count);
  EXPECT_EQ(lines.next, GetParam().next);
}
INSTANTIATE_TEST_SUITE_P(Table, SplitterEmptyLines, testing::ValuesIn(kEmptyCases), ByRule());

TEST(EmptyLinesOfAStrategyFromOutside, AreNotGrouped) {
  const parser::options options;
  const EveryCodeUnit strategy(options);
  const ExactText text(u"\n\n");
  EXPECT_EQ(strategy.lines_of(text.field())->empty_lines_at(0, kAny).count, 0U);
}

TEST(SplitterOfAStrategyFromOutside, KnowsOnlyTheMode) {
  const parser::options options;
  EveryCodeUnit strategy(options);
  EXPECT_EQ(strategy.splitter()->dialect(), (Dialect{LayoutMode::line_reader, {}, {}}));
}

// --- against simple loops ------------------------------------------------------------------------

// Markers that overlap one another, the blanks and the quote.
const std::vector<std::vector<std::u16string>> kLineEndings = {
    {u"\r\n", u"\n", u"\r"}, {u" \n", u"\n"}, {u" \n"},       {u" "}, {u"\n\n"},
    {u"a\n", u","},          {u"\""},         {u",\n", u"\n"}};

std::size_t fields_by_cutting(Strategy& strategy, const Field& line) {
  std::vector<Field> fields;
  strategy.cut_line(line, fields);
  return fields.size();
}

// With one of the lists of line endings, drawn at random.
void for_each_strategy(const ExactText& text,
                       const std::function<void(Strategy&, LineCursor&)>& check) {
  parser::options options;
  options.line_endings = *rc::gen::elementOf(kLineEndings);
  for (const Make make : {commas, blanks, widths, whole_lines}) {
    const std::unique_ptr<Strategy> strategy = make(options);
    check(*strategy, *strategy->lines_of(text.field()));
  }
}

// Each line is the one that get_line_extent finds, with as many fields as cutting it gives.
RC_GTEST_PROP(SplitterProperty, AgreesWithCutting, ()) {
  const auto text = *rc::gen::container<std::u16string>(rc::gen::weightedElement<char16_t>(
      {{6, u'a'}, {6, u','}, {4, u' '}, {3, u'"'}, {3, u'\n'}, {1, u'\r'}, {1, u'\uFFFF'}}));
  const ExactText exact(text);
  for_each_strategy(exact, [&](Strategy& strategy, LineCursor& lines) {
    for (std::size_t pos = 0; !ends_at(exact.field(), pos);) {
      const SplitLine line = lines.line_at(pos);
      const FieldExtent plain = strategy.get_line_extent(exact.field(), pos);
      RC_ASSERT(line.extent.next == plain.next);
      const bool begins_there = line.extent.field.data == plain.field.data;
      RC_ASSERT(begins_there);
      RC_ASSERT(line.extent.field.length == plain.field.length);
      if (strategy.splitter()->counts_fields() && plain.field.length > 0) {
        RC_ASSERT(line.num_fields == fields_by_cutting(strategy, plain.field));
      }
      pos = plain.next;
    }
  });
}

// Empty lines are those that the scan finds to be empty one by one, wherever it starts.
RC_GTEST_PROP(SplitterProperty, FindsEmptyLinesThatAreEmpty, ()) {
  const auto text = *rc::gen::container<std::u16string>(rc::gen::weightedElement<char16_t>(
      {{1, u'a'}, {2, u','}, {3, u' '}, {3, u'"'}, {9, u'\n'}, {2, u'\r'}, {1, u'\uFFFF'}}));
  for_each_strategy(ExactText(text), [&](Strategy&, LineCursor& lines) {
    for (std::size_t start = 0; start < text.size(); ++start) {
      const EmptyLines empty = lines.empty_lines_at(start, kAny);
      std::size_t pos = start;
      for (std::size_t i = 0; i < empty.count; ++i) {
        const FieldExtent line = lines.line_at(pos).extent;
        RC_ASSERT(line.field.length == 0U);
        pos = line.next;
      }
      RC_ASSERT(pos == empty.next);
    }
  });
}

}  // namespace
}  // namespace textio
