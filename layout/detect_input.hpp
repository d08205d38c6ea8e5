// The layout of an input that is open already: what every form of detection ends in.
#pragma once

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>

namespace textio::standalone {

Layout detect_input(const InputText& input, const DetectSettings& settings);

}  // namespace textio::standalone
