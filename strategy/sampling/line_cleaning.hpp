// Cleaning of a line before the tests for empty lines and comments.
#pragma once

#include <vltextstream/strategy/field.hpp>
#include <vltextstream/strategy/strategy.hpp>

namespace textio {

// The line without quotes, and without white space and affixes at its ends, as `format` says. The
// result points into the line or into the format's `unquoted` buffer. It is valid until the next
// cleaning with the same format.
Field clean_line(const Field& line, FieldFormat& format);

}  // namespace textio
