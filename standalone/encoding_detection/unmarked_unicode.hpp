// UTF-16 and UTF-32 without a byte-order mark.
//
//   find_unmarked_unicode(std::string_view("a\0,\0b\0", 6), true)->encoding;   // "UTF-16LE"
//
// Errors  nothing but std::bad_alloc.
// Cost    linear in the bytes, of which the first 8 KB are looked at.
#pragma once

#include <optional>
#include <string_view>

namespace textio::standalone {

struct UnmarkedUnicode {
  const char* encoding;
  double gain;  // natural logarithm of how much likelier it is than bytes that follow no rule
};

// Whether single bytes of `bytes` call for a closer look: zero bytes and control characters that
// texts in 8-bit encodings do not hold.
bool may_be_unmarked_unicode(std::string_view bytes) noexcept;

// Empty when the bytes make more sense one by one. Without `is_whole` a unit may be cut off at
// their end.
std::optional<UnmarkedUnicode> find_unmarked_unicode(std::string_view bytes, bool is_whole);

}  // namespace textio::standalone
