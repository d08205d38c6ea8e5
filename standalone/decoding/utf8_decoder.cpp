// There are two routes. A character with at least four bytes of input and room for a pair is
// decoded at once, ASCII in blocks. The ends of the input, unfinished characters and ill-formed
// bytes go byte by byte through a state machine that keeps the valid range of the next byte. A byte
// outside the range ends the maximal subpart and is then decoded as a first byte.
#include <vltextstream/standalone/decoding/utf8_decoder.hpp>

#include <cstdint>
#include <cstring>

#include <vltextstream/standalone/decoding/ascii_run.hpp>
#include <vltextstream/standalone/decoding/surrogates.hpp>

namespace textio::standalone {
namespace {

constexpr std::ptrdiff_t kLongestSequence = 4;

// What a first byte says about the bytes that follow; none are missing after an ill-formed one.
struct Lead {
  int missing;
  unsigned char next_low;
  unsigned char next_high;
};

Lead lead_of(unsigned char byte) {
  if (byte < 0xC2 || byte > 0xF4) return {0, 0, 0};
  if (byte < 0xE0) return {1, 0x80, 0xBF};
  if (byte == 0xE0) return {2, 0xA0, 0xBF};
  if (byte == 0xED) return {2, 0x80, 0x9F};
  if (byte < 0xF0) return {2, 0x80, 0xBF};
  if (byte == 0xF0) return {3, 0x90, 0xBF};
  if (byte == 0xF4) return {3, 0x80, 0x8F};
  return {3, 0x80, 0xBF};
}

// Four bytes as a big-endian number.
std::uint32_t four_bytes(const char* in) {
  unsigned char bytes[kLongestSequence];
  std::memcpy(bytes, in, sizeof bytes);
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
         std::uint32_t{bytes[2]} << 8 | std::uint32_t{bytes[3]};
}

// The first character of `four`, which is not ASCII, and its length; length 0 if it is ill-formed.
// Each pattern checks the marker bits of all bytes of a sequence at once.
struct Character {
  char32_t value;
  int length;
};

Character first_character(std::uint32_t four) {
  if ((four & 0xF0C0C000) == 0xE0808000) {
    const char32_t value = (four >> 12 & 0xF000) | (four >> 10 & 0x0FC0) | (four >> 8 & 0x003F);
    const bool well_formed = value >= 0x800 && !is_surrogate(value);
    return {value, well_formed ? 3 : 0};
  }
  if ((four & 0xE0C00000) == 0xC0800000) {
    const char32_t value = (four >> 18 & 0x07C0) | (four >> 16 & 0x003F);
    return {value, value >= 0x80 ? 2 : 0};
  }
  if ((four & 0xF8C0C0C0) == 0xF0808080) {
    const char32_t value = (four >> 6 & 0x1C0000) | (four >> 4 & 0x03F000) |
                           (four >> 2 & 0x000FC0) | (four & 0x00003F);
    const bool well_formed = value >= 0x10000 && value <= 0x10FFFF;
    return {value, well_formed ? 4 : 0};
  }
  return {0, 0};
}

}  // namespace

bool Utf8Decoder::decode(DecodeWindow& window, bool final) {
  for (;;) {
    if (missing_ == 0) take_whole_characters(window);
    if (window.in == window.in_end) break;
    if (!take_byte(window)) return false;
  }
  if (!final || missing_ == 0) return true;
  if (!put_replacement(window)) return false;
  missing_ = 0;
  return true;
}

// Each round takes at least one byte. Stops before what the state machine must decode.
void Utf8Decoder::take_whole_characters(DecodeWindow& window) const {
  DecodeWindow here = window;  // a local copy lives in registers
  while (here.in_end - here.in >= kLongestSequence && here.out_end - here.out >= 2) {
    if (static_cast<unsigned char>(*here.in) < 0x80) {
      take_ascii(here);
      continue;
    }
    const auto [value, length] = first_character(four_bytes(here.in));
    if (length == 0) break;
    here.in += length;
    if (length < 4) {
      *here.out++ = static_cast<char16_t>(value);
    } else {
      *here.out++ = high_surrogate(value);
      if (!one_unit_) *here.out++ = low_surrogate(value);
    }
  }
  window = here;
}

// Takes the next byte, or ends an ill-formed part before it; false if there is no room.
bool Utf8Decoder::take_byte(DecodeWindow& window) {
  if (missing_ == 0) return take_first_byte(window);
  const auto byte = static_cast<unsigned char>(*window.in);
  if (byte < next_low_ || byte > next_high_) {
    if (!put_replacement(window)) return false;
    missing_ = 0;
    return true;
  }
  const char32_t bits = bits_ << 6 | (byte & 0x3FU);
  if (missing_ == 1 && !put_character(window, bits)) return false;
  bits_ = bits;
  --missing_;
  next_low_ = 0x80;
  next_high_ = 0xBF;
  ++window.in;
  return true;
}

bool Utf8Decoder::take_first_byte(DecodeWindow& window) {
  const auto byte = static_cast<unsigned char>(*window.in);
  const Lead lead = lead_of(byte);
  if (byte < 0x80) {
    if (!put_character(window, byte)) return false;
  } else if (lead.missing == 0) {
    if (!put_replacement(window)) return false;
  } else {
    bits_ = byte & (0x3FU >> lead.missing);
    missing_ = lead.missing;
    next_low_ = lead.next_low;
    next_high_ = lead.next_high;
  }
  ++window.in;
  return true;
}

bool Utf8Decoder::put_character(DecodeWindow& window, char32_t character) const {
  const bool is_pair = character > 0xFFFF && !one_unit_;
  if (window.out_end - window.out < (is_pair ? 2 : 1)) return false;
  *window.out++ = character > 0xFFFF ? high_surrogate(character) : static_cast<char16_t>(character);
  if (is_pair) *window.out++ = low_surrogate(character);
  return true;
}

}  // namespace textio::standalone
