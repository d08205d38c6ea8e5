#include <vltextstream/columns/boolean_words.hpp>

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

struct WordsCase {
  const char* rule;
  std::vector<std::u16string> cells;
  std::u16string yes;
  std::u16string no;
};
std::ostream& operator<<(std::ostream& out, const WordsCase& row) { return out << row.rule; }

const WordsCase kWords[] = {
    {"EnglishTrueAndFalse", {u"true", u"false"}, u"true", u"false"},
    {"EnglishYesAndNo", {u"no", u"yes", u"no"}, u"yes", u"no"},
    {"EnglishLetters", {u"Y", u"N", u"Y"}, u"Y", u"N"},
    {"EnglishLettersOfLogic", {u"T", u"F"}, u"T", u"F"},
    {"EnglishOnAndOff", {u"On", u"Off"}, u"On", u"Off"},
    {"German", {u"ja", u"nein"}, u"ja", u"nein"},
    {"GermanLogic", {u"WAHR", u"FALSCH"}, u"WAHR", u"FALSCH"},
    {"GermanLetters", {u"J", u"N"}, u"J", u"N"},
    {"French", {u"oui", u"non"}, u"oui", u"non"},
    {"FrenchLogic", {u"VRAI", u"FAUX"}, u"VRAI", u"FAUX"},
    {"Spanish", {u"s\u00ED", u"no"}, u"s\u00ED", u"no"},
    {"SpanishWithoutAccent", {u"SI", u"NO"}, u"SI", u"NO"},
    {"SpanishLogic", {u"verdadero", u"falso"}, u"verdadero", u"falso"},
    {"Italian", {u"s\u00EC", u"no"}, u"s\u00EC", u"no"},
    {"ItalianLogic", {u"vero", u"falso"}, u"vero", u"falso"},
    {"Portuguese", {u"sim", u"n\u00E3o"}, u"sim", u"n\u00E3o"},
    {"PortugueseLogic", {u"Verdadeiro", u"Falso"}, u"Verdadeiro", u"Falso"},
    {"Dutch", {u"ja", u"nee"}, u"ja", u"nee"},
    {"DutchLogic", {u"waar", u"onwaar"}, u"waar", u"onwaar"},
    {"Scandinavian", {u"ja", u"nej"}, u"ja", u"nej"},
    {"Polish", {u"tak", u"nie"}, u"tak", u"nie"},
    {"Czech", {u"ano", u"ne"}, u"ano", u"ne"},
    {"Russian", {u"\u0414\u0430", u"\u043D\u0435\u0442"}, u"\u0414\u0430", u"\u043D\u0435\u0442"},
    {"Fortran", {u".TRUE.", u".FALSE."}, u".TRUE.", u".FALSE."},

    {"FirstWayOfWriting", {u"True", u"FALSE", u"true", u"false"}, u"True", u"FALSE"},
    {"OneWordIfItIsPlain", {u"yes", u"yes"}, u"yes", u""},
    {"TheOtherWordIfItIsPlain", {u"False"}, u"", u"False"},
    {"ThePairOfMostCells", {u"ja", u"nee", u"nee", u"nein"}, u"ja", u"nee"},
};

class BooleanWordsOf : public testing::TestWithParam<WordsCase> {};
TEST_P(BooleanWordsOf, AreThoseOfTheRow) {
  BooleanVotes votes;
  for (const std::u16string& cell : GetParam().cells) {
    EXPECT_TRUE(is_boolean_word(cell)) << readable(cell);
    votes.add(cell);
  }
  const auto words = votes.words();
  ASSERT_TRUE(words);
  EXPECT_EQ(readable(words->yes), readable(GetParam().yes));
  EXPECT_EQ(readable(words->no), readable(GetParam().no));
}
INSTANTIATE_TEST_SUITE_P(Table, BooleanWordsOf, testing::ValuesIn(kWords), ByRule());

TEST(BooleanVotesOf, OneWordOfManyLanguagesDecideNothing) {
  for (const std::u16string word : {u"ja", u"si", u"falso", u"t", u"n", u"on", u"ne"}) {
    BooleanVotes votes;
    votes.add(word);
    EXPECT_FALSE(votes.words()) << readable(word);
  }
}

TEST(OtherBooleanWord, IsThatOfAPairOfWhichOneIsEnough) {
  EXPECT_EQ(readable(other_boolean_word(u"True")), "false");
  EXPECT_EQ(readable(other_boolean_word(u"FALSE")), "true");
  EXPECT_EQ(readable(other_boolean_word(u"yes")), "no");
  EXPECT_EQ(readable(other_boolean_word(u"no")), "yes");
  EXPECT_EQ(readable(other_boolean_word(u"ja")), "");
  EXPECT_EQ(readable(other_boolean_word(u"")), "");
}

TEST(IsBooleanWord, KnowsNoNumbersAndNoOtherWords) {
  for (const std::u16string word : {u"", u"0", u"1", u"s", u"north", u"truee", u"verdadeiros"}) {
    EXPECT_FALSE(is_boolean_word(word)) << readable(word);
  }
}

}  // namespace
}  // namespace textio::columns
