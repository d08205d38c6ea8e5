// Finds the line that names the variables of a table, and the line of their units. NamesSource in
// layout/table_lines.hpp has the rule.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/layout/sampled_table.hpp>

namespace textio::standalone {

// Lines are indexes of sampled lines.
struct VariableNames {
  NamesSource source = NamesSource::none;
  std::string reason;
  std::optional<std::size_t> names_line;
  std::optional<std::size_t> units_line;
};

VariableNames find_variable_names(const SampledTable& table);

}  // namespace textio::standalone
