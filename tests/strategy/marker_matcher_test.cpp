// Two ways lead to an answer: comparing the markers one by one, and looking into an index of a text
// that stands still. Each row takes both, and so do random lists and texts.
#include <vltextstream/strategy/marker_matcher.hpp>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <vltextstream/strategy/marker_index.hpp>
#include <vltextstream/strategy/scan.hpp>
#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::Texts;
using testing_support::with_nul;
using Lengths = std::vector<std::size_t>;

// Units that stand in no text here. Behind a list they make it one of many units.
const std::u16string kNeverFound(40, u'#');

MarkerMatcher matcher_of(const Texts& markers) {
  return MarkerMatcher(get_or_create_delim(markers));
}

MarkerMatcher matcher_of_many(Texts markers) {
  markers.push_back(kNeverFound);
  return matcher_of(markers);
}

// The answers at each place of the text and at its end.
Lengths answers(const MarkerMatcher& matcher, const Field& text) {
  Lengths lengths;
  for (std::size_t i = 0; i <= text.length; ++i) lengths.push_back(matcher.length_at(text, i));
  return lengths;
}

// -- both ways ----------------------------------------------------------------------------------

struct AnswerCase {
  const char* rule;
  Texts markers;
  std::u16string text;
  Lengths lengths;  // at each place and at the end
};
std::ostream& operator<<(std::ostream& out, const AnswerCase& row) { return out << row.rule; }

const AnswerCase kAnswerCases[] = {
    {"AMarkerMatchesWhereItBegins", {u"::", u";"}, u"a::b;", {0, 2, 0, 0, 1, 0}},
    {"AMarkerMustFit", {u"::", u"::::"}, u":::", {2, 2, 0, 0}},
    {"TheEarlierInTheListWins", {u"\r\n", u"\n", u"\r"}, u"\r\n\r", {2, 1, 1, 0}},
    {"TheEarlierWinsEvenWhenItIsShorter", {u"\r", u"\r\n", u"\n"}, u"\r\n", {1, 1, 0}},
    {"AnEarlierOneThatDoesNotFitIsPassedOver", {u"abc", u"ab"}, u"abcab", {3, 0, 0, 2, 0, 0}},
    {"OverlapsAreFoundAtEachPlace", {u"aba", u"bab"}, u"ababa", {3, 3, 3, 0, 0, 0}},
    {"EndsOfMarkersAreMarkers", {u"abcd", u"bcd", u"cd"}, u"abcdcd", {4, 3, 2, 0, 2, 0, 0}},
    {"AnEmptyMarkerEndsTheSearch", {u"a", u"", u"b"}, u"ab", {1, 0, 0}},
    {"AnEmptyMarkerInFrontHidesAll", {u"", u"a"}, u"aa", {0, 0, 0}},
    {"AnEmptyMarkerHidesTheLongerOne", {u"ab", u"", u"abc"}, u"abc", {2, 0, 0, 0}},
    {"AnEmptyMarkerMatchesNoNul", {u"", u"a"}, with_nul(u"\0"), {0, 0}},
    {"NulMatchesItself", {with_nul(u"\0"), with_nul(u"a\0")}, with_nul(u"a\0"), {2, 1, 0}},
    {"NulInFrontOfAnEmptyMarker", {with_nul(u"\0"), u""}, with_nul(u"\0a"), {1, 0, 0}},
    {"TheEndMarkMatchesInTheText", {u"\uFFFF", u";"}, u"a\uFFFF", {0, 1, 0}},
    {"TheEndMarkInAMarkerIsNotTheMissingUnit", {u"a\uFFFF", u";"}, u"a\uFFFFa", {2, 0, 0, 0}},
    {"RepeatedMarkersAreOne", {u"ab", u"ab", u"a"}, u"aba", {2, 0, 1, 0}},
    {"AnEmptyTextHasAnEndOnly", {u"a", u"b"}, u"", {0}},
};

class MarkerMatcherLengthAt : public testing::TestWithParam<AnswerCase> {};

TEST_P(MarkerMatcherLengthAt, ComparesAFewMarkers) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(answers(matcher_of(GetParam().markers), text.field()), GetParam().lengths);
}

TEST_P(MarkerMatcherLengthAt, ComparesManyMarkers) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of_many(GetParam().markers);
  ASSERT_TRUE(matcher.may_need_index());
  EXPECT_EQ(answers(matcher, text.field()), GetParam().lengths);
}

TEST_P(MarkerMatcherLengthAt, CountsWhatItComparesInAStandingText) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of_many(GetParam().markers);
  MarkerIndex index(matcher);
  index.bind(text.field());
  EXPECT_EQ(answers(matcher, text.field()), GetParam().lengths);
  EXPECT_FALSE(index.is_made());
}

TEST_P(MarkerMatcherLengthAt, LooksItUpInTheIndex) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of_many(GetParam().markers);
  MarkerIndex index(matcher);
  index.bind(text.field());
  index.make();
  EXPECT_EQ(answers(matcher, text.field()), GetParam().lengths);
  EXPECT_TRUE(index.is_made());
}

INSTANTIATE_TEST_SUITE_P(Table, MarkerMatcherLengthAt, testing::ValuesIn(kAnswerCases), ByRule());

TEST(MarkerMatcherSingle, MatchesTheEndMarkAtTheVeryEndToo) {
  EXPECT_EQ(answers(matcher_of({u"\uFFFF"}), {u"a", 1}), (Lengths{0, 1}));
  EXPECT_EQ(answers(matcher_of({u";"}), {u";", 1}), (Lengths{1, 0}));
}

TEST(MarkerMatcherSets, WithoutMarkersMatchNothing) {
  EXPECT_EQ(answers(matcher_of({}), {u"a", 1}), (Lengths{0, 0}));
}

// What a host says of the first characters holds, for the index as well.
TEST(MarkerMatcherSets, MatchOnlyWhereAFirstCharacterStands) {
  auto set = std::make_shared<DelimiterSet>();
  set->strings = {u"ab", u"b", kNeverFound};
  set->first_chars = u"b";
  set->first_chars_begin = set->first_chars.data();
  set->first_chars_end = set->first_chars_begin + 1;
  const MarkerMatcher matcher(set);
  const ExactText text(u"ab");
  EXPECT_EQ(answers(matcher, text.field()), (Lengths{0, 1, 0}));
  MarkerIndex index(matcher);
  index.bind(text.field());
  index.make();
  EXPECT_EQ(answers(matcher, text.field()), (Lengths{0, 1, 0}));
}

TEST(MarkerMatcherSets, WithoutFirstCharactersMatchNothing) {
  auto set = std::make_shared<DelimiterSet>();
  set->strings = {u"a", u"b", kNeverFound};
  EXPECT_EQ(answers(MarkerMatcher(set), {u"ab", 2}), (Lengths{0, 0, 0}));
}

TEST(MarkerMatcherSize, AsksForAnIndexFromMoreThanAFewUnitsOn) {
  EXPECT_FALSE(matcher_of({u"\r\n", u"\n", u"\r"}).may_need_index());
  EXPECT_FALSE(matcher_of({std::u16string(31, u'a')}).may_need_index());
  EXPECT_TRUE(matcher_of({std::u16string(32, u'a')}).may_need_index());
  EXPECT_FALSE(matcher_of(Texts(16, u"a")).may_need_index());
  EXPECT_TRUE(matcher_of(Texts(17, u"a")).may_need_index());
}

// -- the index ----------------------------------------------------------------------------------

// 64 markers of which only the last unit differs: at each 'a' two units of each are compared.
Texts nearly_matching_markers() {
  Texts markers;
  for (char16_t k = 0; k < 64; ++k) markers.push_back({u'a', static_cast<char16_t>(u'\u0100' + k)});
  return markers;
}

// 64 markers of 2 units allow 64 * 3 * 8 units to be compared, the text 100 * 8 more. That is used
// up after 18 places with 64 * 2 units each, and looked at before the next place.
TEST(MarkerIndexBudget, IsMadeOnceComparisonsHaveBeenWasteful) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText text(std::u16string(100, u'a'));
  MarkerIndex index(matcher);
  index.bind(text.field());
  std::size_t places = 0;
  for (; places < text.size() && !index.is_made(); ++places) {
    EXPECT_EQ(matcher.length_at(text.field(), places), 0u);
  }
  EXPECT_EQ(places, (64 * 3 * 8 + 100 * 8 + 127) / 128 + 1);
}

TEST(MarkerIndexBudget, IsKeptFromTextToText) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText first(std::u16string(100, u'a'));
  const ExactText second(u"aa\u0101");
  MarkerIndex index(matcher);
  index.bind(first.field());
  answers(matcher, first.field());
  EXPECT_TRUE(index.is_made());
  index.bind(second.field());
  EXPECT_FALSE(index.is_made());
  EXPECT_EQ(answers(matcher, second.field()), (Lengths{0, 2, 0, 0}));
  EXPECT_TRUE(index.is_made());
}

// The lines of a text use up together what a long text uses up alone.
TEST(MarkerIndexBudget, IsSharedByTheTextsOfOneWalk) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText line(u"aaaa");
  const MarkerIndex walk(matcher);
  bool is_made = false;
  for (int lines = 0; lines < 10; ++lines) {
    MarkerIndex index(matcher);
    index.bind(line.field());
    answers(matcher, line.field());
    is_made = index.is_made();
  }
  EXPECT_TRUE(is_made);
}

TEST(MarkerIndexBinding, AnswersForTheBoundTextOnly) {
  const MarkerMatcher matcher = matcher_of_many({u"ab", u"b"});
  const ExactText text(u"abb");
  MarkerIndex index(matcher);
  index.bind(text.field());
  index.make();
  EXPECT_EQ(answers(matcher, slice(text.field(), 0, 1)), (Lengths{0, 0}));
  EXPECT_EQ(answers(matcher, slice(text.field(), 1, 3)), (Lengths{1, 1, 0}));
  EXPECT_EQ(answers(matcher, {u"bab", 3}), (Lengths{1, 2, 1, 0}));
}

TEST(MarkerIndexBinding, EndsWithTheIndex) {
  const MarkerMatcher matcher = matcher_of_many({u"ab", u"b"});
  std::u16string text = u"abb";
  const Field field(text.data(), text.size());
  {
    MarkerIndex index(matcher);
    index.bind(field);
    index.make();
    EXPECT_EQ(answers(matcher, field), (Lengths{2, 1, 1, 0}));
  }
  text = u"bab";
  EXPECT_EQ(answers(matcher, Field(text.data(), text.size())), (Lengths{1, 2, 1, 0}));
}

TEST(MarkerIndexBinding, ReturnsToTheOuterText) {
  const MarkerMatcher matcher = matcher_of_many({u"ab", u"b"});
  const ExactText text(u"abb");
  const Field line = slice(text.field(), 0, 1);
  MarkerIndex outer(matcher);
  outer.bind(text.field());
  outer.make();
  {
    MarkerIndex inner(matcher);
    inner.bind(line);
    EXPECT_EQ(answers(matcher, line), (Lengths{0, 0}));
    EXPECT_TRUE(inner.is_made()) << "the outer one has the automaton";
  }
  EXPECT_EQ(answers(matcher, text.field()), (Lengths{2, 1, 1, 0}));
}

TEST(MarkerMatcherCopy, DoesNotKnowTheIndex) {
  const MarkerMatcher matcher = matcher_of_many({u"ab", u"b"});
  const ExactText text(u"abb");
  auto index = std::make_unique<MarkerIndex>(matcher);
  index->bind(text.field());
  index->make();
  const MarkerMatcher copy = matcher;
  index.reset();
  EXPECT_EQ(answers(copy, text.field()), (Lengths{2, 1, 1, 0}));
}

// -- random lists and texts ---------------------------------------------------------------------

std::u16string to_text(const std::vector<int>& numbers) {
  constexpr char16_t kAlphabet[] = {u'a', u'b', u'\0', u'\uFFFF'};
  std::u16string text;
  for (const int number : numbers) text += kAlphabet[number];
  return text;
}

std::vector<int> random_numbers(int most_units) {
  const auto count = static_cast<std::size_t>(*rc::gen::inRange(0, most_units + 1));
  return *rc::gen::container<std::vector<int>>(
      count,
      rc::gen::weightedOneOf<int>({{8, rc::gen::inRange(0, 2)}, {1, rc::gen::inRange(2, 4)}}));
}

Texts random_markers() {
  Texts markers;
  for (int count = *rc::gen::inRange(0, 12); count > 0; --count) {
    std::u16string marker = to_text(random_numbers(5));
    const bool may_be_empty = *rc::gen::inRange(0, 8) == 0;
    if (marker.empty() && !may_be_empty) marker = u"b";
    markers.push_back(marker);
  }
  return markers;
}

TEST(MarkerIndexProperty, AnswersAsPlainComparisonsDo) {
  EXPECT_TRUE(rc::check([] {
    const Texts markers = random_markers();
    const auto plain = get_or_create_delim([&] {
      Texts list = markers;
      list.push_back(kNeverFound);
      return list;
    }());
    const MarkerMatcher matcher = matcher_of_many(markers);
    const ExactText text(to_text(random_numbers(40)));
    MarkerIndex index(matcher);
    const std::size_t begin = *rc::gen::inRange<std::size_t>(0, text.size() + 1);
    const std::size_t end = *rc::gen::inRange<std::size_t>(begin, text.size() + 1);
    for (const Field& part : {text.field(), slice(text.field(), begin, end)}) {
      index.bind(part);
      index.make();
      for (std::size_t i = 0; i <= part.length; ++i) {
        RC_ASSERT(matcher.length_at(part, i) == match_length(*plain, part, i));
      }
      RC_ASSERT(index.is_made());
    }
  }));
}

// -- lists of units -----------------------------------------------------------------------------

TEST(UnitBitsOf, AreMadeOfLongListsOnly) {
  EXPECT_EQ(make_unit_bits(std::u16string(32, u'a')), nullptr);
  const auto bits = make_unit_bits(std::u16string(32, u'a') + with_nul(u"\0\uFFFF"));
  ASSERT_NE(bits, nullptr);
  EXPECT_EQ(bits->count(), 3u);
  EXPECT_TRUE(bits->test(0) && bits->test(u'a') && bits->test(0xFFFF));
}

TEST(UnitBitsOf, FindWhatTheListFinds) {
  const ExactText text(u"xyza");
  const std::u16string list(40, u'z');
  const auto bits = make_unit_bits(list);
  EXPECT_EQ(find_first_of(text.field(), 0, list, bits.get()), 2u);
  EXPECT_EQ(find_first_of(text.field(), 3, list, bits.get()), 4u);
  EXPECT_EQ(find_first_of(text.field(), 9, list, bits.get()), 9u);
  EXPECT_EQ(find_first_of(text.field(), 0, u"z", nullptr), 2u);
}

}  // namespace
}  // namespace textio
