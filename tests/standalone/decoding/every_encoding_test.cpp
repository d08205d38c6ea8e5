// Every encoding that ICU can open, on a short text that is cut wherever it can be: the bytes, the
// room for the units, and the buffer of a file's text.
#include <gtest/gtest.h>
#include <unicode/ucnv.h>
#include <unicode/uset.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>
#include <vltextstream/standalone/decoding/text_decoder.hpp>

#include "support/decoder_routes.hpp"
#include "support/printing.hpp"

namespace textio::standalone {
namespace {

using testing_support::answer_of;
using testing_support::DecoderAnswer;
using testing_support::readable;

constexpr std::size_t kAmpleRoom = 1'000;

struct CloseConverter {
  void operator()(UConverter* converter) const { ucnv_close(converter); }
};
struct CloseSet {
  void operator()(USet* set) const { uset_close(set); }
};

std::vector<std::string> names_of_all_encodings() {
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < ucnv_countAvailable(); ++i) {
    const std::string name = ucnv_getAvailableName(i);
    if (name != "x11-compound-text") names.push_back(name);
  }
  return names;
}

// Characters from all over the repertoire of the encoding, each between letters.
std::u16string text_for(const UConverter* converter) {
  constexpr std::int32_t kCharacters = 12;
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<USet, CloseSet> repertoire(uset_openEmpty());
  ucnv_getUnicodeSet(converter, repertoire.get(), UCNV_ROUNDTRIP_SET, &status);
  uset_removeRange(repertoire.get(), 0, 0x9F);
  const std::int32_t size = std::max(uset_size(repertoire.get()), 1);
  std::u16string text = u"a1";
  for (std::int32_t i = 0; i < kCharacters; ++i) {
    const UChar32 c = uset_charAt(repertoire.get(), i * (size / kCharacters) % size);
    if (c < 0) continue;
    if (U16_LENGTH(c) == 2) text.push_back(U16_LEAD(c));
    text.push_back(U16_LENGTH(c) == 2 ? U16_TRAIL(c) : static_cast<char16_t>(c));
    if (i % 3 == 0) text.push_back(u'b');
  }
  return text;
}

// The bytes of such a text, and some of them once more, which may be ill-formed there.
std::string bytes_in(const std::string& encoding) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(encoding.c_str(), &status));
  const std::u16string text = text_for(converter.get());
  std::string bytes(kAmpleRoom, '\0');
  const std::int32_t count = ucnv_fromUChars(converter.get(), bytes.data(), kAmpleRoom, text.data(),
                                             static_cast<std::int32_t>(text.size()), &status);
  EXPECT_TRUE(U_SUCCESS(status)) << encoding;
  bytes.resize(static_cast<std::size_t>(count));
  return bytes + bytes.substr(bytes.size() / 3, 5);
}

// Bytes that shift, designate, begin and end sequences in one encoding or another.
std::string bytes_at_random(std::uint32_t seed) {
  constexpr std::size_t kBytes = 60;
  static const std::string kShifts =
      "\x1B$(B)AGH+~{}-&\x0E\x0F"
      "ab\x81\x30\xFF\x85\x01\xEF\xD9\n";
  std::mt19937 random(seed);
  std::string bytes;
  while (bytes.size() < kBytes) bytes.push_back(kShifts[random() % kShifts.size()]);
  return bytes;
}

struct Encoded {
  std::string encoding;
  std::string bytes;
};
std::ostream& operator<<(std::ostream& out, const Encoded& text) { return out << text.encoding; }

std::vector<Encoded> texts_in_all_encodings() {
  std::vector<Encoded> texts;
  for (const std::string& name : names_of_all_encodings()) {
    texts.push_back({name, bytes_in(name)});
    texts.push_back({name, bytes_at_random(20'261'122)});
    texts.push_back({name, bytes_at_random(20'261'123)});
  }
  return texts;
}

// The whole text, decoded at once.
std::u16string whole_text(const Encoded& text, bool one_unit) {
  TextDecoder decoder(text.encoding, one_unit, DecodeRoute::fastest);
  return answer_of(decoder, text.bytes, kAmpleRoom, true).units;
}

class EveryEncoding : public testing::TestWithParam<Encoded> {};

TEST_P(EveryEncoding, GivesTheSameTextWhereverTheBytesAreCut) {
  const std::string_view bytes = GetParam().bytes;
  for (const bool one_unit : {false, true}) {
    const std::u16string whole = whole_text(GetParam(), one_unit);
    TextDecoder decoder(GetParam().encoding, one_unit, DecodeRoute::fastest);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
      decoder.reset(true);
      const DecoderAnswer first = answer_of(decoder, bytes.substr(0, cut), kAmpleRoom, false);
      const DecoderAnswer rest = answer_of(decoder, bytes.substr(cut), kAmpleRoom, true);
      ASSERT_EQ(readable(first.units + rest.units), readable(whole)) << "byte " << cut;
    }
  }
}

TEST_P(EveryEncoding, GivesTheSameTextWhereverTheRoomEnds) {
  for (const bool one_unit : {false, true}) {
    const std::u16string whole = whole_text(GetParam(), one_unit);
    TextDecoder decoder(GetParam().encoding, one_unit, DecodeRoute::fastest);
    for (std::size_t room = 0; room <= whole.size(); ++room) {
      decoder.reset(true);
      const DecoderAnswer first = answer_of(decoder, GetParam().bytes, room, true);
      const DecoderAnswer rest = answer_of(decoder, {}, kAmpleRoom, true);
      EXPECT_EQ(first.units.size(), room);
      EXPECT_EQ(first.has_more, room < whole.size()) << "room " << room;
      ASSERT_EQ(readable(first.units + rest.units), readable(whole)) << "room " << room;
    }
  }
}

TEST_P(EveryEncoding, HasMoreExactlyWhereTheEndWouldGiveUnits) {
  const std::string_view bytes = GetParam().bytes;
  for (const bool one_unit : {false, true}) {
    TextDecoder decoder(GetParam().encoding, one_unit, DecodeRoute::fastest);
    for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
      decoder.reset(true);
      const DecoderAnswer first = answer_of(decoder, bytes.substr(0, cut), kAmpleRoom, false);
      const DecoderAnswer end = answer_of(decoder, {}, kAmpleRoom, true);
      EXPECT_EQ(first.has_more, !end.units.empty()) << "byte " << cut << ", " << end;
      EXPECT_FALSE(end.has_more) << "byte " << cut;
    }
  }
}

// After the last byte a source knows whether text is left; the next fill need not come back empty.
TEST_P(EveryEncoding, IsReadToItsEndInBuffersOfAnySize) {
  std::string bytes = GetParam().bytes;
  std::u16string whole = whole_text(GetParam(), true);
  char16_t* const end = fold_surrogate_pairs(whole.data(), whole.data() + whole.size());
  whole.resize(static_cast<std::size_t>(end - whole.data()));
  for (std::size_t room = 1; room <= whole.size() + 1; ++room) {
    FileTextSource source;
    source.init_stream(::fmemopen(bytes.data(), bytes.size(), "r"), GetParam().encoding);
    std::u16string text;
    bool is_left = true;
    while (is_left) {
      std::u16string units(room, u'\0');
      const std::size_t count = source.fillBuffer(units.data(), units.data() + room);
      text += units.substr(0, count);
      const bool all_bytes_read = source.getPos() == static_cast<source_pos>(bytes.size());
      is_left = !source.isEoS() && count == room;
      if (all_bytes_read) {
        EXPECT_EQ(source.isEoS(), text.size() == whole.size()) << "room " << room;
      }
    }
    ASSERT_EQ(readable(text), readable(whole)) << "room " << room;
  }
}

INSTANTIATE_TEST_SUITE_P(Names, EveryEncoding, testing::ValuesIn(texts_in_all_encodings()),
                         [](const auto& tested) { return "Row" + std::to_string(tested.index); });

// Former bug: the last character was lost if the file ended with a full buffer.
TEST(IsciiText, HasItsLastCharacterAfterAFullBuffer) {
  std::string bytes(TextStream::kBufferUnits + 1, 'a');
  FileTextSource source;
  source.init_stream(::fmemopen(bytes.data(), bytes.size(), "r"), "ISCII,version=0");
  const TextStream text(&source);
  EXPECT_EQ(text.find_first_pos_of(TextStream::kEnd, 0), bytes.size());
}

}  // namespace
}  // namespace textio::standalone
