#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace textio {
namespace {

using parser::options;
using standalone::Array;
using standalone::make_array;
using standalone::make_cell;
using standalone::make_char_array;
using standalone::make_empty_array;
using standalone::make_text_cell;
using testing_support::apply_pairs;
using testing_support::contents_of;
using testing_support::error_of;
using testing_support::error_of_pairs;
using testing_support::error_text;
using testing_support::OptionPair;
using testing_support::unusual_record;
using TextList = std::vector<std::u16string>;
using Widths = std::vector<std::uint64_t>;

const double kNaN = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();
const std::uint64_t kTopBit = std::uint64_t{1} << 63;

std::string narrow(std::u16string_view text) { return {text.begin(), text.end()}; }
std::u16string wide(std::string_view text) { return {text.begin(), text.end()}; }

Array numbers(const std::vector<double>& values) { return make_array(values); }
Array integers(const Widths& values) { return make_array(values); }

// --- the effect of every option ------------------------------------------------------------------

struct EffectCase {
  std::string rule;
  std::u16string name;
  Array value;
  void (*effect)(options&);  // the effect of the pair on a record, written by hand
};
std::ostream& operator<<(std::ostream& out, const EffectCase& row) { return out << row.rule; }

void nothing(options&) {}
void default_endings(options& record) { record.line_endings = {u"\r\n", u"\n", u"\r"}; }
void delimiters_are(options& record, const TextList& delimiters) {
  record.delimiters = delimiters;
  record.detect_delimiters = false;
}
void header_lines_are(options& record, std::size_t lines) {
  record.header_lines = lines;
  record.detect_header_lines = false;
}
void variables_are(options& record, std::uint64_t variables) {
  record.num_variables = variables;
  record.detect_num_variables = false;
}
void multiple_as_one(options& record) {
  record.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
  record.leading_delimiters_rule = parser::leading_delimiters_action::ignore;
}
void multiple_as_several(options& record) {
  record.consecutive_delimiters_rule = parser::consecutive_delimiters_action::split;
  record.leading_delimiters_rule = parser::leading_delimiters_action::keep;
}

// One row per option name, 33 in total, in the order of the documentation.
const EffectCase kEveryOption[] = {
    {"Delimiter", u"Delimiter", make_array(u";"), [](options& r) { delimiters_are(r, {u";"}); }},
    {"LineEnding", u"LineEnding", make_array(u"|"), [](options& r) { r.line_endings = {u"|"}; }},
    {"EndOfLine", u"EndOfLine", make_array(u"!"), [](options& r) { r.line_endings = {u"!"}; }},
    {"CommentStyle", u"CommentStyle", make_text_cell({u"/*", u"*/"}),
     [](options& r) {
       r.comment_style = {u"/*", u"*/"};
     }},
    {"Whitespace", u"Whitespace", make_array(u" _"), [](options& r) { r.whitespace = u" _"; }},
    {"Encoding", u"Encoding", make_array(u"Shift_JIS"),
     [](options& r) { r.encoding = u"Shift_JIS"; }},
    {"DateLocale", u"DateLocale", make_array(u"de_DE"),
     [](options& r) { r.date_locale = u"de_DE"; }},
    {"ExpChars", u"ExpChars", make_array(u"xX"), [](options& r) { r.exp_chars = u"xX"; }},
    {"VariableWidths", u"VariableWidths", integers({8, 10, 12}),
     [](options& r) {
       r.variable_widths = {8, 10, 12};
     }},
    {"NumHeaderLines", u"NumHeaderLines", make_array(3.0),
     [](options& r) { header_lines_are(r, 3); }},
    {"DataLine", u"DataLine", make_array(5.0), [](options& r) { header_lines_are(r, 4); }},
    {"NumVariables", u"NumVariables", make_array(6.0), [](options& r) { variables_are(r, 6); }},
    {"VariableNamesLine", u"VariableNamesLine", make_array(7.0),
     [](options& r) { r.variable_names_line = 7; }},
    {"VariableUnitsLine", u"VariableUnitsLine", make_array(8.0),
     [](options& r) { r.variable_units_line = 8; }},
    {"VariableDescriptionsLine", u"VariableDescriptionsLine", make_array(9.0),
     [](options& r) { r.variable_descriptions_line = 9; }},
    {"RowNamesField", u"RowNamesField", make_array(10.0),
     [](options& r) { r.row_names_field = 10; }},
    {"CollectOutput", u"CollectOutput", make_array(true),
     [](options& r) { r.collect_output = true; }},
    {"IsFile", u"IsFile", make_array(false), [](options& r) { r.is_file = false; }},
    {"MultipleDelimsAsOne", u"MultipleDelimsAsOne", make_array(true), multiple_as_one},
    {"ParserType", u"ParserType", make_array(u"fixedwidth"),
     [](options& r) { r.parser_type = parser::parser_kind::fixedwidth; }},
    {"MissingRule", u"MissingRule", make_array(u"omitrow"),
     [](options& r) { r.missing_rule = parser::row_rule::omitrow; }},
    {"ImportErrorRule", u"ImportErrorRule", make_array(u"omitvar"),
     [](options& r) { r.import_error_rule = parser::row_rule::omitvar; }},
    {"ConsecutiveDelimitersRule", u"ConsecutiveDelimitersRule", make_array(u"join"),
     [](options& r) {
       r.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
     }},
    {"EmptyLineRule", u"EmptyLineRule", make_array(u"read"),
     [](options& r) { r.empty_line_rule = parser::empty_line_action::read; }},
    {"ExtraColumnsRule", u"ExtraColumnsRule", make_array(u"wrap"),
     [](options& r) { r.extra_columns_rule = parser::extra_columns_action::wrap; }},
    {"LeadingDelimitersRule", u"LeadingDelimitersRule", make_array(u"ignore"),
     [](options& r) { r.leading_delimiters_rule = parser::leading_delimiters_action::ignore; }},
    {"TextType", u"TextType", make_array(u"string"),
     [](options& r) { r.text_type = parser::text_kind::string; }},
    {"DatetimeType", u"DatetimeType", make_array(u"char"),
     [](options& r) { r.datetime_type = parser::datetime_kind::char_; }},
    {"PartialFieldRule", u"PartialFieldRule", make_array(u"wrap"),
     [](options& r) { r.partial_field_rule = parser::partial_field_action::wrap; }},
    {"TreatAsMissing", u"TreatAsMissing", make_text_cell({u"NA", u"\\t"}), nothing},
    {"TreatAsEmpty", u"TreatAsEmpty", make_array(u"-"), nothing},
    {"ReturnOnError", u"ReturnOnError", make_array(true), nothing},
    {"EmptyValue", u"EmptyValue", make_array(kNaN), nothing},
};

const EffectCase kEffects[] = {
    // lists of text
    {"DelimiterListIsStoredInItsOrder", u"Delimiter", make_text_cell({u";", u",", u";"}),
     [](options& r) {
       delimiters_are(r, {u";", u",", u";"});
     }},
    {"DelimiterOfAnEmptyCellSettlesTheQuestion", u"Delimiter", make_cell({}),
     [](options& r) { delimiters_are(r, {}); }},
    {"DelimiterOfTheEmptyTextIsOneEmptyString", u"Delimiter", make_array(u""),
     [](options& r) { delimiters_are(r, {u""}); }},
    {"DelimiterOfOneRowWithoutColumnsIsOneEmptyString", u"Delimiter", make_char_array(u"", {1, 0}),
     [](options& r) { delimiters_are(r, {u""}); }},
    {"DelimiterCellWithAnEmptyTextKeepsItsPlace", u"Delimiter", make_text_cell({u"a", u"", u"b"}),
     [](options& r) {
       delimiters_are(r, {u"a", u"", u"b"});
     }},
    {"DelimiterEscapeIsReplaced", u"Delimiter", make_array(u"\\t"),
     [](options& r) { delimiters_are(r, {u"\t"}); }},
    {"DelimiterEscapesAreReplacedInEveryString", u"Delimiter",
     make_text_cell({u"\\\\", u"\\b", u"\\n", u"\\r", u"\\t"}),
     [](options& r) {
       delimiters_are(r, {u"\\", u"\b", u"\n", u"\r", u"\t"});
     }},
    {"DelimiterThatIsATabAlreadyStays", u"Delimiter", make_array(u"\t"),
     [](options& r) { delimiters_are(r, {u"\t"}); }},
    {"DelimiterTrailingBackslashStays", u"Delimiter", make_array(u"a\\"),
     [](options& r) { delimiters_are(r, {u"a\\"}); }},
    {"DelimiterKeepsEveryUnit", u"Delimiter", make_array(u"\u00e9\U0001F600\uffff"),
     [](options& r) { delimiters_are(r, {u"\u00e9\U0001F600\uffff"}); }},
    {"DelimiterKeepsNul", u"Delimiter", make_array(std::u16string_view(u"a\0b", 3)),
     [](options& r) { delimiters_are(r, {std::u16string(u"a\0b", 3)}); }},
    {"DelimiterOfASingleCharacter", u"Delimiter", make_char_array(u",", {1, 1}),
     [](options& r) { delimiters_are(r, {u","}); }},

    {"LineEndingCrLfAloneMeansTheDefaultList", u"LineEnding", make_array(u"\\r\\n"),
     default_endings},
    {"LineEndingCrLfUnescapedMeansTheDefaultList", u"LineEnding", make_array(u"\r\n"),
     default_endings},
    {"LineEndingCellOfCrLfAloneMeansTheDefaultList", u"LineEnding", make_text_cell({u"\\r\\n"}),
     default_endings},
    {"EndOfLineCrLfAloneMeansTheDefaultList", u"EndOfLine", make_array(u"\\r\\n"), default_endings},
    {"LineEndingLineFeedAlone", u"LineEnding", make_array(u"\\n"),
     [](options& r) { r.line_endings = {u"\n"}; }},
    {"LineEndingCarriageReturnAlone", u"LineEnding", make_array(u"\\r"),
     [](options& r) { r.line_endings = {u"\r"}; }},
    {"LineEndingCellOfTwoStaysTwo", u"LineEnding", make_text_cell({u"\\r\\n", u"\\n"}),
     [](options& r) {
       r.line_endings = {u"\r\n", u"\n"};
     }},
    {"LineEndingCrLfTwiceStaysTwo", u"LineEnding", make_text_cell({u"\\r\\n", u"\\r\\n"}),
     [](options& r) {
       r.line_endings = {u"\r\n", u"\r\n"};
     }},
    {"LineEndingLfCrIsNotCrLf", u"LineEnding", make_array(u"\\n\\r"),
     [](options& r) { r.line_endings = {u"\n\r"}; }},
    {"LineEndingOfAnEmptyCellIsAnEmptyList", u"LineEnding", make_cell({}),
     [](options& r) { r.line_endings = {}; }},
    {"LineEndingOfTheEmptyTextIsOneEmptyString", u"LineEnding", make_array(u""),
     [](options& r) { r.line_endings = {u""}; }},

    {"CommentStyleOfOneText", u"CommentStyle", make_array(u"%"),
     [](options& r) { r.comment_style = {u"%"}; }},
    {"CommentStyleOfTwoKeepsTheirOrder", u"CommentStyle", make_text_cell({u"*/", u"/*"}),
     [](options& r) {
       r.comment_style = {u"*/", u"/*"};
     }},
    {"CommentStyleOfAnEmptyCellIsNone", u"CommentStyle", make_cell({}),
     [](options& r) { r.comment_style = {}; }},
    {"CommentStyleEscapesAreReplaced", u"CommentStyle", make_text_cell({u"\\t#", u"\\n"}),
     [](options& r) {
       r.comment_style = {u"\t#", u"\n"};
     }},

    {"TreatAsMissingOfAnEmptyCellDoesNothing", u"TreatAsMissing", make_cell({}), nothing},
    {"TreatAsMissingOfManyDoesNothing", u"TreatAsMissing",
     make_text_cell({u"a", u"b", u"c", u"d\\\\"}), nothing},
    {"TreatAsEmptyOfAnEscapeDoesNothing", u"TreatAsEmpty", make_array(u"\\n"), nothing},

    // texts
    {"WhitespaceEscapesAreReplaced", u"Whitespace", make_array(u" \\b\\t"),
     [](options& r) { r.whitespace = u" \b\t"; }},
    {"WhitespaceMayBeEmpty", u"Whitespace", make_array(u""),
     [](options& r) { r.whitespace = u""; }},
    {"WhitespaceTrailingBackslashStays", u"Whitespace", make_array(u" \\"),
     [](options& r) { r.whitespace = u" \\"; }},
    {"EncodingMayBeEmpty", u"Encoding", make_char_array(u"", {0, 0}),
     [](options& r) { r.encoding = u""; }},
    {"EncodingOfOneRowWithoutColumnsIsEmpty", u"Encoding", make_char_array(u"", {1, 0}),
     [](options& r) { r.encoding = u""; }},
    {"EncodingKnowsNoEscapes", u"Encoding", make_array(u"\\q\\n\\"),
     [](options& r) { r.encoding = u"\\q\\n\\"; }},
    {"DateLocaleKnowsNoEscapes", u"DateLocale", make_array(u"\\z\\t"),
     [](options& r) { r.date_locale = u"\\z\\t"; }},
    {"DateLocaleMayBeEmpty", u"DateLocale", make_array(u""),
     [](options& r) { r.date_locale = u""; }},
    {"ExpCharsKnowsNoEscapes", u"ExpChars", make_array(u"\\x\\b"),
     [](options& r) { r.exp_chars = u"\\x\\b"; }},
    {"ExpCharsMayBeEmpty", u"ExpChars", make_array(u""), [](options& r) { r.exp_chars = u""; }},
    {"EncodingKeepsEveryUnit", u"Encoding", make_array(u"\u00fc\U0001F600"),
     [](options& r) { r.encoding = u"\u00fc\U0001F600"; }},

    // whole numbers
    {"NumHeaderLinesZero", u"NumHeaderLines", make_array(0.0),
     [](options& r) { header_lines_are(r, 0); }},
    {"NumHeaderLinesNegativeZero", u"NumHeaderLines", make_array(-0.0),
     [](options& r) { header_lines_are(r, 0); }},
    {"NumHeaderLinesOfTenToTheEighteenth", u"NumHeaderLines", make_array(1e18),
     [](options& r) { header_lines_are(r, 1000000000000000000U); }},
    {"NumHeaderLinesBelowTwoToThe53", u"NumHeaderLines", make_array(9007199254740991.0),
     [](options& r) { header_lines_are(r, 9007199254740991U); }},
    {"NumHeaderLinesBelowTwoToThe63", u"NumHeaderLines", make_array(9223372036854774784.0),
     [](options& r) { header_lines_are(r, kTopBit - 1024); }},
    {"NumHeaderLinesTwoToThe63", u"NumHeaderLines", make_array(9223372036854775808.0),
     [](options& r) { header_lines_are(r, kTopBit); }},
    {"NumHeaderLinesAboveTwoToThe63", u"NumHeaderLines", make_array(9223372036854777856.0),
     [](options& r) { header_lines_are(r, kTopBit + 2048); }},
    {"NumHeaderLinesLargestBelowTwoToThe64", u"NumHeaderLines", make_array(18446744073709549568.0),
     [](options& r) { header_lines_are(r, SIZE_MAX - 2047); }},
    {"DataLineOneMeansNoHeader", u"DataLine", make_array(1.0),
     [](options& r) { header_lines_are(r, 0); }},
    {"DataLineTwoToThe63", u"DataLine", make_array(9223372036854775808.0),
     [](options& r) { header_lines_are(r, kTopBit - 1); }},
    {"DataLineLargestBelowTwoToThe64", u"DataLine", make_array(18446744073709549568.0),
     [](options& r) { header_lines_are(r, SIZE_MAX - 2048); }},
    {"NumVariablesZero", u"NumVariables", make_array(0.0), [](options& r) { variables_are(r, 0); }},
    {"NumVariablesTwoToThe63", u"NumVariables", make_array(9223372036854775808.0),
     [](options& r) { variables_are(r, kTopBit); }},
    {"VariableNamesLineZero", u"VariableNamesLine", make_array(0.0),
     [](options& r) { r.variable_names_line = 0; }},
    {"VariableUnitsLineZero", u"VariableUnitsLine", make_array(0.0),
     [](options& r) { r.variable_units_line = 0; }},
    {"VariableDescriptionsLineZero", u"VariableDescriptionsLine", make_array(0.0),
     [](options& r) { r.variable_descriptions_line = 0; }},
    {"RowNamesFieldZero", u"RowNamesField", make_array(0.0),
     [](options& r) { r.row_names_field = 0; }},
    {"RowNamesFieldTwoToThe63", u"RowNamesField", make_array(9223372036854775808.0),
     [](options& r) { r.row_names_field = kTopBit; }},
    {"NumberFromARowOfOneIsAScalar", u"NumVariables", numbers({4}),
     [](options& r) { variables_are(r, 4); }},

    // flags
    {"CollectOutputFalse", u"CollectOutput", make_array(false),
     [](options& r) { r.collect_output = false; }},
    {"IsFileTrue", u"IsFile", make_array(true), [](options& r) { r.is_file = true; }},
    {"MultipleDelimsAsOneFalse", u"MultipleDelimsAsOne", make_array(false), multiple_as_several},

    // widths: not checked, the elements as they are in memory
    {"WidthsOfNoElement", u"VariableWidths", integers({}),
     [](options& r) { r.variable_widths = {}; }},
    {"WidthsOfTheEmptyArray", u"VariableWidths", make_empty_array(),
     [](options& r) { r.variable_widths = {}; }},
    {"WidthsOfTheEmptyText", u"VariableWidths", make_array(u""),
     [](options& r) { r.variable_widths = {}; }},
    {"WidthsOfAnEmptyCell", u"VariableWidths", make_cell({}),
     [](options& r) { r.variable_widths = {}; }},
    {"WidthsOverTheFullRange", u"VariableWidths", integers({0, 1, kTopBit, UINT64_MAX}),
     [](options& r) {
       r.variable_widths = {0, 1, kTopBit, UINT64_MAX};
     }},
    {"WidthsOfDoublesAreTheirBits", u"VariableWidths", numbers({0.0, -0.0, 1.0, 8.0, -2.0, 0.5}),
     [](options& r) {
       r.variable_widths = {0,
                            0x8000000000000000U,
                            0x3FF0000000000000U,
                            0x4020000000000000U,
                            0xC000000000000000U,
                            0x3FE0000000000000U};
     }},
    {"WidthsOfInfinitiesAreTheirBits", u"VariableWidths", numbers({kInfinity, -kInfinity}),
     [](options& r) {
       r.variable_widths = {0x7FF0000000000000U, 0xFFF0000000000000U};
     }},
    {"WidthsOfAScalarDouble", u"VariableWidths", make_array(3.0),
     [](options& r) { r.variable_widths = {0x4008000000000000U}; }},

    // ignored
    {"ReturnOnErrorTakesANumber", u"ReturnOnError", make_array(1.0), nothing},
    {"ReturnOnErrorTakesABadEscape", u"ReturnOnError", make_array(u"\\q"), nothing},
    {"EmptyValueTakesAText", u"EmptyValue", make_array(u"x"), nothing},
    {"EmptyValueTakesACell", u"EmptyValue", make_cell({make_array(1.0), make_cell({})}), nothing},
    {"EmptyValueTakesTheEmptyArray", u"EmptyValue", make_empty_array(), nothing},
    {"EmptyValueTakesOddShapes", u"EmptyValue", make_char_array(u"abcdef", {3, 2}), nothing},
};

class SetParserOptions : public testing::TestWithParam<EffectCase> {};
TEST_P(SetParserOptions, ChangesTheMembersOfTheOptionAndNoOther) {
  const EffectCase& row = GetParam();
  for (const bool unusual : {false, true}) {
    options record = unusual ? unusual_record() : options();
    options expected = record;
    row.effect(expected);
    ASSERT_EQ(error_of_pairs(record, {{row.name, row.value}}), "");
    EXPECT_EQ(contents_of(record), contents_of(expected));
  }
}
TEST_P(SetParserOptions, GivesTheSameWhenAppliedTwice) {
  const EffectCase& row = GetParam();
  options once;
  options twice;
  apply_pairs(once, {{row.name, row.value}});
  apply_pairs(twice, {{row.name, row.value}, {row.name, row.value}});
  EXPECT_EQ(contents_of(once), contents_of(twice));
}
INSTANTIATE_TEST_SUITE_P(EveryOption, SetParserOptions, testing::ValuesIn(kEveryOption),
                         testing_support::ByRule());
INSTANTIATE_TEST_SUITE_P(Effects, SetParserOptions, testing::ValuesIn(kEffects),
                         testing_support::ByRule());

// --- the default: what a record holds as long as the option has not been given -------------------

TEST(SetParserOptionsDefaults, EveryMemberStaysAtItsDefaultWhenAnotherOptionIsGiven) {
  // Each option changes only its own members (see above), so a record with all other options
  // applied still has the defaults of this one.
  struct Owner {
    const char16_t* name;
    std::set<std::u16string> left_out;  // options that write the same members
    bool (*is_default)(const options&);
  };
  const Owner owners[] = {
      {u"Delimiter",
       {},
       [](const options& r) { return r.delimiters.empty() && r.detect_delimiters; }},
      {u"LineEnding",
       {u"EndOfLine"},
       [](const options& r) {
         return r.line_endings == TextList{u"\r\n", u"\n", u"\r"};
       }},
      {u"EndOfLine",
       {u"LineEnding"},
       [](const options& r) {
         return r.line_endings == TextList{u"\r\n", u"\n", u"\r"};
       }},
      {u"CommentStyle", {}, [](const options& r) { return r.comment_style.empty(); }},
      {u"Whitespace", {}, [](const options& r) { return r.whitespace == u" \b\t"; }},
      {u"Encoding", {}, [](const options& r) { return r.encoding == u"UTF-8"; }},
      {u"DateLocale", {}, [](const options& r) { return r.date_locale.empty(); }},
      {u"ExpChars", {}, [](const options& r) { return r.exp_chars == u"eEdD"; }},
      {u"VariableWidths", {}, [](const options& r) { return r.variable_widths.empty(); }},
      {u"NumHeaderLines",
       {u"DataLine"},
       [](const options& r) { return r.header_lines == SIZE_MAX && r.detect_header_lines; }},
      {u"DataLine",
       {u"NumHeaderLines"},
       [](const options& r) { return r.header_lines == SIZE_MAX && r.detect_header_lines; }},
      {u"NumVariables",
       {},
       [](const options& r) { return r.num_variables == 0 && r.detect_num_variables; }},
      {u"VariableNamesLine", {}, [](const options& r) { return r.variable_names_line == 0; }},
      {u"VariableUnitsLine", {}, [](const options& r) { return r.variable_units_line == 0; }},
      {u"VariableDescriptionsLine",
       {},
       [](const options& r) { return r.variable_descriptions_line == 0; }},
      {u"RowNamesField", {}, [](const options& r) { return r.row_names_field == 0; }},
      {u"CollectOutput", {}, [](const options& r) { return !r.collect_output; }},
      {u"IsFile", {}, [](const options& r) { return r.is_file; }},
      {u"MultipleDelimsAsOne",
       {u"ConsecutiveDelimitersRule", u"LeadingDelimitersRule"},
       [](const options& r) {
         return r.consecutive_delimiters_rule == parser::consecutive_delimiters_action::split &&
                r.leading_delimiters_rule == parser::leading_delimiters_action::keep;
       }},
      {u"ParserType",
       {},
       [](const options& r) { return r.parser_type == parser::parser_kind::delimited; }},
      {u"MissingRule",
       {},
       [](const options& r) { return r.missing_rule == parser::row_rule::fill; }},
      {u"ImportErrorRule",
       {},
       [](const options& r) { return r.import_error_rule == parser::row_rule::fill; }},
      {u"ConsecutiveDelimitersRule",
       {u"MultipleDelimsAsOne"},
       [](const options& r) {
         return r.consecutive_delimiters_rule == parser::consecutive_delimiters_action::split;
       }},
      {u"EmptyLineRule",
       {},
       [](const options& r) { return r.empty_line_rule == parser::empty_line_action::skip; }},
      {u"ExtraColumnsRule",
       {},
       [](const options& r) {
         return r.extra_columns_rule == parser::extra_columns_action::addvars;
       }},
      {u"LeadingDelimitersRule",
       {u"MultipleDelimsAsOne"},
       [](const options& r) {
         return r.leading_delimiters_rule == parser::leading_delimiters_action::keep;
       }},
      {u"TextType", {}, [](const options& r) { return r.text_type == parser::text_kind::char_; }},
      {u"DatetimeType",
       {},
       [](const options& r) { return r.datetime_type == parser::datetime_kind::datetime; }},
      {u"PartialFieldRule",
       {},
       [](const options& r) { return r.partial_field_rule == parser::partial_field_action::keep; }},
      {u"TreatAsMissing", {}, [](const options& r) { return r.reserved_strings.empty(); }},
      {u"TreatAsEmpty", {}, [](const options& r) { return r.reserved_strings.empty(); }},
      {u"ReturnOnError", {}, [](const options& r) { return r.reserved_strings.empty(); }},
      {u"EmptyValue", {}, [](const options& r) { return r.reserved_strings.empty(); }},
  };
  ASSERT_EQ(std::size(owners), 33U);
  for (const Owner& owner : owners) {
    EXPECT_TRUE(owner.is_default(options())) << narrow(owner.name);
    std::vector<OptionPair> others;
    for (const EffectCase& row : kEveryOption) {
      const bool other = row.name != owner.name && !owner.left_out.contains(row.name);
      if (other) others.push_back({row.name, row.value});
    }
    options record;
    apply_pairs(record, others);
    EXPECT_TRUE(owner.is_default(record)) << narrow(owner.name);
  }
}

// --- keywords ------------------------------------------------------------------------------------

struct KeywordCase {
  const char* option;
  const char* value;
  int code;
};
std::ostream& operator<<(std::ostream& out, const KeywordCase& row) {
  return out << row.option << " = " << row.value;
}

int code_in(const options& record, std::string_view option) {
  if (option == "ParserType") return static_cast<int>(record.parser_type);
  if (option == "MissingRule") return static_cast<int>(record.missing_rule);
  if (option == "ImportErrorRule") return static_cast<int>(record.import_error_rule);
  if (option == "ConsecutiveDelimitersRule") {
    return static_cast<int>(record.consecutive_delimiters_rule);
  }
  if (option == "EmptyLineRule") return static_cast<int>(record.empty_line_rule);
  if (option == "ExtraColumnsRule") return static_cast<int>(record.extra_columns_rule);
  if (option == "LeadingDelimitersRule") return static_cast<int>(record.leading_delimiters_rule);
  if (option == "TextType") return static_cast<int>(record.text_type);
  if (option == "DatetimeType") return static_cast<int>(record.datetime_type);
  if (option == "PartialFieldRule") return static_cast<int>(record.partial_field_rule);
  return -1;
}

const KeywordCase kKeywords[] = {
    {"ParserType", "delimited", 0},
    {"ParserType", "d", 0},
    {"ParserType", "fixedwidth", 1},
    {"ParserType", "FIXED", 1},
    {"ParserType", "F", 1},
    {"ParserType", "tabular", 2},
    {"ParserType", "tAb", 2},
    {"MissingRule", "fill", 0},
    {"MissingRule", "F", 0},
    {"MissingRule", "omitrow", 1},
    {"MissingRule", "o", 1},
    {"MissingRule", "omit", 1},
    {"MissingRule", "OMITR", 1},
    {"MissingRule", "omitvar", 2},
    {"MissingRule", "omitv", 2},
    {"MissingRule", "error", 3},
    {"MissingRule", "e", 3},
    {"ImportErrorRule", "fill", 0},
    {"ImportErrorRule", "omitrow", 1},
    {"ImportErrorRule", "o", 1},
    {"ImportErrorRule", "OmitVar", 2},
    {"ImportErrorRule", "err", 3},
    {"ConsecutiveDelimitersRule", "split", 0},
    {"ConsecutiveDelimitersRule", "S", 0},
    {"ConsecutiveDelimitersRule", "join", 1},
    {"ConsecutiveDelimitersRule", "j", 1},
    {"ConsecutiveDelimitersRule", "ERROR", 2},
    {"ConsecutiveDelimitersRule", "e", 2},
    {"EmptyLineRule", "skip", 0},
    {"EmptyLineRule", "s", 0},
    {"EmptyLineRule", "read", 1},
    {"EmptyLineRule", "R", 1},
    {"EmptyLineRule", "error", 2},
    {"ExtraColumnsRule", "addvars", 0},
    {"ExtraColumnsRule", "A", 0},
    {"ExtraColumnsRule", "ignore", 1},
    {"ExtraColumnsRule", "i", 1},
    {"ExtraColumnsRule", "wrap", 2},
    {"ExtraColumnsRule", "error", 3},
    {"LeadingDelimitersRule", "keep", 0},
    {"LeadingDelimitersRule", "Ke", 0},
    {"LeadingDelimitersRule", "ignore", 1},
    {"LeadingDelimitersRule", "I", 1},
    {"LeadingDelimitersRule", "error", 2},
    {"TextType", "char", 0},
    {"TextType", "C", 0},
    {"TextType", "string", 1},
    {"TextType", "str", 1},
    {"DatetimeType", "datetime", 0},
    {"DatetimeType", "date", 0},
    {"DatetimeType", "char", 1},
    {"DatetimeType", "c", 1},
    {"DatetimeType", "exceldate", 2},
    {"DatetimeType", "E", 2},
    {"PartialFieldRule", "keep", 0},
    {"PartialFieldRule", "omitrow", 1},
    {"PartialFieldRule", "o", 1},
    {"PartialFieldRule", "omit", 1},
    {"PartialFieldRule", "omitvar", 2},
    {"PartialFieldRule", "OmitV", 2},
    {"PartialFieldRule", "fill", 3},
    {"PartialFieldRule", "wrap", 4},
    {"PartialFieldRule", "error", 5},
};

struct ByOptionAndValue {
  std::string operator()(const testing::TestParamInfo<KeywordCase>& row) const {
    return std::string(row.param.option) + "_" + row.param.value;
  }
};

class SetParserOptionsKeyword : public testing::TestWithParam<KeywordCase> {};
TEST_P(SetParserOptionsKeyword, StoresTheCodeOfTheFirstThatItBegins) {
  const KeywordCase& row = GetParam();
  // From a record with other values in every enumeration, and from one with the value 0.
  for (options record : {options(), unusual_record()}) {
    ASSERT_EQ(error_of_pairs(record, {{wide(row.option), make_array(wide(row.value))}}), "");
    EXPECT_EQ(code_in(record, row.option), row.code);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsKeyword, testing::ValuesIn(kKeywords),
                         ByOptionAndValue());

TEST(SetParserOptionsKeywordShape, DoesNotMatter) {
  for (const std::vector<std::size_t>& shape :
       {std::vector<std::size_t>{4, 1}, {2, 2}, {1, 2, 2}, {2, 1, 2}}) {
    options record;
    ASSERT_EQ(error_of_pairs(record, {{u"PartialFieldRule", make_char_array(u"fill", shape)}}), "");
    EXPECT_EQ(record.partial_field_rule, parser::partial_field_action::fill);
  }
}

// --- what is refused -----------------------------------------------------------------------------

struct RefusalCase {
  std::string rule;
  std::u16string name;
  Array value;
  std::string error;  // identifier and arguments
};
std::ostream& operator<<(std::ostream& out, const RefusalCase& row) { return out << row.rule; }

struct BadValue {
  const char* rule;
  Array value;
};

const std::vector<BadValue>& no_number() {
  static const std::vector<BadValue> values = {
      {"MinusOne", make_array(-1.0)},
      {"AFraction", make_array(2.5)},
      {"JustBelowOne", make_array(0.9999999999999999)},
      {"TheSmallestNumber", make_array(5e-324)},
      {"MinusTheSmallestNumber", make_array(-5e-324)},
      {"NaN", make_array(kNaN)},
      {"Infinity", make_array(kInfinity)},
      {"MinusInfinity", make_array(-kInfinity)},
      {"MinusTwoToThe63", make_array(-9223372036854775808.0)},
      {"TwoNumbers", numbers({1, 2})},
      {"NoNumber", make_empty_array()},
      {"ARowOfNoNumber", numbers({})},
      {"AnIntegerClass", integers({3})},
      {"TwoOfAnIntegerClass", integers({3, 4})},
      {"ATextOfADigit", make_array(u"3")},
      {"ATextOfDigits", make_array(u"12")},
      {"TheEmptyText", make_array(u"")},
      {"ALogical", make_array(true)},
      {"ACellOfANumber", make_cell({make_array(3.0)})},
      {"AnEmptyCell", make_cell({})},
  };
  return values;
}

const std::vector<BadValue>& no_logical() {
  static const std::vector<BadValue> values = {
      {"TheNumberOne", make_array(1.0)},
      {"TheNumberZero", make_array(0.0)},
      {"AnIntegerClass", integers({1})},
      {"NaN", make_array(kNaN)},
      {"AText", make_array(u"true")},
      {"ACharacter", make_array(u"1")},
      {"TheEmptyText", make_array(u"")},
      {"NoNumber", make_empty_array()},
      {"ACellOfALogical", make_cell({make_array(true)})},
      {"AnEmptyCell", make_cell({})},
  };
  return values;
}

// Neither a text nor a list of texts.
const std::vector<BadValue>& no_text() {
  static const std::vector<BadValue> values = {
      {"ANumber", make_array(59.0)},
      {"Numbers", numbers({59, 60})},
      {"AnIntegerClass", integers({59})},
      {"ALogical", make_array(true)},
      {"NoNumber", make_empty_array()},
      {"TwoRows", make_char_array(u"abcdef", {2, 3})},
      {"AColumn", make_char_array(u"abc", {3, 1})},
      {"ThreeDimensions", make_char_array(u"abcd", {1, 2, 2})},
      {"ThreeDimensionsOfNothing", make_char_array(u"", {0, 0, 2})},
      {"NoRowOfThree", make_char_array(u"", {0, 3})},
      {"NoRowOfOne", make_char_array(u"", {0, 1})},
      {"TwoRowsOfNothing", make_char_array(u"", {2, 0})},
  };
  return values;
}

// A text is valid alone, but not in a list.
const std::vector<BadValue>& no_single_text() {
  static const std::vector<BadValue> values = {
      {"ACellOfAText", make_text_cell({u"a"})},
      {"AnEmptyCell", make_cell({})},
  };
  return values;
}

const std::vector<BadValue>& no_text_list() {
  static const std::vector<BadValue> values = {
      {"ACellWithANumber", make_cell({make_array(u"a"), make_array(1.0)})},
      {"ACellWithALogicalFirst", make_cell({make_array(true), make_array(u"a")})},
      {"ACellWithAnEmptyArray", make_cell({make_empty_array()})},
      {"ACellWithinACell", make_cell({make_text_cell({u"a"})})},
      {"AnEmptyCellWithinACell", make_cell({make_cell({})})},
      {"ACellWithTwoRows", make_cell({make_char_array(u"abcd", {2, 2})})},
      {"ACellWithAColumnLast", make_cell({make_array(u"a"), make_char_array(u"ab", {2, 1})})},
      {"ACellWithNoRowOfThree", make_cell({make_char_array(u"", {0, 3})})},
      {"ACellWithThreeDimensions", make_cell({make_char_array(u"ab", {1, 1, 2})})},
  };
  return values;
}

const std::vector<BadValue>& no_keyword() {
  static const std::vector<BadValue> values = {
      {"TheEmptyText", make_array(u"")},
      {"OneRowOfNothing", make_char_array(u"", {1, 0})},
      {"AnUnknownWord", make_array(u"zzz")},
      {"ALeadingBlank", make_array(u" e")},
      {"ABlank", make_array(u" ")},
      {"ANumber", make_array(0.0)},
      {"ALogical", make_array(true)},
      {"AnIntegerClass", integers({0})},
      {"NoNumber", make_empty_array()},
      {"AnEmptyCell", make_cell({})},
      {"ACellOfAWord", make_text_cell({u"error"})},
      {"TheCodesOfAWord", numbers({101})},
      {"AFullWidthLetter", make_array(u"\uff45")},
      {"ALetterPlus128", make_array(u"\u00e5")},
      {"ALetterPlus256", make_array(u"\u0165")},
      {"ALongS", make_array(u"\u017f")},
      {"AKelvinSign", make_array(u"\u212a")},
      {"ANul", make_array(std::u16string_view(u"\0", 1))},
  };
  return values;
}

const std::vector<BadValue>& no_escape() {
  static const std::vector<BadValue> values = {
      {"EscapeQ", make_array(u"\\q")},
      {"EscapeA", make_array(u"\\a")},
      {"EscapeF", make_array(u"\\f")},
      {"EscapeV", make_array(u"\\v")},
      {"EscapeX", make_array(u"\\x41")},
      {"EscapeZero", make_array(u"\\0")},
      {"EscapeQuote", make_array(u"\\\"")},
      {"EscapeUpperN", make_array(u"\\N")},
      {"EscapeUpperT", make_array(u"\\T")},
      {"EscapeBlank", make_array(u"\\ ")},
      {"EscapeNul", make_array(std::u16string_view(u"\\\0", 2))},
      {"EscapeFarLetter", make_array(u"\\\u016e")},  // the low byte is that of n
      {"EscapeAfterGoodOnes", make_array(u"\\t\\\\\\n\\q")},
      {"EscapeBeforeATrailingBackslash", make_array(u"\\q\\")},
  };
  return values;
}

const std::vector<BadValue>& no_escape_in_list() {
  static const std::vector<BadValue> values = {
      {"EscapeInTheFirst", make_text_cell({u"\\q", u"a"})},
      {"EscapeInTheLast", make_text_cell({u"\\t", u"\\q"})},
  };
  return values;
}

const char* const kParserTypes = "\"'delimited', 'fixedwidth', 'tabular'\"";
const char* const kRowRules = "\"'fill', 'omitrow', 'omitvar', 'error'\"";

std::vector<RefusalCase> refusals() {
  std::vector<RefusalCase> rows;
  const auto add = [&](const char* name, const std::vector<BadValue>& values,
                       const std::string& error) {
    for (const BadValue& bad : values) {
      rows.push_back({std::string(name) + "Of" + bad.rule, wide(name), bad.value, error});
    }
  };
  for (const char* name : {"NumHeaderLines", "NumVariables", "VariableNamesLine",
                           "VariableUnitsLine", "VariableDescriptionsLine", "RowNamesField"}) {
    add(name, no_number(), error_text("ExpectedNonNegativeScalarInt"));
  }
  add("DataLine", no_number(), error_text("ExpectedPositiveScalarInt"));
  add("DataLine", {{"Zero", make_array(0.0)}, {"NegativeZero", make_array(-0.0)}},
      error_text("ExpectedPositiveScalarInt"));
  for (const char* name : {"CollectOutput", "IsFile", "MultipleDelimsAsOne"}) {
    add(name, no_logical(), error_text("ExpectedScalarLogical"));
  }

  struct Named {
    const char* option;
    const char* in_errors;
  };
  for (const Named& text : {Named{"Whitespace", "\"Whitespace\""},
                            {"Encoding", "\"Encoding\""},
                            {"DateLocale", "\"DateLocale\""},
                            {"ExpChars", "\"ExpChars\""}}) {
    const std::string error = error_text("InvalidStringProperty", text.in_errors);
    add(text.option, no_text(), error);
    add(text.option, no_single_text(), error);
  }
  add("Whitespace", no_escape(), error_text("InvalidEscapeSequence", "\"Whitespace\""));
  for (const Named& list : {Named{"LineEnding", "\"EndOfLine\""},
                            {"EndOfLine", "\"EndOfLine\""},
                            {"CommentStyle", "\"CommentStyle\""},
                            {"TreatAsMissing", "\"TreatAsMissing\""},
                            {"TreatAsEmpty", "\"TreatAsMissing\""}}) {
    const std::string error = error_text("InvalidStringOrCellStringProperty", list.in_errors);
    add(list.option, no_text(), error);
    add(list.option, no_text_list(), error);
    const std::string escape = error_text("InvalidEscapeSequence", list.in_errors);
    add(list.option, no_escape(), escape);
    add(list.option, no_escape_in_list(), escape);
  }
  add("Delimiter", no_text(), error_text("DelimiterType"));
  add("Delimiter", no_text_list(), error_text("DelimiterType"));
  add("Delimiter", no_escape(), error_text("InvalidEscapeSequence", "\"Delimiter\""));
  add("Delimiter", no_escape_in_list(), error_text("InvalidEscapeSequence", "\"Delimiter\""));
  add("CommentStyle",
      {{"ThreeTexts", make_text_cell({u"a", u"b", u"c"})},
       {"FourTexts", make_text_cell({u"a", u"b", u"c", u"d"})},
       {"ThreeTextsWithABadEscape", make_text_cell({u"a", u"\\q", u"c"})},
       {"ThreeEmptyTexts", make_text_cell({u"", u"", u""})}},
      error_text("CommentStyleSize"));
  add("CommentStyle",
      {{"TwoTextsAndANumber", make_cell({make_array(u"a"), make_array(u"b"), make_array(1.0)})}},
      error_text("InvalidStringOrCellStringProperty", "\"CommentStyle\""));

  const std::vector<BadValue> words_and_more[] = {
      {{"ALongerWord", make_array(u"delimitedx")}, {"AWordAndABlank", make_array(u"delimited ")}},
      {{"ALongerWord", make_array(u"omitrowx")},
       {"AWordAndANul", make_array(std::u16string_view(u"fill\0", 5))}},
      {{"ALongerWord", make_array(u"splits")}, {"AListOfWords", make_array(u"split,join")}},
      {{"ALongerWord", make_array(u"skipped")}, {"TheTailOfAWord", make_array(u"kip")}},
      {{"ALongerWord", make_array(u"addvarss")}, {"AnotherOptionsWord", make_array(u"keep")}},
      {{"ALongerWord", make_array(u"keeper")}, {"AnotherOptionsWord", make_array(u"addvars")}},
      {{"ALongerWord", make_array(u"characters")}, {"AnotherOptionsWord", make_array(u"date")}},
      {{"ALongerWord", make_array(u"datetimes")}, {"AnotherOptionsWord", make_array(u"string")}},
      {{"ALongerWord", make_array(u"omitrows")}, {"AnotherOptionsWord", make_array(u"join")}},
  };
  struct Keywords {
    const char* option;
    const char* choices;
    const std::vector<BadValue>& more;
  };
  const Keywords keywords[] = {
      {"ParserType", kParserTypes, words_and_more[0]},
      {"MissingRule", kRowRules, words_and_more[1]},
      {"ImportErrorRule", kRowRules, words_and_more[1]},
      {"ConsecutiveDelimitersRule", "\"'split', 'join', 'error'\"", words_and_more[2]},
      {"EmptyLineRule", "\"'skip', 'read', 'error'\"", words_and_more[3]},
      {"ExtraColumnsRule", "\"'addvars', 'ignore', 'wrap', 'error'\"", words_and_more[4]},
      {"LeadingDelimitersRule", "\"'keep', 'ignore', 'error'\"", words_and_more[5]},
      {"TextType", "\"'char', 'string'\"", words_and_more[6]},
      {"DatetimeType", "\"'datetime', 'char', 'exceldate'\"", words_and_more[7]},
      {"PartialFieldRule", "\"'keep', 'omitrow', 'omitvar', 'fill', 'wrap', 'error'\"",
       words_and_more[8]},
  };
  for (const Keywords& keyword : keywords) {
    const std::string error = error_text("BadTextFlag", keyword.choices);
    add(keyword.option, no_keyword(), error);
    add(keyword.option, keyword.more, error);
  }
  return rows;
}

class SetParserOptionsRefusal : public testing::TestWithParam<RefusalCase> {};
TEST_P(SetParserOptionsRefusal, NamesTheErrorAndLeavesTheRecord) {
  const RefusalCase& row = GetParam();
  for (options record : {options(), unusual_record()}) {
    const std::string before = contents_of(record);
    EXPECT_EQ(error_of_pairs(record, {{row.name, row.value}}), row.error);
    EXPECT_EQ(contents_of(record), before);
  }
}
TEST_P(SetParserOptionsRefusal, KeepsThePairsBeforeAndReachesNoneAfter) {
  const RefusalCase& row = GetParam();
  options record;
  options expected;
  expected.row_names_field = 7;
  expected.encoding = u"before";
  EXPECT_EQ(error_of_pairs(record, {{u"RowNamesField", make_array(7.0)},
                                    {u"Encoding", make_array(u"before")},
                                    {row.name, row.value},
                                    {u"Encoding", make_array(u"after")},
                                    {u"NoSuchOption", make_array(1.0)}}),
            row.error);
  EXPECT_EQ(contents_of(record), contents_of(expected));
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsRefusal, testing::ValuesIn(refusals()),
                         testing_support::ByRule());

// --- names ---------------------------------------------------------------------------------------

std::u16string in_lower_case(std::u16string text) {
  for (char16_t& unit : text) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit + 32);
  }
  return text;
}
std::u16string in_upper_case(std::u16string text) {
  for (char16_t& unit : text) {
    if (unit >= u'a' && unit <= u'z') unit = static_cast<char16_t>(unit - 32);
  }
  return text;
}
// Alternating lower and upper case: "dElImItEr".
std::u16string in_turn(const std::u16string& text) {
  std::u16string out = in_lower_case(text);
  const std::u16string upper = in_upper_case(text);
  for (std::size_t i = 1; i < out.size(); i += 2) out[i] = upper[i];
  return out;
}

TEST(SetParserOptionsNames, Are33DifferentOnes) {
  std::set<std::u16string> names;
  for (const EffectCase& row : kEveryOption) names.insert(in_lower_case(row.name));
  EXPECT_EQ(names.size(), 33U);
}

class SetParserOptionsName : public testing::TestWithParam<EffectCase> {};
TEST_P(SetParserOptionsName, IsFoundInEverySpellingOfCase) {
  const EffectCase& row = GetParam();
  for (const std::u16string& name :
       {row.name, in_lower_case(row.name), in_upper_case(row.name), in_turn(row.name)}) {
    options record = unusual_record();
    options expected = record;
    row.effect(expected);
    EXPECT_EQ(error_of_pairs(record, {{name, row.value}}), "") << narrow(name);
    EXPECT_EQ(contents_of(record), contents_of(expected)) << narrow(name);
  }
}
TEST_P(SetParserOptionsName, IsNeitherShortenedNorLengthened) {
  const EffectCase& row = GetParam();
  std::vector<std::u16string> strangers;
  for (std::size_t length = 0; length < row.name.size(); ++length) {
    strangers.push_back(row.name.substr(0, length));
  }
  strangers.push_back(row.name.substr(1));
  strangers.push_back(row.name + u"s");
  strangers.push_back(row.name + u" ");
  strangers.push_back(u" " + row.name);
  strangers.push_back(row.name + u'\0');
  strangers.push_back(row.name + u"\u00e9");
  for (std::size_t i = 0; i < row.name.size(); ++i) {
    std::u16string far = row.name;  // the same low byte
    far[i] = static_cast<char16_t>(far[i] + 0x0100);
    strangers.push_back(far);
    far[i] = static_cast<char16_t>(row.name[i] + 0xFEE0);  // the full-width letter
    strangers.push_back(far);
  }
  for (const std::u16string& name : strangers) {
    options record;
    EXPECT_EQ(error_of_pairs(record, {{name, row.value}}),
              error_text("UnknownParameter", "u\"" + testing_support::readable(name) + '"'));
    EXPECT_EQ(contents_of(record), contents_of(options()));
  }
}
INSTANTIATE_TEST_SUITE_P(EveryOption, SetParserOptionsName, testing::ValuesIn(kEveryOption),
                         testing_support::ByRule());

struct UnknownCase {
  const char* rule;
  std::u16string name;
  const char* argument;
};
std::ostream& operator<<(std::ostream& out, const UnknownCase& row) { return out << row.rule; }

const UnknownCase kUnknown[] = {
    {"Abbreviation", u"Delim", "u\"Delim\""},
    {"Plural", u"Delimiters", "u\"Delimiters\""},
    {"CaseIsKept", u"dELIM", "u\"dELIM\""},
    {"Empty", u"", "u\"\""},
    {"Dashes", u"Num-Header-Lines", "u\"Num-Header-Lines\""},
    {"DotlessI", u"Del\u0131miter", "u\"Del\\u0131miter\""},
    {"LongS", u"I\u017fFile", "u\"I\\u017FFile\""},
    {"NonAscii", u"Gr\u00f6\u00dfe", "u\"Gr\\u00F6\\u00DFe\""},
    {"SurrogatePair", u"x\U0001F600", "u\"x\\uD83D\\uDE00\""},
    {"LoneSurrogate", u"x\xD83D", "u\"x\\uD83D\""},
    {"EndMark", u"\uffff", "u\"\\uFFFF\""},
    {"BeforeTheFirst", u"A", "u\"A\""},
    {"AfterTheLast", u"zzz", "u\"zzz\""},
};

class SetParserOptionsUnknown : public testing::TestWithParam<UnknownCase> {};
TEST_P(SetParserOptionsUnknown, IsNamedAsGivenAndThePairsBeforeStay) {
  options record;
  options expected;
  expected.date_locale = u"x";
  EXPECT_EQ(error_of_pairs(record, {{u"DateLocale", make_array(u"x")},
                                    {GetParam().name, make_array(1.0)},
                                    {u"DateLocale", make_array(u"y")}}),
            error_text("UnknownParameter", GetParam().argument));
  EXPECT_EQ(contents_of(record), contents_of(expected));
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsUnknown, testing::ValuesIn(kUnknown),
                         testing_support::ByRule());

// --- counts --------------------------------------------------------------------------------------

struct CountCase {
  const char* rule;
  int count;
  const char* error;  // name alone
};
std::ostream& operator<<(std::ostream& out, const CountCase& row) { return out << row.rule; }

const CountCase kCounts[] = {
    {"NoneIsNothing", 0, nullptr},
    {"OneIsOdd", 1, "OddNumberNVPairs"},
    {"ThreeIsOdd", 3, "OddNumberNVPairs"},
    {"LargestIsOdd", INT_MAX, "OddNumberNVPairs"},
    {"MinusOneIsOdd", -1, "OddNumberNVPairs"},
    {"MinusThreeIsOdd", -3, "OddNumberNVPairs"},
    {"MinusTwoIsNothing", -2, nullptr},
    {"SmallestIsNothing", INT_MIN, nullptr},
};

class SetParserOptionsCount : public testing::TestWithParam<CountCase> {};
TEST_P(SetParserOptionsCount, IsLookedAtBeforeAnyPair) {
  const std::string expected = GetParam().error ? error_text(GetParam().error) : "";
  options record = unusual_record();
  const auto call = [&](const hxArray** args) {
    return error_of([&] { textio::options::set_parser_options(args, GetParam().count, record); });
  };
  EXPECT_EQ(call(nullptr), expected);
  const Array name = make_array(u"Encoding");
  const Array value = make_array(u"not stored");
  const hxArray* args[] = {name.get(), value.get(), name.get()};
  EXPECT_EQ(call(args), expected);
  EXPECT_EQ(contents_of(record), contents_of(unusual_record()));
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsCount, testing::ValuesIn(kCounts),
                         testing_support::ByRule());

TEST(SetParserOptionsArguments, NoMoreArraysAreReadThanCounted) {
  const Array name = make_array(u"Encoding");
  const Array value = make_array(u"stored");
  const hxArray* args[] = {name.get(), value.get(), nullptr, nullptr};
  options record;
  textio::options::set_parser_options(args, 2, record);
  EXPECT_EQ(record.encoding, u"stored");
}

// --- several pairs -------------------------------------------------------------------------------

struct SequenceCase {
  const char* rule;
  std::vector<OptionPair> pairs;
  void (*effect)(options&);
};
std::ostream& operator<<(std::ostream& out, const SequenceCase& row) { return out << row.rule; }

const SequenceCase kSequences[] = {
    {"TheLaterOfTwoWins",
     {{u"Encoding", make_array(u"a")}, {u"ENCODING", make_array(u"b")}},
     [](options& r) { r.encoding = u"b"; }},
    {"DataLineAfterNumHeaderLines",
     {{u"NumHeaderLines", make_array(9.0)}, {u"DataLine", make_array(4.0)}},
     [](options& r) { header_lines_are(r, 3); }},
    {"NumHeaderLinesAfterDataLine",
     {{u"DataLine", make_array(4.0)}, {u"NumHeaderLines", make_array(9.0)}},
     [](options& r) { header_lines_are(r, 9); }},
    {"EndOfLineAfterLineEnding",
     {{u"LineEnding", make_array(u"a")}, {u"EndOfLine", make_array(u"b")}},
     [](options& r) { r.line_endings = {u"b"}; }},
    {"DefaultListAfterAnother",
     {{u"LineEnding", make_array(u"a")}, {u"LineEnding", make_array(u"\\r\\n")}},
     default_endings},
    {"AListIsReplacedNotExtended",
     {{u"Delimiter", make_text_cell({u"a", u"b"})}, {u"Delimiter", make_array(u"c")}},
     [](options& r) { delimiters_are(r, {u"c"}); }},
    {"AnEmptyListAfterAList",
     {{u"Delimiter", make_text_cell({u"a", u"b"})}, {u"Delimiter", make_cell({})}},
     [](options& r) { delimiters_are(r, {}); }},
    {"WidthsAreReplaced",
     {{u"VariableWidths", make_array(Widths{1, 2})}, {u"VariableWidths", make_array(Widths{3})}},
     [](options& r) { r.variable_widths = {3}; }},
    {"SplitAfterMultipleAsOneLeavesIgnore",
     {{u"MultipleDelimsAsOne", make_array(true)},
      {u"ConsecutiveDelimitersRule", make_array(u"split")}},
     [](options& r) {
       r.consecutive_delimiters_rule = parser::consecutive_delimiters_action::split;
       r.leading_delimiters_rule = parser::leading_delimiters_action::ignore;
     }},
    {"KeepAfterMultipleAsOneLeavesJoin",
     {{u"MultipleDelimsAsOne", make_array(true)}, {u"LeadingDelimitersRule", make_array(u"keep")}},
     [](options& r) {
       r.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
       r.leading_delimiters_rule = parser::leading_delimiters_action::keep;
     }},
    {"MultipleAsOneAfterBothRules",
     {{u"ConsecutiveDelimitersRule", make_array(u"error")},
      {u"LeadingDelimitersRule", make_array(u"error")},
      {u"MultipleDelimsAsOne", make_array(true)}},
     multiple_as_one},
    {"MultipleAsSeveralAfterMultipleAsOne",
     {{u"MultipleDelimsAsOne", make_array(true)}, {u"MultipleDelimsAsOne", make_array(false)}},
     multiple_as_several},
    {"IgnoredPairsInBetween",
     {{u"ReturnOnError", make_array(1.0)},
      {u"NumVariables", make_array(2.0)},
      {u"EmptyValue", make_cell({})},
      {u"IsFile", make_array(false)}},
     [](options& r) {
       variables_are(r, 2);
       r.is_file = false;
     }},
};

class SetParserOptionsSequence : public testing::TestWithParam<SequenceCase> {};
TEST_P(SetParserOptionsSequence, IsAppliedInItsOrder) {
  for (options record : {options(), unusual_record()}) {
    options expected = record;
    GetParam().effect(expected);
    ASSERT_EQ(error_of_pairs(record, GetParam().pairs), "");
    EXPECT_EQ(contents_of(record), contents_of(expected));
  }
}
TEST_P(SetParserOptionsSequence, GivesTheSameInSeveralCalls) {
  options together;
  options apart;
  apply_pairs(together, GetParam().pairs);
  for (const OptionPair& pair : GetParam().pairs) apply_pairs(apart, {pair});
  EXPECT_EQ(contents_of(together), contents_of(apart));
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsSequence, testing::ValuesIn(kSequences),
                         testing_support::ByRule());

TEST(SetParserOptionsPairs, AnErrorLeavesAnEarlierValueOfTheSameOption) {
  options record;
  options expected;
  delimiters_are(expected, {u";"});
  EXPECT_EQ(error_of_pairs(record, {{u"Delimiter", make_array(u";")},
                                    {u"Delimiter", make_text_cell({u",", u"\\q"})}}),
            error_text("InvalidEscapeSequence", "\"Delimiter\""));
  EXPECT_EQ(contents_of(record), contents_of(expected));
}

TEST(SetParserOptionsPairs, ARefusedDelimiterLeavesTheDetectionOn) {
  options record;
  EXPECT_EQ(error_of_pairs(record, {{u"Delimiter", make_array(1.0)}}), error_text("DelimiterType"));
  EXPECT_TRUE(record.detect_delimiters);
}

TEST(SetParserOptionsPairs, All33TogetherArePutIntoOneRecord) {
  std::vector<OptionPair> pairs;
  options expected;
  for (const EffectCase& row : kEveryOption) {
    pairs.push_back({row.name, row.value});
    row.effect(expected);
  }
  options record;
  apply_pairs(record, pairs);
  EXPECT_EQ(contents_of(record), contents_of(expected));
}

TEST(SetParserOptionsLists, TheDefaultLineEndingsAreACopyForEachRecord) {
  options record;
  apply_pairs(record, {{u"LineEnding", make_array(u"\\r\\n")}});
  record.line_endings.clear();
  EXPECT_EQ(parser::default_line_endings(), (TextList{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(options().line_endings, (TextList{u"\r\n", u"\n", u"\r"}));
}

TEST(SetParserOptionsLists, TheRecordKeepsItsTextsWhenTheArraysAreGone) {
  options record;
  {
    const Array value = make_text_cell({std::u16string(100, u'x')});
    apply_pairs(record, {{u"Delimiter", value}, {u"Encoding", make_array(u"a longer name here")}});
  }
  EXPECT_EQ(record.delimiters, TextList{std::u16string(100, u'x')});
  EXPECT_EQ(record.encoding, u"a longer name here");
}

// --- absurd sizes --------------------------------------------------------------------------------

struct HugeCase {
  const char* rule;
  double value;
};
std::ostream& operator<<(std::ostream& out, const HugeCase& row) { return out << row.rule; }

// Whole numbers that are too large for any counter.
const HugeCase kHuge[] = {
    {"TwoToThe64", 18446744073709551616.0},
    {"TwoToThe65", 36893488147419103232.0},
    {"TenToThe300", 1e300},
    {"TheLargestNumber", std::numeric_limits<double>::max()},
};

class SetParserOptionsHuge : public testing::TestWithParam<HugeCase> {};
TEST_P(SetParserOptionsHuge, IsTakenAsTheLargestCount) {
  options record;
  apply_pairs(record, {{u"NumHeaderLines", make_array(GetParam().value)},
                       {u"NumVariables", make_array(GetParam().value)},
                       {u"RowNamesField", make_array(GetParam().value)}});
  EXPECT_EQ(record.header_lines, SIZE_MAX);
  EXPECT_FALSE(record.detect_header_lines);
  EXPECT_EQ(record.num_variables, UINT64_MAX);
  EXPECT_EQ(record.row_names_field, UINT64_MAX);
  apply_pairs(record, {{u"DataLine", make_array(GetParam().value)}});
  EXPECT_EQ(record.header_lines, SIZE_MAX - 1);
}
INSTANTIATE_TEST_SUITE_P(Table, SetParserOptionsHuge, testing::ValuesIn(kHuge),
                         testing_support::ByRule());

const std::size_t kMillion = 1000000;

TEST(SetParserOptionsSizes, ADelimiterOfAMillionUnitsIsKept) {
  const std::u16string text(kMillion, u'x');
  options record;
  apply_pairs(record, {{u"Delimiter", make_array(std::u16string_view(text))}});
  ASSERT_EQ(record.delimiters.size(), 1U);
  EXPECT_TRUE(record.delimiters[0] == text);
}

TEST(SetParserOptionsSizes, HalfAMillionEscapesAreReplaced) {
  std::u16string text;
  for (std::size_t i = 0; i < kMillion / 2; ++i) text += u"\\t";
  options record;
  apply_pairs(record, {{u"Delimiter", make_array(std::u16string_view(text))}});
  ASSERT_EQ(record.delimiters.size(), 1U);
  EXPECT_TRUE(record.delimiters[0] == std::u16string(kMillion / 2, u'\t'));
}

TEST(SetParserOptionsSizes, HalfAMillionBadEscapesAreOneError) {
  std::u16string text;
  for (std::size_t i = 0; i < kMillion / 2; ++i) text += u"\\q";
  options record;
  EXPECT_EQ(error_of_pairs(record, {{u"Delimiter", make_array(std::u16string_view(text))}}),
            error_text("InvalidEscapeSequence", "\"Delimiter\""));
}

TEST(SetParserOptionsSizes, TenThousandDelimitersKeepTheirOrder) {
  TextList list;
  for (char16_t i = 0; i < 10000; ++i) list.push_back(std::u16string(3, char16_t(0x3000 + i)));
  options record;
  apply_pairs(record, {{u"Delimiter", make_text_cell(list)}});
  EXPECT_TRUE(record.delimiters == list);
}

TEST(SetParserOptionsSizes, TenThousandCommentMarkersAreTooMany) {
  options record;
  EXPECT_EQ(error_of_pairs(record, {{u"CommentStyle", make_text_cell(TextList(10000, u"%"))}}),
            error_text("CommentStyleSize"));
}

TEST(SetParserOptionsSizes, ANameOfAMillionUnitsIsUnknown) {
  const std::u16string name(kMillion, u'D');
  options record;
  try {
    apply_pairs(record, {{name, make_array(1.0)}});
    FAIL();
  } catch (const MessageIdentifiedError& error) {
    ASSERT_EQ(error.arguments().size(), 1U);
    EXPECT_TRUE(boost::get<std::u16string>(error.arguments()[0]) == name);
  }
}

TEST(SetParserOptionsSizes, AKeywordOfAMillionUnitsIsNone) {
  const std::u16string text(kMillion, u'd');
  options record;
  EXPECT_EQ(error_of_pairs(record, {{u"ParserType", make_array(std::u16string_view(text))}}),
            error_text("BadTextFlag", kParserTypes));
}

TEST(SetParserOptionsSizes, AMillionWidthsAreKept) {
  const Widths widths(kMillion, 7);
  options record;
  apply_pairs(record, {{u"VariableWidths", make_array(widths)}});
  EXPECT_TRUE(record.variable_widths == widths);
}

TEST(SetParserOptionsSizes, TenThousandPairsAreApplied) {
  std::vector<OptionPair> pairs;
  for (int i = 0; i < 10000; ++i) pairs.push_back({u"NumVariables", make_array(i)});
  options record;
  apply_pairs(record, pairs);
  EXPECT_EQ(record.num_variables, 9999U);
}

}  // namespace
}  // namespace textio
