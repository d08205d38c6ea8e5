// Tables from files that fail, end early or change. This program opens files for the library. What a reader gives is
// the beginning of the true table, a failure is reported, and no stream stays open.
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include <vltextstream/reading/table_reader.hpp>
#include <vltextstream/vltextstream.hpp>

#include "support/faulty_device.hpp"
#include "support/temp_folder.hpp"

namespace {

std::function<std::FILE*()> open_next;

}  // namespace

namespace textio {

std::FILE* open_file(const std::u16string& /*path*/, const char* /*mode*/) { return open_next(); }

namespace {

using reading::Batch;
using reading::LineFate;
using reading::ReadSettings;
using reading::Table;
using reading::TableReader;
using standalone::FileError;
using standalone::Layout;
using testing_support::FaultyDevice;

// 60 rows of ten bytes each; windows of 256 characters end in the middle of some.
std::string table_of(std::size_t rows) {
  std::string bytes;
  for (std::size_t i = 0; i < rows; ++i) bytes += "abcd,fghi\n";
  return bytes;
}

Layout commas() {
  Layout layout;
  layout.mode = standalone::LayoutMode::delimited;
  layout.delimiters = {u","};
  layout.num_variables = 2;
  layout.encoding = "UTF-8";
  layout.confidence = 1.0;
  return layout;
}

ReadSettings small_windows() {
  ReadSettings settings;
  settings.window = 256;
  return settings;
}

TableReader reader_of(FaultyDevice& device) {
  open_next = [&] { return device.open(); };
  return TableReader("table.csv", commas(), small_windows());
}

std::size_t rows_of(TableReader& reader) {
  std::size_t rows = 0;
  while (const auto batch = reader.next()) rows += batch->num_rows;
  return rows;
}

const std::string kFailure = std::string("cannot read 'table.csv': ") + std::strerror(EIO);

TEST(TableFromAFaultyDevice, IsTheSameWithShortReads) {
  for (std::size_t most = 1; most <= 300; ++most) {
    FaultyDevice device(table_of(60));
    device.shorten_reads(most);
    TableReader reader = reader_of(device);
    EXPECT_EQ(rows_of(reader), 60U) << most;
    EXPECT_EQ(reader.account().num_bytes, 600U) << most;
  }
}

TEST(TableFromAFaultyDevice, IsAnErrorWhereverAReadFails) {
  for (std::size_t place = 0; place <= 600; ++place) {
    FaultyDevice device(table_of(60));
    device.fail_reads_at(place, EIO);
    try {
      TableReader reader = reader_of(device);
      try {
        rows_of(reader);
        FAIL() << place;
      } catch (const FileError& error) {
        EXPECT_EQ(error.what(), kFailure) << place;
        EXPECT_LE(reader.account().num_bytes, place);
        EXPECT_EQ(reader.account().num_rows, reader.account().lines_of(LineFate::data));
        EXPECT_FALSE(reader.next());
      }
    } catch (const FileError& error) {
      EXPECT_EQ(error.what(), kFailure) << place;
    }
    EXPECT_EQ(device.open_streams(), 0U) << place;
  }
}

TEST(TableFromAFaultyDevice, IsAnErrorIfTheLayoutCannotBeDetected) {
  for (std::size_t place = 0; place <= 600; place += 50) {
    FaultyDevice device(table_of(60));
    device.fail_reads_at(place, EIO);
    open_next = [&] { return device.open(); };
    EXPECT_THROW(
        {
          TableReader reader("table.csv");
          rows_of(reader);
        },
        FileError)
        << place;
    EXPECT_EQ(device.open_streams(), 0U) << place;
  }
}

TEST(TableFromAFaultyDevice, EndsWhereTheFileWasCutShort) {
  for (std::size_t place = 0; place <= 600; ++place) {
    FaultyDevice device(table_of(60));
    device.fail_reads_at(place, 0);
    TableReader reader = reader_of(device);
    EXPECT_EQ(rows_of(reader), (place + 9) / 10) << place;
    EXPECT_EQ(reader.account().num_bytes, place);
  }
}

TEST(TableFromAFaultyDevice, IsAnErrorIfTheFileCannotBeOpened) {
  open_next = [] {
    errno = ENOENT;
    return static_cast<std::FILE*>(nullptr);
  };
  EXPECT_THROW(TableReader("table.csv", commas()), FileError);
  EXPECT_THROW(TableReader("table.csv"), FileError);
  EXPECT_THROW(reading::read_table("table.csv"), FileError);
  open_next = [] {
    errno = ENOMEM;
    return static_cast<std::FILE*>(nullptr);
  };
  EXPECT_THROW(TableReader("table.csv", commas()), std::bad_alloc);
  EXPECT_THROW(reading::read_table("table.csv"), std::bad_alloc);
}

TEST(TableFromAFaultyDevice, IsReadOfAPipeThatClosesEarly) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  const std::string bytes = table_of(5) + "ab";
  ASSERT_EQ(::write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(ends[1]);
  open_next = [&] { return ::fdopen(ends[0], "rb"); };
  TableReader reader("a pipe", commas(), small_windows());
  EXPECT_EQ(rows_of(reader), 6U);
  EXPECT_EQ(reader.account().num_bytes, 52U);
}

// Detection and both passes open the file; the last time, it has grown by a longer record.
TEST(TableFromAFileThatChanges, IsAnErrorIfItsBatchesDiffer) {
  const testing_support::TempFolder folder;
  const std::string path = folder.file("table", "");
  std::string numbers = "n,m\n";
  for (int i = 0; i < 100; ++i) numbers += "1,22\n";
  const std::string text = numbers + "x,22\n";
  std::size_t opened = 0;
  std::size_t last = 0;
  FaultyDevice before(text);
  FaultyDevice after(text + "1,2,3\n");
  open_next = [&] { return ++opened == last ? after.open() : before.open(); };
  ReadSettings settings = small_windows();
  settings.detect.num_lines = 10;
  settings.detect.options.collect_output = true;
  const Table table = reading::read_table(path, settings);
  EXPECT_EQ(table.num_rows(), 101U);
  last = opened;
  opened = 0;
  try {
    reading::read_table(path, settings);
    FAIL() << "the table was read";
  } catch (const FileError& error) {
    EXPECT_STREQ(error.what(), "cannot read the table: the file changed while it was read");
  }
}

}  // namespace
}  // namespace textio
