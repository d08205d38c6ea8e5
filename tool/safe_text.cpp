#include "tool/safe_text.hpp"

#include <algorithm>

namespace textio::tool {
namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kReplacementUtf8 = "\xEF\xBF\xBD";
constexpr std::string_view kEllipsis = "...";

bool is_in(char32_t code, char32_t first, char32_t last) { return code >= first && code <= last; }

// What may follow the first byte of a character.
struct Continuation {
  std::size_t count = 0;  // bytes; 0 when no character begins with this byte
  unsigned char low = 0x80;
  unsigned char high = 0xBF;  // of the first of them; the others are 0x80 to 0xBF
};

// The narrower ranges exclude overlong forms, surrogates and what is above U+10FFFF.
Continuation continuation_of(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {1};
  if (lead == 0xE0) return {2, 0xA0, 0xBF};
  if (lead == 0xED) return {2, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {2};
  if (lead == 0xF0) return {3, 0x90, 0xBF};
  if (lead == 0xF4) return {3, 0x80, 0x8F};
  if (lead >= 0xF1 && lead <= 0xF3) return {3};
  return {};
}

char32_t bits_of_lead(unsigned char lead, std::size_t continuations) {
  return lead & (0x3FU >> continuations);
}

bool is_surrogate(char32_t code) { return is_in(code, 0xD800, 0xDFFF); }

// One replacement for each ill-formed byte.
template <typename Write>
void for_each_piece(std::string_view text, const Write& write) {
  while (!text.empty()) {
    const Utf8Character c = first_character(text);
    if (!c.is_well_formed) {
      for (std::size_t i = 0; i < c.length; ++i) write(kReplacementUtf8);
    } else {
      write(is_unprintable(c.code) ? kReplacementUtf8 : text.substr(0, c.length));
    }
    text.remove_prefix(c.length);
  }
}

// The bytes of the first `count` characters.
std::size_t length_of_start(std::string_view text, std::size_t count) {
  std::size_t length = 0;
  for (; count > 0 && length < text.size(); --count) {
    length += first_character(text.substr(length)).length;
  }
  return length;
}

}  // namespace

Utf8Character first_character(std::string_view bytes) {
  const auto lead = static_cast<unsigned char>(bytes.front());
  if (lead < 0x80) return {lead, 1, true};
  const Continuation rest = continuation_of(lead);
  if (rest.count == 0) return {kReplacement, 1, false};
  char32_t code = bits_of_lead(lead, rest.count);
  for (std::size_t i = 1; i <= rest.count; ++i) {
    const unsigned byte = i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : 0U;
    const bool fits = i == 1 ? byte >= rest.low && byte <= rest.high : (byte & 0xC0) == 0x80;
    if (!fits) return {kReplacement, i, false};
    code = (code << 6) | (byte & 0x3FU);
  }
  return {code, rest.count + 1, true};
}

char32_t next_character(std::u16string_view text, std::size_t& pos) {
  const char32_t first = text[pos++];
  const bool may_begin_pair = is_in(first, 0xD800, 0xDBFF) && pos < text.size();
  if (!may_begin_pair || !is_in(text[pos], 0xDC00, 0xDFFF)) return first;
  return 0x10000 + ((first - 0xD800) << 10) + (text[pos++] - 0xDC00U);
}

void append_utf8(std::string& out, char32_t code) {
  const auto append_bits = [&](char32_t lead, unsigned shift) {
    out += static_cast<char>(lead | (code >> shift));
    while (shift > 0) {
      shift -= 6;
      out += static_cast<char>(0x80U | ((code >> shift) & 0x3FU));
    }
  };
  if (is_surrogate(code)) {
    out += kReplacementUtf8;
  } else if (code < 0x80) {
    append_bits(0, 0);
  } else if (code < 0x800) {
    append_bits(0xC0, 6);
  } else if (code < 0x10000) {
    append_bits(0xE0, 12);
  } else {
    append_bits(0xF0, 18);
  }
}

bool is_unprintable(char32_t code) {
  const bool is_control = code < 0x20 || is_in(code, 0x7F, 0x9F);
  if (is_control || code < 0xAD) return is_control;
  const bool is_separator = code == 0x2028 || code == 0x2029;
  const bool is_direction = code == 0x200E || code == 0x200F || code == 0x061C ||
                            is_in(code, 0x202A, 0x202E) || is_in(code, 0x2066, 0x2069);
  const bool is_invisible = code == 0xAD || code == 0x180E || code == 0x200B || code == 0x2060 ||
                            code == 0xFEFF || is_in(code, 0x206A, 0x206F);
  const bool is_tag = is_in(code, 0xE0000, 0xE007F);
  return is_separator || is_direction || is_invisible || is_tag || is_surrogate(code);
}

std::string printable(std::string_view text) {
  std::string out;
  for_each_piece(text, [&](std::string_view piece) { out += piece; });
  return out;
}

std::string printable(std::u16string_view text) {
  std::string out;
  for (std::size_t pos = 0; pos < text.size();) {
    const char32_t code = next_character(text, pos);
    append_utf8(out, is_unprintable(code) ? kReplacement : code);
  }
  return out;
}

void write_printable(std::string_view text, std::FILE* file) noexcept {
  for_each_piece(text,
                 [&](std::string_view piece) { std::fwrite(piece.data(), 1, piece.size(), file); });
}

std::string shortened(std::string_view text) {
  if (length_of_start(text, kLongestEcho) == text.size()) return std::string(text);
  std::string start(text.substr(0, length_of_start(text, kLongestEcho - kEllipsis.size())));
  return start += kEllipsis;
}

std::string with_short_echoes(std::string message, const std::vector<std::string>& typed) {
  for (const std::string& text : typed) {
    const std::string shorter = shortened(text);
    if (shorter == text) continue;
    for (std::size_t place = message.find(text); place != std::string::npos;
         place = message.find(text, place + shorter.size())) {
      message.replace(place, text.size(), shorter);
    }
  }
  return message;
}

}  // namespace textio::tool
