// Texts between UTF-8 and UTF-16, such as the paths that a file layer is given.
#pragma once

#include <string>
#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// UTF-8 to UTF-16. A byte that is not part of well-formed UTF-8 becomes the lone surrogate
// U+DC00 + byte, so that every path survives the way there and back.
VLTEXTSTREAM_EXPORT std::u16string from_utf8(std::string_view bytes);

// UTF-16 to UTF-8, with the bytes that from_utf8 hid.
VLTEXTSTREAM_EXPORT std::string to_utf8(std::u16string_view text);

}  // namespace textio::standalone
