// `vltext convert` as a user runs it: what it writes, what it says, and what it leaves alone when something fails.
#include "tool/convert_command.hpp"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/archives.hpp"
#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

extern char** environ;

namespace textio::tool {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::gzip_of;
using testing_support::run_command;
using testing_support::TempFolder;

using Words = std::vector<std::string>;

// The command with "convert" before the arguments; `input` is standard input as a file.
CommandResult convert(Words arguments, const std::string& input = {}) {
  arguments.insert(arguments.begin(), "convert");
  return run_command(VLTEXT_PROGRAM, arguments, input);
}

CommandResult shell(const std::string& script, Words arguments, const std::string& input = {}) {
  arguments.insert(arguments.begin(), {"-c", script, VLTEXT_PROGRAM});
  return run_command("/bin/sh", arguments, input);
}

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

Words names_in(const std::string& folder) {
  Words names;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    names.push_back(entry.path().filename());
  }
  return names;
}

// A table of this many rows, with a decimal comma and dates of the day first.
std::string gauge(int rows) {
  std::string text = "River gauge\n\ndate;level;note\n";
  for (int i = 0; i < rows; ++i) {
    const std::string day = std::to_string(10 + i % 19);
    text += day + ".01.2024;" + std::to_string(100 + i) + ",5;n" + std::to_string(i) + '\n';
  }
  return text;
}

// Integers in the first column; in line 60,002 something else, and after it an ordinary row again.
std::string table_that_widens(const std::string& later_lines) {
  std::string text = "number,word\n";
  for (int i = 0; i < 60'000; ++i) text += std::to_string(i) + ",some words of a text\n";
  return text + later_lines + "7,last words\n";
}

class Convert : public testing::Test {
 protected:
  const TempFolder folder_;
  const std::string gauge_ = folder_.file("gauge.txt", gauge(3));
  const std::string out_ = folder_.path_of("out.csv");
  const std::string clean_ =
      "date,level,note\n2024-01-10,100.5,n0\n2024-01-11,101.5,n1\n2024-01-12,102.5,n2\n";
};

// --- what is written -----------------------------------------------------------------------------

TEST_F(Convert, WritesACleanTable) {
  const CommandResult result = convert({gauge_, "--to", "csv"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, clean_);
  EXPECT_EQ(result.err,
            "vltext: " + gauge_ + ": 6 lines: 3 rows, 1 of names, 1 preamble, 1 blank\n");
}

TEST_F(Convert, TakesTheFormatFromTheExtension) {
  const std::string jsonl = folder_.path_of("OUT.JSONL");
  EXPECT_EQ(convert({gauge_, "-o", jsonl}).status, 0);
  EXPECT_THAT(content_of(jsonl),
              testing::StartsWith("{\"date\":\"2024-01-10\",\"level\":100.5,\"note\":\"n0\"}\n"));
  EXPECT_EQ(convert({gauge_, "-o", folder_.path_of("out.tab")}).status, 0);
  EXPECT_THAT(content_of(folder_.path_of("out.tab")), testing::StartsWith("date\tlevel\tnote\n"));
}

TEST_F(Convert, ReadsStandardInputPipesAndCompressedFiles) {
  const std::string packed = folder_.file("gauge.csv.gz", gzip_of(gauge(3)));
  EXPECT_EQ(convert({packed, "--to", "csv"}).out, clean_);
  EXPECT_EQ(convert({"-", "--to", "csv"}, gauge(3)).out, clean_);
  EXPECT_EQ(shell("cat | \"$0\" convert - --to csv", {}, gauge(3)).out, clean_);
  EXPECT_EQ(shell("cat | \"$0\" convert - --to csv", {}, gzip_of(gauge(3))).out, clean_);
}

TEST_F(Convert, GivesEachOfSeveralFilesAnOutputInAFolder) {
  const std::string other = folder_.file("other.csv", "a,b\n1,2\n3,4\n");
  const std::string out = folder_.folder("out");
  const CommandResult result = convert({gauge_, other, "-o", out, "--to", "csv"});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(names_in(out), UnorderedElementsAre("gauge.csv", "other.csv"));
  EXPECT_EQ(content_of(out + "/gauge.csv"), clean_);
  EXPECT_EQ(content_of(out + "/other.csv"), "a,b\n1,2\n3,4\n");
}

TEST_F(Convert, MakesADatabase) {
  const std::string path = folder_.path_of("it's.db");
  ASSERT_EQ(convert({gauge_, "-o", path, "--table", "a \"b\""}).status, 0);
  sqlite3* database = nullptr;
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  std::string row;
  sqlite3_exec(
      database, "SELECT * FROM \"a \"\"b\"\"\" WHERE level > 102",
      [](void* to, int count, char** values, char**) {
        for (int i = 0; i < count; ++i)
          *static_cast<std::string*>(to) += std::string(values[i]) + '|';
        return 0;
      },
      &row, nullptr);
  sqlite3_close(database);
  EXPECT_EQ(row, "2024-01-12|102.5|n2|");
}

TEST(TableNamedAfter, LeavesOutFolderAndExtensions) {
  EXPECT_EQ(table_named_after("data/gauge.csv"), "gauge");
  EXPECT_EQ(table_named_after("gauge.csv.gz"), "gauge");
  EXPECT_EQ(table_named_after("a.b.tsv.zst"), "a.b");
  EXPECT_EQ(table_named_after(".hidden"), ".hidden");
  EXPECT_EQ(table_named_after("-"), "data");
  EXPECT_EQ(table_named_after("SQLite_x.csv"), "table_SQLite_x");
  EXPECT_EQ(table_named_after("a\xFF.csv"), "a\xEF\xBF\xBD");
}

TEST_F(Convert, KeepsItsAnswerWhateverTheThreads) {
  const std::string big = folder_.file("big.csv", table_that_widens("x,y\n"));
  const std::string one = convert({big, "--to", "csv", "--threads", "1"}).out;
  EXPECT_EQ(convert({big, "--to", "csv", "--threads", "3"}).out, one);
  EXPECT_EQ(one, table_that_widens("x,y\n"));
}

// --- cells that do not fit -----------------------------------------------------------------------

TEST_F(Convert, WidensAColumnFromItsFirstRow) {
  const std::string big = folder_.file("big.csv", table_that_widens("3.5,z\n"));
  const std::string db = folder_.path_of("big.db");
  const CommandResult result = convert({big, "-o", db});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_THAT(result.err, HasSubstr("1 column was widened (first: line 60,002, column number, "
                                    "\"3.5\")"));
  sqlite3* database = nullptr;
  sqlite3_open_v2(db.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  std::string found;
  sqlite3_exec(
      database, "SELECT count(*), min(typeof(number)), max(typeof(number)), max(number) FROM big",
      [](void* to, int count, char** values, char**) {
        for (int i = 0; i < count; ++i)
          *static_cast<std::string*>(to) += std::string(values[i]) + '|';
        return 0;
      },
      &found, nullptr);
  sqlite3_close(database);
  EXPECT_EQ(found, "60002|real|real|59999.0|");
}

TEST_F(Convert, WidensOnStandardOutputToo) {
  const std::string big = folder_.file(
      "big.csv", "day,x\n" + [] {
        std::string text;
        for (int i = 0; i < 80'000; ++i) text += "05.01.2024,some words\n";
        return text;
      }() + "no day,x\n06.01.2024,y\n");
  const CommandResult result = convert({big, "--to", "csv"});
  EXPECT_EQ(result.status, 0) << result.err;
  // All as they are in the file: not some as "2024-01-05" and others as they were.
  EXPECT_THAT(result.out, testing::StartsWith("day,x\n05.01.2024,some words\n"));
  EXPECT_THAT(result.out, testing::EndsWith("\n05.01.2024,some words\nno day,x\n06.01.2024,y\n"));
}

TEST_F(Convert, WidensStandardInputThatIsAFile) {
  const CommandResult result = convert({"-", "-o", out_}, table_that_widens("3.5,z\n"));
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content_of(out_), table_that_widens("3.5,z\n"));
}

TEST_F(Convert, CountsWhatDoesNotFitWhereAColumnCannotChange) {
  const CommandResult result =
      shell("cat | \"$0\" convert - --to csv -o \"$1\" --rejects \"$2\"",
            {out_, folder_.path_of("rejects.csv")}, table_that_widens("n.v.,y\n"));
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.err, HasSubstr("1 cell did not fit (first: line 60,002, column number, "
                                    "\"n.v.\")"));
  EXPECT_EQ(content_of(out_), table_that_widens(",y\n"));
  EXPECT_THAT(content_of(folder_.path_of("rejects.csv")),
              testing::AllOf(testing::StartsWith("file,line,reason,text\n-,60002,"),
                             testing::EndsWith(",\"n.v.,y\"\n")));
}

TEST_F(Convert, IsSatisfiedWhereAnOptionAsksForIt) {
  const std::string big = folder_.file("big.csv", table_that_widens("n.v.,y\n"));
  EXPECT_EQ(convert({big, "-o", out_, "--no-widen"}).status, 1);
  EXPECT_EQ(convert({big, "-o", out_, "--import-error-rule", "fill"}).status, 0);
  EXPECT_EQ(content_of(out_), table_that_widens(",y\n"));
  EXPECT_EQ(convert({big, "-o", out_, "--import-error-rule", "omitrow"}).status, 0);
  EXPECT_EQ(content_of(out_), table_that_widens(""));
}

TEST_F(Convert, AddsColumnsOfLongerRecords) {
  const std::string big = folder_.file("big.csv", table_that_widens("7,x,extra\n"));
  const CommandResult result = convert({big, "-o", out_});
  EXPECT_EQ(result.status, 0) << result.err;
  const std::string written = content_of(out_);
  EXPECT_THAT(written, testing::StartsWith("number,word,column_3\n0,some words of a text,\n"));
  EXPECT_THAT(written, testing::EndsWith("\n7,x,extra\n7,last words,\n"));
}

TEST_F(Convert, IgnoresExtraCellsOfAPipe) {
  const CommandResult result =
      shell("cat | \"$0\" convert - --to csv", {}, table_that_widens("7,x,extra\n"));
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.out, table_that_widens("7,x\n"));
  EXPECT_THAT(result.err, HasSubstr("1 row was long (first: line 60,002"));
}

TEST_F(Convert, CannotChangeColumnsOfAPipe) {
  const CommandResult widen = shell("cat | \"$0\" convert - --to csv --widen", {}, gauge(3));
  EXPECT_EQ(widen.status, 2);
  EXPECT_THAT(widen.err, HasSubstr("--widen: it can be read only once"));
  const CommandResult added =
      shell("cat | \"$0\" convert - --to csv --extra-columns-rule addvars", {}, gauge(3));
  EXPECT_EQ(added.status, 2);
  EXPECT_THAT(added.err, HasSubstr("--extra-columns-rule addvars: it can be read only once"));
}

TEST_F(Convert, KeepsTheOutputUnderStrict) {
  const std::string big = folder_.file("big.csv", table_that_widens("n.v.,y\n"));
  const std::string out = folder_.file("out.csv", "old");
  const std::string rejects = folder_.path_of("rejects.csv");
  const CommandResult result =
      convert({big, "-o", out, "--no-widen", "--strict", "--rejects", rejects});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("not converted, because of --strict: cells did not fit; "));
  EXPECT_EQ(content_of(out), "old");
  EXPECT_THAT(content_of(rejects), HasSubstr("n.v."));
  const CommandResult to_pipe = convert({big, "--to", "csv", "--no-widen", "--strict"});
  EXPECT_EQ(to_pipe.status, 2);
  EXPECT_EQ(to_pipe.out, "");
}

TEST_F(Convert, KeepsTextsAndDecimalsAsTheyAre) {
  const std::string file = folder_.file("t.csv", "price,n\n12.50,1\n13.00,2\n14.25,3\n");
  EXPECT_EQ(convert({file, "--to", "csv"}).out, "price,n\n12.5,1\n13,2\n14.25,3\n");
  EXPECT_EQ(convert({file, "--to", "csv", "--exact-decimals"}).out,
            "price,n\n12.50,1\n13.00,2\n14.25,3\n");
  EXPECT_EQ(convert({gauge_, "--to", "csv", "--as-text"}).out,
            "date,level,note\n10.01.2024,\"100,5\",n0\n11.01.2024,\"101,5\",n1\n"
            "12.01.2024,\"102,5\",n2\n");
}

TEST_F(Convert, RefusesWhatIsNoTable) {
  std::string prose;
  for (int i = 0; i < 20; ++i) {
    prose +=
        "It was a dark night, and the rain fell on the roofs of the town.\nNobody was "
        "about; the lamps had gone out long before midnight, as they did in those years.\n\n";
  }
  const CommandResult result = convert({folder_.file("prose.txt", prose), "-o", out_});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("no table was found in it: running text"));
  EXPECT_FALSE(std::filesystem::exists(out_));
}

// --- command lines that cannot be obeyed ---------------------------------------------------------

struct WrongCase {
  const char* rule;
  Words arguments;  // IN is a table, DIR a folder
  const char* message;
};
std::ostream& operator<<(std::ostream& out, const WrongCase& row) { return out << row.rule; }

const WrongCase kWrong[] = {
    {"NoFile", {"--to", "csv"}, "FILE is required"},
    {"NoFormat", {"IN"}, "--to is required: csv, tsv, jsonl or sqlite"},
    {"NoFormatInTheExtension", {"IN", "-o", "DIR/out.txt"}, "--to is required"},
    {"UnknownFormat",
     {"IN", "--to", "xlsx"},
     "--to: Expected csv, tsv, jsonl or sqlite, got 'xlsx'"},
    {"DatabaseToStandardOutput", {"IN", "--to", "sqlite"}, "-o OUT is required with --to sqlite"},
    {"TableOfACsv", {"IN", "--to", "csv", "--table", "t"}, "--table is for --to sqlite only"},
    {"SeveralFilesWithoutAFolder", {"IN", "IN", "--to", "csv"}, "Several FILEs need -o DIR"},
    {"SeveralFilesToAFile", {"IN", "IN", "-o", "DIR/out.csv"}, "Several FILEs need -o DIR"},
    {"SameOutput", {"IN", "DIR/gauge.csv", "-o", "DIR", "--to", "jsonl"}, "have the same output"},
    {"InputIsOutput", {"IN", "--to", "csv", "-o", "IN"}, "would be replaced, and is an input"},
    {"InputIsRejects",
     {"IN", "--to", "csv", "--rejects", "IN"},
     "would be replaced, and is an input"},
    {"OutputIsRejects", {"IN", "-o", "DIR/x.csv", "--rejects", "DIR/x.csv"}, "cannot be both"},
    {"BothWiden", {"IN", "--to", "csv", "--widen", "--no-widen"}, "contradict one another"},
    {"NoThread", {"IN", "--to", "csv", "--threads", "0"}, "--threads: Expected a whole number"},
    {"WrongRule", {"IN", "--to", "csv", "--missing-rule", "keep"}, "--missing-rule: "},
    {"MissingFolder",
     {"IN", "-o", "DIR/missing/x.csv"},
     "missing/x.csv: No such file or directory"},
    {"MissingFile", {"DIR/missing", "--to", "csv"}, "No such file or directory"},
};

class ConvertRefuses : public testing::TestWithParam<WrongCase> {};
TEST_P(ConvertRefuses, AndSaysWhy) {
  const TempFolder folder;
  const std::string input = folder.file("gauge.txt", gauge(3));
  Words arguments = GetParam().arguments;
  for (std::string& argument : arguments) {
    if (argument == "IN") argument = input;
    if (argument.starts_with("DIR")) argument.replace(0, 3, folder.path());
  }
  const CommandResult result = convert(arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr(GetParam().message));
  EXPECT_THAT(names_in(folder.path()), ElementsAre("gauge.txt"));
  EXPECT_EQ(content_of(input), gauge(3));
}
INSTANTIATE_TEST_SUITE_P(Table, ConvertRefuses, testing::ValuesIn(kWrong), ByRule());

TEST_F(Convert, DoesNotLoseOtherTables) {
  const std::string db = folder_.path_of("gauge.db");
  ASSERT_EQ(convert({gauge_, "-o", db, "--table", "first"}).status, 0);
  const std::string before = content_of(db);
  const CommandResult other = convert({gauge_, "-o", db});
  EXPECT_EQ(other.status, 2);
  EXPECT_THAT(other.err, HasSubstr("the table 'first' in it would be lost; --force replaces it"));
  EXPECT_EQ(content_of(db), before);
  EXPECT_EQ(convert({gauge_, "-o", db, "--table", "first"}).status, 0);
  EXPECT_EQ(convert({gauge_, "-o", db, "--force"}).status, 0);
  folder_.file("gauge.db-wal", "");
  EXPECT_THAT(convert({gauge_, "-o", db}).err, HasSubstr("the database is in use"));
}

TEST_F(Convert, IsReachedByItsNameAloneAndAFileByAPath) {
  const std::string script =
      "cd \"$1\" && cp gauge.txt convert && \"$0\" ./convert && \"$0\" -- convert";
  const CommandResult result = shell(script, {folder_.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.out, HasSubstr("./convert\n  layout          delimited by semicolon"));
  EXPECT_THAT(result.out, HasSubstr("\nconvert\n  layout          delimited by semicolon"));
}

TEST_F(Convert, GoesOnAfterAFileThatFails) {
  const std::string out = folder_.folder("out");
  const CommandResult result =
      convert({folder_.path_of("missing"), gauge_, "-o", out, "--to", "csv"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(names_in(out), ElementsAre("gauge.csv"));
}

TEST_F(Convert, CannotChangeTheTerminal) {
  const std::string file = folder_.file("a\x1B[31m.csv", table_that_widens("\x1B[32m,y\n"));
  const CommandResult result = convert({file, "--to", "csv"});
  EXPECT_THAT(result.err, testing::Not(HasSubstr("\x1B")));
  EXPECT_THAT(result.err, HasSubstr("widened"));
}

// --- faults --------------------------------------------------------------------------------------

struct FaultCase {
  const char* rule;
  const char* extension;
};
std::ostream& operator<<(std::ostream& out, const FaultCase& row) { return out << row.rule; }

const FaultCase kFormats[] = {{"Csv", "csv"}, {"Tsv", "tsv"}, {"Jsonl", "jsonl"}, {"Sqlite", "db"}};

class ConvertFault : public testing::TestWithParam<FaultCase> {
 protected:
  const TempFolder folder_;
  const std::string input_ = folder_.file("big.txt", table_that_widens("1,2\n"));
  const std::string out_ = folder_.file(std::string("out.") + GetParam().extension, "");
};

// A file may not become larger than this many kilobytes, so each limit is met by another write. ulimit counts
// blocks of 512 bytes.
TEST_P(ConvertFault, OfAnyWriteLeavesTheOutput) {
  for (const int blocks : {0, 1, 8, 64, 127, 128, 129, 500, 2000}) {
    SCOPED_TRACE(blocks);
    const std::string before = "old " + std::to_string(blocks);
    const bool is_database = std::string(GetParam().extension) == "db";
    folder_.file(std::string("out.") + GetParam().extension, is_database ? "" : before);
    const CommandResult result = shell("ulimit -f \"$3\"; \"$0\" convert \"$1\" -o \"$2\"",
                                       {input_, out_, std::to_string(blocks)});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(content_of(out_), is_database ? "" : before);
    EXPECT_THAT(names_in(folder_.path()), testing::SizeIs(2));
  }
}

TEST_P(ConvertFault, OfTheReaderLeavesTheOutput) {
  std::string packed = gzip_of(table_that_widens("1,2\n"));
  packed.resize(packed.size() - 20);
  const std::string damaged = folder_.file("damaged.gz", packed);
  const CommandResult result = convert({damaged, "-o", out_});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err, HasSubstr("damaged.gz"));
  EXPECT_EQ(content_of(out_), "");
  EXPECT_THAT(names_in(folder_.path()), testing::SizeIs(3));
}

// The input is a pipe that is not closed, so the conversion cannot end by itself.
TEST_P(ConvertFault, BySignalsLeavesTheOutput) {
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    int pipe_ends[2];
    ASSERT_EQ(pipe2(pipe_ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t streams;
    posix_spawn_file_actions_init(&streams);
    posix_spawn_file_actions_adddup2(&streams, pipe_ends[0], STDIN_FILENO);
    const char* const arguments[] = {VLTEXT_PROGRAM, "convert", "-", "-o", out_.c_str(), nullptr};
    pid_t child = 0;
    ASSERT_EQ(posix_spawn(&child, VLTEXT_PROGRAM, &streams, nullptr,
                          const_cast<char* const*>(arguments), environ),
              0);
    posix_spawn_file_actions_destroy(&streams);
    // What was begun shows that the signals are heeded.
    for (int i = 0; i < 1000 && names_in(folder_.path()).size() < 3; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_THAT(names_in(folder_.path()), testing::SizeIs(3));
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    close(pipe_ends[0]);
    close(pipe_ends[1]);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal);
    EXPECT_EQ(content_of(out_), "");
    EXPECT_THAT(names_in(folder_.path()), testing::SizeIs(2));
  }
}

// The rejects go to a pipe that nobody reads until the file was changed, so the conversion waits in its middle.
TEST_F(Convert, NoticesAFileThatChanges) {
  std::string text = "number,word\n";
  for (int i = 0; i < 1000; ++i) text += "1,some words\n";
  for (int i = 0; i < 400'000; ++i) text += "x,some words\n";
  struct Change {
    const char* command;
    const char* what;
  };
  for (const Change& change :
       {Change{"truncate -s 1000 \"$1\"", "shrinks"}, Change{"echo 1,more >> \"$1\"", "grows"}}) {
    SCOPED_TRACE(change.what);
    const std::string big = folder_.file("big.csv", text);
    folder_.file("out.csv", "old");
    const CommandResult result = shell(
        "mkfifo \"$3\"; \"$0\" convert \"$1\" --to csv -o \"$2\" --strict"
        " --import-error-rule fill --rejects \"$3\" & { read -r line; " +
            std::string(change.command) +
            "; cat > /dev/null; } < \"$3\"; wait $!; s=$?; rm \"$3\"; exit $s",
        {big, out_, folder_.path_of("pipe")});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.err, HasSubstr("the file changed while it was read"));
    EXPECT_EQ(content_of(out_), "old");
  }
}

TEST_P(ConvertFault, OfTwoAtOnceIsNone) {
  const std::string alone = folder_.path_of(std::string("alone.") + GetParam().extension);
  const bool is_database = std::string(GetParam().extension) == "db";
  const std::string table = is_database ? " --table t" : "";
  ASSERT_EQ(shell("\"$0\" convert \"$1\" -o \"$2\"" + table, {input_, alone}).status, 0);
  const std::string one = "\"$0\" convert \"$1\" -o \"$2\"" + table;
  const CommandResult result = shell(one + " & " + one + "; s=$?; wait; exit $s", {input_, out_});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(content_of(out_), content_of(alone));
  EXPECT_THAT(names_in(folder_.path()), testing::SizeIs(3));
}
INSTANTIATE_TEST_SUITE_P(Table, ConvertFault, testing::ValuesIn(kFormats), ByRule());

TEST_F(Convert, SaysThatStandardOutputIsFull) {
  const CommandResult result = shell("\"$0\" convert \"$1\" --to csv > /dev/full", {gauge_});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "vltext: standard output: No space left on device\n");
}

TEST_F(Convert, SaysThatAPipeIsClosedAndLeavesNoRejects) {
  const std::string big = folder_.file("big.csv", table_that_widens("1,2\n"));
  const CommandResult result =
      shell("{ \"$0\" convert \"$1\" --to csv --rejects \"$2\"; echo $? >&2; } | true",
            {big, folder_.path_of("rejects.csv")});
  EXPECT_EQ(result.err, "vltext: standard output: Broken pipe\n2\n");
}

}  // namespace
}  // namespace textio::tool
