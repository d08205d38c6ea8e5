// StreamDecoder: bytes of one encoding to UTF-16, piece by piece. What a converter is built of.
//
//   DecodeWindow window{bytes, bytes + count, units, units + room};
//   const bool all_out = decoder.decode(window, is_last);   // window.out: behind the last unit
//
// Units    input counts bytes, output counts UTF-16 code units.
// Threads  one thread at a time; separate decoders are independent.
#pragma once

#include <cstddef>

namespace textio::standalone {

inline constexpr char16_t kReplacement = 0xFFFD;

inline constexpr std::size_t kEnoughRoom = 128;

// What is read and where it goes. Units in [out, out_end) are free room: they may be overwritten
// even where nothing is delivered.
struct DecodeWindow {
  const char* in;
  const char* in_end;
  char16_t* out;
  char16_t* out_end;
};

class StreamDecoder {
 public:
  StreamDecoder() = default;
  virtual ~StreamDecoder() = default;
  StreamDecoder(const StreamDecoder&) = delete;
  StreamDecoder& operator=(const StreamDecoder&) = delete;

  // Decodes until the input is used up, and moves `in` and `out`. The bytes of an unfinished
  // character are taken and kept; when the input is `final` they are ill-formed. False when more
  // room is needed: then the same call is made again with the rest, and kEnoughRoom free units are
  // enough for it to get on.
  virtual bool decode(DecodeWindow& window, bool final) = 0;

  // Whether bytes of an unfinished character are kept.
  virtual bool has_unfinished() const = 0;

  // Forgets an unfinished character, and any state of the encoding.
  virtual void reset() = 0;

  // The ill-formed parts met since the decoder was made; each became one U+FFFD.
  std::size_t ill_formed_parts() const { return ill_formed_; }

 protected:
  std::size_t ill_formed_ = 0;

  // One ill-formed part; false without room.
  bool put_replacement(DecodeWindow& window) {
    if (window.out == window.out_end) return false;
    *window.out++ = kReplacement;
    ++ill_formed_;
    return true;
  }
};

}  // namespace textio::standalone
