#include <vltextstream/layout/detect_layout.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <limits>
#include <optional>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <type_traits>
#include <vector>

#include <unistd.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/cut_text.hpp"
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/selection.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using detection::SelectionEnd;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::ByRule;
using testing_support::describe;
using testing_support::ExactText;
using testing_support::names_of;
using testing_support::readable;
using testing_support::TempFolder;
using testing_support::Texts;
using testing_support::with_nul;

using Lines = std::optional<std::size_t>;
using Widths = std::vector<std::size_t>;

// --- helpers -----------------------------------------------------------------------------------

std::string listed(const Texts& texts) {
  std::string out;
  for (const std::u16string& text : texts) out += '[' + readable(text) + ']';
  return out;
}

// Everything except the encoding and the trace, so that two layouts can be compared as a whole.
std::string describe(const Layout& layout) {
  std::ostringstream out;
  out << "mode " << static_cast<int>(layout.mode) << " delimiters " << listed(layout.delimiters)
      << " widths " << describe(layout.widths) << "header " << layout.header_lines << " names "
      << layout.names_line.value_or(0) << ' ' << listed(layout.names) << " variables "
      << layout.num_variables << " classes " << names_of(layout.classes) << " ending '"
      << readable(layout.line_ending.value_or(u"none")) << "' lines " << layout.lines_sampled
      << " characters " << layout.characters_sampled << " end "
      << static_cast<int>(layout.selection_end) << ' ' << layout.decided_by;
  return out.str();
}

// What holds for every layout.
void expect_consistent(const Layout& layout) {
  SCOPED_TRACE(describe(layout));
  EXPECT_GE(layout.num_variables, 1U);
  EXPECT_EQ(layout.classes.size(), layout.num_variables);
  EXPECT_EQ(layout.names_line.has_value(), !layout.names.empty());
  if (layout.names_line) {
    EXPECT_EQ(layout.names.size(), layout.num_variables);
    EXPECT_GE(*layout.names_line, 1U);
    EXPECT_LE(*layout.names_line, layout.lines_sampled);
  }
  const bool has_delimiters =
      layout.mode == LayoutMode::delimited || layout.mode == LayoutMode::space_aligned;
  EXPECT_EQ(has_delimiters, !layout.delimiters.empty());
  EXPECT_EQ(layout.mode == LayoutMode::fixed_width, !layout.widths.empty());
  EXPECT_EQ(layout.selection_end == SelectionEnd::single_survivor, !layout.decided_by.empty());
}

Layout layout_of(std::u16string_view text, const DetectSettings& settings = {}) {
  Layout layout = detect_layout(ExactText(text).view(), settings);
  expect_consistent(layout);
  return layout;
}

Layout layout_of_file(const std::string& bytes, const DetectSettings& settings = {}) {
  const TempFolder folder;
  Layout layout = detect_layout(folder.file("t", bytes), settings);
  expect_consistent(layout);
  return layout;
}

DetectSettings with_header_lines(Lines count) {
  DetectSettings settings;
  settings.judge = Judge::cascade;
  if (count) {
    settings.options.header_lines = *count;
    settings.options.detect_header_lines = false;
  }
  return settings;
}

// Columns of texts with single blanks: cut after 8 and 18 characters.
const std::u16string kFixed =
    u"name      city      n\n"
    u"ann lee   new york  1\n"
    u"bob       rome      2\n"
    u"carl von  oslo      3\n";

// Different numbers of blanks between the fields.
const std::u16string kAligned = u"x   y\n1   2\n10  20\n3   4\n";

// Bars and colons separate equally well, and neither has precedence.
const std::u16string kTied = u"a|b:c\n1|2:3\n4|5:6\n";

// --- names -------------------------------------------------------------------------------------

struct NamesCase {
  const char* rule;
  std::u16string text;
  Lines given_header_lines;
  LayoutMode mode;
  std::size_t header_lines;
  Lines names_line;
  Texts names;
};
std::ostream& operator<<(std::ostream& out, const NamesCase& row) { return out << row.rule; }

constexpr auto kDelimited = LayoutMode::delimited;
constexpr auto kDetect = std::nullopt;
constexpr auto kNone = std::nullopt;

const NamesCase kNames[] = {
    // The last header line.
    {"GivenHeaderLine", u"x,y\n1,2\n3,4\n", 1, kDelimited, 1, 1, {u"x", u"y"}},
    {"LastOfTwoGivenHeaderLines", u"a,b\nx,y\n1,2\n3,4\n", 2, kDelimited, 2, 2, {u"x", u"y"}},
    {"HeaderLineGoesBeforeTheTextsBelow",
     u"p,q\nx,y\n1,2\n3,4\n",
     1,
     kDelimited,
     1,
     1,
     {u"p", u"q"}},
    {"HeaderLineMayRepeatNames", u"x,x\n1,2\n3,4\n", 1, kDelimited, 1, 1, {u"x", u"x"}},
    {"HeaderLineAboveTexts", u"x,y\na,b\nc,d\n", 1, kDelimited, 1, 1, {u"x", u"y"}},
    {"UnitsAsLastHeaderLine",
     u"time,force\ns,N\n1,2\n3,4\n",
     2,
     kDelimited,
     2,
     1,
     {u"time", u"force"}},
    {"HeaderLineIsTrimmedAndUnquoted",
     u" \" x\" ,\"a,b\"\t\n1,2\n3,4\n",
     1,
     kDelimited,
     1,
     1,
     {u"x", u"a,b"}},

    // A header line that does not name every variable: the line below, or none.
    {"TooFewInTheHeaderLineTextsBelow",
     u"title\nx,y\n1,2\n3,4\n",
     1,
     kDelimited,
     1,
     2,
     {u"x", u"y"}},
    {"TooFewInTheHeaderLineNumbersBelow", u"x\n1,2\n3,4\n", 1, kDelimited, 1, kNone, {}},
    {"EmptyNameInTheHeaderLine", u"x,\n1,2\n3,4\n", 1, kDelimited, 1, kNone, {}},
    {"EmptyNameInTheHeaderLineTextsBelow",
     u"a,\nx,y\n1,2\n3,4\n",
     1,
     kDelimited,
     1,
     2,
     {u"x", u"y"}},
    {"BlankNameInTheHeaderLine", u"x, \n1,2\n3,4\n", 1, kDelimited, 1, kNone, {}},
    {"QuotedNothingInTheHeaderLine", u"x,\"\"\n1,2\n3,4\n", 1, kDelimited, 1, kNone, {}},
    {"DetectedPreamble", u"title\nx,y\n1,2\n3,4\n5,6\n", kDetect, kDelimited, 1, 2, {u"x", u"y"}},
    {"DetectedHeaderLineWithTooFewNames",
     u"x,y\n1,2,3\n4,5,6\n7,8,9\n",
     kDetect,
     kDelimited,
     1,
     kNone,
     {}},
    {"EmptyHeaderLine", u"\nx,y\n1,2\n3,4\n", kDetect, kDelimited, 1, 2, {u"x", u"y"}},
    {"MoreHeaderLinesThanLines", u"x,y\n1,2\n3,4\n", 5, kDelimited, 5, kNone, {}},

    // The first line after the header.
    {"TextsAboveNumbers", u"x,y\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x", u"y"}},
    {"TextsAboveNumbersNoHeaderGiven", u"x,y\n1,2\n3,4\n", 0, kDelimited, 0, 1, {u"x", u"y"}},
    {"UnitsBelowTheNames",
     u"time,force\ns,N\n1,2\n3,4\n",
     kDetect,
     kDelimited,
     0,
     1,
     {u"time", u"force"}},
    {"OneColumnIsNotText", u"name,n\nann,1\nbob,2\n", kDetect, kDelimited, 0, 1, {u"name", u"n"}},
    {"TextsAboveDates",
     u"day,who\n2024-03-01,ann\n2024-03-02,bob\n",
     kDetect,
     kDelimited,
     0,
     1,
     {u"day", u"who"}},
    {"AllTextTable", u"name,city\nann,rome\nbob,oslo\n", kDetect, kDelimited, 0, kNone, {}},
    {"NumbersAboveNumbers", u"1,2\n3,4\n5,6\n", kDetect, kDelimited, 0, kNone, {}},
    {"OneNumberAmongTheTexts", u"x,1\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"OneDateAmongTheTexts",
     u"x,2024-03-01\n1,2024-03-02\n2,2024-03-03\n",
     kDetect,
     kDelimited,
     0,
     kNone,
     {}},
    {"DigitsMakeNoNumber", u"x1,2nd\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x1", u"2nd"}},
    {"TooFewTexts", u"x,y\n1,2,3\n4,5,6\n", 0, kDelimited, 0, kNone, {}},
    {"RepeatedTexts", u"x,x\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"RepeatedFarApart", u"x,y,x\n1,2,3\n4,5,6\n", kDetect, kDelimited, 0, kNone, {}},
    {"RepeatedOnceTrimmed", u"x, x\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"RepeatedOnceUnquoted", u"x,\"x\"\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"CaseMakesADifference", u"x,X\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x", u"X"}},
    {"EmptyText", u"x,\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"EmptyFirstText", u",x\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"BlankText", u"x, \t\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"QuotedNothing", u"x,\"\"\n1,2\n3,4\n", kDetect, kDelimited, 0, kNone, {}},
    {"Quoted", u"\"x\",\"a,b\"\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x", u"a,b"}},
    {"DoubledQuotes",
     u"\"say \"\"x\"\"\",y\n1,2\n3,4\n",
     kDetect,
     kDelimited,
     0,
     1,
     {u"say \"x\"", u"y"}},
    {"Padded", u"  x ,\ty  \n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x", u"y"}},
    {"PaddedInsideQuotes", u"\" x \", \" y\"\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"x", u"y"}},
    {"QuotedOverTwoLines", u"\"a\nb\",c\n1,2\n3,4\n", kDetect, kDelimited, 0, 1, {u"a\nb", u"c"}},
    {"NotInAscii",
     u"\u00e9,\u65e5\u672c\n1,2\n3,4\n",
     kDetect,
     kDelimited,
     0,
     1,
     {u"\u00e9", u"\u65e5\u672c"}},

    // The other layouts.
    {"FixedWidth", kFixed, 0, LayoutMode::fixed_width, 0, 1, {u"name", u"city", u"n"}},
    {"FixedWidthHeaderLine", kFixed, 1, LayoutMode::fixed_width, 1, 1, {u"name", u"city", u"n"}},
    {"SpaceAligned", kAligned, kDetect, LayoutMode::space_aligned, 0, 1, {u"x", u"y"}},
    {"LineReaderAboveNumbers",
     u"weight\n1\n2\n",
     kDetect,
     LayoutMode::line_reader,
     0,
     1,
     {u"weight"}},
    {"LineReaderOfWords", u"abc\ndef\n", kDetect, LayoutMode::line_reader, 0, kNone, {}},
    {"LineReaderOfNumbers", u"1\n2\n3\n", kDetect, LayoutMode::line_reader, 0, kNone, {}},
    {"WholeLineDates", u"2024-03-01\n2024-03-02\n", kDetect, kDelimited, 0, kNone, {}},
    {"WholeLineDatesBelowAName",
     u"day\n2024-03-01\n2024-03-02\n",
     kDetect,
     kDelimited,
     0,
     1,
     {u"day"}},
    {"UnresolvedTie", kTied, kDetect, kDelimited, 0, kNone, {}},
    {"NoText", u"", kDetect, LayoutMode::line_reader, 0, kNone, {}},
    {"OneLineOfTexts", u"x,y", kDetect, LayoutMode::line_reader, 0, kNone, {}},
    {"OneLineOfTextsAboveOneOfNumbers", u"x,y\n1,2", kDetect, kDelimited, 0, 1, {u"x", u"y"}},
};

class DetectLayoutNames : public testing::TestWithParam<NamesCase> {};

TEST_P(DetectLayoutNames, AreFoundByTheRule) {
  const NamesCase& row = GetParam();
  const Layout layout = layout_of(row.text, with_header_lines(row.given_header_lines));
  EXPECT_EQ(layout.mode, row.mode);
  EXPECT_EQ(layout.header_lines, row.header_lines);
  EXPECT_EQ(layout.names_line.value_or(0), row.names_line.value_or(0));
  EXPECT_EQ(listed(layout.names), listed(row.names));
}

TEST_P(DetectLayoutNames, AreTheSameInAFile) {
  const NamesCase& row = GetParam();
  const DetectSettings settings = with_header_lines(row.given_header_lines);
  EXPECT_EQ(describe(layout_of_file(to_utf8(row.text), settings)),
            describe(layout_of(row.text, settings)));
}

INSTANTIATE_TEST_SUITE_P(Table, DetectLayoutNames, testing::ValuesIn(kNames), ByRule());

TEST(DetectLayoutNamesLine, CountsTheLinesOfTheText) {
  DetectSettings settings;
  settings.options.comment_style = {u"%"};
  const Layout layout = layout_of(u"% note\n% more\nx,y\n%\n1,2\n3,4\n", settings);
  EXPECT_EQ(layout.names_line, Lines(3));
  EXPECT_EQ(layout.lines_sampled, 3U);
}

// --- layouts -----------------------------------------------------------------------------------

struct LayoutCase {
  const char* rule;
  std::u16string text;
  Lines given_header_lines;
  LayoutMode mode;
  Texts delimiters;
  Widths widths;
  std::size_t num_variables;
  const char* classes;
  std::size_t lines_sampled;
  SelectionEnd end;
  const char* decided_by;
};
std::ostream& operator<<(std::ostream& out, const LayoutCase& row) { return out << row.rule; }

const LayoutCase kLayouts[] = {
    {"OneCandidate",
     u"x,y,z\n1,a,2024-03-01\n2,b,2024-03-02\n",
     kDetect,
     kDelimited,
     {u","},
     {},
     3,
     "number text date",
     3,
     SelectionEnd::only_candidate,
     ""},
    {"DelimiterThatIsNul",
     with_nul(u"x\0y\n1\0002\n3\0004\n"),
     kDetect,
     kDelimited,
     {with_nul(u"\0")},
     {},
     2,
     "number number",
     3,
     SelectionEnd::only_candidate,
     ""},
    {"SpaceAlignedByItsVariation",
     kAligned,
     kDetect,
     LayoutMode::space_aligned,
     {u" ", u"\t"},
     {},
     2,
     "number number",
     4,
     SelectionEnd::single_survivor,
     "reduce_by_variation"},
    {"OneBlankIsADelimiterByItsRank",
     u"1 2\n3 4\n5 6\n",
     kDetect,
     kDelimited,
     {u" "},
     {},
     2,
     "number number",
     3,
     SelectionEnd::single_survivor,
     "reduce_by_priors_rank"},
    {"FixedWidth",
     kFixed,
     0,
     LayoutMode::fixed_width,
     {},
     {8, 10, 3},
     3,
     "text text number",
     4,
     SelectionEnd::only_candidate,
     ""},
    {"LineReaderWithoutCandidates",
     u"abc\ndef\nghi",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "text",
     3,
     SelectionEnd::no_candidate,
     ""},
    {"LineReaderOfNumbers",
     u"1\n2\n3\n",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "number",
     3,
     SelectionEnd::no_candidate,
     ""},
    {"WholeLineDates",
     u"2024-03-01\n2024-03-02\n",
     kDetect,
     kDelimited,
     {u","},
     {},
     1,
     "date",
     2,
     SelectionEnd::whole_line_dates,
     ""},
    {"UnresolvedTie",
     kTied,
     kDetect,
     kDelimited,
     {u","},
     {},
     1,
     "text",
     3,
     SelectionEnd::unresolved_tie,
     ""},
    {"NoText",
     u"",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "empty",
     0,
     SelectionEnd::empty_sample,
     ""},
    {"OneCharacter",
     u"x",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "empty",
     1,
     SelectionEnd::no_candidate,
     ""},
    {"OnlyLineEnds",
     u"\n\r\n\r",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "empty",
     3,
     SelectionEnd::no_candidate,
     ""},
    {"OnlyBlankLines",
     u"   \n\t\n",
     kDetect,
     LayoutMode::line_reader,
     {},
     {},
     1,
     "empty",
     2,
     SelectionEnd::no_candidate,
     ""},
    {"HeaderLinesBeyondTheText",
     u"x,y\n1,2\n3,4\n",
     5,
     kDelimited,
     {u","},
     {},
     1,
     "empty",
     3,
     SelectionEnd::only_candidate,
     ""},
    {"QuotedLineEndsMakeOneLine",
     u"a,b\n\"1\n\n2\",3\n\"4\n5\",6\n",
     kDetect,
     kDelimited,
     {u","},
     {},
     2,
     "text number",
     3,
     SelectionEnd::only_candidate,
     ""},
    {"EmptyLinesAreLines",
     u"a,b\n\n1,2\n\n3,4\n",
     kDetect,
     kDelimited,
     {u","},
     {},
     2,
     "number number",
     5,
     SelectionEnd::only_candidate,
     ""},
};

class DetectLayout : public testing::TestWithParam<LayoutCase> {};

TEST_P(DetectLayout, FollowsTheRules) {
  const LayoutCase& row = GetParam();
  const Layout layout = layout_of(row.text, with_header_lines(row.given_header_lines));
  EXPECT_EQ(layout.mode, row.mode);
  EXPECT_EQ(listed(layout.delimiters), listed(row.delimiters));
  EXPECT_EQ(layout.widths, row.widths);
  EXPECT_EQ(layout.num_variables, row.num_variables);
  EXPECT_EQ(names_of(layout.classes), row.classes);
  EXPECT_EQ(layout.lines_sampled, row.lines_sampled);
  EXPECT_EQ(layout.characters_sampled, row.text.size());
  EXPECT_EQ(layout.selection_end, row.end);
  EXPECT_EQ(layout.decided_by, row.decided_by);
}

TEST_P(DetectLayout, IsTheSameForAFile) {
  const LayoutCase& row = GetParam();
  const DetectSettings settings = with_header_lines(row.given_header_lines);
  const std::string expected = describe(layout_of(row.text, settings));
  EXPECT_EQ(describe(layout_of_file(to_utf8(row.text), settings)), expected);
  EXPECT_EQ(describe(layout_of_file("\xEF\xBB\xBF" + to_utf8(row.text), settings)), expected);
}

TEST_P(DetectLayout, IsTheSameWithATraceThatEndsAlike) {
  const LayoutCase& row = GetParam();
  DetectSettings settings = with_header_lines(row.given_header_lines);
  const Layout plain = layout_of(row.text, settings);
  EXPECT_FALSE(plain.trace.has_value());
  settings.trace = true;
  const Layout traced = layout_of(row.text, settings);
  EXPECT_EQ(describe(traced), describe(plain));
  ASSERT_TRUE(traced.trace.has_value());
  EXPECT_EQ(traced.trace->end, row.end);
  const bool last_filter_decided = row.end == SelectionEnd::single_survivor;
  EXPECT_EQ(last_filter_decided ? traced.trace->filters.back().name : "", row.decided_by);
}

INSTANTIATE_TEST_SUITE_P(Table, DetectLayout, testing::ValuesIn(kLayouts), ByRule());

// Bytes of all kinds give some answer, and the same one each time.
TEST(DetectLayoutFirstBytes, AreThoseOfAFileWithoutATable) {
  const TempFolder folder;
  const std::string prose =
      "The river rose in the night, and nobody slept.\nAt dawn the water stood at the mill;\n"
      "the miller had gone to look for his boat.\nWhen he came back, it was noon.\n";
  EXPECT_EQ(detect_layout(folder.file("short", prose)).first_bytes, prose);
  std::string much;
  while (much.size() < 40'000) much += prose;
  EXPECT_EQ(detect_layout(folder.file("long", much)).first_bytes, much.substr(0, 16'384));
  EXPECT_EQ(detect_layout(folder.file("table", "a,b\n1,2\n3,4\n")).first_bytes, "");
  EXPECT_EQ(detect_layout(folder.file("empty", "")).first_bytes, "");
}

TEST(DetectLayoutOfBinaryData, GivesAnAnswer) {
  std::string bytes;
  for (unsigned i = 0; i < 20'000; ++i) {
    bytes.push_back(static_cast<char>((i * i + i / 7 * 31 + i / 251) % 256));
  }
  for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-32", "ISO-8859-1", "Shift_JIS"}) {
    DetectSettings settings;
    settings.encoding = encoding;
    const std::string answer = describe(layout_of_file(bytes, settings));
    EXPECT_EQ(describe(layout_of_file(bytes, settings)), answer) << encoding;
  }
  EXPECT_EQ(layout_of_file(bytes).encoding, "windows-1252");
}

// --- the sample --------------------------------------------------------------------------------

struct BudgetCase {
  const char* rule;
  unsigned long num_lines;
  std::size_t lines_sampled;
  std::size_t characters_sampled;
  SelectionEnd end;
};
std::ostream& operator<<(std::ostream& out, const BudgetCase& row) { return out << row.rule; }

const BudgetCase kBudgets[] = {
    {"NoLineButTheLineEndingOfTheFirst", 0, 0, 6, SelectionEnd::empty_sample},
    {"OneLineShowsNoVariation", 1, 1, 6, SelectionEnd::no_candidate},
    {"AllButOne", 3, 3, 18, SelectionEnd::only_candidate},
    {"All", 4, 4, 27, SelectionEnd::only_candidate},
    {"MoreThanThereAre", 5, 4, 27, SelectionEnd::only_candidate},
    {"AsManyAsCanBeAsked", std::numeric_limits<unsigned long>::max(), 4, 27,
     SelectionEnd::only_candidate},
};

class DetectLayoutBudget : public testing::TestWithParam<BudgetCase> {};
TEST_P(DetectLayoutBudget, IsTheNumberOfDataLines) {
  DetectSettings settings;
  settings.num_lines = GetParam().num_lines;
  const Layout layout = layout_of(u"1,2,3\n4,5,6\n7,8,9\n10,11,12\n", settings);
  EXPECT_EQ(layout.lines_sampled, GetParam().lines_sampled);
  EXPECT_EQ(layout.selection_end, GetParam().end);
  EXPECT_EQ(layout.characters_sampled, GetParam().characters_sampled);
  EXPECT_EQ(layout.has_more_text, GetParam().characters_sampled < 27);
}
INSTANTIATE_TEST_SUITE_P(Table, DetectLayoutBudget, testing::ValuesIn(kBudgets), ByRule());

TEST(DetectLayoutBudget, IsOneHundredWhenNotSet) {
  std::u16string text;
  for (int i = 0; i < 150; ++i) text += u"1,2\n";
  EXPECT_EQ(layout_of(text).lines_sampled, 100U);
}

TEST(DetectLayoutBudget, CountsNeitherGivenHeaderLinesNorEmptyOnes) {
  DetectSettings settings = with_header_lines(2);
  settings.num_lines = 3;
  EXPECT_EQ(layout_of(u"p,q\nx,y\n\n1,2\n\n3,4\n5,6\n7,8\n", settings).lines_sampled, 7U);
}

constexpr std::size_t kMostCharacters = 4'194'304;

DetectSettings with_cascade() {
  DetectSettings settings;
  settings.judge = Judge::cascade;
  return settings;
}

DetectSettings with_all_lines() {
  DetectSettings settings = with_cascade();
  settings.num_lines = std::numeric_limits<unsigned long>::max();
  return settings;
}

TEST(DetectLayoutOfALongText, RestsOnWholeLinesWithinTheLimit) {
  std::u16string text;
  text.reserve(kMostCharacters + 10);
  while (text.size() + 5 <= kMostCharacters + 10) text += u"1,23\n";
  text.resize(kMostCharacters + 10, u'7');
  const Layout layout = layout_of(text, with_cascade());
  EXPECT_EQ(layout.mode, kDelimited);
  EXPECT_EQ(layout.num_variables, 2U);
  EXPECT_EQ(layout.lines_sampled, 100U);
  EXPECT_EQ(layout.characters_sampled, 500U);
  EXPECT_TRUE(layout.has_more_text);
  const Layout of_all = layout_of(text, with_all_lines());
  EXPECT_EQ(of_all.num_variables, 2U);
  EXPECT_EQ(of_all.lines_sampled, 838'860U);
  EXPECT_EQ(of_all.characters_sampled, 4'194'300U);
  EXPECT_TRUE(of_all.has_more_text);
}

TEST(DetectLayoutOfALongText, WithoutALineEndRestsOnNothing) {
  const std::u16string text(kMostCharacters + 10, u'7');
  const Layout layout = layout_of(text);
  EXPECT_EQ(layout.mode, LayoutMode::line_reader);
  EXPECT_EQ(layout.selection_end, SelectionEnd::empty_sample);
  EXPECT_EQ(layout.lines_sampled, 0U);
  EXPECT_EQ(layout.characters_sampled, 0U);
  EXPECT_TRUE(layout.has_more_text);
  EXPECT_EQ(layout.line_ending, std::nullopt);
}

TEST(DetectLayoutOfALongText, AtTheLimitNeedsNoLineEnd) {
  std::u16string text(kMostCharacters, u'7');
  const Layout layout = layout_of(text);
  EXPECT_EQ(layout.selection_end, SelectionEnd::no_candidate);
  EXPECT_EQ(layout.lines_sampled, 1U);
  EXPECT_EQ(layout.characters_sampled, kMostCharacters);
}

TEST(DetectLayoutOfALongText, InAFileIsTheSame) {
  std::string bytes(kMostCharacters + 10, '7');
  for (std::size_t i = 1; i < bytes.size(); i += 5) bytes[i] = ',';
  for (std::size_t i = 4; i < bytes.size(); i += 5) bytes[i] = '\n';
  EXPECT_EQ(describe(layout_of_file(bytes)), describe(layout_of(from_utf8(bytes))));
  EXPECT_EQ(describe(layout_of_file(bytes, with_all_lines())),
            describe(layout_of(from_utf8(bytes), with_all_lines())));
}

TEST(DetectLayoutSample, EndsAtTheEndMarkOfAShortText) {
  const std::u16string text = u"1,2\n3,4\n\uffff5;6;7\n8;9;10\n";
  const Layout layout = layout_of(text);
  EXPECT_EQ(layout.lines_sampled, 2U);
  EXPECT_EQ(layout.characters_sampled, 8U);
  EXPECT_EQ(describe(layout_of_file(to_utf8(text))), describe(layout));
}

// --- characters --------------------------------------------------------------------------------

// A surrogate pair counts as one character in widths, counts and names.
TEST(DetectLayoutOfPairs, CountsCharacters) {
  const std::u16string text =
      u"n\U0001F600me      city      n\n"
      u"ann lee   new york  1\n"
      u"b\U0001F600b       rome      2\n"
      u"carl von  osl\U0010FFFF      3\n";
  const Layout layout = layout_of(text, with_header_lines(0));
  EXPECT_EQ(layout.mode, LayoutMode::fixed_width);
  EXPECT_THAT(layout.widths, ElementsAre(8, 10, 3));
  EXPECT_EQ(layout.characters_sampled, 88U);
  EXPECT_EQ(listed(layout.names), listed({u"n\u001Ame", u"city", u"n"}));
  EXPECT_EQ(describe(layout_of_file(to_utf8(text), with_header_lines(0))), describe(layout));
}

// More pairs than fit below the limit as code units, but not as characters.
TEST(DetectLayoutOfPairs, CountsCharactersUpToTheLimit) {
  std::u16string text;
  text.reserve(kMostCharacters + kMostCharacters / 2);
  for (std::size_t i = 0; i < kMostCharacters / 4; ++i) text += u"\U0001F600,1\n";
  const Layout layout = layout_of(text, with_all_lines());
  EXPECT_EQ(layout.characters_sampled, kMostCharacters);
  EXPECT_EQ(layout.num_variables, 2U);
}

// --- line endings ------------------------------------------------------------------------------

struct EndingCase {
  const char* rule;
  std::u16string text;
  Texts line_endings;
  std::optional<std::u16string> found;
};
std::ostream& operator<<(std::ostream& out, const EndingCase& row) { return out << row.rule; }

const Texts kUsual = {u"\r\n", u"\n", u"\r"};

const EndingCase kEndings[] = {
    {"NoText", u"", kUsual, std::nullopt},
    {"OneLineWithoutEnd", u"1,2", kUsual, std::nullopt},
    {"LineFeed", u"1,2\n3,4\n", kUsual, u"\n"},
    {"LineFeedAtTheEndAlone", u"1,2\n", kUsual, u"\n"},
    {"CarriageReturn", u"1,2\r3,4\r", kUsual, u"\r"},
    {"Both", u"1,2\r\n3,4\r\n", kUsual, u"\r\n"},
    {"BothTheOtherWayRoundIsALineFeed", u"1,2\n\r3,4\n\r", kUsual, u"\n"},
    {"FirstOfSeveralKinds", u"1,2\r3,4\n5,6\r\n", kUsual, u"\r"},
    {"OfAnEmptyLine", u"\r\n1,2\n3,4\n", kUsual, u"\r\n"},
    {"OnlyOnesThatAreAskedFor", u"1,2\r\n3,4\r\n", {u"\n"}, u"\n"},
    {"OfOnesOwn", u"1,2;3,4\n;5,6;", {u";"}, u";"},
    {"OfSeveralCharacters", u"1,2<>3,4<>", {u"<>", u"\n"}, u"<>"},
    {"NoneAskedFor", u"1,2\n3,4\n", {}, std::nullopt},
    {"TheOneThatStartsFirstWins", u"1,2\r\n3,4\r\n", {u"\n", u"\r\n"}, u"\r\n"},
    {"OfTwoThatStartTogetherTheFirstAskedForWins", u"1,2\r\n3,4", {u"\r", u"\r\n"}, u"\r"},
    {"AnEmptyOneEndsTheSearch", u"1,2\n3,4\n", {u"", u"\n"}, std::nullopt},
};

class DetectLayoutLineEnding : public testing::TestWithParam<EndingCase> {};
TEST_P(DetectLayoutLineEnding, IsTheFirstOfTheSample) {
  DetectSettings settings;
  settings.options.line_endings = GetParam().line_endings;
  const Layout layout = layout_of(GetParam().text, settings);
  EXPECT_EQ(layout.line_ending.has_value(), GetParam().found.has_value());
  EXPECT_EQ(readable(layout.line_ending.value_or(u"")), readable(GetParam().found.value_or(u"")));
  EXPECT_EQ(describe(layout_of_file(to_utf8(GetParam().text), settings)), describe(layout));
}
INSTANTIATE_TEST_SUITE_P(Table, DetectLayoutLineEnding, testing::ValuesIn(kEndings), ByRule());

// --- files and encodings -----------------------------------------------------------------------

struct EncodedCase {
  const char* rule;
  std::string bytes;
  std::optional<std::string> given;
  std::string encoding;
  EncodingFound found;
  std::u16string first_name;
};
std::ostream& operator<<(std::ostream& out, const EncodedCase& row) { return out << row.rule; }

const std::string kRows = ",y\n1,2\n3,4\n";

// Each byte of `ascii` followed by a NUL.
std::string wide(const std::string& ascii) {
  std::string bytes;
  for (const char byte : ascii) bytes += {byte, '\0'};
  return bytes;
}

const EncodedCase kEncoded[] = {
    {"Ascii", "x" + kRows, std::nullopt, "UTF-8", EncodingFound::valid_utf8, u"x"},
    {"Utf8", "\xC3\xA9" + kRows, std::nullopt, "UTF-8", EncodingFound::valid_utf8, u"\u00e9"},
    {"Utf8Mark", "\xEF\xBB\xBFx" + kRows, std::nullopt, "UTF-8", EncodingFound::byte_order_mark,
     u"x"},
    {"Utf16LeMark", "\xFF\xFE" + wide("x" + kRows), std::nullopt, "UTF-16LE",
     EncodingFound::byte_order_mark, u"x"},
    {"Utf16BeMark", std::string("\xFE\xFF\0", 3) + wide("x" + kRows).substr(0, 23), std::nullopt,
     "UTF-16BE", EncodingFound::byte_order_mark, u"x"},
    {"Statistics", "caf\xE9" + kRows, std::nullopt, "windows-1252", EncodingFound::statistics,
     u"caf\u00e9"},
    {"GivenLatin1", "\xE9" + kRows, "ISO-8859-1", "ISO-8859-1", EncodingFound::given, u"\u00e9"},
    {"GivenShiftJis", "\x83\x65" + kRows, "Shift_JIS", "Shift_JIS", EncodingFound::given,
     u"\u30c6"},
    {"GivenGoesBeforeTheMark", "\xEF\xBB\xBF" + kRows, "ISO-8859-1", "ISO-8859-1",
     EncodingFound::given, u"\u00ef\u00bb\u00bf"},
    {"GivenUtf8IsKeptForBytesThatAreNone", "\xE9" + kRows, "UTF-8", "UTF-8", EncodingFound::given,
     u"\ufffd"},
    {"GivenUtf16WithAMark", "\xFF\xFE" + wide("x" + kRows), "UTF-16", "UTF-16",
     EncodingFound::given, u"x"},
    {"GivenUtf16LeWithoutAMark", wide("x" + kRows), "UTF-16LE", "UTF-16LE", EncodingFound::given,
     u"x"},
};

class DetectLayoutEncoding : public testing::TestWithParam<EncodedCase> {};
TEST_P(DetectLayoutEncoding, IsGivenOrFound) {
  const EncodedCase& row = GetParam();
  DetectSettings settings;
  settings.encoding = row.given;
  const Layout layout = layout_of_file(row.bytes, settings);
  EXPECT_EQ(layout.encoding, row.encoding);
  EXPECT_EQ(layout.encoding_found, row.found);
  EXPECT_EQ(listed(layout.names), listed({row.first_name, u"y"}));
}
INSTANTIATE_TEST_SUITE_P(Table, DetectLayoutEncoding, testing::ValuesIn(kEncoded), ByRule());

TEST(DetectLayoutEncoding, OfAMarkAloneIsKnownAndTheTextEmpty) {
  for (const char* mark : {"\xEF\xBB\xBF", "\xFF\xFE", "\xFE\xFF"}) {
    const Layout layout = layout_of_file(mark);
    EXPECT_EQ(layout.encoding_found, EncodingFound::byte_order_mark);
    EXPECT_EQ(layout.selection_end, SelectionEnd::empty_sample);
    EXPECT_EQ(layout.characters_sampled, 0U);
  }
}

TEST(DetectLayoutEncoding, ThatIsNotKnownIsRefusedByName) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1,2\n");
  for (const std::string& name :
       {std::string("klingon"), std::string(), std::string("UTF-9"), std::string("UTF-8\0x", 7)}) {
    DetectSettings settings;
    settings.encoding = name;
    try {
      detect_layout(path, settings);
      ADD_FAILURE() << name;
    } catch (const std::invalid_argument& error) {
      EXPECT_THAT(error.what(), HasSubstr(std::string(name.c_str())));
    }
  }
}

TEST(DetectLayoutEncoding, IsNotUsedForAText) {
  DetectSettings settings;
  settings.encoding = "klingon";
  EXPECT_EQ(describe(layout_of(u"x,y\n1,2\n3,4\n", settings)),
            describe(layout_of(u"x,y\n1,2\n3,4\n")));
}

struct UnreadableCase {
  const char* rule;
  std::string path;  // in a folder that holds the file "t" and the folder "d"
  int reason;
};
std::ostream& operator<<(std::ostream& out, const UnreadableCase& row) { return out << row.rule; }

const UnreadableCase kUnreadable[] = {
    {"MissingFile", "none.csv", ENOENT},
    {"MissingFolder", "none/t", ENOENT},
    {"Folder", "d", EISDIR},
    {"FolderWithASlash", "d/", EISDIR},
    {"FileAsAFolder", "t/x", ENOTDIR},
    {"NameTooLong", std::string(256, 'x'), ENAMETOOLONG},
    {"MissingFileWithANameInUtf8", "caf\xC3\xA9.csv", ENOENT},
    {"MissingFileWithANameInLatin1", "caf\xE9.csv", ENOENT},
};

class DetectLayoutFileError : public testing::TestWithParam<UnreadableCase> {};
TEST_P(DetectLayoutFileError, NamesTheFileAndTheReason) {
  const TempFolder folder;
  folder.file("t", "1,2\n");
  folder.folder("d");
  const std::string path = folder.path_of(GetParam().path);
  for (const bool is_given : {false, true}) {
    DetectSettings settings;
    if (is_given) settings.encoding = "UTF-16";
    try {
      detect_layout(path, settings);
      ADD_FAILURE() << "read";
    } catch (const FileError& error) {
      EXPECT_THAT(error.what(), HasSubstr(path));
      EXPECT_THAT(error.what(), HasSubstr(std::strerror(GetParam().reason)));
    }
  }
}
INSTANTIATE_TEST_SUITE_P(Table, DetectLayoutFileError, testing::ValuesIn(kUnreadable), ByRule());

TEST(DetectLayoutFileError, ComesForAnEmptyPathAndOneWithANul) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1,2\n");
  EXPECT_THROW(detect_layout(std::string()), FileError);
  EXPECT_THROW(detect_layout(path + '\0'), FileError);
  EXPECT_THROW(detect_layout(path + '\0' + "x"), FileError);
}

TEST(DetectLayoutFileError, IsARuntimeError) {
  static_assert(std::is_base_of_v<std::runtime_error, FileError>);
  EXPECT_THROW(detect_layout("no/such/file"), std::runtime_error);
}

TEST(DetectLayoutPath, MayHoldAnyBytes) {
  const TempFolder folder;
  for (const char* name : {"caf\xC3\xA9", "caf\xE9", "\xF0\x9F\x98\x80", "\xED\xA0\x80", "a b\n"}) {
    EXPECT_EQ(detect_layout(folder.file(name, "1,2\n3,4\n")).num_variables, 2U) << name;
  }
}

TEST(DetectLayoutPath, MayLeadToAPipe) {
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const std::string bytes = "\xC3\xA9,y\n1,2\n3,4\n";
  ASSERT_EQ(write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ASSERT_EQ(close(ends[1]), 0);
  const Layout layout = detect_layout("/dev/fd/" + std::to_string(ends[0]));
  close(ends[0]);
  EXPECT_EQ(layout.encoding, "UTF-8");
  EXPECT_EQ(listed(layout.names), listed({u"\u00e9", u"y"}));
  EXPECT_EQ(layout.lines_sampled, 3U);
}

// --- the trace ---------------------------------------------------------------------------------

TEST(DetectLayoutTrace, ShowsWhatWasWeighed) {
  DetectSettings settings;
  settings.trace = true;
  const Layout layout = layout_of(kAligned, settings);
  ASSERT_TRUE(layout.trace.has_value());
  const detection::SelectionTrace& trace = *layout.trace;
  EXPECT_EQ(trace.candidate_chars, u" ");
  ASSERT_EQ(trace.candidates.size(), 2U);
  EXPECT_EQ(trace.candidates[0].dialect.mode, LayoutMode::space_aligned);
  EXPECT_EQ(trace.candidates[0].valuation.num_variables, 2U);
  EXPECT_EQ(trace.candidates[1].dialect, (Dialect{LayoutMode::delimited, {" "}, {}}));
  EXPECT_EQ(trace.candidates[1].valuation.data_variation, 0.25);
  ASSERT_EQ(trace.filters.size(), 2U);
  EXPECT_EQ(trace.filters[0].name, "reduce_by_dates");
  EXPECT_THAT(trace.filters[0].survivors, ElementsAre(0, 1));
  EXPECT_EQ(trace.filters[1].name, "reduce_by_variation");
  EXPECT_THAT(trace.filters[1].survivors, ElementsAre(0));
}

TEST(DetectLayoutTrace, OfAnEmptyTextIsEmpty) {
  DetectSettings settings;
  settings.trace = true;
  const Layout layout = layout_of(u"", settings);
  ASSERT_TRUE(layout.trace.has_value());
  EXPECT_EQ(layout.trace->candidate_chars, u"");
  EXPECT_THAT(layout.trace->candidates, IsEmpty());
  EXPECT_THAT(layout.trace->filters, IsEmpty());
}

// --- values and threads ------------------------------------------------------------------------

TEST(DetectLayoutValue, OutlivesTheTextAndTheSettings) {
  Layout layout;
  {
    DetectSettings settings;
    settings.trace = true;
    const std::u16string text = u"\"" + std::u16string(100, u'x') + u"\",y\r\n1,2\r\n3,4\r\n";
    layout = layout_of(text, settings);
  }
  const Layout copy = layout;
  layout = {};
  EXPECT_EQ(listed(copy.names), listed({std::u16string(100, u'x'), u"y"}));
  EXPECT_EQ(copy.line_ending, u"\r\n");
  EXPECT_EQ(copy.trace->candidate_chars, u",");
}

TEST(DetectLayoutValue, IsALineReaderOfOneColumnAtFirst) {
  const Layout layout;
  EXPECT_EQ(layout.mode, LayoutMode::line_reader);
  EXPECT_EQ(layout.num_variables, 1U);
  EXPECT_FALSE(layout.names_line || layout.line_ending || layout.trace);
}

TEST(DetectLayoutSettings, ServeFourThreadsAtOnce) {
  DetectSettings settings;
  settings.num_lines = 50;
  settings.options.comment_style = {u"%"};
  settings.trace = true;
  const TempFolder folder;
  const std::string path = folder.file("t", "% \xC3\xA9\nday;x\n2024-03-01;1\n2024-03-02;2\n");
  const std::vector<std::u16string> texts = {kFixed, kAligned, kTied, u"% c\nx,y\n1,2\n3,4\n"};

  std::vector<std::string> expected;
  for (const std::u16string& text : texts) {
    const Layout layout = layout_of(text, settings);
    expected.push_back(describe(layout) + describe(*layout.trace));
  }
  const std::string expected_of_file = describe(detect_layout(path, settings));

  std::vector<std::thread> threads;
  for (std::size_t id = 0; id < 4; ++id) {
    threads.emplace_back([&, id] {
      for (std::size_t round = 0; round < 20; ++round) {
        const std::size_t which = (id + round) % texts.size();
        const Layout layout = detect_layout(texts[which], settings);
        EXPECT_EQ(describe(layout) + describe(*layout.trace), expected[which]);
        EXPECT_EQ(describe(detect_layout(path, settings)), expected_of_file);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace textio::standalone
