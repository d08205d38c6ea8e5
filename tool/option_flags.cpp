#include "tool/option_flags.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string_view>
#include <utility>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <vltextstream/options/option_keywords.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>

#include "tool/option_words.hpp"
#include "tool/safe_text.hpp"

namespace textio::tool {
namespace {

using standalone::Array;
using standalone::DetectSettings;
using standalone::from_utf8;
using standalone::make_array;

std::string in_lower_case(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

// The whole of `text` as a number.
template <typename Number>
bool parse(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, problem] = std::from_chars(text.data(), end, number);
  return problem == std::errc() && stop == end;
}

Array to_count(const std::string& text) {
  double number = 0;
  return parse(text, number) ? make_array(number) : make_array(from_utf8(text));
}

Array to_logical(const std::string& text) {
  const std::string word = in_lower_case(text);
  if (word == "true") return make_array(true);
  if (word == "false") return make_array(false);
  return make_array(from_utf8(text));
}

Array to_widths(std::string_view text) {
  std::vector<std::uint64_t> widths;
  while (true) {
    const std::size_t comma = std::min(text.find(','), text.size());
    std::uint64_t width = 0;
    if (!parse(text.substr(0, comma), width) || width == 0) {
      throw std::invalid_argument("Expected whole numbers, 1 or larger, separated by commas.");
    }
    widths.push_back(width);
    if (comma == text.size()) return make_array(widths);
    text.remove_prefix(comma + 1);
  }
}

Array to_text_list(const std::vector<std::string>& typed) {
  if (typed.size() == 1) return make_array(from_utf8(typed[0]));
  std::vector<std::u16string> texts;
  std::transform(typed.begin(), typed.end(), std::back_inserter(texts), from_utf8);
  return standalone::make_text_cell(texts);
}

// Makes the array while the JSON is read. A tree of JSON values would allocate when it is destroyed,
// and end the program where memory is short.
class ArrayReader : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit ArrayReader(ValueKind kind) : kind_(kind) {}

  // The whole value; null when there is none.
  Array take() { return std::move(whole_); }

  bool null() override { return add(standalone::make_empty_array()); }
  bool boolean(bool value) override { return add(make_array(value)); }
  bool number_integer(std::int64_t value) override {
    return add_number(static_cast<double>(value));
  }
  bool number_unsigned(std::uint64_t value) override {
    if (!lists_.empty()) lists_.back().whole_numbers.push_back(value);
    return add_number(static_cast<double>(value));
  }
  bool number_float(double value, const std::string& /*typed*/) override {
    return add_number(value);
  }
  bool string(std::string& value) override { return add(make_array(from_utf8(value))); }
  bool binary(nlohmann::json::binary_t& /*bytes*/) override { return false; }

  bool start_object(std::size_t /*size*/) override { return start_list(); }
  bool key(std::string& /*name*/) override { return true; }
  bool end_object() override {
    lists_.pop_back();
    return null();
  }

  bool start_array(std::size_t /*size*/) override { return start_list(); }
  bool end_array() override {
    const List list = std::move(lists_.back());
    lists_.pop_back();
    return add(array_of(list));
  }

  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

 private:
  struct List {
    std::vector<Array> elements;
    std::vector<double> numbers;               // the elements that are numbers
    std::vector<std::uint64_t> whole_numbers;  // those without a sign and a fraction
  };

  bool start_list() {
    constexpr std::size_t kDeepestNesting = 100;
    lists_.emplace_back();
    return lists_.size() <= kDeepestNesting;
  }

  bool add(Array value) {
    if (lists_.empty()) {
      whole_ = std::move(value);
    } else {
      lists_.back().elements.push_back(std::move(value));
    }
    return true;
  }

  bool add_number(double value) {
    if (!lists_.empty()) lists_.back().numbers.push_back(value);
    return add(make_array(value));
  }

  Array array_of(const List& list) const {
    const std::size_t size = list.elements.size();
    const bool are_widths = kind_ == ValueKind::widths && lists_.empty();
    if (size > 0 && are_widths && list.whole_numbers.size() == size) {
      return make_array(list.whole_numbers);
    }
    if (size > 0 && list.numbers.size() == size) return make_array(list.numbers);
    return standalone::make_cell(list.elements);
  }

  ValueKind kind_;
  std::vector<List> lists_;  // those that are open, the innermost last; an object is one
  Array whole_;
};

template <typename Enumeration>
std::vector<std::string> words_of_enumeration() {
  std::vector<std::string> words;
  for (const parser::Keyword& keyword : parser::keywords<Enumeration>)
    words.emplace_back(keyword.word);
  return words;
}

// An option whose values are the keywords of an enumeration.
template <typename Enumeration>
OptionFlag one_of(const char* name, bool for_import = false) {
  std::vector<std::string> words = words_of_enumeration<Enumeration>();
  return {name, ValueKind::text, "WORD", either_of(words), for_import, words};
}

std::string delimiters_as_one_help() {
  using Consecutive = parser::consecutive_delimiters_action;
  using Leading = parser::leading_delimiters_action;
  return fmt::format("true for {} and {} in the two rules above, false for {} and {}",
                     to_string(Consecutive::join), to_string(Leading::ignore),
                     to_string(Consecutive::split), to_string(Leading::keep));
}

std::string widths_help() {
  return fmt::format(
      "The columns have these widths: with --parser-type {}, look for no other layout",
      to_string(parser::parser_kind::fixedwidth));
}

// --- settings ------------------------------------------------------------------------------------

[[noreturn]] void refuse(const char* expected, const std::string& typed) {
  throw std::invalid_argument(fmt::format("Expected {}, got '{}'.", expected, shortened(typed)));
}

// The one character that was typed.
char16_t to_character(const char* expected, const std::string& typed) {
  const std::u16string units = from_utf8(typed == "\\t" ? "\t" : typed);
  if (units.size() != 1) refuse(expected, typed);
  return units[0];
}

void set_quote(const std::string& typed, DetectSettings& settings) {
  constexpr const char* kExpected = "one character, or double, single or none";
  if (typed == "double") {
    settings.quote = u'"';
  } else if (typed == "single") {
    settings.quote = u'\'';
  } else {
    settings.quote = typed == "none" ? u'\0' : to_character(kExpected, typed);
  }
}

void set_escape(const std::string& typed, DetectSettings& settings) {
  if (typed != "backslash" && typed != "doubled") refuse("backslash or doubled", typed);
  settings.escape = typed == "backslash" ? u'\\' : u'\0';
}

void set_names_line(const std::string& typed, DetectSettings& settings) {
  std::size_t line = 0;
  if (!parse(typed, line)) refuse("a whole number, 0 or larger", typed);
  settings.names_line = line;
}

void set_decimal(const std::string& typed, DetectSettings& settings) {
  settings.decimal = to_character("one character", typed);
}

void set_grouping(const std::string& typed, DetectSettings& settings) {
  settings.grouping = to_character("one character", typed);
}

struct NamedSetting {
  std::string_view name;
  void (*set)(const std::string& typed, DetectSettings& settings);
};

constexpr NamedSetting kSettings[] = {
    {"Quote", set_quote},     {"Escape", set_escape},     {"NamesLine", set_names_line},
    {"Decimal", set_decimal}, {"Grouping", set_grouping},
};

}  // namespace

void apply_setting(const std::string& name, const std::string& typed, DetectSettings& settings) {
  for (const NamedSetting& setting : kSettings) {
    if (name == setting.name) setting.set(typed, settings);
  }
}

std::string delimiter_named(const std::string& typed) {
  for (const char delimiter : {',', '\t', ';', ' ', '|', ':'}) {
    std::string text(1, delimiter);
    if (typed == marker_name(text)) return text;
  }
  return typed;
}

const std::vector<OptionFlag>& option_flags() {
  using Kind = ValueKind;
  constexpr bool kForImport = true;
  static const std::vector<OptionFlag> flags = {
      {"Delimiter", Kind::text_list, "TEXT",
       "Fields are separated by TEXT: look for no other layout; may be repeated. TEXT may be tab, "
       "comma, semicolon, space, bar or colon"},
      {"Quote", Kind::setting, "C", "Fields are quoted by the character C, double, single or none"},
      {"Escape", Kind::setting, "WORD",
       "A quote in a quoted field is escaped by a backslash, or only doubled"},
      {"NamesLine", Kind::setting, "N", "The same as --variable-names-line"},
      {"NumHeaderLines", Kind::count, "N", "N lines come before the data"},
      {"DataLine", Kind::count, "N", "The data begins in line N"},
      {"NumVariables", Kind::count, "N", "Prefer layouts with N columns"},
      {"CommentStyle", Kind::text_list, "TEXT",
       "Lines that begin with TEXT are comments; a second marker, for the end of a block, is "
       "accepted and not used"},
      {"Encoding", Kind::text, "NAME",
       "The files have this encoding, such as UTF-8, windows-1252 or Shift_JIS; auto, the default, "
       "finds it"},
      {"LineEnding", Kind::text_list, "TEXT", "Lines end with TEXT; may be repeated"},
      {"EndOfLine", Kind::text_list, "TEXT", "The same as --line-ending"},
      {"Whitespace", Kind::text, "CHARS", "These characters are trimmed around fields"},
      one_of<parser::parser_kind>("ParserType"),
      {"VariableWidths", Kind::widths, "N,N,...", widths_help()},
      {"VariableNamesLine", Kind::count, "N",
       "The names of the variables are in line N of the file, or in none: 0"},
      {"VariableUnitsLine", Kind::count, "N", "The units are in line N, or in none: 0"},
      {"VariableDescriptionsLine", Kind::count, "N", "The descriptions are in line N"},
      {"RowNamesField", Kind::count, "N",
       "The names of the rows are field N, which needs no name itself"},
      {"TreatAsMissing", Kind::text_list, "TEXT",
       "TEXT means a missing value, and does not count for the class of a column; may be repeated"},
      {"TreatAsEmpty", Kind::text_list, "TEXT", "The same as --treat-as-missing"},
      {"Decimal", Kind::setting, "C", "The decimal mark of the numbers"},
      {"Grouping", Kind::setting, "C", "The mark between groups of digits"},
      {"DateLocale", Kind::text, "NAME",
       "Names of months and weekdays may also be those of this locale, such as de_DE"},
      {"ExpChars", Kind::text, "CHARS", "These characters mark an exponent, not e, E, d and D"},
      one_of<parser::consecutive_delimiters_action>("ConsecutiveDelimitersRule", kForImport),
      one_of<parser::leading_delimiters_action>("LeadingDelimitersRule", kForImport),
      {"MultipleDelimsAsOne",
       Kind::logical,
       "BOOL",
       delimiters_as_one_help(),
       kForImport,
       {"true", "false"}},
      one_of<parser::empty_line_action>("EmptyLineRule", kForImport),
      one_of<parser::extra_columns_action>("ExtraColumnsRule", kForImport),
      one_of<parser::partial_field_action>("PartialFieldRule", kForImport),
      one_of<parser::row_rule>("MissingRule", kForImport),
      one_of<parser::row_rule>("ImportErrorRule", kForImport),
      one_of<parser::text_kind>("TextType", kForImport),
      one_of<parser::datetime_kind>("DatetimeType", kForImport),
      {"CollectOutput", Kind::logical, "BOOL", "true or false", kForImport, {"true", "false"}},
      {"IsFile", Kind::logical, "BOOL", "true or false", kForImport, {"true", "false"}},
      {"ReturnOnError", Kind::text, "ANY", "Accepted and ignored", kForImport},
      {"EmptyValue", Kind::text, "ANY", "Accepted and ignored", kForImport},
  };
  return flags;
}

std::string flag_of(const std::string& name) {
  std::string flag = "-";
  for (const char c : name) {
    const bool begins_word = std::isupper(static_cast<unsigned char>(c)) != 0;
    if (begins_word) flag += '-';
    flag += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  return flag;
}

const OptionFlag* find_option(const std::string& name) {
  for (const OptionFlag& flag : option_flags()) {
    if (in_lower_case(flag.name) == in_lower_case(name)) return &flag;
  }
  return nullptr;
}

Array json_to_array(ValueKind kind, const std::string& typed) {
  ArrayReader reader(kind);
  if (nlohmann::json::sax_parse(typed, &reader)) return reader.take();
  throw std::invalid_argument(
      fmt::format("Expected a JSON value after ':=', got '{}'.", shortened(typed)));
}

Array to_array(ValueKind kind, const std::vector<std::string>& typed) {
  switch (kind) {
    case ValueKind::text_list:
      return to_text_list(typed);
    case ValueKind::count:
      return to_count(typed.back());
    case ValueKind::logical:
      return to_logical(typed.back());
    case ValueKind::widths:
      return to_widths(typed.back());
    case ValueKind::text:
    case ValueKind::setting:
      break;
  }
  return make_array(from_utf8(typed.back()));
}

}  // namespace textio::tool
