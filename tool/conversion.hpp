// convert_table: reads a table and writes it, with one type for each column from its first row to its last.
//
//   const Converted converted = convert_table({open, restart, true});
//   converted.account.num_rows;
//
// The types of the columns were found in a sample. If a later cell widens a column, or a longer record adds one,
// what was written before is wrong: the table is read to its end, to learn all types, and then once more from its
// start. That needs an input that can be read twice, and an output that can be begun anew; with an output that
// cannot, the types are learned first. An input that cannot be read twice must be opened so that no column changes.
//
// Errors  those of the source and the writer; FileChanged if the two readings differ.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/reading/account.hpp>

#include "tool/table_source.hpp"
#include "tool/writing/table_writer.hpp"

namespace textio::tool {

class FileChanged : public std::runtime_error {
 public:
  FileChanged() : std::runtime_error("the file changed while it was read") {}
};

// What the first reading found.
struct LearnedTable {
  standalone::Layout layout;
  std::vector<ColumnHead> heads;

  // The positions of the columns that were widened after the first batch. The others get their types as they did
  // the first time.
  std::vector<std::size_t> widened;
};

struct ConversionSteps {
  // Opens the input at its start; the second time with what the first reading found.
  std::function<std::unique_ptr<TableSource>(const std::optional<LearnedTable>&)> open;

  // A writer to an empty output, which takes the place of the one before.
  std::function<TableWriter&()> restart;

  // Learn the columns before anything is written.
  bool learns_first = false;

  // Before anything is written, if the columns are learned first; and when all was read.
  std::function<void(const TableSource&)> check = [](const TableSource&) {};

  // After each batch.
  std::function<void(const reading::Account&)> progress = [](const reading::Account&) {};
};

struct Converted {
  reading::Account account;
  std::vector<std::string> names;
  std::optional<double> confidence;

  // The cells that widened columns, which a second reading does not meet; the first of them.
  std::uint64_t num_widened = 0;
  std::optional<reading::OddPlace> first_widened;
};

Converted convert_table(const ConversionSteps& steps);

// The first of this kind.
std::optional<reading::OddPlace> first_place(const reading::Account& account,
                                             reading::Oddity oddity);

}  // namespace textio::tool
