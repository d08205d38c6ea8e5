#include "standalone/encoding.hpp"

#include <cstdio>
#include <memory>
#include <string_view>

#include <sys/stat.h>
#include <unicode/utf8.h>

#include "host/file_layer.hpp"
#include "standalone/utf_text.hpp"

namespace textio::standalone {
namespace {

using namespace std::string_view_literals;

constexpr std::size_t kHeadBytes = 65'536;

struct Mark {
  std::string_view bytes;
  const char* encoding;
};
// The mark of UTF-16LE begins that of UTF-32LE, so it comes after it.
constexpr Mark kMarks[] = {
    {"\xEF\xBB\xBF"sv, "UTF-8"}, {"\xFF\xFE\0\0"sv, "UTF-32LE"}, {"\0\0\xFE\xFF"sv, "UTF-32BE"},
    {"\xFF\xFE"sv, "UTF-16LE"},  {"\xFE\xFF"sv, "UTF-16BE"},
};

bool is_regular_file(const std::u16string& path) {
  struct stat about {};
  return ::stat(to_utf8(path).c_str(), &about) == 0 && S_ISREG(about.st_mode);
}

std::string first_bytes(const std::u16string& path) {
  std::string bytes;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(open_file(path, "rb"), &std::fclose);
  if (file) {
    bytes.resize(kHeadBytes);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
  }
  return bytes;
}

// Whether `bytes` are well-formed; a character cut off at the end of a full head counts as such.
bool is_utf8(std::string_view bytes) {
  const auto* const units = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(units, i, bytes.size(), c);
    const bool cut_off = bytes.size() == kHeadBytes && i == bytes.size() &&
                         bytes.size() - begin < U8_MAX_LENGTH && U8_IS_LEAD(units[begin]);
    if (c < 0) return cut_off;
  }
  return true;
}

}  // namespace

FoundEncoding find_encoding(const std::u16string& path) {
  if (!is_regular_file(path)) return {"UTF-8", EncodingFound::fallback};
  const std::string head = first_bytes(path);
  for (const Mark& mark : kMarks) {
    if (std::string_view(head).substr(0, mark.bytes.size()) == mark.bytes) {
      return {mark.encoding, EncodingFound::byte_order_mark};
    }
  }
  if (is_utf8(head)) return {"UTF-8", EncodingFound::valid_utf8};
  return {"windows-1252", EncodingFound::fallback};
}

}  // namespace textio::standalone
