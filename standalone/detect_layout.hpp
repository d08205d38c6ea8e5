// detect_layout: a whole detection in one call, with plain values for an answer.
//
//   textio::standalone::Layout layout = textio::standalone::detect_layout("measurements.csv");
//   layout.delimiters;                 // {u","}
//   layout.num_variables;              // 4
//
//   // with the layout given in part, and the number of header lines:
//   detect_layout("measurements.csv",
//                 {{"Delimiter", make_array(u";")}, {"NumHeaderLines", make_array(2)}});
//
// Units      lines count from 1 over the sampled lines: a quoted field with line endings inside is
//            one line, a comment is none. Widths count characters.
// Ownership  a layout holds no view of the text; it is a value to copy and keep.
// Errors     FileError when the file cannot be opened or a read fails; std::invalid_argument for an
//            encoding that is not known, widths that are no widths, and (as OptionProblem) options
//            that are refused; std::runtime_error when the decoder itself fails; std::bad_alloc.
// Cost       of a file no more than the first 4,194,304 characters are looked at, and little more
//            is read, each byte once; a prefix of at most 64 KB is read once more to find the
//            encoding. A text is copied.
// Threads    detections may run side by side, also with one and the same settings.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/standalone/array.hpp>

namespace textio::standalone {

// How fields are separated; the numbers are those of Strategy::mode().
enum class LayoutMode { delimited = 0, space_aligned = 1, fixed_width = 2, line_reader = 3 };

// Where the name of the encoding came from.
enum class EncodingFound {
  given,             // the settings name it
  byte_order_mark,   // the file starts with the mark
  valid_utf8,        // the bytes are well-formed UTF-8
  zero_bytes,        // UTF-16 or UTF-32 without a mark: zero bytes stand where they have them
  escape_sequences,  // the escape sequences of an ISO 2022 encoding
  statistics,        // the bytes above 127 read best this way
  fallback,          // nothing was found: taken for windows-1252, or for UTF-8 when the input can
                     // be read only once
  none               // the text was in memory
};

struct VLTEXTSTREAM_EXPORT DetectSettings {
  // Data lines to sample.
  unsigned long num_lines = 100;

  // Name of the encoding, as ICU knows it. Not engaged means the one of the options if that is
  // another than its default, "UTF-8", else "find it".
  std::optional<std::string> encoding;

  // The choices of the caller. Delimiters that are settled (`detect_delimiters` is false) are taken
  // as they are: no other layout is looked for. So are column widths, of at least one character
  // each, when `parser_type` is fixedwidth.
  parser::options options;

  // Fill in Layout::trace.
  bool trace = false;
};

struct VLTEXTSTREAM_EXPORT Layout {
  LayoutMode mode = LayoutMode::line_reader;

  // Delimited: the delimiters. Space-aligned: space and tab. Otherwise none.
  std::vector<std::u16string> delimiters;

  // Fixed-width: the column widths in characters. Otherwise none.
  std::vector<std::size_t> widths;

  // Lines before the data.
  std::size_t header_lines = 0;

  // The line that holds the names of the variables, if one does, and these names, trimmed and
  // without quotes. It is the last header line when that has as many fields as there are variables
  // and none of them is empty; otherwise the first line after the header when it has as many, all
  // of class text and no two alike, and not all columns below are of class text.
  std::optional<std::size_t> names_line;
  std::vector<std::u16string> names;

  // Columns, and the datatype class of each.
  std::size_t num_variables = 1;
  std::vector<DatatypeCode> classes;

  // How sure the encoding is: 1 when it was given, marked or proved, 0 when it is a guess without a
  // ground, between them for what statistics say.
  std::string encoding;
  EncodingFound encoding_found = EncodingFound::none;
  double encoding_confidence = 0.0;

  // Ill-formed parts that were met in decoding, each read as one U+FFFD.
  std::size_t ill_formed_parts = 0;

  // The first line ending in the sample, if there is one.
  std::optional<std::u16string> line_ending;

  // The lines the answer rests on, header and empty lines included, and the characters that were
  // at hand.
  std::size_t lines_sampled = 0;
  std::size_t characters_sampled = 0;

  // How the selection ended, and the filter that left a single candidate, if one did.
  detection::SelectionEnd end = detection::SelectionEnd::no_candidate;
  std::string decided_by;

  // On request: everything that was weighed.
  std::optional<detection::SelectionTrace> trace;
};

// Settings with these options, an "Encoding" among them included. Throws OptionProblem at the first
// option that is refused.
VLTEXTSTREAM_EXPORT DetectSettings settings_with(const std::vector<NameValue>& options);

// A file that cannot be read; what() names the file and the reason of the operating system.
class VLTEXTSTREAM_EXPORT FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
  ~FileError() override;
};

// The layout of the file at `path`, a path in the file system's own bytes.
VLTEXTSTREAM_EXPORT Layout detect_layout(const std::string& path,
                                         const DetectSettings& settings = {});

VLTEXTSTREAM_EXPORT Layout detect_layout(const std::string& path,
                                         std::initializer_list<NameValue> options);

// The layout of `text`. Characters outside the Basic Multilingual Plane may be surrogate pairs;
// `encoding` of the settings is not used.
VLTEXTSTREAM_EXPORT Layout detect_layout(std::u16string_view text,
                                         const DetectSettings& settings = {});
VLTEXTSTREAM_EXPORT Layout detect_layout(std::u16string_view text,
                                         std::initializer_list<NameValue> options);

}  // namespace textio::standalone
