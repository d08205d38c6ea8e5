// EncodingFound: how the encoding of a text became known.
#pragma once

#include <string_view>

#include <vltextstream/host/export.hpp>

namespace textio::standalone {

// Where the name of the encoding came from.
enum class EncodingFound {
  given,             // the settings name it
  byte_order_mark,   // the file starts with the mark
  valid_utf8,        // the bytes are well-formed UTF-8
  zero_bytes,        // UTF-16 or UTF-32 without a mark: zero bytes are where these have them
  escape_sequences,  // the escape sequences of an ISO 2022 encoding
  statistics,        // the bytes above 127 make the best text in this encoding
  fallback,          // nothing was found: windows-1252, or UTF-8 if the input can be read only
                     // once
  none               // the text was in memory
};

// In words, such as "byte-order mark" and "valid UTF-8"; empty for any other number.
VLTEXTSTREAM_EXPORT std::string_view to_string(EncodingFound found);

}  // namespace textio::standalone
