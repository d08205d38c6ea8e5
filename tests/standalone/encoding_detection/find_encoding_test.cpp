#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/host/code_converter.hpp>
#include <vltextstream/standalone/encoding_detection/east_asian_voter.hpp>
#include <vltextstream/standalone/encoding_detection/single_byte_voter.hpp>
#include <vltextstream/standalone/encoding_detection/unmarked_unicode.hpp>
#include "encodings/corpus.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using namespace std::string_literals;
using testing_support::ByRule;

constexpr std::size_t kLookedAt = 65'536;  // bytes

struct EncodingCase {
  const char* rule;
  std::string bytes;
  std::string name;
  std::optional<EncodingFound> found;
};
std::ostream& operator<<(std::ostream& out, const EncodingCase& row) { return out << row.rule; }

std::string nuls(std::size_t count) { return std::string(count, '\0'); }

constexpr auto kMark = EncodingFound::byte_order_mark;
constexpr auto kValid = EncodingFound::valid_utf8;
constexpr auto kZeros = EncodingFound::zero_bytes;
constexpr auto kEscapes = EncodingFound::escape_sequences;
constexpr auto kStatistics = EncodingFound::statistics;

// Found by statistics or, if they give no answer, the fallback; these tests accept both.
constexpr auto kGuess = std::nullopt;

const EncodingCase kShortFiles[] = {
    {"Utf8Mark", "\xEF\xBB\xBFx,y\n", "UTF-8", kMark},
    {"Utf8MarkAlone", "\xEF\xBB\xBF", "UTF-8", kMark},
    {"Utf8MarkThenIllFormed", "\xEF\xBB\xBF\xFF", "UTF-8", kMark},
    {"Utf16LeMark", "\xFF\xFEx" + nuls(1), "UTF-16LE", kMark},
    {"Utf16LeMarkAlone", "\xFF\xFE", "UTF-16LE", kMark},
    {"Utf16LeMarkThenOneByte", "\xFF\xFE" + nuls(1), "UTF-16LE", kMark},
    {"Utf16LeMarkThenNulAndByte", "\xFF\xFE" + nuls(1) + "\x01", "UTF-16LE", kMark},
    {"Utf16BeMark", "\xFE\xFF" + nuls(1) + "x", "UTF-16BE", kMark},
    {"Utf16BeMarkAlone", "\xFE\xFF", "UTF-16BE", kMark},
    {"Utf32LeMarkGoesBeforeUtf16Le", "\xFF\xFE" + nuls(2) + "x" + nuls(3), "UTF-32LE", kMark},
    {"Utf32LeMarkAlone", "\xFF\xFE" + nuls(2), "UTF-32LE", kMark},
    {"Utf32BeMark", nuls(2) + "\xFE\xFF" + nuls(3) + "x", "UTF-32BE", kMark},
    {"Utf32BeMarkAlone", nuls(2) + "\xFE\xFF", "UTF-32BE", kMark},

    {"Empty", "", "UTF-8", kValid},
    {"Ascii", "x,y\n1,2\n", "UTF-8", kValid},
    {"OneLetter", "x", "UTF-8", kValid},
    {"Nuls", nuls(5), "UTF-8", kValid},
    {"ControlCharacters", "\x01\x1A\x1B\x7F", "UTF-8", kValid},
    {"TwoBytes", "caf\xC3\xA9", "UTF-8", kValid},
    {"ThreeBytes", "\xE2\x82\xAC", "UTF-8", kValid},
    {"FourBytes", "\xF0\x9F\x98\x80", "UTF-8", kValid},
    {"LastCharacter", "\xF4\x8F\xBF\xBF", "UTF-8", kValid},
    {"Noncharacters", "\xEF\xBF\xBF\xEF\xBF\xBE", "UTF-8", kValid},
    {"MarkInTheMiddle", "x\xEF\xBB\xBF", "UTF-8", kValid},

    {"Latin1", "caf\xE9\n", "windows-1252", kGuess},
    {"OneByteOfAllOnes", "\xFF", "windows-1252", kGuess},
    {"HalfAUtf16BeMark", "\xFE", "windows-1252", kGuess},
    {"HalfAUtf8Mark", "\xEF\xBB", "windows-1252", kGuess},
    {"BrokenUtf8Mark", "\xEF\xBBz", "windows-1252", kGuess},
    {"BrokenUtf32BeMark", nuls(2) + "\xFE", "windows-1252", kGuess},
    {"Utf32BeMarkTooLate", nuls(1) + "x\xFE\xFF", "windows-1252", kGuess},
    {"LoneContinuation", "x\x80", "windows-1252", kGuess},
    {"Overlong", "\xC0\x80", "windows-1252", kGuess},
    {"EncodedSurrogate", "\xED\xA0\x80", "windows-1252", kGuess},
    {"BeyondTheLastCharacter", "\xF4\x90\x80\x80", "windows-1252", kGuess},
    {"EndsAfterOneOfTwo", "x\xC3", "windows-1252", kGuess},
    {"EndsAfterTwoOfThree", "x\xE2\x82", "windows-1252", kGuess},
    {"EndsAfterThreeOfFour", "x\xF0\x9F\x98", "windows-1252", kGuess},
    {"SequenceThenLatin1", "\xC3\xA9\xE9", "windows-1252", kGuess},
};

std::string letters(std::size_t count) { return std::string(count, 'x'); }

// `tail` starts `before` bytes before the end of the bytes that are looked at.
std::string ending(std::size_t before, const std::string& tail) {
  return letters(kLookedAt - before) + tail;
}

const EncodingCase kLongFiles[] = {
    {"AsciiUpToTheEnd", letters(kLookedAt), "UTF-8", kValid},
    {"AsciiOneMore", letters(kLookedAt + 1), "UTF-8", kValid},
    {"AsciiTwice", letters(2 * kLookedAt), "UTF-8", kValid},
    {"TwoBytesUpToTheEnd", ending(2, "\xC3\xA9"), "UTF-8", kValid},
    {"TwoBytesUpToTheEndAndMore", ending(2, "\xC3\xA9x"), "UTF-8", kValid},
    {"TwoBytesCut1And1", ending(1, "\xC3\xA9x"), "UTF-8", kValid},
    {"TwoBytesAfter", ending(0, "\xC3\xA9x"), "UTF-8", kValid},
    {"ThreeBytesUpToTheEnd", ending(3, "\xE2\x82\xACx"), "UTF-8", kValid},
    {"ThreeBytesCut2And1", ending(2, "\xE2\x82\xACx"), "UTF-8", kValid},
    {"ThreeBytesCut1And2", ending(1, "\xE2\x82\xACx"), "UTF-8", kValid},
    {"FourBytesUpToTheEnd", ending(4, "\xF0\x9F\x98\x80x"), "UTF-8", kValid},
    {"FourBytesCut3And1", ending(3, "\xF0\x9F\x98\x80x"), "UTF-8", kValid},
    {"FourBytesCut2And2", ending(2, "\xF0\x9F\x98\x80x"), "UTF-8", kValid},
    {"FourBytesCut1And3", ending(1, "\xF0\x9F\x98\x80x"), "UTF-8", kValid},
    {"LowestThreeBytesCut", ending(2, "\xE0\xA0\x80x"), "UTF-8", kValid},
    {"LastBelowTheSurrogatesCut", ending(2, "\xED\x9F\xBFx"), "UTF-8", kValid},
    {"LowestFourBytesCut", ending(2, "\xF0\x90\x80\x80x"), "UTF-8", kValid},
    {"LastCharacterCut", ending(2, "\xF4\x8F\xBF\xBFx"), "UTF-8", kValid},
    {"IllFormedJustAfter", ending(0, "\xFFx"), "UTF-8", kValid},
    {"IllFormedFarAfter", letters(2 * kLookedAt) + "\xFF", "UTF-8", kValid},

    {"IllFormedAsLastByte", ending(1, "\xFFx"), "windows-1252", kGuess},
    {"IllFormedAsLastButOne", ending(2, "\xFFx"), "windows-1252", kGuess},
    {"IllFormedAsFirst", "\xFF" + letters(2 * kLookedAt), "windows-1252", kGuess},
    {"LoneContinuationAsLastByte", ending(1, "\x80x"), "windows-1252", kGuess},
    {"OverlongOfTwoCut", ending(1, "\xC0\x80x"), "windows-1252", kGuess},
    {"OverlongOfThreeCut", ending(2, "\xE0\x80\x80x"), "windows-1252", kGuess},
    {"OverlongOfFourCut", ending(2, "\xF0\x80\x80\x80x"), "windows-1252", kGuess},
    {"SurrogateCut", ending(2, "\xED\xA0\x80x"), "windows-1252", kGuess},
    {"BeyondTheLastCharacterCut", ending(2, "\xF4\x90\x80\x80x"), "windows-1252", kGuess},
    {"LeadTooHighCut", ending(1, "\xF5\x80\x80\x80x"), "windows-1252", kGuess},
    {"SequenceBrokenBeforeTheCut", ending(3, "\xF0\x9Fxx"), "windows-1252", kGuess},
    {"ThreeContinuationsBeforeTheCut", ending(3, "\x80\x80\x80x"), "windows-1252", kGuess},
    {"FourContinuationsAfterAFourByteLead", ending(5, "\xF0\x9F\x98\x80\x80x"), "UTF-8",
     kStatistics},

    {"MarkOfALongFile", "\xFF\xFE" + letters(2 * kLookedAt), "UTF-16LE", kMark},
};

class FindEncoding : public testing::TestWithParam<EncodingCase> {};
TEST_P(FindEncoding, LooksAtTheFirst64KB) {
  const std::string_view bytes = GetParam().bytes;
  const FoundEncoding encoding =
      find_encoding(bytes.substr(0, kLookedAt), bytes.size() < kLookedAt);
  EXPECT_EQ(encoding.name, GetParam().name);
  if (GetParam().found) {
    EXPECT_EQ(encoding.found, GetParam().found);
  } else {
    EXPECT_TRUE(encoding.found == kStatistics || encoding.found == EncodingFound::fallback);
  }
}
INSTANTIATE_TEST_SUITE_P(ShortFiles, FindEncoding, testing::ValuesIn(kShortFiles), ByRule());
INSTANTIATE_TEST_SUITE_P(LongFiles, FindEncoding, testing::ValuesIn(kLongFiles), ByRule());

// --- real-life tables ---------------------------------------------------------------------------

struct TableCase {
  const char* rule;
  std::u16string text;
  std::vector<std::string> encodings;  // each must be found, or one that decodes the bytes alike
};
std::ostream& operator<<(std::ostream& out, const TableCase& row) { return out << row.rule; }

const TableCase kTables[] = {
    {"German",
     u"Stra\u00dfe;Gr\u00f6\u00dfe;H\u00e4user\nM\u00fchlweg;12,5;f\u00fcnf\nK\u00f6nigsallee;7,0;"
     u"s\u00fcdlich\nB\u00e4ckergasse;3,2;gew\u00f6hnlich\n",
     {"windows-1252", "ISO-8859-1", "macintosh", "IBM850"}},
    {"Russian",
     u"\u0433\u043e\u0440\u043e\u0434;"
     u"\u0446\u0435\u043d\u0430\n\u041c\u043e\u0441\u043a\u0432\u0430;12\n"
     u"\u0421\u0430\u043c\u0430\u0440\u0430;15\n\u041a\u0430\u0437\u0430\u043d\u044c;18\n"
     u"\u041f\u0435\u0440\u043c\u044c;20\n",
     {"windows-1251", "KOI8-R", "IBM866", "ISO-8859-5"}},
    {"Polish",
     u"miasto,cena\n\u0141\u00f3d\u017a,12\nGda\u0144sk,14\nWroc\u0142aw,15\nPozna\u0144,9\n"
     u"Cz\u0119stochowa,11\n\u015awidnica,8\n",
     {"windows-1250", "ISO-8859-2", "IBM852"}},
    {"Japanese",
     u"\u65e5\u4ed8,\u5834\u6240\n2024-03-01,\u6771\u4eac\u306e\u99c5\n"
     u"2024-03-02,\u5927\u962a\u306e\u8857\n",
     {"Shift_JIS", "EUC-JP", "ISO-2022-JP"}},
    {"GreekPrices",
     u"\u03c0\u03cc\u03bb\u03b7;\u03c4\u03b9\u03bc\u03ae\n\u0391\u03b8\u03ae\u03bd\u03b1;3\n"
     u"\u03a0\u03ac\u03c4\u03c1\u03b1;4\n",
     {"windows-1253", "ISO-8859-7", "IBM737"}},
    {"OneLetter", u"name,n\ncaf\u00e9,1\nbar,2\n", {"windows-1252", "ISO-8859-1"}},
    {"Degrees", u"station,t\nA,30 \u00b0C\nB,28 \u00b0C\n", {"windows-1252", "ISO-8859-1"}},
    {"EuroSign", u"item,price\npen,2 \u20ac\nink,7 \u20ac\n", {"windows-1252"}},
    {"CurlyQuotes", u"id,remark\n1,\u201cgood\u201d\n2,it\u2019s fine\n", {"windows-1252"}},
};

class FindEncodingOfATable : public testing::TestWithParam<TableCase> {};

TEST_P(FindEncodingOfATable, ReadsItAsItWasWritten) {
  for (const std::string& encoding : GetParam().encodings) {
    const std::string bytes = encodings::encode(GetParam().text, encoding);
    const FoundEncoding found = find_encoding(bytes, true);
    EXPECT_EQ(encodings::decode(bytes, found.name), GetParam().text)
        << found.name << " for " << encoding;
  }
}

TEST_P(FindEncodingOfATable, IsTheSameEachTime) {
  for (const std::string& encoding : GetParam().encodings) {
    const std::string bytes = encodings::encode(GetParam().text, encoding);
    const FoundEncoding once = find_encoding(bytes, true);
    const FoundEncoding again = find_encoding(bytes, true);
    EXPECT_EQ(once.name, again.name);
    EXPECT_EQ(once.confidence, again.confidence);
  }
}

// Each Unicode form is found without a mark, in Latin and other scripts.
TEST_P(FindEncodingOfATable, FindsUnmarkedUnicode) {
  for (const char* encoding : {"UTF-8", "UTF-16LE", "UTF-16BE", "UTF-32LE", "UTF-32BE"}) {
    const std::string bytes = encodings::encode(GetParam().text, encoding);
    EXPECT_EQ(find_encoding(bytes, true).name, encoding);
    // Cut off inside a character, if more bytes follow.
    EXPECT_EQ(find_encoding(std::string_view(bytes).substr(0, bytes.size() - 1), false).name,
              encoding);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, FindEncodingOfATable, testing::ValuesIn(kTables), ByRule());

// --- zero bytes and escape sequences ------------------------------------------------------------

const EncodingCase kSpecial[] = {
    {"AsciiInUtf16Le", "a\0,\0001\0\n\0"s, "UTF-16LE", kZeros},
    {"AsciiInUtf16Be", "\0a\0,\0001\0\n"s, "UTF-16BE", kZeros},
    {"AsciiInUtf32Le", "a\0\0\0,\0\0\0001\0\0\0\n\0\0\0"s, "UTF-32LE", kZeros},
    {"OneZeroInATextIsNoUtf16", "name,value\nfirst,1\nsec\0ond,2\nthird,3\n"s, "UTF-8", kValid},
    {"ZerosAsPaddingAreNoUtf16", "name,value\nfirst,1\n"s + nuls(20), "UTF-8", kValid},
    {"ZerosAsDelimitersAreNoUtf16", "x\0y\n1\0002\n3\0004\n"s, "UTF-8", kValid},
    {"JapaneseEscapes", "\x1B$B$3$s\x1B(B,1\n"s, "ISO-2022-JP", kEscapes},
    {"KoreanEscapes",
     "\x1B$)C\x0E"
     "0!\x0F,1\n"s,
     "ISO-2022-KR", kEscapes},
    {"TerminalColoursAreNoEncoding", "\x1B[31mred\x1B[0m,1\n"s, "UTF-8", kValid},
    {"EscapeOfAsciiAloneIsNoEncoding", "\x1B(Bplain,1\n"s, "UTF-8", kValid},
    {"EscapesThatDoNotDecodeAreNoEncoding", "\x1B$B$\n,1\n"s, "UTF-8", kValid},
    {"OneLatinLetterIsNoUtf16", "plain text in lines\nwith one caf\xE9\n", "windows-1252", kGuess},
    {"Utf8WithOneDamagedPart", "M\xC3\xBCller,\xC3\x84rzte,\xC3\n", "UTF-8", kStatistics},
};
INSTANTIATE_TEST_SUITE_P(Special, FindEncoding, testing::ValuesIn(kSpecial), ByRule());

// --- any bytes ----------------------------------------------------------------------------------

TEST(FindEncodingOfAnything, GivesANameThatTheConverterKnowsAndAConfidence) {
  std::mt19937 random(20261121);
  int fallbacks = 0;
  for (int round = 0; round < 300; ++round) {
    std::string bytes(random() % 200, '\0');
    const unsigned most = round % 3 == 0 ? 256 : round % 3 == 1 ? 128 : 4;
    for (char& byte : bytes) byte = static_cast<char>(random() % most + (round % 7 == 0 ? 128 : 0));
    const FoundEncoding found = find_encoding(bytes, round % 2 == 0);
    EXPECT_NO_THROW(StreamCodeConverter(found.name, true)) << found.name;
    EXPECT_GE(found.confidence, 0.0);
    EXPECT_LE(found.confidence, 1.0);
    if (found.found != EncodingFound::fallback) continue;
    EXPECT_EQ(found.name, "windows-1252");
    EXPECT_EQ(found.confidence, 0.0);
    ++fallbacks;
  }
  EXPECT_GT(fallbacks, 0);
}

// Whole blocks of text are tested at once, so each place in a block is tested.
TEST(MayBeUnmarkedUnicode, WhereAByteIsNoneOfATextAtAnyPlace) {
  constexpr std::size_t kBytes = 200;
  for (std::size_t place = 0; place < kBytes; ++place) {
    std::string bytes(kBytes, 'a');
    for (const char text : {'\t', '\n', '\v', '\f', '\r', '\x1B', ' ', '\x7F', '\x80', '\xFF'}) {
      bytes[place] = text;
      EXPECT_FALSE(may_be_unmarked_unicode(bytes)) << place;
    }
    for (const char odd : {'\0', '\x08', '\x0E', '\x1A', '\x1C', '\x1F'}) {
      bytes[place] = odd;
      EXPECT_TRUE(may_be_unmarked_unicode(bytes)) << place;
    }
  }
  EXPECT_FALSE(may_be_unmarked_unicode(""));
}

TEST(FindEncodingOfAnything, OfOneByteAboveAsciiIsUnsure) {
  for (unsigned byte = 0x80; byte <= 0xFF; ++byte) {
    const FoundEncoding found = find_encoding(std::string(1, static_cast<char>(byte)), true);
    EXPECT_LT(found.confidence, 0.9) << byte;
  }
}

// Every encoding that may be found can be opened by the converter.
TEST(FindEncodingNames, AreKnownToTheConverter) {
  for (const ScoredEncoding& scored : score_single_byte_encodings("\xE9")) {
    EXPECT_NO_THROW(StreamCodeConverter(scored.encoding, true)) << scored.encoding;
  }
  for (const ScoredEncoding& scored : score_east_asian_encodings("\xE9\xE9", true)) {
    EXPECT_NO_THROW(StreamCodeConverter(scored.encoding, true)) << scored.encoding;
  }
}

}  // namespace
}  // namespace textio::standalone
