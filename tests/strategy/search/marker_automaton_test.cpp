#include <vltextstream/strategy/search/marker_automaton.hpp>

#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::Texts;
using testing_support::with_nul;
using Lengths = std::vector<std::uint32_t>;

struct RunCase {
  const char* rule;
  Texts markers;
  std::u16string text;
  Lengths lengths;
};
std::ostream& operator<<(std::ostream& out, const RunCase& row) { return out << row.rule; }

const RunCase kRunCases[] = {
    {"NoMarkerMatchesNothing", {}, u"ab", {0, 0}},
    {"AnEmptyTextHasNoPlaces", {u"a"}, u"", {}},
    {"AUnitMatchesAtItsPosition", {u"b"}, u"abcb", {0, 1, 0, 1}},
    {"AMarkerMatchesWhereItBegins", {u"abc"}, u"xabcabc", {0, 3, 0, 0, 3, 0, 0}},
    {"MatchesMayOverlap", {u"aba"}, u"ababa", {3, 0, 3, 0, 0}},
    {"AMarkerThatDoesNotFitIsNoMatch", {u"aaa"}, u"aaaa", {3, 3, 0, 0}},
    {"AMarkerLongerThanTheTextIsNoMatch", {u"aaa"}, u"aa", {0, 0}},
    {"TheShorterWinsWhenItComesFirst", {u"a", u"ab"}, u"aba", {1, 0, 1}},
    {"TheLongerWinsWhenItComesFirst", {u"ab", u"a"}, u"aba", {2, 0, 1}},
    {"TheFirstOfThreeNestedWins", {u"aa", u"a", u"aaa"}, u"aaaa", {2, 2, 2, 1}},
    {"WhatBeginsAMarkerMatchesInItsMidst", {u"abcd", u"bc"}, u"abcx", {0, 2, 0, 0}},
    {"AnEndOfAMarkerIsAMarker", {u"abc", u"bc", u"c"}, u"abcbc", {3, 2, 1, 2, 1}},
    {"EndsInTheOtherOrder", {u"c", u"bc", u"abc"}, u"abcbc", {3, 2, 1, 2, 1}},
    {"ABeginningOfALongerPartialMatchCounts", {u"b", u"bcabd"}, u"bcabc", {1, 0, 0, 1, 0}},
    {"ARepeatedMarkerIsTheSame", {u"ab", u"ab"}, u"abab", {2, 0, 2, 0}},
    {"ManyChildrenOfOneUnit", {u"ax", u"bx", u"cx", u"dx", u"ex"}, u"exaxfx", {2, 0, 2, 0, 0, 0}},
    {"NulIsAUnitLikeAnyOther", {with_nul(u"\0a")}, with_nul(u"a\0a"), {0, 2, 0}},
    {"TheEndMarkIsAUnitLikeAnyOther", {u"\uFFFF", u"a\uFFFF"}, u"a\uFFFF", {2, 1}},
    {"UnitsAboveTheSignBitAreFound", {u"\u8000x", u"\u7FFFx"}, u"\u8000x\u7FFFx", {2, 0, 2, 0}},
};

class MarkerAutomatonRun : public testing::TestWithParam<RunCase> {};

TEST_P(MarkerAutomatonRun, GivesTheFirstMarkerAtEachPosition) {
  const Texts& markers = GetParam().markers;
  const MarkerAutomaton automaton({markers.begin(), markers.end()});
  const ExactText text(GetParam().text);
  Lengths lengths = {77, 77, 77};  // left over from another text
  automaton.run(text.field(), lengths);
  EXPECT_EQ(lengths, GetParam().lengths);
}

INSTANTIATE_TEST_SUITE_P(Table, MarkerAutomatonRun, testing::ValuesIn(kRunCases),
                         testing_support::ByRule());

TEST(MarkerAutomaton, RunsOverSeveralTexts) {
  const MarkerAutomaton automaton({u"ab", u"b"});
  Lengths lengths;
  automaton.run({u"abb", 3}, lengths);
  EXPECT_EQ(lengths, (Lengths{2, 1, 1}));
  automaton.run({u"a", 1}, lengths);
  EXPECT_EQ(lengths, (Lengths{0}));
}

}  // namespace
}  // namespace textio
