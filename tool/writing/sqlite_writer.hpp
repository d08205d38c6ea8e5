// SqliteWriter: a table as the only one of a new SQLite database.
//
//   SqliteWriter writer("gauge.db.new", "gauge", "gauge.db");
//   writer.begin({{"level", ColumnType::integer}});   // CREATE TABLE "gauge" ("level" INTEGER)
//
//   type                        declared    stored as
//   integer                     INTEGER     an integer
//   real                        REAL        a real; NaN, which SQLite has not, as the text 'NaN'
//   boolean                     BOOLEAN     1 or 0
//   date, time, date-time       DATE, TIME, DATETIME    a text in ISO 8601, which sorts as it should
//   decimal, duration           TEXT        a text
//   text, category              TEXT        a text
//
// Missing values are NULL. SQLite takes names that differ only in case for the same, so the later column gets a
// number: "Level_2". All rows are inserted in one transaction.
//
// The file is not safe from a crash until the caller has synchronised it: it is to be renamed afterwards.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tool/writing/table_writer.hpp"

struct sqlite3;
struct sqlite3_stmt;

namespace textio::tool {

class SqliteWriter : public TableWriter {
 public:
  // The file at `path` is empty or does not exist. `name` is for messages.
  SqliteWriter(const std::string& path, std::string table, std::string name);
  ~SqliteWriter() override;

  void begin(const std::vector<ColumnHead>& heads) override;
  void write(const reading::Batch& batch) override;
  void finish() override;

 private:
  struct Close {
    void operator()(sqlite3* database) const;
    void operator()(sqlite3_stmt* statement) const;
  };

  void run(const std::string& statement);
  void insert_row(const reading::Batch& batch, std::size_t row);
  void bind(int place, const reading::Column& column, std::size_t row);
  void bind_text(int place, std::string_view text);
  void expect(int result, int wanted) const;

  std::string table_;
  std::string name_;
  std::unique_ptr<sqlite3, Close> database_;
  std::unique_ptr<sqlite3_stmt, Close> insertion_;  // closed before the database
  std::vector<std::string> made_;                   // the texts that are made for a row
};

// The name between double quotes, whatever it holds; U+FFFD stands for U+0000, which no statement can have.
std::string sql_name(std::string_view name);

// The tables in the database at `path`; none if it is not a database.
std::vector<std::string> tables_in(const std::string& path);

}  // namespace textio::tool
