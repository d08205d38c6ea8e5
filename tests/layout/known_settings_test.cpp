#include <vltextstream/layout/known_settings.hpp>

#include <cstdint>
#include <optional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing::StartsWith;
using testing_support::ByRule;
using testing_support::readable;

constexpr std::size_t kMost = 4'194'304;
constexpr auto kNegative = static_cast<std::size_t>(-1);

// --- what is known -----------------------------------------------------------------------------

using Texts = std::vector<std::u16string>;
using Strings = std::vector<std::string>;
using Numbers = std::vector<std::size_t>;

TEST(KnownSettings, AreTheDefaultsWhenNothingIsKnown) {
  const DetectSettings settings = settings_of({});
  const DetectSettings defaults;
  EXPECT_EQ(settings.num_lines, 100U);
  EXPECT_EQ(settings.encoding, std::nullopt);
  EXPECT_TRUE(settings.options.detect_delimiters);
  EXPECT_TRUE(settings.options.detect_header_lines);
  EXPECT_TRUE(settings.options.detect_num_variables);
  EXPECT_TRUE(settings.options.variable_widths.empty());
  EXPECT_EQ(settings.options.line_endings, defaults.options.line_endings);
  EXPECT_EQ(settings.options.whitespace, defaults.options.whitespace);
}

TEST(KnownDelimiters, AreSettled) {
  const DetectSettings settings = settings_of({.delimiters = {{"::", "\xC2\xA7"}}});
  EXPECT_EQ(settings.options.delimiters, (Texts{u"::", u"\u00A7"}));
  EXPECT_FALSE(settings.options.detect_delimiters);
  EXPECT_TRUE(settings.options.detect_header_lines);
  EXPECT_TRUE(settings.options.detect_num_variables);
}

TEST(KnownMaxBytes, AreSettled) {
  EXPECT_EQ(settings_of({.max_bytes = 1}).max_bytes, 1U);
  EXPECT_EQ(settings_of({.max_bytes = 70'000'000}).max_bytes, 70'000'000U);
  EXPECT_EQ(settings_of({}).max_bytes, DetectSettings().max_bytes);
}

TEST(KnownWidths, AreSettled) {
  const DetectSettings settings = settings_of({.widths = {{1, kMost}}});
  EXPECT_EQ(settings.options.variable_widths, (std::vector<std::uint64_t>{1, kMost}));
  EXPECT_EQ(settings.options.parser_type, parser::parser_kind::fixedwidth);
}

TEST(KnownHeaderLines, AreSettled) {
  for (const std::size_t count : {std::size_t{0}, std::size_t{3}, kMost}) {
    const DetectSettings settings = settings_of({.header_lines = count});
    EXPECT_EQ(settings.options.header_lines, count);
    EXPECT_FALSE(settings.options.detect_header_lines);
    EXPECT_TRUE(settings.options.detect_delimiters);
    EXPECT_TRUE(settings.options.detect_num_variables);
  }
}

TEST(KnownNumVariables, AreSettled) {
  for (const std::size_t count : {std::size_t{1}, kMost}) {
    const DetectSettings settings = settings_of({.num_variables = count});
    EXPECT_EQ(settings.options.num_variables, count);
    EXPECT_FALSE(settings.options.detect_num_variables);
    EXPECT_TRUE(settings.options.detect_header_lines);
  }
}

TEST(KnownTexts, ReachTheirOptions) {
  const DetectSettings settings = settings_of({.comment_marker = "//",
                                               .line_endings = {{"\r\n"}},
                                               .whitespace = " \xC2\xA0",
                                               .encoding = "latin1",
                                               .date_locale = "de_DE"});
  EXPECT_EQ(settings.options.comment_style, Texts{u"//"});
  EXPECT_EQ(settings.options.line_endings, Texts{u"\r\n"});
  EXPECT_EQ(readable(settings.options.whitespace), " \\u00A0");
  EXPECT_EQ(settings.encoding, "latin1");
  EXPECT_EQ(readable(settings.options.date_locale), "de_DE");
}

TEST(KnownWhitespace, MayBeNone) {
  EXPECT_EQ(settings_of({.whitespace = ""}).options.whitespace, u"");
}

TEST(KnownLinesToSample, IsTheBudget) {
  EXPECT_EQ(settings_of({.lines_to_sample = 1}).num_lines, 1U);
  EXPECT_EQ(settings_of({.lines_to_sample = kMost}).num_lines, kMost);
}

TEST(KnownJudge, IsAsked) {
  EXPECT_EQ(settings_of({}).judge, Judge::assessment);
  EXPECT_EQ(settings_of({.judge = Judge::cascade}).judge, Judge::cascade);
}

TEST(KnownTable, ReachesTheSettings) {
  const DetectSettings settings = settings_of({.names_line = 3,
                                               .units_line = 0,
                                               .quote = "\xC2\xAB",
                                               .escape = "\\",
                                               .decimal = ",",
                                               .grouping = "\xC2\xA0",
                                               .missing = {{"n/a", ""}}});
  EXPECT_EQ(settings.names_line, 3U);
  EXPECT_EQ(settings.units_line, 0U);
  EXPECT_EQ(settings.quote, u'\u00AB');
  EXPECT_EQ(settings.escape, u'\\');
  EXPECT_EQ(settings.decimal, u',');
  EXPECT_EQ(settings.grouping, u'\u00A0');
  EXPECT_EQ(settings.missing, (Texts{u"n/a", u""}));
}

TEST(KnownTable, IsNothingByDefault) {
  const DetectSettings settings = settings_of({});
  EXPECT_EQ(settings.names_line, std::nullopt);
  EXPECT_EQ(settings.units_line, std::nullopt);
  EXPECT_EQ(settings.quote, std::nullopt);
  EXPECT_EQ(settings.escape, std::nullopt);
  EXPECT_EQ(settings.decimal, std::nullopt);
  EXPECT_EQ(settings.grouping, std::nullopt);
  EXPECT_TRUE(settings.missing.empty());
}

TEST(KnownTable, MayHaveNoQuoteAndNoEscape) {
  const DetectSettings settings = settings_of({.quote = "", .escape = ""});
  EXPECT_EQ(settings.quote, u'\0');
  EXPECT_EQ(settings.escape, u'\0');
}

// --- what is refused ---------------------------------------------------------------------------

struct RefusedCase {
  const char* rule;
  Known known;
  const char* message;  // how it starts
};
std::ostream& operator<<(std::ostream& out, const RefusedCase& row) { return out << row.rule; }

const RefusedCase kRefused[] = {
    {"NoDelimiters", {.delimiters = Strings()}, "Known::delimiters: expected at least one text"},
    {"EmptyDelimiter",
     {.delimiters = {{",", ""}}},
     "Known::delimiters: expected at least one character"},
    {"DelimiterNoUtf8", {.delimiters = {{"\xA7"}}}, "Known::delimiters: expected UTF-8"},
    {"DelimiterAboveTheBasicPlane",
     {.delimiters = {{"\xF0\x9F\x92\x80"}}},
     "Known::delimiters: expected UTF-8 without characters above U+FFFE"},
    {"DelimiterThatEndsTexts", {.delimiters = {{"\xEF\xBF\xBF"}}}, "Known::delimiters: "},
    {"NoWidths", {.widths = Numbers()}, "Known::widths: expected at least one width"},
    {"WidthZero", {.widths = {{3, 0}}}, "Known::widths: expected 1 to 4194304, got 0"},
    {"WidthNegative", {.widths = {{kNegative}}}, "Known::widths: expected 1 to 4194304, got 1844"},
    {"WidthAbsurd", {.widths = {{kMost + 1}}}, "Known::widths: expected 1 to 4194304, got 4194305"},
    {"WidthsBesideDelimiters",
     {.delimiters = {{","}}, .widths = {{3}}},
     "Known::widths: expected either widths or delimiters"},
    {"HeaderLinesNegative", {.header_lines = kNegative}, "Known::header_lines: expected 0 to"},
    {"HeaderLinesAbsurd", {.header_lines = kMost + 1}, "Known::header_lines: expected 0 to"},
    {"NumVariablesZero", {.num_variables = 0}, "Known::num_variables: expected 1 to"},
    {"NumVariablesAbsurd", {.num_variables = kMost + 1}, "Known::num_variables: expected 1 to"},
    {"EmptyCommentMarker", {.comment_marker = ""}, "Known::comment_marker: expected at least"},
    {"CommentMarkerNoUtf8", {.comment_marker = "\xFF"}, "Known::comment_marker: expected UTF-8"},
    {"NoLineEndings", {.line_endings = Strings()}, "Known::line_endings: expected at least one"},
    {"EmptyLineEnding", {.line_endings = {{""}}}, "Known::line_endings: expected at least one"},
    {"WhitespaceNoUtf8", {.whitespace = "\xC3"}, "Known::whitespace: expected UTF-8"},
    {"UnknownEncoding", {.encoding = "klingon"}, "Known::encoding: unknown encoding 'klingon'"},
    {"NearlyKnownEncoding",
     {.encoding = "utf-9"},
     "Known::encoding: unknown encoding 'utf-9' (did you mean 'UTF-8'?)"},
    {"EmptyEncoding", {.encoding = ""}, "Known::encoding: unknown encoding ''"},
    {"UnknownLocale", {.date_locale = "klingon"}, "Known::date_locale: expected the name of a"},
    {"LocaleNoUtf8", {.date_locale = "\xFF"}, "Known::date_locale: expected UTF-8"},
    {"NoLinesToSample", {.lines_to_sample = 0}, "Known::lines_to_sample: expected 1 to"},
    {"NamesLineNegative", {.names_line = kNegative}, "Known::names_line: expected 0 to"},
    {"UnitsLineAbsurd", {.units_line = kMost + 1}, "Known::units_line: expected 0 to"},
    {"OneLineForNamesAndUnits",
     {.names_line = 2, .units_line = 2},
     "Known::units_line: expected another line than that of the names, 2"},
    {"TwoCharactersAsQuote", {.quote = "''"}, "Known::quote: expected one character"},
    {"ALetterAsQuote", {.quote = "q"}, "Known::quote: expected a character that is no letter"},
    {"QuoteNoUtf8", {.quote = "\xA7"}, "Known::quote: expected UTF-8"},
    {"QuoteInADelimiter",
     {.delimiters = {{"||"}}, .quote = "|"},
     "Known::quote: expected a character that is not part of a delimiter"},
    {"AnotherEscape", {.escape = "/"}, "Known::escape: expected a backslash"},
    {"NoDecimalMark", {.decimal = ""}, "Known::decimal: expected one character"},
    {"ADigitAsDecimalMark", {.decimal = "0"}, "Known::decimal: expected a character that is no"},
    {"OneMarkForBoth", {.decimal = ".", .grouping = "."}, "Known::grouping: expected another"},
    {"MissingNoUtf8", {.missing = {{"\xFF"}}}, "Known::missing: expected UTF-8"},
    {"NoBytes", {.max_bytes = 0}, "Known::max_bytes: expected"},
    {"LinesToSampleNegative", {.lines_to_sample = kNegative}, "Known::lines_to_sample: expected"},
};

class KnownRefused : public testing::TestWithParam<RefusedCase> {};
TEST_P(KnownRefused, NamesTheMember) {
  try {
    settings_of(GetParam().known);
    FAIL() << "nothing thrown";
  } catch (const std::invalid_argument& refused) {
    EXPECT_THAT(refused.what(), StartsWith(GetParam().message));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, KnownRefused, testing::ValuesIn(kRefused), ByRule());

TEST(KnownRefusedBefore, AnythingIsOpened) {
  const Known known{.widths = {{0}}};
  EXPECT_THROW(detect_file("no/such/file", known), std::invalid_argument);
  EXPECT_THROW(detect_text("1,2\n", known), std::invalid_argument);
  EXPECT_THROW(detect_bytes("1,2\n", known), std::invalid_argument);
  EXPECT_THROW(detect_text("1,2\n", {.encoding = "klingon"}), std::invalid_argument);
}

}  // namespace
}  // namespace textio::standalone
