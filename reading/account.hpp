// Account: what became of every line of a file.
//
//   const Account& account = reader.account();
//   account.lines_of(LineFate::data);   // 2,991
//   account.num_lines;                  // 3,002: the sum of all fates
//
// Units      lines are those of the file as an editor shows them, numbered from 1; a record may take several.
//            Bytes are those of the file, after decompression. Columns are numbered from 1.
// Ownership  a plain value without views.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>

namespace textio::reading {

// Every line has exactly one of these.
enum class LineFate : std::uint8_t {
  preamble,
  names,
  units,
  descriptions,
  data,  // its cells are in the columns
  blank,
  comment,
  rule,  // drawn between the lines of a table
  footer,
  omitted,  // by a rule of the caller
  failed,   // the read stopped here
};

inline constexpr std::size_t kLineFates = static_cast<std::size_t>(LineFate::failed) + 1;

// The name of the enumerator.
VLTEXTSTREAM_EXPORT std::string_view to_string(LineFate fate) noexcept;

// Consecutive lines with the same fate.
struct VLTEXTSTREAM_EXPORT FateRun {
  LineFate fate = LineFate::data;
  std::uint64_t first_line = 0;
  std::uint64_t num_lines = 0;
  std::uint64_t num_bytes = 0;

  bool operator==(const FateRun&) const = default;
};

// What is odd about a record or a cell.
enum class Oddity : std::uint8_t {
  misfit,      // a cell that is not of the type of its column
  short_row,   // a record with fewer cells than columns; the others are missing
  long_row,    // a record with more cells
  ill_formed,  // bytes that are no characters of the encoding, read as U+FFFD
  widened,     // a cell from which on a column has a wider type
};

inline constexpr std::size_t kOddities = static_cast<std::size_t>(Oddity::widened) + 1;

VLTEXTSTREAM_EXPORT std::string_view to_string(Oddity oddity) noexcept;

struct VLTEXTSTREAM_EXPORT OddPlace {
  Oddity oddity = Oddity::misfit;
  std::uint64_t line = 0;  // the first of the record
  std::size_t column = 0;  // 0: the whole record
  std::string text;        // UTF-8, at most 100 characters

  bool operator==(const OddPlace&) const = default;
};

struct VLTEXTSTREAM_EXPORT Account {
  static constexpr std::size_t kMostRuns = 10'000;
  static constexpr std::size_t kMostPlaces = 100;

  struct Sum {
    std::uint64_t lines = 0;
    std::uint64_t bytes = 0;
    bool operator==(const Sum&) const = default;
  };

  std::uint64_t num_lines = 0;
  std::uint64_t num_bytes = 0;
  std::uint64_t num_rows = 0;
  std::array<Sum, kLineFates> sums{};

  // In the order of the file, the first kMostRuns; whether there are more.
  std::vector<FateRun> runs;
  bool has_more_runs = false;

  // How many of each there are, and the first kMostPlaces of each.
  std::array<std::uint64_t, kOddities> oddities{};
  std::vector<OddPlace> places;

  std::uint64_t lines_of(LineFate fate) const { return sums[static_cast<std::size_t>(fate)].lines; }
  std::uint64_t bytes_of(LineFate fate) const { return sums[static_cast<std::size_t>(fate)].bytes; }
  std::uint64_t count_of(Oddity oddity) const { return oddities[static_cast<std::size_t>(oddity)]; }

  // Counts lines that follow those before.
  void add(LineFate fate, std::uint64_t lines, std::uint64_t bytes);
  void add(OddPlace place);

  bool operator==(const Account&) const = default;
};

}  // namespace textio::reading
