// Facts: what a reader must be told to read a file correctly. They are the same for all readers.
//
//   const Facts facts = facts_of("prices.csv", settings, {});
//   facts.first_data_line;           // 7
//   facts.columns[1].decimal;        // ","
//   facts.oddity;                    // "" if the file is as regular as its dialect says
//
// The whole file is read, not only its sample: the types hold for every cell, and `oddity` for every line.
//
// Units      texts are UTF-8, lines count from 1 as an editor shows them.
// Ownership  plain values without views.
// Errors     those of TableReader; std::runtime_error if there is no table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/column.hpp>

#include "tool/option_flags.hpp"

namespace textio::tool {

struct ColumnFact {
  std::string name;  // no other column has it
  reading::ColumnType type = reading::ColumnType::text;
  std::string kind;     // "money"; the word of ColumnKind
  bool is_utc = false;  // of moments

  std::string decimal = ".";
  std::string grouping;  // empty: none
  std::string true_word = "true";
  std::string false_word = "false";
  std::string format;  // strptime, of dates and moments; empty: no one format
  std::vector<std::string>
      missing;  // words for a missing value; of all but texts, an empty cell is one too

  // Whether every cell is written as any reader of the type, told the marks, words and format above, reads it:
  // a moment as "%Y-%m-%dT%H:%M:%S", not "2.1.24 8:05 pm".
  bool is_plain = true;

  // Of integers: whether all have at most 15 digits, so that a double holds them.
  bool fits_double = true;

  bool is_text() const {
    return type == reading::ColumnType::text || type == reading::ColumnType::category;
  }
};

struct Facts {
  std::string path;
  std::string encoding;
  std::string compression;  // "gzip" or "zstd"; empty: none

  std::vector<std::string> delimiters;
  std::vector<std::size_t> widths;
  std::string quote;    // empty: nothing quotes cells
  std::string comment;  // empty: no line is a comment
  std::string line_ending = "\n";

  // The names are given to a reader as such, so that it skips all lines before the data.
  std::size_t first_data_line = 1;
  std::optional<std::size_t> names_line;
  std::size_t num_names_lines = 0;  // whose texts are joined
  std::size_t num_rows = 0;

  // Lines after the first of the data.
  std::size_t blank_lines = 0;
  std::size_t comment_lines = 0;
  std::size_t footer_lines = 0;

  // Why no reader that is told only these facts reads the file rightly, as the end of a sentence; or empty.
  std::string oddity;

  std::vector<ColumnFact> columns;

  // What became of every line.
  reading::Account account;

  // The arguments of `vltext convert` before the path: what the caller knew of the file.
  std::vector<std::string> given;

  // Of the layout, if it was weighed.
  std::optional<double> confidence;

  standalone::LayoutMode mode = standalone::LayoutMode::delimited;
  bool is_framed = false;
  bool has_mark = false;
  bool has_backslash = false;  // escapes; otherwise quotes are doubled
  bool has_breaks_in_cells = false;

  // Whether these are the facts of the output of `vltext convert`, for a reader that cannot read the file itself.
  bool is_converted = false;

  std::size_t lines_to_skip() const { return first_data_line - 1; }
};

// Reads the file to its end.
Facts facts_of(const std::string& path, const standalone::DetectSettings& settings,
               const std::vector<GivenOption>& given);

// What `vltext convert --to csv` writes for the file.
Facts converted(const Facts& facts);

// Whether `cell` is written as `format` says, with all digits: "%d.%m.%Y" for "02.01.2024", not for "2.1.2024".
bool follows_format(const std::string& cell, const std::string& format);

}  // namespace textio::tool
