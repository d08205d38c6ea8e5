// The decoder on ICU: how it corrects ICU's output, with hardly any room.
#include <vltextstream/standalone/decoding/icu_decoder.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

#include "support/first_difference.hpp"
#include "support/printing.hpp"

namespace textio::standalone {
namespace {

using testing_support::first_difference;
using testing_support::kNoDifference;
using testing_support::readable;

// All code units, in windows of `room` code units.
std::u16string decoded(IcuDecoder& decoder, std::string_view bytes, std::size_t room) {
  std::u16string text;
  const char* in = bytes.data();
  for (bool all_out = false; !all_out;) {
    std::u16string units(room, u'\0');
    DecodeWindow window{in, bytes.data() + bytes.size(), units.data(), units.data() + room};
    all_out = decoder.decode(window, true);
    text.append(units.data(), window.out);
    in = window.in;
  }
  return text;
}

TEST(IcuDecoder, PutsExchangedControlsBack) {
  for (const char* encoding : {"IBM437", "Shift_JIS", "IBM850"}) {
    IcuDecoder decoder(encoding, true);
    EXPECT_EQ(readable(decoded(decoder, "\x1A\x1C\x7F", kEnoughRoom)), "\\u001A\\u001C\\u007F")
        << encoding;
    EXPECT_EQ(decoder.ill_formed_parts(), 0U);
  }
}

// Blocks without a corrected code unit are skipped, so each place in a block is tested. IBM437 and
// Shift_JIS exchange controls; in GB18030 the last character is a pair.
TEST(IcuDecoder, PutsOneUnitRightAtEveryPlace) {
  struct Odd {
    const char* encoding;
    std::string bytes;
    std::u16string units;
  };
  constexpr std::size_t kUnits = 200;
  for (const Odd& odd : {Odd{"IBM437", "\x1A", u"\x1A"}, Odd{"Shift_JIS", "\x1C", u"\x1C"},
                         Odd{"Shift_JIS", "\x7F", u"\x7F"}, Odd{"GB18030", "\x7F", u"\x7F"},
                         Odd{"GB18030", "\x94\x39\xFC\x36", u"\xD83D"}}) {
    IcuDecoder decoder(odd.encoding, true);
    for (std::size_t place = 0; place <= kUnits; ++place) {
      const std::string bytes =
          std::string(place, 'a') + odd.bytes + std::string(kUnits - place, 'b');
      const std::u16string units =
          std::u16string(place, u'a') + odd.units + std::u16string(kUnits - place, u'b');
      for (const std::size_t room : std::initializer_list<std::size_t>{kEnoughRoom, 4'096}) {
        decoder.reset();
        EXPECT_EQ(first_difference(decoded(decoder, bytes, room), units), kNoDifference)
            << odd.encoding << ", place " << place;
      }
    }
  }
}

TEST(IcuDecoder, PairsWaitForTheirOtherHalfWhateverTheRoom) {
  const std::string high = "\xED\xA0\xBD";
  const std::string low = "\xED\xB8\x80";
  constexpr std::size_t kRounds = 300;
  for (const std::size_t room :
       std::initializer_list<std::size_t>{kEnoughRoom, kEnoughRoom + 1, 4'096}) {
    IcuDecoder decoder("CESU-8", false);
    std::string bytes;
    std::u16string text;
    for (std::size_t i = 0; i < kRounds; ++i) {
      bytes += high + high + low + low + "z" + high + "z";
      text += u"\ufffd\U0001F600\ufffdz\ufffdz";
    }
    EXPECT_EQ(first_difference(decoded(decoder, bytes + high, room), text + u'\ufffd'),
              kNoDifference);
    EXPECT_EQ(decoder.ill_formed_parts(), 3 * kRounds + 1);
    EXPECT_FALSE(decoder.has_unfinished());
  }
}

// With too little room, ICU gets no bytes and the input does not move.
TEST(IcuDecoder, AsksForMoreRoomWhenThereIsLittle) {
  IcuDecoder decoder("BOCU-1", false);
  const std::string_view bytes = "\xB1\xD0\x76\n";
  for (const std::size_t room : std::initializer_list<std::size_t>{0, 1, 2, 64}) {
    std::u16string units(room, u'\0');
    DecodeWindow window{bytes.data(), bytes.data() + bytes.size(), units.data(),
                        units.data() + room};
    EXPECT_FALSE(decoder.decode(window, true)) << room;
    EXPECT_EQ(window.in, bytes.data());
  }
  EXPECT_EQ(decoded(decoder, bytes, kEnoughRoom), u"a\u00e9\n");
}

TEST(IcuDecoder, HasSomethingUnfinishedWhileHalfAPairWaits) {
  IcuDecoder decoder("CESU-8", true);
  char16_t units[kEnoughRoom] = {};
  const std::string_view high = "\xED\xA0\xBD";
  DecodeWindow window{high.data(), high.data() + high.size(), units, units + kEnoughRoom};
  EXPECT_TRUE(decoder.decode(window, false));
  EXPECT_EQ(window.out, units);
  EXPECT_TRUE(decoder.has_unfinished());
  decoder.reset();
  EXPECT_FALSE(decoder.has_unfinished());
  EXPECT_EQ(decoded(decoder, "z", kEnoughRoom), u"z");
}

TEST(IcuDecoder, GivesTheFirstHalvesAloneWhereOneUnitIsAskedFor) {
  for (const std::size_t room : std::initializer_list<std::size_t>{kEnoughRoom, 4'096}) {
    IcuDecoder gb18030("GB18030", true);
    EXPECT_EQ(decoded(gb18030, "a\x94\x39\xFC\x36z\x94\x39\xFC\x36", room), u"a\xD83Dz\xD83D");
    IcuDecoder cesu8("CESU-8", true);
    EXPECT_EQ(decoded(cesu8, "a\xED\xA0\xBD\xED\xB8\x80z", room), u"a\xD83Dz");
  }
}

TEST(IcuDecoder, SaysWhichEncodingsAreOfSingleBytes) {
  for (const char* encoding : {"windows-1252", "ISO-8859-1", "US-ASCII", "IBM037"}) {
    EXPECT_TRUE(IcuDecoder(encoding, false).is_single_byte()) << encoding;
  }
  for (const char* encoding : {"Shift_JIS", "UTF-7", "UTF-32LE", "HZ", "IBM930"}) {
    EXPECT_FALSE(IcuDecoder(encoding, false).is_single_byte()) << encoding;
  }
}

TEST(IcuDecoder, RefusesANameThatIcuDoesNotKnow) {
  EXPECT_THROW(IcuDecoder("klingon", false), std::invalid_argument);
}

}  // namespace
}  // namespace textio::standalone
