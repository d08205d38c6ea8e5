// There are two ways to the result: comparing the markers one by one, and an index. Each row tests
// both, and so do random lists and texts.
#include <vltextstream/strategy/search/marker_search.hpp>

#include <gtest/gtest.h>
#include <rapidcheck.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

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

// Code units that occur in no text here. At the start of a list they make it a large one.
const std::u16string kNeverFound(40, u'#');

MarkerMatcher matcher_of(const Texts& markers) {
  return MarkerMatcher(get_or_create_delim(markers));
}

MarkerMatcher matcher_of_many(Texts markers) {
  markers.insert(markers.begin(), kNeverFound);
  return matcher_of(markers);
}

// The results at each position of the text and at its end.
Lengths answers(MarkerSearch& search, const Field& text) {
  Lengths lengths;
  for (std::size_t i = 0; i <= text.length; ++i) lengths.push_back(search.length_at(i));
  return lengths;
}

// A text in which no comparison finds a match, long enough that an index is made.
const std::u16string kWaste(2'000, u'#');

// Makes the index, which is kept for the next texts.
void waste_comparisons(MarkerSearch& search) {
  const ExactText text(kWaste);
  search.move_to(text.field());
  for (std::size_t i = 0; i < text.size() && !search.is_indexed(); ++i) search.length_at(i);
  ASSERT_TRUE(search.is_indexed());
}

// -- both ways ----------------------------------------------------------------------------------

struct AnswerCase {
  const char* rule;
  Texts markers;
  std::u16string text;
  Lengths lengths;  // at each position and at the end
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

class MarkerSearchLengthAt : public testing::TestWithParam<AnswerCase> {};

TEST_P(MarkerSearchLengthAt, ComparesAFewMarkers) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of(GetParam().markers);
  MarkerSearch search(matcher, text.field());
  EXPECT_EQ(answers(search, text.field()), GetParam().lengths);
  EXPECT_FALSE(search.is_indexed());
}

TEST_P(MarkerSearchLengthAt, ComparesManyMarkersAtFirst) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of_many(GetParam().markers);
  ASSERT_TRUE(matcher.is_large());
  MarkerSearch search(matcher, text.field());
  EXPECT_EQ(answers(search, text.field()), GetParam().lengths);
  EXPECT_FALSE(search.is_indexed());
}

TEST_P(MarkerSearchLengthAt, UsesTheIndex) {
  const ExactText text(GetParam().text);
  const MarkerMatcher matcher = matcher_of_many(GetParam().markers);
  MarkerSearch search(matcher, text.field());
  waste_comparisons(search);
  search.move_to(text.field());
  EXPECT_EQ(answers(search, text.field()), GetParam().lengths);
}

INSTANTIATE_TEST_SUITE_P(Table, MarkerSearchLengthAt, testing::ValuesIn(kAnswerCases), ByRule());

// What a host says about the first characters applies to the index as well.
TEST(MarkerSearchSets, MatchOnlyWhereAFirstCharacterIs) {
  auto set = std::make_shared<DelimiterSet>();
  set->strings = {u"ab", u"b", kNeverFound};
  set->first_chars = u"b#";
  set->first_chars_begin = set->first_chars.data();
  set->first_chars_end = set->first_chars_begin + 2;
  const MarkerMatcher matcher(set);
  const ExactText text(u"ab");
  MarkerSearch search(matcher, text.field());
  EXPECT_EQ(answers(search, text.field()), (Lengths{0, 1, 0}));
  waste_comparisons(search);
  search.move_to(text.field());
  EXPECT_EQ(answers(search, text.field()), (Lengths{0, 1, 0}));
}

// -- the index ----------------------------------------------------------------------------------

// 64 markers that differ only in their last code unit: at each 'a' two code units of each are
// compared.
Texts nearly_matching_markers() {
  Texts markers;
  for (char16_t k = 0; k < 64; ++k) markers.push_back({u'a', static_cast<char16_t>(u'\u0100' + k)});
  return markers;
}

// 64 markers of 2 code units allow 64 * 3 * 8 comparisons, and the text 100 * 8 more. These are
// used up after 18 positions with 64 * 2 code units each, which is checked before the next
// position.
TEST(MarkerSearchBudget, MakesAnIndexAfterTooManyComparisons) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText text(std::u16string(100, u'a'));
  MarkerSearch search(matcher, text.field());
  std::size_t places = 0;
  for (; places < text.size() && !search.is_indexed(); ++places) {
    EXPECT_EQ(search.length_at(places), 0u);
  }
  EXPECT_EQ(places, (64 * 3 * 8 + 100 * 8 + 127) / 128 + 1);
}

TEST(MarkerSearchBudget, KeepsTheAutomatonFromTextToText) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText first(std::u16string(100, u'a'));
  const ExactText second(u"aa\u0101");
  MarkerSearch search(matcher, first.field());
  answers(search, first.field());
  EXPECT_TRUE(search.is_indexed());
  search.move_to(second.field());
  EXPECT_FALSE(search.is_indexed());
  EXPECT_EQ(answers(search, second.field()), (Lengths{0, 2, 0, 0}));
  EXPECT_TRUE(search.is_indexed());
}

// The lines of a text together use up what a single long text uses up.
TEST(MarkerSearchBudget, IsSharedByAllTexts) {
  const MarkerMatcher matcher = matcher_of(nearly_matching_markers());
  const ExactText line(u"aaaa");
  MarkerSearch search(matcher, line.field());
  for (int lines = 0; lines < 10; ++lines) {
    answers(search, line.field());
    search.move_to(line.field());
  }
  answers(search, line.field());
  EXPECT_TRUE(search.is_indexed());
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

TEST(MarkerSearchProperty, AgreesWithPlainComparisons) {
  EXPECT_TRUE(rc::check([] {
    const Texts markers = random_markers();
    const MarkerMatcher matcher = matcher_of_many(markers);
    const MarkerMatcher few = matcher_of(markers);
    const ExactText text(to_text(random_numbers(40)));
    MarkerSearch search(matcher, text.field());
    const bool makes_index = *rc::gen::arbitrary<bool>();
    if (makes_index) waste_comparisons(search);
    const std::size_t begin = *rc::gen::inRange<std::size_t>(0, text.size() + 1);
    const std::size_t end = *rc::gen::inRange<std::size_t>(begin, text.size() + 1);
    for (const Field& part : {text.field(), slice(text.field(), begin, end)}) {
      search.move_to(part);
      for (std::size_t i = 0; i <= part.length; ++i) {
        RC_ASSERT(search.length_at(i) == matcher.length_at(part, i));
        if (markers.size() > 1) RC_ASSERT(search.length_at(i) == few.length_at(part, i));
      }
    }
  }));
}

}  // namespace
}  // namespace textio
