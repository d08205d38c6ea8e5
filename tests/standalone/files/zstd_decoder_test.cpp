// Rules of zstd alone; the rules for every format are in compressed_stream_test.cpp.
#include <vltextstream/standalone/files/zstd_decoder.hpp>

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
using testing_support::read_all;
using testing_support::ScriptedBytes;
using testing_support::skippable_frame;
using testing_support::zstd_of;
using testing_support::ZstdSettings;

AllRead decoded(const std::string& archive, std::size_t piece = std::string::npos) {
  auto bytes = std::make_unique<ScriptedBytes>(archive);
  bytes->piece = piece;
  CompressedStream stream(std::move(bytes), std::make_unique<ZstdDecoder>());
  return read_all(stream, 100);
}

const std::string kText = "x,y\n1,2\n3,4\n";
const std::string kMagic = "\x28\xB5\x2F\xFD"s;
// A last block with three raw bytes.
const std::string kRawBlock =
    "\x19\x00\x00"
    "abc"s;

// Window descriptors: the upper five bits are the exponent minus 10.
const std::string kWindowOf128MiB = "\x88"s;
const std::string kWindowOf256MiB = "\x90"s;
const std::string kWindowOf2TiB = "\xF8"s;

struct ArchiveCase {
  const char* rule;
  std::string archive;
  std::string text;
  int error;
};
std::ostream& operator<<(std::ostream& out, const ArchiveCase& row) { return out << row.rule; }

const ArchiveCase kArchives[] = {
    {"WithoutLength", zstd_of(kText, {true, false}), kText, 0},
    {"WithoutChecksum", zstd_of(kText, {false, true}), kText, 0},
    {"WithNeither", zstd_of(kText, {false, false}), kText, 0},
    {"SkippableFrameBefore", skippable_frame("index") + zstd_of(kText), kText, 0},
    {"SkippableFrameAfter", zstd_of(kText) + skippable_frame("index"), kText, 0},
    {"SkippableFrameBetween", zstd_of(kText) + skippable_frame("index") + zstd_of(kText),
     kText + kText, 0},
    {"EmptySkippableFrame", zstd_of(kText) + skippable_frame("") + zstd_of(kText), kText + kText,
     0},
    {"LongSkippableFrame", skippable_frame(std::string(200'000, 'x')) + zstd_of(kText), kText, 0},
    {"OnlySkippableFrames", skippable_frame("a") + skippable_frame("b"), "", 0},
    {"SkippableFrameCutOff", zstd_of(kText) + skippable_frame("index").substr(0, 10), kText,
     kDataEndTooEarly},
    {"MagicAlone", kMagic, "", kDataEndTooEarly},
    {"Nothing", "", "", 0},
    {"ZerosAfterIt", zstd_of(kText) + std::string(512, '\0'), kText, kDataDamaged},
    {"ReservedBitOfTheHeader", kMagic + "\x08\x38"s + kRawBlock, "", kDataDamaged},
    {"ReservedKindOfBlock", kMagic + "\x00\x38\x07\x00\x00"s, "", kDataDamaged},
    {"WrongChecksum", zstd_of(kText).substr(0, zstd_of(kText).size() - 1) + "?", kText,
     kDataDamaged},
    {"LargestWindow", kMagic + '\0' + kWindowOf128MiB + kRawBlock, "abc", 0},
    {"WindowTooLarge", kMagic + '\0' + kWindowOf256MiB + kRawBlock, "", kDataNeedMoreMemory},
    {"AbsurdWindow", kMagic + '\0' + kWindowOf2TiB + kRawBlock, "", kDataNeedMoreMemory},
    {"NamedDictionary", kMagic + "\x01\x38\x05"s + kRawBlock, "", kDataNeedADictionary},
};

class ZstdArchive : public testing::TestWithParam<ArchiveCase> {};
TEST_P(ZstdArchive, IsReadOrRefused) {
  for (const std::size_t piece : {std::size_t{1}, std::size_t{5}, std::string::npos}) {
    const AllRead all = decoded(GetParam().archive, piece);
    EXPECT_EQ(all.error, GetParam().error) << piece;
    // The text before the error may be delivered or not.
    EXPECT_EQ(all.text,
              GetParam().text.substr(0, all.error == 0 ? std::string::npos : all.text.size()))
        << piece;
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ZstdArchive, testing::ValuesIn(kArchives), ByRule());

TEST(ZstdWindow, OfALongDistanceIsRead) {
  const std::string far(3 << 20, 'x');
  const std::string text = kText + far + kText;
  ZstdSettings settings;
  settings.window_log = ZstdDecoder::kLargestWindowLog;
  settings.content_size = false;
  CompressedStream stream(std::make_unique<ScriptedBytes>(zstd_of(text, settings)),
                          std::make_unique<ZstdDecoder>());
  EXPECT_TRUE(read_all(stream, 65'536).text == text);
}

}  // namespace
}  // namespace textio::standalone
