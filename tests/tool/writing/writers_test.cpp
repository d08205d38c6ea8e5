// The same rows in each format, and texts and names that could be mistaken for something else.
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <unistd.h>

#include "support/batches.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"
#include "tool/writing/byte_sink.hpp"
#include "tool/writing/delimited_writer.hpp"
#include "tool/writing/json_lines_writer.hpp"
#include "tool/writing/sqlite_writer.hpp"

namespace textio::tool {
namespace {

using reading::Batch;
using reading::ColumnType;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_support::batch_of;
using testing_support::booleans;
using testing_support::ByRule;
using testing_support::categories;
using testing_support::dates;
using testing_support::integers;
using testing_support::reals;
using testing_support::TempFolder;
using testing_support::texts;

constexpr auto kMissing = std::nullopt;

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

enum class Form { csv, tsv, jsonl };

// What a writer of text makes of a table.
std::string written(Form form, const std::vector<ColumnHead>& heads,
                    const std::vector<Batch>& batches) {
  const TempFolder folder;
  const std::string path = folder.file("out", "");
  const int fd = open(path.c_str(), O_WRONLY);
  ByteSink sink(fd, path);
  std::unique_ptr<TableWriter> writer;
  if (form == Form::jsonl) {
    writer = std::make_unique<JsonLinesWriter>(sink);
  } else {
    writer = std::make_unique<DelimitedWriter>(sink, form == Form::csv ? ',' : '\t');
  }
  writer->begin(heads);
  for (const Batch& batch : batches) writer->write(batch);
  writer->finish();
  close(fd);
  return content_of(path);
}

// Every type, a row with values and one without.
const std::vector<ColumnHead> kHeads = {
    {"i", ColumnType::integer},   {"r", ColumnType::real},     {"d", ColumnType::decimal},
    {"b", ColumnType::boolean},   {"day", ColumnType::date},   {"t", ColumnType::time},
    {"m", ColumnType::date_time}, {"p", ColumnType::duration}, {"x", ColumnType::text},
    {"c", ColumnType::category},
};

Batch all_types() {
  return batch_of({
      integers({-7, kMissing}),
      reals({2.5, kMissing}),
      texts({"12.50", kMissing}, ColumnType::decimal),
      booleans({true, kMissing}),
      dates({59, kMissing}),
      integers({1'500'000, kMissing}, ColumnType::time),
      integers({86'400'000'000, kMissing}, ColumnType::date_time),
      integers({90'000'000, kMissing}, ColumnType::duration),
      texts({"a b", kMissing}),
      categories({"good"}, {0, kMissing}),
  });
}

TEST(WriteCsv, WritesEveryType) {
  EXPECT_EQ(written(Form::csv, kHeads, {all_types()}),
            "i,r,d,b,day,t,m,p,x,c\n"
            "-7,2.5,12.50,true,1970-03-01,00:00:01.5,1970-01-02T00:00:00,PT1M30S,a b,good\n"
            ",,,,,,,,,\n");
}

TEST(WriteTsv, WritesEveryType) {
  EXPECT_EQ(
      written(Form::tsv, kHeads, {all_types()}),
      "i\tr\td\tb\tday\tt\tm\tp\tx\tc\n"
      "-7\t2.5\t12.50\ttrue\t1970-03-01\t00:00:01.5\t1970-01-02T00:00:00\tPT1M30S\ta b\tgood\n"
      "\t\t\t\t\t\t\t\t\t\n");
}

TEST(WriteJsonLines, WritesEveryType) {
  EXPECT_EQ(written(Form::jsonl, kHeads, {all_types()}),
            R"({"i":-7,"r":2.5,"d":12.50,"b":true,"day":"1970-03-01","t":"00:00:01.5",)"
            R"("m":"1970-01-02T00:00:00","p":"PT1M30S","x":"a b","c":"good"})"
            "\n"
            R"({"i":null,"r":null,"d":null,"b":null,"day":null,"t":null,)"
            R"("m":null,"p":null,"x":null,"c":null})"
            "\n");
}

// --- cells that need quotes ----------------------------------------------------------------------

struct TextCase {
  const char* rule;
  std::string text;
  const char* csv;
  const char* tsv;
  const char* json;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const TextCase kTexts[] = {
    {"Plain", "abc", "abc", "abc", R"("abc")"},
    {"EmptyIsNotMissing", "", "\"\"", "\"\"", R"("")"},
    {"Comma", "a,b", "\"a,b\"", "a,b", R"("a,b")"},
    {"Tab", "a\tb", "a\tb", "\"a\tb\"", R"("a\tb")"},
    {"Quote", "a\"b", "\"a\"\"b\"", "\"a\"\"b\"", R"("a\"b")"},
    {"QuotesAlone", "\"\"", "\"\"\"\"\"\"", "\"\"\"\"\"\"", R"("\"\"")"},
    {"LineFeed", "a\nb", "\"a\nb\"", "\"a\nb\"", R"("a\nb")"},
    {"CarriageReturn", "a\rb", "\"a\rb\"", "\"a\rb\"", R"("a\rb")"},
    {"BlankBefore", " a", "\" a\"", "\" a\"", R"(" a")"},
    {"TabAfter", "a\t", "\"a\t\"", "\"a\t\"", R"("a\t")"},
    {"Backslash", "a\\b", "a\\b", "a\\b", R"("a\\b")"},
    {"ByteOrderMark",
     "\xEF\xBB\xBF"
     "a",
     "\"\xEF\xBB\xBF"
     "a\"",
     "\"\xEF\xBB\xBF"
     "a\"",
     "\"\xEF\xBB\xBF"
     "a\""},
    {"NulIsKept", std::string("a\0b", 3), nullptr, nullptr, R"("a\u0000b")"},
    {"Escape", "\x1B[31m", "\x1B[31m", "\x1B[31m", R"("\u001b[31m")"},
    {"WordOfJson", "null", "null", "null", R"("null")"},
    {"OutsideTheBmp", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80", "\xF0\x9F\x98\x80",
     "\"\xF0\x9F\x98\x80\""},
};

class WriteText : public testing::TestWithParam<TextCase> {};

TEST_P(WriteText, AsACell) {
  const TextCase& row = GetParam();
  const Batch batch = batch_of({integers({1}), texts({row.text})});
  const std::string csv = row.csv != nullptr ? row.csv : row.text;
  const std::string tsv = row.tsv != nullptr ? row.tsv : row.text;
  EXPECT_EQ(written(Form::csv, {{"n"}, {"x"}}, {batch}), "n,x\n1," + csv + '\n');
  EXPECT_EQ(written(Form::tsv, {{"n"}, {"x"}}, {batch}), "n\tx\n1\t" + tsv + '\n');
  EXPECT_EQ(written(Form::jsonl, {{"n"}, {"x"}}, {batch}),
            std::string(R"({"n":1,"x":)") + row.json + "}\n");
}

TEST_P(WriteText, AsAName) {
  const TextCase& row = GetParam();
  const Batch batch = batch_of({integers({1})});
  const std::string csv = row.csv != nullptr ? row.csv : row.text;
  EXPECT_EQ(written(Form::csv, {{row.text}}, {batch}), csv + "\n1\n");
  const std::string line = written(Form::jsonl, {{row.text}}, {batch});
  EXPECT_EQ(line, std::string("{") + row.json + ":1}\n");
  EXPECT_EQ(nlohmann::json::parse(line).begin().key(), row.text);
}
INSTANTIATE_TEST_SUITE_P(Table, WriteText, testing::ValuesIn(kTexts), ByRule());

TEST(WriteCsv, MarksAMissingValueInASingleColumn) {
  EXPECT_EQ(written(Form::csv, {{"x"}}, {batch_of({integers({1, kMissing, 3})})}),
            "x\n1\n\"\"\n3\n");
}

TEST(WriteCsv, WritesTheNamesOfATableWithoutRows) {
  EXPECT_EQ(written(Form::csv, {{"a"}, {"b"}}, {}), "a,b\n");
  EXPECT_EQ(written(Form::jsonl, {{"a"}, {"b"}}, {}), "");
}

// Columns that a longer record added later.
TEST(WriteTexts, FillsColumnsThatABatchLacks) {
  const std::vector<ColumnHead> heads = {{"a"}, {"b"}, {"c"}};
  const std::vector<Batch> batches = {batch_of({integers({1})}),
                                      batch_of({integers({2}), texts({"x"}), texts({"y"})})};
  EXPECT_EQ(written(Form::csv, heads, batches), "a,b,c\n1,,\n2,x,y\n");
  EXPECT_EQ(written(Form::jsonl, heads, batches),
            "{\"a\":1,\"b\":null,\"c\":null}\n{\"a\":2,\"b\":\"x\",\"c\":\"y\"}\n");
}

TEST(WriteJsonLines, HasTextsForNumbersThatAreNotFinite) {
  const double infinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(written(Form::jsonl, {{"x"}}, {batch_of({reals({std::nan(""), infinity, -infinity})})}),
            "{\"x\":\"NaN\"}\n{\"x\":\"Inf\"}\n{\"x\":\"-Inf\"}\n");
}

TEST(WriteJsonLines, HasTextsForDecimalsThatAreNoNumbersOfJson) {
  const Batch batch =
      batch_of({texts({"-0.50", "007", ".5", "5.", "-", "1e5", "0", "10"}, ColumnType::decimal)});
  EXPECT_EQ(written(Form::jsonl, {{"x"}}, {batch}),
            "{\"x\":-0.50}\n{\"x\":\"007\"}\n{\"x\":\".5\"}\n{\"x\":\"5.\"}\n{\"x\":\"-\"}\n"
            "{\"x\":\"1e5\"}\n{\"x\":0}\n{\"x\":10}\n");
}

TEST(WriteCsv, PassesMoreThanABlock) {
  testing_support::Rows<std::string> rows(3, std::string(ByteSink::kBlock, 'x'));
  const std::string all = written(Form::csv, {{"x"}}, {batch_of({texts(rows)})});
  EXPECT_EQ(all.size(), 2 + 3 * (ByteSink::kBlock + 1));
}

TEST(ByteSink, SaysWhatCannotBeWritten) {
  const int full = open("/dev/full", O_WRONLY);
  ByteSink sink(full, "gauge.csv");
  sink.text() = "x";
  try {
    sink.flush();
    FAIL() << "was written";
  } catch (const WriteError& error) {
    EXPECT_STREQ(error.what(), "gauge.csv: No space left on device");
  }
  close(full);
}

// --- SQLite --------------------------------------------------------------------------------------

using Row = std::vector<std::string>;

// The answer to a query, each value as SQLite quotes it.
std::vector<Row> rows_of(const std::string& path, const std::string& query) {
  sqlite3* database = nullptr;
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  sqlite3_stmt* statement = nullptr;
  if (sqlite3_prepare_v2(database, query.c_str(), -1, &statement, nullptr) != SQLITE_OK) {
    ADD_FAILURE() << sqlite3_errmsg(database);
  }
  std::vector<Row> rows;
  while (statement != nullptr && sqlite3_step(statement) == SQLITE_ROW) {
    Row& row = rows.emplace_back();
    for (int i = 0; i < sqlite3_column_count(statement); ++i) {
      const auto* const text = reinterpret_cast<const char*>(sqlite3_column_text(statement, i));
      row.emplace_back(
          text == nullptr
              ? "NULL"
              : std::string(text, static_cast<std::size_t>(sqlite3_column_bytes(statement, i))));
    }
  }
  sqlite3_finalize(statement);
  sqlite3_close(database);
  return rows;
}

class WriteSqlite : public testing::Test {
 protected:
  void write(const std::string& table, const std::vector<ColumnHead>& heads,
             const std::vector<Batch>& batches) const {
    SqliteWriter writer(path_, table, "out.db");
    writer.begin(heads);
    for (const Batch& batch : batches) writer.write(batch);
    writer.finish();
  }

  const TempFolder folder_;
  const std::string path_ = folder_.path_of("out.db");
};

TEST_F(WriteSqlite, StoresEveryType) {
  write("t", kHeads, {all_types()});
  EXPECT_THAT(rows_of(path_, "SELECT * FROM t"),
              ElementsAre(Row{"-7", "2.5", "12.50", "1", "1970-03-01", "00:00:01.5",
                              "1970-01-02T00:00:00", "PT1M30S", "a b", "good"},
                          Row(10, "NULL")));
  EXPECT_THAT(rows_of(path_,
                      "SELECT typeof(i), typeof(r), typeof(d), typeof(b), typeof(day), "
                      "typeof(m), typeof(x) FROM t LIMIT 1"),
              ElementsAre(Row{"integer", "real", "text", "integer", "text", "text", "text"}));
  EXPECT_THAT(rows_of(path_, "SELECT type FROM pragma_table_info('t')"),
              ElementsAre(Row{"INTEGER"}, Row{"REAL"}, Row{"TEXT"}, Row{"BOOLEAN"}, Row{"DATE"},
                          Row{"TIME"}, Row{"DATETIME"}, Row{"TEXT"}, Row{"TEXT"}, Row{"TEXT"}));
}

TEST_F(WriteSqlite, KeepsWhatANumberWouldLose) {
  const double infinity = std::numeric_limits<double>::infinity();
  const std::int64_t most = std::numeric_limits<std::int64_t>::max();
  write("t", {{"r", ColumnType::real}, {"i", ColumnType::integer}, {"x", ColumnType::text}},
        {batch_of({reals({std::nan(""), infinity, 0.1}), integers({most, 0, -1}),
                   texts({"007", "", std::string("a\0b", 3)})})});
  EXPECT_THAT(rows_of(path_, "SELECT r, typeof(r) FROM t"),
              ElementsAre(Row{"NaN", "text"}, Row{"Inf", "real"}, Row{"0.1", "real"}));
  EXPECT_THAT(rows_of(path_, "SELECT i FROM t"),
              ElementsAre(Row{"9223372036854775807"}, Row{"0"}, Row{"-1"}));
  EXPECT_THAT(rows_of(path_, "SELECT x FROM t"),
              ElementsAre(Row{"007"}, Row{""}, Row{std::string("a\0b", 3)}));
}

TEST_F(WriteSqlite, QuotesNames) {
  const std::vector<std::string> names = {"select",   "a\"b", "x); DROP TABLE t; --", "it's", "[c]",
                                          "\xC3\xA4", "rowid"};
  std::vector<ColumnHead> heads;
  std::vector<reading::Column> columns;
  for (const std::string& name : names) {
    heads.push_back({name, ColumnType::integer});
    columns.push_back(integers({1}));
  }
  const std::string table = "t\"; DROP TABLE x; --";
  write(table, heads, {batch_of(columns)});
  std::vector<Row> expected;
  for (const std::string& name : names) expected.push_back({name});
  EXPECT_EQ(rows_of(path_, "SELECT name FROM pragma_table_info('t\"; DROP TABLE x; --')"),
            expected);
  EXPECT_THAT(tables_in(path_), ElementsAre(table));
}

TEST_F(WriteSqlite, TellsNamesApartThatDifferInCase) {
  write("t", {{"Level"}, {"level"}, {"LEVEL"}, {"level_2"}},
        {batch_of({integers({1}), integers({2}), integers({3}), integers({4})})});
  EXPECT_THAT(rows_of(path_, "SELECT name FROM pragma_table_info('t')"),
              ElementsAre(Row{"Level"}, Row{"level_3"}, Row{"LEVEL_4"}, Row{"level_2"}));
}

TEST_F(WriteSqlite, FillsColumnsThatABatchLacks) {
  write("t", {{"a"}, {"b"}}, {batch_of({integers({1})}), batch_of({integers({2}), texts({"x"})})});
  EXPECT_THAT(rows_of(path_, "SELECT * FROM t"), ElementsAre(Row{"1", "NULL"}, Row{"2", "x"}));
}

TEST_F(WriteSqlite, RefusesAReservedNameAndTooManyColumns) {
  EXPECT_THROW(write("sqlite_x", {{"a"}}, {}), WriteError);
  std::vector<ColumnHead> heads;
  for (int i = 0; i < 3000; ++i) heads.push_back({"c" + std::to_string(i)});
  try {
    SqliteWriter writer(folder_.path_of("wide.db"), "t", "wide.db");
    writer.begin(heads);
    FAIL() << "was made";
  } catch (const WriteError& error) {
    EXPECT_THAT(error.what(), HasSubstr("wide.db: too many columns"));
  }
}

TEST_F(WriteSqlite, SaysWhereItCannotWrite) {
  EXPECT_THROW(SqliteWriter("/nowhere/out.db", "t", "out.db"), WriteError);
}

TEST(SqlName, HasNoNul) {
  EXPECT_EQ(sql_name(std::string("a\0b", 3)),
            "\"a\xEF\xBF\xBD"
            "b\"");
}

TEST(TablesIn, FindsNoneWhereThereIsNoDatabase) {
  const TempFolder folder;
  EXPECT_THAT(tables_in(folder.file("t.db", "no database")), ElementsAre());
  EXPECT_THAT(tables_in(folder.path_of("missing")), ElementsAre());
}

}  // namespace
}  // namespace textio::tool
