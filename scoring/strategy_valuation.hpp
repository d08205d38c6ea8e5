// StrategyValuation: the score card of one strategy.
//
// Infinity in the two variations and in `priors_rank` means "not measured": it loses every
// comparison in which smaller is better.
#pragma once

#include <cstdint>
#include <limits>

#include <vltextstream/host/export.hpp>

namespace textio {

// A plain record; the order of its members is part of the interface.
struct VLTEXTSTREAM_EXPORT StrategyValuation {
  static constexpr double kNotMeasured = std::numeric_limits<double>::infinity();

  // Mean absolute deviation of the lines' field counts from the modal count, over all lines up to
  // the last one with that count.
  double total_variation = kNotMeasured;

  // The same mean, taken from the end of the header lines on.
  double data_variation = kNotMeasured;

  // Sampled lines, header lines and empty lines included.
  std::uint64_t num_lines = 0;

  // The usual number of fields of a line.
  std::int32_t modal_field_count = 1;

  // The largest number of fields of any line after the header lines.
  std::uint64_t num_variables = 1;

  // Columns with any class but empty; of these, those with dates or clock values, those with
  // numbers, those with date and time together.
  std::uint32_t typed_columns = 0;
  std::uint32_t date_columns = 0;
  std::uint32_t numeric_columns = 0;
  std::uint32_t datetime_columns = 0;

  // What speaks for the strategy before any text is seen; smaller is better. Delimited by one
  // character: its place in the priority list (comma 0, tab 1, semicolon 2, space 3; any other
  // character 2^64). Space-aligned: 3.5.
  double priors_rank = kNotMeasured;
};

}  // namespace textio
