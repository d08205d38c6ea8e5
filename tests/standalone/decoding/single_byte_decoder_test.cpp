// Tables of single bytes give the same as ICU, for every encoding of ICU.
#include <vltextstream/standalone/decoding/single_byte_decoder.hpp>

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "support/decoder_routes.hpp"

namespace textio::standalone {
namespace {

using testing_support::answer_of;
using testing_support::answers_of;
using testing_support::BothRoutes;
using testing_support::DecoderAnswer;
using testing_support::first_different_answer;

std::vector<std::string> fast_encodings_of_icu() {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const std::string name = ucnv_getAvailableName(i);
    if (name == "x11-compound-text") continue;
    if (TextDecoder(name, false, DecodeRoute::fastest).is_fast()) names.push_back(name);
  }
  return names;
}

std::string all_bytes() {
  std::string bytes;
  for (int byte = 0; byte < 256; ++byte) bytes.push_back(static_cast<char>(byte));
  return bytes;
}

TEST(SingleByteDecoder, AgreesWithIcuOnEachByteOfEachEncoding) {
  const std::vector<std::string> names = fast_encodings_of_icu();
  EXPECT_GT(names.size(), 140U);
  for (const std::string& name : names) {
    BothRoutes routes(name, true);
    for (const char byte : all_bytes()) {
      routes.reset(false);
      ASSERT_EQ(answer_of(routes.fast(), {&byte, 1}, 2, true),
                answer_of(routes.icu(), {&byte, 1}, 2, true))
          << name << ", byte " << static_cast<int>(static_cast<unsigned char>(byte));
    }
  }
}

TEST(SingleByteDecoder, AgreesWithIcuOnAllBytesInARow) {
  for (const std::string& name : fast_encodings_of_icu()) {
    BothRoutes routes(name, false);
    for (const std::size_t chunk : std::initializer_list<std::size_t>{15, 300}) {
      routes.reset(true);
      EXPECT_EQ(first_different_answer(answers_of(routes.fast(), all_bytes(), chunk),
                                       answers_of(routes.icu(), all_bytes(), chunk)),
                "")
          << name;
    }
  }
}

// Blocks of bytes that are equal to their code units are not looked up. Encodings differ in these
// bytes, so each place in a block is tested. Some encodings have ill-formed bytes.
TEST(SingleByteDecoder, AgreesWithIcuWhereverABlockIsBroken) {
  constexpr std::size_t kBytes = 2 * 64 + 10;  // two blocks and a rest
  for (const char* encoding : {"windows-1252", "ISO-8859-1", "ISO-8859-15", "windows-1251",
                               "windows-1253", "IBM037", "US-ASCII"}) {
    BothRoutes routes(encoding, true);
    for (const char odd : {'\x7F', '\x80', '\x9F', '\xA0', '\xA4', '\xAA', '\xE9', '\xFF'}) {
      for (std::size_t place = 0; place <= kBytes; ++place) {
        const std::string bytes = std::string(place, 'a') + odd + std::string(kBytes - place, 'b');
        for (const std::size_t chunk : {bytes.size(), std::size_t{65}}) {
          routes.reset(true);
          ASSERT_EQ(first_different_answer(answers_of(routes.fast(), bytes, chunk),
                                           answers_of(routes.icu(), bytes, chunk)),
                    "")
              << encoding << ", place " << place;
        }
      }
    }
    EXPECT_TRUE(routes.fast().is_fast()) << encoding;
  }
}

// Code units that find no room are held back, wherever in a block the room ends.
TEST(SingleByteDecoder, FillsAnyRoomToItsEnd) {
  std::string bytes;
  for (int round = 0; round < 20; ++round) bytes += "north \xE9\x80,";
  for (std::size_t room = 0; room <= bytes.size(); ++room) {
    BothRoutes routes("windows-1252", true);
    const DecoderAnswer answer = answer_of(routes.fast(), bytes, room, true);
    EXPECT_EQ(answer.units.size(), room);
    EXPECT_EQ(answer, answer_of(routes.icu(), bytes, room, true)) << room;
  }
}

// Encodings with multi-byte characters or with a state have no table.
TEST(SingleByteDecoder, IsNotTakenForOtherEncodings) {
  for (const char* name :
       {"Shift_JIS", "GB18030", "EUC-JP", "Big5", "ISO-2022-JP", "UTF-7", "HZ", "UTF-32LE", "SCSU",
        "BOCU-1", "LMBCS-1", "IBM930", "GSM0338", "iscii-dev"}) {
    EXPECT_FALSE(TextDecoder(name, false, DecodeRoute::fastest).is_fast()) << name;
  }
}

// A decoder with a table in which single entries can be spoilt.
class ScriptedDecoder final : public StreamDecoder {
 public:
  // Each byte is the code unit with its value, except one that may be spoilt.
  unsigned char odd_byte = 0;
  std::size_t units_of_odd_byte = 1;
  bool keeps_odd_byte = false;
  bool depends_on_order = false;

  bool decode(DecodeWindow& window, bool /*final*/) override {
    const bool backwards = static_cast<unsigned char>(*window.in) == 0xFF;
    for (; window.in != window.in_end; ++window.in) {
      const auto byte = static_cast<unsigned char>(*window.in);
      const std::size_t count = byte == odd_byte ? units_of_odd_byte : 1;
      const char16_t moved = depends_on_order && backwards && byte == odd_byte ? 1 : 0;
      for (std::size_t i = 0; i < count; ++i) {
        *window.out++ = static_cast<char16_t>(byte + moved);
      }
    }
    return true;
  }
  bool has_unfinished() const override { return keeps_odd_byte; }
  void reset() override {}
};

TEST(SingleByteTable, HoldsWhatTheDecoderMakesOfEachByte) {
  ScriptedDecoder decoder;
  const auto table = single_byte_table(decoder);
  ASSERT_TRUE(table.has_value());
  for (std::size_t byte = 0; byte < 256; ++byte) EXPECT_EQ(table->units[byte], byte);
}

TEST(SingleByteTable, IsNotMadeWhenAByteGivesNoUnitOrTwo) {
  for (const std::size_t units : std::initializer_list<std::size_t>{0, 2}) {
    ScriptedDecoder decoder;
    decoder.odd_byte = 0x41;
    decoder.units_of_odd_byte = units;
    EXPECT_FALSE(single_byte_table(decoder).has_value()) << units;
  }
}

TEST(SingleByteTable, IsNotMadeWhenSomethingIsKept) {
  ScriptedDecoder decoder;
  decoder.keeps_odd_byte = true;
  EXPECT_FALSE(single_byte_table(decoder).has_value());
}

TEST(SingleByteTable, IsNotMadeWhenTheOrderMatters) {
  ScriptedDecoder decoder;
  decoder.odd_byte = 0x41;
  decoder.depends_on_order = true;
  EXPECT_FALSE(single_byte_table(decoder).has_value());
}

}  // namespace
}  // namespace textio::standalone
