#include <vltextstream/layout/given_settings.hpp>

#include <functional>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::readable;
using Texts = std::vector<std::u16string>;

DetectSettings with(const std::function<void(DetectSettings&)>& set) {
  DetectSettings settings;
  set(settings);
  return settings;
}

DetectSettings with_options(const std::function<void(parser::options&)>& set) {
  DetectSettings settings;
  set(settings.options);
  return settings;
}

// --- who is asked --------------------------------------------------------------------------------

struct AskedCase {
  const char* rule;
  DetectSettings settings;
  bool is_judge;
};
std::ostream& operator<<(std::ostream& out, const AskedCase& row) { return out << row.rule; }

constexpr auto kFixedWidth = parser::parser_kind::fixedwidth;

const AskedCase kAsked[] = {
    {"NothingGiven", {}, true},
    {"TheCascade", with([](auto& s) { s.judge = Judge::cascade; }), false},
    {"NoLines", with([](auto& s) { s.num_lines = 0; }), false},
    {"HeaderLines", with_options([](auto& o) { o.detect_header_lines = false; }), true},
    {"Comments", with_options([](auto& o) { o.comment_style = {u"#"}; }), true},
    {"ANumberOfColumns", with_options([](auto& o) { o.detect_num_variables = false; }), true},
    {"AUsualLineEnding", with_options([](auto& o) { o.line_endings = {u"\n"}; }), true},
    {"UsualLineEndingsInAnyOrder", with_options([](auto& o) {
       o.line_endings = {u"\r", u"\n", u"\r\n"};
     }),
     true},
    {"AnotherLineEnding", with_options([](auto& o) {
       o.line_endings = {u"\n", u"|"};
     }),
     false},
    {"NoLineEnding", with_options([](auto& o) { o.line_endings = {}; }), false},
    {"BlanksAlone", with_options([](auto& o) { o.whitespace = u" "; }), true},
    {"MoreWhiteSpace", with_options([](auto& o) { o.whitespace = u" \t\u00A0"; }), true},
    {"NoBlank", with_options([](auto& o) { o.whitespace = u"\t"; }), false},
    {"WhatIsNoWhiteSpace", with_options([](auto& o) { o.whitespace = u" x"; }), false},
    {"AParserType", with_options([](auto& o) { o.parser_type = kFixedWidth; }), false},
    {"ADelimiter", with_options([](auto& o) { o.detect_delimiters = false; }), false},
    {"ADelimiterAndAQuote", with([](auto& s) {
       s.options.detect_delimiters = false;
       s.quote = u'"';
     }),
     true},
    {"ADelimiterAndALineOfNames", with([](auto& s) {
       s.options.detect_delimiters = false;
       s.options.variable_names_line = 2;
     }),
     true},
    {"ADelimiterAndMissingTexts", with([](auto& s) {
       s.options.detect_delimiters = false;
       s.missing = {u"-"};
     }),
     true},
    {"ADelimiterAndAnEscape", with([](auto& s) {
       s.options.detect_delimiters = false;
       s.escape = u'\\';
     }),
     true},
    {"ADelimiterAndALineOfDescriptions", with_options([](auto& o) {
       o.detect_delimiters = false;
       o.variable_descriptions_line = 2;
     }),
     true},
    {"ADelimiterAndNamesOfRows", with_options([](auto& o) {
       o.detect_delimiters = false;
       o.row_names_field = 1;
     }),
     true},
    {"ADelimiterAndOtherExponents", with_options([](auto& o) {
       o.detect_delimiters = false;
       o.exp_chars = u"x";
     }),
     true},
    {"WidthsAndALineOfUnits", with([](auto& s) {
       s.options.parser_type = kFixedWidth;
       s.options.variable_widths = {1, 2};
       s.units_line = 2;
     }),
     true},
    {"VeryManyWidths", with([](auto& s) {
       s.options.parser_type = kFixedWidth;
       s.options.variable_widths.assign(4097, 1);
       s.units_line = 2;
     }),
     false},
};

class GivenJudge : public testing::TestWithParam<AskedCase> {};

TEST_P(GivenJudge, IsAskedIfItCanObey) {
  EXPECT_EQ(may_assess(GetParam().settings), GetParam().is_judge);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenJudge, testing::ValuesIn(kAsked), ByRule());

// --- what it is given ----------------------------------------------------------------------------

struct EndingsCase {
  const char* rule;
  Texts endings;
  std::string found;  // "n", "r" and "2" for what ends lines
};
std::ostream& operator<<(std::ostream& out, const EndingsCase& row) { return out << row.rule; }

const EndingsCase kEndings[] = {
    {"Defaults", {u"\r\n", u"\n", u"\r"}, "nr2"},
    {"LineFeeds", {u"\n"}, "n"},
    {"CarriageReturns", {u"\r"}, "r"},
    {"Pairs", {u"\r\n"}, "2"},
    {"PairsBeforeReturns", {u"\r\n", u"\r"}, "r2"},
    {"ReturnsBeforePairs", {u"\r", u"\r\n"}, "r"},
    {"FeedsBeforePairs", {u"\n", u"\r\n"}, "n2"},
};

class GivenLineEndings : public testing::TestWithParam<EndingsCase> {};

TEST_P(GivenLineEndings, AreTriedInTheirOrder) {
  const auto settings = with_options([](auto& o) { o.line_endings = GetParam().endings; });
  const assessment::LineEndings endings = given_of(settings).line_endings;
  std::string found;
  if (endings.has_lf) found += 'n';
  if (endings.has_cr) found += 'r';
  if (endings.has_crlf) found += '2';
  EXPECT_EQ(found, GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenLineEndings, testing::ValuesIn(kEndings), ByRule());

TEST(GivenOfSettings, HasNothingByDefault) {
  const assessment::Given given = given_of({});
  EXPECT_EQ(given.header_lines, std::nullopt);
  EXPECT_EQ(given.columns, std::nullopt);
  EXPECT_EQ(given.delimiters, std::nullopt);
  EXPECT_EQ(given.quote, std::nullopt);
  EXPECT_EQ(given.names_line, std::nullopt);
  EXPECT_TRUE(given.widths.empty());
  EXPECT_FALSE(may_leave_no_table(given));
}

TEST(GivenOfSettings, HasWhatIsGiven) {
  DetectSettings settings;
  settings.options.detect_header_lines = false;
  settings.options.header_lines = 5;
  settings.options.comment_style = {u"/*", u"*/"};
  settings.options.detect_num_variables = false;
  settings.options.num_variables = 4;
  settings.options.detect_delimiters = false;
  settings.options.delimiters = {u";", u"|"};
  settings.options.variable_names_line = 3;
  settings.options.variable_units_line = 2;
  settings.options.variable_descriptions_line = 1;
  settings.options.row_names_field = 6;
  settings.quote = u'$';
  settings.escape = u'\\';
  const assessment::Given given = given_of(settings);
  EXPECT_EQ(given.header_lines, 5U);
  EXPECT_EQ(given.comment_prefix, u"/*");
  EXPECT_EQ(given.columns, 4U);
  EXPECT_EQ(given.delimiters, (Texts{u";", u"|"}));
  EXPECT_EQ(given.names_line, 3U);
  EXPECT_EQ(given.units_line, 2U);
  EXPECT_EQ(given.descriptions_line, 1U);
  EXPECT_EQ(given.row_names_column, 6U);
  EXPECT_EQ(given.quote, u'$');
  EXPECT_EQ(given.escape, u'\\');
  EXPECT_TRUE(may_leave_no_table(given));
}

TEST(GivenOfSettings, PrefersTheLineOfTheSettings) {
  DetectSettings settings;
  settings.options.variable_names_line = 3;
  settings.names_line = 0;
  EXPECT_EQ(given_of(settings).names_line, 0U);
}

TEST(GivenOfSettings, HasWidthsOnlyForTheirParser) {
  DetectSettings settings;
  settings.options.variable_widths = {2, 3};
  EXPECT_TRUE(given_of(settings).widths.empty());
  settings.options.parser_type = kFixedWidth;
  EXPECT_EQ(given_of(settings).widths, (std::vector<std::size_t>{2, 3}));
}

// --- settings that are refused -------------------------------------------------------------------

struct ProblemCase {
  const char* rule;
  DetectSettings settings;
  std::string problem;
};
std::ostream& operator<<(std::ostream& out, const ProblemCase& row) { return out << row.rule; }

const ProblemCase kProblems[] = {
    {"Nothing", {}, ""},
    {"NoQuote", with([](auto& s) { s.quote = u'\0'; }), ""},
    {"ADigitAsQuote", with([](auto& s) { s.quote = u'1'; }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"ATabAsQuote", with([](auto& s) { s.quote = u'\t'; }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"ASurrogateAsQuote", with([](auto& s) { s.quote = static_cast<char16_t>(0xD800); }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"ABackslashAsQuote", with([](auto& s) { s.quote = u'\\'; }), ""},
    {"ABackslashAsBoth", with([](auto& s) { s.quote = s.escape = u'\\'; }),
     "Quote: Expected another character than the escape."},
    {"AQuoteInADelimiter", with([](auto& s) {
       s.quote = u'|';
       s.options.delimiters = {u";", u"||"};
       s.options.detect_delimiters = false;
     }),
     "Quote: Expected a character that is not part of a delimiter."},
    {"AnotherEscape", with([](auto& s) { s.escape = u'/'; }),
     "Escape: Expected a backslash or nothing."},
    {"OneLineForNamesAndUnits", with([](auto& s) {
       s.names_line = 2;
       s.options.variable_units_line = 2;
     }),
     "VariableUnitsLine: Expected another line than that of the names, 2."},
    {"NoLineForBoth", with([](auto& s) { s.names_line = s.units_line = 0; }), ""},
    {"OneLineForNamesAndDescriptions", with([](auto& s) {
       s.names_line = 2;
       s.options.variable_descriptions_line = 2;
     }),
     "VariableDescriptionsLine: Expected another line than that of the names or the units, 2."},
    {"ALetterAsDecimalMark", with([](auto& s) { s.decimal = u'e'; }),
     "Decimal: Expected a character that is no letter, digit, sign or white space."},
    {"ABlankAsDecimalMark", with([](auto& s) { s.decimal = u' '; }),
     "Decimal: Expected a character that is no letter, digit, sign or white space."},
    {"ABlankAsGroupingMark", with([](auto& s) { s.grouping = u' '; }), ""},
    {"ASignAsGroupingMark", with([](auto& s) { s.grouping = u'+'; }),
     "Grouping: Expected a character that is no letter, digit or sign."},
    {"OneLineForUnitsAndDescriptions", with([](auto& s) {
       s.units_line = 2;
       s.options.variable_descriptions_line = 2;
     }),
     "VariableDescriptionsLine: Expected another line than that of the names or the units, 2."},
    {"ACapitalAsQuote", with([](auto& s) { s.quote = u'X'; }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"ANoBreakSpaceAsQuote", with([](auto& s) { s.quote = u'\u00A0'; }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"TheEndMarkAsQuote", with([](auto& s) { s.quote = static_cast<char16_t>(0xFFFF); }),
     "Quote: Expected a character that is no letter, digit or white space."},
    {"AControlCharacterAsQuote", with([](auto& s) { s.quote = u'\x01'; }), ""},
    {"ACharacterOfPrivateUseAsQuote", with([](auto& s) { s.quote = u'\uE000'; }), ""},
    {"AMinusAsDecimalMark", with([](auto& s) { s.decimal = u'-'; }),
     "Decimal: Expected a character that is no letter, digit, sign or white space."},
    {"TheEndMarkAsDecimalMark", with([](auto& s) { s.decimal = static_cast<char16_t>(0xFFFF); }),
     "Decimal: Expected a character that is no letter, digit, sign or white space."},
    {"NothingAsDecimalMark", with([](auto& s) { s.decimal = u'\0'; }),
     "Decimal: Expected a character that is no letter, digit, sign or white space."},
    {"NothingAsGroupingMark", with([](auto& s) { s.grouping = u'\0'; }),
     "Grouping: Expected a character that is no letter, digit or sign."},
    {"OneMarkForBoth", with([](auto& s) { s.decimal = s.grouping = u','; }),
     "Grouping: Expected another character than the decimal mark."},
};

class GivenSettings : public testing::TestWithParam<ProblemCase> {};

TEST_P(GivenSettings, AreChecked) {
  std::string problem;
  try {
    check_settings(GetParam().settings);
  } catch (const std::invalid_argument& refused) {
    problem = refused.what();
  }
  EXPECT_EQ(problem, GetParam().problem);
}

TEST_P(GivenSettings, AreCheckedByADetection) {
  const auto call = [] { detect_layout(u"1,2\n3,4\n", GetParam().settings); };
  if (GetParam().problem.empty()) {
    EXPECT_NO_THROW(call());
  } else {
    EXPECT_THROW(call(), std::invalid_argument);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, GivenSettings, testing::ValuesIn(kProblems), ByRule());

// --- cells ---------------------------------------------------------------------------------------

struct ExponentCase {
  const char* rule;
  std::u16string exp_chars;
  std::u16string cell;
  std::string found;
};
std::ostream& operator<<(std::ostream& out, const ExponentCase& row) { return out << row.rule; }

const ExponentCase kExponents[] = {
    {"Another", u"x", u"1x5", "1e5"},
    {"WithASign", u"x", u"-1.5x+05", "-1.5e+05"},
    {"AfterAPoint", u"x", u"1.x5", "1.e5"},
    {"OneOfSeveral", u"eX", u"1X5", "1e5"},
    {"AGivenUsualOne", u"eX", u"1e5", "1e5"},
    {"AUsualOneThatIsNotGiven", u"x", u"1e5", "1x5"},
    {"NotBetweenDigits", u"x", u"x1", "x1"},
    {"NotAtTheEnd", u"x", u"1x", "1x"},
    {"NotBeforeASignAlone", u"x", u"1x-", "1x-"},
    {"NotInAWord", u"x", u"axb", "axb"},
    {"ADigitIsNone", u"1", u"212", "212"},
    {"OfNothing", u"x", u"", ""},
};

class GivenExponent : public testing::TestWithParam<ExponentCase> {};

TEST_P(GivenExponent, BecomesAnE) {
  const auto settings = with_options([](auto& o) { o.exp_chars = GetParam().exp_chars; });
  EXPECT_TRUE(has_other_exponents(settings));
  EXPECT_EQ(readable(with_usual_exponent(GetParam().cell, settings)), GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Table, GivenExponent, testing::ValuesIn(kExponents), ByRule());

TEST(GivenExponents, AreTheUsualOnesByDefault) { EXPECT_FALSE(has_other_exponents({})); }

TEST(GivenMissing, IsTheWholeText) {
  DetectSettings settings;
  settings.missing = {u"-", u"n/a"};
  EXPECT_TRUE(is_missing(u"n/a", settings));
  EXPECT_TRUE(is_missing(u"-", settings));
  EXPECT_FALSE(is_missing(u"--", settings));
  EXPECT_FALSE(is_missing(u"N/A", settings));
  EXPECT_FALSE(is_missing(u"", settings));
}

}  // namespace
}  // namespace textio::standalone
