#include <vltextstream/options/option_values.hpp>

#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

#include <vltextstream/options/raise_option_error.hpp>

namespace textio::options {
namespace {

using std::size_t;

// The whole number in a double, limited to the largest unsigned number.
std::uint64_t to_unsigned(double value) {
  constexpr double kBeyond = 18446744073709551616.0;  // 2^64
  return value < kBeyond ? static_cast<std::uint64_t>(value)
                         : std::numeric_limits<std::uint64_t>::max();
}

bool is_whole_scalar(const hxArray* value) {
  return hxIsScalar(value) && hxIsDouble(value) && is_integer(hxGetScalar(value));
}

// A char array of one row, or the empty text.
bool is_char_row(const hxArray* value) {
  if (!hxIsChar(value) || hxGetNumberOfDimensions(value) != 2) return false;
  return hxGetM(value) == 1 || (hxGetM(value) == 0 && hxGetN(value) == 0);
}

bool is_cell_of_char_rows(const hxArray* value) {
  if (!hxIsCell(value)) return false;
  for (size_t i = 0; i < get_number_of_elements(value); ++i) {
    const hxArray* const cell = hxGetCell(value, i);
    if (cell == nullptr || !is_char_row(cell)) return false;
  }
  return true;
}

bool is_text_list(const hxArray* value) {
  return is_char_row(value) || is_cell_of_char_rows(value);
}

char16_t to_lower(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

// Whether the value is `beginning`, the start of a keyword. Case does not matter.
bool matches_keyword(const hxArray* value, std::string_view beginning) {
  if (!hxIsChar(value) || get_number_of_elements(value) != beginning.size()) return false;
  const char16_t* const units = hxGetChars(value);
  for (size_t i = 0; i < beginning.size(); ++i) {
    const auto wanted = static_cast<char16_t>(static_cast<unsigned char>(beginning[i]));
    if (units[i] >= 0x80 || to_lower(units[i]) != to_lower(wanted)) return false;
  }
  return true;
}

// The character for the letter after a backslash, 0 if it is none of the five escapes.
char16_t escaped(char16_t unit) {
  switch (unit) {
    case u'\\':
      return u'\\';
    case u'b':
      return u'\b';
    case u'n':
      return u'\n';
    case u'r':
      return u'\r';
    case u't':
      return u'\t';
    default:
      return 0;
  }
}

}  // namespace

std::uint64_t to_non_negative_integer(const hxArray* value) {
  if (!is_whole_scalar(value) || !(hxGetScalar(value) >= 0.0)) {
    raise_option_error(ExpectedNonNegativeScalarInt());
  }
  return to_unsigned(hxGetScalar(value));
}

std::uint64_t to_positive_integer(const hxArray* value) {
  if (!is_whole_scalar(value) || !(hxGetScalar(value) > 0.0)) {
    raise_option_error(ExpectedPositiveScalarInt());
  }
  return to_unsigned(hxGetScalar(value));
}

bool to_logical(const hxArray* value) {
  if (!hxIsLogicalScalar(value)) raise_option_error(ExpectedScalarLogical());
  return hxGetLogicals(value)[0] != 0;
}

std::u16string to_text(const hxArray* value, const char* option) {
  if (!is_char_row(value)) raise_option_error(InvalidStringProperty({std::string(option)}));
  return get_ustring(value);
}

std::vector<std::u16string> to_text_list(const hxArray* value, const char* option) {
  if (!is_text_list(value)) {
    raise_option_error(InvalidStringOrCellStringProperty({std::string(option)}));
  }
  return get_ustring_array(value);
}

std::vector<std::u16string> to_delimiters(const hxArray* value) {
  if (!is_text_list(value)) raise_option_error(DelimiterType());
  return get_ustring_array(value);
}

// Elements narrower than 64 bits fill the low bits. Nothing past the end of the array is read.
std::vector<std::uint64_t> to_widths(const hxArray* value) {
  const auto* const bytes = static_cast<const unsigned char*>(hxGetData(value));
  if (bytes == nullptr) return {};
  const size_t size = hxGetElementSize(value);
  std::vector<std::uint64_t> widths(get_number_of_elements(value), 0);
  for (size_t i = 0; i < widths.size(); ++i) {
    std::memcpy(&widths[i], bytes + i * size, size < sizeof widths[i] ? size : sizeof widths[i]);
  }
  return widths;
}

std::uint8_t match_choice(const hxArray* value, Choices choices) {
  const size_t given = get_number_of_elements(value);
  for (const parser::Keyword& choice : choices) {
    if (given > 0 && matches_keyword(value, choice.word.substr(0, given))) return choice.value;
  }
  raise_option_error(BadTextFlag({format_choices(choices)}));
}

std::string format_choices(Choices choices) {
  std::string text;
  for (const parser::Keyword& choice : choices) {
    if (!text.empty()) text += ", ";
    text += '\'' + std::string(choice.word) + '\'';
  }
  return text;
}

// One pass that moves the characters to keep to the front. The whole text is read before an unknown
// escape is refused.
std::u16string unescape_option_string(std::u16string text, const char* option) {
  size_t kept = 0;
  bool is_valid = true;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool is_escape = text[i] == u'\\' && i + 1 < text.size();
    const char16_t unit = is_escape ? escaped(text[++i]) : text[i];
    if (is_escape && unit == 0) {
      is_valid = false;
    } else {
      text[kept++] = unit;
    }
  }
  if (!is_valid) raise_option_error(InvalidEscapeSequence({std::string(option)}));
  text.resize(kept);
  return text;
}

std::vector<std::u16string> unescape_option_strings(std::vector<std::u16string> texts,
                                                    const char* option) {
  for (std::u16string& text : texts) text = unescape_option_string(std::move(text), option);
  return texts;
}

}  // namespace textio::options
