// Runs of ASCII, sixteen bytes at a time: the common ground of all decoders whose bytes below 0x80
// stand for themselves.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "standalone/stream_decoder.hpp"

namespace textio::standalone {

inline constexpr std::size_t kAsciiBlock = 16;

// How many of the eight bytes of `word`, as they lie in memory, come before the first high one.
inline std::size_t ascii_prefix(std::uint64_t word) {
  const std::uint64_t high_bits = word & 0x8080808080808080;
  const int zeros = std::endian::native == std::endian::little ? std::countr_zero(high_bits)
                                                               : std::countl_zero(high_bits);
  return static_cast<std::size_t>(zeros) / 8;
}

// Widens sixteen bytes; returns how many come before the first high one. The copies keep the
// compiler from thinking that `in` and `out` overlap.
inline std::size_t widen_block(const char* in, char16_t* out) {
  unsigned char bytes[kAsciiBlock];
  std::memcpy(bytes, in, kAsciiBlock);
  char16_t units[kAsciiBlock];
  for (std::size_t i = 0; i < kAsciiBlock; ++i) units[i] = bytes[i];
  std::memcpy(out, units, sizeof units);
  std::uint64_t words[2];
  std::memcpy(words, in, sizeof words);
  const std::size_t prefix = ascii_prefix(words[0]);
  return prefix < 8 ? prefix : 8 + ascii_prefix(words[1]);
}

// Moves the window over the ASCII bytes that come first in it.
inline void take_ascii(DecodeWindow& window) {
  std::size_t left = static_cast<std::size_t>(
      std::min<std::ptrdiff_t>(window.in_end - window.in, window.out_end - window.out));
  std::size_t taken = kAsciiBlock;
  while (left >= kAsciiBlock && taken == kAsciiBlock) {
    taken = widen_block(window.in, window.out);
    window.in += taken;
    window.out += taken;
    left -= taken;
  }
  if (taken < kAsciiBlock) return;
  for (; left > 0 && static_cast<unsigned char>(*window.in) < 0x80; --left) {
    *window.out++ = static_cast<char16_t>(*window.in++);
  }
}

}  // namespace textio::standalone
