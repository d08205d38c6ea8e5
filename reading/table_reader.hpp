// TableReader: reads a whole table as typed columns, batch after batch, and accounts for every line.
//
//   TableReader reader("gauge.csv");
//   while (const std::optional<Batch> batch = reader.next()) use(batch->columns);
//   reader.account().lines_of(LineFate::comment);
//
//   const Table table = read_table("gauge.csv");   // all batches
//
// The lines are cut as the layout says, by the code that detected it. The types of the columns follow the kinds of
// the layout, whose cells were a sample: a cell further down may not fit. See ReadSettings::widen and the import
// rules in ReadSettings::rules; docs/reading.md shows each rule.
//
// Units      lines and columns are numbered from 1, as in Account; rows of a batch from 0.
// Ownership  bytes in memory are borrowed, and must outlive the reader. Batches are plain values.
// Errors     FileError when the file cannot be opened or read. ReadError for a rule that says `error`, a record
//            that is too long, and settings that contradict one another. std::invalid_argument for an unknown
//            encoding; std::bad_alloc. After an error next() gives nothing, and the account ends at the line that
//            failed.
// Cost       linear in the text, in memory for some windows of text and what they hold, whatever the file's size.
//            The input is read once, from its start to its end.
// Threads    one thread at a time. With ReadSettings::num_threads above 1 the reader has threads of its own, which
//            end with it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/layout.hpp>
#include <vltextstream/options/parser_options.hpp>
#include <vltextstream/reading/account.hpp>
#include <vltextstream/reading/column.hpp>

namespace textio::reading {

// A record or a cell that a rule refuses, or a table that cannot be read so. what() says where.
class VLTEXTSTREAM_EXPORT ReadError : public std::runtime_error {
 public:
  ReadError(const std::string& message, std::uint64_t line, std::size_t column);
  ~ReadError() override;

  std::uint64_t line() const noexcept { return line_; }    // 0: none
  std::size_t column() const noexcept { return column_; }  // 0: none

 private:
  std::uint64_t line_;
  std::size_t column_;
};

struct VLTEXTSTREAM_EXPORT ReadSettings {
  // The import rules of the record are obeyed, its exp_chars, and its variable lines if the layout is detected.
  // Everything else of `detect` is used only where the layout is detected.
  standalone::DetectSettings detect;

  // A cell that does not fit its column gives the column a wider type, from this batch on: a number that is no
  // integer makes reals, anything else text. read_table() gives all batches the widest type. Otherwise, rules.import_error_rule decides:
  // it becomes a missing value and is listed, its row is left out, its column is left out, or the read fails.
  bool widen = true;

  // Numbers with a decimal mark as ColumnType::decimal, money too.
  bool decimals_as_text = false;

  // All columns as text, as the file has it.
  bool all_text = false;

  // Few texts, each many times, as ColumnType::category.
  bool categories = false;

  // Types for columns, by name or by number from 1; all others follow the layout.
  struct ColumnChoice {
    std::u16string name;  // empty: by number
    std::size_t number = 0;
    ColumnType type = ColumnType::text;
  };
  std::vector<ColumnChoice> types;

  // A longer record is an error. Characters; at most 2^30.
  std::size_t longest_record = 16'777'216;

  // Reads the input twice, first to learn how many columns it has and which types hold all cells: then all
  // batches have the same columns and types. The input must be a regular file, or bytes.
  bool two_passes = false;

  // About as many characters as a batch is read from.
  std::size_t window = 1'048'576;

  unsigned num_threads = 1;

  // What does not fit, as it is in the file, is handed to this: misfits, and lines that are omitted or
  // failed. Called in the order of the file, from next().
  class Rejects {
   public:
    virtual ~Rejects() = default;
    virtual void add(std::uint64_t line, std::u16string_view text, std::string_view reason) = 0;
  };
  Rejects* rejects = nullptr;
};

struct VLTEXTSTREAM_EXPORT Batch {
  std::vector<Column> columns;
  std::size_t num_rows = 0;

  // The line of each row.
  std::vector<std::uint64_t> lines;
};

class VLTEXTSTREAM_EXPORT TableReader {
 public:
  // Detects the layout of the file at `path`, a path in the file system's own bytes, and reads it.
  explicit TableReader(const std::string& path, const ReadSettings& settings = {});

  // With a layout that was detected before, or made up: mode, separators, widths, quote, escape, encoding, header
  // and column facts count. Facts that are missing are those of text.
  TableReader(const std::string& path, const standalone::Layout& layout,
              const ReadSettings& settings = {});

  // The content of a file, perhaps compressed.
  static TableReader of_bytes(std::string_view bytes, const ReadSettings& settings = {});
  static TableReader of_bytes(std::string_view bytes, const standalone::Layout& layout,
                              const ReadSettings& settings = {});

  TableReader(TableReader&&) noexcept;
  TableReader& operator=(TableReader&&) noexcept;
  ~TableReader();

  const standalone::Layout& layout() const;

  // The names of the columns, unique, in UTF-8; more of them after a batch if a longer record added columns.
  const std::vector<std::string>& names() const;

  // The column that names the rows, from 1; 0: none.
  std::size_t row_names_column() const;

  // The next rows, at least one; none at the end.
  std::optional<Batch> next();

  // Of the batches so far; complete after the last.
  const Account& account() const;

 private:
  class VLTEXTSTREAM_LOCAL Work;
  VLTEXTSTREAM_LOCAL explicit TableReader(std::unique_ptr<Work> work);
  std::unique_ptr<Work> work_;
};

struct VLTEXTSTREAM_EXPORT Table {
  standalone::Layout layout;
  std::vector<std::string> names;
  std::size_t row_names_column = 0;

  // All of the same columns and types. A single one if options.collect_output is set.
  std::vector<Batch> batches;
  Account account;

  std::size_t num_rows() const;
};

// The whole table. If a later batch needs a wider type or another column, the file is read a second time; the bytes
// of a pipe are kept for that.
VLTEXTSTREAM_EXPORT Table read_table(const std::string& path, const ReadSettings& settings = {});
VLTEXTSTREAM_EXPORT Table read_table_of_bytes(std::string_view bytes,
                                              const ReadSettings& settings = {});

}  // namespace textio::reading
