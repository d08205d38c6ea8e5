// What a look at several places after the sample found: cells and records that are not as the sample makes a reader
// expect.
//
//   settings.sample = SampleFrom::spread;
//   const Layout layout = detect_layout("gauge.csv", settings);
//   layout.spread->contradictions[0].column;    // 3
//   layout.spread->contradictions[0].example;   // u"n.a."
//
// Units      UTF-16 with one code unit for each character; columns are numbered from 0.
// Ownership  plain values without views.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/column_facts.hpp>

namespace textio::standalone {

// Where a detection looks at a text.
enum class SampleFrom {
  start,   // at its first lines, and at its end for a footer
  spread,  // besides, at several places between them and at the end
};

// The name of the enumerator; empty for any other value.
VLTEXTSTREAM_EXPORT std::string_view to_string(SampleFrom sample);

// Where a line is.
struct VLTEXTSTREAM_EXPORT TextPlace {
  // The byte of the file at which the line begins; no value for a text in memory or of compressed data.
  std::optional<std::uint64_t> byte;

  // Its number from 1: exact if all before it was loaded, otherwise an estimate.
  std::uint64_t line = 0;
  bool is_line_exact = false;

  bool operator==(const TextPlace&) const = default;
};

// The cells of a column that contradict its ColumnFacts: of another kind, with other marks, in another order of day
// and month, with a word that is not of the pair; any cell if the column was empty.
struct VLTEXTSTREAM_EXPORT Contradiction {
  std::size_t column = 0;
  ColumnKind expected = ColumnKind::empty;
  std::size_t count = 0;

  // The first of them, at most 60 characters, and where its record begins.
  std::u16string example;
  TextPlace place;

  bool operator==(const Contradiction&) const = default;
};

struct VLTEXTSTREAM_EXPORT SpreadLook {
  // Why nothing was looked at, as a sentence without a point; otherwise empty.
  std::string reason;

  // Where it was looked: the number of places, the records of the table in them, the characters, and the bytes that
  // were read for this: none where they had been loaded.
  std::size_t places = 0;
  std::size_t records = 0;
  std::size_t characters = 0;
  std::size_t bytes = 0;

  // At most one for each column, in their order.
  std::vector<Contradiction> contradictions;

  // Records with another number of cells than the table has columns; the cells and the text of the first, at most 200
  // characters, and where it begins.
  std::size_t ragged_records = 0;
  std::size_t ragged_cells = 0;
  std::u16string ragged_example;
  TextPlace ragged_place;

  // Words for missing values that the sample does not have, in columns of values; the most frequent first.
  std::vector<MissingWord> missing;
};

}  // namespace textio::standalone
