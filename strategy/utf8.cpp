// A sequence is well-formed if its length fits its value. Overlong forms are rejected by the
// smallest value of each length, so no table of second bytes is needed.
#include <vltextstream/strategy/utf8.hpp>

namespace textio {
namespace {

struct Range {
  char32_t first;
  char32_t last;
};

// In ascending order.
constexpr Range kUnprintable[] = {
    {0x0000, 0x001F},    // C0 controls
    {0x007F, 0x009F},    // delete and C1 controls
    {0x00AD, 0x00AD},    // soft hyphen
    {0x061C, 0x061C},    // Arabic letter mark
    {0x180E, 0x180E},    // Mongolian vowel separator
    {0x200B, 0x200B},    // zero width space
    {0x200E, 0x200F},    // direction marks
    {0x2028, 0x202E},    // line and paragraph separators, direction embeddings
    {0x2060, 0x2060},    // word joiner
    {0x2066, 0x206F},    // direction isolates, deprecated format characters
    {0xFEFF, 0xFEFF},    // zero width no-break space
    {0xE0000, 0xE007F},  // tags
};

bool is_in(Range range, char32_t c) { return c >= range.first && c <= range.last; }

// The number of bytes that a lead byte announces; 0 if it is not a lead byte.
std::size_t length_announced(unsigned char lead) {
  if (lead < 0x80) return 1;
  if (lead < 0xC0) return 0;
  if (lead < 0xE0) return 2;
  if (lead < 0xF0) return 3;
  return lead < 0xF8 ? 4 : 0;
}

bool is_well_formed(char32_t c, std::size_t length) {
  constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  return c >= kSmallest[length] && c <= 0x10FFFF && !is_surrogate(c);
}

CodePoint first_code_point(std::string_view utf8) {
  const auto byte = [utf8](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
  const std::size_t length = length_announced(byte(0));
  if (length == 1) return {byte(0), 1};
  if (length == 0 || length > utf8.size()) return {kReplacement, 1};
  char32_t c = byte(0) & (0x7FU >> length);
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0U) != 0x80U) return {kReplacement, 1};
    c = (c << 6) | (byte(i) & 0x3FU);
  }
  if (!is_well_formed(c, length)) return {kReplacement, 1};
  return {c, length};
}

}  // namespace

std::u32string code_points_of(std::string_view utf8) {
  std::u32string code_points;
  while (!utf8.empty()) {
    const CodePoint next = first_code_point(utf8);
    code_points.push_back(next.value);
    utf8.remove_prefix(next.length);
  }
  return code_points;
}

bool is_unprintable(char32_t code_point) {
  for (const Range range : kUnprintable) {
    if (is_in(range, code_point)) return true;
  }
  return false;
}

}  // namespace textio
