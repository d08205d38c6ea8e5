// detect_layout from files that fail. This program opens files for the library: devices with short
// reads, with a failure at a chosen byte, or that cannot be opened. A result is based on the whole
// file, or there is none.
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/vltextstream.hpp>

#include "support/faulty_device.hpp"
#include "support/layout_text.hpp"
#include "support/rule_name.hpp"

namespace {

std::function<std::FILE*()> open_next;

}  // namespace

namespace textio {

std::FILE* open_file(const std::u16string& /*path*/, const char* /*mode*/) { return open_next(); }

namespace {

using standalone::detect_layout;
using standalone::DetectSettings;
using testing_support::ByRule;
using testing_support::every_member_of;
using testing_support::FaultyDevice;

const std::string kTable = "station;value\nM\xC3\xBCnchen;1.5\nKyoto \xE4\xBA\xAC;2.5\nrome;3.5\n";

std::string answer_from(FaultyDevice& device, const DetectSettings& settings = {}) {
  open_next = [&] { return device.open(); };
  return every_member_of(detect_layout("table.csv", settings));
}

std::string undisturbed_answer(const std::string& bytes) {
  FaultyDevice device(bytes);
  return answer_from(device);
}

// The message of the FileError; "" if there was a result.
std::string error_from(FaultyDevice& device, const DetectSettings& settings = {}) {
  try {
    answer_from(device, settings);
  } catch (const standalone::FileError& error) {
    return error.what();
  }
  return "";
}

std::string message(int error) {
  return std::string("cannot read 'table.csv': ") + std::strerror(error);
}

DetectSettings in_utf8() {
  DetectSettings settings;
  settings.encoding = "UTF-8";
  return settings;
}

DetectSettings with_all_lines(DetectSettings settings = {}) {
  settings.num_lines = std::numeric_limits<unsigned long>::max();
  return settings;
}

std::string long_table(std::size_t bytes) {
  std::string text;
  text.reserve(bytes + 8);
  while (text.size() < bytes) text += "1.5,abc\n";
  text.resize(bytes);
  return text;
}

// --- short reads ---------------------------------------------------------------------------------

TEST(DetectionFromAFaultyDevice, IsTheSameWithShortReads) {
  const std::string expected = undisturbed_answer(kTable);
  for (std::size_t most = 1; most <= kTable.size(); ++most) {
    FaultyDevice device(kTable);
    device.shorten_reads(most);
    EXPECT_EQ(answer_from(device), expected) << most;
  }
}

TEST(DetectionFromAFaultyDevice, IsTheSameWithShortReadsOfALongFile) {
  const std::string bytes = long_table(3 * TextStream::kBufferUnits);
  FaultyDevice sound(bytes);
  const std::string expected = answer_from(sound, with_all_lines());
  for (const std::size_t most :
       {1'000U, 4'095U, 4'096U, 65'534U, 65'535U, 65'536U, 65'537U, 131'072U}) {
    FaultyDevice device(bytes);
    device.shorten_reads(most);
    EXPECT_EQ(answer_from(device, with_all_lines()), expected) << most;
  }
}

// --- reads that fail -----------------------------------------------------------------------------

TEST(DetectionFromAFaultyDevice, IsAnErrorWhereverAReadFails) {
  for (const int error : {EIO, ENXIO, ESTALE}) {
    for (std::size_t place = 0; place <= kTable.size(); ++place) {
      FaultyDevice device(kTable);
      device.fail_reads_at(place, error);
      EXPECT_EQ(error_from(device), message(error)) << place;
      EXPECT_EQ(device.open_streams(), 0U);
    }
  }
}

// With a given encoding each byte is read once, so a temporary failure is reported as well.
TEST(DetectionFromAFaultyDevice, IsAnErrorWhereverAReadOfAGivenEncodingFailsOnce) {
  for (std::size_t place = 0; place <= kTable.size(); ++place) {
    FaultyDevice device(kTable);
    device.fail_reads_at(place, EIO, 1);
    EXPECT_EQ(error_from(device, in_utf8()), message(EIO)) << place;
    EXPECT_EQ(device.open_streams(), 0U);
  }
}

// Without one the first bytes are read twice; a failure in the first reading alone is not
// forgotten.
TEST(DetectionFromAFaultyDevice, IsAnErrorWhereverAReadFailsOnce) {
  for (std::size_t place = 0; place <= kTable.size(); ++place) {
    FaultyDevice device(kTable);
    device.fail_reads_at(place, EIO, 1);
    EXPECT_EQ(error_from(device), message(EIO)) << place;
    EXPECT_EQ(device.open_streams(), 0U);
  }
}

struct PlaceCase {
  const char* rule;
  std::size_t place;
};
std::ostream& operator<<(std::ostream& out, const PlaceCase& row) { return out << row.rule; }

constexpr std::size_t kHeadBytes = 65'536;

const PlaceCase kPlaceCases[] = {
    {"BeforeTheChunkIsFull", 65'534},
    {"AfterAChunk", 65'535},
    {"AfterTheHead", kHeadBytes},
    {"AfterTheHeadAndAByte", kHeadBytes + 1},
    {"BeforeTheBufferIsFull", TextStream::kBufferUnits - 1},
    {"AfterABuffer", TextStream::kBufferUnits},
    {"AfterABufferAndAByte", TextStream::kBufferUnits + 1},
    {"AfterTwoBuffers", 2 * TextStream::kBufferUnits},
    {"AtTheEnd", 3 * TextStream::kBufferUnits},
};

class DetectionFromALongFaultyDevice : public testing::TestWithParam<PlaceCase> {};

TEST_P(DetectionFromALongFaultyDevice, IsAnError) {
  FaultyDevice device(long_table(3 * TextStream::kBufferUnits));
  device.fail_reads_at(GetParam().place, EIO);
  EXPECT_EQ(error_from(device, with_all_lines()), message(EIO));
  EXPECT_EQ(device.open_streams(), 0U);
}

TEST_P(DetectionFromALongFaultyDevice, IsAnErrorEvenIfTheFailureIsTemporary) {
  FaultyDevice device(long_table(3 * TextStream::kBufferUnits));
  device.fail_reads_at(GetParam().place, EIO, 1);
  EXPECT_EQ(error_from(device, with_all_lines(in_utf8())), message(EIO));
}

// What follows the first buffer is not read for a hundred lines.
TEST_P(DetectionFromALongFaultyDevice, IsTheSameWhereNoLineIsNeeded) {
  const std::string bytes = long_table(3 * TextStream::kBufferUnits);
  FaultyDevice device(bytes);
  device.fail_reads_at(GetParam().place, EIO);
  const bool is_read = GetParam().place <= TextStream::kBufferUnits;
  EXPECT_EQ(error_from(device), is_read ? message(EIO) : "");
  if (is_read) return;
  EXPECT_EQ(answer_from(device), undisturbed_answer(bytes));
}

INSTANTIATE_TEST_SUITE_P(Table, DetectionFromALongFaultyDevice, testing::ValuesIn(kPlaceCases),
                         ByRule());

// --- seeks ---------------------------------------------------------------------------------------

// Like a pipe, which is read as UTF-8: the rest of the result is the same.
TEST(DetectionFromAFaultyDevice, ThatCannotSeekReadsItOnce) {
  FaultyDevice device(kTable);
  device.fail_seeks(1, ESPIPE);
  FaultyDevice sound(kTable);
  open_next = [&] { return device.open(); };
  const standalone::Layout layout = detect_layout("table.csv");
  EXPECT_EQ(layout.encoding_found, standalone::EncodingFound::fallback);
  open_next = [&] { return sound.open(); };
  EXPECT_EQ(layout.characters_sampled, detect_layout("table.csv").characters_sampled);
  EXPECT_EQ(layout.num_variables, 2U);
}

// The seek back to the start, after the first bytes were read, may fail.
TEST(DetectionFromAFaultyDevice, ThatDoesNotGoBackIsAnError) {
  FaultyDevice device(kTable);
  device.fail_seeks(2, EIO);
  EXPECT_EQ(error_from(device), message(EIO));
  EXPECT_EQ(device.open_streams(), 0U);
}

// --- files that cannot be opened -----------------------------------------------------------------

TEST(DetectionWithoutAFile, NamesTheReason) {
  for (const int error : {ENOENT, EACCES, EMFILE}) {
    open_next = [error]() -> std::FILE* {
      errno = error;
      return nullptr;
    };
    try {
      detect_layout("table.csv");
      ADD_FAILURE() << error;
    } catch (const standalone::FileError& problem) {
      EXPECT_EQ(problem.what(), std::string("cannot open 'table.csv': ") + std::strerror(error));
    }
  }
}

// A lack of memory is not an error of the file.
TEST(DetectionFromAFaultyDevice, ThatLacksMemoryThrowsBadAlloc) {
  for (std::size_t place = 0; place <= kTable.size(); ++place) {
    FaultyDevice device(kTable);
    device.fail_reads_at(place, ENOMEM);
    EXPECT_THROW(answer_from(device), std::bad_alloc) << place;
    EXPECT_THROW(answer_from(device, in_utf8()), std::bad_alloc) << place;
    EXPECT_EQ(device.open_streams(), 0U);
  }
  FaultyDevice device(kTable);
  device.fail_seeks(2, ENOMEM);
  EXPECT_THROW(answer_from(device), std::bad_alloc);
  open_next = []() -> std::FILE* {
    errno = ENOMEM;
    return nullptr;
  };
  EXPECT_THROW(detect_layout("table.csv"), std::bad_alloc);
}

TEST(DetectionWithoutAFile, PassesOnWhatTheHostThrows) {
  open_next = []() -> std::FILE* { throw std::bad_alloc(); };
  EXPECT_THROW(detect_layout("table.csv"), std::bad_alloc);
  open_next = []() -> std::FILE* { throw std::logic_error("not here"); };
  EXPECT_THROW(detect_layout("table.csv"), std::logic_error);
  open_next = []() -> std::FILE* { throw 7; };
  EXPECT_THROW(detect_layout("table.csv"), int);
}

TEST(SourceWithoutAFile, IsUnchanged) {
  FaultyDevice device("text");
  FileTextSource source;
  const std::u16string path = u"table.csv";
  open_next = [&] { return device.open(); };
  source.init_stream(path, "UTF-8");
  open_next = []() -> std::FILE* { throw 7; };
  EXPECT_THROW(source.init_stream(path, "UTF-8"), int);
  open_next = []() -> std::FILE* { return nullptr; };
  EXPECT_THROW(source.init_stream(path, "UTF-8"), std::runtime_error);
  EXPECT_EQ(TextStream(&source).find_first_pos_of(TextStream::kEnd, 0), 4U);
}

// An unknown encoding is reported after the file has been closed.
TEST(DetectionFromAFaultyDevice, ClosesTheFileOfAnUnknownEncoding) {
  FaultyDevice device(kTable);
  DetectSettings settings;
  settings.encoding = "nobody knows";
  EXPECT_THROW(answer_from(device, settings), std::invalid_argument);
  EXPECT_EQ(device.open_streams(), 0U);
}

// --- the end of a file that goes on after the sample ---------------------------------------------

// 320,008 bytes of records, and a footer of 39 bytes.
constexpr std::size_t kTableBytes = 320'008;
constexpr std::size_t kFileBytes = 320'047;

std::string table_with_footer() {
  return long_table(kTableBytes) + "Total,\n\nAll figures without guarantee.\n";
}

// The last 64 KB, from a whole block of 8,192 bytes on: (320,047 - 65,536) / 8,192 is 31.07.
constexpr std::size_t kEndBegins = 32 * 8'192;

enum class End { told, not_told };

// Whatever happens at the end of the file, nothing is thrown, and the rest of the answer is the same.
void expect_layout(FaultyDevice& device, End end) {
  open_next = [&] { return device.open(); };
  const standalone::Layout layout = detect_layout("table.csv", in_utf8());
  FaultyDevice sound(table_with_footer());
  EXPECT_EQ(every_member_of(layout), answer_from(sound, in_utf8()));
  EXPECT_EQ(device.open_streams(), 0U);
  ASSERT_EQ(layout.tail.has_value(), end == End::told);
  if (!layout.tail) return;
  EXPECT_EQ(layout.tail->footer,
            (std::vector<std::u16string>{u"Total,", u"All figures without guarantee."}));
  EXPECT_EQ(layout.tail->bytes, kFileBytes - kEndBegins);
}

TEST(EndOfAFaultyDevice, IsTheSameWithShortReads) {
  for (const std::size_t most : {100U, 1'000U, 4'095U, 8'192U, 65'535U, 131'072U}) {
    FaultyDevice device(table_with_footer());
    device.shorten_reads(most);
    SCOPED_TRACE(most);
    expect_layout(device, End::told);
  }
}

// The sample is in the first 131,072 bytes. What is between them and the end is never read.
TEST(EndOfAFaultyDevice, IsToldWhereNothingBeforeItCanBeRead) {
  for (const std::size_t place : {140'000UL, 200'000UL, kEndBegins - 1}) {
    FaultyDevice device(table_with_footer());
    device.fail_reads_at(place, EIO);
    SCOPED_TRACE(place);
    expect_layout(device, End::told);
  }
}

TEST(EndOfAFaultyDevice, IsNotToldWhereverAReadOfItFails) {
  for (const std::size_t place : {kEndBegins, kEndBegins + 1, kEndBegins + 30'000, kTableBytes,
                                  kFileBytes - 30, kFileBytes - 1}) {
    for (const int error : {EIO, ENXIO, ESTALE}) {
      for (const std::size_t times : {std::size_t{1}, FaultyDevice::kAlways}) {
        FaultyDevice device(table_with_footer());
        device.fail_reads_at(place, error, times);
        SCOPED_TRACE(place);
        expect_layout(device, End::not_told);
      }
    }
  }
}

// As after the file was cut while it was read.
TEST(EndOfAFaultyDevice, IsNotToldOfAFileThatEndsBeforeIt) {
  for (const std::size_t place : {kEndBegins, kEndBegins + 30'000, kFileBytes - 1}) {
    FaultyDevice device(table_with_footer());
    device.fail_reads_at(place, 0);
    SCOPED_TRACE(place);
    expect_layout(device, End::not_told);
  }
}

// Which seeks a detection makes depends on the C library: each of them fails in turn, once or with all that
// follow it. Those before the look at the end concern a sample that was read whole.
TEST(EndOfAFaultyDevice, IsToldOrNotWhicheverSeekFails) {
  FaultyDevice sound(table_with_footer());
  expect_layout(sound, End::told);
  const std::size_t seeks = sound.seeks();
  ASSERT_GT(seeks, 0U);
  for (std::size_t nth = 1; nth <= seeks; ++nth) {
    for (const std::size_t times : {std::size_t{1}, FaultyDevice::kAlways}) {
      for (const int error : {EIO, ESPIPE, EINVAL}) {
        FaultyDevice device(table_with_footer());
        device.fail_seeks(nth, error, times);
        open_next = [&] { return device.open(); };
        const standalone::Layout layout = detect_layout("table.csv", in_utf8());
        EXPECT_EQ(every_member_of(layout), answer_from(sound, in_utf8())) << nth;
        EXPECT_EQ(device.open_streams(), 0U);
        if (layout.tail) {
          EXPECT_EQ(layout.tail->footer_lines, 2U) << nth;
        }
      }
    }
  }
}

TEST(EndOfAFaultyDevice, IsNotToldOfOneThatCannotSeek) {
  FaultyDevice device(table_with_footer());
  device.fail_seeks(1, ESPIPE);
  expect_layout(device, End::not_told);
}

}  // namespace
}  // namespace textio
