// What is said about the text after the sample, for files, bytes and texts in memory.
#include <vltextstream/layout/beyond_sample.hpp>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <vltextstream/layout/detect_input.hpp>
#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/decoding/utf_text.hpp>
#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::TempFolder;
using Texts = std::vector<std::u16string>;

// Names and records of eight bytes each, `records` of them, and what follows these.
std::string table_of(std::size_t records, const std::string& footer = "") {
  std::string text = "num,abc\n";
  for (std::size_t i = 0; i < records; ++i) text += "1.5,abc\n";
  return text + footer;
}

// More than is loaded for a sample of 100 lines.
constexpr std::size_t kManyRecords = 40'000;

std::string as_utf16(const std::string& ascii, bool is_big = false) {
  std::string bytes = is_big ? "\xFE\xFF" : "\xFF\xFE";
  for (const char c : ascii) {
    if (is_big) {
      bytes.append({'\0', c});
    } else {
      bytes.append({c, '\0'});
    }
  }
  return bytes;
}

Layout layout_of_bytes(std::string_view bytes, const DetectSettings& settings = {}) {
  return detect_input(InputText(FileContent{bytes}, settings), settings);
}

// --- how many lines there are ------------------------------------------------------------------

struct LinesCase {
  const char* rule;
  std::string bytes;
  std::optional<std::uint64_t> lines;
  bool is_all = false;
};
std::ostream& operator<<(std::ostream& out, const LinesCase& row) { return out << row.rule; }

const LinesCase kLinesCases[] = {
    {"AllThatWereLookedAt", table_of(11), 12, true},
    {"WithQuotedLineEndings", "a,b\n1,\"x\ny\"\n2,z\n", 4, true},
    {"WithBlankLinesAndComments", "# note\n\na,b\n1,2\n", 4, true},
    {"WithoutALastLineEnding", "a,b\n1,2", 2, true},
    {"OfALoadedTextByItsLength", table_of(3001), 3002},
    {"OfAFileByItsLength", table_of(kManyRecords - 1), kManyRecords},
    {"OfUtf16", as_utf16(table_of(kManyRecords - 1)), kManyRecords},
    {"OfPackedDataThatAreLoaded", gzip_of(table_of(3001)), 3002},
    {"OfMorePackedDataIsNotKnown", gzip_of(table_of(kManyRecords)), std::nullopt},
    {"OfAnEmptyFile", "", 0, true},
};

class LinesEstimated : public testing::TestWithParam<LinesCase> {};
TEST_P(LinesEstimated, AreExactWhereAllIsRead) {
  const LinesCase& row = GetParam();
  const Layout layout = layout_of_bytes(row.bytes);
  EXPECT_EQ(layout.lines_estimated, row.lines);
  EXPECT_EQ(!layout.has_more_text, row.is_all);
  const TempFolder folder;
  EXPECT_EQ(detect_layout(folder.file("t", row.bytes)).lines_estimated, row.lines);
}
INSTANTIATE_TEST_SUITE_P(Table, LinesEstimated, testing::ValuesIn(kLinesCases), ByRule());

TEST(LinesEstimated, AreMoreThanThoseLookedAtIfThereAreMore) {
  DetectSettings settings;
  settings.num_lines = 3;
  EXPECT_EQ(layout_of_bytes("1111,2222\n3333,4444\n5555,6666\n\n", settings).lines_estimated, 4U);
}

TEST(LinesEstimated, AreOfATextInMemory) {
  EXPECT_EQ(detect_layout(from_utf8(table_of(3001))).lines_estimated, 3002U);
  EXPECT_EQ(detect_layout(from_utf8(table_of(11))).lines_estimated, 12U);
}

TEST(LinesEstimated, AreNotOfTheCascade) {
  DetectSettings settings;
  settings.judge = Judge::cascade;
  const Layout layout = layout_of_bytes(table_of(3001, "Bye\n"), settings);
  EXPECT_FALSE(layout.lines_estimated);
  EXPECT_FALSE(layout.tail);
}

// --- the end -----------------------------------------------------------------------------------

const std::string kFooter = "Total,\n\nAll figures without guarantee.\n";
const Texts kFooterTexts = {u"Total,", u"All figures without guarantee."};

struct TailCase {
  const char* rule;
  std::string bytes;
  bool has_tail;
  Texts footer;
  bool is_read = false;  // from the file, not loaded before
};
std::ostream& operator<<(std::ostream& out, const TailCase& row) { return out << row.rule; }

std::string utf16_with(bool is_big) { return as_utf16(table_of(kManyRecords, kFooter), is_big); }

// Two bytes for each character above ASCII, so that a block may begin inside one.
std::string umlauts() {
  std::string text = "name,n\n";
  for (std::size_t i = 0; i < 30'000; ++i) text += "\xC3\xA4\xC3\xB6\xC3\xBC,1\n";
  return text + "Total:,\n";
}

std::string quoted_lines() {
  std::string text = "name,text,n\n";
  for (std::size_t i = 0; i < 6000; ++i) text += "ab,\"one,\ntwo, three\nfour\",1\n";
  return text + "Total,,6000\n";
}

const TailCase kTailCases[] = {
    {"NoneWhereTheSampleHasTheEnd", table_of(20, kFooter), false, {}},
    {"RightAfterTheSample", table_of(99, kFooter), true, kFooterTexts},
    {"OfALoadedText", table_of(3000, kFooter), true, kFooterTexts},
    {"WithoutAFooter", table_of(3000), true, {}},
    {"OfAFile", table_of(kManyRecords, kFooter), true, kFooterTexts, true},
    {"OfAFileWithoutAFooter", table_of(kManyRecords), true, {}, true},
    {"OfUtf16", utf16_with(false), true, kFooterTexts, true},
    {"OfUtf16WithTheOtherByteOrder", utf16_with(true), true, kFooterTexts, true},
    {"OfUtf8", umlauts(), true, {u"Total:,"}, true},
    {"WithinQuotedCells", quoted_lines(), true, {u"Total,,6000"}, true},
    {"OfPackedDataThatAreLoaded", gzip_of(table_of(3000, kFooter)), true, kFooterTexts},
    {"NoneOfMorePackedData", gzip_of(table_of(kManyRecords, kFooter)), false, {}},
    {"NoneOfRunningText",
     [] {
       std::string text;
       for (int i = 0; i < 300; ++i) text += "It was a dark and stormy night, as they often are.\n";
       return text;
     }(),
     false,
     {}},
};

class Tail : public testing::TestWithParam<TailCase> {};
TEST_P(Tail, HasTheLinesThatAreNoData) {
  const TailCase& row = GetParam();
  const TempFolder folder;
  const std::string path = folder.file("t", row.bytes);
  for (const Layout& layout : {layout_of_bytes(row.bytes), detect_layout(path)}) {
    ASSERT_EQ(layout.tail.has_value(), row.has_tail);
    if (!layout.tail) continue;
    EXPECT_EQ(layout.tail->footer_lines, row.footer.size());
    EXPECT_EQ(layout.tail->footer, row.footer);
    EXPECT_EQ(layout.tail->bytes > 0, row.is_read);
    EXPECT_LE(layout.tail->bytes, kTailBytes);
    EXPECT_LE(layout.tail->characters, kTailBytes);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, Tail, testing::ValuesIn(kTailCases), ByRule());

TEST(TailLook, IsOfATextInMemoryAsOfItsFile) {
  const std::u16string text = from_utf8(table_of(kManyRecords, kFooter));
  const Layout layout = detect_layout(text);
  ASSERT_TRUE(layout.tail);
  EXPECT_EQ(layout.tail->footer, kFooterTexts);
  EXPECT_EQ(layout.tail->bytes, 0U);
}

TEST(TailLook, IsLeftOutOnRequest) {
  DetectSettings settings;
  settings.look_at_end = false;
  for (const std::size_t records : {std::size_t{3000}, kManyRecords}) {
    const Layout layout = layout_of_bytes(table_of(records, kFooter), settings);
    EXPECT_FALSE(layout.tail);
    EXPECT_TRUE(layout.lines_estimated);
  }
}

TEST(TailLook, TellsFiveTextsOf200Characters) {
  std::string footer = std::string(201, 'x') + "\n";
  for (const char* const word : {"one", "two", "three", "four", "five", "six"}) {
    footer += std::string(word) + " more\n";
  }
  const Layout layout = layout_of_bytes(table_of(3000, "\n" + footer));
  ASSERT_TRUE(layout.tail);
  EXPECT_EQ(layout.tail->footer_lines, 7U);
  EXPECT_EQ(layout.tail->footer, (Texts{std::u16string(200, u'x'), u"one more", u"two more",
                                        u"three more", u"four more"}));
}

// The sample ends where a quoted cell is open.
TEST(TailLook, ReadsOnWhereTheSampleEndsInsideAQuotedCell) {
  std::string text = "n,text,m\n";
  for (int i = 0; i < 99; ++i) text += i == 98 ? "1,\"a\nb\",2\n" : "1,\"a\",2\n";
  const Layout layout = layout_of_bytes(text + "1,a,2\n1,\"a\",2\n\nBye\n");
  ASSERT_TRUE(layout.tail);
  EXPECT_EQ(layout.tail->footer, Texts{u"Bye"});
}

TEST(TailLook, StaysWithinTheMostBytes) {
  DetectSettings settings;
  const std::string bytes = table_of(kManyRecords, kFooter);
  settings.max_bytes = 131'072 + kTailBytes + 4096;
  EXPECT_TRUE(layout_of_bytes(bytes, settings).tail);
  settings.max_bytes = 140'000;
  const Layout layout = layout_of_bytes(bytes, settings);
  EXPECT_FALSE(layout.tail);
  EXPECT_EQ(layout.num_variables, 2U);
}

TEST(TailLook, IsFarBeyondTheMostBytes) {
  DetectSettings settings;
  settings.max_bytes = 250'000;
  const std::string bytes = table_of(kManyRecords, kFooter);
  ASSERT_GT(bytes.size(), settings.max_bytes);
  const Layout layout = layout_of_bytes(bytes, settings);
  ASSERT_TRUE(layout.tail);
  EXPECT_EQ(layout.tail->footer, kFooterTexts);
}

// --- files that change --------------------------------------------------------------------------

// The layout, and the tail that is found when the file has `size` bytes in the meantime.
std::optional<TailLook> tail_after_resizing(std::uintmax_t size) {
  const TempFolder folder;
  const std::string path = folder.file("t", table_of(kManyRecords, kFooter));
  const DetectSettings settings;
  InputText input(path, settings);
  input.prefix(65'536);
  input.confirm_encoding(800);
  EXPECT_FALSE(input.is_all_loaded());
  EXPECT_EQ(input.num_bytes(), 8 * (kManyRecords + 1) + kFooter.size());
  const std::uint64_t begin = *input.num_bytes() - 60'000;
  std::filesystem::resize_file(path, size);
  const auto text = input.end_from(begin, 60'000);
  return text ? std::optional(TailLook{0, {}, text->size(), 60'000}) : std::nullopt;
}

TEST(EndOfInput, IsNotToldOfAFileThatGotShorter) {
  EXPECT_FALSE(tail_after_resizing(300'000));
  EXPECT_FALSE(tail_after_resizing(1000));
  EXPECT_FALSE(tail_after_resizing(0));
}

TEST(EndOfInput, IsToldOfOneThatDidNot) {
  const auto tail = tail_after_resizing(8 * (kManyRecords + 1) + kFooter.size());
  ASSERT_TRUE(tail);
  EXPECT_EQ(tail->characters, 60'000U);
}

// All of the first 64 KB is ASCII, and what follows has an ill-formed part, so that the file is read again.
TEST(EndOfInput, IsToldOfAFileThatWasReadAgain) {
  std::string text = table_of(8192);
  text += "1.5,\xC3\xA4\xC3\xA4\n1.5,\xC3\xA4\xFF\n";
  const Layout layout = layout_of_bytes(text + table_of(kManyRecords, kFooter));
  ASSERT_TRUE(layout.tail);
  EXPECT_EQ(layout.tail->footer, kFooterTexts);
}

}  // namespace
}  // namespace textio::standalone
