// Decodes runs of ASCII, sixteen bytes at a time, for all encodings in which bytes below 0x80 are
// ASCII.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

inline constexpr std::size_t kAsciiBlock = 16;

inline std::uint64_t eight_bytes_at(const char* in) {
  std::uint64_t word = 0;
  std::memcpy(&word, in, sizeof word);
  return word;
}

// How many of the eight bytes of `word`, in memory order, come before the first byte above 127.
inline std::size_t ascii_prefix(std::uint64_t word) {
  const std::uint64_t high_bits = word & 0x8080808080808080;
  const int zeros = std::endian::native == std::endian::little ? std::countr_zero(high_bits)
                                                               : std::countl_zero(high_bits);
  return static_cast<std::size_t>(zeros) / 8;
}

// Widens sixteen bytes by interleaving them with zeros. It uses vectors because the code that g++
// generates for a loop takes up to twice as long.
inline void widen(const char* in, char16_t* out) {
  using Bytes [[gnu::vector_size(kAsciiBlock)]] = unsigned char;
  constexpr bool kLowerHalfFirst = std::endian::native == std::endian::little;
  Bytes bytes;
  std::memcpy(&bytes, in, sizeof bytes);
  const Bytes first = kLowerHalfFirst ? bytes : Bytes{};
  const Bytes second = kLowerHalfFirst ? Bytes{} : bytes;
  const Bytes low = __builtin_shufflevector(first, second, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21,
                                            6, 22, 7, 23);
  const Bytes high = __builtin_shufflevector(first, second, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28,
                                             13, 29, 14, 30, 15, 31);
  std::memcpy(out, &low, sizeof low);
  std::memcpy(out + kAsciiBlock / 2, &high, sizeof high);
}

// Widens sixteen bytes. Returns how many come before the first byte above 127.
inline std::size_t widen_ascii(const char* in, char16_t* out) {
  widen(in, out);
  const std::size_t prefix = ascii_prefix(eight_bytes_at(in));
  return prefix < 8 ? prefix : 8 + ascii_prefix(eight_bytes_at(in + 8));
}

// Decodes the ASCII bytes at the start of the window.
inline void take_ascii(DecodeWindow& window) {
  std::size_t left = static_cast<std::size_t>(
      std::min<std::ptrdiff_t>(window.in_end - window.in, window.out_end - window.out));
  std::size_t taken = kAsciiBlock;
  while (left >= kAsciiBlock && taken == kAsciiBlock) {
    taken = widen_ascii(window.in, window.out);
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
