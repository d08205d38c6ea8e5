#include <vltextstream/detection/fixed_stream.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <vltextstream/source/memory_text_source.hpp>
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"
#include "support/scripted_source.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::ScriptedFailure;
using testing_support::ScriptedSource;
using testing_support::text_of;

using Endings = std::vector<std::u16string>;
using Sizes = std::vector<std::size_t>;

constexpr std::size_t kLimit = 4'194'304;
const Endings kUsual = {u"\r\n", u"\n", u"\r"};

struct SampleCase {
  const char* rule;
  std::size_t size;                                             // of a text of 'x' only
  std::vector<std::pair<std::size_t, std::u16string>> written;  // over it, at these positions
  Endings endings;
  std::size_t length;  // of the sample
};
std::ostream& operator<<(std::ostream& out, const SampleCase& row) { return out << row.rule; }

std::u16string text_for(const SampleCase& row) {
  std::u16string text(row.size, u'x');
  for (const auto& [pos, units] : row.written) text.replace(pos, units.size(), units);
  return text;
}

const SampleCase kSampleCases[] = {
    // Short texts are used completely.
    {"Empty", 0, {}, kUsual, 0},
    {"OneUnit", 1, {}, kUsual, 1},
    {"TwoUnits", 2, {}, kUsual, 2},
    {"ThreeUnits", 3, {}, kUsual, 3},
    {"TenUnits", 10, {}, kUsual, 10},
    {"ShortTextIsNotCutAtItsLineEnding", 10, {{4, u"\n"}}, kUsual, 10},
    {"ShortTextNeedsNoEndings", 10, {{4, u"\n"}}, {}, 10},
    {"BelowAPowerOfTwo", 1'023, {}, kUsual, 1'023},
    {"APowerOfTwo", 1'024, {}, kUsual, 1'024},
    {"AboveAPowerOfTwo", 1'025, {}, kUsual, 1'025},
    {"AFullBuffer", 131'072, {}, kUsual, 131'072},
    {"AFullBufferAndOne", 131'073, {}, kUsual, 131'073},
    {"HalfTheLimit", kLimit / 2, {}, kUsual, kLimit / 2},
    {"HalfTheLimitAndOne", kLimit / 2 + 1, {}, kUsual, kLimit / 2 + 1},
    {"OneBelowTheLimit", kLimit - 1, {}, kUsual, kLimit - 1},
    {"TheLimit", kLimit, {{100, u"\n"}}, kUsual, kLimit},

    // An end mark ends a short text, wherever it is.
    {"EndMarkFirst", 10, {{0, u"\uffff"}}, kUsual, 0},
    {"EndMarkSecond", 10, {{1, u"\uffff"}}, kUsual, 1},
    {"EndMarkInTheMiddle", 10, {{4, u"\uffff"}}, kUsual, 4},
    {"EndMarkLast", 10, {{9, u"\uffff"}}, kUsual, 9},
    {"EndMarkTheProbesStepOver", 100, {{3, u"\uffff"}}, kUsual, 3},
    {"EndMarkJustBelowAProbe", 100, {{63, u"\uffff"}}, kUsual, 63},
    {"EndMarkAtAProbe", 100, {{64, u"\uffff"}}, kUsual, 64},
    {"TwoEndMarks", 100, {{90, u"\uffff"}, {17, u"\uffff"}}, kUsual, 17},
    {"EndMarkFarBelowTheLimit", kLimit, {{5, u"\uffff"}}, kUsual, 5},
    {"EndMarkAtTheLimit", kLimit + 10, {{kLimit, u"\uffff"}}, kUsual, kLimit},
    {"EndMarksAtTheLimitAndBefore",
     kLimit + 10,
     {{kLimit, u"\uffff"}, {70, u"\uffff"}},
     kUsual,
     70},

    // A long text is cut directly after the start of its last line ending.
    {"CutAtTheLastLineFeed", 5'000'000, {{100, u"\n"}, {4'194'200, u"\n"}}, kUsual, 4'194'201},
    {"NoLineEnding", 5'000'000, {}, {u"\n"}, 0},
    {"OneUnitBeyondTheLimit", kLimit + 1, {{kLimit - 1, u"\n"}}, kUsual, kLimit},
    {"LineFeedAtTheLimitIsTooLate",
     kLimit + 1,
     {{kLimit - 3, u"\n"}, {kLimit, u"\n"}},
     kUsual,
     kLimit - 2},
    {"LineFeedFirst", kLimit + 1, {{0, u"\n"}}, {u"\n"}, 1},
    {"CarriageReturn", kLimit + 9, {{kLimit - 5, u"\r"}}, kUsual, kLimit - 4},
    {"PairEndsAtItsLineFeed", kLimit + 9, {{kLimit - 10, u"\r\n"}}, kUsual, kLimit - 8},
    {"PairAloneEndsAtItsStart", kLimit + 9, {{kLimit - 10, u"\r\n"}}, {u"\r\n"}, kLimit - 9},
    {"PairAloneWithinTheLimit", kLimit + 9, {{kLimit - 2, u"\r\n"}}, {u"\r\n"}, kLimit - 1},
    {"PairAloneAcrossTheLimitIsTooLate",
     kLimit + 9,
     {{kLimit - 50, u"\r\n"}, {kLimit - 1, u"\r\n"}},
     {u"\r\n"},
     kLimit - 49},
    {"PairAcrossTheLimitEndsAtItsCarriageReturn",
     kLimit + 9,
     {{kLimit - 50, u"\r\n"}, {kLimit - 1, u"\r\n"}},
     kUsual,
     kLimit},
    {"PairAloneNeedsBothUnits",
     kLimit + 9,
     {{kLimit - 50, u"\r\n"}, {kLimit - 20, u"\r"}, {kLimit - 10, u"\n"}},
     {u"\r\n"},
     kLimit - 49},
    {"OneUnitOfTheCallersChoice", kLimit + 9, {{kLimit - 7, u"|\n"}}, {u"|"}, kLimit - 6},
    {"SeveralUnits", kLimit + 9, {{kLimit - 30, u"<br>"}}, {u"<br>"}, kLimit - 29},
    {"SeveralUnitsJustWithinTheLimit", kLimit + 9, {{kLimit - 4, u"<br>"}}, {u"<br>"}, kLimit - 3},
    {"SeveralUnitsAcrossTheLimit",
     kLimit + 9,
     {{kLimit - 60, u"<br>"}, {kLimit - 3, u"<br>"}},
     {u"<br>"},
     kLimit - 59},
    {"TheLastOfAnyWins",
     kLimit + 9,
     {{kLimit - 30, u"\n"}, {kLimit - 20, u"<br>"}},
     {u"\n", u"<br>"},
     kLimit - 19},
    {"ASharedFirstUnit",
     kLimit + 9,
     {{kLimit - 30, u"<p>"}, {kLimit - 20, u"<b"}},
     {u"<br>", u"<p>"},
     kLimit - 29},
    {"ALongOneAmongOthers",
     kLimit + 9,
     {{kLimit - 60, u"<end of the line of this text, of any>"}, {kLimit - 90, u"<p>"}},
     {u"<p>", u"<end of the line of this text, of any>"},
     kLimit - 59},
    {"NoEndingsAtAll", kLimit + 9, {{kLimit - 30, u"\n"}}, {}, 0},
    {"AnEmptyEndingAfterAnotherChangesNothing",
     kLimit + 9,
     {{kLimit - 30, u"\n"}},
     {u"\n", u""},
     kLimit - 29},
    {"AnEmptyEndingAloneEndsNoLine", kLimit + 9, {{kLimit - 30, u"\n"}}, {u""}, 0},

    // An end mark in a long text is text: the sample is not searched for it.
    {"EndMarkBelowTheLimitOfALongText",
     kLimit + 9,
     {{1'000, u"\uffff"}, {kLimit - 500, u"\n"}, {kLimit - 400, u"\uffff"}},
     {u"\n"},
     kLimit - 499},
    {"EndMarkBeyondTheLimit",
     kLimit + 9,
     {{kLimit - 5, u"\n"}, {kLimit + 1, u"\uffff"}},
     kUsual,
     kLimit - 4},
};

class FixedStreamSample : public testing::TestWithParam<SampleCase> {};

TEST_P(FixedStreamSample, HasItsLength) {
  ScriptedSource source(text_for(GetParam()));
  const TextStream stream(&source);
  const Field sample = get_fixed_stream(stream, GetParam().endings);
  ASSERT_EQ(sample.length, GetParam().length);
  EXPECT_EQ(sample.data, stream.window_begin());
  EXPECT_TRUE(source.text().starts_with(std::u16string_view(sample.data, sample.length)));
}

INSTANTIATE_TEST_SUITE_P(Table, FixedStreamSample, testing::ValuesIn(kSampleCases),
                         testing_support::ByRule());

TEST(FixedStream, UsesAllOfAShortText) {
  for (std::size_t size = 0; size <= 70; ++size) {
    ScriptedSource source(std::u16string(size, u'x'));
    const TextStream stream(&source);
    EXPECT_EQ(get_fixed_stream(stream, kUsual).length, size);
  }
}

TEST(FixedStream, EndsAtAnEndMarkAnywhereInAShortText) {
  for (std::size_t pos = 0; pos < 70; ++pos) {
    std::u16string text(70, u'x');
    text[pos] = u'\uffff';
    ScriptedSource source(text);
    const TextStream stream(&source);
    EXPECT_EQ(get_fixed_stream(stream, kUsual).length, pos);
  }
}

TEST(FixedStream, IsTheSameWhereverTheFirstLoadStops) {
  const std::u16string text = u"a,b\n1,2\r\nx\uffffy";
  for (std::size_t cut = 0; cut <= text.size(); ++cut) {
    ScriptedSource source(text);
    source.shorten_fill(1, cut);
    const TextStream stream(&source);
    EXPECT_EQ(text_of(get_fixed_stream(stream, kUsual)), u"a,b\n1,2\r\nx") << "cut at " << cut;
  }
}

TEST(FixedStream, StartsAtTheWindow) {
  ScriptedSource source(u"name,age\nann,31\n");
  TextStream stream(&source);
  stream.advance(9);
  const Field sample = get_fixed_stream(stream, kUsual);
  EXPECT_EQ(text_of(sample), u"ann,31\n");
  EXPECT_EQ(sample.data, stream.window_begin());
  stream.advance(7);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, 0U);
}

TEST(FixedStream, CountsItsLimitFromTheWindow) {
  std::u16string text(kLimit + 200'000, u'x');
  text[100'000 + kLimit - 1] = u'\n';
  text[100'000 + kLimit] = u'\n';
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(100'000);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, kLimit);
  stream.advance(1);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, kLimit);
  stream.advance(100'000);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, kLimit - 1);
}

TEST(FixedStream, LeavesTheWindowWhereItWas) {
  std::u16string text(kLimit + 10, u'x');
  text[0] = u'a';
  text[kLimit - 2] = u'\n';
  text[kLimit + 9] = u'z';
  ScriptedSource source(text);
  const TextStream stream(&source);
  get_fixed_stream(stream, kUsual);
  EXPECT_EQ(stream.at(0), u'a');
  EXPECT_EQ(stream.at(kLimit + 9), u'z');
}

TEST(FixedStream, CanBeTakenTwice) {
  std::u16string text(kLimit + 10, u'x');
  text[kLimit - 2] = u'\n';
  ScriptedSource source(text);
  const TextStream stream(&source);
  const Field first = get_fixed_stream(stream, kUsual);
  const Field second = get_fixed_stream(stream, {u"\n"});
  EXPECT_EQ(first.length, kLimit - 1);
  EXPECT_EQ(second.length, kLimit - 1);
  EXPECT_EQ(first.data, second.data);
}

// One code unit more than the limit is requested, in one step: 4,194,305 code units make a buffer
// of 4,194,304 and two more blocks.
TEST(FixedStream, LoadsALongTextInOneStep) {
  ScriptedSource source(std::u16string(5'000'000, u'\n'));
  const TextStream stream(&source);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, kLimit);
  EXPECT_EQ(source.resizes(), (Sizes{131'072, 4'456'448}));
  EXPECT_EQ(source.fills(), (Sizes{131'072, 4'325'376}));
}

TEST(FixedStream, LoadsNothingIfTheTextIsLoaded) {
  ScriptedSource source(u"a\nb\n");
  const TextStream stream(&source);
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, 4U);
  EXPECT_EQ(source.fills(), (Sizes{131'072}));
}

TEST(FixedStream, OfATextInMemoryIsThatText) {
  const ExactText text(u"a,b\n1,2\n");
  MemoryTextSource source(text.data(), text.size());
  const TextStream stream(&source);
  const Field sample = get_fixed_stream(stream, kUsual);
  EXPECT_EQ(sample.data, text.data());
  EXPECT_EQ(sample.length, 8U);
}

TEST(FixedStream, PassesOnWhatTheSourceThrowsAndCanBeTakenAgain) {
  std::u16string text(kLimit + 10, u'x');
  text[kLimit - 2] = u'\n';
  ScriptedSource source(text);
  const TextStream stream(&source);
  source.fail_fill(1);
  EXPECT_THROW(get_fixed_stream(stream, kUsual), ScriptedFailure);
  source.fail_resize(1);
  EXPECT_THROW(get_fixed_stream(stream, kUsual), ScriptedFailure);
  EXPECT_EQ(stream.at(131'071), u'x');
  EXPECT_EQ(get_fixed_stream(stream, kUsual).length, kLimit - 1);
}

}  // namespace
}  // namespace textio
