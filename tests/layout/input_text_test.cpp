#include <vltextstream/layout/input_text.hpp>

#include <cerrno>
#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <vltextstream/detection/fixed_stream.hpp>

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

// The text that the largest sample would have, after the encoding has been settled for all of it.
std::u16string settled_text(InputText& input) {
  const auto sample = [&input] { return input.prefix(kSampleUnits).text; };
  if (!input.confirm_encoding(sample().length)) {
    EXPECT_TRUE(input.confirm_encoding(sample().length)) << "the encoding was changed twice";
  }
  const std::size_t length = input.text().find_first_pos_of(TextStream::kEnd, 0);
  return {input.text().window_begin(), length};
}

// --- the encoding of what follows the head ------------------------------------------------------

struct RestCase {
  const char* rule;
  std::size_t head;  // bytes of ASCII before the rest
  std::string rest;
  std::string encoding;
  std::size_t ill_formed;
  std::u16string end;  // of the text
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
  InputText input(folder.file("t", ascii(row.head) + row.rest), settings);
  const std::u16string text = settled_text(input);
  EXPECT_EQ(input.encoding().name, row.encoding);
  EXPECT_EQ(input.ill_formed_parts(), row.ill_formed);
  // A text with ill-formed parts is not proved to be UTF-8.
  const bool is_proved = input.encoding().found == EncodingFound::valid_utf8;
  EXPECT_EQ(is_proved, row.encoding == "UTF-8" && row.ill_formed == 0);
  EXPECT_EQ(input.encoding().confidence == 1.0, is_proved);
  ASSERT_GE(text.size(), row.end.size());
  EXPECT_TRUE(text.substr(text.size() - row.end.size()) == row.end);
}

INSTANTIATE_TEST_SUITE_P(Table, InputTextAfterTheHead, testing::ValuesIn(kRests), ByRule());

// --- a given encoding is not questioned ---------------------------------------------------------

TEST(InputTextEncoding, ThatIsGivenIsKeptWhateverTheBytes) {
  const TempFolder folder;
  const std::string path = folder.file("t", "\xC3!");
  DetectSettings settings;
  settings.encoding = "UTF-8";
  InputText input(path, settings);
  EXPECT_TRUE(input.confirm_encoding(2));
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

// --- how much of the text counts ----------------------------------------------------------------

struct PartCase {
  const char* rule;
  std::string bytes;
  std::size_t length;  // the first characters of the text, on which an answer rests
  std::string encoding;
  std::size_t ill_formed;
};
std::ostream& operator<<(std::ostream& out, const PartCase& row) { return out << row.rule; }

// "a", U+FFFD as the file has it, and a damaged part, all in UTF-8.
const std::string kReplaced = "a\xEF\xBF\xBD\xC3!";

const PartCase kParts[] = {
    {"BeforeAnyDamage", kReplaced, 1, "UTF-8", 0},
    {"WithAReplacementOfTheFile", kReplaced, 2, "UTF-8", 0},
    {"WithTheDamage", kReplaced, 3, "UTF-8", 1},
    {"BeforeMoreDamage", kReplaced + ascii(kHead) + "\xC3!", kReplaced.size(), "UTF-8", 1},
    {"BeforeALegacyWordNearTheStart", ascii(kHead) + kWord, kHead, "windows-1252", 0},
    {"BeforeALegacyWordFarFromIt", ascii(2 * kHead) + kWord, kHead, "UTF-8", 0},
    {"UpToALegacyLetter", ascii(kHead) + kWord, kHead + 3, "windows-1252", 0},
};

class InputTextPart : public testing::TestWithParam<PartCase> {};

TEST_P(InputTextPart, AloneDecidesAboutTheEncoding) {
  const PartCase& row = GetParam();
  DetectSettings settings;
  if (row.ill_formed > 0 || row.bytes == kReplaced) settings.encoding = "UTF-8";
  for (const std::size_t units : {row.length + 1, kPrefixUnits, 8 * kPrefixUnits}) {
    InputText input(FileContent{row.bytes}, settings);
    input.prefix(units);
    if (!input.confirm_encoding(row.length)) {
      input.prefix(units);
      EXPECT_TRUE(input.confirm_encoding(row.length));
    }
    EXPECT_EQ(input.encoding().name, row.encoding) << units;
    EXPECT_EQ(input.ill_formed_parts(), row.ill_formed) << units;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, InputTextPart, testing::ValuesIn(kParts), ByRule());

// --- from memory --------------------------------------------------------------------------------

TEST(InputTextFromMemory, IsReadAsAFileIs) {
  const TempFolder folder;
  const DetectSettings settings;
  for (const RestCase& row : kRests) {
    const std::string bytes = ascii(row.head) + row.rest;
    InputText of_file(folder.file("t", bytes), settings);
    InputText of_bytes(FileContent{bytes}, settings);
    EXPECT_TRUE(settled_text(of_bytes) == settled_text(of_file)) << row.rule;
    EXPECT_EQ(of_bytes.encoding().name, of_file.encoding().name) << row.rule;
    EXPECT_EQ(of_bytes.encoding().confidence, of_file.encoding().confidence) << row.rule;
    EXPECT_EQ(of_bytes.ill_formed_parts(), of_file.ill_formed_parts()) << row.rule;
  }
}

TEST(InputTextFromMemory, IsUnpackedUnlessItIsPlain) {
  const DetectSettings settings;
  const std::string packed = gzip_of("1,2\n");
  InputText unpacked(FileContent{packed}, settings);
  InputText plain(PlainBytes{packed}, settings);
  EXPECT_TRUE(settled_text(unpacked) == u"1,2\n");
  EXPECT_FALSE(settled_text(plain) == u"1,2\n");
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
