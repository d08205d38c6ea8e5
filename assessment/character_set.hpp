// CharacterSet: which characters a text contains, as a set of bits.
//
//   const CharacterSet characters = characters_in(u"a;b");
//   (characters & set_of(u';')) != 0
//
// The tab and each printable character of ASCII that is neither a letter nor a digit have a bit of their own.
// The letters and digits of ASCII share one, and so do its other control characters, and all characters
// beyond it.
//
// Cost  one look-up for each code unit; what it finds spares a search for each character.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace textio::assessment {

using CharacterSet = std::uint64_t;

namespace character_set {

inline constexpr unsigned kWordBit = 61;
inline constexpr unsigned kControlBit = 62;
inline constexpr unsigned kBeyondBit = 63;

// The characters that have a bit of their own, in the order of these.
inline constexpr std::u16string_view kUnits = u"\t !\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~";

constexpr bool is_letter_or_digit(char16_t unit) {
  return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'z') ||
         (unit >= u'A' && unit <= u'Z');
}

inline constexpr std::array<CharacterSet, 128> kOfAscii = [] {
  std::array<CharacterSet, 128> sets{};
  for (std::size_t i = 0; i < sets.size(); ++i) {
    const bool is_word = is_letter_or_digit(static_cast<char16_t>(i));
    sets[i] = CharacterSet{1} << (is_word ? kWordBit : kControlBit);
  }
  for (std::size_t i = 0; i < kUnits.size(); ++i) sets[kUnits[i]] = CharacterSet{1} << i;
  return sets;
}();

}  // namespace character_set

inline constexpr CharacterSet kLettersAndDigits = CharacterSet{1} << character_set::kWordBit;
inline constexpr CharacterSet kControls = CharacterSet{1} << character_set::kControlBit;
inline constexpr CharacterSet kBeyondAscii = CharacterSet{1} << character_set::kBeyondBit;

constexpr CharacterSet set_of(char16_t unit) {
  return unit < character_set::kOfAscii.size() ? character_set::kOfAscii[unit] : kBeyondAscii;
}

constexpr CharacterSet characters_in(std::u16string_view text) {
  CharacterSet characters = 0;
  for (const char16_t unit : text) characters |= set_of(unit);
  return characters;
}

}  // namespace textio::assessment
