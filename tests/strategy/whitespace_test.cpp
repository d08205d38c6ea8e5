#include <vltextstream/strategy/whitespace.hpp>

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

struct RemoveCase {
  const char* rule;
  std::u16string chars;
  char16_t unit;
  std::u16string left;
};
std::ostream& operator<<(std::ostream& out, const RemoveCase& row) { return out << row.rule; }

const RemoveCase kRemoveCases[] = {
    {"TheCodeUnitInTheLastPlaceStays", u" \b\t", u'\t', u" \b\t"},
    {"TheCodeUnitInTheFirstPlaceMakesTheRestMoveUp", u" \b\t", u' ', u"\b\t\t"},
    {"TheCodeUnitInTheMiddleMakesTheRestMoveUp", u" \b\t", u'\b', u" \t\t"},
    {"ACodeUnitThatIsNotThereChangesNothing", u" \b\t", u',', u" \b\t"},
    {"AnEmptyTextStaysEmpty", u"", u',', u""},
    {"ALoneCodeUnitStays", u",", u',', u","},
    {"OnlyTheCodeUnitStaysAsItIs", u",,,", u',', u",,,"},
    {"TwoOccurrencesKeepTheLastTwoPlaces", u"a,b,c", u',', u"abc,c"},
    {"TwoInARowKeepTheLastTwoPlaces", u",,ab", u',', u"abab"},
    {"TwoAtTheEndStay", u"ab,,", u',', u"ab,,"},
    {"OneAtTheStartAndOneAtTheEndLeaveTheLast", u",ab,", u',', u"abb,"},
};

class RemoveInPlace : public testing::TestWithParam<RemoveCase> {};

TEST_P(RemoveInPlace, MovesTheLaterCharactersForwardWithoutShortening) {
  std::u16string chars = GetParam().chars;
  remove_in_place(chars, GetParam().unit);
  EXPECT_EQ(chars, GetParam().left);
}

INSTANTIATE_TEST_SUITE_P(Table, RemoveInPlace, testing::ValuesIn(kRemoveCases),
                         testing_support::ByRule());

}  // namespace
}  // namespace textio
