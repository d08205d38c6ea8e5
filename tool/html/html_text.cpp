#include "tool/html/html_text.hpp"

#include <algorithm>

#include <vltextstream/text/utf8.hpp>

#include "tool/showing/places.hpp"

namespace textio::tool {
namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

void append(std::string& out, char32_t code) {
  switch (code) {
    case U'&':
      out += "&amp;";
      return;
    case U'<':
      out += "&lt;";
      return;
    case U'>':
      out += "&gt;";
      return;
    case U'"':
      out += "&quot;";
      return;
    case U'\'':
      out += "&#39;";
      return;
    default:
      append_utf8(out, is_unprintable(code) ? kReplacement : code);
  }
}

}  // namespace

std::string html(std::string_view text) { return html_cut(text, text.size()); }

std::string html_cut(std::string_view text, std::size_t most) {
  const std::size_t length = text.size() <= most ? text.size() : length_of_characters(text, most);
  std::string out;
  for (std::size_t pos = 0; pos < length;) {
    const Utf8Character character = first_character(text.substr(pos));
    append(out, character.code);
    pos += character.length;
  }
  if (length < text.size()) out.append(kEllipsis);
  return out;
}

std::string html_lines(std::string_view text) {
  std::string out;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find_first_of("\n\t"), text.size());
    out += html(text.substr(0, end));
    if (end < text.size()) out += text[end];
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return out;
}

}  // namespace textio::tool
