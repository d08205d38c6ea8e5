// What a reader must know of a table that was cut by a strategy: one whose layout was given, or which the cascade chose.
#pragma once

#include <vltextstream/layout/layout.hpp>
#include <vltextstream/layout/sampled_table.hpp>
#include <vltextstream/layout/variable_names.hpp>

namespace textio::standalone {

// Fills in Layout::dialect, columns and names_unique; the rest of the layout must be known. Ragged lines do not count
// for a column, nor does a first line that may hold the names.
//
// Cost  linear in the text and the number of columns.
void describe_facts(const Strategy& strategy, const SampledTable& table, const VariableNames& names,
                    const DetectSettings& settings, Layout& layout);

}  // namespace textio::standalone
