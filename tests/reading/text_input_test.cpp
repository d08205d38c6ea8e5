#include <vltextstream/reading/text_input.hpp>

#include <cstdint>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/standalone/files/byte_stream.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>

#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using namespace std::string_literals;
using assessment::LineEndings;
using testing_support::ByRule;
using Ends = std::vector<std::uint64_t>;

File file_of(std::string_view bytes) {
  return File(standalone::as_c_stream(std::make_unique<standalone::MemoryBytes>(bytes)));
}

struct LineEndsCase {
  const char* rule;
  std::string encoding;
  std::string bytes;
  std::u16string text;
  Ends ends;  // of all lines
  LineEndings endings = {};
};
std::ostream& operator<<(std::ostream& out, const LineEndsCase& row) { return out << row.rule; }

const LineEndsCase kLineEnds[] = {
    {"Ascii", "UTF-8", "ab\nc\n", u"ab\nc\n", {3, 5}},
    {"LastLineWithoutEnding", "UTF-8", "ab\nc", u"ab\nc", {3, 4}},
    {"CarriageReturns", "UTF-8", "a\r\nb\rc\n", u"a\r\nb\rc\n", {3, 5, 7}},
    {"ReturnAfterFeedEndsALine", "UTF-8", "a\n\rb", u"a\n\rb", {2, 3, 4}},
    {"TwoBytesForACharacter", "UTF-8", "\xC3\xA9\n\xC3\xA9\n", u"\u00E9\n\u00E9\n", {3, 6}},
    {"FourBytesAreAPair", "UTF-8", "\xF0\x9F\x98\x80\nx\n", u"\U0001F600\nx\n", {5, 7}},
    {"AMarkBelongsToTheFirstLine",
     "UTF-8",
     "\xEF\xBB\xBF"
     "a\nb\n",
     u"a\nb\n",
     {5, 7}},
    {"IllFormedBytes", "UTF-8", "\xFF\xFE\n\xC3\n", u"\uFFFD\uFFFD\n\uFFFD\n", {3, 5}},
    {"OneByteForACharacter", "windows-1252", "\xE9\n\x80\n", u"\u00E9\n\u20AC\n", {2, 4}},
    {"Japanese", "Shift_JIS", "\x82\xA0\n\x82\xA2\n", u"\u3042\n\u3044\n", {3, 6}},
    {"Utf16LittleEndian", "UTF-16LE", "a\0\n\0b\0"s, u"a\nb", {4, 6}},
    {"Utf16BigEndianWithAMark", "UTF-16", "\xFE\xFF\0a\0\n\0b"s, u"a\nb", {6, 8}},
    {"Utf16HasALineFeedInACharacter", "UTF-16LE", "\x0A\x01\n\0"s, u"\u010A\n", {4}},
    {"Utf16Pairs", "UTF-16LE", "\x3D\xD8\x00\xDE\n\0"s, u"\U0001F600\n", {6}},
    {"Utf16WithAnOddByte", "UTF-16LE", "a\0\n\0b"s, u"a\n\uFFFD", {4, 5}},
    {"Utf32", "UTF-32LE", "\x00\xF6\x01\x00\n\0\0\0"s, u"\U0001F600\n", {8}},
    {"Ebcdic", "ibm-37", "\xC1\x25\xC2\x25", u"A\nB\n", {2, 4}},
    {"Nothing", "UTF-8", "", u"", {}},
    {"OnlyFeeds", "UTF-8", "a\rb\nc", u"a\rb\nc", {4, 5}, {true, false, false}},
    {"OnlyReturns", "UTF-8", "a\rb\nc", u"a\rb\nc", {2, 5}, {false, true, false}},
    {"OnlyBothTogether", "UTF-8", "a\rb\r\nc\n", u"a\rb\r\nc\n", {5, 7}, {false, false, true}},
};

class LineEnds : public testing::TestWithParam<LineEndsCase> {};
INSTANTIATE_TEST_SUITE_P(TextInput, LineEnds, testing::ValuesIn(kLineEnds), ByRule());

TEST_P(LineEnds, AreFoundInTheFile) {
  const LineEndsCase& row = GetParam();
  TextInput input(file_of(row.bytes), "'x'", row.encoding, row.endings);
  TextBuffer text;
  input.read(text, 1000);
  EXPECT_EQ(text.view(), row.text);
  EXPECT_TRUE(input.is_at_end());
  EXPECT_EQ(input.num_bytes(), row.bytes.size());
  Ends ends;
  for (std::size_t line = 1; line <= row.ends.size(); ++line)
    ends.push_back(input.end_of_line(line));
  EXPECT_EQ(ends, row.ends);
}

// At most 65,536 bytes are read at once.
TEST(TextInput, FindsLinesAcrossTheBordersOfChunks) {
  for (const std::size_t length : {65'534U, 65'535U, 65'536U, 65'537U}) {
    const std::string bytes = std::string(length, 'x') + "\r\n" + "y\r\n";
    TextInput input(file_of(bytes), "'x'", "UTF-8");
    TextBuffer text;
    input.read(text, bytes.size());
    EXPECT_EQ(text.size(), bytes.size());
    EXPECT_EQ(input.end_of_line(1), length + 2) << length;
    EXPECT_EQ(input.end_of_line(2), length + 5) << length;
  }
}

TEST(TextInput, FindsBothTogetherAloneAcrossTheBorder) {
  const std::string bytes = std::string(65'535, 'x') + "\r\n" + "y\r\n";
  TextInput input(file_of(bytes), "'x'", "UTF-8", {false, false, true});
  TextBuffer text;
  input.read(text, bytes.size());
  EXPECT_EQ(input.end_of_line(1), 65'537U);
  EXPECT_EQ(input.end_of_line(2), 65'540U);
}

TEST(TextInput, DecodesCharactersAcrossTheBorder) {
  const std::string bytes = std::string(65'535, 'x') + "\xC3\xA9\nz";
  TextInput input(file_of(bytes), "'x'", "UTF-8");
  TextBuffer text;
  input.read(text, bytes.size());
  EXPECT_EQ(text.view().substr(65'535), u"\u00E9\nz");
  EXPECT_EQ(input.end_of_line(1), 65'538U);
  EXPECT_EQ(input.ill_formed_parts(), 0U);
}

TEST(TextInput, ReadsNoMoreThanIsAskedFor) {
  const std::string bytes(200'000, 'x');
  TextInput input(file_of(bytes), "'x'", "UTF-8");
  TextBuffer text;
  input.read(text, 1);
  EXPECT_EQ(text.size(), 256U);
  EXPECT_FALSE(input.is_at_end());
  input.read(text, 70'000);
  EXPECT_EQ(text.size(), 70'000U);
  input.read(text, 1'000'000);
  EXPECT_EQ(text.size(), 200'000U);
  EXPECT_TRUE(input.is_at_end());
}

TEST(TextInput, ForgetsLinesThatWerePassed) {
  std::string bytes;
  for (int i = 0; i < 20'000; ++i) bytes += "x\n";
  TextInput input(file_of(bytes), "'x'", "UTF-8");
  TextBuffer text;
  input.read(text, bytes.size());
  for (std::uint64_t line = 1; line <= 20'000; ++line) ASSERT_EQ(input.end_of_line(line), 2 * line);
}

TEST(TextInput, CountsIllFormedParts) {
  TextInput input(file_of("a\xFF\nb\xFF\xFF\n"), "'x'", "UTF-8");
  TextBuffer text;
  input.read(text, 100);
  EXPECT_EQ(input.ill_formed_parts(), 3U);
}

TEST(TextInput, RefusesAnUnknownEncoding) {
  EXPECT_THROW(TextInput(file_of("a"), "'x'", "no-such-encoding"), std::invalid_argument);
}

TEST(TextBuffer, KeepsItsTextWhenItGrows) {
  TextBuffer buffer;
  buffer.append(u"abc");
  for (int i = 0; i < 1000; ++i) buffer.append(u"0123456789");
  EXPECT_EQ(buffer.size(), 10'003U);
  EXPECT_EQ(buffer.view().substr(0, 5), u"abc01");
  EXPECT_EQ(buffer.view().substr(10'001), u"89");
}

}  // namespace
}  // namespace textio::reading
