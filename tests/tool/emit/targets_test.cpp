// What the programs say of a file; scripts/check-emit executes them.
#include "tool/emit/targets.hpp"

#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "support/command.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::ByRule;
using testing_support::CommandResult;
using testing_support::run_command;
using testing_support::TempFolder;

CommandResult vltext(const std::vector<std::string>& arguments) {
  return run_command(VLTEXT_PROGRAM, arguments);
}

// Ten lines with a comma as decimal mark, days first, and identifiers with leading zeros.
std::string german() {
  std::string text = "Ort;Pegel;Tag;Nummer\n";
  for (int i = 10; i < 20; ++i) {
    text += "Ort " + std::to_string(i) + ";" + std::to_string(i) + ",25;" + std::to_string(i) +
            ".02.2024;00" + std::to_string(i) + "\n";
  }
  return text;
}

struct TargetCase {
  const char* rule;
  const char* target;
  std::vector<std::string> parts;
};
std::ostream& operator<<(std::ostream& out, const TargetCase& row) { return out << row.rule; }

const TargetCase kTargetCases[] = {
    {"Pandas",
     "pandas",
     {"sep=\";\"", "skiprows=1", "names=[\"Ort\", \"Pegel\", \"Tag\", \"Nummer\"]",
      "\"Nummer\": \"string\"", "decimal=\",\"",
      "table[\"Tag\"] = pd.to_datetime(table[\"Tag\"], format=\"%d.%m.%Y\")"}},
    {"Polars",
     "polars",
     {"subprocess.run([\"vltext\", \"convert\", \"--to\", \"csv\", ",
      "# polars cannot read this file rightly by itself: the numbers in the column \"Pegel\" have "
      "the decimal mark ,."}},
    {"Pyarrow",
     "pyarrow",
     {"# pyarrow cannot read this file rightly by itself: the dates in the column \"Tag\" are not "
      "written as in "
      "ISO 8601.",
      "\"Nummer\": pa.string()"}},
    {"DuckDb",
     "duckdb",
     {"CAST(replace(\"Pegel\", ',', '.') AS DOUBLE) AS \"Pegel\"",
      "CAST(strptime(\"Tag\", '%d.%m.%Y') AS DATE) AS \"Tag\"", "skip = 1", "delim = ';'"}},
    {"Python",
     "python",
     {"list(file)[1:]", "float(cell.replace(\",\", \".\"))",
      "datetime.datetime.strptime(cell, \"%d.%m.%Y\").date()"}},
    {"Spark", "spark", {"c2 string", "F.col(\"c1\")"}},
    {"Postgres",
     "postgres",
     {"\"Pegel\" double precision", "\"Tag\" date", "\"Nummer\" text",
      "\\copy \"data\" FROM PROGRAM 'vltext convert --to csv ''"}},
    {"Sqlite",
     "sqlite",
     {"\"Pegel\" REAL", "\"Nummer\" TEXT", ".import --schema temp --skip 1 \"|vltext"}},
    {"ClickHouse", "clickhouse", {" | clickhouse local --queries-file THIS_FILE", "AS `Pegel`"}},
    {"Readr",
     "readr",
     {"delim = \";\"", "decimal_mark = \",\"", "as.Date(table[[\"Tag\"]], format = \"%d.%m.%Y\")"}},
    {"Fread", "fread", {"sep = \";\"", "dec = \",\"", "skip = 1"}},
    {"BaseR", "base-r", {"sep = \";\"", "dec = \",\"", "skip = 1", "comment.char = \"\""}},
    {"Csvw", "csvw", {"\"url\": \"converted.csv\"", "vltext convert --to csv "}},
    {"Frictionless", "frictionless", {"\"path\": \"converted.csv\"", "vltext convert --to csv "}},
    {"Vltext",
     "vltext",
     {"'--delimiter=;'", "'--quote=none'", "'--names-line=1'", "'--data-line=2'"}},
    {"Json",
     "json",
     {"\"decimal\": \",\"", "\"format\": \"%d.%m.%Y\"", "\"kind\": \"identifier\""}},
};

class Targets : public testing::TestWithParam<TargetCase> {};
TEST_P(Targets, SayWhatTheReaderMustKnow) {
  const TempFolder folder;
  const CommandResult result =
      vltext({folder.file("pegel.csv", german()), "--emit", GetParam().target});
  EXPECT_EQ(result.status, 0) << result.err;
  EXPECT_EQ(result.err, "");
  for (const std::string& part : GetParam().parts) EXPECT_THAT(result.out, HasSubstr(part));
}
INSTANTIATE_TEST_SUITE_P(Table, Targets, testing::ValuesIn(kTargetCases), ByRule());

TEST(Emit, HasATestForEachTarget) {
  for (const Target& target : targets()) {
    const bool is_tested =
        std::any_of(std::begin(kTargetCases), std::end(kTargetCases),
                    [&](const TargetCase& row) { return target.name == row.target; });
    EXPECT_TRUE(is_tested) << target.name;
  }
}

TEST(Emit, ListsTheNamesForAnUnknownOne) {
  const CommandResult result = vltext({"x.csv", "--emit", "excel"});
  EXPECT_EQ(result.status, 2);
  EXPECT_THAT(result.err,
              HasSubstr("--emit: Expected one of pandas, polars, pyarrow, python, spark, duckdb, "
                        "postgres, sqlite, clickhouse, readr, fread, base-r, csvw, frictionless, "
                        "vltext, json, got 'excel'."));
}

TEST(Emit, TakesOneFileWithAPath) {
  EXPECT_THAT(vltext({"a.csv", "b.csv", "--emit", "json"}).err,
              HasSubstr("--emit needs a single FILE"));
  EXPECT_THAT(vltext({"-", "--emit", "json"}).err, HasSubstr("--emit needs the path of a FILE"));
  EXPECT_THAT(vltext({"a.csv", "--json", "--emit", "json"}).err,
              HasSubstr("--emit prints a program"));
}

TEST(Emit, PrintsNothingForATextWithoutATable) {
  const TempFolder folder;
  const CommandResult result = vltext({folder.file("e.txt", ""), "--emit", "pandas"});
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_THAT(result.err, HasSubstr("no table was found in it"));
}

TEST(Emit, HandsOnWhatIsKnownOfTheFile) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", "a;b\n1;x\n2;y;z\n");
  const CommandResult result = vltext({file, "--names-line", "1", "--emit", "pandas"});
  EXPECT_THAT(result.out,
              HasSubstr("[\"vltext\", \"convert\", \"--names-line=1\", \"--to\", \"csv\", "));
}

TEST(Emit, KeepsHostileNamesNames) {
  const TempFolder folder;
  const std::string file =
      folder.file("t.csv", "\"\"\"); import os\",'; DROP TABLE x; --\n1,2\n3,4\n5,6\n7,8\n");
  EXPECT_THAT(vltext({file, "--emit", "pandas"}).out,
              HasSubstr("names=[\"\\\"); import os\", \"'; DROP TABLE x; --\"]"));
  EXPECT_THAT(vltext({file, "--emit", "sqlite"}).out,
              HasSubstr("CREATE TABLE \"data\"(\n  \"\"\"); import os\" INTEGER,\n  \"'; DROP "
                        "TABLE x; --\" INTEGER\n);"));
}

TEST(Emit, SaysWhyARowOfFewerCellsNeedsAConversion) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", "a,b\n1,x\n2\n3,z\n4,u\n");
  for (const Target& target : targets()) {
    if (target.name == "vltext" || target.name == "json") continue;
    const CommandResult result = vltext({file, "--emit", std::string(target.name)});
    EXPECT_THAT(result.out, HasSubstr("by itself: some records have fewer cells than columns"))
        << target.name;
  }
}

TEST(Emit, GivesDocumentsThatAreJson) {
  const TempFolder folder;
  const std::string file = folder.file("t.csv", "a,b\n1,x\n2,y\n3,z\n");
  for (const char* target : {"csvw", "frictionless", "json"}) {
    EXPECT_TRUE(nlohmann::json::accept(vltext({file, "--emit", target}).out)) << target;
  }
}

}  // namespace
}  // namespace textio::tool
