#include <vltextstream/strategy/sampling/line_cleaning.hpp>

#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "support/cut_text.hpp"
#include "support/exact_text.hpp"
#include "support/rule_name.hpp"

namespace textio {
namespace {

using testing_support::ExactText;
using testing_support::text_of;
using testing_support::Texts;
using testing_support::with_nul;
using Trim = FieldFormat::Trim;

// -- trimming -----------------------------------------------------------------------------------

struct TrimCase {
  const char* rule;
  std::optional<std::u16string> whitespace;
  Trim trim;
  std::u16string line;
  std::u16string cleaned;
};
std::ostream& operator<<(std::ostream& out, const TrimCase& row) { return out << row.rule; }

const std::u16string kBlanks = u" \b\t";

const TrimCase kTrimCases[] = {
    {"BothEndsAreTrimmed", kBlanks, Trim::both, u" \t\bx \b\t", u"x"},
    {"OnlyTheLeadingEndIsTrimmed", kBlanks, Trim::leading, u" \tx ", u"x "},
    {"OnlyTheTrailingEndIsTrimmed", kBlanks, Trim::trailing, u" x \t", u" x"},
    {"NoEndIsTrimmed", kBlanks, Trim::none, u" x ", u" x "},
    {"WhiteSpaceInsideStays", kBlanks, Trim::both, u" a \t b ", u"a \t b"},
    {"WhiteSpaceAloneLeavesNothing", kBlanks, Trim::both, u" \t\b ", u""},
    {"WhiteSpaceAloneLeavesNothingFromTheFront", kBlanks, Trim::leading, u" \t", u""},
    {"WhiteSpaceAloneLeavesNothingFromTheBack", kBlanks, Trim::trailing, u" \t", u""},
    {"WhiteSpaceAloneStaysWithoutTrimming", kBlanks, Trim::none, u" \t", u" \t"},
    {"AnEmptyLineStaysEmpty", kBlanks, Trim::both, u"", u""},
    {"NothingIsTrimmedWithoutWhiteSpace", std::nullopt, Trim::both, u" x ", u" x "},
    {"NothingIsTrimmedWithEmptyWhiteSpace", u"", Trim::both, u" x ", u" x "},
    {"WhiteSpaceIsASetOfAnyCharacters", u"ab", Trim::both, u"abxba", u"x"},
    {"OtherBlankCharactersStay", kBlanks, Trim::both, u"\u00a0x\n", u"\u00a0x\n"},
    {"TheEndMarkIsNoWhiteSpace", kBlanks, Trim::both, u" \uFFFF ", u"\uFFFF"},
    {"TheEndMarkIsTrimmedWhenItIsListed", u"\uFFFF", Trim::both, u"\uFFFFx\uFFFF", u"x"},
    {"NulIsNoWhiteSpace", kBlanks, Trim::both, with_nul(u" \0 "), with_nul(u"\0")},
};

class LineCleaningTrim : public testing::TestWithParam<TrimCase> {};

TEST_P(LineCleaningTrim, RemovesWhiteSpaceAtTheEnds) {
  FieldFormat format;
  format.whitespace = GetParam().whitespace;
  format.trim = GetParam().trim;
  const ExactText line(GetParam().line);
  EXPECT_EQ(text_of(clean_line(line.field(), format)), GetParam().cleaned);
}

TEST_P(LineCleaningTrim, GivesAViewIntoTheLine) {
  FieldFormat format;
  format.whitespace = GetParam().whitespace;
  format.trim = GetParam().trim;
  const ExactText line(GetParam().line);
  const Field cleaned = clean_line(line.field(), format);
  if (cleaned.length == 0) return;
  EXPECT_GE(cleaned.data, line.data());
  EXPECT_LE(cleaned.data + cleaned.length, line.data() + line.size());
}

INSTANTIATE_TEST_SUITE_P(Table, LineCleaningTrim, testing::ValuesIn(kTrimCases),
                         testing_support::ByRule());

TEST(LineCleaningFormat, HasTheTrimModesOfTheInterface) {
  EXPECT_EQ(static_cast<int>(Trim::both), 0);
  EXPECT_EQ(static_cast<int>(Trim::none), 1);
  EXPECT_EQ(static_cast<int>(Trim::leading), 2);
  EXPECT_EQ(static_cast<int>(Trim::trailing), 3);
}

TEST(LineCleaningFormat, TrimsOnlyBlanksByDefault) {
  FieldFormat format;
  EXPECT_EQ(format.whitespace, kBlanks);
  EXPECT_FALSE(format.quote.has_value());
  EXPECT_FALSE(format.affixes.has_value());
  EXPECT_FALSE(format.case_sensitive);
  EXPECT_EQ(format.unquoted, u"");
  EXPECT_EQ(format.empty_text, u"");
  EXPECT_EQ(format.trim, Trim::both);
  const ExactText line(u" \"$x%\" ");
  EXPECT_EQ(text_of(clean_line(line.field(), format)), u"\"$x%\"");
}

TEST(LineCleaningFormat, AcceptsAnEmptyLine) {
  FieldFormat format;
  format.quote = u'"';
  format.affixes = std::pair<Texts, Texts>{{u"$"}, {u"%"}};
  EXPECT_EQ(clean_line(Field(), format).length, 0u);
}

// -- affixes ------------------------------------------------------------------------------------

struct AffixCase {
  const char* rule;
  Texts prefixes;
  Texts suffixes;
  bool case_sensitive;
  Trim trim;
  std::u16string line;
  std::u16string cleaned;
};
std::ostream& operator<<(std::ostream& out, const AffixCase& row) { return out << row.rule; }

const AffixCase kAffixCases[] = {
    {"APrefixIsStripped", {u"$"}, {}, false, Trim::both, u"$5", u"5"},
    {"ASuffixIsStripped", {}, {u"%"}, false, Trim::both, u"5%", u"5"},
    {"BothAreStripped", {u"$"}, {u"%"}, false, Trim::both, u"$5%", u"5"},
    {"WhiteSpaceIsTrimmedBeforeAndAfter", {u"$"}, {u"%"}, false, Trim::both, u" $ 5 % ", u"5"},
    {"LeadingTrimsInFrontOnly", {u"$"}, {u"%"}, false, Trim::leading, u" $ 5 %", u"5 "},
    {"LeadingLeavesABlankAfterTheSuffix", {u"$"}, {u"%"}, false, Trim::leading, u" $5% ", u"5% "},
    {"TrailingTrimsTheEndOnly", {u"$"}, {u"%"}, false, Trim::trailing, u"$ 5 % ", u" 5"},
    {"TrailingLeavesABlankBeforeThePrefix", {u"$"}, {u"%"}, false, Trim::trailing, u" $5%", u" $5"},
    {"WithoutTrimmingNothingIsStripped", {u"$"}, {u"%"}, false, Trim::none, u"$5%", u"$5%"},
    {"OnlyOneOfEachIsStripped", {u"$"}, {u"%"}, false, Trim::both, u"$$5%%", u"$5%"},
    {"TheFirstPrefixInTheListWins", {u"a", u"ab"}, {}, false, Trim::both, u"abc", u"bc"},
    {"TheLongerPrefixWinsWhenItComesFirst", {u"ab", u"a"}, {}, false, Trim::both, u"abc", u"c"},
    {"TheFirstSuffixInTheListWins", {}, {u"c", u"bc"}, false, Trim::both, u"abc", u"ab"},
    {"TheLongerSuffixWinsWhenItComesFirst", {}, {u"bc", u"c"}, false, Trim::both, u"abc", u"a"},
    {"ALaterPrefixServesWhenTheFirstDiffers", {u"x", u"a"}, {}, false, Trim::both, u"abc", u"bc"},
    {"AnEmptyPrefixIsTheFirstThatFits", {u"", u"a"}, {}, false, Trim::both, u"abc", u"abc"},
    {"AnEmptySuffixIsTheFirstThatFits", {}, {u"", u"c"}, false, Trim::both, u"abc", u"abc"},
    {"APrefixLongerThanTheLineDoesNotFit", {u"abcd"}, {}, false, Trim::both, u"abc", u"abc"},
    {"ASuffixLongerThanTheLineDoesNotFit", {}, {u"xabc"}, false, Trim::both, u"abc", u"abc"},
    {"APrefixThatIsTheLineLeavesNothing", {u"abc"}, {}, false, Trim::both, u"abc", u""},
    {"ASuffixThatIsTheLineLeavesNothing", {}, {u"abc"}, false, Trim::both, u"abc", u""},
    {"AffixesThatMeetLeaveNothing", {u"ab"}, {u"cd"}, false, Trim::both, u"abcd", u""},
    {"AffixesThatOverlapLeaveNothing", {u"ab"}, {u"ba"}, false, Trim::both, u"aba", u""},
    {"CaseIsFoldedForPrefixes", {u"Eur"}, {}, false, Trim::both, u"eUR5", u"5"},
    {"CaseIsFoldedForSuffixes", {}, {u"KM"}, false, Trim::both, u"5km", u"5"},
    {"CaseCountsWhenItIsAskedFor", {u"Eur"}, {u"KM"}, true, Trim::both, u"eUR5km", u"eUR5km"},
    {"TheSameCaseFitsWhenItCounts", {u"Eur"}, {u"km"}, true, Trim::both, u"Eur5km", u"5"},
    {"OnlyAsciiLettersAreFolded",
     {u"\u00e9"},
     {u"\u00df"},
     false,
     Trim::both,
     u"\u00c9x\u1e9e",
     u"\u00c9x\u1e9e"},
    {"NoOtherCharactersAreFolded", {u"{"}, {u"@"}, false, Trim::both, u"[x`", u"[x`"},
    {"TheFirstAndLastLetterAreFolded", {u"aZ"}, {u"Az"}, false, Trim::both, u"Az5aZ", u"5"},
    {"AnEmptyLineStaysEmptyBesideAffixes", {u"$"}, {u"%"}, false, Trim::both, u"", u""},
    {"NoListedAffixesChangeNothing", {}, {}, false, Trim::both, u"x", u"x"},
    {"TheEndMarkIsAnAffixLikeAnyOther", {u"\uFFFF"}, {}, false, Trim::both, u"\uFFFFx", u"x"},
};

class LineCleaningAffixes : public testing::TestWithParam<AffixCase> {};

TEST_P(LineCleaningAffixes, StripsOnePair) {
  FieldFormat format;
  format.affixes = std::pair<Texts, Texts>{GetParam().prefixes, GetParam().suffixes};
  format.case_sensitive = GetParam().case_sensitive;
  format.trim = GetParam().trim;
  const ExactText line(GetParam().line);
  EXPECT_EQ(text_of(clean_line(line.field(), format)), GetParam().cleaned);
}

INSTANTIATE_TEST_SUITE_P(Table, LineCleaningAffixes, testing::ValuesIn(kAffixCases),
                         testing_support::ByRule());

TEST(LineCleaningAffixes, AreStrippedWithoutWhiteSpaceToo) {
  FieldFormat format;
  format.whitespace.reset();
  format.affixes = std::pair<Texts, Texts>{{u"$"}, {u"%"}};
  const ExactText line(u"$ 5 %");
  EXPECT_EQ(text_of(clean_line(line.field(), format)), u" 5 ");
}

// -- quotes -------------------------------------------------------------------------------------

struct QuoteCase {
  const char* rule;
  std::optional<char16_t> quote;
  std::u16string line;
  std::u16string cleaned;
};
std::ostream& operator<<(std::ostream& out, const QuoteCase& row) { return out << row.rule; }

const QuoteCase kQuoteCases[] = {
    {"WithoutAQuoteCharacterQuotesStay", std::nullopt, u"\"a\"", u"\"a\""},
    {"NulAsTheQuoteCharacterMeansNone", u'\0', with_nul(u"\0a\0"), with_nul(u"\0a\0")},
    {"TheEnclosingPairIsRemoved", u'"', u"\"a\"", u"a"},
    {"AnyCharacterMayQuote", u'\'', u"'a'", u"a"},
    {"APairAroundNothingLeavesNothing", u'"', u"\"\"", u""},
    {"AQuoteInsideIsNotTheStart", u'"', u"a\"b\"", u"a\"b\""},
    {"ADoubledQuoteBecomesOne", u'"', u"\"a\"\"b\"", u"a\"b"},
    {"TwoDoubledQuotesBecomeTwo", u'"', u"\"a\"\"\"\"b\"", u"a\"\"b"},
    {"FourQuotesAreOne", u'"', u"\"\"\"\"", u"\""},
    {"ThreeQuotesAreOneWithoutAnEnd", u'"', u"\"\"\"", u"\""},
    {"ALoneQuoteLeavesNothing", u'"', u"\"", u""},
    {"AnUnterminatedQuoteRunsToTheEnd", u'"', u"\"ab c", u"ab c"},
    {"AnUnterminatedQuoteAfterADoubledOneToo", u'"', u"\"a\"\"b", u"a\"b"},
    {"WhatFollowsThePairIsKept", u'"', u"\"a\"bc", u"abc"},
    {"QuotesAfterThePairAreKept", u'"', u"\"a\"b\"c\"", u"ab\"c\""},
    {"ABlankBetweenTwoPairsEndsTheUnquoting", u'"', u"\"\" \"\"", u" \"\""},
    {"DoubledQuotesAfterThePairStayDoubled", u'"', u"\"a\"b\"\"c", u"ab\"\"c"},
    {"WhiteSpaceIsTrimmedBeforeUnquoting", u'"', u"  \"a\"  ", u"a"},
    {"WhiteSpaceInsideTheQuotesStays", u'"', u"\" a \"", u" a "},
    {"TheEndMarkInsideIsCopied", u'"', u"\"a\uFFFFb\"", u"a\uFFFFb"},
    {"TheEndMarkMayQuote", u'\uFFFF', u"\uFFFFa\uFFFF", u"a"},
    {"AnEmptyLineHasNoQuote", u'"', u"", u""},
};

class LineCleaningQuotes : public testing::TestWithParam<QuoteCase> {};

TEST_P(LineCleaningQuotes, AreRemovedAtTheStart) {
  FieldFormat format;
  format.quote = GetParam().quote;
  const ExactText line(GetParam().line);
  EXPECT_EQ(text_of(clean_line(line.field(), format)), GetParam().cleaned);
  EXPECT_EQ(line.view(), GetParam().line);
}

TEST_P(LineCleaningQuotes, LeaveNoTraceInTheNextLine) {
  FieldFormat format;
  format.quote = GetParam().quote;
  const ExactText before(u"\"'\uFFFFa long line that was cleaned before\"");
  const ExactText line(GetParam().line);
  clean_line(before.field(), format);
  EXPECT_EQ(text_of(clean_line(line.field(), format)), GetParam().cleaned);
}

INSTANTIATE_TEST_SUITE_P(Table, LineCleaningQuotes, testing::ValuesIn(kQuoteCases),
                         testing_support::ByRule());

TEST(LineCleaningQuotes, AreRemovedWithoutTrimmingToo) {
  FieldFormat format;
  format.quote = u'"';
  format.trim = Trim::none;
  const ExactText quoted(u"\" a\" ");
  EXPECT_EQ(text_of(clean_line(quoted.field(), format)), u" a ");
  const ExactText indented(u" \"a\"");
  EXPECT_EQ(text_of(clean_line(indented.field(), format)), u" \"a\"");
}

TEST(LineCleaningQuotes, AreRemovedAfterTheAffixes) {
  FieldFormat format;
  format.quote = u'"';
  format.affixes = std::pair<Texts, Texts>{{u"<"}, {u">"}};
  const ExactText outside(u"< \"a\" >");
  EXPECT_EQ(text_of(clean_line(outside.field(), format)), u"a");
  const ExactText inside(u"\"<a>\"");
  EXPECT_EQ(text_of(clean_line(inside.field(), format)), u"<a>");
}

// The text is built in the format's own buffer, into which the result may point.
TEST(LineCleaningQuotes, GoIntoTheBufferOfTheFormat) {
  FieldFormat format;
  format.quote = u'"';
  const ExactText line(u"\"a\"\"b\"");
  const Field cleaned = clean_line(line.field(), format);
  EXPECT_EQ(text_of(cleaned), u"a\"b");
  EXPECT_EQ(format.unquoted, u"a\"b");
  EXPECT_EQ(cleaned.data, format.unquoted.data());
}

// The sampler puts the replacement of an empty line in place, not the cleaning.
TEST(LineCleaningFormat, LeavesAnEmptyLineEmpty) {
  FieldFormat format;
  format.empty_text = u"stand-in";
  const ExactText line(u"   ");
  EXPECT_EQ(clean_line(line.field(), format).length, 0u);
}

}  // namespace
}  // namespace textio
