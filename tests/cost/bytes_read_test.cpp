// How much of a file a detection reads. The file is made up here: this program opens files for the
// library, and gives it a stream that notes each byte it hands out.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/reading/first_lines.hpp>
#include <vltextstream/vltextstream.hpp>

#include "support/rule_name.hpp"

namespace {

// A file in memory that knows how often each of its bytes has been read.
struct WatchedFile {
  std::string bytes;
  std::vector<std::uint8_t> reads;
  std::size_t position = 0;
  std::size_t times_opened = 0;
  std::size_t times_moved = 0;  // to another position than the one after the last read

  void put(std::string content) {
    reads.assign(content.size(), 0);
    bytes = std::move(content);
    times_opened = 0;
    times_moved = 0;
    position = 0;
  }

  std::size_t bytes_touched() const { return bytes_touched_from(0); }

  std::size_t bytes_touched_from(std::size_t begin) const {
    return bytes.size() - begin -
           static_cast<std::size_t>(
               std::count(reads.begin() + static_cast<std::ptrdiff_t>(begin), reads.end(), 0));
  }
};

WatchedFile watched;

ssize_t read_watched(void* /*file*/, char* to, std::size_t size) {
  const std::size_t count = std::min(size, watched.bytes.size() - watched.position);
  std::memcpy(to, watched.bytes.data() + watched.position, count);
  for (std::size_t i = 0; i < count; ++i) ++watched.reads[watched.position + i];
  watched.position += count;
  return static_cast<ssize_t>(count);
}

int seek_watched(void* /*file*/, off64_t* offset, int whence) {
  const std::size_t base = whence == SEEK_SET   ? 0
                           : whence == SEEK_CUR ? watched.position
                                                : watched.bytes.size();
  const std::size_t target =
      std::min(base + static_cast<std::size_t>(*offset), watched.bytes.size());
  watched.times_moved += target != watched.position;
  watched.position = target;
  *offset = static_cast<off64_t>(watched.position);
  return 0;
}

}  // namespace

namespace textio {

// There is one file, whatever the path.
std::FILE* open_file(const std::u16string& /*path*/, const char* mode) {
  ++watched.times_opened;
  watched.position = 0;
  return ::fopencookie(&watched, mode, {read_watched, nullptr, seek_watched, nullptr});
}

namespace {

using testing_support::ByRule;

// Lines of eight characters.
std::string table_of(std::size_t characters) {
  std::string text;
  text.reserve(characters);
  while (text.size() < characters) text += "1.5,abc\n";
  text.resize(characters);
  return text;
}

std::string as_utf16(const std::string& ascii) {
  std::string bytes = "\xFF\xFE";
  for (const char c : ascii) bytes.append({c, '\0'});
  return bytes;
}

// The same number of characters, every eighth of which takes two bytes.
std::string with_two_byte_characters(const std::string& ascii) {
  std::string bytes;
  for (const char c : ascii) bytes += c == 'b' ? std::string("\xC3\xA9") : std::string(1, c);
  return bytes;
}

// The end of a long file that is read after the sample.
constexpr std::size_t kTail = 65'536;
constexpr std::size_t kStartOfTheEnd = 3 * kSampleUnits - kTail;

constexpr auto kAllLines = std::numeric_limits<unsigned long>::max();

standalone::Layout detect(const std::string& bytes, const std::optional<std::string>& encoding,
                          unsigned long num_lines) {
  watched.put(bytes);
  standalone::DetectSettings settings;
  settings.encoding = encoding;
  settings.num_lines = num_lines;
  return standalone::detect_layout("table.csv", settings);
}

struct FileCase {
  const char* rule;
  std::size_t characters;
};
std::ostream& operator<<(std::ostream& out, const FileCase& row) { return out << row.rule; }

const FileCase kFilesThatFit[] = {
    {"OneCharacter", 1},
    {"FewLines", 800},
    {"JustBelowOneBuffer", TextStream::kBufferUnits - 1},
    {"ExactlyOneBuffer", TextStream::kBufferUnits},
    {"JustAboveOneBuffer", TextStream::kBufferUnits + 1},
    {"SeveralBuffers", 10 * TextStream::kBufferUnits + 8},
    {"ExactlyTheSample", kSampleUnits},
    {"OneCharacterMore", kSampleUnits + 1},
};

class BytesRead : public testing::TestWithParam<FileCase> {
 protected:
  static void expect_each_byte_once(const std::string& bytes, const std::string& encoding) {
    detect(bytes, encoding, kAllLines);
    const auto once = std::count(watched.reads.begin(), watched.reads.end(), 1);
    EXPECT_EQ(static_cast<std::size_t>(once), bytes.size()) << encoding;
    EXPECT_EQ(watched.times_opened, 1u) << encoding;
  }
};

TEST_P(BytesRead, IsEachByteOfTheFileOnce) {
  const std::string text = table_of(GetParam().characters);
  expect_each_byte_once(text, "UTF-8");
  expect_each_byte_once(text, "windows-1252");
  expect_each_byte_once(with_two_byte_characters(text), "UTF-8");
  expect_each_byte_once(as_utf16(text), "UTF-16");
}
INSTANTIATE_TEST_SUITE_P(Table, BytesRead, testing::ValuesIn(kFilesThatFit), ByRule());

// After the sample comes what the stream has loaded in whole buffers, and the one block that the C
// stream has at hand.
constexpr std::size_t kCharactersAfterTheSample = 2 * TextStream::kBufferUnits;

class BytesReadOfALongFile : public testing::Test {
 protected:
  static void expect_sample_once_and_little_more(const std::string& bytes,
                                                 std::size_t bytes_per_character,
                                                 const std::string& encoding) {
    detect(bytes, encoding, kAllLines);
    const auto sample_end =
        watched.reads.begin() + static_cast<std::ptrdiff_t>(bytes_per_character * kSampleUnits);
    const auto reads_once = [](std::uint8_t reads) { return reads == 1; };
    EXPECT_TRUE(std::all_of(watched.reads.begin(), sample_end, reads_once));
    EXPECT_TRUE(std::none_of(sample_end, watched.reads.end(),
                             [](std::uint8_t reads) { return reads > 1; }));
    const std::size_t at_end = watched.bytes_touched_from(bytes.size() - kTail);
    EXPECT_LE(watched.bytes_touched() - at_end,
              bytes_per_character * (kSampleUnits + kCharactersAfterTheSample) + BUFSIZ);
    EXPECT_EQ(watched.times_opened, 1u);
  }
};

TEST_F(BytesReadOfALongFile, StopSoonAfterTheSample) {
  expect_sample_once_and_little_more(table_of(3 * kSampleUnits), 1, "UTF-8");
}

TEST_F(BytesReadOfALongFile, StopSoonAfterTheSampleOfTwoByteUnits) {
  expect_sample_once_and_little_more(as_utf16(table_of(3 * kSampleUnits)), 2, "UTF-16");
}

// Of what the detection has read, the first lines need a part.
TEST_F(BytesReadOfALongFile, ServeTheFirstLines) {
  const standalone::Layout layout = detect(table_of(3 * kSampleUnits), "UTF-8", 100);
  const std::size_t touched = watched.bytes_touched();
  EXPECT_LT(touched, kSampleUnits);
  EXPECT_EQ(reading::first_lines("table.csv", layout, {}, 12).size(), 12U);
  EXPECT_EQ(watched.times_opened, 2U);
  EXPECT_EQ(watched.bytes_touched(), touched);
}

// --- how many lines are asked for ----------------------------------------------------------------

// Lines of eight characters, from `begin` on without a line ending.
std::string table_that_ends_at(std::size_t begin) {
  std::string text = table_of(3 * kSampleUnits);
  std::replace(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), '\n', ' ');
  return text;
}

struct LinesCase {
  const char* rule;
  unsigned long num_lines;
  std::size_t last_line_end;
  std::size_t blocks;  // of the stream, whose buffer grows by more than it is asked for
};
std::ostream& operator<<(std::ostream& out, const LinesCase& row) { return out << row.rule; }

const LinesCase kLinesCases[] = {
    {"NoLine", 0, kAllLines, 1},
    {"AHundredLines", 100, kAllLines, 1},
    {"AsManyLinesAsFitIntoTheFirstPrefix", 8'000, kAllLines, 1},
    {"AsManyLinesAsFitIntoTheSecondPrefix", 65'000, kAllLines, 10},
    {"MoreLinesThanThat", 70'000, kAllLines, 43},
    {"ALongLineRightAfterTheBudget", 100, 800, 1},
    {"ALongLineWithinTheBudget", 100, 792, 43},
};

class BytesReadForLines : public testing::TestWithParam<LinesCase> {};
TEST_P(BytesReadForLines, AreThoseOfTheFirstPrefixThatHoldsThem) {
  const LinesCase& row = GetParam();
  const std::string bytes = row.last_line_end == kAllLines ? table_of(3 * kSampleUnits)
                                                           : table_that_ends_at(row.last_line_end);
  detect(bytes, "UTF-8", row.num_lines);
  const std::size_t at_end = watched.bytes_touched_from(kStartOfTheEnd);
  const std::size_t at_start = watched.bytes_touched() - at_end;
  EXPECT_LE(at_start, row.blocks * TextStream::kBufferUnits + BUFSIZ);
  EXPECT_GT(at_start, (row.blocks - 1) * TextStream::kBufferUnits);
  EXPECT_LE(at_end, kTail);
  const auto most_reads = *std::max_element(watched.reads.begin(), watched.reads.end());
  EXPECT_EQ(most_reads, 1U);
}
INSTANTIATE_TEST_SUITE_P(Table, BytesReadForLines, testing::ValuesIn(kLinesCases), ByRule());

// Finding the encoding reads the first 64 KB a second time.
TEST(BytesReadToFindTheEncoding, AreAmongThoseOfTheFirstPrefix) {
  detect(table_of(3 * kSampleUnits), std::nullopt, 100);
  EXPECT_LE(watched.bytes_touched() - watched.bytes_touched_from(kStartOfTheEnd),
            TextStream::kBufferUnits + BUFSIZ);
  const auto twice = std::count(watched.reads.begin(), watched.reads.end(), 2);
  EXPECT_LE(twice, 65'536 + BUFSIZ);
}

// --- the end of the file -------------------------------------------------------------------------

std::size_t reads_at_end(bool looks_at_end, std::uint64_t max_bytes) {
  watched.put(table_of(3 * kSampleUnits));
  standalone::DetectSettings settings;
  settings.encoding = "UTF-8";
  settings.look_at_end = looks_at_end;
  settings.max_bytes = max_bytes;
  standalone::detect_layout("table.csv", settings);
  return watched.bytes_touched_from(TextStream::kBufferUnits + BUFSIZ);
}

// To learn the length, and to the place from which on the end is read.
TEST(BytesReadAtTheEnd, AreAtMost64KilobytesInOnePlace) {
  EXPECT_LE(reads_at_end(true, 67'108'864), kTail);
  EXPECT_GE(reads_at_end(true, 67'108'864), kTail - 8192);
  EXPECT_EQ(watched.bytes_touched_from(watched.bytes.size() - 1), 1U);
  EXPECT_LE(watched.times_moved, 2U);
}

TEST(BytesReadAtTheEnd, AreNoneWithoutALookOrWithoutRoom) {
  EXPECT_EQ(reads_at_end(false, 67'108'864), 0U);
  EXPECT_LE(watched.times_moved, 1U);
  EXPECT_EQ(reads_at_end(true, TextStream::kBufferUnits + 1000), 0U);
}

TEST(BytesReadAtTheEnd, AreNoneOfAFileThatIsLoaded) {
  const standalone::Layout layout = detect(table_of(80'000), "UTF-8", 100);
  EXPECT_TRUE(layout.tail);
  EXPECT_EQ(*std::max_element(watched.reads.begin(), watched.reads.end()), 1);
}

TEST(BytesReadByTheWatchedFile, BelongToTheTableThatIsDetected) {
  const standalone::Layout layout = detect(table_of(800), "UTF-8", 100);
  EXPECT_EQ(layout.characters_sampled, 800u);
  EXPECT_EQ(layout.num_variables, 2u);
  EXPECT_EQ(watched.bytes_touched(), 800u);
}

}  // namespace
}  // namespace textio
