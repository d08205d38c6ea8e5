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
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/table_lines.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>
#include <vltextstream/strategy/dialect.hpp>

namespace textio::standalone {

using textio::LayoutMode;

// Who chooses among the layouts a text may have.
enum class Judge {
  assessment,  // the reading for which most speaks, with a probability
  cascade,     // the filters of the StrategySelector
};

// The name of the enumerator; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(Judge judge);

// A piece of evidence, and what it is worth: how much it raises, or lowers, the natural logarithm of
// the odds.
struct VLTEXTSTREAM_EXPORT EvidenceItem {
  std::string name;
  double worth = 0.0;
  std::string sentence;
};

// Another layout that the text may have, and the evidence that decides most between it and the answer.
struct VLTEXTSTREAM_EXPORT Rival {
  LayoutMode mode = LayoutMode::line_reader;
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;
  std::optional<char16_t> quote;
  std::size_t num_variables = 1;
  double probability = 0.0;
  std::string reason;
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
  // "%", "hh:mm:ss"), a dash or empty, and at least one is a unit.
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

  // Space-aligned: the fewest blanks between two columns, since fewer are part of a cell; and whether a
  // time belongs to the date before it, though one blank is between them.
  std::size_t least_blanks = 1;
  bool joins_times = false;

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
};

// Mode, delimiters and widths of `layout`. An unpaired surrogate in a delimiter becomes U+FFFD.
VLTEXTSTREAM_EXPORT Dialect dialect_of(const Layout& layout);

}  // namespace textio::standalone
