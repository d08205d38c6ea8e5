// A word has letters of one script, with capitals only at its start or throughout. Signs have their
// places. Vowels and consonants mostly alternate. Each rule gives the logarithm of a factor, and
// the logarithms for a character are added up.
#include <vltextstream/standalone/encoding_detection/character_context.hpp>

#include <algorithm>
#include <cstdint>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/unorm2.h>

#include <vltextstream/standalone/decoding/icu_status.hpp>

namespace textio::standalone {
namespace {

using enum CharacterKind;

constexpr double kOddCapital = -5.0;      // "caFe", "CAfE"
constexpr double kCapital = -1.5;         // "Cafe"
constexpr double kLastingCapital = -0.7;  // "CAFE"
constexpr double kLoneCapital = -3.0;
constexpr double kLoneLetter = -1.5;
constexpr double kForeignNeighbour = -4.0;
constexpr double kDigitNeighbour = -1.5;
constexpr double kJunkNeighbour = -1.0;
constexpr double kAsciiNeighbour = 0.5;
constexpr double kTwoVowels = -0.7;
constexpr double kTwoConsonants = -0.4;
constexpr double kVowelAndConsonant = 0.3;
constexpr double kMisplacedSign = -4.0;
constexpr double kMisplacedDrawing = -2.0;

const Sign* find_sign(char16_t character) {
  const auto all = signs();
  const auto* const found =
      std::lower_bound(all.data(), all.data() + all.size(), character,
                       [](const Sign& sign, char16_t wanted) { return sign.character < wanted; });
  const bool is_there = found != all.data() + all.size() && found->character == character;
  return is_there ? found : nullptr;
}

CharacterKind kind_of_ascii(char16_t c) {
  if (u_isdigit(c) != 0) return digit;
  if (u_isupper(c) != 0) return upper;
  if (u_islower(c) != 0) return lower;
  const bool separates = c <= u' ' || c == u',' || c == u';' || c == u'|' || c == 0x7F;
  return separates ? edge : punctuation;
}

CharacterKind kind_of(char16_t c, bool is_sign) {
  if (c < 0x80) return kind_of_ascii(c);
  if (is_sign) return sign;
  switch (u_charType(c)) {
    case U_UPPERCASE_LETTER:
    case U_TITLECASE_LETTER:
      return upper;
    case U_LOWERCASE_LETTER:
      return lower;
    case U_OTHER_LETTER:
    case U_MODIFIER_LETTER:
      return uncased;
    case U_NON_SPACING_MARK:
    case U_COMBINING_SPACING_MARK:
      return mark;
    case U_DECIMAL_DIGIT_NUMBER:
      return digit;
    case U_CONTROL_CHAR:
    case U_UNASSIGNED:
    case U_PRIVATE_USE_CHAR:
    case U_SURROGATE:
      return junk;
    default:
      return c == 0xFFFD ? junk : sign;
  }
}

// The letter without its diacritics.
char16_t base_of(char16_t c) {
  UErrorCode status = U_ZERO_ERROR;
  char16_t units[8] = {};
  const UNormalizer2* const normalizer = unorm2_getNFDInstance(&status);
  throw_if_out_of_memory(status);
  const std::int32_t size = unorm2_getDecomposition(normalizer, c, units, 8, &status);
  return U_SUCCESS(status) && size > 0 ? units[0] : c;
}

// The vowels of the three scripts, in lower case and without accents.
constexpr std::u16string_view kVowels =
    u"aeiouy\u00E6\u00F8\u0131\u0153\u0259"
    u"\u03B1\u03B5\u03B7\u03B9\u03BF\u03C5\u03C9"
    u"\u0430\u0435\u0438\u043E\u0443\u044B\u044D\u044E\u044F\u0454\u0456";

Sound sound_of(char16_t folded, UScriptCode script) {
  if (script != USCRIPT_LATIN && script != USCRIPT_GREEK && script != USCRIPT_CYRILLIC) {
    return Sound::unknown;
  }
  if (folded == u'\u0439') return Sound::consonant;  // written as a vowel with a breve
  const bool is_vowel = kVowels.find(base_of(folded)) != std::u16string_view::npos;
  return is_vowel ? Sound::vowel : Sound::consonant;
}

bool is_blank(const ReadCharacter& read) { return read.kind == edge; }
bool is_digit(const ReadCharacter& read) { return read.kind == digit; }
bool ends_word(const ReadCharacter& read) {
  return read.kind == edge || read.kind == punctuation || read.kind == sign;
}

// Judges the case of neighbouring letters of one script.
double log_fit_of_case(const ReadCharacter& before, const ReadCharacter& self,
                       const ReadCharacter& after) {
  const bool within_capitals = before.kind == upper && after.kind == upper;
  if (self.kind == lower) return within_capitals ? kOddCapital : 0.0;
  if (self.kind != upper) return 0.0;
  if (before.kind == lower) return kOddCapital;
  if (before.kind == upper || after.kind == upper) return kLastingCapital;
  return after.kind == lower ? kCapital : kLoneCapital;
}

double log_fit_of_sounds(Sound a, Sound b) {
  if (a == Sound::unknown || b == Sound::unknown) return 0.0;
  if (a != b) return kVowelAndConsonant;
  return a == Sound::vowel ? kTwoVowels : kTwoConsonants;
}

double log_fit_beside(const ReadCharacter& self, const ReadCharacter& neighbour) {
  if (neighbour.kind == digit) return kDigitNeighbour;
  if (neighbour.kind == junk) return kJunkNeighbour;
  if (!is_letter(neighbour)) return 0.0;
  const bool is_akin = neighbour.script == self.script || self.script == USCRIPT_INHERITED ||
                       neighbour.script == USCRIPT_INHERITED;
  if (!is_akin) return kForeignNeighbour;
  const double beside_ascii = neighbour.character < 0x80 ? kAsciiNeighbour : 0.0;
  return beside_ascii + log_fit_of_sounds(self.sound, neighbour.sound);
}

double log_fit_of_letter(const ReadCharacter& before, const ReadCharacter& self,
                         const ReadCharacter& after) {
  const bool stands_alone = !is_letter(before) && !is_letter(after);
  const double alone = stands_alone && self.kind != upper ? kLoneLetter : 0.0;
  return alone + log_fit_of_case(before, self, after) + log_fit_beside(self, before) +
         log_fit_beside(self, after);
}

bool fits(SignPlace place, const ReadCharacter& before, const ReadCharacter& after) {
  const bool behind_word = is_letter(before) || is_digit(before);
  const bool before_word = is_letter(after) || is_digit(after);
  switch (place) {
    case SignPlace::anywhere:
      return true;
    case SignPlace::opening:
      return !behind_word && !is_blank(after);
    case SignPlace::closing:
      return !is_blank(before) && !is_letter(after);
    case SignPlace::quote:
      return behind_word || before_word || before.kind == punctuation ||
             after.kind == punctuation || before.kind == sign || after.kind == sign;
    case SignPlace::dash:
      return behind_word == before_word || is_blank(before) || is_blank(after);
    case SignPlace::after_number:
      return !is_letter(before) && after.kind != lower;
    case SignPlace::after_letter:
      return is_letter(before) && !is_letter(after);
    case SignPlace::before_letter:
      return !is_letter(before) && is_letter(after);
    case SignPlace::currency:
      return is_digit(before) || is_digit(after) ||
             (!is_letter(before) && !is_letter(after) &&
              (before.kind == punctuation || after.kind == punctuation || is_blank(before)));
    case SignPlace::between:
      return !is_letter(before) && !is_letter(after);
    case SignPlace::alone:
      return !is_letter(before) || !is_letter(after);
    case SignPlace::drawing:
      return ends_word(before) && ends_word(after);
  }
  return true;
}

double log_fit_of_sign(const ReadCharacter& before, const ReadCharacter& self,
                       const ReadCharacter& after) {
  if (self.sign == nullptr || fits(self.sign->place, before, after)) return 0.0;
  return self.sign->place == SignPlace::drawing ? kMisplacedDrawing : kMisplacedSign;
}

}  // namespace

ReadCharacter read_character(char16_t character) {
  ReadCharacter read;
  read.character = character;
  read.folded = static_cast<char16_t>(u_tolower(character));
  if (character == u'\u0130') read.folded = character;  // the Turkish capital with a dot
  read.sign = character < 0x80 ? nullptr : find_sign(character);
  read.kind = kind_of(character, read.sign != nullptr);
  UErrorCode status = U_ZERO_ERROR;
  read.script = uscript_getScript(character, &status);
  if (is_letter(read)) read.sound = sound_of(read.folded, read.script);
  return read;
}

bool is_letter(const ReadCharacter& read) noexcept {
  return read.kind == lower || read.kind == upper || read.kind == uncased || read.kind == mark;
}

double log_fit(const ReadCharacter& before, const ReadCharacter& self, const ReadCharacter& after) {
  if (is_letter(self)) return log_fit_of_letter(before, self, after);
  return self.kind == sign ? log_fit_of_sign(before, self, after) : 0.0;
}

}  // namespace textio::standalone
