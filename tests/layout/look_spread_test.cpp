// What several places after the sample are found to hold, for files, bytes and texts in memory.
#include <vltextstream/layout/look_spread.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/archives.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::gzip_of;
using testing_support::TempFolder;

DetectSettings spread() {
  DetectSettings settings;
  settings.sample = SampleFrom::spread;
  return settings;
}

// A line of names and records, each of ten bytes with its line ending.
constexpr std::size_t kLineBytes = 10;
std::string table_of(std::size_t records) {
  std::string text = "level,nam\n";
  for (std::size_t i = 0; i < records; ++i) text += "1.50,abcd\n";
  return text;
}

// The text with another line of the same length in the place of `line`, which is counted from 1.
std::string with_line(std::string text, std::size_t line, const std::string& other) {
  return text.replace((line - 1) * kLineBytes, kLineBytes - 1, other);
}

constexpr std::size_t kFew = 3000;       // all are loaded, and one place has all after the sample
constexpr std::size_t kMany = 100'000;   // a file that is not loaded: a megabyte
constexpr std::size_t kLines = 100'001;  // of these

Layout layout_of_bytes(std::string_view bytes, const DetectSettings& settings = spread()) {
  return detect_input(InputText(FileContent{bytes}, settings), settings);
}

SpreadLook look_of_file(const std::string& bytes, const DetectSettings& settings = spread()) {
  const TempFolder folder;
  return detect_layout(folder.file("t", bytes), settings).spread.value();
}

TEST(SpreadLook, IsMadeOnRequestOnly) {
  EXPECT_FALSE(layout_of_bytes(table_of(kFew), {}).spread);
  EXPECT_TRUE(layout_of_bytes(table_of(kFew)).spread);
}

TEST(SpreadLook, IsClearWhereAllIsAsInTheSample) {
  for (const std::size_t records : {kFew, kMany}) {
    const SpreadLook look = look_of_file(table_of(records));
    EXPECT_EQ(look.reason, "");
    EXPECT_TRUE(look.contradictions.empty());
    EXPECT_EQ(look.ragged_records, 0U);
    EXPECT_TRUE(look.missing.empty());
  }
}

TEST(SpreadLook, HasAllThatIsLoadedInOnePlace) {
  const std::string text = with_line(table_of(kFew), 2500, "high,abcd");
  const SpreadLook look = look_of_file(text);
  EXPECT_EQ(look.places, 1U);
  EXPECT_EQ(look.records, kFew + 1 - 100);
  EXPECT_EQ(look.characters, (kFew + 1 - 100) * kLineBytes);
  EXPECT_EQ(look.bytes, 0U);
  const Contradiction expected{0, ColumnKind::decimal, 1, u"high", {2499 * kLineBytes, 2500, true}};
  EXPECT_EQ(look.contradictions, std::vector<Contradiction>{expected});
}

TEST(SpreadLook, OfATextInMemoryKnowsNoBytes) {
  const std::u16string text = from_utf8(with_line(table_of(kFew), 2500, "high,abcd"));
  const SpreadLook look = detect_layout(text, spread()).spread.value();
  ASSERT_EQ(look.contradictions.size(), 1U);
  EXPECT_EQ(look.contradictions[0].place, (TextPlace{std::nullopt, 2500, true}));
}

// 200,000 characters are not loaded for a file, but are there in memory: nine places of 16,384.
TEST(SpreadLook, OfALongTextInMemoryHasNinePlaces) {
  const std::u16string text = from_utf8(with_line(table_of(20'000), 20'001, "high,abcd"));
  const SpreadLook look = detect_layout(text, spread()).spread.value();
  EXPECT_EQ(look.places, 9U);
  ASSERT_EQ(look.contradictions.size(), 1U);
  EXPECT_EQ(look.contradictions[0].place.line, 20'001U);
}

// Each place of a file is 16,384 bytes, of which the lines that are cut at its ends do not count.
TEST(SpreadLook, OfAFileHasNinePlaces) {
  const SpreadLook look = look_of_file(table_of(kMany));
  EXPECT_EQ(look.places, 9U);
  EXPECT_LE(look.bytes, 9U * kSpreadUnits);
  EXPECT_GE(look.bytes, 8U * kSpreadUnits);
  EXPECT_GE(look.records, look.bytes / kLineBytes - 18);
  EXPECT_LE(look.records, look.bytes / kLineBytes);
}

// Its byte is known, its line is estimated.
TEST(SpreadLook, FindsTheLastLineOfAFile) {
  const SpreadLook look = look_of_file(with_line(table_of(kMany), kLines, "high,abcd"));
  ASSERT_EQ(look.contradictions.size(), 1U);
  const Contradiction& found = look.contradictions[0];
  EXPECT_EQ(found.column, 0U);
  EXPECT_EQ(found.expected, ColumnKind::decimal);
  EXPECT_EQ(found.count, 1U);
  EXPECT_EQ(found.example, u"high");
  EXPECT_EQ(found.place.byte, (kLines - 1) * kLineBytes);
  EXPECT_FALSE(found.place.is_line_exact);
  EXPECT_NEAR(static_cast<double>(found.place.line), static_cast<double>(kLines), 100);
}

// A stretch of odd lines that is longer than the distance from one place to the next.
TEST(SpreadLook, FindsWhatIsInTheMiddleOfAFile) {
  std::string text = table_of(kMany);
  for (std::size_t line = 40'000; line < 55'000; ++line) {
    text.replace((line - 1) * kLineBytes, kLineBytes - 1, "high,abcd");
  }
  const SpreadLook look = look_of_file(text);
  ASSERT_EQ(look.contradictions.size(), 1U);
  const std::uint64_t byte = look.contradictions[0].place.byte.value();
  EXPECT_EQ(byte % kLineBytes, 0U);
  EXPECT_EQ(text.substr(byte, kLineBytes - 1), "high,abcd");
}

TEST(SpreadLook, CountsRecordsWithAnotherNumberOfCells) {
  std::string text = with_line(table_of(kFew), 150, "1.5,a,b,c");
  text = with_line(text, 160, "2.5 abcde");
  const SpreadLook look = look_of_file(text);
  EXPECT_EQ(look.ragged_records, 2U);
  EXPECT_EQ(look.ragged_cells, 4U);
  EXPECT_EQ(look.ragged_example, u"1.5,a,b,c");
  EXPECT_EQ(look.ragged_place, (TextPlace{149 * kLineBytes, 150, true}));
}

TEST(SpreadLook, TellsWordsForMissingValuesThatTheSampleDoesNotHave) {
  std::string text = with_line(table_of(kFew), 50, "n/a ,abcd");
  text = with_line(text, 150, "n/a ,abcd");
  text = with_line(text, 160, "NULL,abcd");
  const SpreadLook look = look_of_file(text);
  EXPECT_EQ(look.missing, (std::vector<MissingWord>{{u"NULL", 1}}));
  EXPECT_TRUE(look.contradictions.empty());
}

TEST(SpreadLook, HasTheFirstOfEachColumnAndCountsTheOthers) {
  std::string text = table_of(kFew);
  for (const std::size_t line : {300U, 500U, 900U}) {
    text = with_line(text, line, "x" + std::to_string(line) + ",abcd");
  }
  const SpreadLook look = look_of_file(text);
  ASSERT_EQ(look.contradictions.size(), 1U);
  EXPECT_EQ(look.contradictions[0].count, 3U);
  EXPECT_EQ(look.contradictions[0].example, u"x300");
}

TEST(SpreadLook, TakesAFooterForNoContradiction) {
  EXPECT_TRUE(look_of_file(table_of(kFew) + "Total,3000\n").contradictions.empty());
  EXPECT_TRUE(look_of_file(table_of(kMany) + "Total,9999\n").contradictions.empty());
}

// Two bytes for each of the two characters in a line.
TEST(SpreadLook, FindsTheByteInTextOfSeveralBytesForEachCharacter) {
  std::string text = "level,n\n";
  const std::string usual = "1.50,\xC3\xA4\xC3\xB6\n";
  for (std::size_t i = 0; i < kMany; ++i) text += usual;
  const std::size_t byte = text.size();
  text += "high,abcd\n";
  const SpreadLook look = look_of_file(text);
  ASSERT_EQ(look.contradictions.size(), 1U);
  EXPECT_EQ(look.contradictions[0].place.byte, byte);
}

TEST(SpreadLook, ReadsUtf16AtAnyPlace) {
  std::string bytes = "\xFF\xFE";
  for (const char c : with_line(table_of(kMany), kLines, "high,abcd")) bytes.append({c, '\0'});
  const SpreadLook look = look_of_file(bytes);
  EXPECT_EQ(look.places, 9U);
  ASSERT_EQ(look.contradictions.size(), 1U);
  EXPECT_EQ(look.contradictions[0].place.byte, 2 + 2 * (kLines - 1) * kLineBytes);
  EXPECT_EQ(look.ragged_records, 0U);
}

// Quoted cells with line endings inside: no place begins with a record that seems to be another.
TEST(SpreadLook, IsNotMisledByQuotedLineEndings) {
  std::string text = "level,note\n";
  for (std::size_t i = 0; i < 60'000; ++i) text += "1.5,\"first\nsecond, third\"\n";
  const SpreadLook look = look_of_file(text);
  EXPECT_EQ(look.places, 9U);
  EXPECT_EQ(look.ragged_records, 0U);
  EXPECT_TRUE(look.contradictions.empty());
}

TEST(SpreadLook, IsMadeOfAGivenLayoutAndThatOfTheCascade) {
  const std::string text = with_line(table_of(kMany), kLines, "high,abcd");
  DetectSettings cascade = spread();
  cascade.judge = Judge::cascade;
  DetectSettings given = spread();
  given.options.delimiters = {u","};
  given.options.detect_delimiters = false;
  for (const DetectSettings& settings : {cascade, given}) {
    const SpreadLook look = look_of_file(text, settings);
    ASSERT_EQ(look.contradictions.size(), 1U);
    EXPECT_EQ(look.contradictions[0].example, u"high");
  }
}

// --- where nothing is looked at ----------------------------------------------------------------

TEST(SpreadReason, IsThatTheSampleHasAll) {
  EXPECT_EQ(look_of_file(table_of(20)).reason, "the sample has the whole text");
}

TEST(SpreadReason, IsThatThereIsNoTable) {
  std::string prose;
  for (int i = 0; i < 200; ++i) {
    prose +=
        "The river rose in the night, and nobody slept.\nAt dawn the water stood at the mill;\n";
  }
  EXPECT_EQ(look_of_file(prose).reason, "the text is no table");
}

TEST(SpreadReason, IsThatPackedDataCannotBeReadThere) {
  constexpr std::string_view kReason =
      "what is after the sample cannot be reached without reading or unpacking all before it";
  EXPECT_EQ(look_of_file(gzip_of(table_of(kMany))).reason, kReason);
  EXPECT_EQ(look_of_file(gzip_of(table_of(kFew))).reason, "");
}

TEST(SpreadReason, IsThatTooManyBytesWouldBeRead) {
  DetectSettings settings = spread();
  settings.max_bytes = 600'000;
  EXPECT_EQ(look_of_file(table_of(kMany), settings).reason,
            "it would take more bytes than may be read");
}

TEST(SampleFromNames, AreThoseOfTheEnumerators) {
  EXPECT_EQ(to_string(SampleFrom::start), "start");
  EXPECT_EQ(to_string(SampleFrom::spread), "spread");
  EXPECT_EQ(to_string(static_cast<SampleFrom>(7)), "");
}

}  // namespace
}  // namespace textio::standalone
