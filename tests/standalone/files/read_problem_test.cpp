// The messages for inputs that cannot be read.
#include <vltextstream/standalone/files/read_problem.hpp>

#include <gtest/gtest.h>

#include <cerrno>
#include <ostream>
#include <string>

#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;

struct ProblemCase {
  const char* rule;
  int error;
  std::string words;
};
std::ostream& operator<<(std::ostream& out, const ProblemCase& row) { return out << row.rule; }

const ProblemCase kProblems[] = {
    {"Damaged", kDataDamaged, "the compressed data are damaged"},
    {"TooShort", kDataEndTooEarly, "the compressed data end too early"},
    {"Window", kDataNeedMoreMemory, "the compressed data need a window of more than 128 MiB"},
    {"Dictionary", kDataNeedADictionary, "the compressed data need a dictionary"},
    {"StandardInput", kStandardInputIsGone, "standard input has been read already"},
    {"Bzip2", kFormatBzip2,
     "it is compressed with bzip2, which is not read here; decompress it first"},
    {"Lz4", kFormatLz4, "it is compressed with lz4, which is not read here; decompress it first"},
    {"Xz", kFormatXz, "it is compressed with xz, which is not read here; decompress it first"},
    {"Zip", kFormatZip, "it is a zip archive, which is not read here; unpack it first"},
    {"Twice", kCompressedTwice, "it is compressed more than once; decompress it first"},
    {"OfTheSystem", ENOENT, "No such file or directory"},
    {"DiskWithoutData", ENODATA, "No data available"},
};

class ReadProblemOf : public testing::TestWithParam<ProblemCase> {};
TEST_P(ReadProblemOf, IsSaidInWords) {
  EXPECT_EQ(read_problem(GetParam().error), GetParam().words);
}
INSTANTIATE_TEST_SUITE_P(Table, ReadProblemOf, testing::ValuesIn(kProblems), ByRule());

TEST(ReadProblemNumbers, AreNoneOfASystemCall) { EXPECT_GT(kDataDamaged, 4095); }

}  // namespace
}  // namespace textio::standalone
