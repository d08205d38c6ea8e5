#include <vltextstream/reading/table_reader.hpp>

#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vltextstream/layout/file_error.hpp>

#include "reading/shown.hpp"
#include "support/temp_folder.hpp"

namespace textio::reading {
namespace {

using standalone::DetectSettings;
using standalone::FileError;
using standalone::Layout;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_support::TempFolder;
using Rows = std::vector<std::string>;

constexpr std::string_view kGauge =
    "Gauge 4\n"
    "\n"
    "day,level,flow\n"
    "2024-01-02,2.71,12\n"
    "2024-01-03,n/a,15\n"
    "2024-01-04,2.50,9\n";

std::vector<ColumnType> types_of(const Batch& batch) {
  std::vector<ColumnType> types;
  for (const Column& column : batch.columns) types.push_back(column.type);
  return types;
}

Rows all_rows(TableReader& reader) {
  Rows rows;
  while (const std::optional<Batch> batch = reader.next()) append_shown(*batch, rows);
  return rows;
}

TEST(TableReader, GivesTypedColumnsAndAccountsForEachLine) {
  TableReader reader = TableReader::of_bytes(kGauge);
  EXPECT_THAT(reader.names(), ElementsAre("day", "level", "flow"));
  const std::optional<Batch> batch = reader.next();
  ASSERT_TRUE(batch);
  EXPECT_THAT(types_of(*batch),
              ElementsAre(ColumnType::date, ColumnType::real, ColumnType::integer));
  EXPECT_THAT(batch->lines, ElementsAre(4, 5, 6));
  Rows rows;
  append_shown(*batch, rows);
  EXPECT_EQ(rows, (Rows{"2024-01-02,2.71,12", "2024-01-03,,15", "2024-01-04,2.5,9"}));
  EXPECT_FALSE(reader.next());
  EXPECT_FALSE(reader.next());
  const Account& account = reader.account();
  EXPECT_EQ(shown(account), "preamble 1, blank 2, names 3, data 4-6");
  EXPECT_EQ(account.num_bytes, kGauge.size());
  EXPECT_EQ(account.num_rows, 3U);
  EXPECT_TRUE(account.places.empty());
}

TEST(TableReader, ReadsNothingOfAnEmptyFile) {
  TableReader reader = TableReader::of_bytes("");
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.account(), Account());
}

TEST(TableReader, ReadsNamesWithoutRows) {
  TableReader reader = TableReader::of_bytes("name,town,street\n");
  EXPECT_FALSE(reader.next());
  EXPECT_THAT(reader.names(), ElementsAre("name", "town", "street"));
  EXPECT_EQ(shown(reader.account()), "names 1");
}

TEST(TableReader, KeepsCharactersBeyondTheBasicPlane) {
  const Table table =
      read_table_of_bytes("name,sign\nsmile,\xF0\x9F\x98\x80\ncat,\xF0\x9F\x90\x88\n");
  EXPECT_EQ(shown(table), (Rows{"smile,\xF0\x9F\x98\x80", "cat,\xF0\x9F\x90\x88"}));
}

// -------------------------------------------------------------------------------------------------
// Wider types and more columns

// Numbers up to a line, and what is not.
std::string numbers_and(std::string_view last, int rows = 2'000) {
  std::string bytes = "id,value\n";
  for (int i = 0; i < rows; ++i) bytes += std::to_string(i) + "," + std::to_string(i * 3) + "\n";
  return bytes + "9," + std::string(last) + "\n";
}

ReadSettings with_small_windows() {
  ReadSettings settings;
  settings.window = 4'096;
  return settings;
}

TEST(Widening, MakesRealsOfIntegersFromTheBatchOn) {
  const std::string bytes = numbers_and("2.5");
  TableReader reader = TableReader::of_bytes(bytes, with_small_windows());
  std::vector<ColumnType> types;
  while (const std::optional<Batch> batch = reader.next()) types.push_back(batch->columns[1].type);
  ASSERT_GE(types.size(), 3U);
  EXPECT_EQ(types.front(), ColumnType::integer);
  EXPECT_EQ(types.back(), ColumnType::real);
  EXPECT_EQ(reader.account().count_of(Oddity::widened), 1U);
  ASSERT_EQ(reader.account().places.size(), 1U);
  EXPECT_EQ(reader.account().places[0], (OddPlace{Oddity::widened, 2'002, 2, "2.5"}));
}

TEST(Widening, MakesTextsOfAnythingElseAndLosesNothing) {
  const Table table = read_table_of_bytes(numbers_and("n.v."), with_small_windows());
  EXPECT_EQ(table.num_rows(), 2'001U);
  for (const Batch& batch : table.batches) EXPECT_EQ(batch.columns[1].type, ColumnType::text);
  const Rows rows = shown(table);
  EXPECT_EQ(rows.front(), "0,0");
  EXPECT_EQ(rows.back(), "9,n.v.");
}

TEST(Widening, ReadTableGivesAllBatchesTheWidestType) {
  const Table table = read_table_of_bytes(numbers_and("2.5"), with_small_windows());
  ASSERT_GE(table.batches.size(), 3U);
  for (const Batch& batch : table.batches) EXPECT_EQ(batch.columns[1].type, ColumnType::real);
}

TEST(Widening, TwoPassesGiveOneTypeFromTheStart) {
  ReadSettings settings = with_small_windows();
  settings.two_passes = true;
  const std::string bytes = numbers_and("2.5");
  TableReader reader = TableReader::of_bytes(bytes, settings);
  while (const std::optional<Batch> batch = reader.next()) {
    EXPECT_EQ(batch->columns[1].type, ColumnType::real);
  }
  EXPECT_EQ(reader.account().count_of(Oddity::widened), 0U);
}

TEST(Widening, WithoutItAMisfitIsMissingAndListed) {
  ReadSettings settings = with_small_windows();
  settings.widen = false;
  const Table table = read_table_of_bytes(numbers_and("n.v."), settings);
  EXPECT_EQ(shown(table).back(), "9,");
  EXPECT_EQ(table.account.count_of(Oddity::misfit), 1U);
  EXPECT_THAT(table.account.places, ElementsAre(OddPlace{Oddity::misfit, 2'002, 2, "n.v."}));
}

// Moments in several formats, of which only the last has a zone.
std::string moments_without_one_format() {
  std::string bytes = "id;moment\n";
  for (int i = 0; i < 1'000; ++i) {
    bytes += std::to_string(i);
    bytes += i % 2 == 0 ? ";2024-01-31 15:04\n" : ";Jan 31 2024 15:04:05\n";
  }
  return bytes + "1000;2024-01-31T15:04:05+01:00\n";
}

std::vector<bool> are_utc(const std::string& bytes, const ReadSettings& settings) {
  TableReader reader = TableReader::of_bytes(bytes, settings);
  std::vector<bool> are;
  while (const std::optional<Batch> batch = reader.next()) {
    EXPECT_EQ(batch->columns[1].type, ColumnType::date_time);
    are.push_back(batch->columns[1].is_utc);
  }
  return are;
}

TEST(Zones, OfAColumnWithoutOneFormatCountFromTheirBatchOn) {
  const std::string bytes = moments_without_one_format();
  for (const unsigned threads : {1U, 2U}) {
    ReadSettings settings = with_small_windows();
    settings.num_threads = threads;
    const std::vector<bool> are = are_utc(bytes, settings);
    ASSERT_GE(are.size(), 2U);
    EXPECT_FALSE(are.front());
    EXPECT_TRUE(are.back());
    settings.two_passes = true;
    EXPECT_THAT(are_utc(bytes, settings), Each(true));
  }
}

TEST(Zones, AreTheSameInAllBatchesOfReadTable) {
  const Table table = read_table_of_bytes(moments_without_one_format(), with_small_windows());
  for (const Batch& batch : table.batches) EXPECT_TRUE(batch.columns[1].is_utc);
}

TEST(LongRecords, AddColumnsFromTheBatchOn) {
  std::string bytes = numbers_and("1");
  bytes += "1,2,3\n";
  TableReader reader = TableReader::of_bytes(bytes, with_small_windows());
  std::vector<std::size_t> widths;
  while (const std::optional<Batch> batch = reader.next()) widths.push_back(batch->columns.size());
  EXPECT_EQ(widths.front(), 2U);
  EXPECT_EQ(widths.back(), 3U);
  EXPECT_THAT(reader.names(), ElementsAre("id", "value", "column_3"));
  EXPECT_EQ(reader.account().count_of(Oddity::long_row), 1U);
  const Table table = read_table_of_bytes(bytes, with_small_windows());
  for (const Batch& batch : table.batches) EXPECT_EQ(batch.columns.size(), 3U);
  EXPECT_EQ(shown(table).front(), "0,0,");
  EXPECT_EQ(shown(table).back(), "1,2,3");
}

TEST(ShortRecords, HaveMissingValuesAndAreListed) {
  const Table table = read_table_of_bytes("a,b,c\n1,2,3\n4,5\n6,7,8\n9,10,11\n");
  EXPECT_EQ(shown(table), (Rows{"1,2,3", "4,5,", "6,7,8", "9,10,11"}));
  EXPECT_THAT(table.account.places, ElementsAre(OddPlace{Oddity::short_row, 3, 3, "4,5"}));
}

// -------------------------------------------------------------------------------------------------
// Settings

TEST(ReadSettings, ChooseTypesByNameAndByNumber) {
  ReadSettings settings;
  settings.types = {{u"flow", 0, ColumnType::text}, {u"", 2, ColumnType::text}};
  const Table table = read_table_of_bytes(kGauge, settings);
  EXPECT_THAT(types_of(table.batches.at(0)),
              ElementsAre(ColumnType::date, ColumnType::text, ColumnType::text));
}

TEST(ReadSettings, RefuseTypesForColumnsThatAreNotThere) {
  const auto message = [](const ReadSettings::ColumnChoice& choice) {
    ReadSettings settings;
    settings.types = {choice};
    try {
      TableReader::of_bytes(kGauge, settings);
    } catch (const ReadError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_EQ(message({u"depth", 0, ColumnType::text}),
            "types: Expected the name of a column, got 'depth'.");
  EXPECT_EQ(message({u"", 4, ColumnType::text}), "types: Expected a column from 1 to 3, got 4.");
  EXPECT_EQ(message({u"", 0, ColumnType::text}), "types: Expected a column from 1 to 3, got 0.");
}

TEST(ReadSettings, AllText) {
  ReadSettings settings;
  settings.all_text = true;
  const Table table = read_table_of_bytes("a,b\n1.50,x\n2.0,y\n", settings);
  EXPECT_EQ(shown(table), (Rows{"1.50,x", "2.0,y"}));
}

TEST(ReadSettings, ExactDecimals) {
  ReadSettings settings;
  settings.decimals_as_text = true;
  const Table table = read_table_of_bytes("a;b\n1.234,50;1\n0,10;2\n", settings);
  EXPECT_EQ(shown(table), (Rows{"1234.50,1", "0.10,2"}));
}

TEST(ReadSettings, RefuseWhatCannotBe) {
  ReadSettings none;
  none.num_threads = 0;
  EXPECT_THROW(TableReader::of_bytes(kGauge, none), ReadError);
  ReadSettings nothing;
  nothing.longest_record = 0;
  EXPECT_THROW(TableReader::of_bytes(kGauge, nothing), ReadError);
  ReadSettings most;
  most.longest_record = 1'073'741'824;
  EXPECT_NO_THROW(TableReader::of_bytes(kGauge, most));
  ++most.longest_record;
  EXPECT_THROW(TableReader::of_bytes(kGauge, most), ReadError);
}

class KeptRejects : public ReadSettings::Rejects {
 public:
  void add(std::uint64_t line, std::u16string_view text, std::string_view reason) override {
    rejects.push_back(fmt::format("{}|{}|{}", line, std::string(text.begin(), text.end()), reason));
  }
  std::vector<std::string> rejects;
};

TEST(Rejects, AreHandedOverAsTheyAreInTheFile) {
  KeptRejects kept;
  ReadSettings settings = with_small_windows();
  settings.widen = false;
  settings.rejects = &kept;
  read_table_of_bytes(numbers_and("n.v."), settings);
  EXPECT_THAT(kept.rejects, ElementsAre("2002|9,n.v.|column 2 (value): 'n.v.' is no integer"));
}

TEST(Rejects, HaveOmittedRows) {
  KeptRejects kept;
  ReadSettings settings;
  settings.rejects = &kept;
  settings.detect.options.missing_rule = parser::row_rule::omitrow;
  const Table table = read_table_of_bytes(kGauge, settings);
  EXPECT_EQ(table.num_rows(), 2U);
  EXPECT_EQ(shown(table.account), "preamble 1, blank 2, names 3, data 4, omitted 5, data 6");
  EXPECT_THAT(kept.rejects,
              ElementsAre("5|2024-01-03,n/a,15|column 2 (level): a value is missing"));
}

// -------------------------------------------------------------------------------------------------
// Threads

TEST(Threads, DoNotChangeTheResult) {
  std::string bytes = numbers_and("2.5", 5'000);
  bytes += "1,\"a\nb\"\n7,8,9\n";
  ReadSettings settings = with_small_windows();
  TableReader one = TableReader::of_bytes(bytes, settings);
  const Rows rows = all_rows(one);
  for (const unsigned threads : {2U, 5U}) {
    settings.num_threads = threads;
    TableReader many = TableReader::of_bytes(bytes, settings);
    EXPECT_EQ(all_rows(many), rows);
    EXPECT_EQ(many.account(), one.account());
    EXPECT_EQ(many.names(), one.names());
  }
}

TEST(Threads, EndWithTheReader) {
  ReadSettings settings = with_small_windows();
  settings.num_threads = 3;
  const std::string bytes = numbers_and("1", 50'000);
  TableReader reader = TableReader::of_bytes(bytes, settings);
  EXPECT_TRUE(reader.next());
}

TEST(Threads, HandErrorsOn) {
  ReadSettings settings = with_small_windows();
  settings.num_threads = 2;
  settings.widen = false;
  settings.detect.options.import_error_rule = parser::row_rule::error;
  const std::string bytes = numbers_and("n.v.");
  TableReader reader = TableReader::of_bytes(bytes, settings);
  EXPECT_THROW(all_rows(reader), ReadError);
  EXPECT_FALSE(reader.next());
  EXPECT_EQ(reader.account().num_lines, 2'002U);
  EXPECT_EQ(reader.account().lines_of(LineFate::failed), 1U);
}

// -------------------------------------------------------------------------------------------------
// Inputs

TEST(Inputs, AFileAndItsBytesAreTheSame) {
  const TempFolder folder;
  const std::string path = folder.file("gauge.csv", kGauge);
  EXPECT_EQ(shown(read_table(path)), shown(read_table_of_bytes(kGauge)));
}

TEST(Inputs, ALayoutThatIsKnownIsNotDetectedAgain) {
  Layout layout = standalone::detect_layout(std::u16string_view(u"a;b\n1;2\n"));
  layout.encoding = "UTF-8";
  TableReader reader = TableReader::of_bytes("a;b\n3,5;4,5\n", layout);
  EXPECT_EQ(all_rows(reader), (Rows{"3,5,4,5"}));
}

TEST(Inputs, AMissingFile) {
  try {
    TableReader reader("/no/such/file.csv");
    FAIL() << "no error";
  } catch (const FileError& error) {
    EXPECT_THAT(error.what(), HasSubstr("/no/such/file.csv"));
  }
}

// A pipe with a name, and a thread that writes to it.
class NamedPipe {
 public:
  explicit NamedPipe(std::string bytes) : path_(folder_.path_of("pipe")) {
    if (::mkfifo(path_.c_str(), 0600) != 0) throw std::runtime_error("cannot make " + path_);
    writer_ = std::thread([this, text = std::move(bytes)] {
      std::ofstream out(path_, std::ios::binary);
      out << text;
    });
  }
  ~NamedPipe() { writer_.join(); }
  const std::string& path() const { return path_; }

 private:
  TempFolder folder_;
  std::string path_;
  std::thread writer_;
};

TEST(Inputs, APipeIsReadOnce) {
  const std::string bytes = numbers_and("2.5", 60'000);
  const NamedPipe pipe(bytes);
  TableReader reader(pipe.path(), with_small_windows());
  EXPECT_EQ(all_rows(reader).size(), 60'001U);
  EXPECT_EQ(reader.account().num_bytes, bytes.size());
}

TEST(Inputs, ReadTableOfAPipeGivesAllBatchesTheWidestType) {
  const NamedPipe pipe(numbers_and("2.5"));
  const Table table = read_table(pipe.path(), with_small_windows());
  for (const Batch& batch : table.batches) EXPECT_EQ(batch.columns[1].type, ColumnType::real);
  EXPECT_EQ(table.num_rows(), 2'001U);
}

TEST(Inputs, ARuleThatNeedsTwoPassesRefusesAPipe) {
  const NamedPipe pipe(numbers_and("1"));
  ReadSettings settings;
  settings.detect.options.missing_rule = parser::row_rule::omitvar;
  EXPECT_THROW(TableReader(pipe.path(), settings), ReadError);
}

TEST(ReadTable, CollectsOneBatchIfItIsAskedTo) {
  ReadSettings settings = with_small_windows();
  settings.detect.options.collect_output = true;
  std::string bytes = "id,value,flag,name\n";
  for (int i = 0; i < 1'001; ++i) {
    bytes += std::to_string(i) + "," + (i % 7 == 0 ? "" : std::to_string(i) + ".5") + "," +
             (i % 3 == 0 ? "yes" : "no") + ",n" + std::to_string(i % 5) + "\n";
  }
  const Table joined = read_table_of_bytes(bytes, settings);
  ASSERT_EQ(joined.batches.size(), 1U);
  settings.detect.options.collect_output = false;
  const Table parts = read_table_of_bytes(bytes, settings);
  ASSERT_GE(parts.batches.size(), 3U);
  EXPECT_EQ(shown(joined), shown(parts));
  EXPECT_EQ(joined.batches[0].columns[1].num_missing, 143U);
  EXPECT_EQ(joined.batches[0].lines.back(), 1'002U);
}

}  // namespace
}  // namespace textio::reading
