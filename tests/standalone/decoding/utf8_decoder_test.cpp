// The UTF-8 decoder against ICU; code_converter_test.cpp has single cases.
#include <vltextstream/standalone/decoding/utf8_decoder.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "support/decoder_routes.hpp"

namespace textio::standalone {
namespace {

using testing_support::all_sequences_of;
using testing_support::answer_of;
using testing_support::answers_of;
using testing_support::BothRoutes;
using testing_support::DecoderAnswer;
using testing_support::first_different_answer;
using testing_support::single_bytes;

void expect_same_answers(const std::string& bytes, std::size_t chunk) {
  for (const bool one_unit : {false, true}) {
    BothRoutes routes("UTF-8", one_unit);
    ASSERT_TRUE(routes.fast().is_fast());
    ASSERT_FALSE(routes.icu().is_fast());
    EXPECT_EQ(first_different_answer(answers_of(routes.fast(), bytes, chunk),
                                     answers_of(routes.icu(), bytes, chunk)),
              "")
        << "chunks of " << chunk << (one_unit ? ", one unit" : "");
  }
}

// The bytes on both sides of every limit in the table of well-formed sequences.
const std::string kLimits =
    "A\x7F\x80\x81\x8F\x90\x9F\xA0\xBE\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4"
    "\xF5\xF8\xFE\xFF";

TEST(Utf8Decoder, AgreesWithIcuOnAllCodePoints) {
  std::string bytes;
  for (unsigned c = 0; c <= 0x10FFFF; ++c) {
    const auto put = [&bytes](unsigned byte) { bytes.push_back(static_cast<char>(byte)); };
    if (c < 0x80) {
      put(c);
    } else if (c < 0x800) {
      put(0xC0 | c >> 6);
      put(0x80 | (c & 0x3F));
    } else {
      // includes surrogates, which are ill-formed
      if (c >= 0x10000) put(0xF0 | c >> 18);
      put(c >= 0x10000 ? 0x80 | (c >> 12 & 0x3F) : 0xE0 | c >> 12);
      put(0x80 | (c >> 6 & 0x3F));
      put(0x80 | (c & 0x3F));
    }
  }
  expect_same_answers(bytes, 65'535);
}

TEST(Utf8Decoder, AgreesWithIcuOnAllPairsOfBytes) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all.push_back(static_cast<char>(byte));
  expect_same_answers(all_sequences_of(single_bytes(all), 2, "z"), 4'099);
}

TEST(Utf8Decoder, AgreesWithIcuOnThreeBytesAtTheirLimits) {
  const std::string bytes = all_sequences_of(single_bytes(kLimits), 3, "zzzz");
  for (const std::size_t chunk : std::initializer_list<std::size_t>{7, 65'535})
    expect_same_answers(bytes, chunk);
}

TEST(Utf8Decoder, AgreesWithIcuOnFourBytesAtTheirLimits) {
  const std::string limits = "A\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xE0\xED\xEF\xF0\xF1\xF4\xF5";
  expect_same_answers(all_sequences_of(single_bytes(limits), 4, "z"), 65'535);
}

// Each sequence as a text of its own, so that its last character may be cut off.
TEST(Utf8Decoder, AgreesWithIcuOnShortTextsAtTheirEnd) {
  for (const bool one_unit : {false, true}) {
    BothRoutes routes("UTF-8", one_unit);
    for (const std::size_t length : std::initializer_list<std::size_t>{1, 2, 3}) {
      const std::string texts = all_sequences_of(single_bytes(kLimits), length, "");
      for (std::size_t pos = 0; pos < texts.size(); pos += length) {
        const std::string_view text = std::string_view(texts).substr(pos, length);
        routes.reset(true);
        ASSERT_EQ(answer_of(routes.fast(), text, length, true),
                  answer_of(routes.icu(), text, length, true))
            << pos / length;
      }
    }
  }
}

// A character or an ill-formed part at each place relative to the blocks of ASCII.
TEST(Utf8Decoder, AgreesWithIcuWhereverARunOfAsciiIsBroken) {
  for (const std::string breaks :
       {"\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x98\x80", "\x80", "\xE2\x82", "\xF0\x9F\x98"}) {
    for (std::size_t run = 0; run <= 40; ++run) {
      const std::string text = std::string(run, 'a') + breaks + std::string(40 - run, 'b');
      expect_same_answers(text, text.size());
      expect_same_answers(text, 19);
    }
  }
}

}  // namespace
}  // namespace textio::standalone
