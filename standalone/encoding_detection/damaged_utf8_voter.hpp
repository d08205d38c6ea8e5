// Scores UTF-8 for a text that is not well-formed throughout: a file that was cut, or put together
// from two, is still read best as UTF-8.
//
// Cost  linear in the bytes.
#pragma once

#include <string_view>

#include <vltextstream/standalone/encoding_detection/encoding_reading.hpp>

namespace textio::standalone {

Reading damaged_utf8_reading(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
