// The fast decoders against ICU, on random bytes in random pieces.
#include <vltextstream/standalone/decoding/text_decoder.hpp>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <random>
#include <string>

#include "support/decoder_routes.hpp"

namespace textio::standalone {
namespace {

using testing_support::answer_of;
using testing_support::answers_at_random;
using testing_support::answers_of;
using testing_support::BothRoutes;
using testing_support::DecoderAnswer;
using testing_support::first_different_answer;

// Mostly well-formed bytes: runs of letters, and parts of characters in the encodings.
std::string random_bytes(std::mt19937& random) {
  static const std::string kPieces[] = {
      "abcdefghijklmnopqrstuvwxyz0123456789",
      "\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
      "\xEF\xBB\xBF",
      "\xFF\xFE",
      "\xFE\xFF",
      {"\x3D\xD8\x00\xDE", 4},
      {"\xD8\x3D\xDE\x00", 4},
      {"a\0b\0c\0d\0", 8},
      "\x1A\x1C\x7F\x80\xC0\xED\xA0\x80\xF4\x90",
  };
  std::string bytes;
  while (bytes.size() < 300) {
    const std::string& piece = kPieces[random() % std::size(kPieces)];
    bytes += piece.substr(0, 1 + random() % piece.size());
    if (random() % 4 == 0) bytes.push_back(static_cast<char>(random()));
  }
  return bytes;
}

class TextDecoderRoutes : public testing::TestWithParam<const char*> {};

TEST_P(TextDecoderRoutes, AgreeOnRandomBytesHoweverTheyAreFed) {
  std::mt19937 random(20'261'120);
  for (std::uint32_t round = 0; round < 80; ++round) {
    const std::string bytes = random_bytes(random);
    for (const bool one_unit : {false, true}) {
      BothRoutes routes(GetParam(), one_unit);
      ASSERT_EQ(first_different_answer(answers_at_random(routes.fast(), bytes, round),
                                       answers_at_random(routes.icu(), bytes, round)),
                "")
          << "round " << round << (one_unit ? ", one unit" : "");
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Encodings, TextDecoderRoutes,
                         testing::Values("UTF-8", "UTF-16LE", "UTF-16BE", "UTF-16", "UnicodeBig",
                                         "windows-1252", "ISO-8859-1", "ISO-8859-7", "US-ASCII",
                                         "IBM437", "IBM037", "KOI8-R"),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

// Former bug: the decoder's own test for exchanged control characters was counted.
TEST(TextDecoder, HasMetNothingIllFormedBeforeItsFirstByte) {
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const std::string name = ucnv_getAvailableName(i);
    if (name == "x11-compound-text") continue;
    for (const DecodeRoute route : {DecodeRoute::fastest, DecodeRoute::icu}) {
      TextDecoder decoder(name, true, route);
      EXPECT_EQ(decoder.ill_formed_parts(), 0U) << name;
      EXPECT_FALSE(decoder.has_more()) << name;
    }
  }
}

// For every encoding, the text of the bytes does not depend on how they are read.
TEST(TextDecoder, GivesTheSameUnitsAndCountForEveryEncodingHoweverItIsFed) {
  std::mt19937 random(20'261'121);
  const std::string shifts =
      "\x1B$(B)AGH+~{}-&\x0E\x0F"
      "ab\x81\x30\xFF\x85\x01";
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const std::string name = ucnv_getAvailableName(i);
    if (name == "x11-compound-text") continue;
    TextDecoder decoder(name, false, DecodeRoute::fastest);
    for (int round = 0; round < 4; ++round) {
      std::string bytes;
      for (int k = 0; k < 120; ++k) {
        bytes.push_back(round % 2 == 0 ? static_cast<char>(random())
                                       : shifts[random() % shifts.size()]);
      }
      decoder.reset(true);
      const std::size_t before = decoder.ill_formed_parts();
      const DecoderAnswer whole = answer_of(decoder, bytes, 1'000, true);
      const std::size_t count = whole.ill_formed - before;
      for (const std::size_t chunk : std::initializer_list<std::size_t>{1, 7}) {
        decoder.reset(true);
        std::u16string units;
        for (const DecoderAnswer& answer : answers_of(decoder, bytes, chunk)) units += answer.units;
        ASSERT_EQ(testing_support::readable(units), testing_support::readable(whole.units)) << name;
        ASSERT_EQ(decoder.ill_formed_parts() - whole.ill_formed, count * (chunk == 1 ? 1 : 2))
            << name;  // the counts of both chunk sizes add up
      }
    }
  }
}

}  // namespace
}  // namespace textio::standalone
