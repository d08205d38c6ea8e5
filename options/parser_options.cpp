#include <vltextstream/options/parser_options.hpp>

#include <limits>
#include <span>

#include <vltextstream/options/option_keywords.hpp>

namespace textio::parser {
namespace {

std::string_view find_word(std::span<const Keyword> list, std::uint8_t value) {
  for (const Keyword& keyword : list) {
    if (keyword.value == value) return keyword.word;
  }
  return {};
}

template <typename Enumeration>
std::string_view word_of(Enumeration value) {
  return find_word(keywords<Enumeration>, static_cast<std::uint8_t>(value));
}

}  // namespace

const std::u16string default_whitespace = u" \b\t";
const std::u16string default_exp_chars = u"eEdD";
const std::u16string digit_chars = u"0123456789";
const std::u16string space_string = u" ";
const std::u16string lf_string = u"\n";
const std::u16string cr_string = u"\r";
const std::u16string crlf_string = u"\r\n";
const std::u16string nan_text = u"NaN";
const std::u16string inf_text = u"Inf";
const std::u16string empty_text;
const std::u16string lower_inf_text = u"inf";
const std::u16string minus_inf_text = u"-inf";
const std::u16string lower_nan_text = u"nan";
const std::u16string minus_nan_text = u"-nan";

const std::vector<std::u16string>& default_line_endings() {
  static const std::vector<std::u16string> list = {u"\r\n", u"\n", u"\r"};
  return list;
}

std::string_view to_string(parser_kind value) { return word_of(value); }
std::string_view to_string(row_rule value) { return word_of(value); }
std::string_view to_string(consecutive_delimiters_action value) { return word_of(value); }
std::string_view to_string(empty_line_action value) { return word_of(value); }
std::string_view to_string(extra_columns_action value) { return word_of(value); }
std::string_view to_string(leading_delimiters_action value) { return word_of(value); }
std::string_view to_string(text_kind value) { return word_of(value); }
std::string_view to_string(datetime_kind value) { return word_of(value); }
std::string_view to_string(partial_field_action value) { return word_of(value); }

options::options()
    : line_endings(default_line_endings()),
      whitespace(default_whitespace),
      encoding(u"UTF-8"),
      exp_chars(default_exp_chars),
      header_lines(std::numeric_limits<std::size_t>::max()) {}

options::options(const options&) = default;
options::options(options&&) noexcept = default;
options& options::operator=(const options&) = default;
options& options::operator=(options&&) noexcept = default;
options::~options() = default;

}  // namespace textio::parser
