// scan_records: whether a file is as regular as a plain reader expects it: cells between delimiters, perhaps in quotes,
// the same number in each record, and nothing else.
//
//   scan_records(path, {.delimiter = ',', .quote = '"', .first_line = 2, .num_columns = 4, .num_rows = 80});
//
// Encodings in which ASCII is one byte are looked at as bytes, UTF-16 and UTF-32 in their code units.
//
// Errors  std::runtime_error if the file cannot be read.
// Cost    one pass over the file in constant memory.
#pragma once

#include <cstddef>
#include <string>

namespace textio::tool {

struct ExpectedRecords {
  char delimiter = ',';
  char quote = 0;  // 0: none
  bool has_backslash = false;
  std::string comment;
  std::size_t unit_bytes = 1;  // of a code unit: 1, 2 or 4
  bool is_big_endian = false;
  std::size_t first_line = 1;  // of the data
  std::size_t num_columns = 1;
  std::size_t num_rows = 0;
};

struct ScannedRecords {
  std::string oddity;  // the end of a sentence; empty: none
  bool has_breaks_in_cells = false;
};

ScannedRecords scan_records(const std::string& path, const ExpectedRecords& expected);

}  // namespace textio::tool
