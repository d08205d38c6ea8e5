#include "standalone/encoding.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;

constexpr std::size_t kLookedAt = 65'536;  // bytes

struct EncodingCase {
  const char* rule;
  std::string bytes;
  std::string name;
  EncodingFound found;
};
std::ostream& operator<<(std::ostream& out, const EncodingCase& row) { return out << row.rule; }

std::string nuls(std::size_t count) { return std::string(count, '\0'); }

constexpr auto kMark = EncodingFound::byte_order_mark;
constexpr auto kValid = EncodingFound::valid_utf8;
constexpr auto kFallback = EncodingFound::fallback;

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

    {"Latin1", "caf\xE9\n", "windows-1252", kFallback},
    {"OneByteOfAllOnes", "\xFF", "windows-1252", kFallback},
    {"HalfAUtf16BeMark", "\xFE", "windows-1252", kFallback},
    {"HalfAUtf8Mark", "\xEF\xBB", "windows-1252", kFallback},
    {"BrokenUtf8Mark", "\xEF\xBBz", "windows-1252", kFallback},
    {"BrokenUtf32BeMark", nuls(2) + "\xFE", "windows-1252", kFallback},
    {"Utf32BeMarkTooLate", nuls(1) + "x\xFE\xFF", "windows-1252", kFallback},
    {"LoneContinuation", "x\x80", "windows-1252", kFallback},
    {"Overlong", "\xC0\x80", "windows-1252", kFallback},
    {"EncodedSurrogate", "\xED\xA0\x80", "windows-1252", kFallback},
    {"BeyondTheLastCharacter", "\xF4\x90\x80\x80", "windows-1252", kFallback},
    {"LeadOfFive", "\xF8\x88\x80\x80\x80", "windows-1252", kFallback},
    {"EndsAfterOneOfTwo", "x\xC3", "windows-1252", kFallback},
    {"EndsAfterTwoOfThree", "x\xE2\x82", "windows-1252", kFallback},
    {"EndsAfterThreeOfFour", "x\xF0\x9F\x98", "windows-1252", kFallback},
    {"SequenceThenLatin1", "\xC3\xA9\xE9", "windows-1252", kFallback},
};

std::string letters(std::size_t count) { return std::string(count, 'x'); }

// `tail` begins so many bytes before the end of what is looked at.
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
    {"TwoBytesBehind", ending(0, "\xC3\xA9x"), "UTF-8", kValid},
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
    {"IllFormedJustBehind", ending(0, "\xFFx"), "UTF-8", kValid},
    {"IllFormedFarBehind", letters(2 * kLookedAt) + "\xFF", "UTF-8", kValid},

    {"IllFormedAsLastByte", ending(1, "\xFFx"), "windows-1252", kFallback},
    {"IllFormedAsLastButOne", ending(2, "\xFFx"), "windows-1252", kFallback},
    {"IllFormedAsFirst", "\xFF" + letters(2 * kLookedAt), "windows-1252", kFallback},
    {"LoneContinuationAsLastByte", ending(1, "\x80x"), "windows-1252", kFallback},
    {"OverlongOfTwoCut", ending(1, "\xC0\x80x"), "windows-1252", kFallback},
    {"OverlongOfThreeCut", ending(2, "\xE0\x80\x80x"), "windows-1252", kFallback},
    {"OverlongOfFourCut", ending(2, "\xF0\x80\x80\x80x"), "windows-1252", kFallback},
    {"SurrogateCut", ending(2, "\xED\xA0\x80x"), "windows-1252", kFallback},
    {"BeyondTheLastCharacterCut", ending(2, "\xF4\x90\x80\x80x"), "windows-1252", kFallback},
    {"LeadTooHighCut", ending(1, "\xF5\x80\x80\x80x"), "windows-1252", kFallback},
    {"SequenceBrokenBeforeTheCut", ending(3, "\xF0\x9Fxx"), "windows-1252", kFallback},
    {"ThreeContinuationsBeforeTheCut", ending(3, "\x80\x80\x80x"), "windows-1252", kFallback},
    {"FourContinuationsAfterAFourByteLead", ending(5, "\xF0\x9F\x98\x80\x80x"), "windows-1252",
     kFallback},

    {"MarkOfALongFile", "\xFF\xFE" + letters(2 * kLookedAt), "UTF-16LE", kMark},
};

class FindEncoding : public testing::TestWithParam<EncodingCase> {};
TEST_P(FindEncoding, LooksAtTheFirst64KB) {
  const std::string_view bytes = GetParam().bytes;
  const FoundEncoding encoding =
      find_encoding(bytes.substr(0, kLookedAt), bytes.size() < kLookedAt);
  EXPECT_EQ(encoding.name, GetParam().name);
  EXPECT_EQ(encoding.found, GetParam().found);
}
INSTANTIATE_TEST_SUITE_P(ShortFiles, FindEncoding, testing::ValuesIn(kShortFiles), ByRule());
INSTANTIATE_TEST_SUITE_P(LongFiles, FindEncoding, testing::ValuesIn(kLongFiles), ByRule());

}  // namespace
}  // namespace textio::standalone
