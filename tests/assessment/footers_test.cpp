#include <vltextstream/assessment/footers.hpp>

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

// --- words -----------------------------------------------------------------------------------

struct WordCase {
  const char* rule;
  std::u16string cell;
  bool is_total;
};
std::ostream& operator<<(std::ostream& out, const WordCase& row) { return out << row.rule; }

const WordCase kWordCases[] = {
    {"Alone", u"Total", true},
    {"InAnyCase", u"TOTAL", true},
    {"WithAColon", u"Sum:", true},
    {"WithBlanksAround", u"  Summe ", true},
    {"WithMoreWords", u"Total g\u00E9n\u00E9ral", true},
    {"WithAYear", u"total 2024", true},
    {"AfterAnotherWord", u"Grand Total", true},
    {"AfterASign", u"** Total **", true},
    {"German", u"Gesamt", true},
    {"GermanAverage", u"Mittelwert", true},
    {"Italian", u"Totale", true},
    {"FrenchSum", u"SOMME", true},
    {"Spanish", u"Suma", true},
    {"Dutch", u"Totaal", true},
    {"RussianInCapitals", u"\u0418\u0422\u041E\u0413\u041E", true},
    {"Finnish", u"YHTEENS\u00C4", true},
    {"Chinese", u"\u5408\u8BA1", true},
    {"AnAverage", u"average", true},
    {"AMean", u"Mean:", true},
    {"ASubtotal", u"Sub-total", true},
    {"NotTheBeginningOfAnotherWord", u"Summer", false},
    {"NotMeanwhile", u"meanwhile", false},
    {"NotInside", u"the total", false},
    {"NotANumber", u"17", false},
    {"NotAfterANumber", u"3 total", false},
    {"NotEmpty", u"", false},
    {"NotBlank", u"  ", false},
    {"NotASign", u"--", false},
    {"NotALongText", u"Total " + std::u16string(60, u'x'), false},
};

class BeginsWithTotal : public testing::TestWithParam<WordCase> {};
TEST_P(BeginsWithTotal, KnowsTheWords) {
  EXPECT_EQ(begins_with_total(ExactText(GetParam().cell).view()), GetParam().is_total);
}
INSTANTIATE_TEST_SUITE_P(Table, BeginsWithTotal, testing::ValuesIn(kWordCases), ByRule());

TEST(GroupOf, JoinsKindsThatMayShareAColumn) {
  EXPECT_EQ(group_of(CellKind::empty), CellGroup::nothing);
  EXPECT_EQ(group_of(CellKind::missing), CellGroup::nothing);
  EXPECT_EQ(group_of(CellKind::integer), CellGroup::number);
  EXPECT_EQ(group_of(CellKind::money), CellGroup::number);
  EXPECT_EQ(group_of(CellKind::date), CellGroup::date);
  EXPECT_EQ(group_of(CellKind::date_time), CellGroup::date);
  EXPECT_EQ(group_of(CellKind::time), CellGroup::time);
  EXPECT_EQ(group_of(CellKind::duration), CellGroup::duration);
  EXPECT_EQ(group_of(CellKind::boolean), CellGroup::other);
  EXPECT_EQ(group_of(CellKind::word), CellGroup::text);
  EXPECT_EQ(group_of(CellKind::structure), CellGroup::text);
}

// --- the end of a text -----------------------------------------------------------------------

// The profile of a table of a number, a text and a number, with quotes.
TableProfile profile_of_table(Reading reading = {Form::delimited, u",", u'"'}) {
  const std::u16string text = u"1,north,0.5\n2,\"south, far\",1.5\n3,east,2.5\n4,west,3.5\n";
  const SampledLines lines = sample_lines(text, kAll);
  const Records records = cut(lines, {Form::delimited, u",", u'"'});
  const TableFrame table = find_table(lines, records, reading, 3);
  return profile_of(records, reading, table, CellKinds(records, table.data, 3, 200), 0);
}

struct EndCase {
  const char* rule;
  std::u16string text;
  bool follows_data;
  std::vector<std::u16string> footer;
};
std::ostream& operator<<(std::ostream& out, const EndCase& row) { return out << row.rule; }

const EndCase kEndCases[] = {
    {"NoFooter", u"8,a,1\n9,b,2\n", true, {}},
    {"NothingAtAll", u"", true, {}},
    {"BlankLines", u"\n\n \n", true, {}},
    {"ACount", u"8,a,1\n9,b,2\n(9 rows)\n", false, {u"(9 rows)"}},
    {"AfterABlankLine", u"8,a,1\n9,b,2\n\nBye\n", false, {u"Bye"}},
    {"ATotal", u"8,a,1\n9,b,2\nTotal,,3\n", false, {u"Total,,3"}},
    {"NothingButATotal", u"Total,,3\n", true, {u"Total,,3"}},
    {"NothingButATotalFarFromTheSample", u"Total,,3\n", false, {}},
    {"SeveralLines",
     u"9,b,2\nTotal,,3\n\nSource: maps\nNo warranty.",
     false,
     {u"Total,,3", u"Source: maps", u"No warranty."}},
    {"ARuleIsNoFooter", u"8,a,1\n9,b,2\n-----\nBye\n", false, {u"Bye"}},
    {"ARecordCutOffIsData", u"8,a,1\n9,b", false, {}},
    {"ANumberCutOffIsData", u"8,a,1\n9", false, {}},
    {"AnotherTableIsNoFooter", u"a;b\nc;d\ne;f\n", false, {}},
    {"MoreOtherLinesThanRecords", u"9,b,2\n8,,,\n7,,,\n6,,,\nBye\n", false, {}},
    {"BeginsInsideAQuotedCell",
     u"of it\",1\n8,\"x\ny\",2\n9,\"z, z\",3\nTotal,,3\n",
     false,
     {u"Total,,3"}},
    {"InsideAQuotedCellAllLinesLookAlike",
     u"7,8,9\n7,8,9\",1\n8,\"x\",2\n9,\"z\",3\n9,z,3\nBye\n",
     false,
     {u"Bye"}},
};

class FooterAtEnd : public testing::TestWithParam<EndCase> {};
TEST_P(FooterAtEnd, HasTheLinesThatAreNoData) {
  const EndCase& row = GetParam();
  const ExactText text(row.text);
  const EndFooter found = footer_at_end(text.view(), profile_of_table(), row.follows_data);
  std::vector<std::u16string> lines;
  for (const std::u16string_view line : found.lines) lines.emplace_back(line);
  EXPECT_EQ(lines, row.footer);
  EXPECT_EQ(found.num_lines, row.footer.size());
}
INSTANTIATE_TEST_SUITE_P(Table, FooterAtEnd, testing::ValuesIn(kEndCases), ByRule());

TEST(FooterAtEnd, IsNotTakenFromAnotherPartOfTheText) {
  std::u16string text = u"8,a,1\n";
  for (int i = 0; i < 200; ++i) text += u"words without end\n";
  EXPECT_EQ(footer_at_end(text, profile_of_table(), true).num_lines, 200U);
  text += u"words without end\n";
  EXPECT_EQ(footer_at_end(text, profile_of_table(), true).num_lines, 0U);
}

TEST(FooterAtEnd, LooksAtTheLastUnitsIfTheyAreClear) {
  std::u16string text;
  while (text.size() < 20'000) text += u"8,a,1\n";
  text += u"Bye\n";
  const EndFooter found = footer_at_end(text, profile_of_table(), false);
  EXPECT_EQ(found.num_lines, 1U);
  EXPECT_LE(found.num_units, 8192U);
  EXPECT_GT(found.num_units, 8180U);
}

TEST(FooterAtEnd, LooksAtAllOfItOtherwise) {
  std::u16string text;
  while (text.size() < 20'000) text += u"8,a,1\n";
  for (int i = 0; i < 100; ++i) text += std::u16string(99, u'x') + u"\n";
  const EndFooter found = footer_at_end(text, profile_of_table(), false);
  EXPECT_EQ(found.num_lines, 100U);
  EXPECT_EQ(found.num_units, text.size());
}

TEST(FromNextLine, BeginsAfterTheFirstLineEnding) {
  EXPECT_EQ(from_next_line(u"a\nb\nc"), u"b\nc");
  EXPECT_EQ(from_next_line(u"a\r\nb"), u"b");
  EXPECT_EQ(from_next_line(u"a\rb"), u"b");
  EXPECT_EQ(from_next_line(u"abc"), u"");
  EXPECT_EQ(from_next_line(u"\n"), u"");
  EXPECT_EQ(from_next_line(u""), u"");
}

// --- parts -----------------------------------------------------------------------------------

TEST(CutPart, LeavesOutTheQuotedCellInWhichItBegins) {
  const std::u16string text = u"\",1\n2,\"x\",3\n4,\"y\nz\",5\n";
  const SampledLines lines = sample_lines(text, kAll);
  const Records records = cut_part(lines, profile_of_table());
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].line, 1U);
  EXPECT_EQ(records[1].line, 2U);
  EXPECT_EQ(records[1].num_lines, 2U);
  EXPECT_EQ(records.cells(1).size(), 3U);
  EXPECT_EQ(records.view(records.cells(1)[1]), u"y\nz");
}

TEST(CutPart, BeginsWithItsFirstLineWhereThatFitsAsWell) {
  const std::u16string text = u"1,\"x\",2\n3,y,4\n";
  const Records records = cut_part(sample_lines(text, kAll), profile_of_table());
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].line, 0U);
}

TEST(CutPart, CutsAlignedColumnsWhereTheTableHasThem) {
  TableProfile profile = profile_of_table({Form::gaps, u" ", 0, 0, 1});
  profile.column_starts = {0, 4, 9};
  profile.column_ends = {3, 8, 12};
  const std::u16string text = u"17  far  1.5\n18\nAll is well\n";
  const Records records = cut_part(sample_lines(text, kAll), profile);
  ASSERT_EQ(records.size(), 3U);
  ASSERT_EQ(records.cells(0).size(), 3U);
  EXPECT_EQ(records.view(records.cells(0)[0]), u"17");
  EXPECT_EQ(records.view(records.cells(0)[1]), u"far");
  EXPECT_EQ(records.view(records.cells(0)[2]), u"1.5");
  EXPECT_EQ(records.cells(1).size(), 3U);
  EXPECT_EQ(records.cells(2).size(), 1U);
}

}  // namespace
}  // namespace textio::assessment
