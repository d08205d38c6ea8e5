// SingleByteDecoder: encodings in which each byte by itself is one character or ill-formed.
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

// The bytes whose bits under `mask` are equal to `value`.
struct ByteRange {
  unsigned char mask;
  unsigned char value;
};

// The code unit that `decoder` gives for each byte; none unless each byte gives one code unit in
// any order of the bytes. Resets the decoder, but not its count of ill-formed parts.
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
  ByteRange to_look_up_;  // each other byte is the code unit with its value
  bool has_ill_formed_;   // some byte is ill-formed
};

}  // namespace textio::standalone
