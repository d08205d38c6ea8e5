#include <vltextstream/columns/identifiers.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::readable;

TEST(IsPhoneLike, WithAPrefixOrTwoHyphens) {
  for (const std::u16string text :
       {u"+49 30 123456", u"+1-202-555-0173", u"+493012345678", u"(030) 123-4567", u"030/1234567",
        u"06 12 34 56 78", u"555-123-4567", u"978-3-16-148410-0", u"123-45-6789",
        u"202.555.0173"}) {
    EXPECT_TRUE(is_phone_like(text)) << readable(text);
  }
}

TEST(IsPhoneLike, NotWithOtherLettersLengthsOrGroups) {
  for (const std::u16string text :
       {u"", u"12345678", u"1990-1999", u"12 34 56 78", u"03-04", u"+12", u"+1234567", u"030 1234x",
        u"555-123-4567-8901-2345", u"1 234 567", u"0301234567",
        u"030/1234567                    "}) {
    EXPECT_FALSE(is_phone_like(text)) << readable(text);
  }
}

struct VotesCase {
  const char* rule;
  std::vector<std::u16string> cells;
  bool are_identifiers;
};
std::ostream& operator<<(std::ostream& out, const VotesCase& row) { return out << row.rule; }

const std::vector<std::u16string> kElevenWithOneZero = {u"1", u"02", u"3", u"4",  u"5", u"6",
                                                        u"7", u"8",  u"9", u"10", u"11"};

const VotesCase kVotes[] = {
    {"LeadingZeros", {u"007", u"012", u"115"}, true},
    {"LeadingZerosInOneOfOneWidth", {u"12345", u"67890", u"01234"}, true},
    {"LeadingZerosInATenth",
     {u"1", u"02", u"345", u"4", u"5", u"6", u"7", u"8", u"9", u"10"},
     true},
    {"LeadingZerosInLess", kElevenWithOneZero, false},
    {"ZeroAlone", {u"0", u"12", u"345"}, false},
    {"NoLeadingZero", {u"123", u"456"}, false},
    {"SixteenDigitsAboveTheLastInteger", {u"9007199254740993", u"9007199254740994"}, true},
    {"SixteenDigitsUpToIt", {u"9007199254740992", u"1234567890123456"}, false},
    {"NineteenDigits", {u"1234567890123456789", u"-1234567890123456789"}, true},
    {"DigitsWithMarks", {u"0,123", u"00 123"}, false},
    {"NoCell", {}, false},
    {"EmptyCell", {u""}, false},
};

class Identifiers : public testing::TestWithParam<VotesCase> {};
TEST_P(Identifiers, AreAsInTheRow) {
  IdentifierVotes votes;
  for (const std::u16string& cell : GetParam().cells) votes.add(cell);
  EXPECT_EQ(votes.are_identifiers(), GetParam().are_identifiers);
}
INSTANTIATE_TEST_SUITE_P(Table, Identifiers, testing::ValuesIn(kVotes), ByRule());

TEST(IdentifierWidth, IsOfCellsWithLeadingZeros) {
  IdentifierVotes votes;
  votes.add(u"1545");
  votes.add(u"1230");
  EXPECT_FALSE(votes.have_width(4));
}

TEST(IdentifierWidth, IsThatOfAllCells) {
  IdentifierVotes votes;
  votes.add(u"0930");
  votes.add(u"1545");
  EXPECT_TRUE(votes.have_width(4));
  EXPECT_FALSE(votes.have_width(6));
  votes.add(u"123456");
  EXPECT_FALSE(votes.have_width(4));
  EXPECT_FALSE(votes.have_width(6));
}

}  // namespace
}  // namespace textio::columns
