// Layout: how the table in a text is laid out.
//
//   const textio::standalone::Layout layout = textio::standalone::detect_layout("gauge.csv");
//   layout.delimiters;   // {u","}
//   layout.names_line;   // 6
//
// Units      line numbers count the lines of the text from 1, as an editor shows them. Sampled
//            lines are lines as the strategy cuts them: a quoted field with line endings inside is
//            part of one, a comment is none. Widths and lengths count characters.
// Ownership  a plain value without views: copy it, keep it.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/host/export.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/standalone/encoding_detection/encoding_found.hpp>

namespace textio::standalone {

// How fields are separated; the numbers are those of Strategy::mode().
enum class LayoutMode { delimited = 0, space_aligned = 1, fixed_width = 2, line_reader = 3 };

// Which line holds the names of the variables, if any. A line names every variable when it has as
// many fields as there are variables, none of them empty. Two lines are asked, in this order:
//
//  1. The last header line. If it names every variable, it holds the names.
//  2. The first line after the header that is not blank. It holds the names if it names every
//     variable, no two of its fields are alike, all of them are texts, and some column below is of
//     another class.
//
// A line that looks like units gives way to its neighbour above it in the header, else to the one
// below it.
enum class NamesFound {
  last_header_line,
  line_after_header,
  none,       // no line can be one of names
  undecided,  // the first line after the header may hold names as well as values
};

// What a sampled line is for the table.
enum class LineRole { header, names, units, blank, comment, data };

// Sampled lines with the same role that follow one another.
struct VLTEXTSTREAM_EXPORT LineRun {
  LineRole role = LineRole::data;

  // The first and the last line of the text that belong to it.
  std::size_t first_line = 0;
  std::size_t last_line = 0;

  // How many sampled lines, or comments, these are.
  std::size_t count = 0;
};

struct VLTEXTSTREAM_EXPORT Layout {
  LayoutMode mode = LayoutMode::line_reader;

  // Delimited: the delimiters. Space-aligned: space and tab. Otherwise none.
  std::vector<std::u16string> delimiters;

  // Fixed-width: the column widths in characters. Otherwise none.
  std::vector<std::size_t> widths;

  // Sampled lines before the data; a line of names that stands behind them is not one of them.
  std::size_t header_lines = 0;

  // The line of the names, and these names, trimmed and without quotes; and why it is this line or
  // none, as a sentence about lines of the text.
  NamesFound names_found = NamesFound::none;
  std::string names_reason;
  std::optional<std::size_t> names_line;
  std::vector<std::u16string> names;

  // The line above or below the names that holds the units of the columns, and what it says, one
  // text for each variable. Each field over a number, date or duration is a unit ("km/h", "[s]",
  // "%", "hh:mm:ss"), a dash or empty, and at least one is a unit.
  std::optional<std::size_t> units_line;
  std::vector<std::u16string> units;

  // Columns, and the datatype class of each.
  std::size_t num_variables = 1;
  std::vector<DatatypeCode> classes;

  // How sure the encoding is: 1 when it was given, marked or proved, 0 when it is a guess without a
  // ground, between them how likely it reads the text right; docs/encodings.md has measured that.
  std::string encoding;
  EncodingFound encoding_found = EncodingFound::none;
  double encoding_confidence = 0.0;

  // Ill-formed parts that were met in decoding, each read as one U+FFFD.
  std::size_t ill_formed_parts = 0;

  // The first line ending in the sample, if there is one.
  std::optional<std::u16string> line_ending;

  // The sampled lines, comments among them included, in the order of the text: every line from the
  // first to the last that was looked at belongs to one run.
  std::vector<LineRun> lines;

  // Lines of data whose number of fields is not that of the variables, and the first of them.
  std::size_t ragged_lines = 0;
  std::optional<std::size_t> first_ragged_line;

  // The lines the answer rests on, header and empty lines included, and the characters that were
  // at hand.
  std::size_t lines_sampled = 0;
  std::size_t characters_sampled = 0;

  // Whether the text goes on behind these characters. When there are none at all, its first line is
  // longer than any sample.
  bool text_goes_on = false;

  // How the selection ended, and the filter that left a single candidate, if one did.
  detection::SelectionEnd end = detection::SelectionEnd::no_candidate;
  std::string decided_by;

  // On request: everything that was weighed.
  std::optional<detection::SelectionTrace> trace;

  // Whether the sample holds so many control characters that the bytes are probably no text, but a
  // program, a picture or an archive. The layout is the one of the text that they were read as.
  bool looks_binary = false;
};

}  // namespace textio::standalone
