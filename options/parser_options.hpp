// parser::options: the one record that carries every choice of the caller into a detection.
//
//   textio::parser::options options;
//   options.comment_style = {u"%"};
//   textio::detection::StrategySelector selector(options);
//
// A plain value: copy it, change its members. The record checks nothing.
//
// Units      texts are UTF-16; widths count code units, line and field numbers count from 1.
// Ownership  strategies and selectors keep a pointer to the record they were made from: it must
//            outlive them.
// Threads    may be read by any number of threads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::parser {

// The enumerators bear the names of the option values; `char_` stands for "char", a word that C++
// keeps for itself.
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

// The texts that the record's defaults and the handling of lines and numbers share.
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

// "\r\n", "\n", "\r": the two-unit ending first, so that it wins over its first unit alone.
VLTEXTSTREAM_EXPORT const std::vector<std::u16string>& default_line_endings();

// The order of the members is part of the interface.
struct VLTEXTSTREAM_EXPORT options {
  options();
  options(const options&);
  options(options&&) noexcept;
  options& operator=(const options&);
  options& operator=(options&&) noexcept;
  ~options();

  // Field delimiters asked for, each of one or more characters. A selection builds its candidates
  // from the text alone; DelimitedStrategy(options) is built from these.
  std::vector<std::u16string> delimiters;

  // Sequences that end a line, in the order in which they are tried.
  std::vector<std::u16string> line_endings;

  // Carried along; nothing reads it.
  std::vector<std::u16string> reserved_strings;

  // Start marker of comment lines; a second entry, the end marker of a block, is not looked for.
  std::vector<std::u16string> comment_style;

  // The set of characters that count as white space around fields.
  std::u16string whitespace;

  // Name of the file's encoding, for whoever opens the file.
  std::u16string encoding;

  // Name of a locale for date recognition. Carried along; the host may act on it.
  std::u16string date_locale;

  // The set of characters accepted as exponent marker, for the import that follows. The datatype
  // classes know the default set alone.
  std::u16string exp_chars;

  // Column widths of a fixed-width file, for whoever builds a FixedWidthStrategy.
  std::vector<std::uint64_t> variable_widths;

  // Lines before the data; all bits set while it is not known.
  std::size_t header_lines;

  // Variables that the caller expects; read while `detect_num_variables` is false.
  std::uint64_t num_variables = 0;

  // Lines and a field as the caller gives them; carried for the import that follows.
  std::uint64_t variable_names_line = 0;
  std::uint64_t variable_units_line = 0;
  std::uint64_t variable_descriptions_line = 0;
  std::uint64_t row_names_field = 0;

  // The parser family. A selection does not read it; detect_layout obeys widths with fixedwidth.
  parser_kind parser_type{};

  // Rules for the import that follows; a detection does not read them.
  row_rule missing_rule{};
  row_rule import_error_rule{};
  consecutive_delimiters_action consecutive_delimiters_rule{};
  empty_line_action empty_line_rule{};
  extra_columns_action extra_columns_rule{};
  leading_delimiters_action leading_delimiters_rule{};
  text_kind text_type{};
  datetime_kind datetime_type{};
  partial_field_action partial_field_rule{};

  // True while the caller has not settled the delimiters, header lines, number of variables.
  bool detect_delimiters = true;
  bool detect_header_lines = true;
  bool detect_num_variables = true;

  // Carried for the host's import.
  bool is_file = true;
  bool collect_output = false;
};

}  // namespace textio::parser
