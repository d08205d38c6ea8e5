// Looks each byte up in a table, except in blocks of bytes that are all equal to their code units.
// These are ASCII in most encodings, and in those of western Europe also everything from A0 on.
#include <vltextstream/standalone/decoding/single_byte_decoder.hpp>

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include <vltextstream/source/unit_block.hpp>
#include <vltextstream/standalone/decoding/ascii_run.hpp>

namespace textio::standalone {
namespace {

// Whether each byte from `first` up to `end` is the code unit with its value.
bool are_their_numbers(const SingleByteTable& table, unsigned first, unsigned end) {
  for (unsigned byte = first; byte < end; ++byte) {
    if (table.units[byte] != byte) return false;
  }
  return true;
}

// The bytes that prevent a block from being widened.
ByteRange range_to_look_up(const SingleByteTable& table) {
  constexpr ByteRange kAll = {0x00, 0x00};
  constexpr ByteRange kFrom80 = {0x80, 0x80};
  constexpr ByteRange k80To9F = {0xE0, 0x80};
  if (!are_their_numbers(table, 0x00, 0x80)) return kAll;
  return are_their_numbers(table, 0xA0, 0x100) ? k80To9F : kFrom80;
}

void widen_block(DecodeWindow& window) {
  static_assert(kBlockUnits % kAsciiBlock == 0);
  for (std::ptrdiff_t i = 0; i < kBlockUnits; i += kAsciiBlock) {
    widen(window.in + i, window.out + i);
  }
  window.in += kBlockUnits;
  window.out += kBlockUnits;
}

using AllBytes = std::array<char, 256>;
using AllUnits = std::array<char16_t, 256>;

// The code units of the bytes in this order; none if some byte does not give exactly one code unit,
// or if U+FFFD is a character of the encoding rather than the mark of an ill-formed byte.
std::optional<AllUnits> one_unit_each(StreamDecoder& decoder, const AllBytes& bytes) {
  decoder.reset();
  const std::size_t ill_formed_before = decoder.ill_formed_parts();
  char16_t units[2 * std::tuple_size_v<AllUnits>] = {};
  DecodeWindow window{bytes.data(), bytes.data() + bytes.size(), units, std::end(units)};
  const bool all_out = decoder.decode(window, false) && !decoder.has_unfinished();
  const auto ill_formed =
      static_cast<std::ptrdiff_t>(decoder.ill_formed_parts() - ill_formed_before);
  const bool one_each = window.out - units == std::ssize(bytes) &&
                        std::count(units, window.out, kReplacement) == ill_formed;
  if (!all_out || !one_each) return std::nullopt;
  AllUnits answer = {};
  std::copy(units, window.out, answer.begin());
  return answer;
}

}  // namespace

std::optional<SingleByteTable> single_byte_table(StreamDecoder& decoder) {
  AllBytes bytes;
  std::iota(bytes.begin(), bytes.end(), '\0');
  const auto units = one_unit_each(decoder, bytes);
  std::reverse(bytes.begin(), bytes.end());
  auto backwards = one_unit_each(decoder, bytes);
  if (!units || !backwards) return std::nullopt;
  std::reverse(backwards->begin(), backwards->end());
  if (*units != *backwards) return std::nullopt;
  return SingleByteTable{*units};
}

SingleByteDecoder::SingleByteDecoder(const SingleByteTable& table)
    : table_(table),
      to_look_up_(range_to_look_up(table)),
      has_ill_formed_(std::find(table.units.begin(), table.units.end(), kReplacement) !=
                      table.units.end()) {}

bool SingleByteDecoder::decode(DecodeWindow& window, bool /*final*/) {
  const auto needs_look_up = [range = to_look_up_](char byte) {
    return (static_cast<unsigned char>(byte) & range.mask) == range.value;
  };
  DecodeWindow here = window;  // a local copy lives in registers
  std::ptrdiff_t left = std::min(here.in_end - here.in, here.out_end - here.out);
  for (; left >= kBlockUnits; left -= kBlockUnits) {
    if (any_in_block(here.in, needs_look_up)) {
      look_up(here, kBlockUnits);
    } else {
      widen_block(here);
    }
  }
  look_up(here, left);
  window = here;
  return here.in == here.in_end;
}

void SingleByteDecoder::look_up(DecodeWindow& window, std::ptrdiff_t count) {
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    window.out[i] = table_.units[static_cast<unsigned char>(window.in[i])];
  }
  if (has_ill_formed_) {
    ill_formed_ +=
        static_cast<std::size_t>(std::count(window.out, window.out + count, kReplacement));
  }
  window.in += count;
  window.out += count;
}

}  // namespace textio::standalone
