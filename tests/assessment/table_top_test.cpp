#include <vltextstream/assessment/table_top.hpp>

#include <cstddef>
#include <numeric>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/cell_kind.hpp>
#include <vltextstream/assessment/cuts.hpp>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;

constexpr std::size_t kRecordsLookedInto = 200;

TableTop top_of(std::u16string_view text, const std::vector<std::size_t>& left_out = {}) {
  const Sample sample(text);
  const Records records = cut_delimited(sample.lines(), {Form::delimited, u","});
  std::vector<std::size_t> data(records.size());
  std::iota(data.begin(), data.end(), std::size_t{0});
  for (const std::size_t row : left_out) std::erase(data, row);
  const std::size_t columns = records.cells(data[0]).size();
  return find_top(records, data, CellKinds(records, data, columns, kRecordsLookedInto));
}

struct TopCase {
  const char* rule;
  std::u16string text;
  std::size_t first;
  std::size_t names_rows = 1;
};
std::ostream& operator<<(std::ostream& out, const TopCase& row) { return out << row.rule; }

const std::u16string kSevenNumbers =
    u"1,2,3,4,5,6,7\n2,3,4,5,6,7,8\n3,4,5,6,7,8,9\n4,5,6,7,8,9,10\n";
const std::u16string kTwoColumns = u"1,10\n2,20\n3,30\n4,40\n5,50\n";
const std::u16string kThreeColumns = u"1,10,a\n2,20,b\n3,30,c\n4,40,d\n5,50,e\n";
const std::u16string kFiveNumbers = u"1,2,3,4,5\n2,3,4,5,6\n3,4,5,6,7\n4,5,6,7,8\n5,6,7,8,9\n";

const TopCase kTopCases[] = {
    {"OnlyData", kThreeColumns, 0},
    {"Names", u"day,level,name\n" + kThreeColumns, 0},
    {"NamesOfTwoColumns", u"day,level\n" + kTwoColumns, 0},

    {"PaddedTitle", u"Report,,\nday,level,name\n" + kThreeColumns, 1},
    {"PaddedTitleAndEmptyRecord", u"Report,,\n,,\nday,level,name\n" + kThreeColumns, 2},
    {"PaddedTitleWithoutNames", u"Report,,\n" + kThreeColumns, 1},
    {"EmptyRecords", u",,\n,,\nday,level,name\n" + kThreeColumns, 2},
    {"TooFewRecordsToTell", u"Report,,\nday,level,name\n1,10,a\n2,20,b\n", 0},

    {"KeysAndValuesAboveTwoColumns", u"site,oslo\nby,ann\nday,level\n" + kTwoColumns, 2},
    {"KeysAndValuesWithoutNames", u"site,oslo\nby,ann\n" + kTwoColumns, 1},

    {"UnitsBelowTheNames", u"length,mass,name\nm,kg,-\n" + kThreeColumns, 0},
    {"UnitsOfTwoColumns", u"length,mass\nm,kg\n" + kTwoColumns, 0},
    {"AnUnusualUnitOfTwoColumns", u"time,absorbance\ns,AU\n" + kTwoColumns, 0},
    {"NoUnitOfTwoColumns", u"time,absorbance\nx,AU\n" + kTwoColumns, 1},
    {"AKeyWithAShorterValue", u"site,X\ns,AU\n" + kTwoColumns, 1},
    {"UnusualUnitsBelowAnotherRecord", u"title,page\ntime,absorbance\ns,AU\n" + kTwoColumns, 2},
    {"DescriptionsBelowTheNames",
     u"day,level,name\nthe day it was,how high it was then,who wrote it all down\n" + kThreeColumns,
     0},

    {"GroupsAboveTheNames", u",north,,south,\nday,min,max,low,high\n" + kFiveNumbers, 0, 2},
    {"TitleAboveGroups", u"Report,,,,\n,north,,south,\nday,min,max,low,high\n" + kFiveNumbers, 1,
     2},
    {"OneTextIsNoGroup", u",north,,,\nday,min,max,low,high\n" + kFiveNumbers, 1},

    {"MoreGroupsAboveFewer",
     u"day,house,,,,garden,\n,kitchen,,attic,,,\n,min,max,min,max,min,max\n" + kSevenNumbers, 0, 3},
    {"GroupsOfGroups", u",land,,,\n,north,,south,\nday,min,max,low,high\n" + kFiveNumbers, 1, 2},
    {"TwoGroupsOfGroups", u"land,,,sea,\nnorth,,south,west,\nday,min,max,low,high\n" + kFiveNumbers,
     0, 3},

    {"GroupsBesideNames", u"day,north,,south,\n,min,max,low,high\n" + kFiveNumbers, 0, 2},
    {"OneGapIsNoGroup", u"day,north,,low,high\n,min,max,,\n" + kFiveNumbers, 0},
    {"GroupsRepeated", u"Field,north,north,south,south\nday,min,max,low,high\n" + kFiveNumbers, 0,
     2},
    {"YearsAsGroups", u",2019,,2020,\nday,min,max,low,high\n" + kFiveNumbers, 0, 2},
    {"YearsAsGroupsRepeated", u"Field,2019,2019,2020,2020\nday,min,max,low,high\n" + kFiveNumbers,
     0, 2},
    {"TextsAmongManyData", kFiveNumbers + u"day,min,max,low,high\n" + kFiveNumbers + kFiveNumbers,
     0},

    {"YearsAreNames", u"name,2019,2020\na,5,6\nb,7,8\nc,9,10\nd,11,12\ne,13,14\n", 0},
    {"OnlyTexts", u"a,b,c\nd,e,f\ng,h,i\nj,k,l\nm,n,o\n", 0},
    {"PaddedTitleAboveTexts", u"Title,,\na,b,c\nd,e,f\ng,h,i\nj,k,l\nm,n,o\n", 1},
    {"MissingValuesAreData", u"day,level,name\n1,,a\n" + kThreeColumns, 0},
};

class FindTop : public testing::TestWithParam<TopCase> {};
TEST_P(FindTop, IsWhereTheNamesOrTheDataBegin) {
  const TableTop top = top_of(GetParam().text);
  EXPECT_EQ(top.first, GetParam().first);
  EXPECT_EQ(top.names_rows, GetParam().names_rows);
}
INSTANTIATE_TEST_SUITE_P(Table, FindTop, testing::ValuesIn(kTopCases), ByRule());

TEST(FindTopIndex, CountsTheGivenRecordsOnly) {
  // The second record has two cells and is not given.
  EXPECT_EQ(top_of(u"Report,,\na,b\nday,level,name\n" + kThreeColumns, {1}).first, 1U);
}

TEST(FindTopOfManyRecords, TakesTypesFromTheirLowerHalf) {
  std::u16string text = u"Report,,\nday,level,name\n";
  for (int k = 0; k < 300; ++k) text += u"1,10,a\n";
  EXPECT_EQ(top_of(text).first, 1U);
}

// Former bug: the names were then in two places of the text.
TEST(FindTopRows, OfNamesAreOneBelowTheOther) {
  const std::u16string groups = u"Station,Temperature,,Wind,\n";
  const std::u16string names = u",min,max,speed,gust\n";
  EXPECT_EQ(top_of(groups + names + kFiveNumbers).names_rows, 2U);
  EXPECT_EQ(top_of(groups + u"ragged\n" + names + kFiveNumbers, {1}).names_rows, 1U);
}

// Names in the upper row, and those of the two columns without a group in the lower one.
TEST(FindTopRows, AreCompletedByTheOneBelow) {
  const std::u16string upper = u"day,,,wind,rain\n";
  const std::u16string lower = u",min,max,,\n";
  EXPECT_EQ(top_of(upper + lower + kFiveNumbers).names_rows, 2U);
  EXPECT_EQ(top_of(upper + u"ragged\n" + lower + kFiveNumbers, {1}).names_rows, 1U);
}

}  // namespace
}  // namespace textio::assessment
