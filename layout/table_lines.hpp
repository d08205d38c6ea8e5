// What the lines of a text are for: header, names, units, data, footer.
//
// Units  line numbers count the lines of the text from 1, as an editor shows them.
#pragma once

#include <cstddef>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// Which line holds the names of the variables, if any. A line names every variable when it has as
// many fields as there are variables, none of them empty. Two lines are considered, in this order:
//
//  1. The last header line. If it names every variable, it holds the names.
//  2. The first line after the header that is not blank. It holds the names if it names every
//     variable, no two of its fields are the same, all of them are texts, and some column below is
//     of another class.
//
// A line that looks like units is replaced by the line above it in the header, or else by the line
// below it.
enum class NamesSource {
  last_header_line,
  line_after_header,
  none,       // no line can hold names
  undecided,  // the first line after the header may hold names as well as values
};

// What a sampled line is for the table. A footer follows the data: totals, "(8 rows)", notes. Only the
// assessment finds footers, and only where the text ends within the sample.
enum class LineRole { header, names, units, blank, comment, data, footer };

// The name of the enumerator with hyphens, such as "line-after-header"; empty for any other number.
VLTEXTSTREAM_EXPORT std::string_view to_string(NamesSource source);
VLTEXTSTREAM_EXPORT std::string_view to_string(LineRole role);

// Consecutive sampled lines with the same role.
struct VLTEXTSTREAM_EXPORT LineRun {
  LineRole role = LineRole::data;

  // The first and the last line of the text that belong to it.
  std::size_t first_line = 0;
  std::size_t last_line = 0;

  // The number of sampled lines or comments: fewer than lines of the text where a record spans
  // several.
  std::size_t count = 0;
};

}  // namespace textio::standalone
