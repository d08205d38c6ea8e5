// The layout of an input that is open already: what every form of detection ends in.
#pragma once

#include <cstddef>

#include <vltextstream/layout/detect_layout.hpp>
#include <vltextstream/layout/input_text.hpp>

namespace textio::standalone {

// `input` is not needed afterwards, except for its file.
Layout detect_input(InputText& input, const DetectSettings& settings);
Layout detect_input(InputText&& input, const DetectSettings& settings);

// The same, whose first prefix has `units` code units, at least 1: the answer does not depend on it.
Layout detect_input(InputText&& input, const DetectSettings& settings, std::size_t units);

}  // namespace textio::standalone
