#include <vltextstream/layout/text_prefix.hpp>

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include <vltextstream/detection/fixed_stream.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include <vltextstream/source/text_stream.hpp>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

// --- the length of the first prefix --------------------------------------------------------------

constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();

struct FirstCase {
  const char* rule;
  std::size_t num_lines;
  bool header_is_given;
  std::size_t header_lines;
  std::size_t units;
};
std::ostream& operator<<(std::ostream& out, const FirstCase& row) { return out << row.rule; }

const FirstCase kFirstCases[] = {
    {"OfAnOrdinaryBudget", 100, false, 0, 65'536},
    {"OfNoLine", 0, false, 0, 65'536},
    {"OfAsManyLinesAsCanBeInIt", 65'536, false, 0, 65'536},
    {"OfOneLineMore", 65'537, false, 0, 524'288},
    {"OfMoreLinesThanTheNextCanHold", 524'289, false, 0, 4'194'304},
    {"GivenHeaderLinesComeOnTop", 65'500, true, 37, 524'288},
    {"HeaderLinesToBeFoundDoNot", 65'500, false, 37, 65'536},
    {"AllLinesNeedTheSample", kMost, false, 0, 4'194'304},
    {"HugeNumbersDoNotOverflow", kMost, true, kMost, 33'554'432},
};

class FirstPrefix : public testing::TestWithParam<FirstCase> {};
TEST_P(FirstPrefix, HasRoomForTheLines) {
  const FirstCase& row = GetParam();
  DetectSettings settings;
  settings.num_lines = row.num_lines;
  settings.options.detect_header_lines = !row.header_is_given;
  settings.options.header_lines = row.header_lines;
  EXPECT_EQ(first_prefix_units(settings), row.units);
}
INSTANTIATE_TEST_SUITE_P(Table, FirstPrefix, testing::ValuesIn(kFirstCases), ByRule());

// --- a prefix ------------------------------------------------------------------------------------

struct PrefixCase {
  const char* rule;
  std::u16string text;
  std::size_t units;
  std::size_t length;
  bool is_sample;
};
std::ostream& operator<<(std::ostream& out, const PrefixCase& row) { return out << row.rule; }

// A text of 130 code units with a U+FFFF at `place`.
std::u16string with_end_at(std::size_t place) {
  std::u16string text(130, u'x');
  text[place] = u'\uFFFF';
  return text;
}

const PrefixCase kPrefixCases[] = {
    {"OfAnEmptyTextIsEmpty", u"", 3, 0, true},
    {"OfATextThatEndsInItIsTheText", u"a\nb", 4, 3, true},
    {"OfATextThatEndsWithItIsTheText", u"a\nb", 3, 3, true},
    {"OfATextThatEndsSoonAfterItIsTheText", u"a\nb\nc", 3, 5, true},
    {"OfATextTwiceAsLongIsAPart", u"a\nb\nc\n", 3, 3, false},
    {"MayCutALineEnding", u"a\r\nb\r\n", 2, 2, false},
    {"OfOneCodeUnit", u"ab", 1, 1, false},
    {"WithAnEndMarkEndsThere", u"a\n\uFFFFb\nccccccc", 4, 2, true},
    {"WithAnEndMarkInItsFirstBlock", with_end_at(63), 65, 63, true},
    {"WithAnEndMarkAfterItsBlocks", with_end_at(64), 65, 64, true},
    {"WithAnEndMarkRightAfterIt", with_end_at(65), 65, 65, false},
    {"WithAnEndMarkTwiceAsFar", with_end_at(129), 65, 129, true},
};

class Prefix : public testing::TestWithParam<PrefixCase> {};
TEST_P(Prefix, HasTheFirstCodeUnits) {
  const PrefixCase& row = GetParam();
  const ExactText text(row.text);
  MemoryTextSource source(text.field().data, text.field().length);
  const TextStream stream(&source);
  const TextPrefix prefix = prefix_of(stream, {u"\n"}, row.units);
  EXPECT_EQ(prefix.text.length, row.length);
  EXPECT_EQ(prefix.is_sample, row.is_sample);
  EXPECT_EQ(prefix.text.data, stream.window_begin());
}
INSTANTIATE_TEST_SUITE_P(Table, Prefix, testing::ValuesIn(kPrefixCases), ByRule());

// The sample ends with the first code unit of its last line ending.
TEST(PrefixOfALongText, IsTheSampleFromItsLengthOn) {
  std::u16string text(kSampleUnits + 10, u'x');
  text[1'000] = u'\n';
  MemoryTextSource source(text.data(), text.size());
  const TextStream stream(&source);
  for (const std::size_t units : {kSampleUnits, kPrefixGrowth * kSampleUnits}) {
    const TextPrefix prefix = prefix_of(stream, {u"\n"}, units);
    EXPECT_TRUE(prefix.is_sample);
    EXPECT_EQ(prefix.text.length, 1'001U);
  }
  EXPECT_FALSE(prefix_of(stream, {u"\n"}, kSampleUnits / kPrefixGrowth).is_sample);
}

}  // namespace
}  // namespace textio::standalone
