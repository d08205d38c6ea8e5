// Tests the reference against values computed by hand, so that the library can be compared with it.
#include "reference/reference.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace reference {

void PrintTo(const Span& span, std::ostream* out) {
  *out << '{' << span.begin << ", " << span.length << '}';
}
void PrintTo(const Extent& extent, std::ostream* out) {
  *out << '{' << extent.begin << ", " << extent.length << ", " << extent.next << '}';
}
void PrintTo(Mode mode, std::ostream* out) { *out << "mode " << static_cast<int>(mode); }

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNotInPriorities = 18446744073709551616.0;

using Strings = std::vector<std::u16string>;
using Counts = std::vector<std::size_t>;

const IsDatetime kNever = [](const std::u16string&) { return false; };

// "dddd-dd-dd", by itself or followed by one blank and "dd:dd".
bool iso_date(const std::u16string& text) {
  const std::u16string shape = u"dddd-dd-dd dd:dd";
  if (text.size() != 10 && text.size() != shape.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool digit = text.at(i) >= u'0' && text.at(i) <= u'9';
    if (shape.at(i) == u'd' ? !digit : text.at(i) != shape.at(i)) return false;
  }
  return true;
}

Strings texts_of(const std::u16string& text, const std::vector<Span>& spans) {
  Strings result;
  for (const Span& span : spans) {
    result.push_back(span.begin >= text.size() ? std::u16string()
                                               : text.substr(span.begin, span.length));
  }
  return result;
}

Options options_with(const std::u16string& whitespace) {
  Options options;
  options.whitespace = whitespace;
  return options;
}

Options with_endings(const Strings& line_endings) {
  Options options;
  options.line_endings = line_endings;
  return options;
}

Options with_comments(const Strings& comment_style) {
  Options options;
  options.comment_style = comment_style;
  return options;
}

Options with_header_lines(std::size_t n) {
  Options options;
  options.header_lines = n;
  options.detect_header_lines = false;
  return options;
}

template <typename Case>
std::string rule_of(const testing::TestParamInfo<Case>& info) {
  return info.param.rule;
}

// -- options and valuation ---------------------------------------------------------------------

TEST(ReferenceOptions, DefaultsAreThoseOfTheRecord) {
  const Options options;
  EXPECT_EQ(options.line_endings, (Strings{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(options.whitespace, u" \b\t");
  EXPECT_EQ(options.header_lines, std::numeric_limits<std::size_t>::max());
  EXPECT_EQ(options.num_variables, 0U);
  EXPECT_TRUE(options.delimiters.empty());
  EXPECT_TRUE(options.comment_style.empty());
  EXPECT_TRUE(options.detect_delimiters);
  EXPECT_TRUE(options.detect_header_lines);
  EXPECT_TRUE(options.detect_num_variables);
}

TEST(ReferenceValuation, StartsUnmeasured) {
  const Valuation valuation;
  EXPECT_EQ(valuation.total_variation, kInf);
  EXPECT_EQ(valuation.data_variation, kInf);
  EXPECT_EQ(valuation.priors_rank, kInf);
  EXPECT_EQ(valuation.num_lines, 0U);
  EXPECT_EQ(valuation.modal_field_count, 1);
  EXPECT_EQ(valuation.num_variables, 1U);
  EXPECT_EQ(valuation.typed_columns, 0U);
  EXPECT_EQ(valuation.date_columns, 0U);
  EXPECT_EQ(valuation.numeric_columns, 0U);
  EXPECT_EQ(valuation.datetime_columns, 0U);
}

struct RankCase {
  const char* rule;
  Mode mode;
  Strings delimiters;
  double rank;
};
void PrintTo(const RankCase& row, std::ostream* out) { *out << row.rule; }

const RankCase kRankCases[] = {
    {"Comma", Mode::delimited, {u","}, 0.0},
    {"Tab", Mode::delimited, {u"\t"}, 1.0},
    {"Semicolon", Mode::delimited, {u";"}, 2.0},
    {"Space", Mode::delimited, {u" "}, 3.0},
    {"Pipe", Mode::delimited, {u"|"}, kNotInPriorities},
    {"TwoDelimiters", Mode::delimited, {u",", u";"}, kInf},
    {"LongDelimiter", Mode::delimited, {u"::"}, kInf},
    {"NoDelimiter", Mode::delimited, {}, kInf},
    {"SpaceAligned", Mode::space_aligned, {}, 3.5},
    {"FixedWidth", Mode::fixed_width, {}, kInf},
    {"LineReader", Mode::line_reader, {}, kInf},
};

class ReferencePriorsRank : public testing::TestWithParam<RankCase> {};
TEST_P(ReferencePriorsRank, IsSetByTheConstructor) {
  const RankCase& row = GetParam();
  const Sample sample = sample_strategy(row.mode, row.delimiters, {1}, u"", Options(), 5,
                                        std::nullopt, false, kNever);
  EXPECT_EQ(sample.valuation.priors_rank, row.rank);
  EXPECT_FALSE(sample.valued);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferencePriorsRank, testing::ValuesIn(kRankCases),
                         rule_of<RankCase>);

TEST(ReferenceStrategy, HeaderLinesTurnDetectionOnOnlyWhenUnknown) {
  const auto sampled = [](std::optional<std::size_t> header_lines, const Options& options) {
    return sample_strategy(Mode::line_reader, {}, {}, u"", options, 5, header_lines, false, kNever);
  };
  EXPECT_TRUE(sampled(std::nullopt, Options()).header_lines_auto);
  EXPECT_EQ(sampled(std::nullopt, Options()).header_lines, kUnknown);
  EXPECT_FALSE(sampled(3, Options()).header_lines_auto);
  EXPECT_EQ(sampled(3, Options()).header_lines, 3U);
  EXPECT_TRUE(sampled(kUnknown, with_header_lines(2)).header_lines_auto);
  EXPECT_FALSE(sampled(std::nullopt, with_header_lines(2)).header_lines_auto);
}

TEST(ReferenceStrategy, WidthsThatSumToNothingAreRefused) {
  const auto sampled = [](const Counts& widths) {
    return sample_strategy(Mode::fixed_width, {}, widths, u"ab", Options(), 5, std::nullopt, true,
                           kNever);
  };
  EXPECT_THROW(sampled({}), std::invalid_argument);
  EXPECT_THROW(sampled({0, 0}), std::invalid_argument);
  EXPECT_NO_THROW(sampled({0, 1}));
}

// -- markers -----------------------------------------------------------------------------------

struct MatchCase {
  const char* rule;
  Strings markers;
  std::u16string text;
  std::size_t i;
  std::size_t length;
};
void PrintTo(const MatchCase& row, std::ostream* out) { *out << row.rule; }

const MatchCase kMatchCases[] = {
    {"FirstStringInListOrderWins", {u"\r\n", u"\n", u"\r"}, u"a\r\nb", 1, 2},
    {"ShorterFirstWinsToo", {u"\r", u"\r\n"}, u"a\r\nb", 1, 1},
    {"LoneCarriageReturn", {u"\r\n", u"\n", u"\r"}, u"\rx", 0, 1},
    {"TooLongForTheRest", {u"\r\n"}, u"a\r", 1, 0},
    {"EmptyListNeverMatches", {}, u"a", 0, 0},
    {"EmptyStringEndsTheSearch", {u"ab", u"", u"a"}, u"ac", 0, 0},
    {"EmptyStringAfterAMatchIsNotReached", {u"a", u""}, u"ac", 0, 1},
    {"SingleUnit", {u";"}, u"a;b", 1, 1},
    {"NothingAtTheEnd", {u";", u","}, u"a", 1, 0},
    {"EndMarkAsSingleMarkerMatchesAtTheEnd", {u"\uffff"}, u"a", 1, 1},
};

class ReferenceMatch : public testing::TestWithParam<MatchCase> {};
TEST_P(ReferenceMatch, GivesTheLength) {
  const MatchCase& row = GetParam();
  EXPECT_EQ(match_markers(row.markers, row.text, row.i), row.length);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceMatch, testing::ValuesIn(kMatchCases), rule_of<MatchCase>);

TEST(ReferenceStopChars, AreTheDistinctFirstCodeUnitsInOrder) {
  EXPECT_EQ(make_stop_chars({u"\r\n", u"\n", u"\r"}, {}), u"\n\r");
  EXPECT_EQ(make_stop_chars({u"::", u","}, {u"\r\n", u"\n"}), u"\n\r,:");
  EXPECT_EQ(make_stop_chars({u""}, {u"x"}), std::u16string(u"\0x", 2));
  EXPECT_EQ(make_stop_chars({}, {}), u"");
}

// -- white space of the line cleaning ----------------------------------------------------------

struct WhitespaceCase {
  const char* rule;
  Mode mode;
  Strings delimiters;
  std::u16string before;
  std::u16string after;
};
void PrintTo(const WhitespaceCase& row, std::ostream* out) { *out << row.rule; }

const WhitespaceCase kWhitespaceCases[] = {
    {"LastUnitStays", Mode::delimited, {u"\t"}, u" \b\t", u" \b\t"},
    {"RestMovesForwardWithoutShortening", Mode::delimited, {u" "}, u" \b\t", u"\b\t\t"},
    {"LongDelimitersLeaveItAlone", Mode::delimited, {u" \t"}, u" \b\t", u" \b\t"},
    {"OthersLeaveItAlone", Mode::delimited, {u","}, u" \b\t", u" \b\t"},
    {"OneAfterTheOther", Mode::delimited, {u" ", u"\b"}, u" \b\t", u"\t\t\t"},
    {"TwoOccurrencesKeepTheLastTwoUnits", Mode::delimited, {u"x"}, u"xaxb", u"abxb"},
    {"SpaceAligned", Mode::space_aligned, {}, u" \b\t", u"\b\t\t"},
    {"SpaceAlignedWithTabLast", Mode::space_aligned, {}, u" \t", u"\t\t"},
    {"LineReaderTakesTheOptions", Mode::line_reader, {}, u" \b\t", u" \b\t"},
};

class ReferenceWhitespace : public testing::TestWithParam<WhitespaceCase> {};
TEST_P(ReferenceWhitespace, IsNarrowedInPlace) {
  const WhitespaceCase& row = GetParam();
  EXPECT_EQ(line_whitespace(row.mode, row.delimiters, options_with(row.before)), row.after);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceWhitespace, testing::ValuesIn(kWhitespaceCases),
                         rule_of<WhitespaceCase>);

// -- extents of lines --------------------------------------------------------------------------

struct LineCase {
  const char* rule;
  Mode mode;
  Strings delimiters;
  Options options;
  std::u16string text;
  std::size_t pos;
  Extent line;
};
void PrintTo(const LineCase& row, std::ostream* out) { *out << row.rule; }

const LineCase kLineCases[] = {
    {"PairOfTwoIsOneEnding", Mode::line_reader, {}, Options(), u"ab\r\ncd", 0, {0, 2, 4}},
    {"RestWithoutEnding", Mode::line_reader, {}, Options(), u"ab\r\ncd", 4, {4, 2, 6}},
    {"NoEndingAtAll", Mode::line_reader, {}, Options(), u"ab", 0, {0, 2, 2}},
    {"FirstOfTwoEmptyLines", Mode::line_reader, {}, Options(), u"\n\n", 0, {0, 0, 1}},
    {"SecondOfTwoEmptyLines", Mode::line_reader, {}, Options(), u"\n\n", 1, {1, 0, 2}},
    {"EndMarkAtTheStart", Mode::line_reader, {}, Options(), u"\uffff\n", 0, {0, 0, 0}},
    {"EndMarkInsideIsPassedOver", Mode::line_reader, {}, Options(), u"a\uffff\n", 0, {0, 2, 3}},
    {"PastTheEnd", Mode::line_reader, {}, Options(), u"a", 1, {1, 0, 1}},
    {"OwnEndings", Mode::line_reader, {}, with_endings({u";"}), u"a;b", 0, {0, 1, 2}},
    {"StopUnitWithoutMatchGoesOn",
     Mode::line_reader,
     {},
     with_endings({u"\r\n"}),
     u"a\rb\r\n",
     0,
     {0, 3, 5}},
    {"StopUnitThenEndMark",
     Mode::line_reader,
     {},
     with_endings({u"\r\n"}),
     u"a\r\uffff",
     0,
     {0, 2, 2}},
    {"QuotedEndingDoesNotEndTheLine",
     Mode::delimited,
     {u","},
     Options(),
     u"\"x\ny\",1\n2,3\n",
     0,
     {0, 7, 8}},
    {"AfterAQuotedEnding", Mode::delimited, {u","}, Options(), u"\"x\ny\",1\n2,3\n", 8, {8, 3, 12}},
    {"UnterminatedQuoteTakesTheRest",
     Mode::delimited,
     {u","},
     Options(),
     u"\"a,b\nc",
     0,
     {0, 6, 6}},
    {"LineEndsWithADelimiter", Mode::delimited, {u","}, Options(), u"a,", 0, {0, 2, 2}},
    {"DelimiterBeforeTheEnding", Mode::delimited, {u","}, Options(), u"a,\nb", 0, {0, 2, 3}},
    {"DelimiterBeforeAnEndMark", Mode::delimited, {u","}, Options(), u"a,\uffff", 0, {0, 2, 2}},
    {"LeadingBlanksAreDropped", Mode::space_aligned, {}, Options(), u"   a   b\n", 0, {3, 5, 9}},
    {"TrailingBlanksStay", Mode::space_aligned, {}, Options(), u"a b  \n", 0, {0, 5, 6}},
    {"BlanksOnly", Mode::space_aligned, {}, Options(), u"  \t", 0, {3, 0, 3}},
    {"BlanksBeforeAnEnding", Mode::space_aligned, {}, Options(), u" \t\na", 0, {2, 0, 3}},
    {"QuotedBlanksAndEndings", Mode::space_aligned, {}, Options(), u"\"x\ny\" z\n", 0, {0, 7, 8}},
    {"FixedWidthSeesOnlyEndings", Mode::fixed_width, {}, Options(), u"\"a\r\nb", 0, {0, 2, 4}},
    {"FixedWidthPassesEndMarks", Mode::fixed_width, {}, Options(), u"a\uffffb\nc", 0, {0, 3, 4}},
    {"FixedWidthAtTheEnd", Mode::fixed_width, {}, Options(), u"ab", 2, {2, 0, 2}},
};

class ReferenceLineExtent : public testing::TestWithParam<LineCase> {};
TEST_P(ReferenceLineExtent, MatchesTheHandComputedResult) {
  const LineCase& row = GetParam();
  EXPECT_EQ(get_line_extent(row.mode, row.delimiters, row.text, row.options, row.pos), row.line);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceLineExtent, testing::ValuesIn(kLineCases),
                         rule_of<LineCase>);

// -- lines and fields of a sample --------------------------------------------------------------

struct SampleCase {
  const char* rule;
  Mode mode;
  Strings delimiters;
  Counts widths;
  Options options;
  std::u16string text;
  Strings lines;   // an empty line of the sample is u""
  Strings fields;  // the parts that can be read
  Counts counts;   // running totals
};
void PrintTo(const SampleCase& row, std::ostream* out) { *out << row.rule; }

const SampleCase kSampleCases[] = {
    {"CommaTrailing",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"a,b,",
     {u"a,b,"},
     {u"a", u"b", u""},
     {3}},
    {"CommaDoubled",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"a,,b",
     {u"a,,b"},
     {u"a", u"", u"b"},
     {3}},
    {"CommaLeading", Mode::delimited, {u","}, {}, Options(), u",a", {u",a"}, {u"", u"a"}, {2}},
    {"CommaOneTrailing", Mode::delimited, {u","}, {}, Options(), u"a,", {u"a,"}, {u"a", u""}, {2}},
    {"CommaPlain",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"a,b,c",
     {u"a,b,c"},
     {u"a", u"b", u"c"},
     {3}},
    {"OnlyDelimiters",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u",,",
     {u",,"},
     {u"", u"", u""},
     {3}},
    {"EmptyTextHasNoLine", Mode::delimited, {u","}, {}, Options(), u"", {}, {}, {}},
    {"QuotedDelimiter",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"\"a,b\"x,c",
     {u"\"a,b\"x,c"},
     {u"\"a,b\"x", u"c"},
     {2}},
    {"DoubledQuote",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"\"a\"\"b\",c",
     {u"\"a\"\"b\",c"},
     {u"\"a\"\"b\"", u"c"},
     {2}},
    {"QuotedEnding",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"\"x\ny\",1\n2,3\n",
     {u"\"x\ny\",1", u"2,3"},
     {u"\"x\ny\"", u"1", u"2", u"3"},
     {2, 4}},
    {"UnterminatedQuote",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"1,\"a,b\nc",
     {u"1,\"a,b\nc"},
     {u"1", u"\"a,b\nc"},
     {2}},
    {"LongerDelimiterFirst",
     Mode::delimited,
     {u"::", u":"},
     {},
     Options(),
     u"a::b",
     {u"a::b"},
     {u"a", u"b"},
     {2}},
    {"ShorterDelimiterFirst",
     Mode::delimited,
     {u":", u"::"},
     {},
     Options(),
     u"a::b",
     {u"a::b"},
     {u"a", u"", u"b"},
     {3}},
    {"WhiteSpaceStaysInTheField",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u" a , b ",
     {u" a , b "},
     {u" a ", u" b "},
     {2}},
    {"TabStaysWhiteSpaceForCleaning",
     Mode::delimited,
     {u"\t"},
     {},
     Options(),
     u"a\tb\n\t\n",
     {u"a\tb", u""},
     {u"a", u"b"},
     {2, 2}},
    {"SpaceIsNoWhiteSpaceForCleaning",
     Mode::delimited,
     {u" "},
     {},
     Options(),
     u"a b\n \n",
     {u"a b", u" "},
     {u"a", u"b", u"", u""},
     {2, 4}},
    {"EmptyLinesAreKeptButNotCounted",
     Mode::line_reader,
     {},
     {},
     Options(),
     u"a\n\n \t\nb\nc\nd\ne\nf\n",
     {u"a", u"", u"", u"b", u"c", u"d", u"e"},
     {u"a", u"b", u"c", u"d", u"e"},
     {1, 1, 1, 2, 3, 4, 5}},
    {"OnlyEmptyLines",
     Mode::line_reader,
     {},
     {},
     Options(),
     u"\n\n\n",
     {u"", u"", u""},
     {},
     {0, 0, 0}},
    {"GivenHeaderLinesComeOnTop",
     Mode::line_reader,
     {},
     {},
     with_header_lines(2),
     u"1\n2\n3\n4\n5\n6\n7\n8\n",
     {u"1", u"2", u"3", u"4", u"5", u"6", u"7"},
     {u"1", u"2", u"3", u"4", u"5", u"6", u"7"},
     {1, 2, 3, 4, 5, 6, 7}},
    {"HugeHeaderCountSaturates",
     Mode::line_reader,
     {},
     {},
     with_header_lines(kUnknown - 1),
     u"1\n2\n3\n4\n5\n6\n7\n",
     {u"1", u"2", u"3", u"4", u"5", u"6", u"7"},
     {u"1", u"2", u"3", u"4", u"5", u"6", u"7"},
     {1, 2, 3, 4, 5, 6, 7}},
    {"DetectedHeaderLinesDoNot",
     Mode::line_reader,
     {},
     {},
     Options(),
     u"1\n2\n3\n4\n5\n6\n7\n",
     {u"1", u"2", u"3", u"4", u"5"},
     {u"1", u"2", u"3", u"4", u"5"},
     {1, 2, 3, 4, 5}},
    {"RawLineIsKept",
     Mode::line_reader,
     {},
     {},
     Options(),
     u"  x  \n",
     {u"  x  "},
     {u"  x  "},
     {1}},
    {"CommentIsDropped",
     Mode::line_reader,
     {},
     {},
     with_comments({u"%"}),
     u"   % note\nx % note\n",
     {u"x % note"},
     {u"x % note"},
     {1}},
    {"BlockCommentDropsItsFirstLine",
     Mode::line_reader,
     {},
     {},
     with_comments({u"/*", u"*/"}),
     u"/* a\nb */\n",
     {u"b */"},
     {u"b */"},
     {1}},
    {"EmptyCommentStartIsNone",
     Mode::line_reader,
     {},
     {},
     with_comments({u""}),
     u"a\n",
     {u"a"},
     {u"a"},
     {1}},
    {"EndMarkStopsTheSampling",
     Mode::line_reader,
     {},
     {},
     Options(),
     u"a\n\uffffb\nc",
     {u"a"},
     {u"a"},
     {1}},
    // The scan ends at the mark, and one more field is taken because the line continues.
    {"EndMarkInALineAddsAField",
     Mode::delimited,
     {u","},
     {},
     Options(),
     u"a,\uffffb",
     {u"a,"},
     {u"a", u""},
     {2}},
    {"OwnLineEndings",
     Mode::line_reader,
     {},
     {},
     with_endings({u";"}),
     u"a;b",
     {u"a", u"b"},
     {u"a", u"b"},
     {1, 2}},
    {"AlignedBlanks",
     Mode::space_aligned,
     {},
     {},
     Options(),
     u"   a   b",
     {u"a   b"},
     {u"a", u"b"},
     {2}},
    {"AlignedTabs",
     Mode::space_aligned,
     {},
     {},
     Options(),
     u"a\t \tb",
     {u"a\t \tb"},
     {u"a", u"b"},
     {2}},
    {"AlignedTrailingBlanks",
     Mode::space_aligned,
     {},
     {},
     Options(),
     u"a b  ",
     {u"a b  "},
     {u"a", u"b", u""},
     {3}},
    {"AlignedBlankLine",
     Mode::space_aligned,
     {},
     {},
     Options(),
     u"a\n \t \nb",
     {u"a", u"", u"b"},
     {u"a", u"b"},
     {1, 1, 2}},
    {"AlignedQuoted",
     Mode::space_aligned,
     {},
     {},
     Options(),
     u"\"x y\" z",
     {u"\"x y\" z"},
     {u"\"x y\"", u"z"},
     {2}},
    {"FixedExact",
     Mode::fixed_width,
     {},
     {2, 3},
     Options(),
     u"abcde",
     {u"abcde"},
     {u"ab", u"cde"},
     {2}},
    {"FixedShortLastField",
     Mode::fixed_width,
     {},
     {3, 3},
     Options(),
     u"abcde",
     {u"abcde"},
     {u"abc", u"de", u""},
     {3}},
    {"FixedNoShortField",
     Mode::fixed_width,
     {},
     {3, 3},
     Options(),
     u"abcdef",
     {u"abcdef"},
     {u"abc", u"def"},
     {2}},
    // "ab", "c" of width 3, the extra field of width 2; the next line starts with width 3. The
    // fields that pass the end of their line include text after it.
    {"FixedColumnRunsOn",
     Mode::fixed_width,
     {},
     {2, 3},
     Options(),
     u"abc\r\ndefgh\r\n",
     {u"abc", u"defgh"},
     {u"ab", u"c\r\n", u"\r\n", u"def", u"gh"},
     {3, 5}},
    {"FixedZeroWidthColumn",
     Mode::fixed_width,
     {},
     {0, 2},
     Options(),
     u"abcd",
     {u"abcd"},
     {u"", u"ab", u"", u"cd"},
     {4}},
    {"FixedWidthSumSaturates",
     Mode::fixed_width,
     {},
     {1, kUnknown},
     Options(),
     u"abc",
     {u"abc"},
     {u"a", u"bc", u""},
     {3}},
};

class ReferenceSample : public testing::TestWithParam<SampleCase> {};
TEST_P(ReferenceSample, HasTheseLinesAndFields) {
  const SampleCase& row = GetParam();
  const Sample sample = sample_strategy(row.mode, row.delimiters, row.widths, row.text, row.options,
                                        5, std::nullopt, false, kNever);
  EXPECT_EQ(texts_of(row.text, sample.lines), row.lines);
  EXPECT_EQ(texts_of(row.text, sample.fields), row.fields);
  EXPECT_EQ(sample.counts, row.counts);
  EXPECT_FALSE(sample.valued);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceSample, testing::ValuesIn(kSampleCases),
                         rule_of<SampleCase>);

TEST(ReferenceSampling, EmptyLinesPointNowhere) {
  const Sample sample =
      sample_strategy(Mode::line_reader, {}, {}, u"\na", Options(), 5, std::nullopt, false, kNever);
  EXPECT_EQ(sample.lines, (std::vector<Span>{{kNpos, 0}, {1, 1}}));
}

TEST(ReferenceSampling, BudgetZeroSamplesNothing) {
  const Sample sample =
      sample_strategy(Mode::line_reader, {}, {}, u"\na", Options(), 0, std::nullopt, false, kNever);
  EXPECT_TRUE(sample.lines.empty());
}

TEST(ReferenceFixedWidth, ReportsWholeWidths) {
  const Sample sample = sample_strategy(Mode::fixed_width, {}, {3, 4}, u"abcde", Options(), 5,
                                        std::nullopt, false, kNever);
  // The third field, at the end of the line, has the first width again.
  EXPECT_EQ(sample.fields, (std::vector<Span>{{0, 3}, {3, 4}, {5, 3}}));
  // The second cut starts with the second width: 4, then 3 from index 4, then 4 at the end.
  EXPECT_EQ(sample.fields_again, (std::vector<Span>{{0, 4}, {4, 3}, {5, 4}}));
}

TEST(ReferenceFixedWidth, NextFieldMovesTheColumnFirst) {
  std::size_t column = 0;
  const Options options;
  const auto next = [&](const std::u16string& line, std::size_t pos) {
    return get_next_field(Mode::fixed_width, {}, {2, 3}, line, options, pos, column);
  };
  EXPECT_EQ(next(u"abcde", 0), (Extent{0, 2, 2}));
  EXPECT_EQ(column, 1U);
  EXPECT_EQ(next(u"abcde", 2), (Extent{2, 3, 5}));
  EXPECT_EQ(column, 0U);
  EXPECT_EQ(next(u"abc", 4), (Extent{3, 0, 3}));
  EXPECT_EQ(column, 1U);
}

// -- classes -----------------------------------------------------------------------------------

TEST(ReferenceNumber, Accepts) {
  for (const std::u16string text :
       {u"12", u"-3.5", u".5", u"5.", u"+1e5", u"1.5D-3", u"nan", u"-Inf", u"3i", u"-2.5e3j",
        u"1+2i", u"1-2.5j", u"1+-2i", u"1x2i", u""}) {
    EXPECT_TRUE(is_number(text)) << std::string(text.begin(), text.end());
  }
}

TEST(ReferenceNumber, Refuses) {
  for (const std::u16string text : {u"1e", u"1e+", u"+.", u"1,000", u"0x1F", u"Infinity", u"1 2",
                                    u" 42", u"nan5", u"1+2k", u"1+2I", u"-", u"."}) {
    EXPECT_FALSE(is_number(text)) << std::string(text.begin(), text.end());
  }
}

TEST(ReferenceDuration, AcceptsTwoColonsAndAnyDigits) {
  for (const std::u16string text : {u"::", u"1::", u"1:02:03.5", u"1:02:03.", u"::.5"}) {
    EXPECT_TRUE(is_duration(text)) << std::string(text.begin(), text.end());
  }
  for (const std::u16string text : {u"", u"12:34", u"1:2:3x", u"-1:2:3", u"1:2:3:4"}) {
    EXPECT_FALSE(is_duration(text)) << std::string(text.begin(), text.end());
  }
}

struct UnquoteCase {
  const char* rule;
  std::u16string field;
  std::u16string result;
};
void PrintTo(const UnquoteCase& row, std::ostream* out) { *out << row.rule; }

const UnquoteCase kUnquoteCases[] = {
    {"NoQuote", u"abc", u"abc"},
    {"Empty", u"", u""},
    {"OnlyWhiteSpace", u"  ", u"  "},
    {"QuoteNotFirst", u"a\"b\"", u"a\"b\""},
    {"Pair", u"\"42\"", u"42"},
    {"AfterWhiteSpace", u" \t\"42\"", u" \t42"},
    {"Doubled", u"\"4\"\"2\"", u"4\"2"},
    {"TextAfterTheQuoteStays", u"\"a\"b\"c\"", u"ab\"c\""},
    {"UnterminatedLosesItsLastUnit", u"\"abc", u"ab"},
    {"LoneQuote", u"\"", u""},
    {"TwoQuotes", u"\"\"", u""},
    {"ThreeQuotes", u"\"\"\"", u""},
    {"FourQuotes", u"\"\"\"\"", u"\""},
    {"DoubledAtTheEnd", u"\"a\"\"", u"a"},
};

class ReferenceUnquote : public testing::TestWithParam<UnquoteCase> {};
TEST_P(ReferenceUnquote, RemovesOneLevel) {
  EXPECT_EQ(unquote(GetParam().field, u" \b\t"), GetParam().result);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceUnquote, testing::ValuesIn(kUnquoteCases),
                         rule_of<UnquoteCase>);

struct ClassCase {
  const char* rule;
  std::u16string field;
  std::u16string whitespace;
  std::uint16_t code;
};
void PrintTo(const ClassCase& row, std::ostream* out) { *out << row.rule; }

const ClassCase kClassCases[] = {
    {"Nothing", u"", u" \b\t", kEmpty},
    {"OnlyWhiteSpace", u" \t\b ", u" \b\t", kEmpty},
    {"LoneQuote", u"\"", u" \b\t", kEmpty},
    {"QuotedBlanks", u"\"  \"", u" \b\t", kEmpty},
    {"NanHasNoDigit", u"NaN", u" \b\t", kText},
    {"InfHasNoDigit", u"Inf", u" \b\t", kText},
    {"MonthName", u"March", u" \b\t", kText},
    {"NanWithADigit", u"nan5", u" \b\t", kText},
    {"LooseDuration", u"1::", u" \b\t", kDuration},
    {"HoursAndMinutes", u"12:34", u" \b\t", kDuration},
    {"WithSeconds", u"1:02:03.5", u" \b\t", kDuration},
    {"OneDigitMinutes", u"12:3", u" \b\t", kText},
    {"QuotedNumber", u"\"42\"", u" \b\t", kNumber},
    {"QuotedNumberWithBlanks", u" \" 42 \" ", u" \b\t", kNumber},
    {"DoubledQuoteInside", u"\"4\"\"2\"", u" \b\t", kText},
    {"Complex", u"1-2.5j", u" \b\t", kNumber},
    {"BlankNotInTheSet", u" 42", u"\t", kText},
    {"Date", u"2020-01-31", u" \b\t", kDate},
    {"DateWithColon", u"2020-01-31 10:20", u" \b\t", kDatetime},
    {"DateThenClock", u"2020-01-31   1:02:03", u" \b\t", kDatetime},
    {"ClockThenDate", u"1:02:03  2020-01-31", u" \b\t", kDatetime},
    {"DateThenText", u"2020-01-31 x", u" \b\t", kText},
    {"TextThenClock", u"x 1:02:03", u" \b\t", kText},
    {"ClockThenClock", u"1:02:03 1:02:03", u" \b\t", kText},
};

class ReferenceClassify : public testing::TestWithParam<ClassCase> {};
TEST_P(ReferenceClassify, GivesTheCode) {
  EXPECT_EQ(classify(GetParam().field, GetParam().whitespace, iso_date), GetParam().code);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceClassify, testing::ValuesIn(kClassCases),
                         rule_of<ClassCase>);

TEST(ReferenceClassifyFailingHost, CountsAsNoDate) {
  const IsDatetime failing = [](const std::u16string&) -> bool { throw std::runtime_error("x"); };
  EXPECT_EQ(classify(u"2020-01-31", u" ", failing), kText);
}

TEST(ReferenceClassifyHostWithOwnDates, DecidesAboutADateWithABlank) {
  const IsDatetime everything = [](const std::u16string&) { return true; };
  EXPECT_EQ(classify(u" 42", u"\t", everything), kDate);
  EXPECT_EQ(classify(u"12:3", u" ", everything), kDatetime);
}

// -- statistics --------------------------------------------------------------------------------

struct MedianCase {
  const char* rule;
  Counts counts;
  std::size_t first;
  std::size_t median;
};
void PrintTo(const MedianCase& row, std::ostream* out) { *out << row.rule; }

const MedianCase kMedianCases[] = {
    {"FirstAtTheEnd", {3, 3}, 2, 1},
    {"NothingAboveOne", {1, 0, 1}, 0, 1},
    {"OddCount", {5, 2, 9}, 0, 5},
    {"LowerOfTheMiddleTwo", {9, 2, 5, 3}, 0, 3},
    {"OnlyFromFirstOn", {9, 9, 9, 2, 3}, 3, 2},
    {"SingleValueInAShortList", {1, 1, 4, 1, 1, 1, 1, 1, 1, 1}, 0, 4},
    {"FewerThanAThird", {4, 4, 4, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 0, 1},
    {"ExactlyAThird", {4, 4, 4, 4, 1, 1, 1, 1, 1, 1, 1, 1}, 0, 4},
    {"EmptyLinesDoNotCountAsLines", {4, 4, 4, 0, 1, 1, 1, 1, 1, 1, 1, 0}, 0, 4},
};

class ReferenceMedian : public testing::TestWithParam<MedianCase> {};
TEST_P(ReferenceMedian, MatchesTheHandComputedResult) {
  EXPECT_EQ(get_modified_median(GetParam().counts, GetParam().first), GetParam().median);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceMedian, testing::ValuesIn(kMedianCases),
                         rule_of<MedianCase>);

TEST(ReferenceAbsDiffs, StopAtTheLastModalLineAndPassEmptyLines) {
  EXPECT_EQ(get_abs_diffs({1, 1, 3, 3, 3}, 3), (Counts{2, 2, 0, 0, 0}));
  EXPECT_EQ(get_abs_diffs({3, 3, 3, 0, 3}, 3), (Counts{0, 0, 0, 0}));
  EXPECT_EQ(get_abs_diffs({5, 3, 4, 0}, 3), (Counts{2, 0}));
  EXPECT_EQ(get_abs_diffs({5, 4}, 3), Counts{});
  EXPECT_EQ(get_abs_diffs({}, 3), Counts{});
}

TEST(ReferenceVariation, TotalIsTheMean) {
  EXPECT_EQ(get_total_variation({}), kInf);
  EXPECT_EQ(get_total_variation({2, 2, 0, 0, 0}), 0.8);
}

TEST(ReferenceVariation, DataStartsAtTheHeaderPosition) {
  EXPECT_EQ(get_data_variation({4, 1}, 0, 0.25), 0.25);
  EXPECT_EQ(get_data_variation({4, 1, 2}, 1, 9.0), 1.5);
  EXPECT_EQ(get_data_variation({4, 1}, 2, 9.0), kInf);
  const double past_the_end = get_data_variation({4, 1}, 3, 9.0);
  EXPECT_EQ(past_the_end, 0.0);
  EXPECT_TRUE(std::signbit(past_the_end));
}

TEST(ReferenceNumberOfVariables, IsTheLargestFromTheHeaderLinesOn) {
  EXPECT_EQ(get_number_of_variables({9, 2, 5, 3}, 1), 5U);
  EXPECT_EQ(get_number_of_variables({9, 0}, 1), 1U);
  EXPECT_EQ(get_number_of_variables({9, 2}, 2), 1U);
  EXPECT_EQ(get_number_of_variables({9, 2}, kUnknown), 1U);
}

TEST(ReferenceSkipToData, MakesALineIndex) {
  EXPECT_EQ(skip_to_data(0, {}, {3, 3}), 0U);
  EXPECT_EQ(skip_to_data(1, {1, 2}, {3, 0, 0, 3}), 3U);  // each empty line advances it
  EXPECT_EQ(skip_to_data(0, {1}, {3, 0, 3}), 0U);
  EXPECT_EQ(skip_to_data(1, {}, {3, 1, 1, 2}), 3U);  // lines of one field are skipped
  EXPECT_EQ(skip_to_data(0, {0}, {0, 1}), 2U);
  EXPECT_EQ(skip_to_data(5, {}, {3}), 5U);
}

TEST(ReferenceThreePointFilter, ReflectsAtBothEnds) {
  EXPECT_EQ(three_point_filter({1.0, 4.0, 9.0}, -1.0, 2.0, -1.0),
            (std::vector<double>{-3.0, -2.0, 5.0}));
  // Unequal weights: (5+3)*1+7*2, 3*1+5*2+7*4, (5+7)*4+7*2.
  EXPECT_EQ(three_point_filter({1.0, 2.0, 4.0}, 3.0, 5.0, 7.0),
            (std::vector<double>{22.0, 41.0, 62.0}));
  EXPECT_EQ(three_point_filter({7.0}, -1.0, 2.0, -1.0), std::vector<double>{7.0});
  EXPECT_TRUE(three_point_filter({}, -1.0, 2.0, -1.0).empty());
}

struct HeaderCase {
  const char* rule;
  Counts d;
  std::size_t first;
  bool cap;
  std::size_t header_lines;
};
void PrintTo(const HeaderCase& row, std::ostream* out) { *out << row.rule; }

const HeaderCase kHeaderCases[] = {
    {"Empty", {}, 4, false, 4},
    {"OneEntry", {1}, 4, false, 4},
    {"TwoDifferent", {1, 0}, 5, false, 1},
    {"TwoEqual", {1, 1}, 5, false, 0},
    {"FirstAtTheEnd", {1, 2, 3}, 2, false, 2},
    {"Falling", {2, 1, 0, 0, 0, 0, 0, 0}, 0, false, 2},
    {"FallingCapped", {2, 1, 0, 0, 0, 0, 0, 0}, 0, true, 2},
    {"ThreeHigh", {4, 4, 4, 0, 0, 0, 0, 0, 0}, 0, false, 3},
    {"ThreeHighCapped", {4, 4, 4, 0, 0, 0, 0, 0, 0}, 0, true, 3},
    {"PeakAtTheFirst", {5, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 0, false, 1},
    {"OnlyTheLastIsNotZero", {0, 0, 0, 3}, 0, false, 0},
    {"OnlyTheLastIsNotZeroWithFirst", {0, 0, 0, 0, 3}, 1, false, 1},
    // k = 3; the smoothed values of the first three are 0.5, -4/3, 7/6: the third is the largest,
    // but three of four is more than two thirds.
    {"MoreThanTwoThirdsFallsBack", {1, 0, 1, 0}, 0, true, 0},
    // k = 2; 1, 9/2, 3 capped: the second is the largest, and 2 of 3 is not more than two thirds.
    {"ExactlyTwoThirdsIsKept", {1, 3, 0}, 0, true, 2},
    // k = 5 after the trailing zeros, three zeros among them are more than 5 / 2; with k = 4 they
    // are still more than 2; with k = 3 two are more than 1; with k = 2 one is not more than 1.
    // Running sums 1,1,1,1,2,2,2 give 1, 1/2, 1/3, 1/4, 4/5, ...: 0.5 at the first is the largest.
    {"ZeroGuardTakesBack", {1, 0, 0, 0, 1, 0, 0}, 0, false, 1},
    {"ZeroGuardReachesFirst", {0, 0, 0, 1, 0, 0}, 0, false, 0},
};

class ReferenceHeaderLines : public testing::TestWithParam<HeaderCase> {};
TEST_P(ReferenceHeaderLines, MatchesTheHandComputedResult) {
  const HeaderCase& row = GetParam();
  EXPECT_EQ(get_header_lines(row.d, row.first, row.cap), row.header_lines);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceHeaderLines, testing::ValuesIn(kHeaderCases),
                         rule_of<HeaderCase>);

// -- valuation ---------------------------------------------------------------------------------

struct ValuationCase {
  const char* rule;
  Options options;
  std::u16string text;  // read with commas
  std::size_t header_lines;
  double total_variation;
  double data_variation;
  std::size_t num_lines;
  std::int32_t modal_field_count;
  std::size_t num_variables;
  std::vector<std::uint16_t> codes;
};
void PrintTo(const ValuationCase& row, std::ostream* out) { *out << row.rule; }

const ValuationCase kValuationCases[] = {
    {"TwoLinesOfPreamble",
     Options(),
     u"x\ny\na,b,c\n1,2,z\n4,5,z\n",
     2,
     0.8,
     0.0,
     5,
     3,
     3,
     {kNumber, kNumber, kText}},
    {"EmptyLineInside",
     Options(),
     u"1,2,3\n1,2,3\n1,2,3\n\n1,2,3\n",
     0,
     0.0,
     0.0,
     5,
     3,
     3,
     {kNumber, kNumber, kNumber}},
    // The modal count is 1: one variable, and the lowest line is text.
    {"FewerThanAThirdOfTheLines",
     Options(),
     u"1,2,3,4\n1,2,3,4\n1,2,3,4\na\nb\nc\nd\ne\nf\ng\nh\ni\n",
     0,
     kInf,
     kInf,
     12,
     1,
     1,
     {kText}},
    {"OneFieldOnEveryLine", Options(), u"1\n2\n3\n", 0, kInf, kInf, 3, 1, 1, {}},
    {"NoLine", Options(), u"", 0, kInf, kInf, 0, 1, 1, {}},
    {"NoLineAndGivenHeader", with_header_lines(7), u"", 7, kInf, kInf, 0, 1, 1, {}},
    // Given header lines and one field on every line: inspected from the second line on.
    {"OneFieldAndGivenHeader", with_header_lines(0), u"1\n2\n", 0, kInf, kInf, 2, 1, 1, {kNumber}},
    {"OnlyEmptyLines", Options(), u"\n\n", 0, kInf, kInf, 2, 1, 1, {kEmpty}},
    {"TwoLines", Options(), u"1,2\n3,4\n", 0, 0.0, 0.0, 2, 2, 2, {kNumber, kNumber}},
    // The list is 1, 0; of two different entries the first is the header. Nothing follows the first
    // line after it, so nothing is inspected.
    {"PreambleAndOneDataLine", Options(), u"x\n1,2\n", 1, 0.5, 0.0, 2, 2, 2, {kEmpty, kEmpty}},
    // One entry in the list: the first line of two fields ends the header, given or not.
    {"ShortListDetected", Options(), u"1,2\n", 0, kInf, kInf, 1, 2, 1, {kEmpty}},
    {"ShortListAfterAnEmptyLine", Options(), u"\n1,2\n", 1, kInf, kInf, 2, 2, 1, {kEmpty}},
    {"ShortListOverridesGivenHeader",
     with_header_lines(3),
     u"1,2\nx\ny\n",
     0,
     kInf,
     kInf,
     3,
     2,
     1,
     {kEmpty}},
    {"GivenHeaderAtTheEnd", with_header_lines(2), u"1,2\n3,4\n", 2, 0.0, kInf, 2, 2, 1, {kEmpty}},
    {"GivenHeaderPastTheEnd", with_header_lines(9), u"1,2\n3,4\n", 9, 0.0, -0.0, 2, 2, 1, {kEmpty}},
    {"GivenHeaderUnknownIsWorkedOut",
     with_header_lines(kUnknown),
     u"1,2\n3,4\n",
     0,
     0.0,
     0.0,
     2,
     2,
     2,
     {kNumber, kNumber}},
    {"ColumnOfBlanksStaysEmpty",
     Options(),
     u"1, ,2\n1,\t,2\n1,  ,2\n",
     0,
     0.0,
     0.0,
     3,
     3,
     3,
     {kNumber, kEmpty, kNumber}},
    // The first data line is never inspected: its text does not count.
    {"FirstDataLineIsNotInspected",
     Options(),
     u"a,b\n1,\n2,\n",
     0,
     0.0,
     0.0,
     3,
     2,
     2,
     {kNumber, kEmpty}},
    // 3 fields on the last line: the middle of 2, 2, 3 is 2; the list ends at the second line.
    {"LongerLineGivesTheVariables",
     Options(),
     u"1,2\n1,2\n1,2,x\n",
     0,
     0.0,
     0.0,
     3,
     2,
     3,
     {kNumber, kNumber, kText}},
};

class ReferenceValue : public testing::TestWithParam<ValuationCase> {};
TEST_P(ReferenceValue, MatchesTheHandComputedResult) {
  const ValuationCase& row = GetParam();
  const Sample sample = sample_strategy(Mode::delimited, {u","}, {}, row.text, row.options, 100,
                                        std::nullopt, true, iso_date);
  EXPECT_TRUE(sample.valued);
  EXPECT_EQ(sample.header_lines, row.header_lines);
  EXPECT_EQ(sample.valuation.total_variation, row.total_variation);
  EXPECT_EQ(sample.valuation.data_variation, row.data_variation);
  EXPECT_EQ(std::signbit(sample.valuation.data_variation), std::signbit(row.data_variation));
  EXPECT_EQ(sample.valuation.num_lines, row.num_lines);
  EXPECT_EQ(sample.valuation.modal_field_count, row.modal_field_count);
  EXPECT_EQ(sample.valuation.num_variables, row.num_variables);
  EXPECT_EQ(sample.column_codes, row.codes);
  EXPECT_EQ(sample.valuation.priors_rank, 0.0);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceValue, testing::ValuesIn(kValuationCases),
                         rule_of<ValuationCase>);

TEST(ReferenceValueCounters, CountTheClasses) {
  const std::u16string row = u"1,x,2020-01-31,1:02:03,2020-01-31 10:20,,7\n";
  const Sample sample = sample_strategy(Mode::delimited, {u","}, {}, row + row, Options(), 100,
                                        std::nullopt, true, iso_date);
  EXPECT_EQ(sample.column_codes, (std::vector<std::uint16_t>{kNumber, kText, kDate, kDuration,
                                                             kDatetime, kEmpty, kNumber}));
  EXPECT_EQ(sample.valuation.typed_columns, 6U);
  EXPECT_EQ(sample.valuation.date_columns, 2U);
  EXPECT_EQ(sample.valuation.numeric_columns, 2U);
  EXPECT_EQ(sample.valuation.datetime_columns, 1U);
}

TEST(ReferenceValueHeader, CountsTheEmptyLineOfThePreamble) {
  const Sample sample =
      sample_strategy(Mode::delimited, {u","}, {}, u"x\n\ny\na,b,c\n1,2,3\n4,5,6\n", Options(), 100,
                      std::nullopt, true, kNever);
  // Counts 1,0,1,3,3,3: the first count that is not 1 is the empty line, index 1; the middle is 3;
  // the list is 2,2,0,0,0. Two entries are left without the trailing zeros; the sums 2,4,4,4,4 give
  // 4,8,16/3,4,16/5; smoothed -4 and 20/3: two entries, within two thirds of five. The empty line
  // makes it line 3.
  EXPECT_EQ(sample.header_lines, 3U);
  EXPECT_EQ(sample.valuation.total_variation, 0.8);
  EXPECT_EQ(sample.valuation.data_variation, 0.0);
  EXPECT_EQ(sample.valuation.num_variables, 3U);
}

TEST(ReferenceValueHeader, IsDiscardedWhenTheDataAfterItVariesTooMuch) {
  std::u16string text;
  for (const std::size_t count : Counts{22, 2, 2, 10, 2, 2, 2}) {
    for (std::size_t i = 1; i < count; ++i) text += u"0,";
    text += u"0\n";
  }
  const Sample sample = sample_strategy(Mode::delimited, {u","}, {}, text, Options(), 100,
                                        std::nullopt, true, kNever);
  // The list is 20,0,0,8,0,0,0. Four entries are left without the trailing zeros; the sums 20,20,
  // 20,28,... give 400,200,400/3,196,784/5,...; smoothed 200,-400/3,-388/3,about 102: one header
  // line. After it the mean is 8/6, more than 1: back to the first line, where it is 28/7.
  EXPECT_EQ(sample.header_lines, 0U);
  EXPECT_EQ(sample.valuation.total_variation, 4.0);
  EXPECT_EQ(sample.valuation.data_variation, 4.0);
  EXPECT_EQ(sample.valuation.num_variables, 22U);
  // The line of ten fields gives ten columns; the first line is not inspected.
  EXPECT_EQ(sample.valuation.numeric_columns, 10U);
  EXPECT_EQ(sample.valuation.typed_columns, 10U);
}

// -- candidates --------------------------------------------------------------------------------

struct CharsCase {
  const char* rule;
  std::u16string text;
  std::u16string chars;
};
void PrintTo(const CharsCase& row, std::ostream* out) { *out << row.rule; }

const CharsCase kCharsCases[] = {
    {"HeaderIsNotScanned", u"a;b\n1,2\n3,4\n", u","},
    {"OneLineIsScanned", u"a;b\n", u";"},
    {"EmptyLinesAreNotNumbered", u"a;b\n\n1,2\n", u","},
    {"LettersAndDigitsGiveNothing", u"abc\nabcXYZ019\n", u""},
    {"FirstAppearanceOrders", u"x\n; ,;\t|:/#\n", u"; ,\t|:/#"},
    {"ExcludedUnits", u"x\naZ09@-.\"$'+\u001a\u0080\u00e9\n", u""},
    {"ControlUnitsAreCandidates", u"x\na\u0001b\u007fc\n", u"\u0001\u007f"},
    {"EndMarkEndsTheLine", u"x\na,b\uffffc;d\n", u","},
    {"TwelveLinesScanFourToNine", u"0!0\n1#1\n2%2\n3&3\n4(4\n5)5\n6*6\n7,7\n8/8\n9:9\n0;0\n1<1\n",
     u"()*,/:"},
    // Six lines: 8 / 3 = 2 up to, not including, 30 / 6 = 5.
    {"SixLinesScanTwoToFour", u"0!0\n1#1\n2%2\n3&3\n4(4\n5)5\n", u"%&("},
    {"FiveLinesScanOneToFour", u"0!0\n1#1\n2%2\n3&3\n4(4\n", u"#%&("},
};

class ReferenceCandidateChars : public testing::TestWithParam<CharsCase> {};
TEST_P(ReferenceCandidateChars, MatchesTheHandComputedResult) {
  const CharsCase& row = GetParam();
  const Sample reader =
      sample_strategy(Mode::line_reader, {}, {}, row.text, Options(), 100, 0, false, kNever);
  EXPECT_EQ(candidate_chars(row.text, reader.lines), row.chars);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceCandidateChars, testing::ValuesIn(kCharsCases),
                         rule_of<CharsCase>);

std::vector<Sample> candidates_of(const std::u16string& text, const Options& options) {
  const Sample reader =
      sample_strategy(Mode::line_reader, {}, {}, text, options, 100, 0, false, kNever);
  return build_candidates(text, reader.lines, options, options.header_lines, 100, iso_date);
}

TEST(ReferenceCandidates, OneForTheComma) {
  const auto candidates = candidates_of(u"a,b\n1,2\n3,4\n", Options());
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(candidates.at(0).mode, Mode::delimited);
  EXPECT_EQ(candidates.at(0).delimiters, Strings{u","});
  EXPECT_TRUE(candidates.at(0).valued);
}

TEST(ReferenceCandidates, NoneForPlainWords) {
  EXPECT_TRUE(candidates_of(u"abc\ndef\n", Options()).empty());
}

// With blanks: 3, 2, 3, 2 fields, all lines 12 code units long, variation 0.5, 3 variables. The
// columns 8 and 9 are blank in all lines; those at 4 only in the first two.
constexpr const char16_t* kNames =
    u"John Doe  12\n"
    u"Ann       34\n"
    u"Bob Ray   56\n"
    u"Eve       78\n";

TEST(ReferenceCandidates, IrregularLinesOfOneLengthBecomeFixedWidth) {
  const auto candidates = candidates_of(kNames, Options());
  ASSERT_EQ(candidates.size(), 2U);
  const Sample& fixed = candidates.at(0);
  EXPECT_EQ(fixed.mode, Mode::fixed_width);
  EXPECT_EQ(fixed.widths, (Counts{8, 4}));
  EXPECT_EQ(fixed.header_lines, 0U);
  EXPECT_FALSE(fixed.header_lines_auto);
  EXPECT_EQ(fixed.counts, (Counts{2, 4, 6, 8}));
  EXPECT_TRUE(fixed.valued);
  EXPECT_EQ(fixed.valuation.data_variation, 0.0);
  EXPECT_EQ(fixed.valuation.num_variables, 2U);
  EXPECT_EQ(fixed.column_codes, (std::vector<std::uint16_t>{kText, kNumber}));
  // Single blanks: 4, 8, 5, 8 fields; the middle is 5, the list 1, 3, 0; two header lines.
  EXPECT_EQ(candidates.at(1).delimiters, Strings{u" "});
  EXPECT_EQ(candidates.at(1).header_lines, 2U);
}

TEST(ReferenceCandidates, OneShorterLineKeepsItSpaceAligned) {
  const std::u16string text =
      u"John Doe  12\n"
      u"Ann       34\n"
      u"Bob Ray   56\n"
      u"Eve      78\n";
  const auto candidates = candidates_of(text, Options());
  ASSERT_EQ(candidates.size(), 2U);
  EXPECT_EQ(candidates.at(0).mode, Mode::space_aligned);
  EXPECT_EQ(candidates.at(0).valuation.data_variation, 0.5);
}

TEST(ReferenceCandidates, RegularLinesOfOneLengthStaySpaceAligned) {
  const auto candidates = candidates_of(u"aa 11\nbb 22\ncc 33\n", Options());
  ASSERT_EQ(candidates.size(), 2U);
  EXPECT_EQ(candidates.at(0).mode, Mode::space_aligned);
  EXPECT_EQ(candidates.at(1).mode, Mode::delimited);
}

TEST(ReferenceCandidates, ColumnsAreCutBeforeBlanksThatLast) {
  // With blanks: 3, 2, 3, 2 fields; only the columns 4 and 5 are blank in all lines.
  const auto candidates = candidates_of(u"ab c  d\nabcc  d\na bc  d\nabcc  d\n", Options());
  ASSERT_FALSE(candidates.empty());
  EXPECT_EQ(candidates.at(0).mode, Mode::fixed_width);
  EXPECT_EQ(candidates.at(0).widths, (Counts{4, 3}));
}

TEST(ReferenceCandidates, DetectedHeaderLinesOfTheSameLengthAreTakenAsData) {
  // Counts 1,3,2,3,2; the list 1,1,0,1,0 gives two header lines and a variation of 1/3 after them.
  // Both have 12 code units, so the columns are those of all five lines: none stays blank.
  const auto candidates = candidates_of(u"Names-Number\n" + std::u16string(kNames), Options());
  ASSERT_FALSE(candidates.empty());
  EXPECT_EQ(candidates.at(0).mode, Mode::fixed_width);
  EXPECT_EQ(candidates.at(0).widths, Counts{12});
  EXPECT_EQ(candidates.at(0).header_lines, 0U);
}

TEST(ReferenceCandidates, GivenHeaderLinesStayHeaderLines) {
  // As above, with a variation of 1/2 from the second line on.
  const auto candidates =
      candidates_of(u"Names-Number\n" + std::u16string(kNames), with_header_lines(1));
  ASSERT_FALSE(candidates.empty());
  EXPECT_EQ(candidates.at(0).mode, Mode::fixed_width);
  EXPECT_EQ(candidates.at(0).widths, (Counts{8, 4}));
  EXPECT_EQ(candidates.at(0).header_lines, 1U);
}

TEST(ReferenceCandidates, TheConversionKeepsASpaceAlignedOneWithoutAskingAgain) {
  // One quoted field on each line, all 5 code units long. The column of blanks gives two columns,
  // more than the one variable, so the space-aligned candidate is kept although it is not measured.
  const auto candidates = candidates_of(u"\"a b\"\n\"c d\"\n\"e f\"\n", Options());
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(candidates.at(0).mode, Mode::space_aligned);
  EXPECT_EQ(candidates.at(0).valuation.data_variation, kInf);
  EXPECT_EQ(candidates.at(0).valuation.num_variables, 1U);
}

TEST(ReferenceCandidates, NoDataLineMeansNoConversion) {
  EXPECT_TRUE(candidates_of(u"a b\nc d\n", with_header_lines(2)).empty());
}

TEST(ReferenceCandidates, BlankLinesMeanNoConversion) {
  // Blanks are not white space here, so the reader keeps the lines. The space-aligned lines are all
  // empty, and the single blank gives three fields on each.
  const auto candidates = candidates_of(u"  \n  \n", options_with(u"\t"));
  ASSERT_EQ(candidates.size(), 1U);
  EXPECT_EQ(candidates.at(0).mode, Mode::delimited);
  EXPECT_EQ(candidates.at(0).valuation.num_variables, 3U);
}

TEST(ReferenceCandidates, OneColumnIsUnmeasuredAndNotKept) {
  // The only comma is in line 6 of 17, which is scanned. From that line on one line of eleven has
  // two fields, fewer than a third: the modal count is 1, and the variation stays infinite.
  Options given;
  given.detect_num_variables = false;
  given.num_variables = 1;
  const std::u16string text = u"a\nb\nc\nd\ne\nf\ng,g\nh\ni\nj\nk\nl\nm\nn\no\np\nq\n";
  EXPECT_TRUE(candidates_of(text, Options()).empty());
  EXPECT_TRUE(candidates_of(text, given).empty());
}

// -- filters -----------------------------------------------------------------------------------

Valuation varied(double data_variation, std::size_t num_lines) {
  Valuation v;
  v.data_variation = data_variation;
  v.num_lines = num_lines;
  return v;
}

Valuation ranked(double priors_rank) {
  Valuation v;
  v.priors_rank = priors_rank;
  return v;
}

// Counters in the order typed, date, numeric, datetime.
Valuation typed(std::uint32_t all, std::uint32_t dates, std::uint32_t numbers,
                std::uint32_t datetimes, std::size_t num_variables) {
  Valuation v;
  v.typed_columns = all;
  v.date_columns = dates;
  v.numeric_columns = numbers;
  v.datetime_columns = datetimes;
  v.num_variables = num_variables;
  return v;
}

TEST(ReferenceFilters, KeepTheGivenNumberOfVariablesIfAnyHasIt) {
  const Valuations valuations{typed(0, 0, 0, 0, 2), typed(0, 0, 0, 0, 3), typed(0, 0, 0, 0, 3)};
  EXPECT_EQ(reduce_by_numvariables({0, 1, 2}, valuations, 3), (Survivors{1, 2}));
  EXPECT_EQ(reduce_by_numvariables({0, 1, 2}, valuations, 7), (Survivors{0, 1, 2}));
}

TEST(ReferenceFilters, KeepThoseWithDatesIfAnyHasSome) {
  const Valuations valuations{typed(1, 0, 1, 0, 1), typed(1, 1, 0, 0, 1), typed(1, 0, 0, 1, 1)};
  EXPECT_EQ(reduce_by_dates({0, 1, 2}, valuations), (Survivors{1, 2}));
  EXPECT_EQ(reduce_by_dates({0}, valuations), (Survivors{0}));
}

TEST(ReferenceFilters, KeepTheMostRegularAndThoseNearIt) {
  EXPECT_EQ(reduce_by_variation({0, 1, 2}, {varied(0.0, 100), varied(0.05, 1), varied(0.2, 1)}),
            (Survivors{0, 1}));
  EXPECT_EQ(reduce_by_variation({0, 1}, {varied(2.0, 10), varied(2.15, 10)}), (Survivors{0, 1}));
  EXPECT_EQ(reduce_by_variation({0, 1}, {varied(2.0, 10), varied(2.5, 10)}), (Survivors{0}));
  EXPECT_EQ(reduce_by_variation({0, 1}, {varied(0.0, 0), varied(5.0, 0)}), (Survivors{0, 1}));
  EXPECT_EQ(reduce_by_variation({0, 1}, {varied(kInf, 9), varied(kInf, 9)}), (Survivors{0, 1}));
}

TEST(ReferenceFilters, KeepTheGreatestValueOfClasses) {
  EXPECT_EQ(reduce_by_class_value({0, 1}, {typed(8, 0, 8, 0, 8), typed(1, 0, 0, 1, 1)}),
            (Survivors{1}));
  // 3 + 10 + 1 = 14 against 4 * 3 + 2 = 14.
  EXPECT_EQ(reduce_by_class_value({0, 1}, {typed(3, 1, 1, 0, 3), typed(6, 0, 4, 0, 6)}),
            (Survivors{0, 1}));
}

TEST(ReferenceFilters, KeepTheFewestHeaderLinesOfSteadyOnes) {
  const Valuations valuations{varied(0.0, 9), varied(0.0, 9), varied(0.5, 9), varied(0.0, 9)};
  EXPECT_EQ(reduce_by_header_lines({0, 1, 2, 3}, valuations, {2, 1, 1, 1}, true),
            (Survivors{1, 3}));
  EXPECT_EQ(reduce_by_header_lines({0, 1, 2, 3}, valuations, {2, 1, 1, 1}, false),
            (Survivors{0, 1, 2, 3}));
  EXPECT_EQ(reduce_by_header_lines({2, 3}, valuations, {2, 1, 1, 0}, true), (Survivors{2, 3}));
  // The fewest header lines belong to an irregular candidate: none passes, so all stay.
  EXPECT_EQ(reduce_by_header_lines({0, 2}, valuations, {2, 1, 1, 1}, true), (Survivors{0, 2}));
}

TEST(ReferenceFilters, KeepTheGreatestShareOfTypedColumns) {
  const Valuations valuations{typed(1, 0, 0, 0, 2), typed(2, 0, 0, 0, 2), typed(3, 0, 0, 0, 3)};
  EXPECT_EQ(reduce_by_non_empty({0, 1, 2}, valuations), (Survivors{1, 2}));
  EXPECT_EQ(reduce_by_non_empty({0, 1}, {typed(0, 0, 0, 0, 0), typed(1, 0, 0, 0, 1)}),
            (Survivors{0, 1}));
}

TEST(ReferenceFilters, KeepTheBestRank) {
  EXPECT_EQ(reduce_by_priors_rank({0, 1}, {ranked(1.0), ranked(0.0)}), (Survivors{1}));
  EXPECT_EQ(reduce_by_priors_rank({0, 1}, {ranked(3.5), ranked(kNotInPriorities)}), (Survivors{0}));
  EXPECT_EQ(reduce_by_priors_rank({0, 1}, {ranked(kNotInPriorities), ranked(kNotInPriorities)}),
            (Survivors{0, 1}));
  EXPECT_EQ(reduce_by_priors_rank({0, 1}, {ranked(kInf), ranked(kNotInPriorities)}),
            (Survivors{0, 1}));
}

// -- selection ---------------------------------------------------------------------------------

TEST(ReferenceDetect, OneCandidateWinsWithoutFilters) {
  const Detection found = detect(u"a,b\n1,2\n3,4\n", Options(), 100, iso_date);
  EXPECT_EQ(found.winner.mode, Mode::delimited);
  EXPECT_EQ(found.winner.delimiters, Strings{u","});
  EXPECT_EQ(found.winner.header_lines, 0U);
  EXPECT_EQ(found.winner.valuation.num_variables, 2U);
  EXPECT_TRUE(found.survivors_after_each_filter.empty());
  EXPECT_FALSE(found.single_column_fallback);
  EXPECT_FALSE(found.line_reader);
}

TEST(ReferenceDetect, LinesOfDatesAreASingleColumn) {
  const Detection found = detect(u"2020-01-01\n2020-01-02\n", Options(), 100, iso_date);
  EXPECT_TRUE(found.single_column_fallback);
  EXPECT_EQ(found.winner.mode, Mode::delimited);
  EXPECT_EQ(found.winner.delimiters, Strings{u","});
  EXPECT_EQ(found.winner.header_lines, 0U);
  EXPECT_FALSE(found.winner.header_lines_auto);
  EXPECT_FALSE(found.winner.valued);
  EXPECT_EQ(found.winner.counts, (Counts{1, 2}));
}

TEST(ReferenceDetect, EmptySampleIsReadByLines) {
  for (const std::u16string text : {u"", u"\uffff,\n"}) {
    const Detection found = detect(text, Options(), 100, iso_date);
    EXPECT_TRUE(found.line_reader);
    EXPECT_EQ(found.winner.mode, Mode::line_reader);
    EXPECT_EQ(found.winner.header_lines, 0U);
    EXPECT_TRUE(found.winner.valued);
  }
}

TEST(ReferenceDetect, NoCandidateIsReadByLines) {
  const Detection found = detect(u"abc\ndef\n", Options(), 100, iso_date);
  EXPECT_TRUE(found.line_reader);
  EXPECT_EQ(found.winner.lines, (std::vector<Span>{{0, 3}, {4, 3}}));
}

TEST(ReferenceDetect, TieWithoutPriorityIsASingleColumn) {
  // '|' gives a number and a text, '/' a text and a number; both without variation.
  const Detection found = detect(u"a|b/c\n1|2/3\n4|5/6\n", Options(), 100, iso_date);
  ASSERT_EQ(found.candidates.size(), 2U);
  EXPECT_TRUE(found.single_column_fallback);
  EXPECT_EQ(found.survivors_after_each_filter,
            (std::vector<Survivors>{{0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}, {0, 1}}));
  EXPECT_EQ(found.winner.delimiters, Strings{u","});
}

TEST(ReferenceDetect, TieIsResolvedByThePriority) {
  const Detection found = detect(u"a|b;c\n1|2;3\n4|5;6\n", Options(), 100, iso_date);
  EXPECT_EQ(found.filters_run.size(), 6U);
  EXPECT_EQ(found.filters_run.back(), "priors_rank");
  EXPECT_EQ(found.survivors_after_each_filter.back(), (Survivors{1}));
  EXPECT_EQ(found.winner.delimiters, Strings{u";"});
}

TEST(ReferenceDetect, GivenNumberOfVariablesComesFirst) {
  // ';' gives three fields, ',' two.
  const std::u16string text = u"a;b,c;d\n1;2,3;4\n5;6,7;8\n";
  Options options;
  options.detect_num_variables = false;
  options.num_variables = 2;
  const Detection found = detect(text, options, 100, iso_date);
  EXPECT_EQ(found.filters_run, std::vector<std::string>{"numvariables"});
  EXPECT_EQ(found.winner.delimiters, Strings{u","});

  options.num_variables = 9;
  const Detection other = detect(text, options, 100, iso_date);
  EXPECT_EQ(other.survivors_after_each_filter.at(0), (Survivors{0, 1}));
  // ';' has two numbers and a text (7) against two texts (2).
  EXPECT_EQ(other.filters_run.back(), "class_value");
  EXPECT_EQ(other.winner.delimiters, Strings{u";"});
}

TEST(ReferenceDetect, FixedWidthWinsByItsHeaderLines) {
  const Detection found = detect(kNames, Options(), 100, iso_date);
  EXPECT_EQ(found.filters_run.back(), "header_lines");
  EXPECT_EQ(found.winner.mode, Mode::fixed_width);
  EXPECT_EQ(found.winner.widths, (Counts{8, 4}));
}

// -- the sample --------------------------------------------------------------------------------

struct LengthCase {
  const char* rule;
  std::u16string text;
  Strings line_endings;
  std::size_t limit;
  std::size_t length;
};
void PrintTo(const LengthCase& row, std::ostream* out) { *out << row.rule; }

const LengthCase kLengthCases[] = {
    {"Empty", u"", {u"\n"}, 8, 0},
    {"Short", u"abc", {u"\n"}, 8, 3},
    {"ExactlyTheLimit", u"abcd\nfgh", {u"\n"}, 8, 8},
    {"OneMoreCutsAfterTheLastEnding", u"abcd\nfghi", {u"\n"}, 8, 5},
    {"EndingAfterTheLimitDoesNotCount", u"a\ncdefgh\n", {u"\n"}, 8, 2},
    {"NoEndingInTheLimit", u"abcdefghi\n", {u"\n"}, 8, 0},
    {"CutAfterTheFirstUnitOfAPair", u"abc\r\nfghi", {u"\r\n"}, 8, 4},
    {"CutAtTheLineFeedOfAPair", u"abc\r\nfghi", {u"\r\n", u"\n"}, 8, 5},
    {"PairAcrossTheLimitDoesNotFit", u"a\r\ndefg\r\n", {u"\r\n"}, 8, 2},
    {"EndMarkEndsAShortText", u"ab\uffffcd", {u"\n"}, 8, 2},
    {"EndMarkAtTheLimitMakesItShort", u"a\ncdefgh\uffffxyz", {u"\n"}, 8, 8},
    {"EarlierEndMarkOfATextThatReachesTheLimit", u"a\uffffc\nefghij", {u"\n"}, 8, 4},
};

class ReferenceSampleLength : public testing::TestWithParam<LengthCase> {};
TEST_P(ReferenceSampleLength, MatchesTheHandComputedResult) {
  const LengthCase& row = GetParam();
  EXPECT_EQ(sample_length(row.text, row.line_endings, row.limit), row.length);
}
INSTANTIATE_TEST_SUITE_P(Table, ReferenceSampleLength, testing::ValuesIn(kLengthCases),
                         rule_of<LengthCase>);

TEST(ReferenceSampleLengthFull, HoldsAtTheRealLimit) {
  const Strings endings = Options().line_endings;
  EXPECT_EQ(sample_length(std::u16string(10, u'x'), endings), 10U);
  EXPECT_EQ(sample_length(std::u16string(4194304, u'x'), endings), 4194304U);
  std::u16string text(5000000, u'x');
  EXPECT_EQ(sample_length(text, endings), 0U);
  text.at(4194200) = u'\n';
  EXPECT_EQ(sample_length(text, endings), 4194201U);
}

}  // namespace
}  // namespace reference
