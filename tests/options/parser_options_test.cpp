#include <vltextstream/options/parser_options.hpp>
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace textio {
namespace {

using parser::options;
using testing_support::unusual_record;
using TextList = std::vector<std::u16string>;

void expect_defaults(const options& record) {
  EXPECT_EQ(record.delimiters, TextList{});
  EXPECT_EQ(record.line_endings, (TextList{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(record.reserved_strings, TextList{});
  EXPECT_EQ(record.comment_style, TextList{});
  EXPECT_EQ(record.whitespace, u" \b\t");
  EXPECT_EQ(record.encoding, u"UTF-8");
  EXPECT_EQ(record.date_locale, u"");
  EXPECT_EQ(record.exp_chars, u"eEdD");
  EXPECT_TRUE(record.variable_widths.empty());
  EXPECT_EQ(record.header_lines, SIZE_MAX);
  EXPECT_EQ(record.num_variables, 0U);
  EXPECT_EQ(record.variable_names_line, 0U);
  EXPECT_EQ(record.variable_units_line, 0U);
  EXPECT_EQ(record.variable_descriptions_line, 0U);
  EXPECT_EQ(record.row_names_field, 0U);
  EXPECT_EQ(record.parser_type, parser::parser_kind::delimited);
  EXPECT_EQ(record.missing_rule, parser::row_rule::fill);
  EXPECT_EQ(record.import_error_rule, parser::row_rule::fill);
  EXPECT_EQ(record.consecutive_delimiters_rule, parser::consecutive_delimiters_action::split);
  EXPECT_EQ(record.empty_line_rule, parser::empty_line_action::skip);
  EXPECT_EQ(record.extra_columns_rule, parser::extra_columns_action::addvars);
  EXPECT_EQ(record.leading_delimiters_rule, parser::leading_delimiters_action::keep);
  EXPECT_EQ(record.text_type, parser::text_kind::char_);
  EXPECT_EQ(record.datetime_type, parser::datetime_kind::datetime);
  EXPECT_EQ(record.partial_field_rule, parser::partial_field_action::keep);
  EXPECT_TRUE(record.detect_delimiters);
  EXPECT_TRUE(record.detect_header_lines);
  EXPECT_TRUE(record.detect_num_variables);
  EXPECT_TRUE(record.is_file);
  EXPECT_FALSE(record.collect_output);
}

void expect_changed(const options& record) {
  EXPECT_EQ(record.delimiters, (TextList{u";", u"||"}));
  EXPECT_EQ(record.line_endings, (TextList{u"\n"}));
  EXPECT_EQ(record.reserved_strings, (TextList{u"kept"}));
  EXPECT_EQ(record.comment_style, (TextList{u"/*", u"*/"}));
  EXPECT_EQ(record.whitespace, u"_");
  EXPECT_EQ(record.encoding, u"UTF-16LE");
  EXPECT_EQ(record.date_locale, u"de_DE");
  EXPECT_EQ(record.exp_chars, u"x");
  EXPECT_EQ(record.variable_widths, (std::vector<std::uint64_t>{3, 5}));
  EXPECT_EQ(record.header_lines, 10U);
  EXPECT_EQ(record.num_variables, 11U);
  EXPECT_EQ(record.variable_names_line, 12U);
  EXPECT_EQ(record.variable_units_line, 13U);
  EXPECT_EQ(record.variable_descriptions_line, 14U);
  EXPECT_EQ(record.row_names_field, 15U);
  EXPECT_EQ(record.parser_type, parser::parser_kind::tabular);
  EXPECT_EQ(record.missing_rule, parser::row_rule::omitrow);
  EXPECT_EQ(record.import_error_rule, parser::row_rule::omitvar);
  EXPECT_EQ(record.consecutive_delimiters_rule, parser::consecutive_delimiters_action::join);
  EXPECT_EQ(record.empty_line_rule, parser::empty_line_action::error);
  EXPECT_EQ(record.extra_columns_rule, parser::extra_columns_action::wrap);
  EXPECT_EQ(record.leading_delimiters_rule, parser::leading_delimiters_action::ignore);
  EXPECT_EQ(record.text_type, parser::text_kind::string);
  EXPECT_EQ(record.datetime_type, parser::datetime_kind::exceldate);
  EXPECT_EQ(record.partial_field_rule, parser::partial_field_action::wrap);
  EXPECT_FALSE(record.detect_delimiters);
  EXPECT_FALSE(record.detect_header_lines);
  EXPECT_FALSE(record.detect_num_variables);
  EXPECT_FALSE(record.is_file);
  EXPECT_TRUE(record.collect_output);
}

TEST(OptionsDefaults, EveryMemberHasItsDefault) { expect_defaults(options()); }

TEST(OptionsDefaults, HoldEvenAfterAnotherRecordWasChanged) {
  const options changed = unusual_record();
  expect_defaults(options());
  expect_changed(changed);
}

TEST(OptionsCopy, CarriesEveryMember) {
  const options original = unusual_record();
  const options copy(original);  // NOLINT: the copy is what is tested
  expect_changed(copy);
  expect_changed(original);
}

TEST(OptionsCopy, AssignmentCarriesEveryMember) {
  const options original = unusual_record();
  options copy;
  copy = original;
  expect_changed(copy);
  copy = options();
  expect_defaults(copy);
  expect_changed(original);
}

TEST(OptionsCopy, MovingCarriesEveryMember) {
  options original = unusual_record();
  options moved(std::move(original));
  expect_changed(moved);
  options assigned;
  assigned = std::move(moved);
  expect_changed(assigned);
}

TEST(OptionsCopy, HoldsItsOwnLists) {
  const options original;
  options copy(original);
  copy.line_endings.push_back(u"|");
  copy.delimiters.push_back(u",");
  EXPECT_EQ(original.line_endings, (TextList{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(original.delimiters, TextList{});
}

TEST(OptionsLineEndings, ChangingARecordLeavesTheSharedListAlone) {
  options record;
  const options other;
  record.line_endings.clear();
  EXPECT_EQ(parser::default_line_endings(), (TextList{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(other.line_endings, (TextList{u"\r\n", u"\n", u"\r"}));
  EXPECT_EQ(options().line_endings, (TextList{u"\r\n", u"\n", u"\r"}));
}

TEST(OptionsLineEndings, TheDefaultListIsOneObject) {
  EXPECT_EQ(&parser::default_line_endings(), &parser::default_line_endings());
}

TEST(OptionsLayout, MembersFollowOneAnotherInTheirOrder) {
  const options record;
  const std::vector<const void*> addresses = {
      &record.delimiters,
      &record.line_endings,
      &record.reserved_strings,
      &record.comment_style,
      &record.whitespace,
      &record.encoding,
      &record.date_locale,
      &record.exp_chars,
      &record.variable_widths,
      &record.header_lines,
      &record.num_variables,
      &record.variable_names_line,
      &record.variable_units_line,
      &record.variable_descriptions_line,
      &record.row_names_field,
      &record.parser_type,
      &record.missing_rule,
      &record.import_error_rule,
      &record.consecutive_delimiters_rule,
      &record.empty_line_rule,
      &record.extra_columns_rule,
      &record.leading_delimiters_rule,
      &record.text_type,
      &record.datetime_type,
      &record.partial_field_rule,
      &record.detect_delimiters,
      &record.detect_header_lines,
      &record.detect_num_variables,
      &record.is_file,
      &record.collect_output,
  };
  ASSERT_EQ(addresses.size(), 30U);
  EXPECT_EQ(addresses[0], static_cast<const void*>(&record));
  for (std::size_t i = 1; i < addresses.size(); ++i) {
    EXPECT_LT(addresses[i - 1], addresses[i]) << "member " << i + 1;
  }
}

TEST(OptionsLayout, CountersAreUnsignedAndHave64Bits) {
  EXPECT_TRUE((std::is_same_v<decltype(options::header_lines), std::size_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::num_variables), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::variable_names_line), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::variable_units_line), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::variable_descriptions_line), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::row_names_field), std::uint64_t>));
  EXPECT_TRUE((std::is_same_v<decltype(options::variable_widths)::value_type, std::uint64_t>));
  EXPECT_EQ(sizeof(std::size_t), 8U);
}

template <typename Enumeration>
constexpr bool is_one_unsigned_byte =
    std::is_same_v<std::underlying_type_t<Enumeration>, std::uint8_t>;

TEST(OptionsLayout, EnumerationsAreUnsignedBytes) {
  EXPECT_TRUE(is_one_unsigned_byte<parser::parser_kind>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::row_rule>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::consecutive_delimiters_action>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::empty_line_action>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::extra_columns_action>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::leading_delimiters_action>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::text_kind>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::datetime_kind>);
  EXPECT_TRUE(is_one_unsigned_byte<parser::partial_field_action>);
}

struct CodeCase {
  const char* rule;
  int code;
  int expected;
};
std::ostream& operator<<(std::ostream& out, const CodeCase& row) { return out << row.rule; }

template <typename Enumeration>
CodeCase code_of(const char* rule, Enumeration value, int expected) {
  return {rule, static_cast<int>(value), expected};
}

const CodeCase kCodeCases[] = {
    code_of("ParserDelimited", parser::parser_kind::delimited, 0),
    code_of("ParserFixedWidth", parser::parser_kind::fixedwidth, 1),
    code_of("ParserTabular", parser::parser_kind::tabular, 2),
    code_of("RowFill", parser::row_rule::fill, 0),
    code_of("RowOmitRow", parser::row_rule::omitrow, 1),
    code_of("RowOmitVar", parser::row_rule::omitvar, 2),
    code_of("RowError", parser::row_rule::error, 3),
    code_of("ConsecutiveSplit", parser::consecutive_delimiters_action::split, 0),
    code_of("ConsecutiveJoin", parser::consecutive_delimiters_action::join, 1),
    code_of("ConsecutiveError", parser::consecutive_delimiters_action::error, 2),
    code_of("EmptyLineSkip", parser::empty_line_action::skip, 0),
    code_of("EmptyLineRead", parser::empty_line_action::read, 1),
    code_of("EmptyLineError", parser::empty_line_action::error, 2),
    code_of("ExtraAddVars", parser::extra_columns_action::addvars, 0),
    code_of("ExtraIgnore", parser::extra_columns_action::ignore, 1),
    code_of("ExtraWrap", parser::extra_columns_action::wrap, 2),
    code_of("ExtraError", parser::extra_columns_action::error, 3),
    code_of("LeadingKeep", parser::leading_delimiters_action::keep, 0),
    code_of("LeadingIgnore", parser::leading_delimiters_action::ignore, 1),
    code_of("LeadingError", parser::leading_delimiters_action::error, 2),
    code_of("TextChar", parser::text_kind::char_, 0),
    code_of("TextString", parser::text_kind::string, 1),
    code_of("DatetimeDatetime", parser::datetime_kind::datetime, 0),
    code_of("DatetimeChar", parser::datetime_kind::char_, 1),
    code_of("DatetimeExceldate", parser::datetime_kind::exceldate, 2),
    code_of("PartialKeep", parser::partial_field_action::keep, 0),
    code_of("PartialOmitRow", parser::partial_field_action::omitrow, 1),
    code_of("PartialOmitVar", parser::partial_field_action::omitvar, 2),
    code_of("PartialFill", parser::partial_field_action::fill, 3),
    code_of("PartialWrap", parser::partial_field_action::wrap, 4),
    code_of("PartialError", parser::partial_field_action::error, 5),
};

class OptionsCodes : public testing::TestWithParam<CodeCase> {};
TEST_P(OptionsCodes, AreFixed) { EXPECT_EQ(GetParam().code, GetParam().expected); }
INSTANTIATE_TEST_SUITE_P(Table, OptionsCodes, testing::ValuesIn(kCodeCases),
                         testing_support::ByRule());

struct ConstantCase {
  const char* rule;
  const std::u16string* constant;
  std::u16string expected;
};
std::ostream& operator<<(std::ostream& out, const ConstantCase& row) { return out << row.rule; }

const ConstantCase kConstantCases[] = {
    {"Whitespace", &parser::default_whitespace, u" \b\t"},
    {"ExpChars", &parser::default_exp_chars, u"eEdD"},
    {"Digits", &parser::digit_chars, u"0123456789"},
    {"Space", &parser::space_string, u" "},
    {"LineFeed", &parser::lf_string, u"\n"},
    {"CarriageReturn", &parser::cr_string, u"\r"},
    {"CarriageReturnLineFeed", &parser::crlf_string, u"\r\n"},
    {"NaN", &parser::nan_text, u"NaN"},
    {"Inf", &parser::inf_text, u"Inf"},
    {"Empty", &parser::empty_text, u""},
    {"LowerInf", &parser::lower_inf_text, u"inf"},
    {"MinusInf", &parser::minus_inf_text, u"-inf"},
    {"LowerNaN", &parser::lower_nan_text, u"nan"},
    {"MinusNaN", &parser::minus_nan_text, u"-nan"},
};

class OptionsConstants : public testing::TestWithParam<ConstantCase> {};
TEST_P(OptionsConstants, HaveTheirText) { EXPECT_EQ(*GetParam().constant, GetParam().expected); }
INSTANTIATE_TEST_SUITE_P(Table, OptionsConstants, testing::ValuesIn(kConstantCases),
                         testing_support::ByRule());

}  // namespace
}  // namespace textio
