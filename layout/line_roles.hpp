// Accounting for every sampled line: what it is for the table, and which lines of data are ragged.
#pragma once

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/layout/sampled_table.hpp>
#include <vltextstream/layout/variable_names.hpp>

namespace textio::standalone {

// Fills in Layout::lines, ragged_lines and first_ragged_line.
void describe_lines(const SampledTable& table, const VariableNames& names, Layout& layout);

}  // namespace textio::standalone
