// Numbers for people to read.
//
//   grouped(1234567)    // "1,234,567"
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace textio::tool {

// The digits in groups of three.
inline std::string grouped(std::uint64_t number) {
  std::string digits = std::to_string(number);
  for (std::size_t place = digits.size(); place > 3;) {
    place -= 3;
    digits.insert(place, 1, ',');
  }
  return digits;
}

}  // namespace textio::tool
