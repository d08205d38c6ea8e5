// How the readings cut a sample: one function for each form.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include <vltextstream/assessment/reading.hpp>
#include <vltextstream/assessment/records.hpp>
#include <vltextstream/assessment/sampled_lines.hpp>

namespace textio::assessment {

// Delimited, or a single column. A quote at the start of a cell opens a quoted cell, which ends at
// the first delimiter or line ending with an even number of quotes before it. A quote that is not
// closed within 400 lines is an ordinary character, unless the sample ends before the text does. After
// `most_unclosed` such quotes all of them are, which keeps the cut linear. The memory of `used` is used again.
Records cut_delimited(const SampledLines& lines, const Reading& reading,
                      std::size_t most_unclosed = 8, Records used = Records({}));

// Frames: rules are left out, and so are bars at the ends of lines. A bar after `escape` belongs to its cell; 0: all
// bars separate.
Records cut_framed(const SampledLines& lines, char16_t escape = 0);

// Runs of at least `least_blanks` blanks, or a tab, separate cells. A time belongs to the date before it. The
// last of `most_cells` cells takes the rest of its line; 0: no limit.
Records cut_runs(const SampledLines& lines, std::size_t least_blanks, std::size_t most_cells = 0);

// Blank columns through the data separate cells. The data are found from the bottom: a line belongs
// to them if it closes no gap between two columns. Other lines are one cell each. No records if
// there are no two columns.
//
// `by_names`: the line above the data, or their first line, belongs to them in any case, and a column without
// text in it is part of the one before. No records if that changes nothing.
Records cut_gaps(const SampledLines& lines, std::size_t least_blanks, bool by_names = false);

// Fields between `borders`, trimmed. A line that does not end at the last border is one cell.
Records cut_fields(const SampledLines& lines, const std::vector<std::size_t>& borders);

// Columns of these widths, the first at the start of the line. What follows the last column is left out.
Records cut_widths(const SampledLines& lines, const std::vector<std::size_t>& widths);

// Whether a line consists of `-`, `=`, `+`, `|`, `:`, `_`, `~`, `*` and blanks alone and draws a rule
// with at least three of them.
bool is_rule(std::u16string_view line);
bool is_rule(const SampledLines& lines, std::size_t line);

// What separates cells in frames.
bool is_bar(char16_t unit);

}  // namespace textio::assessment
