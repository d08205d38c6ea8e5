// Layouts that the caller gives, completely or in part: no other is searched for.
#include <vltextstream/layout/detect_layout.hpp>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <ostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/cut_text.hpp"
#include "support/datatype_names.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using detection::SelectionEnd;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::names_of;
using testing_support::readable;
using testing_support::TempFolder;
using testing_support::Texts;

using Given = std::vector<NameValue>;
using Widths = std::vector<std::uint64_t>;

constexpr auto kDelimited = LayoutMode::delimited;
constexpr auto kFixedWidth = LayoutMode::fixed_width;
constexpr auto kLineReader = LayoutMode::line_reader;

// --- helpers -----------------------------------------------------------------------------------

std::string listed(const Texts& texts) {
  std::string out;
  for (const std::u16string& text : texts) out += '[' + readable(text) + ']';
  return out;
}

template <typename Number>
std::string listed(const std::vector<Number>& numbers) {
  std::string out;
  for (const Number number : numbers) out += '[' + std::to_string(number) + ']';
  return out;
}

// What the caller can give and what depends on it, as one text to compare.
std::string describe(const Layout& layout) {
  std::ostringstream out;
  out << "mode " << static_cast<int>(layout.mode) << " delimiters " << listed(layout.delimiters)
      << " widths " << listed(layout.widths) << " header " << layout.header_lines << " names "
      << layout.names_line.value_or(0) << ' ' << listed(layout.names) << " variables "
      << layout.num_variables << " classes " << names_of(layout.classes) << " lines "
      << layout.lines_sampled << " end " << static_cast<int>(layout.selection_end) << ' '
      << layout.decided_by;
  return out.str();
}

Layout layout_of(std::u16string_view text, const Given& given) {
  Layout layout = detect_layout(ExactText(text).view(), settings_with(given));
  EXPECT_EQ(layout.classes.size(), layout.num_variables) << describe(layout);
  return layout;
}

NameValue delimiter(std::u16string_view text) { return {"Delimiter", make_array(text)}; }
NameValue delimiters(const Texts& texts) { return {"Delimiter", make_text_cell(texts)}; }
NameValue widths(const Widths& columns) { return {"VariableWidths", make_array(columns)}; }
NameValue header_lines(double count) { return {"NumHeaderLines", make_array(count)}; }
NameValue parser_type(std::u16string_view word) { return {"ParserType", make_array(word)}; }
const NameValue kFixedWidthParser = parser_type(u"fixedwidth");

// Commas make three columns, semicolons two. Two numbers and a text outweigh one number and a text.
const std::u16string kBoth = u"1;2,3,4\n5;6,7,8\n9;1,2,3\n";

// Only letters and digits: nothing but their positions separates them.
const std::u16string kPlaces = u"ab123\ncd456\nef789\n";

// --- a delimiter is given ----------------------------------------------------------------------

struct DelimiterCase {
  const char* rule;
  std::u16string text;
  Given given;
  Texts delimiters;
  std::size_t header_lines;
  std::size_t names_line;  // 0 when there is none
  Texts names;
  std::size_t num_variables;
  const char* classes;
};
std::ostream& operator<<(std::ostream& out, const DelimiterCase& row) { return out << row.rule; }

const DelimiterCase kDelimiterCases[] = {
    {"IsTakenAlthoughAnotherWouldWin",
     kBoth,
     {delimiter(u";")},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},
    {"IsTakenWhereItSeparatesNothing", kBoth, {delimiter(u"|")}, {u"|"}, 0, 0, {}, 1, "text"},
    {"MayBeALetter", u"1x2\n3x4\n5x6\n", {delimiter(u"x")}, {u"x"}, 0, 0, {}, 2, "number number"},
    {"MayBeADigit", u"102\n304\n506\n", {delimiter(u"0")}, {u"0"}, 0, 0, {}, 2, "number number"},
    {"MayBeNotInAscii",
     u"1\u00b72\n3\u00b74\n5\u00b76\n",
     {delimiter(u"\u00b7")},
     {u"\u00b7"},
     0,
     0,
     {},
     2,
     "number number"},
    {"MayBeAWord",
     u"1and2\n3and4\n5and6\n",
     {delimiter(u"and")},
     {u"and"},
     0,
     0,
     {},
     2,
     "number number"},
    {"OneBlankIsDelimitedNotAligned",
     u"1 2\n3 4\n5 6\n",
     {delimiter(u" ")},
     {u" "},
     0,
     0,
     {},
     2,
     "number number"},
    {"TwoBlanksMakeAnEmptyField",
     u"1  2\n3  4\n5  6\n",
     {delimiter(u" ")},
     {u" "},
     0,
     0,
     {},
     3,
     "number empty number"},
    {"LosesAgainstALineEnding", u"1\n2\n3\n", {delimiter(u"\\n")}, {u"\n"}, 0, 0, {}, 1, "number"},
    {"IsReadWithItsEscapes",
     u"1\t2\n3\t4\n5\t6\n",
     {delimiter(u"\\t")},
     {u"\t"},
     0,
     0,
     {},
     2,
     "number number"},
    {"QuotedFieldsKeepIt",
     u"\"1;2\";3\n\"4;5\";6\n\"7;8\";9\n",
     {delimiter(u";")},
     {u";"},
     0,
     0,
     {},
     2,
     "text number"},

    // Several: the first in the list that matches is used.
    {"Several",
     kBoth,
     {delimiters({u",", u";"})},
     {u",", u";"},
     0,
     0,
     {},
     4,
     "number number number number"},
    {"LongerFirst",
     u"1::2:3\n4::5:6\n7::8:9\n",
     {delimiters({u"::", u":"})},
     {u"::", u":"},
     0,
     0,
     {},
     3,
     "number number number"},
    {"ShorterFirst",
     u"1::2:3\n4::5:6\n7::8:9\n",
     {delimiters({u":", u"::"})},
     {u":", u"::"},
     0,
     0,
     {},
     4,
     "number empty number number"},
    {"TheLaterOptionWins",
     kBoth,
     {delimiter(u","), delimiter(u";")},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},

    // None: one column.
    {"NoneInTheList", kBoth, {delimiters({})}, {}, 0, 0, {}, 1, "text"},
    {"NoneInTheListNumbers", u"1\n2\n3\n", {delimiters({})}, {}, 0, 0, {}, 1, "number"},
    {"OneEmptyDelimiter", u"1\n2\n3\n", {delimiter(u"")}, {u""}, 0, 0, {}, 1, "number"},

    // A single column has a class, too; the first line below the header is not inspected.
    {"OneColumnOfNumbers", u"1\n2\n3\n", {delimiter(u";")}, {u";"}, 0, 0, {}, 1, "number"},
    {"OneColumnOfTexts", u"ab\ncd\nef\n", {delimiter(u";")}, {u";"}, 0, 0, {}, 1, "text"},
    {"OneColumnOfDates",
     u"2024-03-01\n2024-03-02\n2024-03-03\n",
     {delimiter(u";")},
     {u";"},
     0,
     0,
     {},
     1,
     "date"},
    {"OneColumnWithItsName",
     u"weight\n1\n2\n",
     {delimiter(u";")},
     {u";"},
     0,
     1,
     {u"weight"},
     1,
     "number"},
    {"OneColumnOfOneLine", u"7\n", {delimiter(u";")}, {u";"}, 0, 0, {}, 1, "empty"},
    {"NoText", u"", {delimiter(u";")}, {u";"}, 0, 0, {}, 1, "empty"},
    {"OneLineIsNoTable", u"1;2\n", {delimiter(u";")}, {u";"}, 0, 0, {}, 1, "empty"},

    // Header lines: detected, or given.
    {"NamesAboveNumbers",
     u"x;y\n1;2\n3;4\n",
     {delimiter(u";")},
     {u";"},
     0,
     1,
     {u"x", u"y"},
     2,
     "number number"},
    {"HeaderLinesAreFound",
     u"t\nx;y\n1;2\n3;4\n",
     {delimiter(u";")},
     {u";"},
     1,
     2,
     {u"x", u"y"},
     2,
     "number number"},
    {"HeaderLinesAreGiven",
     u"t\nx;y\n1;2\n3;4\n",
     {delimiter(u";"), header_lines(2)},
     {u";"},
     2,
     2,
     {u"x", u"y"},
     2,
     "number number"},
    {"HeaderLinesGoFirst",
     u"t\nx;y\n1;2\n3;4\n",
     {header_lines(2), delimiter(u";")},
     {u";"},
     2,
     2,
     {u"x", u"y"},
     2,
     "number number"},
    {"TheDataLineIsGiven",
     u"t\nx;y\n1;2\n3;4\n",
     {delimiter(u";"), {"DataLine", make_array(3)}},
     {u";"},
     2,
     2,
     {u"x", u"y"},
     2,
     "number number"},
    {"MoreHeaderLinesThanLines",
     u"x;y\n1;2\n3;4\n",
     {delimiter(u";"), header_lines(5)},
     {u";"},
     5,
     0,
     {},
     1,
     "empty"},
    {"AbsurdlyManyHeaderLines",
     u"x;y\n1;2\n3;4\n",
     {delimiter(u";"), header_lines(1e18)},
     {u";"},
     1'000'000'000'000'000'000,
     0,
     {},
     1,
     "empty"},

    // The number of variables is that of the lines.
    {"TheNumberOfVariablesChoosesNothing",
     kBoth,
     {delimiter(u";"), {"NumVariables", make_array(3)}},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},

    // The other options have the same effect as in a search.
    {"WithComments",
     u"% a;b;c\n1;2\n3;4\n5;6\n",
     {delimiter(u";"), {"CommentStyle", make_array(u"%")}},
     {u";"},
     0,
     0,
     {},
     2,
     "number number"},
    {"WithLineEndings",
     u"1;2|3;4|5;6",
     {delimiter(u";"), {"LineEnding", make_array(u"|")}},
     {u";"},
     0,
     0,
     {},
     2,
     "number number"},
    {"WithWhitespace",
     u"_1_;_2_\n_3_;_4_\n_5_;_6_\n",
     {delimiter(u";"), {"Whitespace", make_array(u"_")}},
     {u";"},
     0,
     0,
     {},
     2,
     "number number"},

    // Widths are used only with the fixed-width parser.
    {"WidthsWithoutTheirParser",
     kBoth,
     {delimiter(u";"), widths({2, 5})},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},
    {"TheirParserWithoutWidths",
     kBoth,
     {delimiter(u";"), kFixedWidthParser},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},
    {"TheirParserWithNoWidthAtAll",
     kBoth,
     {delimiter(u";"), kFixedWidthParser, {"VariableWidths", make_empty_array()}},
     {u";"},
     0,
     0,
     {},
     2,
     "number text"},
};

class GivenDelimiter : public testing::TestWithParam<DelimiterCase> {};

TEST_P(GivenDelimiter, IsTaken) {
  const DelimiterCase& row = GetParam();
  const Layout layout = layout_of(row.text, row.given);
  EXPECT_EQ(layout.mode, kDelimited);
  EXPECT_EQ(listed(layout.delimiters), listed(row.delimiters));
  EXPECT_THAT(layout.widths, IsEmpty());
  EXPECT_EQ(layout.header_lines, row.header_lines);
  EXPECT_EQ(layout.names_line.value_or(0), row.names_line);
  EXPECT_EQ(listed(layout.names), listed(row.names));
  EXPECT_EQ(layout.num_variables, row.num_variables);
  EXPECT_EQ(names_of(layout.classes), row.classes);
  EXPECT_EQ(layout.selection_end, SelectionEnd::given);
  EXPECT_EQ(layout.decided_by, "");
  EXPECT_FALSE(layout.trace.has_value());
}

TEST_P(GivenDelimiter, IsTakenInAFile) {
  const DelimiterCase& row = GetParam();
  const TempFolder folder;
  const Layout layout =
      detect_layout(folder.file("t", to_utf8(row.text)), settings_with(row.given));
  EXPECT_EQ(describe(layout), describe(layout_of(row.text, row.given)));
}

TEST_P(GivenDelimiter, IsTakenFromAFilledRecord) {
  const DelimiterCase& row = GetParam();
  DetectSettings settings;
  apply_options(settings.options, row.given);
  EXPECT_EQ(describe(detect_layout(ExactText(row.text).view(), settings)),
            describe(layout_of(row.text, row.given)));
}

INSTANTIATE_TEST_SUITE_P(Table, GivenDelimiter, testing::ValuesIn(kDelimiterCases), ByRule());

TEST(GivenDelimiterRecord, IsFilledByHandToo) {
  DetectSettings settings;
  settings.options.delimiters = {u";"};
  settings.options.detect_delimiters = false;
  const Layout layout = detect_layout(kBoth, settings);
  EXPECT_EQ(listed(layout.delimiters), "[;]");
  EXPECT_EQ(layout.selection_end, SelectionEnd::given);
}

TEST(GivenDelimiterRecord, CountsOnlyOnceDelimitersAreSettled) {
  DetectSettings settings;
  settings.options.delimiters = {u";"};
  const Layout layout = detect_layout(kBoth, settings);
  EXPECT_EQ(listed(layout.delimiters), "[,]");
  EXPECT_EQ(layout.num_variables, 3U);
  EXPECT_NE(layout.selection_end, SelectionEnd::given);
}

TEST(GivenDelimiterBudget, CountsDataLinesBelowTheHeader) {
  DetectSettings settings = settings_with({delimiter(u";"), header_lines(1)});
  settings.num_lines = 2;
  EXPECT_EQ(detect_layout(u"x;y\n1;2\n3;4\n5;6\n7;8\n", settings).lines_sampled, 3U);
}

// --- widths are given --------------------------------------------------------------------------

struct WidthsCase {
  const char* rule;
  std::u16string text;
  Given given;
  LayoutMode mode;
  Widths widths;
  std::size_t num_variables;
  SelectionEnd end;
};
std::ostream& operator<<(std::ostream& out, const WidthsCase& row) { return out << row.rule; }

constexpr std::uint64_t kHugeWidth = std::uint64_t{1} << 63;
constexpr std::uint64_t kLargestWidth = std::numeric_limits<std::uint64_t>::max();
constexpr auto kGiven = SelectionEnd::given;

const WidthsCase kWidthsCases[] = {
    {"AreTakenWithTheirParser",
     kPlaces,
     {widths({2, 3}), kFixedWidthParser},
     kFixedWidth,
     {2, 3},
     2,
     kGiven},
    {"OrderDoesNotMatter",
     kPlaces,
     {kFixedWidthParser, widths({2, 3})},
     kFixedWidth,
     {2, 3},
     2,
     kGiven},
    {"TheParserMayBeShortened",
     kPlaces,
     {widths({2, 3}), parser_type(u"F")},
     kFixedWidth,
     {2, 3},
     2,
     kGiven},
    {"LaterWidthsWin",
     kPlaces,
     {widths({1, 4}), widths({2, 3}), kFixedWidthParser},
     kFixedWidth,
     {2, 3},
     2,
     kGiven},
    {"GoBeforeADelimiter",
     kBoth,
     {delimiter(u";"), widths({2, 5}), kFixedWidthParser},
     kFixedWidth,
     {2, 5},
     2,
     kGiven},
    {"GoBeforeALaterDelimiter",
     kBoth,
     {widths({2, 5}), kFixedWidthParser, delimiter(u";")},
     kFixedWidth,
     {2, 5},
     2,
     kGiven},
    {"OneColumn", kPlaces, {widths({5}), kFixedWidthParser}, kFixedWidth, {5}, 1, kGiven},
    {"NoText", u"", {widths({2, 3}), kFixedWidthParser}, kFixedWidth, {2, 3}, 1, kGiven},

    // A last field that does not reach the end of its line is followed by one more field.
    {"WiderThanTheLines",
     kPlaces,
     {widths({3, 3}), kFixedWidthParser},
     kFixedWidth,
     {3, 3},
     3,
     kGiven},
    {"NarrowerThanTheLines",
     kPlaces,
     {widths({2, 2}), kFixedWidthParser},
     kFixedWidth,
     {2, 2},
     4,
     kGiven},
    {"Huge",
     kPlaces,
     {widths({kHugeWidth, kHugeWidth}), kFixedWidthParser},
     kFixedWidth,
     {kHugeWidth, kHugeWidth},
     2,
     kGiven},
    {"SumBeyondAllNumbers",
     kPlaces,
     {widths({kLargestWidth, 1}), kFixedWidthParser},
     kFixedWidth,
     {kLargestWidth, 1},
     2,
     kGiven},

    // The widths are the bits of the elements: those of 2.0 and 3.0 are read as integers.
    {"OfDoublesTheBitsCount",
     kPlaces,
     {{"VariableWidths", make_array(std::vector<double>{2, 3})}, kFixedWidthParser},
     kFixedWidth,
     {0x4000000000000000, 0x4008000000000000},
     2,
     kGiven},

    // With another parser they are not used.
    {"CarriedWithoutTheirParser",
     kPlaces,
     {widths({2, 3})},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"CarriedForADelimitedParser",
     kPlaces,
     {widths({2, 3}), parser_type(u"delimited")},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"CarriedForATabularParser",
     kPlaces,
     {widths({2, 3}), parser_type(u"tabular")},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"CarriedOnceTheParserIsAnother",
     kPlaces,
     {widths({2, 3}), kFixedWidthParser, parser_type(u"delimited")},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"ZeroIsCarriedWithoutTheirParser",
     kPlaces,
     {widths({0, 3})},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"TheParserAloneGivesNothing",
     kPlaces,
     {kFixedWidthParser},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
    {"NoWidthAtAllGivesNothing",
     kPlaces,
     {kFixedWidthParser, {"VariableWidths", make_empty_array()}},
     kLineReader,
     {},
     1,
     SelectionEnd::no_candidate},
};

class GivenWidths : public testing::TestWithParam<WidthsCase> {};

TEST_P(GivenWidths, AreUsedTogetherWithTheirParser) {
  const WidthsCase& row = GetParam();
  const Layout layout = layout_of(row.text, row.given);
  EXPECT_EQ(layout.mode, row.mode);
  EXPECT_THAT(layout.delimiters, IsEmpty());
  EXPECT_EQ(listed(layout.widths), listed(row.widths));
  EXPECT_EQ(layout.num_variables, row.num_variables);
  EXPECT_EQ(layout.header_lines, 0U);
  EXPECT_EQ(layout.selection_end, row.end);
  EXPECT_EQ(layout.decided_by, "");
}

TEST_P(GivenWidths, GiveAFileTheLayoutOfItsText) {
  const WidthsCase& row = GetParam();
  const TempFolder folder;
  const Layout layout =
      detect_layout(folder.file("t", to_utf8(row.text)), settings_with(row.given));
  EXPECT_EQ(describe(layout), describe(layout_of(row.text, row.given)));
}

TEST_P(GivenWidths, GiveTheSameLayoutInAFilledRecord) {
  const WidthsCase& row = GetParam();
  DetectSettings settings;
  apply_options(settings.options, row.given);
  EXPECT_EQ(describe(detect_layout(ExactText(row.text).view(), settings)),
            describe(layout_of(row.text, row.given)));
}

INSTANTIATE_TEST_SUITE_P(Table, GivenWidths, testing::ValuesIn(kWidthsCases), ByRule());

TEST(GivenWidthsNames, StandAboveTheColumns) {
  const Layout layout = layout_of(u"name n\nann  1\nbob  2\n", {widths({5, 1}), kFixedWidthParser});
  EXPECT_EQ(layout.header_lines, 0U);
  EXPECT_EQ(layout.names_line.value_or(0), 1U);
  EXPECT_EQ(listed(layout.names), "[name][n]");
  EXPECT_EQ(names_of(layout.classes), "text number");
  EXPECT_EQ(layout.lines_sampled, 3U);
}

TEST(GivenWidthsNames, StandInTheGivenHeaderLine) {
  const Layout layout =
      layout_of(u"name n\nann  1\nbob  2\n", {widths({5, 1}), kFixedWidthParser, header_lines(1)});
  EXPECT_EQ(layout.header_lines, 1U);
  EXPECT_EQ(layout.names_line.value_or(0), 1U);
  EXPECT_EQ(listed(layout.names), "[name][n]");
  EXPECT_EQ(names_of(layout.classes), "text number");
}

struct ZeroWidthsCase {
  const char* rule;
  Widths widths;
};
std::ostream& operator<<(std::ostream& out, const ZeroWidthsCase& row) { return out << row.rule; }

const ZeroWidthsCase kZeroWidths[] = {
    {"Alone", {0}}, {"First", {0, 3}}, {"Last", {3, 0}}, {"Between", {2, 0, 3}}, {"All", {0, 0}}};

class GivenZeroWidth : public testing::TestWithParam<ZeroWidthsCase> {};

TEST_P(GivenZeroWidth, IsRefused) {
  const DetectSettings given = settings_with({widths(GetParam().widths), kFixedWidthParser});
  EXPECT_THROW(detect_layout(kPlaces, given), std::invalid_argument);
  EXPECT_THROW(detect_layout(u"", given), std::invalid_argument);
  const TempFolder folder;
  EXPECT_THROW(detect_layout(folder.file("t", "ab123\n"), given), std::invalid_argument);
  DetectSettings settings;
  settings.options.parser_type = parser::parser_kind::fixedwidth;
  settings.options.variable_widths = GetParam().widths;
  EXPECT_THROW(detect_layout(kPlaces, settings), std::invalid_argument);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenZeroWidth, testing::ValuesIn(kZeroWidths), ByRule());

// --- the trace ---------------------------------------------------------------------------------

TEST(GivenLayoutTrace, ExistsAndIsEmpty) {
  const std::vector<Given> layouts = {{delimiter(u";")}, {widths({2, 5}), kFixedWidthParser}};
  for (const Given& given : layouts) {
    DetectSettings settings = settings_with(given);
    settings.trace = true;
    const Layout layout = detect_layout(kBoth, settings);
    ASSERT_TRUE(layout.trace.has_value());
    EXPECT_EQ(readable(layout.trace->candidate_chars), "");
    EXPECT_TRUE(layout.trace->candidates.empty());
    EXPECT_TRUE(layout.trace->filters.empty());
    EXPECT_EQ(layout.trace->end, SelectionEnd::given);
    EXPECT_EQ(layout.selection_end, SelectionEnd::given);
  }
}

// --- options that leave the layout to be detected -----------------------------------------------

TEST(GivenOptions, MayBePartOfTheCall) {
  const TempFolder folder;
  const Layout of_file =
      detect_layout(folder.file("t", to_utf8(kBoth)), {delimiter(u";"), header_lines(1)});
  const Layout of_text = detect_layout(kBoth, {delimiter(u";"), header_lines(1)});
  EXPECT_EQ(listed(of_text.delimiters), "[;]");
  EXPECT_EQ(of_text.header_lines, 1U);
  EXPECT_EQ(of_text.selection_end, SelectionEnd::given);
  EXPECT_EQ(describe(of_file), describe(of_text));
}

TEST(GivenOptions, NoneIsTheSearch) {
  EXPECT_EQ(describe(layout_of(kBoth, {})), describe(detect_layout(kBoth, DetectSettings())));
  EXPECT_EQ(listed(layout_of(kBoth, {}).delimiters), "[,]");
}

TEST(GivenOptions, TheNumberOfVariablesChoosesInASearch) {
  const Layout layout = layout_of(kBoth, {{"NumVariables", make_array(2)}});
  EXPECT_EQ(listed(layout.delimiters), "[;]");
  EXPECT_EQ(layout.num_variables, 2U);
  EXPECT_EQ(layout.selection_end, SelectionEnd::single_survivor);
}

TEST(GivenOptions, HeaderLinesCountInASearch) {
  const Layout layout = layout_of(u"x,y\n1,2\n3,4\n", {header_lines(1)});
  EXPECT_EQ(layout.header_lines, 1U);
  EXPECT_EQ(layout.names_line.value_or(0), 1U);
  EXPECT_EQ(layout.selection_end, SelectionEnd::only_candidate);
}

// --- the encoding ------------------------------------------------------------------------------

TEST(GivenEncoding, IsUsedForAFile) {
  const TempFolder folder;
  const Layout layout = detect_layout(folder.file("t", "caf\xC3\xA9,n\n1,2\n3,4\n"),
                                      {{"Encoding", make_array(u"windows-1252")}});
  EXPECT_EQ(layout.encoding, "windows-1252");
  EXPECT_EQ(layout.encoding_found, EncodingFound::given);
  EXPECT_EQ(listed(layout.names), "[caf\\u00C3\\u00A9][n]");
}

TEST(GivenEncoding, IsFoundWhenNoPairNamesIt) {
  const TempFolder folder;
  const Layout layout =
      detect_layout(folder.file("t", "caf\xC3\xA9,n\n1,2\n3,4\n"), {delimiter(u",")});
  EXPECT_EQ(layout.encoding, "UTF-8");
  EXPECT_EQ(layout.encoding_found, EncodingFound::valid_utf8);
  EXPECT_EQ(listed(layout.names), "[caf\\u00E9][n]");
}

TEST(GivenEncoding, PassesThroughTheSettings) {
  EXPECT_EQ(settings_with({{"encoding", make_array(u"UTF-8")}}).encoding, "UTF-8");
  EXPECT_EQ(settings_with({{"Encoding", make_array(u"")}}).encoding, "");
  EXPECT_EQ(settings_with({}).encoding, std::nullopt);
  EXPECT_EQ(
      settings_with({{"Encoding", make_array(u"a")}, {"ENCODING", make_array(u"b")}}).encoding,
      "b");
}

// The default of the record does not show whether the caller asked for it.
TEST(GivenEncoding, OfTheRecordIsTakenUnlessItIsTheDefault) {
  const TempFolder folder;
  const std::string path = folder.file("t", "caf\xE9,2\nth\xE9,4\n");
  DetectSettings settings;
  EXPECT_EQ(detect_layout(path, settings).encoding_found, EncodingFound::statistics);
  settings.options.encoding = u"ISO-8859-1";
  EXPECT_EQ(detect_layout(path, settings).encoding_found, EncodingFound::given);
  EXPECT_EQ(detect_layout(path, settings).encoding, "ISO-8859-1");
  settings.encoding = "windows-1252";
  EXPECT_EQ(detect_layout(path, settings).encoding, "windows-1252");
  settings.encoding.reset();
  settings.options.encoding = u"no such encoding";
  EXPECT_THROW(detect_layout(path, settings), std::invalid_argument);
}

TEST(GivenEncoding, ThatIsUnknownIsRefused) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1,2\n3,4\n");
  EXPECT_THROW(detect_layout(path, {{"Encoding", make_array(u"klingon")}}), std::invalid_argument);
  EXPECT_THROW(detect_layout(path, {{"Encoding", make_array(u"")}}), std::invalid_argument);
}

TEST(GivenEncoding, IsNotUsedForAText) {
  const Layout layout = layout_of(u"1,2\n3,4\n", {{"Encoding", make_array(u"klingon")}});
  EXPECT_EQ(layout.encoding_found, EncodingFound::none);
}

// --- options that are refused ------------------------------------------------------------------

struct ProblemCase {
  const char* rule;
  Given given;
  const char* option;
  const char* message;  // the last part of the identifier
};
std::ostream& operator<<(std::ostream& out, const ProblemCase& row) { return out << row.rule; }

const ProblemCase kProblems[] = {
    {"UnknownName", {{"Delim", make_array(u";")}}, "Delim", "UnknownParameter"},
    {"EmptyName", {{"", make_array(u";")}}, "", "UnknownParameter"},
    {"NameNotInAscii",
     {{"D\xC3\xA9limiter", make_array(u";")}},
     "D\xC3\xA9limiter",
     "UnknownParameter"},
    {"NumberAsDelimiter", {{"delimiter", make_array(3)}}, "delimiter", "DelimiterType"},
    {"NumberAmongDelimiters",
     {{"Delimiter", make_cell({make_array(u";"), make_array(3)})}},
     "Delimiter",
     "DelimiterType"},
    {"UnknownEscape", {delimiter(u"\\q")}, "Delimiter", "InvalidEscapeSequence"},
    {"NegativeCount", {header_lines(-1)}, "NumHeaderLines", "ExpectedNonNegativeScalarInt"},
    {"TextAsCount",
     {{"NUMHEADERLINES", make_array(u"1")}},
     "NUMHEADERLINES",
     "ExpectedNonNegativeScalarInt"},
    {"DataLineZero", {{"DataLine", make_array(0)}}, "DataLine", "ExpectedPositiveScalarInt"},
    {"NumberAsLogical", {{"IsFile", make_array(1)}}, "IsFile", "ExpectedScalarLogical"},
    {"ThreeMarkers",
     {{"CommentStyle", make_text_cell({u"a", u"\\q", u"c"})}},
     "CommentStyle",
     "CommentStyleSize"},
    {"UnknownWord", {parser_type(u"delimitedx")}, "ParserType", "BadTextFlag"},
    {"CharactersInTwoRows",
     {{"Encoding", make_char_array(u"abcdef", {2, 3})}},
     "Encoding",
     "InvalidStringProperty"},
    {"NumberAsLineEnding",
     {{"LineEnding", make_array(1)}},
     "LineEnding",
     "InvalidStringOrCellStringProperty"},
    {"TheFirstOfTwo",
     {delimiter(u";"), header_lines(-1), parser_type(u"x")},
     "NumHeaderLines",
     "ExpectedNonNegativeScalarInt"},
};

class GivenProblem : public testing::TestWithParam<ProblemCase> {};

TEST_P(GivenProblem, NamesTheOptionAndTheMessage) {
  const ProblemCase& row = GetParam();
  try {
    settings_with(row.given);
    FAIL() << "nothing thrown";
  } catch (const std::invalid_argument& refused) {
    const auto* const problem = dynamic_cast<const OptionProblem*>(&refused);
    ASSERT_NE(problem, nullptr) << refused.what();
    EXPECT_EQ(problem->option(), row.option);
    EXPECT_EQ(problem->identifier(), std::string("VELLUM:textio:textio:") + row.message);
    const std::string name = problem->option().empty() ? "''" : problem->option();
    EXPECT_THAT(problem->what(), StartsWith(name + ": Expected "));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, GivenProblem, testing::ValuesIn(kProblems), ByRule());

TEST(GivenProblemPassesThrough, DetectLayout) {
  const TempFolder folder;
  const std::string path = folder.file("t", "1;2\n3;4\n");
  try {
    detect_layout(path, {delimiter(u";"), {"isfile", make_array(1)}});
    FAIL() << "nothing thrown";
  } catch (const OptionProblem& problem) {
    EXPECT_EQ(problem.option(), "isfile");
    EXPECT_EQ(problem.identifier(), "VELLUM:textio:textio:ExpectedScalarLogical");
  }
  try {
    detect_layout(u"1;2\n3;4\n", {delimiter(u";"), {"isfile", make_array(1)}});
    FAIL() << "nothing thrown";
  } catch (const OptionProblem& problem) {
    EXPECT_EQ(problem.option(), "isfile");
    EXPECT_EQ(problem.identifier(), "VELLUM:textio:textio:ExpectedScalarLogical");
  }
}

TEST(GivenProblemSentence, RepeatsWhatWasGiven) {
  try {
    settings_with({{"Delimiters", make_array(u";")}});
    FAIL() << "nothing thrown";
  } catch (const OptionProblem& problem) {
    EXPECT_THAT(problem.what(), StartsWith("Delimiters: "));
  }
}

}  // namespace
}  // namespace textio::standalone
