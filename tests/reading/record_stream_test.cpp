#include <vltextstream/reading/record_stream.hpp>

#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/standalone/files/byte_stream.hpp>
#include <vltextstream/standalone/files/memory_bytes.hpp>
#include <vltextstream/text/utf8.hpp>

#include "reading/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::reading {
namespace {

using standalone::Layout;
using standalone::LayoutMode;
using standalone::LineRole;
using testing_support::ByRule;
using Rows = std::vector<std::string>;

TextInput input_of(std::string_view bytes) {
  File file(standalone::as_c_stream(std::make_unique<standalone::MemoryBytes>(bytes)));
  return TextInput(std::move(file), "'x'", "UTF-8");
}

// The cells of all records with "|" between them, and the fates of all lines.
struct Read {
  Rows records;
  std::string fates;
  std::size_t blocks = 0;
};

Read read(std::string_view bytes, const Layout& layout, std::size_t window,
          parser::options rules = {}) {
  ReadSettings settings;
  settings.window = window;
  settings.detect.options = std::move(rules);
  RecordStream stream(input_of(bytes), layout, settings);
  Read read;
  Account account;
  std::uint64_t next_line = 1;
  while (const std::optional<Block> block = stream.next()) {
    ++read.blocks;
    for (const LineGroup& group : block->groups) {
      EXPECT_EQ(group.first_line, next_line);
      next_line += group.num_lines;
      account.add(group.fate, group.num_lines, group.num_bytes);
      if (group.record == LineGroup::kNoRecord) continue;
      std::string text;
      for (const assessment::Cell& cell : block->records.cells(group.record)) {
        text += to_utf8_lossy(block->records.view(cell)) + "|";
      }
      text.pop_back();
      read.records.push_back(text);
    }
  }
  EXPECT_EQ(account.num_bytes, bytes.size());
  read.fates = shown(account);
  return read;
}

Layout commas() {
  Layout layout;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {u","};
  layout.num_variables = 2;
  layout.confidence = 1.0;
  layout.encoding = "UTF-8";
  return layout;
}

Layout with_roles(Layout layout, std::vector<standalone::LineRun> lines) {
  layout.lines = std::move(lines);
  return layout;
}

struct StreamCase {
  const char* rule;
  std::string bytes;
  Layout layout;
  Rows records;
  std::string fates;
};
std::ostream& operator<<(std::ostream& out, const StreamCase& row) { return out << row.rule; }

Layout engine(Layout layout) {
  layout.confidence.reset();
  return layout;
}

Layout widths(std::vector<std::size_t> sizes) {
  Layout layout = commas();
  layout.mode = LayoutMode::fixed_width;
  layout.delimiters.clear();
  layout.num_variables = sizes.size();
  layout.widths = std::move(sizes);
  return layout;
}

Layout framed() {
  Layout layout = commas();
  layout.delimiters = {u"|"};
  layout.is_framed = true;
  return layout;
}

Layout framed_with_escapes() {
  Layout layout = framed();
  layout.escape = u'\\';
  return layout;
}

Layout comments(const char16_t* prefix) {
  Layout layout = commas();
  layout.dialect.comment_prefix = prefix;
  return layout;
}

Layout footer_at_end(std::size_t lines) {
  Layout layout = commas();
  layout.has_more_text = true;
  layout.tail.emplace();
  layout.tail->footer_lines = lines;
  return layout;
}

Layout quoted_by(std::optional<char16_t> quote, std::optional<char16_t> escape = {}) {
  Layout layout = commas();
  layout.quote = quote;
  layout.escape = escape;
  return layout;
}

Layout one_column() {
  Layout layout = commas();
  layout.mode = LayoutMode::line_reader;
  layout.delimiters.clear();
  layout.num_variables = 1;
  return layout;
}

Layout aligned(std::size_t least_blanks) {
  Layout layout = commas();
  layout.mode = LayoutMode::space_aligned;
  layout.delimiters = {u" ", u"\t"};
  layout.least_blanks = least_blanks;
  return layout;
}

Layout free_text_last() {
  Layout layout = aligned(1);
  layout.rest_in_last = true;
  return layout;
}

Layout below(std::size_t header_lines) {
  Layout layout = commas();
  layout.header_lines = header_lines;
  return layout;
}

const StreamCase kStreams[] = {
    {"Records", "1,2\n3,4\n", commas(), {"1|2", "3|4"}, "data 1-2"},
    {"NoLineEndingAtTheEnd", "1,2\n3,4", commas(), {"1|2", "3|4"}, "data 1-2"},
    {"NoText", "", commas(), {}, ""},
    {"BlankLines",
     "\n1,2\n \t\n\n3,4\n\n",
     commas(),
     {"1|2", "3|4"},
     "blank 1, data 2, blank 3-4, data 5, blank 6"},
    {"AQuotedLineBreak", "\"1\n\n2\",3\n4,5\n", commas(), {"1\n\n2|3", "4|5"}, "data 1-4"},
    {"CarriageReturns", "1,2\r\n\"3\r\n4\",5\r\n", commas(), {"1|2", "3\r\n4|5"}, "data 1-3"},

    {"LinesAbove",
     "a\n\nb,c\n1,2\n",
     with_roles(
         commas(),
         {{LineRole::header, 1, 2, 2}, {LineRole::names, 3, 3, 1}, {LineRole::data, 4, 4, 1}}),
     {"1|2"},
     "preamble 1, blank 2, names 3, data 4"},
    {"AQuoteAboveIsNoQuote",
     "\"a\nb,c\n1,2\n",
     with_roles(
         commas(),
         {{LineRole::header, 1, 1, 1}, {LineRole::names, 2, 2, 1}, {LineRole::data, 3, 3, 1}}),
     {"1|2"},
     "preamble 1, names 2, data 3"},
    {"UnitsAndComments",
     "#x\nb,c\nm,s\n1,2\n",
     with_roles(commas(), {{LineRole::comment, 1, 1, 1},
                           {LineRole::names, 2, 2, 1},
                           {LineRole::units, 3, 3, 1},
                           {LineRole::data, 4, 4, 1}}),
     {"1|2"},
     "comment 1, names 2, units 3, data 4"},
    {"NamesAlone", "b,c\n", with_roles(commas(), {{LineRole::names, 1, 1, 1}}), {}, "names 1"},
    {"ALayoutMadeUp", "x\ny\n1,2\n", below(2), {"1|2"}, "preamble 1-2, data 3"},
    {"FewerLinesThanHeaderLines", "x\ny\n", below(5), {}, "preamble 1-2"},

    {"Comments",
     "1,2\n#3,4\n  #5\n6,7\n",
     comments(u"#"),
     {"1|2", "6|7"},
     "data 1, comment 2-3, data 4"},
    {"ACommentSignInQuotes", "1,\"2\n#3\"\n6,7\n", comments(u"#"), {"1|2\n#3", "6|7"}, "data 1-3"},
    {"NoCommentsWithoutASign", "1,2\n#3,4\n", commas(), {"1|2", "#3|4"}, "data 1-2"},

    {"AFooterInTheSample",
     "1,2\n\nsum,2\n",
     with_roles(
         commas(),
         {{LineRole::data, 1, 1, 1}, {LineRole::blank, 2, 2, 1}, {LineRole::footer, 3, 3, 1}}),
     {"1|2"},
     "data 1, blank 2, footer 3"},
    {"AFooterAtTheEnd",
     "1,2\n3,4\nsum,6\n\n(2 rows)\n",
     footer_at_end(2),
     {"1|2", "3|4"},
     "data 1-2, footer 3, blank 4, footer 5"},
    {"AllIsFooter", "sum,6\n(2 rows)\n", footer_at_end(3), {}, "footer 1-2"},

    {"OrdinaryQuotes",
     "1,5\"\n2,\"3\n4,5\n",
     quoted_by(std::nullopt),
     {"1|5\"", "2|\"3", "4|5"},
     "data 1-3"},
    {"OtherQuotes", "1,'a,b'\n2,\"c\n", quoted_by(u'\''), {"1|a,b", "2|\"c"}, "data 1-2"},
    {"ABackslashBeforeAQuote",
     "1,\"a\\\"b,\n\"\n2,c\n",
     quoted_by(u'"', u'\\'),
     {"1|a\\\"b,\n", "2|c"},
     "data 1-3"},
    {"AnUnclosedQuote", "1,\"2\n3,4\n", commas(), {"1|\"2", "3|4"}, "data 1-2"},
    {"AnUnclosedQuoteAboveAQuotedCell",
     "1,\"2\n3,\"4\"\n5,6\n",
     commas(),
     {"1|\"2", "3|4", "5|6"},
     "data 1-3"},

    {"Frames",
     "| a | b |\n+---+---+\n| 1 | 2 |\n",
     framed(),
     {"a|b", "1|2"},
     "data 1, rule 2, data 3"},
    {"EscapedBarsInAFrame",
     "|a\\|b|c\\d|\n|\\\\|2|\n",
     framed_with_escapes(),
     {"a\\|b|c\\d", "\\\\|2"},
     "data 1-2"},
    {"OneColumn", "a b\n\nc,d\n", one_column(), {"a b", "c,d"}, "data 1, blank 2, data 3"},
    {"Aligned", "1  2\n3\t4\n", aligned(1), {"1|2", "3|4"}, "data 1-2"},
    {"BlanksInCells", "a b  2\nc d  4\n", aligned(2), {"a b|2", "c d|4"}, "data 1-2"},
    {"FreeTextInTheLastColumn",
     "1 a b  c\n2 d\n",
     free_text_last(),
     {"1|a b  c", "2|d"},
     "data 1-2"},

    {"FixedWidths", "ab 1\ncd23\n", widths({2, 2}), {"ab|1", "cd|23"}, "data 1-2"},
    {"ALongerLine", "ab 1 and more\n", widths({2, 2}), {"ab|1 and more"}, "data 1"},
    {"AShorterLine", "ab 1  2\nc\n", widths({2, 2, 3}), {"ab|1|2", "c"}, "data 1-2"},
    {"APairIsOneCharacter",
     "\xF0\x9F\x98\x80"
     "b12\n",
     widths({2, 2}),
     {"\xF0\x9F\x98\x80"
      "b|12"},
     "data 1"},

    {"EngineCommas", "1,2\n\"3\n\",4\n", engine(commas()), {"1|2", "3\n|4"}, "data 1-3"},
    {"EngineEmptyCells", "1,\n,2\n", engine(commas()), {"1|", "|2"}, "data 1-2"},
    {"EngineLines", "a,b\n", engine(one_column()), {"a,b"}, "data 1"},
    {"EngineAligned", " 1  2\n3 4\n", engine(aligned(1)), {"1|2", "3|4"}, "data 1-2"},
    {"EngineStopsAtNoCharacter",
     "1,2\n\xEF\xBF\xBFx,3\n4,5\n",
     engine(commas()),
     {"1|2", "\xEF\xBF\xBFx,3", "4|5"},
     "data 1-3"},
};

class Streams : public testing::TestWithParam<StreamCase> {};
INSTANTIATE_TEST_SUITE_P(RecordStream, Streams, testing::ValuesIn(kStreams), ByRule());

TEST_P(Streams, GiveEachLineItsFate) {
  const StreamCase& row = GetParam();
  const Read all = read(row.bytes, row.layout, 1'000'000);
  EXPECT_EQ(all.records, row.records);
  EXPECT_EQ(all.fates, row.fates);
}

// The text is repeated until it fills many windows.
TEST_P(Streams, DoNotDependOnTheWindow) {
  const StreamCase& row = GetParam();
  std::string bytes = row.bytes;
  const bool ends_line = bytes.empty() || bytes.back() == '\n';
  if (ends_line) {
    while (!bytes.empty() && bytes.size() < 5'000) bytes += row.bytes;
  }
  const Read all = read(bytes, row.layout, 1'000'000);
  for (const std::size_t window : {1U, 7U, 300U, 4096U}) {
    const Read parts = read(bytes, row.layout, window);
    EXPECT_EQ(parts.records, all.records) << window;
    EXPECT_EQ(parts.fates, all.fates) << window;
  }
}

TEST(RecordStream, GivesBlocksOfAboutAWindow) {
  std::string bytes;
  for (int i = 0; i < 100'000; ++i) bytes += "1,2\n";
  const Read parts = read(bytes, commas(), 65'536);
  EXPECT_EQ(parts.records.size(), 100'000U);
  EXPECT_GE(parts.blocks, 4U);
  EXPECT_LE(parts.blocks, 8U);
}

TEST(RecordStream, TakesARecordThatIsLongerThanTheWindow) {
  const std::string cell(300'000, 'x');
  const Read parts = read("1,2\n3,\"" + cell + "\n\"\n4,5\n", commas(), 1'000);
  EXPECT_EQ(parts.records, (Rows{"1|2", "3|" + cell + "\n", "4|5"}));
}

TEST(RecordStream, RefusesARecordThatIsTooLong) {
  ReadSettings settings;
  settings.window = 1'000;
  settings.longest_record = 100'000;
  const std::string bytes = "1,2\n" + std::string(400'000, 'x') + "\n3,4\n";
  const Layout layout = commas();
  RecordStream stream(input_of(bytes), layout, settings);
  EXPECT_TRUE(stream.next());
  try {
    while (stream.next()) {
    }
    FAIL() << "no error";
  } catch (const ReadError& error) {
    EXPECT_EQ(error.line(), 2U);
    EXPECT_STREQ(error.what(),
                 "line 2: a record has more than 100000 characters; the limit is longest_record");
  }
}

// A quote that is not closed within 400 lines is an ordinary character.
TEST(RecordStream, EndsAnUnclosedQuoteAtItsCell) {
  std::string bytes = "1,\"2\n";
  for (int i = 0; i < 1'000; ++i) bytes += "3,4\n";
  const Read all = read(bytes, commas(), 1'000'000);
  ASSERT_EQ(all.records.size(), 1'001U);
  EXPECT_EQ(all.records[0], "1|\"2");
  EXPECT_EQ(read(bytes, commas(), 100).records, all.records);
}

// Where the first cells have quotes that are part of them, later ones have, too.
TEST(RecordStream, LeavesQuotesThatTheJudgeTookForText) {
  Layout layout = commas();
  layout.characters_sampled = 8;
  const Read all = read("1,\"2\n3,4\n5,\"6,7\"\n", layout, 1'000'000);
  EXPECT_EQ(all.records, (Rows{"1|\"2", "3|4", "5|\"6|7\""}));
}

TEST(RecordStream, KeepsLinesTogetherThatMakeOneRow) {
  parser::options rules;
  rules.partial_field_rule = parser::partial_field_action::wrap;
  std::string bytes;
  for (int i = 0; i < 1'000; ++i) bytes += "ab\nc\nd\n";  // four characters are a row
  const Read parts = read(bytes, widths({2, 2}), 256, rules);
  EXPECT_EQ(parts.records.size(), 3'000U);
}

}  // namespace
}  // namespace textio::reading
