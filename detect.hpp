// Finds out how the table in a text is laid out, in one call.
//
//   #include <vltextstream/detect.hpp>
//
//   const char* const text = "time;level [m]\n1:02:00;3.5\n1:07:30;3.9\n";
//   const textio::Detection found = textio::detect_text(text);
//   std::cout << found.dialect << '\n';          // delimited by semicolon
//   for (const textio::Column& column : found.columns) {
//     std::cout << column.name << ": " << to_string(column.type) << '\n';
//   }                                            // time: duration, level [m]: number
//
//   // What is known beforehand is not searched for:
//   textio::Known known;
//   known.delimiters = {";"};
//   known.header_lines = 1;
//   textio::detect_file("gauge.csv", known);
//
// Units      texts are UTF-8; a character above U+FFFF reads as U+001A. Line numbers count the
//            lines of the text from 1, as an editor shows them. A sampled line is one record: a
//            quoted field with line endings inside is part of one, and a comment is none. Widths
//            and other lengths count characters.
// Ownership  results are plain values; nothing refers to the input afterwards.
// Errors     FileError when the input cannot be opened, read or unpacked, as far as it is needed;
//            std::invalid_argument when a member of Known is refused, with the name of the member;
//            GivenMismatch, which is one and names the member, when the text has no such line;
//            std::runtime_error when a decoder fails; std::bad_alloc.
// Cost       a large input is read as far as its lines are needed, at most for its first 4,194,304
//            characters and little more.
// Threads    calls are independent of one another.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/columns/column_kind.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/file_error.hpp>
#include <vltextstream/layout/given_mismatch.hpp>
#include <vltextstream/layout/judgement.hpp>
#include <vltextstream/layout/table_lines.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>
#include <vltextstream/strategy/dialect.hpp>

namespace textio {

using columns::ColumnKind;
using standalone::EncodingFound;
using standalone::EvidenceItem;
using standalone::FileError;
using standalone::GivenMismatch;
using standalone::Judge;
using standalone::LineRole;
using standalone::LineRun;
using standalone::NamesSource;

// What the caller knows about a text. A member with a value settles its question; the others are
// searched for. Texts are UTF-8 without characters above U+FFFE.
struct VLTEXTSTREAM_EXPORT Known {
  // The texts that separate fields, at least one. No other layout is considered then.
  std::optional<std::vector<std::string>> delimiters = std::nullopt;

  // The column widths of a fixed-width table, 1 to 4,194,304 characters each. Not together with
  // delimiters.
  std::optional<std::vector<std::size_t>> widths = std::nullopt;

  // Sampled lines before the data, 0 to 4,194,304.
  std::optional<std::size_t> header_lines = std::nullopt;

  // The number of columns, 1 to 4,194,304: layouts with this number are preferred.
  std::optional<std::size_t> num_variables = std::nullopt;

  // What starts a comment line, such as "#".
  std::optional<std::string> comment_marker = std::nullopt;

  // The texts that end a line, in the order in which they are tried; otherwise "\r\n", "\n", "\r".
  std::optional<std::vector<std::string>> line_endings = std::nullopt;

  // The characters that count as white space around fields; otherwise space, backspace and tab.
  std::optional<std::string> whitespace = std::nullopt;

  // The encoding, by any name that ICU knows; others are refused. detect_text does not use it.
  std::optional<std::string> encoding = std::nullopt;

  // The locale of the dates, such as "de_DE", whose names of months and days count beside English.
  std::optional<std::string> date_locale = std::nullopt;

  // Data lines to sample, 1 to 4,194,304; otherwise 100.
  std::optional<std::size_t> lines_to_sample = std::nullopt;

  // The most bytes to read, before and after decompression; otherwise 67,108,864. Only bytes that give
  // no characters, such as endless shift sequences, need so many. A look at a file may take the bytes
  // of 262,144 characters even if few lines are sampled. detect_text does not use it.
  std::optional<std::uint64_t> max_bytes = std::nullopt;

  // Who chooses the layout; otherwise the assessment. What follows is obeyed by it alone.
  std::optional<Judge> judge = std::nullopt;

  // The lines of the text that hold the names and the units, 0 to 4,194,304; 0: no line holds them.
  std::optional<std::size_t> names_line = std::nullopt;
  std::optional<std::size_t> units_line = std::nullopt;

  // The character that quotes fields, no letter, digit or white space; empty: nothing does. And the one that
  // escapes a quote besides a second one: a backslash; empty: nothing does.
  std::optional<std::string> quote = std::nullopt;
  std::optional<std::string> escape = std::nullopt;

  // The decimal mark of numbers, and the mark between groups of their digits: one character each. The kinds of
  // columns follow from them.
  std::optional<std::string> decimal = std::nullopt;
  std::optional<std::string> grouping = std::nullopt;

  // The texts of cells without a value, such as "n/a". They do not count for the type of a column.
  std::optional<std::vector<std::string>> missing = std::nullopt;
};

struct VLTEXTSTREAM_EXPORT Column {
  std::string name;  // trimmed and without quotes; empty when no line holds the names
  std::string unit;  // "km/h", "[s]"; empty when there is none
  DatatypeCode type = DatatypeCode::empty;

  // Finer than the type; empty beyond the first 65,536 columns.
  ColumnKind kind = ColumnKind::empty;

  bool operator==(const Column&) const = default;
};

// Another answer that the text may have, and the evidence that decides most between it and the answer.
struct VLTEXTSTREAM_EXPORT Rival {
  Dialect dialect;
  std::string quote;  // empty: nothing quotes fields
  std::size_t num_columns = 1;
  double probability = 0.0;
  std::string reason;
  std::string no_table;  // as Detection::no_table

  bool operator==(const Rival&) const = default;
};

struct VLTEXTSTREAM_EXPORT Detection {
  Dialect dialect;

  // At least one.
  std::vector<Column> columns;

  // Sampled lines before the data. A line of names that follows them is not one of them.
  std::size_t header_lines = 0;

  // The lines that hold the names and the units of the columns, if any, and why it is this line of
  // names or none, as a sentence.
  std::optional<std::size_t> names_line;
  std::optional<std::size_t> units_line;
  NamesSource names_source = NamesSource::none;
  std::string names_reason;

  // The encoding, and how sure it is: 1 when it was given, marked or proved, 0 when it is a guess.
  std::string encoding;
  EncodingFound encoding_found = EncodingFound::none;
  double encoding_confidence = 0.0;

  // Ill-formed parts among the sampled characters, each read as one U+FFFD.
  std::size_t ill_formed_parts = 0;

  // The first line ending, if there is one.
  std::optional<std::string> line_ending;

  // What each line of the sample is for, comments included, in the order of the text.
  std::vector<LineRun> lines;

  // Data lines with more or fewer fields than there are columns, and the first of them.
  std::size_t ragged_lines = 0;
  std::optional<std::size_t> first_ragged_line;

  // The lines that the answer is based on, the characters up to the end of the last of them, and
  // whether the text continues after these.
  std::size_t lines_sampled = 0;
  std::size_t characters_sampled = 0;
  bool has_more_text = false;

  // What settled the layout of the cascade: "only-candidate", "given", "reduce_by_dates" and so on.
  std::string decided_by;

  // How probable dialect and number of columns are, if they were chosen among all sensible readings; and
  // what the text is if it is not a table: "running text", "source code", "a document", "settings",
  // "binary data" or "empty".
  std::optional<double> confidence;
  std::string no_table;

  // What quotes fields; empty: nothing does. And what escapes a quote besides a second one.
  std::string quote;
  std::string escape;

  // What else the text may be, the most probable first, and what speaks for the answer and against it, the
  // weightiest first. None if the answer was not chosen among readings.
  std::vector<Rival> rivals;
  std::vector<EvidenceItem> evidence;
};

// The file at `path`, a path in the file system's own bytes; "-" is standard input. What is
// compressed with gzip or zstd is unpacked.
VLTEXTSTREAM_EXPORT Detection detect_file(const std::string& path, const Known& known = {});

// A text in memory. A byte-order mark at its start is dropped.
VLTEXTSTREAM_EXPORT Detection detect_text(std::string_view utf8, const Known& known = {});

// The content of a file in memory: in any encoding, perhaps compressed.
VLTEXTSTREAM_EXPORT Detection detect_bytes(std::span<const std::byte> bytes,
                                           const Known& known = {});
VLTEXTSTREAM_EXPORT Detection detect_bytes(std::string_view bytes, const Known& known = {});

}  // namespace textio
