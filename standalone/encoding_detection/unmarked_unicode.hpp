// UTF-16 and UTF-32 without a byte-order mark.
//
//   find_unmarked_unicode(std::string_view("a\0,\0b\0", 6), true)->encoding;   // "UTF-16LE"
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes, of which only the first 8 KB are used.
#pragma once

#include <optional>
#include <string_view>

namespace textio::standalone {

struct UnmarkedUnicode {
  const char* encoding;
  double gain;  // natural logarithm of how much likelier it is than random bytes
};

// Whether `bytes` need a closer look: they have zero bytes or control characters that texts in
// 8-bit encodings do not contain.
bool may_be_unmarked_unicode(std::string_view bytes) noexcept;

// Empty if the bytes are likelier a text in an 8-bit encoding. Unless `is_whole`, a code unit may
// be cut off at their end.
std::optional<UnmarkedUnicode> find_unmarked_unicode(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
