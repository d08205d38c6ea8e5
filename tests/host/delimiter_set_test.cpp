#include <vltextstream/host/delimiter_set.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "support/cut_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::Texts;
using testing_support::with_nul;

struct ShapeCase {
  const char* rule;
  Texts markers;
  bool is_single_char;
  std::u16string first_chars;  // ascending
};
std::ostream& operator<<(std::ostream& out, const ShapeCase& row) { return out << row.rule; }

const ShapeCase kShapeCases[] = {
    {"NoMarkersMakeAnEmptySet", {}, false, u""},
    {"OneCharacterIsSingle", {u";"}, true, u";"},
    {"TheEndMarkIsACharacterLikeAnyOther", {u"\uFFFF"}, true, u"\uFFFF"},
    {"NulIsACharacterLikeAnyOther", {with_nul(u"\0")}, true, with_nul(u"\0")},
    {"ALongMarkerIsNotSingle", {u"::"}, false, u":"},
    {"AnEmptyMarkerIsNotSingleAndStartsWithNul", {u""}, false, with_nul(u"\0")},
    {"TwoCharactersAreNotSingle", {u";", u","}, false, u",;"},
    {"ARepeatedCharacterIsNotSingle", {u";", u";"}, false, u";"},
    {"ACharacterAndAnEmptyMarkerAreNotSingle", {u";", u""}, false, with_nul(u"\0;")},
    {"TheDefaultLineEndingsStartWithTwoCharacters", {u"\r\n", u"\n", u"\r"}, false, u"\n\r"},
    {"TheOrderOfTheMarkersIsKept", {u"z", u"a", u"m"}, false, u"amz"},
    {"FirstCharactersAreDistinct", {u"ab", u"ac", u"b", u"a"}, false, u"ab"},
};

class DelimiterSetShape : public testing::TestWithParam<ShapeCase> {};

TEST_P(DelimiterSetShape, KeepsTheMarkersInTheirOrder) {
  const auto set = get_or_create_delim(GetParam().markers);
  ASSERT_NE(set, nullptr);
  EXPECT_EQ(set->strings, GetParam().markers);
}

TEST_P(DelimiterSetShape, PointsAtTheOnlyCharacter) {
  const auto set = get_or_create_delim(GetParam().markers);
  ASSERT_EQ(set->is_single_char, GetParam().is_single_char);
  if (!set->is_single_char) return;
  ASSERT_NE(set->single_char, nullptr);
  EXPECT_EQ(*set->single_char, GetParam().markers[0][0]);
}

TEST_P(DelimiterSetShape, ListsTheDistinctFirstCharacters) {
  const auto set = get_or_create_delim(GetParam().markers);
  if (GetParam().markers.empty()) {
    EXPECT_EQ(set->first_chars_begin, nullptr);
    return;
  }
  ASSERT_NE(set->first_chars_begin, nullptr);
  std::u16string listed(set->first_chars_begin, set->first_chars_end);
  std::sort(listed.begin(), listed.end());
  EXPECT_EQ(listed, GetParam().first_chars);
}

// A set may be returned again; requests in between do not change it.
TEST_P(DelimiterSetShape, StaysAsItIsWhileOthersAreMade) {
  const auto set = get_or_create_delim(GetParam().markers);
  std::vector<std::shared_ptr<const DelimiterSet>> others;
  for (char16_t c = u'a'; c <= u'z'; ++c) {
    others.push_back(get_or_create_delim({std::u16string(3, c), std::u16string(1, c)}));
  }
  others.clear();
  const auto again = get_or_create_delim(GetParam().markers);
  EXPECT_EQ(set->strings, GetParam().markers);
  EXPECT_EQ(again->strings, GetParam().markers);
  EXPECT_EQ(again->is_single_char, GetParam().is_single_char);
  EXPECT_EQ(set->is_single_char, GetParam().is_single_char);
  if (set->is_single_char) {
    EXPECT_EQ(*set->single_char, GetParam().markers[0][0]);
  }
}

TEST_P(DelimiterSetShape, OutlivesTheListItWasMadeFrom) {
  auto markers = std::make_unique<Texts>(GetParam().markers);
  const auto set = get_or_create_delim(*markers);
  for (std::u16string& marker : *markers) marker.assign(40, u'#');
  markers.reset();
  EXPECT_EQ(set->strings, GetParam().markers);
  if (set->is_single_char) {
    EXPECT_EQ(*set->single_char, GetParam().markers[0][0]);
  }
}

INSTANTIATE_TEST_SUITE_P(Table, DelimiterSetShape, testing::ValuesIn(kShapeCases),
                         testing_support::ByRule());

TEST(DelimiterSetOrder, MakesListsInAnotherOrderOtherSets) {
  const auto carriage_return_first = get_or_create_delim({u"\r", u"\r\n"});
  const auto both_first = get_or_create_delim({u"\r\n", u"\r"});
  EXPECT_EQ(carriage_return_first->strings[0], u"\r");
  EXPECT_EQ(both_first->strings[0], u"\r\n");
}

TEST(DelimiterSetOrder, TellsListsApartThatJoinToTheSameText) {
  EXPECT_EQ(get_or_create_delim({u"ab", u"c"})->strings, (Texts{u"ab", u"c"}));
  EXPECT_EQ(get_or_create_delim({u"a", u"bc"})->strings, (Texts{u"a", u"bc"}));
  EXPECT_EQ(get_or_create_delim({u"abc"})->strings, (Texts{u"abc"}));
  EXPECT_EQ(get_or_create_delim({u"a", u""})->strings, (Texts{u"a", u""}));
  EXPECT_EQ(get_or_create_delim({u"", u"a"})->strings, (Texts{u"", u"a"}));
  EXPECT_EQ(get_or_create_delim({u"", u""})->strings, (Texts{u"", u""}));
}

TEST(DelimiterSetValue, StartsAsTheEmptySet) {
  const DelimiterSet set;
  EXPECT_TRUE(set.strings.empty());
  EXPECT_FALSE(set.is_single_char);
  EXPECT_EQ(set.single_char, nullptr);
  EXPECT_EQ(set.first_chars_begin, nullptr);
  EXPECT_EQ(set.first_chars_end, nullptr);
}

}  // namespace
}  // namespace textio
