// Compressed data as a stream: the same rules for every format.
#include <vltextstream/standalone/files/compressed_stream.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <numeric>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <vltextstream/standalone/files/gzip_decoder.hpp>
#include <vltextstream/standalone/files/read_problem.hpp>
#include <vltextstream/standalone/files/zstd_decoder.hpp>
#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/scripted_bytes.hpp"

namespace textio::standalone {
namespace {

using testing_support::AllRead;
using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::little_endian;
using testing_support::read_all;
using testing_support::ScriptedBytes;
using testing_support::zstd_of;

struct Codec {
  const char* rule;
  std::string (*compress)(std::string_view text);
  std::unique_ptr<Decoder> (*decoder)();

  CompressedStream stream(std::unique_ptr<ByteStream> archive) const {
    return {std::move(archive), decoder()};
  }
  CompressedStream stream(const std::string& archive, std::size_t piece = std::string::npos) const {
    auto bytes = std::make_unique<ScriptedBytes>(archive);
    bytes->piece = piece;
    return stream(std::move(bytes));
  }
};
std::ostream& operator<<(std::ostream& out, const Codec& codec) { return out << codec.rule; }

const Codec kCodecs[] = {
    {"Gzip", [](std::string_view text) { return gzip_of(text); },
     []() -> std::unique_ptr<Decoder> { return std::make_unique<GzipDecoder>(); }},
    {"Zstd", [](std::string_view text) { return zstd_of(text); },
     []() -> std::unique_ptr<Decoder> { return std::make_unique<ZstdDecoder>(); }},
};

// Lines of numbers that do not repeat soon, so that the archive is not tiny.
std::string long_text(std::size_t size) {
  std::mt19937 random(7);
  std::string text;
  while (text.size() < size) text += std::to_string(random()) + (random() % 5 == 0 ? "\n" : ",");
  text.resize(size);
  return text;
}

const std::string kShort = "day;place;value\n2024-03-01;north;1,5\n2024-03-02;south;2,25\n";

class Compressed : public testing::TestWithParam<Codec> {
 protected:
  const Codec& codec_ = GetParam();
};

// --- reading -----------------------------------------------------------------------------------

TEST_P(Compressed, GivesTheTextForAnySplitting) {
  const std::size_t sizes[] = {1, 2, 3, 65'534, 65'535, 65'536, 65'537};
  const std::string text = long_text(140'000);
  const std::string archive = codec_.compress(text);
  ASSERT_GT(archive.size(), CompressedStream::kBlockBytes / 2);
  const auto expect_text = [&](std::size_t piece, std::size_t size) {
    CompressedStream stream = codec_.stream(archive, piece);
    const AllRead all = read_all(stream, size);
    EXPECT_EQ(all.error, 0);
    EXPECT_TRUE(all.text == text) << piece << ' ' << size;
  };
  for (const std::size_t size : sizes) {
    expect_text(size, 65'535);
    expect_text(65'536, size);
    expect_text(size, size);
  }
}

TEST_P(Compressed, GivesShortTexts) {
  for (const std::string& text : {std::string(), std::string("a"), kShort}) {
    CompressedStream stream = codec_.stream(codec_.compress(text));
    const AllRead all = read_all(stream);
    EXPECT_EQ(all.error, 0);
    EXPECT_EQ(all.text, text);
  }
}

TEST_P(Compressed, GivesTheTextsOfAllMembers) {
  const std::vector<std::string> texts = {"", "ab", "", "", kShort, std::string(70'000, 'x'), ""};
  std::string archive;
  std::string whole;
  for (const std::string& text : texts) {
    archive += codec_.compress(text);
    whole += text;
    for (const std::size_t piece : {1U, 2U, 3U, 65'536U}) {
      CompressedStream stream = codec_.stream(archive, piece);
      const AllRead all = read_all(stream, 1000);
      EXPECT_EQ(all.error, 0);
      EXPECT_EQ(all.text, whole) << piece;
    }
  }
}

TEST_P(Compressed, OfNoBytesIsAskedForNone) {
  CompressedStream stream = codec_.stream(codec_.compress("abc"));
  char none = 'x';
  EXPECT_EQ(stream.read(&none, 0), 0);
  EXPECT_EQ(read_all(stream).text, "abc");
}

// --- seeking -----------------------------------------------------------------------------------

TEST_P(Compressed, GoesToEveryPositionInAnyOrder) {
  const std::string text = long_text(300);
  std::vector<std::size_t> positions(text.size() + 1);
  std::iota(positions.begin(), positions.end(), 0);
  std::shuffle(positions.begin(), positions.end(), std::mt19937(11));
  const std::string archive =
      codec_.compress(text.substr(0, 120)) + codec_.compress(text.substr(120));
  CompressedStream stream = codec_.stream(archive, 7);
  for (const std::size_t position : positions) {
    const auto offset = static_cast<std::int64_t>(position);
    ASSERT_EQ(stream.seek(offset, SEEK_SET), offset);
    char got[5];
    const ssize_t count = stream.read(got, sizeof got);
    EXPECT_EQ(stream.seek(0, SEEK_CUR), offset + count);
    EXPECT_EQ(count == 0, position == text.size());
    EXPECT_EQ(std::string(got, static_cast<std::size_t>(count)),
              text.substr(position, static_cast<std::size_t>(count)));
  }
}

TEST_P(Compressed, GoesToEveryPlaceAsACStream) {
  const std::string text = long_text(100'000);
  auto bytes = std::make_unique<ScriptedBytes>(codec_.compress(text));
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      as_c_stream(std::make_unique<CompressedStream>(std::move(bytes), codec_.decoder())),
      &std::fclose);
  std::mt19937 random(13);
  for (int step = 0; step < 200; ++step) {
    const std::size_t position = random() % text.size();
    ASSERT_EQ(fseeko64(file.get(), static_cast<off64_t>(position), SEEK_SET), 0);
    EXPECT_EQ(std::fgetc(file.get()), text[position]);
    EXPECT_EQ(ftello64(file.get()), static_cast<off64_t>(position) + 1);
  }
  EXPECT_EQ(fseeko64(file.get(), -10, SEEK_END), 0);
  EXPECT_EQ(ftello64(file.get()), 99'990);
  char rest[20];
  EXPECT_EQ(std::string(rest, std::fread(rest, 1, sizeof rest, file.get())), text.substr(99'990));
}

struct SeekCase {
  const char* what;
  std::int64_t offset;
  int whence;
  std::int64_t position;  // -1: refused, and the stream stays at 3
  std::string rest;
};

const SeekCase kSeeks[] = {
    {"from the start", 6, SEEK_SET, 6, "gh"},
    {"back to the start", 0, SEEK_SET, 0, "abcdefgh"},
    {"forward", 2, SEEK_CUR, 5, "fgh"},
    {"back", -2, SEEK_CUR, 1, "bcdefgh"},
    {"nowhere", 0, SEEK_CUR, 3, "defgh"},
    {"from the end", -1, SEEK_END, 7, "h"},
    {"to the end", 0, SEEK_END, 8, ""},
    {"past the end", 3, SEEK_END, 11, ""},
    {"past the end at once", 99, SEEK_SET, 99, ""},
    {"before the start", -4, SEEK_CUR, -1, "defgh"},
    {"before the start from the end", -9, SEEK_END, -1, "defgh"},
};

TEST_P(Compressed, SeeksAsAFileDoes) {
  for (const SeekCase& row : kSeeks) {
    CompressedStream stream = codec_.stream(codec_.compress("abc") + codec_.compress("defgh"));
    char head[3];
    ASSERT_EQ(stream.read(head, sizeof head), 3);
    EXPECT_EQ(stream.seek(row.offset, row.whence), row.position) << row.what;
    EXPECT_EQ(read_all(stream).text, row.rest) << row.what;
  }
}

TEST_P(Compressed, DoesNotGoBackWhereItsArchiveCannot) {
  auto bytes = std::make_unique<ScriptedBytes>(codec_.compress("abcdefgh"));
  bytes->goes_back = false;
  CompressedStream stream = codec_.stream(std::move(bytes));
  char head[3];
  ASSERT_EQ(stream.read(head, sizeof head), 3);
  EXPECT_EQ(stream.seek(2, SEEK_SET), -1);
  EXPECT_EQ(errno, ESPIPE);
  EXPECT_EQ(read_all(stream).text, "defgh");
}

// --- damage ------------------------------------------------------------------------------------

// An archive that is cut off between two members is a shorter valid archive.
TEST_P(Compressed, CutOffAnywhereElseEndsTooEarly) {
  const std::string first = codec_.compress(kShort);
  const std::string archive = first + codec_.compress("more");
  for (std::size_t size = 1; size < archive.size(); ++size) {
    CompressedStream stream = codec_.stream(archive.substr(0, size));
    const AllRead all = read_all(stream, 10);
    const bool is_whole = size == first.size();
    EXPECT_EQ(all.error, is_whole ? 0 : kDataEndTooEarly) << size;
    EXPECT_EQ(all.text, (kShort + "more").substr(0, all.text.size())) << size;
    if (is_whole) {
      EXPECT_EQ(all.text, kShort);
    }
  }
}

TEST_P(Compressed, WithOneWrongBitIsTheSameTextOrAnError) {
  const std::string archive = codec_.compress(kShort) + codec_.compress("more");
  for (std::size_t bit = 0; bit < 8 * archive.size(); ++bit) {
    std::string damaged = archive;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
    CompressedStream stream = codec_.stream(damaged);
    const AllRead all = read_all(stream, 10);
    if (all.error == 0) {
      EXPECT_EQ(all.text, kShort + "more") << bit;
    }
  }
}

TEST_P(Compressed, FollowedByOtherBytesIsDamaged) {
  for (const char* foreign : {"x", "x,y\n1,2\n", "PK\3\4 and more"}) {
    CompressedStream stream = codec_.stream(codec_.compress(kShort) + foreign);
    const AllRead all = read_all(stream);
    EXPECT_EQ(all.text, kShort);
    EXPECT_NE(all.error, 0) << foreign;
  }
}

TEST_P(Compressed, ReportsDamageEachTime) {
  const std::string archive = codec_.compress(kShort);
  CompressedStream stream = codec_.stream(archive.substr(0, archive.size() - 1));
  for (int round = 0; round < 3; ++round) {
    const AllRead all = read_all(stream);
    EXPECT_EQ(all.error, kDataEndTooEarly);
    EXPECT_EQ(read_all(stream).error, kDataEndTooEarly) << "without going back";
    EXPECT_EQ(stream.seek(0, SEEK_SET), 0);
  }
}

TEST_P(Compressed, StaysWhereItIsWhenTheEndCannotBeFound) {
  const std::string archive = codec_.compress(kShort);
  CompressedStream stream = codec_.stream(archive.substr(0, archive.size() - 1));
  char head[3];
  ASSERT_EQ(stream.read(head, sizeof head), 3);
  EXPECT_EQ(stream.seek(0, SEEK_END), -1);
  EXPECT_EQ(errno, kDataEndTooEarly);
  EXPECT_EQ(stream.seek(0, SEEK_CUR), 3);
  ASSERT_EQ(stream.read(head, sizeof head), 3);
  EXPECT_EQ(std::string(head, sizeof head), kShort.substr(3, 3));
}

TEST_P(Compressed, HandsOnTheErrorsOfItsArchive) {
  auto bytes = std::make_unique<ScriptedBytes>(codec_.compress(kShort));
  bytes->fails_at = 30;
  bytes->error = ENXIO;
  CompressedStream stream = codec_.stream(std::move(bytes));
  EXPECT_EQ(read_all(stream).error, ENXIO);
}

INSTANTIATE_TEST_SUITE_P(Formats, Compressed, testing::ValuesIn(kCodecs), ByRule());

// --- long texts --------------------------------------------------------------------------------

// A frame of 2^15 + 1 blocks, each of which means "this byte, 131,072 times".
std::string frame_of_zeros(std::size_t blocks) {
  constexpr std::size_t kBlockBytes = 131'072;
  constexpr std::size_t kRepeatedByte = 1 << 1;
  std::string frame("\x28\xB5\x2F\xFD\x00\x38", 6);  // no length, a window of 2^17 bytes
  for (std::size_t block = 1; block <= blocks; ++block) {
    const std::size_t is_last = block == blocks ? 1 : 0;
    frame += little_endian(kBlockBytes << 3 | kRepeatedByte | is_last).substr(0, 3) + '\0';
  }
  return frame;
}

TEST(CompressedTextOfMoreThan4GB, IsCountedInFull) {
  CompressedStream stream = kCodecs[1].stream(frame_of_zeros(32'769) + zstd_of("end"));
  constexpr std::int64_t kZeros = 32'769LL * 131'072;
  static_assert(kZeros > (std::int64_t{1} << 32));
  EXPECT_EQ(stream.seek(kZeros, SEEK_SET), kZeros);
  EXPECT_EQ(read_all(stream).text, "end");
  EXPECT_EQ(stream.seek(0, SEEK_CUR), kZeros + 3);
}

}  // namespace
}  // namespace textio::standalone
