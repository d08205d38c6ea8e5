// cut_fields: fields of fixed width.
#include <vltextstream/assessment/cuts.hpp>

#include <cstddef>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "assessment/cut_case.hpp"
#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::CutCase;
using testing_support::Sample;
using testing_support::shown;

const CutCase kCases[] = {
    {"NoText", u"", ""},
    {"FieldsThatTouch", u"12abc3\n45def6\n", "0[12][abc][3] 1[45][def][6]"},
    {"WithoutTheirPadding", u"1 a  3\n 4  b6\n", "0[1][a][3] 1[4][b][6]"},
    {"BlanksInside", u"12a c3\n", "0[12][a c][3]"},
    {"EmptyField", u"12   3\n", "0[12][][3]"},
    {"ShorterLineIsOneCell", u"12abc\n", "0[12abc]"},
    {"LongerLineIsOneCell", u"12abc34\n", "0[12abc34]"},
    {"BlankLines", u"\n      \n12abc3\n", "2[12][abc][3]"},
    {"RulesAndCommentsAreRecords", u"------\n# abcd\n", "0[--][---][-] 1[#][abc][d]"},
    {"LastLineWithoutAnEnding", u"12abc3", "0[12][abc][3]"},
};

class CutFields : public testing::TestWithParam<CutCase> {};
TEST_P(CutFields, IntoTheseCells) {
  const Sample sample(GetParam().text);
  EXPECT_EQ(shown(cut_fields(sample.lines(), {0, 2, 5, 6})), GetParam().records);
}
INSTANTIATE_TEST_SUITE_P(Table, CutFields, testing::ValuesIn(kCases), ByRule());

TEST(CutFieldsColumns, BeginWhereTheOneBeforeEnds) {
  const Sample sample(u"12abc3\n");
  const Records records = cut_fields(sample.lines(), {0, 2, 5, 6});
  EXPECT_EQ(records.column_starts, (std::vector<std::size_t>{0, 2, 5}));
  EXPECT_EQ(records.column_ends, (std::vector<std::size_t>{2, 5, 6}));
}

}  // namespace
}  // namespace textio::assessment
