// Blocks of code units without a surrogate are copied, with their bytes swapped if necessary.
// Well-formed pairs are copied one by one. The ends of the input, unfinished characters and lone
// surrogates go byte by byte through a state machine that keeps half a code unit and half a pair.
#include <vltextstream/standalone/decoding/utf16_decoder.hpp>

#include <algorithm>
#include <bit>
#include <cstring>

#include <vltextstream/source/unit_block.hpp>
#include <vltextstream/standalone/decoding/surrogates.hpp>

namespace textio::standalone {
namespace {

constexpr char16_t swapped(char16_t unit) {
  return static_cast<char16_t>(static_cast<unsigned>(unit) << 8 | static_cast<unsigned>(unit) >> 8);
}

template <ByteOrder kOrder>
constexpr bool is_swapped() {
  constexpr bool kNativeIsLittle = std::endian::native == std::endian::little;
  return (kOrder == ByteOrder::little) != kNativeIsLittle;
}

template <ByteOrder kOrder>
char16_t unit_at(const char* in) {
  char16_t unit = 0;
  std::memcpy(&unit, in, sizeof unit);
  return is_swapped<kOrder>() ? swapped(unit) : unit;
}

// Copies a block. Returns whether it contains a surrogate, so that it must be decoded again.
template <ByteOrder kOrder>
bool copy_block(const char* in, char16_t* out) {
  std::memcpy(out, in, kBlockUnits * sizeof *out);
  if constexpr (is_swapped<kOrder>()) std::transform(out, out + kBlockUnits, out, swapped);
  return any_in_block(out, [](char16_t unit) { return (unit & 0xF800) == 0xD800; });
}

// Takes the character at the start of the window; false before a lone surrogate. The window has
// four bytes and room for two code units.
template <ByteOrder kOrder>
bool take_character(DecodeWindow& window, bool one_unit) {
  const char16_t unit = unit_at<kOrder>(window.in);
  if (is_surrogate(unit)) {
    const char16_t low = unit_at<kOrder>(window.in + 2);
    if (!is_high_surrogate(unit) || !is_low_surrogate(low)) return false;
    *window.out++ = unit;
    if (!one_unit) *window.out++ = low;
    window.in += 4;
    return true;
  }
  *window.out++ = unit;
  window.in += 2;
  return true;
}

bool has_block(const DecodeWindow& window) {
  return window.in_end - window.in >= 2 * kBlockUnits && window.out_end - window.out >= kBlockUnits;
}

// Each round takes at least one character. Stops before what the state machine must decode.
template <ByteOrder kOrder>
void take_whole_characters(DecodeWindow& window, bool one_unit) {
  DecodeWindow here = window;  // a local copy lives in registers
  for (;;) {
    while (has_block(here) && !copy_block<kOrder>(here.in, here.out)) {
      here.in += 2 * kBlockUnits;
      here.out += kBlockUnits;
    }
    std::ptrdiff_t count = 0;
    while (count < kBlockUnits && here.in_end - here.in >= 4 && here.out_end - here.out >= 2 &&
           take_character<kOrder>(here, one_unit)) {
      ++count;
    }
    if (count < kBlockUnits) break;
  }
  window = here;
}

}  // namespace

bool Utf16Decoder::decode(DecodeWindow& window, bool final) {
  for (;;) {
    if (!has_unfinished()) {
      order_ == ByteOrder::little ? take_whole_characters<ByteOrder::little>(window, one_unit_)
                                  : take_whole_characters<ByteOrder::big>(window, one_unit_);
    }
    if (window.in == window.in_end) break;
    if (!take_byte(window)) return false;
  }
  if (!final || !has_unfinished()) return true;
  if (!put_replacement(window)) return false;
  reset();
  return true;
}

// Takes the next byte, or ends an ill-formed part before its code unit; false if there is no room.
bool Utf16Decoder::take_byte(DecodeWindow& window) {
  const char byte = *window.in;
  if (!has_odd_byte_) {
    has_odd_byte_ = true;
    odd_byte_ = byte;
    ++window.in;
    return true;
  }
  const char bytes[] = {odd_byte_, byte};
  const char16_t unit = order_ == ByteOrder::little ? unit_at<ByteOrder::little>(bytes)
                                                    : unit_at<ByteOrder::big>(bytes);
  if (high_ != 0 && !is_low_surrogate(unit)) {
    if (!put_replacement(window)) return false;
    high_ = 0;
    return true;
  }
  if (!take_unit(window, unit)) return false;
  has_odd_byte_ = false;
  ++window.in;
  return true;
}

bool Utf16Decoder::take_unit(DecodeWindow& window, char16_t unit) {
  if (high_ != 0) return put_pair(window, unit);
  if (is_high_surrogate(unit)) {
    high_ = unit;
    return true;
  }
  if (is_low_surrogate(unit)) return put_replacement(window);
  if (window.out == window.out_end) return false;
  *window.out++ = unit;
  return true;
}

bool Utf16Decoder::put_pair(DecodeWindow& window, char16_t low) {
  if (window.out_end - window.out < (one_unit_ ? 1 : 2)) return false;
  *window.out++ = high_;
  if (!one_unit_) *window.out++ = low;
  high_ = 0;
  return true;
}

void Utf16Decoder::reset() {
  has_odd_byte_ = false;
  high_ = 0;
}

}  // namespace textio::standalone
