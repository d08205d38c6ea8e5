#include "bench/encoded_texts.hpp"

#include <algorithm>
#include <string_view>

#include <vltextstream/standalone/decoding/utf_text.hpp>

#include "bench/shapes.hpp"

namespace textio::bench {
namespace {

bool is_letter(char16_t unit) { return unit >= u'a' && unit <= u'z'; }

// A table of names and numbers with an accent on one in twenty characters; if that one is not a
// letter, on the next.
std::u16string accented_table(std::size_t characters) {
  std::u16string text = names_table(characters);
  std::size_t accents = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!is_letter(text[i]) || accents * 20 > i) continue;
    text[i] = u'\u00E9';
    ++accents;
  }
  return text;
}

// A Japanese table: kanji, kana, a number of four digits and one of two.
constexpr std::size_t kLineCharacters = 22;
const std::string kJapaneseInShiftJis =
    "\x93\x8C\x8B\x9E\x93\x73\x90\xE7\x91\xE3\x93\x63\x8B\xE6,\x83\x65\x83\x58\x83\x67\x82\xCC\x95"
    "\x5C,";
const std::u16string kJapanese =
    u"\u6771\u4eac\u90fd\u5343\u4ee3\u7530\u533a,\u30c6\u30b9\u30c8\u306e\u8868,";

std::string japanese_table(std::size_t characters, const std::string& names) {
  std::string bytes;
  for (std::size_t row = 0; (row + 1) * kLineCharacters <= characters; ++row) {
    bytes += names;
    bytes += std::to_string(1000 + row * 7 % 9000);
    bytes += ',';
    bytes += std::to_string(10 + row * 3 % 90);
    bytes += '\n';
  }
  return bytes;
}

std::string ascii(std::size_t characters) { return ascii_bytes(names_table(characters)); }

std::string utf8_two_byte(std::size_t characters) {
  return standalone::to_utf8(accented_table(characters));
}

std::string utf8_japanese(std::size_t characters) {
  return japanese_table(characters, standalone::to_utf8(kJapanese));
}

std::string utf16le(std::size_t characters) {
  return utf16_bytes(accented_table(characters)).substr(2);
}

// The characters of these texts have the same numbers as their bytes.
std::string windows1252(std::size_t characters) { return ascii_bytes(accented_table(characters)); }

std::string shift_jis(std::size_t characters) {
  return japanese_table(characters, kJapaneseInShiftJis);
}

}  // namespace

const std::vector<EncodedText>& encoded_texts() {
  static const std::vector<EncodedText> texts = {
      {"ascii", "UTF-8", ascii},
      {"utf8_two_byte", "UTF-8", utf8_two_byte},
      {"utf8_japanese", "UTF-8", utf8_japanese},
      {"utf16le", "UTF-16LE", utf16le},
      {"windows1252", "windows-1252", windows1252},
      {"shift_jis", "Shift_JIS", shift_jis},
  };
  return texts;
}

}  // namespace textio::bench
