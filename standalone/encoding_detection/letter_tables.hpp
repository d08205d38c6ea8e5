// How often languages use their letters, and where signs occur: the search for an encoding rests on
// these tables.
//
//   for (const LanguageLetters& language : languages()) {
//     language.code;          // "de"
//     language.letters;       // u"\u00FC\u00E4\u00F6\u00DF...": u, a and o umlaut, sharp s, ...
//     language.weights;       // "7766...": the first is used twice as often as the third
//   }
//
// Only characters above U+007F count; letters are in lower case.
// Ownership  everything lives as long as the program.
#pragma once

#include <span>
#include <string_view>

namespace textio::standalone {

struct LanguageLetters {
  const char* code;
  std::u16string_view letters;  // most frequent first
  std::string_view weights;     // a digit for each: the binary logarithm of its frequency
  double sign_share;            // the share of its characters above U+007F that are not letters
  double rarity;                // natural logarithm of how much rarer its texts are than others
};
std::span<const LanguageLetters> languages();

// Where a sign usually occurs.
enum class SignPlace {
  anywhere,
  opening,        // before a word
  closing,        // after a word
  quote,          // before, after or within a word
  dash,           // between two words or numbers, with or without blanks
  after_number,   // degree sign, fractions
  after_letter,   // raised digits
  before_letter,  // micro sign
  currency,       // next to a number, or as the unit of a column
  between,        // between blanks or numbers: the signs of arithmetic
  alone,          // never within a word
  drawing         // box drawing characters, next to blanks and each other
};

struct Sign {
  char16_t character;
  char weight;  // like the weights of letters, for all languages
  SignPlace place;
};

// Ascending by character.
std::span<const Sign> signs();

// The most used characters of East Asian scripts, most frequent first.
std::u16string_view frequent_hiragana();
std::u16string_view frequent_katakana();
std::u16string_view frequent_kanji();
std::u16string_view frequent_simplified();
std::u16string_view frequent_traditional();
std::u16string_view frequent_hangul();

}  // namespace textio::standalone
