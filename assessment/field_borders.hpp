// Where fields of fixed width begin that have no blanks between them, as in the records of mainframes.
//
//   find_borders(lines);   // {0, 4, 12, 20}: "0017SMITH   19840312", "0018LEE     19790101", ...
//
// Units  positions count code units from the start of a line.
// Cost   linear in the sampled text.
#pragma once

#include <cstddef>
#include <vector>

#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// Where each field begins, and where the last one ends; none if fewer than ten lines, or fewer than nine in
// ten, have the same length, if a separator is in the same place of all, or if nothing shows two fields
// that touch.
//
// A field begins where, in nearly all lines, letters follow digits or digits letters; where a character
// that is never blank follows one that usually is; and after a column of blanks.
std::vector<std::size_t> find_borders(const SampledLines& lines);

}  // namespace textio::assessment
