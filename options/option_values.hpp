// Converts values of the host to values of the options record. Every function checks and converts
// the whole value or raises its error; only widths are not checked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include <vltextstream/host/array.hpp>
#include <vltextstream/options/option_keywords.hpp>

namespace textio::options {

// The keywords of an enumerated option, in matching order.
using Choices = std::span<const parser::Keyword>;

std::uint64_t to_non_negative_integer(const hxArray* value);
std::uint64_t to_positive_integer(const hxArray* value);
bool to_logical(const hxArray* value);

// The unchanged text or list of texts; `option` is the name in errors.
std::u16string to_text(const hxArray* value, const char* option);
std::vector<std::u16string> to_text_list(const hxArray* value, const char* option);

// The same for the delimiters, whose error has no argument.
std::vector<std::u16string> to_delimiters(const hxArray* value);

// The elements as bit patterns.
std::vector<std::uint64_t> to_widths(const hxArray* value);

// The value of the first keyword that starts with the given text. Case does not matter.
std::uint8_t match_choice(const hxArray* value, Choices choices);

// "'keep', 'ignore', 'error'"
std::string format_choices(Choices choices);

// `text` with its backslash escapes replaced: \\ \b \n \r \t. A backslash at the end stays.
std::u16string unescape_option_string(std::u16string text, const char* option);
std::vector<std::u16string> unescape_option_strings(std::vector<std::u16string> texts,
                                                    const char* option);

}  // namespace textio::options
