#include <vltextstream/layout/input_text.hpp>

#include <cerrno>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include "support/archives.hpp"
#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::gzip_of;
using testing_support::TempFolder;

constexpr std::size_t kHead = 65'536;  // bytes that are examined first

// `count` bytes of a table in ASCII.
std::string ascii(std::size_t count) {
  std::string bytes;
  bytes.reserve(count);
  while (bytes.size() < count) bytes += "12,ab\n";
  bytes.resize(count);
  return bytes;
}

// --- the encoding of what follows the head ------------------------------------------------------

struct RestCase {
  const char* rule;
  std::size_t head;  // bytes of ASCII before the rest
  std::string rest;
  std::string encoding;
  std::size_t ill_formed;
  std::u16string end;  // of the sample
};
std::ostream& operator<<(std::ostream& out, const RestCase& row) { return out << row.rule; }

const std::string kWord =
    "\nM\xFCller, Gr\xFC\xDF"
    "e\n";
const std::u16string kWordRead = u"\nM\u00fcller, Gr\u00fc\u00dfe\n";

const RestCase kRests[] = {
    {"AsciiAlone", 3 * kHead, "x", "UTF-8", 0, u"x"},
    {"Utf8RightAfterTheHead", kHead, "\xC3\xA9!", "UTF-8", 0, u"\u00e9!"},
    {"Utf8CutByTheHead", kHead - 1, "\xC3\xA9!", "UTF-8", 0, u"\u00e9!"},
    {"LegacyRightAfterTheHead", kHead, kWord, "windows-1252", 0, kWordRead},
    {"LegacyInTheNextChunk", kHead + 77, kWord, "windows-1252", 0, kWordRead},
    {"LegacyFarAfterTheHead", 5 * kHead + 77, kWord, "windows-1252", 0, kWordRead},
    {"LegacyInTheHead", kHead - 100, kWord, "windows-1252", 0, kWordRead},
    {"Utf8FirstThenADamagedPart", kHead, "\xC3\xA9\n" + ascii(kHead) + "\xC3!\n", "UTF-8", 1,
     u"\uFFFD!\n"},
    {"Utf8InTheHeadThenADamagedPart", 100, "\xC3\xA9\n" + ascii(kHead) + "\xC3!\n", "UTF-8", 1,
     u"\uFFFD!\n"},
};

class InputTextAfterTheHead : public testing::TestWithParam<RestCase> {};

TEST_P(InputTextAfterTheHead, IsReadInTheEncodingThatFitsIt) {
  const RestCase& row = GetParam();
  const TempFolder folder;
  const DetectSettings settings;
  const InputText input(folder.file("t", ascii(row.head) + row.rest), settings);
  EXPECT_EQ(input.encoding().name, row.encoding);
  EXPECT_EQ(input.ill_formed_parts(), row.ill_formed);
  // A text with ill-formed parts is not proved to be UTF-8.
  const bool is_proved = input.encoding().found == EncodingFound::valid_utf8;
  EXPECT_EQ(is_proved, row.encoding == "UTF-8" && row.ill_formed == 0);
  EXPECT_EQ(input.encoding().confidence == 1.0, is_proved);
  const std::u16string_view sample(input.sample().data, input.sample().length);
  ASSERT_GE(sample.size(), row.end.size());
  EXPECT_TRUE(sample.substr(sample.size() - row.end.size()) == row.end);
}

INSTANTIATE_TEST_SUITE_P(Table, InputTextAfterTheHead, testing::ValuesIn(kRests), ByRule());

// --- a given encoding is not questioned ---------------------------------------------------------

TEST(InputTextEncoding, ThatIsGivenIsKeptWhateverTheBytes) {
  const TempFolder folder;
  const std::string path = folder.file("t", "\xC3!");
  DetectSettings settings;
  settings.encoding = "UTF-8";
  const InputText input(path, settings);
  EXPECT_EQ(input.encoding().found, EncodingFound::given);
  EXPECT_EQ(input.encoding().confidence, 1.0);
  EXPECT_EQ(input.ill_formed_parts(), 1U);
}

TEST(InputTextEncoding, OfTheOptionsIsTakenUnlessItIsTheDefault) {
  const TempFolder folder;
  const std::string path = folder.file("t", "caf\xE9");
  DetectSettings settings;
  settings.options.encoding = u"ISO-8859-1";
  EXPECT_EQ(InputText(path, settings).encoding().found, EncodingFound::given);
  settings.options.encoding = u"UTF-8";
  EXPECT_NE(InputText(path, settings).encoding().found, EncodingFound::given);
}

TEST(InputTextSample, TellsWhetherTheTextGoesOn) {
  const TempFolder folder;
  const DetectSettings settings;
  EXPECT_FALSE(InputText(folder.file("short", "a,b\n1,2\n"), settings).has_more_text());
  EXPECT_FALSE(InputText(folder.file("empty", ""), settings).has_more_text());
  EXPECT_TRUE(InputText(folder.file("long", ascii(5'000'000)), settings).has_more_text());
  // When the first line is longer than any sample, the sample is empty.
  const std::string one_line(5'000'000, 'x');
  const InputText endless(folder.file("endless", one_line), settings);
  EXPECT_EQ(endless.sample().length, 0U);
  EXPECT_TRUE(endless.has_more_text());
}

// --- from memory --------------------------------------------------------------------------------

std::u16string sample_of(const InputText& input) {
  return {input.sample().data, input.sample().length};
}

TEST(InputTextFromMemory, IsReadAsAFileIs) {
  const TempFolder folder;
  const DetectSettings settings;
  for (const RestCase& row : kRests) {
    const std::string bytes = ascii(row.head) + row.rest;
    const InputText of_file(folder.file("t", bytes), settings);
    const InputText of_bytes(FileContent{bytes}, settings);
    EXPECT_EQ(of_bytes.encoding().name, of_file.encoding().name) << row.rule;
    EXPECT_EQ(of_bytes.encoding().confidence, of_file.encoding().confidence) << row.rule;
    EXPECT_EQ(of_bytes.ill_formed_parts(), of_file.ill_formed_parts()) << row.rule;
    EXPECT_TRUE(sample_of(of_bytes) == sample_of(of_file)) << row.rule;
  }
}

TEST(InputTextFromMemory, IsUnpackedUnlessItIsPlain) {
  const DetectSettings settings;
  const std::string packed = gzip_of("1,2\n");
  EXPECT_TRUE(sample_of(InputText(FileContent{packed}, settings)) == u"1,2\n");
  EXPECT_FALSE(sample_of(InputText(PlainBytes{packed}, settings)) == u"1,2\n");
}

// --- failures -----------------------------------------------------------------------------------

std::string problem_with(const std::string& path) {
  try {
    const DetectSettings settings;
    const InputText input(path, settings);
    return "";
  } catch (const FileError& error) {
    return error.what();
  }
}

TEST(InputTextProblem, NamesTheFileAndTheReason) {
  const TempFolder folder;
  const std::string none = folder.path_of("none");
  EXPECT_EQ(problem_with(none), "cannot open '" + none + "': No such file or directory");
  EXPECT_EQ(problem_with(folder.path()), "cannot open '" + folder.path() + "': Is a directory");
  EXPECT_EQ(problem_with(""), "cannot open '': No such file or directory");
}

// The memory of a process can be opened, but not read at its start.
TEST(InputTextProblem, OfAReadHasTheReasonOfTheSystem) {
  EXPECT_EQ(problem_with("/proc/self/mem"), "cannot read '/proc/self/mem': Input/output error");
}

}  // namespace
}  // namespace textio::standalone
