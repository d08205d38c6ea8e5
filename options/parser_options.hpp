// parser::options: the record with every choice of the caller for a detection.
//
//   textio::parser::options options;
//   options.comment_style = {u"%"};
//   textio::detection::StrategySelector selector(options);
//
// A plain value: copy it, change its members. The record does not check them.
//
// Units      texts are UTF-16; widths count code units; line and field numbers start at 1.
// Ownership  strategies and selectors keep a pointer to their record, which must outlive them.
// Threads    may be read by any number of threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::parser {

// The enumerators have the names of their keywords; `char_` is "char", which C++ reserves.
enum class parser_kind : std::uint8_t { delimited = 0, fixedwidth = 1, tabular = 2 };
enum class row_rule : std::uint8_t { fill = 0, omitrow = 1, omitvar = 2, error = 3 };
enum class consecutive_delimiters_action : std::uint8_t { split = 0, join = 1, error = 2 };
enum class empty_line_action : std::uint8_t { skip = 0, read = 1, error = 2 };
enum class extra_columns_action : std::uint8_t { addvars = 0, ignore = 1, wrap = 2, error = 3 };
enum class leading_delimiters_action : std::uint8_t { keep = 0, ignore = 1, error = 2 };
enum class text_kind : std::uint8_t { char_ = 0, string = 1 };
enum class datetime_kind : std::uint8_t { datetime = 0, char_ = 1, exceldate = 2 };
enum class partial_field_action : std::uint8_t {
  keep = 0,
  omitrow = 1,
  omitvar = 2,
  fill = 3,
  wrap = 4,
  error = 5
};

// The keyword of a value, as set_parser_options takes it; empty for a number without enumerator.
// options/option_keywords.hpp lists the keywords of each enumeration.
VLTEXTSTREAM_EXPORT std::string_view to_string(parser_kind value);
VLTEXTSTREAM_EXPORT std::string_view to_string(row_rule value);
VLTEXTSTREAM_EXPORT std::string_view to_string(consecutive_delimiters_action value);
VLTEXTSTREAM_EXPORT std::string_view to_string(empty_line_action value);
VLTEXTSTREAM_EXPORT std::string_view to_string(extra_columns_action value);
VLTEXTSTREAM_EXPORT std::string_view to_string(leading_delimiters_action value);
VLTEXTSTREAM_EXPORT std::string_view to_string(text_kind value);
VLTEXTSTREAM_EXPORT std::string_view to_string(datetime_kind value);
VLTEXTSTREAM_EXPORT std::string_view to_string(partial_field_action value);

// Texts that are defaults of the record, or used for lines and numbers.
VLTEXTSTREAM_EXPORT extern const std::u16string default_whitespace;  // space, backspace, tab
VLTEXTSTREAM_EXPORT extern const std::u16string default_exp_chars;   // "eEdD"
VLTEXTSTREAM_EXPORT extern const std::u16string digit_chars;         // "0123456789"
VLTEXTSTREAM_EXPORT extern const std::u16string space_string;
VLTEXTSTREAM_EXPORT extern const std::u16string lf_string;
VLTEXTSTREAM_EXPORT extern const std::u16string cr_string;
VLTEXTSTREAM_EXPORT extern const std::u16string crlf_string;
VLTEXTSTREAM_EXPORT extern const std::u16string nan_text;  // "NaN"
VLTEXTSTREAM_EXPORT extern const std::u16string inf_text;  // "Inf"
VLTEXTSTREAM_EXPORT extern const std::u16string empty_text;
VLTEXTSTREAM_EXPORT extern const std::u16string lower_inf_text;  // "inf"
VLTEXTSTREAM_EXPORT extern const std::u16string minus_inf_text;  // "-inf"
VLTEXTSTREAM_EXPORT extern const std::u16string lower_nan_text;  // "nan"
VLTEXTSTREAM_EXPORT extern const std::u16string minus_nan_text;  // "-nan"

// "\r\n", "\n", "\r". The longest comes first, so that it wins over its own first code unit.
VLTEXTSTREAM_EXPORT const std::vector<std::u16string>& default_line_endings();

// The order of the members is part of the interface.
struct VLTEXTSTREAM_EXPORT options {
  options();
  options(const options&);
  options(options&&) noexcept;
  options& operator=(const options&);
  options& operator=(options&&) noexcept;
  ~options();

  // The given field delimiters, each of one or more characters. A selection builds its candidates
  // from the text alone; DelimitedStrategy(options) uses these.
  std::vector<std::u16string> delimiters;

  // Sequences that end a line, in matching order.
  std::vector<std::u16string> line_endings;

  // Not read.
  std::vector<std::u16string> reserved_strings;

  // The start marker of comment lines. A second entry, the end marker of a block, is not used.
  std::vector<std::u16string> comment_style;

  // The characters that are white space around fields.
  std::u16string whitespace;

  // The name of the file's encoding, for the caller that opens the file.
  std::u16string encoding;

  // The name of a locale for date recognition, for the host.
  std::u16string date_locale;

  // The characters that mark an exponent. The strategies use only the default ones; detect_layout
  // classifies columns by these where its judge chooses the layout.
  std::u16string exp_chars;

  // Column widths of a fixed-width file, for the caller that builds a FixedWidthStrategy.
  std::vector<std::uint64_t> variable_widths;

  // The number of lines before the data; all bits set if not known.
  std::size_t header_lines;

  // The expected number of variables; read if `detect_num_variables` is false.
  std::uint64_t num_variables = 0;

  // Given lines of the text and a given field, 0 if none is. A selection does not read them; the
  // judge of detect_layout obeys them.
  std::uint64_t variable_names_line = 0;
  std::uint64_t variable_units_line = 0;
  std::uint64_t variable_descriptions_line = 0;
  std::uint64_t row_names_field = 0;

  // The parser family. A selection does not read it; detect_layout uses given widths if it is
  // fixedwidth.
  parser_kind parser_type{};

  // Rules for a later import; a detection does not read them.
  row_rule missing_rule{};
  row_rule import_error_rule{};
  consecutive_delimiters_action consecutive_delimiters_rule{};
  empty_line_action empty_line_rule{};
  extra_columns_action extra_columns_rule{};
  leading_delimiters_action leading_delimiters_rule{};
  text_kind text_type{};
  datetime_kind datetime_type{};
  partial_field_action partial_field_rule{};

  // False once the caller has given the delimiters, header lines, number of variables.
  bool detect_delimiters = true;
  bool detect_header_lines = true;
  bool detect_num_variables = true;

  // For the import of the host.
  bool is_file = true;
  bool collect_output = false;
};

}  // namespace textio::parser
