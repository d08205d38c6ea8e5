// TableDialect: how a table is written, apart from its columns: all that a reader must be told.
//
//   const Layout layout = detect_layout("prices.csv");
//   layout.dialect.decimal;          // u','
//   layout.dialect.comment_prefix;   // u"#"
//
// Units      UTF-16 with one code unit for each character. Counts are of sampled lines or cells.
// Ownership  plain values without views.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/column_facts.hpp>

namespace textio::standalone {

// What lets a quote, or a delimiter, be part of a cell.
enum class Escape {
  none,
  doubled,    // a second quote
  backslash,  // a backslash before it
};

// The name of the enumerator; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(Escape escape);

struct VLTEXTSTREAM_EXPORT LineEndingCount {
  std::u16string ending;
  std::size_t count = 0;

  bool operator==(const LineEndingCount&) const = default;
};

struct VLTEXTSTREAM_EXPORT TableDialect {
  // As Layout::delimiters and Layout::widths.
  std::vector<std::u16string> delimiters;
  std::vector<std::size_t> widths;

  // What quotes cells, if any is quoted.
  std::optional<char16_t> quote;

  // What a quote within quotes is escaped by, and whether one was seen. Where cells are quoted and none has
  // a quote within, it is `doubled`, the custom. A backslash without quotes escapes delimiters.
  Escape escape = Escape::none;
  bool is_escape_seen = false;

  // Whether a blank follows most delimiters and does not belong to the cells.
  bool blanks_after_delimiters = false;

  // What the comments among the sampled lines begin with; empty without comments.
  std::u16string comment_prefix;

  // The marks of most columns with numbers, if any of their cells has one; columns that leave no doubt go
  // first. Columns that differ have their own in ColumnFacts.
  std::optional<char16_t> decimal;
  std::optional<char16_t> grouping;

  // Of all columns, the most frequent first.
  std::vector<MissingWord> missing;

  // Whether the file begins with a byte-order mark; not known of a text in memory.
  bool has_byte_order_mark = false;

  // All that end sampled lines, the most frequent first; those within quotes do not count. More than one:
  // the file mixes them.
  std::vector<LineEndingCount> line_endings;
};

}  // namespace textio::standalone
