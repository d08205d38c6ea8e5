// detect_layout: a whole detection in one call, with the full options record and a full answer.
// <vltextstream/detect.hpp> is the short form for UTF-8.
//
//   textio::standalone::Layout layout = textio::standalone::detect_layout("measurements.csv");
//   layout.delimiters;                 // {u","}
//   layout.num_variables;              // 4
//
//   // with the delimiter and the number of header lines known:
//   detect_layout("measurements.csv",
//                 {{"Delimiter", make_array(u";")}, {"NumHeaderLines", make_array(2)}});
//
// Units      line numbers count the lines of the text from 1. Widths count characters.
// Ownership  a layout is a plain value without views: copy it, keep it.
// Errors     FileError when the file cannot be opened or a read fails; what is not read, because no
//            line of it is needed, may be damaged. std::invalid_argument for an unknown encoding or
//            DateLocale, for a width of 0, and (as OptionProblem) for options that are refused;
//            std::runtime_error when the decoder fails; std::bad_alloc, also when memory runs out in
//            opening or reading the file.
// Cost       of a large file as much is read as the lines need: the first 131,072 characters if they
//            end in the first half of these, otherwise up to eight times as many, otherwise the
//            largest sample, 4,194,304 characters, and little more. Each byte is read once, except
//            that at most 64 KB are read again to find the encoding, and all of it where parts of it
//            are ill-formed. A text is copied.
// Threads    calls are independent of one another and may share their settings.
#pragma once

#include <cstdint>
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

  // The encoding, by any name that ICU knows. Without a value it is that of `options`, unless that
  // is the default, "UTF-8": then the encoding is detected.
  std::optional<std::string> encoding;

  // The caller's choices. When `detect_delimiters` is false, the delimiters are used as they are,
  // and no other layout is considered. The same holds for column widths, of at least one character
  // each, when `parser_type` is fixedwidth.
  parser::options options;

  // Fill Layout::trace.
  bool trace = false;

  // The most bytes that are read of a file, before and after decompression; FileError when more
  // would be needed for the sample. Only bytes that give no characters, such as endless shift
  // sequences, need so many: the default is 15 bytes for each character of the largest sample.
  std::uint64_t max_bytes = 67'108'864;

  // Who chooses the layout. What is given settles it without a choice if it is delimiters or widths. Where
  // header lines, comments, line endings, white space or a number of variables are given, the cascade
  // chooses, which obeys them.
  Judge judge = Judge::assessment;
};

// Settings with these options; an "Encoding" becomes `encoding`. Throws OptionProblem at the first
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
