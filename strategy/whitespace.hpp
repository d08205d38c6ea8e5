// Removes the separator of a strategy from the characters that are trimmed: it is not white space.
#pragma once

#include <algorithm>
#include <string>

namespace textio {

// Removes every `unit` from `chars` by moving the later characters forward, without shortening the
// text. The last positions keep their old characters, so a `unit` in the last position remains.
inline void remove_in_place(std::u16string& chars, char16_t unit) {
  (void)std::remove(chars.begin(), chars.end(), unit);
}

}  // namespace textio
