#include <vltextstream/strategy/quoting.hpp>

namespace textio {

void unquote_into(std::u16string& out, std::u16string_view text, char16_t quote) {
  out.clear();
  std::size_t i = 0;
  while (i < text.size() && text[i] == quote) {
    const std::size_t close = std::min(text.find(quote, i + 1), text.size());
    out.append(text, i + 1, close - (i + 1));
    i = std::min(close + 1, text.size());
    if (i < text.size() && text[i] == quote) out.push_back(quote);
  }
  out.append(text, i);
}

}  // namespace textio
