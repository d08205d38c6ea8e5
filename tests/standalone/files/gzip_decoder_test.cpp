// Rules of gzip alone; the rules for every format are in compressed_stream_test.cpp.
#include <vltextstream/standalone/files/gzip_decoder.hpp>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

#include <vltextstream/standalone/files/read_problem.hpp>
#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/scripted_bytes.hpp"

namespace textio::standalone {
namespace {

using namespace std::string_literals;
using testing_support::AllRead;
using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::read_all;
using testing_support::ScriptedBytes;

AllRead decoded(const std::string& archive, std::size_t piece = std::string::npos) {
  auto bytes = std::make_unique<ScriptedBytes>(archive);
  bytes->piece = piece;
  CompressedStream stream(std::move(bytes), std::make_unique<GzipDecoder>());
  return read_all(stream, 100);
}

const std::string kText = "x,y\n1,2\n3,4\n";

// Made by hand: the header, "abc" in a stored block, its CRC-32 0x352441C2 and its length.
const std::string kHeader = "\x1F\x8B\x08\x00\x00\x00\x00\x00\x00\x03"s;
const std::string kStored =
    "\x01\x03\x00\xFC\xFF"
    "abc"s;
const std::string kTrailer = "\xC2\x41\x24\x35\x03\x00\x00\x00"s;

struct ArchiveCase {
  const char* rule;
  std::string archive;
  std::string text;
  int error;
};
std::ostream& operator<<(std::ostream& out, const ArchiveCase& row) { return out << row.rule; }

const ArchiveCase kArchives[] = {
    {"MadeByHand", kHeader + kStored + kTrailer, "abc", 0},
    {"WrongChecksum", kHeader + kStored + "\xC2\x41\x24\x34\x03\x00\x00\x00"s, "abc", kDataDamaged},
    {"WrongLength", kHeader + kStored + "\xC2\x41\x24\x35\x04\x00\x00\x00"s, "abc", kDataDamaged},
    {"ReservedKindOfBlock", kHeader + "\x07", "", kDataDamaged},
    {"MagicAlone", "\x1F\x8B"s, "", kDataEndTooEarly},
    {"MagicAndMethodAlone", "\x1F\x8B\x08"s, "", kDataEndTooEarly},
    {"HeaderAlone", kHeader, "", kDataEndTooEarly},
    {"ReservedFlag", "\x1F\x8B\x08\x20\x00\x00\x00\x00\x00\x03"s + kStored + kTrailer, "",
     kDataDamaged},
    {"Nothing", "", "", 0},

    {"ZeroAfterIt", gzip_of(kText) + '\0', kText, 0},
    {"ManyZerosAfterIt", gzip_of(kText) + std::string(200'000, '\0'), kText, 0},
    {"ZerosAfterTwoMembers", gzip_of(kText) + gzip_of(kText) + std::string(512, '\0'),
     kText + kText, 0},
    {"OtherBytesAfterTheZeros", gzip_of(kText) + std::string(512, '\0') + "x", kText, kDataDamaged},
    {"MemberAfterTheZeros", gzip_of(kText) + std::string(512, '\0') + gzip_of(kText), kText,
     kDataDamaged},
    {"ZerosBefore", std::string(512, '\0') + gzip_of(kText), "", kDataDamaged},
    {"HalfAMagicAfterIt", gzip_of(kText) + "\x1F", kText, kDataEndTooEarly},
};

class GzipArchive : public testing::TestWithParam<ArchiveCase> {};
TEST_P(GzipArchive, IsReadOrRefused) {
  for (const std::size_t piece : {std::size_t{1}, std::size_t{5}, std::string::npos}) {
    const AllRead all = decoded(GetParam().archive, piece);
    EXPECT_EQ(all.text, GetParam().text) << piece;
    EXPECT_EQ(all.error, GetParam().error) << piece;
  }
}
INSTANTIATE_TEST_SUITE_P(Table, GzipArchive, testing::ValuesIn(kArchives), ByRule());

// A header may have a name, a comment, extra data and a checksum of its own.
std::string with_every_field() {
  Bytef extra[] = "extra data";
  Bytef name[] = "table.csv";
  Bytef comment[] = "two columns";
  gz_header header = {};
  header.extra = extra;
  header.extra_len = sizeof extra;
  header.name = name;
  header.comment = comment;
  header.hcrc = 1;
  return gzip_of(kText, &header);
}

TEST(GzipHeader, MayHaveEveryField) {
  for (const std::size_t piece : {1U, 7U, 1000U}) {
    const AllRead all = decoded(with_every_field(), piece);
    EXPECT_EQ(all.text, kText);
    EXPECT_EQ(all.error, 0);
  }
}

TEST(GzipHeader, WithItsOwnChecksumIsReadUndamagedOrNotAtAll) {
  const std::string archive = with_every_field();
  const std::size_t header_size = archive.find("two columns") + 12 + 2;
  for (std::size_t bit = 0; bit < 8 * header_size; ++bit) {
    std::string damaged = archive;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
    EXPECT_NE(decoded(damaged).error, 0) << bit;
  }
}

// Time, extra flags, operating system and the flag for text data have no effect. All other bits of
// a plain header matter.
TEST(GzipHeader, OfTheUsualKindHasBitsThatSayNothing) {
  const std::string archive = kHeader + kStored + kTrailer;
  for (std::size_t bit = 0; bit < 8 * kHeader.size(); ++bit) {
    std::string changed = archive;
    changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << (bit % 8)));
    const bool is_remark = bit / 8 >= 4 || bit == 8 * 3;
    const AllRead all = decoded(changed);
    EXPECT_EQ(all.error == 0, is_remark) << bit;
    EXPECT_EQ(all.text, is_remark ? "abc" : all.text) << bit;
  }
}

// After the header each bit matters, except the padding of the last byte of the compressed data. In
// a stored block, which starts on a byte, these are the five bits after its first three.
TEST(GzipData, HaveNoOtherBitsThatSayNothing) {
  const std::string archive = kHeader + kStored + kTrailer;
  for (std::size_t bit = 8 * kHeader.size(); bit < 8 * archive.size(); ++bit) {
    std::string changed = archive;
    changed[bit / 8] = static_cast<char>(changed[bit / 8] ^ (1 << (bit % 8)));
    const bool is_filling = bit >= 8 * kHeader.size() + 3 && bit < 8 * kHeader.size() + 8;
    EXPECT_EQ(decoded(changed).error == 0, is_filling) << bit;
  }
}

TEST(GzipMember, MayEndAtAnyPlaceOfABlockOfTheStream) {
  constexpr std::size_t kBlock = CompressedStream::kBlockBytes;
  const std::string second = gzip_of(kText);
  for (std::size_t end = kBlock - 3; end <= kBlock + 3; ++end) {
    std::string name(end - kHeader.size() - kStored.size() - kTrailer.size() - 1, 'n');
    const std::string first =
        "\x1F\x8B\x08\x08\x00\x00\x00\x00\x00\x03"s + name + '\0' + kStored + kTrailer;
    ASSERT_EQ(first.size(), end);
    const AllRead all = decoded(first + second);
    EXPECT_EQ(all.text, "abc" + kText);
    EXPECT_EQ(all.error, 0);
  }
}

}  // namespace
}  // namespace textio::standalone
