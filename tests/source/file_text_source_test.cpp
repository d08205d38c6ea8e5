#include <vltextstream/source/file_text_source.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/source/text_stream.hpp>
#include "support/first_difference.hpp"
#include "support/rule_name.hpp"
#include "support/temp_file.hpp"

namespace textio {
namespace {

using testing_support::first_difference;
using testing_support::kNoDifference;
using testing_support::TempFile;

constexpr std::size_t kChunkBytes = 65'535;
constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;

// The result of one fill of `room` code units, read into a heap block of exactly that size.
std::u16string fill(FileTextSource& source, std::size_t room) {
  const auto block = std::make_unique<char16_t[]>(room);
  const std::size_t count = source.fillBuffer(block.get(), block.get() + room);
  EXPECT_LE(count, room);
  return {block.get(), std::min(count, room)};
}

// The rest of the text, read in fills of `room` code units until one is short.
std::u16string rest_of(FileTextSource& source, std::size_t room) {
  std::u16string text;
  for (;;) {
    const std::u16string part = fill(source, room);
    text += part;
    if (part.size() < room) return text;
  }
}

// An open source with its own file.
class OpenFile {
 public:
  OpenFile(std::string_view bytes, const std::string& encoding) : file_(bytes) {
    source_.init_stream(file_.path(), encoding);
  }
  FileTextSource* operator->() { return &source_; }
  FileTextSource& operator*() { return source_; }

 private:
  TempFile file_;
  FileTextSource source_;
};

// A path where no file exists.
std::u16string missing_path() {
  const TempFile file("");
  return file.path();
}

// --- encodings ---------------------------------------------------------------------------------

std::string utf8(std::u32string_view text) {
  std::string bytes;
  const auto add = [&bytes](char32_t value) { bytes.push_back(static_cast<char>(value)); };
  for (const char32_t c : text) {
    if (c < 0x80) {
      add(c);
    } else if (c < 0x800) {
      add(0xC0 | (c >> 6));
      add(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      add(0xE0 | (c >> 12));
      add(0x80 | ((c >> 6) & 0x3F));
      add(0x80 | (c & 0x3F));
    } else {
      add(0xF0 | (c >> 18));
      add(0x80 | ((c >> 12) & 0x3F));
      add(0x80 | ((c >> 6) & 0x3F));
      add(0x80 | (c & 0x3F));
    }
  }
  return bytes;
}

std::string utf16(std::u32string_view text, bool big_endian) {
  std::string bytes;
  const auto add = [&](char32_t unit) {
    const char high = static_cast<char>(unit >> 8);
    const char low = static_cast<char>(unit & 0xFF);
    bytes.push_back(big_endian ? high : low);
    bytes.push_back(big_endian ? low : high);
  };
  for (const char32_t c : text) {
    if (c < 0x10000) {
      add(c);
    } else {
      add(0xD800 + ((c - 0x10000) >> 10));
      add(0xDC00 + ((c - 0x10000) & 0x3FF));
    }
  }
  return bytes;
}
std::string utf16le(std::u32string_view text) { return utf16(text, false); }
std::string utf16be(std::u32string_view text) { return utf16(text, true); }
std::string utf16le_marked(std::u32string_view text) { return "\xFF\xFE" + utf16le(text); }
std::string utf16be_marked(std::u32string_view text) { return "\xFE\xFF" + utf16be(text); }

// The code units of a text in which each character gives one.
std::u16string units(std::u32string_view text) {
  std::u16string result;
  for (const char32_t c : text) {
    result.push_back(c < 0x10000 ? static_cast<char16_t>(c) : u'\u001A');
  }
  return result;
}

struct DecodeCase {
  const char* rule;
  const char* encoding;
  std::string bytes;
  std::u16string text;
};
std::ostream& operator<<(std::ostream& out, const DecodeCase& row) { return out << row.rule; }

constexpr std::u32string_view kMixed = U"a\u00e9\u20ac\U0001F600z\U0010FFFF\U00010000\u00df";
const std::u16string kMixedUnits = u"a\u00e9\u20ac\u001Az\u001A\u001A\u00df";

const DecodeCase kWellFormedCases[] = {
    {"Utf8", "UTF-8", utf8(kMixed), kMixedUnits},
    {"Utf8NameInLowerCase", "utf-8", utf8(kMixed), kMixedUnits},
    {"Utf8EveryLengthByItsBytes", "UTF-8", "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
     u"A\u00e9\u20ac\u001A"},
    {"Utf8MarkIsDropped", "UTF-8", "\xEF\xBB\xBF" + utf8(kMixed), kMixedUnits},
    {"Utf8OnlyOneMarkIsDropped", "UTF-8", "\xEF\xBB\xBF\xEF\xBB\xBFz", u"\ufeffz"},
    {"Utf8MarkInTheMiddleIsText", "UTF-8", "a\xEF\xBB\xBFz", u"a\ufeffz"},
    {"Utf8OnlyAMark", "UTF-8", "\xEF\xBB\xBF", u""},
    {"Utf8EndMarkIsTextToo", "UTF-8", "a\xEF\xBF\xBFz", u"a\uffffz"},
    {"Utf16Le", "UTF-16LE", utf16le(kMixed), kMixedUnits},
    {"Utf16LeMarkIsDropped", "UTF-16LE", utf16le_marked(kMixed), kMixedUnits},
    {"Utf16LeMarkInTheMiddleIsText", "UTF-16LE", utf16le(U"a\ufeffz"), u"a\ufeffz"},
    {"Utf16Be", "UTF-16BE", utf16be(kMixed), kMixedUnits},
    {"Utf16BeMarkIsDropped", "UTF-16BE", utf16be_marked(kMixed), kMixedUnits},
    {"Utf16BeMarkInTheMiddleIsText", "UTF-16BE", utf16be(U"a\ufeffz"), u"a\ufeffz"},
    {"Utf16WithLittleEndianMark", "UTF-16", utf16le_marked(kMixed), kMixedUnits},
    {"Utf16WithBigEndianMark", "UTF-16", utf16be_marked(kMixed), kMixedUnits},
    {"Utf16MarkInTheMiddleIsText", "UTF-16", utf16le_marked(U"a\ufeffz"), u"a\ufeffz"},
    {"Utf16OnlyAMark", "UTF-16", utf16be_marked(U""), u""},
    {"Latin1", "ISO-8859-1", "a\xE9\x80\xFFz", u"a\u00e9\u0080\u00ffz"},
    {"Latin1HasNoMark", "ISO-8859-1", "\xEF\xBB\xBFz", u"\u00ef\u00bb\u00bfz"},
    {"Windows1252", "windows-1252", "a\x80\xE9\x9F\x93z", u"a\u20ac\u00e9\u0178\u201cz"},
    {"ShiftJis", "Shift_JIS", "a\x83\x65\xB1\x93\xFAz", u"a\u30c6\uff71\u65e5z"},
    {"ShiftJisTrailByteLikeABackslash", "Shift_JIS", "\x83\x5C,\x95\x5C", u"\u30bd,\u8868"},
    {"NulBytesAreText", "UTF-8", std::string("a\0b\0", 4), std::u16string(u"a\0b\0", 4)},
    {"LineEndsStayAsTheyAre", "UTF-8", "a\r\nb\rc\n", u"a\r\nb\rc\n"},
    {"ControlZIsNoEndOfFile", "UTF-8", "a\x1Az", u"a\u001Az"},
    {"Empty", "UTF-8", "", u""},
};

class FileTextSourceDecoding : public testing::TestWithParam<DecodeCase> {};

TEST_P(FileTextSourceDecoding, GivesTheTextWhateverTheSizeOfTheFills) {
  for (std::size_t room = 1; room <= GetParam().text.size() + 2; ++room) {
    OpenFile file(GetParam().bytes, GetParam().encoding);
    EXPECT_EQ(rest_of(*file, room), GetParam().text) << "fills of " << room;
    EXPECT_TRUE(file->isEoS());
    EXPECT_EQ(fill(*file, room), u"");
  }
}

// Positions, skips and fills agree: from each position that the source reports, each skip leads to
// the code unit that a plain read delivers there.
TEST_P(FileTextSourceDecoding, SkipsFromAnyToldPositionByUnits) {
  const std::u16string& text = GetParam().text;
  for (std::size_t read = 0; read <= text.size(); ++read) {
    OpenFile file(GetParam().bytes, GetParam().encoding);
    EXPECT_EQ(fill(*file, read), text.substr(0, read));
    const source_pos told = file->getPos();
    const std::size_t left = text.size() - read;
    for (std::size_t count = 0; count <= left + 2; ++count) {
      EXPECT_EQ(file->skipFromPos(told, count), std::min(count, left));
      EXPECT_EQ(rest_of(*file, 3), text.substr(std::min(read + count, text.size())))
          << count << " after " << read;
    }
  }
}

TEST_P(FileTextSourceDecoding, IsWhatAStreamReads) {
  OpenFile file(GetParam().bytes, GetParam().encoding);
  const TextStream stream(&*file);
  const std::u16string& text = GetParam().text;
  for (std::size_t pos = 0; pos < text.size(); ++pos) EXPECT_EQ(stream.at(pos), text[pos]);
  EXPECT_EQ(stream.at(text.size()), TextStream::kEnd);
}

INSTANTIATE_TEST_SUITE_P(WellFormed, FileTextSourceDecoding, testing::ValuesIn(kWellFormedCases),
                         testing_support::ByRule());

const DecodeCase kIllFormedCases[] = {
    {"LoneContinuation", "UTF-8", "a\x80z", u"a\ufffdz"},
    {"ByteThatNeverOccurs", "UTF-8", "a\xFFz", u"a\ufffdz"},
    {"OverlongSlash", "UTF-8", "a\xC0\xAFz", u"a\ufffd\ufffdz"},
    {"SequenceCutByALetter", "UTF-8", "a\xE2\x82z", u"a\ufffdz"},
    {"SequenceCutByALetterAtTheStart", "UTF-8", "\xE2\x82zy", u"\ufffdzy"},
    {"SequenceCutByASequence", "UTF-8", "\xF0\x9F\x98\xC3\xA9", u"\ufffd\u00e9"},
    {"EncodedSurrogate", "UTF-8", "a\xED\xA0\x80z", u"a\ufffd\ufffd\ufffdz"},
    {"BeyondTheLastCharacter", "UTF-8", "a\xF4\x90\x80\x80z", u"a\ufffd\ufffd\ufffd\ufffdz"},
    {"ManyCutSequencesInARow", "UTF-8", "\xE2\x82\xE2\x82\xE2\x82\xE2\x82z",
     u"\ufffd\ufffd\ufffd\ufffdz"},
    {"TruncatedAfterOneByte", "UTF-8", "ab\xC3", u"ab\ufffd"},
    {"TruncatedAfterTwoBytes", "UTF-8", "ab\xE2\x82", u"ab\ufffd"},
    {"TruncatedAfterThreeBytes", "UTF-8", "ab\xF0\x9F\x98", u"ab\ufffd"},
    {"OnlyATruncatedCharacter", "UTF-8", "\xF0", u"\ufffd"},
    {"TruncatedMark", "UTF-8", "\xEF\xBB", u"\ufffd"},
    {"OddLastByte", "UTF-16LE", std::string("a\0z", 3), u"a\ufffd"},
    {"OddLastByteBigEndian", "UTF-16BE", std::string("\0a\0", 3), u"a\ufffd"},
    {"OddLastByteAfterAMark", "UTF-16", "\xFF\xFE\x61", u"\ufffd"},
    {"LoneHighSurrogate", "UTF-16BE", std::string("\xD8\x3D\0z", 4), u"\ufffdz"},
    {"LoneLowSurrogate", "UTF-16BE", std::string("\xDE\x00\0z", 4), u"\ufffdz"},
    {"SurrogatesInTheWrongOrder", "UTF-16LE", std::string("\x00\xDE\x3D\xD8z\0", 6),
     u"\ufffd\ufffdz"},
    {"TruncatedPair", "UTF-16LE", std::string("a\0\x3D\xD8", 4), u"a\ufffd"},
    {"TruncatedDoubleByte", "Shift_JIS", "a\x83", u"a\ufffd"},
};

// Positions after ill-formed bytes are not reported exactly; the text is exact.
class FileTextSourceIllFormed : public testing::TestWithParam<DecodeCase> {};

TEST_P(FileTextSourceIllFormed, EachPartBecomesOneReplacement) {
  for (std::size_t room = 1; room <= GetParam().text.size() + 2; ++room) {
    OpenFile file(GetParam().bytes, GetParam().encoding);
    EXPECT_EQ(rest_of(*file, room), GetParam().text) << "fills of " << room;
    EXPECT_TRUE(file->isEoS());
    EXPECT_EQ(fill(*file, room), u"");
  }
}

TEST_P(FileTextSourceIllFormed, ASkipCountsTheReplacements) {
  const std::u16string& text = GetParam().text;
  for (std::size_t count = 0; count <= text.size() + 2; ++count) {
    OpenFile file(GetParam().bytes, GetParam().encoding);
    EXPECT_EQ(file->skipFromPos(0, count), std::min(count, text.size()));
    EXPECT_EQ(rest_of(*file, 8), text.substr(std::min(count, text.size()))) << count;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, FileTextSourceIllFormed, testing::ValuesIn(kIllFormedCases),
                         testing_support::ByRule());

// --- borders -----------------------------------------------------------------------------------

struct BorderCase {
  const char* rule;
  const char* encoding;
  std::size_t units_before;  // the number of letters before the character
  std::string letter;
  std::string character;
  char16_t unit;  // the code unit for the character
  const char* mark = "";
};
std::ostream& operator<<(std::ostream& out, const BorderCase& row) { return out << row.rule; }

const std::string kLe_a = utf16le(U"a");
const std::string kBe_a = utf16be(U"a");
const std::string kSmileLe = utf16le(U"\U0001F600");
const std::string kSmileBe = utf16be(U"\U0001F600");

const BorderCase kBorderCases[] = {
    // The bytes before and after the end of the first chunk, 65,535 bytes from the start.
    {"ChunkUtf8TwoBytesCut1And1", "UTF-8", kChunkBytes - 1, "a", "\xC3\xA9", u'\u00e9'},
    {"ChunkUtf8ThreeBytesCut1And2", "UTF-8", kChunkBytes - 1, "a", "\xE2\x82\xAC", u'\u20ac'},
    {"ChunkUtf8ThreeBytesCut2And1", "UTF-8", kChunkBytes - 2, "a", "\xE2\x82\xAC", u'\u20ac'},
    {"ChunkUtf8FourBytesCut1And3", "UTF-8", kChunkBytes - 1, "a", "\xF0\x9F\x98\x80", u'\x1A'},
    {"ChunkUtf8FourBytesCut2And2", "UTF-8", kChunkBytes - 2, "a", "\xF0\x9F\x98\x80", u'\x1A'},
    {"ChunkUtf8FourBytesCut3And1", "UTF-8", kChunkBytes - 3, "a", "\xF0\x9F\x98\x80", u'\x1A'},
    {"ChunkUtf8WholeBefore", "UTF-8", kChunkBytes - 4, "a", "\xF0\x9F\x98\x80", u'\x1A'},
    {"ChunkUtf8WholeBehind", "UTF-8", kChunkBytes, "a", "\xF0\x9F\x98\x80", u'\x1A'},
    {"ChunkShiftJisCut", "Shift_JIS", kChunkBytes - 1, "a", "\x83\x65", u'\u30c6'},
    {"ChunkUtf16LeCut", "UTF-16LE", kChunkBytes / 2, kLe_a, utf16le(U"\u20ac"), u'\u20ac'},
    {"ChunkUtf16BeCut", "UTF-16BE", kChunkBytes / 2, kBe_a, utf16be(U"\u20ac"), u'\u20ac'},
    {"ChunkUtf16LePairCut1And3", "UTF-16LE", kChunkBytes / 2, kLe_a, kSmileLe, u'\x1A'},
    {"ChunkUtf16LePairCut3And1", "UTF-16LE", kChunkBytes / 2 - 1, kLe_a, kSmileLe, u'\x1A'},
    {"ChunkUtf16BePairCut3And1", "UTF-16BE", kChunkBytes / 2 - 1, kBe_a, kSmileBe, u'\x1A'},
    {"SecondChunkUtf16LePairCut2And2", "UTF-16LE", kChunkBytes - 1, kLe_a, kSmileLe, u'\x1A'},
    {"SecondChunkUtf16BePairCut2And2", "UTF-16BE", kChunkBytes - 1, kBe_a, kSmileBe, u'\x1A'},
    {"ChunkUtf16MarkedPairCut", "UTF-16", kChunkBytes / 2 - 1, kBe_a, kSmileBe, u'\x1A',
     "\xFE\xFF"},
    {"ChunkUtf8IllFormedCut", "UTF-8", kChunkBytes - 1, "a", "\xE2\x82", u'\ufffd'},

    // Before and after the end of the first buffer, 131,072 code units from the start.
    {"BufferUtf8LastUnit", "UTF-8", kBufferUnits - 1, "a", "\xE2\x82\xAC", u'\u20ac'},
    {"BufferUtf8FirstUnitOfTheNext", "UTF-8", kBufferUnits, "a", "\xE2\x82\xAC", u'\u20ac'},
    {"BufferUtf8SupplementaryLastUnit", "UTF-8", kBufferUnits - 1, "a", "\xF0\x9F\x98\x80",
     u'\x1A'},
    {"BufferUtf8SupplementaryFirstUnitOfTheNext", "UTF-8", kBufferUnits, "a", "\xF0\x9F\x98\x80",
     u'\x1A'},
    {"BufferUtf8SupplementaryLastButOne", "UTF-8", kBufferUnits - 2, "a", "\xF0\x9F\x98\x80",
     u'\x1A'},
    {"BufferUtf16LeSupplementaryLastUnit", "UTF-16LE", kBufferUnits - 1, kLe_a, kSmileLe, u'\x1A'},
    {"BufferUtf16LeSupplementaryFirstUnitOfTheNext", "UTF-16LE", kBufferUnits, kLe_a, kSmileLe,
     u'\x1A'},
    {"BufferUtf16BeSupplementaryLastUnit", "UTF-16BE", kBufferUnits - 1, kBe_a, kSmileBe, u'\x1A'},
    {"BufferUtf16MarkedSupplementaryLastUnit", "UTF-16", kBufferUnits - 1, kLe_a, kSmileLe, u'\x1A',
     "\xFF\xFE"},
    {"BufferShiftJisLastUnit", "Shift_JIS", kBufferUnits - 1, "a", "\x83\x65", u'\u30c6'},
    {"BufferShiftJisFirstUnitOfTheNext", "Shift_JIS", kBufferUnits, "a", "\x83\x65", u'\u30c6'},
    {"BufferUtf8IllFormedLastUnit", "UTF-8", kBufferUnits - 1, "a", "\xE2\x82", u'\ufffd'},
    {"BufferUtf8IllFormedLastButOne", "UTF-8", kBufferUnits - 2, "a", "\xE2\x82", u'\ufffd'},
};

// Letters, the character, then a letter.
class FileTextSourceBorders : public testing::TestWithParam<BorderCase> {
 protected:
  std::string bytes() const {
    const BorderCase& row = GetParam();
    std::string all = row.mark;
    for (std::size_t i = 0; i < row.units_before; ++i) all += row.letter;
    return all + row.character + row.letter;
  }
  std::u16string text() const {
    return std::u16string(GetParam().units_before, u'a') + GetParam().unit + u"a";
  }
};

TEST_P(FileTextSourceBorders, CutNoCharacter) {
  const TempFile bytes_on_disk(bytes());
  for (const std::size_t room : {kBufferUnits, std::size_t{10'007}}) {
    FileTextSource source;
    source.init_stream(bytes_on_disk.path(), GetParam().encoding);
    EXPECT_EQ(first_difference(rest_of(source, room), text()), kNoDifference)
        << "fills of " << room;
  }
}

TEST_P(FileTextSourceBorders, CutNoCharacterOfAStream) {
  OpenFile file(bytes(), GetParam().encoding);
  const TextStream stream(&*file);
  const std::size_t pos = GetParam().units_before;
  EXPECT_EQ(stream.find_first_pos_not_of(u'a', 0), pos);
  EXPECT_EQ(stream.at(pos), GetParam().unit);
  EXPECT_EQ(stream.at(pos + 1), u'a');
  EXPECT_EQ(stream.at(pos + 2), TextStream::kEnd);
}

TEST_P(FileTextSourceBorders, CutNoCharacterOfASkip) {
  OpenFile file(bytes(), GetParam().encoding);
  const std::size_t pos = GetParam().units_before;
  EXPECT_EQ(file->skipFromPos(0, pos), pos);
  EXPECT_EQ(rest_of(*file, 8), text().substr(pos));
  EXPECT_EQ(file->skipFromPos(0, pos + 3), pos + 2);
}

INSTANTIATE_TEST_SUITE_P(Table, FileTextSourceBorders, testing::ValuesIn(kBorderCases),
                         testing_support::ByRule());

// A text of only multi-byte characters: every border cuts one somewhere.
struct DenseCase {
  const char* rule;
  const char* encoding;
  std::string (*encode)(std::u32string_view);
};
std::ostream& operator<<(std::ostream& out, const DenseCase& row) { return out << row.rule; }

const DenseCase kDenseCases[] = {
    {"Utf8", "UTF-8", utf8},
    {"Utf16Le", "UTF-16LE", utf16le},
    {"Utf16Be", "UTF-16BE", utf16be},
    {"Utf16WithLittleEndianMark", "UTF-16", utf16le_marked},
    {"Utf16WithBigEndianMark", "UTF-16", utf16be_marked},
};

class FileTextSourceDense : public testing::TestWithParam<DenseCase> {
 protected:
  static constexpr std::size_t kLength = 140'000;

  static std::u32string text() {
    std::u32string result;
    result.reserve(kLength);
    for (std::uint32_t i = 0; i < kLength; ++i) {
      const char32_t kinds[] = {0x10000 + i, 0x4E00 + i % 20'000, 0x400 + i % 256, 0x1F600};
      result.push_back(kinds[(i * 7 + i / 5) % 4]);
    }
    return result;
  }
};

TEST_P(FileTextSourceDense, ArrivesWholeAtEveryBorder) {
  const std::u32string characters = text();
  const std::u16string expected = units(characters);
  const TempFile file(GetParam().encode(characters));
  for (const std::size_t room : {kBufferUnits, std::size_t{4'099}}) {
    FileTextSource source;
    source.init_stream(file.path(), GetParam().encoding);
    EXPECT_EQ(first_difference(rest_of(source, room), expected), kNoDifference)
        << "fills of " << room;
  }
}

TEST_P(FileTextSourceDense, SkipsLandOnTheRightCharacter) {
  const std::u32string characters = text();
  const std::u16string expected = units(characters);
  const TempFile file(GetParam().encode(characters));
  for (const std::size_t read : {std::size_t{0}, std::size_t{1}, std::size_t{30'001}}) {
    for (const std::size_t count : {kChunkBytes - 1, kChunkBytes, kChunkBytes + 1}) {
      FileTextSource source;
      source.init_stream(file.path(), GetParam().encoding);
      EXPECT_EQ(fill(source, read).size(), read);
      EXPECT_EQ(source.skipFromPos(source.getPos(), count), count);
      EXPECT_EQ(first_difference(rest_of(source, kBufferUnits), expected.substr(read + count)),
                kNoDifference)
          << count << " after " << read;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Table, FileTextSourceDense, testing::ValuesIn(kDenseCases),
                         testing_support::ByRule());

// --- fills -------------------------------------------------------------------------------------

TEST(FileTextSourceFill, DeliversAFileOf200000BytesInTwoFills) {
  std::string bytes(200'000, 'a');
  bytes[131'071] = 'b';
  bytes[131'072] = 'c';
  bytes[199'999] = 'd';
  OpenFile file(bytes, "UTF-8");
  const std::u16string first = fill(*file, 131'072);
  EXPECT_EQ(first.size(), 131'072U);
  EXPECT_EQ(first.back(), u'b');
  EXPECT_FALSE(file->isEoS());
  EXPECT_EQ(file->getPos(), 131'072);
  const std::u16string second = fill(*file, 131'072);
  EXPECT_EQ(second.size(), 68'928U);
  EXPECT_EQ(second.front(), u'c');
  EXPECT_EQ(second.back(), u'd');
  EXPECT_TRUE(file->isEoS());
  EXPECT_EQ(fill(*file, 131'072).size(), 0U);
  EXPECT_EQ(file->getPos(), 200'000);
}

TEST(FileTextSourceFill, OfNoRoomReadsNothing) {
  OpenFile file("abc", "UTF-8");
  char16_t unit = u'?';
  EXPECT_EQ(file->fillBuffer(&unit, &unit), 0U);
  EXPECT_EQ(unit, u'?');
  EXPECT_EQ(file->getPos(), 0);
  EXPECT_EQ(rest_of(*file, 8), u"abc");
}

TEST(FileTextSourceFill, LeavesTheRangeBehindTheTextAlone) {
  OpenFile file("abc", "UTF-8");
  std::u16string range(6, u'?');
  EXPECT_EQ(file->fillBuffer(range.data(), range.data() + range.size()), 3U);
  EXPECT_EQ(range.substr(0, 3), u"abc");
}

TEST(FileTextSourceFill, ReadsNoByteBeyondTheUnitsAskedFor) {
  OpenFile file("a\xC3\xA9\xF0\x9F\x98\x80z", "UTF-8");
  EXPECT_EQ(fill(*file, 1), u"a");
  EXPECT_EQ(file->getPos(), 1);
  EXPECT_EQ(fill(*file, 1), u"\u00e9");
  EXPECT_EQ(file->getPos(), 3);
  EXPECT_EQ(fill(*file, 1), u"\u001A");
  EXPECT_EQ(file->getPos(), 7);
  EXPECT_EQ(fill(*file, 1), u"z");
  EXPECT_EQ(file->getPos(), 8);
}

TEST(FileTextSourceFill, CountsTheBytesOfADroppedMark) {
  OpenFile file("\xEF\xBB\xBFxyz", "UTF-8");
  EXPECT_EQ(fill(*file, 2), u"xy");
  EXPECT_EQ(file->getPos(), 5);
}

TEST(FileTextSourceFill, ATruncatedCharacterAtTheEndOfAChunkIsReportedOnce) {
  const std::string bytes = std::string(kChunkBytes - 1, 'a') + "\xE2";
  for (const std::size_t room : {kChunkBytes - 1, kChunkBytes, kChunkBytes + 1, kBufferUnits}) {
    OpenFile file(bytes, "UTF-8");
    const std::u16string expected = std::u16string(kChunkBytes - 1, u'a') + u'\ufffd';
    EXPECT_EQ(first_difference(rest_of(*file, room), expected), kNoDifference) << room;
    EXPECT_EQ(fill(*file, 4), u"");
  }
}

TEST(FileTextSourceFill, ATruncatedCharacterThatFillsTheBufferIsReported) {
  OpenFile file(std::string(kBufferUnits - 1, 'a') + "\xE2\x82", "UTF-8");
  const TextStream stream(&*file);
  EXPECT_EQ(stream.at(kBufferUnits - 1), u'\ufffd');
  EXPECT_EQ(stream.at(kBufferUnits), TextStream::kEnd);
}

// --- end of stream and positions ----------------------------------------------------------------

TEST(FileTextSourceEnd, OfAnEmptyFileIsThereAtOnce) {
  OpenFile file("", "UTF-8");
  EXPECT_TRUE(file->isEoS());
  EXPECT_EQ(fill(*file, 16), u"");
  EXPECT_EQ(file->getPos(), 0);
  EXPECT_EQ(file->skipFromPos(0, 5), 0U);
}

TEST(FileTextSourceEnd, AskingForItMovesNothing) {
  OpenFile file("abc", "UTF-8");
  for (int i = 0; i < 3; ++i) EXPECT_FALSE(file->isEoS());
  EXPECT_EQ(file->getPos(), 0);
  EXPECT_EQ(fill(*file, 2), u"ab");
  EXPECT_FALSE(file->isEoS());
  EXPECT_EQ(file->getPos(), 2);
  EXPECT_EQ(fill(*file, 1), u"c");
  EXPECT_TRUE(file->isEoS());
  EXPECT_TRUE(file->isEoS());
  EXPECT_EQ(file->getPos(), 3);
}

TEST(FileTextSourceEnd, AByteOfAllOnesIsNotTheEnd) {
  OpenFile file("\xFFz", "ISO-8859-1");
  EXPECT_FALSE(file->isEoS());
  EXPECT_EQ(rest_of(*file, 8), u"\u00ffz");
}

TEST(FileTextSourceEnd, IsLeftByASkipBack) {
  OpenFile file("abc", "UTF-8");
  EXPECT_EQ(rest_of(*file, 8), u"abc");
  ASSERT_TRUE(file->isEoS());
  EXPECT_EQ(file->skipFromPos(1, 0), 0U);
  EXPECT_FALSE(file->isEoS());
  EXPECT_EQ(file->getPos(), 1);
  EXPECT_EQ(rest_of(*file, 8), u"bc");
}

// A read of the process's own memory at address 0 fails as a device error.
TEST(FileTextSourceEnd, AReadErrorLooksLikeIt) {
  FileTextSource source;
  source.init_stream(u"/proc/self/mem", "UTF-8");
  EXPECT_TRUE(source.isEoS());
  EXPECT_EQ(fill(source, 16), u"");
}

// A code unit that the converter keeps, because ill-formed bytes gave two at once, is still text.
TEST(FileTextSourceEnd, NoUnitIsLostWhenIllFormedBytesFillTheBuffer) {
  OpenFile file(std::string(kBufferUnits - 1, 'a') + "\xE2\x82z", "UTF-8");
  const TextStream stream(&*file);
  EXPECT_EQ(stream.at(kBufferUnits - 1), u'\ufffd');
  EXPECT_EQ(stream.at(kBufferUnits), u'z');
  EXPECT_EQ(stream.at(kBufferUnits + 1), TextStream::kEnd);
}

// --- skips -------------------------------------------------------------------------------------

TEST(FileTextSourceSkip, BeyondTheEndPassesOverWhatRemained) {
  OpenFile file("a\xC3\xA9\xF0\x9F\x98\x80xyz", "UTF-8");
  EXPECT_EQ(fill(*file, 2), u"a\u00e9");
  EXPECT_EQ(file->skipFromPos(file->getPos(), 1'000'000), 4U);
  EXPECT_TRUE(file->isEoS());
  EXPECT_EQ(fill(*file, 8), u"");
}

TEST(FileTextSourceSkip, CountsMoreThanOneScratchArray) {
  std::string bytes(300'000, 'a');
  bytes[250'000] = 'b';
  OpenFile file(bytes, "UTF-8");
  EXPECT_EQ(file->skipFromPos(0, 250'000), 250'000U);
  EXPECT_EQ(file->getPos(), 250'000);
  EXPECT_EQ(fill(*file, 2), u"ba");
  EXPECT_EQ(file->skipFromPos(10, 400'000), 299'990U);
}

// The letter after the cut sequence has found no room before the skip.
TEST(FileTextSourceSkip, ForgetsWhatTheConverterHolds) {
  OpenFile file("\xE2\x82zy", "UTF-8");
  EXPECT_EQ(fill(*file, 1), u"\ufffd");
  EXPECT_EQ(file->skipFromPos(0, 0), 0U);
  EXPECT_EQ(rest_of(*file, 8), u"\ufffdzy");
  EXPECT_EQ(file->skipFromPos(3, 0), 0U);
  EXPECT_EQ(rest_of(*file, 8), u"y");
}

TEST(FileTextSourceSkip, TheMarkIsDroppedAgainAtByteZeroOnly) {
  OpenFile file(
      "\xEF\xBB\xBF"
      "a"
      "\xEF\xBB\xBF"
      "z",
      "UTF-8");
  EXPECT_EQ(rest_of(*file, 8), u"a\ufeffz");
  EXPECT_EQ(file->skipFromPos(0, 1), 1U);
  EXPECT_EQ(rest_of(*file, 8), u"\ufeffz");
  EXPECT_EQ(file->skipFromPos(4, 0), 0U);
  EXPECT_EQ(rest_of(*file, 8), u"\ufeffz");
  EXPECT_EQ(file->skipFromPos(4, 1), 1U);
  EXPECT_EQ(rest_of(*file, 8), u"z");
}

TEST(FileTextSourceSkip, Utf16KeepsTheOrderOfItsMark) {
  for (const bool big : {false, true}) {
    const std::string mark = big ? "\xFE\xFF" : "\xFF\xFE";
    OpenFile file(mark + utf16(U"ab\U0001F600cd", big), "UTF-16");
    EXPECT_EQ(fill(*file, 2), u"ab");
    const source_pos told = file->getPos();
    EXPECT_EQ(told, 6);
    EXPECT_EQ(file->skipFromPos(told, 2), 2U);
    EXPECT_EQ(rest_of(*file, 8), u"d");
    EXPECT_EQ(file->skipFromPos(told, 0), 0U);
    EXPECT_EQ(rest_of(*file, 8), u"\u001Acd");
    EXPECT_EQ(file->skipFromPos(0, 1), 1U);
    EXPECT_EQ(rest_of(*file, 8), u"b\u001Acd");
  }
}

// Code units like the mark of the other byte order, at the place where the text continues.
TEST(FileTextSourceSkip, Utf16TakesNoMarkInTheMiddle) {
  for (const bool big : {false, true}) {
    const std::string mark = big ? "\xFE\xFF" : "\xFF\xFE";
    OpenFile file(mark + utf16(U"a\uFFFEb\uFEFFc", big), "UTF-16");
    EXPECT_EQ(fill(*file, 1), u"a");
    EXPECT_EQ(file->skipFromPos(4, 0), 0U);
    EXPECT_EQ(rest_of(*file, 8), u"\ufffeb\ufeffc");
    EXPECT_EQ(file->skipFromPos(8, 0), 0U);
    EXPECT_EQ(rest_of(*file, 8), u"\ufeffc");
  }
}

TEST(FileTextSourceSkip, Utf16KeepsItsOrderInAStreamThatSkips) {
  std::u32string text(300'000, U'a');
  text[250'000] = U'\u20ac';
  text[250'001] = U'\U0001F600';
  for (const bool big : {false, true}) {
    const std::string mark = big ? "\xFE\xFF" : "\xFF\xFE";
    OpenFile file(mark + utf16(text, big), "UTF-16");
    TextStream stream(&*file);
    stream.advance(249'999);
    EXPECT_EQ(stream.at(0), u'a');
    EXPECT_EQ(stream.at(1), u'\u20ac');
    EXPECT_EQ(stream.at(2), u'\x1A');
    EXPECT_EQ(stream.find_first_pos_not_of(u'a', 3), 50'001U);
  }
}

// --- opening -----------------------------------------------------------------------------------

TEST(FileTextSourceOpen, AMissingFileIsNotFound) {
  FileTextSource source;
  try {
    source.init_stream(missing_path(), "UTF-8");
    FAIL() << "opened a file that is not there";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "File not found");
  }
}

TEST(FileTextSourceOpen, ADirectoryIsNotFound) {
  FileTextSource source;
  try {
    source.init_stream(std::filesystem::temp_directory_path().u16string(), "UTF-8");
    FAIL() << "opened a directory";
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "File not found");
  }
}

TEST(FileTextSourceOpen, AnEmptyPathIsNotFound) {
  FileTextSource source;
  EXPECT_THROW(source.init_stream(u"", "UTF-8"), std::runtime_error);
}

TEST(FileTextSourceOpen, AnUnknownEncodingIsNamed) {
  const TempFile file("abc");
  FileTextSource source;
  try {
    source.init_stream(file.path(), "no-such-encoding");
    FAIL() << "decoded an unknown encoding";
  } catch (const std::invalid_argument& error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("no-such-encoding"));
  }
}

TEST(FileTextSourceOpen, AFailureLeavesAnEmptySourceThatCanBeOpened) {
  const TempFile file("abc");
  FileTextSource source;
  EXPECT_THROW(source.init_stream(missing_path(), "UTF-8"), std::runtime_error);
  EXPECT_TRUE(source.isEoS());
  EXPECT_EQ(fill(source, 8), u"");
  EXPECT_THROW(source.init_stream(file.path(), "no-such-encoding"), std::invalid_argument);
  EXPECT_TRUE(source.isEoS());
  source.init_stream(file.path(), "UTF-8");
  EXPECT_EQ(rest_of(source, 8), u"abc");
}

TEST(FileTextSourceOpen, AFailureLeavesAnOpenSourceAsItWas) {
  OpenFile file("abc", "UTF-8");
  EXPECT_EQ(fill(*file, 1), u"a");
  EXPECT_THROW(file->init_stream(missing_path(), "UTF-8"), std::runtime_error);
  EXPECT_EQ(rest_of(*file, 8), u"bc");
}

std::ptrdiff_t open_descriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

TEST(FileTextSourceOpen, TheFileIsClosedWithTheSourceAndAfterAFailure) {
  const TempFile bytes("abc");
  const std::ptrdiff_t before = open_descriptors();
  {
    FileTextSource source;
    source.init_stream(bytes.path(), "UTF-8");
    EXPECT_EQ(open_descriptors(), before + 1);
    EXPECT_EQ(rest_of(source, 8), u"abc");
  }
  EXPECT_EQ(open_descriptors(), before);
  FileTextSource failing;
  EXPECT_THROW(failing.init_stream(bytes.path(), "no-such-encoding"), std::invalid_argument);
  EXPECT_EQ(open_descriptors(), before);
}

// --- an open stream, handed over and back --------------------------------------------------------

// The read end of a pipe that contains `bytes`.
std::FILE* pipe_with(std::string_view bytes) {
  int ends[2];
  EXPECT_EQ(::pipe(ends), 0);
  EXPECT_EQ(::write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  ::close(ends[1]);
  return ::fdopen(ends[0], "rb");
}

// A device on which every read fails with `error` as errno.
std::FILE* failing_device(int& error) {
  cookie_io_functions_t device{};
  device.read = [](void* reason, char*, std::size_t) -> ssize_t {
    errno = *static_cast<const int*>(reason);
    return -1;
  };
  return ::fopencookie(&error, "rb", device);
}

TEST(FileTextSourceStream, IsReadFromWhereItStands) {
  std::FILE* const file = pipe_with("abc");
  EXPECT_EQ(std::fgetc(file), 'a');
  FileTextSource source;
  source.init_stream(file, "UTF-8");
  EXPECT_EQ(rest_of(source, 8), u"bc");
}

TEST(FileTextSourceStream, OfNullIsNotFound) {
  FileTextSource source;
  EXPECT_THROW(source.init_stream(static_cast<std::FILE*>(nullptr), "UTF-8"), std::runtime_error);
  EXPECT_TRUE(source.isEoS());
}

// The position of such an input is always -1.
TEST(FileTextSourceStream, ThatCannotSeekIsSkippedFromWhereItStandsOnly) {
  FileTextSource source;
  source.init_stream(pipe_with("abcdef"), "UTF-8");
  EXPECT_EQ(source.getPos(), -1);
  EXPECT_EQ(source.skipFromPos(-1, 2), 2U);
  EXPECT_EQ(fill(source, 1), u"c");
  // The text from here on would not be the text at the requested position.
  EXPECT_EQ(source.skipFromPos(0, 2), 0U);
  EXPECT_EQ(fill(source, 2), u"");
  EXPECT_EQ(source.read_error(), ESPIPE);
}

TEST(FileTextSourceReadError, IsThatOfTheFirstReadThatFailed) {
  int error = ENXIO;
  FileTextSource source;
  EXPECT_EQ(source.read_error(), 0);
  source.init_stream(failing_device(error), "UTF-8");
  EXPECT_EQ(source.read_error(), 0);
  EXPECT_EQ(fill(source, 8), u"");
  EXPECT_EQ(source.read_error(), ENXIO);
  error = EBADMSG;
  EXPECT_EQ(fill(source, 8), u"");
  EXPECT_EQ(source.read_error(), ENXIO);
}

TEST(FileTextSourceReadError, WithoutAReasonIsAnErrorOfTheDevice) {
  int error = 0;
  FileTextSource source;
  source.init_stream(failing_device(error), "UTF-8");
  EXPECT_EQ(fill(source, 8), u"");
  EXPECT_EQ(source.read_error(), EIO);
}

TEST(FileTextSourceReadError, IsNoneAtTheEndOfTheFile) {
  OpenFile file("abc", "UTF-8");
  EXPECT_EQ(rest_of(*file, 8), u"abc");
  EXPECT_EQ(file->read_error(), 0);
}

TEST(FileTextSourceRelease, GivesTheStreamBackWhereReadingHasCome) {
  OpenFile file("abc", "UTF-8");
  EXPECT_EQ(fill(*file, 1), u"a");
  std::FILE* const released = file->release();
  ASSERT_NE(released, nullptr);
  EXPECT_EQ(std::fgetc(released), 'b');
  EXPECT_EQ(std::fclose(released), 0);
}

TEST(FileTextSourceRelease, LeavesAnEmptyText) {
  OpenFile file("abc", "UTF-8");
  std::FILE* const released = file->release();
  EXPECT_TRUE(file->isEoS());
  EXPECT_EQ(fill(*file, 8), u"");
  EXPECT_EQ(file->getPos(), 0);
  EXPECT_EQ(file->release(), nullptr);
  EXPECT_EQ(std::fclose(released), 0);
}

TEST(FileTextSourceConverter, IsThereAsLongAsTheFileIs) {
  FileTextSource source;
  EXPECT_EQ(source.converter(), nullptr);
  source.init_stream(pipe_with("a\xFFz"), "UTF-8");
  ASSERT_NE(source.converter(), nullptr);
  EXPECT_EQ(rest_of(source, 8), u"a\ufffdz");
  EXPECT_EQ(source.converter()->ill_formed_parts(), 1U);
  std::fclose(source.release());
  EXPECT_EQ(source.converter(), nullptr);
}

TEST(FileTextSourceUnopened, ReadsAsAnEmptyText) {
  FileTextSource source;
  EXPECT_TRUE(source.isEoS());
  EXPECT_EQ(fill(source, 8), u"");
  EXPECT_EQ(source.getPos(), 0);
  EXPECT_EQ(source.skipFromPos(0, 5), 0U);
  EXPECT_EQ(source.skipFromPos(0, 0), 0U);
  EXPECT_NE(source.getBufferManager(), nullptr);
}

TEST(FileTextSourceUnopened, GivesAStreamWithoutText) {
  FileTextSource source;
  TextStream stream(&source);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
  stream.advance(3);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
}

// --- buffer manager ----------------------------------------------------------------------------

TEST(FileStreamBufferManagerResize, TellsSizeAndBounds) {
  FileStreamBufferManager manager;
  EXPECT_EQ(manager.begin(), manager.end());
  for (const std::size_t n : {std::size_t{5}, kBufferUnits, std::size_t{1}, std::size_t{0}}) {
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    EXPECT_EQ(manager.resize(n, begin, end), n);
    EXPECT_EQ(end, begin + n);
    EXPECT_EQ(manager.begin(), begin);
    EXPECT_EQ(manager.end(), end);
  }
}

TEST(FileStreamBufferManagerResize, KeepsTheStartAndAddsZeros) {
  FileStreamBufferManager manager;
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  manager.resize(3, begin, end);
  EXPECT_EQ(std::u16string(begin, end), std::u16string(3, u'\0'));
  std::copy_n(u"abc", 3, begin);
  manager.resize(200'000, begin, end);
  EXPECT_EQ(std::u16string(begin, begin + 3), u"abc");
  EXPECT_TRUE(std::all_of(begin + 3, end, [](char16_t unit) { return unit == u'\0'; }));
}

// Storage of two megabytes or more requests huge pages; its contents are the same.
TEST(FileStreamBufferManagerResize, KeepsTheStartAndAddsZerosAroundTheSizeOfHugePages) {
  constexpr std::size_t kHugePageUnits = 1'048'576;
  for (const std::size_t n : {kHugePageUnits - 64, kHugePageUnits - 1, kHugePageUnits,
                              kHugePageUnits + 1, 2 * kHugePageUnits, 5 * kHugePageUnits + 3}) {
    FileStreamBufferManager manager;
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    manager.resize(3, begin, end);
    std::copy_n(u"abc", 3, begin);
    manager.resize(n, begin, end);
    ASSERT_EQ(static_cast<std::size_t>(end - begin), n);
    EXPECT_EQ(std::u16string(begin, begin + 3), u"abc");
    EXPECT_TRUE(std::all_of(begin + 3, end, [](char16_t unit) { return unit == u'\0'; })) << n;
    std::fill(begin, end, u'x');
    manager.resize(n + kHugePageUnits, begin, end);
    EXPECT_TRUE(std::all_of(begin, begin + n, [](char16_t unit) { return unit == u'x'; })) << n;
    EXPECT_TRUE(std::all_of(begin + n, end, [](char16_t unit) { return unit == u'\0'; })) << n;
  }
}

TEST(FileStreamBufferManagerResize, AShrinkKeepsTheStorage) {
  FileStreamBufferManager manager;
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  manager.resize(kBufferUnits * 6, begin, end);
  std::copy_n(u"abcd", 4, begin);
  const char16_t* const before = begin;
  manager.resize(2, begin, end);
  EXPECT_EQ(begin, before);
  manager.resize(4, begin, end);
  EXPECT_EQ(std::u16string(begin, end), std::u16string(u"ab\0\0", 4));
}

// The storage that a shrink has kept is replaced by one without spare capacity.
TEST(FileStreamBufferManagerResize, AGrowthWithinTheStorageLeavesNoRoomToSpare) {
  FileStreamBufferManager manager;
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  manager.resize(kBufferUnits * 6, begin, end);
  manager.resize(2, begin, end);
  std::copy_n(u"ab", 2, begin);
  const char16_t* const before = begin;
  manager.resize(kBufferUnits * 5, begin, end);
  EXPECT_NE(begin, before);
  EXPECT_EQ(std::u16string(begin, begin + 3), std::u16string(u"ab\0", 3));
  EXPECT_EQ(end, begin + kBufferUnits * 5);
}

TEST(FileStreamBufferManagerResize, AGrowthThatFillsTheStorageKeepsIt) {
  FileStreamBufferManager manager;
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  manager.resize(kBufferUnits * 6, begin, end);
  const char16_t* const before = begin;
  manager.resize(2, begin, end);
  manager.resize(kBufferUnits * 6, begin, end);
  EXPECT_EQ(begin, before);
  EXPECT_EQ(end, begin + kBufferUnits * 6);
}

TEST(FileStreamBufferManagerResize, OfAnImpossibleSizeChangesNothing) {
  FileStreamBufferManager manager;
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  manager.resize(2, begin, end);
  std::copy_n(u"ab", 2, begin);
  char16_t* other_begin = nullptr;
  char16_t* other_end = nullptr;
  EXPECT_THROW(manager.resize(SIZE_MAX, other_begin, other_end), std::length_error);
  EXPECT_EQ(std::u16string(manager.begin(), manager.end()), u"ab");
}

}  // namespace
}  // namespace textio
