#include "tool/emit/emit_facts.hpp"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

#include "support/rule_name.hpp"
#include "support/temp_folder.hpp"

namespace textio::tool {
namespace {

using reading::ColumnType;
using testing_support::ByRule;
using testing_support::TempFolder;

Facts facts_of_text(const std::string& text) {
  const TempFolder folder;
  return facts_of(folder.file("t.csv", text), {}, {});
}

struct FormatCase {
  const char* rule;
  const char* cell;
  const char* format;
  bool follows;
};
std::ostream& operator<<(std::ostream& out, const FormatCase& row) { return out << row.rule; }

const FormatCase kFormatCases[] = {
    {"AllDigits", "02.01.2024", "%d.%m.%Y", true},
    {"ADayOfOneDigit", "2.1.2024", "%d.%m.%Y", false},
    {"AMoment", "2024-01-02 08:15:00", "%Y-%m-%d %H:%M:%S", true},
    {"MoreAfterIt", "2024-01-02x", "%Y-%m-%d", false},
    {"AnotherMark", "2024/01/02", "%Y-%m-%d", false},
    {"NamesOfMonths", "2 Jan 2024", "%d %b %Y", false},
    {"ShortYears", "02.01.24", "%d.%m.%y", false},
    {"NoFormat", "2024", "", false},
};

class Format : public testing::TestWithParam<FormatCase> {};
TEST_P(Format, IsFollowedDigitByDigit) {
  EXPECT_EQ(follows_format(GetParam().cell, GetParam().format), GetParam().follows);
}
INSTANTIATE_TEST_SUITE_P(Table, Format, testing::ValuesIn(kFormatCases), ByRule());

TEST(EmitFacts, TellWhereTheDataBegins) {
  const Facts facts =
      facts_of_text("River levels\n\nname,level\nAare,1\nEmme,2\nThur,3\nSaane,4\n");
  EXPECT_EQ(facts.lines_to_skip(), 3U);
  EXPECT_EQ(facts.names_line, 3U);
  EXPECT_EQ(facts.num_rows, 4U);
  EXPECT_EQ(facts.oddity, "");
}

TEST(EmitFacts, KnowTheTypeOfTheWholeColumn) {
  std::string text = "name,level\n";
  for (int i = 0; i < 300; ++i) text += "n" + std::to_string(i) + "," + std::to_string(i) + "\n";
  const Facts facts = facts_of_text(text + "last,dry\n");
  EXPECT_EQ(facts.columns[1].type, ColumnType::text);
  EXPECT_EQ(facts.oddity, "some cells do not fit their columns");
}

TEST(EmitFacts, TellNumbersThatADoubleDoesNotHold) {
  const Facts facts = facts_of_text("a,b\n1234567890123456,1\n1,2\n-3,3\n40,4\n");
  EXPECT_FALSE(facts.columns[0].fits_double);
  EXPECT_TRUE(facts.columns[1].fits_double);
}

TEST(EmitFacts, AreThoseOfAPlainTableOnceConverted) {
  const Facts facts = converted(facts_of_text("a;b\n1,5;x\n2,5;y\n3,5;z\n"));
  EXPECT_TRUE(facts.is_converted);
  EXPECT_EQ(facts.delimiters, std::vector<std::string>{","});
  EXPECT_EQ(facts.columns[0].decimal, ".");
  EXPECT_EQ(facts.columns[0].type, ColumnType::real);
  EXPECT_EQ(facts.lines_to_skip(), 1U);
}

}  // namespace
}  // namespace textio::tool
