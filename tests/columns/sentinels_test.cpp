#include <vltextstream/columns/sentinels.hpp>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/columns/number_format.hpp>

#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;

struct SentinelCase {
  const char* rule;
  std::vector<std::u16string> cells;
  std::u16string cell;
  bool is_sentinel;
};
std::ostream& operator<<(std::ostream& out, const SentinelCase& row) { return out << row.rule; }

const SentinelCase kSentinels[] = {
    {"NegativeNinesAmongTemperatures", {u"12.5", u"14", u"-3.5", u"-999"}, u"-999", true},
    {"NegativeNinesTwice", {u"12.5", u"14", u"9", u"-9999", u"-9999"}, u"-9999", true},
    {"NegativeNinesWithAFraction", {u"1.5", u"2.5", u"3.5", u"-999.9"}, u"-999.9", true},
    {"NegativeNinesAndZeros", {u"1.5", u"2.5", u"3.5", u"-999.00"}, u"-999.00", true},
    {"TwoNegativeNines", {u"0", u"12", u"30", u"-99"}, u"-99", true},
    {"PositiveNinesTwice", {u"12", u"14", u"30", u"9999", u"9999"}, u"9999", true},
    {"PositiveNinesWithAFraction", {u"12", u"14", u"30", u"999.9", u"999.9"}, u"999.9", true},
    {"QuarterOfWellLogs", {u"12", u"14", u"30", u"-999.25"}, u"-999.25", true},
    {"LeastShortInteger", {u"12", u"14", u"30", u"-32768"}, u"-32768", true},
    {"LargeFillValue", {u"0.1", u"0.2", u"0.3", u"1e20", u"1e20"}, u"1e20", true},
    {"FillValueOfFloats",
     {u"1.5", u"2.5", u"3", u"9.96921e36", u"9.96921e36"},
     u"9.96921e36",
     true},
    {"OnceAmongManyButNotFarEnough",
     {u"10", u"20", u"30", u"40", u"50", u"60", u"70", u"80", u"90", u"150", u"999"},
     u"999",
     false},
    {"AmongYears", {u"1990", u"2001", u"2020", u"-9999"}, u"-9999", true},
    {"OnceAmongMany",
     {u"1", u"2", u"3", u"4", u"5", u"6", u"7", u"8", u"9", u"10", u"9999"},
     u"9999",
     true},

    {"NearTheOthers", {u"990", u"995", u"998", u"999", u"999"}, u"999", false},
    {"AsFarAsTheOthersSpread", {u"0", u"300", u"600", u"999", u"999"}, u"999", false},
    {"AmongTheOthers", {u"-1500", u"-999", u"300", u"-20"}, u"-999", false},
    {"AmongNegativeOnes", {u"-60", u"-40", u"40", u"-99"}, u"-99", false},
    {"OnceAmongFew", {u"1", u"2", u"3", u"9999"}, u"9999", false},
    {"TooFewOthers", {u"1", u"2", u"-999"}, u"-999", false},
    {"NoOthers", {u"-999", u"-999"}, u"-999", false},
    {"NotCustomary", {u"1", u"2", u"3", u"-998", u"-998"}, u"-998", false},
    {"TwoPositiveNines", {u"1", u"2", u"3", u"99", u"99"}, u"99", false},
    {"OneNegativeNine", {u"1", u"2", u"3", u"-9", u"-9"}, u"-9", false},
    {"NinesWithAnExponent", {u"1", u"2", u"3", u"999e9", u"999e9"}, u"999e9", false},
    {"OtherText", {u"1", u"2", u"3", u"-999"}, u"-999.0", false},
};

class Sentinel : public testing::TestWithParam<SentinelCase> {};
TEST_P(Sentinel, IsAsInTheRow) {
  SentinelSearch search;
  for (const std::u16string& cell : GetParam().cells) {
    const std::optional<double> value = value_of(cell, {u'.', 0, 0, true});
    ASSERT_TRUE(value);
    search.add(cell, *value);
  }
  EXPECT_EQ(search.is_sentinel(GetParam().cell), GetParam().is_sentinel);
}
INSTANTIATE_TEST_SUITE_P(Table, Sentinel, testing::ValuesIn(kSentinels), ByRule());

TEST(SentinelTexts, AreNotEmpty) { EXPECT_FALSE(is_customary_sentinel(u"", 0)); }

TEST(SentinelTexts, AreSixteenAtMost) {
  SentinelSearch search;
  for (double value : {1, 2, 3}) search.add(u"1", value);
  std::u16string text = u"-99.";
  for (int i = 0; i < 20; ++i) search.add(text += u'9', -99.9);
  EXPECT_TRUE(search.is_sentinel(u"-99.9"));
  EXPECT_TRUE(search.is_sentinel(u"-99." + std::u16string(16, u'9')));
  EXPECT_FALSE(search.is_sentinel(u"-99." + std::u16string(17, u'9')));
}

}  // namespace
}  // namespace textio::columns
