// From what a caller knows to the settings of a detection.
//
//   Known known;
//   known.delimiters = {";"};
//   settings_of(known).options.detect_delimiters;   // false
//
// Errors  std::invalid_argument for a member that is refused: "Known::widths: expected ...".
#pragma once

#include <vltextstream/detect.hpp>
#include <vltextstream/layout/detect_layout.hpp>

namespace textio::standalone {

DetectSettings settings_of(const Known& known);

}  // namespace textio::standalone
