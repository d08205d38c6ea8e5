// The programs of `vltext FILE --emit NAME`.
//
//   const Target* const target = find_target("pandas");
//   const std::string program = target->program(facts);
//
// To add one: a file with the function that gives its program, its line in targets.cpp and its row in the tests.
//
// Errors  std::runtime_error where a language has no way to say a path.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "tool/emit/emit_facts.hpp"

namespace textio::tool {

// Each gives a whole program or document that ends with a line break. It reads the file itself if the reader can do that
// rightly, and otherwise what `vltext convert` makes of it; then a comment says why.
std::string pandas_program(const Facts& facts);
std::string polars_program(const Facts& facts);
std::string pyarrow_program(const Facts& facts);
std::string duckdb_program(const Facts& facts);
std::string spark_program(const Facts& facts);
std::string python_program(const Facts& facts);
std::string readr_program(const Facts& facts);
std::string fread_program(const Facts& facts);
std::string base_r_program(const Facts& facts);
std::string postgres_program(const Facts& facts);
std::string sqlite_program(const Facts& facts);
std::string clickhouse_program(const Facts& facts);
std::string csvw_document(const Facts& facts);
std::string frictionless_document(const Facts& facts);
std::string vltext_command(const Facts& facts);
std::string json_document(const Facts& facts);

// Why the reader cannot read the file by itself, as the end of a sentence; or empty. Then its program reads what
// `vltext convert` makes of the file.
std::string pandas_obstacle(const Facts& facts);
std::string polars_obstacle(const Facts& facts);
std::string pyarrow_obstacle(const Facts& facts);
std::string duckdb_obstacle(const Facts& facts);

// The query that the program of DuckDB makes its table from; only of facts without an obstacle.
std::string duckdb_query(const Facts& facts);

struct Target {
  std::string_view name;
  std::string_view what;  // for the help: "a Python program with pandas"
  std::string (*program)(const Facts& facts);
};

// In the order of the help.
std::span<const Target> targets();

// Null if there is none with this name.
const Target* find_target(std::string_view name);

// "pandas, polars, ..."
std::string target_names();

}  // namespace textio::tool
