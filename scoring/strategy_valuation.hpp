// StrategyValuation: the scores of one strategy.
//
// Infinity in the two variations and in `priors_rank` means "not measured". It loses every
// comparison in which smaller is better.
#pragma once

#include <cstdint>
#include <limits>

#include <vltextstream/host/export.hpp>

namespace textio {

// A plain record. The order of its members is part of the interface.
struct VLTEXTSTREAM_EXPORT StrategyValuation {
  static constexpr double kNotMeasured = std::numeric_limits<double>::infinity();

  // Mean absolute deviation of the lines' field counts from the modal count, over all lines up to
  // the last one with that count.
  double total_variation = kNotMeasured;

  // The same mean, over the lines after the header lines.
  double data_variation = kNotMeasured;

  // Number of sampled lines, including header lines and empty lines.
  std::uint64_t num_lines = 0;

  // The usual number of fields of a line.
  std::int32_t modal_field_count = 1;

  // The largest number of fields on a line after the header lines.
  std::uint64_t num_variables = 1;

  // The number of columns with a class other than empty and, of these, the numbers of columns with
  // dates or clock values, with numbers, and with a date and a time.
  std::uint32_t typed_columns = 0;
  std::uint32_t date_columns = 0;
  std::uint32_t numeric_columns = 0;
  std::uint32_t datetime_columns = 0;

  // How plausible the strategy is before any text is read; smaller is better. Delimited by one
  // character: its position in the priority list (comma 0, tab 1, semicolon 2, space 3; any other
  // character 2^64). Space-aligned: 3.5.
  double priors_rank = kNotMeasured;
};

}  // namespace textio
