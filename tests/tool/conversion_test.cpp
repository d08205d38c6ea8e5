// When a table is read once, when twice, and what is written then; with tables that are made up.
#include "tool/conversion.hpp"

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/batches.hpp"

namespace textio::tool {
namespace {

using reading::Account;
using reading::Batch;
using reading::ColumnType;
using reading::LineFate;
using reading::Oddity;
using testing::ElementsAre;
using testing_support::batch_of;
using testing_support::integers;
using testing_support::reals;
using testing_support::texts;

// A table with these batches, and a name for each column of the widest so far.
class ScriptedTable : public TableSource {
 public:
  explicit ScriptedTable(std::vector<Batch> batches, std::size_t num_names = 1)
      : batches_(std::move(batches)) {
    name_columns(num_names);
  }

  const standalone::Layout& layout() const override { return layout_; }
  const std::vector<std::string>& names() const override { return names_; }
  const Account& account() const override { return account_; }

  std::optional<Batch> next() override {
    if (next_ == batches_.size()) return std::nullopt;
    Batch batch = batches_[next_++];
    name_columns(batch.columns.size());
    account_.add(LineFate::data, batch.num_rows, 10 * batch.num_rows);
    account_.num_rows += batch.num_rows;
    return batch;
  }

  void note_widened(std::uint64_t line) { account_.add({Oddity::widened, line, 1, "x"}); }

 private:
  void name_columns(std::size_t count) {
    while (names_.size() < count) names_.push_back("c" + std::to_string(names_.size() + 1));
  }

  std::vector<Batch> batches_;
  std::size_t next_ = 0;
  standalone::Layout layout_;
  std::vector<std::string> names_;
  Account account_;
};

// Writes down what it is told: "begin integer", "2 rows", "finish".
class Notes : public TableWriter {
 public:
  explicit Notes(std::vector<std::string>& notes) : notes_(notes) {}

  void begin(const std::vector<ColumnHead>& heads) override {
    std::string note = "begin";
    for (const ColumnHead& head : heads) {
      note += ' ' + head.name + ' ' + std::string(to_string(head.type));
    }
    notes_.push_back(note);
  }
  void write(const Batch& batch) override {
    notes_.push_back(std::to_string(batch.num_rows) + " rows");
  }
  void finish() override { notes_.emplace_back("finish"); }

 private:
  std::vector<std::string>& notes_;
};

class ConvertTable : public testing::Test {
 protected:
  // The batches of the first reading, and of the second.
  ConversionSteps steps(std::vector<Batch> first, std::vector<Batch> second = {}) {
    ConversionSteps all;
    all.open = [=, this](const std::optional<LearnedTable>& learned) {
      notes_.emplace_back(learned ? "open again" : "open");
      auto table = std::make_unique<ScriptedTable>(learned ? second : first);
      if (!learned && !second.empty()) table->note_widened(7);
      return table;
    };
    all.restart = [this]() -> TableWriter& {
      notes_.emplace_back("restart");
      writer_ = std::make_unique<Notes>(notes_);
      return *writer_;
    };
    return all;
  }

  std::vector<std::string> notes_;
  std::unique_ptr<TableWriter> writer_;
};

TEST_F(ConvertTable, ReadsOnceWhatDoesNotChange) {
  const Converted converted =
      convert_table(steps({batch_of({integers({1, 2})}), batch_of({integers({3})})}));
  EXPECT_THAT(notes_,
              ElementsAre("open", "restart", "begin c1 integer", "2 rows", "1 rows", "finish"));
  EXPECT_EQ(converted.account.num_rows, 3U);
  EXPECT_THAT(converted.names, ElementsAre("c1"));
}

TEST_F(ConvertTable, HasTextColumnsWithoutARow) {
  convert_table(steps({}));
  EXPECT_THAT(notes_, ElementsAre("open", "restart", "begin c1 text", "finish"));
}

// The second batch is of reals, the third of texts: the second reading begins with these.
TEST_F(ConvertTable, ReadsOnToLearnAllTypes) {
  const Converted converted = convert_table(
      steps({batch_of({integers({1})}), batch_of({reals({2.5})}), batch_of({texts({"x"})})},
            {batch_of({texts({"1", "2.5"})}), batch_of({texts({"x"})})}));
  EXPECT_THAT(notes_, ElementsAre("open", "restart", "begin c1 integer", "1 rows", "open again",
                                  "restart", "begin c1 text", "2 rows", "1 rows", "finish"));
  EXPECT_EQ(converted.num_widened, 1U);
  ASSERT_TRUE(converted.first_widened);
  EXPECT_EQ(converted.first_widened->line, 7U);
}

TEST_F(ConvertTable, BeginsWithColumnsThatWereAdded) {
  convert_table(steps({batch_of({integers({1})}), batch_of({integers({2}), texts({"x"})})},
                      {batch_of({integers({1})}), batch_of({integers({2}), texts({"x"})})}));
  EXPECT_THAT(notes_,
              ElementsAre("open", "restart", "begin c1 integer", "1 rows", "open again", "restart",
                          "begin c1 integer c2 text", "1 rows", "1 rows", "finish"));
}

TEST_F(ConvertTable, LearnsBeforeItWritesIfToldSo) {
  const std::vector<Batch> batches = {batch_of({integers({1})})};
  ConversionSteps all = steps(batches, batches);
  all.learns_first = true;
  convert_table(all);
  EXPECT_THAT(notes_,
              ElementsAre("open", "open again", "restart", "begin c1 integer", "1 rows", "finish"));
}

// The others may be of a type that no cell can be read as, such as numbers that were dates.
TEST_F(ConvertTable, TellsWhichColumnsWereWidened) {
  const auto batch = [](bool is_widened) {
    return batch_of({reals({1.5}), is_widened ? texts({"x"}) : integers({1})});
  };
  ConversionSteps all = steps({batch(false), batch(true)}, {batch(true), batch(true)});
  const auto open = all.open;
  std::vector<std::size_t> widened;
  all.open = [&](const std::optional<LearnedTable>& learned) {
    if (learned) widened = learned->widened;
    return open(learned);
  };
  convert_table(all);
  EXPECT_THAT(widened, ElementsAre(1U));
}

TEST_F(ConvertTable, NoticesAnInputThatChanges) {
  const Batch integer = batch_of({integers({1})});
  const Batch real = batch_of({reals({1.5})});
  const Batch text = batch_of({texts({"x"})});
  EXPECT_THROW(convert_table(steps({integer, real}, {text, text})), FileChanged);
  EXPECT_THROW(convert_table(steps({integer, real}, {real})), FileChanged);
  EXPECT_THROW(convert_table(steps({integer, real}, {real, real, real})), FileChanged);
}

TEST_F(ConvertTable, ChecksBeforeItFinishes) {
  ConversionSteps all = steps({batch_of({integers({1})})});
  all.check = [](const TableSource& table) {
    EXPECT_EQ(table.account().num_rows, 1U);
    throw std::runtime_error("refused");
  };
  EXPECT_THROW(convert_table(all), std::runtime_error);
  EXPECT_THAT(notes_, ElementsAre("open", "restart", "begin c1 integer", "1 rows"));
}

TEST_F(ConvertTable, ChecksBeforeItWritesIfItLearnsFirst) {
  ConversionSteps all = steps({batch_of({integers({1})})});
  all.learns_first = true;
  all.check = [](const TableSource&) { throw std::runtime_error("refused"); };
  EXPECT_THROW(convert_table(all), std::runtime_error);
  EXPECT_THAT(notes_, ElementsAre("open"));
}

TEST_F(ConvertTable, TellsHowFarItIs) {
  ConversionSteps all = steps({batch_of({integers({1, 2})}), batch_of({integers({3})})});
  std::vector<std::uint64_t> rows;
  all.progress = [&](const Account& account) { rows.push_back(account.num_rows); };
  convert_table(all);
  EXPECT_THAT(rows, ElementsAre(2U, 3U));
}

}  // namespace
}  // namespace textio::tool
