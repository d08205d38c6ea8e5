// Tests the reference of the table reader against rows and fates worked out by hand.
#include "reference/table_reference.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace reference {
namespace {

using textio::standalone::Layout;
using textio::standalone::LayoutMode;
using textio::standalone::LineRole;
using textio::testing_support::ByRule;

using Rows = std::vector<std::vector<std::u16string>>;
using Fates = std::vector<std::string>;

Layout delimited(std::size_t columns, const std::u16string& delimiter = u",") {
  Layout layout;
  layout.mode = LayoutMode::delimited;
  layout.delimiters = {delimiter};
  layout.num_variables = columns;
  return layout;
}

Layout quoted(char16_t quote, char16_t escape = 0) {
  Layout layout = delimited(2);
  layout.quote = quote;
  if (escape != 0) layout.escape = escape;
  return layout;
}

Layout escaped() {
  Layout layout = delimited(2);
  layout.escape = u'\\';
  return layout;
}

Layout aligned(std::size_t least_blanks, std::size_t columns, bool rest_in_last = false) {
  Layout layout;
  layout.mode = LayoutMode::space_aligned;
  layout.least_blanks = least_blanks;
  layout.num_variables = columns;
  layout.rest_in_last = rest_in_last;
  return layout;
}

Layout of_widths(const std::vector<std::size_t>& widths) {
  Layout layout;
  layout.mode = LayoutMode::fixed_width;
  layout.widths = widths;
  layout.num_variables = widths.size();
  return layout;
}

Layout with_top(Layout layout) {
  layout.header_lines = 3;
  layout.descriptions_line = 2;
  layout.names_line = 3;
  layout.units_line = 4;
  return layout;
}

Layout with_comments(const std::u16string& prefix) {
  Layout layout = delimited(2);
  layout.dialect.comment_prefix = prefix;
  return layout;
}

Layout with_footer_from(std::size_t line) {
  Layout layout = delimited(2);
  layout.lines = {{LineRole::data, 1, line - 1, line - 1}, {LineRole::footer, line, line + 1, 2}};
  return layout;
}

Layout with_tail(std::size_t lines) {
  Layout layout = delimited(2);
  layout.has_more_text = true;
  layout.tail.emplace().footer_lines = lines;
  return layout;
}

struct TableCase {
  const char* rule;
  Layout layout;
  std::u16string text;
  Rows rows;
  Fates fates;
};
std::ostream& operator<<(std::ostream& out, const TableCase& row) { return out << row.rule; }

const TableCase kTableCases[] = {
    {"Nothing", delimited(2), u"", {}, {}},
    {"OneLineWithoutEnding", delimited(2), u"a,b", {{u"a", u"b"}}, {"data"}},
    {"EveryLineEnding",
     delimited(1),
     u"a\nb\rc\r\nd",
     {{u"a"}, {u"b"}, {u"c"}, {u"d"}},
     {"data", "data", "data", "data"}},
    {"BlankLinesAreNoRows",
     delimited(1),
     u"a\n \t\n\nb\n",
     {{u"a"}, {u"b"}},
     {"data", "blank", "blank", "data"}},
    {"ShortAndLongRows",
     delimited(2),
     u"a\na,b,c\n",
     {{u"a"}, {u"a", u"b", u"c"}},
     {"data", "data"}},
    {"EmptyCellsAtTheEndAreNoColumns",
     delimited(2),
     u"a,b,, \n,,\n",
     {{u"a", u"b"}, {u"", u""}},
     {"data", "data"}},
    {"AQuotedEmptyCellAtTheEndIsAColumn",
     delimited(2),
     u"a,b,\"\"\n",
     {{u"a", u"b", u""}},
     {"data"}},
    {"LongDelimiter", delimited(2, u"::"), u"a::b:c\n", {{u"a", u"b:c"}}, {"data"}},

    {"QuotesAreTakenOff", delimited(2), u"\"a,b\",c\n", {{u"a,b", u"c"}}, {"data"}},
    {"DoubledQuotesAreOne",
     delimited(2),
     u"\"say \"\"a\"\"\",\"\"\"\"\n",
     {{u"say \"a\"", u"\""}},
     {"data"}},
    {"LineEndingsInQuotes",
     delimited(2),
     u"\"a\r\nb\",c\nd,e\n",
     {{u"a\r\nb", u"c"}, {u"d", u"e"}},
     {"data", "data", "data"}},
    {"BlanksAroundQuotes", delimited(2), u"a, \"b\" \t\n", {{u"a", u"b"}}, {"data"}},
    {"AQuoteInsideACellIsACharacter", delimited(2), u"a\",b\"\n", {{u"a\"", u"b\""}}, {"data"}},
    {"TextAfterAClosingQuote", delimited(2), u"\"a\" b,c\n", {{u"\"a\" b", u"c"}}, {"data"}},
    {"AnOpenQuoteIsACharacter",
     delimited(2),
     u"\"a,b\nc,d\n",
     {{u"\"a", u"b"}, {u"c", u"d"}},
     {"data", "data"}},
    {"AnOpenQuoteAboveAQuotedCell",
     delimited(2),
     u"a,\"b\nc,\"d\"\n",
     {{u"a", u"\"b"}, {u"c", u"d"}},
     {"data", "data"}},
    {"AQuoteThatClosesAtTheStartOfALine",
     delimited(2),
     u"a,\"b\n\"\nc,d\n",
     {{u"a", u"b\n"}, {u"c", u"d"}},
     {"data", "data", "data"}},
    {"AnotherQuote", quoted(u'\''), u"'a,b',\"c\n", {{u"a,b", u"\"c"}}, {"data"}},
    {"AnEscapeInQuotes",
     quoted(u'"', u'\\'),
     u"\"a\\\"b\\\\\",c\\d\n",
     {{u"a\"b\\", u"c\\d"}},
     {"data"}},
    {"AnEscapeWithoutQuotes", escaped(), u"a\\,b,\"c\\\\\n", {{u"a,b", u"\"c\\"}}, {"data"}},

    {"AlignedByBlanks", aligned(1, 3), u"  a  b c \n", {{u"a", u"b", u"c"}}, {"data"}},
    {"OneBlankIsPartOfACell",
     aligned(2, 2),
     u"a b  c\nd\te\n",
     {{u"a b", u"c"}, {u"d", u"e"}},
     {"data", "data"}},
    {"TheLastTakesTheRest", aligned(1, 2, true), u"a b c  d\n", {{u"a", u"b c  d"}}, {"data"}},
    {"DrawnLinesAreNoRows",
     aligned(1, 2),
     u"a b\n--- ---\n- -\n",
     {{u"a", u"b"}, {u"-", u"-"}},
     {"data", "rule", "data"}},

    {"FixedWidths", of_widths({2, 3}), u"ab 1x\nc\n", {{u"ab", u"1x"}, {u"c"}}, {"data", "data"}},
    {"TheLastWidthTakesTheRest", of_widths({2, 1}), u"ab12 3\n", {{u"ab", u"12 3"}}, {"data"}},
    {"APairIsOneCharacter",
     of_widths({2, 1}),
     u"\U0001F600b1\n",
     {{u"\U0001F600b", u"1"}},
     {"data"}},

    {"LinesAboveTheData",
     with_top(delimited(2)),
     u"title\nlong,longer\na,b\nm,s\n1,2\n",
     {{u"1", u"2"}},
     {"preamble", "descriptions", "names", "units", "data"}},
    {"ABlankLineAbove",
     with_top(delimited(2)),
     u"title\n\na,b\nm,s\n",
     {},
     {"preamble", "blank", "names", "units"}},
    {"Comments",
     with_comments(u"#"),
     u"a,b\n # c\nd,#e\n",
     {{u"a", u"b"}, {u"d", u"#e"}},
     {"data", "comment", "data"}},
    {"AQuoteInACommentIsNoQuote",
     with_comments(u"#"),
     u"# a,\"b\n1,2\n# \",c\n",
     {{u"1", u"2"}},
     {"comment", "data", "comment"}},
    {"ACommentSignInQuotesIsText",
     with_comments(u"#"),
     u"\"a\n#b\",c\n",
     {{u"a\n#b", u"c"}},
     {"data", "data"}},
    {"AFooterByItsLine",
     with_footer_from(2),
     u"1,2\nsum,2\n\n# x\n",
     {{u"1", u"2"}},
     {"data", "footer", "blank", "footer"}},
    {"AFooterByItsLength",
     with_tail(2),
     u"1,2\n3,4\nsum,2\n\nend\n\n",
     {{u"1", u"2"}, {u"3", u"4"}},
     {"data", "data", "footer", "blank", "footer", "blank"}},
    {"ARecordOfTheFooterIsWhole",
     with_tail(1),
     u"1,2\n\"a\nb\",c\n",
     {{u"1", u"2"}},
     {"data", "footer", "footer"}},
};

class TableReference : public testing::TestWithParam<TableCase> {};
TEST_P(TableReference, GivesRowsAndFates) {
  const ReadTable table = read_table(GetParam().text, GetParam().layout);
  Rows rows;
  for (const TableRow& row : table.rows) rows.push_back(row.cells);
  EXPECT_EQ(rows, GetParam().rows);
  EXPECT_EQ(table.fates, GetParam().fates);
}
INSTANTIATE_TEST_SUITE_P(Table, TableReference, testing::ValuesIn(kTableCases), ByRule());

TEST(TableReference, NumbersRowsByTheirFirstLine) {
  const ReadTable table = read_table(u"\"a\nb\",c\n\nd,e,f\n", delimited(2));
  ASSERT_EQ(table.rows.size(), 2U);
  EXPECT_EQ(table.rows[0].line, 1U);
  EXPECT_EQ(table.rows[1].line, 4U);
  EXPECT_EQ(table.num_columns, 3U);
}

TEST(TableReference, AQuoteIsLookedForOver400Lines) {
  const auto quoted_over = [](std::size_t endings) {
    return u"\"" + std::u16string(endings, u'\n') + u"\",x\n";
  };
  EXPECT_EQ(read_table(quoted_over(400), delimited(2)).rows.size(), 1U);
  EXPECT_EQ(read_table(quoted_over(401), delimited(2)).rows.size(), 2U);
}

}  // namespace
}  // namespace reference
