// Utf16Decoder: UTF-16 of a known byte order, one U+FFFD for each lone surrogate.
//
//   Utf16Decoder decoder(ByteOrder::little, false);
//   DecodeWindow window{...};
//   decoder.decode(window, true);    // "\x3D\xD8z\0" -> U+FFFD, 'z'
//
// Cost  no allocation.
#pragma once

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

enum class ByteOrder { little, big };

class Utf16Decoder final : public StreamDecoder {
 public:
  // With `one_unit` a character outside the Basic Multilingual Plane is its high surrogate alone.
  Utf16Decoder(ByteOrder order, bool one_unit) : order_(order), one_unit_(one_unit) {}

  bool decode(DecodeWindow& window, bool final) override;
  bool has_unfinished() const override { return has_odd_byte_ || high_ != 0; }
  void reset() override;

 private:
  bool take_byte(DecodeWindow& window);
  bool take_unit(DecodeWindow& window, char16_t unit);
  bool put_pair(DecodeWindow& window, char16_t low);

  ByteOrder order_;
  bool one_unit_;

  // The unfinished character: a high surrogate (0 for none), the first byte of a code unit, or
  // both.
  char16_t high_ = 0;
  bool has_odd_byte_ = false;
  char odd_byte_ = 0;
};

}  // namespace textio::standalone
