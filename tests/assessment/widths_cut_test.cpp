#include <vltextstream/assessment/cuts.hpp>

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;
using testing_support::shown;

struct CutCase {
  const char* rule;
  std::u16string text;
  std::vector<std::size_t> widths;
  std::string records;
};
std::ostream& operator<<(std::ostream& out, const CutCase& row) { return out << row.rule; }

const CutCase kCuts[] = {
    {"TwoColumns", u"ab123\ncd456\n", {2, 3}, "0[ab][123] 1[cd][456]"},
    {"BlanksStay", u"a  1\n", {3, 1}, "0[a  ][1]"},
    {"TheRestIsLeftOut", u"ab123xyz\n", {2, 3}, "0[ab][123]"},
    {"AShortLineHasShortCells", u"ab1\na\n", {2, 3}, "0[ab][1] 1[a][]"},
    {"BlankLinesAreNoRecords", u"ab1\n  \ncd2\n", {2, 1}, "0[ab][1] 2[cd][2]"},
    {"AWidthBeyondTheText", u"ab\n", {1, static_cast<std::size_t>(-1), 1}, "0[a][b][]"},
};

class WidthsCut : public testing::TestWithParam<CutCase> {};

TEST_P(WidthsCut, MakesRecords) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_widths(sample.lines(), GetParam().widths)), GetParam().records);
}

TEST_P(WidthsCut, IsThatOfAReadingWithWidths) {
  const Sample sample(GetParam().text);
  Reading reading{Form::gaps, u" "};
  reading.widths = GetParam().widths;
  EXPECT_EQ(shown(cut(sample.lines(), reading)), GetParam().records);
}

INSTANTIATE_TEST_SUITE_P(Table, WidthsCut, testing::ValuesIn(kCuts), ByRule());

}  // namespace
}  // namespace textio::assessment
