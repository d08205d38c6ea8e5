// UTF-16 texts in failure messages and test names: ASCII unchanged, the rest as \u and four digits.
#pragma once

#include <cstdio>
#include <ostream>
#include <string>
#include <string_view>

namespace textio::testing_support {

inline std::string readable(std::u16string_view text) {
  std::string out;
  for (const char16_t unit : text) {
    if (unit >= 0x20 && unit < 0x7F) {
      out.push_back(static_cast<char>(unit));
    } else {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
      out += escape;
    }
  }
  return out;
}

}  // namespace textio::testing_support
