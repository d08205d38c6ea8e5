// What a strategy takes out of the characters that are trimmed: a separator is no white space.
#pragma once

#include <algorithm>
#include <string>

namespace textio {

// Takes every `unit` out of `chars` by moving the later characters forward without shortening the
// text: the last places keep the characters that were there. So a unit in the last place stays.
inline void remove_in_place(std::u16string& chars, char16_t unit) {
  (void)std::remove(chars.begin(), chars.end(), unit);
}

}  // namespace textio
