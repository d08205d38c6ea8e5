#include <vltextstream/source/memory_text_source.hpp>

#include <gtest/gtest.h>

#include <climits>
#include <cstddef>
#include <ostream>
#include <string>

#include <vltextstream/source/text_stream.hpp>
#include "support/exact_text.hpp"
#include "support/first_difference.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::first_difference;
using testing_support::kNoDifference;

// A source over "abcdefghij", and the bounds of the text as a reader gets them.
class LentText : public testing::Test {
 protected:
  char16_t* at(std::size_t pos) { return first_ + pos; }
  const char16_t* lent_begin() { return source_.getBufferManager()->begin(); }
  const char16_t* lent_end() { return source_.getBufferManager()->end(); }

  ExactText text_{u"abcdefghij"};
  MemoryTextSource source_{text_.data(), text_.size()};
  char16_t* first_ = source_.getBufferManager()->begin();
};

using MemoryTextSourceFill = LentText;
using MemoryTextSourceLending = LentText;
using MemoryTextSourceSkipFresh = LentText;

TEST_F(MemoryTextSourceLending, LendsTheTextItself) {
  EXPECT_EQ(lent_begin(), text_.data());
  EXPECT_EQ(lent_end(), text_.data() + 10);
}

TEST_F(MemoryTextSourceLending, AnyResizeExposesTheWholeText) {
  for (const std::size_t asked : {0UL, 3UL, 10UL, 131'072UL}) {
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    EXPECT_EQ(source_.getBufferManager()->resize(asked, begin, end), asked);
    EXPECT_EQ(begin, text_.data()) << asked;
    EXPECT_EQ(end, text_.data() + 10) << asked;
  }
  EXPECT_EQ(text_.view(), u"abcdefghij");
}

TEST_F(MemoryTextSourceLending, TheManagerIsOneObject) {
  ASSERT_NE(source_.getBufferManager(), nullptr);
  EXPECT_EQ(source_.getBufferManager(), source_.getBufferManager());
}

TEST_F(MemoryTextSourceFill, FreshSourceStandsAtItsStart) {
  EXPECT_EQ(source_.getPos(), 0);
  EXPECT_TRUE(source_.isEoS());
}

TEST_F(MemoryTextSourceFill, HandsOutTheWholeText) {
  EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 10U);
  EXPECT_EQ(source_.getPos(), 10);
  EXPECT_TRUE(source_.isEoS());
  EXPECT_EQ(text_.view(), u"abcdefghij");
}

TEST_F(MemoryTextSourceFill, HandsOutNothingTwice) {
  source_.fillBuffer(at(0), at(10));
  EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 0U);
  EXPECT_EQ(source_.getPos(), 10);
}

TEST_F(MemoryTextSourceFill, RefusesAnyOtherPlaceAndChangesNothing) {
  EXPECT_EQ(source_.fillBuffer(at(1), at(10)), 0U);
  char16_t elsewhere[4] = {u'w', u'x', u'y', u'z'};
  EXPECT_EQ(source_.fillBuffer(elsewhere, elsewhere + 4), 0U);
  EXPECT_EQ(std::u16string(elsewhere, 4), u"wxyz");
  EXPECT_EQ(source_.getPos(), 0);
  EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 10U);
}

// The position is the size of the last fill, not a sum: the text is lent as one range.
TEST_F(MemoryTextSourceFill, PositionCountsTheLastRangeAlone) {
  EXPECT_EQ(source_.fillBuffer(at(0), at(7)), 7U);
  EXPECT_EQ(source_.getPos(), 7);
  EXPECT_EQ(source_.fillBuffer(at(7), at(10)), 3U);
  EXPECT_EQ(source_.getPos(), 3);
}

TEST_F(MemoryTextSourceFill, EmptyRangeAtTheNextUnitIsHandedOut) {
  source_.fillBuffer(at(0), at(4));
  EXPECT_EQ(source_.fillBuffer(at(4), at(4)), 0U);
  EXPECT_EQ(source_.getPos(), 0);
  EXPECT_EQ(source_.fillBuffer(at(4), at(10)), 6U);
}

TEST_F(MemoryTextSourceFill, EndOfStreamIsSaidWhateverIsLeft) {
  EXPECT_TRUE(source_.isEoS());
  source_.fillBuffer(at(0), at(4));
  EXPECT_TRUE(source_.isEoS());
  source_.skipFromPos(0, 2);
  EXPECT_TRUE(source_.isEoS());
}

TEST_F(MemoryTextSourceFill, GoesOnWhereASkipEnded) {
  source_.skipFromPos(0, 4);
  EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 0U);
  EXPECT_EQ(source_.fillBuffer(at(4), at(10)), 6U);
  EXPECT_EQ(source_.getPos(), 6);
}

TEST_F(MemoryTextSourceFill, ASkipBackLendsTheTextAgain) {
  source_.fillBuffer(at(0), at(10));
  EXPECT_EQ(source_.skipFromPos(0, 0), 0U);
  EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 10U);
}

struct SkipCase {
  const char* rule;
  source_pos from;
  unsigned long count;
  unsigned long skipped;
  std::size_t position;
};
std::ostream& operator<<(std::ostream& out, const SkipCase& row) { return out << row.rule; }

const SkipCase kSkipCases[] = {
    {"NothingFromTheStart", 0, 0, 0, 0},
    {"SomeFromTheStart", 0, 4, 4, 4},
    {"SomeFromTheMiddle", 3, 5, 5, 8},
    {"UpToTheEnd", 3, 7, 7, 10},
    {"OnePastTheEndStopsThere", 3, 8, 7, 10},
    {"FarPastTheEndStopsThere", 9, 1'000'000, 1, 10},
    {"NothingAtTheEnd", 10, 0, 0, 10},
    {"SomeAtTheEnd", 10, 5, 0, 10},
    {"ASumThatWouldWrapStopsAtTheEnd", 2, ULONG_MAX, 8, 10},
    {"ASumThatWouldWrapByOneStopsAtTheEnd", 1, ULONG_MAX, 9, 10},
};

class MemoryTextSourceSkip : public testing::TestWithParam<SkipCase> {};
TEST_P(MemoryTextSourceSkip, LendsWhatFollows) {
  const ExactText text(u"abcdefghij");
  MemoryTextSource source(text.data(), text.size());
  EXPECT_EQ(source.skipFromPos(GetParam().from, GetParam().count), GetParam().skipped);
  EXPECT_EQ(source.getPos(), static_cast<source_pos>(GetParam().position));
  EXPECT_EQ(source.getBufferManager()->begin(), text.data() + GetParam().position);
  EXPECT_EQ(source.getBufferManager()->end(), text.data() + 10);
}
INSTANTIATE_TEST_SUITE_P(Table, MemoryTextSourceSkip, testing::ValuesIn(kSkipCases),
                         testing_support::ByRule());

TEST_F(MemoryTextSourceSkipFresh, ResizeAfterASkipExposesTheRest) {
  source_.skipFromPos(2, 3);
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  source_.getBufferManager()->resize(131'072, begin, end);
  EXPECT_EQ(begin, text_.data() + 5);
  EXPECT_EQ(end, text_.data() + 10);
}

// The text that a reader has already received is still lent: a resize must not take it away.
TEST_F(MemoryTextSourceLending, AResizeAfterAFillExposesTheSameText) {
  for (const std::size_t asked : {0UL, 5UL, 10UL, 131'072UL}) {
    source_.skipFromPos(0, 0);
    source_.fillBuffer(at(0), at(10));
    char16_t* begin = nullptr;
    char16_t* end = nullptr;
    source_.getBufferManager()->resize(asked, begin, end);
    EXPECT_EQ(begin, at(0)) << asked;
    EXPECT_EQ(end, at(10)) << asked;
    EXPECT_EQ(lent_begin(), at(0)) << asked;
    EXPECT_EQ(lent_end(), at(10)) << asked;
    EXPECT_EQ(source_.fillBuffer(at(0), at(10)), 0U) << asked;
  }
}

TEST_F(MemoryTextSourceLending, AResizeAfterASkipAndAFillExposesTheRest) {
  source_.skipFromPos(2, 3);
  source_.fillBuffer(at(5), at(10));
  char16_t* begin = nullptr;
  char16_t* end = nullptr;
  source_.getBufferManager()->resize(131'072, begin, end);
  EXPECT_EQ(begin, at(5));
  EXPECT_EQ(end, at(10));
}

TEST(MemoryTextSourceEmpty, HandsOutNothing) {
  const ExactText text(u"");
  MemoryTextSource source(text.data(), 0);
  BufferManager* manager = source.getBufferManager();
  EXPECT_EQ(manager->begin(), manager->end());
  EXPECT_EQ(source.fillBuffer(manager->begin(), manager->end()), 0U);
  EXPECT_EQ(source.skipFromPos(0, 5), 0U);
  EXPECT_EQ(source.getPos(), 0);
  EXPECT_TRUE(source.isEoS());
}

TEST(MemoryTextSourceStream, IsReadInPlace) {
  const ExactText text(u"ab1\n2");
  MemoryTextSource source(text.data(), text.size());
  TextStream stream(&source);
  EXPECT_EQ(stream.window_begin(), text.data());
  EXPECT_EQ(stream.find_first_pos_of(u'\n', 0), 3U);
  EXPECT_EQ(stream.at(4), u'2');
  EXPECT_EQ(stream.at(5), TextStream::kEnd);
  stream.advance(4);
  EXPECT_EQ(stream.window_begin(), text.data() + 4);
  EXPECT_EQ(stream.find_first_non_digit(0), 1U);
}

TEST(MemoryTextSourceStream, KeepsItsTextWhenTheBufferIsResized) {
  for (const unsigned long size : {0UL, 1UL, 5UL, 131'072UL, 1'000'000UL}) {
    const ExactText text(u"abcde");
    MemoryTextSource source(text.data(), text.size());
    TextStream stream(&source);
    stream.resizeInternalBuffer(size);
    EXPECT_EQ(stream.find_first_pos_of(u'e', 0), 4U) << size;
    EXPECT_EQ(stream.at(5), TextStream::kEnd) << size;
    stream.advance(2);
    stream.resizeInternalBuffer(size);
    EXPECT_EQ(stream.window_begin(), text.data() + 2) << size;
    EXPECT_EQ(stream.find_first_pos_of(u'e', 0), 2U) << size;
    EXPECT_EQ(stream.at(3), TextStream::kEnd) << size;
    stream.advance(3);
    stream.resizeInternalBuffer(size);
    EXPECT_EQ(stream.at(0), TextStream::kEnd) << size;
  }
}

TEST(MemoryTextSourceStream, EndsWithItsText) {
  for (const unsigned long past : {5UL, 6UL, 1'000'000UL}) {
    const ExactText text(u"abcde");
    MemoryTextSource source(text.data(), text.size());
    TextStream stream(&source);
    stream.advance(past);
    EXPECT_EQ(stream.at(0), TextStream::kEnd) << past;
    EXPECT_EQ(stream.find_first_pos_of(u'a', 0), 0U) << past;
    stream.advance(0);
    EXPECT_EQ(stream.at(0), TextStream::kEnd) << past;
    stream.advance(1);
    EXPECT_EQ(stream.at(0), TextStream::kEnd) << past;
  }
}

// Steps to the end, of any size: no text is handed out twice.
TEST(MemoryTextSourceStream, EndsAfterStepsOfAnySize) {
  for (unsigned long step = 1; step <= 7; ++step) {
    const ExactText text(u"abcdef");
    MemoryTextSource source(text.data(), text.size());
    TextStream stream(&source);
    std::u16string read;
    while (stream.at(0) != TextStream::kEnd && read.size() <= 6) {
      for (unsigned long pos = 0; pos < step && stream.at(pos) != TextStream::kEnd; ++pos) {
        read.push_back(stream.at(pos));
      }
      stream.advance(step);
    }
    EXPECT_EQ(read, u"abcdef") << step;
  }
}

TEST(MemoryTextSourceStream, OfATextThatIsTooBigForABufferIsReadInPlace) {
  std::u16string units(TextStream::kTooBigUnits + 1'000, u'x');
  units.back() = u'!';
  const ExactText text(units);
  MemoryTextSource source(text.data(), text.size());
  TextStream stream(&source);
  EXPECT_EQ(stream.find_first_pos_of(u'!', 0), TextStream::kTooBigUnits + 999);
  stream.advance(TextStream::kTooBigUnits + 998);
  EXPECT_EQ(stream.window_begin(), text.data() + TextStream::kTooBigUnits + 998);
  EXPECT_EQ(stream.at(1), u'!');
  stream.advance(2);
  EXPECT_EQ(stream.at(0), TextStream::kEnd);
  EXPECT_EQ(first_difference(text.view(), units), kNoDifference);
}

}  // namespace
}  // namespace textio
