#include <vltextstream/strategy/field_rules.hpp>

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

using testing_support::Texts;
using testing_support::with_nul;

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
    {"TheyAscendAsUnsignedCodeUnits", {u"\uFFFF", u"\u00e9"}, {u"a"}, u"a\u00e9\uFFFF"},
    {"AnEmptyMarkerGivesNul", {u""}, {}, with_nul(u"\0")},
    {"AnEmptyMarkerInTheSecondListGivesNul", {u";"}, {u""}, with_nul(u"\0;")},
    {"NulAndTheEmptyMarkerAreOne", {u"", with_nul(u"\0x")}, {u""}, with_nul(u"\0")},
};

class MakeStopChars : public testing::TestWithParam<StopCharsCase> {};

TEST_P(MakeStopChars, AreTheDistinctFirstCharactersAscending) {
  EXPECT_EQ(make_stop_chars(GetParam().a, GetParam().b), GetParam().stop_chars);
}

INSTANTIATE_TEST_SUITE_P(Table, MakeStopChars, testing::ValuesIn(kStopCharsCases),
                         testing_support::ByRule());

}  // namespace
}  // namespace textio
