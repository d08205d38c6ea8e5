// `vltext catalog`, `vltext groups`, and folders as arguments of the tool.
#include "tool/catalog/catalog_command.hpp"

#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

using Words = std::vector<std::string>;

CommandResult vltext(const Words& arguments, const std::string& input = {}) {
  return run_command(VLTEXT_PROGRAM, arguments, input);
}

std::vector<json> lines_of(const std::string& text) {
  std::vector<json> lines;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) lines.push_back(json::parse(line));
  return lines;
}

const std::string kTable = "time,level\n2024-01-01,1.5\n2024-01-02,2.5\n2024-01-03,3.5\n";
const std::string kSemicolons = "time;level\n2024-01-01;1.5\n2024-01-02;2.5\n2024-01-03;3.5\n";
const std::string kLonger = "time,level,n\n2024-01-01,1.5,1\n2024-01-02,2.5,2\n2024-01-03,3.5,3\n";

// Five files in a folder, one of them odd, and one that is empty; a folder below.
class Catalog : public testing::Test {
 protected:
  Catalog() {
    folder_.file("01.csv", kTable);
    folder_.file("02.csv", kTable);
    folder_.file("03.csv", kSemicolons);
    folder_.file("empty", "");
    folder_.folder("below");
    folder_.file("below/04.csv", kLonger);
  }

  std::string path(const std::string& name) const { return folder_.path_of(name); }

  const TempFolder folder_;
};

// --- catalog -------------------------------------------------------------------------------------

TEST_F(Catalog, HasALineForEachFile) {
  const CommandResult result = vltext({"catalog", folder_.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::vector<json> rows = lines_of(result.out);
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0]["catalog"], 1);
  EXPECT_EQ(rows[0]["path"], path("01.csv"));
  EXPECT_EQ(rows[0]["size"], kTable.size());
  EXPECT_EQ(rows[0]["columns"][1],
            (json{{"name", "level"}, {"kind", "decimal"}, {"unit", nullptr}}));
  EXPECT_EQ(rows[0]["layout_fingerprint"], rows[1]["layout_fingerprint"]);
  EXPECT_EQ(rows[0]["schema_fingerprint"], rows[2]["schema_fingerprint"]);
  EXPECT_NE(rows[0]["layout_fingerprint"], rows[2]["layout_fingerprint"]);
  EXPECT_EQ(rows[2]["delimiters"], json({";"}));
  EXPECT_EQ(rows[3]["status"], "no table");
}

TEST_F(Catalog, LooksBelowOnRequest) {
  const std::vector<json> rows = lines_of(vltext({"catalog", "--recursive", folder_.path()}).out);
  ASSERT_EQ(rows.size(), 5U);
  EXPECT_EQ(rows[3]["path"], path("below/04.csv"));
}

TEST_F(Catalog, IsTheSameForAnyNumberOfJobs) {
  for (int i = 0; i < 200; ++i) folder_.file("n" + std::to_string(i), kTable);
  const std::string alone = vltext({"catalog", "--jobs", "1", folder_.path()}).out;
  EXPECT_EQ(lines_of(alone).size(), 204U);
  EXPECT_EQ(vltext({"catalog", "--jobs", "8", folder_.path()}).out, alone);
}

TEST_F(Catalog, ObeysWhatIsKnown) {
  const std::vector<json> rows =
      lines_of(vltext({"catalog", "--delimiter", ";", path("01.csv")}).out);
  EXPECT_EQ(rows[0]["delimiters"], json({";"}));
}

// None of these is opened, so none can keep the tool waiting.
TEST_F(Catalog, HasALineForWhatFails) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const CommandResult result =
      vltext({"catalog", path("pipe"), "/dev/zero", path("missing"), path("01.csv")});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  const std::vector<json> rows = lines_of(result.out);
  ASSERT_EQ(rows.size(), 4U);
  EXPECT_EQ(rows[0]["error"], "this is a pipe, not a regular file");
  EXPECT_EQ(rows[1]["error"], "this is a device, not a regular file");
  EXPECT_EQ(rows[2]["error"], "No such file or directory");
  EXPECT_EQ(rows[3]["status"], "table");
}

TEST_F(Catalog, KeepsHostileNamesInTheirLine) {
  const Words names = {"-n", "--json", "a\nb", "\"", "\xFF\xFE", "a\x1B[2J"};
  const TempFolder folder;
  for (const std::string& name : names) folder.file(name, kTable);
  const CommandResult result = vltext({"catalog", folder.path()});
  EXPECT_EQ(lines_of(result.out).size(), names.size());
  EXPECT_THAT(result.out, Not(HasSubstr("\x1B")));
  const CommandResult groups = vltext({"groups", "-"}, result.out);
  EXPECT_THAT(groups.out, StartsWith("6 files: 1 group\n"));
}

TEST_F(Catalog, OfAnEmptyFolderIsEmpty) {
  const TempFolder empty;
  const CommandResult result = vltext({"catalog", empty.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: cannot open '" + empty.path() + "': no file is in this folder\n");
}

TEST_F(Catalog, CannotBeWrittenToAFullDevice) {
  const CommandResult result = run_command(
      "/bin/sh", {"-c", "\"$0\" catalog \"$1\" > /dev/full", VLTEXT_PROGRAM, folder_.path()});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "vltext: standard output: No space left on device\n");
}

struct WrongCase {
  const char* rule;
  Words arguments;
  const char* message;
};
std::ostream& operator<<(std::ostream& out, const WrongCase& row) { return out << row.rule; }

const WrongCase kWrongLines[] = {
    {"CatalogOfNothing", {"catalog"}, "FILE is required"},
    {"GroupsOfNothing", {"groups"}, "FILE is required"},
    {"CatalogOfStandardInput", {"catalog", "-"}, "catalog needs the paths of files or folders"},
    {"Jobs", {"catalog", "--jobs", "0", "x"}, "from 1 to 256"},
    {"MaxBytes", {"groups", "--max-bytes", "-1", "x"}, "--max-bytes"},
    {"UnknownOption", {"groups", "--no-such", "x"}, "--no-such"},
};

class CatalogLine : public testing::TestWithParam<WrongCase> {};
TEST_P(CatalogLine, RefusesWhatIsWrong) {
  const CommandResult result = vltext(GetParam().arguments);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(Table, CatalogLine, testing::ValuesIn(kWrongLines), ByRule());

TEST(CatalogHelp, SaysHowTheCommandsAreCalled) {
  EXPECT_THAT(vltext({"catalog", "--help"}).out, StartsWith("Usage: vltext catalog "));
  EXPECT_THAT(vltext({"groups", "--help"}).out, StartsWith("Usage: vltext groups "));
}

// --- groups --------------------------------------------------------------------------------------

TEST_F(Catalog, IsGrouped) {
  const CommandResult result = vltext({"groups", "--recursive", folder_.path()});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out,
            "5 files: 1 group, 2 odd ones, 1 without a table\n"
            "\n"
            "Group 1: 2 files, comma, UTF-8, 2 columns\n"
            "  columns  time (date), level (number)\n"
            "  files    " +
                path("01.csv") + ", " + path("02.csv") +
                "\n"
                "  odd      " +
                path("03.csv") +
                ": semicolon\n"
                "           " +
                path("below/04.csv") +
                ": a column more (n)\n"
                "\n"
                "Without a table:\n"
                "  " +
                path("empty") + ": empty\n");
}

TEST_F(Catalog, GivesTheSameGroupsFromFilesRowsAndBoth) {
  const std::string expected = vltext({"groups", "--json", "--recursive", folder_.path()}).out;
  const std::string rows = vltext({"catalog", "--recursive", folder_.path()}).out;
  const TempFolder elsewhere;
  const std::string saved = elsewhere.file("rows.jsonl", rows);
  EXPECT_EQ(vltext({"groups", "--json", saved}).out, expected);
  EXPECT_EQ(vltext({"groups", "--json", "-"}, rows).out, expected);
  const std::size_t second = rows.find('\n') + 1;
  const std::string rest = elsewhere.file("rest.jsonl", rows.substr(second));
  EXPECT_EQ(vltext({"groups", "--json", path("01.csv"), rest}).out, expected);
}

TEST_F(Catalog, ThatIsDamagedIsRefusedWithTheLine) {
  const std::string rows = vltext({"catalog", folder_.path()}).out;
  const TempFolder elsewhere;
  const std::string cut = elsewhere.file("rows.jsonl", rows.substr(0, rows.size() - 30));
  const CommandResult result = vltext({"groups", cut});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_EQ(result.err, "vltext: " + cut + ": line 4 is not a row of a catalogue of version 1\n");
}

// --- folders, and many files, without a command --------------------------------------------------

TEST_F(Catalog, AFolderMeansItsFiles) {
  const auto files = [&](const Words& options) {
    Words arguments = {"--json", folder_.path()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Words paths;
    const json document = json::parse(vltext(arguments).out);
    for (const json& file : document["files"]) paths.push_back(file["file"]);
    return paths;
  };
  EXPECT_THAT(files({}),
              ElementsAre(path("01.csv"), path("02.csv"), path("03.csv"), path("empty")));
  EXPECT_THAT(files({"--recursive"}), ElementsAre(path("01.csv"), path("02.csv"), path("03.csv"),
                                                  path("below/04.csv"), path("empty")));
}

TEST_F(Catalog, AnEmptyFolderIsComplainedOf) {
  const TempFolder empty;
  const CommandResult result = vltext({empty.path(), path("01.csv")});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "vltext: cannot open '" + empty.path() + "': no file is in this folder\n");
  EXPECT_THAT(result.out, HasSubstr("delimited by comma"));
}

TEST_F(Catalog, JsonLinesHaveFailuresAmongThem) {
  const CommandResult result = vltext({"--jsonl", path("missing"), path("01.csv"), folder_.path()});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.err, "");
  const std::vector<json> lines = lines_of(result.out);
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0],
            (json{{"file", path("missing")},
                  {"error", "cannot open '" + path("missing") + "': No such file or directory"}}));
  EXPECT_EQ(lines[1], json::parse(vltext({"--json", path("01.csv")}).out)["files"][0]);
  EXPECT_EQ(lines[5]["no_table"], "empty");
}

// The reports of 20 files are printed, those of 21 are a summary.
TEST_F(Catalog, ManyReportsAreASummary) {
  const TempFolder folder;
  for (int i = 10; i < 30; ++i) folder.file(std::to_string(i), kTable);
  const CommandResult twenty = vltext({folder.path()});
  EXPECT_EQ(twenty.status, 0);
  EXPECT_THAT(twenty.out, Not(HasSubstr("Group 1")));
  folder.file("30", kSemicolons);
  const CommandResult more = vltext({folder.path()});
  EXPECT_EQ(more.status, 0);
  EXPECT_THAT(more.out, StartsWith("21 files: 1 group, 1 odd one\n"));
  EXPECT_THAT(more.out, HasSubstr(folder.path_of("30") + ": semicolon\n"));
  EXPECT_THAT(vltext({"--verbose", folder.path()}).out, StartsWith(twenty.out));
  EXPECT_THAT(vltext({"--explain", folder.path()}).out, Not(HasSubstr("Group 1")));
}

TEST_F(Catalog, ASummaryHasTheExitStatusOfItsFiles) {
  const TempFolder folder;
  for (int i = 0; i < 25; ++i) folder.file("a" + std::to_string(i), kTable);
  folder.file("e", "");
  const CommandResult doubtful = vltext({folder.path()});
  EXPECT_EQ(doubtful.status, 1);
  EXPECT_THAT(doubtful.out, HasSubstr("\nWithout a table:\n  " + folder.path_of("e")));
  const CommandResult failed = vltext({folder.path(), path("missing")});
  EXPECT_EQ(failed.status, 2);
  EXPECT_EQ(failed.err,
            "vltext: cannot open '" + path("missing") + "': No such file or directory\n");
  EXPECT_THAT(failed.out, StartsWith("27 files: 1 group, 1 without a table, 1 not read\n"));
  const CommandResult none = vltext(Words(30, path("missing")));
  EXPECT_EQ(none.status, 2);
  EXPECT_EQ(none.out, "");
}

}  // namespace
}  // namespace textio
