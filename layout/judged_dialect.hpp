// How the table of a verdict is written.
#pragma once

#include <vltextstream/assessment/verdict.hpp>
#include <vltextstream/layout/layout.hpp>

namespace textio::standalone {

// Fills in Layout::dialect but for what depends on the columns: the marks of numbers and the missing words.
// `table` is that of the winner; mode, delimiters, widths and lines of the layout are those of the verdict.
void describe_dialect(const assessment::Verdict& verdict, const assessment::TableFrame& table,
                      Layout& layout);

}  // namespace textio::standalone
