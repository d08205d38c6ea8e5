// Input: a fuzz target's bytes. The first ones are read as choices; the rest is its text.
//
//   Input input(data, size);
//   const std::size_t chunk = input.below(8);
//   const std::u16string text = input.rest_as_text();
//
// Past the end every choice is 0, so a target gives 0 the ordinary meaning. A byte is one code unit
// of a text: below 0x80 the same value, above that a code unit that some rule of the library names.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace textio::fuzz {

// End mark, folded character, byte-order mark, surrogates, letters, and blanks and separators that
// have no special meaning here.
inline constexpr char16_t kSpecialUnits[] = {0xFFFF, 0x001A, 0xFEFF, 0xD83D, 0xDE00, 0x00A0,
                                             0x00E9, 0x2028, 0x3000, 0xFF0C, 0x20AC, 0x4E2D,
                                             0xFFFD, 0x0085, 0x012C, 0xFFFE};

inline char16_t unit_of(std::uint8_t byte) {
  return byte < 0x80 ? char16_t{byte} : kSpecialUnits[byte % std::size(kSpecialUnits)];
}

inline std::u16string text_of_bytes(std::string_view bytes) {
  std::u16string text;
  text.reserve(bytes.size());
  for (const char byte : bytes) text.push_back(unit_of(static_cast<std::uint8_t>(byte)));
  return text;
}

class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size)
      : bytes_(reinterpret_cast<const char*>(data), size) {}
  explicit Input(std::string_view bytes) : bytes_(bytes) {}

  bool is_empty() const { return bytes_.empty(); }

  std::uint8_t byte() {
    if (bytes_.empty()) return 0;
    const auto first = static_cast<std::uint8_t>(bytes_.front());
    bytes_.remove_prefix(1);
    return first;
  }

  // `bound` is at most 256.
  std::size_t below(std::size_t bound) { return byte() % bound; }
  bool flag() { return byte() % 2 == 1; }

  std::uint64_t word() {
    std::uint64_t value = 0;
    for (int i = 0; i < 8; ++i) value = value << 8 | byte();
    return value;
  }

  // A small number, or one at the edge of its type.
  std::size_t count() {
    constexpr auto kMost = std::numeric_limits<std::size_t>::max();
    constexpr std::size_t kEdges[] = {100,         1000,          65'536,    0x7FFF'FFFF,
                                      0x8000'0000, 0x1'0000'0000, kMost / 2, kMost / 2 + 1,
                                      kMost - 1,   kMost};
    const std::uint8_t first = byte();
    const std::size_t edge = 255U - first;
    return edge < std::size(kEdges) ? kEdges[edge] : first % 32U;
  }

  template <typename List>
  const auto& one_of(const List& list) {
    return *(std::begin(list) + static_cast<std::ptrdiff_t>(below(std::size(list))));
  }

  std::string_view take(std::size_t count) {
    const std::string_view taken = bytes_.substr(0, count);
    bytes_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view rest() { return take(bytes_.size()); }

  // Up to `most` code units; the next byte gives the number.
  std::u16string text(std::size_t most) { return text_of_bytes(take(below(most + 1))); }
  std::u16string rest_as_text() { return text_of_bytes(rest()); }

  // Up to three texts of up to three code units.
  std::vector<std::u16string> short_texts() {
    std::vector<std::u16string> texts(below(4));
    for (std::u16string& item : texts) item = text(3);
    return texts;
  }

 private:
  std::string_view bytes_;
};

}  // namespace textio::fuzz
