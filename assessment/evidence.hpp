// What speaks for a reading, in numbers.
//
//   const Records records = cut(lines, reading);
//   for (const std::size_t columns : likely_columns(lines, records, reading)) {
//     const TableFrame table = find_table(lines, records, reading, columns);
//     EvidenceAmounts amounts = weigh_shape(lines, records, reading, table);
//     const CellKinds kinds(records, table.data, columns, kRecordsLookedInto);
//     weigh_content(lines, records, reading, table, kinds, amounts);
//   }
//
// Units  lines and records are numbered from 0; amounts are shares from 0 to 1 unless Evidence says
//        otherwise.
// Cost   linear in the records.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

enum class Evidence {
  ragged,   // -ln of the share of records with as many cells as the table has columns; records that
            // end early below complete names count half
  outside,  // share of records before and after the table, comments and rules not counted
  worth,    // how recognisable the cells are, and how much alike in each column; mean of columns
  unsplit,  // share of records with a cell in which a separator is between unlike things
  torn,     // share of records with a cell in which brackets or quotes are not balanced
  cut_values,     // share of records in which a date, time or address is cut in two
  left_together,  // share of records with a cell of several values with blanks between them
  dangling,       // share of records with a cell that begins or ends with a usual separator
  well_quoted,    // share of records with a cell in quotes
  lost_quotes,    // share of records with quotes that the reading does not explain
  wordy,          // share of columns that are plain words, if single blanks separate cells
  empty,          // share of columns without any text
  few,            // 2 / columns with some text, at most 2; 0 for one column
  one,            // 1 for a single column
  runs,           // 1 for columns aligned by runs of blanks
  narrow,         // 1 if a single blank separates aligned columns
  rest,           // 1 if the last column takes the rest of its line
  dense,          // 1 for columns of fixed width without blanks between them
  framed,         // 1 for frames
  named,          // 1 if the first record has several cells and each looks like a name of its own
  clauses,  // share of records with a cell that goes on in lower case after a blank, as sentences do
  numbers_cut,  // share of records in which a comma may belong to a number
  gaps_inside,  // share of records with a cell that has two blanks in a row, if columns are aligned
  by_names,     // 1 if the names show the borders of aligned columns
  tab,
  comma,
  semicolon,
  colon,
  bar,
  blank,
  caret,    // ^ ~ and signs that are not used as punctuation
  control,  // a control character
  several,  // a mark of several characters
  rare,     // any other sign
  // Of a text that is not a table.
  no_table,  // 1
  prose,     // share of lines of running text
  code,      // share of lines as in source code
  markup,    // share of lines as in documents with tags or brackets
  nested,    // 1 if brackets or tags nest from the first character on, as in JSON and XML
  keyed,     // share of lines of one key and its value, and of headings in brackets
  indented,  // share of lines that begin further in or out than the line before
  spaced,    // share of lines after a blank line
  brief,     // 1 / lines; 0 if nested
};
inline constexpr std::size_t kNumEvidence = static_cast<std::size_t>(Evidence::brief) + 1;

using EvidenceAmounts = std::array<double, kNumEvidence>;

std::string_view to_string(Evidence evidence);  // the enumerator, with hyphens

// The records of the table among those of the sample.
struct TableFrame {
  std::size_t columns = 1;
  std::size_t first = 0;  // record
  std::size_t end = 0;    // the record after the last

  // Those from `first` to `end` with as many cells as columns; and those of them that are data, or names
  // of these: not a preamble that happens to have the same number of cells.
  std::size_t num_fitting = 0;
  std::vector<std::size_t> data;

  // Records between that have fewer cells, below a record with a name for each column.
  std::size_t num_short = 0;

  // How many of the data would hold the names if there are any.
  std::size_t names_rows = 1;

  // Records between that are comments or rules, and other records before and after.
  std::size_t num_notes = 0;
  std::size_t num_outside = 0;
};

// The numbers of columns to try: the most frequent ones among all and among the last records. Empty if
// the records have one cell each and the reading is not of one column.
std::vector<std::size_t> likely_columns(const SampledLines& lines, const Records& records,
                                        const Reading& reading);

// How many of the first records of a table are looked into.
inline constexpr std::size_t kRecordsLookedInto = 200;

// Without data if no record has that many cells.
TableFrame find_table(const SampledLines& lines, const Records& records, const Reading& reading,
                      std::size_t columns);

// The amounts that follow from the shape alone: from `ragged` and `outside` to what separates.
EvidenceAmounts weigh_shape(const SampledLines& lines, const Records& records,
                            const Reading& reading, const TableFrame& table);

// Adds the amounts that follow from what the cells hold. `kinds` are those of the first data.
void weigh_content(const SampledLines& lines, const Records& records, const Reading& reading,
                   const TableFrame& table, const CellKinds& kinds, EvidenceAmounts& amounts);

}  // namespace textio::assessment
