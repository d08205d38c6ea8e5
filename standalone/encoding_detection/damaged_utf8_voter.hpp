// Scores UTF-8 for a text with some ill-formed parts. UTF-8 is still the best encoding for a file
// that was cut off, or joined from two files.
//
// Cost  linear in the bytes.
#pragma once

#include <string_view>

#include <vltextstream/standalone/encoding_detection/scored_encoding.hpp>

namespace textio::standalone {

ScoredEncoding score_damaged_utf8(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
