#include <vltextstream/assessment/names_evidence.hpp>

#include <cstddef>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/reading.hpp>

#include "assessment/shown.hpp"
#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;
using testing_support::Sample;
using Names = std::vector<std::u16string_view>;

constexpr std::size_t at(NamesEvidence evidence) { return static_cast<std::size_t>(evidence); }

struct Table {
  Table(std::u16string_view text, std::size_t columns, const Reading& reading)
      : sample(text),
        records(cut(sample.lines(), reading)),
        frame(find_table(sample.lines(), records, reading, columns)),
        kinds(records, frame.data, frame.columns, kRecordsLookedInto) {}
  Sample sample;
  Records records;
  TableFrame frame;
  CellKinds kinds;
};

const Reading kComma = {Form::delimited, u","};

// --- single pieces ---------------------------------------------------------------------------

struct AmountCase {
  const char* rule;
  NamesEvidence evidence;
  std::u16string text;  // of two columns
  double amount;
};
std::ostream& operator<<(std::ostream& out, const AmountCase& row) { return out << row.rule; }

const AmountCase kValueCases[] = {
    {"NumberAmongNames", NamesEvidence::value_among_names, u"1,a\n2,b\n", 1},
    {"DateAmongNames", NamesEvidence::value_among_names, u"2020-01-02,a\nx,b\n", 1},
    {"TimeAmongNames", NamesEvidence::value_among_names, u"12:30,a\nx,b\n", 1},
    {"AddressAmongNames", NamesEvidence::value_among_names, u"10.0.0.1,a\nx,b\n", 1},
    {"WordsAmongNames", NamesEvidence::value_among_names, u"day,level\n1,2\n", 0},
    {"NothingAmongNames", NamesEvidence::value_among_names, u",level\n1,2\n", 0},
    {"YearAboveYears", NamesEvidence::value_among_names, u"a,2019\nb,2020\nc,2021\n", 1},
    {"YearAboveOtherNumbers", NamesEvidence::value_among_names, u"a,2019\nb,5\nc,7\n", 0},

    {"TextAboveNumbers", NamesEvidence::text_over_values, u"x,y\n1,a\n2,b\n", 1},
    {"TextAboveTexts", NamesEvidence::text_over_values, u"x,y\na,b\nc,d\n", 0},
    {"NumbersAboveNumbers", NamesEvidence::text_over_values, u"1,2\n3,4\n", 0},
    {"TextAboveFourNumbersOfFive", NamesEvidence::text_over_values,
     u"x,y\n1,a\n2,a\n3,a\n4,a\nb,a\n", 1},
    {"TextAboveThreeNumbersOfFour", NamesEvidence::text_over_values, u"x,y\n1,a\n2,a\n3,a\nb,a\n",
     0},
    {"EmptyCellsDoNotCount", NamesEvidence::text_over_values, u"x,y\n1,a\n,a\n,b\n", 1},
    {"YearAboveNumbers", NamesEvidence::text_over_values, u"a,2019\nb,5\nc,7\n", 1},
    {"TextAboveNothing", NamesEvidence::text_over_values, u"x,y\n,a\n", 0},
};

const AmountCase kTextCases[] = {
    {"OnlyTexts", NamesEvidence::only_texts, u"x,y\na,b\nc,d\n", 1},
    {"ColumnOfNumbers", NamesEvidence::only_texts, u"x,y\n1,a\n2,b\n", 0},
    {"OneColumnInOtherCase", NamesEvidence::other_case, u"x,y\nA,b\nC,d\n", 0.5},
    {"BothInOtherCase", NamesEvidence::other_case, u"X,Y\na,b\nc,d\n", 1},
    {"ColumnOfBothCases", NamesEvidence::other_case, u"x,y\nA,b\nc,d\n", 0},
    {"NumbersHaveNoCase", NamesEvidence::other_case, u"x,y\n1,2\n3,4\n", 0},
    {"CasesAsBelow", NamesEvidence::mixed_case, u"Ann,cook\nBob,baker\nCem,pilot\n", 1},
    {"CasesAsBelowSaveOne", NamesEvidence::mixed_case, u"Ann,cook\nBob,Baker\nCem,pilot\n", 0},
    {"CasesNotAsBelow", NamesEvidence::mixed_case, u"Name,job\nann,baker\n", 0},
    {"OneCaseAlone", NamesEvidence::mixed_case, u"name,job\nann,baker\n", 0},

    {"NameAgainInItsColumn", NamesEvidence::name_below, u"a,b\nc,d\na,e\n", 1},
    {"NameAgainInTheOtherColumn", NamesEvidence::name_below, u"a,b\nc,a\n", 0},
    {"NameAgainWithBlanks", NamesEvidence::name_below, u"a,b\n a ,d\n", 1},
    {"NothingAgain", NamesEvidence::name_below, u",b\n,d\n", 0},

    {"BothLikeNames", NamesEvidence::like_names, u"day,level [m]\n1,2\n", 0.5},
    {"WithUsualMarks", NamesEvidence::like_names, u"day_1,level (m/s)\n1,2\n", 1},
    {"WithADigitFirst", NamesEvidence::like_names, u"1st,level\n1,2\n", 0.5},
    {"OfFortyCharacters", NamesEvidence::like_names, std::u16string(40, u'x') + u",y\n1,2\n", 1},
    {"OfMore", NamesEvidence::like_names, std::u16string(41, u'x') + u",y\n1,2\n", 0.5},
    {"OneWithoutAName", NamesEvidence::like_names, u",level\n1,2\n", 0.5},

    // |3 - 1| and |4 - 1|, over a spread of 0 and 1.
    {"NamesLongerThanCells", NamesEvidence::odd_length, u"abc,abcd\n1,2\n3,4\n", 2.5},
    {"AtMostThreeSpreads", NamesEvidence::odd_length, u"abcdefgh,abcdefgh\n1,2\n3,4\n", 3},
    {"AsLongAsTheCells", NamesEvidence::odd_length, u"a,b\n1,2\n3,4\n", 0},
    // Lengths of 1 and 3 have the mean 2 and the spread 1: |6 - 2| / (1 + 1).
    {"CellsOfDifferentLengths", NamesEvidence::odd_length, u"abcdef,abcdef\n1,2\n345,678\n", 2},
    {"OnlyFilledColumnsCount", NamesEvidence::odd_length, u"abc,abcd\n1,\n3,\n", 2},
    {"NoDataNoLengths", NamesEvidence::odd_length, u"abc,abcd\n", 0},

    {"IdentifierAboveIdentifiers", NamesEvidence::shaped_alike, u"PX-1,a\nPX-23,b\nQ-7,c\n", 1},
    {"IdentifierAboveOthers", NamesEvidence::shaped_alike, u"PX-1,a\nPX,b\n7,c\n", 0},
    {"WordsAboveWords", NamesEvidence::shaped_alike, u"part,a\nbolt,b\nnut,c\n", 0},
    {"ChecksumAboveChecksums", NamesEvidence::shaped_alike, u"1d50e3,a\nffffff,b\n0123ab,c\n", 1},
    {"ChecksumOfAnotherLength", NamesEvidence::shaped_alike, u"1d50e39,a\nabcdef,b\nfedcba,c\n", 0},
    {"FirstWordsCount", NamesEvidence::shaped_alike, u"AB 1x,a\nx1 y,b\nx2 z,c\n", 0},
    {"FirstWordsWithDigits", NamesEvidence::shaped_alike, u"A1 one,a\nB2,b\nC3 three,c\n", 1},
    {"NumbersAreNoIdentifiers", NamesEvidence::shaped_alike, u"12,a\n34,b\n56,c\n", 0},
    {"OneRecordIsTooFew", NamesEvidence::shaped_alike, u"PX-1,a\nPX-23,b\n", 0},

    {"NoData", NamesEvidence::no_data, u"a,b\n", 1},
    {"Data", NamesEvidence::no_data, u"a,b\n1,2\n", 0},
};

class NamesEvidenceAmount : public testing::TestWithParam<AmountCase> {};
TEST_P(NamesEvidenceAmount, IsWhatTheCellsSay) {
  const Table table(GetParam().text, 2, kComma);
  const NamesAmounts amounts = weigh_names(table.records, table.frame, table.kinds);
  EXPECT_NEAR(amounts[at(GetParam().evidence)], GetParam().amount, 1e-12);
}
INSTANTIATE_TEST_SUITE_P(Values, NamesEvidenceAmount, testing::ValuesIn(kValueCases), ByRule());
INSTANTIATE_TEST_SUITE_P(Texts, NamesEvidenceAmount, testing::ValuesIn(kTextCases), ByRule());

TEST(NamesEvidenceOfOneColumn, SaysWhetherItHoldsTexts) {
  const Reading one = {Form::one};
  const Table texts(u"name\nann\nbob\n", 1, one);
  EXPECT_EQ(
      weigh_names(texts.records, texts.frame, texts.kinds)[at(NamesEvidence::column_of_texts)], 1);
  const Table numbers(u"level\n1\n2\n", 1, one);
  EXPECT_EQ(weigh_names(numbers.records, numbers.frame,
                        numbers.kinds)[at(NamesEvidence::column_of_texts)],
            0);
  const Table two(u"name,place\nann,rome\n", 2, kComma);
  EXPECT_EQ(weigh_names(two.records, two.frame, two.kinds)[at(NamesEvidence::column_of_texts)], 0);
}

// --- names elsewhere -------------------------------------------------------------------------

TEST(WeighGivenNames, ComparesThemWithAllRecords) {
  const Table table(u"1,a\n2,b\n", 2, kComma);
  const Names names = {u"day", u"a"};
  const NamesAmounts amounts = weigh_names(table.records, table.frame, table.kinds, &names);
  EXPECT_EQ(amounts[at(NamesEvidence::value_among_names)], 0);
  EXPECT_EQ(amounts[at(NamesEvidence::text_over_values)], 1);
  EXPECT_EQ(amounts[at(NamesEvidence::name_below)], 1);
  EXPECT_EQ(amounts[at(NamesEvidence::like_names)], 1);
  EXPECT_EQ(amounts[at(NamesEvidence::odd_length)], 1);  // 2 for "day", 0 for "a"
  EXPECT_EQ(amounts[at(NamesEvidence::no_data)], 0);
}

TEST(WeighNamesOfTwoRows, TakesTheLowerOne) {
  Table table(u"north,\nday,level\n1,2\n", 2, kComma);
  table.frame.names_rows = 2;
  const NamesAmounts amounts = weigh_names(table.records, table.frame, table.kinds);
  EXPECT_EQ(amounts[at(NamesEvidence::text_over_values)], 1);
  EXPECT_EQ(amounts[at(NamesEvidence::like_names)], 1);
}

TEST(NamesEvidenceNames, AreDifferentWordsWithHyphens) {
  std::set<std::string_view> names;
  for (std::size_t k = 0; k < kNumNamesEvidence; ++k) {
    const std::string_view name = to_string(static_cast<NamesEvidence>(k));
    EXPECT_TRUE(names.insert(name).second) << name;
    EXPECT_FALSE(name.empty()) << k;
  }
  EXPECT_EQ(to_string(NamesEvidence::value_among_names), "value-among-names");
  EXPECT_EQ(to_string(NamesEvidence::no_data), "no-data");
}

}  // namespace
}  // namespace textio::assessment
