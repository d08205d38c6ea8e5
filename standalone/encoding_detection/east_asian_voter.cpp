// Each encoding belongs to a language. Each language divides its characters into classes: the most
// frequent ones by rank, the first level of its standard, and the rest. A class has a share of all
// characters, which its members divide. An encoding places its first level first, so the leading
// byte shows the level.
#include <vltextstream/standalone/encoding_detection/east_asian_voter.hpp>

#include <algorithm>
#include <cmath>
#include <memory>

#include <unicode/uchar.h>
#include <unicode/ucnv.h>

#include <vltextstream/standalone/decoding/icu_status.hpp>
#include <vltextstream/standalone/encoding_detection/letter_tables.hpp>

namespace textio::standalone {
namespace {

constexpr double kIllFormed = -20.0;
constexpr double kUnexpected = -14.0;
constexpr double kAsciiTrail =
    3.7;  // the gain of a trail byte below 128, which is no byte to explain
constexpr double kBesideAsciiWord = -1.5;

// Characters by rank. The likelihood falls with the rank.
struct Ranked {
  std::u16string_view characters;
  double share;
};

// The likelihood of the character with this rank, or 0.
double likelihood(const Ranked& ranked, char16_t c) {
  constexpr double kFlatten = 20.0;
  const std::size_t rank = ranked.characters.find(c);
  if (rank == std::u16string_view::npos) return 0.0;
  const auto count = static_cast<double>(ranked.characters.size());
  const double sum = std::log((count + kFlatten) / kFlatten);
  return ranked.share / sum / (static_cast<double>(rank) + kFlatten);
}

// How a language divides its characters: the share of each class over the number of its members.
struct EastAsianLanguage {
  Ranked ranked[3];
  double first_level;
  double second_level;
  double sign;
  double halfwidth;
  double other;
};

using LanguageTable = EastAsianLanguage (*)();

EastAsianLanguage japanese() {
  return {{{frequent_hiragana(), 0.40}, {frequent_katakana(), 0.18}, {frequent_kanji(), 0.22}},
          0.08 / 2965,
          0.002 / 3390,
          0.08 / 80,
          0.003 / 63,
          1e-7};
}
EastAsianLanguage halfwidth_japanese() {
  return {{{frequent_hiragana(), 0.03}, {frequent_katakana(), 0.02}, {frequent_kanji(), 0.08}},
          0.04 / 2965,
          0.001 / 3390,
          0.03 / 80,
          0.8 / 63,
          1e-7};
}
EastAsianLanguage simplified() {
  return {
      {{frequent_simplified(), 0.52}, {}, {}}, 0.36 / 3755, 0.005 / 3008, 0.11 / 80, 1e-7, 1e-7};
}
EastAsianLanguage traditional() {
  return {
      {{frequent_traditional(), 0.52}, {}, {}}, 0.36 / 5401, 0.005 / 7652, 0.11 / 80, 1e-7, 1e-7};
}
EastAsianLanguage korean() {
  return {{{frequent_hangul(), 0.62}, {}, {}}, 0.32 / 2350, 0.005 / 4888, 0.04 / 80, 1e-7, 1e-7};
}

// A character and its bytes.
struct Decoded {
  char32_t character;
  std::string_view bytes;
};

unsigned char lead_of(const Decoded& one) { return static_cast<unsigned char>(one.bytes[0]); }
bool has_high_trail(const Decoded& one) {
  return one.bytes.size() == 2 && static_cast<unsigned char>(one.bytes[1]) >= 0xA1;
}

bool is_shift_jis_level1(const Decoded& one) {
  return lead_of(one) >= 0x88 && lead_of(one) <= 0x98;
}
bool is_shift_jis_level2(const Decoded& one) {
  return lead_of(one) >= 0x98 && lead_of(one) <= 0xEA;
}
bool is_euc_jp_level1(const Decoded& one) { return lead_of(one) >= 0xB0 && lead_of(one) <= 0xCF; }
bool is_euc_jp_level2(const Decoded& one) { return lead_of(one) >= 0xD0 && lead_of(one) <= 0xF4; }
bool is_gb_level1(const Decoded& one) {
  return has_high_trail(one) && lead_of(one) >= 0xB0 && lead_of(one) <= 0xD7;
}
bool is_gb_level2(const Decoded& one) {
  return has_high_trail(one) && lead_of(one) >= 0xD8 && lead_of(one) <= 0xF7;
}
bool is_big5_level1(const Decoded& one) {
  return one.bytes.size() == 2 && lead_of(one) >= 0xA4 && lead_of(one) <= 0xC6;
}
bool is_big5_level2(const Decoded& one) {
  return one.bytes.size() == 2 && lead_of(one) >= 0xC9 && lead_of(one) <= 0xF9;
}
bool is_korean_level1(const Decoded& one) {
  return has_high_trail(one) && lead_of(one) >= 0xB0 && lead_of(one) <= 0xC8;
}
bool is_korean_level2(const Decoded& one) {
  return has_high_trail(one) && lead_of(one) >= 0xCA && lead_of(one) <= 0xFD;
}

struct Encoding {
  const char* name;
  double rarity;
  LanguageTable language;
  bool (*is_first_level)(const Decoded&);
  bool (*is_second_level)(const Decoded&);
};
constexpr Encoding kEncodings[] = {
    {"Shift_JIS", 1.5, japanese, is_shift_jis_level1, is_shift_jis_level2},
    {"Shift_JIS", 5.0, halfwidth_japanese, is_shift_jis_level1, is_shift_jis_level2},
    {"EUC-JP", 2.0, japanese, is_euc_jp_level1, is_euc_jp_level2},
    {"GB18030", 1.5, simplified, is_gb_level1, is_gb_level2},
    {"Big5", 1.5, traditional, is_big5_level1, is_big5_level2},
    {"windows-949", 1.5, korean, is_korean_level1, is_korean_level2},
};

bool is_halfwidth_kana(char32_t c) { return c >= 0xFF61 && c <= 0xFF9F; }

bool is_east_asian_sign(char32_t c) {
  const bool is_wide_form = (c >= 0x3000 && c <= 0x3020) || (c >= 0xFF01 && c <= 0xFF5E);
  const bool is_general = (c >= 0x2010 && c <= 0x203B) || (c >= 0x2103 && c <= 0x2109);
  return is_wide_form || is_general || c == 0xB0 || c == 0xB7 || c == 0xD7 || c == 0x30FB ||
         c == 0x20AC;
}

bool is_junk(char32_t c) {
  const auto type = u_charType(static_cast<UChar32>(c));
  return c == 0xFFFD || type == U_UNASSIGNED || type == U_PRIVATE_USE_CHAR ||
         type == U_CONTROL_CHAR || type == U_SURROGATE;
}

double likelihood(const EastAsianLanguage& language, const Encoding& encoding, const Decoded& one) {
  const char32_t c = one.character;
  if (c <= 0xFFFF) {
    for (const Ranked& ranked : language.ranked) {
      const double found = likelihood(ranked, static_cast<char16_t>(c));
      if (found > 0) return found;
    }
  }
  if (is_halfwidth_kana(c)) return language.halfwidth;
  if (is_east_asian_sign(c)) return language.sign;
  if (is_junk(c)) return std::exp(kUnexpected);
  if (encoding.is_first_level(one)) return language.first_level;
  return encoding.is_second_level(one) ? language.second_level : language.other;
}

bool is_ascii_letter(char byte) {
  const char folded = static_cast<char>(byte | 0x20);
  return folded >= 'a' && folded <= 'z';
}

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};

// Walks over the characters of a text.
class Walk {
 public:
  Walk(const char* encoding, std::string_view bytes)
      : converter_(ucnv_open(encoding, &status_)),
        begin_(bytes.data()),
        next_(bytes.data()),
        end_(bytes.data() + bytes.size()) {
    throw_if_out_of_memory(status_);
    // ICU's own substitution writes U+001A for some encodings.
    if (converter_) {
      ucnv_setToUCallBack(converter_.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                          &status_);
    }
  }

  bool is_at_end() const { return !converter_ || next_ == end_; }

  // The next character, U+FFFD if its bytes are ill-formed. Skips at least one byte, also where
  // ICU's converter takes none.
  Decoded next() {
    const char* const from = next_;
    if (static_cast<unsigned char>(*from) < 0x80) {
      return {static_cast<unsigned char>(*next_++), {from, 1}};
    }
    UErrorCode status = U_ZERO_ERROR;
    const UChar32 c = ucnv_getNextUChar(converter_.get(), &next_, end_, &status);
    if (next_ == from) ++next_;
    is_cut_off_ = status == U_TRUNCATED_CHAR_FOUND;
    const bool is_ill_formed = U_FAILURE(status) || c == 0xFFFF;
    if (U_FAILURE(status)) ucnv_resetToUnicode(converter_.get());
    return {is_ill_formed ? U'\uFFFD' : static_cast<char32_t>(c),
            {from, static_cast<std::size_t>(next_ - from)}};
  }

  bool is_cut_off() const { return is_cut_off_; }

  // Whether a character is next to an ASCII letter.
  bool touches_ascii_word(const Decoded& one) const {
    const char* const after = one.bytes.data() + one.bytes.size();
    return (one.bytes.data() != begin_ && is_ascii_letter(one.bytes.data()[-1])) ||
           (after != end_ && is_ascii_letter(*after));
  }

 private:
  UErrorCode status_ = U_ZERO_ERROR;
  std::unique_ptr<UConverter, CloseConverter> converter_;
  const char* begin_;
  const char* next_;
  const char* end_;
  bool is_cut_off_ = false;
};

std::size_t ascii_bytes(std::string_view bytes) {
  return static_cast<std::size_t>(std::count_if(bytes.begin(), bytes.end(), [](char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
  }));
}

double score_of(const Encoding& encoding, std::string_view bytes, bool is_whole) {
  const EastAsianLanguage language = encoding.language();
  double score = -encoding.rarity;
  for (Walk walk(encoding.name, bytes); !walk.is_at_end();) {
    const Decoded one = walk.next();
    if (one.character < 0x80) continue;
    if (walk.is_cut_off() && !is_whole) break;
    if (one.character == 0xFFFD) {
      score += kIllFormed;
      continue;
    }
    score += std::log(likelihood(language, encoding, one)) +
             kAsciiTrail * static_cast<double>(ascii_bytes(one.bytes)) +
             (walk.touches_ascii_word(one) ? kBesideAsciiWord : 0.0);
  }
  return score;
}

}  // namespace

std::vector<ScoredEncoding> score_east_asian_encodings(std::string_view bytes, bool is_whole) {
  std::vector<ScoredEncoding> scored;
  for (const Encoding& encoding : kEncodings) {
    scored.push_back({encoding.name, score_of(encoding, bytes, is_whole), {}});
  }
  return scored;
}

double log_likelihood_in_east_asia(char32_t c) {
  double best = 0;
  if (c <= 0xFFFF) {
    for (const EastAsianLanguage& language : {japanese(), simplified(), traditional(), korean()}) {
      for (const Ranked& ranked : language.ranked) {
        best = std::max(best, likelihood(ranked, static_cast<char16_t>(c)));
      }
    }
  }
  return best > 0 ? std::log(best) : -9.5;
}

}  // namespace textio::standalone
