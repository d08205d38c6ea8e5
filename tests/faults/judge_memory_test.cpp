// The judge, and the descriptions of columns, when memory runs out: tables of each kind of layout, and columns of
// each kind.
#include <cstddef>
#include <memory>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/sentences.hpp>
#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/columns/table_formats.hpp>
#include "assessment/shown.hpp"
#include "columns/shown.hpp"
#include "faults/failing_memory.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using assessment::Form;
using assessment::Given;
using assessment::Hypothesis;
using assessment::Verdict;
using columns::ColumnDescription;
using columns::ColumnKind;
using columns::TableColumn;
using testing_support::Attempt;
using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::expect_to_survive;
using testing_support::expect_to_survive_failing_memory;
using testing_support::FaultKind;
using testing_support::readable;
using testing_support::shown;

// --- judging -------------------------------------------------------------------------------------

struct JudgeCase {
  const char* rule;
  std::u16string text;
  Form form;
  std::size_t columns;
  Given given = {};
};
std::ostream& operator<<(std::ostream& out, const JudgeCase& row) { return out << row.rule; }

const JudgeCase kJudgeCases[] = {
    {"QuotedCells",
     u"name;note\n\"ash\";\"x;y\"\n\"bath\";\"it \"\"is\"\"\"\n\"cove\";\"two\nlines\"\n",
     Form::delimited, 2},
    {"EscapedQuotes", u"name,note\n\"ash\",\"a \\\"b\\\" c\"\n\"bath\",\"d, e\"\n", Form::delimited,
     2},
    {"Frame", u"+---+---+\n| a | b |\n+===+===+\n| 1 | 2 |\n| 3 | 4 |\n+---+---+\n", Form::framed,
     2},
    {"ColumnsThatTouch",
     u"0123MILLER0099X\n0124LEE   0100Y\n0125OTT   0101Z\n0126KAY   0102X\n0127MILLER0103Y\n"
     u"0128LEE   0104Z\n0129OTT   0105X\n0130KAY   0106Y\n0131MILLER0107Z\n0132LEE   0108X\n",
     Form::fields, 4},
    {"Footer", u"day,rain\n1,20\n2,30\n3,40\n4,50\nTotal,140\n\nWithout guarantee.\n",
     Form::delimited, 2},
    {"GivenWidths", u"ab12\ncd34\nef56\n", Form::gaps, 2,
     [] {
       Given given;
       given.widths = {2, 2};
       return given;
     }()},
    {"GivenDelimitersAndLines", u"notes of today\nx::y\nm::s\n1::2\n3;4\n", Form::delimited, 2,
     [] {
       Given given;
       given.delimiters = {{u"::", u";"}};
       given.quote = u'\'';
       given.comment_prefix = u"a comment that is longer than a short string";
       given.header_lines = 3;
       given.names_line = 2;
       given.units_line = 3;
       return given;
     }()},
    {"FirstLineThatNamesTheDelimiter", u"sep=;\na;b\n1,5;2\n2,5;3\n", Form::delimited, 2},
    {"RunningText",
     u"It was late, and the rain went on.\nNobody came to the door that night.\n"
     u"The house, as they said, had been empty for years.\n",
     Form::none, 1},
};

void describe(const Verdict& verdict, std::ostream& out) {
  out << std::hexfloat << verdict.best << ' ' << verdict.confidence << ' '
      << verdict.names.probability << ' ' << verdict.names.line;
  for (const std::u16string_view name : verdict.names.texts) out << '|' << readable(name);
  for (const Hypothesis& each : verdict.hypotheses) {
    const auto& cut = verdict.cut_of(each);
    out << '\n'
        << shown(cut.reading) << ' ' << each.table.columns << ' ' << each.score << ' '
        << each.probability << ' ' << deciding_sentence(verdict, each) << ' ' << shown(cut.records);
  }
}

class Judging : public Attempt {
 public:
  explicit Judging(const JudgeCase& row) : text_(row.text), given_(row.given) {}

  void call() override { verdict_ = assessment::judge(text_.view(), 100, given_); }
  std::string answer() override {
    std::ostringstream out;
    describe(*verdict_, out);
    return out.str();
  }
  const Verdict& verdict() const { return *verdict_; }

 private:
  ExactText text_;
  Given given_;
  std::optional<Verdict> verdict_;
};

class JudgeMemory : public testing::TestWithParam<JudgeCase> {};

TEST_P(JudgeMemory, RunsOut) {
  expect_to_survive([] { return std::make_unique<Judging>(GetParam()); }, FaultKind::single);
}

TEST_P(JudgeMemory, IsThatOfTheFormInTheTable) {
  Judging judging(GetParam());
  judging.call();
  const Verdict& verdict = judging.verdict();
  EXPECT_EQ(verdict.cut_of(verdict.winner()).reading.form, GetParam().form);
  EXPECT_EQ(verdict.winner().table.columns, GetParam().columns);
}

INSTANTIATE_TEST_SUITE_P(Table, JudgeMemory, testing::ValuesIn(kJudgeCases), ByRule());

// --- columns -------------------------------------------------------------------------------------

using Cells = std::vector<std::u16string_view>;

struct ColumnsCase {
  const char* rule;
  std::vector<Cells> columns;
  std::vector<ColumnKind> kinds;
};
std::ostream& operator<<(std::ostream& out, const ColumnsCase& row) { return out << row.rule; }

const ColumnsCase kColumnsCases[] = {
    {"DoubtfulMarksAndSureOnes",
     {{u"1.234", u"5.678", u"9.012"}, {u"1,5", u"22,25", u"3,75"}},
     {ColumnKind::integer, ColumnKind::decimal}},
    {"MoneyWithMissingWords",
     {{u"EUR 1.234,50", u"EUR 7,25", u"EUR 12,00", u"EUR 3,10", u"n/a"}},
     {ColumnKind::money}},
    {"DoubtfulDatesAndSureOnes",
     {{u"01/02/2024", u"03/04/2024", u"05/06/2024"}, {u"31/01/2024", u"28/02/2024", u"15/03/2024"}},
     {ColumnKind::date, ColumnKind::date}},
    {"DatesWithWords",
     {{u"31. Januar 2024", u"1. Februar 2024", u"2. M\u00E4rz 2024"}},
     {ColumnKind::date}},
    {"Booleans", {{u"yes", u"no", u"yes", u"no"}}, {ColumnKind::boolean}},
    {"TextsThatAreLong",
     {{u"a remark of this station, and no other remark is like it",
       u"another remark that is longer than a short string is",
       u"and a third remark that nobody has read until today"}},
     {ColumnKind::text}},
    {"Nothing", {{u"", u"", u""}}, {ColumnKind::empty}},
};

class Describing : public Attempt {
 public:
  explicit Describing(const ColumnsCase& row) {
    for (const Cells& cells : row.columns) {
      table_.push_back({cells, {}});
      table_.back().hints.missing = {u"a missing value that is longer than a short string"};
    }
  }

  void call() override { described_ = columns::describe_columns(table_); }
  std::string answer() override {
    std::ostringstream out;
    for (const ColumnDescription& column : described_) {
      out << column.kind << ' ' << column.num_empty << ' ' << column.num_missing << ' '
          << column.num_fitting << ' ' << column.number << ' ' << column.money << ' '
          << column.date;
      for (const auto& each : column.missing) out << ' ' << readable(each.word);
      for (const std::u16string& each : column.examples) out << ' ' << readable(each);
      out << '\n';
    }
    return out.str();
  }
  const std::vector<ColumnDescription>& described() const { return described_; }

 private:
  std::vector<TableColumn> table_;
  std::vector<ColumnDescription> described_;
};

class ColumnMemory : public testing::TestWithParam<ColumnsCase> {};

TEST_P(ColumnMemory, RunsOut) {
  expect_to_survive_failing_memory([] { return std::make_unique<Describing>(GetParam()); });
}

TEST_P(ColumnMemory, IsThatOfTheKindsInTheTable) {
  Describing describing(GetParam());
  describing.call();
  std::vector<ColumnKind> kinds;
  for (const ColumnDescription& column : describing.described()) kinds.push_back(column.kind);
  EXPECT_EQ(kinds, GetParam().kinds);
}

INSTANTIATE_TEST_SUITE_P(Table, ColumnMemory, testing::ValuesIn(kColumnsCases), ByRule());

}  // namespace
}  // namespace textio
