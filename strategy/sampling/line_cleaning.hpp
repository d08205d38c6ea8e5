// Cleaning of a line before it is tested for being empty or a comment.
#pragma once

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

// The line without white space and affixes at its ends and without quotes, as `format` says. The
// result points into the line or into the format's `unquoted` buffer; it is valid until the next
// cleaning with the same format.
Field clean_line(const Field& line, FieldFormat& format);

}  // namespace textio
