// From the host's values to the values of the options record. Every function checks and converts
// completely, or raises the error of its kind; widths alone are taken as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/array.hpp>

namespace textio::options {

// The keywords of an enumerated option, in the order of their codes.
using Choices = std::vector<const char*>;

std::uint64_t to_non_negative_integer(const hxArray* value);
std::uint64_t to_positive_integer(const hxArray* value);
bool to_logical(const hxArray* value);

// A text, or a list of texts, as the host has it; `option` names it in errors.
std::u16string to_text(const hxArray* value, const char* option);
std::vector<std::u16string> to_text_list(const hxArray* value, const char* option);

// The same for the delimiters, whose error has no argument.
std::vector<std::u16string> to_delimiters(const hxArray* value);

// The elements, bit for bit.
std::vector<std::uint64_t> to_widths(const hxArray* value);

// The code of the first of `choices` that the value is a beginning of, without regard to case.
std::size_t match_choice(const hxArray* value, const Choices& choices);

// "'keep', 'ignore', 'error'"
std::string format_choices(const Choices& choices);

// `text` with its backslash escapes replaced: \\ \b \n \r \t. A backslash at the end stays.
std::u16string unescape_option_string(std::u16string text, const char* option);
std::vector<std::u16string> unescape_option_strings(std::vector<std::u16string> texts,
                                                    const char* option);

}  // namespace textio::options
