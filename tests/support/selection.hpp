// Strategies and traces as plain text, so that tests can compare two of them as a whole and a
// failure message shows the difference.
#pragma once

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include <vltextstream/detection/selection_trace.hpp>
#include <vltextstream/strategy/delimited_strategy.hpp>
#include <vltextstream/strategy/fixed_width_strategy.hpp>
#include <vltextstream/strategy/strategy.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"

namespace textio::testing_support {

// The first delimiter of a delimited strategy; empty for the others.
inline std::u16string delimiter_of(const Strategy& strategy) {
  const auto* delimited = dynamic_cast<const DelimitedStrategy*>(&strategy);
  return delimited == nullptr ? std::u16string() : delimited->delimiter()->strings.at(0);
}

// The column widths of a fixed-width strategy; empty for the others.
inline std::vector<std::size_t> widths_of(const Strategy& strategy) {
  const auto* fixed = dynamic_cast<const FixedWidthStrategy*>(&strategy);
  return fixed == nullptr ? std::vector<std::size_t>() : fixed->widths();
}

// The sampled lines, as strings.
inline std::vector<std::u16string> sampled_lines_of(const Strategy& strategy) {
  std::vector<std::u16string> lines;
  for (const Field& line : strategy.lines()) lines.push_back(text_of(line));
  return lines;
}

template <typename Number>
std::string describe(const std::vector<Number>& numbers) {
  std::ostringstream out;
  for (const Number number : numbers) out << number << ' ';
  return out.str();
}

// Every member, with all bits of the doubles.
inline std::string describe(const StrategyValuation& valuation) {
  std::ostringstream out;
  out << std::hexfloat << valuation.total_variation << ' ' << valuation.data_variation << ' '
      << valuation.num_lines << ' ' << valuation.modal_field_count << ' ' << valuation.num_variables
      << ' ' << valuation.typed_columns << ' ' << valuation.date_columns << ' '
      << valuation.numeric_columns << ' ' << valuation.datetime_columns << ' '
      << valuation.priors_rank;
  return out.str();
}

// How the strategy cuts, what it settled, and the lines that it sampled.
inline std::string describe(const Strategy& strategy) {
  std::ostringstream out;
  out << "mode " << strategy.mode() << " delimiter '" << readable(delimiter_of(strategy))
      << "' widths " << describe(widths_of(strategy)) << "header " << strategy.header_lines()
      << " variables " << strategy.num_variables() << " lines";
  for (const Field& line : strategy.lines()) out << " [" << readable(text_of(line)) << ']';
  return out.str();
}

inline std::string describe(const detection::SelectionTrace& trace) {
  std::ostringstream out;
  out << "characters " << readable(trace.candidate_chars) << '\n';
  for (const auto& candidate : trace.candidates) {
    out << to_string(candidate.dialect) << " header " << candidate.header_lines << " fate "
        << static_cast<int>(candidate.fate) << ": " << describe(candidate.valuation) << '\n';
  }
  for (const auto& filter : trace.filters) {
    out << filter.name << ": " << describe(filter.survivors) << '\n';
  }
  out << "end " << static_cast<int>(trace.end) << " reached " << trace.reached_end << '\n';
  return out.str();
}

}  // namespace textio::testing_support
