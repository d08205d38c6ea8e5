#include <vltextstream/standalone/decoding/utf_text.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

// Both conversions, from heap blocks of exactly the given size.
std::u16string from(std::string_view bytes) {
  const auto block = std::make_unique<char[]>(bytes.size());
  std::copy(bytes.begin(), bytes.end(), block.get());
  return from_utf8({block.get(), bytes.size()});
}
std::string to(std::u16string_view text) { return to_utf8(ExactText(text).view()); }

struct UtfCase {
  const char* rule;
  std::string bytes;
  std::u16string text;
};
std::ostream& operator<<(std::ostream& out, const UtfCase& row) { return out << row.rule; }

// The code unit for one ill-formed byte.
const char16_t kHidden80 = 0xDC80;
const char16_t kHiddenFF = 0xDCFF;

std::u16string hidden(std::string_view bytes) {
  std::u16string units;
  for (const char byte : bytes) {
    units.push_back(static_cast<char16_t>(0xDC00 + static_cast<unsigned char>(byte)));
  }
  return units;
}

const UtfCase kUtfCases[] = {
    {"Empty", "", u""},
    {"Ascii", "/tmp/a b.csv", u"/tmp/a b.csv"},
    {"Nul", std::string("a\0b", 3), std::u16string(u"a\0b", 3)},
    {"TwoBytes", "caf\xC3\xA9", u"caf\u00e9"},
    {"FirstOfTwoBytes", "\xC2\x80", u"\u0080"},
    {"LastOfTwoBytes", "\xDF\xBF", u"\u07ff"},
    {"ThreeBytes", "\xE2\x82\xAC", u"\u20ac"},
    {"FirstOfThreeBytes", "\xE0\xA0\x80", u"\u0800"},
    {"LastBelowTheSurrogates", "\xED\x9F\xBF", u"\ud7ff"},
    {"FirstAboveTheSurrogates", "\xEE\x80\x80", u"\ue000"},
    {"LastOfThreeBytes", "\xEF\xBF\xBF", u"\uffff"},
    {"AMarkIsText", "\xEF\xBB\xBFz", u"\ufeffz"},
    {"FirstOfFourBytes", "\xF0\x90\x80\x80", u"\U00010000"},
    {"FourBytes", "\xF0\x9F\x98\x80", u"\U0001F600"},
    {"LastCharacter", "\xF4\x8F\xBF\xBF", u"\U0010FFFF"},
    {"LoneContinuation", "\x80", std::u16string(1, kHidden80)},
    {"ByteOfAllOnes", "\xFF", std::u16string(1, kHiddenFF)},
    {"Latin1Name", "caf\xE9.csv", u"caf" + hidden("\xE9") + u".csv"},
    {"OverlongSlash", "\xC0\xAF", hidden("\xC0\xAF")},
    {"OverlongSlashOfThree", "\xE0\x80\xAF", hidden("\xE0\x80\xAF")},
    {"EncodedSurrogate", "\xED\xA0\x80", hidden("\xED\xA0\x80")},
    {"EncodedHiddenByte", "\xED\xB2\x80", hidden("\xED\xB2\x80")},
    {"BeyondTheLastCharacter", "\xF4\x90\x80\x80", hidden("\xF4\x90\x80\x80")},
    {"LeadOfFive", "\xF8\x88\x80\x80\x80", hidden("\xF8\x88\x80\x80\x80")},
    {"TruncatedAfterOne", "a\xC3", u"a" + hidden("\xC3")},
    {"TruncatedAfterTwo", "a\xE2\x82", u"a" + hidden("\xE2\x82")},
    {"TruncatedAfterThree", "a\xF0\x9F\x98", u"a" + hidden("\xF0\x9F\x98")},
    {"CutByALetter", "\xE2\x82z", hidden("\xE2\x82") + u"z"},
    {"CutByACharacter", "\xE2\x82\xC3\xA9", hidden("\xE2\x82") + u"\u00e9"},
    {"ByteAfterAPair", "\xF0\x9F\x98\x80\x80", u"\U0001F600" + hidden("\x80")},
    {"ByteBeforeAPair", "\x80\xF0\x9F\x98\x80", hidden("\x80") + u"\U0001F600"},
    {"PairsInARow", "\xF0\x9F\x98\x80\xF0\x90\x80\x80", u"\U0001F600\U00010000"},
};

class UtfText : public testing::TestWithParam<UtfCase> {};
TEST_P(UtfText, GoesFromBytes) {
  EXPECT_EQ(readable(from(GetParam().bytes)), readable(GetParam().text));
}
TEST_P(UtfText, GoesToBytes) { EXPECT_EQ(to(GetParam().text), GetParam().bytes); }
INSTANTIATE_TEST_SUITE_P(Table, UtfText, testing::ValuesIn(kUtfCases), ByRule());

TEST(UtfTextRoundTrip, KeepsAllPairsOfBytes) {
  for (int first = 0; first < 256; ++first) {
    for (int second = 0; second < 256; ++second) {
      const std::string bytes = {static_cast<char>(first), static_cast<char>(second)};
      ASSERT_EQ(to(from(bytes)), bytes) << first << ' ' << second;
    }
  }
}

// Five bytes, so that every form is cut, continued and overrun.
TEST(UtfTextRoundTrip, KeepsFiveBytesAtTheirLimits) {
  const std::string limits = "A\x80\x90\xA0\xBF\xC2\xE0\xED\xF0\xF4\xFF";
  std::string bytes(5, '\0');
  for (const char a : limits) {
    for (const char b : limits) {
      for (const char c : limits) {
        bytes.replace(0, 3, {a, b, c});
        for (const char d : limits) {
          bytes[3] = d;
          bytes[4] = limits[static_cast<unsigned char>(a ^ d) % limits.size()];
          ASSERT_EQ(to_utf8(from_utf8(bytes)), bytes);
        }
      }
    }
  }
}

TEST(UtfTextRoundTrip, KeepsEveryUnitThatIsACharacterOrAHiddenByte) {
  for (unsigned unit = 0; unit <= 0xFFFF; ++unit) {
    const bool is_surrogate = unit >= 0xD800 && unit <= 0xDFFF;
    const bool is_hidden_byte = unit >= 0xDC80 && unit <= 0xDCFF;
    if (is_surrogate && !is_hidden_byte) continue;
    const std::u16string text(1, static_cast<char16_t>(unit));
    ASSERT_EQ(readable(from(to(text))), readable(text));
  }
}

TEST(UtfTextRoundTrip, KeepsCharactersOfEveryPlane) {
  for (unsigned c = 0x10000; c <= 0x10FFFF; c += 0x101) {
    const std::u16string text = {static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10)),
                                 static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF))};
    ASSERT_EQ(to(text).size(), 4U);
    ASSERT_EQ(readable(from(to(text))), readable(text));
  }
}

// ASCII bytes are never escaped, so no surrogate may become one, such as a slash or a NUL.
TEST(UtfTextToBytes, GivesNoAsciiForASurrogate) {
  for (unsigned unit = 0xD800; unit <= 0xDFFF; ++unit) {
    const std::string bytes = to(std::u16string(1, static_cast<char16_t>(unit)));
    const bool has_ascii = std::any_of(bytes.begin(), bytes.end(), [](char byte) {
      return static_cast<unsigned char>(byte) < 0x80;
    });
    ASSERT_FALSE(has_ascii) << unit;
  }
}

TEST(UtfTextToBytes, TakesTheHighSurrogateAtTheEndAsLone) {
  const std::u16string_view pair = u"\U0001F600";
  const std::string lone = to(pair.substr(0, 1));
  EXPECT_EQ(to(std::u16string(u"a") + pair[0]), "a" + lone);
  EXPECT_EQ(to(pair.substr(0, 1)) + "z", to(std::u16string(1, pair[0]) + u"z"));
}

}  // namespace
}  // namespace textio::standalone
