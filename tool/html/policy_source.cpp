#include <cstdint>

#include "tool/html/page_assets.hpp"

namespace textio::tool {
namespace {

unsigned value_of(char hexadecimal) {
  return static_cast<unsigned>(hexadecimal <= '9' ? hexadecimal - '0' : hexadecimal - 'a' + 10);
}

}  // namespace

// Three bytes, six hexadecimal digits, are four characters.
std::string policy_source(std::string_view hexadecimal_digest) {
  constexpr std::string_view kCharacters =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out = "sha256-";
  for (std::size_t begin = 0; begin < hexadecimal_digest.size(); begin += 6) {
    const std::string_view digits = hexadecimal_digest.substr(begin, 6);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < 6; ++i)
      bits = bits * 16 + (i < digits.size() ? value_of(digits[i]) : 0);
    const std::size_t num_characters = digits.size() / 2 + 1;
    for (std::size_t i = 0; i < 4; ++i) {
      if (i < num_characters) {
        out += kCharacters[(bits >> (18 - 6 * i)) & 63U];
      } else {
        out += '=';
      }
    }
  }
  return out;
}

}  // namespace textio::tool
