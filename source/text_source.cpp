#include "source/text_source.hpp"

#include <algorithm>

namespace textio {
namespace {

bool is_low_surrogate(char16_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }
bool is_high_surrogate(char16_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }

}  // namespace

BufferManager::~BufferManager() = default;
TextSource::~TextSource() = default;

char16_t* fold_surrogate_pairs(char16_t* begin, char16_t* end) {
  char16_t* const folded_end = std::remove_if(begin, end, is_low_surrogate);
  std::replace_if(begin, folded_end, is_high_surrogate, kFoldedCharacter);
  return folded_end;
}

}  // namespace textio
