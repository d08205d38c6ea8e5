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
//            encoding or a DateLocale that is not known, widths that are no widths, and (as
//            OptionProblem) options that are refused; std::runtime_error when the decoder itself
//            fails; std::bad_alloc, also where memory runs out in opening or reading the file.
// Cost       of a file no more than the first 4,194,304 characters are looked at, and little more
//            is read, each byte once; a prefix of at most 64 KB is read once more to find the
//            encoding. A text is copied.
// Threads    detections may run side by side, also with one and the same settings.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/standalone/services/array.hpp>

namespace textio::standalone {

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

// Settings with these options, an "Encoding" among them included. Throws OptionProblem at the first
// option that is refused.
VLTEXTSTREAM_EXPORT DetectSettings settings_with(const std::vector<NameValue>& options);

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
