// The vote of ICU's detector in the statistical search. It is one vote among others, because the
// detector also counts the ASCII of a table, knows few encodings, and overrates short texts.
//
// Errors  nothing but std::bad_alloc; if ICU fails, no score changes.
// Cost    linear in the bytes, of which at most 8 KB are used.
#pragma once

#include <string_view>
#include <vector>

#include <vltextstream/standalone/encoding_detection/scored_encoding.hpp>

namespace textio::standalone {

// Raises the scores of the encodings that ICU names.
void raise_named_by_icu(std::string_view bytes, std::vector<ScoredEncoding>& scored);

}  // namespace textio::standalone
