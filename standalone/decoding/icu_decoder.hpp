// IcuDecoder: any encoding that ICU knows, and the reference for the faster decoders.
//
//   IcuDecoder decoder("Shift_JIS", false);
//   decoder.decode(window, is_last);
//
// Errors  the constructor throws std::invalid_argument for a name that ICU cannot open. decode()
//         throws std::runtime_error when ICU fails, which no input causes. Each call may throw
//         std::bad_alloc.
// Cost    has_unfinished() copies the converter, about a microsecond; decode() allocates nothing.
#pragma once

#include <memory>
#include <string>

#include <unicode/ucnv.h>

#include <vltextstream/standalone/decoding/stream_decoder.hpp>

namespace textio::standalone {

class IcuDecoder final : public StreamDecoder {
 public:
  // With `one_unit` a character outside the Basic Multilingual Plane is its high surrogate alone.
  IcuDecoder(const std::string& encoding, bool one_unit);

  bool decode(DecodeWindow& window, bool final) override;
  bool has_unfinished() const override;
  void reset() override;

  // Whether ICU says that no character has more than one byte.
  bool is_single_byte() const;

 private:
  struct Close {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
  };

  char16_t* settle(char16_t* out, const char16_t* begin, const char16_t* end);
  char16_t* settle_surrogate(char16_t* out, char16_t unit);

  std::unique_ptr<UConverter, Close> converter_;
  bool one_unit_;
  bool exchanges_controls_ = false;
  bool passes_lone_surrogates_ = false;

  // A high surrogate that waits for its low one, where ICU does not check pairs; 0 for none.
  char16_t high_ = 0;
};

}  // namespace textio::standalone
