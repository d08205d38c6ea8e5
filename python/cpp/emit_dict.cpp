#include "python/cpp/emit_dict.hpp"

#include <nanobind/stl/string.h>
#include <nanobind/stl/vector.h>

#include <vltextstream/reading/column.hpp>

#include "tool/emit/abilities.hpp"
#include "tool/emit/emit_facts.hpp"
#include "tool/emit/emit_words.hpp"
#include "tool/emit/program_parts.hpp"
#include "tool/emit/targets.hpp"

namespace textio::python {
namespace {

namespace nb = nanobind;

using tool::ColumnFact;
using tool::Facts;

nb::dict dict_of(const ColumnFact& column) {
  nb::dict dict;
  dict["name"] = column.name;
  dict["type"] = std::string(to_string(column.type));
  dict["format"] = column.format;
  dict["true_word"] = column.true_word;
  dict["false_word"] = column.false_word;
  dict["missing"] = tool::missing_of(column);
  return dict;
}

}  // namespace

nb::dict facts_dict(const std::string& path, const standalone::DetectSettings& settings) {
  Facts facts;
  {
    const nb::gil_scoped_release without_lock;
    facts = tool::facts_of(path, settings, {});
  }
  nb::dict obstacles;
  obstacles["pandas"] = tool::pandas_obstacle(facts);
  obstacles["polars"] = tool::polars_obstacle(facts);
  obstacles["pyarrow"] = tool::pyarrow_obstacle(facts);
  obstacles["duckdb"] = tool::duckdb_obstacle(facts);

  nb::list columns;
  for (const ColumnFact& column : facts.columns) columns.append(dict_of(column));

  nb::dict dict;
  dict["columns"] = columns;
  dict["obstacles"] = obstacles;
  dict["encoding"] = tool::encoding_for(facts, tool::Codecs::python);
  dict["is_utf8"] = facts.encoding == "UTF-8";
  dict["delimiters"] = facts.delimiters;
  dict["quote"] = facts.quote;
  dict["has_backslash"] = facts.has_backslash;
  dict["has_breaks_in_cells"] = facts.has_breaks_in_cells;
  dict["lines_to_skip"] = facts.lines_to_skip();
  dict["num_rows"] = facts.num_rows;
  dict["decimal"] = tool::common_decimal(facts);
  dict["grouping"] = tool::common_grouping(facts);
  const bool can_query = tool::duckdb_obstacle(facts).empty();
  dict["duckdb_query"] = can_query ? tool::duckdb_query(facts) : std::string();
  return dict;
}

}  // namespace textio::python
