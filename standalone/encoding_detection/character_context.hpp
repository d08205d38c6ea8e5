// How likely a character is between its neighbours, in any language.
//
//   const ReadCharacter e_acute = read_character(u'\u00E9');
//   log_fit(read_character(u'f'), e_acute, read_character(u'e'));   // 0: a letter within a word
//   log_fit(read_character(u'4'), e_acute, read_character(u'2'));   // less
//
// Units  log_fit is the natural logarithm of a factor, 0 where nothing is odd.
// Cost   log_fit: O(1), no allocation. read_character looks up ICU's character tables.
#pragma once

#include <unicode/uscript.h>

#include <vltextstream/standalone/encoding_detection/letter_tables.hpp>

namespace textio::standalone {

enum class CharacterKind : unsigned char {
  edge,
  digit,
  punctuation,
  lower,
  upper,
  uncased,
  mark,
  sign,
  junk
};

// The sound of a Latin, Greek or Cyrillic letter.
enum class Sound : unsigned char { unknown, vowel, consonant };

struct ReadCharacter {
  char16_t character = 0;
  char16_t folded = 0;  // in lower case
  CharacterKind kind = CharacterKind::junk;
  Sound sound = Sound::unknown;
  UScriptCode script = USCRIPT_COMMON;
  const Sign* sign = nullptr;  // its entry in signs(), if it has one
};

// The properties of `character`. Junk is what no text contains: control characters other than white
// space, private use characters, unassigned characters and U+FFFD.
ReadCharacter read_character(char16_t character);

double log_fit(const ReadCharacter& before, const ReadCharacter& self, const ReadCharacter& after);

bool is_letter(const ReadCharacter& read) noexcept;

}  // namespace textio::standalone
