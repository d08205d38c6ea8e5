// Layout: how the table in a text is laid out.
//
//   const textio::standalone::Layout layout = textio::standalone::detect_layout("gauge.csv");
//   layout.delimiters;   // {u","}
//   layout.names_line;   // 6
//
// Units      line numbers count the lines of the text from 1, as an editor shows them. A sampled
//            line is one record: a quoted field with line endings inside is part of one, and a
//            comment is none. Widths and lengths count characters.
// Ownership  a plain value without views: copy it, keep it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/column_facts.hpp>
#include <vltextstream/layout/judgement.hpp>
#include <vltextstream/layout/spread_look.hpp>
#include <vltextstream/layout/table_dialect.hpp>
#include <vltextstream/layout/table_lines.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>
#include <vltextstream/strategy/dialect.hpp>

namespace textio::standalone {

using textio::LayoutMode;

// Another layout that the text may have, and the evidence that decides most between it and the answer.
struct VLTEXTSTREAM_EXPORT Rival {
  LayoutMode mode = LayoutMode::line_reader;
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;
  std::optional<char16_t> quote;
  std::size_t num_variables = 1;
  double probability = 0.0;
  std::string reason;

  // As Layout::no_table.
  std::string no_table;
};

// A way to read the text that was weighed: as a table of this mode or, if `is_table` is false, as no table.
struct VLTEXTSTREAM_EXPORT ConsideredReading {
  LayoutMode mode = LayoutMode::line_reader;
  std::u16string delimiter;  // of a delimited one

  // There may be several with the same mode and delimiter: with other quotes, or more blanks between columns.
  double probability = 0.0;

  bool is_table = true;
};

// What the cascade answers.
struct VLTEXTSTREAM_EXPORT CascadeAnswer {
  LayoutMode mode = LayoutMode::line_reader;
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;
  std::size_t header_lines = 0;
  std::size_t num_variables = 1;

  // Whether it has the mode, the delimiters and the number of variables of the answer.
  bool agrees = false;
};

// What the end of a text holds that goes on after the sample.
struct VLTEXTSTREAM_EXPORT TailLook {
  // The last lines of the text that do not hold data, blank ones and rules not counted, and their texts: at
  // most kMostTexts, each cut to kLongestText characters.
  std::size_t footer_lines = 0;
  std::vector<std::u16string> footer;

  // The characters that were looked at, and the bytes that were read for this: none if the sample had
  // them loaded.
  std::size_t characters = 0;
  std::size_t bytes = 0;

  static constexpr std::size_t kMostTexts = 5;
  static constexpr std::size_t kLongestText = 200;
};

struct VLTEXTSTREAM_EXPORT Layout {
  LayoutMode mode = LayoutMode::line_reader;

  // Delimited: the delimiters. Space-aligned: space and tab. Otherwise none.
  std::vector<std::u16string> delimiters;

  // Fixed-width: the column widths in characters. Otherwise none.
  std::vector<std::size_t> widths;

  // Sampled lines before the data; a line of names that follows them is not one of them.
  std::size_t header_lines = 0;

  // The line that holds the names, why it is this line or none (as a sentence), and the names,
  // trimmed and without quotes.
  NamesSource names_source = NamesSource::none;
  std::string names_reason;
  std::optional<std::size_t> names_line;
  std::vector<std::u16string> names;

  // The line above or below the names that holds the units of the columns, and its texts, one for
  // each variable. Each field over a number, date or duration is a unit ("km/h", "[s]",
  // "%", "hh:mm:ss"), a dash or empty, and at least one is a unit. Without such a line the assessment takes
  // the units from the names, if any has one: "level [cm]", "Zeit / s".
  std::optional<std::size_t> units_line;
  std::vector<std::u16string> units;

  // The number of columns, and the datatype class of each.
  std::size_t num_variables = 1;
  std::vector<DatatypeCode> classes;

  // The encoding, how it was found, and how sure it is: 1 when it was given, marked or proved, 0
  // when there was no evidence, otherwise the likelihood that it reads the text correctly.
  // docs/encodings.md has measurements. What follows the first 131,072 characters and the sampled
  // ones is not examined.
  std::string encoding;
  EncodingFound encoding_found = EncodingFound::none;
  double encoding_confidence = 0.0;

  // Ill-formed parts among the sampled characters, each decoded as one U+FFFD. Those that follow do
  // not count.
  std::size_t ill_formed_parts = 0;

  // The first line ending, if there is one.
  std::optional<std::u16string> line_ending;

  // What each line of the sample is for, comments included, in the order of the text. Every line
  // from the first to the last belongs to one run.
  std::vector<LineRun> lines;

  // Data lines with more or fewer fields than there are variables, and the first of them.
  std::size_t ragged_lines = 0;
  std::optional<std::size_t> first_ragged_line;

  // The lines that the answer is based on, header and empty lines included, and the characters up to
  // the end of the last of them, its line ending and comments included; at least the first line,
  // whose line ending is reported.
  std::size_t lines_sampled = 0;
  std::size_t characters_sampled = 0;

  // Whether the text continues after these characters. When there are none and it does, the first
  // line is longer than any sample.
  bool has_more_text = false;

  // How the selection ended, and the filter that left a single candidate, if one did.
  detection::SelectionEnd selection_end = detection::SelectionEnd::no_candidate;
  std::string decided_by;

  // All candidates and filters; only on request.
  std::optional<detection::SelectionTrace> trace;

  // Whether the sample has more control characters than any text would: the file is probably a
  // program, a picture or an archive. The layout then describes its bytes decoded as text.
  bool looks_binary = false;

  // --- of the assessment; without a value or empty if the layout was given or chosen by the cascade

  // How probable the answer is: mode, delimiters and number of variables.
  std::optional<double> confidence;

  // What quotes cells, and what escapes a quote within them besides a second one, if anything does.
  std::optional<char16_t> quote;
  std::optional<char16_t> escape;

  // Space-aligned: the fewest blanks between two columns, since fewer are part of a cell; whether a time
  // belongs to the date before it, though one blank is between them; and whether the last column takes the
  // rest of the line, blanks included.
  std::size_t least_blanks = 1;
  bool joins_times = false;
  bool rest_in_last = false;

  // Delimited by bars: whether bars may also be at the ends of the lines, and lines that draw rules between rows,
  // as database shells and Markdown have them. Neither belongs to a cell.
  bool is_framed = false;

  // What else the text may be, the most probable first, and what speaks for the answer and against it,
  // the weightiest first.
  std::vector<Rival> rivals;
  std::vector<EvidenceItem> evidence;

  // How probable it is that a line holds names; and which line this would be, if it is not the line of
  // the names.
  std::optional<double> names_probability;
  std::optional<std::size_t> names_candidate;

  // What the text is if it is not a table: "running text", "source code", "a document", "settings",
  // "binary data", or "empty" without a line that is not blank; otherwise empty.
  std::string no_table;

  std::optional<CascadeAnswer> cascade;

  // --- of every table, unless DetectSettings::describe_columns is false

  // How the table is written, and what each of its columns holds: one for each variable, but at most 65,536, as
  // that takes time and memory; none of a text that is no table.
  TableDialect dialect;
  std::vector<ColumnFacts> columns;

  // A name for each of these columns that no other has, in one line without control characters: "column_2" where there
  // is none, "level_2" for a second "level".
  std::vector<std::u16string> names_unique;

  // --- of the assessment again

  // How many lines the text has, as an editor shows them: all that were looked at if it ends with the
  // sample, otherwise an estimate by its length. Without a value where the length is not known, as that of
  // a long pipe or of much compressed data.
  std::optional<std::uint64_t> lines_estimated;

  // The end of the text, if it was looked at: not where the sample has it, where the input would have to be
  // unpacked or waited for, or where the text is no table.
  std::optional<TailLook> tail;

  // What several places after the sample hold that contradicts it; only on request.
  std::optional<SpreadLook> spread;

  // The line that was given as that of the descriptions of the columns, and its texts.
  std::optional<std::size_t> descriptions_line;
  std::vector<std::u16string> descriptions;

  // Of a file without a table that is not empty: its first bytes, unpacked, at most 16,384, for a look at
  // what it is. Empty if they cannot be read again.
  std::string first_bytes;

  // All readings that the assessment weighed, the likeliest first; only on request, with the trace.
  std::vector<ConsideredReading> considered;
};

// Mode, delimiters and widths of `layout`. An unpaired surrogate in a delimiter becomes U+FFFD.
VLTEXTSTREAM_EXPORT Dialect dialect_of(const Layout& layout);

}  // namespace textio::standalone
