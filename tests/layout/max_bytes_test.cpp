// Bytes that give no characters: whatever they are made of, no more of them are read than allowed.
#include <vltextstream/layout/detect_layout.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/source/text_stream.hpp>

#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::little_endian;
using testing_support::skippable_frame;
using testing_support::TempFolder;
using testing_support::zstd_of;

constexpr std::size_t kMegabyte = 1 << 20;
const std::uint64_t kDefault = DetectSettings().max_bytes;

std::string repeated(std::string_view piece, std::size_t bytes) {
  std::string all(piece);
  while (all.size() < bytes) all += all;
  all.resize(bytes - bytes % piece.size());
  return all;
}

constexpr auto kAllLines = std::numeric_limits<unsigned long>::max();

// The message of the FileError; empty when there was an answer.
std::string problem_with(const std::string& path, const DetectSettings& settings) {
  try {
    detect_layout(path, settings);
  } catch (const FileError& error) {
    return error.what();
  }
  return "";
}

std::string too_many(const std::string& path, std::uint64_t max_bytes) {
  return "cannot read '" + path + "': a look at it takes more than " + std::to_string(max_bytes) +
         " bytes, before or after decompression; the limit is max_bytes (--max-bytes)";
}

// --- encodings ----------------------------------------------------------------------------------

struct BarrenCase {
  const char* rule;
  const char* encoding;
  std::string bytes;  // that give no character, however often they are repeated
};
std::ostream& operator<<(std::ostream& out, const BarrenCase& row) { return out << row.rule; }

const BarrenCase kBarrenCases[] = {
    {"Iso2022KrDesignator", "ISO-2022-KR", "\x1B$)C"},
    {"Iso2022KrShift", "ISO-2022-KR", "\x0F"},
    {"Iso2022CnDesignator", "ISO-2022-CN", "\x1B$)A"},
    {"Iso2022CnDesignatorOfTheSecondSet", "ISO-2022-CN", "\x1B$*H"},
    {"Iso2022JpEscape", "ISO-2022-JP-2", "\x1B(B"},
    {"ScsuWindow", "SCSU", "\x12"},
    {"ScsuQuietTags", "SCSU", "\x10\x11"},
    {"Bocu1Reset", "BOCU-1", "\xFF"},
    {"HzLineContinuation", "HZ", "~\n"},
    {"EbcdicShift", "ibm-930", "\x0F"},
};

class BarrenBytes : public testing::TestWithParam<BarrenCase> {};

DetectSettings settings_for(const BarrenCase& row, std::uint64_t max_bytes) {
  DetectSettings settings;
  settings.encoding = row.encoding;
  settings.max_bytes = max_bytes;
  return settings;
}

TEST_P(BarrenBytes, AreReadUpToASmallLimit) {
  const TempFolder folder;
  const std::string bytes = repeated(GetParam().bytes, 200'000);
  const std::string path = folder.file("t", bytes);
  const std::string archive = folder.file("t.zst", zstd_of(bytes));
  for (const std::uint64_t limit : {std::uint64_t{100'000}, std::uint64_t{bytes.size() - 1}}) {
    EXPECT_EQ(problem_with(path, settings_for(GetParam(), limit)), too_many(path, limit));
    EXPECT_EQ(problem_with(archive, settings_for(GetParam(), limit)), too_many(archive, limit));
  }
  EXPECT_EQ(problem_with(path, settings_for(GetParam(), bytes.size())), "");
  EXPECT_EQ(problem_with(archive, settings_for(GetParam(), bytes.size())), "");
}

INSTANTIATE_TEST_SUITE_P(Table, BarrenBytes, testing::ValuesIn(kBarrenCases), ByRule());

// Where one code unit of room is left, the bytes after it must not be read one by one.
TEST(BarrenBytesByDefault, EndInAnErrorWhereverTheyBegin) {
  const TempFolder folder;
  const std::string barren = repeated("\x1B$)C", kDefault + kMegabyte);
  DetectSettings settings;
  settings.encoding = "ISO-2022-KR";
  for (const std::size_t letters : {std::size_t{0}, TextStream::kBufferUnits - 1}) {
    const std::string path = folder.file("t.zst", zstd_of(std::string(letters, 'a') + barren));
    EXPECT_LT(std::filesystem::file_size(path), kMegabyte);
    EXPECT_EQ(problem_with(path, settings), too_many(path, kDefault));
  }
}

// --- archives -----------------------------------------------------------------------------------

// A file that starts with `bytes`, followed by zeros that take no room on the disk.
std::string file_with_hole(const TempFolder& folder, std::string_view bytes, std::uint64_t size) {
  const std::string path = folder.file("hole", bytes);
  std::filesystem::resize_file(path, size);
  return path;
}

constexpr std::string_view kEmptyZstdFrame{"\x28\xB5\x2F\xFD\x20\x00\x01\x00\x00", 9};
constexpr std::uint64_t kHole = 0xFFFFFFFF;

// A frame that holds no text and is as long as a frame can be.
std::string start_of_skippable_frame() {
  return skippable_frame("").substr(0, 4) + little_endian(kHole);
}

// An archive with more than `bytes` bytes and next to no text.
std::string archive_of_nothing(const TempFolder& folder, std::string_view kind,
                               std::uint64_t bytes) {
  const std::size_t size = bytes + 1'000;
  if (kind == "gzip members") return folder.file("t", repeated(gzip_of(""), size));
  if (kind == "zstd frames") return folder.file("t", repeated(kEmptyZstdFrame, size));
  if (kind == "gzip padding") return file_with_hole(folder, gzip_of("a,b\n1,2\n"), kHole);
  return file_with_hole(folder, start_of_skippable_frame(), kHole);
}

class ArchiveWithoutText : public testing::TestWithParam<const char*> {};

TEST_P(ArchiveWithoutText, IsReadUpToASmallLimit) {
  const TempFolder folder;
  const std::string path = archive_of_nothing(folder, GetParam(), 100'000);
  for (const std::uint64_t limit : {1'000U, 100'000U}) {
    DetectSettings settings;
    settings.max_bytes = limit;
    EXPECT_EQ(problem_with(path, settings), too_many(path, limit));
    settings.encoding = "UTF-8";
    EXPECT_EQ(problem_with(path, settings), too_many(path, limit));
  }
}

TEST_P(ArchiveWithoutText, IsReadUpToTheDefault) {
  const TempFolder folder;
  const std::string path = archive_of_nothing(folder, GetParam(), kDefault);
  EXPECT_EQ(problem_with(path, {}), too_many(path, kDefault));
}

INSTANTIATE_TEST_SUITE_P(Kinds, ArchiveWithoutText,
                         testing::Values("gzip members", "zstd frames", "gzip padding",
                                         "zstd skippable"),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

// --- ordinary files -----------------------------------------------------------------------------

struct OrdinaryCase {
  const char* rule;
  const char* encoding;
  std::string line;            // eight characters
  std::size_t bytes_per_line;  // what the line has in this encoding
};
std::ostream& operator<<(std::ostream& out, const OrdinaryCase& row) { return out << row.rule; }

using namespace std::string_literals;

const OrdinaryCase kOrdinaryCases[] = {
    {"Ascii", "UTF-8", "12,abcd\n", 8},
    {"FourBytesEach", "UTF-8",
     "\xF0\x9F\x98\x80\xF0\x9F\x98\x80,\xF0\x9F\x98\x80\xF0\x9F\x98\x80"
     "\xF0\x9F\x98\x80\xF0\x9F\x98\x80\n",
     26},
    {"Utf32", "UTF-32LE", "1\0\0\0002\0\0\0,\0\0\0a\0\0\0b\0\0\0c\0\0\0d\0\0\0\n\0\0\0"s, 32},
    // A character that is shifted to and back alone: eight bytes and one.
    {"Iso2022JpShifts", "ISO-2022-JP", "\x1B$B0!\x1B(B,\x1B$B0!\x1B(B1\x1B$B0!\x1B(B1,\n", 29},
};

class OrdinaryFile : public testing::TestWithParam<OrdinaryCase> {};

TEST_P(OrdinaryFile, IsAnsweredByDefaultWithTheLargestSample) {
  constexpr std::size_t kLines = kSampleUnits / 8;
  const OrdinaryCase& row = GetParam();
  ASSERT_EQ(row.line.size(), row.bytes_per_line);
  const TempFolder folder;
  DetectSettings settings;
  settings.encoding = row.encoding;
  settings.num_lines = kAllLines;
  for (const std::size_t lines : {kLines, kLines + 100'000}) {
    const std::string bytes = repeated(row.line, lines * row.line.size());
    for (const std::string& path :
         {folder.file("t", bytes), folder.file("t.zst", zstd_of(bytes))}) {
      const Layout layout = detect_layout(path, settings);
      EXPECT_EQ(layout.characters_sampled, kSampleUnits);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Table, OrdinaryFile, testing::ValuesIn(kOrdinaryCases), ByRule());

TEST(MaxBytes, OfTheSizeOfTheFileAreEnough) {
  const TempFolder folder;
  const std::string bytes = repeated("12,abcd\n", 800'000);
  const std::string path = folder.file("t", bytes);
  DetectSettings settings;
  settings.num_lines = kAllLines;
  settings.max_bytes = bytes.size();
  EXPECT_EQ(detect_layout(path, settings).characters_sampled, bytes.size());
  settings.max_bytes = bytes.size() - 1;
  EXPECT_EQ(problem_with(path, settings), too_many(path, bytes.size() - 1));
}

// Of a large file only the beginning is needed, unless its lines are longer than that.
TEST(MaxBytes, NeedNotReachThePartThatNoLineIsTakenFrom) {
  const TempFolder folder;
  const std::string path = folder.file("t", repeated("12,abcd\n", 800'000));
  DetectSettings settings;
  settings.max_bytes = 200'000;
  EXPECT_EQ(detect_layout(path, settings).characters_sampled, 800U);
  const std::string endless = folder.file("endless", std::string(800'000, 'x'));
  EXPECT_EQ(problem_with(endless, settings), too_many(endless, settings.max_bytes));
}

// A prefix is looked at for the encoding first.
TEST(MaxBytes, CountForTheEncodingAsWell) {
  const TempFolder folder;
  const std::string path = folder.file("t", "a,b\n1,2\n");
  DetectSettings settings;
  settings.max_bytes = 7;
  EXPECT_EQ(problem_with(path, settings), too_many(path, 7));
  settings.max_bytes = 8;
  EXPECT_EQ(problem_with(path, settings), "");
}

// Bytes that are read twice count once: here a head in ASCII, then text that is not UTF-8.
TEST(MaxBytes, AreNotUsedUpByASecondReading) {
  const TempFolder folder;
  const std::string bytes = repeated("12,abcd\n", 200'000) + "caf\xE9,caf\xE9\n";
  DetectSettings settings;
  settings.num_lines = kAllLines;
  settings.max_bytes = bytes.size();
  EXPECT_EQ(detect_layout(folder.file("t", bytes), settings).encoding, "windows-1252");
}

}  // namespace
}  // namespace textio::standalone
