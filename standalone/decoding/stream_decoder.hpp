// StreamDecoder: decodes the bytes of one encoding to UTF-16, piece by piece. Converters use it.
//
//   DecodeWindow window{bytes, bytes + count, units, units + room};
//   const bool all_out = decoder.decode(window, is_last);   // window.out: after the last unit
//
// Units    input counts bytes, output counts UTF-16 code units.
// Threads  one thread at a time; separate decoders are independent.
#pragma once

#include <cstddef>

namespace textio::standalone {

inline constexpr char16_t kReplacement = 0xFFFD;

inline constexpr std::size_t kEnoughRoom = 128;

// Where the input is and where the output goes. All code units in [out, out_end) are free room: a
// decoder may overwrite even those that it does not deliver.
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
  // character are taken and kept; if the input is `final`, they are ill-formed. Returns false if
  // more room is needed: the caller then repeats the call with the rest of the input, and with
  // kEnoughRoom free code units it makes progress.
  virtual bool decode(DecodeWindow& window, bool final) = 0;

  // Whether the end of the input would give code units: an unfinished character, or one that the
  // encoding delays.
  virtual bool has_unfinished() const = 0;

  // Forgets an unfinished character and any state of the encoding.
  virtual void reset() = 0;

  // The number of ill-formed parts since the decoder was made; each became one U+FFFD.
  std::size_t ill_formed_parts() const { return ill_formed_; }

 protected:
  std::size_t ill_formed_ = 0;

  // Counts one ill-formed part and writes its U+FFFD; false if there is no room.
  bool put_replacement(DecodeWindow& window) {
    if (window.out == window.out_end) return false;
    *window.out++ = kReplacement;
    ++ill_formed_;
    return true;
  }
};

}  // namespace textio::standalone
