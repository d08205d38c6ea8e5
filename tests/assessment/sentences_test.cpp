#include <vltextstream/assessment/sentences.hpp>

#include <cstddef>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <vltextstream/assessment/weights.hpp>

#include "support/rule_name.hpp"

namespace textio::assessment {
namespace {

using testing_support::ByRule;

constexpr std::size_t at(Evidence evidence) { return static_cast<std::size_t>(evidence); }
constexpr std::size_t at(NamesEvidence evidence) { return static_cast<std::size_t>(evidence); }

// One hypothesis of each reading, without evidence.
Verdict verdict_of(const std::vector<Reading>& readings) {
  Verdict verdict{sample_lines(u"", 1), {}, {}, 0, 0, {}};
  for (const Reading& reading : readings) {
    Hypothesis hypothesis;
    hypothesis.cut = verdict.cuts.size();
    verdict.cuts.push_back({reading, Records(u"")});
    verdict.hypotheses.push_back(hypothesis);
  }
  return verdict;
}
const Reading kComma = {Form::delimited, u","};
const Reading kOne = {Form::one};

// --- sentences -------------------------------------------------------------------------------

struct SentenceCase {
  const char* rule;
  Evidence evidence;
  double amount;
  std::string sentence;
};
std::ostream& operator<<(std::ostream& out, const SentenceCase& row) { return out << row.rule; }

const SentenceCase kSentences[] = {
    {"Outside", Evidence::outside, 0.25, "25 % of the records are before or after the table"},
    {"Torn", Evidence::torn, 0.5,
     "50 % of the records have a cell with one of two brackets or quotes"},
    {"NoTable", Evidence::no_table, 1, "most files are tables"},
    {"Nested", Evidence::nested, 1, "its brackets or tags nest from the first to the last"},
    {"Brief", Evidence::brief, 0.5, "the text is short"},
    {"ByNames", Evidence::by_names, 1, "the names show where columns begin"},
    {"GapsInside", Evidence::gaps_inside, 0.5,
     "50 % of the records have a cell with two blanks in a row"},
    {"One", Evidence::one, 1, "there is a single column"},
    {"Prose", Evidence::prose, 0.75, "75 % of the lines are running text"},
    {"Nothing", Evidence::code, 0, "0 % of the lines look like source code"},
    {"All", Evidence::code, 1, "100 % of the lines look like source code"},
    {"NeverZeroOfSomething", Evidence::code, 0.001,
     "less than 1 % of the lines look like source code"},
    {"NeverAllOfLess", Evidence::code, 0.999, "99 % of the lines look like source code"},
    {"RoundedUp", Evidence::code, 0.336, "34 % of the lines look like source code"},
    {"RoundedDown", Evidence::code, 0.334, "33 % of the lines look like source code"},
};

class SentenceOf : public testing::TestWithParam<SentenceCase> {};
TEST_P(SentenceOf, SaysTheAmount) {
  Verdict verdict = verdict_of({kComma});
  verdict.hypotheses[0].amounts[at(GetParam().evidence)] = GetParam().amount;
  EXPECT_EQ(sentence_of(GetParam().evidence, verdict, verdict.hypotheses[0]), GetParam().sentence);
}
INSTANTIATE_TEST_SUITE_P(Table, SentenceOf, testing::ValuesIn(kSentences), ByRule());

struct ShapeCase {
  const char* rule;
  std::size_t first, end, notes, fitting, columns;
  std::string sentence;
};
std::ostream& operator<<(std::ostream& out, const ShapeCase& row) { return out << row.rule; }

const ShapeCase kShapes[] = {
    {"AllRecords", 0, 97, 0, 97, 6, "97 of 97 records have 6 fields"},
    {"WithoutThoseAboveAndComments", 3, 20, 2, 14, 4, "14 of 15 records have 4 fields"},
    {"FewRecords", 1, 20, 0, 19, 3, "only 19 records, each with 3 fields"},
    {"TwentyRecords", 0, 20, 0, 20, 3, "20 of 20 records have 3 fields"},
    {"OneRecord", 0, 1, 0, 1, 2, "only 1 record, each with 2 fields"},
};

class SentenceOfShape : public testing::TestWithParam<ShapeCase> {};
TEST_P(SentenceOfShape, CountsRecordsAndFields) {
  Verdict verdict = verdict_of({kComma});
  TableFrame& table = verdict.hypotheses[0].table;
  table.first = GetParam().first;
  table.end = GetParam().end;
  table.num_notes = GetParam().notes;
  table.num_fitting = GetParam().fitting;
  table.columns = GetParam().columns;
  EXPECT_EQ(sentence_of(Evidence::ragged, verdict, verdict.hypotheses[0]), GetParam().sentence);
}
INSTANTIATE_TEST_SUITE_P(Table, SentenceOfShape, testing::ValuesIn(kShapes), ByRule());

TEST(SentenceOfColumns, CountsThem) {
  Verdict verdict = verdict_of({kComma});
  verdict.hypotheses[0].table.columns = 2;
  EXPECT_EQ(sentence_of(Evidence::few, verdict, verdict.hypotheses[0]), "there are only 2 columns");
  EXPECT_EQ(sentence_of(Evidence::named, verdict, verdict.hypotheses[0]),
            "the first record has 2 names");
}

// What its weight says.
TEST(SentenceOfSeparator, SaysItsNameAndHowUsualItIs) {
  const Verdict verdict = verdict_of({kComma, {Form::delimited, u"\t"}, {Form::delimited, u"@"}});
  ASSERT_GT(weight_of(Evidence::comma), 0);
  ASSERT_GT(weight_of(Evidence::tab), 0);
  ASSERT_LT(weight_of(Evidence::rare), 0);
  EXPECT_EQ(sentence_of(Evidence::comma, verdict, verdict.hypotheses[0]),
            "comma is often used as a separator");
  EXPECT_EQ(sentence_of(Evidence::tab, verdict, verdict.hypotheses[1]),
            "tab is often used as a separator");
  EXPECT_EQ(sentence_of(Evidence::rare, verdict, verdict.hypotheses[2]),
            "\"@\" is seldom used as a separator");
}

TEST(SentenceOfEachEvidence, IsAnotherOne) {
  Verdict verdict = verdict_of({kComma});
  std::set<std::string> sentences;
  for (std::size_t k = 0; k < kNumEvidence; ++k) {
    const auto evidence = static_cast<Evidence>(k);
    const std::string sentence = sentence_of(evidence, verdict, verdict.hypotheses[0]);
    EXPECT_FALSE(sentence.empty()) << to_string(evidence);
    const bool is_separator = evidence >= Evidence::tab && evidence <= Evidence::rare;
    if (!is_separator) {
      EXPECT_TRUE(sentences.insert(sentence).second) << sentence;
    }
  }
}

TEST(WeightOf, IsThatOfTheTable) {
  for (std::size_t k = 0; k < kNumEvidence; ++k) {
    EXPECT_EQ(weight_of(static_cast<Evidence>(k)), kWeights[k]);
  }
}

// --- what decides ----------------------------------------------------------------------------

TEST(DecidingSentence, IsAboutTheRivalIfThatHasWhatSpeaksAgainstIt) {
  Verdict verdict = verdict_of({kComma, kOne});
  ASSERT_LT(weight_of(Evidence::torn), 0);
  verdict.hypotheses[1].amounts[at(Evidence::torn)] = 0.5;
  EXPECT_EQ(deciding_sentence(verdict, verdict.hypotheses[1]),
            "50 % of the records have a cell with one of two brackets or quotes");
}

TEST(DecidingSentence, IsAboutTheAnswerIfThatHasWhatSpeaksForIt) {
  Verdict verdict = verdict_of({kComma, kOne});
  ASSERT_GT(weight_of(Evidence::well_quoted), 0);
  verdict.hypotheses[0].amounts[at(Evidence::well_quoted)] = 0.5;
  EXPECT_EQ(deciding_sentence(verdict, verdict.hypotheses[1]),
            "of the answer, 50 % of the records have a cell in quotes");
}

TEST(DecidingSentence, TakesThePieceOfTheGreatestDifference) {
  Verdict verdict = verdict_of({kComma, kOne});
  verdict.hypotheses[0].amounts[at(Evidence::torn)] = 0.9;
  verdict.hypotheses[1].amounts[at(Evidence::torn)] = 1;
  verdict.hypotheses[1].amounts[at(Evidence::dangling)] = 1;
  ASSERT_GT(-weight_of(Evidence::dangling), -0.1 * weight_of(Evidence::torn));
  EXPECT_EQ(deciding_sentence(verdict, verdict.hypotheses[1]),
            "100 % of the records have a separator at the border of a cell");
}

TEST(DecidingSentence, ComparesHowRecognisableCellsAre) {
  Verdict verdict = verdict_of({kComma, kOne});
  verdict.hypotheses[0].amounts[at(Evidence::worth)] = 0.9;
  verdict.hypotheses[1].amounts[at(Evidence::worth)] = 0.4;
  EXPECT_EQ(deciding_sentence(verdict, verdict.hypotheses[1]),
            "40 % of what is in its cells is recognisable, of those of the answer 90 %");
}

// --- names and kinds of text -----------------------------------------------------------------

struct NamesCase {
  const char* rule;
  bool has_names;
  std::vector<NamesEvidence> evidence;
  std::string reason;
};
std::ostream& operator<<(std::ostream& out, const NamesCase& row) { return out << row.rule; }

const NamesCase kNamesCases[] = {
    {"TextsAboveValues", true, {NamesEvidence::text_over_values}, "texts above values"},
    {"NothingBelow", true, {NamesEvidence::no_data}, "words, and nothing below them"},
    {"LikeNames", true, {NamesEvidence::like_names}, "line 5 reads like names"},
    {"Values", false, {NamesEvidence::value_among_names}, "line 5 holds values"},
    {"ValuesAndRepeats",
     false,
     {NamesEvidence::value_among_names, NamesEvidence::name_below},
     "line 5 holds values"},
    {"Repeats", false, {NamesEvidence::name_below}, "line 5 has a text that occurs below it"},
    {"LikeData", false, {}, "line 5 reads like the lines below it"},
};

class NamesReason : public testing::TestWithParam<NamesCase> {};
TEST_P(NamesReason, IsTheFirstThatApplies) {
  NamesVerdict names;
  names.line = 4;
  for (const NamesEvidence evidence : GetParam().evidence) names.amounts[at(evidence)] = 1;
  EXPECT_EQ(names_reason(names, GetParam().has_names), GetParam().reason);
}
INSTANTIATE_TEST_SUITE_P(Table, NamesReason, testing::ValuesIn(kNamesCases), ByRule());

TEST(KindOfText, IsThatOfMostLines) {
  const std::pair<Evidence, const char*> kinds[] = {{Evidence::prose, "running text"},
                                                    {Evidence::code, "source code"},
                                                    {Evidence::markup, "a document"},
                                                    {Evidence::keyed, "settings"}};
  for (const auto& [evidence, kind] : kinds) {
    EvidenceAmounts amounts = {};
    for (const auto& [other, name] : kinds) amounts[at(other)] = 0.25;
    amounts[at(evidence)] = 0.5;
    EXPECT_EQ(kind_of_text(amounts), kind);
    amounts[at(Evidence::nested)] = 1;
    EXPECT_EQ(kind_of_text(amounts), "a document");
  }
}

}  // namespace
}  // namespace textio::assessment
