// The control characters that texts hold are the bits of one number.
#include <vltextstream/layout/binary_look.hpp>

#include <algorithm>
#include <cstdint>
#include <initializer_list>

namespace textio::standalone {
namespace {

constexpr std::uint32_t bits(std::initializer_list<unsigned> codes) {
  std::uint32_t all = 0;
  for (const unsigned code : codes) all |= 1U << code;
  return all;
}

// What texts hold: white space; backspace and escape, which printers and terminals obey; separators
// of fields and lists (1 to 3, 28 to 31); and 26, which replaces a character that was folded.
constexpr std::uint32_t kTextControls =
    bits({'\t', '\n', '\v', '\f', '\r', '\b', 27, 1, 2, 3, 28, 29, 30, 31, 26});

bool is_sign_of_bytes(char16_t unit) noexcept {
  if (unit == 0x7F) return true;
  return unit < 32 && ((kTextControls >> unit) & 1U) == 0;
}

}  // namespace

bool looks_binary(std::u16string_view text) noexcept {
  constexpr std::size_t kOneIn = 50;
  const std::u16string_view start = text.substr(0, kBinaryLookUnits);
  const auto signs = std::count_if(start.begin(), start.end(), is_sign_of_bytes);
  return static_cast<std::size_t>(signs) * kOneIn > start.size();
}

}  // namespace textio::standalone
