// How often languages use their letters, and where signs stand: what the search for an encoding
// knows about texts.
//
//   for (const LanguageLetters& language : languages()) {
//     language.code;          // "de"
//     language.letters;       // u"\u00FC\u00E4\u00F6\u00DF...": u, a and o umlaut, sharp s, ...
//     language.weights;       // "7766...": the first is used twice as often as the third
//   }
//
// Only characters above U+007F are counted; letters are lower case.
// Ownership  everything lives as long as the program.
#pragma once

#include <span>
#include <string_view>

namespace textio::standalone {

struct LanguageLetters {
  const char* code;
  std::u16string_view letters;  // most frequent first
  std::string_view weights;     // a digit for each: the binary logarithm of its frequency
  double sign_share;            // of its characters above U+007F that are no letters
  double rarity;                // natural logarithm of how much rarer texts in it are than others
};
std::span<const LanguageLetters> languages();

// Where a sign stands as a rule.
enum class SignPlace {
  anywhere,
  opening,        // in front of a word
  closing,        // behind a word
  quote,          // before, behind or within a word
  dash,           // between two words or numbers, blanks or not
  after_number,   // degree sign, fractions
  after_letter,   // raised digits
  before_letter,  // micro sign
  currency,       // beside a number, or as a column's unit
  between,        // between blanks or numbers: the signs of arithmetic
  alone,          // never within a word
  drawing         // box drawing characters, beside blanks and each other
};

struct Sign {
  char16_t character;
  char weight;  // like the weights of letters, for all languages
  SignPlace place;
};

// Ascending by character.
std::span<const Sign> signs();

// The characters of East Asian scripts that are used most, most frequent first.
std::u16string_view frequent_hiragana();
std::u16string_view frequent_katakana();
std::u16string_view frequent_kanji();
std::u16string_view frequent_simplified();
std::u16string_view frequent_traditional();
std::u16string_view frequent_hangul();

}  // namespace textio::standalone
