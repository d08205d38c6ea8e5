// Which lines are a footer, met through detect_layout.
#include <vltextstream/layout/judged_layout.hpp>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

Layout layout_of(std::u16string_view text, const DetectSettings& settings = {}) {
  return detect_layout(ExactText(text).view(), settings);
}

// "1 names, 2-4 data"
std::string described(const Layout& layout) {
  std::string out;
  for (const LineRun& run : layout.lines) {
    out += (out.empty() ? "" : ", ") + std::to_string(run.first_line);
    if (run.last_line != run.first_line) out += '-' + std::to_string(run.last_line);
    out += ' ' + std::string(to_string(run.role));
  }
  return out;
}

struct FooterCase {
  const char* rule;
  std::u16string text;
  std::string lines;
  std::size_t ragged = 0;
};
std::ostream& operator<<(std::ostream& out, const FooterCase& row) { return out << row.rule; }

// Three records of a number, a word and a number below their names.
const std::u16string kTable = u"id,name,qty\n1,apple,3\n2,pear,5\n3,fig,7\n";

// A word and two numbers.
const std::u16string kWords = u"name;x;y\na;1;2\nb;3;4\nc;5;6\n";

const FooterCase kFooterCases[] = {
    {"NoFooter", kTable, "1 names, 2-4 data"},
    {"ACountRightAfterTheData", kTable + u"(3 rows)\n", "1 names, 2-4 data, 5 footer"},
    {"ACountAfterABlankLine", kTable + u"\n(3 rows)\n", "1 names, 2-4 data, 5 blank, 6 footer"},
    {"AFarewell", kTable + u"Bye\n", "1 names, 2-4 data, 5 footer"},
    {"SeveralLines", kTable + u"\nsigned A. Smith\nhead of office\n",
     "1 names, 2-4 data, 5 blank, 6-7 footer"},
    {"BlankLinesBetween", kTable + u"\n(3 rows)\n\nBye\n\n",
     "1 names, 2-4 data, 5 blank, 6 footer, 7 blank, 8 footer, 9 blank"},
    {"ADisclaimerWithCommas", kTable + u"\nNo warranty, whatever you do\n",
     "1 names, 2-4 data, 5 blank, 6 footer"},
    {"ADisclaimerWithAsManyCommas", kTable + u"\nNo warranty, whatever you do, at all\n",
     "1 names, 2-4 data, 5 blank, 6 footer"},
    {"ARuleBetween", kTable + u"----------\nBye\n", "1 names, 2-4 data, 5 comment, 6 footer"},
    {"ACommentIsNoFooter", kTable + u"# the end\n", "1 names, 2-4 data, 5 comment"},

    {"ATotalWithEmptyCells", kTable + u"Total,,15\n", "1 names, 2-4 data, 5 footer"},
    {"ATotalWithTheWordInTheSecondCell", kTable + u",total:,15\n", "1 names, 2-4 data, 5 footer"},
    {"ATotalWithTheWordInAColumnOfNumbers", kTable + u"Summe,all,15\n",
     "1 names, 2-4 data, 5 footer"},
    {"ATotalWithFewerCells", kTable + u"Total,15\n", "1 names, 2-4 data, 5 footer"},
    {"TotalsWithEmptyCells", kWords + u"Summe;;12\nMittelwert;3;\n",
     "1 names, 2-4 data, 5-6 footer"},
    {"TotalsAfterABlankLine", kWords + u"\nSumme;9;12\nMittelwert;3;4\n",
     "1 names, 2-4 data, 5 blank, 6-7 footer"},
    {"ATotalAfterARule", kWords + u"-----\nSumme;9;12\n", "1 names, 2-4 data, 5 comment, 6 footer"},
    {"ATotalAndANote", kWords + u"\nSumme;9;12\n\nAll of this is provisional.\n",
     "1 names, 2-4 data, 5 blank, 6 footer, 7 blank, 8 footer"},
    {"ACompleteRecordWithTheWordIsData", kWords + u"Summe;9;12\n", "1 names, 2-5 data"},
    {"AtMostThreeTotals", kWords + u"Total;;1\nMean;;2\nSumme;;3\nAverage;;4\n",
     "1 names, 2-5 data, 6-8 footer"},
    {"ATotalAmongTheDataIsData", u"name;x;y\na;1;2\nTotal;;4\nb;3;4\nc;5;6\n", "1 names, 2-5 data"},
    {"AnEmptyCellThatOthersLeaveEmptyToo", u"name;x;y\na;;2\nb;;4\nc;5;6\nMean;;4\n",
     "1 names, 2-5 data"},
    {"OneTotalIsNotEverything", u"name;x;y\nTotal;;2\n", "1 names, 2 data"},

    {"ARecordCutOffIsData", u"id,name,qty\n1,apple,3\n2,pear,5\n3,fi", "1 names, 2-4 data", 1},
    {"ARecordCutOffInItsFirstCellIsData", u"id,name,qty\n1,apple,3\n2,pear,5\n3",
     "1 names, 2-4 data", 1},
    {"AWordCutOffIsData", u"name;x;y\nanna;1;2\nberta;3;4\ncarla;5;6\ndo", "1 names, 2-5 data", 1},
    {"AShortRecordIsData", kTable + u"4,plum\n", "1 names, 2-5 data", 1},
    {"ALongRecordIsData", kTable + u"4,plum,2,8\n", "1 names, 2-5 data", 1},

    {"BelowAFrame",
     u"+----+-------+\n| id | name  |\n+----+-------+\n|  1 | apple |\n|  2 | pear  |\n"
     u"+----+-------+\n2 rows in set (0.00 sec)\n\nBye\n",
     "1 comment, 2 names, 3 comment, 4-5 data, 6 comment, 7 footer, 8 blank, 9 footer"},
    {"BelowAlignedColumns",
     u"name       qty  price\napple        3   1.50\npear         5   2.25\n"
     u"fig          7   3.10\nkiwi         9   4.10\n\nSource: office of maps\n",
     "1 names, 2-5 data, 6 blank, 7 footer"},
    {"BelowASingleColumn", u"level\n1.5\n2.5\n3.5\n4.5\n(4 rows)\n", "1 names, 2-5 data, 6 footer"},
};

class Footer : public testing::TestWithParam<FooterCase> {};
TEST_P(Footer, IsARoleOfItsOwn) {
  const FooterCase& row = GetParam();
  const Layout layout = layout_of(row.text);
  EXPECT_EQ(described(layout), row.lines);
  EXPECT_EQ(layout.ragged_lines, row.ragged);
}
INSTANTIATE_TEST_SUITE_P(Table, Footer, testing::ValuesIn(kFooterCases), ByRule());

TEST(CompleteNames, AreKeptAboveRecordsThatEndEarly) {
  const Layout layout = detect_layout(std::u16string_view(
      u"id,name,phone,email,city,zip\n1,Ann,123\n2,Bob,456\n3,Cem,789,c@x.org\n4,Dora,321\n"
      u"5,Emil,654,e@x.org,Ulm,89073\n6,Fay,111\n"));
  EXPECT_EQ(layout.num_variables, 6U);
  EXPECT_EQ(layout.names_line, 1U);
  EXPECT_EQ(layout.ragged_lines, 5U);
}

TEST(NamesAmongTexts, AreUndecidedWhereTheFirstLineIsLikeTheOthers) {
  const Layout layout = detect_layout(
      std::u16string_view(u"Ann,Bern,cook\nBob,Ulm,baker\nCem,Bremen,pilot\nDora,Graz,nurse\n"));
  EXPECT_EQ(layout.names_source, NamesSource::undecided);
  EXPECT_EQ(layout.names_candidate, 1U);
}

TEST(NamesAmongTexts, AreFoundWhereTheyBeginInAnotherCase) {
  const Layout layout = detect_layout(std::u16string_view(
      u"person,town,work\nAnn,Bern,Cook\nBob,Ulm,Baker\nCem,Bremen,Pilot\nDora,Graz,Nurse\n"));
  EXPECT_EQ(layout.names_line, 1U);
}

TEST(FooterOfASample, IsFoundOnlyWhereTheTextEnds) {
  DetectSettings settings;
  settings.num_lines = 5;
  EXPECT_EQ(described(layout_of(kTable + u"(3 rows)\n", settings)), "1 names, 2-4 data, 5 footer");
  settings.num_lines = 4;
  EXPECT_EQ(described(layout_of(kTable + u"(3 rows)\n", settings)), "1 names, 2-4 data");
}

TEST(FooterOfASample, IsNotLookedForByTheCascade) {
  DetectSettings settings;
  settings.judge = Judge::cascade;
  const Layout layout = layout_of(kTable + u"(3 rows)\n", settings);
  for (const LineRun& run : layout.lines) EXPECT_NE(run.role, LineRole::footer);
}

TEST(FooterOfASample, IsNoPartOfTheColumns) {
  const Layout layout = layout_of(u"when,n\n2024-01-01,1\n2024-01-02,2\nTotal,\nMean,\nSum,\n");
  EXPECT_EQ(layout.classes[0], DatatypeCode::date);
  EXPECT_EQ(described(layout), "1 names, 2-3 data, 4-6 footer");
}

// Small texts of any kind, most of them with something below a table.
TEST(FooterProperty, EveryLineIsInOneRunAndTheFooterIsLast) {
  std::mt19937 random(20261122);
  const std::u16string_view pieces[] = {u"1,a,2\n",   u"Total,,3\n", u"\n",    u"(3 rows)\n",
                                        u"-----\n",   u"Bye\n",      u"# c\n", u"4,\"x\ny\",5\n",
                                        u"a note, b", u"mean,",      u"7,b\n", u"\"",
                                        u"x  y  3\n", u"n,t,m\n"};
  for (int round = 0; round < 4000 && !testing::Test::HasFailure(); ++round) {
    std::u16string text = round % 2 == 0 ? kTable : u"";
    for (std::size_t i = random() % 8; i > 0; --i) text += pieces[random() % std::size(pieces)];
    SCOPED_TRACE(readable(text));
    const Layout layout = layout_of(text);
    SCOPED_TRACE(described(layout));
    std::size_t next_line = 1;
    bool is_below = false;
    bool has_data = false;
    for (const LineRun& run : layout.lines) {
      EXPECT_EQ(run.first_line, next_line);
      EXPECT_LE(run.first_line, run.last_line);
      next_line = run.last_line + 1;
      is_below = is_below || run.role == LineRole::footer;
      has_data = has_data || run.role == LineRole::data || run.role == LineRole::names;
      EXPECT_FALSE(is_below && run.role == LineRole::data);
    }
    EXPECT_TRUE(has_data || !is_below);
    EXPECT_EQ(layout.ragged_lines > 0, layout.first_ragged_line.has_value());
  }
}

// Marks that occur are tried, and what every text may be: columns by place, one column, no table.
TEST(ConsideredReadings, AreThereOnRequestTheLikeliestFirst) {
  const std::u16string text = u"town;rain\nBonn;12,5\nEmden;9,1\nGera;7,4\n";
  EXPECT_TRUE(layout_of(text).considered.empty());
  DetectSettings settings;
  settings.trace = true;
  const std::vector<ConsideredReading> found = layout_of(text, settings).considered;
  const auto has = [&](LayoutMode mode, std::u16string_view delimiter, bool is_table) {
    return std::any_of(found.begin(), found.end(), [&](const ConsideredReading& each) {
      return each.mode == mode && each.delimiter == delimiter && each.is_table == is_table;
    });
  };
  ASSERT_FALSE(found.empty());
  EXPECT_EQ(found.front().mode, LayoutMode::delimited);
  EXPECT_EQ(found.front().delimiter, u";");
  EXPECT_TRUE(has(LayoutMode::delimited, u",", true));
  EXPECT_TRUE(has(LayoutMode::line_reader, u"", true));
  EXPECT_TRUE(has(LayoutMode::line_reader, u"", false));
  double sum = 0;
  for (std::size_t i = 0; i < found.size(); ++i) {
    sum += found[i].probability;
    EXPECT_TRUE(i == 0 || found[i].probability <= found[i - 1].probability);
  }
  EXPECT_NEAR(sum, 1.0, 1e-9);
}

TEST(ConsideredReadings, AreNoneOfTheCascade) {
  DetectSettings settings;
  settings.trace = true;
  settings.judge = Judge::cascade;
  EXPECT_TRUE(layout_of(u"a,b\n1,2\n3,4\n", settings).considered.empty());
}

}  // namespace
}  // namespace textio::standalone
