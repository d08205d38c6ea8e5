// A Layout as text, so that two can be compared as a whole.
#pragma once

#include <string>

#include <vltextstream/layout/layout.hpp>
#include "support/layout_text.hpp"

namespace textio::fuzz {

// Leaves out where the encoding came from, which differs between files and texts.
inline std::string describe(standalone::Layout layout) {
  layout.encoding.clear();
  layout.encoding_found = standalone::EncodingFound::none;
  layout.encoding_confidence = 0.0;
  return testing_support::every_member_of(layout);
}

}  // namespace textio::fuzz
