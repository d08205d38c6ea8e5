// A table look-up for each byte; where the table holds ASCII, runs of it are widened in blocks.
#include "standalone/single_byte_decoder.hpp"

#include <algorithm>
#include <iterator>
#include <numeric>
#include <tuple>

#include "standalone/ascii_run.hpp"

namespace textio::standalone {
namespace {

bool begins_with_ascii(const SingleByteTable& table) {
  for (unsigned byte = 0; byte < 0x80; ++byte) {
    if (table.units[byte] != byte) return false;
  }
  return true;
}

using AllBytes = std::array<char, 256>;
using AllUnits = std::array<char16_t, 256>;

// What becomes of the bytes in this order; none when some byte does not give exactly one unit, or a
// U+FFFD is a character of the encoding and not the mark of an ill-formed byte.
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
      holds_ascii_(begins_with_ascii(table)),
      has_ill_formed_(std::find(table.units.begin(), table.units.end(), kReplacement) !=
                      table.units.end()) {}

bool SingleByteDecoder::decode(DecodeWindow& window, bool /*final*/) {
  DecodeWindow here = window;  // a local copy lives in registers
  std::size_t ill_formed = 0;
  while (here.in != here.in_end && here.out != here.out_end) {
    const auto byte = static_cast<unsigned char>(*here.in);
    if (holds_ascii_ && byte < 0x80) {
      take_ascii(here);
      continue;
    }
    const char16_t unit = table_.units[byte];
    *here.out++ = unit;
    ++here.in;
    if (has_ill_formed_ && unit == kReplacement) ++ill_formed;
  }
  ill_formed_ += ill_formed;
  window = here;
  return here.in == here.in_end;
}

}  // namespace textio::standalone
