#include <vltextstream/assessment/rest_of_line.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;

struct RestCase {
  const char* rule;
  std::u16string above;
  std::vector<std::u16string> lines;  // twelve of them in turn
  std::size_t cells;
};
std::ostream& operator<<(std::ostream& out, const RestCase& row) { return out << row.rule; }

const RestCase kNamesCases[] = {
    {"NamesAboveProcesses",
     u"PID TTY TIME COMMAND\n",
     {u"1 ? 0:01 init", u"22 pts/0 1:10 vim my notes", u"4711 ? 9:59 cron -f"},
     4},
    {"LinesAboveTheNames",
     u"up 3 days, 2 users\n\nPID USER COMMAND\n",
     {u"1 root init", u"22 ann vim my notes", u"4711 root cron -f"},
     3},
    {"FewerPiecesThanNames", u"PID TTY TIME COMMAND\n", {u"1 ?", u"22 ? 0:01", u"7 ? 1:00 a b"}, 0},
    {"NoValuesBelow",
     u"who does what\n",
     {u"ann cooks", u"bob eats soup", u"eve eats more soup"},
     0},
    {"TwoNames", u"size name\n", {u"12 a b", u"7 c", u"9 d e f"}, 0},
    {"NamesTwice", u"id text text\n", {u"1 a b", u"2 c d e", u"3 f g h i"}, 0},
    {"TextInTheMiddle", u"id name age\n", {u"1 ann lee 40", u"2 bob 50", u"3 eve van dyk 60"}, 0},
};

const RestCase kColumnsCases[] = {
    {"Log",
     u"",
     {u"2024-05-01 10:15:02 INFO ready", u"2024-05-01 10:15:09 ERROR out of memory",
      u"2024-05-01 10:17:30 INFO lease of 10.0.0.4 renewed"},
     3},
    {"LogWithBrackets",
     u"",
     {u"10:15:02,113 WARN [pool-1] retry", u"10:15:09,500 INFO [main] job 7 is done",
      u"10:17:30,007 WARN [pool-12] disk is full"},
     4},
    {"LogWithParentheses",
     u"",
     {u"10:15:02 (main) job 7 is done", u"10:16:09 (pool) retry", u"10:17:30 (io) disk is full"},
     3},
    {"Labels",
     u"",
     {u"Jun 1 10:15:02 gate sshd[81]: closed", u"Jun 1 10:16:02 gate kernel: out of memory",
      u"Jun 2 11:15:02 gate cron[7]: job is late"},
     6},
    {"Files",
     u"total 96\n",
     {u"-rw-r--r-- 1 ann users 4096 Mar 3 10:15 notes",
      u"drwxr-x--- 12 root root 12 Apr 4 2021 a b",
      u"-rwxr-xr-x 1 ann users 7 Mar 3 09:00 my own file"},
     9},
    {"CodesOfOneLength", u"", {u"4f1a02c typo", u"a0b9c81 add a test", u"0c81f2e merge it all"}, 2},
    {"MarksForMissingValues",
     u"",
     {u"10.0.0.4 - 12 get the page", u"10.0.0.77 - 7 put", u"192.168.7.1 - - post it now"},
     4},
    {"Times", u"", {u"08:00 Breakfast", u"09:30 Tour of the town", u"12:15 Lunch, at last"}, 2},
    {"Crontab",
     u"",
     {u"0 5 * * 1 backup --all", u"30 22 1 * * sync", u"15 3 * 6 5 find /tmp -delete"},
     6},

    {"NumbersBeforeText", u"", {u"12 Mill Road", u"7 Hill", u"110 Old Church Lane"}, 0},
    {"WordsBeforeText", u"", {u"OPEN call", u"DONE pay the rent", u"OPEN mend the door"}, 0},
    {"Labelled",
     u"",
     {u"HAMLET: To be", u"OPHELIA: Good my lord,", u"HAMLET: I humbly thank you"},
     0},
    {"Assignments", u"", {u"a = 1", u"b = two words", u"c = some more words"}, 0},
    {"Numbers", u"", {u"1 2 3", u"4 5", u"6 7 8 9"}, 0},
    {"Prose", u"", {u"It was a dark night, and", u"nobody saw", u"who came up the hill"}, 0},
    {"EquallyManyPieces",
     u"",
     {u"2024-05-01 10:15:02 INFO ready now", u"2024-05-01 10:15:09 ERROR no memory"},
     0},
    {"SeparatorsAtTheEndsOfPieces",
     u"",
     {u"2024-05-01, 12, ready", u"2024-05-02, 7, out of memory", u"2024-05-03, 9, at last ready"},
     0},
};

class CellsWithRest : public testing::TestWithParam<RestCase> {};
TEST_P(CellsWithRest, AreAsManyAs) {
  std::u16string text = GetParam().above;
  for (std::size_t k = 0; k < 12; ++k)
    text += GetParam().lines[k % GetParam().lines.size()] + u'\n';
  const Sample sample(text);
  EXPECT_EQ(cells_with_rest(sample.lines()), GetParam().cells);
}
INSTANTIATE_TEST_SUITE_P(Names, CellsWithRest, testing::ValuesIn(kNamesCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Columns, CellsWithRest, testing::ValuesIn(kColumnsCases), ByRule());

TEST(CellsWithRestOfFewLines, NeedThreeBelowNamesOrEight) {
  const auto cells = [](std::u16string_view text) {
    const Sample sample(text);
    return cells_with_rest(sample.lines());
  };
  const std::u16string names = u"pid time command\n";
  EXPECT_EQ(cells(names + u"1 0:01 a b\n2 0:02 c\n"), 0U);
  EXPECT_EQ(cells(names + u"1 0:01 a b\n2 0:02 c\n3 0:03 d\n"), 3U);
  std::u16string log;
  for (int k = 0; k < 7; ++k) log += k % 2 == 0 ? u"10:15 one two\n" : u"10:16 one\n";
  EXPECT_EQ(cells(log), 0U);
  EXPECT_EQ(cells(log + u"10:17 three\n"), 2U);
  EXPECT_EQ(cells(u""), 0U);
}

}  // namespace
}  // namespace textio::assessment
