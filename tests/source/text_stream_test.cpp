#include <vltextstream/source/text_stream.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <ostream>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <vltextstream/source/file_text_source.hpp>
#include <vltextstream/source/memory_text_source.hpp>
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"
#include "support/scripted_source.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::readable;
using testing_support::ScriptedFailure;
using testing_support::ScriptedSource;
using testing_support::SkipCall;

constexpr std::size_t kBufferUnits = TextStream::kBufferUnits;
constexpr std::size_t kTooBigUnits = TextStream::kTooBigUnits;
constexpr char16_t kEnd = TextStream::kEnd;

using Sizes = std::vector<std::size_t>;
using Skips = std::vector<SkipCall>;

std::u16string new_text(std::size_t size) {
  std::u16string text(size, u' ');
  for (std::size_t i = 0; i < size; ++i) {
    text[i] = static_cast<char16_t>(0x100 + (i * 31 + i / 997 + i / kBufferUnits * 7) % 40'000);
  }
  return text;
}

// A text in which nearby code units differ, and code units at the distance of a buffer.
std::u16string long_text(std::size_t size) {
  static const std::u16string start = new_text(1'000'000);
  return size <= start.size() ? start.substr(0, size) : new_text(size);
}

// A scripted source with the buffer of a file, which a stream refills in another way.
class FileBufferedSource : public ScriptedSource {
 public:
  using ScriptedSource::ScriptedSource;
  BufferManager* getBufferManager() override { return &buffer_; }

 private:
  FileStreamBufferManager buffer_;
};

// A class derived from the buffer of a file can keep its text elsewhere.
class DerivedBuffer : public FileStreamBufferManager {
 public:
  std::size_t resize(std::size_t n, char16_t*& begin, char16_t*& end) override {
    return buffer_.resize(n, begin, end);
  }
  char16_t* begin() override { return buffer_.begin(); }
  char16_t* end() override { return buffer_.end(); }

 private:
  testing_support::ExactBufferManager buffer_;
};

class DerivedBufferSource : public ScriptedSource {
 public:
  using ScriptedSource::ScriptedSource;
  BufferManager* getBufferManager() override { return &buffer_; }

 private:
  DerivedBuffer buffer_;
};

std::size_t buffer_size_of(TextSource& source) {
  BufferManager& buffer = *source.getBufferManager();
  return static_cast<std::size_t>(buffer.end() - buffer.begin());
}

// --- reading and searching -----------------------------------------------------------------------

struct SearchCase {
  const char* rule;
  std::u16string text;
  unsigned long (*search)(const TextStream&);
  unsigned long expected;
};
std::ostream& operator<<(std::ostream& out, const SearchCase& row) {
  return out << row.rule << " in \"" << readable(row.text) << '"';
}

using S = const TextStream&;
const SearchCase kSearchCases[] = {
    // One code unit.
    {"UnitAtTheStart", u"xab", [](S s) { return s.find_first_pos_of(u'x', 0); }, 0},
    {"UnitFurtherOn", u"abxax", [](S s) { return s.find_first_pos_of(u'x', 0); }, 2},
    {"UnitFromItsOwnPlace", u"abxax", [](S s) { return s.find_first_pos_of(u'x', 2); }, 2},
    {"UnitBehindItsFirstPlace", u"abxax", [](S s) { return s.find_first_pos_of(u'x', 3); }, 4},
    {"UnitNotThereGivesTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u'x', 1); }, 3},
    {"UnitStopsAtTheEndMark", u"ab\uffffx", [](S s) { return s.find_first_pos_of(u'x', 0); }, 2},
    {"UnitBehindTheEndMark", u"ab\uffffx", [](S s) { return s.find_first_pos_of(u'x', 3); }, 3},
    {"UnitThatIsTheEndMark", u"ab\uffffx", [](S s) { return s.find_first_pos_of(kEnd, 0); }, 2},
    {"EndMarkNotThere", u"ab", [](S s) { return s.find_first_pos_of(kEnd, 0); }, 2},
    {"UnitZero", std::u16string(u"a\0b", 3), [](S s) { return s.find_first_pos_of(u'\0', 0); }, 1},
    {"UnitZeroIsNotFoundBehindTheText", u"ab", [](S s) { return s.find_first_pos_of(u'\0', 0); },
     2},
    {"UnitFromTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u'a', 3); }, 3},
    {"UnitFromPastTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u'a', 7); }, 7},
    {"UnitFromTheLastPosition", u"abc", [](S s) { return s.find_first_pos_of(u'a', ULONG_MAX); },
     ULONG_MAX},
    {"UnitInAnEmptyText", u"", [](S s) { return s.find_first_pos_of(u'a', 0); }, 0},

    // One of a set.
    {"SetFirstOfAny", u"ab;,", [](S s) { return s.find_first_pos_of(u",;", 0); }, 2},
    {"SetFromBehind", u"ab;,", [](S s) { return s.find_first_pos_of(u",;", 3); }, 3},
    {"SetLastMember", u"abz", [](S s) { return s.find_first_pos_of(u"xyz", 0); }, 2},
    {"SetNotThereGivesTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u",;", 0); }, 3},
    {"SetEmptyGivesTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u"", 1); }, 3},
    {"SetStopsAtTheEndMark", u"a\uffff;", [](S s) { return s.find_first_pos_of(u",;", 0); }, 1},
    {"SetEmptyStopsAtTheEndMark", u"a\uffff;", [](S s) { return s.find_first_pos_of(u"", 0); }, 1},
    {"SetWithTheUnitZero", std::u16string(u"a\0b", 3),
     [](S s) { return s.find_first_pos_of(std::u16string(u";\0", 2), 0); }, 1},
    {"SetFromPastTheEnd", u"abc", [](S s) { return s.find_first_pos_of(u"a", 9); }, 9},
    {"SetInAnEmptyText", u"", [](S s) { return s.find_first_pos_of(u"ab", 0); }, 0},

    // None of a set.
    {"NotOfSetFurtherOn", u" \t x", [](S s) { return s.find_first_pos_not_of(u" \t", 0); }, 3},
    {"NotOfSetAtOnce", u"x ", [](S s) { return s.find_first_pos_not_of(u" \t", 0); }, 0},
    {"NotOfSetToTheEnd", u"x \t ", [](S s) { return s.find_first_pos_not_of(u" \t", 1); }, 4},
    {"NotOfEmptySetIsTheStart", u"abc", [](S s) { return s.find_first_pos_not_of(u"", 1); }, 1},
    {"NotOfEmptySetAtTheEnd", u"abc", [](S s) { return s.find_first_pos_not_of(u"", 3); }, 3},
    {"NotOfSetStopsAtTheEndMark", u"  \uffff x",
     [](S s) { return s.find_first_pos_not_of(u" ", 0); }, 2},
    {"NotOfSetWithTheEndMarkStopsThereToo", u" \uffff x",
     [](S s) { return s.find_first_pos_not_of(u" \uffff", 0); }, 1},
    {"NotOfSetWithTheEndMarkEnds", u"  ",
     [](S s) { return s.find_first_pos_not_of(u" \uffff", 0); }, 2},
    {"NotOfSetWithTheUnitZeroEnds", std::u16string(u"\0\0", 2),
     [](S s) { return s.find_first_pos_not_of(std::u16string(u"\0", 1), 0); }, 2},
    {"NotOfSetFromPastTheEnd", u"  ", [](S s) { return s.find_first_pos_not_of(u" ", 5); }, 5},
    {"NotOfSetInAnEmptyText", u"", [](S s) { return s.find_first_pos_not_of(u" ", 0); }, 0},

    // Not one code unit.
    {"NotOfUnitFurtherOn", u"aab", [](S s) { return s.find_first_pos_not_of(u'a', 0); }, 2},
    {"NotOfUnitAtOnce", u"baa", [](S s) { return s.find_first_pos_not_of(u'a', 0); }, 0},
    {"NotOfUnitToTheEnd", u"baa", [](S s) { return s.find_first_pos_not_of(u'a', 1); }, 3},
    {"NotOfUnitStopsAtTheEndMark", u"aa\uffffab",
     [](S s) { return s.find_first_pos_not_of(u'a', 0); }, 2},
    {"NotOfUnitZeroEnds", std::u16string(u"\0\0", 2),
     [](S s) { return s.find_first_pos_not_of(u'\0', 0); }, 2},
    {"NotOfTheEndMark", u"abc", [](S s) { return s.find_first_pos_not_of(kEnd, 1); }, 1},
    {"NotOfTheEndMarkEndsAtTheEnd", u"abc", [](S s) { return s.find_first_pos_not_of(kEnd, 3); },
     3},
    {"NotOfTheEndMarkEndsAtTheFirstOne", u"a\uffff\uffffb",
     [](S s) { return s.find_first_pos_not_of(kEnd, 1); }, 1},
    {"NotOfTheEndMarkInAnEmptyText", u"", [](S s) { return s.find_first_pos_not_of(kEnd, 0); }, 0},
    {"NotOfUnitFromPastTheEnd", u"aa", [](S s) { return s.find_first_pos_not_of(u'a', 8); }, 8},
    {"NotOfUnitFromTheLastPosition", u"aa",
     [](S s) { return s.find_first_pos_not_of(u'a', ULONG_MAX); }, ULONG_MAX},

    // Digits.
    {"NonDigitBehindDigits", u"123abc", [](S s) { return s.find_first_non_digit(0); }, 3},
    {"NonDigitIsTheEnd", u"123", [](S s) { return s.find_first_non_digit(0); }, 3},
    {"NonDigitIsTheEndMark", u"12\uffff3", [](S s) { return s.find_first_non_digit(0); }, 2},
    {"AllTenDigits", u"0123456789", [](S s) { return s.find_first_non_digit(0); }, 10},
    {"NonDigitBelowZero", u"0/", [](S s) { return s.find_first_non_digit(0); }, 1},
    {"NonDigitAboveNine", u"9:", [](S s) { return s.find_first_non_digit(0); }, 1},
    {"NonDigitWideDigit", u"1\uff11", [](S s) { return s.find_first_non_digit(0); }, 1},
    {"NonDigitArabicDigit", u"1\u0661", [](S s) { return s.find_first_non_digit(0); }, 1},
    {"NonDigitFromTheMiddle", u"a12b", [](S s) { return s.find_first_non_digit(1); }, 3},
    {"NonDigitFromPastTheEnd", u"12", [](S s) { return s.find_first_non_digit(6); }, 6},
    {"NonDigitInAnEmptyText", u"", [](S s) { return s.find_first_non_digit(0); }, 0},

    // Single code units.
    {"AtTheFirst", u"abc", [](S s) -> unsigned long { return s.at(0); }, u'a'},
    {"AtTheLast", u"abc", [](S s) -> unsigned long { return s.at(2); }, u'c'},
    {"AtTheEnd", u"abc", [](S s) -> unsigned long { return s.at(3); }, 0xFFFF},
    {"AtPastTheEnd", u"abc", [](S s) -> unsigned long { return s.at(1'000'000); }, 0xFFFF},
    {"AtTheLastPosition", u"abc", [](S s) -> unsigned long { return s.at(ULONG_MAX); }, 0xFFFF},
    {"AtTheEndMark", u"a\uffffc", [](S s) -> unsigned long { return s.at(1); }, 0xFFFF},
    {"AtBehindTheEndMark", u"a\uffffc", [](S s) -> unsigned long { return s.at(2); }, u'c'},
    {"AtAnEmptyText", u"", [](S s) -> unsigned long { return s.at(0); }, 0xFFFF},
};

class TextStreamSearch : public testing::TestWithParam<SearchCase> {};

TEST_P(TextStreamSearch, GivesThePosition) {
  ScriptedSource source(GetParam().text);
  const TextStream stream(&source);
  EXPECT_EQ(GetParam().search(stream), GetParam().expected);
}

TEST_P(TextStreamSearch, GivesThePositionWhereverTheFirstLoadStops) {
  for (std::size_t cut = 0; cut < GetParam().text.size(); ++cut) {
    ScriptedSource source(GetParam().text);
    source.shorten_fill(1, cut);
    const TextStream stream(&source);
    EXPECT_EQ(GetParam().search(stream), GetParam().expected) << "cut at " << cut;
  }
}

TEST_P(TextStreamSearch, CountsFromTheWindow) {
  ScriptedSource source(u"xyz" + GetParam().text);
  TextStream stream(&source);
  stream.advance(3);
  EXPECT_EQ(GetParam().search(stream), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamSearch, testing::ValuesIn(kSearchCases),
                         testing_support::ByRule());

// Searches for one code unit skip whole blocks: no place may make a difference, whether a search
// begins there, ends there, or the text ends there.
TEST(TextStreamSearchByBlocks, StopsAtEveryPlace) {
  constexpr std::size_t kLength = 200;
  for (const char16_t odd : {u'x', kEnd}) {
    for (std::size_t place = 0; place <= kLength; ++place) {
      std::u16string digits(kLength, u'7');
      if (place < kLength) digits[place] = odd;
      const ExactText text(digits);
      MemoryTextSource source(text.data(), text.size());
      const TextStream stream(&source);
      for (const std::size_t from : {std::size_t{0}, place / 2, place}) {
        EXPECT_EQ(stream.find_first_pos_of(u'x', from), place);
        EXPECT_EQ(stream.find_first_pos_not_of(u'7', from), place);
        EXPECT_EQ(stream.find_first_non_digit(from), place);
        EXPECT_EQ(stream.find_first_pos_of(u"yx", from), place);
        EXPECT_EQ(stream.find_first_pos_not_of(u"67", from), place);
      }
      for (const std::size_t from : {place + 1, kLength + 1}) {
        const std::size_t end = std::max(from, kLength);
        EXPECT_EQ(stream.find_first_pos_of(u'x', from), end) << place;
        EXPECT_EQ(stream.find_first_pos_not_of(u'7', from), end) << place;
        EXPECT_EQ(stream.find_first_non_digit(from), end) << place;
      }
    }
  }
}

TEST(TextStreamSearchByBlocks, TakesTheNeighboursOfDigitsForNone) {
  for (const char16_t odd : {u'\0', u'/', u':', u'\u0130', u'\u0139'}) {
    std::u16string text(100, u'0');
    std::fill(text.begin() + 50, text.end(), u'9');
    text[70] = odd;
    ScriptedSource source(text);
    EXPECT_EQ(TextStream(&source).find_first_non_digit(0), 70U);
  }
}

// A search continues in the middle of a block after more text was loaded.
TEST(TextStreamSearchByBlocks, GoesOnInTextThatIsLoadedLater) {
  for (const std::size_t place : {kBufferUnits - 1, kBufferUnits, kBufferUnits + 65}) {
    std::u16string text(2 * kBufferUnits, u'7');
    text[place] = u'x';
    ScriptedSource source(text);
    const TextStream stream(&source);
    EXPECT_EQ(stream.find_first_pos_of(u'x', 60), place);
    EXPECT_EQ(source.fills().size(), place < kBufferUnits ? 1U : 2U);
  }
}

struct MatchCase {
  const char* rule;
  std::u16string text;
  std::u16string wanted;
  unsigned long pos;
  bool sensitive;  // the expected results of the two matches
  bool insensitive;
};
std::ostream& operator<<(std::ostream& out, const MatchCase& row) {
  return out << row.rule << ": \"" << readable(row.wanted) << "\" in \"" << readable(row.text)
             << '"';
}

const MatchCase kMatchCases[] = {
    {"SameText", u"xabcx", u"abc", 1, true, true},
    {"WholeText", u"abc", u"abc", 0, true, true},
    {"OtherPlace", u"xabcx", u"abc", 0, false, false},
    {"OneUnitDiffers", u"abd", u"abc", 0, false, false},
    {"FirstUnitDiffers", u"xbc", u"abc", 0, false, false},
    {"TextEndsTooEarly", u"ab", u"abc", 0, false, false},
    {"TextEndsTooEarlyBehindTheStart", u"xab", u"abc", 1, false, false},
    {"AtTheEnd", u"abc", u"a", 3, false, false},
    {"PastTheEnd", u"abc", u"a", 10, false, false},
    {"EmptyAtTheStart", u"abc", u"", 0, true, true},
    {"EmptyAtTheEnd", u"abc", u"", 3, true, true},
    {"EmptyPastTheEnd", u"abc", u"", 1'000, true, true},
    {"EmptyAtTheLastPosition", u"abc", u"", ULONG_MAX, true, true},
    {"EmptyInAnEmptyText", u"", u"", 0, true, true},
    {"OneUnitInAnEmptyText", u"", u"a", 0, false, false},
    {"OneUnitAtTheLastPosition", u"abc", u"a", ULONG_MAX, false, false},
    {"SumThatWrapsToTheText", u"abc", u"abc", ULONG_MAX - 1, false, false},
    {"SumThatWrapsToZero", u"abc", u"abc", ULONG_MAX - 2, false, false},
    {"LowerText", u"abc", u"ABC", 0, false, true},
    {"MixedText", u"aBc", u"ABC", 0, false, true},
    {"LowerWanted", u"ABC", u"abc", 0, false, true},
    {"MixedOnBothSides", u"aBc", u"AbC", 0, false, true},
    {"EndsOfTheAlphabet", u"azAZ", u"AZaz", 0, false, true},
    {"UmlautsAreNotFolded", u"\u00e4", u"\u00c4", 0, false, false},
    {"UmlautsAreThemselves", u"\u00e4a", u"\u00e4A", 0, false, true},
    {"GreekIsNotFolded", u"\u03b1", u"\u0391", 0, false, false},
    {"KelvinIsNoK", u"\u212a", u"k", 0, false, false},
    {"WideLettersAreNotFolded", u"\uff41", u"\uff21", 0, false, false},
    {"BelowTheAlphabetIsNotFolded", u"`", u"@", 0, false, false},
    {"AboveTheAlphabetIsNotFolded", u"{", u"[", 0, false, false},
    {"DigitsAreNotFolded", u"0", u"\u0010", 0, false, false},
    {"EndMarkInTheTextIsAUnit", u"a\uffffb", u"a\uffffB", 0, false, true},
    {"EndMarkInTheText", u"a\uffffb", u"\uffffb", 1, true, true},
    {"EndMarkBehindTheTextIsNone", u"a", u"a\uffff", 0, false, false},
    {"EndMarkAtTheEndIsNone", u"a", u"\uffff", 1, false, false},
    {"ZeroBehindTheTextIsNone", u"a", std::u16string(u"a\0", 2), 0, false, false},
    {"ZeroInTheText", std::u16string(u"a\0b", 3), std::u16string(u"a\0b", 3), 0, true, true},
};

class TextStreamMatch : public testing::TestWithParam<MatchCase> {};

TEST_P(TextStreamMatch, ComparesUnitByUnit) {
  const MatchCase& row = GetParam();
  for (std::size_t cut = 0; cut <= row.text.size(); ++cut) {
    ScriptedSource first(row.text);
    first.shorten_fill(1, cut);
    const TextStream sensitive(&first);
    EXPECT_EQ(sensitive.matches_case_sensitive(row.wanted, row.pos), row.sensitive) << cut;
    ScriptedSource second(row.text);
    second.shorten_fill(1, cut);
    const TextStream insensitive(&second);
    EXPECT_EQ(insensitive.matches_case_insensitive(row.wanted, row.pos), row.insensitive) << cut;
  }
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamMatch, testing::ValuesIn(kMatchCases),
                         testing_support::ByRule());

TEST(TextStreamEmpty, EverySearchEndsAtOnce) {
  ScriptedSource source(u"");
  const TextStream stream(&source);
  EXPECT_EQ(stream.at(0), kEnd);
  EXPECT_EQ(stream.find_first_pos_of(u'a', 0), 0U);
  EXPECT_EQ(stream.find_first_pos_of(u"ab", 0), 0U);
  EXPECT_EQ(stream.find_first_pos_not_of(u"ab", 0), 0U);
  EXPECT_EQ(stream.find_first_pos_not_of(u'a', 0), 0U);
  EXPECT_EQ(stream.find_first_non_digit(0), 0U);
  EXPECT_TRUE(stream.matches_case_sensitive(u"", 0));
  EXPECT_FALSE(stream.matches_case_sensitive(u"a", 0));
  EXPECT_EQ(source.buffer_size(), kBufferUnits);
}

// --- loading -------------------------------------------------------------------------------------

TEST(TextStreamConstruction, LoadsOneBlock) {
  ScriptedSource source(long_text(kBufferUnits + 1));
  const TextStream stream(&source);
  EXPECT_EQ(source.resizes(), (Sizes{131'072}));
  EXPECT_EQ(source.fills(), (Sizes{131'072}));
  EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin());
}

TEST(TextStreamConstruction, TextThatFillsTheBlockIsKnownToEndThere) {
  ScriptedSource source(long_text(kBufferUnits));
  const TextStream stream(&source);
  EXPECT_EQ(stream.at(kBufferUnits), kEnd);
  EXPECT_EQ(source.fills().size(), 1U);
}

// The end comes from isEoS() of the source; a short first load is not the end.
TEST(TextStreamConstruction, AShortLoadIsNotTheEnd) {
  const std::u16string text = long_text(500);
  ScriptedSource source(text);
  source.shorten_fill(1, 10);
  const TextStream stream(&source);
  EXPECT_EQ(stream.at(9), text[9]);
  EXPECT_EQ(source.fills().size(), 1U);
  EXPECT_EQ(stream.at(10), text[10]);
  EXPECT_EQ(source.resizes(), (Sizes{131'072, 131'082}));
  EXPECT_EQ(source.fills(), (Sizes{131'072, 131'072}));
  EXPECT_EQ(stream.at(500), kEnd);
}

TEST(TextStreamConstruction, IsNotCopied) {
  EXPECT_FALSE(std::is_copy_constructible_v<TextStream>);
  EXPECT_FALSE(std::is_copy_assignable_v<TextStream>);
}

struct GrowthCase {
  const char* rule;
  unsigned long advance;
  unsigned long pos;  // the code unit that is then read
  std::size_t size;   // of the buffer, afterwards
};
std::ostream& operator<<(std::ostream& out, const GrowthCase& row) { return out << row.rule; }

const GrowthCase kGrowthCases[] = {
    {"LastLoadedUnitGrowsNothing", 0, kBufferUnits - 1, 131'072},
    {"FirstUnitNotLoaded", 0, kBufferUnits, 393'216},
    {"LastOfThisSize", 0, 2 * kBufferUnits - 2, 393'216},
    {"FirstOfTheNextSize", 0, 2 * kBufferUnits - 1, 524'288},
    {"LookAheadOf300000", 0, 299'999, 524'288},
    {"LookAheadOf600000", 0, 599'999, 786'432},
    {"OneUnitMoreBehindAnAdvance", 100'000, 31'072, 262'144},
    {"MoreBehindAnAdvance", 100'000, 131'070, 262'144},
    {"ABlockMoreBehindAnAdvance", 100'000, 131'071, 393'216},
};

class TextStreamGrowth : public testing::TestWithParam<GrowthCase> {};

TEST_P(TextStreamGrowth, AddsABlockToTheRoundedDistanceAndTheTextHeld) {
  const GrowthCase& row = GetParam();
  const std::u16string text = long_text(1'000'000);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(row.advance);
  EXPECT_EQ(stream.at(row.pos), text[row.advance + row.pos]);
  EXPECT_EQ(source.buffer_size(), row.size);
  Sizes fills{131'072};
  if (row.size > kBufferUnits) fills.push_back(row.size - 131'072);
  EXPECT_EQ(source.fills(), fills);
  EXPECT_EQ(stream.at(0), text[row.advance]);
  EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin() + row.advance);
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamGrowth, testing::ValuesIn(kGrowthCases),
                         testing_support::ByRule());

TEST(TextStreamGrowing, AMatchLoadsUpToItsLastUnit) {
  const std::u16string text = long_text(1'000'000);
  ScriptedSource source(text);
  const TextStream stream(&source);
  EXPECT_TRUE(stream.matches_case_sensitive(text.substr(299'000, 1'000), 299'000));
  EXPECT_EQ(source.buffer_size(), 524'288U);
  EXPECT_EQ(source.fills(), (Sizes{131'072, 393'216}));
}

TEST(TextStreamGrowing, AMatchThatIsLoadedAlreadyLoadsNothing) {
  const std::u16string text = long_text(200'000);
  ScriptedSource source(text);
  const TextStream stream(&source);
  EXPECT_TRUE(stream.matches_case_sensitive(text.substr(131'070, 2), 131'070));
  EXPECT_EQ(source.fills().size(), 1U);
  EXPECT_TRUE(stream.matches_case_sensitive(text.substr(131'070, 3), 131'070));
  EXPECT_EQ(source.fills().size(), 2U);
}

TEST(TextStreamGrowing, AnEmptyMatchLoadsNothing) {
  ScriptedSource source(long_text(1'000'000));
  const TextStream stream(&source);
  EXPECT_TRUE(stream.matches_case_sensitive(u"", ULONG_MAX));
  EXPECT_TRUE(stream.matches_case_insensitive(u"", ULONG_MAX - 1));
  EXPECT_EQ(source.buffer_size(), kBufferUnits);
}

TEST(TextStreamGrowing, AShortFillIsTheEnd) {
  const std::u16string text = long_text(1'000'000);
  ScriptedSource source(text);
  source.shorten_fill(2, 5);
  const TextStream stream(&source);
  EXPECT_EQ(stream.at(kBufferUnits + 4), text[kBufferUnits + 4]);
  EXPECT_EQ(stream.at(kBufferUnits + 5), kEnd);
  EXPECT_EQ(stream.find_first_pos_of(u"", 0), kBufferUnits + 5);
  EXPECT_EQ(source.fills().size(), 2U);
}

TEST(TextStreamGrowing, AFullFillAtTheEndIsFollowedByOneMore) {
  ScriptedSource source(std::u16string(393'216, u'x'));
  const TextStream stream(&source);
  EXPECT_EQ(stream.find_first_pos_not_of(u'x', 0), 393'216U);
  EXPECT_EQ(stream.at(500'000), kEnd);
  EXPECT_EQ(source.fills().size(), 3U);
}

TEST(TextStreamGrowing, NoZeroBehindTheTextIsRead) {
  ScriptedSource source(std::u16string(200'000, u'x'));
  const TextStream stream(&source);
  EXPECT_EQ(stream.find_first_pos_not_of(u'x', 0), 200'000U);
  EXPECT_EQ(stream.at(200'000), kEnd);
  EXPECT_EQ(stream.at(200'001), kEnd);
  EXPECT_EQ(stream.find_first_pos_of(u'\0', 0), 200'000U);
  EXPECT_GT(source.buffer_size(), 200'001U);
}

TEST(TextStreamGrowing, APositionWhoseSumsWrapIsNotThere) {
  const std::u16string text = long_text(300'000);
  ScriptedSource source(text);
  const TextStream stream(&source);
  EXPECT_EQ(stream.at(ULONG_MAX), kEnd);
  EXPECT_EQ(stream.at(ULONG_MAX - 1), kEnd);
  EXPECT_EQ(stream.at(ULONG_MAX - kBufferUnits), kEnd);
  EXPECT_EQ(stream.find_first_pos_of(u'x', ULONG_MAX), ULONG_MAX);
  EXPECT_FALSE(stream.matches_case_sensitive(u"ab", ULONG_MAX));
  EXPECT_FALSE(stream.matches_case_insensitive(u"ab", ULONG_MAX - 1));
  EXPECT_EQ(source.buffer_size(), kBufferUnits);
  EXPECT_EQ(stream.at(kBufferUnits), text[kBufferUnits]);
}

TEST(TextStreamGrowing, APositionThatNoMemoryHoldsThrowsAndChangesNothing) {
  const std::u16string text = long_text(300'000);
  ScriptedSource source(text);
  const TextStream stream(&source);
  EXPECT_THROW(stream.at(1UL << 40), std::length_error);
  EXPECT_EQ(source.buffer_size(), kBufferUnits);
  EXPECT_EQ(stream.at(kBufferUnits), text[kBufferUnits]);
}

// --- advancing -----------------------------------------------------------------------------------

struct AdvanceCase {
  const char* rule;
  unsigned long look_ahead;  // this code unit is read first
  unsigned long advance;
  Sizes resizes;  // calls of the source by the advance alone
  Skips skips;
  Sizes fills;
};
std::ostream& operator<<(std::ostream& out, const AdvanceCase& row) { return out << row.rule; }

const AdvanceCase kAdvanceCases[] = {
    {"ByNothing", 0, 0, {}, {}, {}},
    {"WithinTheText", 0, 1'000, {}, {}, {}},
    {"AThirtySecondLeft", 0, 126'976, {}, {}, {}},
    {"LessThanAThirtySecondLeft", 0, 126'977, {}, {}, {126'977}},
    {"OneUnitLeft", 0, 131'071, {}, {}, {131'071}},
    {"ToTheEndOfTheLoadedText", 0, 131'072, {}, {{131'072, 0}}, {131'072}},
    {"OnePastTheLoadedText", 0, 131'073, {}, {{131'072, 1}}, {131'072}},
    {"FarPastTheLoadedText", 0, 400'000, {}, {{131'072, 268'928}}, {131'072}},
    // The buffer has 524,288 code units, which is not yet too big.
    {"BigAThirtySecondLeft", 299'999, 507'904, {}, {}, {}},
    {"BigLessLeft", 299'999, 507'905, {}, {}, {507'905}},
    {"BigToTheEnd", 299'999, 524'288, {}, {{524'288, 0}}, {524'288}},
    {"BigPastTheEnd", 299'999, 524'298, {}, {{524'288, 10}}, {524'288}},
    // The buffer has 786,432 code units, which is too big.
    {"TooBigAThirtySecondLeft", 599'999, 761'856, {}, {}, {}},
    {"TooBigLessLeft", 599'999, 761'857, {131'072}, {}, {106'497}},
    {"TooBigToTheEnd", 599'999, 786'432, {131'072}, {{786'432, 0}}, {131'072}},
    {"TooBigPastTheEnd", 599'999, 786'439, {131'072}, {{786'432, 7}}, {131'072}},
};

// Positions that are read after the window has moved.
constexpr unsigned long kLooks[] = {0, 1, 4'094, 4'095, 24'574, 24'575, 131'071, 131'072, 150'000};

class TextStreamAdvance : public testing::TestWithParam<AdvanceCase> {};

TEST_P(TextStreamAdvance, MovesTheWindow) {
  const AdvanceCase& row = GetParam();
  const std::u16string text = long_text(1'000'000);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.at(row.look_ahead);
  const std::size_t resizes_before = source.resizes().size();
  source.forget_calls();

  stream.advance(row.advance);

  EXPECT_EQ(Sizes(source.resizes().begin() + static_cast<std::ptrdiff_t>(resizes_before),
                  source.resizes().end()),
            row.resizes);
  EXPECT_EQ(source.skips(), row.skips);
  EXPECT_EQ(source.fills(), row.fills);
  if (!row.fills.empty()) {
    EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin());
  }
  for (const unsigned long pos : kLooks) {
    EXPECT_EQ(stream.at(pos), text[row.advance + pos]) << pos;
  }
}

// The same calls, sizes and texts with any kind of buffer.
template <typename Source>
void expect_advance(const AdvanceCase& row) {
  const std::u16string text = long_text(1'000'000);
  Source source(text);
  TextStream stream(&source);
  stream.at(row.look_ahead);
  const std::size_t size_before = buffer_size_of(source);
  source.forget_calls();

  stream.advance(row.advance);

  EXPECT_EQ(buffer_size_of(source), row.resizes.empty() ? size_before : row.resizes.back());
  EXPECT_EQ(source.skips(), row.skips);
  EXPECT_EQ(source.fills(), row.fills);
  if (!row.fills.empty()) {
    EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin());
  }
  for (const unsigned long pos : kLooks) {
    EXPECT_EQ(stream.at(pos), text[row.advance + pos]) << pos;
  }
}

TEST_P(TextStreamAdvance, MovesTheWindowOverTheBufferOfAFile) {
  expect_advance<FileBufferedSource>(GetParam());
}

TEST_P(TextStreamAdvance, MovesTheWindowOverADerivedBuffer) {
  expect_advance<DerivedBufferSource>(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamAdvance, testing::ValuesIn(kAdvanceCases),
                         testing_support::ByRule());

// After a look-ahead of 4,194,305 code units a thirty-second of the text is more than a block.
struct CutBackCase {
  const char* rule;
  std::size_t left;
  std::size_t size;  // of the buffer, afterwards
};
std::ostream& operator<<(std::ostream& out, const CutBackCase& row) { return out << row.rule; }

constexpr std::size_t kHugeUnits = 4'456'448;  // the buffer after such a look-ahead

const CutBackCase kCutBackCases[] = {
    {"AThirtySecondStays", 139'264, kHugeUnits},
    {"MoreThanABlockNeedsTwo", 139'263, 262'144},
    {"OneMoreThanABlockNeedsTwo", 131'073, 262'144},
    {"ExactlyOneBlock", 131'072, 131'072},
    {"LessThanABlock", 131'071, 131'072},
    {"OneUnit", 1, 131'072},
};

class TextStreamCutBack : public testing::TestWithParam<CutBackCase> {};

TEST_P(TextStreamCutBack, HoldsWhatRemains) {
  const CutBackCase& row = GetParam();
  const std::u16string text = long_text(kHugeUnits + 400'000);
  ScriptedSource source(text);
  TextStream stream(&source);
  EXPECT_EQ(stream.at(4'194'304), text[4'194'304]);
  ASSERT_EQ(source.buffer_size(), kHugeUnits);
  source.forget_calls();

  const std::size_t start = kHugeUnits - row.left;
  stream.advance(start);

  EXPECT_EQ(source.buffer_size(), row.size);
  EXPECT_EQ(source.skips(), Skips{});
  std::size_t asked = 0;
  for (const std::size_t units : source.fills()) asked += units;
  EXPECT_EQ(asked, row.size == kHugeUnits ? 0U : row.size - row.left);
  for (const unsigned long pos : kLooks) EXPECT_EQ(stream.at(pos), text[start + pos]) << pos;
  EXPECT_EQ(stream.at(row.left), text[kHugeUnits]);
  EXPECT_EQ(stream.at(row.left + 399'999), text[kHugeUnits + 399'999]);
  EXPECT_EQ(stream.at(row.left + 400'000), kEnd);
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamCutBack, testing::ValuesIn(kCutBackCases),
                         testing_support::ByRule());

TEST(TextStreamAdvancing, CompactionCountsTheTextHeldNotTheBuffer) {
  const std::u16string text = long_text(300);
  for (const unsigned long step : {97UL, 98UL}) {  // 100 / 32 is 3
    ScriptedSource source(text);
    source.shorten_fill(1, 100);
    TextStream stream(&source);
    stream.advance(step);
    EXPECT_EQ(source.fills(), (step == 97 ? Sizes{131'072} : Sizes{131'072, 98}));
    EXPECT_EQ(stream.at(0), text[step]);
    EXPECT_EQ(stream.at(150), text[step + 150]);
  }
}

TEST(TextStreamAdvancing, AfterTheLastLoadMovesNoText) {
  const std::u16string text = long_text(kBufferUnits);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(kBufferUnits - 1);
  EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin() + kBufferUnits - 1);
  EXPECT_EQ(stream.at(0), text[kBufferUnits - 1]);
  EXPECT_EQ(stream.at(1), kEnd);
  EXPECT_EQ(source.fills().size(), 1U);
}

TEST(TextStreamAdvancing, AShortRefillIsTheEnd) {
  const std::u16string text = long_text(kBufferUnits + 10);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(kBufferUnits - 5);
  EXPECT_EQ(source.fills(), (Sizes{131'072, 131'067}));
  EXPECT_EQ(stream.at(14), text[kBufferUnits + 9]);
  EXPECT_EQ(stream.at(15), kEnd);
  EXPECT_EQ(source.fills().size(), 2U);
}

TEST(TextStreamAdvancing, AShortRefillAfterASkipIsTheEnd) {
  const std::u16string text = long_text(kBufferUnits + 10);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(kBufferUnits + 3);
  EXPECT_EQ(stream.at(6), text[kBufferUnits + 9]);
  EXPECT_EQ(stream.at(7), kEnd);
  EXPECT_EQ(source.fills().size(), 2U);
}

void expect_empty_for_good(TextStream& stream) {
  for (const unsigned long step : {0UL, 1UL, 5UL, 200'000UL, 0UL}) {
    EXPECT_EQ(stream.at(0), kEnd);
    EXPECT_EQ(stream.at(1), kEnd);
    EXPECT_EQ(stream.find_first_pos_of(u'x', 0), 0U);
    EXPECT_EQ(stream.find_first_pos_of(u"xy", 0), 0U);
    EXPECT_EQ(stream.find_first_pos_not_of(u"xy", 0), 0U);
    EXPECT_EQ(stream.find_first_pos_not_of(u'x', 0), 0U);
    EXPECT_EQ(stream.find_first_pos_not_of(kEnd, 0), 0U);
    EXPECT_EQ(stream.find_first_non_digit(0), 0U);
    EXPECT_TRUE(stream.matches_case_sensitive(u"", 0));
    EXPECT_FALSE(stream.matches_case_sensitive(u"x", 0));
    stream.advance(step);
  }
}

TEST(TextStreamAdvancing, BeyondTheEndEmptiesTheWindowForGood) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{100}, kBufferUnits - 1,
                                 kBufferUnits, kBufferUnits + 1, kTooBigUnits + 1}) {
    for (const unsigned long past : {1UL, 2UL, 131'072UL}) {
      ScriptedSource source(std::u16string(size, u'x'));
      TextStream stream(&source);
      stream.advance(size + past);
      expect_empty_for_good(stream);
    }
  }
}

TEST(TextStreamAdvancing, BeyondTheEndAsksTheSourceForNothingMore) {
  ScriptedSource source(long_text(200'000));
  TextStream stream(&source);
  stream.advance(300'000);
  source.forget_calls();
  EXPECT_EQ(stream.at(0), kEnd);
  stream.advance(1);
  EXPECT_EQ(source.fills(), std::vector<std::size_t>{});
}

TEST(TextStreamAdvancing, ByTheLargestNumberEmptiesTheWindowForGood) {
  ScriptedSource source(std::u16string(300'000, u'x'));
  TextStream stream(&source);
  stream.advance(ULONG_MAX);
  expect_empty_for_good(stream);
}

TEST(TextStreamAdvancing, ToTheEndEmptiesTheWindowForGood) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kBufferUnits, kBufferUnits + 1,
                                 2 * kBufferUnits, 3 * kBufferUnits + 7}) {
    ScriptedSource source(std::u16string(size, u'x'));
    TextStream stream(&source);
    stream.advance(size);
    expect_empty_for_good(stream);
  }
}

TEST(TextStreamAdvancing, BeyondTheEndKeepsNoTextOfABigBuffer) {
  ScriptedSource source(std::u16string(800'000, u'x'));
  TextStream stream(&source);
  EXPECT_EQ(stream.find_first_pos_of(u'y', 0), 800'000U);
  stream.advance(800'001);
  expect_empty_for_good(stream);
}

TEST(TextStreamAdvancing, PassesOverEndMarks) {
  ScriptedSource source(u"a\uffffb\uffffc");
  TextStream stream(&source);
  stream.advance(2);
  EXPECT_EQ(stream.at(0), u'b');
  EXPECT_EQ(stream.find_first_pos_of(u'c', 0), 1U);
  stream.advance(2);
  EXPECT_EQ(stream.find_first_pos_of(u'c', 0), 0U);
}

// --- the steps on their own ----------------------------------------------------------------------

TEST(TextStreamAdjustBuffer, DoesNotUseItsSecondArgument) {
  const std::u16string text = long_text(300'000);
  for (const unsigned long available : {0UL, 131'072UL, ULONG_MAX}) {
    for (const unsigned long step : {1'000UL, 126'977UL}) {
      ScriptedSource source(text);
      TextStream stream(&source);
      stream.adjust_buffer(step, available);
      EXPECT_EQ(stream.at(0), text[step]);
      EXPECT_EQ(stream.at(140'000), text[step + 140'000]);
    }
  }
}

TEST(TextStreamResizeIfTooBig, CutsBackAboveTheThresholdOnly) {
  ScriptedSource source(long_text(1'000'000));
  TextStream stream(&source);
  stream.at(299'999);
  stream.resize_if_too_big(0);
  stream.resize_if_too_big(524'288);
  EXPECT_EQ(source.buffer_size(), 524'288U);
  stream.resize_if_too_big(524'289);
  EXPECT_EQ(source.buffer_size(), 131'072U);
}

TEST(TextStreamResizeInternalBuffer, KeepsThePlaceOfTheWindow) {
  const std::u16string text = long_text(300'000);
  ScriptedSource source(text);
  TextStream stream(&source);
  stream.advance(5);
  stream.resizeInternalBuffer(200'000);
  EXPECT_EQ(source.buffer_size(), 200'000U);
  EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin() + 5);
  EXPECT_EQ(stream.at(0), text[5]);
  EXPECT_EQ(stream.at(kBufferUnits - 6), text[kBufferUnits - 1]);
  EXPECT_EQ(source.fills().size(), 1U);
}

// The text of such a small buffer is inside the string object, so a swap moves it.
template <typename Source>
void expect_refill_of_a_tiny_buffer() {
  const std::u16string text = long_text(300'000);
  Source source(text);
  TextStream stream(&source);
  stream.resizeInternalBuffer(3);
  for (std::size_t step = 0; step < 3; ++step) {
    stream.advance(3);
    EXPECT_EQ(stream.window_begin(), source.getBufferManager()->begin());
    EXPECT_EQ(buffer_size_of(source), 3U);
    EXPECT_EQ(std::u16string(stream.window_begin(), 3), text.substr(131'072 + 3 * step, 3));
  }
  EXPECT_EQ(stream.at(1'000), text[131'072 + 6 + 1'000]);
}

TEST(TextStreamResizeInternalBuffer, OfATinySizeIsRefilled) {
  expect_refill_of_a_tiny_buffer<ScriptedSource>();
  expect_refill_of_a_tiny_buffer<FileBufferedSource>();
}

// --- sources that fail ---------------------------------------------------------------------------

// The text and the position of the window in it: the expected answers of a stream.
class Model {
 public:
  explicit Model(std::u16string text) : text_(std::move(text)) {}

  char16_t at(unsigned long pos) const {
    return pos < text_.size() - start_ ? text_[start_ + pos] : kEnd;
  }
  template <typename Stop>
  unsigned long first(unsigned long pos, Stop stop) const {
    while (at(pos) != kEnd && !stop(at(pos))) ++pos;
    return pos;
  }
  std::u16string units(unsigned long pos, std::size_t count) const {
    return pos < left() ? text_.substr(start_ + pos, count) : std::u16string();
  }
  bool matches(const std::u16string& wanted, unsigned long pos) const {
    return wanted.empty() || units(pos, wanted.size()) == wanted;
  }
  void advance(unsigned long n) { start_ += std::min(n, left()); }

  unsigned long left() const { return text_.size() - start_; }

 private:
  std::u16string text_;
  std::size_t start_ = 0;
};

void expect_same_units(const TextStream& stream, const Model& model,
                       std::initializer_list<unsigned long> positions) {
  for (const unsigned long pos : positions) EXPECT_EQ(stream.at(pos), model.at(pos)) << pos;
}

enum class Failing { kFill, kSkip, kResize };

struct FailureCase {
  const char* rule;
  unsigned long look_ahead;  // this code unit is read first
  unsigned long before;      // then the window moves by this
  Failing failing;
  unsigned long advance;  // the failing call; 0: a read of the code unit after the loaded text
};
std::ostream& operator<<(std::ostream& out, const FailureCase& row) { return out << row.rule; }

const FailureCase kFailureCases[] = {
    {"FillOfALookAhead", 0, 0, Failing::kFill, 0},
    {"FillOfALookAheadBehindAnAdvance", 0, 100'000, Failing::kFill, 0},
    {"ResizeOfALookAhead", 0, 0, Failing::kResize, 0},
    {"ResizeOfALookAheadBehindAnAdvance", 0, 100'000, Failing::kResize, 0},
    {"FillOfACompaction", 0, 0, Failing::kFill, 131'000},
    {"FillOfACompactionBehindAnAdvance", 0, 120'000, Failing::kFill, 11'000},
    {"FillOfACompactionOfABigBuffer", 299'999, 0, Failing::kFill, 524'000},
    {"FillOfACutBack", 599'999, 0, Failing::kFill, 786'000},
    {"FillOfACutBackBehindAnAdvance", 599'999, 700'000, Failing::kFill, 86'000},
    {"ResizeOfACutBack", 599'999, 0, Failing::kResize, 786'000},
    {"ResizeOfACutBackBehindAnAdvance", 599'999, 700'000, Failing::kResize, 86'000},
    {"SkipOfNothing", 0, 0, Failing::kSkip, 131'072},
    {"SkipOfMuch", 0, 0, Failing::kSkip, 500'000},
    {"SkipBehindAnAdvance", 0, 100'000, Failing::kSkip, 100'000},
    {"FillBehindASkipOfNothing", 0, 0, Failing::kFill, 131'072},
    {"FillBehindASkip", 0, 0, Failing::kFill, 500'000},
    {"FillBehindASkipBehindAnAdvance", 0, 100'000, Failing::kFill, 100'000},
    {"FillBehindASkipOfABigBuffer", 299'999, 0, Failing::kFill, 600'000},
    {"FillBehindASkipThatCutsBack", 599'999, 0, Failing::kFill, 800'000},
    {"ResizeBehindASkip", 599'999, 0, Failing::kResize, 800'000},
};

class TextStreamFailure : public testing::TestWithParam<FailureCase> {};

// A stream over a long text, prepared as the row says, whose next call has failed.
template <typename Source>
struct AfterFailure {
  explicit AfterFailure(const FailureCase& row) {
    stream.at(row.look_ahead);
    loaded = buffer_size_of(source) - row.before;
    stream.advance(row.before);
    model.advance(row.before);
    arm(row.failing);
    if (row.advance == 0) {
      EXPECT_THROW(stream.at(loaded), ScriptedFailure);
    } else {
      EXPECT_THROW(stream.advance(row.advance), ScriptedFailure);
    }
    source.fail_no_more();
  }

  void arm(Failing failing) {
    switch (failing) {
      case Failing::kFill:
        return source.fail_fill(1);
      case Failing::kSkip:
        return source.fail_skip(1);
      case Failing::kResize:
        return source.fail_resize(1);
    }
  }

  Model model{long_text(1'000'000)};
  Source source{long_text(1'000'000)};
  TextStream stream{&source};
  unsigned long loaded = 0;
};

template <typename Source>
void expect_unchanged_stream(const FailureCase& row) {
  AfterFailure<Source> after(row);
  const unsigned long loaded = after.loaded;
  const Model& model = after.model;
  expect_same_units(after.stream, model, {0, 1, 500, 10'000, loaded / 2, loaded - 2, loaded - 1});
  EXPECT_TRUE(after.stream.matches_case_sensitive(model.units(0, loaded), 0));
  expect_same_units(after.stream, model, {loaded, loaded + 1, model.left() - 1, model.left()});
}

TEST_P(TextStreamFailure, LeavesTheStreamAsItWas) {
  expect_unchanged_stream<ScriptedSource>(GetParam());
}

TEST_P(TextStreamFailure, LeavesTheStreamWithTheBufferOfAFileAsItWas) {
  if (GetParam().failing != Failing::kResize) {
    expect_unchanged_stream<FileBufferedSource>(GetParam());
  }
}

template <typename Source>
void expect_success_when_repeated(const FailureCase& row) {
  AfterFailure<Source> after(row);
  after.stream.advance(row.advance);
  after.model.advance(row.advance);
  expect_same_units(after.stream, after.model, {0, 1, 500, 71, 72, 431, 432, 100'000, 131'072});
  expect_same_units(after.stream, after.model, {after.model.left() - 1, after.model.left()});
}

TEST_P(TextStreamFailure, TheCallSucceedsWhenItIsMadeAgain) {
  expect_success_when_repeated<ScriptedSource>(GetParam());
}

TEST_P(TextStreamFailure, TheCallSucceedsWhenItIsMadeAgainWithTheBufferOfAFile) {
  if (GetParam().failing != Failing::kResize) {
    expect_success_when_repeated<FileBufferedSource>(GetParam());
  }
}

INSTANTIATE_TEST_SUITE_P(Table, TextStreamFailure, testing::ValuesIn(kFailureCases),
                         testing_support::ByRule());

// If the text that a failed call has overwritten cannot be restored either, the stream is empty.
void expect_ended(TextStream& stream) {
  EXPECT_EQ(stream.at(0), kEnd);
  EXPECT_EQ(stream.find_first_pos_of(u'a', 0), 0U);
  stream.advance(1);
  EXPECT_EQ(stream.at(0), kEnd);
}

// A source that does not go back would leave a gap after the loaded text.
template <typename Source>
void expect_end_after_loaded_text() {
  Source source(long_text(1'000'000));
  TextStream stream(&source);
  source.fail_fill(1);
  source.fail_skip(2);  // the first skips 368,928 code units, the second would go back
  EXPECT_THROW(stream.advance(500'000), ScriptedFailure);
  source.fail_no_more();
  const Model model{long_text(1'000'000)};
  expect_same_units(stream, model, {0, 1, 500, TextStream::kBufferUnits - 1});
  EXPECT_EQ(stream.at(TextStream::kBufferUnits), kEnd);
}

TEST(TextStreamFailedTwice, EndsBehindWhatIsLoadedWhenTheSourceDoesNotGoBack) {
  expect_end_after_loaded_text<ScriptedSource>();
  expect_end_after_loaded_text<FileBufferedSource>();
}

TEST(TextStreamFailedTwice, ReadsAsEndedWhenTheBufferDoesNotGrowAgain) {
  ScriptedSource source(long_text(1'000'000));
  TextStream stream(&source);
  stream.at(599'999);
  source.fail_fill(1);
  source.fail_resize(2);  // the first cuts the buffer back, the second would make room again
  EXPECT_THROW(stream.advance(800'000), ScriptedFailure);
  source.fail_no_more();
  expect_ended(stream);
}

TEST(TextStreamConstruction, PassesOnWhatTheSourceThrows) {
  ScriptedSource failing_fill(u"abc");
  failing_fill.fail_fill(1);
  EXPECT_THROW(TextStream{&failing_fill}, ScriptedFailure);
  ScriptedSource failing_resize(u"abc");
  failing_resize.fail_resize(1);
  EXPECT_THROW(TextStream{&failing_resize}, ScriptedFailure);
}

// --- any sequence of calls -----------------------------------------------------------------------

// Runs of blanks, digits and letters of very different lengths, with some end marks.
std::u16string random_text(std::mt19937& random, std::size_t size) {
  std::u16string text;
  text.reserve(size);
  while (text.size() < size) {
    const std::size_t most = std::size_t{1} << random() % 19;
    const std::size_t run = std::min<std::size_t>(1 + random() % most, size - text.size());
    const char16_t unit = u" 0123456789aAbB,;\n\uffff"[random() % 19];
    text.append(unit == kEnd ? 1 : run, unit);
  }
  return text;
}

// Distances of all sizes, mostly small, sometimes more than a buffer.
unsigned long random_distance(std::mt19937& random) {
  const unsigned bits = random() % 6 == 0 ? 20 : 16;
  return random() % (1UL << random() % bits);
}

// One call of the stream and of the model. Exceptions of the stream pass through.
class RandomCall {
 public:
  // `loaded` is the distance from the window to the end of the storage: steps of about that size,
  // or more, make the stream move or skip text.
  RandomCall(std::mt19937& random, const Model& model, unsigned long loaded)
      : kind_(random() % 12),
        distance_(random_distance(random)),
        step_(random_step(random, loaded)),
        set_(random() % 2 == 0 ? u" \t" : u",;\n"),
        unit_(u" 0aA;\n"[random() % 6]),
        wanted_(model.units(distance_, random_distance(random) % 2'000)) {
    if (!wanted_.empty() && random() % 3 == 0) wanted_[random() % wanted_.size()] ^= 1;
  }

  void make(TextStream& stream, Model& model) const {
    switch (kind_) {
      case 0:
        return expect(stream.at(distance_), model.at(distance_));
      case 1:
        return expect(stream.find_first_pos_of(unit_, distance_),
                      model.first(distance_, [&](char16_t c) { return c == unit_; }));
      case 2:
        return expect(stream.find_first_pos_of(set_, distance_),
                      model.first(distance_, [&](char16_t c) { return in_set(c); }));
      case 3:
        return expect(stream.find_first_pos_not_of(set_, distance_),
                      model.first(distance_, [&](char16_t c) { return !in_set(c); }));
      case 4:
        return expect(stream.find_first_pos_not_of(unit_, distance_),
                      model.first(distance_, [&](char16_t c) { return c != unit_; }));
      case 5:
        return expect(stream.find_first_non_digit(distance_),
                      model.first(distance_, [](char16_t c) { return c < u'0' || c > u'9'; }));
      case 6:
        return expect(stream.matches_case_sensitive(wanted_, distance_),
                      model.matches(wanted_, distance_));
      case 7: {
        const unsigned long line = stream.find_first_pos_of(u'\n', 0);
        stream.advance(line);
        return model.advance(line);
      }
      default:
        stream.advance(step_);
        return model.advance(step_);
    }
  }

 private:
  static unsigned long random_step(std::mt19937& random, unsigned long loaded) {
    const unsigned long small = random_distance(random) / 8;
    switch (random() % 8) {
      case 0:
        return loaded + small;
      case 1:
      case 2:
        return loaded - std::min(loaded, small);
      default:
        return small;
    }
  }

  bool in_set(char16_t c) const { return set_.find(c) != std::u16string::npos; }
  void expect(unsigned long actual, unsigned long expected) const {
    EXPECT_EQ(actual, expected) << "call " << kind_ << " at " << distance_;
  }

  unsigned long kind_;
  unsigned long distance_;
  unsigned long step_;
  std::u16string set_;
  char16_t unit_;
  std::u16string wanted_;
};

// What the calls of all seeds caused: every way of handling the buffer must occur.
struct Reached {
  std::size_t growths = 0;
  std::size_t cut_backs = 0;
  std::size_t compactions = 0;
  std::size_t skips = 0;
  std::size_t failures = 0;

  // Counts a finished call, by the size of the buffer and the calls of the source.
  void add(ScriptedSource& source, std::size_t size_before) {
    const std::size_t size = buffer_size_of(source);
    if (size > size_before) ++growths;
    if (size < size_before) ++cut_backs;
    if (!source.skips().empty()) ++skips;
    const bool grown = size > size_before;
    if (source.skips().empty() && !grown && !source.fills().empty()) ++compactions;
    source.forget_calls();
  }
};

std::ostream& operator<<(std::ostream& out, const Reached& reached) {
  return out << reached.growths << " growths, " << reached.cut_backs << " cut-backs, "
             << reached.compactions << " compactions, " << reached.skips << " skips, "
             << reached.failures << " failures";
}

unsigned long room_ahead(ScriptedSource& source, const TextStream& stream) {
  return static_cast<unsigned long>(source.getBufferManager()->end() - stream.window_begin());
}

constexpr unsigned kSeeds = 12;
constexpr int kCalls = 80;

template <typename Source>
class TextStreamModel : public testing::Test {};
using BufferedSources = testing::Types<ScriptedSource, FileBufferedSource>;
TYPED_TEST_SUITE(TextStreamModel, BufferedSources);

TYPED_TEST(TextStreamModel, AnswersLikeAPlainString) {
  Reached reached;
  for (unsigned seed = 1; seed <= kSeeds && !this->HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::u16string text = random_text(random, 600'001 + random() % 1'500'000);
    Model model(text);
    TypeParam source(text);
    TextStream stream(&source);
    source.forget_calls();
    for (int call = 0; call < kCalls && !this->HasFailure(); ++call) {
      const std::size_t size_before = buffer_size_of(source);
      RandomCall(random, model, room_ahead(source, stream)).make(stream, model);
      reached.add(source, size_before);
      EXPECT_EQ(stream.at(0), model.at(0));
    }
    stream.advance(model.left());
    expect_empty_for_good(stream);
  }
  EXPECT_GT(reached.growths, kSeeds) << reached;
  EXPECT_GT(reached.cut_backs, 0U) << reached;
  EXPECT_GT(reached.compactions, kSeeds) << reached;
  EXPECT_GT(reached.skips, kSeeds) << reached;
}

TYPED_TEST(TextStreamModel, AnswersLikeAPlainStringAfterEachFailure) {
  Reached reached;
  for (unsigned seed = 101; seed <= 100 + kSeeds && !this->HasFailure(); ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const std::u16string text = random_text(random, 600'001 + random() % 1'500'000);
    Model model(text);
    TypeParam source(text);
    TextStream stream(&source);
    for (int call_number = 0; call_number < kCalls && !this->HasFailure(); ++call_number) {
      const RandomCall call(random, model, room_ahead(source, stream));
      const unsigned long look = random_distance(random);
      if (random() % 2 == 0) source.fail_fill(1);
      if (random() % 2 == 0) source.fail_skip(1);
      if (random() % 4 == 0) source.fail_resize(1);
      try {
        call.make(stream, model);
        source.fail_no_more();
      } catch (const ScriptedFailure&) {
        ++reached.failures;
        source.fail_no_more();
        expect_same_units(stream, model, {0, look, look / 2});
        call.make(stream, model);
      }
      expect_same_units(stream, model, {0, look});
    }
  }
  EXPECT_GT(reached.failures, kSeeds) << reached;
}

// Some long lines make the buffer grow, the lines after them make it shrink.
TEST(TextStreamModelLines, AreReadOneAfterTheOther) {
  std::u16string text;
  for (const std::size_t length :
       {10UL, 200'000UL, 5UL, 0UL, 700'000UL, 3UL, 131'071UL, 131'072UL, 90'000UL, 1UL}) {
    text += long_text(length);
    text += u'\n';
  }
  ScriptedSource source(text);
  TextStream stream(&source);
  std::size_t start = 0;
  while (start < text.size()) {
    const std::size_t length = text.find(u'\n', start) - start;
    ASSERT_EQ(stream.find_first_pos_of(u'\n', 0), length);
    EXPECT_TRUE(stream.matches_case_sensitive(text.substr(start, length + 1), 0));
    stream.advance(length + 1);
    start += length + 1;
  }
  expect_empty_for_good(stream);
}

}  // namespace
}  // namespace textio
