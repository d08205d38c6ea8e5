// The UTF-16 decoder against ICU; code_converter_test.cpp has single cases.
#include <vltextstream/standalone/decoding/utf16_decoder.hpp>

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
using testing_support::first_different_answer;

std::string unit_bytes(char16_t unit, ByteOrder order) {
  const char low = static_cast<char>(unit & 0xFF);
  const char high = static_cast<char>(unit >> 8);
  return order == ByteOrder::little ? std::string{low, high} : std::string{high, low};
}

// The code units on both sides of every limit, and those whose bytes look like surrogates in the
// other byte order.
constexpr char16_t kLimits[] = {0x0000, 0x007A, 0x00D8, 0x00DC, 0x00DF, 0xD7FF,
                                0xD800, 0xD83D, 0xD8D8, 0xDBFF, 0xDC00, 0xDCDC,
                                0xDFFF, 0xE000, 0xFEFF, 0xFFFD, 0xFFFE, 0xFFFF};

std::vector<std::string> limits(ByteOrder order) {
  std::vector<std::string> pieces;
  for (const char16_t unit : kLimits) pieces.push_back(unit_bytes(unit, order));
  return pieces;
}

struct Named {
  const char* encoding;
  ByteOrder order;
  std::string mark;
};
const Named kEncodings[] = {
    {"UTF-16LE", ByteOrder::little, ""},    {"UTF-16BE", ByteOrder::big, ""},
    {"UTF-16", ByteOrder::big, ""},         {"UTF-16", ByteOrder::little, "\xFF\xFE"},
    {"UTF-16", ByteOrder::big, "\xFE\xFF"},
};

void expect_same_answers(const Named& named, const std::string& bytes, std::size_t chunk) {
  for (const bool one_unit : {false, true}) {
    BothRoutes routes(named.encoding, one_unit);
    EXPECT_EQ(first_different_answer(answers_of(routes.fast(), named.mark + bytes, chunk),
                                     answers_of(routes.icu(), named.mark + bytes, chunk)),
              "")
        << named.encoding << ", chunks of " << chunk << (one_unit ? ", one unit" : "");
    EXPECT_TRUE(routes.fast().is_fast());
    EXPECT_FALSE(routes.icu().is_fast());
  }
}

TEST(Utf16Decoder, AgreesWithIcuOnTwoAndThreeUnitsAtTheirLimits) {
  for (const Named& named : kEncodings) {
    const std::string z = unit_bytes(u'z', named.order);
    for (const std::size_t chunk : std::initializer_list<std::size_t>{3, 4'097}) {
      expect_same_answers(named, all_sequences_of(limits(named.order), 2, z), chunk);
    }
    expect_same_answers(named, all_sequences_of(limits(named.order), 3, z), 65'535);
  }
}

TEST(Utf16Decoder, AgreesWithIcuOnAllUnits) {
  for (const Named& named : kEncodings) {
    std::string bytes;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
      bytes += unit_bytes(static_cast<char16_t>(unit), named.order);
    }
    expect_same_answers(named, bytes, 65'535);
  }
}

// Each sequence as a text of its own, with and without an odd byte after it.
TEST(Utf16Decoder, AgreesWithIcuOnShortTextsAtTheirEnd) {
  for (const Named& named : kEncodings) {
    BothRoutes routes(named.encoding, false);
    const std::string texts = all_sequences_of(limits(named.order), 2, "");
    for (std::size_t pos = 0; pos < texts.size(); pos += 4) {
      for (const std::size_t length : std::initializer_list<std::size_t>{1, 2, 3, 4}) {
        const std::string text = named.mark + texts.substr(pos, length);
        routes.reset(true);
        ASSERT_EQ(answer_of(routes.fast(), text, 4, true), answer_of(routes.icu(), text, 4, true))
            << named.encoding << ", " << pos / 4;
      }
    }
  }
}

// A pair or a lone surrogate at each place relative to the blocks.
TEST(Utf16Decoder, AgreesWithIcuWhereverABlockIsBroken) {
  constexpr std::size_t kUnits = 2 * 64 + 10;  // two blocks and a rest
  for (const Named& named : kEncodings) {
    for (const std::u16string breaks : {u"\U0001F600", u"\xD83D", u"\xDE00"}) {
      for (std::size_t run = 0; run <= kUnits; ++run) {
        std::string bytes;
        for (std::size_t i = 0; i < run; ++i) bytes += unit_bytes(u'a', named.order);
        for (const char16_t unit : breaks) bytes += unit_bytes(unit, named.order);
        for (std::size_t i = run; i < kUnits; ++i) bytes += unit_bytes(u'b', named.order);
        expect_same_answers(named, bytes, bytes.size() + 2);
        expect_same_answers(named, bytes, 157);
      }
    }
  }
}

}  // namespace
}  // namespace textio::standalone
