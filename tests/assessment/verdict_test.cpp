#include <vltextstream/assessment/verdict.hpp>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/weights.hpp>

#include "assessment/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::kAllLines;
using testing_support::readable;
using testing_support::shown;

// "3 by ,": columns and separator, with or without a frame; "3 by blanks", aligned or not; "one",
// "none".
std::string answer_of(const Verdict& verdict) {
  if (verdict.hypotheses.empty()) return "nothing";
  const Reading& reading = verdict.cut_of(verdict.winner()).reading;
  const std::string columns = std::to_string(verdict.winner().table.columns);
  if (reading.delimiter == u" ") return columns + " by blanks";
  switch (reading.form) {
    case Form::delimited:
    case Form::framed:
      return columns + " by " + readable(reading.delimiter);
    case Form::runs:
    case Form::gaps:
      return columns + " by blanks";
    case Form::fields:
      return columns + " by width";
    case Form::one:
      return "one";
    case Form::none:
      return "none";
  }
  return "?";
}

// --- answers ---------------------------------------------------------------------------------

struct AnswerCase {
  const char* rule;
  std::u16string text;
  std::string answer;
};
std::ostream& operator<<(std::ostream& out, const AnswerCase& row) { return out << row.rule; }

std::u16string lines_of(std::size_t count, const std::vector<std::u16string>& lines) {
  std::u16string text;
  for (std::size_t k = 0; k < count; ++k) text += lines[k % lines.size()] + u'\n';
  return text;
}

const AnswerCase kRestCases[] = {
    {"Processes",
     u"  PID TTY      TIME COMMAND\n" +
         lines_of(12, {u"    1 ?        0:01 init", u"   22 pts/0    1:10 vim my notes",
                       u" 4711 ?        9:59 cron -f"}),
     "4 by blanks"},
    {"Log",
     lines_of(20, {u"2024-05-01 10:15:02 INFO ready", u"2024-05-01 10:15:09 ERROR out of memory",
                   u"2024-05-01 10:17:30 WARN lease of 10.0.0.4 is over",
                   u"2024-05-01 10:17:31 INFO user ann logged in"}),
     "3 by blanks"},
    {"Records",
     lines_of(20,
              {u"004711MILLER JOHN   19840302000123EUR", u"004712LEE ANN       19790131004567USD",
               u"004799VON BERG OTTO 20010509000009EUR"}),
     "4 by width"},
};

const AnswerCase kDelimitedCases[] = {
    {"Commas",
     u"station,date,level\nnorth,2024-03-01,3.5\nsouth,2024-03-02,4.25\neast,2024-03-03,2.75\n",
     "3 by ,"},
    {"Semicolons", u"name;age;city\nann;31;rome\nbob;45;oslo\ncarl;28;bern\n", "3 by ;"},
    {"SemicolonsAndDecimalCommas", u"x;y;z\n1,5;2,25;3,75\n4,5;5,25;6,75\n7,5;8,25;9,75\n",
     "3 by ;"},
    {"Tabs", u"name\tage\tcity\nann\t31\trome\nbob\t45\toslo\ncarl\t28\tbern\n", "3 by \\u0009"},
    {"TabsAndCommasInTexts",
     u"id\tnote\tcount\n1\tred, green\t10\n2\tblue, white, black\t20\n3\tyellow\t30\n",
     "3 by \\u0009"},
    {"Bars", u"name|age|city\nann|31|rome\nbob|45|oslo\ncarl|28|bern\n", "3 by |"},
    {"Colons",
     u"ann:x:1001:100:/home/ann:/bin/sh\nbob:x:1002:100:/home/bob:/bin/sh\n"
     u"carl:x:1003:100:/home/carl:/bin/sh\ndora:x:1004:100:/home/dora:/bin/sh\n",
     "6 by :"},
    {"SingleBlanks", u"12 3.5 7\n8 14.25 131\n1024 6.5 9\n77 1.125 5\n", "3 by blanks"},
    {"Carets", u"name^age^city\nann^31^rome\nbob^45^oslo\ncarl^28^bern\n", "3 by ^"},
    {"Tildes", u"name~age~city\nann~31~rome\nbob~45~oslo\ncarl~28~bern\n", "3 by ~"},
    {"SectionSigns", u"name\u00A7age\u00A7city\nann\u00A731\u00A7rome\nbob\u00A745\u00A7oslo\n",
     "3 by \\u00A7"},
    {"UnitSeparators",
     u"name\x1F"
     u"age\x1F"
     u"city\nann\x1F"
     u"31\x1F"
     u"rome\nbob\x1F"
     u"45\x1F"
     u"oslo\n",
     "3 by \\u001F"},
    {"TwoBars", u"name||age||city\nann||31||rome\nbob||45||oslo\ncarl||28||bern\n", "3 by ||"},
    {"MarkOfThreeSigns", u"name~|~age~|~city\nann~|~31~|~rome\nbob~|~45~|~oslo\n", "3 by ~|~"},

    {"CommaAndBlank", u"name, age, city\nann, 31, rome\nbob, 45, oslo\ncarl, 28, bern\n", "3 by ,"},
    {"TimesBetweenCommas", u"time,level\n10:00:00,3\n10:05:00,4\n10:10:00,6\n", "2 by ,"},
    {"DatesBetweenSemicolons", u"day;level\n01/02/2024;3\n02/02/2024;4\n03/02/2024;6\n", "2 by ;"},
    {"EmptyCells", u"a,b,c,d\n1,,3,4\n,6,7,8\n9,10,,12\n13,14,15,\n", "4 by ,"},
    {"NumbersOnly", u"1.5,2.5,3.5\n4.5,5.5,6.5\n7.5,8.5,9.5\n", "3 by ,"},
    {"ManyColumns",
     u"a,b,c,d,e,f,g,h,i,j,k,l\n1,2,3,4,5,6,7,8,9,10,11,12\n2,3,4,5,6,7,8,9,10,11,12,13\n",
     "12 by ,"},
    {"OtherAlphabets",
     u"\u540D\u524D,\u5E74\u9F62\n\u592A\u90CE,31\n\u82B1\u5B50,45\n\u6B21\u90CE,28\n", "2 by ,"},
    {"LineEndingsOfTwoUnits", u"name,age,city\r\nann,31,rome\r\nbob,45,oslo\r\n", "3 by ,"},
    {"LineEndingsOfOneReturn", u"name,age,city\rann,31,rome\rbob,45,oslo\r", "3 by ,"},
};

const AnswerCase kQuotedCases[] = {
    {"CommasInQuotes",
     u"\"name\",\"city\"\n\"Lee, Ann\",\"Rome\"\n\"Kay, Bob\",\"Oslo\"\n\"Day, Carl\",\"Bern\"\n",
     "2 by ,"},
    {"SomeCellsInQuotes", u"name,note,age\nann,\"a, b\",31\nbob,c,45\ncarl,\"d, e, f\",28\n",
     "3 by ,"},
    {"LinesInQuotes",
     u"id,note,age\n1,\"first line\nsecond line\",31\n2,\"one\n\nthree\",45\n3,short,28\n",
     "3 by ,"},
    {"DoubledQuotes", u"id,note\n1,\"say \"\"no\"\", then go\"\n2,\"a \"\"b\"\", c\"\n3,d\n",
     "2 by ,"},
    {"SingleQuotes", u"'a,1';'b'\n'c,2';'d'\n'e,3';'f'\n", "2 by ;"},
    {"EscapedQuotes", u"id;note\n1;\"say \\\"no\\\"; then go\"\n2;\"a \\\"b\\\"; c\"\n3;\"d\"\n",
     "2 by ;"},
};

const AnswerCase kFramedCases[] = {
    {"BarsAndARule",
     u"| name | age | city |\n|------|----:|------|\n| ann | 31 | rome |\n| bob | 45 | oslo |\n",
     "3 by |"},
    {"Grid",
     u"+------+-----+\n| name | age |\n+------+-----+\n| ann  |  31 |\n| bob  |  45 |\n"
     u"+------+-----+\n",
     "2 by |"},
    {"Box",
     u"\u250C\u2500\u2500\u2500\u252C\u2500\u2500\u2510\n\u2502ann\u250231\u2502\n"
     u"\u2502bob\u250245\u2502\n\u2502eve\u250228\u2502\n"
     u"\u2514\u2500\u2500\u2500\u2534\u2500\u2500\u2518\n",
     "2 by \\u2502"},
};

const AnswerCase kAlignedCases[] = {
    {"RightAlignedNumbers", u"    x     y\n    1    22\n  333     4\n   55   666\n", "2 by blanks"},
    {"TextsWithBlanks",
     u"name          city            age\nann lee       new york         31\n"
     u"bob kay       oslo             45\ncarl von day  san francisco    28\n",
     "3 by blanks"},
    {"RuleBelowTheNames", u"name    age\n------  ---\nann      31\nbob      45\ncarl     28\n",
     "2 by blanks"},
    {"LeftAlignedWords",
     u"item      color     size\napple     red       small\nmelon     green     large\n"
     u"grape     blue      tiny\n",
     "3 by blanks"},
};

const AnswerCase kOtherCases[] = {
    {"Numbers", u"12\n7\n105\n33\n8\n", "one"},
    {"Words", u"apple\nmelon\ngrape\nplum\n", "one"},
    {"Dates", u"2024-03-01\n2024-03-02\n2024-03-05\n2024-04-01\n", "one"},
    {"Times", u"10:00\n10:05\n10:10\n10:20\n", "one"},
    {"Addresses", u"https://example.org/a\nhttps://example.org/b/c\nhttps://example.org/d\n",
     "one"},
    {"OneWord", u"apple", "one"},

    {"Prose",
     u"It was a dark and stormy night, and the rain fell in torrents.\n"
     u"The wind swept up the streets and rattled along the housetops.\n"
     u"Nobody was out, and the lamps struggled against the darkness.\n",
     "none"},
    {"SourceCode",
     u"#include <vector>\n\nint sum(const std::vector<int>& all) {\n  int total = 0;\n"
     u"  for (int one : all) {\n    total += one;\n  }\n  return total;\n}\n",
     "none"},
    {"Brackets",
     u"{\n  \"name\": \"ann\",\n  \"age\": 31,\n  \"tags\": [\n    \"a\",\n    \"b\"\n  ]\n}\n",
     "none"},
    {"Tags",
     u"<list>\n  <item>\n    <name>ann</name>\n  </item>\n  <item>\n    <name>bob</name>\n"
     u"  </item>\n</list>\n",
     "none"},

    {"NoText", u"", "nothing"},
    {"BlankLines", u"\n  \n\t\n", "nothing"},
};

const AnswerCase kSurroundedCases[] = {
    {"TitleAbove",
     u"Results of March\n\nstation,day,level\nnorth,1,3.5\nsouth,2,4.25\neast,3,2.75\nwest,4,1\n",
     "3 by ,"},
    {"CommentsAbove",
     u"# source: north station\n# units: m\nstation,day,level\nnorth,1,3.5\nsouth,2,4.25\n",
     "3 by ,"},
    {"CommentBetween", u"day,level\n1,3.5\n# gauge cleaned\n2,4.25\n3,2.75\n4,5\n", "2 by ,"},
    {"TextBelow", u"station,day,level\nnorth,1,3.5\nsouth,2,4.25\neast,3,2.75\n\nEnd of file\n",
     "3 by ,"},
};

class Answer : public testing::TestWithParam<AnswerCase> {};
TEST_P(Answer, IsBeyondDoubt) {
  const ExactText text(GetParam().text);
  const Verdict verdict = judge(text.view(), 100);
  EXPECT_EQ(answer_of(verdict), GetParam().answer);
}
INSTANTIATE_TEST_SUITE_P(Rest, Answer, testing::ValuesIn(kRestCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Delimited, Answer, testing::ValuesIn(kDelimitedCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Quoted, Answer, testing::ValuesIn(kQuotedCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Framed, Answer, testing::ValuesIn(kFramedCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Aligned, Answer, testing::ValuesIn(kAlignedCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Others, Answer, testing::ValuesIn(kOtherCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Surrounded, Answer, testing::ValuesIn(kSurroundedCases), ByRule());

TEST(JudgeExample, IsTheOneOfTheHeader) {
  const Verdict verdict = judge(u"a;b\n1,5;2\n2,5;3\n", 100);
  EXPECT_EQ(verdict.cut_of(verdict.winner()).reading.delimiter, u";");
  EXPECT_GT(verdict.confidence, 0.9);
}

TEST(JudgeFirstLines, SeesNoOthers) {
  const std::u16string text = u"a,b\n1,2\n3,4\nx;y;z\nx;y;z\nx;y;z\n";
  const Verdict verdict = judge(text, 3);
  EXPECT_EQ(verdict.lines.size(), 3U);
  EXPECT_TRUE(verdict.lines.has_more());
  EXPECT_EQ(answer_of(verdict), "2 by ,");
}

TEST(JudgeNothing, HasNoHypothesesAndNoRivals) {
  const Verdict verdict = judge(u"\n\n", 100);
  EXPECT_TRUE(verdict.hypotheses.empty());
  EXPECT_EQ(verdict.confidence, 0);
  EXPECT_TRUE(rivals_of(verdict, 3).empty());
}

// --- probabilities ---------------------------------------------------------------------------

// The score is the logarithm of the odds: the sum of what each piece of evidence is worth.
TEST(JudgedHypotheses, HaveTheScoreOfTheirEvidence) {
  const Verdict verdict = judge(u"a;b,c\n1,5;2\n2,5;3\n", 100);
  ASSERT_GT(verdict.hypotheses.size(), 3U);
  double sum = 0;
  for (const Hypothesis& each : verdict.hypotheses) sum += std::exp(each.score);
  for (const Hypothesis& each : verdict.hypotheses) {
    double score = 0;
    for (std::size_t k = 0; k < kNumEvidence; ++k) score += each.amounts[k] * kWeights[k];
    EXPECT_NEAR(each.score, score, 1e-9);
    EXPECT_NEAR(each.probability, std::exp(each.score) / sum, 1e-9);
  }
}

// --- the same answer -------------------------------------------------------------------------

// Hypotheses without evidence, of the given readings, numbers of columns and probabilities.
struct Given {
  Reading reading;
  std::size_t columns;
  double probability = 0;
};
Verdict verdict_of(const std::vector<Given>& given) {
  Verdict verdict{sample_lines(u"", 1), {}, {}, 0, 0, {}};
  for (const Given& each : given) {
    Hypothesis hypothesis;
    hypothesis.cut = verdict.cuts.size();
    hypothesis.table.columns = each.columns;
    hypothesis.probability = each.probability;
    verdict.cuts.push_back({each.reading, Records(u"")});
    verdict.hypotheses.push_back(hypothesis);
  }
  return verdict;
}

const Reading kComma = {Form::delimited, u","};
const Reading kCommaQuoted = {Form::delimited, u",", u'"'};
const Reading kSemicolon = {Form::delimited, u";"};
const Reading kBar = {Form::delimited, u"|"};
const Reading kFramed = {Form::framed, u"|"};
const Reading kBlank = {Form::delimited, u" "};
const Reading kRuns = {Form::runs, u" ", 0, 0, 1};
const Reading kWideRuns = {Form::runs, u" ", 0, 0, 2};
const Reading kGaps = {Form::gaps, u" ", 0, 0, 1};
const Reading kOne = {Form::one};
const Reading kOneQuoted = {Form::one, u"", u'"'};
const Reading kNone = {Form::none};

struct SameCase {
  const char* rule;
  Given a;
  Given b;
  bool is_same;
};
std::ostream& operator<<(std::ostream& out, const SameCase& row) { return out << row.rule; }

const SameCase kSameCases[] = {
    {"TheSame", {kComma, 2}, {kComma, 2}, true},
    {"OtherQuotes", {kComma, 2}, {kCommaQuoted, 2}, true},
    {"OtherColumns", {kComma, 2}, {kComma, 3}, false},
    {"OtherSeparator", {kComma, 2}, {kSemicolon, 2}, false},
    {"BarWithAndWithoutAFrame", {kBar, 2}, {kFramed, 2}, true},
    {"BarWithAFrameAndComma", {kComma, 2}, {kFramed, 2}, false},
    {"RunsAndGaps", {kRuns, 2}, {kGaps, 2}, true},
    {"OtherRuns", {kRuns, 2}, {kWideRuns, 2}, true},
    {"RunsAndSingleBlanks", {kRuns, 2}, {kBlank, 2}, true},
    {"RunsOfOtherColumns", {kRuns, 2}, {kGaps, 3}, false},
    {"RunsAndComma", {kRuns, 2}, {kComma, 2}, false},
    {"SingleColumnWithQuotes", {kOne, 1}, {kOneQuoted, 1}, true},
    {"SingleColumnAndNoTable", {kOne, 1}, {kNone, 1}, false},
};

class IsSameAnswer : public testing::TestWithParam<SameCase> {};
TEST_P(IsSameAnswer, BySeparatorAndColumns) {
  const Verdict verdict = verdict_of({GetParam().a, GetParam().b});
  EXPECT_EQ(is_same_answer(verdict, verdict.hypotheses[0], verdict.hypotheses[1]),
            GetParam().is_same);
  EXPECT_EQ(is_same_answer(verdict, verdict.hypotheses[1], verdict.hypotheses[0]),
            GetParam().is_same);
}
INSTANTIATE_TEST_SUITE_P(Table, IsSameAnswer, testing::ValuesIn(kSameCases), ByRule());

// --- rivals ----------------------------------------------------------------------------------

TEST(RivalsOf, AreTheOtherAnswersByTheirSums) {
  Verdict verdict = verdict_of({{kComma, 2, 0.125},
                                {kSemicolon, 2, 0.2},
                                {kCommaQuoted, 2, 0.3},
                                {kRuns, 3, 0.15},
                                {kGaps, 3, 0.1},
                                {kOne, 1, 0.125}});
  verdict.best = 2;
  // The aligned columns have 0.25 together, their first one the most of it.
  const std::vector<Rival> rivals = rivals_of(verdict, 10);
  ASSERT_EQ(rivals.size(), 3U);
  EXPECT_EQ(rivals[0].hypothesis, 3U);
  EXPECT_DOUBLE_EQ(rivals[0].probability, 0.25);
  EXPECT_EQ(rivals[1].hypothesis, 1U);
  EXPECT_DOUBLE_EQ(rivals[1].probability, 0.2);
  EXPECT_EQ(rivals[2].hypothesis, 5U);
  EXPECT_DOUBLE_EQ(rivals[2].probability, 0.125);
}

TEST(RivalsOf, AreAsManyAsAskedFor) {
  Verdict verdict =
      verdict_of({{kComma, 2, 0.5}, {kSemicolon, 2, 0.1}, {kBar, 2, 0.25}, {kOne, 1, 0.15}});
  const std::vector<Rival> rivals = rivals_of(verdict, 2);
  ASSERT_EQ(rivals.size(), 2U);
  EXPECT_EQ(rivals[0].hypothesis, 2U);
  EXPECT_EQ(rivals[1].hypothesis, 3U);
  EXPECT_TRUE(rivals_of(verdict, 0).empty());
}

TEST(RivalsOf, AreNoneOfASingleAnswer) {
  EXPECT_TRUE(rivals_of(verdict_of({{kComma, 2, 0.5}, {kCommaQuoted, 2, 0.5}}), 3).empty());
}

// --- names -----------------------------------------------------------------------------------

struct NamesCase {
  const char* rule;
  std::u16string text;
  bool has_names;
  std::size_t line;
  std::string texts;  // each before a slash
  bool is_above_table = false;
};
std::ostream& operator<<(std::ostream& out, const NamesCase& row) { return out << row.rule; }

const NamesCase kNamesCases[] = {
    {"WordsAboveNumbers", u"day,level\n1,3.5\n2,4.25\n3,2.75\n", true, 0, "day/level/"},
    {"BlanksAroundTheNames", u"day , level\n1 , 3.5\n2 , 4.25\n3 , 2.75\n", true, 0, "day/level/"},
    {"NamesInQuotes", u"\"day\",\"level\"\n1,3.5\n2,4.25\n3,2.75\n", true, 0, "day/level/"},
    {"BelowATitle", u"Results\n\nday,level,mark\n1,3.5,a\n2,4.25,b\n3,2.75,c\n", true, 2,
     "day/level/mark/"},
    {"NumbersOnly", u"1,2\n3,4\n5,6\n7,8\n", false, 0, "1/2/"},
    {"DatesAndNumbersOnly", u"2024-03-01,2\n2024-03-02,4\n2024-03-03,6\n", false, 0,
     "2024-03-01/2/"},
    {"CommentWithNames", u"# day level\n1 3.5\n2 4.25\n3 2.75\n", true, 0, "day/level/", true},
    // The comment has as many cells as the table, so it is a record of it.
    {"CommentWithNamesBetweenCommas", u"# day,level\n1,3.5\n2,4.25\n3,2.75\n", true, 0,
     "day/level/"},
    {"CommentWithoutNames", u"# all of these are heights in metres\n1,3.5\n2,4.25\n3,2.75\n", false,
     1, "1/3.5/"},
    {"AlignedNames", u"name    age\nann      31\nbob      45\ncarl     28\n", true, 0, "name/age/"},
    {"OneColumn", u"level\n1\n2\n3\n", true, 0, "level/"},
};

class JudgedNames : public testing::TestWithParam<NamesCase> {};
TEST_P(JudgedNames, AreFoundWhereTheyAre) {
  const ExactText text(GetParam().text);
  const NamesVerdict names = judge(text.view(), 100).names;
  std::string texts;
  for (const std::u16string_view name : names.texts) texts += readable(name) + '/';
  EXPECT_EQ(names.probability > 0.5, GetParam().has_names) << names.probability;
  EXPECT_EQ(names.line, GetParam().line);
  EXPECT_EQ(texts, GetParam().texts);
  EXPECT_EQ(names.is_above_table, GetParam().is_above_table);
}
INSTANTIATE_TEST_SUITE_P(Table, JudgedNames, testing::ValuesIn(kNamesCases), ByRule());

// --- long lines ----------------------------------------------------------------------------------

// The third line goes on after what is judged.
TEST(JudgeLongLines, LeavesOutTheOneThatIsCut) {
  std::u16string text;
  for (int i = 0; i < 4; ++i) text += std::u16string(100'000, u'x') + u",1\n";
  const ExactText exact(text);
  const Verdict verdict = judge(exact.view(), 100);
  EXPECT_EQ(verdict.winner().table.columns, 2U);
  EXPECT_EQ(verdict.lines.size(), 4U);
}

}  // namespace
}  // namespace textio::assessment
