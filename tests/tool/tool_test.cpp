// The tool as its users see it: what it prints, what it refuses, how it ends.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include "support/archives.hpp"
#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

const std::string kComma = EXAMPLES_DIR "/comma.csv";

CommandResult vltext(const std::vector<std::string>& arguments) {
  return run_command(VLTEXT_PROGRAM, arguments);
}

class Tool : public testing::Test {
 protected:
  const TempFolder folder_;
};

TEST_F(Tool, PrintsTheLayoutInWords) {
  const CommandResult result = vltext({folder_.file("t.csv", "x,y\n1,a\n2,b\n")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(result.out, folder_.path_of("t.csv") +
                            "\n"
                            "  layout          delimited by comma\n"
                            "  confidence      99 % sure\n"
                            "  names           in line 1: texts above values\n"
                            "  columns         2\n"
                            "               1  integer   x\n"
                            "               2  text      y\n"
                            "  encoding        UTF-8 (valid UTF-8)\n"
                            "  line ending     \"\\n\"\n"
                            "  lines           1 names, 2-3 data\n"
                            "  looked at       all 3 lines\n");
}

TEST_F(Tool, TellsAFirstLineBeyondAnySampleFromAnEmptyFile) {
  const CommandResult endless = vltext({folder_.file("x", std::string(5'000'000, 'x'))});
  EXPECT_EQ(endless.status, 1);
  EXPECT_THAT(endless.out, HasSubstr("nothing: no line ends in the first 4,194,304 characters"));
  const CommandResult empty = vltext({folder_.file("e", "")});
  EXPECT_THAT(empty.out, HasSubstr("all 0 lines"));
}

TEST_F(Tool, ExplainsWithCandidatesAndFilters) {
  const CommandResult result =
      vltext({"--explain=cascade", folder_.file("t.csv", "a b,c\n1 2,3\n4 5,6\n")});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("#0  columns aligned with blanks"));
  EXPECT_THAT(result.out, HasSubstr("#1  delimited by space"));
  EXPECT_THAT(result.out, HasSubstr("#2  delimited by comma"));
  EXPECT_THAT(result.out, HasSubstr("reduce_by_dates"));
}

TEST_F(Tool, TellsHowTheAnswerCameAbout) {
  const std::string file = folder_.file("t.csv", "a b,c\n1 2,3\n4 5,6\n");
  const std::string told = vltext({"--explain", file}).out;
  EXPECT_THAT(told, HasSubstr("\n  considered      2 delimiters: comma, space\n"));
  EXPECT_THAT(told, HasSubstr("\n                  columns of fixed width"));
  EXPECT_THAT(told, HasSubstr("\n                  no table\n"));
  EXPECT_THAT(told, HasSubstr("\n  for the answer  strongly: "));
  EXPECT_THAT(told, HasSubstr("\n  against it      strongly: there are only 2 columns\n"));
  EXPECT_THAT(told, HasSubstr("\n  next best       columns of fixed width, 2 columns, "));
  EXPECT_THAT(told, Not(HasSubstr("reduce_by")));
  EXPECT_EQ(vltext({"--explain=cascade", file}).out.substr(0, told.size()), told);
}

TEST_F(Tool, TellsWhyTheCascadeAnswers) {
  const std::string file = folder_.file("t.csv", "a b,c\n1 2,3\n4 5,6\n");
  EXPECT_THAT(vltext({"--judge", "cascade", "--explain", file}).out, HasSubstr("reduce_by_dates"));
  EXPECT_THAT(vltext({"--delimiter", ",", file}).out,
              HasSubstr("\n  chosen because  it was given\n"));
}

TEST_F(Tool, PutsTheTraceIntoTheJson) {
  const CommandResult result =
      vltext({"--explain", "--json", folder_.file("t.csv", "x,y\n1,a\n2,b\n")});
  const auto document = nlohmann::json::parse(result.out);
  EXPECT_EQ(document["schema"], 5);
  const auto& trace = document["files"][0]["trace"];
  EXPECT_EQ(trace["candidate_chars"], ",");
  ASSERT_EQ(trace["candidates"].size(), 1U);
  EXPECT_EQ(trace["candidates"][0]["valuation"]["num_variables"], 2);
  EXPECT_EQ(trace["candidates"][0]["fate"], "kept");
  EXPECT_TRUE(trace["filters"].empty());
}

TEST_F(Tool, SamplesAsManyDataLinesAsAsked) {
  const CommandResult result =
      vltext({"--json", "--lines", "2", folder_.file("t.csv", "1,2\n3,4\n5,6\n7,8\n")});
  EXPECT_EQ(nlohmann::json::parse(result.out)["files"][0]["lines_sampled"], 2);
}

// Names and as many records, of eight bytes each, and what follows them.
std::string table_of(std::size_t records, const std::string& footer = "") {
  std::string text = "num,abc\n";
  for (std::size_t i = 0; i < records; ++i) text += "1.5,abc\n";
  return text + footer;
}

TEST_F(Tool, PrintsFooters) {
  const std::string file = folder_.file("t.csv", "x,y\n1,a\n2,b\n\n(2 rows)\nBye\n");
  EXPECT_THAT(vltext({file}).out,
              HasSubstr("\n  lines           1 names, 2-3 data, 4 blank, 5-6 footer\n"));
  const auto document = nlohmann::json::parse(vltext({"--json", file}).out);
  const auto& layout = document["files"][0];
  EXPECT_EQ(layout["lines"].back()["role"], "footer");
  EXPECT_EQ(layout["lines"].back()["first_line"], 5);
  EXPECT_EQ(layout["tail"], nullptr);
}

TEST_F(Tool, PrintsWhatTheEndHolds) {
  const std::string file = folder_.file("t.csv", table_of(3000, "Total,\nBye\n"));
  EXPECT_THAT(vltext({file}).out, HasSubstr("\n  footer          2 lines at the end: 'Total,', "
                                            "'Bye'\n  looked at       100 of about 3,002 lines\n"));
  const auto document = nlohmann::json::parse(vltext({"--json", file}).out);
  const auto& layout = document["files"][0];
  EXPECT_EQ(layout["lines_estimated"], 3002);
  EXPECT_EQ(layout["tail"]["footer_lines"], 2);
  EXPECT_EQ(layout["tail"]["footer"], nlohmann::json({"Total,", "Bye"}));
  EXPECT_EQ(layout["tail"]["bytes"], 0);
  EXPECT_FALSE(document["settings"].contains("look_at_end"));
}

TEST_F(Tool, SaysWhenThereIsMoreThanItTells) {
  const std::string file = folder_.file("t.csv", table_of(150, "\na b\nc d\ne f\ng h\ni j\nk l\n"));
  EXPECT_THAT(vltext({file}).out,
              HasSubstr("6 lines at the end: 'a b', 'c d', 'e f', 'g h', 'i j' and more\n"));
  const std::string one = folder_.file("one.csv", table_of(150, "Bye\n"));
  EXPECT_THAT(vltext({one}).out, HasSubstr("1 line at the end: 'Bye'\n"));
}

TEST_F(Tool, DoesNotLookAtTheEndIfToldSo) {
  const std::string file = folder_.file("t.csv", table_of(3000, "Bye\n"));
  EXPECT_THAT(vltext({"--no-tail", file}).out, Not(HasSubstr("footer")));
  const auto document = nlohmann::json::parse(vltext({"--no-tail", "--json", file}).out);
  EXPECT_EQ(document["files"][0]["tail"], nullptr);
  EXPECT_EQ(document["settings"]["look_at_end"], false);
}

// The 2,500th and the 2,600th record are odd; each record has eight bytes, as the line of the names has.
TEST_F(Tool, LooksAtPlacesAllOverTheFileIfAsked) {
  std::string text = table_of(3000);
  text.replace(2500 * 8, 7, "bad,abc");
  text.replace(2600 * 8, 7, "1.5;abc");
  text.replace(2700 * 8, 7, "n/a,abc");
  const std::string file = folder_.file("t.csv", text);
  EXPECT_THAT(vltext({"--sample", "spread", file}).out,
              HasSubstr("\n  spread          2,900 records at 1 place\n"
                        "  contradicts     column 1 (num): 1 cell does not fit decimal, first "
                        "\"bad\" in line 2,501, byte 20,000\n"
                        "  contradicts     1 record of another number of cells, first 1 in line "
                        "2,601, byte 20,800\n"
                        "  also missing    \"n/a\" 1 time\n"));
  const auto document = nlohmann::json::parse(vltext({"--sample", "spread", "--json", file}).out);
  EXPECT_EQ(document["settings"]["sample"], "spread");
  const auto& spread = document["files"][0]["spread"];
  EXPECT_EQ(spread["reason"], nullptr);
  EXPECT_EQ(spread["contradictions"],
            nlohmann::json::parse(R"([{"column": 1, "expected": "decimal", "count": 1,
                "example": "bad", "byte": 20000, "line": 2501, "line_exact": true}])"));
  EXPECT_EQ(spread["first_ragged"],
            nlohmann::json::parse(R"({"cells": 1, "example": "1.5;abc", "byte": 20800,
                "line": 2601, "line_exact": true})"));
  EXPECT_EQ(spread["missing"], nlohmann::json::parse(R"([{"word": "n/a", "count": 1}])"));
}

TEST_F(Tool, SaysThatPlacesAgreeOrCannotBeReached) {
  const std::string file = folder_.file("t.csv", table_of(3000));
  EXPECT_THAT(vltext({"--sample=spread", file}).out,
              HasSubstr("  spread          2,901 records at 1 place, and none contradicts the "
                        "answer\n"));
  const std::string packed = folder_.file("t.gz", testing_support::gzip_of(table_of(100'000)));
  EXPECT_THAT(vltext({"--sample=spread", packed}).out,
              HasSubstr("  not spread      what is after the sample cannot be reached without "
                        "reading or unpacking all before it\n"));
  const auto document = nlohmann::json::parse(vltext({"--json", file}).out);
  EXPECT_FALSE(document["files"][0].contains("spread"));
  EXPECT_FALSE(document["settings"].contains("sample"));
}

TEST_F(Tool, RefusesAnotherWordForTheSample) {
  EXPECT_THAT(vltext({"--sample", "middle", "t.csv"}).err,
              HasSubstr("--sample: Expected start or spread, got 'middle'."));
}

TEST_F(Tool, DescribesTheColumnsOfAGivenLayout) {
  const std::string file = folder_.file("t.csv", "day;level\n31.01.2024;1,5\n01.02.2024;2,25\n");
  EXPECT_THAT(vltext({"--delimiter", ";", file}).out,
              HasSubstr("               1  date      day  (%d.%m.%Y)\n"
                        "               2  decimal   level\n"
                        "  written         decimal mark \",\"\n"));
}

TEST_F(Tool, SamplesAllLinesIfAsked) {
  const std::string file = folder_.file("t.csv", table_of(2999, "Bye\n"));
  EXPECT_THAT(vltext({"--lines", "all", file}).out,
              HasSubstr("2-3000 data, 3001 footer\n  looked at       all 3,001 lines\n"));
}

TEST_F(Tool, SaysHowMuchItLookedAt) {
  EXPECT_THAT(vltext({folder_.file("one", "x\n")}).out,
              HasSubstr("looked at       the only line\n"));
  EXPECT_THAT(vltext({"--judge", "cascade", folder_.file("two", "x,y\n1,2\n")}).out,
              HasSubstr("looked at       all 2 lines\n"));
}

TEST_F(Tool, GoesOnAfterAFileThatFails) {
  const CommandResult result = vltext({"--json", kComma, folder_.path_of("none"), kComma});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(nlohmann::json::parse(result.out)["files"].size(), 2U);
  EXPECT_THAT(result.err, HasSubstr("No such file or directory"));
}

struct RefusalCase {
  const char* rule;
  std::vector<std::string> arguments;
  std::string message;  // a part of standard error
};
std::ostream& operator<<(std::ostream& out, const RefusalCase& row) { return out << row.rule; }

const RefusalCase kRefusals[] = {
    {"NoFile", {}, "FILE is required"},
    {"MissingFile", {"no/such/file.csv"}, "no/such/file.csv': No such file or directory"},
    {"JsonAndJsonLines",
     {"--json", "--jsonl", kComma},
     "--json and --jsonl contradict one another"},
    {"FileAsFolder", {kComma + "/x"}, "Not a directory"},
    {"EmptyPath", {""}, "No such file or directory"},
    {"VeryLongName", {std::string(5000, 'x')}, "File name too long"},
    {"UnknownEncoding", {"--encoding", "klingon", kComma}, "unknown encoding 'klingon'"},
    {"NearlyKnownEncoding", {"--encoding", "utf-9", kComma}, "'utf-9' (did you mean 'UTF-8'?)"},
    {"EmptyEncoding", {"--encoding", "", kComma}, "unknown encoding ''"},
    {"NegativeLines", {"--lines", "-1", kComma}, "--lines"},
    {"LinesThatAreNoNumber", {"--lines", "many", kComma}, "--lines"},
    {"TooManyLines", {"--lines", "18446744073709551616", kComma}, "--lines"},
    {"UnknownOption", {"--frobnicate", kComma}, "--frobnicate"},
    {"UnknownOptionAlone", {"--frobnicate"}, "--frobnicate"},
    {"UnknownShortOption", {"-x", kComma}, "-x: there is no such option\n"},
    {"UnknownShortOptionAlone", {"-x"}, "-x: there is no such option\n"},
    {"UnknownShortOptions", {"-xyz"}, "-xyz: there is no such option\n"},
    {"NearlyKnownOption", {"--delimeter", ";", kComma}, "--delimeter: do you mean --delimiter?\n"},
    {"NearlyKnownOptionWithAValue", {"--delimeter=;", kComma}, "--delimeter: do you mean"},
    {"NearlyKnownWord", {"--parser-type", "fixd", kComma}, " Do you mean fixedwidth?\n"},
    {"NearlyKnownTarget", {"--emit", "panda", kComma}, "got 'panda'. Do you mean pandas?\n"},
    {"NearlyKnownOptionName",
     {"--option", "NumHeaderLine=2", kComma},
     "Do you mean NumHeaderLines?"},
    {"NearlyKnownCommand", {"covnert", kComma}, "do you mean vltext convert?\n"},
    {"OptionWithoutItsValue", {kComma, "--lines"}, "--lines needs a value: N\n"},
    {"OptionWithoutOneOfItsWords", {"--color"}, "--color needs a value: auto, always or never\n"},
    {"OtherExplanation", {"--explain=casc", kComma}, "--explain: Expected cascade, got 'casc'."},
    {"ThreeCommentMarkers",
     {"--comment-style", "a", "--comment-style", "b", "--comment-style", "c", kComma},
     "--comment-style: Expected at most two comment markers."},
};

class ToolRefusal : public testing::TestWithParam<RefusalCase> {};
TEST_P(ToolRefusal, SaysWhatAndWhyAndPrintsNothing) {
  const CommandResult result = vltext(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(Table, ToolRefusal, testing::ValuesIn(kRefusals), ByRule());

// The superuser can read everything, so the program runs as another user then.
TEST_F(Tool, SaysWhenAFileIsNotReadable) {
  const std::string path = folder_.file("secret.csv", "1,2\n");
  ASSERT_EQ(chmod(path.c_str(), 0), 0);
  ASSERT_EQ(chmod(folder_.path().c_str(), 0755), 0);
  const uid_t self = geteuid();
  CommandResult result;
  if (self == 0) {
    result = run_command("/usr/bin/setpriv", {"--reuid=65534", "--clear-groups", "--inh-caps=-all",
                                              VLTEXT_PROGRAM, path});
  } else {
    result = vltext({path});
  }
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("cannot open '" + path + "': Permission denied"));
}

// Names of files and of variables come from strangers.
TEST_F(Tool, PrintsNothingThatCommandsTheTerminal) {
  const CommandResult result =
      vltext({folder_.file("red\x1B[31m.csv", "a\x1B]0;b,c\xC2\x9B,d\xE2\x80\xAE\n1,2,3\n4,5,6\n"),
              folder_.path_of("none\x1B\n")});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.out, HasSubstr("red\xEF\xBF\xBD[31m.csv\n"));
  EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
  EXPECT_THAT(result.out, Not(HasSubstr("\xC2\x9B")));
  EXPECT_THAT(result.out, Not(HasSubstr("\xE2\x80\xAE")));
  EXPECT_THAT(result.err, HasSubstr("none\xEF\xBF\xBD\xEF\xBF\xBD'"));
  EXPECT_THAT(result.err, Not(HasSubstr("\x1B")));
}

// Invisible characters could make two names look the same.
TEST_F(Tool, PrintsNothingThatIsInvisible) {
  const std::string hidden =
      "\xE2\x80\x8B\xEF\xBB\xBF\xE2\x81\xA0\xE1\xA0\x8E\xC2\xAD\xE2\x81\xAA\xF3\xA0\x80\xA1";
  const std::string table = "a" + hidden + ",b\n1,2\n3,4\n";
  const CommandResult result = vltext({folder_.file("x" + hidden + ".csv", table)});
  EXPECT_EQ(result.status, 0);
  std::string replaced;
  for (int i = 0; i < 7; ++i) replaced += "\xEF\xBF\xBD";
  EXPECT_THAT(result.out, HasSubstr("x" + replaced + ".csv\n"));
  EXPECT_THAT(result.out, HasSubstr("  a" + replaced + "\n"));
}

TEST_F(Tool, PrintsADelimiterOutsideTheBasicPlane) {
  const std::string skull = "\xF0\x9F\x92\x80";
  const std::string path = folder_.file("t", "1" + skull + "2\n3" + skull + "4\n");
  const CommandResult result = vltext({"--delimiter", skull, path});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("delimited by \"" + skull + "\"\n"));
}

TEST_F(Tool, SaysThatAFileLooksBinary) {
  const std::string path = folder_.file("program",
                                        "\x7F"
                                        "ELF\x02\x01\x01\n\x05\x06,\x07\n");
  EXPECT_THAT(vltext({path}).out, HasSubstr("\n  looks binary    "));
  EXPECT_EQ(nlohmann::json::parse(vltext({"--json", path}).out)["files"][0]["looks_binary"], true);
  EXPECT_THAT(vltext({"--json", kComma}).out, Not(HasSubstr("looks_binary")));
}

// --- long arguments --------------------------------------------------------------------------------

struct EchoCase {
  const char* rule;
  std::vector<std::string> arguments;
  std::string before;  // the echo
};
std::ostream& operator<<(std::ostream& out, const EchoCase& row) { return out << row.rule; }

const std::string kLong(100'000, 'x');

const EchoCase kEchoes[] = {
    {"File", {kLong}, "cannot open '"},
    {"UnknownOption", {"--" + kLong}, "vltext: --"},
    {"UnknownOptions", {"-" + kLong, "--" + kLong, kComma}, "vltext: -"},
    {"Lines", {"--lines", kLong, kComma}, "got '"},
    {"Jobs", {"--jobs", kLong, kComma}, "got '"},
    {"Encoding", {"--encoding", kLong, kComma}, "unknown encoding '"},
    {"Locale", {"--date-locale", kLong, kComma}, "got '"},
    {"OptionName", {"--option", kLong + "=1", kComma}, "vltext: "},
    {"OptionWithoutValue", {"--option", kLong, kComma}, ""},
    {"Json", {"--option", "Delimiter:=" + kLong, kComma}, "got '"},
    {"Widths", {"--variable-widths", kLong, kComma}, ""},
    {"Word", {"--parser-type", kLong, kComma}, ""},
    {"Escape", {"--delimiter", "\\q" + kLong, kComma}, ""},
};

class ToolEcho : public testing::TestWithParam<EchoCase> {};
TEST_P(ToolEcho, HasEightyCharactersAtMost) {
  const CommandResult result = vltext(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_LT(result.err.size(), 600U);
  EXPECT_THAT(result.err, Not(HasSubstr(std::string(81, 'x'))));
  if (!GetParam().before.empty()) {
    EXPECT_THAT(result.err, HasSubstr(GetParam().before + "xxxxxxxx"));
    EXPECT_THAT(result.err, HasSubstr("xxxxxxxx..."));
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ToolEcho, testing::ValuesIn(kEchoes), ByRule());

// So that a file can be found.
TEST_F(Tool, RepeatsAPathThatMayBeOpenedAsAWhole) {
  const std::string path = folder_.path_of(std::string(200, 'x'));
  EXPECT_EQ(vltext({path}).err, "vltext: cannot open '" + path + "': No such file or directory\n");
}

// In JSON it is escaped, so a parser gets the same text.
TEST_F(Tool, PrintsNothingThatCommandsTheTerminalAsJson) {
  const std::string path = folder_.file("red\x1B[31m\x7F.csv",
                                        "a\x1B]0;\x08!,c\xC2\x9B,\xE2\x80\xAE\xE2\x81\xA6"
                                        "d\xC3\xA9\n1,2,3\n4,5,6\n");
  const CommandResult result = vltext({"--json", path});
  EXPECT_EQ(result.status, 0);
  for (const char* command : {"\x1B", "\x08", "\x7F", "\xC2\x9B", "\xE2\x80\xAE", "\xE2\x81\xA6"}) {
    EXPECT_THAT(result.out, Not(HasSubstr(command)));
  }
  EXPECT_THAT(result.out, HasSubstr("d\xC3\xA9"));
  const auto file = nlohmann::json::parse(result.out)["files"][0];
  EXPECT_EQ(file["file"], path);
  EXPECT_EQ(file["names"], nlohmann::json::array({"a\x1B]0;\x08!", "c\xC2\x9B",
                                                  "\xE2\x80\xAE\xE2\x81\xA6"
                                                  "d\xC3\xA9"}));
}

// Each half of its pair of surrogates looks like a byte that is no UTF-8.
TEST_F(Tool, PrintsAPathOfAllPlanesAsJson) {
  const std::string path = folder_.file("\xF0\x9F\x92\x80.csv", "1,2\n3,4\n");
  EXPECT_EQ(nlohmann::json::parse(vltext({"--json", path}).out)["files"][0]["file"], path);
}

TEST_F(Tool, EndsOrderlyWhenItCannotComplain) {
  const CommandResult result =
      run_command("/bin/sh", {"-c", "\"$0\" none 2> /dev/full", VLTEXT_PROGRAM});
  EXPECT_EQ(result.status, 2);
}

TEST_F(Tool, SaysWhenAFileOpensAndCannotBeRead) {
  const CommandResult result = vltext({"/proc/self/mem"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("cannot read '/proc/self/mem'"));
}

TEST_F(Tool, ReadsAPathThatIsNotUtf8) {
  const CommandResult result = vltext({folder_.file("caf\xE9.csv", "1;2\n3;4\n")});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("delimited by semicolon"));
}

TEST_F(Tool, ReadsAPipe) {
  const std::string path = folder_.path_of("pipe");
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  const CommandResult result = run_command(
      "/bin/sh", {"-c", "printf '1;2\\n3;4\\n' > \"$1\" & \"$0\" \"$1\"", VLTEXT_PROGRAM, path});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("delimited by semicolon"));
}

TEST_F(Tool, FailsWhenItsOutputCannotBeWritten) {
  const CommandResult result =
      run_command("/bin/sh", {"-c", "\"$0\" \"$1\" > /dev/full", VLTEXT_PROGRAM, kComma});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("No space left on device"));
}

struct PrintedCase {
  const char* rule;
  std::string command;  // in a shell; $0 is the tool
};
std::ostream& operator<<(std::ostream& out, const PrintedCase& row) { return out << row.rule; }

const PrintedCase kLostOutputs[] = {
    {"Help", "\"$0\" --help > /dev/full"},
    {"Version", "\"$0\" --version > /dev/full"},
    {"ClosedOutput", "\"$0\" --version >&-"},
};

class ToolLostOutput : public testing::TestWithParam<PrintedCase> {};
TEST_P(ToolLostOutput, IsAFailure) {
  const CommandResult result = run_command("/bin/sh", {"-c", GetParam().command, VLTEXT_PROGRAM});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, StartsWith("vltext: standard output: "));
}
INSTANTIATE_TEST_SUITE_P(Table, ToolLostOutput, testing::ValuesIn(kLostOutputs), ByRule());

// Names that the command line parser might take for something else.
struct FileNameCase {
  const char* rule;
  std::string name;
};
std::ostream& operator<<(std::ostream& out, const FileNameCase& row) { return out << row.rule; }

const FileNameCase kFileNames[] = {
    {"LikeAList", "[a,b]"},
    {"LikeAListOfOne", "[a]"},
    {"LikeAListOfNone", "[]"},
    {"LikeAListOfLists", "[[a]]"},
    {"OneBracket", "["},
    {"LikeAnAssignment", "a=b"},
    {"LikeAnAssignmentOfNothing", "FILE="},
    {"LikeTheNameInTheHelp", "FILE"},
};

class ToolFileName : public Tool, public testing::WithParamInterface<FileNameCase> {};
TEST_P(ToolFileName, IsTakenAsItStands) {
  folder_.file(GetParam().name, "1;2\n3;4\n");
  for (const char* dashes : {"", "-- "}) {
    const CommandResult result = run_command(
        "/bin/sh", {"-c", "cd \"$1\" && \"$0\" --json " + std::string(dashes) + "\"$2\"",
                    VLTEXT_PROGRAM, folder_.path(), GetParam().name});
    EXPECT_EQ(result.status, 0) << result.err;
    const auto document = nlohmann::json::parse(result.out, nullptr, false);
    ASSERT_TRUE(document.is_object());
    ASSERT_EQ(document["files"].size(), 1U);
    EXPECT_EQ(document["files"][0]["file"], GetParam().name);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ToolFileName, testing::ValuesIn(kFileNames), ByRule());

// Bytes that are ill-formed in their encoding.
struct IllFormedCase {
  const char* rule;
  std::string encoding;
  std::string bytes;
  std::size_t parts;
};
std::ostream& operator<<(std::ostream& out, const IllFormedCase& row) { return out << row.rule; }

const IllFormedCase kIllFormed[] = {
    {"None", "UTF-8", "a,b\n1,\xC3\xA9\n", 0},
    {"TwoBytes", "UTF-8", "a\xFF,b\n1\xFF,2\n", 2},
    {"OneCutCharacterInTheMiddle", "UTF-8", "a\xE2\x82,b\n1,2\n", 1},
    {"TruncatedLastCharacter", "UTF-8", "a,b\n1,\xE2\x82", 1},
    {"TruncatedLastCharacterOfTwoBytes", "Shift_JIS", "a,b\n1,\x83", 1},
    {"HalfAUnitAtTheEnd", "UTF-16LE",
     std::string("1\0,\0"
                 "2\0\n",
                 7),
     1},
};

class ToolIllFormed : public Tool, public testing::WithParamInterface<IllFormedCase> {};
TEST_P(ToolIllFormed, PartsAreCounted) {
  const IllFormedCase& row = GetParam();
  const std::string path = folder_.file("t.csv", row.bytes);
  const CommandResult result = vltext({"--json", "--encoding", row.encoding, path});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(nlohmann::json::parse(result.out)["files"][0]["ill_formed_parts"], row.parts);
  const std::string in_words = ", " + std::to_string(row.parts) + " place";
  const CommandResult words = vltext({"--encoding", row.encoding, path});
  EXPECT_EQ(words.out.find(in_words) != std::string::npos, row.parts > 0);
}
INSTANTIATE_TEST_SUITE_P(Table, ToolIllFormed, testing::ValuesIn(kIllFormed), ByRule());

TEST_F(Tool, TellsItsVersionAndItsOptions) {
  EXPECT_THAT(vltext({"--version"}).out, StartsWith("vltext "));
  const CommandResult help = vltext({"--help"});
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--json", "--explain", "--lines", "--encoding", "--comment-style"}) {
    EXPECT_THAT(help.out, HasSubstr(option));
  }
}

// Inputs without any table get an answer, too.
struct OddInput {
  const char* rule;
  std::string bytes;
  std::string mode;
  int status = 0;
};
std::ostream& operator<<(std::ostream& out, const OddInput& row) { return out << row.rule; }

const OddInput kOddInputs[] = {
    {"Nothing", "", "line-reader", 1},
    {"OneByte", "a", "line-reader"},
    {"OneNul", std::string(1, '\0'), "line-reader", 1},
    {"OnlyNuls", std::string(1000, '\0'), "line-reader", 1},
    {"OnlyAMark", "\xEF\xBB\xBF", "line-reader", 1},
    {"OnlyAWideMark", "\xFF\xFE", "line-reader", 1},
    {"OnlyLineEnds", std::string(1000, '\n'), "line-reader", 1},
    {"OneLineWithoutEnd", "one two three", ""},
    {"EveryByte",
     [] {
       std::string bytes;
       for (int i = 0; i < 65'536; ++i) bytes.push_back(static_cast<char>(i * 7 + i / 256));
       return bytes;
     }(),
     "", 1},
};

class ToolOddInput : public Tool, public testing::WithParamInterface<OddInput> {};
TEST_P(ToolOddInput, GetsAnAnswer) {
  const CommandResult result = vltext({"--json", folder_.file("odd", GetParam().bytes)});
  EXPECT_EQ(result.status, GetParam().status);
  const auto layout = nlohmann::json::parse(result.out)["files"][0];
  EXPECT_EQ(layout["classes"].size(), layout["num_variables"].get<std::size_t>());
  if (!GetParam().mode.empty()) {
    EXPECT_EQ(layout["mode"], GetParam().mode);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ToolOddInput, testing::ValuesIn(kOddInputs), ByRule());

}  // namespace
}  // namespace textio
