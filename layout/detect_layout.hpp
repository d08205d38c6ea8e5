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
//            DateLocale, for a width of 0, for settings that contradict one another, (as
//            OptionProblem) for options that are refused, and (as GivenMismatch) for lines and
//            columns that the text does not have;
//            std::runtime_error when the decoder fails; std::bad_alloc, also when memory runs out in
//            opening or reading the file.
// Cost       of a large file as much is read as the lines need: the first 131,072 characters if they
//            end in the first half of these, otherwise up to eight times as many, otherwise the
//            largest sample, 4,194,304 characters, and little more. Each byte is read once, except
//            that at most 64 KB are read again to find the encoding, and all of it where parts of it
//            are ill-formed. The last 64 KB of a large file are read as well. A text is copied.
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
#include <vltextstream/layout/given_mismatch.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/layout/spread_look.hpp>
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

  // Fill Layout::trace and Layout::considered.
  bool trace = false;

  // The most bytes that are read of a file, before and after decompression; FileError when more
  // would be needed for the sample. Only bytes that give no characters, such as endless shift
  // sequences, need so many: the default is 15 bytes for each character of the largest sample.
  std::uint64_t max_bytes = 67'108'864;

  // Say how a table is written and what its columns hold also where its layout is given or the cascade chooses it. It
  // takes longer than what the cascade does; the assessment always says it.
  bool describe_columns = true;

  // Who chooses the layout. Given delimiters or widths settle it without a choice. The cascade
  // chooses, because only it obeys them, if line endings other than "\r\n", "\n" and "\r" are given, if white
  // space is given that has no blank or has characters that are not white space, or if a parser
  // type is given. The judge obeys all else, and its confidence is then among what is left to choose.
  //
  // What follows is obeyed by the judge alone; `decimal`, `grouping` and `missing` also by the description of the
  // columns of any other layout.
  Judge judge = Judge::assessment;

  // What is between the name of a group of columns and the name of a column below it: "Temperature.min".
  std::u16string name_separator = u".";

  // Look for a footer at the end of a text that goes on after the sample. Of a file that can be read there at
  // once, the last 64 KB are read, if max_bytes allows. Nothing that goes wrong there is an error.
  bool look_at_end = true;

  // Where to look besides the start of the text. SampleFrom::spread also looks at several places after the sample and
  // fills in Layout::spread, whether the judge or the cascade chose the layout. Of a file that can be read there at once, at most 576 KB are read for it, if max_bytes allows; nothing that goes wrong there is an error.
  SampleFrom sample = SampleFrom::start;

  // The lines of the text that hold the names and the units; 0: no line holds them. Without a value
  // it is the line in `options`, unless that is 0. What precedes the last of these lines, and the one
  // in options.variable_descriptions_line, is not searched for data. GivenMismatch if the text has no
  // such line, or if it is more than three lines below the last of given header lines.
  std::optional<std::size_t> names_line;
  std::optional<std::size_t> units_line;

  // What quotes fields, and what escapes a quote besides a second one: a backslash. U+0000: nothing does.
  std::optional<char16_t> quote;
  std::optional<char16_t> escape;

  // The decimal mark of numbers, and the mark between groups of their digits: the columns are read with these.
  std::optional<char16_t> decimal;
  std::optional<char16_t> grouping;

  // Cells with these texts are missing values: they do not count for the class of a column.
  std::vector<std::u16string> missing;
};

// Settings with these options. Throws OptionProblem at the first option that is refused.
VLTEXTSTREAM_EXPORT DetectSettings settings_with(const std::vector<NameValue>& options);

// Applies one option to the record of `settings`. "Encoding", "VariableNamesLine", "VariableUnitsLine",
// "TreatAsMissing" and "TreatAsEmpty" become members of the settings as well.
VLTEXTSTREAM_EXPORT void apply_option(DetectSettings& settings, const NameValue& option);

// Throws std::invalid_argument for settings that cannot be obeyed or contradict one another, as every detection
// does. The message begins with the name of an option, or of a member in its spelling: "Quote: Expected ...".
VLTEXTSTREAM_EXPORT void check_settings(const DetectSettings& settings);

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
