// Footers: the lines below a table that are not records of it.
//
//   const TableProfile profile = profile_of(cut.records, cut.reading, table, kinds, names_rows);
//   first_footer(lines, cut.records, table, profile);    // the first record that is a footer
//
// From the last record upwards, each one is a footer until one is data:
//
//   - one with another number of cells, unless what it has is what its columns hold: a record that
//     was cut off, or has a cell too many, is data
//   - one with texts over every column of values
//   - one of at most three that begin with a word for a total, such as "Total" or "Mittelwert", if
//     cells are empty that the column fills otherwise, if a blank line or a rule is above it, or if
//     the word is in a column of values
//
// Units      records and lines are numbered from 0.
// Ownership  a profile is a plain value and outlives the text.
// Cost       linear in the records, with a look into the cells of the last few.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/evidence.hpp>
#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// Kinds of cells that may occur in the same column.
enum class CellGroup : std::uint8_t { nothing, text, number, date, time, duration, other };

// `nothing` for an empty or missing cell; boolean, addresses and the like are `other`.
CellGroup group_of(CellKind kind) noexcept;

// What the cells of a column have in common.
struct ColumnProfile {
  CellGroup group = CellGroup::nothing;  // of most cells that are filled
  bool is_typed = false;                 // nearly all of these are values of this group
  bool is_full = false;                  // at least three quarters of the cells are filled
  std::uint32_t kinds = 0;               // those that occur, one bit each
  std::size_t longest = 0;               // code units
};

// How the records of a table are cut, and what they hold.
struct TableProfile {
  Reading reading;
  std::vector<ColumnProfile> columns;

  // As in Records.
  std::vector<std::size_t> column_starts;
  std::vector<std::size_t> column_ends;

  // How many of the first data hold names.
  std::size_t names_rows = 0;
};

// `kinds` are those of the first data. Up to three records at the end that may be of a footer do not count.
TableProfile profile_of(const Records& records, const Reading& reading, const TableFrame& table,
                        const CellKinds& kinds, std::size_t names_rows);

// The first record of the footer of a text that ends with these lines; the number of records if
// there is none. At least one record of data is left, or as many as hold names and one more.
std::size_t first_footer(const SampledLines& lines, const Records& records, const TableFrame& table,
                         const TableProfile& profile);

// Whether a cell begins with a word for a total or an average, in any case.
bool begins_with_total(std::u16string_view cell);

// The footer at the end of a text of which the sample does not have the end.
struct EndFooter {
  std::size_t num_lines = 0;
  std::vector<std::u16string_view> lines;
  std::size_t num_units = 0;  // code units that were looked at
};

// `text` begins at a line, perhaps inside a quoted cell, and ends where the whole text does. If it
// `follows_data`, it may have nothing but a footer. The last 8,192 code units are enough if they have records
// and are clear.
EndFooter footer_at_end(std::u16string_view text, const TableProfile& profile, bool follows_data);

// From the first line that begins in `text` on.
std::u16string_view from_next_line(std::u16string_view text);

// The lines of a part of the text from its middle or end, cut as the table is. Where a part begins inside a quoted
// cell, its first lines are left out.
Records cut_part(const SampledLines& lines, const TableProfile& profile);

}  // namespace textio::assessment
