#include <vltextstream/strategy/scan.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;
using testing_support::Texts;
using testing_support::with_nul;

// -- matching -----------------------------------------------------------------------------------

// Fills `set` as a host does.
void fill(DelimiterSet& set, const Texts& markers) {
  set.strings = markers;
  if (markers.size() == 1 && markers[0].size() == 1) {
    set.is_single_char = true;
    set.single_char = set.strings[0].data();
  }
  if (markers.empty()) return;
  for (const std::u16string& marker : markers) {
    const char16_t first = marker.empty() ? u'\0' : marker[0];
    if (!contains(set.first_chars, first)) set.first_chars.push_back(first);
  }
  set.first_chars_begin = set.first_chars.data();
  set.first_chars_end = set.first_chars.data() + set.first_chars.size();
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
    {"TheEndMarkInsideAMarkerMatchesLikeAnyUnit", {u"a\uFFFF"}, u"a\uFFFF", 0, 2},
    {"TheEndMarkInsideAMarkerIsNotTheMissingUnit", {u"a\uFFFF"}, u"a", 0, 0},
    {"ARepeatedMarkerMatchesOnce", {u";", u";"}, u";;", 0, 1},
};

class ScanMatchLength : public testing::TestWithParam<MatchCase> {};

TEST_P(ScanMatchLength, IsTheLengthOfTheFirstMarkerThatFits) {
  DelimiterSet set;
  fill(set, GetParam().markers);
  const ExactText text(GetParam().text);
  EXPECT_EQ(match_length(set, text.field(), GetParam().at), GetParam().length);
}

TEST_P(ScanMatchLength, HoldsForTheSetsOfTheHost) {
  const ExactText text(GetParam().text);
  const auto set = get_or_create_delim(GetParam().markers);
  EXPECT_EQ(match_length(*set, text.field(), GetParam().at), GetParam().length);
}

INSTANTIATE_TEST_SUITE_P(Table, ScanMatchLength, testing::ValuesIn(kMatchCases),
                         testing_support::ByRule());

TEST(ScanMatchLengthShape, ASingleCharacterIsAllThatIsLookedAt) {
  const char16_t semicolon = u';';
  DelimiterSet set;
  set.strings = {u"never read"};
  set.is_single_char = true;
  set.single_char = &semicolon;
  const ExactText text(u";n");
  EXPECT_EQ(match_length(set, text.field(), 0), 1u);
  EXPECT_EQ(match_length(set, text.field(), 1), 0u);
}

TEST(ScanMatchLengthShape, WithoutFirstCharactersNothingMatches) {
  DelimiterSet set;
  set.strings = {u";", u","};
  const ExactText text(u";");
  EXPECT_EQ(match_length(set, text.field(), 0), 0u);
}

TEST(ScanMatchLengthShape, ACharacterOutsideTheFirstCharactersDoesNotMatch) {
  DelimiterSet set;
  set.strings = {u";", u","};
  set.first_chars = u",";
  set.first_chars_begin = set.first_chars.data();
  set.first_chars_end = set.first_chars_begin + 1;
  const ExactText text(u";,");
  EXPECT_EQ(match_length(set, text.field(), 0), 0u);
  EXPECT_EQ(match_length(set, text.field(), 1), 1u);
}

TEST(ScanMatchLengthShape, SurvivesATextWithoutUnits) {
  DelimiterSet set;
  fill(set, {u"\r\n", u"\n"});
  EXPECT_EQ(match_length(set, Field(), 0), 0u);
}

// -- stop characters ----------------------------------------------------------------------------

struct StopCharsCase {
  const char* rule;
  Texts a;
  Texts b;
  std::u16string stop_chars;
};
std::ostream& operator<<(std::ostream& out, const StopCharsCase& row) { return out << row.rule; }

const StopCharsCase kStopCharsCases[] = {
    {"NoMarkersGiveNone", {}, {}, u""},
    {"TheDefaultLineEndingsGiveTwo", {u"\r\n", u"\n", u"\r"}, {}, u"\n\r"},
    {"TheSecondListCountsAsWell", {}, {u"\r\n", u"\n"}, u"\n\r"},
    {"BothListsAreMerged", {u",", u"\t"}, {u"\r\n", u"\n"}, u"\t\n\r,"},
    {"OnlyFirstCharactersCount", {u"ab", u"cd"}, {u"ef"}, u"ace"},
    {"RepeatedCharactersCountOnce", {u";", u";;"}, {u";x"}, u";"},
    {"TheyAscend", {u"z", u"A", u"a"}, {u"0"}, u"0Aaz"},
    {"TheyAscendAsUnsignedUnits", {u"\uFFFF", u"\u00e9"}, {u"a"}, u"a\u00e9\uFFFF"},
    {"AnEmptyMarkerGivesNul", {u""}, {}, with_nul(u"\0")},
    {"AnEmptyMarkerInTheSecondListGivesNul", {u";"}, {u""}, with_nul(u"\0;")},
    {"NulAndTheEmptyMarkerAreOne", {u"", with_nul(u"\0x")}, {u""}, with_nul(u"\0")},
};

class ScanMakeStopChars : public testing::TestWithParam<StopCharsCase> {};

TEST_P(ScanMakeStopChars, AreTheDistinctFirstCharactersAscending) {
  EXPECT_EQ(make_stop_chars(GetParam().a, GetParam().b), GetParam().stop_chars);
}

INSTANTIATE_TEST_SUITE_P(Table, ScanMakeStopChars, testing::ValuesIn(kStopCharsCases),
                         testing_support::ByRule());

// -- removal in place ---------------------------------------------------------------------------

struct RemoveCase {
  const char* rule;
  std::u16string chars;
  char16_t unit;
  std::u16string left;
};
std::ostream& operator<<(std::ostream& out, const RemoveCase& row) { return out << row.rule; }

const RemoveCase kRemoveCases[] = {
    {"TheUnitInTheLastPlaceStays", u" \b\t", u'\t', u" \b\t"},
    {"TheUnitInTheFirstPlaceMakesTheRestMoveUp", u" \b\t", u' ', u"\b\t\t"},
    {"TheUnitInTheMiddleMakesTheRestMoveUp", u" \b\t", u'\b', u" \t\t"},
    {"AUnitThatIsNotThereChangesNothing", u" \b\t", u',', u" \b\t"},
    {"AnEmptyTextStaysEmpty", u"", u',', u""},
    {"ALoneUnitStays", u",", u',', u","},
    {"OnlyTheUnitStaysAsItIs", u",,,", u',', u",,,"},
    {"TwoOccurrencesKeepTheLastTwoPlaces", u"a,b,c", u',', u"abc,c"},
    {"TwoInARowKeepTheLastTwoPlaces", u",,ab", u',', u"abab"},
    {"TwoAtTheEndStay", u"ab,,", u',', u"ab,,"},
    {"OneInFrontAndOneAtTheEndLeaveTheLast", u",ab,", u',', u"abb,"},
};

class ScanRemoveInPlace : public testing::TestWithParam<RemoveCase> {};

TEST_P(ScanRemoveInPlace, MovesTheLaterCharactersForwardWithoutShortening) {
  std::u16string chars = GetParam().chars;
  remove_in_place(chars, GetParam().unit);
  EXPECT_EQ(chars, GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(Table, ScanRemoveInPlace, testing::ValuesIn(kRemoveCases),
                         testing_support::ByRule());

// -- small questions ----------------------------------------------------------------------------

TEST(ScanEndsAt, IsTrueAtTheEndMarkAndFromTheEndOn) {
  const ExactText text(u"a\uFFFFb");
  EXPECT_FALSE(ends_at(text.field(), 0));
  EXPECT_TRUE(ends_at(text.field(), 1));
  EXPECT_FALSE(ends_at(text.field(), 2));
  EXPECT_TRUE(ends_at(text.field(), 3));
  EXPECT_TRUE(ends_at(text.field(), static_cast<std::size_t>(-1)));
}

TEST(ScanSlice, KeepsToTheText) {
  const ExactText text(u"abc");
  EXPECT_EQ(text_of(slice(text.field(), 1, 2)), u"b");
  EXPECT_EQ(text_of(slice(text.field(), 1, 99)), u"bc");
  EXPECT_EQ(text_of(slice(text.field(), 2, 1)), u"");
  EXPECT_EQ(text_of(slice(text.field(), 99, 100)), u"");
  EXPECT_EQ(slice(text.field(), 99, 100).data, text.data() + 3);
}

TEST(ScanFindFirst, EndsAtTheLengthWhenThereIsNone) {
  const ExactText text(u"ab \t");
  EXPECT_EQ(find_first_of(text.field(), 0, u" \t"), 2u);
  EXPECT_EQ(find_first_of(text.field(), 3, u" \t"), 3u);
  EXPECT_EQ(find_first_of(text.field(), 0, u";"), 4u);
  EXPECT_EQ(find_first_of(text.field(), 0, u""), 4u);
  EXPECT_EQ(find_first_not_of(text.field(), 2, u" \t"), 4u);
  EXPECT_EQ(find_first_not_of(text.field(), 0, u"a"), 1u);
  EXPECT_EQ(find_first_not_of(text.field(), 0, u""), 0u);
}

}  // namespace
}  // namespace textio
