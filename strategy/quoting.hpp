// The rules of quoted text.
//
// A field that starts with a quote extends at least to the closing quote, whatever is between. A
// doubled quote does not close it: another quoted part follows. An unterminated quote extends to
// the end of the text.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <vltextstream/strategy/field_text.hpp>
#include <vltextstream/strategy/search/code_unit_finder.hpp>

namespace textio {

// A line that starts with one of these may continue past a line ending, because a quoted field may
// contain line endings. Blanks before aligned fields are skipped.
inline constexpr std::u16string_view kLineOpeners = u"\"";
inline constexpr std::u16string_view kAlignedLineOpeners = u"\" \t";

// The position after the quoted parts that begin at `i`; `i` itself if none begins there. `quotes`
// finds `quote` in `text`.
inline std::size_t skip_quoted(const Field& text, std::size_t i, char16_t quote,
                               CodeUnitFinder& quotes) {
  while (!ends_at(text, i) && text.data[i] == quote) {
    i = std::min(quotes.next(i + 1) + 1, text.length);
  }
  return i;
}

// Sets `out` to `text` without its quotes. A doubled quote gives one quote. The text after the
// closing quote is copied unchanged.
void unquote_into(std::u16string& out, std::u16string_view text, char16_t quote);

}  // namespace textio
