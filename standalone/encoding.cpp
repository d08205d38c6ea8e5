#include "standalone/encoding.hpp"

#include <unicode/utf8.h>

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

// Whether `bytes` are well-formed.
bool is_utf8(std::string_view bytes, bool is_whole) {
  const auto* const units = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(units, i, bytes.size(), c);
    const bool cut_off = !is_whole && i == bytes.size() && bytes.size() - begin < U8_MAX_LENGTH &&
                         U8_IS_LEAD(units[begin]);
    if (c < 0) return cut_off;
  }
  return true;
}

}  // namespace

FoundEncoding find_encoding(std::string_view bytes, bool is_whole) {
  for (const Mark& mark : kMarks) {
    if (bytes.substr(0, mark.bytes.size()) == mark.bytes) {
      return {mark.encoding, EncodingFound::byte_order_mark, 1.0};
    }
  }
  if (is_utf8(bytes, is_whole)) return {"UTF-8", EncodingFound::valid_utf8, 1.0};
  return {"windows-1252", EncodingFound::fallback, 0.0};
}

}  // namespace textio::standalone
