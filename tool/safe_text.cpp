#include "tool/safe_text.hpp"

#include <vltextstream/text/utf8.hpp>

namespace textio::tool {
namespace {

constexpr std::string_view kEllipsis = "...";

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
