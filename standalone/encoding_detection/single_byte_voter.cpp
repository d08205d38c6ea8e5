// For each encoding and each language that it can write, this computes the likelihood of the bytes
// above 127: the product of how frequent each letter or sign is in that language and of how well it
// fits its neighbours. The score of an encoding is that of its best language. Only distinct bytes
// and distinct triples of bytes are scored, and multiplied by how often they occur.
#include <vltextstream/standalone/encoding_detection/single_byte_voter.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <numeric>
#include <string>

#include <unicode/ucnv.h>

#include <vltextstream/standalone/decoding/icu_status.hpp>
#include <vltextstream/standalone/encoding_detection/character_context.hpp>
#include <vltextstream/standalone/encoding_detection/letter_tables.hpp>

namespace textio::standalone {
namespace {

struct Encoding {
  const char* name;
  double rarity;  // natural logarithm of how much rarer it is than the most common encoding
};
// A Windows code page comes before the standard that it extends.
constexpr Encoding kEncodings[] = {
    {"windows-1252", 0.0},   {"windows-1250", 1.5}, {"windows-1251", 1.0},
    {"windows-1253", 1.5},   {"windows-1254", 1.7}, {"windows-1255", 1.5},
    {"windows-1256", 1.5},   {"windows-1257", 2.0}, {"windows-1258", 2.5},
    {"windows-874", 1.5},    {"ISO-8859-1", 0.5},   {"ISO-8859-2", 2.0},
    {"ISO-8859-3", 4.5},     {"ISO-8859-4", 4.0},   {"ISO-8859-5", 3.0},
    {"ISO-8859-6", 2.5},     {"ISO-8859-7", 2.0},   {"ISO-8859-8", 2.0},
    {"ISO-8859-9", 2.0},     {"ISO-8859-10", 4.5},  {"ISO-8859-13", 2.5},
    {"ISO-8859-14", 4.5},    {"ISO-8859-15", 1.8},  {"KOI8-R", 1.5},
    {"KOI8-U", 2.0},         {"macintosh", 2.5},    {"x-mac-centraleurroman", 3.5},
    {"x-mac-cyrillic", 3.0}, {"x-mac-greek", 4.0},  {"x-mac-turkish", 4.0},
    {"IBM437", 2.7},         {"IBM850", 2.5},       {"IBM852", 2.7},
    {"IBM855", 4.0},         {"IBM857", 3.5},       {"IBM866", 2.0},
    {"IBM1125", 3.0},        {"IBM862", 3.5},       {"IBM737", 3.5},
    {"IBM869", 4.5},         {"IBM775", 3.5},       {"IBM860", 4.5},
    {"IBM861", 4.5},         {"IBM863", 4.5},       {"IBM865", 4.5},
};

// Natural logarithms of the likelihoods of characters that the tables of a language do not list.
constexpr double kForeignLetter = -8.5;
constexpr double kForeignScript = -12.0;
constexpr double kUnusualSign = -11.0;
constexpr double kJunk = -14.0;
constexpr double kChance = -4.85;  // one of 128 bytes
constexpr double kRarityOfChance = 1.0;

// A byte above 127 with its neighbours, and how often they occur together.
struct Triple {
  unsigned char before, self, after;
  double count;
};

struct HighBytes {
  std::vector<unsigned char> distinct;
  std::array<double, 256> counts{};
  std::vector<Triple> triples;
};

unsigned char byte_at(std::string_view bytes, std::size_t pos) {
  return pos < bytes.size() ? static_cast<unsigned char>(bytes[pos]) : ' ';
}

// A line drawn with one character is no more evidence than its first two.
bool prolongs_run(std::string_view bytes, std::size_t pos) {
  return pos >= 2 && bytes[pos] == bytes[pos - 1] && bytes[pos] == bytes[pos - 2];
}

// The bytes before, itself and after as one number, for each byte above 127.
std::vector<std::uint32_t> triples_of(std::string_view bytes) {
  std::vector<std::uint32_t> triples;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const std::uint32_t self = byte_at(bytes, i);
    if (self < 0x80 || prolongs_run(bytes, i)) continue;
    const std::uint32_t before = i == 0 ? ' ' : byte_at(bytes, i - 1);
    triples.push_back(before << 16U | self << 8U | byte_at(bytes, i + 1));
  }
  return triples;
}

HighBytes count_high_bytes(std::string_view bytes) {
  std::vector<std::uint32_t> triples = triples_of(bytes);
  std::sort(triples.begin(), triples.end());
  HighBytes high;
  for (std::size_t begin = 0, end = 0; begin < triples.size(); begin = end) {
    while (end < triples.size() && triples[end] == triples[begin]) ++end;
    const std::uint32_t triple = triples[begin];
    const auto count = static_cast<double>(end - begin);
    high.triples.push_back({static_cast<unsigned char>(triple >> 16U),
                            static_cast<unsigned char>(triple >> 8U & 0xFFU),
                            static_cast<unsigned char>(triple & 0xFFU), count});
    high.counts[triple >> 8U & 0xFFU] += count;
  }
  for (unsigned byte = 0x80; byte <= 0xFF; ++byte) {
    if (high.counts[byte] > 0) high.distinct.push_back(static_cast<unsigned char>(byte));
  }
  return high;
}

using CodePage = std::array<ReadCharacter, 256>;

// The character for each byte in encoding `name`.
CodePage code_page(const char* name) {
  CodePage page;
  for (char16_t c = 0; c < 0x80; ++c) page[c] = read_character(c);
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(name, &status),
                                                                     ucnv_close);
  throw_if_out_of_memory(status);
  for (unsigned byte = 0x80; byte <= 0xFF && converter != nullptr; ++byte) {
    const char text = static_cast<char>(byte);
    char16_t units[2] = {};
    status = U_ZERO_ERROR;
    ucnv_toUChars(converter.get(), units, 2, &text, 1, &status);
    const bool is_ill_formed = U_FAILURE(status) || units[0] < 0x80;  // some substitute U+001A
    page[byte] = read_character(is_ill_formed ? u'\uFFFD' : units[0]);
  }
  return page;
}

struct NamedPage {
  const Encoding& encoding;
  CodePage page;
};

const std::vector<NamedPage>& code_pages() {
  static const std::vector<NamedPage> pages = [] {
    std::vector<NamedPage> all;
    for (const Encoding& encoding : kEncodings) {
      all.push_back({encoding, code_page(encoding.name)});
    }
    return all;
  }();
  return pages;
}

double weight_of(char digit) { return std::exp2(digit - '0'); }

double sum_of_weights(std::string_view weights) {
  return std::accumulate(weights.begin(), weights.end(), 0.0,
                         [](double sum, char digit) { return sum + weight_of(digit); });
}

double sum_of_sign_weights() {
  static const double sum = [] {
    double all = 0;
    for (const Sign& sign : signs()) all += weight_of(sign.weight);
    return all;
  }();
  return sum;
}

// A language with the sums that turn its weights into likelihoods.
struct Language {
  const LanguageLetters& letters;
  UScriptCode script;
  double log_letter;  // of a letter of weight 0
  double log_sign;    // of a sign of weight 0
};

const std::vector<Language>& all_languages() {
  static const std::vector<Language> all = [] {
    std::vector<Language> made;
    for (const LanguageLetters& one : languages()) {
      made.push_back({one, read_character(one.letters[0]).script,
                      std::log((1 - one.sign_share) / sum_of_weights(one.weights)),
                      std::log(one.sign_share / sum_of_sign_weights())});
    }
    return made;
  }();
  return all;
}

double log_of_weight(char digit) { return (digit - '0') * 0.6931471805599453; }

double log_likelihood(const Language& language, const ReadCharacter& read) {
  if (read.kind == CharacterKind::junk) return kJunk;
  const std::size_t rank = language.letters.letters.find(read.folded);
  if (rank != std::u16string_view::npos) {
    return language.log_letter + log_of_weight(language.letters.weights[rank]);
  }
  if (read.sign != nullptr) return language.log_sign + log_of_weight(read.sign->weight);
  if (!is_letter(read)) return kUnusualSign;
  return read.script == language.script ? kForeignLetter : kForeignScript;
}

double score_of_language(const Language& language, const HighBytes& high, const CodePage& page) {
  double score = -language.letters.rarity;
  for (const unsigned char byte : high.distinct) {
    score += high.counts[byte] * log_likelihood(language, page[byte]);
  }
  return score;
}

double score_of_context(const HighBytes& high, const CodePage& page) {
  double score = 0;
  for (const Triple& triple : high.triples) {
    score += triple.count * log_fit(page[triple.before], page[triple.self], page[triple.after]);
  }
  return score;
}

double score_of_best_language(const HighBytes& high, const CodePage& page) {
  double best = -std::numeric_limits<double>::infinity();
  for (const Language& language : all_languages()) {
    best = std::max(best, score_of_language(language, high, page));
  }
  return best;
}

std::u16string characters_of(const HighBytes& high, const CodePage& page) {
  std::u16string characters;
  for (const unsigned char byte : high.distinct) characters += page[byte].character;
  return characters;
}

}  // namespace

std::vector<ScoredEncoding> score_single_byte_encodings(std::string_view bytes) {
  const HighBytes high = count_high_bytes(bytes);
  std::vector<ScoredEncoding> scored;
  for (const auto& [encoding, page] : code_pages()) {
    const double score =
        score_of_best_language(high, page) + score_of_context(high, page) - encoding.rarity;
    scored.push_back({encoding.name, score, characters_of(high, page)});
  }
  return scored;
}

double score_of_chance(std::string_view bytes) {
  return kChance * static_cast<double>(triples_of(bytes).size()) - kRarityOfChance;
}

}  // namespace textio::standalone
