#include <vltextstream/strategy/search/marker_matcher.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <ostream>
#include <string>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::Texts;
using testing_support::with_nul;

// A set as another host may fill it in.
std::shared_ptr<DelimiterSet> own_set(const Texts& markers) {
  auto made = std::make_shared<DelimiterSet>();
  DelimiterSet& set = *made;
  set.strings = markers;
  if (markers.size() == 1 && markers[0].size() == 1) {
    set.is_single_char = true;
    set.single_char = set.strings[0].data();
  }
  if (markers.empty()) return made;
  for (const std::u16string& marker : markers) {
    const char16_t first = marker.empty() ? u'\0' : marker[0];
    if (!contains(set.first_chars, first)) set.first_chars.push_back(first);
  }
  set.first_chars_begin = set.first_chars.data();
  set.first_chars_end = set.first_chars.data() + set.first_chars.size();
  return made;
}

std::size_t length_at(std::shared_ptr<const DelimiterSet> set, const Field& text, std::size_t i) {
  return MarkerMatcher(std::move(set)).length_at(text, i);
}

struct MatchCase {
  const char* rule;
  Texts markers;
  std::u16string text;
  std::size_t at;
  std::size_t length;
};
std::ostream& operator<<(std::ostream& out, const MatchCase& row) { return out << row.rule; }

const MatchCase kMatchCases[] = {
    {"OneCharacterMatchesItself", {u";"}, u"a;b", 1, 1},
    {"OneCharacterDoesNotMatchAnother", {u";"}, u"a;b", 0, 0},
    {"OneCharacterIsNotFoundPastTheEnd", {u";"}, u"a;", 2, 0},
    {"TheEndMarkAsTheOnlyCharacterMatchesInTheText", {u"\uFFFF"}, u"a\uFFFFb", 1, 1},
    {"TheEndMarkAsTheOnlyCharacterMatchesAtTheVeryEnd", {u"\uFFFF"}, u"ab", 2, 1},
    {"TheEndMarkAsTheOnlyCharacterMatchesInAnEmptyText", {u"\uFFFF"}, u"", 0, 1},
    {"NulAsTheOnlyCharacterMatches", {with_nul(u"\0")}, with_nul(u"a\0b"), 1, 1},
    {"NulAsTheOnlyCharacterIsNotTheEnd", {with_nul(u"\0")}, u"ab", 2, 0},
    {"AnEmptySetMatchesNothing", {}, u"ab", 0, 0},
    {"AnEmptySetMatchesNothingAtTheEnd", {}, u"ab", 2, 0},
    {"OneLongMarkerMatches", {u"::"}, u"a::b", 1, 2},
    {"OneLongMarkerNeedsAllItsCharacters", {u"::"}, u"a:b", 1, 0},
    {"OneLongMarkerThatDoesNotFitIsNoMatch", {u"::"}, u"a:", 1, 0},
    {"OneLongMarkerThatJustFitsMatches", {u"::"}, u"a::", 1, 2},
    {"TheLongerMarkerWinsWhenItComesFirst", {u"\r\n", u"\n", u"\r"}, u"\r\n", 0, 2},
    {"TheShorterMarkerWinsWhenItComesFirst", {u"\r", u"\r\n"}, u"\r\n", 0, 1},
    {"AMarkerThatDoesNotFitIsPassedOver", {u"\r\n", u"\n", u"\r"}, u"a\r", 1, 1},
    {"AMarkerThatDiffersIsPassedOver", {u"ab", u"ac"}, u"ac", 0, 2},
    {"TheSecondCharacterOfAMarkerIsNoStart", {u"\r\n", u";"}, u"\n", 0, 0},
    {"NothingOfManyMatches", {u"\r\n", u"\n"}, u"\r", 0, 0},
    {"AnEmptyMarkerAloneMatchesNothing", {u""}, u"a", 0, 0},
    {"AnEmptyMarkerAloneMatchesNoNul", {u""}, with_nul(u"\0"), 0, 0},
    {"AnEmptyMarkerAloneMatchesNothingAtTheEnd", {u""}, u"a", 1, 0},
    {"AnEmptyMarkerEndsTheSearch", {u"", u"\n"}, u"\n", 0, 0},
    {"AMarkerBeforeTheEmptyOneMatches", {u"\n", u""}, u"\n", 0, 1},
    {"AMarkerThatDiffersLeadsOnToTheEmptyOne", {u"ab", u"", u"ac"}, u"ac", 0, 0},
    {"TheEndMarkAmongSeveralMatchesInTheText", {u"\uFFFF", u";"}, u"a\uFFFF", 1, 1},
    {"TheEndMarkAmongSeveralDoesNotFitAtTheVeryEnd", {u"\uFFFF", u";"}, u"a", 1, 0},
    {"TheEndMarkInsideAMarkerMatchesLikeAnyCodeUnit", {u"a\uFFFF"}, u"a\uFFFF", 0, 2},
    {"TheEndMarkInsideAMarkerIsNotTheMissingCodeUnit", {u"a\uFFFF"}, u"a", 0, 0},
    {"ARepeatedMarkerMatchesOnce", {u";", u";"}, u";;", 0, 1},
};

class MarkerMatcherLengthAt : public testing::TestWithParam<MatchCase> {};

TEST_P(MarkerMatcherLengthAt, IsTheLengthOfTheFirstMarkerThatFits) {
  const ExactText text(GetParam().text);
  EXPECT_EQ(length_at(own_set(GetParam().markers), text.field(), GetParam().at), GetParam().length);
}

TEST_P(MarkerMatcherLengthAt, IsCorrectForTheSetsOfTheHost) {
  const ExactText text(GetParam().text);
  const auto set = get_or_create_delim(GetParam().markers);
  EXPECT_EQ(length_at(set, text.field(), GetParam().at), GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(Table, MarkerMatcherLengthAt, testing::ValuesIn(kMatchCases),
                         testing_support::ByRule());

TEST(MarkerMatcherSets, OfASingleCharacterOnlyThatIsUsed) {
  const char16_t semicolon = u';';
  const auto set = std::make_shared<DelimiterSet>();
  set->strings = {u"never read"};
  set->is_single_char = true;
  set->single_char = &semicolon;
  const ExactText text(u";n");
  EXPECT_EQ(length_at(set, text.field(), 0), 1u);
  EXPECT_EQ(length_at(set, text.field(), 1), 0u);
}

TEST(MarkerMatcherSets, WithoutFirstCharactersNothingMatches) {
  const auto set = std::make_shared<DelimiterSet>();
  set->strings = {u";", u","};
  const ExactText text(u";");
  EXPECT_EQ(length_at(set, text.field(), 0), 0u);
}

TEST(MarkerMatcherSets, ACharacterOutsideTheFirstCharactersDoesNotMatch) {
  const auto set = std::make_shared<DelimiterSet>();
  set->strings = {u";", u","};
  set->first_chars = u",";
  set->first_chars_begin = set->first_chars.data();
  set->first_chars_end = set->first_chars_begin + 1;
  const ExactText text(u";,");
  EXPECT_EQ(length_at(set, text.field(), 0), 0u);
  EXPECT_EQ(length_at(set, text.field(), 1), 1u);
}

TEST(MarkerMatcherSets, MatchNothingInATextWithoutData) {
  EXPECT_EQ(length_at(own_set({u"\r\n", u"\n"}), Field(), 0), 0u);
}

TEST(MarkerMatcherSize, IsLargeFromThirtyThreeCodeUnitsOn) {
  const auto is_large = [](const Texts& markers) {
    return MarkerMatcher(get_or_create_delim(markers)).is_large();
  };
  EXPECT_FALSE(is_large({u"\r\n", u"\n", u"\r"}));
  EXPECT_FALSE(is_large({std::u16string(31, u'a')}));
  EXPECT_TRUE(is_large({std::u16string(32, u'a')}));
  EXPECT_FALSE(is_large(Texts(16, u"a")));
  EXPECT_TRUE(is_large(Texts(17, u"a")));
}

TEST(MarkerMatcherSize, KnowsTheLongestMarker) {
  EXPECT_EQ(MarkerMatcher(get_or_create_delim({u"\n", u"\r\n", u""})).longest(), 2U);
  EXPECT_EQ(MarkerMatcher(get_or_create_delim({})).longest(), 0U);
}

}  // namespace
}  // namespace textio
