// Option parsing in tests: pairs of a name and a value, records to compare as a whole, and the
// error that a call raised.
#pragma once

#include <cstddef>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/error_channel.hpp>
#include <vltextstream/options/set_parser_options.hpp>
#include <vltextstream/standalone/services/array.hpp>
#include "support/printing.hpp"

namespace textio::testing_support {

struct OptionPair {
  std::u16string name;
  standalone::Array value;
};

// Passes `pairs` to set_parser_options as the arrays of a host.
inline void apply_pairs(parser::options& record, const std::vector<OptionPair>& pairs) {
  std::vector<standalone::Array> names;
  std::vector<const hxArray*> args;
  for (const OptionPair& pair : pairs) {
    names.push_back(standalone::make_array(std::u16string_view(pair.name)));
    args.push_back(names.back().get());
    args.push_back(pair.value.get());
  }
  options::set_parser_options(args.data(), static_cast<int>(args.size()), record);
}

// The identifier of an error, then its arguments, each with its kind: narrow "a", wide u"a".
inline std::string readable(const MessageIdentifiedError& error) {
  struct Printer : boost::static_visitor<std::string> {
    std::string operator()(std::int64_t value) const { return std::to_string(value); }
    std::string operator()(const std::string& value) const { return '"' + value + '"'; }
    std::string operator()(const std::u16string& value) const {
      return "u\"" + testing_support::readable(std::u16string_view(value)) + '"';
    }
  };
  std::string out = error.identifier() + '(';
  for (std::size_t i = 0; i < error.arguments().size(); ++i) {
    if (i > 0) out += ", ";
    out += boost::apply_visitor(Printer(), error.arguments()[i]);
  }
  return out + ')';
}

// What `call` raised; "" if it returned.
template <typename Call>
std::string error_of(Call&& call) {
  try {
    call();
  } catch (const MessageIdentifiedError& error) {
    return readable(error);
  }
  return "";
}

inline std::string error_of_pairs(parser::options& record, const std::vector<OptionPair>& pairs) {
  return error_of([&] { apply_pairs(record, pairs); });
}

// "VELLUM:textio:textio:" and `name` with its arguments as readable() prints them.
inline std::string error_text(std::string_view name, std::string_view arguments = "") {
  return "VELLUM:textio:textio:" + std::string(name) + '(' + std::string(arguments) + ')';
}

// Every member of a record, one per line.
inline std::string contents_of(const parser::options& record) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  const auto texts = [&](const char* name, const std::vector<std::u16string>& list) {
    out << name << " =";
    for (const std::u16string& text : list) out << " '" << readable(text) << "'";
    out << '\n';
  };
  const auto text = [&](const char* name, const std::u16string& value) {
    out << name << " = '" << readable(value) << "'\n";
  };
  const auto number = [&](const char* name, auto value) {
    out << name << " = " << static_cast<std::uint64_t>(value) << '\n';
  };
  texts("delimiters", record.delimiters);
  texts("line_endings", record.line_endings);
  texts("reserved_strings", record.reserved_strings);
  texts("comment_style", record.comment_style);
  text("whitespace", record.whitespace);
  text("encoding", record.encoding);
  text("date_locale", record.date_locale);
  text("exp_chars", record.exp_chars);
  out << "variable_widths =";
  for (const std::uint64_t width : record.variable_widths) out << ' ' << width;
  out << '\n';
  number("header_lines", record.header_lines);
  number("num_variables", record.num_variables);
  number("variable_names_line", record.variable_names_line);
  number("variable_units_line", record.variable_units_line);
  number("variable_descriptions_line", record.variable_descriptions_line);
  number("row_names_field", record.row_names_field);
  number("parser_type", record.parser_type);
  number("missing_rule", record.missing_rule);
  number("import_error_rule", record.import_error_rule);
  number("consecutive_delimiters_rule", record.consecutive_delimiters_rule);
  number("empty_line_rule", record.empty_line_rule);
  number("extra_columns_rule", record.extra_columns_rule);
  number("leading_delimiters_rule", record.leading_delimiters_rule);
  number("text_type", record.text_type);
  number("datetime_type", record.datetime_type);
  number("partial_field_rule", record.partial_field_rule);
  number("detect_delimiters", record.detect_delimiters);
  number("detect_header_lines", record.detect_header_lines);
  number("detect_num_variables", record.detect_num_variables);
  number("is_file", record.is_file);
  number("collect_output", record.collect_output);
  return out.str();
}

// A record in which every member differs from its default; numbers and texts are all different.
inline parser::options unusual_record() {
  parser::options record;
  record.delimiters = {u";", u"||"};
  record.line_endings = {u"\n"};
  record.reserved_strings = {u"kept"};
  record.comment_style = {u"/*", u"*/"};
  record.whitespace = u"_";
  record.encoding = u"UTF-16LE";
  record.date_locale = u"de_DE";
  record.exp_chars = u"x";
  record.variable_widths = {3, 5};
  record.header_lines = 10;
  record.num_variables = 11;
  record.variable_names_line = 12;
  record.variable_units_line = 13;
  record.variable_descriptions_line = 14;
  record.row_names_field = 15;
  record.parser_type = parser::parser_kind::tabular;
  record.missing_rule = parser::row_rule::omitrow;
  record.import_error_rule = parser::row_rule::omitvar;
  record.consecutive_delimiters_rule = parser::consecutive_delimiters_action::join;
  record.empty_line_rule = parser::empty_line_action::error;
  record.extra_columns_rule = parser::extra_columns_action::wrap;
  record.leading_delimiters_rule = parser::leading_delimiters_action::ignore;
  record.text_type = parser::text_kind::string;
  record.datetime_type = parser::datetime_kind::exceldate;
  record.partial_field_rule = parser::partial_field_action::wrap;
  record.detect_delimiters = false;
  record.detect_header_lines = false;
  record.detect_num_variables = false;
  record.is_file = false;
  record.collect_output = true;
  return record;
}

}  // namespace textio::testing_support
