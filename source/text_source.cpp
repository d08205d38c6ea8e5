// Most texts contain no surrogates, so the blocks before the first one are skipped by a vectorised
// loop.
#include <vltextstream/source/text_source.hpp>

#include <vltextstream/source/unit_block.hpp>

namespace textio {
namespace {

constexpr bool is_surrogate(char16_t unit) { return (unit & 0xF800) == 0xD800; }
constexpr bool is_low_surrogate(char16_t unit) { return (unit & 0xFC00) == 0xDC00; }

}  // namespace

BufferManager::~BufferManager() = default;
TextSource::~TextSource() = default;

char16_t* fold_surrogate_pairs(char16_t* begin, char16_t* end) {
  while (end - begin >= kBlockUnits && !any_in_block(begin, is_surrogate)) begin += kBlockUnits;
  char16_t* out = begin;
  for (const char16_t* in = begin; in != end; ++in) {
    if (!is_low_surrogate(*in)) *out++ = is_surrogate(*in) ? kFoldedCharacter : *in;
  }
  return out;
}

}  // namespace textio
