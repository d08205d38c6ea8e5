// The journal is off: the database is new, and of no use to anyone unless it is complete.
#include "tool/writing/sqlite_writer.hpp"

#include <cmath>
#include <new>
#include <set>

#include <sqlite3.h>

#include "tool/writing/value_text.hpp"

namespace textio::tool {
namespace {

using reading::Batch;
using reading::Column;
using reading::ColumnType;

const char* declared(ColumnType type) {
  switch (type) {
    case ColumnType::integer:
      return "INTEGER";
    case ColumnType::real:
      return "REAL";
    case ColumnType::boolean:
      return "BOOLEAN";
    case ColumnType::date:
      return "DATE";
    case ColumnType::time:
      return "TIME";
    case ColumnType::date_time:
      return "DATETIME";
    default:
      return "TEXT";
  }
}

// As SQLite compares names: only the letters of ASCII have a case.
std::string folded(std::string name) {
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

std::vector<std::string> names_without_twins(const std::vector<ColumnHead>& heads) {
  std::set<std::string> taken;
  for (const ColumnHead& head : heads) taken.insert(folded(head.name));
  std::set<std::string> used;
  std::vector<std::string> names;
  for (const ColumnHead& head : heads) {
    std::string name = head.name;
    bool is_free = used.insert(folded(name)).second;
    for (std::size_t number = 2; !is_free; ++number) {
      name = head.name + '_' + std::to_string(number);
      is_free = !taken.contains(folded(name)) && used.insert(folded(name)).second;
    }
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace

std::string sql_name(std::string_view name) {
  std::string quoted = "\"";
  for (const char c : name) {
    if (c == '"') quoted += '"';
    if (c == '\0') {
      quoted += "\xEF\xBF\xBD";
    } else {
      quoted += c;
    }
  }
  return quoted + '"';
}

std::vector<std::string> tables_in(const std::string& path) {
  sqlite3* opened = nullptr;
  const int result = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const std::unique_ptr<sqlite3, decltype(&sqlite3_close)> database(opened, sqlite3_close);
  std::vector<std::string> tables;
  if (result != SQLITE_OK) return tables;
  sqlite3_stmt* prepared = nullptr;
  sqlite3_prepare_v2(opened,
                     "SELECT name FROM sqlite_schema WHERE type IN ('table', 'view') AND name NOT "
                     "LIKE 'sqlite\\_%' ESCAPE '\\' ORDER BY name",
                     -1, &prepared, nullptr);
  const std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> query(prepared,
                                                                         sqlite3_finalize);
  while (prepared != nullptr && sqlite3_step(prepared) == SQLITE_ROW) {
    tables.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0)));
  }
  return tables;
}

void SqliteWriter::Close::operator()(sqlite3* database) const { sqlite3_close(database); }
void SqliteWriter::Close::operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }

SqliteWriter::SqliteWriter(const std::string& path, std::string table, std::string name)
    : table_(std::move(table)), name_(std::move(name)) {
  sqlite3* database = nullptr;
  const int result =
      sqlite3_open_v2(path.c_str(), &database,
                      SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
  database_.reset(database);
  if (database == nullptr) throw std::bad_alloc();
  expect(result, SQLITE_OK);
}

SqliteWriter::~SqliteWriter() = default;

void SqliteWriter::begin(const std::vector<ColumnHead>& heads) {
  run("PRAGMA journal_mode = OFF");
  run("PRAGMA synchronous = OFF");
  run("PRAGMA locking_mode = EXCLUSIVE");
  run("PRAGMA cache_size = -8192");  // kilobytes
  run("BEGIN");
  std::string columns;
  std::string places;
  const std::vector<std::string> names = names_without_twins(heads);
  for (std::size_t i = 0; i < heads.size(); ++i) {
    if (i > 0) columns += ", ";
    columns += sql_name(names[i]) + ' ' + declared(heads[i].type);
    places += i > 0 ? ", ?" : "?";
  }
  run("CREATE TABLE " + sql_name(table_) + " (" + columns + ')');
  sqlite3_stmt* insertion = nullptr;
  const std::string statement = "INSERT INTO " + sql_name(table_) + " VALUES (" + places + ')';
  expect(sqlite3_prepare_v2(database_.get(), statement.c_str(), -1, &insertion, nullptr),
         SQLITE_OK);
  insertion_.reset(insertion);
  made_.resize(heads.size());
}

void SqliteWriter::write(const Batch& batch) {
  for (std::size_t row = 0; row < batch.num_rows; ++row) insert_row(batch, row);
}

void SqliteWriter::finish() {
  insertion_.reset();
  run("COMMIT");
  expect(sqlite3_close(database_.get()), SQLITE_OK);
  static_cast<void>(database_.release());
}

void SqliteWriter::run(const std::string& statement) {
  expect(sqlite3_exec(database_.get(), statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
}

// Columns that the batch lacks were never bound, and so are NULL.
void SqliteWriter::insert_row(const Batch& batch, std::size_t row) {
  for (std::size_t i = 0; i < batch.columns.size(); ++i) {
    bind(static_cast<int>(i) + 1, batch.columns[i], row);
  }
  expect(sqlite3_step(insertion_.get()), SQLITE_DONE);
  expect(sqlite3_reset(insertion_.get()), SQLITE_OK);
}

void SqliteWriter::bind(int place, const Column& column, std::size_t row) {
  sqlite3_stmt* const insertion = insertion_.get();
  if (column.is_missing(row)) {
    expect(sqlite3_bind_null(insertion, place), SQLITE_OK);
    return;
  }
  switch (column.type) {
    case ColumnType::integer:
      expect(sqlite3_bind_int64(insertion, place, column.integers[row]), SQLITE_OK);
      return;
    case ColumnType::boolean:
      expect(sqlite3_bind_int(insertion, place, column.boolean_at(row) ? 1 : 0), SQLITE_OK);
      return;
    case ColumnType::text:
    case ColumnType::decimal:
    case ColumnType::category:
      bind_text(place, column.text_at(row));
      return;
    case ColumnType::real:
      if (!std::isnan(column.reals[row])) {
        expect(sqlite3_bind_double(insertion, place, column.reals[row]), SQLITE_OK);
        return;
      }
      break;
    default:
      break;
  }
  std::string& made = made_[static_cast<std::size_t>(place) - 1];
  made.clear();
  append_value(made, column, row);
  bind_text(place, made);
}

// The text lives until the row is inserted.
void SqliteWriter::bind_text(int place, std::string_view text) {
  expect(sqlite3_bind_text64(insertion_.get(), place, text.data() == nullptr ? "" : text.data(),
                             text.size(), SQLITE_STATIC, SQLITE_UTF8),
         SQLITE_OK);
}

void SqliteWriter::expect(int result, int wanted) const {
  if (result == wanted) return;
  if (result == SQLITE_NOMEM) throw std::bad_alloc();
  throw WriteError(name_ + ": " + sqlite3_errmsg(database_.get()));
}

}  // namespace textio::tool
