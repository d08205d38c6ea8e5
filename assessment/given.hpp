// Given: what the caller knows of a text, so that it need not be judged.
//
//   Given given;
//   given.header_lines = 2;
//   given.quote = u'\'';
//   const Verdict verdict = judge(text, 100, given);
//
// What is given rules readings out and is evidence for none: probabilities are among the readings that are
// left.
//
// Units  lines of the text and columns are numbered from 1.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

struct Given {
  // Lines above the table: all but comments, blank ones too. The last of them may hold the names.
  std::optional<std::size_t> header_lines = {};

  // As LineRules::comment_prefix.
  std::u16string comment_prefix = {};

  LineEndings line_endings = {};

  // Readings with this number of columns are preferred. Others remain only if no reading has it.
  std::optional<std::size_t> columns = {};

  // Without a value, all readings are tried. With one, the only reading is that these separate cells, the
  // first that matches; or, if there is none, that each line is a cell.
  std::optional<std::vector<std::u16string>> delimiters = {};

  // If there are any, the only reading is that of these column widths.
  std::vector<std::size_t> widths = {};

  // What quotes cells, and what escapes a quote besides a second one; 0: nothing does.
  std::optional<char16_t> quote = {};
  std::optional<char16_t> escape = {};

  // The lines of the names and the units; 0: no line holds them.
  std::optional<std::size_t> names_line = {};
  std::optional<std::size_t> units_line = {};

  // A line that does not hold data, and the column that names the rows and may have no name itself; 0: not
  // known.
  std::size_t descriptions_line = 0;
  std::size_t row_names_column = 0;

  // The last of the three lines; 0 if none is known.
  std::size_t last_named_line() const;
};

// `given` with what the first line of a text says if it is "sep=;" or the like, as spreadsheets write it, and the
// delimiters and the header lines are not given: that line does not belong to the table.
Given with_first_line(Given given, std::u16string_view text);

// Where the lines above the table end.
struct KnownTop {
  std::size_t num_lines = 0;
  std::size_t end = 0;         // code units
  std::size_t num_header = 0;  // lines up to the last header line that is given, comments included
};
KnownTop known_top(std::u16string_view text, const Given& given);

// As without `given`; the lines that are known not to belong to the table are hidden.
SampledLines sample_lines(std::u16string_view text, std::size_t num_lines, const Given& given);

// Marks what is given on lines that were sampled with its rules.
void apply_given(const Given& given, const KnownTop& top, SampledLines& lines);

// The readings that agree with what is given, at least one.
std::vector<Reading> find_readings(const SampledLines& lines, const Given& given);

// What is wrong if a given line is not in the text or is far below the header lines, as a sentence that begins
// with the name of the option. `lines` were sampled of the whole text.
std::optional<std::string> problem_with_lines(const Given& given, const SampledLines& lines);

}  // namespace textio::assessment
