// Utf8Decoder: UTF-8, one U+FFFD for each maximal subpart of an ill-formed sequence.
//
//   Utf8Decoder decoder(false);
//   DecodeWindow window{...};
//   decoder.decode(window, true);    // "\xE2\x82z" -> U+FFFD, 'z'
//
// Cost  no allocation.
#pragma once

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

class Utf8Decoder final : public StreamDecoder {
 public:
  // With `one_unit` a character outside the Basic Multilingual Plane is its high surrogate alone.
  explicit Utf8Decoder(bool one_unit) : one_unit_(one_unit) {}

  bool decode(DecodeWindow& window, bool final) override;
  bool has_unfinished() const override { return missing_ != 0; }
  void reset() override { missing_ = 0; }

 private:
  bool take_byte(DecodeWindow& window);
  bool take_first_byte(DecodeWindow& window);
  bool put_character(DecodeWindow& window, char32_t character) const;
  void take_whole_characters(DecodeWindow& window) const;

  bool one_unit_;

  // The unfinished character: its bits so far, the number of missing bytes, the range of the next.
  char32_t bits_ = 0;
  int missing_ = 0;
  unsigned char next_low_ = 0x80;
  unsigned char next_high_ = 0xBF;
};

}  // namespace textio::standalone
