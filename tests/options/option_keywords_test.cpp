#include <vltextstream/options/option_keywords.hpp>

#include <gtest/gtest.h>

#include <iterator>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/standalone/decoding/utf_text.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/option_calls.hpp"
#include "support/rule_name.hpp"

namespace textio::parser {
namespace {

// An enumerated option, with its keywords in the order of the values.
struct EnumerationCase {
  const char* rule;  // an option of this enumeration
  std::vector<std::string_view> words;
  std::string_view (*word_of)(int value);
  std::size_t num_keywords;
  int (*value_in)(const options& record);
};
std::ostream& operator<<(std::ostream& out, const EnumerationCase& row) { return out << row.rule; }

template <typename Enumeration>
std::string_view word_of(int value) {
  return to_string(static_cast<Enumeration>(value));
}

template <auto kMember>
int value_in(const options& record) {
  return static_cast<int>(record.*kMember);
}

template <typename Enumeration, auto kMember>
EnumerationCase row_of(const char* option, std::vector<std::string_view> words) {
  return {option, std::move(words), word_of<Enumeration>, std::size(keywords<Enumeration>),
          value_in<kMember>};
}

const EnumerationCase kEnumerations[] = {
    row_of<parser_kind, &options::parser_type>("ParserType",
                                               {"delimited", "fixedwidth", "tabular"}),
    row_of<row_rule, &options::missing_rule>("MissingRule",
                                             {"fill", "omitrow", "omitvar", "error"}),
    row_of<row_rule, &options::import_error_rule>("ImportErrorRule",
                                                  {"fill", "omitrow", "omitvar", "error"}),
    row_of<consecutive_delimiters_action, &options::consecutive_delimiters_rule>(
        "ConsecutiveDelimitersRule", {"split", "join", "error"}),
    row_of<empty_line_action, &options::empty_line_rule>("EmptyLineRule",
                                                         {"skip", "read", "error"}),
    row_of<extra_columns_action, &options::extra_columns_rule>(
        "ExtraColumnsRule", {"addvars", "ignore", "wrap", "error"}),
    row_of<leading_delimiters_action, &options::leading_delimiters_rule>(
        "LeadingDelimitersRule", {"keep", "ignore", "error"}),
    row_of<text_kind, &options::text_type>("TextType", {"char", "string"}),
    row_of<datetime_kind, &options::datetime_type>("DatetimeType",
                                                   {"datetime", "char", "exceldate"}),
    row_of<partial_field_action, &options::partial_field_rule>(
        "PartialFieldRule", {"keep", "omitrow", "omitvar", "fill", "wrap", "error"}),
};

class OptionKeywords : public testing::TestWithParam<EnumerationCase> {};

TEST_P(OptionKeywords, AreThePrintedValues) {
  const auto& words = GetParam().words;
  EXPECT_EQ(GetParam().num_keywords, words.size());
  for (std::size_t value = 0; value < words.size(); ++value) {
    EXPECT_EQ(GetParam().word_of(static_cast<int>(value)), words[value]);
  }
}

TEST_P(OptionKeywords, AreEmptyForOtherNumbers) {
  EXPECT_EQ(GetParam().word_of(static_cast<int>(GetParam().words.size())), "");
  EXPECT_EQ(GetParam().word_of(255), "");
}

TEST_P(OptionKeywords, SetTheirValues) {
  for (std::size_t value = 0; value < GetParam().words.size(); ++value) {
    options record = testing_support::unusual_record();
    const std::u16string word = standalone::from_utf8(GetParam().words[value]);
    testing_support::apply_pairs(record, {{standalone::from_utf8(GetParam().rule),
                                           standalone::make_array(std::u16string_view(word))}});
    EXPECT_EQ(GetParam().value_in(record), static_cast<int>(value));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, OptionKeywords, testing::ValuesIn(kEnumerations),
                         testing_support::ByRule());

TEST(OptionKeywordsOf, EnumeratorsThatAreNoCppNamesAreThePlainWords) {
  EXPECT_EQ(to_string(text_kind::char_), "char");
  EXPECT_EQ(to_string(datetime_kind::char_), "char");
}

}  // namespace
}  // namespace textio::parser
