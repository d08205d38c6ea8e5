#include <vltextstream/columns/money_format.hpp>

#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "columns/shown.hpp"
#include "support/exact_text.hpp"
#include "support/printing.hpp"
#include "support/rule_name.hpp"

namespace textio::columns {
namespace {

using testing_support::ByRule;
using testing_support::ExactText;
using testing_support::readable;

struct PartsCase {
  const char* rule;
  std::u16string cell;
  std::u16string currency;
  std::u16string amount;
  bool is_before;
};
std::ostream& operator<<(std::ostream& out, const PartsCase& row) { return out << row.rule; }

const PartsCase kParts[] = {
    {"SignBefore", u"$5", u"$", u"5", true},
    {"SignAfterABlank", u"5 \u20AC", u"\u20AC", u"5", false},
    {"CodeBefore", u"EUR 1.234,50", u"EUR", u"1.234,50", true},
    {"CodeAfter", u"1,234.50 USD", u"USD", u"1,234.50", false},
    {"NameAfterANoBreakSpace", u"1 234,50\u00A0kr", u"kr", u"1 234,50", false},
    {"NameWithAPoint", u"Rs. 500", u"Rs.", u"500", true},
    {"MinusBeforeTheSign", u"-$5.00", u"$", u"5.00", true},
    {"MinusAfterTheSign", u"\u20AC -5", u"\u20AC", u"5", true},
    {"Parentheses", u"($1,234.50)", u"$", u"1,234.50", true},
    {"ParenthesesAroundTheAmount", u"$(5)", u"$", u"5", true},
    {"ScaleIsNoCurrency", u"$1.2bn", u"$", u"1.2", true},
    {"DashForTheCents", u"CHF 1'200.-", u"CHF", u"1'200", true},
    {"TwoDashesForTheCents", u"Fr. 5.--", u"Fr.", u"5", true},
    {"DashWithoutACurrency", u"12,-", u"", u"12", false},
};

class MoneyParted : public testing::TestWithParam<PartsCase> {};
TEST_P(MoneyParted, AsInTheRow) {
  const ExactText cell(GetParam().cell);
  EXPECT_TRUE(is_money(cell.view(), assessment::kind_of(cell.view())));
  const MoneyParts parts = parts_of_money(cell.view());
  EXPECT_EQ(readable(parts.currency), readable(GetParam().currency));
  EXPECT_EQ(readable(parts.amount), readable(GetParam().amount));
  EXPECT_EQ(parts.is_before, GetParam().is_before);
}
INSTANTIATE_TEST_SUITE_P(Table, MoneyParted, testing::ValuesIn(kParts), ByRule());

TEST(IsMoney, NeedsACurrencyOrADash) {
  for (const std::u16string cell :
       {u"5", u"5.00", u"(12.00)", u"abc.-", u"5-", u".-", u"-", u"5 m", u"1.5.-", u"5.---"}) {
    EXPECT_FALSE(is_money(cell, assessment::kind_of(cell))) << readable(cell);
  }
}

TEST(PartsOfMoney, AreAroundTheDigits) {
  EXPECT_EQ(readable(parts_of_money(u"(5 EUR)").currency), "EUR");
  EXPECT_EQ(readable(parts_of_money(u"(5 EUR)").amount), "5");
  EXPECT_EQ(readable(parts_of_money(u"--").amount), "");
  EXPECT_EQ(readable(parts_of_money(u"--").currency), "");
}

struct VotesCase {
  const char* rule;
  std::vector<std::u16string> cells;
  MoneyFormat format;
};
std::ostream& operator<<(std::ostream& out, const VotesCase& row) { return out << row.rule; }

const VotesCase kVotes[] = {
    {"AllBefore", {u"$5", u"-$7.50", u"$ 8"}, {u"$", CurrencyPlace::before}},
    {"AllAfter", {u"5 \u20AC", u"7,50\u20AC"}, {u"\u20AC", CurrencyPlace::after}},
    {"TwoCurrencies", {u"$5", u"\u20AC5"}, {u"", CurrencyPlace::before}},
    {"TwoCurrenciesInTurn", {u"$5", u"\u20AC5", u"$6"}, {u"", CurrencyPlace::before}},
    {"TwoPlaces", {u"EUR 5", u"5 EUR"}, {u"EUR", CurrencyPlace::none}},
    {"OneWithoutACurrency", {u"5.-", u"CHF 7.-"}, {u"CHF", CurrencyPlace::before}},
    {"NoCurrency", {u"5.-", u"7.-"}, {u"", CurrencyPlace::none}},
};

class MoneyVotesOf : public testing::TestWithParam<VotesCase> {};
TEST_P(MoneyVotesOf, GiveTheFormatOfTheRow) {
  MoneyVotes votes;
  for (const std::u16string& cell : GetParam().cells) votes.add(parts_of_money(cell));
  EXPECT_EQ(votes.format(), GetParam().format);
}
INSTANTIATE_TEST_SUITE_P(Table, MoneyVotesOf, testing::ValuesIn(kVotes), ByRule());

}  // namespace
}  // namespace textio::columns
