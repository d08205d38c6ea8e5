// Converts between UTF-8 and UTF-16, for texts such as paths.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// UTF-8 to UTF-16. A byte that is not part of well-formed UTF-8 becomes the lone surrogate
// U+DC00 + byte, so that to_utf8 restores every path.
VLTEXTSTREAM_EXPORT std::u16string from_utf8(std::string_view bytes);

// UTF-16 to UTF-8. Restores the bytes that from_utf8 escaped.
VLTEXTSTREAM_EXPORT std::string to_utf8(std::u16string_view text);

}  // namespace textio::standalone
