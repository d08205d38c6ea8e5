// Names of encodings: all of ICU's are known, others are refused with a helpful message.
#include <vltextstream/standalone/decoding/encoding_names.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

#include <vltextstream/standalone/decoding/text_decoder.hpp>
#include "support/decoder_routes.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing_support::answer_of;
using testing_support::ByRule;
using testing_support::readable;

// --- known names -------------------------------------------------------------------------------

struct NameCase {
  const char* name;
  std::string bytes;
  std::u16string text;
};

const NameCase kNames[] = {
    {"UTF-8", "\xC3\xA9", u"\u00e9"},
    {"utf8", "\xC3\xA9", u"\u00e9"},
    {"Utf_8", "\xC3\xA9", u"\u00e9"},
    {"utf 8", "\xC3\xA9", u"\u00e9"},
    {"UTF-8 ", "\xC3\xA9", u"\u00e9"},
    {"cp1208", "\xC3\xA9", u"\u00e9"},
    {"windows-65001", "\xC3\xA9", u"\u00e9"},
    {"unicode-1-1-utf-8", "\xC3\xA9", u"\u00e9"},
    {"UTF-16", {"\xFF\xFE\xE9\0", 4}, u"\u00e9"},
    {"utf16", {"\0\xE9", 2}, u"\u00e9"},
    {"UTF16", {"\0\xE9", 2}, u"\u00e9"},
    {"ucs-2", {"\0\xE9", 2}, u"\u00e9"},
    {"UTF-16,version=1", {"\xFF\xFE\xE9\0", 4}, u"\u00e9"},
    {"UTF-16LE", {"\xE9\0", 2}, u"\u00e9"},
    {"utf16le", {"\xE9\0", 2}, u"\u00e9"},
    {"UnicodeLittleUnmarked", {"\xE9\0", 2}, u"\u00e9"},
    {"UnicodeLittle", {"\xFF\xFE\xE9\0", 4}, u"\u00e9"},
    {"UTF-16BE", {"\0\xE9", 2}, u"\u00e9"},
    {"UnicodeBig", {"\xFE\xFF\0\xE9", 4}, u"\u00e9"},
    {"UTF16_PlatformEndian", {"\xE9\0", 2}, u"\u00e9"},
    {"UTF-32", {"\0\0\0\xE9", 4}, u"\u00e9"},
    {"ucs-4", {"\0\0\0\xE9", 4}, u"\u00e9"},
    {"UTF-32LE", {"\xE9\0\0\0", 4}, u"\u00e9"},
    {"UTF-7", "+AOk-", u"\u00e9"},
    {"unicode-2-0-utf-7", "+AOk-", u"\u00e9"},
    {"IMAP-mailbox-name", "&AOk-", u"\u00e9"},
    {"SCSU", "\xE9", u"\u00e9"},
    {"BOCU-1", "\xB1", u"a"},
    {"CESU-8", "\xC3\xA9", u"\u00e9"},
    {"LMBCS", "a\x82", u"a\u00e9"},
    {"latin1", "\xE9", u"\u00e9"},
    {"l1", "\xE9", u"\u00e9"},
    {"ISO-8859-1", "\xE9", u"\u00e9"},
    {"iso_8859-1:1987", "\xE9", u"\u00e9"},
    {"8859_1", "\xE9", u"\u00e9"},
    {"cp819", "\xE9", u"\u00e9"},
    {"ascii", "a", u"a"},
    {"us", "a", u"a"},
    {"ANSI_X3.4-1968", "a", u"a"},
    {"cp1252", "\x80", u"\u20ac"},
    {"Windows-1252", "\x80", u"\u20ac"},
    {"ibm-5348", "\x80", u"\u20ac"},
    {"latin-9", "\xA4", u"\u20ac"},
    {"cp1251", "\xCF", u"\u041f"},
    {"koi8-r", "\xF0", u"\u041f"},
    {"cyrillic", "\xBF", u"\u041f"},
    {"greek", "\xE1", u"\u03b1"},
    {"mac", "\x8E", u"\u00e9"},
    {"437", "\x82", u"\u00e9"},
    {"Shift_JIS", "\x83\x65", u"\u30c6"},
    {"sjis", "\x83\x65", u"\u30c6"},
    {"MS_Kanji", "\x83\x65", u"\u30c6"},
    {"windows-31j", "\x83\x65", u"\u30c6"},
    {"EUC-JP", "\xC6\xFC", u"\u65e5"},
    {"eucjp", "\xC6\xFC", u"\u65e5"},
    {"ISO-2022-JP", "\x1B$B\x46\x7C\x1B(B", u"\u65e5"},
    {"ISO_2022,locale=ja,version=0", "\x1B$B\x46\x7C\x1B(B", u"\u65e5"},
    {"GB18030", "\xD6\xD0", u"\u4e2d"},
    {"gbk", "\xD6\xD0", u"\u4e2d"},
    {"gb2312", "\xD6\xD0", u"\u4e2d"},
    {"HZ", "~{VP~}", u"\u4e2d"},
    {"Big5", "\xA4\xA4", u"\u4e2d"},
    {"big5-hkscs", "\xA4\xA4", u"\u4e2d"},
    {"EUC-KR", "\xC7\xD1", u"\ud55c"},
    {"korean", "\xC7\xD1", u"\ud55c"},
    {"IBM037", "\xC1\x25", u"A\n"},
    {"ebcdic-cp-us", "\xC1\x25", u"A\n"},
    {"ibm-37_P100-1995,swaplfnl", "\xC1\x25\x15", u"A\u0085\n"},
    {"ibm-37-s390", "\xC1\x25\x15", u"A\u0085\n"},
    {"IBM930", "\xC1", u"A"},
};

TEST(EncodingName, OfIcuIsKnownAndDecodes) {
  for (const NameCase& row : kNames) {
    for (const DecodeRoute route : {DecodeRoute::fastest, DecodeRoute::icu}) {
      TextDecoder decoder(row.name, false, route);
      EXPECT_EQ(readable(answer_of(decoder, row.bytes, 16, true).units), readable(row.text))
          << row.name;
      EXPECT_EQ(decoder.ill_formed_parts(), 0U) << row.name;
    }
  }
}

struct Close {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};

std::string name_of_opened(const std::string& name) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, Close> converter(ucnv_open(name.c_str(), &status));
  return converter ? ucnv_getName(converter.get(), &status) : "none";
}

std::vector<std::string> all_aliases() {
  std::vector<std::string> aliases;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    UErrorCode status = U_ZERO_ERROR;
    const char* const name = ucnv_getAvailableName(i);
    const std::uint16_t count = ucnv_countAliases(name, &status);
    for (std::uint16_t k = 0; k < count; ++k) {
      status = U_ZERO_ERROR;
      aliases.emplace_back(ucnv_getAlias(name, k, &status));
    }
  }
  return aliases;
}

TEST(EncodingName, OfEveryAliasMeansWhatIcuOpensForIt) {
  const std::vector<std::string> aliases = all_aliases();
  EXPECT_GT(aliases.size(), 1'000U);
  for (const std::string& alias : aliases) {
    if (name_of_opened(alias) == "x11-compound-text") continue;
    EXPECT_EQ(name_of_opened(canonical_encoding(alias)), name_of_opened(alias)) << alias;
  }
}

TEST(EncodingName, OfUtf8AndUtf16IsTheSameWithoutTheTable) {
  for (const std::string name : {"UTF-8", "utf8", "UTF-16", "utf_16", "UTF-16LE", "utf16be"}) {
    EXPECT_EQ(canonical_encoding(name), name_of_opened(name)) << name;
  }
}

// --- refused names -----------------------------------------------------------------------------

std::string refusal_of(const std::string& name) {
  try {
    canonical_encoding(name);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "accepted";
}

struct RefusalCase {
  const char* rule;
  std::string name;
  std::string message;
};
std::ostream& operator<<(std::ostream& out, const RefusalCase& row) { return out << row.rule; }

const std::string kExpected = ". Expected a name such as UTF-8, windows-1252 or Shift_JIS";

const RefusalCase kRefusals[] = {
    {"OneDigitReplaced", "utf-9", "unknown encoding 'utf-9' (did you mean 'UTF-8'?)"},
    {"OneLetterMore", "UTF-8x", "unknown encoding 'UTF-8x' (did you mean 'UTF-8'?)"},
    {"OneLetterLess", "Shift_JS", "unknown encoding 'Shift_JS' (did you mean 'Shift_JIS'?)"},
    {"NeighboursExchanged", "tuf8", "unknown encoding 'tuf8' (did you mean 'UTF-8'?)"},
    {"NumberMissing", "utf", "unknown encoding 'utf' (did you mean 'UTF-8'?)"},
    {"WellKnownNameWinsATie", "UTF-16XE", "unknown encoding 'UTF-16XE' (did you mean 'UTF-16LE'?)"},
    {"AliasLeadsToTheBestSpelling", "latn1",
     "unknown encoding 'latn1' (did you mean 'ISO-8859-1'?)"},
    {"WindowsWithoutItsLastDigit", "windows-125",
     "unknown encoding 'windows-125' (did you mean 'windows-1252'?)"},
    {"CodePageWithALetterTooMany", "cp1251x",
     "unknown encoding 'cp1251x' (did you mean 'windows-1251'?)"},
    {"IsoWithATypo", "iso-8895-15", "unknown encoding 'iso-8895-15' (did you mean 'ISO-8859-15'?)"},
    {"GbWithZerosExchanged", "gb18003", "unknown encoding 'gb18003' (did you mean 'GB18030'?)"},
    {"KoiWithTheWrongLetter", "koi9-r", "unknown encoding 'koi9-r' (did you mean 'KOI8-R'?)"},

    {"NothingNear", "klingon", "unknown encoding 'klingon'" + kExpected},
    {"WhatIsRefusedIsNotSuggested", "x11-compound-tex",
     "unknown encoding 'x11-compound-tex'" + kExpected},
    {"Empty", "", "unknown encoding ''" + kExpected},
    {"Blank", " ", "unknown encoding ' '" + kExpected},
    {"PunctuationAlone", "-,",
     "unknown encoding '-,'" + std::string(": options behind a comma are not taken") + kExpected},
    {"APath", "/etc/passwd", "unknown encoding '/etc/passwd'" + kExpected},
    {"Format", "%s%n{}", "unknown encoding '%s%n{}'" + kExpected},

    {"NulAfterTheName", {"UTF-8\0", 6}, "unknown encoding 'UTF-8\\x00' (did you mean 'UTF-8'?)"},
    {"NulBefore", {"\0UTF-8", 6}, "unknown encoding '\\x00UTF-8' (did you mean 'UTF-8'?)"},
    {"ControlCharacters", "UTF\n-8\x1B",
     "unknown encoding 'UTF\\x0A-8\\x1B' (did you mean 'UTF-8'?)"},
    {"LetterOfAnotherAlphabet", "UTF-8\xC3\xA9",
     "unknown encoding 'UTF-8\xC3\xA9' (did you mean 'UTF-8'?)"},

    {"UnknownOption", "UTF-8,nonsense",
     "unknown encoding 'UTF-8,nonsense': options behind a comma are not taken (did you mean "
     "'UTF-8'?)"},
    {"OptionOfOtherEncodings", "latin1,swaplfnl",
     "unknown encoding 'latin1,swaplfnl': options behind a comma are not taken (did you mean "
     "'ISO-8859-1'?)"},
    {"OptionsThatSpellAnotherName", "UTF-16,LE",
     "unknown encoding 'UTF-16,LE': options behind a comma are not taken (did you mean 'UTF-16'?)"},
    {"CommaAtTheEnd", "UTF-8,",
     "unknown encoding 'UTF-8,': options behind a comma are not taken (did you mean 'UTF-8'?)"},

    {"NameOfSixtyOneBytes", std::string(61, 'x'),
     "unknown encoding '" + std::string(61, 'x') + "'" + kExpected},
    {"NameOfTheMostBytesThatAreShown", std::string(64, 'x'),
     "unknown encoding '" + std::string(64, 'x') + "'" + kExpected},
    {"LongerNamesAreCut", std::string(65, 'x'),
     "unknown encoding '" + std::string(64, 'x') + "...'" + kExpected},
    {"AbsurdlyLongName", std::string(1'000'000, 'x'),
     "unknown encoding '" + std::string(64, 'x') + "...'" + kExpected},
    {"NoCharacterIsCut", std::string(63, 'x') + "\xC3\xA9y",
     "unknown encoding '" + std::string(63, 'x') + "...'" + kExpected},
};

class EncodingNameRefusal : public testing::TestWithParam<RefusalCase> {};

TEST_P(EncodingNameRefusal, RepeatsTheNameAndSuggestsTheNearest) {
  EXPECT_EQ(refusal_of(GetParam().name), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(Table, EncodingNameRefusal, testing::ValuesIn(kRefusals), ByRule());

TEST(EncodingName, OfCompoundTextIsRefusedWithTheReason) {
  for (const char* name : {"x11-compound-text", "COMPOUND_TEXT"}) {
    EXPECT_THAT(refusal_of(name),
                HasSubstr(std::string("encoding '") + name + "' is not supported"));
    EXPECT_THAT(refusal_of(name), Not(HasSubstr("unknown")));
  }
}

// A suggestion is a known name, and nearest to itself.
TEST(NearestEncoding, IsItselfForEveryNameItSuggests) {
  for (const char* name : {"UTF-8", "UTF-16", "windows-1252", "Shift_JIS", "ISO-8859-1", "GB18030",
                           "KOI8-R", "Big5", "EUC-KR", "ISO-2022-JP", "macintosh", "IBM037"}) {
    EXPECT_EQ(nearest_encoding(name), name);
    EXPECT_NE(canonical_encoding(name), "");
  }
}

}  // namespace
}  // namespace textio::standalone
