// One setter per option, and a table of their names. A setter converts its whole value before it
// writes to the record, so a setter that fails changes nothing.
#include <vltextstream/options/set_parser_options.hpp>

#include <algorithm>
#include <iterator>
#include <locale>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <vltextstream/options/option_keywords.hpp>
#include <vltextstream/options/option_values.hpp>
#include <vltextstream/options/raise_option_error.hpp>

namespace textio::options {
namespace {

using Record = parser::options;
using option_setter = void (*)(const hxArray* value, Record& record);

// --- texts ---------------------------------------------------------------------------------------

void set_delimiter(const hxArray* value, Record& record) {
  record.delimiters = unescape_option_strings(to_delimiters(value), "Delimiter");
  record.detect_delimiters = false;
}

// "\r\n" alone stands for all default line endings.
void set_line_ending(const hxArray* value, Record& record) {
  auto endings = unescape_option_strings(to_text_list(value, "EndOfLine"), "EndOfLine");
  if (endings.size() == 1 && endings[0] == parser::crlf_string) {
    endings = parser::default_line_endings();
  }
  record.line_endings = std::move(endings);
}

void set_comment_style(const hxArray* value, Record& record) {
  auto markers = to_text_list(value, "CommentStyle");
  if (markers.size() > 2) raise_option_error(CommentStyleSize());
  record.comment_style = unescape_option_strings(std::move(markers), "CommentStyle");
}

void set_whitespace(const hxArray* value, Record& record) {
  record.whitespace = unescape_option_string(to_text(value, "Whitespace"), "Whitespace");
}

void set_encoding(const hxArray* value, Record& record) {
  record.encoding = to_text(value, "Encoding");
}

void set_date_locale(const hxArray* value, Record& record) {
  record.date_locale = to_text(value, "DateLocale");
}

void set_exp_chars(const hxArray* value, Record& record) {
  record.exp_chars = to_text(value, "ExpChars");
}

// Checked for a later import, and not kept.
void check_treat_as_missing(const hxArray* value, Record& /*record*/) {
  unescape_option_strings(to_text_list(value, "TreatAsMissing"), "TreatAsMissing");
}

// --- numbers and flags ---------------------------------------------------------------------------

void set_header_lines(std::uint64_t count, Record& record) {
  record.header_lines = count;
  record.detect_header_lines = false;
}

void set_num_header_lines(const hxArray* value, Record& record) {
  set_header_lines(to_non_negative_integer(value), record);
}

void set_data_line(const hxArray* value, Record& record) {
  set_header_lines(to_positive_integer(value) - 1, record);
}

void set_num_variables(const hxArray* value, Record& record) {
  record.num_variables = to_non_negative_integer(value);
  record.detect_num_variables = false;
}

template <std::uint64_t Record::*kMember>
void set_count(const hxArray* value, Record& record) {
  record.*kMember = to_non_negative_integer(value);
}

void set_variable_widths(const hxArray* value, Record& record) {
  record.variable_widths = to_widths(value);
}

template <bool Record::*kMember>
void set_flag(const hxArray* value, Record& record) {
  record.*kMember = to_logical(value);
}

void set_multiple_delims_as_one(const hxArray* value, Record& record) {
  using Consecutive = parser::consecutive_delimiters_action;
  using Leading = parser::leading_delimiters_action;
  const bool as_one = to_logical(value);
  record.consecutive_delimiters_rule = as_one ? Consecutive::join : Consecutive::split;
  record.leading_delimiters_rule = as_one ? Leading::ignore : Leading::keep;
}

void ignore_value(const hxArray* /*value*/, Record& /*record*/) {}

// --- keywords ------------------------------------------------------------------------------------

template <auto kMember>
void set_choice(const hxArray* value, Record& record) {
  using Enumeration = std::remove_reference_t<decltype(record.*kMember)>;
  record.*kMember = static_cast<Enumeration>(match_choice(value, parser::keywords<Enumeration>));
}

// --- the table -----------------------------------------------------------------------------------

struct NamedSetter {
  std::string_view name;
  option_setter setter;
};

constexpr NamedSetter kSetters[] = {
    {"Delimiter", set_delimiter},
    {"LineEnding", set_line_ending},
    {"EndOfLine", set_line_ending},
    {"CommentStyle", set_comment_style},
    {"Whitespace", set_whitespace},
    {"Encoding", set_encoding},
    {"DateLocale", set_date_locale},
    {"ExpChars", set_exp_chars},
    {"VariableWidths", set_variable_widths},
    {"NumHeaderLines", set_num_header_lines},
    {"DataLine", set_data_line},
    {"NumVariables", set_num_variables},
    {"VariableNamesLine", set_count<&Record::variable_names_line>},
    {"VariableUnitsLine", set_count<&Record::variable_units_line>},
    {"VariableDescriptionsLine", set_count<&Record::variable_descriptions_line>},
    {"RowNamesField", set_count<&Record::row_names_field>},
    {"CollectOutput", set_flag<&Record::collect_output>},
    {"IsFile", set_flag<&Record::is_file>},
    {"MultipleDelimsAsOne", set_multiple_delims_as_one},
    {"ParserType", set_choice<&Record::parser_type>},
    {"MissingRule", set_choice<&Record::missing_rule>},
    {"ImportErrorRule", set_choice<&Record::import_error_rule>},
    {"ConsecutiveDelimitersRule", set_choice<&Record::consecutive_delimiters_rule>},
    {"EmptyLineRule", set_choice<&Record::empty_line_rule>},
    {"ExtraColumnsRule", set_choice<&Record::extra_columns_rule>},
    {"LeadingDelimitersRule", set_choice<&Record::leading_delimiters_rule>},
    {"TextType", set_choice<&Record::text_type>},
    {"DatetimeType", set_choice<&Record::datetime_type>},
    {"PartialFieldRule", set_choice<&Record::partial_field_rule>},
    {"TreatAsMissing", check_treat_as_missing},
    {"TreatAsEmpty", check_treat_as_missing},
    {"ReturnOnError", ignore_value},
    {"EmptyValue", ignore_value},
};

// The setter for this name, null if there is none. Characters are compared after conversion to
// upper case by the global locale.
option_setter find_setter(std::string_view name) {
  const std::locale locale;
  const auto& letters = std::use_facet<std::ctype<char>>(locale);
  const auto is_named = [&](const NamedSetter& candidate) {
    return std::equal(
        candidate.name.begin(), candidate.name.end(), name.begin(), name.end(),
        [&letters](char x, char y) { return letters.toupper(x) == letters.toupper(y); });
  };
  const auto* const found = std::find_if(std::begin(kSetters), std::end(kSetters), is_named);
  return found == std::end(kSetters) ? nullptr : found->setter;
}

void set_option(const hxArray* name, const hxArray* value, Record& record) {
  const option_setter setter = find_setter(get_string(name));
  if (setter == nullptr) raise_option_error(UnknownParameter({get_ustring(name)}));
  setter(value, record);
}

}  // namespace

void set_parser_options(hxArray const** args, int count, parser::options& options) {
  if (count % 2 != 0) raise_option_error(OddNumberNVPairs());
  for (int i = 0; i + 1 < count; i += 2) set_option(args[i], args[i + 1], options);
}

}  // namespace textio::options
