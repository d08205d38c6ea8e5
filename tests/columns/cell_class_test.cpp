#include <vltextstream/columns/cell_class.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

struct ClassCase {
  const char* rule;
  CellClass cell_class;
  std::vector<std::u16string> cells;
};
std::ostream& operator<<(std::ostream& out, const ClassCase& row) { return out << row.rule; }

const ClassCase kClasses[] = {
    {"Empty", CellClass::empty, {u"", u"\u00A0"}},
    {"Missing", CellClass::missing, {u"NA", u"-", u"nan", u"#DIV/0!", u"k.A."}},
    {"Numbers",
     CellClass::number,
     {u"12", u"-1.5", u"1,234", u"1e5", u"1.5D-3", u"inf", u"(12.00)", u"12345678", u"+49",
      u"20241301"}},
    {"DigitsOfADate", CellClass::compact_date, {u"20240131", u"20240131150405"}},
    {"Percentages", CellClass::percentage, {u"5%", u"3,5 %"}},
    {"Money", CellClass::money, {u"$5", u"5,00 \u20AC", u"CHF 1'200.-", u"5.-", u"12,-"}},
    {"Complex", CellClass::complex, {u"1+2i", u"(1-2j)"}},
    {"WordsForTrueAndFalse", CellClass::boolean, {u"true", u"Nein", u"y", u"oui", u"n\u00E3o"}},
    {"Dates",
     CellClass::date,
     {u"2024-01-31", u"31. Januar 2024", u"31 janvier 2024", u"99-12-31", u"31 Jan"}},
    {"Times", CellClass::time, {u"15:04", u"5 pm"}},
    {"DatesAndTimes",
     CellClass::date_time,
     {u"2024-01-31T15:04", u"31 janvier 2024, 15:04", u"20240131T1504"}},
    {"Durations", CellClass::duration, {u"PT5M", u"1d 2h"}},
    {"ClocksOfDurations",
     CellClass::elapsed_clock,
     {u"36:15:00", u"-01:00:00", u"59:12.5", u"3 days, 4:05:06"}},
    {"HoursAndMinutesBeyondADay",
     CellClass::long_clock,
     {u"25:10", u"36:15", u"125:59", u"1234:00"}},
    {"NumbersWithOneUnitOfTime",
     CellClass::one_duration,
     {u"5h", u"2d", u"30 min", u"45s", u"250 ms", u"10 sec", u"7m"}},
    {"NumbersWithOtherLetters", CellClass::text, {u"5x", u"5H", u"2  d", u"h5", u"5hm", u"17b"}},
    {"OtherPairsOfNumbers", CellClass::text, {u"25:60", u"25:1", u"12345:00", u"25:100", u"25:1a"}},
    {"Uuids", CellClass::uuid, {u"123e4567-e89b-12d3-a456-426614174000"}},
    {"AddressesOfPages", CellClass::url, {u"https://example.org/a"}},
    {"AddressesOfPeople", CellClass::email, {u"a@example.org"}},
    {"AddressesOfMachines", CellClass::ip, {u"10.0.0.1", u"fe80::1"}},
    {"TelephoneNumbers", CellClass::phone, {u"+49 30 123456", u"+493012345678", u"030/1234567"}},
    {"Texts",
     CellClass::text,
     {u"Berlin", u"A17", u"two words", u"Set 5", u"/a/b", u"{}", u"1,2,3", u"5 apples", u"|"}},
};

class ClassOfCell : public testing::TestWithParam<ClassCase> {};
TEST_P(ClassOfCell, IsThatOfTheRow) {
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_EQ(class_of_cell(ExactText(cell).view(), {}), GetParam().cell_class) << readable(cell);
  }
}
INSTANTIATE_TEST_SUITE_P(Table, ClassOfCell, testing::ValuesIn(kClasses), ByRule());

TEST(ClassOfCellByRules, IsMissingIfTheWordIsGiven) {
  const std::vector<std::u16string> missing = {u"12", u"x"};
  const CellRules rules{missing, u"eE"};
  EXPECT_EQ(class_of_cell(u"12", rules), CellClass::given_missing);
  EXPECT_EQ(class_of_cell(u"x", rules), CellClass::given_missing);
  EXPECT_EQ(class_of_cell(u"X", rules), CellClass::text);
  EXPECT_EQ(class_of_cell(u"NA", rules), CellClass::missing);
}

TEST(ClassOfCellByRules, IsNoNumberWithAnotherExponent) {
  const CellRules rules{{}, u"eE"};
  EXPECT_EQ(class_of_cell(u"1e5", rules), CellClass::number);
  EXPECT_EQ(class_of_cell(u"1D5", rules), CellClass::text);
}

}  // namespace
}  // namespace textio::columns
