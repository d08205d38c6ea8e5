#include "tool/emit/targets.hpp"

namespace textio::tool {
namespace {

constexpr Target kTargets[] = {
    {"pandas", "Python", pandas_program},
    {"polars", "Python", polars_program},
    {"pyarrow", "Python", pyarrow_program},
    {"python", "Python without packages", python_program},
    {"spark", "PySpark", spark_program},
    {"duckdb", "SQL", duckdb_program},
    {"postgres", "a script for psql", postgres_program},
    {"sqlite", "a script for sqlite3", sqlite_program},
    {"clickhouse", "SQL for clickhouse local", clickhouse_program},
    {"readr", "R", readr_program},
    {"fread", "R with data.table", fread_program},
    {"base-r", "R without packages", base_r_program},
    {"csvw", "a metadata document", csvw_document},
    {"frictionless", "a data resource with a table schema", frictionless_document},
    {"vltext", "a command that gives this layout again", vltext_command},
    {"json", "the facts alone", json_document},
};

}  // namespace

std::span<const Target> targets() { return kTargets; }

const Target* find_target(std::string_view name) {
  for (const Target& target : kTargets) {
    if (target.name == name) return &target;
  }
  return nullptr;
}

std::string target_names() {
  std::string names;
  for (const Target& target : kTargets) {
    if (!names.empty()) names += ", ";
    names += target.name;
  }
  return names;
}

}  // namespace textio::tool
