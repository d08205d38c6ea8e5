// The voice of ICU's detector in the statistical search: one among others, for it hears the ASCII
// of a table as well, knows few encodings, and gives high marks to short texts.
//
// Errors  nothing but std::bad_alloc; where ICU fails it has no voice.
// Cost    linear in the bytes, of which it hears 8 KB at most.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/encoding_reading.hpp>

namespace textio::standalone {

// Adds to the score of the encodings that ICU takes into account.
void raise_named_by_icu(std::string_view bytes, std::vector<Reading>& readings);

}  // namespace textio::standalone
