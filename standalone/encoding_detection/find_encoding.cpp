// The tests run from proof to guess, and the first with an answer decides: a byte-order mark; plain
// ASCII, unless its escape sequences or control characters show more; UTF-16 or UTF-32 where some
// bytes suggest it; well-formed UTF-8; statistics. A text in ASCII or UTF-8 is read once.
#include <vltextstream/standalone/encoding_detection/find_encoding.hpp>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

#include <unicode/utf8.h>

#include <vltextstream/standalone/encoding_detection/escape_sequences.hpp>
#include <vltextstream/standalone/encoding_detection/guess_encoding.hpp>
#include <vltextstream/standalone/encoding_detection/unmarked_unicode.hpp>

namespace textio::standalone {
namespace {

using namespace std::string_view_literals;

struct Mark {
  std::string_view bytes;
  const char* encoding;
};
// The mark of UTF-16LE begins that of UTF-32LE, so it comes after it.
constexpr Mark kMarks[] = {
    {"\xEF\xBB\xBF"sv, "UTF-8"}, {"\xFF\xFE\0\0"sv, "UTF-32LE"}, {"\0\0\xFE\xFF"sv, "UTF-32BE"},
    {"\xFF\xFE"sv, "UTF-16LE"},  {"\xFE\xFF"sv, "UTF-16BE"},
};

constexpr std::size_t kLookedAt = 65'536;  // bytes

// The position of the first byte above 127 from `pos` on; the size if there is none.
std::size_t end_of_ascii(std::string_view bytes, std::size_t pos) {
  constexpr std::uint64_t kTopBits = 0x8080808080808080;
  for (; pos + sizeof(std::uint64_t) <= bytes.size(); pos += sizeof(std::uint64_t)) {
    std::uint64_t eight = 0;
    std::memcpy(&eight, bytes.data() + pos, sizeof eight);
    if ((eight & kTopBits) != 0) break;
  }
  while (pos < bytes.size() && static_cast<unsigned char>(bytes[pos]) < 0x80) ++pos;
  return pos;
}

// Whether `bytes` are well-formed.
bool is_utf8(std::string_view bytes, bool is_whole) {
  const auto* const units = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = end_of_ascii(bytes, 0); i < bytes.size(); i = end_of_ascii(bytes, i)) {
    const std::size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(units, i, bytes.size(), c);
    const bool cut_off = !is_whole && i == bytes.size() && bytes.size() - begin < U8_MAX_LENGTH &&
                         U8_IS_LEAD(units[begin]);
    if (c < 0) return cut_off;
  }
  return true;
}

std::optional<FoundEncoding> by_mark(std::string_view bytes) {
  for (const Mark& mark : kMarks) {
    if (bytes.substr(0, mark.bytes.size()) == mark.bytes) {
      return FoundEncoding{mark.encoding, EncodingFound::byte_order_mark, 1.0};
    }
  }
  return std::nullopt;
}

std::optional<FoundEncoding> by_escapes(std::string_view bytes, bool is_whole) {
  if (end_of_ascii(bytes, 0) != bytes.size()) return std::nullopt;
  const char* const encoding = find_escaped_encoding(bytes, is_whole);
  if (encoding == nullptr) return std::nullopt;
  return FoundEncoding{encoding, EncodingFound::escape_sequences, 1.0};
}

FoundEncoding as_found(const UnmarkedUnicode& unicode, std::string_view bytes) {
  const bool has_zeros = bytes.find('\0') != std::string_view::npos;
  return {unicode.encoding, has_zeros ? EncodingFound::zero_bytes : EncodingFound::statistics,
          1.0 - std::exp(-unicode.gain)};
}

FoundEncoding as_found(const StatisticalGuess& guess) {
  return {guess.encoding, guess.has_ground ? EncodingFound::statistics : EncodingFound::fallback,
          guess.confidence};
}

// Well-formed UTF-8 is given up only for a good reason.
FoundEncoding of_valid_utf8(std::string_view bytes, bool is_whole) {
  if (may_be_unmarked_unicode(bytes)) {
    if (const auto unicode = find_unmarked_unicode(bytes, is_whole)) {
      return as_found(*unicode, bytes);
    }
  }
  return {"UTF-8", EncodingFound::valid_utf8, 1.0};
}

FoundEncoding by_statistics(std::string_view bytes, bool is_whole) {
  const auto unicode = find_unmarked_unicode(bytes, is_whole);
  const StatisticalGuess guess = guess_encoding(bytes, is_whole);
  return unicode && unicode->gain > guess.gain ? as_found(*unicode, bytes) : as_found(guess);
}

}  // namespace

FoundEncoding find_encoding(std::string_view bytes, bool is_whole) {
  if (bytes.size() > kLookedAt) return find_encoding(bytes.substr(0, kLookedAt), false);
  if (const auto found = by_mark(bytes)) return *found;
  if (const auto found = by_escapes(bytes, is_whole)) return *found;
  if (is_utf8(bytes, is_whole)) return of_valid_utf8(bytes, is_whole);
  return by_statistics(bytes, is_whole);
}

}  // namespace textio::standalone
