// The keywords of the enumerated options: the one table that parsing, printing and help texts read.
//
//   for (const auto& keyword : textio::parser::keywords<textio::parser::text_kind>) {
//     std::cout << keyword.word << '\n';        // char, string
//   }
//
// parser_options.hpp declares the enumerations, and to_string for the keyword of a value.
#pragma once

#include <cstdint>
#include <string_view>

#include <vltextstream/options/parser_options.hpp>

namespace textio::parser {

// A value of an enumeration and the keyword for it.
struct Keyword {
  template <typename Enumeration>
  constexpr Keyword(Enumeration enumerator, std::string_view keyword)
      : value(static_cast<std::uint8_t>(enumerator)), word(keyword) {}

  std::uint8_t value;  // converted from the enumeration
  std::string_view word;
};

// The keywords of `Enumeration`, an array of Keyword in the order in which a value is matched.
template <typename Enumeration>
inline constexpr void* keywords = nullptr;

template <>
inline constexpr Keyword keywords<parser_kind>[] = {
    {parser_kind::delimited, "delimited"},
    {parser_kind::fixedwidth, "fixedwidth"},
    {parser_kind::tabular, "tabular"},
};

template <>
inline constexpr Keyword keywords<row_rule>[] = {
    {row_rule::fill, "fill"},
    {row_rule::omitrow, "omitrow"},
    {row_rule::omitvar, "omitvar"},
    {row_rule::error, "error"},
};

template <>
inline constexpr Keyword keywords<consecutive_delimiters_action>[] = {
    {consecutive_delimiters_action::split, "split"},
    {consecutive_delimiters_action::join, "join"},
    {consecutive_delimiters_action::error, "error"},
};

template <>
inline constexpr Keyword keywords<empty_line_action>[] = {
    {empty_line_action::skip, "skip"},
    {empty_line_action::read, "read"},
    {empty_line_action::error, "error"},
};

template <>
inline constexpr Keyword keywords<extra_columns_action>[] = {
    {extra_columns_action::addvars, "addvars"},
    {extra_columns_action::ignore, "ignore"},
    {extra_columns_action::wrap, "wrap"},
    {extra_columns_action::error, "error"},
};

template <>
inline constexpr Keyword keywords<leading_delimiters_action>[] = {
    {leading_delimiters_action::keep, "keep"},
    {leading_delimiters_action::ignore, "ignore"},
    {leading_delimiters_action::error, "error"},
};

template <>
inline constexpr Keyword keywords<text_kind>[] = {
    {text_kind::char_, "char"},
    {text_kind::string, "string"},
};

template <>
inline constexpr Keyword keywords<datetime_kind>[] = {
    {datetime_kind::datetime, "datetime"},
    {datetime_kind::char_, "char"},
    {datetime_kind::exceldate, "exceldate"},
};

template <>
inline constexpr Keyword keywords<partial_field_action>[] = {
    {partial_field_action::keep, "keep"},       {partial_field_action::omitrow, "omitrow"},
    {partial_field_action::omitvar, "omitvar"}, {partial_field_action::fill, "fill"},
    {partial_field_action::wrap, "wrap"},       {partial_field_action::error, "error"},
};

}  // namespace textio::parser
