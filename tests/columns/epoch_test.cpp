#include <vltextstream/columns/epoch.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "columns/shown.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::readable;

TEST(SpeaksOfTime, IfAWordDoes) {
  for (const std::u16string name :
       {u"time", u"Time", u"event_time", u"eventTime", u"ts", u"epoch", u"createdAt",
        u"Unix timestamp", u"Zeit", u"heure (UTC)", u"fecha"}) {
    EXPECT_TRUE(speaks_of_time(name)) << readable(name);
  }
}

TEST(SpeaksOfTime, NotIfItIsPartOfAWord) {
  for (const std::u16string name : {u"", u"id", u"sometimes", u"timeout", u"parts", u"order_no"}) {
    EXPECT_FALSE(speaks_of_time(name)) << readable(name);
  }
}

struct EpochCase {
  const char* rule;
  std::vector<double> values;
  std::u16string name;
  ColumnKind kind;
};
std::ostream& operator<<(std::ostream& out, const EpochCase& row) { return out << row.rule; }

// 2024-01-01 00:00 UTC is second 1704067200.
const EpochCase kEpochs[] = {
    {"SecondsInOrder", {1704067200, 1704067260, 1704067320}, u"", ColumnKind::epoch_seconds},
    {"MillisecondsInOrder",
     {1704067200000, 1704067200500, 1704067201000},
     u"",
     ColumnKind::epoch_milliseconds},
    {"SomeAreEqual", {1704067200, 1704067200, 1704067260}, u"", ColumnKind::epoch_seconds},
    {"SecondsByName", {1704067260, 1704067200}, u"timestamp", ColumnKind::epoch_seconds},
    {"MillisecondsByName", {1704067200000}, u"ts", ColumnKind::epoch_milliseconds},
    {"FirstAndLastSecond", {946684800, 4102444799}, u"time", ColumnKind::epoch_seconds},

    {"NotInOrder", {1704067260, 1704067200, 1704067320}, u"", ColumnKind::integer},
    {"TwoValues", {1704067200, 1704067260}, u"", ColumnKind::integer},
    {"AllEqual", {1704067200, 1704067200, 1704067200}, u"", ColumnKind::integer},
    {"CountedOn", {1704067200, 1704067201, 1704067202}, u"", ColumnKind::integer},
    {"BeforeTheYear2000", {946684799, 946684900, 946685000}, u"time", ColumnKind::integer},
    {"AfterTheYear2099", {4102444700, 4102444800, 4102444900}, u"time", ColumnKind::integer},
    {"SmallNumbersOfTime", {1, 5, 9}, u"time", ColumnKind::integer},
    {"NoValue", {}, u"time", ColumnKind::integer},
};

class Epoch : public testing::TestWithParam<EpochCase> {};
TEST_P(Epoch, IsAsInTheRow) {
  EpochVotes votes;
  for (const double value : GetParam().values) votes.add(value);
  EXPECT_EQ(votes.kind(GetParam().name), GetParam().kind);
}
INSTANTIATE_TEST_SUITE_P(Table, Epoch, testing::ValuesIn(kEpochs), ByRule());

}  // namespace
}  // namespace textio::columns
