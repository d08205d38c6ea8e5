// The sample of a text that a detection looks at.
#pragma once

#include <string>
#include <vector>

#include <vltextstream/host/export.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

// The most code units that a sample may have.
inline constexpr unsigned long kSampleUnits = 4'194'304;

// The rest of the text from the stream's window on, up to a U+FFFF; of a text that reaches beyond
// kSampleUnits, only the part up to the start of the last line ending within them, that ending's
// first unit included: nothing when there is no line ending.
//
// Ownership  a view into the stream's buffer, valid until the stream advances or loads more text.
// Errors     what the source or the allocation throws.
// Cost       loads the rest of the text, or kSampleUnits + 1 units and what fills their last block.
//            Looking for the last line ending is linear in the units and the markers together.
VLTEXTSTREAM_EXPORT Field get_fixed_stream(const TextStream& stream,
                                           const std::vector<std::u16string>& line_endings);

}  // namespace textio
