// Files with short reads, failures, early ends, or without seeking.
//
// Whatever the device does, the text is the beginning of the true one. read_error reports a
// failure, and nothing that the device delivers after it becomes text.
#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include "support/faulty_device.hpp"
#include "support/first_difference.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::FaultyDevice;
using testing_support::first_difference;
using testing_support::kNoDifference;
using testing_support::readable;

constexpr std::size_t kChunkBytes = 65'535;
constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;

// --- texts ---------------------------------------------------------------------------------------

// A character as bytes and as the code unit that it gives.
struct Character {
  std::string bytes;
  char16_t unit;
};

struct TextCase {
  const char* rule;
  const char* encoding;
  std::vector<Character> characters;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const TextCase kTextCases[] = {
    {"Ascii", "UTF-8", {{"a", u'a'}, {",", u','}, {"b", u'b'}, {"\n", u'\n'}}},
    {"Utf8",
     "UTF-8",
     {{"a", u'a'},
      {"\xC3\xA9", u'\u00e9'},
      {"\xE2\x82\xAC", u'\u20ac'},
      {"\xF0\x9F\x98\x80", u'\x1A'},
      {"\n", u'\n'}}},
    {"Utf16LittleEndian",
     "UTF-16LE",
     {{std::string("a\0", 2), u'a'},
      {"\xAC\x20", u'\u20ac'},
      {std::string("\x3D\xD8\x00\xDE", 4), u'\x1A'},
      {std::string("\n\0", 2), u'\n'}}},
    {"ShiftJis", "Shift_JIS", {{"a", u'a'}, {"\x83\x65", u'\u30c6'}, {"\xB1", u'\uff71'}}},
};

std::string bytes_of(const TextCase& row) {
  std::string bytes;
  for (const Character& character : row.characters) bytes += character.bytes;
  return bytes;
}

// The code units of the first `count` bytes. A character that is cut gives one U+FFFD.
std::u16string units_of(const TextCase& row, std::size_t count) {
  std::u16string units;
  for (const Character& character : row.characters) {
    if (count == 0) break;
    units.push_back(character.bytes.size() <= count ? character.unit : u'\ufffd');
    count -= std::min(count, character.bytes.size());
  }
  return units;
}

std::u16string units_of(const TextCase& row) { return units_of(row, bytes_of(row).size()); }

// The text, repeated to about `bytes` bytes.
TextCase repeated(TextCase row, std::size_t bytes) {
  const std::vector<Character> once = row.characters;
  for (std::size_t length = bytes_of(row).size(), total = length; total < bytes; total += length) {
    row.characters.insert(row.characters.end(), once.begin(), once.end());
  }
  return row;
}

// --- reading -------------------------------------------------------------------------------------

// Everything that fills of `units` code units deliver, until one delivers nothing.
std::u16string read_by_fills(FileTextSource& source, std::size_t units) {
  std::u16string text;
  std::u16string part(units, u'\0');
  while (const std::size_t got = source.fillBuffer(part.data(), part.data() + units)) {
    text.append(part, 0, got);
  }
  return text;
}

std::u16string read_by_stream(FileTextSource& source) {
  const TextStream stream(&source);
  const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
  return {stream.window_begin(), length};
}

// What is left after the window has moved by `step` repeatedly, and what it passed.
std::u16string read_by_window(FileTextSource& source, unsigned long step) {
  TextStream stream(&source);
  std::u16string text;
  while (stream.at(step - 1) != TextStream::kEnd) {
    text.append(stream.window_begin(), step);
    stream.advance(step);
  }
  const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
  return text.append(stream.window_begin(), length);
}

class ReadFaults : public testing::TestWithParam<TextCase> {};

// --- short reads ---------------------------------------------------------------------------------

TEST_P(ReadFaults, ThatAreShortLoseNothing) {
  const TextCase& row = GetParam();
  for (const std::size_t most : {1U, 2U, 3U, 4U, 5U, 7U}) {
    for (const std::size_t fill : {1U, 2U, 3U, 1000U}) {
      FaultyDevice device(bytes_of(row));
      device.shorten_reads(most);
      FileTextSource source;
      source.init_stream(device.open(), row.encoding);
      EXPECT_EQ(readable(read_by_fills(source, fill)), readable(units_of(row))) << most << fill;
      EXPECT_EQ(source.read_error(), 0);
    }
  }
}

TEST_P(ReadFaults, ThatAreShortOfALongTextLoseNothing) {
  const TextCase row = repeated(GetParam(), 2 * kChunkBytes + 1'000);
  const std::string bytes = bytes_of(row);
  const std::u16string units = units_of(row);
  for (const std::size_t most : {1000UL, 4095UL, 4096UL, 4097UL, kChunkBytes - 1, kChunkBytes,
                                 kChunkBytes + 1, kChunkBytes + 2}) {
    FaultyDevice device(bytes);
    device.shorten_reads(most);
    FileTextSource source;
    source.init_stream(device.open(), row.encoding);
    EXPECT_EQ(first_difference(read_by_stream(source), units), kNoDifference) << most;
    EXPECT_EQ(source.read_error(), 0);
  }
}

// --- reads that fail, files that end -------------------------------------------------------------

// The bound on the reads: one for each byte, and a few that fail.
void expect_few_reads(const FaultyDevice& device, std::size_t bytes) {
  EXPECT_LE(device.reads(), bytes + 8);
}

TEST_P(ReadFaults, EndTheTextAtAnyPosition) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 0; place <= bytes.size(); ++place) {
    for (const std::size_t fill : {1U, 2U, 1000U}) {
      FaultyDevice device(bytes);
      device.fail_reads_at(place, EIO);
      FileTextSource source;
      source.init_stream(device.open(), row.encoding);
      EXPECT_EQ(readable(read_by_fills(source, fill)), readable(units_of(row, place))) << place;
      EXPECT_EQ(source.read_error(), EIO) << place;
      EXPECT_TRUE(source.isEoS());
      expect_few_reads(device, bytes.size());
    }
  }
}

// Bytes after a failed read are not text, even if the device has recovered.
TEST_P(ReadFaults, EndTheTextEvenIfTemporary) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 0; place <= bytes.size(); ++place) {
    for (const std::size_t fill : {1U, 2U, 1000U}) {
      FaultyDevice device(bytes);
      device.fail_reads_at(place, ENXIO, 1);
      FileTextSource source;
      source.init_stream(device.open(), row.encoding);
      EXPECT_EQ(readable(read_by_fills(source, fill)), readable(units_of(row, place))) << place;
      EXPECT_EQ(readable(read_by_fills(source, fill)), "") << place;
      EXPECT_EQ(source.read_error(), ENXIO) << place;
      EXPECT_TRUE(source.isEoS());
    }
  }
}

TEST_P(ReadFaults, AreClearedByASkipToTheStart) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 1; place <= bytes.size(); ++place) {
    FaultyDevice device(bytes);
    device.fail_reads_at(place, ENXIO, 1);
    FileTextSource source;
    source.init_stream(device.open(), row.encoding);
    read_by_fills(source, 1000);
    EXPECT_EQ(source.skipFromPos(0, 1), 1U) << place;
    EXPECT_EQ(readable(read_by_fills(source, 1000)), readable(units_of(row).substr(1))) << place;
    EXPECT_EQ(source.read_error(), ENXIO) << "the first failure is kept";
  }
}

// At its end a file stays ended, whatever the device would deliver then.
TEST_P(ReadFaults, ThatFindNothingAreTheEnd) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 0; place <= bytes.size(); ++place) {
    for (const std::size_t times : {std::size_t{1}, FaultyDevice::kAlways}) {
      FaultyDevice device(bytes);
      device.fail_reads_at(place, 0, times);
      FileTextSource source;
      source.init_stream(device.open(), row.encoding);
      EXPECT_EQ(readable(read_by_fills(source, 1000)), readable(units_of(row, place))) << place;
      EXPECT_EQ(readable(read_by_fills(source, 1000)), "") << place;
      EXPECT_EQ(source.read_error(), 0);
      expect_few_reads(device, bytes.size());
    }
  }
}

TEST_P(ReadFaults, EndTheTextOfAStream) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 0; place <= bytes.size(); ++place) {
    for (const int error : {0, EIO}) {
      FaultyDevice device(bytes);
      device.fail_reads_at(place, error);
      FileTextSource source;
      source.init_stream(device.open(), row.encoding);
      EXPECT_EQ(readable(read_by_stream(source)), readable(units_of(row, place))) << place;
      EXPECT_EQ(source.read_error(), error) << place;
    }
  }
}

TEST_P(ReadFaults, EndASkip) {
  const TextCase& row = GetParam();
  const std::string bytes = bytes_of(row);
  for (std::size_t place = 0; place <= bytes.size(); ++place) {
    FaultyDevice device(bytes);
    device.fail_reads_at(place, EIO);
    FileTextSource source;
    source.init_stream(device.open(), row.encoding);
    EXPECT_EQ(source.skipFromPos(0, 1000), units_of(row, place).size()) << place;
    EXPECT_EQ(source.read_error(), EIO);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, ReadFaults, testing::ValuesIn(kTextCases), ByRule());

// --- long texts ----------------------------------------------------------------------------------

struct PlaceCase {
  const char* rule;
  std::size_t place;
};
std::ostream& operator<<(std::ostream& out, const PlaceCase& row) { return out << row.rule; }

const PlaceCase kPlaceCases[] = {
    {"AtTheStart", 0},
    {"AfterOneByte", 1},
    {"InTheBufferOfTheFile", 4096},
    {"BeforeTheChunkIsFull", kChunkBytes - 1},
    {"AfterAChunk", kChunkBytes},
    {"AfterAChunkAndAByte", kChunkBytes + 1},
    {"AfterTwoChunks", 2 * kChunkBytes},
    {"BeforeTheBufferIsFull", kBufferUnits - 1},
    {"AfterABuffer", kBufferUnits},
    {"AfterABufferAndAByte", kBufferUnits + 1},
    {"AfterTwoBuffers", 2 * kBufferUnits},
    {"AfterThreeBuffersAndAByte", 3 * kBufferUnits + 1},
};

class ReadFaultsOfALongText : public testing::TestWithParam<PlaceCase> {
 protected:
  // Each position has a code unit that differs from its neighbours.
  static std::string long_bytes() {
    std::string bytes(4 * kBufferUnits, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('!' + i * 7 % 89);
    return bytes;
  }

  void SetUp() override {
    bytes_ = long_bytes();
    expected_ = {bytes_.begin(), bytes_.begin() + static_cast<std::ptrdiff_t>(GetParam().place)};
  }

  template <typename Read>
  void expect_text_up_to_the_place(std::size_t times, Read read) {
    FaultyDevice device(bytes_);
    device.fail_reads_at(GetParam().place, EIO, times);
    FileTextSource source;
    source.init_stream(device.open(), "ISO-8859-1");
    EXPECT_EQ(first_difference(read(source), expected_), kNoDifference);
    EXPECT_EQ(source.read_error(), EIO);
  }

  std::string bytes_;
  std::u16string expected_;
};

TEST_P(ReadFaultsOfALongText, EndIt) {
  for (const std::size_t times : {std::size_t{1}, FaultyDevice::kAlways}) {
    expect_text_up_to_the_place(times,
                                [](FileTextSource& source) { return read_by_stream(source); });
    expect_text_up_to_the_place(
        times, [](FileTextSource& source) { return read_by_fills(source, kChunkBytes); });
    expect_text_up_to_the_place(
        times, [](FileTextSource& source) { return read_by_window(source, kBufferUnits - 100); });
  }
}

// A skip that reaches the failure empties the window permanently.
TEST_P(ReadFaultsOfALongText, EmptyAWindowThatSkipsOverThem) {
  FaultyDevice device(bytes_);
  device.fail_reads_at(GetParam().place, EIO, 1);
  FileTextSource source;
  source.init_stream(device.open(), "ISO-8859-1");
  TextStream stream(&source);
  stream.advance(GetParam().place + 1);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
  stream.advance(1);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
  EXPECT_EQ(source.read_error(), EIO);
}

INSTANTIATE_TEST_SUITE_P(Table, ReadFaultsOfALongText, testing::ValuesIn(kPlaceCases), ByRule());

// --- the first of several failures ---------------------------------------------------------------

TEST(FileTextSourceReadError, IsThatOfTheFirstFailure) {
  FaultyDevice device("abcdef");
  FileTextSource source;
  source.init_stream(device.open(), "UTF-8");
  device.fail_reads_at(2, ENXIO);
  EXPECT_EQ(read_by_fills(source, 10), u"ab");
  EXPECT_EQ(source.read_error(), ENXIO);
  device.fail_reads_at(4, EIO);
  EXPECT_EQ(source.skipFromPos(0, 10), 4U);
  EXPECT_EQ(source.read_error(), ENXIO);
}

TEST(FileTextSourceReadError, IsClearedByANewFile) {
  FaultyDevice device("abcdef");
  device.fail_reads_at(2, ENXIO, 1);
  FileTextSource source;
  source.init_stream(device.open(), "UTF-8");
  EXPECT_EQ(read_by_fills(source, 10), u"ab");
  source.init_stream(device.open(), "UTF-8");
  EXPECT_EQ(source.read_error(), 0);
  EXPECT_EQ(read_by_fills(source, 10), u"abcdef");
}

// An error flag that the stream already has does not concern the text.
TEST(FileTextSourceReadError, IgnoresErrorsFromBeforeTheFileWasPassed) {
  FaultyDevice device("abcdef");
  device.fail_reads_at(0, EIO, 1);
  std::FILE* const file = device.open();
  EXPECT_EQ(std::fgetc(file), EOF);
  EXPECT_NE(std::ferror(file), 0);
  FileTextSource source;
  source.init_stream(file, "UTF-8");
  EXPECT_EQ(read_by_fills(source, 2), u"abcdef");
  EXPECT_EQ(source.read_error(), 0);
}

// --- seeks ---------------------------------------------------------------------------------------

// The text has ended if the source cannot reach the requested position: what follows its current
// position is another text.
TEST(SeekFaults, EndTheText) {
  FaultyDevice device("abcdef");
  FileTextSource source;
  source.init_stream(device.open(), "UTF-8");
  char16_t unit = 0;
  source.fillBuffer(&unit, &unit + 1);
  device.fail_seeks(1, EIO);
  EXPECT_EQ(source.skipFromPos(3, 1), 0U);
  EXPECT_TRUE(source.isEoS());
  EXPECT_EQ(read_by_fills(source, 10), u"");
  EXPECT_NE(source.read_error(), 0);
}

TEST(SeekFaults, AreClearedByASeekThatSucceeds) {
  FaultyDevice device("abcdef");
  FileTextSource source;
  source.init_stream(device.open(), "UTF-8");
  EXPECT_EQ(source.skipFromPos(-5, 1), 0U);  // no file has such a position
  EXPECT_EQ(source.read_error(), EINVAL);
  EXPECT_EQ(read_by_fills(source, 10), u"");
  EXPECT_EQ(source.skipFromPos(2, 1), 1U);
  EXPECT_EQ(read_by_fills(source, 10), u"def");
  EXPECT_EQ(source.read_error(), EINVAL);
}

// Reading the position is a seek as well. An input that cannot report it is read on from its
// current position, like a pipe.
TEST(SeekFaults, DoNotPreventReadingForwards) {
  std::string bytes(3 * kBufferUnits, 'x');
  for (std::size_t i = 0; i < bytes.size(); i += 10) bytes[i] = '\n';
  const std::u16string units(bytes.begin(), bytes.end());
  for (const unsigned long step : {1'000UL, 131'000UL, 200'000UL}) {
    FaultyDevice device(bytes);
    device.fail_seeks(1, ESPIPE);
    FileTextSource source;
    source.init_stream(device.open(), "UTF-8");
    EXPECT_EQ(first_difference(read_by_window(source, step), units), kNoDifference) << step;
    EXPECT_EQ(source.read_error(), 0);
  }
}

// One seek fails, whichever it is: the text that is read is the beginning of the true one, or all
// of it.
TEST(SeekFaults, LeaveABeginningOfTheTextForAnyFailingSeek) {
  std::string bytes(4 * kBufferUnits, '\0');
  for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('!' + i * 7 % 89);
  const std::u16string units(bytes.begin(), bytes.end());
  for (std::size_t nth = 1; nth <= 12; ++nth) {
    FaultyDevice device(bytes);
    device.fail_seeks(nth, EIO, 1);
    FileTextSource source;
    source.init_stream(device.open(), "UTF-8");
    TextStream stream(&source);
    stream.advance(140'000);
    stream.at(150'000);
    stream.advance(149'000);
    const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
    const std::u16string_view rest(stream.window_begin(), length);
    EXPECT_TRUE(units.compare(289'000, rest.size(), rest) == 0) << nth;
    const bool is_whole = rest.size() == units.size() - 289'000;
    EXPECT_NE(is_whole, source.read_error() != 0) << nth;
  }
}

// --- a source that throws after it has moved -----------------------------------------------------

// Delivers a given text. A fill that fails has consumed its code units; the source may be unable to
// go back to them, because it does not move or throws.
class HastySource : public TextSource {
 public:
  enum class GoingBack { works, does_nothing, throws };

  HastySource(std::u16string text, GoingBack going_back)
      : text_(std::move(text)), going_back_(going_back) {}

  void fail_next_fill() { fails_ = true; }

  std::size_t fillBuffer(char16_t* begin, char16_t* end) override {
    const std::size_t count =
        std::min(static_cast<std::size_t>(end - begin), text_.size() - position_);
    std::copy_n(text_.begin() + static_cast<std::ptrdiff_t>(position_), count, begin);
    position_ += count;
    if (std::exchange(fails_, false)) throw std::runtime_error("fill");
    return count;
  }
  bool isEoS() const override { return position_ == text_.size(); }
  BufferManager* getBufferManager() override { return &manager_; }
  source_pos getPos() const override { return static_cast<source_pos>(position_); }
  unsigned long skipFromPos(source_pos pos, unsigned long /*count*/) override {
    if (static_cast<std::size_t>(pos) < position_) {
      if (going_back_ == GoingBack::throws) throw std::runtime_error("skip");
      if (going_back_ == GoingBack::does_nothing) return 0;
    }
    position_ = static_cast<std::size_t>(pos);
    return 0;
  }

 private:
  std::u16string text_;
  GoingBack going_back_;
  std::size_t position_ = 0;
  bool fails_ = false;
  FileStreamBufferManager manager_;
};

using GoingBack = HastySource::GoingBack;
using Move = void (*)(TextStream&);

std::u16string letters(std::size_t count) {
  std::u16string units(count, u'\0');
  for (std::size_t i = 0; i < count; ++i) units[i] = static_cast<char16_t>(u'a' + i * 7 % 25);
  return units;
}

struct HastyCase {
  const char* rule;
  GoingBack going_back;
  Move move;
  bool is_whole;  // of the text that is read in the end
};
std::ostream& operator<<(std::ostream& out, const HastyCase& row) { return out << row.rule; }

void look_ahead(TextStream& stream) { stream.at(kBufferUnits); }
void compact(TextStream& stream) { stream.advance(kBufferUnits - 100); }

const HastyCase kHastyCases[] = {
    {"LookAhead", GoingBack::works, look_ahead, true},
    {"LookAheadWithoutAWayBack", GoingBack::does_nothing, look_ahead, false},
    {"LookAheadWithAWayBackThatThrows", GoingBack::throws, look_ahead, false},
    {"Advance", GoingBack::works, compact, true},
    {"AdvanceWithoutAWayBack", GoingBack::does_nothing, compact, false},
    {"AdvanceWithAWayBackThatThrows", GoingBack::throws, compact, false},
};

class HastyFill : public testing::TestWithParam<HastyCase> {};

TEST_P(HastyFill, LeavesTheTextWithoutAGap) {
  const std::u16string text = letters(2 * kBufferUnits);
  HastySource source(text, GetParam().going_back);
  TextStream stream(&source);
  source.fail_next_fill();
  EXPECT_THROW(GetParam().move(stream), std::runtime_error);
  const unsigned long length = stream.find_first_pos_of(TextStream::kEnd, 0);
  EXPECT_EQ(length, GetParam().is_whole ? text.size() : kBufferUnits);
  EXPECT_EQ(first_difference({stream.window_begin(), length}, text.substr(0, length)),
            kNoDifference);
}

INSTANTIATE_TEST_SUITE_P(Table, HastyFill, testing::ValuesIn(kHastyCases), ByRule());

}  // namespace
}  // namespace textio
