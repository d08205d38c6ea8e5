// Most text has none of these characters, so whole blocks without one are passed over.
#include <vltextstream/layout/binary_look.hpp>

#include <algorithm>
#include <cstddef>

#include <vltextstream/source/unit_block.hpp>

namespace textio::standalone {
namespace {

// Texts hold white space; backspace and escape, which printers and terminals obey; separators of
// fields and lists (1 to 3, 28 to 31); and 26, which replaces a character that was folded.
bool is_sign_of_bytes(char16_t unit) {
  return unit == 0 || (unit >= 4 && unit <= 7) || (unit >= 14 && unit <= 25) || unit == 0x7F;
}

// True for these and a few more; without branches, for whole blocks.
constexpr bool may_be_sign_of_bytes(char16_t unit) {
  const bool is_low = unit < 8;
  const bool is_middle = static_cast<char16_t>(unit - 14) < 12;
  const bool is_delete = unit == 0x7F;
  return is_low | is_middle | is_delete;
}

std::size_t signs_in(std::u16string_view text) noexcept {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), is_sign_of_bytes));
}

}  // namespace

bool looks_binary(std::u16string_view text) noexcept {
  constexpr std::size_t kOneIn = 50;
  const std::u16string_view start = text.substr(0, kBinaryLookUnits);
  std::size_t signs = 0;
  std::size_t pos = 0;
  for (; start.size() - pos >= kBlockUnits; pos += kBlockUnits) {
    const char16_t* const block = start.data() + pos;
    const auto may_be_sign = [](char16_t unit) { return may_be_sign_of_bytes(unit); };
    if (any_in_block(block, may_be_sign)) signs += signs_in({block, kBlockUnits});
  }
  return (signs + signs_in(start.substr(pos))) * kOneIn > start.size();
}

}  // namespace textio::standalone
