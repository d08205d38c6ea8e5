#include <vltextstream/standalone/decoding/utf_text.hpp>

#include <unicode/utf16.h>
#include <unicode/utf8.h>

namespace textio::standalone {
namespace {

constexpr char32_t kEscapeBase = 0xDC00;

bool is_escaped_byte(char32_t c) { return c >= kEscapeBase + 0x80 && c <= kEscapeBase + 0xFF; }

void append(std::string& out, char32_t c) {
  char units[U8_MAX_LENGTH];
  std::size_t length = 0;
  if (is_escaped_byte(c)) {
    units[length++] = static_cast<char>(c - kEscapeBase);
  } else {
    U8_APPEND_UNSAFE(units, length, c);
  }
  out.append(units, length);
}

void append(std::u16string& out, char32_t c) {
  char16_t units[U16_MAX_LENGTH];
  std::size_t length = 0;
  U16_APPEND_UNSAFE(units, length, c);
  out.append(units, length);
}

}  // namespace

std::u16string from_utf8(std::string_view bytes) {
  std::u16string text;
  const auto* const units = reinterpret_cast<const unsigned char*>(bytes.data());
  for (std::size_t i = 0; i < bytes.size();) {
    const std::size_t begin = i;
    UChar32 c = 0;
    U8_NEXT(units, i, bytes.size(), c);
    if (c >= 0) {
      append(text, static_cast<char32_t>(c));
    } else {
      text.push_back(static_cast<char16_t>(kEscapeBase + units[begin]));
      i = begin + 1;
    }
  }
  return text;
}

std::string to_utf8(std::u16string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    char32_t c = 0;
    U16_NEXT(text.data(), i, text.size(), c);
    append(bytes, c);
  }
  return bytes;
}

}  // namespace textio::standalone
