// Memory that runs out while a table is read: std::bad_alloc, nothing leaks, and the next reading is right.
#include <memory>
#include <new>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include <vltextstream/reading/table_reader.hpp>
#include "faults/failing_memory.hpp"
#include "support/archives.hpp"

namespace textio::reading {
namespace {

using standalone::Layout;
using standalone::LayoutMode;
using testing_support::AllocationFault;
using testing_support::Attempt;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;

std::string long_cells(std::size_t rows) {
  std::string bytes;
  for (std::size_t i = 0; i < rows; ++i) {
    bytes += "a cell that is longer than a short string,\"quoted \"\"and\"\" long,\nenough\"\n";
  }
  return bytes;
}

std::string numbers() {
  std::string bytes = "n,x,day,said\n";
  for (int i = 0; i < 30; ++i) bytes += "1,2.5,2024-01-31,yes\n";
  return bytes + "1.5,2,2024-02-01,no\nword,NA,soon,yes,more\nlast\n";
}

Layout commas(std::size_t columns) {
  Layout layout;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {u","};
  layout.num_variables = columns;
  layout.encoding = "UTF-8";
  layout.confidence = 1.0;
  return layout;
}

Layout of_widths() {
  Layout layout = commas(3);
  layout.mode = LayoutMode::fixed_width;
  layout.delimiters.clear();
  layout.widths = {4, 6, 9};
  return layout;
}

Layout aligned() {
  Layout layout = commas(3);
  layout.mode = LayoutMode::space_aligned;
  layout.delimiters = {u" ", u"\t"};
  return layout;
}

Layout of_the_cascade() {
  Layout layout = commas(2);
  layout.confidence.reset();
  return layout;
}

ReadSettings small_windows() {
  ReadSettings settings;
  settings.window = 256;
  return settings;
}

ReadSettings typed() {
  ReadSettings settings = small_windows();
  constexpr ColumnType kTypes[] = {ColumnType::integer, ColumnType::real, ColumnType::date,
                                   ColumnType::category};
  for (std::size_t c = 0; c < 4; ++c) settings.types.push_back({u"", c + 1, kTypes[c]});
  return settings;
}

ReadSettings leaving_out() {
  ReadSettings settings = typed();
  settings.widen = false;
  settings.detect.options.import_error_rule = parser::row_rule::omitrow;
  settings.detect.options.missing_rule = parser::row_rule::omitrow;
  return settings;
}

ReadSettings in_two_passes() {
  ReadSettings settings = typed();
  settings.two_passes = true;
  return settings;
}

ReadSettings failing_at_a_misfit() {
  ReadSettings settings = typed();
  settings.widen = false;
  settings.detect.options.import_error_rule = parser::row_rule::error;
  return settings;
}

std::string description_of(const Batch& batch) {
  std::string out = std::to_string(batch.num_rows);
  for (const Column& column : batch.columns) {
    out += ' ' + std::string(to_string(column.type)) + ' ' + std::to_string(column.num_missing) +
           ' ' + column.bytes;
    for (const std::int64_t value : column.integers) out += std::to_string(value);
    for (const double value : column.reals) out += std::to_string(value);
  }
  return out + '\n';
}

// A reading from the construction of the reader to the end.
class Reading : public Attempt {
 public:
  Reading(std::string bytes, Layout layout, ReadSettings settings)
      : bytes_(std::move(bytes)), layout_(std::move(layout)), settings_(std::move(settings)) {}

  void call() override {
    out_.clear();
    try {
      TableReader reader = TableReader::of_bytes(bytes_, layout_, settings_);
      while (const auto batch = reader.next()) out_ += description_of(*batch);
      out_ += std::to_string(reader.account().num_lines);
      for (const OddPlace& place : reader.account().places) out_ += ' ' + place.text;
    } catch (const ReadError& error) {
      out_ += error.what();
    }
  }
  std::string answer() override { return out_; }

 private:
  const std::string bytes_;
  const Layout layout_;
  const ReadSettings settings_;
  std::string out_;
};

void expect_to_survive_reading(const std::string& bytes, const Layout& layout,
                               const ReadSettings& settings) {
  expect_to_survive_failing_memory(
      [&] { return std::make_unique<Reading>(bytes, layout, settings); });
}

TEST(TableReaderMemory, RunsOutInQuotedText) {
  expect_to_survive_reading(long_cells(12), commas(2), small_windows());
}
TEST(TableReaderMemory, RunsOutInTheStrategiesOfTheEngine) {
  expect_to_survive_reading(long_cells(6), of_the_cascade(), small_windows());
}
TEST(TableReaderMemory, RunsOutInTypedColumnsThatAreWidened) {
  expect_to_survive_reading(numbers(), commas(4), typed());
}
TEST(TableReaderMemory, RunsOutWhereRowsAreLeftOut) {
  expect_to_survive_reading(numbers(), commas(4), leaving_out());
}
TEST(TableReaderMemory, RunsOutInTwoPasses) {
  expect_to_survive_reading(numbers(), commas(4), in_two_passes());
}
TEST(TableReaderMemory, RunsOutInARefusal) {
  expect_to_survive_reading(numbers(), commas(4), failing_at_a_misfit());
}
TEST(TableReaderMemory, RunsOutInFixedWidths) {
  expect_to_survive_reading("Aare  271.5 Bern\nEmme    108\nThur 125 Wila and more\n", of_widths(),
                            small_windows());
}
TEST(TableReaderMemory, RunsOutInAlignedColumns) {
  expect_to_survive_reading("Aare  271.5 Bern\nEmme 108\nThur 125 Wila more\n", aligned(),
                            small_windows());
}
TEST(TableReaderMemory, RunsOutInPackedBytes) {
  expect_to_survive_reading(testing_support::gzip_of(long_cells(4)), commas(2), small_windows());
}

// A whole table, whose layout is detected, and whose batches are joined.
class WholeTable : public Attempt {
 public:
  void call() override {
    ReadSettings settings = small_windows();
    settings.detect.options.collect_output = true;
    const Table table = read_table_of_bytes(bytes_, settings);
    out_.clear();
    for (const Batch& batch : table.batches) out_ += description_of(batch);
  }
  std::string answer() override { return out_; }

 private:
  const std::string bytes_ = "n,m\n1,2\n3,4\n5,6\n7,8\n";
  std::string out_;
};

TEST(TableReaderMemory, RunsOutInAWholeTable) {
  expect_to_survive_failing_memory([] { return std::make_unique<WholeTable>(); });
}

// The threads of a reader have their own memory. What fails here is the thread that asks for batches, also while it
// starts the others.
TEST(TableReaderMemory, RunsOutBesideOtherThreads) {
  ReadSettings settings = typed();
  settings.num_threads = 3;
  const std::string bytes = numbers();
  Reading undisturbed(bytes, commas(4), settings);
  undisturbed.call();
  bool met = testing_support::allocations_can_fail();
  for (std::size_t nth = 1; met; ++nth) {
    SCOPED_TRACE(nth);
    Reading reading(bytes, commas(4), settings);
    bool failed = false;
    {
      const AllocationFault fault(nth, FaultKind::single);
      failed = testing_support::runs_out_of_memory(reading);
      met = fault.was_met();
    }
    if (failed) reading.call();
    EXPECT_EQ(reading.answer(), undisturbed.answer());
  }
}

}  // namespace
}  // namespace textio::reading
