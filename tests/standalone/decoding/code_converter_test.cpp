// The converter of the stand-alone host gives the same code units for all chunks and room.
#include <vltextstream/host/code_converter.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "support/first_difference.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing_support::ByRule;
using testing_support::first_difference;
using testing_support::kNoDifference;
using testing_support::readable;

// --- calls -------------------------------------------------------------------------------------

struct Answer {
  std::u16string text;
  bool must_reset;
};

// One call, with heap blocks of exactly the given sizes; all input must be consumed.
Answer convert(StreamCodeConverter& converter, std::string_view bytes, std::size_t room,
               bool final) {
  const auto input = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), input.get());
  const auto output = std::make_unique<char16_t[]>(room);
  const char* in = input.get();
  const char* const in_end = in + bytes.size();
  char16_t* out = output.get();
  char16_t* const out_end = out + room;
  const bool must_reset = converter.convert(out, out_end, in, in_end, final);
  EXPECT_EQ(in, in_end) << "input is left over";
  EXPECT_GE(out, output.get());
  EXPECT_LE(out, out_end);
  return {{output.get(), static_cast<std::size_t>(out - output.get())}, must_reset};
}

constexpr std::size_t kPlenty = 4096;

// How a text is passed to the converter.
struct Feeding {
  std::size_t chunk = kPlenty;    // bytes per call
  std::size_t room = kPlenty;     // code units per call
  bool end_with_bytes = true;     // the last bytes are final; otherwise a call without bytes is
  bool ask_for_held_back = true;  // after a call that filled its room, before the next bytes
};
std::ostream& operator<<(std::ostream& out, const Feeding& feeding) {
  return out << "chunks of " << feeding.chunk << ", room of " << feeding.room
             << (feeding.end_with_bytes ? ", end with bytes" : ", end without bytes")
             << (feeding.ask_for_held_back ? ", asking" : ", not asking");
}

// The whole output of the converter for a text. It may ask for a reset only at the end, after the
// last code unit.
std::u16string all_of(StreamCodeConverter& converter, std::string_view bytes,
                      const Feeding& feeding = {}) {
  std::u16string text;
  const auto step = [&](std::string_view part, bool final, bool ask) {
    Answer answer = convert(converter, part, feeding.room, final);
    text += answer.text;
    while (ask && !answer.must_reset && answer.text.size() == feeding.room) {
      answer = convert(converter, {}, feeding.room, final);
      text += answer.text;
    }
    EXPECT_FALSE(answer.must_reset && !final) << "a reset in the middle would lose text";
  };
  for (std::size_t pos = 0; pos < bytes.size(); pos += feeding.chunk) {
    const bool last = pos + feeding.chunk >= bytes.size() && feeding.end_with_bytes;
    step(bytes.substr(pos, feeding.chunk), last, last || feeding.ask_for_held_back);
  }
  if (!feeding.end_with_bytes || bytes.empty()) step({}, true, true);
  return text;
}

std::vector<Feeding> all_feedings() {
  std::vector<Feeding> feedings;
  for (const std::size_t chunk : {std::size_t{1}, std::size_t{2}, std::size_t{3}, kPlenty}) {
    for (const std::size_t room : {std::size_t{1}, std::size_t{2}, std::size_t{3}, kPlenty}) {
      for (const bool end_with_bytes : {false, true}) {
        for (const bool ask : {false, true}) {
          feedings.push_back({chunk, room, end_with_bytes, ask});
        }
      }
    }
  }
  return feedings;
}

// The text in two parts; the first part is not final.
std::u16string cut_at(StreamCodeConverter& converter, std::string_view bytes, std::size_t cut) {
  const Answer head = convert(converter, bytes.substr(0, cut), kPlenty, false);
  EXPECT_FALSE(head.must_reset);
  return head.text + convert(converter, bytes.substr(cut), kPlenty, true).text;
}

// --- texts -------------------------------------------------------------------------------------

// A character, a byte-order mark or an escape sequence: the bytes that belong together, and their
// text.
struct Piece {
  std::string bytes;
  std::u32string text;
};
using Pieces = std::vector<Piece>;

std::string bytes_of(const Pieces& pieces) {
  std::string bytes;
  for (const Piece& piece : pieces) bytes += piece.bytes;
  return bytes;
}

std::u16string units_of(std::u32string_view text, bool one_unit) {
  std::u16string units;
  for (const char32_t c : text) {
    if (c < 0x10000) {
      units.push_back(static_cast<char16_t>(c));
      continue;
    }
    units.push_back(static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)));
    if (!one_unit) units.push_back(static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF)));
  }
  return units;
}

std::u16string units_of(const Pieces& pieces, bool one_unit) {
  std::u16string units;
  for (const Piece& piece : pieces) units += units_of(piece.text, one_unit);
  return units;
}

// With one code unit per character, each pair is its high surrogate.
std::u16string first_halves(std::u16string_view text) {
  std::u16string units;
  for (const char16_t unit : text) {
    if (unit < 0xDC00 || unit > 0xDFFF) units.push_back(unit);
  }
  return units;
}

// The text of the first `count` bytes; `cut` says whether they end within a piece.
std::u16string units_of_whole(const Pieces& pieces, std::size_t count, bool one_unit, bool& cut) {
  std::u16string units;
  std::size_t end = 0;
  for (const Piece& piece : pieces) {
    if (end == count) break;
    end += piece.bytes.size();
    if (end > count) {
      cut = true;
      return units;
    }
    units += units_of(piece.text, one_unit);
  }
  cut = false;
  return units;
}

std::string utf8(char32_t c) {
  const auto byte = [](char32_t value) { return static_cast<char>(value); };
  if (c < 0x80) return {byte(c)};
  if (c < 0x800) return {byte(0xC0 | (c >> 6)), byte(0x80 | (c & 0x3F))};
  if (c < 0x10000) {
    return {byte(0xE0 | (c >> 12)), byte(0x80 | ((c >> 6) & 0x3F)), byte(0x80 | (c & 0x3F))};
  }
  return {byte(0xF0 | (c >> 18)), byte(0x80 | ((c >> 12) & 0x3F)), byte(0x80 | ((c >> 6) & 0x3F)),
          byte(0x80 | (c & 0x3F))};
}

// A number in `size` bytes, big-endian.
std::string big_endian(char32_t number, std::size_t size) {
  std::string bytes;
  for (std::size_t i = size; i-- > 0;) bytes.push_back(static_cast<char>(number >> (8 * i)));
  return bytes;
}
std::string little_endian(char32_t number, std::size_t size) {
  std::string bytes = big_endian(number, size);
  std::reverse(bytes.begin(), bytes.end());
  return bytes;
}

template <std::string (*kNumber)(char32_t, std::size_t)>
std::string utf16(char32_t c) {
  std::string bytes;
  for (const char16_t unit : units_of(std::u32string(1, c), false)) bytes += kNumber(unit, 2);
  return bytes;
}
template <std::string (*kNumber)(char32_t, std::size_t)>
std::string utf32(char32_t c) {
  return kNumber(c, 4);
}
constexpr auto utf16le = utf16<little_endian>;
constexpr auto utf16be = utf16<big_endian>;
constexpr auto utf32le = utf32<little_endian>;
constexpr auto utf32be = utf32<big_endian>;

// Characters of each length in each encoding, including the last character of all, at the ends and
// in a row.
constexpr std::u32string_view kCharacters =
    U"a\u00e9\u20ac\U0001F600\U0010FFFF\U00010000z\n\uffff\ud7ff\ue000\U0001F600\u0080\u07ff\u0800";

Pieces encoded(std::string (*encode)(char32_t), std::u32string_view text = kCharacters) {
  Pieces pieces;
  for (const char32_t c : text) pieces.push_back({encode(c), std::u32string(1, c)});
  return pieces;
}

// The same after a mark, which gives no text; a second mark is a character.
Pieces marked(std::string (*encode)(char32_t)) {
  Pieces pieces = encoded(encode);
  pieces.insert(pieces.begin(), {encode(0xFEFF), U"\ufeff"});
  pieces.insert(pieces.begin(), {encode(0xFEFF), U""});
  return pieces;
}

struct Sample {
  const char* rule;
  const char* encoding;
  Pieces pieces;
  std::size_t mark_bytes = 0;  // length of the mark at the start, if there is one
};
std::ostream& operator<<(std::ostream& out, const Sample& sample) { return out << sample.rule; }

const Sample kSamples[] = {
    {"Utf8", "UTF-8", encoded(utf8)},
    {"Utf8Marked", "UTF-8", marked(utf8), 3},
    {"Utf8StartsLikeAMark", "UTF-8", encoded(utf8, U"\ufec0\ufeff\uf000z")},
    {"Utf16LittleEndianMark", "UTF-16", marked(utf16le), 2},
    {"Utf16BigEndianMark", "UTF-16", marked(utf16be), 2},
    {"Utf16WithoutMarkIsBigEndian", "UTF-16", encoded(utf16be)},
    {"Utf16WithoutMarkStartsWithAPair", "UTF-16", encoded(utf16be, U"\U0001F600a\U0001F601")},
    {"Utf16Le", "UTF-16LE", encoded(utf16le)},
    {"Utf16LeMarked", "UTF-16LE", marked(utf16le), 2},
    {"Utf16LeHasNoBigEndianMark", "UTF-16LE", {{"\xFE\xFF", U"\ufffe"}, {{"z\0", 2}, U"z"}}},
    {"Utf16Be", "UTF-16BE", encoded(utf16be)},
    {"Utf16BeMarked", "UTF-16BE", marked(utf16be), 2},
    {"Utf16BeHasNoLittleEndianMark", "UTF-16BE", {{"\xFF\xFE", U"\ufffe"}, {{"\0z", 2}, U"z"}}},
    {"Utf32LittleEndianMark", "UTF-32", marked(utf32le), 4},
    {"Utf32BigEndianMark", "UTF-32", marked(utf32be), 4},
    {"Utf32WithoutMarkIsBigEndian", "UTF-32", encoded(utf32be)},
    {"Utf32Le", "UTF-32LE", encoded(utf32le)},
    {"Utf32LeMarked", "UTF-32LE", marked(utf32le), 4},
    {"Utf32Be", "UTF-32BE", encoded(utf32be)},
    {"Utf32BeMarked", "UTF-32BE", marked(utf32be), 4},
    {"Latin1",
     "ISO-8859-1",
     {{"a", U"a"}, {"\xE9", U"\u00e9"}, {"\x80", U"\u0080"}, {"\xFF", U"\u00ff"}, {"z", U"z"}}},
    {"Latin1HasNoMark",
     "ISO-8859-1",
     {{"\xEF", U"\u00ef"}, {"\xBB", U"\u00bb"}, {"\xBF", U"\u00bf"}, {"z", U"z"}}},
    {"Windows1252",
     "windows-1252",
     {{"a", U"a"}, {"\x80", U"\u20ac"}, {"\x9F", U"\u0178"}, {"\x93", U"\u201c"}, {"z", U"z"}}},
    {"ShiftJis",
     "Shift_JIS",
     {{"a", U"a"},
      {"\x83\x65", U"\u30c6"},
      {"\xB1", U"\uff71"},
      {"\x93\xFA", U"\u65e5"},
      {"\x83\x5C", U"\u30bd"},  // a trail byte like a backslash
      {"\x95\x5C", U"\u8868"},
      {",", U","},
      {"\x96\x7B", U"\u672c"}}},
    {"Gb18030",
     "GB18030",
     {{"a", U"a"},
      {"\xD6\xD0", U"\u4e2d"},
      {"\x81\x30\x81\x30", U"\u0080"},
      {"\xCE\xC4", U"\u6587"},
      {"\x94\x39\xFC\x36", U"\U0001F600"},
      {"\x90\x30\x81\x30", U"\U00010000"},
      {"z", U"z"},
      {"\xE3\x32\x9A\x35", U"\U0010FFFF"}}},
    {"Gb18030Marked",
     "GB18030",
     {{"\x84\x31\x95\x33", U""}, {"\xD6\xD0", U"\u4e2d"}, {"z", U"z"}},
     4},
    {"Iso2022Jp",
     "ISO-2022-JP",
     {{"a", U"a"},
      {"\x1B$B", U""},
      {"\x46\x7C", U"\u65e5"},
      {"\x4B\x5C", U"\u672c"},
      {"\x1B(B", U""},
      {",", U","},
      {"\x1B$B", U""},
      {"\x24\x22", U"\u3042"},
      {"\x25\x3D", U"\u30bd"},
      {"\x1B(B", U""},
      {"\n", U"\n"},
      {"z", U"z"}}},
};

class StreamCodeConverterSamples : public testing::TestWithParam<Sample> {
 protected:
  std::string bytes() const { return bytes_of(GetParam().pieces); }
  std::u16string units(bool one_unit) const { return units_of(GetParam().pieces, one_unit); }
};

TEST_P(StreamCodeConverterSamples, GiveTheSameUnitsHoweverTheyAreFed) {
  for (const bool one_unit : {false, true}) {
    for (const Feeding& feeding : all_feedings()) {
      StreamCodeConverter converter(GetParam().encoding, one_unit);
      EXPECT_EQ(readable(all_of(converter, bytes(), feeding)), readable(units(one_unit)))
          << feeding << (one_unit ? ", one unit" : "");
    }
  }
}

// Former bug: the test for exchanged control characters was counted, so that a well-formed text in
// UTF-16 or UTF-32 had an ill-formed part.
TEST_P(StreamCodeConverterSamples, HaveNoIllFormedPart) {
  StreamCodeConverter converter(GetParam().encoding, true);
  EXPECT_EQ(converter.ill_formed_parts(), 0U) << "before the first byte";
  convert(converter, bytes(), kPlenty, true);
  EXPECT_EQ(converter.ill_formed_parts(), 0U);
}

TEST_P(StreamCodeConverterSamples, GiveTheSameUnitsWhereverTheyAreCut) {
  for (const bool one_unit : {false, true}) {
    for (std::size_t cut = 0; cut <= bytes().size(); ++cut) {
      StreamCodeConverter converter(GetParam().encoding, one_unit);
      EXPECT_EQ(readable(cut_at(converter, bytes(), cut)), readable(units(one_unit))) << cut;
    }
  }
}

// No piece is longer than four bytes, so cuts further apart do not affect each other.
constexpr std::size_t kFarthest = 5;

TEST_P(StreamCodeConverterSamples, GiveTheSameUnitsWhereverTheyAreCutTwice) {
  const std::string all = bytes();
  StreamCodeConverter converter(GetParam().encoding, false);
  for (std::size_t first = 0; first <= all.size(); ++first) {
    for (std::size_t second = first; second <= std::min(first + kFarthest, all.size()); ++second) {
      converter.reset(true);
      std::u16string text = convert(converter, all.substr(0, first), kPlenty, false).text;
      text += convert(converter, all.substr(first, second - first), kPlenty, false).text;
      text += convert(converter, all.substr(second), kPlenty, true).text;
      ASSERT_EQ(readable(text), readable(units(false))) << first << " and " << second;
    }
  }
}

// A character is delivered as soon as its last byte has come.
TEST_P(StreamCodeConverterSamples, GiveEveryWholeCharacterAtOnce) {
  for (const bool one_unit : {false, true}) {
    for (std::size_t count = 0; count <= bytes().size(); ++count) {
      bool cut = false;
      const std::u16string whole = units_of_whole(GetParam().pieces, count, one_unit, cut);
      StreamCodeConverter converter(GetParam().encoding, one_unit);
      const Answer answer = convert(converter, bytes().substr(0, count), kPlenty, false);
      EXPECT_EQ(readable(answer.text), readable(whole)) << count << " bytes";
      EXPECT_FALSE(answer.must_reset);
      EXPECT_EQ(converter.has_more(), cut) << count << " bytes";
    }
  }
}

TEST_P(StreamCodeConverterSamples, EndWithOneReplacementWhenTruncated) {
  for (const bool one_unit : {false, true}) {
    for (std::size_t count = 0; count <= bytes().size(); ++count) {
      bool cut = false;
      std::u16string expected = units_of_whole(GetParam().pieces, count, one_unit, cut);
      if (cut) expected += u'\ufffd';
      for (const Feeding& feeding :
           {Feeding{}, Feeding{1, 1, true, true}, Feeding{1, 1, false, false},
            Feeding{2, kPlenty, false, true}, Feeding{kPlenty, 1, true, true}}) {
        StreamCodeConverter converter(GetParam().encoding, one_unit);
        EXPECT_EQ(readable(all_of(converter, bytes().substr(0, count), feeding)),
                  readable(expected))
            << count << " bytes, " << feeding;
      }
    }
  }
}

TEST_P(StreamCodeConverterSamples, AreHeldBackWhereThereIsNoRoomAtAll) {
  StreamCodeConverter converter(GetParam().encoding, false);
  for (const char byte : bytes()) {
    const Answer answer = convert(converter, {&byte, 1}, 0, false);
    EXPECT_FALSE(answer.must_reset);
  }
  EXPECT_FALSE(convert(converter, {}, 0, true).must_reset);
  EXPECT_TRUE(converter.has_more());
  EXPECT_EQ(readable(convert(converter, {}, kPlenty, true).text), readable(units(false)));
  EXPECT_FALSE(converter.has_more());
}

TEST_P(StreamCodeConverterSamples, StartAgainAfterAReset) {
  StreamCodeConverter converter(GetParam().encoding, false);
  for (int round = 0; round < 3; ++round) {
    EXPECT_EQ(readable(all_of(converter, bytes())), readable(units(false))) << round;
    converter.reset(true);
  }
}

TEST_P(StreamCodeConverterSamples, HaveNoMarkInTheMiddle) {
  const std::u16string mark(GetParam().mark_bytes == 0 ? 0 : 1, u'\ufeff');
  StreamCodeConverter converter(GetParam().encoding, false);
  EXPECT_EQ(readable(all_of(converter, bytes())), readable(units(false)));
  for (int round = 0; round < 3; ++round) {
    converter.reset(false);
    EXPECT_EQ(readable(all_of(converter, bytes())), readable(mark + units(false))) << round;
  }
  converter.reset(true);
  EXPECT_EQ(readable(all_of(converter, bytes())), readable(units(false)));
}

// Unfinished characters, active escape sequences and code units without room are all forgotten.
TEST_P(StreamCodeConverterSamples, LeaveNothingBehindWhenResetAnywhere) {
  const std::u16string mark(GetParam().mark_bytes == 0 ? 0 : 1, u'\ufeff');
  for (const std::size_t room : {std::size_t{0}, kPlenty}) {
    for (std::size_t count = 0; count <= bytes().size(); ++count) {
      StreamCodeConverter converter(GetParam().encoding, false);
      convert(converter, bytes().substr(0, count), room, false);
      converter.reset(true);
      EXPECT_FALSE(converter.has_more());
      EXPECT_EQ(readable(all_of(converter, bytes())), readable(units(false))) << count;
      if (count < GetParam().mark_bytes) continue;
      converter.reset(false);
      convert(converter, bytes().substr(0, count), room, false);
      converter.reset(false);
      EXPECT_EQ(readable(all_of(converter, bytes())), readable(mark + units(false))) << count;
    }
  }
}

// Restarts at each place, as a reader does that goes back, and decodes the rest.
TEST_P(StreamCodeConverterSamples, KeepTheByteOrderAfterARestartInTheMiddle) {
  if (std::string_view(GetParam().encoding) == "ISO-2022-JP") return;  // its bytes have a state
  const Pieces& pieces = GetParam().pieces;
  const std::size_t marks = GetParam().mark_bytes == 0 ? 0 : 1;
  StreamCodeConverter converter(GetParam().encoding, false);
  all_of(converter, bytes());
  for (std::size_t from = marks; from < pieces.size(); ++from) {
    const Pieces rest(pieces.begin() + static_cast<std::ptrdiff_t>(from), pieces.end());
    converter.reset(false);
    EXPECT_EQ(readable(all_of(converter, bytes_of(rest))), readable(units_of(rest, false))) << from;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, StreamCodeConverterSamples, testing::ValuesIn(kSamples), ByRule());

// --- further encodings --------------------------------------------------------------------------

// Texts in old and new encodings; `start` comes once at the beginning and gives no text.
struct EncodingCase {
  const char* rule;
  const char* encoding;
  std::string start;
  std::string bytes;
  std::u16string text;
};
std::ostream& operator<<(std::ostream& out, const EncodingCase& row) { return out << row.rule; }

const EncodingCase kEncodings[] = {
    {"Utf8", "UTF-8", "\xEF\xBB\xBF", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80,\n",
     u"a\u00e9\u20ac\U0001F600,\n"},
    {"Utf16Little", "UTF-16", "\xFF\xFE", {"a\0\xAC\x20\x3D\xD8\x00\xDE", 8}, u"a\u20ac\U0001F600"},
    {"Utf16Big", "UTF-16", "\xFE\xFF", {"\0a\x20\xAC\xD8\x3D\xDE\x00", 8}, u"a\u20ac\U0001F600"},
    {"Utf16Le", "UTF-16LE", "", {"a\0\xAC\x20\x3D\xD8\x00\xDE", 8}, u"a\u20ac\U0001F600"},
    {"Utf16Be", "UTF-16BE", "", {"\0a\x20\xAC\xD8\x3D\xDE\x00", 8}, u"a\u20ac\U0001F600"},
    {"Utf32Little", "UTF-32", {"\xFF\xFE\0\0", 4}, {"a\0\0\0\x00\xF6\x01\0", 8}, u"a\U0001F600"},
    {"Utf32Big", "UTF-32", {"\0\0\xFE\xFF", 4}, {"\0\0\0a\0\x01\xF6\x00", 8}, u"a\U0001F600"},
    {"Utf32Le", "UTF-32LE", "", {"a\0\0\0\x00\xF6\x01\0", 8}, u"a\U0001F600"},
    {"Utf32Be", "UTF-32BE", "", {"\0\0\0a\0\x01\xF6\x00", 8}, u"a\U0001F600"},
    {"Utf7", "UTF-7", "", "a+AOk-+IKw-,+2D3eAA-z\n", u"a\u00e9\u20ac,\U0001F600z\n"},
    {"Imap", "IMAP-mailbox-name", "", "a&AOk-z&-", u"a\u00e9z&"},
    {"Cesu8", "CESU-8", "", "a\xC3\xA9\xED\xA0\xBD\xED\xB8\x80z", u"a\u00e9\U0001F600z"},
    {"Scsu", "SCSU", "", "a\xE9\x0E\x20\xACz\n", u"a\u00e9\u20acz\n"},
    {"Bocu1", "BOCU-1", "", "\xB1\xD0\x76\n", u"a\u00e9\n"},
    {"Gb18030", "GB18030", "", "a\xD6\xD0\x81\x30\x81\x30\x94\x39\xFC\x36,",
     u"a\u4e2d\u0080\U0001F600,"},
    {"Gbk", "GBK", "", "a\xD6\xD0\x81\x40,", u"a\u4e2d\u4e02,"},
    {"Gb2312", "GB2312", "", "a\xD6\xD0\xCE\xC4,", u"a\u4e2d\u6587,"},
    {"Hz", "HZ-GB-2312", "", "a~{VPND~}~~\n", u"a\u4e2d\u6587~\n"},
    {"EucJp", "EUC-JP", "", "a\xC6\xFC\x8E\xB1\x8F\xB0\xA1\xA4\xA2,",
     u"a\u65e5\uff71\u4e02\u3042,"},
    {"ShiftJis", "Shift_JIS", "", "a\x83\x65\xB1\x83\x5C,\x93\xFA", u"a\u30c6\uff71\u30bd,\u65e5"},
    {"Iso2022Jp", "ISO-2022-JP", "", "a\x1B$B\x46\x7C\x24\x22\x1B(B,\n", u"a\u65e5\u3042,\n"},
    {"Iso2022Kr", "ISO-2022-KR", "\x1B$)C", "a\x0E\x47\x51\x31\x5B\x0F,\n", u"a\ud55c\uae00,\n"},
    {"Iso2022Cn", "ISO-2022-CN", "", "a\x1B$)A\x0E\x56\x50\x4E\x44\x0F,\n", u"a\u4e2d\u6587,\n"},
    {"Big5", "Big5", "", "a\xA4\xA4\xA5\x5C\xA4\xE5,", u"a\u4e2d\u529f\u6587,"},
    {"Big5Hkscs", "Big5-HKSCS", "", "a\x88\x66z\xA4\xA4", u"a\u00caz\u4e2d"},
    {"EucKr", "EUC-KR", "", "a\xC7\xD1\xB1\xDB\xB0\xA1,", u"a\ud55c\uae00\uac00,"},
    {"Windows1250", "windows-1250", "", "a\x8A\xE8,", u"a\u0160\u010d,"},
    {"Windows1251", "windows-1251", "", "a\xCF\xEF,", u"a\u041f\u043f,"},
    {"Windows1252", "windows-1252", "", "a\x80\x93\xE9,", u"a\u20ac\u201c\u00e9,"},
    {"Windows1253", "windows-1253", "", "a\xE1\xF9,", u"a\u03b1\u03c9,"},
    {"Windows1254", "windows-1254", "", "a\xF0\xDD,", u"a\u011f\u0130,"},
    {"Windows1255", "windows-1255", "", "a\xE0\xFA,", u"a\u05d0\u05ea,"},
    {"Windows1256", "windows-1256", "", "a\xC7\xE1,", u"a\u0627\u0644,"},
    {"Windows1257", "windows-1257", "", "a\xE0\xFE,", u"a\u0105\u017e,"},
    {"Windows1258", "windows-1258", "", "a\xD0\xFE,", u"a\u0110\u20ab,"},
    {"Koi8R", "KOI8-R", "", "a\xF0\xD0,", u"a\u041f\u043f,"},
    {"Macintosh", "macintosh", "", "a\x8E\x80,", u"a\u00e9\u00c4,"},
    {"CodePage437", "IBM437", "", "a\x82\x1A\x1C\x7F\xE1,", u"a\u00e9\x1A\x1C\x7F\u00df,"},
    {"Latin2", "ISO-8859-2", "", "a\xB9\xE8,", u"a\u0161\u010d,"},
    {"Latin9", "ISO-8859-15", "", "a\xA4\xBD,", u"a\u20ac\u0153,"},
    {"Ebcdic", "IBM037", "", "\x81\xC1\xF1\x6B\x25", u"aA1,\n"},
};

class StreamCodeConverterEncodings : public testing::TestWithParam<EncodingCase> {
 protected:
  static constexpr std::size_t kReadSize = 65'536;

  // The text is repeated to fill one and a half reads of 65,537 bytes.
  static std::size_t copies() { return 3 * kReadSize / 2 / GetParam().bytes.size() + 1; }
};

TEST_P(StreamCodeConverterEncodings, GiveTheSameUnitsHoweverTheyAreFed) {
  const EncodingCase& row = GetParam();
  const std::string bytes = row.start + row.bytes + row.bytes;
  for (const bool one_unit : {false, true}) {
    const std::u16string text = row.text + row.text;
    const std::u16string expected = one_unit ? first_halves(text) : text;
    for (const Feeding& feeding : all_feedings()) {
      StreamCodeConverter converter(row.encoding, one_unit);
      ASSERT_EQ(readable(all_of(converter, bytes, feeding)), readable(expected)) << feeding;
      ASSERT_EQ(converter.ill_formed_parts(), 0U) << feeding;
    }
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
      StreamCodeConverter converter(row.encoding, one_unit);
      ASSERT_EQ(readable(cut_at(converter, bytes, cut)), readable(expected)) << cut;
    }
  }
}

TEST_P(StreamCodeConverterEncodings, GiveTheSameUnitsInReadsOfUsualSizes) {
  const EncodingCase& row = GetParam();
  std::string bytes = row.start;
  std::u16string text;
  for (std::size_t i = 0; i < copies(); ++i) {
    bytes += row.bytes;
    text += row.text;
  }
  for (const std::size_t chunk : {kReadSize - 2, kReadSize - 1, kReadSize, kReadSize + 1}) {
    StreamCodeConverter converter(row.encoding, false);
    EXPECT_EQ(first_difference(all_of(converter, bytes, {chunk, chunk}), text), kNoDifference)
        << chunk;
    EXPECT_EQ(converter.ill_formed_parts(), 0U) << chunk;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, StreamCodeConverterEncodings, testing::ValuesIn(kEncodings),
                         ByRule());

// --- byte order --------------------------------------------------------------------------------

struct OrderCase {
  const char* rule;
  const char* encoding;  // a name of an encoding whose text decides the byte order
  std::string mark;
  std::string a;  // the character in that order
};
std::ostream& operator<<(std::ostream& out, const OrderCase& row) { return out << row.rule; }

const OrderCase kOrders[] = {
    {"Utf16Little", "UTF-16", "\xFF\xFE", {"a\0", 2}},
    {"Utf16Big", "UTF-16", "\xFE\xFF", {"\0a", 2}},
    {"Utf16Default", "UTF-16", "", {"\0a", 2}},
    {"Utf16LittleInLowerCase", "utf-16", "\xFF\xFE", {"a\0", 2}},
    {"Utf16LittleWithoutHyphen", "UTF16", "\xFF\xFE", {"a\0", 2}},
    {"Utf16LittleByItsLongName", "ISO-10646-UCS-2", "\xFF\xFE", {"a\0", 2}},
    {"Utf16LittleByItsShortName", "csUnicode", "\xFF\xFE", {"a\0", 2}},
    {"Utf32Little", "UTF-32", {"\xFF\xFE\0\0", 4}, {"a\0\0\0", 4}},
    {"Utf32Big", "UTF-32", {"\0\0\xFE\xFF", 4}, {"\0\0\0a", 4}},
    {"Utf32Default", "UTF-32", "", {"\0\0\0a", 4}},
    {"Utf32LittleWithUnderscore", "utf_32", {"\xFF\xFE\0\0", 4}, {"a\0\0\0", 4}},
    {"Utf32LittleByItsLongName", "ISO-10646-UCS-4", {"\xFF\xFE\0\0", 4}, {"a\0\0\0", 4}},
};

class StreamCodeConverterOrder : public testing::TestWithParam<OrderCase> {};

TEST_P(StreamCodeConverterOrder, StaysInForceAfterEveryReset) {
  const OrderCase& row = GetParam();
  StreamCodeConverter converter(row.encoding, true);
  EXPECT_EQ(all_of(converter, row.mark + row.a), u"a");
  for (const bool at_start : {false, true, false, false, true, true}) {
    converter.reset(at_start);
    EXPECT_EQ(all_of(converter, row.a), u"a");
  }
}

// The first bytes were read and forgotten before the first character was complete.
TEST_P(StreamCodeConverterOrder, IsKnownAfterTheMarkAlone) {
  const OrderCase& row = GetParam();
  if (row.mark.empty()) return;
  StreamCodeConverter converter(row.encoding, true);
  EXPECT_EQ(convert(converter, row.mark, kPlenty, false).text, u"");
  converter.reset(false);
  EXPECT_EQ(all_of(converter, row.a + row.a), u"aa");
}

INSTANTIATE_TEST_SUITE_P(Table, StreamCodeConverterOrder, testing::ValuesIn(kOrders), ByRule());

TEST(StreamCodeConverterOrder, IsBigWhenTheTextIsEnteredInTheMiddle) {
  StreamCodeConverter converter("UTF-16", false);
  converter.reset(false);
  EXPECT_EQ(all_of(converter, {"\xFE\xFF\0a", 4}), u"\ufeffa");
  converter.reset(true);
  EXPECT_EQ(all_of(converter, {"\0a", 2}), u"a");
}

// Without a mark, big-endian is assumed; after a reset to the start, a mark may be found.
TEST(StreamCodeConverterOrder, TakenWithoutAMarkGivesWayToAMarkAtTheNextStart) {
  for (const std::string& first : {std::string(), std::string("\0a", 2)}) {
    StreamCodeConverter converter("UTF-16", false);
    all_of(converter, first);
    converter.reset(true);
    EXPECT_EQ(readable(all_of(converter, {"\xFF\xFE\x61\0", 4})), "a") << first.size();
  }
}

TEST(StreamCodeConverterMark, CutByAResetIsForgotten) {
  StreamCodeConverter converter("UTF-8", false);
  convert(converter, "\xEF\xBB", kPlenty, false);
  converter.reset(true);
  EXPECT_EQ(all_of(converter, "\xEF\xBB\xBFz"), u"z");
  converter.reset(true);
  convert(converter, "\xEF\xBB", kPlenty, false);
  converter.reset(false);
  EXPECT_EQ(all_of(converter, "\xEF\xBB\xBFz"), u"\ufeffz");
}

TEST(StreamCodeConverterMark, IsNotLookedForAfterTheFirstCharacter) {
  for (std::size_t chunk = 1; chunk <= 8; ++chunk) {
    StreamCodeConverter converter("UTF-8", false);
    EXPECT_EQ(all_of(converter, "a\xEF\xBB\xBFz\xEF\xBB\xBF", {chunk, 1}), u"a\ufeffz\ufeff");
  }
}

// --- ill-formed bytes --------------------------------------------------------------------------

struct IllFormedCase {
  const char* rule;
  const char* encoding;
  std::string bytes;
  std::u16string text;
};
std::ostream& operator<<(std::ostream& out, const IllFormedCase& row) { return out << row.rule; }

const IllFormedCase kIllFormed[] = {
    {"Utf8LoneContinuation", "UTF-8", "\x80", u"\ufffd"},
    {"Utf8LastContinuation", "UTF-8", "a\xBFz", u"a\ufffdz"},
    {"Utf8ContinuationsStandAlone", "UTF-8", "a\x80\xBF\x80z", u"a\ufffd\ufffd\ufffdz"},
    {"Utf8OneContinuationTooMany", "UTF-8", "\xC3\xA9\xA9", u"\u00e9\ufffd"},
    {"Utf8OverlongOfTwo", "UTF-8", "\xC0\xAF", u"\ufffd\ufffd"},
    {"Utf8OverlongNul", "UTF-8", "\xC0\x80", u"\ufffd\ufffd"},
    {"Utf8LastOverlongOfTwo", "UTF-8", "\xC1\xBF", u"\ufffd\ufffd"},
    {"Utf8OverlongOfThree", "UTF-8", "\xE0\x80\xAF", u"\ufffd\ufffd\ufffd"},
    {"Utf8LastOverlongOfThree", "UTF-8", "\xE0\x9F\xBF", u"\ufffd\ufffd\ufffd"},
    {"Utf8OverlongOfFour", "UTF-8", "\xF0\x80\x80\xAF", u"\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8LastOverlongOfFour", "UTF-8", "\xF0\x8F\xBF\xBF", u"\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8FirstSurrogate", "UTF-8", "\xED\xA0\x80", u"\ufffd\ufffd\ufffd"},
    {"Utf8LastSurrogate", "UTF-8", "\xED\xBF\xBF", u"\ufffd\ufffd\ufffd"},
    {"Utf8EncodedPair", "UTF-8", "\xED\xA0\xBD\xED\xB8\x80",
     u"\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8BeyondTheLastCharacter", "UTF-8", "\xF4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8FirstLeadTooHigh", "UTF-8", "\xF5\x80\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8LeadOfFive", "UTF-8", "\xF8\x88\x80\x80\x80", u"\ufffd\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8LeadOfSix", "UTF-8", "\xFC\x84\x80\x80\x80\x80", u"\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd"},
    {"Utf8BytesThatNeverOccur", "UTF-8", "\xFE\xFF", u"\ufffd\ufffd"},
    {"Utf8LeadOfTwoThenLetter", "UTF-8", "\xC2z", u"\ufffdz"},
    {"Utf8LeadOfThreeThenLetter", "UTF-8", "\xE2z", u"\ufffdz"},
    {"Utf8TwoOfThreeThenLetter", "UTF-8", "\xE2\x82z", u"\ufffdz"},
    {"Utf8LeadOfFourThenLetter", "UTF-8", "\xF0z", u"\ufffdz"},
    {"Utf8TwoOfFourThenLetter", "UTF-8", "\xF0\x90z", u"\ufffdz"},
    {"Utf8ThreeOfFourThenLetter", "UTF-8", "\xF0\x90\x80z", u"\ufffdz"},
    {"Utf8ThreeOfTheLastFourThenLetter", "UTF-8", "\xF4\x8F\xBFz", u"\ufffdz"},
    {"Utf8TwoOfThreeThenTwo", "UTF-8", "\xE2\x82\xC3\xA9", u"\ufffd\u00e9"},
    {"Utf8ThreeOfFourThenFour", "UTF-8", "\xF0\x9F\x98\xF0\x9F\x98\x80", u"\ufffd\U0001F600"},
    {"Utf8LeadThenLineEnd", "UTF-8", "1,\xC3\n2,\xE2\x82\n", u"1,\ufffd\n2,\ufffd\n"},
    {"Utf8MixOfOverlongs", "UTF-8", "\xC0\xAF\xE0\x80\xBF\xF0\x81\x82\x41",
     u"\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffdA"},
    {"Utf8MixOfSurrogates", "UTF-8", "\xED\xA0\x80\xED\xBF\xBF\xED\xAF\x41",
     u"\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffd\ufffdA"},
    {"Utf8MixOfHighLeads", "UTF-8", "\xF4\x91\x92\x93\xFF\x41\x80\xBF\x42",
     u"\ufffd\ufffd\ufffd\ufffd\ufffdA\ufffd\ufffd"
     u"B"},
    {"Utf8MixOfCutSequences", "UTF-8", "\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41",
     u"\ufffd\ufffd\ufffd\ufffdA"},
    {"Utf8CutMarkThenLetter", "UTF-8", "\xEF\xBBz", u"\ufffdz"},
    {"Utf8CutMarkThenMark", "UTF-8", "\xEF\xEF\xBB\xBFz", u"\ufffd\ufeffz"},
    {"Utf8MarkThenIllFormed", "UTF-8", "\xEF\xBB\xBF\xBFz", u"\ufffdz"},
    {"Utf8TruncatedAfterIllFormed", "UTF-8", "\x80\xF0\x9F", u"\ufffd\ufffd"},

    {"Utf16LoneHigh", "UTF-16BE", {"\xD8\x3D\0z", 4}, u"\ufffdz"},
    {"Utf16LoneHighLittle", "UTF-16LE", {"\x3D\xD8z\0", 4}, u"\ufffdz"},
    {"Utf16LoneHighAfterAMark", "UTF-16", {"\xFF\xFE\x3D\xD8z\0", 6}, u"\ufffdz"},
    {"Utf16FirstHigh", "UTF-16BE", {"\xD8\x00\0z", 4}, u"\ufffdz"},
    {"Utf16LastHigh", "UTF-16BE", {"\xDB\xFF\0z", 4}, u"\ufffdz"},
    {"Utf16LoneLow", "UTF-16BE", {"\xDE\x00\0z", 4}, u"\ufffdz"},
    {"Utf16FirstLow", "UTF-16BE", {"\xDC\x00\0z", 4}, u"\ufffdz"},
    {"Utf16LastLow", "UTF-16LE", {"\xFF\xDFz\0", 4}, u"\ufffdz"},
    {"Utf16WrongOrder", "UTF-16BE", {"\xDE\x00\xD8\x3D\0z", 6}, u"\ufffd\ufffdz"},
    {"Utf16TwoHighs", "UTF-16LE", {"\x3D\xD8\x3D\xD8z\0", 6}, u"\ufffd\ufffdz"},
    {"Utf16HighThenPair", "UTF-16LE", {"\x3D\xD8\x3D\xD8\x00\xDE", 6}, u"\ufffd\U0001F600"},
    {"Utf16PairThenLow", "UTF-16BE", {"\xD8\x3D\xDE\x00\xDE\x00", 6}, u"\U0001F600\ufffd"},
    {"Utf16HighThenMark", "UTF-16BE", {"\xD8\x3D\xFE\xFF\0z", 6}, u"\ufffd\ufeffz"},
    {"Utf16HighAtTheEnd", "UTF-16BE", {"\0a\xD8\x3D", 4}, u"a\ufffd"},
    {"Utf16TwoHighsAtTheEnd", "UTF-16BE", {"\xD8\x3D\xD8\x3D", 4}, u"\ufffd\ufffd"},
    {"Utf16ThreeBytesOfAPair", "UTF-16BE", {"\0a\xD8\x3D\xDE", 5}, u"a\ufffd"},
    {"Utf16ThreeBytesOfAPairLittle", "UTF-16LE", {"a\0\x3D\xD8\x00", 5}, u"a\ufffd"},
    {"Utf16OddByte", "UTF-16LE", {"a\0z", 3}, u"a\ufffd"},
    {"Utf16OddByteBig", "UTF-16BE", {"\0a\0", 3}, u"a\ufffd"},
    {"Utf16OddByteAfterAMark", "UTF-16", {"\xFF\xFE\x61", 3}, u"\ufffd"},
    {"Utf16OneByte", "UTF-16", "\xFF", u"\ufffd"},
    {"Utf16FirstCharacterIsALoneLow", "UTF-16", {"\xDE\x00\0z", 4}, u"\ufffdz"},

    {"Utf32Surrogate", "UTF-32BE", {"\0\0\xD8\x3D\0\0\0z", 8}, u"\ufffdz"},
    {"Utf32BeyondTheLastCharacter", "UTF-32BE", {"\0\x11\0\0\0\0\0z", 8}, u"\ufffdz"},
    {"Utf32BeyondTheLastCharacterLittle", "UTF-32LE", {"\0\0\x11\0z\0\0\0", 8}, u"\ufffdz"},
    {"Utf32AllOnes", "UTF-32LE", {"\xFF\xFF\xFF\xFFz\0\0\0", 8}, u"\ufffdz"},
    {"Utf32HalfAMarkIsNone", "UTF-32", {"\xFF\xFE\x41\0\0\0\0z", 8}, u"\ufffdz"},
    {"Utf32OddBytes", "UTF-32LE", {"a\0\0\0z\0\0", 7}, u"a\ufffd"},

    {"ShiftJisLeadAtTheEnd", "Shift_JIS", "a\x83", u"a\ufffd"},
    {"ShiftJisLeadThenLineEnd", "Shift_JIS", "a\x83\nb", u"a\ufffd\nb"},
    {"ShiftJisLeadThenComma", "Shift_JIS", "\x83,1", u"\ufffd,1"},
    {"ShiftJisLeadThenQuestionMark", "Shift_JIS", "a\x81?z", u"a\ufffd?z"},
    {"ShiftJisTwoBadLeads", "Shift_JIS", "\x83,\x83\n", u"\ufffd,\ufffd\n"},
    {"ShiftJisPairWithoutCharacter", "Shift_JIS", "a\x85\x9Fz", u"a\ufffdz"},

    {"Gb18030LeadThenComma", "GB18030", "\x81,1", u"\ufffd,1"},
    {"Gb18030ByteThatNeverOccurs", "GB18030", "a\xFFz", u"a\ufffdz"},

    {"AsciiHighBytes", "US-ASCII", "a\x80\xFFz", u"a\ufffd\ufffdz"},
    {"Latin7UnassignedBytes", "ISO-8859-7", "a\xAE\xE1\xD2\xFF", u"a\ufffd\u03b1\ufffd\ufffd"},
    {"Windows1253UnassignedByte", "windows-1253", "\xD2\xE1", u"\ufffd\u03b1"},
    {"EucJpLeadThenComma", "EUC-JP", "\xC6,1", u"\ufffd,1"},
    {"EucJpTwoOfThreeAtTheEnd", "EUC-JP", "a\x8F\xB0", u"a\ufffd"},
    {"Big5LeadAtTheEnd", "Big5", "a\xA4", u"a\ufffd"},
    {"EucKrLeadThenLineEnd", "EUC-KR", "\xC7\n", u"\ufffd\n"},
    {"Gb18030ThreeOfFourAtTheEnd", "GB18030", "a\x81\x30\x81", u"a\ufffd"},

    // Encodings that encode surrogates.
    {"Utf7LoneHigh", "UTF-7", "+2D0-z", u"\ufffdz"},
    {"Utf7LoneLow", "UTF-7", "+3gA-z", u"\ufffdz"},
    {"Utf7HighAtTheEnd", "UTF-7", "a+2D0-", u"a\ufffd"},
    {"Cesu8LoneHigh", "CESU-8", "\xED\xA0\xBDz", u"\ufffdz"},
    {"Cesu8LoneLow", "CESU-8", "a\xED\xB8\x80z", u"a\ufffdz"},
    {"Cesu8WrongOrder", "CESU-8", "\xED\xB8\x80\xED\xA0\xBDz", u"\ufffd\ufffdz"},
    {"Cesu8TwoHighs", "CESU-8", "\xED\xA0\xBD\xED\xA0\xBD\xED\xB8\x80", u"\ufffd\U0001F600"},
    {"Cesu8HighAtTheEnd", "CESU-8", "a\xED\xA0\xBD", u"a\ufffd"},
    {"ScsuQuotedLoneHigh", "SCSU", "\x0E\xD8\x3Dz", u"\ufffdz"},

    {"Iso2022JpHighByte", "ISO-2022-JP", "a\xE9z", u"a\ufffdz"},
    {"Iso2022JpFirstHighByte", "ISO-2022-JP", "a\x80z", u"a\ufffdz"},
    {"Iso2022JpUnknownEscape", "ISO-2022-JP", "a\x1B(Zb", u"a\ufffd(Zb"},
    {"Iso2022JpEscapeAtTheEnd", "ISO-2022-JP", "a\x1B", u"a\ufffd"},
    {"Iso2022JpHalfAnEscapeAtTheEnd", "ISO-2022-JP", "a\x1B$", u"a\ufffd"},
    {"Iso2022JpHalfACharacterAtTheEnd", "ISO-2022-JP", "a\x1B$B\x46", u"a\ufffd"},
};

// No row contains a U+FFFD itself, so there is one for each part.
std::size_t ill_formed_parts(const IllFormedCase& row) {
  return static_cast<std::size_t>(std::count(row.text.begin(), row.text.end(), u'\ufffd'));
}

class StreamCodeConverterIllFormed : public testing::TestWithParam<IllFormedCase> {};

TEST_P(StreamCodeConverterIllFormed, PartsBecomeOneReplacementEachHoweverTheyAreFed) {
  const IllFormedCase& row = GetParam();
  for (const bool one_unit : {false, true}) {
    const std::u16string expected = one_unit ? first_halves(row.text) : row.text;
    for (const Feeding& feeding : all_feedings()) {
      StreamCodeConverter converter(row.encoding, one_unit);
      EXPECT_EQ(readable(all_of(converter, row.bytes, feeding)), readable(expected))
          << feeding << (one_unit ? ", one unit" : "");
      EXPECT_EQ(converter.ill_formed_parts(), ill_formed_parts(row))
          << feeding << (one_unit ? ", one unit" : "");
    }
  }
}

TEST_P(StreamCodeConverterIllFormed, PartsBecomeOneReplacementEachWhereverTheyAreCut) {
  const IllFormedCase& row = GetParam();
  for (std::size_t cut = 0; cut <= row.bytes.size(); ++cut) {
    StreamCodeConverter converter(row.encoding, false);
    EXPECT_EQ(readable(cut_at(converter, row.bytes, cut)), readable(row.text)) << cut;
    EXPECT_EQ(converter.ill_formed_parts(), ill_formed_parts(row)) << cut;
  }
}

TEST_P(StreamCodeConverterIllFormed, PartsLeaveNothingBehind) {
  const IllFormedCase& row = GetParam();
  StreamCodeConverter converter(row.encoding, false);
  for (std::size_t count = 0; count <= row.bytes.size(); ++count) {
    const bool final = count == row.bytes.size();
    convert(converter, row.bytes.substr(0, count), 0, final);
    converter.reset(true);
    EXPECT_EQ(readable(all_of(converter, row.bytes)), readable(row.text)) << count;
    converter.reset(true);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, StreamCodeConverterIllFormed, testing::ValuesIn(kIllFormed),
                         ByRule());

struct CountCase {
  const char* rule;
  const char* encoding;
  std::string bytes;
  std::u16string text;
  std::size_t count;
};
std::ostream& operator<<(std::ostream& out, const CountCase& row) { return out << row.rule; }

// A U+FFFD in the text itself is a character.
const CountCase kCounted[] = {
    {"NothingInNothing", "UTF-8", "", u"", 0},
    {"NothingInWellFormed", "UTF-8", "\xEF\xBB\xBFz\xF0\x9F\x98\x80", u"z\U0001F600", 0},
    {"NotTheCharacterInUtf8", "UTF-8", "a\xEF\xBF\xBDz", u"a\ufffdz", 0},
    {"NotTheCharacterInUtf16", "UTF-16LE", "\xFD\xFF", u"\ufffd", 0},
    {"NotTheCharacterInUtf32", "UTF-32BE", {"\0\0\xFF\xFD", 4}, u"\ufffd", 0},
    {"NotTheCharacterInGb18030", "GB18030", "\x84\x31\xA4\x37", u"\ufffd", 0},
    {"ThePartsAmongTheCharacters", "UTF-8", "\xEF\xBF\xBD\xEF\xBF\x80\xEF\xBF",
     u"\ufffd\uffc0\ufffd", 1},
    {"TheUnfinishedCharacterAtTheEnd", "UTF-8", "a\xF0\x9F\x98", u"a\ufffd", 1},
    {"EachByteThatFitsNowhere", "UTF-8", "\xC0\x80\xF5\xFF", u"\ufffd\ufffd\ufffd\ufffd", 4},
    {"ALoneSurrogate", "UTF-16LE", {"\x3D\xD8z\0\xFD\xFF", 6}, u"\ufffdz\ufffd", 1},
    {"TwoOfTheBytesAfterAMark", "UTF-16", {"\xFE\xFF\xDE\0\0z\0", 7}, u"\ufffdz\ufffd", 2},
    {"BytesWithoutCharacter", "windows-1253", "\xD2\xE1\xD2", u"\ufffd\u03b1\ufffd", 2},
    {"ACutPairOfBytes", "Shift_JIS", "\x83\n\x83\x65\x83", u"\ufffd\n\u30c6\ufffd", 2},
};

class StreamCodeConverterCount : public testing::TestWithParam<CountCase> {};

TEST_P(StreamCodeConverterCount, HoldsTheIllFormedPartsHoweverTheyAreFed) {
  const CountCase& row = GetParam();
  for (const Feeding& feeding : all_feedings()) {
    StreamCodeConverter converter(row.encoding, false);
    EXPECT_EQ(readable(all_of(converter, row.bytes, feeding)), readable(row.text)) << feeding;
    EXPECT_EQ(converter.ill_formed_parts(), row.count) << feeding;
  }
}

TEST_P(StreamCodeConverterCount, GoesOnThroughResets) {
  const CountCase& row = GetParam();
  StreamCodeConverter converter(row.encoding, true);
  for (std::size_t round = 1; round <= 3; ++round) {
    all_of(converter, row.bytes);
    EXPECT_EQ(converter.ill_formed_parts(), round * row.count);
    converter.reset(true);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, StreamCodeConverterCount, testing::ValuesIn(kCounted), ByRule());

// The well-formed sequences, with one range per byte: a plain second route to the same answer.
struct Utf8Form {
  std::vector<std::pair<unsigned char, unsigned char>> ranges;
};
const std::array<Utf8Form, 9> kUtf8Forms = {{
    {{{0x00, 0x7F}}},
    {{{0xC2, 0xDF}, {0x80, 0xBF}}},
    {{{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}}},
    {{{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}}},
    {{{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}}},
    {{{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}},
}};

// How many bytes at `pos` match the form, from its first byte on.
std::size_t fitting(const Utf8Form& form, std::string_view bytes, std::size_t pos) {
  std::size_t count = 0;
  while (count < form.ranges.size() && pos + count < bytes.size()) {
    const auto byte = static_cast<unsigned char>(bytes[pos + count]);
    if (byte < form.ranges[count].first || byte > form.ranges[count].second) break;
    ++count;
  }
  return count;
}

std::u16string decoded_by_ranges(std::string_view bytes) {
  std::u16string units;
  for (std::size_t pos = 0; pos < bytes.size();) {
    std::size_t best = 0;
    bool whole = false;
    for (const Utf8Form& form : kUtf8Forms) {
      const std::size_t count = fitting(form, bytes, pos);
      if (count > best) {
        best = count;
        whole = count == form.ranges.size();
      }
    }
    char32_t c = U'\ufffd';
    if (whole) {
      const auto lead = static_cast<unsigned char>(bytes[pos]);
      c = best == 1 ? lead : lead & (0x7FU >> best);
      for (std::size_t i = 1; i < best; ++i) {
        c = (c << 6) | (static_cast<unsigned char>(bytes[pos + i]) & 0x3FU);
      }
    }
    units += units_of(std::u32string(1, c), false);
    pos += std::max<std::size_t>(best, 1);
  }
  return units;
}

// Every sequence of `count` of the given bytes, each after a letter.
std::string all_sequences(const std::string& alphabet, std::size_t count) {
  std::string all;
  std::vector<std::size_t> digits(count, 0);
  for (;;) {
    all.push_back('z');
    for (const std::size_t digit : digits) all.push_back(alphabet[digit]);
    std::size_t place = 0;
    while (place < count && ++digits[place] == alphabet.size()) digits[place++] = 0;
    if (place == count) return all;
  }
}

std::string all_bytes_but_substitute() {
  std::string alphabet;
  for (int byte = 0; byte < 256; ++byte) {
    if (byte != 0x1A) alphabet.push_back(static_cast<char>(byte));
  }
  return alphabet;
}

TEST(StreamCodeConverterUtf8, AgreesWithTheRangesOnAllPairsOfBytes) {
  const std::string bytes = all_sequences(all_bytes_but_substitute(), 2);
  StreamCodeConverter converter("UTF-8", false);
  const std::u16string text = all_of(converter, bytes, {60'000, 60'000});
  EXPECT_EQ(first_difference(text, decoded_by_ranges(bytes)), kNoDifference);
}

TEST(StreamCodeConverterUtf8, AgreesWithTheRangesOnFourBytesAtTheirLimits) {
  const std::string limits = "A\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xE0\xE1\xED\xEF\xF0\xF1\xF4\xF5";
  const std::string bytes = all_sequences(limits, 4);
  const std::u16string expected = decoded_by_ranges(bytes);
  for (const std::size_t chunk : {std::size_t{13}, std::size_t{65'535}}) {
    StreamCodeConverter converter("UTF-8", false);
    EXPECT_EQ(first_difference(all_of(converter, bytes, {chunk, chunk}), expected), kNoDifference)
        << "chunks of " << chunk;
  }
}

// --- the substitute character ------------------------------------------------------------------

// U+001A marks a folded character elsewhere, so no ill-formed or unassigned bytes may give it.
class StreamCodeConverterSubstitute : public testing::TestWithParam<const char*> {};

TEST_P(StreamCodeConverterSubstitute, ComesFromNoPairOfOtherBytes) {
  StreamCodeConverter converter(GetParam(), false);
  const std::u16string text =
      all_of(converter, all_sequences(all_bytes_but_substitute(), 2), {60'000, 60'000});
  EXPECT_EQ(text.find(u'\u001A'), std::u16string::npos);
}

TEST_P(StreamCodeConverterSubstitute, BadPairsGiveTheSameUnitsHoweverTheyAreFed) {
  const std::string bytes =
      all_sequences("A,\n\x1B$(B\x31\x7C\x7F\x80\x81\x83\x85\x9F\xA0\xD8\xDE\xE0\xFC\xFF", 2);
  StreamCodeConverter converter(GetParam(), false);
  const std::u16string expected = all_of(converter, bytes);
  for (const Feeding& feeding : all_feedings()) {
    const bool is_one_of_many = feeding.end_with_bytes != feeding.ask_for_held_back ||
                                feeding.room == 2 || feeding.room == 3;
    if (is_one_of_many) continue;  // a few of them are enough
    converter.reset(true);
    EXPECT_EQ(first_difference(all_of(converter, bytes, feeding), expected), kNoDifference)
        << feeding;
  }
}

INSTANTIATE_TEST_SUITE_P(Encodings, StreamCodeConverterSubstitute,
                         testing::Values("UTF-8", "UTF-16", "UTF-16LE", "UTF-16BE", "UTF-32",
                                         "ISO-8859-1", "ISO-8859-7", "windows-1252", "windows-1251",
                                         "Shift_JIS", "EUC-JP", "EUC-KR", "Big5", "GB18030",
                                         "ISO-2022-JP"),
                         [](const auto& tested) {
                           std::string name = tested.param;
                           std::replace(name.begin(), name.end(), '-', '_');
                           return name;
                         });

// Each control character decodes to itself, including U+001A, except the shifts of ISO-2022-JP.
TEST(StreamCodeConverterSubstitute, AndTheOtherControlCharactersAreWhatTheirBytesSay) {
  for (const char* encoding : {"UTF-8", "ISO-8859-1", "ISO-8859-7", "windows-1252", "windows-1251",
                               "Shift_JIS", "EUC-JP", "EUC-KR", "Big5", "GB18030", "ISO-2022-JP"}) {
    StreamCodeConverter converter(encoding, true);
    for (char byte = 0; byte < 0x20; ++byte) {
      const bool is_shift = byte == 0x0E || byte == 0x0F || byte == 0x1B;
      if (is_shift) continue;
      converter.reset(true);
      EXPECT_EQ(readable(all_of(converter, {&byte, 1})),
                readable(std::u16string(1, static_cast<char16_t>(byte))))
          << encoding;
    }
    converter.reset(true);
    EXPECT_EQ(readable(all_of(converter, "\x7F")), "\\u007F") << encoding;
  }
}

// --- units and bytes ---------------------------------------------------------------------------

// Every text of one to `longest` of the given characters.
std::vector<std::u32string> texts_of(std::u32string_view characters, std::size_t longest) {
  std::vector<std::u32string> texts = {U""};
  for (std::size_t i = 0; i < texts.size() && texts[i].size() < longest; ++i) {
    for (const char32_t c : characters) texts.push_back(texts[i] + c);
  }
  texts.erase(texts.begin());
  return texts;
}

// With one code unit per character, no part of the bytes gives more code units than it has bytes,
// so nothing is ever held back. All texts of up to four characters of one to four bytes, at all
// pairs of cuts.
TEST(StreamCodeConverterOneUnit, NeverGivesMoreUnitsThanBytesAtAnyCut) {
  StreamCodeConverter converter("UTF-8", true);
  for (const std::u32string& text : texts_of(U"a\u00e9\u20ac\U0001F600", 4)) {
    std::string bytes;
    for (const char32_t c : text) bytes += utf8(c);
    for (std::size_t first = 0; first <= bytes.size(); ++first) {
      for (std::size_t second = first; second <= std::min(first + kFarthest, bytes.size());
           ++second) {
        converter.reset(true);
        std::u16string units;
        std::size_t from = 0;
        for (const std::size_t to : {first, second, bytes.size()}) {
          units += convert(converter, bytes.substr(from, to - from), to - from, false).text;
          ASSERT_EQ(convert(converter, {}, 1, false).text, u"") << readable(units_of(text, false));
          from = to;
        }
        units += convert(converter, {}, 1, true).text;
        ASSERT_EQ(readable(units), readable(units_of(text, true))) << first << " and " << second;
      }
    }
  }
}

TEST(StreamCodeConverterOneUnit, GivesTheHighSurrogateOfEveryPlane) {
  StreamCodeConverter one("UTF-8", true);
  StreamCodeConverter two("UTF-8", false);
  for (char32_t c = 0x10000; c <= 0x10FFFF; c += 0x3FF) {
    one.reset(true);
    two.reset(true);
    EXPECT_EQ(all_of(one, utf8(c)), units_of(std::u32string(1, c), true))
        << readable(units_of(std::u32string(1, c), false));
    EXPECT_EQ(all_of(two, utf8(c)), units_of(std::u32string(1, c), false))
        << readable(units_of(std::u32string(1, c), false));
  }
}

// --- names -------------------------------------------------------------------------------------

class StreamCodeConverterName : public testing::TestWithParam<std::string> {};

TEST_P(StreamCodeConverterName, ThatIsNotKnownIsRefusedWithTheNameInTheMessage) {
  for (const bool one_unit : {false, true}) {
    try {
      const StreamCodeConverter converter(GetParam(), one_unit);
      ADD_FAILURE() << "accepted";
    } catch (const std::invalid_argument& error) {
      const std::string named = GetParam().substr(0, GetParam().find('\0'));
      EXPECT_THAT(error.what(), HasSubstr(named));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Unknown, StreamCodeConverterName,
                         testing::Values("", " ", "-", ",", "klingon", "UTF-9", "UTF-8x", "xUTF-8",
                                         "UTF-16XE", "/etc/passwd", "%s%n", "\xC3\xA9", "\xFF",
                                         std::string("UTF-8\0", 6), std::string("UTF-8\0x", 7),
                                         std::string("\0UTF-8", 6), std::string("\0", 1),
                                         std::string(59, 'x'), std::string(60, 'x'),
                                         std::string(61, 'x')),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

TEST(StreamCodeConverterName, IsKnownInAnyCase) {
  for (const char* name : {"UTF-8", "utf-8", "Utf-8", "utf8"}) {
    StreamCodeConverter converter(name, true);
    EXPECT_EQ(all_of(converter, "\xC3\xA9"), u"\u00e9") << name;
  }
  for (const char* name : {"ISO-8859-1", "iso-8859-1", "latin1"}) {
    StreamCodeConverter converter(name, true);
    EXPECT_EQ(all_of(converter, "\xE9"), u"\u00e9") << name;
  }
  for (const char* name : {"Shift_JIS", "shift_jis", "SHIFT_JIS"}) {
    StreamCodeConverter converter(name, true);
    EXPECT_EQ(all_of(converter, "\x83\x65"), u"\u30c6") << name;
  }
}

// --- the rest ----------------------------------------------------------------------------------

TEST(StreamCodeConverterCall, WithoutBytesGivesNothing) {
  for (const Sample& sample : kSamples) {
    StreamCodeConverter converter(sample.encoding, true);
    EXPECT_FALSE(converter.has_more());
    for (int i = 0; i < 3; ++i) {
      const Answer answer = convert(converter, {}, kPlenty, false);
      EXPECT_EQ(answer.text, u"");
      EXPECT_FALSE(answer.must_reset);
    }
    EXPECT_EQ(convert(converter, {}, kPlenty, true).text, u"") << sample.encoding;
    EXPECT_FALSE(converter.has_more());
  }
}

TEST(StreamCodeConverterCall, WritesNothingAfterWhatItDelivers) {
  StreamCodeConverter converter("UTF-8", true);
  std::u16string range(6, u'?');
  const std::string_view bytes = "a\xC3\xA9\xE2";
  const char* in = bytes.data();
  char16_t* out = range.data();
  converter.convert(out, range.data() + 4, in, in + bytes.size(), false);
  EXPECT_EQ(out, range.data() + 2);
  EXPECT_EQ(range.substr(0, 2), u"a\u00e9");
  EXPECT_EQ(range.substr(4), u"??");
}

TEST(StreamCodeConverterCall, HoldsBackAsMuchAsItMust) {
  const std::size_t count = 200'000;
  StreamCodeConverter converter("UTF-8", false);
  EXPECT_EQ(convert(converter, std::string(count, 'a'), 1, false).text, u"a");
  EXPECT_TRUE(converter.has_more());
  EXPECT_EQ(convert(converter, "\xE2\x82", 2, false).text, u"aa");
  const std::u16string rest = convert(converter, "\xAC", count, true).text;
  EXPECT_EQ(first_difference(rest, std::u16string(count - 3, u'a') + u'\u20ac'), kNoDifference);
}

TEST(StreamCodeConverterThreads, EachWithItsOwnConverterAreIndependent) {
  std::vector<std::thread> threads;
  for (std::size_t id = 0; id < 4; ++id) {
    threads.emplace_back([id] {
      for (const Sample& sample : kSamples) {
        StreamCodeConverter converter(sample.encoding, false);
        EXPECT_EQ(all_of(converter, bytes_of(sample.pieces), {id + 1, 2}),
                  units_of(sample.pieces, false))
            << sample.encoding;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace
}  // namespace textio
