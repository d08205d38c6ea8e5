// The sample of a text that a detection examines.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

// The largest number of code units in a sample.
inline constexpr unsigned long kSampleUnits = 4'194'304;

// The rest of the text from the stream's window on, up to a U+FFFF. If the text is longer than
// kSampleUnits, only the part up to the first code unit of the last line ending within that limit,
// that code unit included. Empty if there is no such line ending.
//
// Ownership  a view into the stream's buffer, valid until the stream advances or loads more text.
// Errors     what the source or the allocation throws.
// Cost       loads the rest of the text, or kSampleUnits + 1 code units and what fills their last
//            block. Searching for the last line ending is linear in the code units and the markers
//            together.
VLTEXTSTREAM_EXPORT Field get_fixed_stream(const TextStream& stream,
                                           const std::vector<std::u16string>& line_endings);

}  // namespace textio
