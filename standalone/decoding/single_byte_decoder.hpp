// SingleByteDecoder: encodings in which every byte is a character, or none, by itself.
//
//   if (const auto table = single_byte_table(slow_decoder)) {
//     SingleByteDecoder decoder(*table);
//     decoder.decode(window, false);
//   }
//
// Cost  the slow decoder is called twice for the table; decoding allocates nothing.
#pragma once

#include <array>
#include <optional>

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

struct SingleByteTable {
  std::array<char16_t, 256> units;  // U+FFFD for a byte that is ill-formed
};

// The bytes whose bits in `mask` are `value`.
struct ByteRange {
  unsigned char mask;
  unsigned char value;
};

// What `decoder` makes of each byte; none when the bytes do not give one unit each, in whatever
// order they come. The decoder is reset; its ill-formed parts count on.
std::optional<SingleByteTable> single_byte_table(StreamDecoder& decoder);

class SingleByteDecoder final : public StreamDecoder {
 public:
  explicit SingleByteDecoder(const SingleByteTable& table);

  bool decode(DecodeWindow& window, bool final) override;
  bool has_unfinished() const override { return false; }
  void reset() override {}

 private:
  void look_up(DecodeWindow& window, std::ptrdiff_t count);

  SingleByteTable table_;
  ByteRange to_look_up_;  // all others stand for the characters of their numbers
  bool has_ill_formed_;   // some byte is no character
};

}  // namespace textio::standalone
