#include <vltextstream/layout/unique_names.hpp>

#include <cstddef>
#include <ostream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"

namespace textio::standalone {
namespace {

using testing_support::ByRule;
using Names = std::vector<std::u16string>;

struct UniqueCase {
  const char* rule;
  Names names;
  std::size_t columns;
  Names unique;
};
std::ostream& operator<<(std::ostream& out, const UniqueCase& row) { return out << row.rule; }

const UniqueCase kUnique[] = {
    {"DifferentNamesStay", {u"level", u"flow"}, 2, {u"level", u"flow"}},
    {"CaseMakesNamesDifferent", {u"level", u"Level"}, 2, {u"level", u"Level"}},
    {"NoColumns", {}, 0, {}},

    {"RepetitionsAreNumbered",
     {u"level", u"flow", u"level", u"level", u"flow"},
     5,
     {u"level", u"flow", u"level_2", u"level_3", u"flow_2"}},
    {"TakenNumbersAreLeftOut",
     {u"level", u"level_2", u"level"},
     3,
     {u"level", u"level_2", u"level_3"}},
    {"NumbersTakenFurtherOnAreLeftOut",
     {u"level", u"level", u"level_2"},
     3,
     {u"level", u"level_3", u"level_2"}},
    {"RepeatedNumbersAreNumbered",
     {u"x_2", u"x_2", u"x", u"x"},
     4,
     {u"x_2", u"x_2_2", u"x", u"x_3"}},

    {"MissingNamesHaveThePlaceOfTheColumn",
     {u"level", u"", u""},
     3,
     {u"level", u"column_2", u"column_3"}},
    {"NoNamesAtAll", {}, 3, {u"column_1", u"column_2", u"column_3"}},
    {"FewerNamesThanColumns", {u"level"}, 2, {u"level", u"column_2"}},
    {"MoreNamesThanColumns", {u"level", u"flow", u"level"}, 2, {u"level", u"flow"}},
    {"TheNameOfTheColumnIsTaken", {u"", u"column_1"}, 2, {u"column_2", u"column_1"}},
    {"TwoNamesOfColumnsAreTaken",
     {u"", u"column_1", u"column_2", u""},
     4,
     {u"column_3", u"column_1", u"column_2", u"column_4"}},

    {"BlanksAtTheEndsGo", {u" level\t", u"\u00A0flow "}, 2, {u"level", u"flow"}},
    {"RunsOfBlanksBecomeOne", {u"mean \t level"}, 1, {u"mean level"}},
    {"LineEndingsBecomeBlanks",
     {u"mean\nlevel", u"mean\r\nflow", u"\nx\n"},
     3,
     {u"mean level", u"mean flow", u"x"}},
    {"ControlCharactersBecomeBlanks",
     {u"mean\u0001level", u"\u007Fflow", u"x\u009B"},
     3,
     {u"mean level", u"flow", u"x"}},
    {"BlanksAloneAreNoName", {u" \t", u"\n"}, 2, {u"column_1", u"column_2"}},
    {"NamesThatBecomeTheSame", {u"a b", u"a\nb", u"a  b"}, 3, {u"a b", u"a b_2", u"a b_3"}},
    {"LettersOfAnyScript",
     {u"\u0434\u0430", u"\u0434\u0430"},
     2,
     {u"\u0434\u0430", u"\u0434\u0430_2"}},
};

class UniqueNames : public testing::TestWithParam<UniqueCase> {};
TEST_P(UniqueNames, AreThoseOfTheRow) {
  EXPECT_EQ(unique_names(GetParam().names, GetParam().columns), GetParam().unique);
}
INSTANTIATE_TEST_SUITE_P(Table, UniqueNames, testing::ValuesIn(kUnique), ByRule());

// Whatever the names, all are different, none is empty, and one that nothing repeats is kept.
TEST(UniqueNamesProperty, HoldsForRandomNames) {
  const Names words = {u"",         u"x",        u"x_2", u"x_3", u"x_2_2", u"column_1",
                       u"column_2", u"column_3", u" x",  u"x\n", u"\n"};
  std::mt19937 random(20);
  for (int round = 0; round < 2'000; ++round) {
    Names names;
    for (std::size_t i = random() % 8; i > 0; --i) names.push_back(words[random() % words.size()]);
    const std::size_t columns = random() % 8;
    const Names unique = unique_names(names, columns);
    ASSERT_EQ(unique.size(), columns);
    EXPECT_EQ(std::set<std::u16string>(unique.begin(), unique.end()).size(), columns);
    for (const std::u16string& name : unique) EXPECT_FALSE(name.empty());
    EXPECT_EQ(unique_names(unique, columns), unique);
  }
}

}  // namespace
}  // namespace textio::standalone
