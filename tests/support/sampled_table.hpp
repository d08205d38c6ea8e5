// The table of what a strategy has sampled.
#pragma once

#include <vltextstream/layout/sampled_table.hpp>

namespace textio::testing_support {

inline standalone::SampledTable table_of(Strategy& strategy,
                                         const standalone::DetectSettings& settings) {
  standalone::TextLines lines(strategy.sample().text, settings.options);
  return {strategy, settings, lines};
}

}  // namespace textio::testing_support
