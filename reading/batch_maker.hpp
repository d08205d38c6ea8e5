// make_batch: turns the records of a block into columns, by the rules of the caller.
//
//   BatchRoom room;   // for all batches of a thread
//   MadeBatch made = make_batch(block, plan, shape, settings, room);
//   made.batch.columns[0];
//   made.fates;               // what became of the lines
//   if (made.plan) ...        // from this block on, the plan has wider types or more columns
//
// A block can be made again, with another plan: nothing of it changes.
//
// Errors   ReadError as a value: `error`. std::bad_alloc.
// Cost     linear in the block. A block is made once more if a column is widened in it, or a row is left out.
// Threads  blocks can be made at the same time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/column_builder.hpp>
#include <vltextstream/reading/record_stream.hpp>
#include <vltextstream/reading/table_plan.hpp>
#include <vltextstream/reading/table_reader.hpp>

namespace textio::reading {

// How the records are written.
struct RecordShape {
  standalone::LayoutMode mode = standalone::LayoutMode::delimited;
  char16_t quote = 0;
  char16_t escape = 0;

  // Whether an escape before anything but a bar is a character of the cell.
  bool escapes_bars_alone = false;
  bool blanks_after_delimiters = false;
  std::vector<std::size_t> widths;
};

struct MadeBatch {
  Batch batch;

  // Consecutive lines with the same fate.
  std::vector<FateRun> fates;

  // All odd cells and records are counted; the first Account::kMostPlaces of each kind are listed.
  std::array<std::uint64_t, kOddities> oddities{};
  std::vector<OddPlace> places;

  struct Reject {
    std::uint64_t line = 0;
    std::u16string text;
    std::string reason;
  };
  std::vector<Reject> rejects;  // if they are wanted

  // The number of missing values, misfits and cut fields in each column.
  std::vector<std::size_t> missing;
  std::vector<std::size_t> misfits;
  std::vector<std::size_t> cut_short;

  // The plan that the batch was made with, if it is not the one that was given.
  std::optional<TablePlan> plan;

  std::optional<ReadError> error;
};

// A row of the table: a record, a part of one, several, or a blank line.
struct Row {
  std::uint32_t group = 0;
  std::uint32_t last_group = 0;
  std::uint32_t first_cell = 0;
  std::uint32_t num_cells = 0;
};

// Memory that one batch after the other uses.
struct BatchRoom {
  std::vector<Row> rows;
  std::vector<CellText> cells;
  std::vector<CellText> matrix;
  TextBuffer copied;  // texts of cells without their escapes
};

MadeBatch make_batch(const Block& block, const TablePlan& plan, const RecordShape& shape,
                     const ReadSettings& settings, BatchRoom& room);

}  // namespace textio::reading
