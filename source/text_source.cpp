// Most texts hold no surrogates: the blocks up to the first one are passed over at the speed of
// vectors.
#include "source/text_source.hpp"

#include <algorithm>
#include <cstddef>

namespace textio {
namespace {

constexpr std::ptrdiff_t kBlockUnits = 64;

constexpr bool is_surrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
constexpr bool is_low_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

// Looks at every unit of the block, so that the compiler can compare many at a time.
bool has_surrogate(const char16_t* block) {
  unsigned found = 0;
  for (std::ptrdiff_t i = 0; i < kBlockUnits; ++i) found |= is_surrogate(block[i]) ? 1U : 0U;
  return found != 0;
}

}  // namespace

BufferManager::~BufferManager() = default;
TextSource::~TextSource() = default;

char16_t* fold_surrogate_pairs(char16_t* begin, char16_t* end) {
  while (end - begin >= kBlockUnits && !has_surrogate(begin)) begin += kBlockUnits;
  char16_t* out = begin;
  for (const char16_t* in = begin; in != end; ++in) {
    if (!is_low_surrogate(*in)) *out++ = is_surrogate(*in) ? kFoldedCharacter : *in;
  }
  return out;
}

}  // namespace textio
