#include "encodings/corpus.hpp"

#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <stdexcept>

#include <unicode/normalizer2.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <nlohmann/json.hpp>

namespace textio::encodings {
namespace {

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  return {std::istreambuf_iterator<char>(file), {}};
}

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter open(const std::string& encoding) {
  UErrorCode status = U_ZERO_ERROR;
  Converter converter(ucnv_open(encoding.c_str(), &status));
  if (U_FAILURE(status)) throw std::runtime_error("no encoding " + encoding);
  ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr,
                        &status);
  return converter;
}

// Empty when the encoding lacks a character.
std::optional<std::string> encode(UConverter* converter, std::u16string_view text) {
  std::string bytes(text.size() * 8 + 16, '\0');
  UErrorCode status = U_ZERO_ERROR;
  ucnv_resetFromUnicode(converter);
  const std::int32_t size =
      ucnv_fromUChars(converter, bytes.data(), static_cast<std::int32_t>(bytes.size()), text.data(),
                      static_cast<std::int32_t>(text.size()), &status);
  if (U_FAILURE(status)) return std::nullopt;
  bytes.resize(static_cast<std::size_t>(size));
  return bytes;
}

// What a character is replaced by in an encoding that lacks it.
struct Substitute {
  char16_t character;
  std::u16string_view text;
};
constexpr Substitute kSubstitutes[] = {
    {u'\u2018', u"'"},      {u'\u2019', u"'"},      {u'\u201A', u"'"},      {u'\u201C', u"\""},
    {u'\u201D', u"\""},     {u'\u201E', u"\""},     {u'\u00AB', u"\""},     {u'\u00BB', u"\""},
    {u'\u2010', u"-"},      {u'\u2011', u"-"},      {u'\u2012', u"-"},      {u'\u2013', u"-"},
    {u'\u2014', u"-"},      {u'\u2026', u"..."},    {u'\u20AC', u"EUR"},    {u'\u00A0', u" "},
    {u'\u0218', u"\u015E"}, {u'\u0219', u"\u015F"}, {u'\u021A', u"\u0162"}, {u'\u021B', u"\u0163"},
    {u'\u06CC', u"\u064A"}, {u'\u06A9', u"\u0643"}, {u'\u2212', u"-"},
};

// Vietnamese has its tones behind the letters where it has no whole ones.
std::u16string in_two_parts(std::u16string_view letter) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFCInstance(status);
  icu::UnicodeString decomposed;
  const icu::UnicodeString whole(letter.data(), static_cast<std::int32_t>(letter.size()));
  if (!normalizer->getRawDecomposition(whole.char32At(0), decomposed)) return {};
  return {decomposed.getBuffer(), static_cast<std::size_t>(decomposed.length())};
}

std::u16string substitute_for(std::u16string_view character) {
  for (const auto& [from, to] : kSubstitutes) {
    if (character == std::u16string_view(&from, 1)) return std::u16string(to);
  }
  return in_two_parts(character);
}

// The length in units of the character at `pos`.
std::size_t length_at(std::u16string_view text, std::size_t pos) {
  const bool is_pair = U16_IS_LEAD(text[pos]) && pos + 1 < text.size();
  return is_pair ? 2 : 1;
}

// The positions where characters begin, and the end.
std::vector<std::size_t> borders_of(std::u16string_view text) {
  std::vector<std::size_t> borders = {0};
  while (borders.back() < text.size()) {
    borders.push_back(borders.back() + length_at(text, borders.back()));
  }
  return borders;
}

// The longest part of `text` from `start` on that fits into `size` bytes.
std::string sample_from(std::u16string_view text, const std::vector<std::size_t>& borders,
                        std::size_t start, std::size_t size, UConverter* converter) {
  std::string sample;
  std::size_t low = start;
  std::size_t high = std::min(borders.size() - 1, start + size);
  while (low < high) {
    const std::size_t middle = (low + high + 1) / 2;
    auto bytes = encode(converter, text.substr(borders[start], borders[middle] - borders[start]));
    if (bytes && bytes->size() <= size) {
      low = middle;
      sample = *std::move(bytes);
    } else {
      high = middle - 1;
    }
  }
  return sample;
}

// How many samples of a size are taken.
std::size_t number_of_samples(std::size_t size) { return size < 100 ? 16 : size < 1000 ? 10 : 4; }

}  // namespace

std::vector<Language> read_corpus(const std::string& folder, const std::string& part) {
  std::vector<Language> corpus;
  for (const auto& entry : nlohmann::json::parse(content_of(folder + "/languages.json"))) {
    const std::string code = entry.at("code");
    corpus.push_back({entry.at("name"), entry.at("encodings"),
                      decode(content_of(folder + "/" + part + "/" + code + ".txt"), "UTF-8")});
  }
  return corpus;
}

bool is_known(const std::string& encoding) {
  UErrorCode status = U_ZERO_ERROR;
  const Converter converter(ucnv_open(encoding.c_str(), &status));
  return U_SUCCESS(status);
}

std::u16string decode(std::string_view bytes, const std::string& encoding) {
  const Converter converter = open(encoding);
  std::u16string text(bytes.size() * 2 + 16, u'\0');
  UErrorCode status = U_ZERO_ERROR;
  const std::int32_t size =
      ucnv_toUChars(converter.get(), text.data(), static_cast<std::int32_t>(text.size()),
                    bytes.data(), static_cast<std::int32_t>(bytes.size()), &status);
  if (U_FAILURE(status)) throw std::runtime_error("cannot decode " + encoding);
  text.resize(static_cast<std::size_t>(size));
  return text;
}

std::string encode(std::u16string_view text, const std::string& encoding) {
  const auto bytes = encode(open(encoding).get(), text);
  if (!bytes) throw std::runtime_error("cannot encode " + encoding);
  return *bytes;
}

Encodable encodable_in(const std::string& encoding, std::u16string_view text) {
  const Converter converter = open(encoding);
  Encodable result;
  for (std::size_t i = 0, length = 0; i < text.size(); i += length) {
    length = length_at(text, i);
    std::u16string character(text.substr(i, length));
    if (!encode(converter.get(), character)) character = substitute_for(character);
    const bool is_encodable = !character.empty() && encode(converter.get(), character);
    if (is_encodable) {
      result.text += character;
    } else {
      ++result.dropped;
    }
  }
  return result;
}

std::vector<std::string> samples_of(std::u16string_view text, const std::string& encoding,
                                    std::size_t size) {
  const Converter converter = open(encoding);
  const std::vector<std::size_t> borders = borders_of(text);
  const auto whole = encode(converter.get(), text);
  if (!whole || whole->size() < size) return {};
  // By shares of the bytes, so that the last sample ends about where the text does.
  const double starts = static_cast<double>(borders.size() - 1) *
                        (1.0 - static_cast<double>(size) / static_cast<double>(whole->size()));
  const std::size_t count = number_of_samples(size);
  std::vector<std::string> samples;
  for (std::size_t i = 0; i < count; ++i) {
    const double share = static_cast<double>(i) / static_cast<double>(count - 1);
    const auto start = static_cast<std::size_t>(starts * share);
    samples.push_back(sample_from(text, borders, start, size, converter.get()));
  }
  return samples;
}

}  // namespace textio::encodings
