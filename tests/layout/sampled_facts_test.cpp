// Of a table whose layout is given, or which the cascade chose, a reader is told as much as of a judged one.
#include <vltextstream/layout/sampled_facts.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/table_columns.hpp>

#include "support/rule_name.hpp"
#include "support/table_facts.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::facts_of;
using Texts = std::vector<std::u16string>;

DetectSettings cascade() {
  DetectSettings settings;
  settings.judge = Judge::cascade;
  return settings;
}

DetectSettings delimited_by(const std::u16string& delimiter) {
  DetectSettings settings;
  settings.options.delimiters = {delimiter};
  settings.options.detect_delimiters = false;
  return settings;
}

DetectSettings with_widths(const std::vector<std::size_t>& widths) {
  DetectSettings settings;
  settings.options.parser_type = parser::parser_kind::fixedwidth;
  settings.options.variable_widths.assign(widths.begin(), widths.end());
  return settings;
}

std::vector<std::string> columns_of(const Layout& layout) {
  std::vector<std::string> all;
  for (const ColumnFacts& column : layout.columns) all.push_back(facts_of(column));
  return all;
}

struct FactsCase {
  const char* rule;
  std::u16string text;
  DetectSettings settings;
  std::vector<std::string> columns;
};
std::ostream& operator<<(std::ostream& out, const FactsCase& row) { return out << row.rule; }

const FactsCase kFacts[] = {
    {"GivenDelimiter",
     u"day;level;gauge\n31.01.2024;1,5;north\n01.02.2024;n/a;south\n02.02.2024;2,25;east\n",
     delimited_by(u";"),
     {"date strptime=%d.%m.%Y icu=dd.MM.yyyy day-first", "decimal dec=, missing=n/a*1", "text"}},
    {"ChosenByTheCascade",
     u"id,price\n007,$5.00\n012,$12.50\n115,$3.25\n",
     cascade(),
     {"identifier", "money dec=. cur=$<"}},
    {"GivenWidths",
     u"  1.5  12\n -2.5   7\n  3.0   8\n",
     with_widths({5, 4}),
     {"decimal dec=.", "integer"}},
    {"QuotedCells",
     u"a,b\n\"1\",\"x \"\"y\"\"\"\n\"2\",\"z\"\n\"3\",\"t\"\n",
     cascade(),
     {"integer", "text"}},
    {"OneOddCellIsNamedWithItsLine",
     u"a,b\n1,7\n2,8\n3,broken\n4,9\n5,10\n",
     delimited_by(u","),
     {"integer", "integer odd=1@4"}},
    {"RaggedLinesDoNotCount",
     u"a,b\n1,7\n2,8\nremark\n3,9\n4,10\n5,11\n",
     delimited_by(u","),
     {"integer", "integer"}},
    {"OneColumn", u"a\n1\n2\n3\n", cascade(), {"integer"}},
};

class SampledFactsOf : public testing::TestWithParam<FactsCase> {};
TEST_P(SampledFactsOf, AreThoseOfTheRow) {
  const Layout layout = detect_layout(std::u16string_view(GetParam().text), GetParam().settings);
  EXPECT_FALSE(layout.confidence);
  EXPECT_EQ(columns_of(layout), GetParam().columns);
  EXPECT_EQ(layout.columns.size(), layout.num_variables);
}
INSTANTIATE_TEST_SUITE_P(Table, SampledFactsOf, testing::ValuesIn(kFacts), ByRule());

TEST(SampledFactsDialect, SaysHowTheTableIsWritten) {
  DetectSettings settings = delimited_by(u";");
  settings.options.comment_style = {u"%"};
  const std::u16string text =
      u"a;b\r\n% a note\r\n1,5; \"x \"\"y\"\"\"\r\n\"2,5\n\"; u\r\n-; z\r\n3,5; w\n";
  const Layout layout = detect_layout(text, settings);
  const TableDialect& dialect = layout.dialect;
  EXPECT_EQ(dialect.delimiters, Texts{u";"});
  EXPECT_EQ(dialect.quote, u'"');
  EXPECT_EQ(dialect.escape, Escape::doubled);
  EXPECT_TRUE(dialect.is_escape_seen);
  EXPECT_TRUE(dialect.blanks_after_delimiters);
  EXPECT_EQ(dialect.comment_prefix, u"%");
  EXPECT_EQ(dialect.decimal, u',');
  EXPECT_EQ(dialect.missing, (std::vector<MissingWord>{{u"-", 1}}));
  EXPECT_EQ(dialect.line_endings, (std::vector<LineEndingCount>{{u"\r\n", 5}, {u"\n", 1}}));
}

TEST(SampledFactsDialect, OfPlainTextsSaysNothingSpecial) {
  const Layout layout = detect_layout(u"a;b\n1;x\n2;y", delimited_by(u";"));
  EXPECT_EQ(layout.dialect.quote, std::nullopt);
  EXPECT_EQ(layout.dialect.escape, Escape::none);
  EXPECT_FALSE(layout.dialect.blanks_after_delimiters);
  EXPECT_EQ(layout.dialect.comment_prefix, u"");
  EXPECT_EQ(layout.dialect.line_endings, (std::vector<LineEndingCount>{{u"\n", 2}}));
}

// Nothing tells the line from those below: by their classes all columns are texts.
TEST(SampledFacts, LeaveOutALineThatMayHoldTheNames) {
  const Layout layout = detect_layout(u"a;b\n1,5;x\n2,5;y\n", delimited_by(u";"));
  ASSERT_EQ(layout.names_source, NamesSource::undecided);
  EXPECT_EQ(columns_of(layout), (std::vector<std::string>{"decimal dec=,", "text"}));
  EXPECT_EQ(layout.names_unique, (Texts{u"column_1", u"column_2"}));
}

TEST(SampledFacts, AreLeftOutOnRequest) {
  DetectSettings settings = cascade();
  settings.describe_columns = false;
  const Layout layout = detect_layout(u"a,b\n1,2\n3,4\n", settings);
  EXPECT_TRUE(layout.columns.empty());
  EXPECT_TRUE(layout.names_unique.empty());
  EXPECT_TRUE(layout.dialect.line_endings.empty());
}

TEST(SampledFacts, DoNotChangeTheAnswerOfTheCascade) {
  DetectSettings without = cascade();
  without.describe_columns = false;
  const std::u16string_view text = u"report\n\nday,n\n1.1.2024,5\n2.1.2024,x\n3.1.2024,6\n";
  const Layout a = detect_layout(text, without);
  const Layout b = detect_layout(text, cascade());
  EXPECT_EQ(dialect_of(a), dialect_of(b));
  EXPECT_EQ(a.header_lines, b.header_lines);
  EXPECT_EQ(a.classes, b.classes);
  EXPECT_EQ(a.names, b.names);
  EXPECT_EQ(a.num_variables, b.num_variables);
}

TEST(SampledFacts, ObeyGivenMarksAndMissingWords) {
  DetectSettings settings = cascade();
  settings.decimal = u',';
  settings.missing = {u"0"};
  const Layout layout = detect_layout(u"a;b\n1;1,234\n0;2,345\n2;3,456\n3;4,567\n", settings);
  EXPECT_EQ(columns_of(layout),
            (std::vector<std::string>{"integer dec=, missing=0*1", "decimal dec=,"}));
}

class WideTable : public testing::TestWithParam<Judge> {};
TEST_P(WideTable, HasEachColumnUpToTheLimitDescribed) {
  DetectSettings settings;
  settings.judge = GetParam();
  const auto columns_in = [&](std::size_t columns) {
    std::u16string line = u"7";
    for (std::size_t c = 1; c < columns; ++c) line += u",7";
    line += u'\n';
    return detect_layout(line + line + line, settings).columns;
  };
  const std::vector<ColumnFacts> most = columns_in(kMostColumnsDescribed);
  ASSERT_EQ(most.size(), kMostColumnsDescribed);
  EXPECT_EQ(most.back().kind, ColumnKind::integer);
  EXPECT_EQ(most.back().num_cells, 3U);
  EXPECT_EQ(columns_in(kMostColumnsDescribed + 1).size(), kMostColumnsDescribed);
}
INSTANTIATE_TEST_SUITE_P(Judges, WideTable, testing::Values(Judge::assessment, Judge::cascade));

}  // namespace
}  // namespace textio::standalone
