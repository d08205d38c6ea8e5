#include <vltextstream/assessment/find_unit.hpp>

#include <cstddef>
#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;

// Every text of up to six units over the unit that is wanted and three that differ from it in one bit or
// in the highest, from every position to every end.
TEST(FindUnit, AgreesWithALoop) {
  constexpr char16_t kUnits[] = {u',', u'-', u'\u802C', u'\0'};
  for (std::size_t length = 0; length <= 6; ++length) {
    for (std::size_t number = 0; number < (std::size_t{1} << (2 * length)); ++number) {
      std::u16string units;
      for (std::size_t i = 0; i < length; ++i) units += kUnits[(number >> (2 * i)) & 3U];
      const ExactText text(units);
      for (std::size_t from = 0; from <= length; ++from) {
        std::size_t expected = from;
        while (expected < length && units[expected] != u',') ++expected;
        ASSERT_EQ(find_unit(text.view(), u',', from, length), expected) << number << ' ' << from;
      }
    }
  }
}

struct TextCase {
  const char* rule;
  std::u16string text;
  std::u16string wanted;
  std::size_t from;
  std::size_t end;
  std::size_t found;
};
std::ostream& operator<<(std::ostream& out, const TextCase& row) { return out << row.rule; }

const TextCase kTextCases[] = {
    {"First", u"a::b::c", u"::", 0, 7, 1},
    {"FromAPosition", u"a::b::c", u"::", 2, 7, 4},
    {"FromThePositionItself", u"a::b::c", u"::", 4, 7, 4},
    {"CutByTheEnd", u"a::b::c", u"::", 2, 5, 5},
    {"UpToTheEnd", u"a::b::c", u"::", 2, 6, 4},
    {"NotThere", u"a:b:c", u"::", 0, 5, 5},
    {"AfterAHalf", u"a:b::c", u"::", 0, 6, 3},
    {"Overlapping", u":::", u"::", 1, 3, 1},
    {"LongerThanTheText", u":", u"::", 0, 1, 1},
    {"AtTheEnd", u"ab", u"b", 2, 2, 2},
    {"OfOneUnit", u"abcdefgh", u"h", 0, 8, 7},
};

class FindText : public testing::TestWithParam<TextCase> {};
TEST_P(FindText, GivesTheFirstPosition) {
  const TextCase& row = GetParam();
  const ExactText text(row.text);
  EXPECT_EQ(find_text(text.view(), row.wanted, row.from, row.end), row.found);
}
INSTANTIATE_TEST_SUITE_P(Table, FindText, testing::ValuesIn(kTextCases), ByRule());

}  // namespace
}  // namespace textio::assessment
