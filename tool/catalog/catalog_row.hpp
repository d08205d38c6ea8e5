// CatalogRow: what a catalogue knows about one file, in one line of JSON.
//
//   const CatalogRow row = look_at("gauge.csv", settings);
//   row.status;              // RowStatus::table
//   row_line(row);           // {"catalog": 1, "path": "gauge.csv", ...}
//   parse_row(row_line(row)) // the same row
//
// Texts   in UTF-8. A path has the file system's own bytes: in JSON, those that are not UTF-8 become U+FFFD, and
//         "path_bytes" has all of them in hexadecimal.
// Errors  look_at throws nothing but std::bad_alloc: what cannot be read is a row with an error. parse_row throws
//         std::invalid_argument for what is no row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/layout/detect_layout.hpp>

#include "tool/json_writer.hpp"

namespace textio::tool {

// The version of the rows; it grows when a member changes its meaning or is removed.
inline constexpr int kCatalogVersion = 1;

enum class RowStatus { table, no_table, error };

// "table", "no table", "error".
std::string_view to_string(RowStatus status) noexcept;

struct CatalogColumn {
  std::string name;  // empty: it has none
  std::string kind;
  std::string unit;

  bool operator==(const CatalogColumn&) const = default;
};

struct CatalogRow {
  std::string path;
  std::optional<std::uint64_t> size;
  std::string modified;  // "2026-11-22T15:42:27.123456789Z"; empty if the file is not there
  RowStatus status = RowStatus::error;
  std::string error;      // of an error
  std::string no_table;   // as Layout::no_table
  std::string file_kind;  // as file_kind()

  // Of tables; as in Layout. Quote and marks are empty without one.
  std::string mode;
  std::vector<std::string> delimiters;
  std::vector<std::size_t> widths;
  std::string quote;
  std::string decimal;
  std::string grouping;
  std::string comment_prefix;
  std::string encoding;
  bool has_byte_order_mark = false;
  std::string line_ending;
  std::size_t header_lines = 0;
  std::optional<std::size_t> names_line;
  std::optional<std::size_t> units_line;
  std::optional<double> confidence;
  std::optional<std::uint64_t> lines;
  std::vector<CatalogColumn> columns;

  std::string layout_fingerprint;
  std::string schema_fingerprint;

  bool operator==(const CatalogRow&) const = default;
};

// Looks at a regular file. Anything else is an error and is not opened: a pipe may never end.
CatalogRow look_at(const std::string& path, const standalone::DetectSettings& settings);

// The row of a layout; without what the file system knows.
CatalogRow row_of(const std::string& path, const standalone::Layout& layout);

// A row that says why there is no layout. The path need not be repeated.
CatalogRow failed_row(const std::string& path, std::string_view error);

// One line of JSON with its end.
std::string row_line(const CatalogRow& row);

CatalogRow parse_row(std::string_view line);

// The members of a table that files of a group have in common, to an object.
void write_common_members(JsonWriter& json, const CatalogRow& row);

// How every row begins.
inline constexpr std::string_view kRowOpening = "{\"catalog\": ";

}  // namespace textio::tool
