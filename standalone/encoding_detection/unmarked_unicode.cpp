// The bytes are scored as a text in an 8-bit encoding, and as the code units of each of the four
// Unicode encodings. In an 8-bit encoding zero bytes are nearly impossible. In the Unicode
// encodings control characters, lone surrogates and unassigned characters are, while letters that
// follow letters of their script are common. So Latin text is recognised by its zero bytes. Text in
// another script is recognised by the high bytes of its script, most of which are control
// characters too.
#include <vltextstream/standalone/encoding_detection/unmarked_unicode.hpp>

#include <algorithm>

#include <unicode/uchar.h>
#include <unicode/uscript.h>
#include <unicode/utf16.h>

#include <vltextstream/source/unit_block.hpp>
#include <vltextstream/standalone/encoding_detection/east_asian_voter.hpp>

namespace textio::standalone {
namespace {

constexpr std::size_t kLookedAt = 8'192;  // bytes; a multiple of 4

// Natural logarithms of the likelihoods of bytes and of characters.
constexpr double kAsciiByte = -3.7;
constexpr double kHighByte = -4.85;
constexpr double kControlByte = -9.0;
constexpr double kAscii = -3.7;
constexpr double kLatinLetter = -6.0;
constexpr double kSameScript = -4.5;
constexpr double kOtherScript = -8.5;
constexpr double kSign = -6.5;
constexpr double kOther = -11.0;
constexpr double kSupplementary = -11.0;
constexpr double kJunk = -40.0;
constexpr double kNoCharacter = -40.0;
constexpr double kLeastGain = 5.0;
constexpr double kLeastGainWithoutZeros = 20.0;

// Without branches, because whole blocks of bytes are tested at once.
bool is_text_byte(unsigned char byte) {
  const bool is_space = (byte >= '\t') & (byte <= '\r');
  return (byte >= 0x20) | is_space | (byte == 0x1B);
}

double score_of_bytes(std::string_view bytes) {
  double score = 0;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    score += !is_text_byte(value) ? kControlByte : value < 0x80 ? kAsciiByte : kHighByte;
  }
  return score;
}

struct Form {
  const char* encoding;
  std::size_t unit_bytes;
  bool is_big_endian;
};
// The first of equal scores wins.
constexpr Form kForms[] = {
    {"UTF-32LE", 4, false}, {"UTF-32BE", 4, true}, {"UTF-16LE", 2, false}, {"UTF-16BE", 2, true}};

char32_t unit_at(const Form& form, std::string_view bytes, std::size_t pos) {
  char32_t unit = 0;
  for (std::size_t i = 0; i < form.unit_bytes; ++i) {
    const std::size_t from_top = form.is_big_endian ? i : form.unit_bytes - 1 - i;
    unit = unit << 8U | static_cast<unsigned char>(bytes[pos + from_top]);
  }
  return unit;
}

bool is_lead(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool is_trail(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

bool is_common_sign(char32_t c) {
  return (c >= 0xA0 && c <= 0xBF) || (c >= 0x200C && c <= 0x203A) || (c >= 0x3000 && c <= 0x3020) ||
         (c >= 0xFF00 && c <= 0xFF65) || c == 0x20AC || c == 0x2116 || c == 0x2122 || c == 0x60C ||
         c == 0x61B || c == 0x61F;
}

bool is_junk(char32_t c) {
  const auto type = u_charType(static_cast<UChar32>(c));
  const bool is_noncharacter = (c & 0xFFFEU) == 0xFFFE;
  return is_noncharacter || c == 0xFEFF || c == 0xFFFD || type == U_UNASSIGNED ||
         type == U_PRIVATE_USE_CHAR || type == U_CONTROL_CHAR || type == U_SURROGATE;
}

bool is_east_asian(UScriptCode script) {
  return script == USCRIPT_HAN || script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA ||
         script == USCRIPT_HANGUL;
}

// Scores the characters of a text one after the other.
class CharacterScore {
 public:
  void add(char32_t c) { sum_ += value(c); }
  void add_ill_formed() { sum_ += kJunk; }
  double sum() const { return sum_; }

 private:
  double value(char32_t c) {
    if (c < 0x80) return is_text_byte(static_cast<unsigned char>(c)) ? kAscii : kJunk;
    if (c > 0x10FFFF) return kNoCharacter;
    if (is_junk(c)) return kJunk;
    if (is_common_sign(c)) return kSign;
    if (c > 0xFFFF) return kSupplementary;
    UErrorCode status = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(c), &status);
    if (script == USCRIPT_COMMON || script == USCRIPT_INHERITED) return kOther;
    if (script == USCRIPT_LATIN) return kLatinLetter;
    return is_east_asian(script) ? log_likelihood_in_east_asia(c) : value_in(script);
  }

  double value_in(UScriptCode script) {
    const bool is_same = script == last_script_;
    last_script_ = script;
    return is_same ? kSameScript : kOtherScript;
  }

  double sum_ = 0;
  UScriptCode last_script_ = USCRIPT_COMMON;
};

double score_of_form(const Form& form, std::string_view bytes, bool is_whole) {
  CharacterScore score;
  const std::size_t whole_units = bytes.size() / form.unit_bytes * form.unit_bytes;
  for (std::size_t i = 0; i < whole_units; i += form.unit_bytes) {
    const char32_t unit = unit_at(form, bytes, i);
    if (form.unit_bytes == 4 || !is_lead(unit)) {
      score.add(unit);
      continue;
    }
    const bool is_last = i + 2 == whole_units;
    const char32_t next = is_last ? 0 : unit_at(form, bytes, i + 2);
    if (is_trail(next)) {
      score.add(static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, next)));
      i += 2;
    } else if (is_whole || !is_last) {
      score.add_ill_formed();
    }
  }
  if (is_whole && whole_units != bytes.size()) score.add_ill_formed();
  return score.sum();
}

}  // namespace

bool may_be_unmarked_unicode(std::string_view bytes) noexcept {
  const auto is_no_text = [](char byte) { return !is_text_byte(static_cast<unsigned char>(byte)); };
  const char* next = bytes.data();
  const char* const end = next + bytes.size();
  while (end - next >= kBlockUnits && !any_in_block(next, is_no_text)) next += kBlockUnits;
  return std::any_of(next, end, is_no_text);
}

std::optional<UnmarkedUnicode> find_unmarked_unicode(std::string_view bytes, bool is_whole) {
  const bool is_all = is_whole && bytes.size() <= kLookedAt;
  const std::string_view head = bytes.substr(0, kLookedAt);
  const Form* best = nullptr;
  double best_score = 0;
  for (const Form& form : kForms) {
    const double score = score_of_form(form, head, is_all);
    if (best == nullptr || score > best_score) {
      best = &form;
      best_score = score;
    }
  }
  const double gain = best_score - score_of_bytes(head);
  const bool has_zeros = head.find('\0') != std::string_view::npos;
  if (gain < (has_zeros ? kLeastGain : kLeastGainWithoutZeros)) return std::nullopt;
  return UnmarkedUnicode{best->encoding, gain};
}

}  // namespace textio::standalone
