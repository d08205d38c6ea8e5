// Compression formats are recognised by their first bytes.
#include <vltextstream/standalone/files/compression_format.hpp>

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "support/archives.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using namespace std::string_literals;
using Format = CompressionFormat;
using testing_support::ByRule;

struct HeadCase {
  const char* rule;
  std::string head;
  Format format;
};
std::ostream& operator<<(std::ostream& out, const HeadCase& row) { return out << row.rule; }

const HeadCase kHeads[] = {
    {"Nothing", "", Format::none},
    {"Text", "x,y\n1,2\n", Format::none},
    {"Zeros", std::string(10, '\0'), Format::none},

    {"GzipWithoutFlags", "\x1F\x8B\x08\x00\x00\x00\x00\x00\x00\x03"s, Format::gzip},
    {"GzipWithEveryKnownFlag", "\x1F\x8B\x08\x1F\x01\x02\x03\x04\x02\xFF"s, Format::gzip},
    {"GzipWithAReservedFlag", "\x1F\x8B\x08\x20\x00\x00\x00\x00\x00\x03"s, Format::none},
    {"GzipOfAnotherMethod", "\x1F\x8B\x07\x00\x00\x00\x00\x00\x00\x03"s, Format::none},
    {"TextThatStartsLikeGzip", "\x1F\x8B,1,2\n3,4"s, Format::none},
    {"GzipCutAfterTheMethod", "\x1F\x8B\x08"s, Format::gzip},
    {"GzipCutAfterTheMagic", "\x1F\x8B"s, Format::gzip},
    {"OneByteOfGzip", "\x1F"s, Format::none},

    {"Zstd", "\x28\xB5\x2F\xFD\x04\x00"s, Format::zstd},
    {"ZstdCutInTheMagic", "\x28\xB5\x2F"s, Format::zstd},
    {"ZstdCutToTwoBytes", "\x28\xB5"s, Format::zstd},
    {"ParenthesisAlone", "("s, Format::none},
    {"ParenthesisAndMicroSign", "(\xB5g),(m)"s, Format::none},
    {"FirstSkippableFrame", "\x50\x2A\x4D\x18\x00\x00\x00\x00"s, Format::zstd},
    {"LastSkippableFrame", "\x5F\x2A\x4D\x18\x00\x00\x00\x00"s, Format::zstd},
    {"NoSkippableFrame", "\x60\x2A\x4D\x18\x00\x00\x00\x00"s, Format::none},
    {"TextThatStartsLikeASkippableFrame", "P*M,Q\n"s, Format::none},
    {"TextOfTwoLettersOfASkippableFrame", "P*"s, Format::none},

    {"Bzip2", "BZh9\x31\x41\x59\x26\x53\x59"s, Format::bzip2},
    {"Bzip2OfNothing", "BZh1\x17\x72\x45\x38\x50\x90"s, Format::bzip2},
    {"TextThatStartsLikeBzip2", "BZh9,a,b\n1"s, Format::none},
    {"ShortTextThatStartsLikeBzip2", "BZh9"s, Format::none},
    {"Xz", "\xFD\x37\x7A\x58\x5A\x00\x00\x04\xE6\xD6"s, Format::xz},
    {"TextThatStartsLikeXz", "\xFD\x37zXZ,1,2\n"s, Format::none},
    {"Lz4", "\x04\x22\x4D\x18\x64\x40"s, Format::lz4},
    {"Zip", "PK\x03\x04\x14\x00"s, Format::zip},
    {"ZipOfNothing", "PK\x05\x06\x00\x00"s, Format::zip},
    {"TextThatStartsLikeZip", "PK,value\n"s, Format::none},
    {"TextOfTheLettersOfZip", "PK"s, Format::none},
};

class CompressionFormatOf : public testing::TestWithParam<HeadCase> {};
TEST_P(CompressionFormatOf, IsRecognisedByTheFirstBytes) {
  EXPECT_EQ(compression_format(GetParam().head), GetParam().format);
}
INSTANTIATE_TEST_SUITE_P(Table, CompressionFormatOf, testing::ValuesIn(kHeads), ByRule());

TEST(CompressionFormatOfArchives, IsKnown) {
  using testing_support::gzip_of;
  using testing_support::zstd_of;
  EXPECT_EQ(compression_format(gzip_of("x,y\n").substr(0, kFormatBytes)), Format::gzip);
  EXPECT_EQ(compression_format(zstd_of("x,y\n").substr(0, kFormatBytes)), Format::zstd);
}

}  // namespace
}  // namespace textio::standalone
