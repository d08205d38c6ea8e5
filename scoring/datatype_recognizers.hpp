// The recognisers that give a field its datatype class. They scan code units without a locale and
// without conversion. Only dates are left to the host.
//
// Units  positions count UTF-16 code units.
// Cost   linear in the field. classify_field allocates only for a quoted field of 32 code units or
//        more that has quotes inside.
#pragma once

#include <cstddef>
#include <string>

#include <vltextstream/host/export.hpp>
#include <vltextstream/scoring/datatype_code.hpp>
#include <vltextstream/strategy/field.hpp>

namespace textio {

// A real or complex literal: "12", ".5", "1.5D-3", "nan", "3i", "1-2.5j".
VLTEXTSTREAM_EXPORT bool is_number(const Field& text);

// The position at which the imaginary part of a complex literal begins: the length of the text if
// it is not a complex literal, 0 if it is only an imaginary part.
VLTEXTSTREAM_EXPORT std::size_t split_complex(const Field& text);

// Three groups of digits separated by colons, the last with an optional fraction. Groups may be
// empty.
VLTEXTSTREAM_EXPORT bool is_duration(const Field& text);

// Removes one level of double quotes. White space before the opening quote is kept.
VLTEXTSTREAM_EXPORT void unquote(MutableField& field, const std::u16string& whitespace);

// is_datetime of the host. An exception counts as "no".
VLTEXTSTREAM_EXPORT bool safe_is_datetime(const Field& text);

// The class of a field, after trimming, unquoting and trimming again.
VLTEXTSTREAM_EXPORT DatatypeCode classify_field(const Field& field,
                                                const std::u16string& whitespace);

// The text that classify_field examines: without white space and quotes at its ends.
VLTEXTSTREAM_EXPORT std::u16string value_text(const Field& field, const std::u16string& whitespace);

}  // namespace textio
