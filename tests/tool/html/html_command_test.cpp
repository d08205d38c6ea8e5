// The whole way: vltext FILE... --html OUT.
#include "tool/html/html_command.hpp"

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

#include "tool/html/file_section.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

const std::string kTable =
    "day,level [cm],note\n2024-01-01,131,good\n2024-01-02,142,bad\n2024-01-03,137,good\n";

CommandResult vltext(const std::vector<std::string>& arguments) {
  return run_command(VLTEXT_PROGRAM, arguments);
}

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::size_t num_files_in(const TempFolder& folder) {
  std::size_t count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
    ++count;
  return count;
}

// Three copies of a table are enough for the judge.
std::string page_of_text(const std::string& text, const std::vector<std::string>& options = {}) {
  const TempFolder folder;
  std::vector<std::string> arguments = {folder.file("t.csv", text), "--html", "-"};
  arguments.insert(arguments.end(), options.begin(), options.end());
  return vltext(arguments).out;
}

TEST(HtmlCommand, WritesAPage) {
  const TempFolder folder;
  const std::string out = folder.path_of("page.html");
  const CommandResult result = vltext({folder.file("gauge.csv", kTable), "--html", out});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.err, "");
  EXPECT_EQ(num_files_in(folder), 2U);
  const std::string page = content_of(out);
  EXPECT_THAT(page, testing::StartsWith("<!DOCTYPE html>\n"));
  EXPECT_THAT(page, testing::EndsWith("</html>\n"));
  EXPECT_THAT(page, HasSubstr("The table is <strong>delimited by comma</strong>, with 3 columns."));
  EXPECT_THAT(page, HasSubstr("The whole file was read: 4 lines, 3 rows."));
  EXPECT_THAT(page, HasSubstr("good</bdi> <span class=\"count\">2 times</span>"));
  EXPECT_THAT(page, HasSubstr("131 to 142, middle 137"));
  EXPECT_THAT(page, HasSubstr("The values are those of all 3 rows."));
  EXPECT_THAT(page, HasSubstr("Every line and every cell of the file fits."));
}

TEST(HtmlCommand, HasTheProgramsOfEmit) {
  const TempFolder folder;
  const std::string file = folder.file("gauge.csv", kTable);
  const std::string page = vltext({file, "--html", "-"}).out;
  const std::string program = vltext({file, "--emit", "vltext"}).out;
  ASSERT_THAT(program, HasSubstr("gauge.csv"));
  EXPECT_THAT(page, HasSubstr("<code id=\"file-1-vltext\">"));
  EXPECT_THAT(page, HasSubstr(program.substr(0, program.find_first_of("'\"<>&"))));
}

TEST(HtmlCommand, SaysWhatDoesNotFitInTheWholeFile) {
  std::string text = "id,level\n";
  for (int i = 0; i < 300; ++i) text += std::to_string(i) + "," + std::to_string(3 * i) + "\n";
  const std::string page = page_of_text(text + "oops,7\n301\n");
  EXPECT_THAT(page,
              HasSubstr("<li>Line 302, column 1 (<bdi>id</bdi>): a cell that does not fit what the "
                        "sample suggests for its column: <q><bdi>oops</bdi></q></li>"));
  EXPECT_THAT(page, HasSubstr("<li>Line 303: a row with fewer cells than there are columns:"));
  EXPECT_THAT(page,
              HasSubstr("The values are those of the 99 sampled rows, not of the whole file."));
  EXPECT_THAT(page, HasSubstr("0 to 98, middle 49"));
}

// Twenty bytes and eight are above the table.
TEST(HtmlCommand, AccountsForEveryLine) {
  std::string text = "Levels of the river\nby hand\n\nday;level\n";
  for (int i = 1; i <= 25; ++i)
    text += (i < 10 ? "0" : "") + std::to_string(i) + ".01.2024;13" + std::to_string(i) + "\n";
  const std::string page = page_of_text(text + "\n(25 rows)\n");
  EXPECT_THAT(page,
              HasSubstr("<th scope=\"row\">above the table</th><td class=\"number\">2</td><td "
                        "class=\"number\">28</td>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">blank</th><td class=\"number\">2</td><td "
                              "class=\"number\">2</td>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">names</th><td class=\"number\">1</td><td "
                              "class=\"number\">10</td>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">data</th><td class=\"number\">25</td>"));
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\">footer</th><td class=\"number\">1</td><td "
                              "class=\"number\">10</td>"));
}

struct AccountCase {
  const char* rule;
  std::string text;
  const char* fate;
  const char* lines_and_bytes;
};
std::ostream& operator<<(std::ostream& out, const AccountCase& row) { return out << row.rule; }

const std::string kWithUnits = "time,level\ns,cm\n# dry\n1.5,143\n2.5,147\n3.5,148\n";

const AccountCase kAccounts[] = {
    {"Units", kWithUnits, "units", "1</td><td class=\"number\">5<"},
    {"Comments", kWithUnits, "comments", "1</td><td class=\"number\">6<"},
    {"DataOfThreeLines", kWithUnits, "data", "3</td><td class=\"number\">24<"},
    {"All", kWithUnits, "all", "6</td><td class=\"number\">46<"},
    {"DrawnRules", "| id | n |\n|----|---|\n| 1 | 2 |\n| 3 | 4 |\n| 5 | 6 |\n", "drawn rules",
     "1</td><td class=\"number\">11<"},
};

class HtmlAccount : public testing::TestWithParam<AccountCase> {};
TEST_P(HtmlAccount, HasTheLinesAndBytes) {
  const AccountCase& row = GetParam();
  EXPECT_THAT(page_of_text(row.text),
              HasSubstr(std::string("<th scope=\"row\">") + row.fate +
                        "</th><td class=\"number\">" + row.lines_and_bytes));
}
INSTANTIATE_TEST_SUITE_P(Table, HtmlAccount, testing::ValuesIn(kAccounts), ByRule());

TEST(HtmlCommand, NamesBytesThatAreNoText) {
  EXPECT_THAT(page_of_text("id,n\n1,ab\xFF\n2,cd\n3,ef\n", {"--encoding", "UTF-8"}),
              HasSubstr("<li>Line 2: bytes that are not valid in the encoding"));
}

TEST(HtmlCommand, LeavesOutLongPrograms) {
  std::string text;
  for (int row = 0; row < 5; ++row) {
    for (int i = 0; i < 3000; ++i)
      text += (i > 0 ? "," : "") + (row == 0 ? "column " : std::string()) + std::to_string(i * row);
    text += '\n';
  }
  EXPECT_THAT(page_of_text(text),
              HasSubstr("<p>It is long: <code>vltext --emit pandas</code> prints it.</p>"));
}

TEST(HtmlCommand, NamesTheFirstOfManyOddities) {
  std::string text = "id,level\n";
  for (int i = 0; i < 300; ++i) text += std::to_string(i) + "," + std::to_string(3 * i) + "\n";
  for (int i = 0; i < 60; ++i) text += "7,8,9\n";
  const std::string page = page_of_text(text);
  EXPECT_THAT(page, HasSubstr("<li>Line 302: a row with more cells than there are columns"));
  EXPECT_THAT(page, HasSubstr("<p class=\"note\">And 10 more.</p>"));
}

TEST(HtmlCommand, SaysWhenItIsInDoubt) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", kTable);
  const CommandResult result = vltext({file, "--html", "-", "--strict", "100"});
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.out, HasSubstr(" sure of this: look at the first lines, and at the other "
                                    "answers."));
}

TEST(HtmlCommand, SaysWhatContradictsTheFile) {
  const TempFolder folder;
  const CommandResult result =
      vltext({folder.file("a.csv", kTable), "--html", "-", "--names-line", "9"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("a.csv: "));
}

TEST(HtmlCommand, ColumnsMayHaveNoNames) {
  EXPECT_THAT(page_of_text("1,2.5\n2,3.5\n3,4.5\n4,5.5\n"),
              HasSubstr("<th scope=\"row\"><bdi><em>no name</em></bdi></th>"));
}

TEST(HtmlCommand, NoPageIsLostUnnoticed) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", kTable);
  const CommandResult result =
      run_command("/bin/sh", {"-c", VLTEXT_PROGRAM " " + file + " --html - >/dev/full"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("No space left on device"));
}

TEST(HtmlCommand, SaysThatThereIsNoTable) {
  const std::string page =
      page_of_text("Dear reader,\n\nthis is a letter, not a table.\nGoodbye to you.\n");
  EXPECT_THAT(page, HasSubstr("No table was found:"));
  EXPECT_THAT(page, Not(HasSubstr("<table class=\"columns\">")));
  EXPECT_THAT(page, Not(HasSubstr("data-copies")));
}

TEST(HtmlCommand, WritesWhatItCan) {
  const TempFolder folder;
  const std::string lost = folder.path_of("lost.csv");
  const CommandResult result = vltext({lost, folder.file("a.csv", kTable), "--html", "-"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("lost.csv"));
  EXPECT_THAT(result.out, HasSubstr("Files that could not be read"));
  EXPECT_THAT(result.out, HasSubstr("<a href=\"#file-2\">"));
}

TEST(HtmlCommand, KeepsTheOldPageIfNothingCouldBeRead) {
  const TempFolder folder;
  const std::string out = folder.file("page.html", "old");
  EXPECT_EQ(vltext({folder.path_of("lost.csv"), "--html", out}).status, 2);
  EXPECT_EQ(content_of(out), "old");
  EXPECT_EQ(num_files_in(folder), 1U);
}

TEST(HtmlCommand, RefusesWhatCanBeReadOnce) {
  const CommandResult result = vltext({"/dev/null", "--html", "-"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("not a regular file"));
}

TEST(HtmlCommand, TakesTheFilesOfAFolder) {
  const TempFolder folder;
  folder.file("a.csv", kTable);
  folder.file("b.csv", kTable);
  EXPECT_THAT(vltext({folder.path(), "--html", "-"}).out, HasSubstr("<p>2 files: 1 group.</p>"));
}

TEST(HtmlCommand, DoesNotReplaceAnInput) {
  const TempFolder folder;
  const std::string file = folder.file("a.csv", kTable);
  const CommandResult result = vltext({file, "--html", file});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("would be replaced, and is an input"));
  EXPECT_EQ(content_of(file), kTable);
}

TEST(HtmlCommand, SaysWhereItCannotWrite) {
  const TempFolder folder;
  const std::string out = folder.path_of("missing/page.html");
  const CommandResult result = vltext({folder.file("a.csv", kTable), "--html", out});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("missing/page.html"));
}

struct UsageCase {
  const char* rule;
  std::vector<std::string> arguments;
  const char* complaint;
};
std::ostream& operator<<(std::ostream& out, const UsageCase& row) { return out << row.rule; }

const UsageCase kUsages[] = {
    {"NotWithJson",
     {"a", "--html", "x", "--json"},
     "--json, --jsonl and --emit print something else"},
    {"NotWithEmit",
     {"a", "--html", "x", "--emit", "pandas"},
     "--json, --jsonl and --emit print something else"},
    {"NotOfStandardInput", {"-", "--html", "x"}, "--html needs the paths of FILEs"},
    {"NotWithoutAPath", {"a", "--html="}, "--html needs a value: OUT"},
    {"AtTheEnd", {"a", "--html"}, "--html needs a value: OUT"},
    {"NotForMoreThanAThousand",
     [] {
       std::vector<std::string> arguments(1001, "a");
       arguments.insert(arguments.end(), {"--html", "x"});
       return arguments;
     }(),
     "--html takes at most 1000 FILEs"},
};

class HtmlUsage : public testing::TestWithParam<UsageCase> {};
TEST_P(HtmlUsage, IsRefused) {
  const CommandResult result = vltext(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr(GetParam().complaint));
}
INSTANTIATE_TEST_SUITE_P(Table, HtmlUsage, testing::ValuesIn(kUsages), ByRule());

// What a file may contain to become more than text; `shown` is what the page has for it.
struct HostileCase {
  const char* rule;
  std::string name;  // of a column, in quotes
  const char* shown;
};
std::ostream& operator<<(std::ostream& out, const HostileCase& row) { return out << row.rule; }

const HostileCase kHostile[] = {
    {"Script", "<script>alert(1)</script>", "&lt;script&gt;alert(1)&lt;/script&gt;"},
    {"EndOfTable", "</td></table>", "&lt;/td&gt;&lt;/table&gt;"},
    {"EndOfStyle", "</style>", "&lt;/style&gt;"},
    {"Attribute", "x' onload='y", "x&#39; onload=&#39;y"},
    {"Entity", "&lt;b&gt;", "&amp;lt;b&amp;gt;"},
    {"Comment", "<!--", "&lt;!--"},
    {"Override", "x\xE2\x80\xAEy", "x\xEF\xBF\xBDy"},
};

class HtmlOfHostile : public testing::TestWithParam<HostileCase> {};
TEST_P(HtmlOfHostile, IsTextEverywhere) {
  const std::string& name = GetParam().name;
  std::string text = "id,\"" + name + "\",n\n";
  for (int i = 0; i < 20; ++i) {
    text += std::to_string(i) + ",\"" + name + "\"," + std::to_string(i % 3) + "\n";
  }
  std::string page = page_of_text(text, {"--delimiter", ","});
  page.erase(0, page.find("<body"));  // what is above it has style sheets of its own
  EXPECT_THAT(page, HasSubstr(std::string("<bdi>") + GetParam().shown + "</bdi>"));
  EXPECT_THAT(page,
              HasSubstr(std::string("<bdi class=\"cell odd\">") + GetParam().shown + "</bdi>"));
  EXPECT_THAT(page, Not(HasSubstr(name)));
}
INSTANTIATE_TEST_SUITE_P(Table, HtmlOfHostile, testing::ValuesIn(kHostile), ByRule());

// A grinning face is one place of a layout, in which its code has no room.
TEST(HtmlCommand, ShowsAllCharactersOfNames) {
  const std::string page = page_of_text("who \xF0\x9F\x98\x80,n\nann,1\nbob,2\neve,3\n");
  EXPECT_THAT(page, HasSubstr("<th scope=\"row\"><bdi>who \xF0\x9F\x98\x80</bdi></th>"));
}

TEST(SectionLimits, AreLessForMoreFiles) {
  EXPECT_EQ(limits_for(1).num_columns, 200U);
  EXPECT_EQ(limits_for(20).num_columns, 60U);
  EXPECT_EQ(limits_for(21).num_columns, 20U);
  EXPECT_EQ(limits_for(21).num_programs, 3U);
}

TEST(HtmlCommand, BoundsThePageOfAWideFile) {
  std::string text;
  for (int row = 0; row < 30; ++row) {
    for (int i = 0; i < 400; ++i)
      text += (i > 0 ? "," : "") + (row == 0 ? "column " : std::string()) +
              std::to_string(i * (row + 1));
    text += '\n';
  }
  const std::string page = page_of_text(text);
  EXPECT_THAT(page, HasSubstr("Of the 400 columns the first 40 are shown."));
  EXPECT_THAT(page, HasSubstr("Of the 400 columns the first 200 are shown."));
  EXPECT_LT(page.size(), 1'500'000U);
}

TEST(HtmlCommand, HasThreeProgramsForEachOfManyFiles) {
  const TempFolder folder;
  std::vector<std::string> arguments;
  for (int i = 0; i < 21; ++i)
    arguments.push_back(folder.file("t" + std::to_string(i) + ".csv", kTable));
  arguments.insert(arguments.end(), {"--html", "-"});
  const CommandResult result = vltext(arguments);
  EXPECT_THAT(result.out, HasSubstr("<p>21 files: 1 group.</p>"));
  EXPECT_THAT(result.out, HasSubstr("id=\"file-21-pandas\""));
  EXPECT_THAT(result.out, HasSubstr("id=\"file-21-duckdb\""));
  EXPECT_THAT(result.out, HasSubstr("id=\"file-21-readr\""));
  EXPECT_THAT(result.out, Not(HasSubstr("id=\"file-21-polars\"")));
  EXPECT_THAT(result.out, HasSubstr("For others: <code>vltext FILE --emit NAME</code>"));
}

// Copied, a path that is not shown as it is would be another one.
TEST(HtmlCommand, ShowsNoProgramThatItWouldChange) {
  const TempFolder folder;
  const std::string file = folder.file("a\xE2\x80\xAE.csv", kTable);
  const std::string page = vltext({file, "--html", "-"}).out;
  EXPECT_THAT(
      page, HasSubstr("It has characters that cannot be shown: <code>vltext --emit duckdb</code>"));
  EXPECT_THAT(page, HasSubstr("a\\u202e.csv"));  // pandas
}

}  // namespace
}  // namespace textio::tool
