// Reading: one hypothesis about how the lines of a text are cut into cells.
//
//   for (const Reading& reading : find_readings(lines)) {
//     const Records records = cut(lines, reading);
//   }
//
// Which readings are tried:
//
//   delimited  by a single character: the usual ones wherever they occur, others if most lines have
//              them; by marks of several characters if nearly all lines have them. Each with the
//              quotes and escapes that the text shows next to the mark.
//   framed     bars between the cells, and perhaps around them, with rules between the rows
//   runs       columns aligned by runs of at least `least_blanks` blanks
//              If lines have different numbers of pieces, also with a last column of free text that takes
//              the rest of its line (`most_cells`).
//   gaps       columns aligned by blank columns, at least `least_blanks` wide, through the data; also with
//              a name above each (`by_names`)
//   fields     columns of fixed width that need no blanks between them
//   one        a single column: each line, or each quoted record, is a cell
//   none       not a table: prose, source code, a document
//
// Cost  both functions are linear in the sampled text.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

enum class Form { delimited, framed, runs, gaps, fields, one, none };

struct Reading {
  Form form = Form::one;
  std::u16string delimiter = {};
  char16_t quote = 0;            // 0: none
  char16_t escape = 0;           // in quotes, besides a doubled quote; 0: none
  std::size_t least_blanks = 1;  // between aligned columns
  std::size_t most_cells = 0;    // runs: the last of them takes the rest of its line; 0: no limit

  // Fields: where each begins, and where the last one ends.
  std::vector<std::size_t> borders = {};

  // Only of what is given: delimiters that are tried after the first, and widths of columns.
  std::vector<std::u16string> other_delimiters = {};
  std::vector<std::size_t> widths = {};

  // Gaps: the line above the data, or their first line, has a name for each column.
  bool by_names = false;

  // Lines that begin with this, after blanks, are no records and open no quotes; empty: there are none.
  std::u16string comment_prefix = {};

  bool is_aligned() const { return form == Form::runs || form == Form::gaps; }
  bool operator==(const Reading&) const = default;
};

std::vector<Reading> find_readings(const SampledLines& lines);

// The records of the sample, blank lines without. Of a sample that ends inside a quoted cell, that
// record is missing.
Records cut(const SampledLines& lines, const Reading& reading);

}  // namespace textio::assessment
