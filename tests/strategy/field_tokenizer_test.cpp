#include <vltextstream/strategy/field_tokenizer.hpp>

#include <gtest/gtest.h>

#include <cstddef>
#include <ostream>
#include <string>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::Step;
using testing_support::step_of;
using testing_support::Texts;
using testing_support::with_nul;

const Texts kDefault = {u"\r\n", u"\n", u"\r"};

TEST(FieldTokenizerConstructor, KeepsTheMarkersAndTheirFirstCharacters) {
  const FieldTokenizer tokenizer({u",", u"::"}, kDefault);
  EXPECT_EQ(tokenizer.quote_, u'"');
  ASSERT_NE(tokenizer.delimiters_, nullptr);
  EXPECT_EQ(tokenizer.delimiters_->strings, (Texts{u",", u"::"}));
  ASSERT_NE(tokenizer.line_endings_, nullptr);
  EXPECT_EQ(tokenizer.line_endings_->strings, kDefault);
  EXPECT_EQ(tokenizer.stop_chars_, u"\n\r,:");
}

TEST(FieldTokenizerConstructor, AcceptsEmptyLists) {
  const FieldTokenizer tokenizer({}, {});
  ASSERT_NE(tokenizer.delimiters_, nullptr);
  ASSERT_NE(tokenizer.line_endings_, nullptr);
  EXPECT_EQ(tokenizer.stop_chars_, u"");
  const ExactText text(u"a,b\nc");
  EXPECT_EQ(step_of(tokenizer.tokenize(text.field(), 0)), (Step{u"a,b\nc", 5}));
}

struct TokenizeCase {
  const char* rule;
  Texts delimiters;
  Texts line_endings;
  std::u16string text;
  std::size_t pos;
  Step step;
};
std::ostream& operator<<(std::ostream& out, const TokenizeCase& row) { return out << row.rule; }

const Texts kComma = {u","};

const TokenizeCase kTokenizeCases[] = {
    // Plain fields.
    {"ADelimiterEndsTheFieldAndIsConsumed", kComma, kDefault, u"ab,c", 0, {u"ab", 3}},
    {"TheEndOfTheTextEndsTheField", kComma, kDefault, u"ab,c", 3, {u"c", 4}},
    {"ALineEndingEndsTheFieldAndIsNotConsumed", kComma, kDefault, u"ab\r\nc", 0, {u"ab", 2}},
    {"ALineEndingAtTheStartGivesAnEmptyField", kComma, kDefault, u"\nab", 0, {u"", 0}},
    {"ADelimiterAtTheStartGivesAnEmptyField", kComma, kDefault, u",a", 0, {u"", 1}},
    {"TheLastDelimiterIsConsumed", kComma, kDefault, u"a,", 0, {u"a", 2}},
    {"NothingIsFoundAtTheEnd", kComma, kDefault, u"a,", 2, {u"", 2}},
    {"NothingIsFoundInAnEmptyText", kComma, kDefault, u"", 0, {u"", 0}},
    {"BlanksBesideADelimiterStay", kComma, kDefault, u" a , b", 0, {u" a ", 4}},
    {"AQuoteInsideAPlainFieldIsPartOfIt", kComma, kDefault, u"a\"b,c\"", 0, {u"a\"b", 4}},

    // Quoted fields.
    {"AQuotedFieldKeepsItsQuotes", kComma, kDefault, u"\"a\",b", 0, {u"\"a\"", 4}},
    {"AQuotedFieldHoldsDelimiters", kComma, kDefault, u"\"a,b\",c", 0, {u"\"a,b\"", 6}},
    {"AQuotedFieldHoldsLineEndings", kComma, kDefault, u"\"a\r\nb\"\nc", 0, {u"\"a\r\nb\"", 6}},
    {"TextAfterTheClosingQuoteStays", kComma, kDefault, u"\"a,b\"x,c", 0, {u"\"a,b\"x", 7}},
    {"QuotesAfterTheClosingQuoteOpenNothing",
     kComma,
     kDefault,
     u"\"a\"b\"c,d\"",
     0,
     {u"\"a\"b\"c", 7}},
    {"ABlankAfterTheClosingQuoteStays", kComma, kDefault, u"\"a\" ,b", 0, {u"\"a\" ", 5}},
    {"ADoubledQuoteDoesNotClose", kComma, kDefault, u"\"a\"\",b\",c", 0, {u"\"a\"\",b\"", 8}},
    {"TwoDoubledQuotesDoNotClose", kComma, kDefault, u"\"\"\"\"\"\",x", 0, {u"\"\"\"\"\"\"", 7}},
    {"TwoQuotesAreAnEmptyQuotedField", kComma, kDefault, u"\"\",b", 0, {u"\"\"", 3}},
    {"TwoQuotesMayEndTheText", kComma, kDefault, u"\"\"", 0, {u"\"\"", 2}},
    {"ThreeQuotesHaveNoEnd", kComma, kDefault, u"\"\"\",b\nc", 0, {u"\"\"\",b\nc", 7}},
    {"FourQuotesAreADoubledQuote", kComma, kDefault, u"\"\"\"\",b", 0, {u"\"\"\"\"", 5}},
    {"AnUnterminatedQuoteRunsToTheEnd", kComma, kDefault, u"\"a,b\nc,d\n", 0, {u"\"a,b\nc,d\n", 9}},
    {"AnUnterminatedQuoteAfterADoubledOneToo",
     kComma,
     kDefault,
     u"\"a\"\",b",
     0,
     {u"\"a\"\",b", 6}},
    {"ALoneQuoteIsAField", kComma, kDefault, u"\"", 0, {u"\"", 1}},
    {"ALoneQuoteAtTheEndIsAField", kComma, kDefault, u"a,\"", 2, {u"\"", 3}},
    {"AClosingQuoteMayEndTheText", kComma, kDefault, u"\"a\"", 0, {u"\"a\"", 3}},
    {"ALineEndingMayFollowTheClosingQuote", kComma, kDefault, u"\"a\"\nb", 0, {u"\"a\"", 3}},
    {"AScanInsideQuotesKnowsNothingOfThem", kComma, kDefault, u"\"a,b\"", 1, {u"a", 3}},
    {"AScanAtTheClosingQuoteTakesItForAnOpeningOne", kComma, kDefault, u"\"a\",b", 2, {u"\",b", 5}},

    // Markers.
    {"LineEndingsComeBeforeDelimiters", {u"\n"}, kDefault, u"a\nb", 0, {u"a", 1}},
    {"ADelimiterThatIsALongerLineEndingIsNone", {u"\r\n"}, kDefault, u"a\r\nb", 0, {u"a", 1}},
    {"ADelimiterMayHoldAForeignLineEnding", {u"\r\n"}, {u"\n"}, u"a\r\nb", 0, {u"a", 3}},
    {"TheLongerDelimiterWinsWhenItComesFirst", {u"::", u":"}, kDefault, u"a::b", 0, {u"a", 3}},
    {"TheShorterDelimiterWinsWhenItComesFirst", {u":", u"::"}, kDefault, u"a::b", 0, {u"a", 2}},
    {"HalfADelimiterIsText", {u"::"}, kDefault, u"a:b::c", 0, {u"a:b", 5}},
    {"HalfADelimiterAtTheEndIsText", {u"::"}, kDefault, u"a:", 0, {u"a:", 2}},
    {"ADelimiterMayStartInsideItself", {u"aab"}, kDefault, u"aaabc", 0, {u"a", 4}},
    {"ALetterMayDelimit", {u"x"}, kDefault, u"axb", 0, {u"a", 2}},
    {"NulMayDelimit", {with_nul(u"\0")}, kDefault, with_nul(u"a\0b"), 0, {u"a", 2}},
    {"AnEmptyDelimiterNeverMatches",
     {u""},
     kDefault,
     with_nul(u"a,\0b\nc"),
     0,
     {with_nul(u"a,\0b"), 4}},
    {"AnEmptyDelimiterInFrontHidesTheOthers", {u"", u","}, kDefault, u"a,b", 0, {u"a,b", 3}},
    {"AnEmptyDelimiterAtTheEndHidesNothing", {u",", u""}, kDefault, u"a,b", 0, {u"a", 2}},
    {"AnEmptyLineEndingNeverMatches",
     kComma,
     {u""},
     with_nul(u"a\n\0b,c"),
     0,
     {with_nul(u"a\n\0b"), 5}},
    {"ABlankLineEndingComesBeforeABlankDelimiter", {u" "}, {u" "}, u"a b", 0, {u"a", 1}},
    {"TheQuoteAsADelimiterEndsPlainFields", {u"\""}, kDefault, u"a\"b", 0, {u"a", 2}},
    {"TheQuoteAsADelimiterOpensAFieldAtItsStart",
     {u"\""},
     kDefault,
     u"\"a\"b\"c",
     0,
     {u"\"a\"b", 5}},
    {"TheQuoteAsADelimiterFollowsALineEnding", {u"\""}, kDefault, u"\n\"", 0, {u"", 0}},

    // The end mark.
    {"AnEndMarkAtTheStartEndsTheScan", kComma, kDefault, u"\uFFFFa,b", 0, {u"", 0}},
    {"AnEndMarkInsideAPlainFieldIsPartOfIt", kComma, kDefault, u"a\uFFFFb,c", 0, {u"a\uFFFFb", 4}},
    {"AnEndMarkBeforeADelimiterIsPartOfTheField",
     kComma,
     kDefault,
     u"a\uFFFF,c",
     0,
     {u"a\uFFFF", 3}},
    {"AnEndMarkInsideQuotesIsPartOfTheField",
     kComma,
     kDefault,
     u"\"a\uFFFFb\",c",
     0,
     {u"\"a\uFFFFb\"", 6}},
    {"AnEndMarkAfterTheClosingQuoteEndsTheField",
     kComma,
     kDefault,
     u"\"a\"\uFFFF,b",
     0,
     {u"\"a\"", 3}},
    {"AnEndMarkAfterADoubledQuoteIsInside",
     kComma,
     kDefault,
     u"\"a\"\"\uFFFF\",b",
     0,
     {u"\"a\"\"\uFFFF\"", 7}},
    {"AnEndMarkFurtherAfterTheClosingQuoteIsPart",
     kComma,
     kDefault,
     u"\"a\"b\uFFFFc,d",
     0,
     {u"\"a\"b\uFFFFc", 7}},
    {"AnUnterminatedQuoteRunsOverAnEndMark",
     kComma,
     kDefault,
     u"\"a\uFFFFb",
     0,
     {u"\"a\uFFFFb", 4}},
    {"AnEndMarkAfterHalfADelimiterEndsTheField", {u"::"}, kDefault, u"a:\uFFFFb", 0, {u"a:", 2}},
    {"AnEndMarkAsTheDelimiterIsNotConsumed", {u"\uFFFF"}, kDefault, u"a\uFFFFb", 0, {u"a", 1}},
    {"AnEndMarkAsTheLineEndingIsNotConsumed", kComma, {u"\uFFFF"}, u"a\uFFFFb", 0, {u"a", 1}},
    {"AnEndMarkAsADelimiterLeavesTheOthers", {u"\uFFFF", u","}, kDefault, u"a,b", 0, {u"a", 2}},
    {"AnEndMarkAsADelimiterIsNotSeenAtTheEnd", {u"\uFFFF"}, kDefault, u"ab", 0, {u"ab", 2}},
};

class FieldTokenizerTokenize : public testing::TestWithParam<TokenizeCase> {};

TEST_P(FieldTokenizerTokenize, FindsTheEndOfTheField) {
  const FieldTokenizer tokenizer(GetParam().delimiters, GetParam().line_endings);
  const ExactText text(GetParam().text);
  EXPECT_EQ(step_of(tokenizer.tokenize(text.field(), GetParam().pos)), GetParam().step);
}

// Text before the start of the scan does not matter.
TEST_P(FieldTokenizerTokenize, DependsOnlyOnTheTextFromItsStartOn) {
  const FieldTokenizer tokenizer(GetParam().delimiters, GetParam().line_endings);
  const ExactText text(u"\",\n" + GetParam().text);
  const Step moved = {GetParam().step.found, GetParam().step.next + 3};
  EXPECT_EQ(step_of(tokenizer.tokenize(text.field(), GetParam().pos + 3)), moved);
}

TEST_P(FieldTokenizerTokenize, GivesAFieldThatStartsWhereTheScanDid) {
  const FieldTokenizer tokenizer(GetParam().delimiters, GetParam().line_endings);
  const ExactText text(GetParam().text);
  EXPECT_EQ(tokenizer.tokenize(text.field(), GetParam().pos).field.data,
            text.data() + GetParam().pos);
}

INSTANTIATE_TEST_SUITE_P(Table, FieldTokenizerTokenize, testing::ValuesIn(kTokenizeCases),
                         testing_support::ByRule());

TEST(FieldTokenizerScan, FindsNothingPastTheEnd) {
  const FieldTokenizer tokenizer(kComma, kDefault);
  const ExactText text(u"a,\"");
  const FieldExtent extent = tokenizer.tokenize(text.field(), 10);
  EXPECT_EQ(extent.field.length, 0u);
  EXPECT_EQ(extent.next, 10u);
}

// Copies share the markers, but not the object from which they were copied.
TEST(FieldTokenizerScan, IsTheSameByACopy) {
  const ExactText text(u"a,b;c");
  auto commas = std::make_unique<FieldTokenizer>(kComma, kDefault);
  FieldTokenizer copied(*commas);
  FieldTokenizer assigned(Texts{u";"}, kDefault);
  EXPECT_EQ(step_of(assigned.tokenize(text.field(), 0)), (Step{u"a,b", 4}));
  assigned = *commas;
  FieldTokenizer moved(std::move(*commas));
  commas.reset();
  assigned = *&assigned;
  for (const FieldTokenizer* tokenizer : {&copied, &assigned, &moved}) {
    EXPECT_EQ(step_of(tokenizer->tokenize(text.field(), 0)), (Step{u"a", 2}));
  }
}

TEST(FieldTokenizerScan, UsesTheQuoteItHolds) {
  FieldTokenizer tokenizer(kComma, kDefault);
  tokenizer.quote_ = u'\'';
  const ExactText text(u"'a,b',c");
  EXPECT_EQ(step_of(tokenizer.tokenize(text.field(), 0)), (Step{u"'a,b'", 6}));
  const ExactText plain(u"\"a,b\"");
  EXPECT_EQ(step_of(tokenizer.tokenize(plain.field(), 0)), (Step{u"\"a", 3}));
}

}  // namespace
}  // namespace textio
